#pragma once
// A frame as ReadComplete hands it out: its index, timecode and metadata, the
// output format and scale the caller chooses, and its own processing
// attributes. Asked for IBlackmagicRawClipProcessingAttributes, the frame
// answers for the attributes it will be decoded with: the clip's and its own
// frame attributes (ISO, white balance, exposure...) through one object.

#include "Library/RefAttributeObjects.h"
#include "Library/RefClipData.h"
#include "Library/RefFrameState.h"
#include "Library/RefLibObject.h"

#include <atomic>
#include <memory>
#include <string>

namespace twref {

class RefFrame final : public RefLibObject,
                       public IBlackmagicRawFrame,
                       public IBlackmagicRawFrameEx,
                       public IBlackmagicRawClipProcessingAttributes,
                       public RefAttributeHolder {
public:
    RefFrame(std::shared_ptr<RefClipData> clip, const RefViewGeometry& geometry, uint64_t index,
             uint32_t bitStreamBytes);

    // The frame state of this frame, with the attributes a caller hands in
    // (either may be null: the frame's own stand).
    HRESULT describe(RefFrameState& state, IBlackmagicRawClipProcessingAttributes* clipAttributes,
                     IBlackmagicRawFrameProcessingAttributes* frameAttributes) const;
    uint64_t index() const { return m_index; }
    const RefHooks& hooks() const { return m_hooks; }

    HRESULT QueryInterface(REFIID iid, LPVOID* out) override;
    TW_REF_REFCOUNTED

    // IBlackmagicRawFrame
    HRESULT GetFrameIndex(uint64_t* frameIndex) override;
    HRESULT GetTimecode(const char** timecode) override;
    HRESULT GetMetadataIterator(IBlackmagicRawMetadataIterator** iterator) override;
    HRESULT GetMetadata(const char* key, Variant* value) override;
    HRESULT SetMetadata(const char* key, Variant* value) override;
    HRESULT CloneFrameProcessingAttributes(IBlackmagicRawFrameProcessingAttributes** frameProcessingAttributes) override;
    HRESULT SetResolutionScale(BlackmagicRawResolutionScale resolutionScale) override;
    HRESULT GetResolutionScale(BlackmagicRawResolutionScale* resolutionScale) override;
    HRESULT SetResourceFormat(BlackmagicRawResourceFormat resourceFormat) override;
    HRESULT GetResourceFormat(BlackmagicRawResourceFormat* resourceFormat) override;
    HRESULT GetSensorRate(float* sensorRate) override;
    HRESULT CreateJobDecodeAndProcessFrame(IBlackmagicRawClipProcessingAttributes* clipProcessingAttributes,
                                           IBlackmagicRawFrameProcessingAttributes* frameProcessingAttributes,
                                           IBlackmagicRawJob** job) override;

    // IBlackmagicRawFrameEx
    HRESULT GetBitStreamSizeBytes(uint32_t* bitStreamSizeBytes) override;
    HRESULT GetProcessedImageResolution(uint32_t* width, uint32_t* height) override;

    // IBlackmagicRawClipProcessingAttributes: the frame's decode settings.
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
    std::shared_ptr<RefClipData> m_clip;
    std::shared_ptr<const RefClipModel> m_model;
    RefViewGeometry m_geometry;
    uint64_t m_index;
    uint32_t m_bitStreamBytes;
    RefHooks m_hooks;
    std::string m_timecode;
    std::vector<RefMetadataEntry> m_metadata;
    std::shared_ptr<RefAttributeSet> m_attributes;
    std::atomic<BlackmagicRawResourceFormat> m_format{blackmagicRawResourceFormatRGBAU8};
    std::atomic<BlackmagicRawResolutionScale> m_scale{blackmagicRawResolutionScaleFull};
};

}  // namespace twref
