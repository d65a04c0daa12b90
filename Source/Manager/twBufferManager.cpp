#include "Manager/twBufferManager.h"

#include "Manager/twComRelease.h"
#include "Utils/qvLogging.h"
#include "Utils/qvUtils.h"

#include <sstream>
#include <string>

namespace {

std::string errorText(HRESULT hr) { return qvUtils::getHRESULTerrorMessage(hr).Str(); }

QvResult failure(const std::string& text, HRESULT hr) { return QvResult(qvUtf8String(text + errorText(hr))); }

constexpr BlackmagicRawResourceType kCPU = blackmagicRawResourceTypeBufferCPU;
constexpr BlackmagicRawResourceUsage kCPUUsage = blackmagicRawResourceUsageReadCPUWriteCPU;

}  // namespace

twBufferManager::twBufferManager(IBlackmagicRawResourceManager* resourceManager,
                                 IBlackmagicRawManualDecoderFlow1* flow1, IBlackmagicRawManualDecoderFlow2* flow2,
                                 uint32_t resourceType, bool hybrid, void* context, void* commandQueue)
    : m_resourceManager(resourceManager),
      m_flow1(flow1),
      m_flow2(flow2),
      m_context(context),
      m_commandQueue(commandQueue),
      m_GPU(resourceType != blackmagicRawResourceTypeBufferCPU),
      m_hybrid(hybrid && m_GPU),
      m_resourceType(resourceType) {}

twBufferManager::~twBufferManager() {
    if (m_resourceManager == nullptr) return;
    releaseResourceLogged(&m_bitStream, kCPU, nullptr, nullptr, "m_bitStream");
    releaseResourceLogged(&m_frameState, kCPU, nullptr, nullptr, "m_frameState");
    releaseResourceLogged(&m_decodedBufferCPU, kCPU, nullptr, nullptr, "m_decodedBufferCPU");
    releaseResourceLogged(&m_decodedBufferGPU, m_resourceType, m_context, m_commandQueue, "m_decodedBufferGPU");
    releaseResourceLogged(&m_workingBuffer, m_resourceType, m_context, m_commandQueue, "m_workingBuffer");
    if (m_processedBuffer && m_ownsProcessedBuffer) {
        QV_LOG(QV_LOG_INFO, logPrefix().Str() << "- Releasing Processed Buffer");
        // The CPU path keeps its processed buffer among the CPU resources.
        if (m_GPU) {
            releaseResourceLogged(&m_processedBuffer, m_resourceType, m_context, m_commandQueue, "m_processedBuffer");
        } else {
            releaseResourceLogged(&m_processedBuffer, kCPU, nullptr, nullptr, "m_processedBuffer");
        }
    }
}

void twBufferManager::releaseResourceLogged(void** resource, BlackmagicRawResourceType type, void* context,
                                            void* commandQueue, const char* name) {
    if (*resource == nullptr) return;
    const HRESULT hr = m_resourceManager->ReleaseResource(context, commandQueue, *resource, type);
    if (FAILED(hr)) {
        QV_LOG(QV_LOG_ERR, "Impossible to release Resource : " << name << " : " << errorText(hr));
    }
    *resource = nullptr;
}

qvUtf8String twBufferManager::logPrefix() const {
    std::ostringstream text;
    text << "[Q" << m_queueID << "C" << m_clipID << "#" << m_frame << "I" << m_uniqueID << "] ";
    return text.str();
}

QvResult twBufferManager::growCPUResource(void** resource, uint32_t size, const char* releaseError,
                                          const char* createError) {
    if (*resource) {
        const HRESULT hr = m_resourceManager->ReleaseResource(nullptr, nullptr, *resource, kCPU);
        if (FAILED(hr)) return failure(releaseError, hr);
        *resource = nullptr;
    }
    const HRESULT hr = m_resourceManager->CreateResource(nullptr, nullptr, size, kCPU, kCPUUsage, resource);
    if (FAILED(hr) || *resource == nullptr) return failure(createError, FAILED(hr) ? hr : E_FAIL);
    return QvResult();
}

QvResult twBufferManager::growGPUResource(void** resource, uint32_t size, BlackmagicRawResourceUsage usage,
                                          const char* releaseError, const char* createError, bool release) {
    if (release && *resource) {
        const HRESULT hr = m_resourceManager->ReleaseResource(m_context, m_commandQueue, *resource, m_resourceType);
        if (FAILED(hr)) return failure(releaseError, hr);
        *resource = nullptr;
    }
    const HRESULT hr =
        m_resourceManager->CreateResource(m_context, m_commandQueue, size, m_resourceType, usage, resource);
    if (FAILED(hr) || *resource == nullptr) return failure(createError, FAILED(hr) ? hr : E_FAIL);
    return QvResult();
}

