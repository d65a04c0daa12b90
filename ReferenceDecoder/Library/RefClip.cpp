#include "Library/RefClip.h"

#include "Format/RefTimecode.h"
#include "Library/RefAttributeObjects.h"
#include "Library/RefJob.h"
#include "Library/RefMetadataIterator.h"
#include "Library/RefVariant.h"
#include "Render/RefAudioRenderer.h"


namespace twref {
namespace {

bool isScale(BlackmagicRawResolutionScale scale)
{
    return scale == blackmagicRawResolutionScaleFull || scale == blackmagicRawResolutionScaleHalf ||
           scale == blackmagicRawResolutionScaleQuarter || scale == blackmagicRawResolutionScaleEighth;
}

}  // namespace

RefClip::RefClip(std::shared_ptr<RefClipData> data, const RefViewGeometry& geometry)
    : RefLibObject("Clip"),
      m_data(std::move(data)),
      m_geometry(geometry),
      m_hooks(m_data->hooks()),
      m_cameraType(m_data->model()->cameraType)
{
}

void RefClip::attachSidecar()
{
    reportSidecar(m_data->reloadSidecar());
}

void RefClip::reportSidecar(const RefSidecarResult& sidecar)
{
    IBlackmagicRawCallback* callback = m_data->core()->callback();
    if (!callback)
        return;
    for (const RefSidecarIssue& warning : sidecar.warnings)
        callback->SidecarMetadataParseWarning(this, sidecar.path.c_str(), warning.line, warning.message.c_str());
    if (sidecar.status == RefSidecarResult::Status::Failed)
        callback->SidecarMetadataParseError(this, sidecar.path.c_str(), sidecar.error.line,
                                            sidecar.error.message.c_str());
}

HRESULT RefClip::QueryInterface(REFIID iid, LPVOID* out)
{
    if (!out)
        return E_POINTER;
    *out = nullptr;
    if (HRESULT hr = m_hooks.enter("Clip.QueryInterface", -1, 0, refInterfaceName(iid)); hr != S_OK)
        return hr;
    if (refSameIid(iid, IID_IUnknown) || refSameIid(iid, IID_IBlackmagicRawClip))
        *out = static_cast<IBlackmagicRawClip*>(this);
    else if (refSameIid(iid, IID_IBlackmagicRawClipEx))
        *out = static_cast<IBlackmagicRawClipEx*>(this);
    else if (refSameIid(iid, IID_IBlackmagicRawClipResolutions))
        *out = static_cast<IBlackmagicRawClipResolutions*>(this);
    else if (refSameIid(iid, IID_IBlackmagicRawClipAudio))
        *out = static_cast<IBlackmagicRawClipAudio*>(this);
    else
        return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

// ---- IBlackmagicRawClip --------------------------------------------------------------

HRESULT RefClip::GetWidth(uint32_t* width)
{
    if (!width)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("Clip.GetWidth"); hr != S_OK)
        return hr;
    uint32_t height = 0;
    m_geometry.fullSize(*m_data->model(), *width, height);
    return S_OK;
}

HRESULT RefClip::GetHeight(uint32_t* height)
{
    if (!height)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("Clip.GetHeight"); hr != S_OK)
        return hr;
    uint32_t width = 0;
    m_geometry.fullSize(*m_data->model(), width, *height);
    return S_OK;
}

HRESULT RefClip::GetFrameRate(float* frameRate)
{
    if (!frameRate)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("Clip.GetFrameRate"); hr != S_OK)
        return hr;
    *frameRate = m_data->model()->frameRate;
    return S_OK;
}

HRESULT RefClip::GetFrameCount(uint64_t* frameCount)
{
    if (!frameCount)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("Clip.GetFrameCount"); hr != S_OK)
        return hr;
    *frameCount = m_data->model()->frameCount;
    return S_OK;
}

HRESULT RefClip::GetTimecodeForFrame(uint64_t frameIndex, const char** timecode)
{
    if (!timecode)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("Clip.GetTimecodeForFrame", int64_t(frameIndex)); hr != S_OK)
        return hr;
    const std::shared_ptr<const RefClipModel> model = m_data->model();
    if (frameIndex >= model->frameCount)
        return E_INVALIDARG;
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_timecodes.find(frameIndex);
    if (it == m_timecodes.end())
        it = m_timecodes.emplace(frameIndex, RefTimecode::forFrame(*model, frameIndex)).first;
    *timecode = it->second.c_str();
    return S_OK;
}

