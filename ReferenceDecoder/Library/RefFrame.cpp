#include "Library/RefFrame.h"

#include "Format/RefTimecode.h"
#include "Library/RefMetadataIterator.h"
#include "Library/RefVariant.h"
#include "Render/RefRenderer.h"

#include <cstring>
#include <limits>

namespace twref {
namespace {

// The frame's own attributes: the clip's frame attributes with this frame's
// as-shot values.
std::vector<RefAttribute> frameAttributesOf(const RefClipModel& model, uint64_t index)
{
    std::vector<RefAttribute> list = model.frameAttributes;
    for (RefAttribute& a : list) {
        const RefValue v = model.frameAttributeValueOf(index, a.id);
        if (v.type != RefVariantType::Empty)
            a.value = v;
    }
    return list;
}

}  // namespace

RefFrame::RefFrame(std::shared_ptr<RefClipData> clip, const RefViewGeometry& geometry, uint64_t index,
                   uint32_t bitStreamBytes)
    : RefLibObject("Frame"),
      m_clip(std::move(clip)),
      m_model(m_clip->model()),
      m_geometry(geometry),
      m_index(index),
      m_bitStreamBytes(bitStreamBytes),
      m_hooks(m_clip->hooks()),
      m_timecode(RefTimecode::forFrame(*m_model, index)),
      m_metadata(m_model->metadataOfFrame(index)),
      m_attributes(std::make_shared<RefAttributeSet>(m_model->clipAttributes, frameAttributesOf(*m_model, index),
                                                     m_clip->embeddedLut(), m_clip->sidecarLut()))
{
}

HRESULT RefFrame::QueryInterface(REFIID iid, LPVOID* out)
{
    if (!out)
        return E_POINTER;
    *out = nullptr;
    if (HRESULT hr = m_hooks.enter("Frame.QueryInterface", int64_t(m_index), 0, refInterfaceName(iid)); hr != S_OK)
        return hr;
    if (refSameIid(iid, IID_IUnknown) || refSameIid(iid, IID_IBlackmagicRawFrame))
        *out = static_cast<IBlackmagicRawFrame*>(this);
    else if (refSameIid(iid, IID_IBlackmagicRawFrameEx))
        *out = static_cast<IBlackmagicRawFrameEx*>(this);
    else if (refSameIid(iid, IID_IBlackmagicRawClipProcessingAttributes))
        *out = static_cast<IBlackmagicRawClipProcessingAttributes*>(this);
    else
        return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

HRESULT RefFrame::describe(RefFrameState& state, IBlackmagicRawClipProcessingAttributes* clipAttributes,
                           IBlackmagicRawFrameProcessingAttributes* frameAttributes) const
{
    // Settings: the frame's own, overridden by what the caller hands in.
    RefAttributeSet settings(m_attributes->clipAttributes(), m_attributes->frameAttributes(), m_clip->embeddedLut(),
                             m_clip->sidecarLut());
    if (clipAttributes) {
        std::shared_ptr<RefAttributeSet> given = refAttributesOf(clipAttributes);
        if (!given)
            return E_INVALIDARG;
        settings.takeClipValuesFrom(*given);
    }
    if (frameAttributes) {
        std::shared_ptr<RefAttributeSet> given = refAttributesOf(frameAttributes);
        if (!given)
            return E_INVALIDARG;
        settings.takeFrameValuesFrom(*given);
    }

    uint32_t width = 0, height = 0;
    if (!m_geometry.sizeForScale(*m_model, m_scale.load(), width, height) || width == 0 || height == 0)
        return E_INVALIDARG;
    const RefResourceFormat format = static_cast<RefResourceFormat>(m_format.load());
    const size_t processed = RefRenderer::resourceSizeBytes(format, width, height);
    if (processed == 0 || processed > std::numeric_limits<uint32_t>::max() / 2)
        return E_INVALIDARG;

    std::memset(&state, 0, sizeof state);
    state.clipId = m_clip->id();
    state.frameIndex = m_index;
    state.bitStreamBytes = m_bitStreamBytes;
    state.resourceFormat = m_format.load();
    state.resolutionScale = m_scale.load();
    state.width = width;
    state.height = height;
    state.flags = (m_geometry.flipVertical() ? RefFrameState::kFlipVertical : 0) |
                  (m_geometry.flipHorizontal() ? RefFrameState::kFlipHorizontal : 0);
    const std::shared_ptr<const RefLut> lut = settings.activeLut();
    state.lutSize = lut ? lut->size : 0;
    // Neutral is what the camera shot, not what a sidecar asks for.
    state.setSettings(RefRenderSettings::fromAttributes(settings.clipAttributes(), settings.frameAttributes(),
                                                        m_clip->fileModel()));
    state.seal();
    return S_OK;
}

// ---- IBlackmagicRawFrame ----------------------------------------------------------

HRESULT RefFrame::GetFrameIndex(uint64_t* frameIndex)
{
    if (!frameIndex)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("Frame.GetFrameIndex", int64_t(m_index)); hr != S_OK)
        return hr;
    *frameIndex = m_index;
    return S_OK;
}

HRESULT RefFrame::GetTimecode(const char** timecode)
{
    if (!timecode)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("Frame.GetTimecode", int64_t(m_index)); hr != S_OK)
        return hr;
    *timecode = m_timecode.c_str();
    return S_OK;
}

