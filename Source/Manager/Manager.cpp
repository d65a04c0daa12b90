#include "Manager/Manager.h"

#include "Manager/Callback.h"
#include "Manager/Clip.h"
#include "Manager/Instance.h"
#include "Manager/qvParallelWorker.h"
#include "Manager/Request.h"
#include "Manager/twBufferManager.h"
#include "Manager/twComRelease.h"
#include "Utils/qvLogging.h"
#include "Utils/qvUtils.h"

#include <string>

namespace {

std::string frameworkLabel(QV_GPU_DEVICE_FRAMEWORK framework) {
    switch (framework) {
        case QV_GPU_DEVICE_FRAMEWORK_UNKNOWN: return "Unknown";
        case QV_GPU_DEVICE_FRAMEWORK_CUDA: return "CUDA";
        case QV_GPU_DEVICE_FRAMEWORK_OPENCL: return "OPENCL";
        case QV_GPU_DEVICE_FRAMEWORK_METAL: return "METAL";
        case QV_GPU_DEVICE_FRAMEWORK_CPU: return "CPU";
        default: return std::to_string(static_cast<unsigned>(framework));
    }
}

uint32_t pipelineOfFramework(QV_GPU_DEVICE_FRAMEWORK framework) {
    switch (framework) {
        case QV_GPU_DEVICE_FRAMEWORK_METAL: return blackmagicRawPipelineMetal;
        case QV_GPU_DEVICE_FRAMEWORK_OPENCL: return blackmagicRawPipelineOpenCL;
        case QV_GPU_DEVICE_FRAMEWORK_CUDA: return blackmagicRawPipelineCUDA;
        default: return blackmagicRawPipelineCPU;
    }
}

// The short forms of the configuration block; readers of old logs match them.
const char* shortPipelineLabel(uint32_t pipeline) {
    switch (pipeline) {
        case blackmagicRawPipelineCPU: return "CPU";
        case blackmagicRawPipelineCUDA: return "CUDA";
        case blackmagicRawPipelineMetal: return "Meta";
        case blackmagicRawPipelineOpenCL: return "OpenC";
        default: return "";
    }
}

const char* orEmpty(const char* text) { return text ? text : ""; }

}  // namespace

qvBRAW_Manager::qvBRAW_Manager() : m_errorInfo("", false) {}

qvBRAW_Manager::~qvBRAW_Manager() {
    Release();
    delete m_parallelWorker;
    m_parallelWorker = nullptr;
    if (m_instance) {
        m_instance->Release();
        delete m_instance;
        m_instance = nullptr;
    }
}

int32_t qvBRAW_Manager::init(qvBRAW_Instance* instance) {
    if (instance == nullptr) {
        QV_LOG(QV_LOG_ERR, "qvBRAW_Manager init - Instance is nullptr !");
        return 1;
    }
    m_instance = instance;
    if (!m_errorInfo.hasError) {
        QV_LOG(QV_LOG_ERR, "m_errorInfo should be on Error at init");
        return 1;
    }
    m_errorInfo = QvResult();
    if (!instance->m_BMInit) {
        m_errorInfo =
            QvResult("Blackmagic RAW library hasn't been found - Please Reinstall our Software from our website");
        QV_LOG(QV_LOG_ERR, "qvBRAW_Manager init - Instance BMInit was false");
        return 1;
    }
    if (instance->m_factory == nullptr) {
        m_errorInfo = QvResult("Manager Init : Factory is nullptr");
        QV_LOG(QV_LOG_ERR, "qvBRAW_Manager init - Instance Factory was nullptr");
        return 1;
    }
    if (!instance->isTheDllLastVersion()) {
        m_errorInfo = QvResult(
            "Blackmagic RAW library has not the good version  - Please Reinstall our Software from our website");
        QV_LOG(QV_LOG_ERR, "qvBRAW_Manager init - BlackmagicRawAPI seems to be an old version.");
        return 1;
    }
    return initFromFramework(false, instance->m_acceptAnyPipeline, blackmagicRawPipelineCPU, nullptr, nullptr);
}

