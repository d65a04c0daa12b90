#include "FrameTestSupport.h"

#include "Render/RefRenderer.h"

#include <cstdint>
#include <cstring>
#include <sstream>

int hostBytesPerPixel(PrPixelFormat format) {
    switch (format) {
        case PrPixelFormat_BGRA_4444_8u: return 4;
        case PrPixelFormat_BGRA_4444_16u: return 8;
        case PrPixelFormat_BGRA_4444_32f: return 16;
        default: return 0;
    }
}

std::vector<unsigned char> expectedHostFrame(const twref::RefClipModel& model, uint64_t frame, int width, int height,
                                             PrPixelFormat format) {
    using twref::RefResourceFormat;
    RefResourceFormat resource = RefResourceFormat::BGRAU8;
    if (format == PrPixelFormat_BGRA_4444_16u) resource = RefResourceFormat::BGRAU16;
    if (format == PrPixelFormat_BGRA_4444_32f) resource = RefResourceFormat::BGRAF32;
    const auto w = static_cast<uint32_t>(width);
    const auto h = static_cast<uint32_t>(height);
    std::vector<unsigned char> picture(twref::RefRenderer::resourceSizeBytes(resource, w, h));
    twref::RefRenderTarget target;
    target.data = picture.data();
    target.sizeBytes = picture.size();
    target.width = w;
    target.height = h;
    target.format = resource;
    target.flipVertical = true;
    const twref::RefRenderSettings settings =
        twref::RefRenderSettings::fromAttributes(model.clipAttributes, model.frameAttributes, model);
    twref::RefRenderer::render(frame, settings, nullptr, target);

    const size_t pixels = static_cast<size_t>(w) * h;
    if (format == PrPixelFormat_BGRA_4444_16u) {
        // The library's 16 bits run to 65535, the host's to 32768: a shift,
        // and the top value alone reaches 32768. Alpha is opaque.
        for (size_t i = 0; i < pixels; ++i) {
            uint16_t px[4];
            std::memcpy(px, picture.data() + 8 * i, 8);
            for (int c = 0; c < 3; ++c) px[c] = px[c] == 65535 ? 32768 : static_cast<uint16_t>(px[c] >> 1);
            px[3] = 32768;
            std::memcpy(picture.data() + 8 * i, px, 8);
        }
    } else if (format == PrPixelFormat_BGRA_4444_32f) {
        for (size_t i = 0; i < pixels; ++i) {
            const float one = 1.0f;
            std::memcpy(picture.data() + 16 * i + 12, &one, 4);
        }
    }
    return picture;
}

std::string differenceFrom(const twSimFrameRef& frame, const std::vector<unsigned char>& expected) {
    const twSimFrameInfo info = frame.info();
    const int bpp = hostBytesPerPixel(info.format);
    const size_t rowSize = static_cast<size_t>(info.width) * static_cast<size_t>(bpp);
    if (!info.alive || bpp == 0 || rowSize * static_cast<size_t>(info.height) != expected.size()) {
        std::ostringstream out;
        out << "frame " << info.width << "x" << info.height << " alive " << info.alive << ", expected "
            << expected.size() << " bytes";
        return out.str();
    }
    for (int y = 0; y < info.height; ++y) {
        const unsigned char* row = frame.row(y);
        const unsigned char* want = expected.data() + static_cast<size_t>(y) * rowSize;
        for (size_t b = 0; b < rowSize; ++b) {
            if (row[b] != want[b]) {
                std::ostringstream out;
                out << "memory row " << y << " pixel " << b / static_cast<size_t>(bpp) << " byte "
                    << b % static_cast<size_t>(bpp) << ": " << int(row[b]) << " instead of " << int(want[b])
                    << " (row bytes " << info.rowBytes << ")";
                return out.str();
            }
        }
    }
    return std::string();
}

bool flatColour(const twSimFrameRef& frame, int& red, int& green, int& blue) {
    const twSimFrameInfo info = frame.info();
    const int bpp = hostBytesPerPixel(info.format);
    if (!info.alive || bpp == 0) return false;
    const std::vector<unsigned char> first = frame.pixel(0, 0);
    for (int y = 0; y < info.height; ++y)
        for (int x = 0; x < info.width; ++x)
            if (frame.pixel(x, y) != first) return false;
    auto channel = [&](int index) -> int {
        if (bpp == 4) return first[static_cast<size_t>(index)];
        if (bpp == 8) {
            uint16_t v;
            std::memcpy(&v, first.data() + 2 * index, 2);
            return v / 127;
        }
        float v;
        std::memcpy(&v, first.data() + 4 * index, 4);
        return static_cast<int>(v * 255.0f + 0.5f);
    };
    blue = channel(0);
    green = channel(1);
    red = channel(2);
    return true;
}

#include "Library/RefDecoderDebug.h"

#include <dlfcn.h>

#include <condition_variable>
#include <map>
#include <mutex>
#include <utility>

struct twStageWatch::State {
    mutable std::mutex mutex;
    std::condition_variable changed;
    std::map<std::pair<std::string, uint64_t>, int> counts;
    bool holding = false;
    uint64_t heldFrame = 0;
    bool arrived = false;
};

namespace {

TwRefDecoderSetStageHookFunc stageHookSetter() {
    return reinterpret_cast<TwRefDecoderSetStageHookFunc>(dlsym(RTLD_DEFAULT, TW_REF_DECODER_SET_STAGE_HOOK_SYMBOL));
}

}  // namespace

twStageWatch::twStageWatch() : m_state(new State) {
    if (TwRefDecoderSetStageHookFunc set = stageHookSetter()) set(&twStageWatch::onStage, this);
}

twStageWatch::~twStageWatch() {
    open();
    if (TwRefDecoderSetStageHookFunc set = stageHookSetter()) set(nullptr, nullptr);
    delete m_state;
}

void twStageWatch::onStage(const char* stage, uint64_t frame, void*, void* context) {
    State& s = *static_cast<twStageWatch*>(context)->m_state;
    std::unique_lock<std::mutex> lock(s.mutex);
    ++s.counts[{stage, frame}];
    if (s.holding && frame == s.heldFrame && std::string(stage) == "process") {
        s.arrived = true;
        s.changed.notify_all();
        s.changed.wait(lock, [&s] { return !s.holding; });
    }
}

int twStageWatch::count(const std::string& stage, uint64_t frame) const {
    std::lock_guard<std::mutex> lock(m_state->mutex);
    auto it = m_state->counts.find({stage, frame});
    return it == m_state->counts.end() ? 0 : it->second;
}

int twStageWatch::total(const std::string& stage) const {
    std::lock_guard<std::mutex> lock(m_state->mutex);
    int sum = 0;
    for (const auto& entry : m_state->counts)
        if (entry.first.first == stage) sum += entry.second;
    return sum;
}

void twStageWatch::hold(uint64_t frame) {
    std::lock_guard<std::mutex> lock(m_state->mutex);
    m_state->holding = true;
    m_state->heldFrame = frame;
    m_state->arrived = false;
}

void twStageWatch::waitUntilHeld() {
    std::unique_lock<std::mutex> lock(m_state->mutex);
    m_state->changed.wait(lock, [this] { return m_state->arrived; });
}

void twStageWatch::open() {
    std::lock_guard<std::mutex> lock(m_state->mutex);
    m_state->holding = false;
    m_state->changed.notify_all();
}