HRESULT RefFrame::GetMetadataIterator(IBlackmagicRawMetadataIterator** iterator)
{
    if (!iterator)
        return E_POINTER;
    *iterator = nullptr;
    if (HRESULT hr = m_hooks.enter("Frame.GetMetadataIterator", int64_t(m_index)); hr != S_OK)
        return hr;
    *iterator = new RefMetadataIterator(m_metadata, m_hooks, int64_t(m_index));
    return S_OK;
}

HRESULT RefFrame::GetMetadata(const char* key, Variant* value)
{
    if (!key || !value)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("Frame.GetMetadata", int64_t(m_index), 0, key); hr != S_OK)
        return hr;
    for (const RefMetadataEntry& entry : m_metadata)
        if (entry.key == key)
            return refValueToVariant(entry.value, value);
    return E_INVALIDARG;
}

HRESULT RefFrame::SetMetadata(const char*, Variant*)
{
    return E_NOTIMPL;
}

HRESULT RefFrame::CloneFrameProcessingAttributes(IBlackmagicRawFrameProcessingAttributes** frameProcessingAttributes)
{
    if (!frameProcessingAttributes)
        return E_POINTER;
    *frameProcessingAttributes = nullptr;
    if (HRESULT hr = m_hooks.enter("Frame.CloneFrameProcessingAttributes", int64_t(m_index)); hr != S_OK)
        return hr;
    auto clone = std::make_shared<RefAttributeSet>(std::vector<RefAttribute>(), m_attributes->frameAttributes(),
                                                   nullptr, nullptr);
    *frameProcessingAttributes = new RefFrameProcessingAttributes(std::move(clone), m_hooks, int64_t(m_index));
    return S_OK;
}

HRESULT RefFrame::SetResolutionScale(BlackmagicRawResolutionScale resolutionScale)
{
    if (HRESULT hr = m_hooks.enter("Frame.SetResolutionScale", int64_t(m_index)); hr != S_OK)
        return hr;
    uint32_t width = 0, height = 0;
    if (!m_geometry.sizeForScale(*m_model, resolutionScale, width, height))
        return E_INVALIDARG;
    m_scale.store(resolutionScale);
    return S_OK;
}

HRESULT RefFrame::GetResolutionScale(BlackmagicRawResolutionScale* resolutionScale)
{
    if (!resolutionScale)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("Frame.GetResolutionScale", int64_t(m_index)); hr != S_OK)
        return hr;
    *resolutionScale = m_scale.load();
    return S_OK;
}

HRESULT RefFrame::SetResourceFormat(BlackmagicRawResourceFormat resourceFormat)
{
    if (HRESULT hr = m_hooks.enter("Frame.SetResourceFormat", int64_t(m_index)); hr != S_OK)
        return hr;
    if (!RefRenderer::isKnownFormat(static_cast<RefResourceFormat>(resourceFormat)))
        return E_INVALIDARG;
    m_format.store(resourceFormat);
    return S_OK;
}

