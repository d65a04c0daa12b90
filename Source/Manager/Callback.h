#pragma once
// The one object through which the library reports the end of each job of the
// current codec. Its life is the manager's business: AddRef and Release count
// nothing, and the manager deletes it after the codec it served is gone.

#include <BlackmagicRawAPI.h>

class qvBRAW_Manager_Callback : public IBlackmagicRawCallback {
public:
    qvBRAW_Manager_Callback();
    ~qvBRAW_Manager_Callback() override;
    qvBRAW_Manager_Callback(const qvBRAW_Manager_Callback&) = delete;
    qvBRAW_Manager_Callback& operator=(const qvBRAW_Manager_Callback&) = delete;

    HRESULT QueryInterface(REFIID iid, LPVOID* out) override;
    ULONG AddRef() override;
    ULONG Release() override;

    // Seam: the stages of a request (read, decode, process) are driven from
    // these three once requests carry their buffers.
    void ReadComplete(IBlackmagicRawJob* job, HRESULT result, IBlackmagicRawFrame* frame) override;
    void DecodeComplete(IBlackmagicRawJob* job, HRESULT result) override;
    void ProcessComplete(IBlackmagicRawJob* job, HRESULT result, IBlackmagicRawProcessedImage* image) override;
    // Seam: trim jobs carry a progress record as their user data.
    void TrimProgress(IBlackmagicRawJob* job, float progress) override;
    void TrimComplete(IBlackmagicRawJob* job, HRESULT result) override;

    void SidecarMetadataParseWarning(IBlackmagicRawClip* clip, const char* fileName, uint32_t lineNumber,
                                     const char* info) override;
    void SidecarMetadataParseError(IBlackmagicRawClip* clip, const char* fileName, uint32_t lineNumber,
                                   const char* info) override;
    void PreparePipelineComplete(void* userData, HRESULT result) override;
};
