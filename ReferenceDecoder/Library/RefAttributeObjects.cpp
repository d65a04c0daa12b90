#include "Library/RefAttributeObjects.h"

#include "Library/RefPost3DLUT.h"

namespace twref {

std::shared_ptr<RefAttributeSet> refAttributesOf(IBlackmagicRawClipProcessingAttributes* object)
{
    const RefAttributeHolder* holder = dynamic_cast<const RefAttributeHolder*>(object);
    return holder ? holder->attributeSet() : nullptr;
}

std::shared_ptr<RefAttributeSet> refAttributesOf(IBlackmagicRawFrameProcessingAttributes* object)
{
    const RefAttributeHolder* holder = dynamic_cast<const RefAttributeHolder*>(object);
    return holder ? holder->attributeSet() : nullptr;
}

HRESULT refPost3DLUTOf(const RefAttributeSet& attributes, BlackmagicRawResourceType gpuType, const RefHooks& hooks,
                       IBlackmagicRawPost3DLUT** lut)
{
    *lut = nullptr;
    std::shared_ptr<const RefLut> active = attributes.activeLut();
    if (active)
        *lut = new RefPost3DLUT(std::move(active), gpuType, hooks);
    return S_OK;
}

// ---- clip attributes ------------------------------------------------------------

RefClipProcessingAttributes::RefClipProcessingAttributes(std::shared_ptr<RefAttributeSet> attributes,
                                                         BlackmagicRawResourceType gpuType, RefHooks hooks)
    : RefLibObject("ClipProcessingAttributes"),
      m_attributes(std::move(attributes)),
      m_gpuType(gpuType),
      m_hooks(std::move(hooks))
{
}

HRESULT RefClipProcessingAttributes::QueryInterface(REFIID iid, LPVOID* out)
{
    if (!out)
        return E_POINTER;
    *out = nullptr;
    if (HRESULT hr = m_hooks.enter("ClipProcessingAttributes.QueryInterface", -1, 0, refInterfaceName(iid));
        hr != S_OK)
        return hr;
    if (!refSameIid(iid, IID_IUnknown) && !refSameIid(iid, IID_IBlackmagicRawClipProcessingAttributes))
        return E_NOINTERFACE;
    AddRef();
    *out = static_cast<IBlackmagicRawClipProcessingAttributes*>(this);
    return S_OK;
}

HRESULT RefClipProcessingAttributes::GetClipAttribute(BlackmagicRawClipProcessingAttribute attribute, Variant* value)
{
    if (HRESULT hr = m_hooks.enter("ClipProcessingAttributes.GetClipAttribute", -1, attribute); hr != S_OK)
        return hr;
    return m_attributes->get(RefAttributeSet::Side::Clip, attribute, value);
}

HRESULT RefClipProcessingAttributes::SetClipAttribute(BlackmagicRawClipProcessingAttribute attribute, Variant* value)
{
    if (HRESULT hr = m_hooks.enter("ClipProcessingAttributes.SetClipAttribute", -1, attribute); hr != S_OK)
        return hr;
    return m_attributes->set(RefAttributeSet::Side::Clip, attribute, value);
}

HRESULT RefClipProcessingAttributes::GetClipAttributeRange(BlackmagicRawClipProcessingAttribute attribute,
                                                           Variant* valueMin, Variant* valueMax, bool* isReadOnly)
{
    if (HRESULT hr = m_hooks.enter("ClipProcessingAttributes.GetClipAttributeRange", -1, attribute); hr != S_OK)
        return hr;
    return m_attributes->range(RefAttributeSet::Side::Clip, attribute, valueMin, valueMax, isReadOnly);
}

HRESULT RefClipProcessingAttributes::GetClipAttributeList(BlackmagicRawClipProcessingAttribute attribute,
                                                          Variant* array, uint32_t* arrayElementCount,
                                                          bool* isReadOnly)
{
    if (HRESULT hr = m_hooks.enter("ClipProcessingAttributes.GetClipAttributeList", -1, attribute); hr != S_OK)
        return hr;
    return m_attributes->list(RefAttributeSet::Side::Clip, attribute, array, arrayElementCount, isReadOnly);
}

HRESULT RefClipProcessingAttributes::GetISOList(uint32_t* array, uint32_t* arrayElementCount, bool* isReadOnly)
{
    if (HRESULT hr = m_hooks.enter("ClipProcessingAttributes.GetISOList"); hr != S_OK)
        return hr;
    return m_attributes->isoList(array, arrayElementCount, isReadOnly);
}

HRESULT RefClipProcessingAttributes::GetPost3DLUT(IBlackmagicRawPost3DLUT** lut)
{
    if (!lut)
        return E_POINTER;
    *lut = nullptr;
    if (HRESULT hr = m_hooks.enter("ClipProcessingAttributes.GetPost3DLUT"); hr != S_OK)
        return hr;
    return refPost3DLUTOf(*m_attributes, m_gpuType, m_hooks, lut);
}

// ---- frame attributes -----------------------------------------------------------

RefFrameProcessingAttributes::RefFrameProcessingAttributes(std::shared_ptr<RefAttributeSet> attributes,
                                                           RefHooks hooks, int64_t frame)
    : RefLibObject("FrameProcessingAttributes"),
      m_attributes(std::move(attributes)),
      m_hooks(std::move(hooks)),
      m_frame(frame)
{
}

HRESULT RefFrameProcessingAttributes::QueryInterface(REFIID iid, LPVOID* out)
{
    if (!out)
        return E_POINTER;
    *out = nullptr;
    if (HRESULT hr = m_hooks.enter("FrameProcessingAttributes.QueryInterface", m_frame, 0, refInterfaceName(iid));
        hr != S_OK)
        return hr;
    if (!refSameIid(iid, IID_IUnknown) && !refSameIid(iid, IID_IBlackmagicRawFrameProcessingAttributes))
        return E_NOINTERFACE;
    AddRef();
    *out = static_cast<IBlackmagicRawFrameProcessingAttributes*>(this);
    return S_OK;
}

HRESULT RefFrameProcessingAttributes::GetFrameAttribute(BlackmagicRawFrameProcessingAttribute attribute,
                                                        Variant* value)
{
    if (HRESULT hr = m_hooks.enter("FrameProcessingAttributes.GetFrameAttribute", m_frame, attribute); hr != S_OK)
        return hr;
    return m_attributes->get(RefAttributeSet::Side::Frame, attribute, value);
}

HRESULT RefFrameProcessingAttributes::SetFrameAttribute(BlackmagicRawFrameProcessingAttribute attribute,
                                                        Variant* value)
{
    if (HRESULT hr = m_hooks.enter("FrameProcessingAttributes.SetFrameAttribute", m_frame, attribute); hr != S_OK)
        return hr;
    return m_attributes->set(RefAttributeSet::Side::Frame, attribute, value);
}

HRESULT RefFrameProcessingAttributes::GetFrameAttributeRange(BlackmagicRawFrameProcessingAttribute attribute,
                                                             Variant* valueMin, Variant* valueMax, bool* isReadOnly)
{
    if (HRESULT hr = m_hooks.enter("FrameProcessingAttributes.GetFrameAttributeRange", m_frame, attribute);
        hr != S_OK)
        return hr;
    return m_attributes->range(RefAttributeSet::Side::Frame, attribute, valueMin, valueMax, isReadOnly);
}

HRESULT RefFrameProcessingAttributes::GetFrameAttributeList(BlackmagicRawFrameProcessingAttribute attribute,
                                                            Variant* array, uint32_t* arrayElementCount,
                                                            bool* isReadOnly)
{
    if (HRESULT hr = m_hooks.enter("FrameProcessingAttributes.GetFrameAttributeList", m_frame, attribute);
        hr != S_OK)
        return hr;
    return m_attributes->list(RefAttributeSet::Side::Frame, attribute, array, arrayElementCount, isReadOnly);
}

HRESULT RefFrameProcessingAttributes::GetISOList(uint32_t* array, uint32_t* arrayElementCount, bool* isReadOnly)
{
    if (HRESULT hr = m_hooks.enter("FrameProcessingAttributes.GetISOList", m_frame); hr != S_OK)
        return hr;
    return m_attributes->isoList(array, arrayElementCount, isReadOnly);
}

}  // namespace twref