int32_t qvBRAW_Manager::initFromFramework(bool fromFramework, bool acceptAnyPipeline, const uint32_t& pipeline,
                                          void* context, void* commandQueue) {
    if (m_instance == nullptr) return 1;
    HRESULT hr = S_OK;

    if (!m_instance->initPipeline(pipeline, blackmagicRawInstructionSetAVX2, acceptAnyPipeline, true)) {
        if (fromFramework) {
            QV_LOG(QV_LOG_ERR, "Pipeline Init Failed");
            return 1;
        }
        // Keeping the running codec on its device only makes sense when there
        // is one: at first start there is neither codec nor device to fall
        // back on, and the start fails.
        qvBRAW_GPU_Pipeline* current = m_instance->m_pipeline;
        if (m_configuration == nullptr || current == nullptr) {
            m_errorInfo = QvResult(
                "No pipeline of the Blackmagic RAW library could be initialized - Please Reinstall our Software "
                "from our website");
            QV_LOG(QV_LOG_ERR, "qvBRAW_Manager init - No pipeline and no running codec to fall back on");
            return 1;
        }
        hr = m_configuration->SetFromDevice(current->m_device);
        if (FAILED(hr)) {
            QV_LOG(QV_LOG_ERR, "Error while setting " << current->m_pipelineName.ToString()
                                                      << " pipeline to main Codec in setFromDevice : "
                                                      << qvUtils::getHRESULTerrorMessage(hr));
        }
    }

    // A switch: the clips leave the old codec, to be reopened on the new one.
    std::vector<uint64_t> reopened;
    if (m_codec) {
        FlushQueue(TW_ALL_QUEUES);
        for (auto& entry : m_clips) {
            if (!entry.second) continue;
            entry.second->Close(true);
            reopened.push_back(entry.first);
        }
        releaseCodec();
    }
    if (m_callback) {
        m_callback->Release();
        delete m_callback;
        m_callback = nullptr;
    }

    hr = m_instance->m_factory->CreateCodec(&m_codec);
    if (FAILED(hr) || m_codec == nullptr) {
        m_errorInfo = QvResult("Blackmagic Factory creation error : Abnormal error.");
        QV_LOG(QV_LOG_ERR, "qvBRAW_Manager init - Failed to create IBlackmagicRaw (CreateCodec function) : "
                               << qvUtils::getHRESULTerrorMessage(hr));
        return 1;
    }

    hr = m_codec->QueryInterface(IID_IBlackmagicRawConfiguration, reinterpret_cast<LPVOID*>(&m_configuration));
    if (FAILED(hr) || m_configuration == nullptr) {
        m_errorInfo = QvResult("Impossible to Query BlackmagicRawConfiguraton from Codec");
        QV_LOG(QV_LOG_ERR, "qvBRAW_Manager init - Impossible to query Configuration from Codec : "
                               << qvUtils::getHRESULTerrorMessage(hr));
        return 1;
    }

    qvBRAW_GPU_Pipeline* current = m_instance->m_pipeline;
    if (context && commandQueue && pipeline == blackmagicRawPipelineOpenCL) {
        hr = m_configuration->SetPipeline(blackmagicRawPipelineOpenCL, context, commandQueue);
        if (FAILED(hr)) {
            QV_LOG(QV_LOG_ERR,
                   "Impossible to Set OpenCL pipeline on new Codec: " << qvUtils::getHRESULTerrorMessage(hr));
        }
        if (current) {
            current->m_context = context;
            current->m_commandQueue = commandQueue;
        }
    } else if (current && current->m_pipeline != blackmagicRawPipelineCPU && current->m_device) {
        hr = m_configuration->SetFromDevice(current->m_device);
        if (FAILED(hr)) {
            QV_LOG(QV_LOG_ERR, "Impossible to SetFromDevice on new Codec : " << qvUtils::getHRESULTerrorMessage(hr));
        }
    }

    hr = m_codec->QueryInterface(IID_IBlackmagicRawConfigurationEx, reinterpret_cast<LPVOID*>(&m_configurationEx));
    if (FAILED(hr) || m_configurationEx == nullptr) {
        m_errorInfo = QvResult("Impossible to Get ConfigurationEx from Codec");
        QV_LOG(QV_LOG_ERR, "Impossible to Get ConfigurationEx from Codec" << qvUtils::getHRESULTerrorMessage(hr));
        return 1;
    }

    hr = m_configurationEx->GetResourceManager(&m_resourceManager);
    if (FAILED(hr) || m_resourceManager == nullptr) {
        m_errorInfo = QvResult("Impossible to Get ResourceManager from ConfigurationEx");
        QV_LOG(QV_LOG_ERR,
               "Impossible to Get ResourceManager from ConfigurationEx" << qvUtils::getHRESULTerrorMessage(hr));
        return 1;
    }

    hr = m_codec->QueryInterface(IID_IBlackmagicRawManualDecoderFlow1,
                                 reinterpret_cast<LPVOID*>(&m_manualDecoderFlow1));
    if (FAILED(hr) || m_manualDecoderFlow1 == nullptr) {
        m_errorInfo = QvResult("Impossible to Get ManualDecoderCPU from Codec");
        QV_LOG(QV_LOG_ERR, "Impossible to Get ManualDecoderCPU from Codec" << qvUtils::getHRESULTerrorMessage(hr));
        return 1;
    }

    if (current && current->m_pipeline != blackmagicRawPipelineCPU) {
        hr = m_codec->QueryInterface(IID_IBlackmagicRawManualDecoderFlow2,
                                     reinterpret_cast<LPVOID*>(&m_manualDecoderFlow2));
        if (FAILED(hr) || m_manualDecoderFlow2 == nullptr) {
            QV_LOG(QV_LOG_ERR, "Impossible to Get ManualDecoderGPU from Codec" << qvUtils::getHRESULTerrorMessage(hr));
        }
    }

    m_callback = new qvBRAW_Manager_Callback();
    hr = m_codec->SetCallback(m_callback);
    if (FAILED(hr)) {
        m_errorInfo = QvResult("Blackmagic Callback setting error : Abnormal error.");
        QV_LOG(QV_LOG_ERR, "qvBRAW_Manager init - Failed to set IBlackmagicRawCallback!");
        return 1;
    }

    logCodecConfiguration();

    for (uint64_t id : reopened) m_clips[id]->reload(m_codec);
    return 0;
}

