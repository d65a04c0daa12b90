#pragma once
// What the picture commands of tarnwick-host (render, play, frames) share: the
// words a person types for frames, sizes and pixel formats; a host frame read
// back as the picture it shows (top row first, no row padding); and the
// colours by which the importer says that a frame could not be decoded.

#include "twSimFile.h"
#include "twSimFrameRef.h"

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

// The pixel formats the commands ask for, by the names the tool uses.
struct twHostPixelFormat {
    const char* name;  // "BGRA_8u"
    PrPixelFormat format;
    int bytesPerChannel;  // 1, 2 or 4 (float)
};
const std::vector<twHostPixelFormat>& twHostPixelFormats();
// Null for a name the tool doesn't know.
const twHostPixelFormat* twHostFindPixelFormat(const std::string& name);
// "BGRA_8u, BGRA_16u, BGRA_32f"
std::string twHostPixelFormatNames();

// "A-B" (both included) or "N,M,...", each within [0, frameCount). Empty text
// means every frame. False with the reason in `error`.
bool twHostParseFrames(const std::string& text, long long frameCount, std::vector<long long>& frames,
                       std::string& error);

// "WxH", "full", "half" or "quarter" of the clip's full size (rounded up, never
// below 1). False with the reason in `error`.
bool twHostParseSize(const std::string& text, int fullWidth, int fullHeight, int& width, int& height,
                     std::string& error);

// A frame as the picture it shows: `height` rows of `width` pixels, top row
// first, each pixel the host's four channels in memory order (B, G, R, A).
struct twHostPicture {
    int width = 0;
    int height = 0;
    int bytesPerChannel = 1;
    PrPixelFormat format = PrPixelFormat_Any;
    std::vector<unsigned char> bytes;

    size_t rowSize() const { return static_cast<size_t>(width) * 4 * static_cast<size_t>(bytesPerChannel); }
    const unsigned char* row(int y) const { return bytes.data() + static_cast<size_t>(y) * rowSize(); }
};
// The host keeps pictures bottom row first, each row `rowBytes` apart (padded,
// or negative when rows run backwards): both are undone. False for a frame
// that is gone or of a format the tool doesn't read.
bool twHostReadPicture(const twSimFrameRef& frame, twHostPicture& out);

// A flat frame in one of the importer's error colours: the stage that failed,
// else empty. `red`, `green`, `blue` receive the flat colour whenever the frame
// is flat.
std::string twHostErrorStage(const twHostPicture& picture, int& red, int& green, int& blue);

// The asked frames decoded one after the other through imGetSourceVideo, or
// through an asynchronous reader (InitiateAsyncRead, then GetFrame until the
// frame is ready).
class twHostFrameSource {
public:
    twHostFrameSource(twSimFile& file, bool async);
    ~twHostFrameSource();
    twHostFrameSource(const twHostFrameSource&) = delete;
    twHostFrameSource& operator=(const twHostFrameSource&) = delete;

    // False with the reason when no reader could be made.
    bool ready(std::string& error) const;
    twSimFrameResult get(long long frame, int width, int height, PrPixelFormat format);
    // The reader flushed and closed, as a host does before it closes the file.
    void close();

private:
    twSimFile& m_file;
    std::unique_ptr<class twSimAsyncReader> m_reader;
    csSDK_int32 m_createResult = 0;
    bool m_async;
};

namespace CLI {
class App;
}

struct twHostSession;

// What the options come to for one clip.
struct twHostPictureRequest {
    std::vector<long long> frames;
    int width = 0;
    int height = 0;
    const twHostPixelFormat* format = nullptr;
};

// --frames, --size and --format as the picture commands take them, and what
// they come to for one clip.
struct twHostPictureOptions {
    std::string frames;  // empty: every frame
    std::string size;    // empty: full
    std::string format = "BGRA_8u";

    void addTo(CLI::App& command);
    // The frames, size and pixel format for `file`; false with the reason.
    bool resolve(const twSimFile& file, twHostPictureRequest& out, std::string& error) const;
    // The clip imported as a host imports it, and the options resolved for it.
    // Null when either fails, with the reason told on the error stream and the
    // exit code in `code`.
    std::unique_ptr<twSimFile> importClip(twHostSession& session, const std::string& clip, twHostPictureRequest& out,
                                          int& code) const;
};

// "\r<what> <done>/<total>" on the error stream when it is a terminal, and the
// line closed at the end; nothing otherwise.
class twHostProgress {
public:
    twHostProgress(std::ostream& err, const char* what, size_t total);
    ~twHostProgress();
    void step(size_t done);

private:
    std::ostream& m_err;
    const char* m_what;
    size_t m_total;
    bool m_terminal;
};
