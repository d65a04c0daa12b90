#include "twSimFrames.h"

#include "twSimPixelFormat.h"

#include <cstdlib>
#include <cstring>
#include <sstream>

namespace {

// Bytes around every pixel buffer, filled with a pattern and checked when the
// frame goes: a plug-in that writes past its rows is caught even without a
// sanitizer.
constexpr size_t kGuardBytes = 64;
constexpr unsigned char kGuardPattern = 0xA5;
// The memory of disposed frames that the host keeps for the next ones, as a
// host's frame pool does: fresh memory costs a page fault per page on its
// first touch, which would otherwise be measured as the plug-in's time.
constexpr size_t kSpareBytesLimit = size_t(1) << 30;

bool AccessAllowed(PrPPixBufferAccess frameAccess, PrPPixBufferAccess requested) {
    if (requested < PrPPixBufferAccess_ReadOnly || requested > PrPPixBufferAccess_ReadWrite) return false;
    return frameAccess == PrPPixBufferAccess_ReadWrite || frameAccess == requested;
}

}  // namespace

struct twSimFrames::Frame {
    PPix record{};
    PPix* master = &record;  // the frame's PPixHand is the address of this member
    unsigned long long id = 0;
    PrPixelFormat format = PrPixelFormat_Any;
    int width = 0;
    int height = 0;
    csSDK_int32 rowBytes = 0;
    PrPPixBufferAccess access = PrPPixBufferAccess_ReadWrite;
    csSDK_uint32 parNum = 1;
    csSDK_uint32 parDen = 1;
    PrSDKColorSpaceID colorSpace = kPrSDKColorSpaceID_Invalid;
    unsigned char* block = nullptr;  // guard, data, guard
    size_t dataSize = 0;
    char* pixels = nullptr;
    int references = 1;
    int cacheReferences = 0;
    bool alive = true;
    bool overrunReported = false;

    PPixHand handle() { return &master; }
    unsigned char* data() const { return block + kGuardBytes; }

    // `spare` is a block of the right size the host kept from an earlier frame, or null.
    bool allocate(size_t size, unsigned char* spare) {
        dataSize = size;
        block = spare ? spare : static_cast<unsigned char*>(std::malloc(size + 2 * kGuardBytes));
        if (!block) return false;
        std::memset(block, kGuardPattern, kGuardBytes);
        std::memset(block + kGuardBytes, 0, size);
        std::memset(block + kGuardBytes + size, kGuardPattern, kGuardBytes);
        return true;
    }

    bool guardsIntact() const {
        for (size_t i = 0; i < kGuardBytes; ++i)
            if (block[i] != kGuardPattern || block[kGuardBytes + dataSize + i] != kGuardPattern) return false;
        return true;
    }

    void free() {
        std::free(block);
        block = nullptr;
        pixels = nullptr;
        record.pix = nullptr;
    }

    std::string describe() const {
        std::ostringstream ss;
        ss << "frame #" << id << " " << width << "x" << height << " " << twSimPixelFormatName(format) << ", "
           << references << " reference(s)";
        if (cacheReferences) ss << " (" << cacheReferences << " held by the cache)";
        return ss.str();
    }
};

twSimFrames::twSimFrames(twSimDiagnostics& diagnostics) : m_diagnostics(diagnostics) {}

twSimFrames::~twSimFrames() {
    for (auto& f : m_frames)
        if (f.second->block) f.second->free();
    for (auto& spare : m_spareBlocks) std::free(spare.second);
}

unsigned char* twSimFrames::takeSpareLocked(size_t dataSize) {
    auto it = m_spareBlocks.find(dataSize);
    if (it == m_spareBlocks.end()) return nullptr;
    unsigned char* block = it->second;
    m_spareBlocks.erase(it);
    m_spareBytes -= dataSize;
    return block;
}

unsigned char* twSimFrames::takeSpare(size_t dataSize) {
    std::lock_guard<std::mutex> lock(m_mutex);
    return takeSpareLocked(dataSize);
}

void twSimFrames::setLayout(const twSimFrameLayout& layout) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_layout = layout;
}