int32_t qvBRAW_Manager::setCodecFromFrameWork(QV_GPU_DEVICE_FRAMEWORK& framework, void* context,
                                              void* commandQueue) {
    QV_LOG(QV_LOG_INFO, "Setting Codec to Framework : " << frameworkLabel(framework));
    const uint32_t pipeline = pipelineOfFramework(framework);
    const bool acceptAnyPipeline = framework == QV_GPU_DEVICE_FRAMEWORK_UNKNOWN;

    qvBRAW_GPU_Pipeline* current = m_instance ? m_instance->m_pipeline : nullptr;
    if (current == nullptr || current->m_pipeline != pipeline) {
        return initFromFramework(true, acceptAnyPipeline, pipeline, context, commandQueue);
    }
    // The queue is compared for equality, not difference: a repeat with the
    // same context and another queue counts as set, and a repeat with the same
    // context and the same queue makes a new codec. Hosts rely on it as it is.
    if (context && commandQueue && framework == QV_GPU_DEVICE_FRAMEWORK_OPENCL &&
        (context != current->m_context || commandQueue == current->m_commandQueue)) {
        QV_LOG(QV_LOG_WARN, "OpenCL Pipeline asked twice but not with same context / command queue !");
        return initFromFramework(true, acceptAnyPipeline, pipeline, context, commandQueue);
    }
    QV_LOG(QV_LOG_INFO, "Pipeline already set - No need to do anything here");
    return 0;
}

