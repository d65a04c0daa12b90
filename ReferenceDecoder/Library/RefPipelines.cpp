#include "Library/RefPipelines.h"

namespace twref {
namespace {

template <class I>
HRESULT queryOne(I* self, const char* name, RefFaultHooks& hooks, REFIID iid, const REFIID& own, LPVOID* out)
{
    if (!out)
        return E_POINTER;
    *out = nullptr;
    const HRESULT hr = hooks.enter(name, -1, 0, refInterfaceName(iid));
    if (hr != S_OK)
        return hr;
    if (!refSameIid(iid, IID_IUnknown) && !refSameIid(iid, own))
        return E_NOINTERFACE;
    self->AddRef();
    *out = self;
    return S_OK;
}

}  // namespace

// ---- pipeline iterator --------------------------------------------------------

RefPipelineIterator::RefPipelineIterator(std::vector<RefPipelineConfig> pipelines,
                                         std::shared_ptr<RefFaultHooks> hooks)
    : RefLibObject("PipelineIterator"), m_pipelines(std::move(pipelines)), m_hooks(std::move(hooks))
{
}

HRESULT RefPipelineIterator::QueryInterface(REFIID iid, LPVOID* out)
{
    return queryOne<IBlackmagicRawPipelineIterator>(this, "PipelineIterator.QueryInterface", *m_hooks, iid,
                                                    IID_IBlackmagicRawPipelineIterator, out);
}

const RefPipelineConfig* RefPipelineIterator::current() const
{
    return m_index < m_pipelines.size() ? &m_pipelines[m_index] : nullptr;
}

HRESULT RefPipelineIterator::Next()
{
    if (HRESULT hr = m_hooks->enter("PipelineIterator.Next"); hr != S_OK)
        return hr;
    if (m_index + 1 < m_pipelines.size()) {
        ++m_index;
        return S_OK;
    }
    m_index = m_pipelines.size();
    return S_FALSE;
}

HRESULT RefPipelineIterator::GetName(const char** pipelineName)
{
    if (!pipelineName)
        return E_POINTER;
    if (HRESULT hr = m_hooks->enter("PipelineIterator.GetName"); hr != S_OK)
        return hr;
    const RefPipelineConfig* p = current();
    if (!p)
        return E_FAIL;
    *pipelineName = p->name.c_str();
    return S_OK;
}

HRESULT RefPipelineIterator::GetInterop(BlackmagicRawInterop* interop)
{
    if (!interop)
        return E_POINTER;
    if (HRESULT hr = m_hooks->enter("PipelineIterator.GetInterop"); hr != S_OK)
        return hr;
    const RefPipelineConfig* p = current();
    if (!p)
        return E_FAIL;
    *interop = p->interop;
    return S_OK;
}

HRESULT RefPipelineIterator::GetPipeline(BlackmagicRawPipeline* pipeline)
{
    if (!pipeline)
        return E_POINTER;
    if (HRESULT hr = m_hooks->enter("PipelineIterator.GetPipeline"); hr != S_OK)
        return hr;
    const RefPipelineConfig* p = current();
    if (!p)
        return E_FAIL;
    *pipeline = p->pipeline;
    return S_OK;
}

// ---- device iterator ----------------------------------------------------------

RefPipelineDeviceIterator::RefPipelineDeviceIterator(RefPipelineConfig pipeline, std::shared_ptr<RefFaultHooks> hooks)
    : RefLibObject("PipelineDeviceIterator"), m_pipeline(std::move(pipeline)), m_hooks(std::move(hooks))
{
}

HRESULT RefPipelineDeviceIterator::QueryInterface(REFIID iid, LPVOID* out)
{
    return queryOne<IBlackmagicRawPipelineDeviceIterator>(this, "PipelineDeviceIterator.QueryInterface", *m_hooks,
                                                          iid, IID_IBlackmagicRawPipelineDeviceIterator, out);
}

HRESULT RefPipelineDeviceIterator::Next()
{
    if (HRESULT hr = m_hooks->enter("PipelineDeviceIterator.Next"); hr != S_OK)
        return hr;
    if (m_index + 1 < m_pipeline.devices.size()) {
        ++m_index;
        return S_OK;
    }
    m_index = m_pipeline.devices.size();
    return S_FALSE;
}

HRESULT RefPipelineDeviceIterator::GetPipeline(BlackmagicRawPipeline* pipeline)
{
    if (!pipeline)
        return E_POINTER;
    if (HRESULT hr = m_hooks->enter("PipelineDeviceIterator.GetPipeline"); hr != S_OK)
        return hr;
    *pipeline = m_pipeline.pipeline;
    return S_OK;
}

HRESULT RefPipelineDeviceIterator::GetInterop(BlackmagicRawInterop* interop)
{
    if (!interop)
        return E_POINTER;
    if (HRESULT hr = m_hooks->enter("PipelineDeviceIterator.GetInterop"); hr != S_OK)
        return hr;
    *interop = m_pipeline.interop;
    return S_OK;
}

HRESULT RefPipelineDeviceIterator::CreateDevice(IBlackmagicRawPipelineDevice** pipelineDevice)
{
    if (!pipelineDevice)
        return E_POINTER;
    *pipelineDevice = nullptr;
    if (HRESULT hr = m_hooks->enter("PipelineDeviceIterator.CreateDevice", int64_t(m_index)); hr != S_OK)
        return hr;
    if (m_index >= m_pipeline.devices.size())
        return E_FAIL;
    *pipelineDevice = new RefPipelineDevice(m_pipeline, m_pipeline.devices[m_index], m_hooks);
    return S_OK;
}

// ---- device -------------------------------------------------------------------

RefPipelineDevice::RefPipelineDevice(const RefPipelineConfig& pipeline, RefDeviceConfig device,
                                     std::shared_ptr<RefFaultHooks> hooks)
    : RefLibObject("PipelineDevice"),
      m_pipeline(pipeline.pipeline),
      m_interop(pipeline.interop),
      m_pipelineName(pipeline.name),
      m_device(std::move(device)),
      m_hooks(std::move(hooks))
{
}

HRESULT RefPipelineDevice::QueryInterface(REFIID iid, LPVOID* out)
{
    return queryOne<IBlackmagicRawPipelineDevice>(this, "PipelineDevice.QueryInterface", *m_hooks, iid,
                                                  IID_IBlackmagicRawPipelineDevice, out);
}

HRESULT RefPipelineDevice::SetBestInstructionSet()
{
    return E_NOTIMPL;
}

HRESULT RefPipelineDevice::SetInstructionSet(BlackmagicRawInstructionSet)
{
    return E_NOTIMPL;
}

HRESULT RefPipelineDevice::GetInstructionSet(BlackmagicRawInstructionSet* instructionSet)
{
    if (!instructionSet)
        return E_POINTER;
    if (HRESULT hr = m_hooks->enter("PipelineDevice.GetInstructionSet"); hr != S_OK)
        return hr;
    *instructionSet = m_device.instructionSet;
    return S_OK;
}

HRESULT RefPipelineDevice::GetIndex(uint32_t* deviceIndex)
{
    if (!deviceIndex)
        return E_POINTER;
    if (HRESULT hr = m_hooks->enter("PipelineDevice.GetIndex"); hr != S_OK)
        return hr;
    *deviceIndex = m_device.index;
    return S_OK;
}

HRESULT RefPipelineDevice::GetName(const char** deviceName)
{
    if (!deviceName)
        return E_POINTER;
    if (HRESULT hr = m_hooks->enter("PipelineDevice.GetName"); hr != S_OK)
        return hr;
    *deviceName = m_device.name.c_str();
    return S_OK;
}

HRESULT RefPipelineDevice::GetInterop(BlackmagicRawInterop* interop)
{
    if (!interop)
        return E_POINTER;
    if (HRESULT hr = m_hooks->enter("PipelineDevice.GetInterop"); hr != S_OK)
        return hr;
    *interop = m_interop;
    return S_OK;
}

HRESULT RefPipelineDevice::GetPipeline(BlackmagicRawPipeline* pipeline, void** context, void** commandQueue)
{
    if (!pipeline || !context || !commandQueue)
        return E_POINTER;
    if (HRESULT hr = m_hooks->enter("PipelineDevice.GetPipeline"); hr != S_OK)
        return hr;
    *pipeline = m_pipeline;
    *context = reinterpret_cast<void*>(uintptr_t(m_device.context));
    *commandQueue = reinterpret_cast<void*>(uintptr_t(m_device.commandQueue));
    return S_OK;
}

HRESULT RefPipelineDevice::GetPipelineName(const char** pipelineName)
{
    if (!pipelineName)
        return E_POINTER;
    if (HRESULT hr = m_hooks->enter("PipelineDevice.GetPipelineName"); hr != S_OK)
        return hr;
    *pipelineName = m_pipelineName.c_str();
    return S_OK;
}

HRESULT RefPipelineDevice::GetOpenGLInteropHelper(IBlackmagicRawOpenGLInteropHelper** interopHelper)
{
    if (interopHelper)
        *interopHelper = nullptr;
    return E_NOTIMPL;
}

HRESULT RefPipelineDevice::GetSupportedResourceFormats(BlackmagicRawResourceFormat*, uint32_t*)
{
    return E_NOTIMPL;
}

HRESULT RefPipelineDevice::GetMaximumTextureSize(uint32_t*, uint32_t*)
{
    return E_NOTIMPL;
}

}  // namespace twref
