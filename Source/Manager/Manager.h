#pragma once
// The one decoder object of the process (Global_Manager): it owns the library
// instance, the codec with its configuration and manual decoders, the job
// callback, the open clips and the queue of decode requests. A start that
// failed stays silent and keeps its reason in m_errorInfo, for the first file
// that the host opens.

#include <BlackmagicRawAPI.h>

#include "String/qvUtf8String.h"
#include "Utils/qvMutex.h"
#include "Utils/qvResult.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <utility>
#include <vector>

class qvBRAW_Clip;
class qvBRAW_Instance;
class qvBRAW_Manager_Callback;
class qvBRAW_Request;
class qvParallelWorker;
class twSettingsInitData;

// The GPU framework a caller asks the codec to run on.
enum QV_GPU_DEVICE_FRAMEWORK : uint8_t {
    QV_GPU_DEVICE_FRAMEWORK_UNKNOWN = 0,
    QV_GPU_DEVICE_FRAMEWORK_CUDA = 1,
    QV_GPU_DEVICE_FRAMEWORK_OPENCL = 2,
    QV_GPU_DEVICE_FRAMEWORK_METAL = 3,
    QV_GPU_DEVICE_FRAMEWORK_CPU = 4,
};

// Requests of every queue, for FlushQueue and the request look-ups.
constexpr uint32_t TW_ALL_QUEUES = 0xFFFFFFFE;

class qvBRAW_Manager {
public:
    qvBRAW_Manager();
    // Release(), then the instance goes with the manager.
    ~qvBRAW_Manager();
    qvBRAW_Manager(const qvBRAW_Manager&) = delete;
    qvBRAW_Manager& operator=(const qvBRAW_Manager&) = delete;

    // Takes `instance` over and makes a codec on the CPU pipeline. A manager
    // starts once: 1 on a second call. 0 on success, 1 on failure.
    int32_t init(qvBRAW_Instance* instance);
    // A new codec for `pipeline`. With a codec already running, its clips are
    // closed and reopened on the new one under the same numbers, and every
    // queue is flushed. 0 on success, 1 on failure.
    int32_t initFromFramework(bool fromFramework, bool acceptAnyPipeline, const uint32_t& pipeline, void* context,
                              void* commandQueue);
    // Moves the codec to the framework's pipeline, unless it already runs
    // there. The importer itself always stays on the CPU.
    int32_t setCodecFromFrameWork(QV_GPU_DEVICE_FRAMEWORK& framework, void* context, void* commandQueue);
    void logCodecConfiguration();
    // The geometry each clip is opened through: no anamorphic treatment, and a
    // vertical flip when m_flipVertical is set. The HRESULT of the factory.
    // The caller owns the one reference: the registry keeps the geometries of
    // its clips, which hold them without one, and releases them after the clips.
    int32_t createGeometryForClip(IBlackmagicRawClipGeometry** out);
    int32_t Release();

    // --- Clip registry (ClipRegistry.cpp) ---
    // Clips are numbered densely from 0 in the order they were opened and stay
    // for the life of the manager; a clip that failed to open takes no number.

    // Opens `path` as a new clip under the next number, written to `id` even on
    // a failure. 0; 1 when the manager is in error or the library refuses the
    // file; the factory's HRESULT when no geometry could be made.
    int32_t AddClip(const qvUtf8String& path, uint64_t& id);
    // The number of the clip of `path`, reopened first when its file had gone
    // away; a new clip when the path is unknown. `wasKnown`, when given, says
    // which. 0, or the result of AddClip.
    int32_t AddClipIfNew(const qvUtf8String& path, uint64_t& id, bool* wasKnown);
    // Null for an unknown number. A closed clip is given all the same.
    std::shared_ptr<qvBRAW_Clip> GetClip(uint64_t id);
    // The first clip of exactly that path, and its number.
    bool GetClipIDFromFilepath(const qvUtf8String& path, uint64_t& id, std::shared_ptr<qvBRAW_Clip>& clip);
    // Read without the registry's lock.
    uint64_t GetClipsCount();
    // Closes the clip, which keeps its number. The clip's Close result, or 0
    // when there is none.
    int32_t CloseClip(uint64_t id);
    int32_t CloseClip(std::shared_ptr<qvBRAW_Clip> clip);
    // Reopens the clip when its file had gone away. 0, or 1 when there is no
    // codec or no such clip.
    int32_t reloadClipIfNeeded(uint64_t id);
    // The clip's settings data (into `data`) and metadata list (on the clip),
    // made from the clip and its first frame when wanted and not yet there.
    // `generated` says whether anything was made now.
    QvResult getAllDataFromClip(bool& generated, uint64_t id, bool wantSettings,
                                std::shared_ptr<twSettingsInitData>& data, bool wantMetadata);

