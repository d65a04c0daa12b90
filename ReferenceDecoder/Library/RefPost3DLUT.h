#pragma once
// A 3D LUT handed out by GetPost3DLUT. Its table belongs to the clip, not to
// this object: callers keep the table pointer after releasing the LUT.

#include "Format/RefClipModel.h"
#include "Library/RefFaultHooks.h"
#include "Library/RefLibObject.h"

#include <memory>

namespace twref {

class RefPost3DLUT final : public RefLibObject, public IBlackmagicRawPost3DLUT {
public:
    RefPost3DLUT(std::shared_ptr<const RefLut> lut, BlackmagicRawResourceType gpuType, RefHooks hooks);

    HRESULT QueryInterface(REFIID iid, LPVOID* out) override;
    TW_REF_REFCOUNTED
    HRESULT GetName(const char** name) override;
    HRESULT GetTitle(const char** title) override;
    HRESULT GetSize(uint32_t* size) override;
    HRESULT GetResourceGPU(void* context, void* commandQueue, BlackmagicRawResourceType* type,
                           void** resource) override;
    HRESULT GetResourceCPU(void** resource) override;
    HRESULT GetResourceSizeBytes(uint32_t* sizeBytes) override;
    HRESULT WriteCubeFile(const char* fileName) override;

private:
    std::shared_ptr<const RefLut> m_lut;
    BlackmagicRawResourceType m_gpuType;
    RefHooks m_hooks;
};

}  // namespace twref
