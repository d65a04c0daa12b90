#pragma once
// The jobs of the manual decoder flows: reading a frame's bit stream into the
// caller's buffer, decoding it into the caller's decoded buffer, processing
// that into the caller's processed buffer. A submitted job runs on the worker
// pool and reports on the codec's callback with its own pointer; the library
// holds a reference of its own until the callback has returned, so the caller
// may release its reference before or after the callback.

#include "Library/RefClipData.h"
#include "Library/RefDecoderDebug.h"
#include "Library/RefCodecCore.h"
#include "Library/RefFrameState.h"
#include "Library/RefLibObject.h"

#include <atomic>
#include <memory>
#include <vector>

namespace twref {

class RefJob final : public RefLibObject, public IBlackmagicRawJob, public IBlackmagicRawReadJobHints {
public:
    static RefJob* makeRead(std::shared_ptr<RefClipData> clip, const RefViewGeometry& geometry, uint64_t frameIndex,
                            void* bitStream, uint32_t bitStreamCapacity);
    static RefJob* makeDecode(std::shared_ptr<RefCodecCore> core, RefHooks hooks, const RefFrameState& state,
                              void* bitStream, void* decoded);
    struct ProcessBuffers {
        void* decoded = nullptr;
        void* processed = nullptr;
        void* lut = nullptr;
        BlackmagicRawResourceType type = blackmagicRawResourceTypeBufferCPU;
        void* context = nullptr;
        void* commandQueue = nullptr;
    };
    static RefJob* makeProcess(std::shared_ptr<RefCodecCore> core, RefHooks hooks, const RefFrameState& state,
                               const ProcessBuffers& buffers);

    HRESULT QueryInterface(REFIID iid, LPVOID* out) override;
    TW_REF_REFCOUNTED
    HRESULT Submit() override;
    HRESULT Abort() override;
    HRESULT SetUserData(void* userData) override;
    HRESULT GetUserData(void** userData) override;
    HRESULT SetReaderResolutionScale(BlackmagicRawResolutionScale readerResolutionScale) override;

    // The tests' hook, called by every job before its stage (see RefDecoderDebug.h).
    static void setStageHook(TwRefDecoderStageHook hook, void* context);

private:
    enum class Kind { Read, Decode, Process };
    RefJob(Kind kind, std::shared_ptr<RefCodecCore> core, RefHooks hooks, uint64_t frameIndex);

    void execute();
    void executeRead(IBlackmagicRawCallback* callback);
    void executeDecode(IBlackmagicRawCallback* callback);
    void executeProcess(IBlackmagicRawCallback* callback);

    const Kind m_kind;
    std::shared_ptr<RefCodecCore> m_core;
    RefHooks m_hooks;
    const uint64_t m_frameIndex;
    std::atomic<void*> m_userData{nullptr};
    std::atomic<bool> m_submitted{false};

    // Read.
    std::shared_ptr<RefClipData> m_clip;
    RefViewGeometry m_geometry;
    void* m_bitStream = nullptr;
    uint32_t m_bitStreamCapacity = 0;
    // Decode and process.
    RefFrameState m_state{};
    void* m_decoded = nullptr;
    ProcessBuffers m_buffers;
};

}  // namespace twref
