#include "SettingsFilesSupport.h"

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace twtest {

twAttributes variedSettings(int variant) {
    twAttributes a;
    a.useClipAndFrameAttributes = true;
    twClipAttributes& c = a.clip;
    twFrameAttributes& f = a.frame;
    const float v = static_cast<float>(variant);
    c.colorScienceGen = static_cast<uint16_t>(5 + variant * 1000);
    twCopyFixedText(c.gamut, sizeof(c.gamut), variant % 2 ? "Rec.2020" : "ARRI Wide Gamut 4");
    c.gamutCompression = variant % 2 == 0;
    twCopyFixedText(c.gamma, sizeof(c.gamma), "Blackmagic Design Custom");
    c.gammaControls.saturation = 1.7f + v;
    c.gammaControls.contrast = 0.1f + v / 3.0f;
    c.gammaControls.midpoint = 0.333333f;
    c.gammaControls.highlights = 1.998f;
    c.gammaControls.shadows = 0.002f;
    c.gammaControls.whiteLevel = 1.25f;
    c.gammaControls.blackLevel = -0.75f;
    c.gammaControls.useVideoBlackLevel = variant % 3 != 1;
    c.highlightRecovery = variant % 2 == 1;
    twCopyFixedText(c.lutMode, sizeof(c.lutMode), variant % 2 ? "Sidecar" : "Embedded");
    f.iso = 1600 + static_cast<uint32_t>(variant);
    f.kelvin = 3200 + static_cast<uint32_t>(variant) * 7;
    f.tint = static_cast<int16_t>(-37 - variant);
    f.exposure = -1.3f + v / 7.0f;
    twCopyFixedText(f.timecode, sizeof(f.timecode), "01:02:03:04");

    switch (variant) {
        case 1:  // texts that fill their fields, without a terminator, multi-byte at the end; not UTF-8
            std::memset(c.gamut, 'g', sizeof(c.gamut));
            c.gamut[0] = '\x80';
            std::memcpy(c.gamma, "Gamma \xC3\xA9\xE2\x82\xAC", 11);
            std::memset(c.gamma + 11, 'x', sizeof(c.gamma) - 11);
            std::memcpy(c.lutMode, "Sidecar_LUTs", sizeof(c.lutMode));
            break;
        case 2:  // integer extremes
            c.colorScienceGen = std::numeric_limits<uint16_t>::max();
            f.iso = std::numeric_limits<uint32_t>::max();
            f.kelvin = 0;
            f.tint = std::numeric_limits<int16_t>::min();
            break;
        case 3:
            f.tint = std::numeric_limits<int16_t>::max();
            f.iso = 0;
            c.colorScienceGen = 0;
            break;
        case 4:  // floats that print long or oddly
            f.exposure = -0.0f;
            c.gammaControls.saturation = std::numeric_limits<float>::denorm_min();
            c.gammaControls.contrast = std::numeric_limits<float>::max();
            c.gammaControls.midpoint = -std::numeric_limits<float>::max();
            c.gammaControls.blackLevel = 1.0e-7f;
            c.gammaControls.whiteLevel = 16777217.0f;
            break;
        case 5:  // another gamma: the curve must survive all the same
            twCopyFixedText(c.gamma, sizeof(c.gamma), "ARRI LogC4");
            f.exposure = 4.999999f;
            break;
        default: break;
    }
    return a;
}

std::string settingsDifference(const twClipAttributes& a, const twFrameAttributes& fa, const twClipAttributes& b,
                               const twFrameAttributes& fb) {
    if (std::memcmp(&a, &b, sizeof(a)) != 0) {
        const auto* pa = reinterpret_cast<const unsigned char*>(&a);
        const auto* pb = reinterpret_cast<const unsigned char*>(&b);
        for (size_t i = 0; i < sizeof(a); ++i) {
            if (pa[i] != pb[i]) return "clip attributes differ at byte " + std::to_string(i);
        }
    }
    if (fa.iso != fb.iso) return "iso " + std::to_string(fa.iso) + " != " + std::to_string(fb.iso);
    if (fa.kelvin != fb.kelvin) return "kelvin differs";
    if (fa.tint != fb.tint) return "tint differs";
    if (std::memcmp(&fa.exposure, &fb.exposure, sizeof(float)) != 0) return "exposure differs";
    return std::string();
}

double cubeValueAt(size_t row, int channel, int size) {
    // Distinct per row and channel, in [0, 1], with more digits than six.
    const size_t steps = static_cast<size_t>(size);
    const size_t coordinate = channel == 0 ? row % steps : channel == 1 ? (row / steps) % steps : row / steps / steps;
    return (static_cast<double>(coordinate) + 0.123456789 * channel) / static_cast<double>(size + 1);
}

std::string cubeText(int kind, int size, const std::string& header) {
    std::string text = header;
    text += kind == 1 ? "LUT_1D_SIZE " : "LUT_3D_SIZE ";
    text += std::to_string(size) + "\n";
    const size_t rows = kind == 1 ? static_cast<size_t>(size) : static_cast<size_t>(size) * size * size;
    char number[64];
    for (size_t row = 0; row < rows; ++row) {
        for (int channel = 0; channel < 3; ++channel) {
            const auto end = std::to_chars(number, number + sizeof(number), cubeValueAt(row, channel, size)).ptr;
            text.append(number, end);
            text += channel == 2 ? '\n' : ' ';
        }
    }
    return text;
}

int runAsUnprivileged(const std::function<int()>& body) {
    const pid_t child = fork();
    if (child < 0) return -1;
    if (child == 0) {
        if (setgroups(0, nullptr) != 0 || setresgid(kUnprivilegedId, kUnprivilegedId, kUnprivilegedId) != 0 ||
            setresuid(kUnprivilegedId, kUnprivilegedId, kUnprivilegedId) != 0) {
            _exit(90);
        }
        _exit(body());
    }
    int status = 0;
    if (waitpid(child, &status, 0) != child) return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace twtest
