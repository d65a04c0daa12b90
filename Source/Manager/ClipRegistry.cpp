// The registry of the manager: file paths turned into clip numbers that last
// for the life of the process, so that what was learned about a clip survives
// the host's opening, quieting and closing of its file.
//
// Locks: m_clipsMutex guards the map and the geometries; a clip's own
// m_bmClipMutex may be taken under it, never the other way round.

#include "Manager/Clip.h"
#include "Manager/Manager.h"
#include "Manager/Request_FirstFrameInfos.h"
#include "Manager/SourceSettingsInitialization.h"
#include "Manager/twBufferManager.h"
#include "Manager/twSettingsInitData.h"
#include "Utils/qvLogging.h"

int32_t qvBRAW_Manager::AddClipIfNew(const qvUtf8String& path, uint64_t& id, bool* wasKnown) {
    QV_LOG(QV_LOG_INFO, "Calling AddClipIfNew with path : " << path.Str());
    std::shared_ptr<qvBRAW_Clip> clip;
    if (!GetClipIDFromFilepath(path, id, clip)) {
        QV_LOG(QV_LOG_INFO, "Clip has not been found : need to add it");
        if (wasKnown) *wasKnown = false;
        return AddClip(path, id);
    }
    QV_LOG(QV_LOG_INFO, "Clip has been found. ID : " << id);
    // A file still missing leaves the clip registered: its requests fail on their own.
    if (clip->doesNeedToBeReloaded()) clip->reload(m_codec);
    if (wasKnown) *wasKnown = true;
    return 0;
}

bool qvBRAW_Manager::GetClipIDFromFilepath(const qvUtf8String& path, uint64_t& id,
                                           std::shared_ptr<qvBRAW_Clip>& clip) {
    bool found = false;
    QV_LOCK_TRACED(m_clipsMutex);
    // In number order, so that the first clip of a path wins.
    const uint64_t count = m_clips.size();
    for (uint64_t index = 0; index < count; ++index) {
        const auto entry = m_clips.find(index);
        if (entry == m_clips.end() || !entry->second) continue;
        if (entry->second->m_path.Str() == path.Str()) {
            clip = entry->second;
            id = entry->second->m_ID;
            found = true;
            break;
        }
    }
    m_clipsMutex.unlock();
    return found;
}

int32_t qvBRAW_Manager::AddClip(const qvUtf8String& path, uint64_t& id) {
    QV_LOG(QV_LOG_INFO, "Calling AddClip");
    if (m_errorInfo.hasError) return 1;

    // Held across the library's opening of the file, so that two threads can't
    // open one number.
    QV_LOCK_TRACED(m_clipsMutex);
    id = m_clips.size();
    auto clip = std::make_shared<qvBRAW_Clip>(id, path);

    QV_LOG(QV_LOG_INFO, "Opening new clip");
    IBlackmagicRawClipGeometry* geometry = nullptr;
    const int32_t geometryResult = createGeometryForClip(&geometry);
    if (geometryResult != 0) {
        m_clipsMutex.unlock();
        return geometryResult;
    }

    int32_t result = 0;
    const QvResult opened = clip->openAndInit(m_codec, geometry);
    if (opened.hasError) {
        QV_LOG(QV_LOG_ERR, "Error while Opening and Initializing Clip : " << opened.toString().Str());
        result = 1;
        // The clip goes, and with it the only use of its geometry.
        clip.reset();
        geometry->Release();
    } else {
        m_clips[id] = clip;
        m_clipGeometries.push_back(geometry);
        QV_LOG(QV_LOG_INFO, "New Clip from " << path.Str() << " initialized with ID #" << id);
    }

    if (g_logger.isLoggingActivated(QV_LOG_INFO)) {
        uint64_t openedCount = 0;
        for (const auto& entry : m_clips) {
            if (!entry.second) continue;
            QV_LOCK_TRACED(entry.second->m_bmClipMutex);
            openedCount += entry.second->m_opened ? 1 : 0;
            entry.second->m_bmClipMutex.unlock();
        }
        QV_LOG(QV_LOG_INFO, "Number of clips in memory : " << openedCount);
    }
    if (result != 0) QV_LOG(QV_LOG_ERR, "Opening clip did not work !");
    m_clipsMutex.unlock();
    return result;
}

std::shared_ptr<qvBRAW_Clip> qvBRAW_Manager::GetClip(uint64_t id) {
    std::shared_ptr<qvBRAW_Clip> clip;
    QV_LOCK_TRACED(m_clipsMutex);
    if (id < m_clips.size()) {
        const auto entry = m_clips.find(id);
        if (entry != m_clips.end()) clip = entry->second;
    }
    m_clipsMutex.unlock();
    if (clip) {
        QV_LOCK_TRACED(clip->m_bmClipMutex);
        const bool opened = clip->m_opened;
        clip->m_bmClipMutex.unlock();
        if (!opened) QV_LOG(QV_LOG_WARN, "Getting Clip Closed ! Could involve errors");
    }
    return clip;
}

uint64_t qvBRAW_Manager::GetClipsCount() { return m_clips.size(); }

int32_t qvBRAW_Manager::CloseClip(uint64_t id) {
    const std::shared_ptr<qvBRAW_Clip> clip = GetClip(id);
    return clip ? clip->Close(false) : 0;
}

int32_t qvBRAW_Manager::CloseClip(std::shared_ptr<qvBRAW_Clip> clip) { return clip ? clip->Close(false) : 0; }

