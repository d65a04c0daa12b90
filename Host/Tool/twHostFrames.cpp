#include "twHostFrames.h"

#include "twHostClipSupport.h"

#include "twSimAsyncReader.h"
#include "twSimHost.h"
#include "twSimPixelFormat.h"

#include <CLI/CLI.hpp>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ostream>
#include <sstream>

namespace {

bool parseWhole(const std::string& text, long long& out) {
    if (text.empty() || text.size() > 18) return false;
    for (char c : text)
        if (c < '0' || c > '9') return false;
    out = std::strtoll(text.c_str(), nullptr, 10);
    return true;
}

// The colours of the importer's error frames, by the stage that failed.
struct ErrorColour {
    unsigned char red, green, blue;
    const char* stage;
};
const ErrorColour kErrorColours[] = {
    {255, 0, 0, "the frame's bit stream is corrupted"},
    {255, 165, 0, "first-frame probing"},
    {0, 255, 255, "processing attributes refused"},
    {255, 215, 0, "read job not created or submitted, or clip not found"},
    {128, 128, 0, "read job failed"},
    {0, 0, 139, "frame setup (resource format, scale, attributes)"},
    {0, 128, 128, "decode job not created or submitted"},
    {106, 32, 240, "process job not created or submitted (CPU)"},
    {255, 255, 0, "process job not created or submitted (GPU)"},
    {218, 112, 214, "processed image unreadable or of the wrong format"},
    {255, 192, 0, "the importer's queue gave no frame"},
    {31, 31, 31, "no decoder library"},
};

// One channel of the picture as an 8-bit value (the host's 16-bit white is 32768).
int channel8(const twHostPicture& p, const unsigned char* pixel, int index) {
    switch (p.bytesPerChannel) {
        case 1: return pixel[index];
        case 2: {
            uint16_t v;
            std::memcpy(&v, pixel + 2 * index, 2);
            return static_cast<int>((static_cast<unsigned>(v) * 255u + 16384u) / 32768u);
        }
        default: {
            float v;
            std::memcpy(&v, pixel + 4 * index, 4);
            if (!(v > 0.0f)) return 0;
            if (v >= 1.0f) return 255;
            return static_cast<int>(v * 255.0f + 0.5f);
        }
    }
}

}  // namespace

const std::vector<twHostPixelFormat>& twHostPixelFormats() {
    static const std::vector<twHostPixelFormat> formats = {
        {"BGRA_8u", PrPixelFormat_BGRA_4444_8u, 1},
        {"BGRA_16u", PrPixelFormat_BGRA_4444_16u, 2},
        {"BGRA_32f", PrPixelFormat_BGRA_4444_32f, 4},
    };
    return formats;
}

const twHostPixelFormat* twHostFindPixelFormat(const std::string& name) {
    for (const twHostPixelFormat& f : twHostPixelFormats())
        if (name == f.name) return &f;
    return nullptr;
}

std::string twHostPixelFormatNames() {
    std::string out;
    for (const twHostPixelFormat& f : twHostPixelFormats()) out += (out.empty() ? "" : ", ") + std::string(f.name);
    return out;
}

bool twHostParseFrames(const std::string& text, long long frameCount, std::vector<long long>& frames,
                       std::string& error) {
    frames.clear();
    if (text.empty()) {
        for (long long f = 0; f < frameCount; ++f) frames.push_back(f);
        return true;
    }
    auto inClip = [&](long long f) {
        if (f < frameCount) return true;
        error = "frame " + std::to_string(f) + " lies beyond the clip's " + std::to_string(frameCount) + " frames";
        return false;
    };
    const size_t dash = text.find('-');
    if (dash != std::string::npos) {
        long long first = 0;
        long long last = 0;
        if (!parseWhole(text.substr(0, dash), first) || !parseWhole(text.substr(dash + 1), last)) {
            error = "--frames " + text + ": a range reads A-B, two frame numbers";
            return false;
        }
        if (last < first) {
            error = "--frames " + text + ": the range ends before it starts";
            return false;
        }
        if (!inClip(last)) return false;
        for (long long f = first; f <= last; ++f) frames.push_back(f);
        return true;
    }
    std::istringstream list(text);
    std::string item;
    while (std::getline(list, item, ',')) {
        long long f = 0;
        if (!parseWhole(item, f)) {
            error = "--frames " + text + ": a list reads N,M,... of frame numbers";
            return false;
        }
        if (!inClip(f)) return false;
        frames.push_back(f);
    }
    if (frames.empty()) {
        error = "--frames names no frame";
        return false;
    }
    return true;
}

bool twHostParseSize(const std::string& text, int fullWidth, int fullHeight, int& width, int& height,
                     std::string& error) {
    auto part = [](int full, int divisor) { return full / divisor + (full % divisor ? 1 : 0); };
    if (text.empty() || text == "full") {
        width = fullWidth;
        height = fullHeight;
    } else if (text == "half" || text == "quarter") {
        const int divisor = text == "half" ? 2 : 4;
        width = std::max(1, part(fullWidth, divisor));
        height = std::max(1, part(fullHeight, divisor));
    } else {
        const size_t x = text.find('x');
        long long w = 0;
        long long h = 0;
        if (x == std::string::npos || !parseWhole(text.substr(0, x), w) || !parseWhole(text.substr(x + 1), h) ||
            w < 1 || h < 1 || w > 32767 || h > 32767) {
            error = "--size " + text + ": give WxH (1 to 32767 each), full, half or quarter";
            return false;
        }
        width = static_cast<int>(w);
        height = static_cast<int>(h);
    }
    return true;
}