void qvBRAW_Manager::logCodecConfiguration() {
    if (m_configuration == nullptr) return;
    uint32_t threadCount = 0;
    uint32_t maxThreadCount = 0;
    bool cpu = false;
    bool cuda = false;
    bool metal = false;
    bool openCL = false;
    bool writeMetadataPerFrame = false;
    const char* version = nullptr;
    const char* cameraSupportVersion = nullptr;
    BlackmagicRawPipeline pipeline = blackmagicRawPipelineCPU;

    m_configuration->GetCPUThreads(&threadCount);
    m_configuration->GetMaxCPUThreadCount(&maxThreadCount);
    m_configuration->IsPipelineSupported(blackmagicRawPipelineCPU, &cpu);
    m_configuration->IsPipelineSupported(blackmagicRawPipelineCUDA, &cuda);
    m_configuration->IsPipelineSupported(blackmagicRawPipelineMetal, &metal);
    m_configuration->IsPipelineSupported(blackmagicRawPipelineOpenCL, &openCL);
    m_configuration->GetWriteMetadataPerFrame(&writeMetadataPerFrame);
    m_configuration->GetVersion(&version);
    m_configuration->GetCameraSupportVersion(&cameraSupportVersion);
    m_configuration->GetPipeline(&pipeline, nullptr, nullptr);

    QV_LOG(QV_LOG_INFO, "Thread : \n"
                            << "    - Count : " << threadCount << "\n"
                            << "    - MaxCount : " << maxThreadCount << "\n"
                            << "Pipeline supported : \n"
                            << "    - CPU : " << cpu << "\n"
                            << "    - CUDA : " << cuda << "\n"
                            << "    - METAL : " << metal << "\n"
                            << "    - OPENCL : " << openCL << "\n"
                            << "General Infos : \n"
                            << "    - Current Pipeline : " << shortPipelineLabel(pipeline) << "\n"
                            << "    - WriteMetadataPerFrame : " << writeMetadataPerFrame << "\n"
                            << "    - Version : " << orEmpty(version) << "\n"
                            << "    - Camera Supported Version : " << orEmpty(cameraSupportVersion) << "\n");
}

int32_t qvBRAW_Manager::createGeometryForClip(IBlackmagicRawClipGeometry** out) {
    if (out == nullptr || m_instance == nullptr || m_instance->m_factory == nullptr) return E_POINTER;
    HRESULT hr = m_instance->m_factory->CreateClipGeometry(out);
    if (FAILED(hr) || *out == nullptr) {
        if (SUCCEEDED(hr)) hr = E_FAIL;
        QV_LOG(QV_LOG_ERR, "Impossible to Create Clip Geometry .. " << qvUtils::getHRESULTerrorMessage(hr));
        return hr;
    }
    IBlackmagicRawClipGeometry* geometry = *out;
    BlackmagicRawRotation rotation = 0;
    BlackmagicRawAnamorphicRatio anamorphicRatio = 0;
    BlackmagicRawFlip flip = 0;
    geometry->GetRotation(&rotation);
    geometry->GetAnamorphicRatio(&anamorphicRatio);
    geometry->GetFlip(&flip);

    geometry->SetAnamorphicRatio(blackmagicRawAnamorphicRatioDisabled);
    if (m_useMetadataGeometry) geometry->SetAnamorphicRatio(blackmagicRawAnamorphicRatioFromMetadata);
    geometry->SetFlip(blackmagicRawFlipDisabled);
    if (m_flipVertical) {
        QV_LOG(QV_LOG_INFO, "Opening Clip with Flip Vertical");
        geometry->SetFlip(blackmagicRawFlipVertical);
    }
    return 0;
}