twSimFrameLayout twSimFrames::layout() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_layout;
}

void twSimFrames::failNextCreations(int count) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_failCreations = count;
}

prSuiteError twSimFrames::finishCreation(std::unique_ptr<Frame> frame, PPixHand* out) {
    frame->record.bounds = prRect{0, 0, frame->width, frame->height};
    frame->record.rowbytes = frame->rowBytes;
    const int bpp = twSimBytesPerPixel(frame->format);
    frame->record.bitsperpixel = bpp * 8;
    frame->record.pix = frame->pixels;
    std::lock_guard<std::mutex> lock(m_mutex);
    frame->id = m_nextId++;
    PPixHand h = frame->handle();
    m_frames[h] = std::move(frame);
    *out = h;
    return suiteError_NoError;
}

prSuiteError twSimFrames::create(PPixHand* out, PrPPixBufferAccess access, PrPixelFormat format, int width,
                                 int height, csSDK_uint32 parNum, csSDK_uint32 parDen,
                                 const PrSDKColorSpaceID& colorSpace) {
    if (!out) return suiteError_InvalidParms;
    *out = nullptr;
    if (access != PrPPixBufferAccess_WriteOnly && access != PrPPixBufferAccess_ReadWrite) {
        m_diagnostics.add(twSimIssue::BadParameter, "CreatePPix with an access other than write or read-write");
        return suiteError_InvalidParms;
    }
    if (width <= 0 || height <= 0) return suiteError_InvalidParms;
    const int bpp = twSimBytesPerPixel(format);
    if (bpp == 0) return suiteError_RenderInvalidPixelFormat;
    twSimFrameLayout layout;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_failCreations > 0) {
            --m_failCreations;
            return suiteError_OutOfMemory;
        }
        layout = m_layout;
    }
    size_t stride = static_cast<size_t>(width) * static_cast<size_t>(bpp);
    const size_t alignment = layout.rowAlignment > 1 ? static_cast<size_t>(layout.rowAlignment) : 1;
    stride = (stride + alignment - 1) / alignment * alignment;
    stride += static_cast<size_t>(layout.rowPaddingBytes > 0 ? layout.rowPaddingBytes : 0);

    auto frame = std::make_unique<Frame>();
    frame->format = format;
    frame->width = width;
    frame->height = height;
    frame->access = access;
    frame->parNum = parNum;
    frame->parDen = parDen;
    frame->colorSpace = colorSpace;
    const size_t dataSize = stride * static_cast<size_t>(height);
    if (!frame->allocate(dataSize, takeSpare(dataSize))) return suiteError_OutOfMemory;
    if (layout.negativeRowBytes) {
        frame->rowBytes = -static_cast<csSDK_int32>(stride);
        frame->pixels = reinterpret_cast<char*>(frame->data() + stride * static_cast<size_t>(height - 1));
    } else {
        frame->rowBytes = static_cast<csSDK_int32>(stride);
        frame->pixels = reinterpret_cast<char*>(frame->data());
    }
    return finishCreation(std::move(frame), out);
}

prSuiteError twSimFrames::createFromRect(PPixHand* out, PrPPixBufferAccess access, PrPixelFormat format,
                                         const prRect* rect) {
    if (!rect) {
        if (out) *out = nullptr;
        return suiteError_InvalidParms;
    }
    return create(out, access, format, rect->right - rect->left, rect->bottom - rect->top);
}

prSuiteError twSimFrames::createSized(PPixHand* out, PrPPixBufferAccess access, PrPixelFormat format, int width,
                                      int height, int dataSize, int alignment, csSDK_uint32 parNum,
                                      csSDK_uint32 parDen, const PrSDKColorSpaceID& colorSpace) {
    if (!out) return suiteError_InvalidParms;
    *out = nullptr;
    if (dataSize <= 0 || alignment < 0 || (access != PrPPixBufferAccess_WriteOnly && access != PrPPixBufferAccess_ReadWrite))
        return suiteError_InvalidParms;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_failCreations > 0) {
            --m_failCreations;
            return suiteError_OutOfMemory;
        }
    }
    auto frame = std::make_unique<Frame>();
    frame->format = format;
    frame->width = width;
    frame->height = height;
    frame->access = access;
    frame->parNum = parNum;
    frame->parDen = parDen;
    frame->colorSpace = colorSpace;
    if (!frame->allocate(static_cast<size_t>(dataSize), takeSpare(static_cast<size_t>(dataSize)))) {
        return suiteError_OutOfMemory;
    }
    frame->pixels = reinterpret_cast<char*>(frame->data());
    frame->rowBytes = height > 0 ? dataSize / height : dataSize;
    return finishCreation(std::move(frame), out);
}