HRESULT RefClip::GetMetadataIterator(IBlackmagicRawMetadataIterator** iterator)
{
    if (!iterator)
        return E_POINTER;
    *iterator = nullptr;
    if (HRESULT hr = m_hooks.enter("Clip.GetMetadataIterator"); hr != S_OK)
        return hr;
    *iterator = new RefMetadataIterator(m_data->model()->metadata, m_hooks, -1);
    return S_OK;
}

HRESULT RefClip::GetMetadata(const char* key, Variant* value)
{
    if (!key || !value)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("Clip.GetMetadata", -1, 0, key); hr != S_OK)
        return hr;
    const std::shared_ptr<const RefClipModel> model = m_data->model();
    for (const RefMetadataEntry& entry : model->metadata)
        if (entry.key == key)
            return refValueToVariant(entry.value, value);
    return E_INVALIDARG;
}

HRESULT RefClip::SetMetadata(const char*, Variant*)
{
    return E_NOTIMPL;
}

HRESULT RefClip::GetCameraType(const char** cameraType)
{
    if (!cameraType)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("Clip.GetCameraType"); hr != S_OK)
        return hr;
    *cameraType = m_cameraType.c_str();
    return S_OK;
}

HRESULT RefClip::CloneClipProcessingAttributes(IBlackmagicRawClipProcessingAttributes** clipProcessingAttributes)
{
    if (!clipProcessingAttributes)
        return E_POINTER;
    *clipProcessingAttributes = nullptr;
    if (HRESULT hr = m_hooks.enter("Clip.CloneClipProcessingAttributes"); hr != S_OK)
        return hr;
    const std::shared_ptr<const RefClipModel> model = m_data->model();
    auto attributes = std::make_shared<RefAttributeSet>(model->clipAttributes, model->frameAttributes,
                                                        m_data->embeddedLut(), m_data->sidecarLut());
    *clipProcessingAttributes =
        new RefClipProcessingAttributes(std::move(attributes), m_data->core()->resourceType(), m_hooks);
    return S_OK;
}

HRESULT RefClip::GetMulticardFileCount(uint32_t* multicardFileCount)
{
    if (!multicardFileCount)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("Clip.GetMulticardFileCount"); hr != S_OK)
        return hr;
    *multicardFileCount = m_data->model()->multicardFileCount;
    return S_OK;
}

HRESULT RefClip::IsMulticardFilePresent(uint32_t, bool*)
{
    return E_NOTIMPL;
}

HRESULT RefClip::GetSidecarFileAttached(bool* isSidecarFileAttached)
{
    if (!isSidecarFileAttached)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("Clip.GetSidecarFileAttached"); hr != S_OK)
        return hr;
    *isSidecarFileAttached = m_data->sidecarAttached();
    return S_OK;
}

HRESULT RefClip::SaveSidecarFile()
{
    return E_NOTIMPL;
}

// A sidecar that does not parse is reported on the callback and ignored: the
// reload itself succeeds, and the clip falls back to its own settings.
HRESULT RefClip::ReloadSidecarFile()
{
    if (HRESULT hr = m_hooks.enter("Clip.ReloadSidecarFile"); hr != S_OK)
        return hr;
    reportSidecar(m_data->reloadSidecar());
    return S_OK;
}

HRESULT RefClip::CreateJobReadFrame(uint64_t, IBlackmagicRawJob** job)
{
    if (job)
        *job = nullptr;
    return E_NOTIMPL;
}

HRESULT RefClip::CreateJobTrim(const char*, uint64_t, uint64_t, IBlackmagicRawClipProcessingAttributes*,
                               IBlackmagicRawFrameProcessingAttributes*, IBlackmagicRawJob** job)
{
    if (job)
        *job = nullptr;
    return E_NOTIMPL;
}

HRESULT RefClip::CloneWithGeometry(IBlackmagicRawClipGeometry* geometry, IBlackmagicRawClip** clip)
{
    if (!geometry || !clip)
        return E_POINTER;
    *clip = nullptr;
    if (HRESULT hr = m_hooks.enter("Clip.CloneWithGeometry"); hr != S_OK)
        return hr;
    RefViewGeometry g;
    if (HRESULT hr = RefViewGeometry::fromObject(geometry, g); FAILED(hr))
        return hr;
    *clip = new RefClip(m_data, g);
    return S_OK;
}

