#pragma once
// One reference to a frame that the plug-in handed to the host (an outFrame).
// The reference is disposed when the object goes, as the host would once done
// with the frame, so tests never dispose by hand.

#include "twSimFrames.h"

#include <vector>

class twSimFrameRef {
public:
    twSimFrameRef() = default;
    // Adopts one reference; a null handle makes an empty reference.
    twSimFrameRef(twSimFrames& frames, PPixHand handle);
    ~twSimFrameRef();
    twSimFrameRef(twSimFrameRef&& other) noexcept;
    twSimFrameRef& operator=(twSimFrameRef&& other) noexcept;
    twSimFrameRef(const twSimFrameRef&) = delete;
    twSimFrameRef& operator=(const twSimFrameRef&) = delete;

    explicit operator bool() const { return m_handle != nullptr; }
    PPixHand handle() const { return m_handle; }
    void reset();

    twSimFrameInfo info() const;
    // Row `memoryRow` as laid out in memory (row 0 is the first row in memory,
    // the bottom of the picture), honouring the frame's row bytes; null when out
    // of range or the frame is gone.
    const unsigned char* row(int memoryRow) const;
    // The bytes of one pixel, empty when out of range.
    std::vector<unsigned char> pixel(int x, int memoryRow) const;

private:
    twSimFrames* m_frames = nullptr;
    PPixHand m_handle = nullptr;
};

struct twSimFrameResult {
    csSDK_int32 result = 0;
    twSimFrameRef frame;
};
