#pragma once
// The probe of a clip's first frame: a request whose read job brings the
// frame's facts for the settings panels and, when asked, the frame's metadata,
// and which ends at the read stage, so that nothing is ever decoded.

#include "Manager/Clip.h"
#include "Manager/Request.h"

#include <memory>

class twSettingsInitData;

class qvBRAW_Request_FirstFrameInfos : public qvBRAW_Request {
public:
    qvBRAW_Request_FirstFrameInfos();
    // Releases the clone of the frame's attributes when one was kept.
    ~qvBRAW_Request_FirstFrameInfos() override;

    // Frame 0 of `clip`, in no host queue. Takes `manager` over in every case.
    // With m_readFrameAttributes the clip must already hold its settings data,
    // which the probe then fills.
    QvResult Setup(std::shared_ptr<qvBRAW_Clip> clip, twBufferManager* manager);

    // Reads what was asked of the frame, under m_mutex on the library's
    // thread. 1 ends the request with no decode; 2 is a failure that
    // HandleError has already ended (and unlocked).
    int32_t ProcessReadFrame(IBlackmagicRawFrame* frame) override;
    int32_t BeginProcessing() override;
    int32_t LaunchHeavyProcessing() override;
    int32_t HeavyProcessing() override;
    int32_t FinishProcessing() override;
    void OnCancelled() override;

    bool m_readFrameAttributes = false;
    bool m_readMetadata = false;
    std::shared_ptr<twSettingsInitData> m_sourceSettingsInitData;
    bool m_metadataDone = false;
    qvBRAW_MetadataList m_metadata;
    bool m_cloneFrameAttributes = false;
    IBlackmagicRawFrameProcessingAttributes* m_frameProcessingAttributes = nullptr;
};
