#pragma once
// The one object through which the library reports the end of each job of the
// current codec, and where a frame moves on: the end of the read submits the
// decode, the end of the decode submits the process, the end of the process
// hands the image to its request, whose conversion runs right here on the
// library's thread. Each job carries its qvBRAW_Request* as user data.
//
// Its life is the manager's business: AddRef and Release count nothing, and
// the manager deletes it after the codec it served is gone. Callbacks take no
// lock but their request's m_mutex.

#include <BlackmagicRawAPI.h>

#include <cstdint>

class qvBRAW_Request;

// The user data of a trim job: where its progress goes and its result.
struct qvBRAW_TrimUserData {
    void (*progress)(float percent) = nullptr;
    int32_t result = 0;
};

class qvBRAW_Manager_Callback : public IBlackmagicRawCallback {
public:
    qvBRAW_Manager_Callback();
    ~qvBRAW_Manager_Callback() override;
    qvBRAW_Manager_Callback(const qvBRAW_Manager_Callback&) = delete;
    qvBRAW_Manager_Callback& operator=(const qvBRAW_Manager_Callback&) = delete;

    HRESULT QueryInterface(REFIID iid, LPVOID* out) override;
    ULONG AddRef() override;
    ULONG Release() override;

    void ReadComplete(IBlackmagicRawJob* job, HRESULT result, IBlackmagicRawFrame* frame) override;
    void DecodeComplete(IBlackmagicRawJob* job, HRESULT result) override;
    void ProcessComplete(IBlackmagicRawJob* job, HRESULT result, IBlackmagicRawProcessedImage* image) override;
    void TrimProgress(IBlackmagicRawJob* job, float progress) override;
    void TrimComplete(IBlackmagicRawJob* job, HRESULT result) override;

    void SidecarMetadataParseWarning(IBlackmagicRawClip* clip, const char* fileName, uint32_t lineNumber,
                                     const char* info) override;
    void SidecarMetadataParseError(IBlackmagicRawClip* clip, const char* fileName, uint32_t lineNumber,
                                   const char* info) override;
    void PreparePipelineComplete(void* userData, HRESULT result) override;

private:
    // The request of `job`; null (logged) when the library gives none.
    static qvBRAW_Request* requestOf(IBlackmagicRawJob* job, HRESULT* hr);
    // Under m_mutex, right after it was taken: a cancelled request ends here.
    // True when it did (the lock is then gone).
    static bool endIfCancelled(qvBRAW_Request* request);
    // Marks the request finished and lets go of its m_mutex (or hands it to m_onFinished).
    static void finish(qvBRAW_Request* request);
    // Submits `job` as the request's next stage, or ends the request with
    // `code`. Releases our reference to the job in every case.
    static bool submitNextJob(qvBRAW_Request* request, IBlackmagicRawJob* job, int code, const char* userDataError,
                              const char* submitError);
};