void qvBRAW_Manager::releaseCodec() {
    twReleaseAndNull(m_manualDecoderFlow1);
    twReleaseAndNull(m_manualDecoderFlow2);
    twReleaseAndNull(m_resourceManager);
    twReleaseAndNull(m_configurationEx);
    twReleaseAndNull(m_configuration);
    twReleaseAndNull(m_codec);
}

int32_t qvBRAW_Manager::Release() {
    QV_LOG(QV_LOG_INFO, "Releasing Global Manager");
    if (m_codec) m_codec->FlushJobs();

    // The queued requests give their buffers back to the resource manager
    // that made them, which goes with the codec below: after FlushJobs no
    // callback holds any of them.
    std::vector<std::shared_ptr<qvBRAW_Request>> requests;
    QV_LOCK_TRACED_AS(m_queueMutex, "QueueMutex");
    requests.swap(m_queue);
    m_queueMutex.unlock();
    requests.clear();

    QV_LOCK_TRACED(m_clipsMutex);
    if (!m_clips.empty()) m_clips.clear();
    // The clips held their geometries without a reference of their own.
    for (IBlackmagicRawClipGeometry* geometry : m_clipGeometries) geometry->Release();
    m_clipGeometries.clear();
    m_clipsMutex.unlock();

    releaseCodec();
    if (m_callback) {
        delete m_callback;
        m_callback = nullptr;
    }
    return 0;
}

int32_t qvBRAW_Manager::AddProcessFrameAsync(std::shared_ptr<qvBRAW_Request> request, bool sync) {
    if (!request) return 1;
    IBlackmagicRawJob* job = nullptr;
    HRESULT jobResult = S_OK;

    // A request that failed to start is queued all the same, with its error,
    // to be collected and shown like any other.
    auto fail = [&](int code, HRESULT hr, const qvUtf8String& text) -> int32_t {
        if (!text.Empty()) request->HandleError(code, hr, text, false);
        QV_LOCK_TRACED_AS(m_queueMutex, "QueueMutex");
        m_queue.push_back(request);
        m_queueMutex.unlock();
        if (job) job->Release();
        return FAILED(jobResult) ? jobResult : static_cast<int32_t>(0x80000008);
    };

    const bool willDecode = request->m_imageEnabled && request->m_errorCode == 0;
    request->m_jobInFlight = willDecode;
    request->m_isSync = sync;

    if (!willDecode) {
        request->BeginProcessing();
    } else {
        std::shared_ptr<qvBRAW_Clip> clip = GetClip(request->m_clipID);
        if (!clip) return fail(TW_REQUEST_ERROR_READ_JOB, 0, "Impossible to Get Clip ..!");
        twBufferManager* buffers = request->m_bufferManager;
        // Nothing to read into: the request can't start.
        if (buffers == nullptr) return fail(TW_REQUEST_ERROR_READ_JOB, 0, "AddProcessFrameAsync - no buffer manager");

        if (!clip->m_bmClipMutex.try_lock()) {
            qvLockTracedWait(clip->m_bmClipMutex, "twClip->m_bmClipMutex", __FILE__, __func__);
        }
        if (clip->m_BM == nullptr) {
            clip->m_bmClipMutex.unlock();
            return fail(TW_REQUEST_ERROR_READ_JOB, 0,
                        qvUtf8String("AddProcessFrameAsync - ") + (buffers->m_GPU ? "GPU" : "CPU") +
                            " bmClip is nullptr");
        }
        bool corrupted = false;
        const QvResult created = buffers->createReadJob(clip->m_BMEx, request->m_frame, &job, corrupted);
        clip->m_bmClipMutex.unlock();

        if (created.hasError || job == nullptr) {
            QV_LOG(QV_LOG_ERR, request->logPrefix().Str() << "Impossible to create Read Job : " << created.message);
            return fail(corrupted ? TW_REQUEST_ERROR_CORRUPTED_FRAME : TW_REQUEST_ERROR_READ_JOB, 0,
                        created.hasError ? created.toString() : qvUtf8String("Impossible to create Read Job"));
        }
        jobResult = job->SetUserData(request.get());
        if (FAILED(jobResult)) {
            return fail(TW_REQUEST_ERROR_READ_JOB, jobResult, "Failed SetUserData on Read Job");
        }
        QV_LOG(QV_LOG_INFO, request->logPrefix().Str() << "Submitting Job");
        request->m_chrono.start();
        jobResult = job->Submit();
        if (FAILED(jobResult)) {
            request->m_jobInFlight = false;
            return fail(TW_REQUEST_ERROR_READ_JOB, jobResult, "Failed to Submit Read Job");
        }
        // The library owns the job now; its first callback may already run.
        job->Release();
        job = nullptr;
    }

    QV_LOCK_TRACED_AS(m_queueMutex, "QueueMutex");
    m_queue.push_back(request);
    m_queueMutex.unlock();
    return 0;
}

