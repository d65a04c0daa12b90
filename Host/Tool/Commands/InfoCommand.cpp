// info: a clip imported as a host imports it, and everything the host learns
// of it.

#include "twHostClipSupport.h"
#include "twHostCommand.h"

#include "twSimText.h"

#include <algorithm>
#include <cstring>
#include <iomanip>
#include <ostream>
#include <sstream>

namespace {

// The prefs blob is the importer's own data, opaque to a host. Its layout is
// stable (projects keep it for years), and it holds the resolutions the
// importer can deliver, so this tool reads them from it:
//   216 full width, height (u32 each); 224 twenty pairs of u32; 384 the count (u8).
struct BlobResolutions {
    bool present = false;
    csSDK_uint32 fullWidth = 0;
    csSDK_uint32 fullHeight = 0;
    std::vector<std::pair<csSDK_uint32, csSDK_uint32>> list;
};

constexpr csSDK_int32 kBlobSize = 396;

csSDK_uint32 ReadU32(const char* bytes, size_t offset) {
    unsigned char b[4];
    std::memcpy(b, bytes + offset, 4);
    return static_cast<csSDK_uint32>(b[0]) | static_cast<csSDK_uint32>(b[1]) << 8 |
           static_cast<csSDK_uint32>(b[2]) << 16 | static_cast<csSDK_uint32>(b[3]) << 24;
}

BlobResolutions ResolutionsOf(const twSimFile& file) {
    BlobResolutions out;
    if (!file.prefs() || file.prefsSize() != kBlobSize) return out;
    const char* blob = file.prefs();
    out.present = true;
    out.fullWidth = ReadU32(blob, 216);
    out.fullHeight = ReadU32(blob, 220);
    const size_t count = std::min<size_t>(static_cast<unsigned char>(blob[384]), 20);
    for (size_t i = 0; i < count; ++i) out.list.emplace_back(ReadU32(blob, 224 + 8 * i), ReadU32(blob, 228 + 8 * i));
    return out;
}

std::string Indented(const std::string& text, const std::string& indent) {
    std::string out;
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        const std::string line = text.substr(start, end - start);
        out += (line.empty() ? std::string() : indent + line) + "\n";
        start = end + 1;
    }
    return out;
}

std::string FrameRateText(csSDK_int32 scale, csSDK_int32 sampleSize) {
    std::ostringstream ss;
    ss << scale << "/" << sampleSize;
    if (sampleSize > 0) {
        ss << " (" << std::fixed << std::setprecision(3) << static_cast<double>(scale) / sampleSize
           << " frames per second)";
    }
    return ss.str();
}

class twInfoCommand final : public twHostCommand {
public:
    void addOptions(CLI::App& command) override {
        command.add_option("CLIP", m_clip, "the clip to import")->required();
    }

    int run(twHostSession& s) override {
        std::unique_ptr<twSimFile> imported = twHostImportClip(s, m_clip);
        if (!imported) return kExitPluginFailure;
        twSimFile& file = *imported;

        const imFileInfoRec8& info = file.info();
        s.out << "Video:\n";
        s.out << "  Size: " << info.vidInfo.imageWidth << " x " << info.vidInfo.imageHeight << "\n";
        s.out << "  Rate: " << FrameRateText(info.vidScale, info.vidSampleSize) << "\n";
        s.out << "  Duration: " << info.vidDurationInFrames << (info.vidDurationInFrames == 1 ? " frame" : " frames")
              << (info.vidInfo.isStill ? " (a still image)" : "") << "\n";
        s.out << "  Pixel aspect: " << info.vidInfo.pixelAspectNum << ":" << info.vidInfo.pixelAspectDen << "\n";
        imTimeInfoRec8 time;
        std::memset(&time, 0, sizeof(time));
        const csSDK_int32 timeResult = file.timeInfo(time);
        const std::string timecode(time.orgtime, strnlen(time.orgtime, sizeof(time.orgtime)));
        s.out << "  Timecode: " << (timeResult == imNoErr && !timecode.empty() ? timecode : "(none)") << "\n";
        s.out << "  Codec: " << file.codecDescription() << "\n";
        s.out << "  Source settings effect: " << twSimText::Utf16ToUtf8(info.sourceSettingsMatchName, 256) << "\n";

        if (info.hasAudio) {
            s.out << "Audio: " << info.audInfo.numChannels
                  << (info.audInfo.numChannels == 1 ? " channel, " : " channels, ") << info.audInfo.sampleRate
                  << " Hz, " << twHostSampleTypeName(info.audInfo.sampleType) << ", " << info.audDuration
                  << " sample frames\n";
        } else {
            s.out << "Audio: none\n";
        }

        const auto registrations = s.host.registrations().current();
        s.out << "Companion files:" << (registrations.empty() ? " none\n" : "\n");
        for (const auto& r : registrations) s.out << "  " << r.tag << ": " << r.path << "\n";

        const BlobResolutions resolutions = ResolutionsOf(file);
        if (resolutions.present) {
            s.out << "Resolutions (full " << resolutions.fullWidth << "x" << resolutions.fullHeight << "):\n";
            for (const auto& r : resolutions.list) s.out << "  " << r.first << "x" << r.second << "\n";
        } else {
            s.out << "Resolutions: the importer left no prefs of its own\n";
        }

        csSDK_int32 analysisResult = 0;
        const std::string properties = file.analysis(16384, &analysisResult);
        s.out << "File properties (imAnalysis " << analysisResult << "):\n";
        // The importer opens its text with blank lines; the tool's own layout gives the space.
        const size_t first = properties.find_first_not_of('\n');
        s.out << Indented(first == std::string::npos ? std::string() : properties.substr(first), "  ");
        file.close();
        return analysisResult == imNoErr ? kExitOk : kExitPluginFailure;
    }

private:
    std::string m_clip;
};

[[maybe_unused]] const bool registered =
    twHostRegisterCommand<twInfoCommand>("info", "import a clip and show what the host learns of it", 20);

}  // namespace
