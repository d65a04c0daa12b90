#pragma once
// The decoder library driven directly through its manual flow 1, as fast as it
// goes: the baseline of the benchmarks that measure what sits on top of it.
// read() starts one frame into a slot; flush() waits for every frame started.

#include <BlackmagicRawAPI.h>

#include <atomic>
#include <cstdint>
#include <vector>

namespace twbench {

// The buffers of one frame in flight.
struct Slot {
    std::vector<uint8_t> bitStream, state, decoded, processed;
    BlackmagicRawResourceFormat format = blackmagicRawResourceFormatRGBAU8;
    BlackmagicRawResolutionScale scale = blackmagicRawResolutionScaleFull;
    std::atomic<bool> ok{false};
};

class Flow : public IBlackmagicRawCallback {
public:
    explicit Flow(IBlackmagicRaw* codec) : m_codec(codec)
    {
        codec->QueryInterface(IID_IBlackmagicRawManualDecoderFlow1, reinterpret_cast<void**>(&m_flow));
        codec->SetCallback(this);
    }
    ~Flow() override { m_flow->Release(); }

    HRESULT QueryInterface(REFIID, LPVOID*) override { return E_NOINTERFACE; }
    ULONG AddRef() override { return 1; }
    ULONG Release() override { return 1; }

    void ReadComplete(IBlackmagicRawJob* job, HRESULT result, IBlackmagicRawFrame* frame) override
    {
        Slot& slot = slotOf(job);
        if (FAILED(result) || !frame)
            return;
        frame->SetResourceFormat(slot.format);
        if (slot.scale != blackmagicRawResolutionScaleFull)
            frame->SetResolutionScale(slot.scale);
        uint32_t size = 0;
        m_flow->GetFrameStateSizeBytes(&size);
        slot.state.resize(size);
        if (FAILED(m_flow->PopulateFrameStateBuffer(frame, nullptr, nullptr, slot.state.data(), size)))
            return;
        m_flow->GetDecodedSizeBytes(slot.state.data(), &size);
        slot.decoded.resize(size);
        IBlackmagicRawJob* decode = nullptr;
        const HRESULT created =
            m_flow->CreateJobDecode(slot.state.data(), slot.bitStream.data(), slot.decoded.data(), &decode);
        submit(created, decode, slot);
    }
    void DecodeComplete(IBlackmagicRawJob* job, HRESULT result) override
    {
        Slot& slot = slotOf(job);
        if (FAILED(result))
            return;
        uint32_t size = 0;
        m_flow->GetProcessedSizeBytes(slot.state.data(), &size);
        slot.processed.resize(size);
        IBlackmagicRawJob* process = nullptr;
        const HRESULT created =
            m_flow->CreateJobProcess(slot.state.data(), slot.decoded.data(), slot.processed.data(), nullptr, &process);
        submit(created, process, slot);
    }
    void ProcessComplete(IBlackmagicRawJob* job, HRESULT result, IBlackmagicRawProcessedImage* image) override
    {
        slotOf(job).ok.store(SUCCEEDED(result) && image);
    }
    void TrimProgress(IBlackmagicRawJob*, float) override {}
    void TrimComplete(IBlackmagicRawJob*, HRESULT) override {}
    void SidecarMetadataParseWarning(IBlackmagicRawClip*, const char*, uint32_t, const char*) override {}
    void SidecarMetadataParseError(IBlackmagicRawClip*, const char*, uint32_t, const char*) override {}
    void PreparePipelineComplete(void*, HRESULT) override {}

    void read(IBlackmagicRawClipEx* clip, uint64_t frame, Slot& slot)
    {
        slot.ok.store(false);
        uint32_t size = 0;
        clip->GetBitStreamSizeBytes(frame, &size);
        slot.bitStream.resize(size);
        IBlackmagicRawJob* job = nullptr;
        const HRESULT created = clip->CreateJobReadFrame(frame, slot.bitStream.data(), size, &job);
        submit(created, job, slot);
    }
    void flush() { m_codec->FlushJobs(); }

private:
    static Slot& slotOf(IBlackmagicRawJob* job)
    {
        void* slot = nullptr;
        job->GetUserData(&slot);
        return *static_cast<Slot*>(slot);
    }
    static void submit(HRESULT created, IBlackmagicRawJob* job, Slot& slot)
    {
        if (FAILED(created) || !job)
            return;
        job->SetUserData(&slot);
        job->Submit();
        job->Release();
    }

    IBlackmagicRaw* m_codec;
    IBlackmagicRawManualDecoderFlow1* m_flow = nullptr;
};

}  // namespace twbench
