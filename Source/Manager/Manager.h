#pragma once
// The one decoder object of the process (Global_Manager): it owns the library
// instance, the codec with its configuration and manual decoders, the job
// callback, the open clips and the queue of decode requests. A start that
// failed stays silent and keeps its reason in m_errorInfo, for the first file
// that the host opens.

#include <BlackmagicRawAPI.h>

#include "Utils/qvMutex.h"
#include "Utils/qvResult.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

class qvBRAW_Clip;
class qvBRAW_Instance;
class qvBRAW_Manager_Callback;
class qvBRAW_Request;
class qvParallelWorker;

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
    int32_t createGeometryForClip(IBlackmagicRawClipGeometry** out);
    int32_t Release();

    // Finished requests of that queue (or of all, with TW_ALL_QUEUES) leave the
    // queue; unfinished ones are cancelled and stay. 1 without a codec.
    int32_t FlushQueue(uint32_t queueID);

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
    // Releases and nulls the codec and its interfaces, in their fixed order.
    void releaseCodec();
};
