#include "twSimFrameRef.h"

#include "twSimPixelFormat.h"

twSimFrameRef::twSimFrameRef(twSimFrames& frames, PPixHand handle)
    : m_frames(handle ? &frames : nullptr), m_handle(handle) {}

twSimFrameRef::~twSimFrameRef() { reset(); }

twSimFrameRef::twSimFrameRef(twSimFrameRef&& other) noexcept : m_frames(other.m_frames), m_handle(other.m_handle) {
    other.m_frames = nullptr;
    other.m_handle = nullptr;
}

twSimFrameRef& twSimFrameRef::operator=(twSimFrameRef&& other) noexcept {
    if (this != &other) {
        reset();
        m_frames = other.m_frames;
        m_handle = other.m_handle;
        other.m_frames = nullptr;
        other.m_handle = nullptr;
    }
    return *this;
}

void twSimFrameRef::reset() {
    if (m_frames && m_handle) m_frames->dispose(m_handle);
    m_frames = nullptr;
    m_handle = nullptr;
}

twSimFrameInfo twSimFrameRef::info() const {
    twSimFrameInfo info;
    if (m_frames) m_frames->describe(m_handle, info);
    return info;
}

const unsigned char* twSimFrameRef::row(int memoryRow) const {
    const twSimFrameInfo i = info();
    if (!i.alive || !i.pixels || memoryRow < 0 || memoryRow >= i.height) return nullptr;
    return reinterpret_cast<const unsigned char*>(i.pixels) + static_cast<long long>(memoryRow) * i.rowBytes;
}

std::vector<unsigned char> twSimFrameRef::pixel(int x, int memoryRow) const {
    const twSimFrameInfo i = info();
    const int bpp = twSimBytesPerPixel(i.format);
    const unsigned char* r = row(memoryRow);
    if (!r || bpp == 0 || x < 0 || x >= i.width) return {};
    return std::vector<unsigned char>(r + static_cast<long long>(x) * bpp, r + static_cast<long long>(x + 1) * bpp);
}
