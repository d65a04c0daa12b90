// The commands of tarnwick-host. Each runs inside a session whose plug-in is
// loaded and initialised; add a command by adding a function and a row to the
// table at the end.

#include "twHostCli.h"
#include "twWavWriter.h"

#include "twSimFile.h"
#include "twSimPixelFormat.h"
#include "twSimText.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iomanip>
#include <memory>
#include <ostream>
#include <sstream>

namespace {

std::string Hex(csSDK_uint32 value) {
    std::ostringstream ss;
    ss << "0x" << std::hex << std::uppercase << std::setw(8) << std::setfill('0') << value;
    return ss.str();
}

const char* ColorSpaceTypeName(PrSDKColorSpaceType type) {
    switch (type) {
        case kPrSDKColorSpaceType_ICC: return "ICC profile";
        case kPrSDKColorSpaceType_LUT: return "LUT";
        case kPrSDKColorSpaceType_SEITags: return "SEI tags";
        case kPrSDKColorSpaceType_MXFTags: return "MXF tags";
        case kPrSDKColorSpaceType_Predefined: return "predefined";
        default: return "undefined";
    }
}

int Catalogue(twHostSession& s) {
    int code = kExitOk;
    csSDK_int32 end = 0;
    const auto formats = s.host.formats(&end);
    s.out << "Formats:\n";
    for (const auto& f : formats) {
        s.out << "  '" << twSimText::FourCCHighFirst(static_cast<csSDK_uint32>(f.filetype)) << "' ("
              << Hex(static_cast<csSDK_uint32>(f.filetype)) << ") flags " << Hex(static_cast<csSDK_uint32>(f.flags))
              << "  \"" << f.name << "\" / \"" << f.shortName << "\"  extensions:";
        for (const auto& e : f.extensions) s.out << " " << e;
        s.out << "\n";
    }
    if (formats.empty()) {
        s.err << "the plug-in announces no format (imGetIndFormat answered " << end << ")\n";
        code = kExitPluginFailure;
    }

    const auto pixelFormats = s.host.pixelFormats(&end);
    s.out << "Pixel formats (in the plug-in's order of preference):\n";
    int index = 1;
    for (PrPixelFormat p : pixelFormats) s.out << "  " << index++ << ". " << twSimPixelFormatName(p) << "\n";

    if (s.options.clip.empty()) {
        s.out << "Colour spaces: announced per file (add --clip FILE to import one and list them)\n";
        return code;
    }
    twSimFile file(s.host, s.options.clip);
    if (!formats.empty()) file.setFileType(formats.front().filetype);
    const csSDK_int32 opened = file.open();
    const csSDK_int32 info = opened == imNoErr ? file.getInfo() : opened;
    if (opened != imNoErr || info != imNoErr) {
        s.err << "cannot import " << s.options.clip << ": imOpenFile8 " << opened << ", imGetInfo8 " << info << "\n";
        return kExitPluginFailure;
    }
    const auto spaces = file.colorSpaces(&end);
    s.out << "Colour spaces of " << s.options.clip << " (support "
          << (file.info().vidInfo.colorSpaceSupport == imColorSpaceSupport_Fixed ? "fixed" : "none") << "):\n";
    for (const auto& c : spaces) {
        s.out << "  " << ColorSpaceTypeName(c.type);
        if (!c.name.empty()) s.out << " \"" << c.name << "\"";
        if (!c.profile.empty()) s.out << " (" << c.profile.size() << " bytes of profile)";
        s.out << "\n";
    }
    file.close();
    return code;
}

std::string SampleTypeName(PrAudioSampleType type) {
    switch (type) {
        case kPrAudioSampleType_8BitInt: return "8-bit integer";
        case kPrAudioSampleType_8BitTwosInt: return "8-bit two's complement integer";
        case kPrAudioSampleType_16BitInt: return "16-bit integer";
        case kPrAudioSampleType_24BitInt: return "24-bit integer";
        case kPrAudioSampleType_32BitInt: return "32-bit integer";
        case kPrAudioSampleType_32BitFloat: return "32-bit float";
        case kPrAudioSampleType_64BitFloat: return "64-bit float";
        default: return "sample type " + std::to_string(static_cast<csSDK_uint32>(type));
    }
}

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

// The host's order for a file: imOpenFile8, then imGetInfo8. Null (with the
// reason on the error stream) when either fails.
std::unique_ptr<twSimFile> Import(twHostSession& s, const std::string& path) {
    std::unique_ptr<twSimFile> file = s.host.importFile(path);
    s.out << "imOpenFile8: " << file->openResult() << "\n";
    if (file->openResult() == imNoErr) s.out << "imGetInfo8: " << file->infoResult() << "\n";
    if (file->openResult() == imNoErr && file->infoResult() == imNoErr) return file;
    s.err << "cannot import " << path << ": imOpenFile8 " << file->openResult();
    if (file->openResult() == imNoErr) s.err << ", imGetInfo8 " << file->infoResult();
    s.err << "\n";
    return nullptr;
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

int Info(twHostSession& s) {
    if (s.options.arguments.size() != 1) {
        s.err << "usage: tarnwick-host [options] info CLIP\n";
        return kExitUsage;
    }
    const std::string& path = s.options.arguments[0];
    s.out << "Clip: " << path << "\n";
    std::unique_ptr<twSimFile> imported = Import(s, path);
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
        s.out << "Audio: " << info.audInfo.numChannels << (info.audInfo.numChannels == 1 ? " channel, " : " channels, ")
              << info.audInfo.sampleRate << " Hz, " << SampleTypeName(info.audInfo.sampleType) << ", "
              << info.audDuration << " sample frames\n";
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

int Audio(twHostSession& s) {
    if (s.options.arguments.size() != 2) {
        s.err << "usage: tarnwick-host [options] audio CLIP OUT.wav [--start N] [--count N]\n";
        return kExitUsage;
    }
    const std::string& path = s.options.arguments[0];
    const std::string& output = s.options.arguments[1];
    s.out << "Clip: " << path << "\n";
    std::unique_ptr<twSimFile> imported = Import(s, path);
    if (!imported) return kExitPluginFailure;
    twSimFile& file = *imported;

    const imFileInfoRec8& info = file.info();
    if (!info.hasAudio || info.audInfo.numChannels <= 0) {
        s.err << path << " has no audio\n";
        file.close();
        return kExitPluginFailure;
    }
    const int channels = info.audInfo.numChannels;
    const long long total = info.audDuration;
    const long long start = s.options.audioStart;
    long long count = s.options.hasAudioCount ? s.options.audioCount : std::max(0LL, total - start);
    if (start > total) {
        s.err << "--start " << start << " lies beyond the end of the audio (" << total << " sample frames)\n";
        file.close();
        return kExitUsage;
    }
    // The importer delivers nothing past the end of the clip; the file holds
    // what it delivered.
    if (start + count > total) {
        s.out << "The audio ends at sample frame " << total << ": " << total - start << " of the " << count
              << " sample frames asked for exist\n";
        count = total - start;
    }

    const auto rate = static_cast<uint32_t>(std::lround(info.audInfo.sampleRate));
    twWavWriter wav;
    std::string error;
    if (!wav.open(output, static_cast<uint32_t>(channels), rate, error)) {
        s.err << error << "\n";
        file.close();
        return kExitPluginFailure;
    }
    // A host asks for audio in blocks of about a second.
    const long long block = std::max<long long>(rate, 1);
    int code = kExitOk;
    for (long long done = 0; done < count && code == kExitOk;) {
        const auto frames = static_cast<csSDK_uint32>(std::min(block, count - done));
        twSimAudioResult read = file.importAudio(start + done, frames, channels);
        if (read.result != imNoErr) {
            s.err << "ImportAudio7 answered " << read.result << " at sample frame " << start + done << "\n";
            code = kExitPluginFailure;
            break;
        }
        std::vector<const float*> buffers;
        for (const auto& c : read.channels) buffers.push_back(c.data());
        if (!wav.append(buffers.data(), frames, error)) {
            s.err << output << ": " << error << "\n";
            code = kExitPluginFailure;
        }
        done += frames;
    }
    if (!wav.finish(error)) {
        s.err << output << ": " << error << "\n";
        code = kExitPluginFailure;
    }
    s.out << "Audio: " << channels << (channels == 1 ? " channel, " : " channels, ") << rate << " Hz, "
          << SampleTypeName(info.audInfo.sampleType) << " in the clip\n";
    s.out << "Wrote " << wav.framesWritten() << " sample frames from " << start << " as 32-bit float to " << output
          << "\n";
    file.close();
    return code;
}

}  // namespace

const std::vector<twHostCommand>& twHostCommands() {
    static const std::vector<twHostCommand> commands = {
        {"catalogue", "catalogue [--clip FILE]",
         "list the plug-in's formats, pixel formats and colour space", Catalogue},
        {"info", "info CLIP", "import a clip and show what the host learns of it", Info},
        {"audio", "audio CLIP OUT.wav", "write a clip's audio as a 32-bit float WAV (--start, --count)", Audio},
    };
    return commands;
}
