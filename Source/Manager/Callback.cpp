#include "Manager/Callback.h"

#include "Manager/AttributesSetter.h"
#include "Manager/Request.h"
#include "Manager/twBufferManager.h"
#include "Utils/qvLogging.h"
#include "Utils/qvUtils.h"

#include <string>

// Each stage logs the time since the previous one.
#define TW_LOG_STAGE(request, stage)                                                                  \
    QV_LOG(QV_LOG_INFO, (request)->logPrefix().Str() << stage << " dt "                               \
                                                     << (request)->m_chrono.getLatestSpanMicro(true))

qvBRAW_Manager_Callback::qvBRAW_Manager_Callback() = default;

qvBRAW_Manager_Callback::~qvBRAW_Manager_Callback() = default;

HRESULT qvBRAW_Manager_Callback::QueryInterface(REFIID, LPVOID*) { return E_NOTIMPL; }

ULONG qvBRAW_Manager_Callback::AddRef() { return 0; }

ULONG qvBRAW_Manager_Callback::Release() { return 0; }

qvBRAW_Request* qvBRAW_Manager_Callback::requestOf(IBlackmagicRawJob* job, HRESULT* hr) {
    void* userData = nullptr;
    *hr = job ? job->GetUserData(&userData) : E_POINTER;
    if (FAILED(*hr) || userData == nullptr) {
        QV_LOG(QV_LOG_ERR, "Impossible to get UserData - " << qvUtils::getHRESULTerrorMessage(*hr));
        return nullptr;
    }
    return static_cast<qvBRAW_Request*>(userData);
}

void qvBRAW_Manager_Callback::finish(qvBRAW_Request* request) {
    request->m_finished = true;
    if (request->m_onFinished) {
        request->m_onFinished(request, true);
    } else {
        request->m_mutex.unlock();
    }
}

bool qvBRAW_Manager_Callback::endIfCancelled(qvBRAW_Request* request) {
    if (!request->m_cancelled) return false;
    QV_LOG(QV_LOG_INFO, request->logPrefix().Str() << "Cancelled Request !");
    request->m_finished = true;
    request->OnCancelled();
    finish(request);
    return true;
}

bool qvBRAW_Manager_Callback::submitNextJob(qvBRAW_Request* request, IBlackmagicRawJob* job, int code,
                                            const char* userDataError, const char* submitError) {
    HRESULT hr = job->SetUserData(request);
    if (FAILED(hr)) {
        // The job was never submitted: ours is its only reference.
        job->Release();
        request->HandleError(code, hr, userDataError, true);
        return false;
    }
    request->m_chrono.getLatestSpanMicro(true);
    request->m_jobInFlight = true;
    hr = job->Submit();
    if (FAILED(hr)) {
        job->Release();
        request->m_jobInFlight = false;
        request->HandleError(code, hr, submitError, true);
        return false;
    }
    // Release gives the remaining count, which can't be negative; once the job
    // is submitted the request must not end here anyway, since its callback
    // is on its way.
    job->Release();
    return true;
}

