#pragma once
// The picture ProcessComplete hands out: the caller's processed buffer as the
// process job filled it, described.

#include "Library/RefFaultHooks.h"
#include "Library/RefLibObject.h"

namespace twref {

struct RefImageDescription {
    uint32_t width = 0;
    uint32_t height = 0;
    void* resource = nullptr;
    BlackmagicRawResourceType type = blackmagicRawResourceTypeBufferCPU;
    BlackmagicRawResourceFormat format = blackmagicRawResourceFormatRGBAU8;
    uint32_t sizeBytes = 0;
    void* context = nullptr;
    void* commandQueue = nullptr;
};

class RefProcessedImage final : public RefLibObject, public IBlackmagicRawProcessedImage {
public:
    RefProcessedImage(const RefImageDescription& image, RefHooks hooks, int64_t frame);

    HRESULT QueryInterface(REFIID iid, LPVOID* out) override;
    TW_REF_REFCOUNTED
    HRESULT GetWidth(uint32_t* width) override;
    HRESULT GetHeight(uint32_t* height) override;
    HRESULT GetResource(void** resource) override;
    HRESULT GetResourceType(BlackmagicRawResourceType* type) override;
    HRESULT GetResourceFormat(BlackmagicRawResourceFormat* format) override;
    HRESULT GetResourceSizeBytes(uint32_t* sizeBytes) override;
    HRESULT GetResourceContextAndCommandQueue(void** context, void** commandQueue) override;

private:
    RefImageDescription m_image;
    RefHooks m_hooks;
    int64_t m_frame;
};

}  // namespace twref
