#pragma once
// What the decoder library's tests share: the library loaded by path the way a
// caller loads it, reference clips written on the fly, a callback that records
// what arrives, and a driver of the manual decoder flow through the declared
// interfaces only.

#include "Format/RefClipModel.h"
#include "Library/RefDecoderDebug.h"
#include "TempFolder.h"

#include <BlackmagicRawAPI.h>

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace twtest {

// The library's exported functions, resolved with dlsym.
class RefLibrary {
public:
    // The library built in this tree.
    RefLibrary();
    // A library at another path (a copy with its own facts file).
    explicit RefLibrary(const std::string& path);

    IBlackmagicRawFactory* createFactory() const { return m_create(); }
    void* symbol(const char* name) const;
    uint64_t liveObjects() const { return m_live(nullptr, 0); }
    std::string liveReport() const;

    VariantInitFunc variantInit = nullptr;
    VariantClearFunc variantClear = nullptr;
    SafeArrayCreateFunc safeArrayCreate = nullptr;
    SafeArrayGetVartypeFunc safeArrayGetVartype = nullptr;
    SafeArrayGetLBoundFunc safeArrayGetLBound = nullptr;
    SafeArrayGetUBoundFunc safeArrayGetUBound = nullptr;
    SafeArrayAccessDataFunc safeArrayAccessData = nullptr;
    SafeArrayUnaccessDataFunc safeArrayUnaccessData = nullptr;
    SafeArrayDestroyFunc safeArrayDestroy = nullptr;

    static std::string builtPath();
    // Copies the built library into folder/name/ with facts beside it.
    static std::string copyWithFacts(const TempFolder& folder, const std::string& name, const std::string& json);

private:
    void* m_handle = nullptr;
    CreateBlackmagicRawFactoryInstanceFunc m_create = nullptr;
    TwRefDecoderLiveObjectsFunc m_live = nullptr;
};

// Everything the library still holds, listed when it is not nothing.
#define EXPECT_NO_LIVE_OBJECTS(lib) EXPECT_EQ((lib).liveObjects(), 0u) << (lib).liveReport()

std::string writeClip(const TempFolder& folder, const std::string& name, const twref::RefClipModel& model);

// A small clip that decodes fast.
twref::RefClipModel smallClip(uint64_t frameCount = 8);

// Releases an interface pointer held by a test when it goes out of scope.
template <class I>
class Held {
public:
    Held() = default;
    explicit Held(I* p) : m_p(p) {}
    ~Held() { reset(); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    I* get() const { return m_p; }
    I* operator->() const { return m_p; }
    I** out()
    {
        reset();
        return &m_p;
    }
    void reset()
    {
        if (m_p)
            m_p->Release();
        m_p = nullptr;
    }
    explicit operator bool() const { return m_p != nullptr; }

private:
    I* m_p = nullptr;
};

template <class To, class From>
HRESULT queryInto(From* from, const REFIID& iid, Held<To>& to)
{
    return from->QueryInterface(iid, reinterpret_cast<void**>(to.out()));
}

// A factory, a codec with its configuration, and a callback installed.
struct CodecSession {
    explicit CodecSession(const RefLibrary& lib, IBlackmagicRawCallback* callback = nullptr);
    HRESULT open(const std::string& path, Held<IBlackmagicRawClip>& clip) const;

    Held<IBlackmagicRawFactory> factory;
    Held<IBlackmagicRaw> codec;
};

// Records the sidecar callbacks; stage callbacks go to the handlers.
class RecordingCallback : public IBlackmagicRawCallback {
public:
    struct SidecarIssue {
        bool error = false;
        IBlackmagicRawClip* clip = nullptr;
        std::string fileName;
        uint32_t line = 0;
        std::string info;
    };

    HRESULT QueryInterface(REFIID, LPVOID* out) override
    {
        if (out)
            *out = nullptr;
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return 1; }
    ULONG Release() override { return 1; }
    void ReadComplete(IBlackmagicRawJob* job, HRESULT result, IBlackmagicRawFrame* frame) override;
    void DecodeComplete(IBlackmagicRawJob* job, HRESULT result) override;
    void ProcessComplete(IBlackmagicRawJob* job, HRESULT result, IBlackmagicRawProcessedImage* image) override;
    void TrimProgress(IBlackmagicRawJob*, float) override {}
    void TrimComplete(IBlackmagicRawJob*, HRESULT) override {}
    void SidecarMetadataParseWarning(IBlackmagicRawClip* clip, const char* fileName, uint32_t line,
                                     const char* info) override;
    void SidecarMetadataParseError(IBlackmagicRawClip* clip, const char* fileName, uint32_t line,
                                   const char* info) override;
    void PreparePipelineComplete(void*, HRESULT) override {}

    std::function<void(IBlackmagicRawJob*, HRESULT, IBlackmagicRawFrame*)> onRead;
    std::function<void(IBlackmagicRawJob*, HRESULT)> onDecode;
    std::function<void(IBlackmagicRawJob*, HRESULT, IBlackmagicRawProcessedImage*)> onProcess;

    std::vector<SidecarIssue> sidecarIssues() const;
    void clearSidecarIssues();

private:
    mutable std::mutex m_mutex;
    std::vector<SidecarIssue> m_sidecarIssues;
};

// One frame through the manual flow 1, the way a caller drives it: read into
// a bit-stream buffer, frame state, decode, process into buffers of the
// codec's resource manager. Results of each stage are recorded.
struct FlowRequest {
    IBlackmagicRawClip* clip = nullptr;
    uint64_t frame = 0;
    BlackmagicRawResourceFormat format = blackmagicRawResourceFormatRGBAU8;
    BlackmagicRawResolutionScale scale = blackmagicRawResolutionScaleFull;
    IBlackmagicRawClipProcessingAttributes* clipAttributes = nullptr;  // borrowed, optional
    // Frame attributes to set on a clone of the frame's before the state is filled.
    std::vector<std::pair<BlackmagicRawFrameProcessingAttribute, Variant>> frameValues;
    // Use the LUT of clipAttributes (or of the frame) for the process job.
    bool withLut = true;

    // Results.
    HRESULT createResult = E_UNEXPECTED;  // the read job's creation and submission
    HRESULT readResult = E_UNEXPECTED;
    HRESULT stateResult = E_UNEXPECTED;  // frame settings, frame state, decode job
    HRESULT decodeResult = E_UNEXPECTED;
    HRESULT processStartResult = E_UNEXPECTED;
    HRESULT processResult = E_UNEXPECTED;
    uint32_t width = 0;
    uint32_t height = 0;
    BlackmagicRawResourceFormat imageFormat = 0;
    BlackmagicRawResourceType imageType = 0;
    std::vector<uint8_t> pixels;
    std::atomic<bool> finished{false};
    void* userDataSeen = nullptr;

    // Buffers, from the resource manager.
    void* bitStream = nullptr;
    uint32_t bitStreamSize = 0;
    void* frameState = nullptr;
    void* decoded = nullptr;
    void* processed = nullptr;
    uint32_t processedSize = 0;
    std::mutex mutex;  // held by each stage, as a caller's request lock is
};

class FlowDriver {
public:
    FlowDriver(IBlackmagicRaw* codec, RecordingCallback& callback);
    ~FlowDriver();

    // Starts the read; the rest runs in the callbacks.
    void submit(FlowRequest& request);
    // submit and FlushJobs.
    void run(FlowRequest& request);
    // Gives the request's buffers back to the resource manager.
    void releaseBuffers(FlowRequest& request);

private:
    void read(IBlackmagicRawJob* job, HRESULT result, IBlackmagicRawFrame* frame);
    void decoded(IBlackmagicRawJob* job, HRESULT result);
    void processed(IBlackmagicRawJob* job, HRESULT result, IBlackmagicRawProcessedImage* image);
    void* allocate(uint32_t size);
    void finish(FlowRequest& request);

    IBlackmagicRaw* m_codec;
    Held<IBlackmagicRawManualDecoderFlow1> m_flow;
    Held<IBlackmagicRawResourceManager> m_resources;
};

// Variant helpers.
Variant makeU16(uint16_t v);
Variant makeS16(int16_t v);
Variant makeU32(uint32_t v);
Variant makeFloat(float v);
Variant makeString(const char* v);  // borrowed text

// The mean of channel c over an 8-bit RGBA/BGRA picture.
double meanChannel(const FlowRequest& request, int channel);

}  // namespace twtest