prSuiteError twSimFrames::clone(PPixHand in, PPixHand* out, PrPPixBufferAccess access) {
    if (!out) return suiteError_InvalidParms;
    *out = nullptr;
    if (access != PrPPixBufferAccess_ReadOnly) {
        m_diagnostics.add(twSimIssue::BadParameter, "ClonePPix with an access other than read-only");
        return suiteError_InvalidParms;
    }
    auto copy = std::make_unique<Frame>();
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        Frame* source = findAlive(in, "ClonePPix");
        if (!source) return suiteError_InvalidParms;
        copy->format = source->format;
        copy->width = source->width;
        copy->height = source->height;
        copy->rowBytes = source->rowBytes;
        copy->parNum = source->parNum;
        copy->parDen = source->parDen;
        copy->colorSpace = source->colorSpace;
        copy->access = PrPPixBufferAccess_ReadOnly;
        if (!copy->allocate(source->dataSize, takeSpareLocked(source->dataSize))) return suiteError_OutOfMemory;
        std::memcpy(copy->data(), source->data(), source->dataSize);
        copy->pixels = reinterpret_cast<char*>(copy->data()) + (source->pixels - reinterpret_cast<char*>(source->data()));
    }
    return finishCreation(std::move(copy), out);
}

twSimFrames::Frame* twSimFrames::findAlive(PPixHand h, const char* operation) const {
    auto it = m_frames.find(h);
    if (it == m_frames.end() || !it->second->alive) {
        m_diagnostics.add(twSimIssue::UnknownFrame,
                          std::string(operation) + (it == m_frames.end() ? " of a frame the host never made"
                                                                        : " of a frame already disposed"));
        return nullptr;
    }
    return it->second.get();
}

void twSimFrames::checkGuards(Frame& frame) const {
    if (frame.block && !frame.overrunReported && !frame.guardsIntact()) {
        frame.overrunReported = true;
        m_diagnostics.add(twSimIssue::FrameBufferOverrun, frame.describe());
    }
}

void twSimFrames::release(Frame& frame) {
    checkGuards(frame);
    if (--frame.references > 0) return;
    frame.alive = false;
    if (frame.block && frame.guardsIntact() && m_spareBytes + frame.dataSize <= kSpareBytesLimit) {
        m_spareBlocks.emplace(frame.dataSize, frame.block);
        m_spareBytes += frame.dataSize;
        frame.block = nullptr;
        frame.pixels = nullptr;
        frame.record.pix = nullptr;
        return;
    }
    frame.free();
}

void twSimFrames::checkAllGuards() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    for (const auto& f : m_frames) checkGuards(*f.second);
}

prSuiteError twSimFrames::dispose(PPixHand h) {
    std::lock_guard<std::mutex> lock(m_mutex);
    Frame* frame = findAlive(h, "Dispose");
    if (!frame) return suiteError_InvalidParms;
    if (frame->references <= frame->cacheReferences) {
        // Only the cache still holds it: this dispose is one too many.
        m_diagnostics.add(twSimIssue::UnknownFrame, "Dispose of a frame whose only references belong to the cache: " +
                                                        frame->describe());
        return suiteError_InvalidParms;
    }
    release(*frame);
    return suiteError_NoError;
}

