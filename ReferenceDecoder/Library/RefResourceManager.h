#pragma once
// The codec's default resource manager. CPU resources are aligned host
// memory; GPU resource types are served from host memory too (this library
// has no device), so the GPU flow can be exercised as well. Every resource is
// remembered with its size and type: releasing or copying one it did not make,
// or copying past its end, is an error result rather than a crash. Resources
// appear in the live-object report until they are released.

#include "Library/RefFaultHooks.h"
#include "Library/RefLibObject.h"

#include <map>
#include <memory>
#include <mutex>

namespace twref {

class RefResourceManager final : public RefLibObject, public IBlackmagicRawResourceManager {
public:
    explicit RefResourceManager(std::shared_ptr<RefFaultHooks> hooks);
    ~RefResourceManager() override;

    HRESULT QueryInterface(REFIID iid, LPVOID* out) override;
    TW_REF_REFCOUNTED
    HRESULT CreateResource(void* context, void* commandQueue, uint32_t sizeBytes, BlackmagicRawResourceType type,
                           BlackmagicRawResourceUsage usage, void** resource) override;
    HRESULT ReleaseResource(void* context, void* commandQueue, void* resource,
                            BlackmagicRawResourceType type) override;
    HRESULT CopyResource(void* context, void* commandQueue, void* source, BlackmagicRawResourceType sourceType,
                         void* destination, BlackmagicRawResourceType destinationType, uint32_t sizeBytes,
                         bool copyAsync) override;
    HRESULT GetResourceHostPointer(void* context, void* commandQueue, void* resource,
                                   BlackmagicRawResourceType resourceType, void** hostPointer) override;

private:
    struct Resource {
        uint32_t sizeBytes = 0;
        BlackmagicRawResourceType type = 0;
    };
    std::shared_ptr<RefFaultHooks> m_hooks;
    std::mutex m_mutex;
    std::map<void*, Resource> m_resources;
};

}  // namespace twref
