#pragma once
// The host's frames (PPix) behind the PPix, PPix Creator and PPix Creator 2
// suites and the legacy ppix callbacks.
//
// A frame is reference counted: its creator holds one reference, the frame
// cache one per entry, and every frame the cache hands out one more. Dispose
// drops one. Frames keep their handle after the last reference goes, so a
// second dispose is recognised and reported instead of touching freed memory.
// The host chooses each new frame's row bytes: padded rows and rows that run
// backwards in memory (negative row bytes) are available to tests.

#include "twSimDiagnostics.h"

#include "MediaCorePixelFormats.h"
#include "MediaCoreTypes.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

struct twSimFrameLayout {
    int rowAlignment = 1;         // row bytes rounded up to a multiple of this
    int rowPaddingBytes = 0;      // then this many bytes added to every row
    bool negativeRowBytes = false;  // rows run from high to low addresses
};

struct twSimFrameInfo {
    unsigned long long id = 0;
    bool alive = false;
    PrPixelFormat format = PrPixelFormat_Any;
    int width = 0;
    int height = 0;
    csSDK_int32 rowBytes = 0;
    char* pixels = nullptr;  // the first row in memory (the bottom row of the picture)
    int references = 0;
    int cacheReferences = 0;
    csSDK_uint32 parNum = 1;
    csSDK_uint32 parDen = 1;
    PrPPixBufferAccess access = PrPPixBufferAccess_ReadWrite;
    PrSDKColorSpaceID colorSpace = kPrSDKColorSpaceID_Invalid;
};

class twSimFrames {
public:
    explicit twSimFrames(twSimDiagnostics& diagnostics);
    ~twSimFrames();
    twSimFrames(const twSimFrames&) = delete;
    twSimFrames& operator=(const twSimFrames&) = delete;

    void setLayout(const twSimFrameLayout& layout);
    twSimFrameLayout layout() const;
    // The next `count` creations fail with suiteError_OutOfMemory.
    void failNextCreations(int count);

    // ---- creation (PPix Creator and Creator 2) ----
    prSuiteError create(PPixHand* out, PrPPixBufferAccess access, PrPixelFormat format, int width, int height,
                        csSDK_uint32 parNum = 1, csSDK_uint32 parDen = 1,
                        const PrSDKColorSpaceID& colorSpace = kPrSDKColorSpaceID_Invalid);
    prSuiteError createFromRect(PPixHand* out, PrPPixBufferAccess access, PrPixelFormat format, const prRect* rect);
    // A frame of a given byte size: raw data (format 'raww') or a custom format.
    prSuiteError createSized(PPixHand* out, PrPPixBufferAccess access, PrPixelFormat format, int width, int height,
                             int dataSize, int alignment, csSDK_uint32 parNum, csSDK_uint32 parDen,
                             const PrSDKColorSpaceID& colorSpace);
    prSuiteError clone(PPixHand in, PPixHand* out, PrPPixBufferAccess access);

    // ---- PPix suite ----
    prSuiteError dispose(PPixHand h);
    prSuiteError getPixels(PPixHand h, PrPPixBufferAccess access, char** out);
    prSuiteError getBounds(PPixHand h, prRect* out);
    prSuiteError getRowBytes(PPixHand h, csSDK_int32* out);
    prSuiteError getPixelAspectRatio(PPixHand h, csSDK_uint32* num, csSDK_uint32* den);
    prSuiteError getPixelFormat(PPixHand h, PrPixelFormat* out);
    prSuiteError getUniqueKey(PPixHand h, unsigned char* buffer, size_t size);
    static constexpr size_t kUniqueKeySize = 16;

    // ---- host side ----
    // Takes one more reference (the cache's, or a frame handed out again).
    bool addReference(PPixHand h, bool byCache);
    // Drops a reference the cache held.
    void dropCacheReference(PPixHand h);
    bool describe(PPixHand h, twSimFrameInfo& out) const;
    bool isAlive(PPixHand h) const;
    size_t aliveCount() const;
    unsigned long long createdCount() const;
    // Frames still referenced by someone other than the cache.
    std::vector<std::string> undisposed() const;
    // Looks for writes outside the rows of every living frame (a frame is
    // checked anyway whenever a reference to it goes).
    void checkAllGuards() const;

private:
    struct Frame;
    Frame* findAlive(PPixHand h, const char* operation) const;
    // Runs read on the living frame h under the lock; InvalidParms when h is not one.
    prSuiteError readAlive(PPixHand h, const char* operation, const std::function<void(const Frame&)>& read) const;
    prSuiteError finishCreation(std::unique_ptr<Frame> frame, PPixHand* out);
    // Under m_mutex, when a frame's last reference goes: its memory is kept for
    // a later frame of the same size, within a limit.
    void release(Frame& frame);
    unsigned char* takeSpare(size_t dataSize);
    unsigned char* takeSpareLocked(size_t dataSize);
    void checkGuards(Frame& frame) const;

    mutable std::mutex m_mutex;
    twSimDiagnostics& m_diagnostics;
    twSimFrameLayout m_layout;
    int m_failCreations = 0;
    unsigned long long m_nextId = 1;
    std::unordered_map<PPixHand, std::unique_ptr<Frame>> m_frames;
    std::multimap<size_t, unsigned char*> m_spareBlocks;  // by data size
    size_t m_spareBytes = 0;
};