void qvBRAW_Manager_Callback::ReadComplete(IBlackmagicRawJob* job, HRESULT, IBlackmagicRawFrame* frame) {
    HRESULT hr = S_OK;
    qvBRAW_Request* request = requestOf(job, &hr);
    if (request == nullptr) return;

    QV_LOCK_TRACED(request->m_mutex);
    if (frame == nullptr) {
        // Under the request's lock, as every other change of its state: a host
        // thread may be reading it in the queue at this moment.
        request->m_jobInFlight = false;
        request->HandleError(TW_REQUEST_ERROR_READ_COMPLETE, hr, "ReadComplete called with error code - ", true);
        return;
    }
    request->m_readDone = true;
    request->m_jobInFlight = false;
    TW_LOG_STAGE(request, "ReadComplete");
    if (endIfCancelled(request)) return;

    const int32_t readResult = request->ProcessReadFrame(frame);
    // 2: the request ended itself through HandleError with the lock held, so
    // the lock is gone already and unlocking again would be undefined.
    if (readResult == 2) return;
    if (request->m_errorCode != 0) {
        request->m_mutex.unlock();
        return;
    }
    if (readResult == 1) {
        finish(request);
        return;
    }

    if (request->m_bmPixelFormat != 0) {
        hr = frame->SetResourceFormat(request->m_bmPixelFormat);
        if (FAILED(hr)) {
            request->HandleError(TW_REQUEST_ERROR_FRAME_SETUP, hr, "Failed SetResourceFormat on Frame ! ", true);
            return;
        }
    }
    if (request->m_resolutionScale != 0) {
        hr = frame->SetResolutionScale(request->m_resolutionScale);
        if (FAILED(hr)) {
            request->HandleError(TW_REQUEST_ERROR_FRAME_SETUP, hr, "Failed SetResolutionScale on Frame ! ", true);
            return;
        }
    }

    twBufferManager* buffers = request->m_bufferManager;
    if (buffers == nullptr) {
        request->HandleError(TW_REQUEST_ERROR_FRAME_SETUP, 0, "Error populateFrameStateBuffer : no buffer manager",
                             true);
        return;
    }
    QvResult populated;
    if (!request->m_attributes.useClipAndFrameAttributes) {
        populated = buffers->populateFrameStateBuffer(frame, nullptr, nullptr);
    } else {
        IBlackmagicRawFrameProcessingAttributes* attrs = nullptr;
        hr = frame->CloneFrameProcessingAttributes(&attrs);
        if (FAILED(hr) || attrs == nullptr) {
            if (attrs) attrs->Release();
            request->HandleError(TW_REQUEST_ERROR_FRAME_SETUP, hr, "Failed CloneFrameProcessingAttributes on Frame ! ",
                                 true);
            return;
        }
        const QvResult filled =
            AttributesSetter::fillFrameProcessingAttributesFromPrefs(attrs, request->m_attributes.frame);
        if (filled.hasError) {
            // The clone is ours whatever the outcome: give it back before the request ends.
            attrs->Release();
            request->HandleError(TW_REQUEST_ERROR_PROCESSING_ATTRIBUTES, 0, filled.toString(), true);
            return;
        }
        populated = buffers->populateFrameStateBuffer(frame, request->m_clipProcessingAttributes, attrs);
        // A count comes back, never a failure.
        attrs->Release();
    }
    if (populated.hasError) {
        request->HandleError(TW_REQUEST_ERROR_FRAME_SETUP, 0,
                             qvUtf8String("Error populateFrameStateBuffer : ") + populated.toString(), true);
        return;
    }

    IBlackmagicRawJob* decodeJob = nullptr;
    const QvResult created = buffers->createDecodeJob(&decodeJob);
    if (created.hasError || decodeJob == nullptr) {
        if (decodeJob) decodeJob->Release();
        request->HandleError(TW_REQUEST_ERROR_DECODE_JOB, 0,
                             qvUtf8String("Error createDecodeJob : ") + created.toString(), true);
        return;
    }
    if (!submitNextJob(request, decodeJob, TW_REQUEST_ERROR_DECODE_JOB, "Impossible to Set UserData on decodeJob !",
                       "Impossible to submit DecodeJob ! ")) {
        return;
    }
    request->m_mutex.unlock();
}

void qvBRAW_Manager_Callback::DecodeComplete(IBlackmagicRawJob* job, HRESULT) {
    QV_LOG(QV_LOG_INFO, "Callback DecodeComplete called");
    HRESULT hr = S_OK;
    qvBRAW_Request* request = requestOf(job, &hr);
    if (request == nullptr) return;

    QV_LOCK_TRACED(request->m_mutex);
    request->m_jobInFlight = false;
    TW_LOG_STAGE(request, "DecodeComplete");
    if (endIfCancelled(request)) return;

    twBufferManager* buffers = request->m_bufferManager;
    const int code = TW_REQUEST_ERROR_PROCESS_JOB_CPU + ((buffers && buffers->m_GPU) ? 1 : 0);
    IBlackmagicRawJob* processJob = nullptr;
    const QvResult created =
        buffers ? buffers->createProcessJob(&processJob) : QvResult("no buffer manager");
    if (created.hasError || processJob == nullptr) {
        if (processJob) processJob->Release();
        request->HandleError(code, 0, qvUtf8String("Error CreateProcess Job : ") + created.toString(), true);
        return;
    }
    if (!submitNextJob(request, processJob, code, "Impossible to Set UserData on processJob ! ",
                       "Impossible to Submit processJob ! ")) {
        return;
    }
    request->m_mutex.unlock();
}