int32_t qvBRAW_Manager::ProcessFrameSync(std::shared_ptr<qvBRAW_Request> request) {
    if (!request || request->m_errorCode != 0) return 1;
    AddProcessFrameAsync(request, true);
    // The wait is on every job of the codec, callbacks included.
    const HRESULT hr = m_codec ? m_codec->FlushJobs() : E_POINTER;
    if (hr != S_OK) {
        QV_LOG(QV_LOG_ERR, request->logPrefix().Str()
                               << "Impossible to Flush Jobs ! " << qvUtils::getHRESULTerrorMessage(hr));
        return 1;
    }
    std::shared_ptr<qvBRAW_Request> found;
    bool stillProcessing = false;
    FindInQueue(request, found, stillProcessing, true, false, false);
    if (found != request) QV_LOG(QV_LOG_ERR, "In Request is not the same than out_request ! Impossible in Sync Mode");
    if (stillProcessing) {
        QV_LOG(QV_LOG_ERR, request->logPrefix().Str() << "The Request is still processing after Jobs Flushed ..");
    }
    return found ? 0 : 1;
}

int32_t qvBRAW_Manager::FindInQueue(std::shared_ptr<qvBRAW_Request> key, std::shared_ptr<qvBRAW_Request>& found,
                                    bool& stillProcessing, bool remove, bool acceptEquivalent, bool statsOnly) {
    stillProcessing = false;
    QV_LOCK_TRACED_AS(m_queueMutex, "QueueMutex");
    if (m_queue.empty()) {
        m_queueMutex.unlock();
        return 0;
    }
    const bool withStats = g_logger.isLoggingActivated(QV_LOG_INFO);
    uint64_t readCount = 0;
    uint64_t decodeCount = 0;
    uint64_t importerCount = 0;
    bool matched = false;
    for (size_t index = 0; index < m_queue.size(); ++index) {
        const std::shared_ptr<qvBRAW_Request> request = m_queue[index];
        // The flags are the callbacks' to write: they are read under the
        // request's lock, counting included.
        if (!request->m_mutex.try_lock()) {
            qvLockTracedWait(request->m_mutex, "request->m_mutex", __FILE__, __func__);
        }
        if (withStats) {
            if (!request->m_readDone) {
                ++readCount;
            } else if (request->m_processDone) {
                if (!request->m_finished) ++importerCount;
            } else {
                ++decodeCount;
            }
        }
        if (statsOnly || !key) {
            request->m_mutex.unlock();
            continue;
        }
        const bool same = request.get() == key.get();
        if (!same && !(acceptEquivalent && !request->m_cancelled && key->operator==(*request))) {
            request->m_mutex.unlock();
            continue;
        }
        stillProcessing = !request->m_finished && request->m_imageEnabled && request->m_errorCode == 0;
        found = request;
        matched = true;
        if (remove && !stillProcessing) {
            const size_t before = m_queue.size();
            m_queue.erase(m_queue.begin() + static_cast<std::ptrdiff_t>(index));
            QV_LOG(QV_LOG_INFO, request->logPrefix().Str() << "Removed Queue, sizes " << before << "," << m_queue.size());
        }
        request->m_mutex.unlock();
        break;
    }
    if (withStats) {
        const qvUtf8String prefix = key ? key->logPrefix() : qvUtf8String();
        QV_LOG(QV_LOG_INFO, prefix.Str() << "QueueStats "
                                         << "RC " << readCount << ", DPC " << decodeCount << ", IPC " << importerCount
                                         << ", sz " << m_queue.size() << " Found: " << (matched ? 1 : 0)
                                         << " foundButStillProcessing: " << stillProcessing);
    }
    m_queueMutex.unlock();
    return 0;
}