QvResult twBufferManager::createReadJob(IBlackmagicRawClipEx* clip, uint64_t frame, IBlackmagicRawJob** job,
                                        bool& corrupted) {
    corrupted = false;
    if (clip == nullptr || job == nullptr) return QvResult("createReadJob - clip or job is nullptr");
    uint32_t size = 0;
    HRESULT hr = clip->GetBitStreamSizeBytes(frame, &size);
    if (FAILED(hr)) {
        corrupted = true;
        std::string text = "Frame seems to be corrupted";
        const std::string library = errorText(hr);
        if (library != "Unspecified error") text += " - " + library;
        return QvResult(qvUtf8String(text));
    }
    QV_LOG(QV_LOG_INFO, logPrefix().Str() << "- bitStreamSizeBytes : " << size);

    if (size > m_bitStreamSize) {
        QV_LOG(QV_LOG_INFO, logPrefix().Str() << " - New m_bitStream Buff" << size
                                              << (m_bitStreamSize ? " - Previous Size: " : "")
                                              << (m_bitStreamSize ? std::to_string(m_bitStreamSize) : ""));
        const QvResult grown = growCPUResource(&m_bitStream, size, "Impossible to Release current BitStream Resource - ",
                                               "Impossible to Create BitStream Resource - ");
        if (grown.hasError) return grown;
        m_bitStreamSize = size;
    }

    hr = clip->CreateJobReadFrame(frame, m_bitStream, size, job);
    if (FAILED(hr)) return failure("Impossible to Create Job Read Frame - ", hr);
    return QvResult();
}

QvResult twBufferManager::populateFrameStateBuffer(IBlackmagicRawFrame* frame,
                                                   IBlackmagicRawClipProcessingAttributes* clipAttrs,
                                                   IBlackmagicRawFrameProcessingAttributes* frameAttrs) {
    uint32_t size = 0;
    HRESULT hr = S_OK;
    if (m_GPU) {
        if (m_flow2 == nullptr) return QvResult("Failed GPU GetFrameStateSizeBytes - no GPU decoder");
        hr = m_flow2->GetFrameStateSizeBytes(&size);
        if (FAILED(hr)) return failure("Failed GPU GetFrameStateSizeBytes ", hr);
        QV_LOG(QV_LOG_INFO, logPrefix().Str() << "- frameStateSizeBytes : " << size);
    } else {
        if (m_flow1 == nullptr) return QvResult("Failed CPU GetFrameStateSizeBytes - no CPU decoder");
        hr = m_flow1->GetFrameStateSizeBytes(&size);
        if (FAILED(hr)) return failure("Failed CPU GetFrameStateSizeBytes ", hr);
    }

    if (size > m_frameStateSize) {
        QV_LOG(QV_LOG_INFO,
               logPrefix().Str() << " - Allocating New Buffer for m_frameState - Previous Size : " << m_frameStateSize);
        const QvResult grown = growCPUResource(&m_frameState, size, "Failed Releasing CPU Resource FrameState ",
                                               "Failed Creating CPU Resource FrameState ");
        if (grown.hasError) return grown;
        m_frameStateSize = size;
    }

    hr = m_GPU ? m_flow2->PopulateFrameStateBuffer(frame, clipAttrs, frameAttrs, m_frameState, size)
               : m_flow1->PopulateFrameStateBuffer(frame, clipAttrs, frameAttrs, m_frameState, size);
    if (FAILED(hr)) return failure("Failed Populating FrameState Buffer ", hr);
    return QvResult();
}