int32_t qvBRAW_Manager::reloadClipIfNeeded(uint64_t id) {
    if (m_errorInfo.hasError) {
        QV_LOG(QV_LOG_ERR, "reloadClipIfNeeded - Nothing to do, BM is not init !");
        return 1;
    }
    if (m_codec == nullptr) {
        QV_LOG(QV_LOG_ERR, "reloadClipIfNeeded - Codec is null !");
        return 1;
    }
    const std::shared_ptr<qvBRAW_Clip> clip = GetClip(id);
    if (!clip) {
        QV_LOG(QV_LOG_ERR, "reloadClipIfNeeded - Clip is NullPtr");
        return 1;
    }
    if (clip->doesNeedToBeReloaded()) clip->reload(m_codec);
    return 0;
}

QvResult qvBRAW_Manager::getAllDataFromClip(bool& generated, uint64_t id, bool wantSettings,
                                            std::shared_ptr<twSettingsInitData>& data, bool wantMetadata) {
    if (m_errorInfo.hasError) {
        QV_LOG(QV_LOG_ERR, "getSourceSettingsInitDataFromFile - Nothing to do, BM is not init !");
        return m_errorInfo;
    }
    if (m_codec == nullptr) {
        QV_LOG(QV_LOG_ERR, "getSourceSettingsInitDataFromFile - Codec is null !");
        return QvResult("Codec is null !");
    }
    QV_LOG(QV_LOG_INFO, "Getting Clip");
    const std::shared_ptr<qvBRAW_Clip> clip = GetClip(id);
    if (!clip) return QvResult("initClipSourceSettingsInitData - Clip is NullPtr");

    // The clip's caches change under its own lock, as reload empties them.
    QV_LOCK_TRACED(clip->m_bmClipMutex);
    const bool needSettings = wantSettings && !clip->m_sourceSettingsInitData;
    const bool needMetadata = wantMetadata && clip->m_metadata.empty();
    if (clip->m_sourceSettingsInitData) data = clip->m_sourceSettingsInitData;
    clip->m_bmClipMutex.unlock();

    if (!needSettings && !needMetadata) {
        generated = false;
        QV_LOG(QV_LOG_INFO, "ClipSourceSettingsInitData already exists for this clip !");
        return QvResult();
    }

    QV_LOG(QV_LOG_INFO, "Processing the first frame to get Infos");
    if (needSettings) {
        QV_LOG(QV_LOG_INFO, "ClipSourceSettingsInitData don't exist for this clip yet, let's generate it !");
        if (!data) data = std::make_shared<twSettingsInitData>();
        QV_LOCK_TRACED(clip->m_bmClipMutex);
        clip->m_sourceSettingsInitData = data;
        clip->m_bmClipMutex.unlock();
        const QvResult clipFacts = SourceSettingsInitialization::initClipSourceSettingsInitData(*clip, m_codec);
        if (clipFacts.hasError) return clipFacts;
    }

    qvBRAW_MetadataList frameMetadata;
    const QvResult probed = probeFirstFrame(clip, needSettings, needMetadata, frameMetadata);
    if (probed.hasError) {
        // The frame's facts are missing: the record must not be seen half filled.
        if (needSettings) {
            QV_LOCK_TRACED(clip->m_bmClipMutex);
            if (clip->m_sourceSettingsInitData == data) clip->m_sourceSettingsInitData.reset();
            clip->m_bmClipMutex.unlock();
        }
        return probed;
    }

    QV_LOG(QV_LOG_INFO, "Processing First Frame done");
    if (needMetadata) {
        qvBRAW_MetadataList metadata;
        clip->getClipMetadata(metadata);
        metadata.insert(metadata.end(), frameMetadata.begin(), frameMetadata.end());
        clip->getAudioMetadata(metadata);
        QV_LOCK_TRACED(clip->m_bmClipMutex);
        clip->m_metadata = std::move(metadata);
        clip->m_bmClipMutex.unlock();
    }
    if (needSettings) data->ready = true;
    QV_LOG(QV_LOG_INFO, "Initializing ClipSourceSettingsInitData done !");
    generated = true;
    return QvResult();
}

// The clip's first frame goes through the queue like any frame, but its read
// stage ends the request: the frame is read, never decoded.
QvResult qvBRAW_Manager::probeFirstFrame(const std::shared_ptr<qvBRAW_Clip>& clip, bool needSettings,
                                         bool needMetadata, qvBRAW_MetadataList& frameMetadata) {
    frameMetadata.clear();
    auto request = std::make_shared<qvBRAW_Request_FirstFrameInfos>();
    request->m_readFrameAttributes = needSettings;
    request->m_readMetadata = needMetadata;
    // Always the CPU resource, whatever pipeline the codec runs on.
    auto* buffers = new twBufferManager(m_resourceManager, m_manualDecoderFlow1, m_manualDecoderFlow2,
                                        blackmagicRawResourceTypeBufferCPU, false, nullptr, nullptr);
    const QvResult setup = request->Setup(clip, buffers);
    if (setup.hasError) {
        // A request that never reaches the queue ends here.
        request->m_finished = true;
        return setup;
    }

    ProcessFrameSync(request);
    // After the flush no callback runs any more. A probe that never finished
    // (its read could not even be waited for) has told nothing either.
    if (request->m_errorCode != 0 || !request->m_finished) {
        QV_LOG(QV_LOG_ERR, request->logPrefix().Str() << "First frame failed : " << request->m_errorMsg.Str());
        return QvResult("Error happened ! Impossible to call initClipSourceSettingsInitData !");
    }
    if (request->m_metadataDone) frameMetadata = std::move(request->m_metadata);
    return QvResult();
}