int32_t qvBRAW_Manager::GetFrame(std::shared_ptr<qvBRAW_Request> key, std::shared_ptr<qvBRAW_Request>& found,
                                 bool& stillProcessing, bool acceptEquivalent, bool waitProcessToFinish) {
    found.reset();
    FindInQueue(key, found, stillProcessing, true, acceptEquivalent, false);
    if (!waitProcessToFinish) return 0;
    if (!found || !stillProcessing) return 0;

    found.reset();
    const HRESULT hr = m_codec ? m_codec->FlushJobs() : E_POINTER;
    if (hr != S_OK) QV_LOG(QV_LOG_ERR, "Impossible to Flush Jobs ! " << qvUtils::getHRESULTerrorMessage(hr));
    FindInQueue(key, found, stillProcessing, true, acceptEquivalent, false);
    if (!found || !stillProcessing) return 0;
    QV_LOG(QV_LOG_ERR, "Usually, Request are finished after Flushing Jobs ..");
    return 1;
}

int32_t qvBRAW_Manager::removeFromQueue(qvBRAW_Request* request) {
    if (request == nullptr) return 0;
    QV_LOCK_TRACED_AS(m_queueMutex, "QueueMutex");
    bool removed = false;
    for (auto entry = m_queue.begin(); entry != m_queue.end(); ++entry) {
        if (entry->get() == request) {
            m_queue.erase(entry);
            removed = true;
            break;
        }
    }
    if (!removed) QV_LOG(QV_LOG_ERR, "Request not found in Queue ... So has not been Removed From Queue ?");
    m_queueMutex.unlock();
    return 0;
}

uint64_t qvBRAW_Manager::GetQueueSizeSafe() {
    QV_LOCK_TRACED_AS(m_queueMutex, "QueueMutex");
    const uint64_t size = m_queue.size();
    m_queueMutex.unlock();
    return size;
}

int32_t qvBRAW_Manager::FlushQueue(uint32_t queueID) {
    if (m_codec == nullptr) return 1;
    // After it no callback runs, so no stage holds a request of the queue.
    m_codec->FlushJobs();

    QV_LOCK_TRACED_AS(m_queueMutex, "QueueMutex");
    const size_t before = m_queue.size();
    for (size_t index = m_queue.size(); index-- > 0;) {
        const std::shared_ptr<qvBRAW_Request> request = m_queue[index];
        QV_LOCK_TRACED(request->m_mutex);
        // Cancelled requests of other queues are swept up too.
        if (queueID != TW_ALL_QUEUES && request->m_queueID != queueID && !request->m_cancelled) {
            request->m_mutex.unlock();
            continue;
        }
        if (request->m_finished) {
            m_queue.erase(m_queue.begin() + static_cast<std::ptrdiff_t>(index));
        } else {
            QV_LOG(QV_LOG_ERR, request->logPrefix() << "Request not finished after FlushJobs!");
            request->Cancel();
        }
        request->m_mutex.unlock();
    }
    QV_LOG(QV_LOG_INFO, "Flushing Queue - size before/after :" << before << "/" << m_queue.size());
    m_queueMutex.unlock();
    return 0;
}