// ---- IBlackmagicRawClipEx ---------------------------------------------------------------

HRESULT RefClip::GetMaxBitStreamSizeBytes(uint32_t* maxBitStreamSizeBytes)
{
    if (!maxBitStreamSizeBytes)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("ClipEx.GetMaxBitStreamSizeBytes"); hr != S_OK)
        return hr;
    *maxBitStreamSizeBytes = m_data->layout().maxRecordBytes;
    return S_OK;
}

HRESULT RefClip::GetBitStreamSizeBytes(uint64_t frameIndex, uint32_t* bitStreamSizeBytes)
{
    if (!bitStreamSizeBytes)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("ClipEx.GetBitStreamSizeBytes", int64_t(frameIndex)); hr != S_OK)
        return hr;
    return m_data->bitStreamSize(frameIndex, *bitStreamSizeBytes);
}

HRESULT RefClip::CreateJobReadFrame(uint64_t frameIndex, void* bitStream, uint32_t bitStreamSizeBytes,
                                    IBlackmagicRawJob** job)
{
    if (!job)
        return E_POINTER;
    *job = nullptr;
    if (HRESULT hr = m_hooks.enter("ClipEx.CreateJobReadFrame", int64_t(frameIndex)); hr != S_OK)
        return hr;
    const RefClipLayout& layout = m_data->layout();
    if (frameIndex >= m_data->model()->frameCount)
        return E_INVALIDARG;
    // The record's size as the file was opened; a frame without a record fails
    // when it is read, as a damaged one does.
    if (bitStream && frameIndex < layout.frames.size() && bitStreamSizeBytes < layout.frames[frameIndex].sizeBytes)
        return E_INVALIDARG;
    *job = RefJob::makeRead(m_data, m_geometry, frameIndex, bitStream, bitStreamSizeBytes);
    return S_OK;
}

HRESULT RefClip::QueryTimecodeInfo(uint32_t* baseFrameIndex, bool* isDropFrameTimecode)
{
    if (!baseFrameIndex || !isDropFrameTimecode)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("ClipEx.QueryTimecodeInfo"); hr != S_OK)
        return hr;
    const std::shared_ptr<const RefClipModel> model = m_data->model();
    *baseFrameIndex = RefTimecode::baseFrame(*model);
    *isDropFrameTimecode = model->timecode.dropFrame;
    return S_OK;
}

// ---- IBlackmagicRawClipResolutions --------------------------------------------------------

HRESULT RefClip::GetResolutionCount(uint32_t* resolutionCount)
{
    if (!resolutionCount)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("ClipResolutions.GetResolutionCount"); hr != S_OK)
        return hr;
    *resolutionCount = uint32_t(m_geometry.resolutions(*m_data->model()).size());
    return S_OK;
}

HRESULT RefClip::GetResolution(uint32_t resolutionIndex, uint32_t* resolutionWidthPixels,
                               uint32_t* resolutionHeightPixels)
{
    if (!resolutionWidthPixels || !resolutionHeightPixels)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("ClipResolutions.GetResolution", int64_t(resolutionIndex)); hr != S_OK)
        return hr;
    const std::vector<RefResolution> list = m_geometry.resolutions(*m_data->model());
    if (resolutionIndex >= list.size())
        return E_INVALIDARG;
    *resolutionWidthPixels = list[resolutionIndex].width;
    *resolutionHeightPixels = list[resolutionIndex].height;
    return S_OK;
}

HRESULT RefClip::GetRecordedResolution(uint32_t resolutionIndex, uint32_t* recordedResolutionWidthPixels,
                                       uint32_t* recordedResolutionHeightPixels)
{
    if (!recordedResolutionWidthPixels || !recordedResolutionHeightPixels)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("ClipResolutions.GetRecordedResolution", int64_t(resolutionIndex)); hr != S_OK)
        return hr;
    const std::vector<RefResolution> list = m_geometry.resolutions(*m_data->model());
    if (resolutionIndex >= list.size())
        return E_INVALIDARG;
    const RefResolution& r = list[resolutionIndex];
    *recordedResolutionWidthPixels = r.recordedWidth != 0 ? r.recordedWidth : r.width;
    *recordedResolutionHeightPixels = r.recordedHeight != 0 ? r.recordedHeight : r.height;
    return S_OK;
}

