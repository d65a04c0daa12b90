#pragma once
// The clip and frame processing-attribute objects a caller clones, changes
// and hands back to PopulateFrameStateBuffer.

#include "Library/RefAttributeSet.h"
#include "Library/RefFaultHooks.h"
#include "Library/RefLibObject.h"

#include <memory>

namespace twref {

// Lets the library find the attribute set behind an interface pointer a
// caller hands back (a clone, or a frame answering for its own attributes).
class RefAttributeHolder {
public:
    virtual std::shared_ptr<RefAttributeSet> attributeSet() const = 0;

protected:
    ~RefAttributeHolder() = default;
};

// Null for an object this library did not make.
std::shared_ptr<RefAttributeSet> refAttributesOf(IBlackmagicRawClipProcessingAttributes* object);
std::shared_ptr<RefAttributeSet> refAttributesOf(IBlackmagicRawFrameProcessingAttributes* object);

class RefClipProcessingAttributes final : public RefLibObject,
                                          public IBlackmagicRawClipProcessingAttributes,
                                          public RefAttributeHolder {
public:
    RefClipProcessingAttributes(std::shared_ptr<RefAttributeSet> attributes, BlackmagicRawResourceType gpuType,
                                RefHooks hooks);

    HRESULT QueryInterface(REFIID iid, LPVOID* out) override;
    TW_REF_REFCOUNTED
    HRESULT GetClipAttribute(BlackmagicRawClipProcessingAttribute attribute, Variant* value) override;
    HRESULT SetClipAttribute(BlackmagicRawClipProcessingAttribute attribute, Variant* value) override;
    HRESULT GetClipAttributeRange(BlackmagicRawClipProcessingAttribute attribute, Variant* valueMin,
                                  Variant* valueMax, bool* isReadOnly) override;
    HRESULT GetClipAttributeList(BlackmagicRawClipProcessingAttribute attribute, Variant* array,
                                 uint32_t* arrayElementCount, bool* isReadOnly) override;
    HRESULT GetISOList(uint32_t* array, uint32_t* arrayElementCount, bool* isReadOnly) override;
    HRESULT GetPost3DLUT(IBlackmagicRawPost3DLUT** lut) override;

    std::shared_ptr<RefAttributeSet> attributeSet() const override { return m_attributes; }

private:
    std::shared_ptr<RefAttributeSet> m_attributes;
    BlackmagicRawResourceType m_gpuType;
    RefHooks m_hooks;
};

class RefFrameProcessingAttributes final : public RefLibObject,
                                           public IBlackmagicRawFrameProcessingAttributes,
                                           public RefAttributeHolder {
public:
    RefFrameProcessingAttributes(std::shared_ptr<RefAttributeSet> attributes, RefHooks hooks, int64_t frame);

    HRESULT QueryInterface(REFIID iid, LPVOID* out) override;
    TW_REF_REFCOUNTED
    HRESULT GetFrameAttribute(BlackmagicRawFrameProcessingAttribute attribute, Variant* value) override;
    HRESULT SetFrameAttribute(BlackmagicRawFrameProcessingAttribute attribute, Variant* value) override;
    HRESULT GetFrameAttributeRange(BlackmagicRawFrameProcessingAttribute attribute, Variant* valueMin,
                                   Variant* valueMax, bool* isReadOnly) override;
    HRESULT GetFrameAttributeList(BlackmagicRawFrameProcessingAttribute attribute, Variant* array,
                                  uint32_t* arrayElementCount, bool* isReadOnly) override;
    HRESULT GetISOList(uint32_t* array, uint32_t* arrayElementCount, bool* isReadOnly) override;

    std::shared_ptr<RefAttributeSet> attributeSet() const override { return m_attributes; }

private:
    std::shared_ptr<RefAttributeSet> m_attributes;
    RefHooks m_hooks;
    int64_t m_frame;
};

// GetPost3DLUT of any attribute object: the LUT the 'lutm' mode selects, or
// success with a null LUT when none is active.
HRESULT refPost3DLUTOf(const RefAttributeSet& attributes, BlackmagicRawResourceType gpuType, const RefHooks& hooks,
                       IBlackmagicRawPost3DLUT** lut);

}  // namespace twref
