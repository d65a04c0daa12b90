#include "Library/RefFactory.h"

#include "Library/RefClipGeometry.h"
#include "Library/RefCodec.h"
#include "Library/RefPipelines.h"

namespace twref {

RefFactory::RefFactory(std::shared_ptr<const RefLibraryConfig> config)
    : RefLibObject("Factory"),
      m_config(std::move(config)),
      m_hooks(std::make_shared<RefFaultHooks>(m_config->faults, m_config->delays))
{
}

HRESULT RefFactory::QueryInterface(REFIID iid, LPVOID* out)
{
    if (!out)
        return E_POINTER;
    *out = nullptr;
    if (HRESULT hr = m_hooks->enter("Factory.QueryInterface", -1, 0, refInterfaceName(iid)); hr != S_OK)
        return hr;
    if (!refSameIid(iid, IID_IUnknown) && !refSameIid(iid, IID_IBlackmagicRawFactory))
        return E_NOINTERFACE;
    AddRef();
    *out = static_cast<IBlackmagicRawFactory*>(this);
    return S_OK;
}

HRESULT RefFactory::CreateCodec(IBlackmagicRaw** codec)
{
    if (!codec)
        return E_POINTER;
    *codec = nullptr;
    if (HRESULT hr = m_hooks->enter("Factory.CreateCodec"); hr != S_OK)
        return hr;
    *codec = new RefCodec(m_config);
    return S_OK;
}

// Interop none lists every pipeline; another interop lists those that offer it.
HRESULT RefFactory::CreatePipelineIterator(BlackmagicRawInterop interop,
                                           IBlackmagicRawPipelineIterator** pipelineIterator)
{
    if (!pipelineIterator)
        return E_POINTER;
    *pipelineIterator = nullptr;
    if (HRESULT hr = m_hooks->enter("Factory.CreatePipelineIterator"); hr != S_OK)
        return hr;
    if (interop != blackmagicRawInteropNone && interop != blackmagicRawInteropOpenGL)
        return E_INVALIDARG;
    std::vector<RefPipelineConfig> pipelines;
    for (const RefPipelineConfig& p : m_config->pipelines)
        if (interop == blackmagicRawInteropNone || p.interop == interop)
            pipelines.push_back(p);
    *pipelineIterator = new RefPipelineIterator(std::move(pipelines), m_hooks);
    return S_OK;
}

HRESULT RefFactory::CreatePipelineDeviceIterator(BlackmagicRawPipeline pipeline, BlackmagicRawInterop interop,
                                                 IBlackmagicRawPipelineDeviceIterator** deviceIterator)
{
    if (!deviceIterator)
        return E_POINTER;
    *deviceIterator = nullptr;
    if (HRESULT hr = m_hooks->enter("Factory.CreatePipelineDeviceIterator"); hr != S_OK)
        return hr;
    const RefPipelineConfig* p = m_config->pipeline(pipeline);
    if (!p || (interop != blackmagicRawInteropNone && p->interop != interop))
        return E_INVALIDARG;
    *deviceIterator = new RefPipelineDeviceIterator(*p, m_hooks);
    return S_OK;
}

HRESULT RefFactory::CreateClipGeometry(IBlackmagicRawClipGeometry** geometry)
{
    if (!geometry)
        return E_POINTER;
    *geometry = nullptr;
    if (HRESULT hr = m_hooks->enter("Factory.CreateClipGeometry"); hr != S_OK)
        return hr;
    *geometry = new RefClipGeometry(m_hooks);
    return S_OK;
}

}  // namespace twref
