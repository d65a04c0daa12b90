#pragma once
// An opened clip: its facts, metadata, sidecar state, attribute clones, the
// bit-stream reads of the manual flow, resolutions and audio. Clones under
// another geometry share the clip's data.

#include "Library/RefClipData.h"
#include "Library/RefLibObject.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace twref {

class RefClip final : public RefLibObject,
                      public IBlackmagicRawClip,
                      public IBlackmagicRawClipEx,
                      public IBlackmagicRawClipResolutions,
                      public IBlackmagicRawClipAudio {
public:
    RefClip(std::shared_ptr<RefClipData> data, const RefViewGeometry& geometry);

    // Reads the sidecar as the clip is opened, reporting its problems on the
    // codec's callback with this clip.
    void attachSidecar();

    HRESULT QueryInterface(REFIID iid, LPVOID* out) override;
    TW_REF_REFCOUNTED

    // IBlackmagicRawClip
    HRESULT GetWidth(uint32_t* width) override;
    HRESULT GetHeight(uint32_t* height) override;
    HRESULT GetFrameRate(float* frameRate) override;
    HRESULT GetFrameCount(uint64_t* frameCount) override;
    HRESULT GetTimecodeForFrame(uint64_t frameIndex, const char** timecode) override;
    HRESULT GetMetadataIterator(IBlackmagicRawMetadataIterator** iterator) override;
    HRESULT GetMetadata(const char* key, Variant* value) override;
    HRESULT SetMetadata(const char* key, Variant* value) override;
    HRESULT GetCameraType(const char** cameraType) override;
    HRESULT CloneClipProcessingAttributes(IBlackmagicRawClipProcessingAttributes** clipProcessingAttributes) override;
    HRESULT GetMulticardFileCount(uint32_t* multicardFileCount) override;
    HRESULT IsMulticardFilePresent(uint32_t index, bool* isMulticardFilePresent) override;
    HRESULT GetSidecarFileAttached(bool* isSidecarFileAttached) override;
    HRESULT SaveSidecarFile() override;
    HRESULT ReloadSidecarFile() override;
    HRESULT CreateJobReadFrame(uint64_t frameIndex, IBlackmagicRawJob** job) override;
    HRESULT CreateJobTrim(const char* fileName, uint64_t frameIndex, uint64_t frameCount,
                          IBlackmagicRawClipProcessingAttributes* clipProcessingAttributes,
                          IBlackmagicRawFrameProcessingAttributes* frameProcessingAttributes,
                          IBlackmagicRawJob** job) override;
    HRESULT CloneWithGeometry(IBlackmagicRawClipGeometry* geometry, IBlackmagicRawClip** clip) override;

    // IBlackmagicRawClipEx
    HRESULT GetMaxBitStreamSizeBytes(uint32_t* maxBitStreamSizeBytes) override;
    HRESULT GetBitStreamSizeBytes(uint64_t frameIndex, uint32_t* bitStreamSizeBytes) override;
    HRESULT CreateJobReadFrame(uint64_t frameIndex, void* bitStream, uint32_t bitStreamSizeBytes,
                               IBlackmagicRawJob** job) override;
    HRESULT QueryTimecodeInfo(uint32_t* baseFrameIndex, bool* isDropFrameTimecode) override;

    // IBlackmagicRawClipResolutions
    HRESULT GetResolutionCount(uint32_t* resolutionCount) override;
    HRESULT GetResolution(uint32_t resolutionIndex, uint32_t* resolutionWidthPixels,
                          uint32_t* resolutionHeightPixels) override;
    HRESULT GetRecordedResolution(uint32_t resolutionIndex, uint32_t* recordedResolutionWidthPixels,
                                  uint32_t* recordedResolutionHeightPixels) override;
    HRESULT GetClosestResolutionForScale(BlackmagicRawResolutionScale resolutionScale,
                                         uint32_t* resolutionWidthPixels, uint32_t* resolutionHeightPixels) override;
    HRESULT GetClosestScaleForResolution(uint32_t resolutionWidthPixels, uint32_t resolutionHeightPixels,
                                         BlackmagicRawResolutionScale* resolutionScale) override;

    // IBlackmagicRawClipAudio
    HRESULT GetAudioFormat(BlackmagicRawAudioFormat* format) override;
    HRESULT GetAudioBitDepth(uint32_t* bitDepth) override;
    HRESULT GetAudioChannelCount(uint32_t* channelCount) override;
    HRESULT GetAudioSampleRate(uint32_t* sampleRate) override;
    HRESULT GetAudioSampleCount(uint64_t* sampleCount) override;
    HRESULT GetAudioSamples(int64_t sampleFrameIndex, void* buffer, uint32_t bufferSizeBytes, uint32_t maxSampleCount,
                            uint32_t* samplesRead, uint32_t* bytesRead) override;

private:
    void reportSidecar(const RefSidecarResult& sidecar);

    std::shared_ptr<RefClipData> m_data;
    RefViewGeometry m_geometry;
    RefHooks m_hooks;
    std::string m_cameraType;
    std::mutex m_mutex;
    std::map<uint64_t, std::string> m_timecodes;  // texts handed out live with the clip
};

}  // namespace twref