QvResult twBufferManager::createDecodeJob(IBlackmagicRawJob** job) {
    if (m_GPU ? m_flow2 == nullptr : m_flow1 == nullptr) return QvResult("Failed GetDecodedSizeBytes - no decoder");
    uint32_t size = 0;
    HRESULT hr = m_GPU ? m_flow2->GetDecodedSizeBytes(m_frameState, &size)
                       : m_flow1->GetDecodedSizeBytes(m_frameState, &size);
    if (FAILED(hr)) return failure("Failed GetDecodedSizeBytes ", hr);
    QV_LOG(QV_LOG_INFO, logPrefix().Str() << " - decodedBufferSizeBytes : " << size);

    if (size > m_decodedBufferSize) {
        QV_LOG(QV_LOG_INFO, logPrefix().Str() << " - New m_decodedBuffer Buff");
        if (m_decodedBufferCPU) {
            hr = m_resourceManager->ReleaseResource(nullptr, nullptr, m_decodedBufferCPU, kCPU);
            if (FAILED(hr)) return failure("Failed Releasing CPU Resource ", hr);
            m_decodedBufferCPU = nullptr;
        }
        if (m_GPU) {
            QV_LOG(QV_LOG_INFO, logPrefix().Str() << " - Allocating New Buffer for m_decodedBufferGPU too");
            if (m_decodedBufferGPU) {
                hr = m_resourceManager->ReleaseResource(m_context, m_commandQueue, m_decodedBufferGPU, m_resourceType);
                if (FAILED(hr)) return failure("Failed Releasing GPU Resource ", hr);
                m_decodedBufferGPU = nullptr;
            }
        }
        const QvResult created = growCPUResource(&m_decodedBufferCPU, size, "Failed Releasing CPU Resource ",
                                                 "Failed Creating CPU Resource ");
        if (created.hasError) return created;
        if (m_GPU) {
            const QvResult createdGPU =
                growGPUResource(&m_decodedBufferGPU, size, blackmagicRawResourceUsageReadGPUWriteCPU,
                                "Failed Releasing GPU Resource ", "Failed Creating GPU Resource ", false);
            if (createdGPU.hasError) return createdGPU;
        }
        m_decodedBufferSize = size;
    }

    hr = m_GPU ? m_flow2->CreateJobDecode(m_frameState, m_bitStream, m_decodedBufferCPU, job)
               : m_flow1->CreateJobDecode(m_frameState, m_bitStream, m_decodedBufferCPU, job);
    if (FAILED(hr)) return failure("Failed Created Job Decode ", hr);
    return QvResult();
}

QvResult twBufferManager::createProcessJob(IBlackmagicRawJob** job) {
    uint32_t size = 0;
    HRESULT hr = S_OK;
    if (!m_GPU) {
        if (m_flow1 == nullptr) return QvResult("Failed GetProcessedSizeBytes - no CPU decoder");
        hr = m_flow1->GetProcessedSizeBytes(m_frameState, &size);
        if (FAILED(hr)) return failure("Failed GetProcessedSizeBytes ", hr);
        QV_LOG(QV_LOG_INFO, logPrefix().Str() << " - CPU processedBufferSizeBytes : " << size);
        if (size > m_processedBufferSize) {
            QV_LOG(QV_LOG_INFO, logPrefix().Str() << " - New CPU m_processedBuffer Buff");
            // A buffer that was handed in and is too small stays its owner's;
            // the process job gets one of ours instead.
            if (m_processedBuffer && !m_ownsProcessedBuffer) m_processedBuffer = nullptr;
            const QvResult grown =
                growCPUResource(&m_processedBuffer, size, "Failed Releasing CPU ProcessedBuffer Resource ",
                                "Failed Creating CPU ProcessedBuffer Resource ");
            if (grown.hasError) return grown;
            QV_LOG(QV_LOG_INFO, logPrefix().Str() << " - Allocated CPU Buffer was size : " << m_processedBufferSize
                                                  << " But needed size is : " << size);
            m_processedBufferSize = size;
            m_ownsProcessedBuffer = true;
        }
        hr = m_flow1->CreateJobProcess(m_frameState, m_decodedBufferCPU, m_processedBuffer, m_post3DLUTCPU, job);
        if (FAILED(hr)) return failure("Failed Creating CPU Process Job", hr);
        return QvResult();
    }

    if (m_flow2 == nullptr) return QvResult("Failed GPU GetProcessedSizeBytes - no GPU decoder");
    hr = m_flow2->GetProcessedSizeBytes(m_frameState, &size);
    if (FAILED(hr)) return failure("Failed GPU GetProcessedSizeBytes ", hr);
    uint32_t working = 0;
    hr = m_flow2->GetWorkingSizeBytes(m_frameState, &working);
    if (FAILED(hr)) return failure("Failed GPU GetWorkingSizeBytes ", hr);
    QV_LOG(QV_LOG_INFO, logPrefix().Str() << " - GPU workingBufferSizeBytes : " << working);
    if (working > m_workingBufferSize) {
        QV_LOG(QV_LOG_INFO, logPrefix().Str() << " - New GPU m_workingBuffer Buff");
        const QvResult grown =
            growGPUResource(&m_workingBuffer, working, blackmagicRawResourceUsageReadGPUWriteGPU,
                            "Failed Releasing GPU WorkingBuffer Resource ", "Failed Creating GPU WorkingBuffer Resource ",
                            true);
        if (grown.hasError) return grown;
        m_workingBufferSize = working;
    }
    QV_LOG(QV_LOG_INFO, logPrefix().Str() << " - GPU processedBufferSizeBytes : " << size);
    if (size > m_processedBufferSize) {
        QV_LOG(QV_LOG_INFO, logPrefix().Str() << " - New GPU m_processedBuffer Buff");
        if (m_processedBuffer && !m_ownsProcessedBuffer) m_processedBuffer = nullptr;
        const QvResult grown =
            growGPUResource(&m_processedBuffer, size, blackmagicRawResourceUsageReadGPUWriteGPU,
                            "Failed Releasing GPU ProcessedBuffer Resource ",
                            "Failed Creating GPU ProcessedBuffer Resource ", true);
        if (grown.hasError) return grown;
        m_processedBufferSize = size;
        m_ownsProcessedBuffer = true;
    }
    uint32_t decoded = 0;
    hr = m_flow2->GetDecodedSizeBytes(m_frameState, &decoded);
    if (FAILED(hr)) return failure("Failed GPU GetDecodedSizeBytes ", hr);
    hr = m_resourceManager->CopyResource(m_context, m_commandQueue, m_decodedBufferCPU, kCPU, m_decodedBufferGPU,
                                         m_resourceType, decoded, true);
    if (FAILED(hr)) return failure("Failed Copying DecodedBuffer Resource from CPU to GPU ", hr);
    hr = m_flow2->CreateJobProcess(m_context, m_commandQueue, m_frameState, m_decodedBufferGPU, m_workingBuffer,
                                   m_processedBuffer, m_post3DLUTGPU, job);
    if (FAILED(hr)) return failure("Failed Creating GPU Process Job ", hr);
    return QvResult();
}

