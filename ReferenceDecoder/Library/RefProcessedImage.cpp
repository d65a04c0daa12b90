#include "Library/RefProcessedImage.h"

namespace twref {

RefProcessedImage::RefProcessedImage(const RefImageDescription& image, RefHooks hooks, int64_t frame)
    : RefLibObject("ProcessedImage"), m_image(image), m_hooks(std::move(hooks)), m_frame(frame)
{
}

HRESULT RefProcessedImage::QueryInterface(REFIID iid, LPVOID* out)
{
    if (!out)
        return E_POINTER;
    *out = nullptr;
    if (HRESULT hr = m_hooks.enter("ProcessedImage.QueryInterface", m_frame, 0, refInterfaceName(iid)); hr != S_OK)
        return hr;
    if (!refSameIid(iid, IID_IUnknown) && !refSameIid(iid, IID_IBlackmagicRawProcessedImage))
        return E_NOINTERFACE;
    AddRef();
    *out = static_cast<IBlackmagicRawProcessedImage*>(this);
    return S_OK;
}

HRESULT RefProcessedImage::GetWidth(uint32_t* width)
{
    if (!width)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("ProcessedImage.GetWidth", m_frame); hr != S_OK)
        return hr;
    *width = m_image.width;
    return S_OK;
}

HRESULT RefProcessedImage::GetHeight(uint32_t* height)
{
    if (!height)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("ProcessedImage.GetHeight", m_frame); hr != S_OK)
        return hr;
    *height = m_image.height;
    return S_OK;
}

HRESULT RefProcessedImage::GetResource(void** resource)
{
    if (!resource)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("ProcessedImage.GetResource", m_frame); hr != S_OK)
        return hr;
    *resource = m_image.resource;
    return S_OK;
}

HRESULT RefProcessedImage::GetResourceType(BlackmagicRawResourceType* type)
{
    if (!type)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("ProcessedImage.GetResourceType", m_frame); hr != S_OK)
        return hr;
    *type = m_image.type;
    return S_OK;
}

HRESULT RefProcessedImage::GetResourceFormat(BlackmagicRawResourceFormat* format)
{
    if (!format)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("ProcessedImage.GetResourceFormat", m_frame); hr != S_OK)
        return hr;
    *format = m_image.format;
    return S_OK;
}

HRESULT RefProcessedImage::GetResourceSizeBytes(uint32_t* sizeBytes)
{
    if (!sizeBytes)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("ProcessedImage.GetResourceSizeBytes", m_frame); hr != S_OK)
        return hr;
    *sizeBytes = m_image.sizeBytes;
    return S_OK;
}

HRESULT RefProcessedImage::GetResourceContextAndCommandQueue(void** context, void** commandQueue)
{
    if (!context || !commandQueue)
        return E_POINTER;
    if (HRESULT hr = m_hooks.enter("ProcessedImage.GetResourceContextAndCommandQueue", m_frame); hr != S_OK)
        return hr;
    *context = m_image.context;
    *commandQueue = m_image.commandQueue;
    return S_OK;
}

}  // namespace twref
