// prefs: a clip imported, then its settings asked for with imGetPrefs8 as a
// host does; in After Effects and Media Encoder the importer opens its source
// settings window there. Prints the settings the clip's prefs blob carries
// afterwards.

#include "twHostClipSupport.h"
#include "twHostCommand.h"

#include <cstring>
#include <ostream>

namespace {

// The settings inside the importer's prefs blob. The blob is the importer's own
// data, but a stable format that hosts keep in projects, so the offsets hold:
//   4 in use (u8); 8 colour science (u16); 10 gamut (64 chars); 74 gamut
//   compression (u8); 75 gamma (64 chars); 140..164 the tone curve (7 floats),
//   168 video black level (u8); 172 highlight recovery (u8); 173 LUT mode
//   (12 chars); 188 ISO, 192 kelvin (u32); 196 tint (i16); 200 exposure
//   (float); 204 timecode (12 chars); 388 sidecar reload count (u32).
constexpr csSDK_int32 kBlobSize = 396;

template <class T>
T Read(const char* blob, size_t offset) {
    T value;
    std::memcpy(&value, blob + offset, sizeof(T));
    return value;
}

std::string Text(const char* blob, size_t offset, size_t size) {
    return std::string(blob + offset, strnlen(blob + offset, size));
}

const char* YesNo(bool value) { return value ? "yes" : "no"; }

void PrintSettings(std::ostream& out, const char* blob) {
    out << "Settings in the prefs blob:\n";
    out << "  In use: " << YesNo(blob[4] != 0)
        << (blob[4] != 0 ? "" : " (the decoder's own settings of the clip stand)") << "\n";
    out << "  Colour science: generation " << Read<uint16_t>(blob, 8) << "\n";
    out << "  Gamut: " << Text(blob, 10, 64) << (blob[74] != 0 ? ", compressed" : "") << "\n";
    out << "  Gamma: " << Text(blob, 75, 64) << "\n";
    static const char* const kCurve[] = {"saturation", "contrast",     "midpoint",   "highlights",
                                         "shadows",    "white level", "black level"};
    out << "  Tone curve:";
    for (size_t i = 0; i < 7; ++i) out << (i ? ", " : " ") << kCurve[i] << " " << Read<float>(blob, 140 + 4 * i);
    out << ", video black level " << YesNo(blob[168] != 0) << "\n";
    out << "  Highlight recovery: " << YesNo(blob[172] != 0) << "\n";
    out << "  LUT: " << Text(blob, 173, 12) << "\n";
    out << "  ISO: " << Read<uint32_t>(blob, 188) << "\n";
    out << "  White balance: " << Read<uint32_t>(blob, 192) << " K, tint " << Read<int16_t>(blob, 196) << "\n";
    out << "  Exposure: " << Read<float>(blob, 200) << "\n";
    out << "  Timecode: " << Text(blob, 204, 12) << "\n";
    out << "  Sidecar reload count: " << Read<uint32_t>(blob, 388) << "\n";
}

class twPrefsCommand final : public twHostCommand {
public:
    void addOptions(CLI::App& command) override {
        command.add_option("CLIP", m_clip, "the clip whose settings are asked for")->required();
    }

    int run(twHostSession& s) override {
        const twSimIdentity& identity = s.options.identity;
        if (identity.appCode != twSimIdentity::AfterEffects().appCode &&
            identity.appCode != twSimIdentity::MediaEncoder().appCode) {
            s.out << "Note: this host's clips are set in the source settings effect, and the importer opens no "
                     "settings window here; run with --app aftereffects or --app ame to see it.\n";
        }
        std::unique_ptr<twSimFile> imported = twHostImportClip(s, m_clip);
        if (!imported) return kExitPluginFailure;
        twSimFile& file = *imported;

        const csSDK_int32 result = file.getPrefs();
        s.out << "imGetPrefs8: " << result << "\n";
        int code = result == imNoErr ? kExitOk : kExitPluginFailure;
        if (file.prefs() && file.prefsSize() == kBlobSize) {
            PrintSettings(s.out, file.prefs());
        } else {
            s.err << "The importer left no prefs blob of the expected size (" << file.prefsSize() << " bytes)\n";
            code = kExitPluginFailure;
        }
        file.close();
        return code;
    }

private:
    std::string m_clip;
};

[[maybe_unused]] const bool registered = twHostRegisterCommand<twPrefsCommand>(
    "prefs", "ask the importer for a clip's settings as a host does (its settings window) and show them", 70);

}  // namespace
