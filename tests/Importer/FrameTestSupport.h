#pragma once
// What the frame tests compare against: the reference decoder's own picture of
// a frame, rendered here in the library's resource format and brought into the
// host's pixel format by the rules a host frame follows, written out again in
// the test and not taken from the importer.

#include "Format/RefClipModel.h"
#include "twSimFrameRef.h"

#include "MediaCorePixelFormats.h"

#include <string>
#include <vector>

// The frame as the host should hold it: `height` rows, the picture's bottom
// row first (host frames run bottom-up), each row tight.
std::vector<unsigned char> expectedHostFrame(const twref::RefClipModel& model, uint64_t frame, int width, int height,
                                             PrPixelFormat format);
int hostBytesPerPixel(PrPixelFormat format);
// Empty when every row of `frame` (read through its own row bytes) equals the
// expected rows; else where and how it first differs.
std::string differenceFrom(const twSimFrameRef& frame, const std::vector<unsigned char>& expected);
// One flat colour over the whole frame, as 8-bit red, green, blue (the host's
// 16-bit white is 32385 for painted frames); false when it isn't flat.
bool flatColour(const twSimFrameRef& frame, int& red, int& green, int& blue);

// Watches the reference decoder's jobs through its stage hook: how often each
// stage ran for a frame, and a gate that holds one frame's process stage until
// it is opened, so that a test can find a request in the middle of its work
// without relying on timing. Installed for the object's life.
class twStageWatch {
public:
    twStageWatch();
    ~twStageWatch();
    twStageWatch(const twStageWatch&) = delete;
    twStageWatch& operator=(const twStageWatch&) = delete;

    int count(const std::string& stage, uint64_t frame) const;
    int total(const std::string& stage) const;
    // The process stage of `frame` waits at its start until open().
    void hold(uint64_t frame);
    // Returns once the held stage has arrived at the gate.
    void waitUntilHeld();
    void open();

private:
    static void onStage(const char* stage, uint64_t frame, void* userData, void* context);
    struct State;
    State* m_state;
};