HRESULT RefFrame::GetResourceFormat(BlackmagicRawResourceFormat* resourceFormat)
{
    if (!resourceFormat)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("Frame.GetResourceFormat", int64_t(m_index)); hr != S_OK)
        return hr;
    *resourceFormat = m_format.load();
    return S_OK;
}

HRESULT RefFrame::GetSensorRate(float* sensorRate)
{
    if (!sensorRate)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("Frame.GetSensorRate", int64_t(m_index)); hr != S_OK)
        return hr;
    *sensorRate = m_model->sensorRate != 0.0f ? m_model->sensorRate : m_model->frameRate;
    return S_OK;
}

HRESULT RefFrame::CreateJobDecodeAndProcessFrame(IBlackmagicRawClipProcessingAttributes*,
                                                 IBlackmagicRawFrameProcessingAttributes*, IBlackmagicRawJob** job)
{
    if (job)
        *job = nullptr;
    return E_NOTIMPL;
}

// ---- IBlackmagicRawFrameEx --------------------------------------------------------

HRESULT RefFrame::GetBitStreamSizeBytes(uint32_t* bitStreamSizeBytes)
{
    if (!bitStreamSizeBytes)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("FrameEx.GetBitStreamSizeBytes", int64_t(m_index)); hr != S_OK)
        return hr;
    *bitStreamSizeBytes = m_bitStreamBytes;
    return S_OK;
}

HRESULT RefFrame::GetProcessedImageResolution(uint32_t* width, uint32_t* height)
{
    if (!width || !height)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("FrameEx.GetProcessedImageResolution", int64_t(m_index)); hr != S_OK)
        return hr;
    return m_geometry.sizeForScale(*m_model, m_scale.load(), *width, *height) ? S_OK : E_FAIL;
}

// ---- the frame's decode settings ----------------------------------------------------

HRESULT RefFrame::GetClipAttribute(BlackmagicRawClipProcessingAttribute attribute, Variant* value)
{
    if (HRESULT hr = m_hooks.enter("Frame.GetClipAttribute", int64_t(m_index), attribute); hr != S_OK)
        return hr;
    return m_attributes->get(RefAttributeSet::Side::Both, attribute, value);
}

HRESULT RefFrame::SetClipAttribute(BlackmagicRawClipProcessingAttribute attribute, Variant* value)
{
    if (HRESULT hr = m_hooks.enter("Frame.SetClipAttribute", int64_t(m_index), attribute); hr != S_OK)
        return hr;
    return m_attributes->set(RefAttributeSet::Side::Both, attribute, value);
}

HRESULT RefFrame::GetClipAttributeRange(BlackmagicRawClipProcessingAttribute attribute, Variant* valueMin,
                                        Variant* valueMax, bool* isReadOnly)
{
    if (HRESULT hr = m_hooks.enter("Frame.GetClipAttributeRange", int64_t(m_index), attribute); hr != S_OK)
        return hr;
    return m_attributes->range(RefAttributeSet::Side::Both, attribute, valueMin, valueMax, isReadOnly);
}

HRESULT RefFrame::GetClipAttributeList(BlackmagicRawClipProcessingAttribute attribute, Variant* array,
                                       uint32_t* arrayElementCount, bool* isReadOnly)
{
    if (HRESULT hr = m_hooks.enter("Frame.GetClipAttributeList", int64_t(m_index), attribute); hr != S_OK)
        return hr;
    return m_attributes->list(RefAttributeSet::Side::Both, attribute, array, arrayElementCount, isReadOnly);
}

HRESULT RefFrame::GetISOList(uint32_t* array, uint32_t* arrayElementCount, bool* isReadOnly)
{
    if (HRESULT hr = m_hooks.enter("Frame.GetISOList", int64_t(m_index)); hr != S_OK)
        return hr;
    return m_attributes->isoList(array, arrayElementCount, isReadOnly);
}

HRESULT RefFrame::GetPost3DLUT(IBlackmagicRawPost3DLUT** lut)
{
    if (!lut)
        return E_POINTER;
    *lut = nullptr;
    if (HRESULT hr = m_hooks.enter("Frame.GetPost3DLUT", int64_t(m_index)); hr != S_OK)
        return hr;
    return refPost3DLUTOf(*m_attributes, m_clip->core()->resourceType(), m_hooks, lut);
}

}  // namespace twref