    // --- Request queue ---
    // Locks: m_queueMutex before a request's m_mutex, never the other way
    // round; the library's callbacks take only the request's. FlushJobs is
    // never called under m_queueMutex.

    // Submits the request's read job (when it will decode) and queues it; a
    // request that failed to start is queued all the same, with its error.
    // 0 when queued without failure; 1 for no request; else the failure's
    // HRESULT.
    int32_t AddProcessFrameAsync(std::shared_ptr<qvBRAW_Request> request, bool sync);
    // Queues the request, waits until the library has run every job of the
    // codec (callbacks included) and takes the request out. 0 when it was found.
    int32_t ProcessFrameSync(std::shared_ptr<qvBRAW_Request> request);
    // The first entry that is `key` itself or, with acceptEquivalent, an
    // uncancelled one equal to it by key's operator==. `stillProcessing`
    // says that it isn't finished (it then stays queued). With remove, a
    // finished match leaves the queue. With statsOnly, only counts. 0.
    int32_t FindInQueue(std::shared_ptr<qvBRAW_Request> key, std::shared_ptr<qvBRAW_Request>& found,
                        bool& stillProcessing, bool remove, bool acceptEquivalent, bool statsOnly);
    // FindInQueue with remove; with waitProcessToFinish, an unfinished match is
    // waited for through FlushJobs and looked up again. 1 when it stayed
    // unfinished through the flush.
    int32_t GetFrame(std::shared_ptr<qvBRAW_Request> key, std::shared_ptr<qvBRAW_Request>& found,
                     bool& stillProcessing, bool acceptEquivalent, bool waitProcessToFinish);
    // Finished requests of that queue (or of all, with TW_ALL_QUEUES) leave the
    // queue; unfinished ones are cancelled and stay. 1 without a codec.
    int32_t FlushQueue(uint32_t queueID);
    // Takes that very request out of the queue. 0.
    int32_t removeFromQueue(qvBRAW_Request* request);
    uint64_t GetQueueSizeSafe();

    qvBRAW_Instance* m_instance = nullptr;
    IBlackmagicRawResourceManager* m_resourceManager = nullptr;
    IBlackmagicRawManualDecoderFlow1* m_manualDecoderFlow1 = nullptr;
    IBlackmagicRawManualDecoderFlow2* m_manualDecoderFlow2 = nullptr;
    QvResult m_errorInfo;
    bool m_useMetadataGeometry = false;
    bool m_flipVertical = false;
    std::unordered_map<uint64_t, std::shared_ptr<qvBRAW_Clip>> m_clips;
    std::mutex m_clipsMutex;
    std::vector<std::shared_ptr<qvBRAW_Request>> m_queue;
    qvMutex m_queueMutex{"QueueMutex"};
    IBlackmagicRaw* m_codec = nullptr;
    IBlackmagicRawConfiguration* m_configuration = nullptr;
    IBlackmagicRawConfigurationEx* m_configurationEx = nullptr;
    qvBRAW_Manager_Callback* m_callback = nullptr;
    qvParallelWorker* m_parallelWorker = nullptr;

private:
    // What only a decoded first frame tells: the settings data's frame facts
    // and the frame's metadata (into frameMetadata).
    QvResult probeFirstFrame(const std::shared_ptr<qvBRAW_Clip>& clip, bool needSettings, bool needMetadata,
                             std::vector<std::pair<qvUtf8String, qvUtf8String>>& frameMetadata);

    // The geometries the registry's clips were opened through, one reference
    // each: a clip holds its geometry without one. Under m_clipsMutex; released
    // after the clips.
    std::vector<IBlackmagicRawClipGeometry*> m_clipGeometries;

    // Releases and nulls the codec and its interfaces, in their fixed order.
    void releaseCodec();
};