void qvBRAW_Manager_Callback::ProcessComplete(IBlackmagicRawJob* job, HRESULT result,
                                              IBlackmagicRawProcessedImage* image) {
    HRESULT hr = S_OK;
    qvBRAW_Request* request = requestOf(job, &hr);
    if (request == nullptr) return;
    twBufferManager* buffers = request->m_bufferManager;

    QV_LOCK_TRACED(request->m_mutex);
    TW_LOG_STAGE(request, "ProcessComplete");
    if (endIfCancelled(request)) return;

    request->m_jobInFlight = false;
    request->m_processDone = true;
    request->m_srcWidth = 0;
    request->m_srcHeight = 0;
    request->m_processedImage = image;

    // The library reports a failed decode or process with no image at all:
    // reading one would crash, so the request ends as an unreadable image.
    if (image == nullptr || buffers == nullptr) {
        request->m_processedImage = nullptr;
        request->HandleError(TW_REQUEST_ERROR_PROCESSED_IMAGE, image ? 0 : result,
                             image ? "No buffer manager for the processed image ! "
                                   : "ProcessComplete called without image - ",
                             true);
        return;
    }

    // Every check of the image ends the request the same way.
    auto failed = [request](HRESULT result, const char* text) {
        if (SUCCEEDED(result)) return false;
        request->m_processedImage = nullptr;
        request->HandleError(TW_REQUEST_ERROR_PROCESSED_IMAGE, result, text, true);
        return true;
    };
    if (failed(image->GetResourceType(&buffers->m_resourceType), "Impossible to GetResourceType ! ")) return;
    BlackmagicRawResourceFormat format = 0;
    hr = image->GetResourceFormat(&format);
    if (failed(hr, "Failed GetResourceFormat - ")) return;
    if (format != request->m_bmPixelFormat) {
        request->m_processedImage = nullptr;
        request->HandleError(TW_REQUEST_ERROR_PROCESSED_IMAGE, hr, "Final Format is not the same than requested one !",
                             true);
        return;
    }
    if (failed(image->GetWidth(&request->m_srcWidth), "Failed GetWidth - ")) return;
    if (failed(image->GetHeight(&request->m_srcHeight), "Failed GetHeight - ")) return;
    if (failed(image->GetResourceSizeBytes(&buffers->m_processedBufferSize), "Failed GetResourceSizeBytes - ")) return;
    if (g_logger.isLoggingActivated(QV_LOG_INFO)) {
        const uint64_t expected = static_cast<uint64_t>(request->m_srcWidth) * request->m_srcHeight *
                                  request->m_bmBytesPerPixel;
        if (expected != buffers->m_processedBufferSize) {
            QV_LOG(QV_LOG_ERR, request->logPrefix().Str() << "expectedFrameBufferSize " << expected << " and got "
                                                          << buffers->m_processedBufferSize);
        }
    }

    request->BeginProcessing();
    // The image is the library's and lives only through this callback.
    request->m_processedImage = nullptr;
    finish(request);
}

void qvBRAW_Manager_Callback::TrimProgress(IBlackmagicRawJob* job, float progress) {
    QV_LOG(QV_LOG_INFO, "Callback TrimProgress called with progress " << progress);
    void* userData = nullptr;
    if (job == nullptr || FAILED(job->GetUserData(&userData)) || userData == nullptr) return;
    auto* trim = static_cast<qvBRAW_TrimUserData*>(userData);
    if (trim->progress) trim->progress(progress * 100.0f);
}

void qvBRAW_Manager_Callback::TrimComplete(IBlackmagicRawJob* job, HRESULT result) {
    QV_LOG(QV_LOG_INFO, "Callback TrimComplete called");
    if (job == nullptr) return;
    void* userData = nullptr;
    if (SUCCEEDED(job->GetUserData(&userData)) && userData) static_cast<qvBRAW_TrimUserData*>(userData)->result = result;
    job->Release();
}

void qvBRAW_Manager_Callback::SidecarMetadataParseWarning(IBlackmagicRawClip*, const char*, uint32_t, const char*) {}

void qvBRAW_Manager_Callback::SidecarMetadataParseError(IBlackmagicRawClip*, const char*, uint32_t, const char*) {}

void qvBRAW_Manager_Callback::PreparePipelineComplete(void*, HRESULT) {}