prSuiteError twSimFrames::getPixels(PPixHand h, PrPPixBufferAccess access, char** out) {
    if (!out) return suiteError_InvalidParms;
    *out = nullptr;
    std::lock_guard<std::mutex> lock(m_mutex);
    Frame* frame = findAlive(h, "GetPixels");
    if (!frame) return suiteError_InvalidParms;
    if (!AccessAllowed(frame->access, access)) return suiteError_InvalidParms;
    *out = frame->pixels;
    return suiteError_NoError;
}

prSuiteError twSimFrames::readAlive(PPixHand h, const char* operation,
                                    const std::function<void(const Frame&)>& read) const {
    std::lock_guard<std::mutex> lock(m_mutex);
    const Frame* frame = findAlive(h, operation);
    if (!frame) return suiteError_InvalidParms;
    read(*frame);
    return suiteError_NoError;
}

prSuiteError twSimFrames::getBounds(PPixHand h, prRect* out) {
    if (!out) return suiteError_InvalidParms;
    return readAlive(h, "GetBounds", [out](const Frame& frame) { *out = frame.record.bounds; });
}

prSuiteError twSimFrames::getRowBytes(PPixHand h, csSDK_int32* out) {
    if (!out) return suiteError_InvalidParms;
    return readAlive(h, "GetRowBytes", [out](const Frame& frame) { *out = frame.rowBytes; });
}

prSuiteError twSimFrames::getPixelAspectRatio(PPixHand h, csSDK_uint32* num, csSDK_uint32* den) {
    if (!num || !den) return suiteError_InvalidParms;
    return readAlive(h, "GetPixelAspectRatio", [num, den](const Frame& frame) {
        *num = frame.parNum;
        *den = frame.parDen;
    });
}

prSuiteError twSimFrames::getPixelFormat(PPixHand h, PrPixelFormat* out) {
    if (!out) return suiteError_InvalidParms;
    return readAlive(h, "GetPixelFormat", [out](const Frame& frame) { *out = frame.format; });
}

prSuiteError twSimFrames::getUniqueKey(PPixHand h, unsigned char* buffer, size_t size) {
    if (!buffer || size < kUniqueKeySize) return suiteError_InvalidParms;
    return readAlive(h, "GetUniqueKey", [buffer, size](const Frame& frame) {
        std::memset(buffer, 0, size);
        std::memcpy(buffer, "twsimppx", 8);
        std::memcpy(buffer + 8, &frame.id, sizeof(frame.id));
    });
}

bool twSimFrames::addReference(PPixHand h, bool byCache) {
    std::lock_guard<std::mutex> lock(m_mutex);
    Frame* frame = findAlive(h, byCache ? "adding to the cache" : "handing out");
    if (!frame) return false;
    ++frame->references;
    if (byCache) ++frame->cacheReferences;
    return true;
}

void twSimFrames::dropCacheReference(PPixHand h) {
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_frames.find(h);
    if (it == m_frames.end() || !it->second->alive || it->second->cacheReferences == 0) return;
    --it->second->cacheReferences;
    release(*it->second);
}

bool twSimFrames::describe(PPixHand h, twSimFrameInfo& out) const {
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_frames.find(h);
    if (it == m_frames.end()) return false;
    const Frame& f = *it->second;
    out.id = f.id;
    out.alive = f.alive;
    out.format = f.format;
    out.width = f.width;
    out.height = f.height;
    out.rowBytes = f.rowBytes;
    out.pixels = f.pixels;
    out.references = f.alive ? f.references : 0;
    out.cacheReferences = f.cacheReferences;
    out.parNum = f.parNum;
    out.parDen = f.parDen;
    out.access = f.access;
    out.colorSpace = f.colorSpace;
    return true;
}

bool twSimFrames::isAlive(PPixHand h) const {
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_frames.find(h);
    return it != m_frames.end() && it->second->alive;
}

size_t twSimFrames::aliveCount() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    size_t n = 0;
    for (const auto& f : m_frames)
        if (f.second->alive) ++n;
    return n;
}

unsigned long long twSimFrames::createdCount() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_nextId - 1;
}

std::vector<std::string> twSimFrames::undisposed() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<std::string> out;
    for (const auto& f : m_frames)
        if (f.second->alive && f.second->references > f.second->cacheReferences) out.push_back(f.second->describe());
    return out;
}
