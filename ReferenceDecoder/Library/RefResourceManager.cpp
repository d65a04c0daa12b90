#include "Library/RefResourceManager.h"

#include <cstdlib>
#include <cstring>

namespace twref {
namespace {

bool knownType(BlackmagicRawResourceType type)
{
    return type == blackmagicRawResourceTypeBufferCPU || type == blackmagicRawResourceTypeBufferCUDA ||
           type == blackmagicRawResourceTypeBufferOpenCL || type == blackmagicRawResourceTypeBufferMetal;
}

bool knownUsage(BlackmagicRawResourceUsage usage)
{
    return usage == blackmagicRawResourceUsageReadCPUWriteCPU || usage == blackmagicRawResourceUsageReadGPUWriteGPU ||
           usage == blackmagicRawResourceUsageReadGPUWriteCPU || usage == blackmagicRawResourceUsageReadCPUWriteGPU;
}

constexpr size_t kAlignment = 64;

}  // namespace

RefResourceManager::RefResourceManager(std::shared_ptr<RefFaultHooks> hooks)
    : RefLibObject("ResourceManager"), m_hooks(std::move(hooks))
{
}

// Resources the caller still holds are left alone: they stay in the live
// report, which is how a caller that never gave them back gets caught.
RefResourceManager::~RefResourceManager() = default;

HRESULT RefResourceManager::QueryInterface(REFIID iid, LPVOID* out)
{
    if (!out)
        return E_POINTER;
    *out = nullptr;
    if (HRESULT hr = m_hooks->enter("ResourceManager.QueryInterface", -1, 0, refInterfaceName(iid)); hr != S_OK)
        return hr;
    if (!refSameIid(iid, IID_IUnknown) && !refSameIid(iid, IID_IBlackmagicRawResourceManager))
        return E_NOINTERFACE;
    AddRef();
    *out = static_cast<IBlackmagicRawResourceManager*>(this);
    return S_OK;
}

HRESULT RefResourceManager::CreateResource(void*, void*, uint32_t sizeBytes, BlackmagicRawResourceType type,
                                           BlackmagicRawResourceUsage usage, void** resource)
{
    if (!resource)
        return E_POINTER;
    *resource = nullptr;
    if (HRESULT hr = m_hooks->enter("ResourceManager.CreateResource"); hr != S_OK)
        return hr;
    if (sizeBytes == 0 || !knownType(type) || !knownUsage(usage))
        return E_INVALIDARG;
    const size_t rounded = (size_t(sizeBytes) + kAlignment - 1) / kAlignment * kAlignment;
    void* memory = std::aligned_alloc(kAlignment, rounded);
    if (!memory)
        return E_OUTOFMEMORY;
    std::lock_guard<std::mutex> lock(m_mutex);
    m_resources[memory] = Resource{sizeBytes, type};
    refTrackItem(memory, "Resource");
    *resource = memory;
    return S_OK;
}

HRESULT RefResourceManager::ReleaseResource(void*, void*, void* resource, BlackmagicRawResourceType type)
{
    if (!resource)
        return E_POINTER;
    if (HRESULT hr = m_hooks->enter("ResourceManager.ReleaseResource"); hr != S_OK)
        return hr;
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_resources.find(resource);
    if (it == m_resources.end() || it->second.type != type)
        return E_INVALIDARG;
    m_resources.erase(it);
    refUntrackItem(resource);
    std::free(resource);
    return S_OK;
}

HRESULT RefResourceManager::CopyResource(void*, void*, void* source, BlackmagicRawResourceType sourceType,
                                         void* destination, BlackmagicRawResourceType destinationType,
                                         uint32_t sizeBytes, bool)
{
    if (!source || !destination)
        return E_POINTER;
    if (HRESULT hr = m_hooks->enter("ResourceManager.CopyResource"); hr != S_OK)
        return hr;
    std::lock_guard<std::mutex> lock(m_mutex);
    // A CPU side may be any host memory of the caller's; a GPU side must be ours.
    for (auto [pointer, type] : {std::make_pair(source, sourceType), std::make_pair(destination, destinationType)}) {
        auto it = m_resources.find(pointer);
        if (it != m_resources.end()) {
            if (it->second.type != type || sizeBytes > it->second.sizeBytes)
                return E_INVALIDARG;
        } else if (type != blackmagicRawResourceTypeBufferCPU) {
            return E_INVALIDARG;
        }
    }
    std::memmove(destination, source, sizeBytes);
    return S_OK;
}

HRESULT RefResourceManager::GetResourceHostPointer(void*, void*, void*, BlackmagicRawResourceType, void** hostPointer)
{
    if (hostPointer)
        *hostPointer = nullptr;
    return E_NOTIMPL;
}

}  // namespace twref
