#include "Library/RefClipGeometry.h"

namespace twref {
namespace {

bool knownRatio(BlackmagicRawAnamorphicRatio r)
{
    switch (r) {
    case blackmagicRawAnamorphicRatioFromMetadata:
    case blackmagicRawAnamorphicRatioDisabled:
    case blackmagicRawAnamorphicRatio133x:
    case blackmagicRawAnamorphicRatio15x:
    case blackmagicRawAnamorphicRatio16x:
    case blackmagicRawAnamorphicRatio166x:
    case blackmagicRawAnamorphicRatio18x:
    case blackmagicRawAnamorphicRatio2x: return true;
    default: return false;
    }
}

bool knownFlip(BlackmagicRawFlip f)
{
    return f == blackmagicRawFlipFromMetadata || f == blackmagicRawFlipDisabled || f == blackmagicRawFlipHorizontal ||
           f == blackmagicRawFlipVertical || f == blackmagicRawFlipBoth;
}

}  // namespace

RefClipGeometry::RefClipGeometry(std::shared_ptr<RefFaultHooks> hooks)
    : RefLibObject("ClipGeometry"), m_hooks(std::move(hooks))
{
}

HRESULT RefClipGeometry::QueryInterface(REFIID iid, LPVOID* out)
{
    if (!out)
        return E_POINTER;
    *out = nullptr;
    if (HRESULT hr = m_hooks->enter("ClipGeometry.QueryInterface", -1, 0, refInterfaceName(iid)); hr != S_OK)
        return hr;
    if (!refSameIid(iid, IID_IUnknown) && !refSameIid(iid, IID_IBlackmagicRawClipGeometry))
        return E_NOINTERFACE;
    AddRef();
    *out = static_cast<IBlackmagicRawClipGeometry*>(this);
    return S_OK;
}

HRESULT RefClipGeometry::GetAnamorphicRatio(BlackmagicRawAnamorphicRatio* anamorphic)
{
    if (!anamorphic)
        return E_POINTER;
    if (HRESULT hr = m_hooks->enter("ClipGeometry.GetAnamorphicRatio"); hr != S_OK)
        return hr;
    *anamorphic = m_anamorphic.load();
    return S_OK;
}

HRESULT RefClipGeometry::SetAnamorphicRatio(BlackmagicRawAnamorphicRatio anamorphic)
{
    if (HRESULT hr = m_hooks->enter("ClipGeometry.SetAnamorphicRatio"); hr != S_OK)
        return hr;
    if (!knownRatio(anamorphic))
        return E_INVALIDARG;
    m_anamorphic.store(anamorphic);
    return S_OK;
}

HRESULT RefClipGeometry::GetRotation(BlackmagicRawRotation* rotation)
{
    if (!rotation)
        return E_POINTER;
    if (HRESULT hr = m_hooks->enter("ClipGeometry.GetRotation"); hr != S_OK)
        return hr;
    *rotation = m_rotation.load();
    return S_OK;
}

// Pictures are never rotated by this library.
HRESULT RefClipGeometry::SetRotation(BlackmagicRawRotation)
{
    return E_NOTIMPL;
}

HRESULT RefClipGeometry::GetFlip(BlackmagicRawFlip* flip)
{
    if (!flip)
        return E_POINTER;
    if (HRESULT hr = m_hooks->enter("ClipGeometry.GetFlip"); hr != S_OK)
        return hr;
    *flip = m_flip.load();
    return S_OK;
}

HRESULT RefClipGeometry::SetFlip(BlackmagicRawFlip flip)
{
    if (HRESULT hr = m_hooks->enter("ClipGeometry.SetFlip"); hr != S_OK)
        return hr;
    if (!knownFlip(flip))
        return E_INVALIDARG;
    m_flip.store(flip);
    return S_OK;
}

}  // namespace twref
