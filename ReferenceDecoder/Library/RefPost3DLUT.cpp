#include "Library/RefPost3DLUT.h"

namespace twref {

RefPost3DLUT::RefPost3DLUT(std::shared_ptr<const RefLut> lut, BlackmagicRawResourceType gpuType, RefHooks hooks)
    : RefLibObject("Post3DLUT"), m_lut(std::move(lut)), m_gpuType(gpuType), m_hooks(std::move(hooks))
{
}

HRESULT RefPost3DLUT::QueryInterface(REFIID iid, LPVOID* out)
{
    if (!out)
        return E_POINTER;
    *out = nullptr;
    if (HRESULT hr = m_hooks.enter("Post3DLUT.QueryInterface", -1, 0, refInterfaceName(iid)); hr != S_OK)
        return hr;
    if (!refSameIid(iid, IID_IUnknown) && !refSameIid(iid, IID_IBlackmagicRawPost3DLUT))
        return E_NOINTERFACE;
    AddRef();
    *out = static_cast<IBlackmagicRawPost3DLUT*>(this);
    return S_OK;
}

HRESULT RefPost3DLUT::GetName(const char** name)
{
    if (!name)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("Post3DLUT.GetName"); hr != S_OK)
        return hr;
    *name = m_lut->name.c_str();
    return S_OK;
}

HRESULT RefPost3DLUT::GetTitle(const char** title)
{
    if (!title)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("Post3DLUT.GetTitle"); hr != S_OK)
        return hr;
    *title = m_lut->title.c_str();
    return S_OK;
}

HRESULT RefPost3DLUT::GetSize(uint32_t* size)
{
    if (!size)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("Post3DLUT.GetSize"); hr != S_OK)
        return hr;
    *size = m_lut->size;
    return S_OK;
}

// Without a device the table's host memory stands in for the GPU resource,
// typed as the codec's pipeline would type it.
HRESULT RefPost3DLUT::GetResourceGPU(void*, void*, BlackmagicRawResourceType* type, void** resource)
{
    if (!type || !resource)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("Post3DLUT.GetResourceGPU"); hr != S_OK)
        return hr;
    *type = m_gpuType;
    *resource = const_cast<float*>(m_lut->data.data());
    return S_OK;
}

HRESULT RefPost3DLUT::GetResourceCPU(void** resource)
{
    if (!resource)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("Post3DLUT.GetResourceCPU"); hr != S_OK)
        return hr;
    *resource = const_cast<float*>(m_lut->data.data());
    return S_OK;
}

HRESULT RefPost3DLUT::GetResourceSizeBytes(uint32_t* sizeBytes)
{
    if (!sizeBytes)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("Post3DLUT.GetResourceSizeBytes"); hr != S_OK)
        return hr;
    *sizeBytes = uint32_t(m_lut->data.size() * sizeof(float));
    return S_OK;
}

HRESULT RefPost3DLUT::WriteCubeFile(const char*)
{
    return E_NOTIMPL;
}

}  // namespace twref
