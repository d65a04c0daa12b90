#pragma once
// The manual decoder flows. Each is an object of its own, handed out by the
// codec's QueryInterface and holding a reference on the codec. Flow 1 decodes
// and processes in host memory; flow 2 processes into "GPU" buffers of the
// given context and queue, which this library serves from host memory too.

#include "Library/RefFrameState.h"
#include "Library/RefLibObject.h"

#include <string>

namespace twref {

class RefCodec;

// What both flows do; prefix names the flow in fault methods.
class RefManualDecoderSteps {
public:
    RefManualDecoderSteps(RefCodec* codec, const char* prefix);
    ~RefManualDecoderSteps();
    RefManualDecoderSteps(const RefManualDecoderSteps&) = delete;
    RefManualDecoderSteps& operator=(const RefManualDecoderSteps&) = delete;

    HRESULT query(REFIID iid, LPVOID* out, IUnknown* self, const REFIID& own);
    HRESULT populate(IBlackmagicRawFrame* frame, IBlackmagicRawClipProcessingAttributes* clipAttributes,
                     IBlackmagicRawFrameProcessingAttributes* frameAttributes, void* frameState,
                     uint32_t frameStateSizeBytes);
    HRESULT frameStateSize(uint32_t* sizeBytes);
    // Sizes of a populated state: which is one of the RefFrameState fields.
    HRESULT stateSize(const char* name, void* frameState, uint32_t RefFrameState::*which, uint32_t* sizeBytes);
    HRESULT lutSize(void* frameState, uint32_t* sizeBytes);
    HRESULT createDecode(void* frameState, void* bitStream, void* decoded, IBlackmagicRawJob** job);
    HRESULT createProcess(void* frameState, void* decoded, void* processed, void* lut, bool gpu, void* context,
                          void* commandQueue, IBlackmagicRawJob** job);

private:
    std::string method(const char* name) const;
    RefCodec* m_codec;
    const char* m_prefix;
};

// The methods both flow interfaces declare alike; Flow is the flow's interface
// and kind names it, in the live report and in fault methods.
template <class Flow>
class RefManualDecoderFlow : public RefLibObject, public Flow {
public:
    HRESULT QueryInterface(REFIID iid, LPVOID* out) override;
    TW_REF_REFCOUNTED
    HRESULT PopulateFrameStateBuffer(IBlackmagicRawFrame* frame,
                                     IBlackmagicRawClipProcessingAttributes* clipProcessingAttributes,
                                     IBlackmagicRawFrameProcessingAttributes* frameProcessingAttributes,
                                     void* frameState, uint32_t frameStateSizeBytes) override;
    HRESULT GetFrameStateSizeBytes(uint32_t* frameStateSizeBytes) override;
    HRESULT GetDecodedSizeBytes(void* frameStateBufferCPU, uint32_t* decodedSizeBytes) override;
    HRESULT GetProcessedSizeBytes(void* frameStateBufferCPU, uint32_t* processedSizeBytes) override;
    HRESULT GetPost3DLUTSizeBytes(void* frameStateBufferCPU, uint32_t* post3DLUTSizeBytes) override;
    HRESULT CreateJobDecode(void* frameStateBufferCPU, void* bitStreamBufferCPU, void* decodedBufferCPU,
                            IBlackmagicRawJob** job) override;

protected:
    RefManualDecoderFlow(RefCodec* codec, const char* kind, REFIID own);
    RefManualDecoderSteps m_steps;

private:
    REFIID m_own;
};

extern template class RefManualDecoderFlow<IBlackmagicRawManualDecoderFlow1>;
extern template class RefManualDecoderFlow<IBlackmagicRawManualDecoderFlow2>;

class RefManualDecoderFlow1 final : public RefManualDecoderFlow<IBlackmagicRawManualDecoderFlow1> {
public:
    explicit RefManualDecoderFlow1(RefCodec* codec);

    HRESULT CreateJobProcess(void* frameStateBufferCPU, void* decodedBufferCPU, void* processedBufferCPU,
                             void* post3DLUTBufferCPU, IBlackmagicRawJob** job) override;
};

class RefManualDecoderFlow2 final : public RefManualDecoderFlow<IBlackmagicRawManualDecoderFlow2> {
public:
    explicit RefManualDecoderFlow2(RefCodec* codec);

    HRESULT GetWorkingSizeBytes(void* frameStateBufferCPU, uint32_t* workingSizeBytes) override;
    HRESULT CreateJobProcess(void* context, void* commandQueue, void* frameStateBufferCPU, void* decodedBufferGPU,
                             void* workingBufferGPU, void* processedBufferGPU, void* post3DLUTBufferGPU,
                             IBlackmagicRawJob** job) override;
};

}  // namespace twref
