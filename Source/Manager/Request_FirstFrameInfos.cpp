#include "Manager/Request_FirstFrameInfos.h"

#include "Manager/SourceSettingsInitialization.h"
#include "Manager/twBufferManager.h"
#include "Manager/twComRelease.h"
#include "Utils/qvLogging.h"

qvBRAW_Request_FirstFrameInfos::qvBRAW_Request_FirstFrameInfos() : qvBRAW_Request(true, nullptr) {
    m_downscale = false;
}

qvBRAW_Request_FirstFrameInfos::~qvBRAW_Request_FirstFrameInfos() { twReleaseAndNull(m_frameProcessingAttributes); }

QvResult qvBRAW_Request_FirstFrameInfos::Setup(std::shared_ptr<qvBRAW_Clip> clip, twBufferManager* manager) {
    // Owned from here on whatever follows, so that a refused setup leaks nothing.
    m_bufferManager = manager;
    m_frame = 0;
    m_queueID = 0xFFFFFFFF;
    if (!clip) return QvResult("Impossible to Setup First Frame Infos - clip is nullptr");
    m_clipID = clip->m_ID;
    m_frameCount = clip->m_frameCount;
    if (m_bufferManager) {
        m_bufferManager->m_queueID = m_queueID;
        m_bufferManager->m_uniqueID = m_uniqueID;
        m_bufferManager->m_clipID = m_clipID;
        m_bufferManager->m_frame = m_frame;
    }

    QV_LOCK_TRACED(clip->m_bmClipMutex);
    std::shared_ptr<twSettingsInitData> data = clip->m_sourceSettingsInitData;
    clip->m_bmClipMutex.unlock();
    if (!data && m_readFrameAttributes) {
        return QvResult(
            "Impossible to Setup First Frame Infos - m_sourceSettingsInitData has not been initialized (nullptr)");
    }
    m_sourceSettingsInitData = std::move(data);
    return QvResult();
}

int32_t qvBRAW_Request_FirstFrameInfos::ProcessReadFrame(IBlackmagicRawFrame* frame) {
    if (m_readFrameAttributes) {
        QV_LOG(QV_LOG_INFO, logPrefix().Str() << "Reading First Frame Infos");
        const QvResult infos = SourceSettingsInitialization::getFrameInfosFromBM(frame, m_sourceSettingsInitData);
        if (infos.hasError) {
            HandleError(TW_REQUEST_ERROR_FIRST_FRAME_INFOS, 0, "getFrameInfosFromBM " + infos.toString(), true);
            return 2;
        }
    }
    if (m_readMetadata) {
        IBlackmagicRawMetadataIterator* iterator = nullptr;
        if (FAILED(frame->GetMetadataIterator(&iterator)) || iterator == nullptr) {
            twReleaseAndNull(iterator);
            HandleError(TW_REQUEST_ERROR_FIRST_FRAME_INFOS, 0, "Impossible to get Metadata Iterator ! ", true);
            return 2;
        }
        m_metadata = qvBRAW_Clip::GetMetadataFromIterator(iterator, false, nullptr, nullptr);
        m_metadataDone = true;
        iterator->Release();
    }
    if (m_cloneFrameAttributes) {
        twReleaseAndNull(m_frameProcessingAttributes);
        const HRESULT hr = frame->CloneFrameProcessingAttributes(&m_frameProcessingAttributes);
        if (FAILED(hr)) {
            QV_LOG(QV_LOG_ERR,
                   logPrefix().Str() << "Cloning Frame Processing Attributes for First Frame Request Failed with " << hr);
        }
    }
    return 1;
}

int32_t qvBRAW_Request_FirstFrameInfos::BeginProcessing() { return 0; }

int32_t qvBRAW_Request_FirstFrameInfos::LaunchHeavyProcessing() { return 0; }

int32_t qvBRAW_Request_FirstFrameInfos::HeavyProcessing() { return 0; }

int32_t qvBRAW_Request_FirstFrameInfos::FinishProcessing() { return 0; }

void qvBRAW_Request_FirstFrameInfos::OnCancelled() {}
