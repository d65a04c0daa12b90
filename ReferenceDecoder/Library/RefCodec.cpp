#include "Library/RefCodec.h"

#include "Library/RefClip.h"
#include "Library/RefManualDecoder.h"
#include "Library/RefResourceManager.h"
#include "Library/RefWorkerPool.h"

namespace twref {

RefCodec::RefCodec(std::shared_ptr<const RefLibraryConfig> config)
    : RefLibObject("Codec"), m_core(std::make_shared<RefCodecCore>(std::move(config)))
{
    m_resourceManager = new RefResourceManager(m_core->hooks());
}

// Jobs still in flight finish before the codec goes, so that no callback
// arrives after the last Release returned. On a worker thread (a callback
// releasing the last reference) that wait could never end, so it is skipped.
RefCodec::~RefCodec()
{
    if (!RefWorkerPool::onWorkerThread())
        m_core->flush();
    m_resourceManager->Release();
}

HRESULT RefCodec::QueryInterface(REFIID iid, LPVOID* out)
{
    if (!out)
        return E_POINTER;
    *out = nullptr;
    if (HRESULT hr = m_core->hooks()->enter("Codec.QueryInterface", -1, 0, refInterfaceName(iid)); hr != S_OK)
        return hr;
    if (refSameIid(iid, IID_IUnknown) || refSameIid(iid, IID_IBlackmagicRaw))
        *out = static_cast<IBlackmagicRaw*>(this);
    else if (refSameIid(iid, IID_IBlackmagicRawConfiguration))
        *out = static_cast<IBlackmagicRawConfiguration*>(this);
    else if (refSameIid(iid, IID_IBlackmagicRawConfigurationEx))
        *out = static_cast<IBlackmagicRawConfigurationEx*>(this);
    else if (refSameIid(iid, IID_IBlackmagicRawToneCurve))
        *out = static_cast<IBlackmagicRawToneCurve*>(this);
    else if (refSameIid(iid, IID_IBlackmagicRawManualDecoderFlow1)) {
        *out = static_cast<IBlackmagicRawManualDecoderFlow1*>(new RefManualDecoderFlow1(this));
        return S_OK;
    } else if (refSameIid(iid, IID_IBlackmagicRawManualDecoderFlow2)) {
        *out = static_cast<IBlackmagicRawManualDecoderFlow2*>(new RefManualDecoderFlow2(this));
        return S_OK;
    } else {
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

// ---- IBlackmagicRaw -----------------------------------------------------------------

HRESULT RefCodec::open(const char* fileName, IBlackmagicRawClipGeometry* geometry, const char* method,
                       IBlackmagicRawClip** clip)
{
    if (!fileName || !clip)
        return E_POINTER;
    *clip = nullptr;
    if (HRESULT hr = m_core->hooks()->enter(method); hr != S_OK)
        return hr;
    RefViewGeometry g;
    if (geometry)
        if (HRESULT hr = RefViewGeometry::fromObject(geometry, g); FAILED(hr))
            return hr;
    std::shared_ptr<RefClipData> data;
    std::string error;
    if (HRESULT hr = RefClipData::open(fileName, m_core, data, error); FAILED(hr))
        return hr;
    // The clip's own description may make its opening fail.
    if (HRESULT hr = data->hooks().clip->enter(method); hr != S_OK)
        return hr;
    m_core->noteClipOpened();
    const std::shared_ptr<const RefClipModel> model = data->model();
    m_core->registerToneCurves(model->cameraType, model->toneCurves);
    RefClip* opened = new RefClip(std::move(data), g);
    opened->attachSidecar();
    *clip = opened;
    return S_OK;
}

HRESULT RefCodec::OpenClip(const char* fileName, IBlackmagicRawClip** clip)
{
    return open(fileName, nullptr, "Codec.OpenClip", clip);
}

HRESULT RefCodec::OpenClipWithGeometry(const char* fileName, IBlackmagicRawClipGeometry* geometry,
                                       IBlackmagicRawClip** clip)
{
    if (!geometry)
        return E_POINTER;
    return open(fileName, geometry, "Codec.OpenClipWithGeometry", clip);
}

// The callback is borrowed, not counted: the caller keeps it alive until the
// codec is released.
HRESULT RefCodec::SetCallback(IBlackmagicRawCallback* callback)
{
    if (HRESULT hr = m_core->hooks()->enter("Codec.SetCallback"); hr != S_OK)
        return hr;
    m_core->setCallback(callback);
    return S_OK;
}

HRESULT RefCodec::PreparePipeline(BlackmagicRawPipeline, void*, void*, void*)
{
    return E_NOTIMPL;
}

HRESULT RefCodec::PreparePipelineForDevice(IBlackmagicRawPipelineDevice*, void*)
{
    return E_NOTIMPL;
}

HRESULT RefCodec::FlushJobs()
{
    if (HRESULT hr = m_core->hooks()->enter("Codec.FlushJobs"); hr != S_OK)
        return hr;
    return m_core->flush();
}

// ---- IBlackmagicRawConfiguration -------------------------------------------------------

void RefCodec::renewResourceManager()
{
    RefResourceManager* renewed = new RefResourceManager(m_core->hooks());
    RefResourceManager* old = nullptr;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        old = m_resourceManager;
        m_resourceManager = renewed;
    }
    old->Release();
}

HRESULT RefCodec::SetPipeline(BlackmagicRawPipeline pipeline, void* pipelineContext, void* pipelineCommandQueue)
{
    if (HRESULT hr = m_core->hooks()->enter("Configuration.SetPipeline"); hr != S_OK)
        return hr;
    const HRESULT hr = m_core->setPipeline(pipeline, pipelineContext, pipelineCommandQueue);
    if (SUCCEEDED(hr))
        renewResourceManager();
    return hr;
}

HRESULT RefCodec::GetPipeline(BlackmagicRawPipeline* pipeline, void** pipelineContextOut,
                              void** pipelineCommandQueueOut)
{
    if (HRESULT hr = m_core->hooks()->enter("Configuration.GetPipeline"); hr != S_OK)
        return hr;
    m_core->pipeline(pipeline, pipelineContextOut, pipelineCommandQueueOut);
    return S_OK;
}

HRESULT RefCodec::IsPipelineSupported(BlackmagicRawPipeline pipeline, bool* pipelineSupported)
{
    if (!pipelineSupported)
        return E_POINTER;
    if (HRESULT hr = m_core->hooks()->enter("Configuration.IsPipelineSupported"); hr != S_OK)
        return hr;
    *pipelineSupported = m_core->config().pipeline(pipeline) != nullptr;
    return S_OK;
}

HRESULT RefCodec::SetCPUThreads(uint32_t)
{
    return E_NOTIMPL;
}

HRESULT RefCodec::GetCPUThreads(uint32_t* threadCount)
{
    if (!threadCount)
        return E_POINTER;
    if (HRESULT hr = m_core->hooks()->enter("Configuration.GetCPUThreads"); hr != S_OK)
        return hr;
    *threadCount = m_core->config().cpuThreads;
    return S_OK;
}

HRESULT RefCodec::GetMaxCPUThreadCount(uint32_t* threadCount)
{
    if (!threadCount)
        return E_POINTER;
    if (HRESULT hr = m_core->hooks()->enter("Configuration.GetMaxCPUThreadCount"); hr != S_OK)
        return hr;
    *threadCount = m_core->config().maxCpuThreadCount;
    return S_OK;
}

HRESULT RefCodec::SetWriteMetadataPerFrame(bool)
{
    return E_NOTIMPL;
}

HRESULT RefCodec::GetWriteMetadataPerFrame(bool* writePerFrame)
{
    if (!writePerFrame)
        return E_POINTER;
    if (HRESULT hr = m_core->hooks()->enter("Configuration.GetWriteMetadataPerFrame"); hr != S_OK)
        return hr;
    *writePerFrame = m_core->config().writeMetadataPerFrame;
    return S_OK;
}

HRESULT RefCodec::SetFromDevice(IBlackmagicRawPipelineDevice* pipelineDevice)
{
    if (!pipelineDevice)
        return E_POINTER;
    if (HRESULT hr = m_core->hooks()->enter("Configuration.SetFromDevice"); hr != S_OK)
        return hr;
    BlackmagicRawPipeline pipeline = 0;
    void* context = nullptr;
    void* commandQueue = nullptr;
    if (HRESULT hr = pipelineDevice->GetPipeline(&pipeline, &context, &commandQueue); FAILED(hr))
        return hr;
    const HRESULT hr = m_core->setPipeline(pipeline, context, commandQueue);
    if (SUCCEEDED(hr))
        renewResourceManager();
    return hr;
}

HRESULT RefCodec::GetVersion(const char** version)
{
    if (!version)
        return E_POINTER;
    if (HRESULT hr = m_core->hooks()->enter("Configuration.GetVersion"); hr != S_OK)
        return hr;
    *version = m_core->config().version.c_str();
    return S_OK;
}

HRESULT RefCodec::GetCameraSupportVersion(const char** version)
{
    if (!version)
        return E_POINTER;
    if (HRESULT hr = m_core->hooks()->enter("Configuration.GetCameraSupportVersion"); hr != S_OK)
        return hr;
    *version = m_core->config().cameraSupportVersion.c_str();
    return S_OK;
}

// ---- IBlackmagicRawConfigurationEx -------------------------------------------------------

HRESULT RefCodec::GetResourceManager(IBlackmagicRawResourceManager** resourceManager)
{
    if (!resourceManager)
        return E_POINTER;
    *resourceManager = nullptr;
    if (HRESULT hr = m_core->hooks()->enter("ConfigurationEx.GetResourceManager"); hr != S_OK)
        return hr;
    std::lock_guard<std::mutex> lock(m_mutex);
    m_resourceManager->AddRef();
    *resourceManager = m_resourceManager;
    return S_OK;
}

HRESULT RefCodec::SetResourceManager(IBlackmagicRawResourceManager*)
{
    return E_NOTIMPL;
}

HRESULT RefCodec::GetInstructionSet(BlackmagicRawInstructionSet*)
{
    return E_NOTIMPL;
}

HRESULT RefCodec::SetInstructionSet(BlackmagicRawInstructionSet)
{
    return E_NOTIMPL;
}

HRESULT RefCodec::GetSizeLimit(BlackmagicRawSizeLimit*, uint32_t*, uint32_t*)
{
    return E_NOTIMPL;
}

HRESULT RefCodec::SetSizeLimit(BlackmagicRawSizeLimit, uint32_t, uint32_t)
{
    return E_NOTIMPL;
}

// ---- IBlackmagicRawToneCurve ----------------------------------------------------------------

HRESULT RefCodec::GetToneCurve(const char* cameraType, const char* gamma, uint16_t gen, float* contrast,
                               float* saturation, float* midpoint, float* highlights, float* shadows,
                               float* blackLevel, float* whiteLevel, uint16_t* videoBlackLevel)
{
    if (!cameraType || !gamma || !contrast || !saturation || !midpoint || !highlights || !shadows || !blackLevel ||
        !whiteLevel || !videoBlackLevel)
        return E_POINTER;
    if (HRESULT hr = m_core->hooks()->enter("ToneCurve.GetToneCurve", -1, 0, gamma); hr != S_OK)
        return hr;
    RefToneCurve curve;
    if (!m_core->toneCurve(cameraType, gamma, gen, curve))
        return E_INVALIDARG;
    *contrast = curve.contrast;
    *saturation = curve.saturation;
    *midpoint = curve.midpoint;
    *highlights = curve.highlights;
    *shadows = curve.shadows;
    *blackLevel = curve.blackLevel;
    *whiteLevel = curve.whiteLevel;
    *videoBlackLevel = curve.videoBlackLevel;
    return S_OK;
}

HRESULT RefCodec::EvaluateToneCurve(const char*, uint16_t, float, float, float, float, float, float, float, uint16_t,
                                    float*, uint32_t)
{
    return E_NOTIMPL;
}

}  // namespace twref
