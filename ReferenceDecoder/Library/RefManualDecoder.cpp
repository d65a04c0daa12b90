#include "Library/RefManualDecoder.h"

#include "Library/RefClipData.h"
#include "Library/RefCodec.h"
#include "Library/RefFrame.h"
#include "Library/RefJob.h"

#include <cstring>

namespace twref {
namespace {

// The clip of a state when it is still open: its hooks apply to the jobs of
// its frames.
RefHooks hooksOf(const RefFrameState& state, const std::shared_ptr<RefCodecCore>& core)
{
    std::shared_ptr<RefClipData> clip = RefClipData::find(state.clipId);
    return clip ? clip->hooks() : RefHooks{nullptr, core->hooks()};
}

}  // namespace

RefManualDecoderSteps::RefManualDecoderSteps(RefCodec* codec, const char* prefix) : m_codec(codec), m_prefix(prefix)
{
    m_codec->AddRef();
}

RefManualDecoderSteps::~RefManualDecoderSteps()
{
    m_codec->Release();
}

std::string RefManualDecoderSteps::method(const char* name) const
{
    return std::string(m_prefix) + "." + name;
}

HRESULT RefManualDecoderSteps::query(REFIID iid, LPVOID* out, IUnknown* self, const REFIID& own)
{
    if (!out)
        return E_POINTER;
    *out = nullptr;
    if (HRESULT hr = m_codec->core()->hooks()->enter(method("QueryInterface").c_str(), -1, 0, refInterfaceName(iid));
        hr != S_OK)
        return hr;
    if (refSameIid(iid, IID_IUnknown) || refSameIid(iid, own)) {
        self->AddRef();
        *out = self;
        return S_OK;
    }
    // Everything else is the codec's.
    return static_cast<IBlackmagicRaw*>(m_codec)->QueryInterface(iid, out);
}

HRESULT RefManualDecoderSteps::populate(IBlackmagicRawFrame* frame,
                                        IBlackmagicRawClipProcessingAttributes* clipAttributes,
                                        IBlackmagicRawFrameProcessingAttributes* frameAttributes, void* frameState,
                                        uint32_t frameStateSizeBytes)
{
    if (!frame || !frameState)
        return E_POINTER;
    RefFrame* ours = dynamic_cast<RefFrame*>(frame);
    if (!ours)
        return E_INVALIDARG;
    if (HRESULT hr = ours->hooks().enter(method("PopulateFrameStateBuffer").c_str(), int64_t(ours->index()));
        hr != S_OK)
        return hr;
    if (frameStateSizeBytes < sizeof(RefFrameState))
        return E_INVALIDARG;
    RefFrameState state;
    if (HRESULT hr = ours->describe(state, clipAttributes, frameAttributes); FAILED(hr))
        return hr;
    std::memcpy(frameState, &state, sizeof state);
    return S_OK;
}

HRESULT RefManualDecoderSteps::frameStateSize(uint32_t* sizeBytes)
{
    if (!sizeBytes)
        return E_POINTER;
    if (HRESULT hr = m_codec->core()->hooks()->enter(method("GetFrameStateSizeBytes").c_str()); hr != S_OK)
        return hr;
    *sizeBytes = uint32_t(sizeof(RefFrameState));
    return S_OK;
}

HRESULT RefManualDecoderSteps::stateSize(const char* name, void* frameState, uint32_t RefFrameState::*which,
                                         uint32_t* sizeBytes)
{
    if (!sizeBytes)
        return E_POINTER;
    RefFrameState state;
    if (HRESULT hr = RefFrameState::read(frameState, state); FAILED(hr))
        return hr;
    if (HRESULT hr = hooksOf(state, m_codec->core()).enter(method(name).c_str(), int64_t(state.frameIndex));
        hr != S_OK)
        return hr;
    *sizeBytes = state.*which;
    return S_OK;
}

HRESULT RefManualDecoderSteps::lutSize(void* frameState, uint32_t* sizeBytes)
{
    if (!sizeBytes)
        return E_POINTER;
    RefFrameState state;
    if (HRESULT hr = RefFrameState::read(frameState, state); FAILED(hr))
        return hr;
    if (HRESULT hr = hooksOf(state, m_codec->core()).enter(method("GetPost3DLUTSizeBytes").c_str(),
                                                            int64_t(state.frameIndex));
        hr != S_OK)
        return hr;
    *sizeBytes = state.lutBytes();
    return S_OK;
}

HRESULT RefManualDecoderSteps::createDecode(void* frameState, void* bitStream, void* decoded, IBlackmagicRawJob** job)
{
    if (!job)
        return E_POINTER;
    *job = nullptr;
    if (!bitStream || !decoded)
        return E_POINTER;
    RefFrameState state;
    if (HRESULT hr = RefFrameState::read(frameState, state); FAILED(hr))
        return hr;
    RefHooks hooks = hooksOf(state, m_codec->core());
    if (HRESULT hr = hooks.enter(method("CreateJobDecode").c_str(), int64_t(state.frameIndex)); hr != S_OK)
        return hr;
    *job = RefJob::makeDecode(m_codec->core(), std::move(hooks), state, bitStream, decoded);
    return S_OK;
}

HRESULT RefManualDecoderSteps::createProcess(void* frameState, void* decoded, void* processed, void* lut, bool gpu,
                                             void* context, void* commandQueue, IBlackmagicRawJob** job)
{
    if (!job)
        return E_POINTER;
    *job = nullptr;
    if (!decoded || !processed)
        return E_POINTER;
    RefFrameState state;
    if (HRESULT hr = RefFrameState::read(frameState, state); FAILED(hr))
        return hr;
    RefHooks hooks = hooksOf(state, m_codec->core());
    if (HRESULT hr = hooks.enter(method("CreateJobProcess").c_str(), int64_t(state.frameIndex)); hr != S_OK)
        return hr;
    RefJob::ProcessBuffers buffers;
    buffers.decoded = decoded;
    buffers.processed = processed;
    buffers.lut = lut;
    buffers.type = gpu ? m_codec->core()->resourceType() : BlackmagicRawResourceType(blackmagicRawResourceTypeBufferCPU);
    buffers.context = context;
    buffers.commandQueue = commandQueue;
    *job = RefJob::makeProcess(m_codec->core(), std::move(hooks), state, buffers);
    return S_OK;
}

// ---- what both flows share ----------------------------------------------------------

template <class Flow>
RefManualDecoderFlow<Flow>::RefManualDecoderFlow(RefCodec* codec, const char* kind, REFIID own)
    : RefLibObject(kind), m_steps(codec, kind), m_own(own)
{
}

template <class Flow>
HRESULT RefManualDecoderFlow<Flow>::QueryInterface(REFIID iid, LPVOID* out)
{
    return m_steps.query(iid, out, static_cast<Flow*>(this), m_own);
}

template <class Flow>
HRESULT RefManualDecoderFlow<Flow>::PopulateFrameStateBuffer(
    IBlackmagicRawFrame* frame, IBlackmagicRawClipProcessingAttributes* clipProcessingAttributes,
    IBlackmagicRawFrameProcessingAttributes* frameProcessingAttributes, void* frameState,
    uint32_t frameStateSizeBytes)
{
    return m_steps.populate(frame, clipProcessingAttributes, frameProcessingAttributes, frameState,
                            frameStateSizeBytes);
}

template <class Flow>
HRESULT RefManualDecoderFlow<Flow>::GetFrameStateSizeBytes(uint32_t* frameStateSizeBytes)
{
    return m_steps.frameStateSize(frameStateSizeBytes);
}

template <class Flow>
HRESULT RefManualDecoderFlow<Flow>::GetDecodedSizeBytes(void* frameStateBufferCPU, uint32_t* decodedSizeBytes)
{
    return m_steps.stateSize("GetDecodedSizeBytes", frameStateBufferCPU, &RefFrameState::decodedBytes,
                             decodedSizeBytes);
}

template <class Flow>
HRESULT RefManualDecoderFlow<Flow>::GetProcessedSizeBytes(void* frameStateBufferCPU, uint32_t* processedSizeBytes)
{
    return m_steps.stateSize("GetProcessedSizeBytes", frameStateBufferCPU, &RefFrameState::processedBytes,
                             processedSizeBytes);
}

template <class Flow>
HRESULT RefManualDecoderFlow<Flow>::GetPost3DLUTSizeBytes(void* frameStateBufferCPU, uint32_t* post3DLUTSizeBytes)
{
    return m_steps.lutSize(frameStateBufferCPU, post3DLUTSizeBytes);
}

template <class Flow>
HRESULT RefManualDecoderFlow<Flow>::CreateJobDecode(void* frameStateBufferCPU, void* bitStreamBufferCPU,
                                                    void* decodedBufferCPU, IBlackmagicRawJob** job)
{
    return m_steps.createDecode(frameStateBufferCPU, bitStreamBufferCPU, decodedBufferCPU, job);
}

template class RefManualDecoderFlow<IBlackmagicRawManualDecoderFlow1>;
template class RefManualDecoderFlow<IBlackmagicRawManualDecoderFlow2>;

// ---- flow 1 ---------------------------------------------------------------------------

RefManualDecoderFlow1::RefManualDecoderFlow1(RefCodec* codec)
    : RefManualDecoderFlow(codec, "ManualDecoderFlow1", IID_IBlackmagicRawManualDecoderFlow1)
{
}

HRESULT RefManualDecoderFlow1::CreateJobProcess(void* frameStateBufferCPU, void* decodedBufferCPU,
                                                void* processedBufferCPU, void* post3DLUTBufferCPU,
                                                IBlackmagicRawJob** job)
{
    return m_steps.createProcess(frameStateBufferCPU, decodedBufferCPU, processedBufferCPU, post3DLUTBufferCPU, false,
                                 nullptr, nullptr, job);
}

// ---- flow 2 ---------------------------------------------------------------------------

RefManualDecoderFlow2::RefManualDecoderFlow2(RefCodec* codec)
    : RefManualDecoderFlow(codec, "ManualDecoderFlow2", IID_IBlackmagicRawManualDecoderFlow2)
{
}

HRESULT RefManualDecoderFlow2::GetWorkingSizeBytes(void* frameStateBufferCPU, uint32_t* workingSizeBytes)
{
    return m_steps.stateSize("GetWorkingSizeBytes", frameStateBufferCPU, &RefFrameState::workingBytes,
                             workingSizeBytes);
}

HRESULT RefManualDecoderFlow2::CreateJobProcess(void* context, void* commandQueue, void* frameStateBufferCPU,
                                                void* decodedBufferGPU, void*, void* processedBufferGPU,
                                                void* post3DLUTBufferGPU, IBlackmagicRawJob** job)
{
    return m_steps.createProcess(frameStateBufferCPU, decodedBufferGPU, processedBufferGPU, post3DLUTBufferGPU, true,
                                 context, commandQueue, job);
}

}  // namespace twref