void twBufferManager::setAllocatedProcessedBuffer(void** buffer, uint64_t sizeBytes) {
    QV_LOG(QV_LOG_INFO, logPrefix().Str() << "- Processed Buff allocated");
    m_ownsProcessedBuffer = false;
    m_processedBuffer = *buffer;
    m_processedBufferSize = static_cast<uint32_t>(sizeBytes);
}

QvResult twBufferManager::fillLut3DBuffersFromClipProcessing(IBlackmagicRawClipProcessingAttributes* clipAttrs) {
    if (clipAttrs == nullptr) return QvResult("Impossible to get Post3DLUT if clipAttrs is nullptr");
    IBlackmagicRawPost3DLUT* lut = nullptr;
    HRESULT hr = clipAttrs->GetPost3DLUT(&lut);
    if (FAILED(hr)) return failure("Failed Getting Post3DLUT ", hr);
    if (lut == nullptr) return QvResult();

    QvResult result;
    if (m_GPU && m_commandQueue) {
        BlackmagicRawResourceType type = 0;
        hr = lut->GetResourceGPU(m_context, m_commandQueue, &type, &m_post3DLUTGPU);
        if (FAILED(hr)) {
            result = failure("Failed Getting GPU Resource ", hr);
        } else if (type != m_resourceType) {
            QV_LOG(QV_LOG_ERR, "Error : Post3D Lut Resource Type is different than Request resource Type");
        }
    }
    if (!result.hasError) {
        hr = lut->GetResourceCPU(&m_post3DLUTCPU);
        if (FAILED(hr)) result = failure("Failed Getting CPU Resource ", hr);
    }
    // The LUT object goes in every case; its resources stay the clip's.
    twReleaseAndNull(lut);
    return result;
}

QvResult twBufferManager::convertFinalProcessedBufferToCPU(void** out) {
    if (m_hybrid && m_GPU) return QvResult("Not Implemented");
    *out = m_processedBuffer;
    return QvResult();
}

QvResult twBufferManager::allocateCPUBuffer(void** out, uint32_t sizeBytes) {
    const HRESULT hr = m_resourceManager->CreateResource(nullptr, nullptr, sizeBytes, kCPU, kCPUUsage, out);
    if (FAILED(hr)) return failure("Failed Creating CPU Buffer ", hr);
    return QvResult();
}

QvResult twBufferManager::releaseCPUBuffer(void** buffer) {
    if (buffer == nullptr || *buffer == nullptr) return QvResult("Failed Releasing CPU Buffer, cpuBuffer arg is nullptr");
    const HRESULT hr = m_resourceManager->ReleaseResource(nullptr, nullptr, *buffer, kCPU);
    if (FAILED(hr)) return failure("Failed Releasing CPU Buffer ", hr);
    *buffer = nullptr;
    return QvResult();
}