HRESULT RefClip::GetClosestResolutionForScale(BlackmagicRawResolutionScale resolutionScale,
                                              uint32_t* resolutionWidthPixels, uint32_t* resolutionHeightPixels)
{
    if (!resolutionWidthPixels || !resolutionHeightPixels)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("ClipResolutions.GetClosestResolutionForScale"); hr != S_OK)
        return hr;
    if (!isScale(resolutionScale))
        return E_INVALIDARG;
    return m_geometry.sizeForScale(*m_data->model(), resolutionScale, *resolutionWidthPixels,
                                   *resolutionHeightPixels)
               ? S_OK
               : E_INVALIDARG;
}

HRESULT RefClip::GetClosestScaleForResolution(uint32_t resolutionWidthPixels, uint32_t resolutionHeightPixels,
                                              BlackmagicRawResolutionScale* resolutionScale)
{
    if (!resolutionScale)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("ClipResolutions.GetClosestScaleForResolution"); hr != S_OK)
        return hr;
    uint32_t scale = 0;
    if (!m_geometry.scaleForSize(*m_data->model(), resolutionWidthPixels, resolutionHeightPixels, scale))
        return E_FAIL;
    *resolutionScale = scale;
    return S_OK;
}

// ---- IBlackmagicRawClipAudio --------------------------------------------------------------
// A clip without audio answers zeros, successfully.

HRESULT RefClip::GetAudioFormat(BlackmagicRawAudioFormat* format)
{
    if (!format)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("ClipAudio.GetAudioFormat"); hr != S_OK)
        return hr;
    const RefAudioModel& audio = m_data->model()->audio;
    *format = audio.present ? audio.format : 0;
    return S_OK;
}

HRESULT RefClip::GetAudioBitDepth(uint32_t* bitDepth)
{
    if (!bitDepth)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("ClipAudio.GetAudioBitDepth"); hr != S_OK)
        return hr;
    const RefAudioModel& audio = m_data->model()->audio;
    *bitDepth = audio.present ? audio.bitDepth : 0;
    return S_OK;
}

HRESULT RefClip::GetAudioChannelCount(uint32_t* channelCount)
{
    if (!channelCount)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("ClipAudio.GetAudioChannelCount"); hr != S_OK)
        return hr;
    const RefAudioModel& audio = m_data->model()->audio;
    *channelCount = audio.present ? audio.channelCount : 0;
    return S_OK;
}

HRESULT RefClip::GetAudioSampleRate(uint32_t* sampleRate)
{
    if (!sampleRate)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("ClipAudio.GetAudioSampleRate"); hr != S_OK)
        return hr;
    const RefAudioModel& audio = m_data->model()->audio;
    *sampleRate = audio.present ? audio.sampleRate : 0;
    return S_OK;
}

HRESULT RefClip::GetAudioSampleCount(uint64_t* sampleCount)
{
    if (!sampleCount)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("ClipAudio.GetAudioSampleCount"); hr != S_OK)
        return hr;
    const std::shared_ptr<const RefClipModel> model = m_data->model();
    *sampleCount = model->audio.present ? model->effectiveAudioSampleCount() : 0;
    return S_OK;
}

HRESULT RefClip::GetAudioSamples(int64_t sampleFrameIndex, void* buffer, uint32_t bufferSizeBytes,
                                 uint32_t maxSampleCount, uint32_t* samplesRead, uint32_t* bytesRead)
{
    if (!buffer)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("ClipAudio.GetAudioSamples", sampleFrameIndex); hr != S_OK)
        return hr;
    const std::shared_ptr<const RefClipModel> model = m_data->model();
    uint32_t samples = 0, bytes = 0;
    if (model->audio.present) {
        const uint64_t count = model->effectiveAudioSampleCount();
        if (sampleFrameIndex < 0 || uint64_t(sampleFrameIndex) > count)
            return E_INVALIDARG;
        const uint32_t frameBytes =
            RefAudioRenderer::bytesPerSample(model->audio.bitDepth) * model->audio.channelCount;
        if (maxSampleCount > 0 && uint64_t(sampleFrameIndex) < count && bufferSizeBytes < frameBytes)
            return E_INVALIDARG;
        samples = RefAudioRenderer::render(model->audio, count, sampleFrameIndex, maxSampleCount, buffer,
                                           bufferSizeBytes, &bytes);
    }
    if (samplesRead)
        *samplesRead = samples;
    if (bytesRead)
        *bytesRead = bytes;
    return S_OK;
}

}  // namespace twref