bool twHostReadPicture(const twSimFrameRef& frame, twHostPicture& out) {
    const twSimFrameInfo info = frame.info();
    if (!info.alive || !info.pixels) return false;
    int bytesPerChannel = 0;
    for (const twHostPixelFormat& f : twHostPixelFormats())
        if (f.format == info.format) bytesPerChannel = f.bytesPerChannel;
    if (bytesPerChannel == 0) return false;
    out.width = info.width;
    out.height = info.height;
    out.bytesPerChannel = bytesPerChannel;
    out.format = info.format;
    out.bytes.resize(out.rowSize() * static_cast<size_t>(info.height));
    // The first row in memory is the bottom of the picture.
    for (int y = 0; y < info.height; ++y) {
        const unsigned char* source = frame.row(info.height - 1 - y);
        std::memcpy(out.bytes.data() + static_cast<size_t>(y) * out.rowSize(), source, out.rowSize());
    }
    return true;
}

std::string twHostErrorStage(const twHostPicture& picture, int& red, int& green, int& blue) {
    red = green = blue = -1;
    if (picture.width <= 0 || picture.height <= 0) return std::string();
    const size_t pixelSize = 4 * static_cast<size_t>(picture.bytesPerChannel);
    const unsigned char* first = picture.bytes.data();
    for (int y = 0; y < picture.height; ++y) {
        const unsigned char* row = picture.row(y);
        for (int x = 0; x < picture.width; ++x)
            if (std::memcmp(row + static_cast<size_t>(x) * pixelSize, first, pixelSize) != 0) return std::string();
    }
    red = channel8(picture, first, 2);
    green = channel8(picture, first, 1);
    blue = channel8(picture, first, 0);
    for (const ErrorColour& c : kErrorColours)
        if (c.red == red && c.green == green && c.blue == blue) return c.stage;
    return std::string();
}

twHostFrameSource::twHostFrameSource(twSimFile& file, bool async) : m_file(file), m_async(async) {
    if (async) m_reader = file.createAsyncReader(&m_createResult);
}

twHostFrameSource::~twHostFrameSource() = default;

bool twHostFrameSource::ready(std::string& error) const {
    if (!m_async || m_reader) return true;
    error = "the importer gave no asynchronous reader (imCreateAsyncImporter " + std::to_string(m_createResult) + ")";
    return false;
}

void twHostFrameSource::close() { m_reader.reset(); }

twSimFrameResult twHostFrameSource::get(long long frame, int width, int height, PrPixelFormat format) {
    const twSimFrameRequest request = m_file.frameRequest(frame, width, height, format);
    if (!m_reader) return m_file.getSourceVideo(request);
    const csSDK_int32 initiated = m_reader->initiateRead(request);
    if (initiated != 0) return twSimFrameResult{initiated, twSimFrameRef()};
    return m_reader->waitForFrame(request, 1000000);
}

void twHostPictureOptions::addTo(CLI::App& command) {
    command.add_option("--frames", frames, "frames to read: A-B, or N,M,... (default: every frame)")
        ->type_name("A-B|N,M,...");
    command.add_option("--size", size, "frame size: WxH, full, half or quarter (default: full)")
        ->type_name("WxH|half|quarter");
    command.add_option("--format", format, "host pixel format: " + twHostPixelFormatNames() + " (default BGRA_8u)")
        ->type_name("FORMAT");
}

bool twHostPictureOptions::resolve(const twSimFile& file, twHostPictureRequest& out, std::string& error) const {
    out.format = twHostFindPixelFormat(format);
    if (!out.format) {
        error = "--format " + format + ": one of " + twHostPixelFormatNames();
        return false;
    }
    const imFileInfoRec8& info = file.info();
    if (!twHostParseSize(size, info.vidInfo.imageWidth, info.vidInfo.imageHeight, out.width, out.height, error)) {
        return false;
    }
    return twHostParseFrames(frames, info.vidDurationInFrames, out.frames, error);
}

std::unique_ptr<twSimFile> twHostPictureOptions::importClip(twHostSession& session, const std::string& clip,
                                                            twHostPictureRequest& out, int& code) const {
    std::unique_ptr<twSimFile> file = twHostImportClip(session, clip);
    code = kExitPluginFailure;
    if (!file) return nullptr;
    std::string error;
    if (!resolve(*file, out, error)) {
        session.err << error << "\n";
        file->close();
        code = kExitUsage;
        return nullptr;
    }
    code = kExitOk;
    return file;
}

twHostProgress::twHostProgress(std::ostream& err, const char* what, size_t total)
    : m_err(err), m_what(what), m_total(total), m_terminal(isatty(STDERR_FILENO) != 0) {}

twHostProgress::~twHostProgress() {
    if (m_terminal) m_err << "\n";
}

void twHostProgress::step(size_t done) {
    if (m_terminal) m_err << "\r" << m_what << " " << done << "/" << m_total << std::flush;
}
