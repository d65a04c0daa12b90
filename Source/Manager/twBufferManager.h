#pragma once
// The owner of every buffer one frame needs on its way through the library's
// manual decoder flows: the bit stream, the frame state, the decoded buffer,
// the GPU working buffer and the processed buffer. Buffers are the library's
// resources, asked for stage by stage as their sizes become known; they grow
// only when a frame needs more and never shrink. Flow 1 is the CPU path, flow
// 2 the GPU path, chosen by the resource type given at construction.
//
// One manager belongs to one request and is used by one stage of it at a time,
// under the request's m_mutex: it has no lock of its own.

#include <BlackmagicRawAPI.h>

#include "String/qvUtf8String.h"
#include "Utils/qvResult.h"

#include <cstdint>

class twBufferManager {
public:
    // The three interfaces are borrowed. `resourceType` blackmagicRawResourceTypeBufferCPU
    // chooses flow 1; any other flow 2 with GPU resources of that type.
    twBufferManager(IBlackmagicRawResourceManager* resourceManager, IBlackmagicRawManualDecoderFlow1* flow1,
                    IBlackmagicRawManualDecoderFlow2* flow2, uint32_t resourceType, bool hybrid, void* context,
                    void* commandQueue);
    // Gives every resource back; a processed buffer that was handed in stays.
    ~twBufferManager();
    twBufferManager(const twBufferManager&) = delete;
    twBufferManager& operator=(const twBufferManager&) = delete;

    // The read job of `frame` into the bit stream, grown to the frame's size.
    // `corrupted` says that the library could not even size the frame.
    QvResult createReadJob(IBlackmagicRawClipEx* clip, uint64_t frame, IBlackmagicRawJob** job, bool& corrupted);
    // Both attribute objects may be null: the clip's own settings then stand.
    QvResult populateFrameStateBuffer(IBlackmagicRawFrame* frame, IBlackmagicRawClipProcessingAttributes* clipAttrs,
                                      IBlackmagicRawFrameProcessingAttributes* frameAttrs);
    QvResult createDecodeJob(IBlackmagicRawJob** job);
    QvResult createProcessJob(IBlackmagicRawJob** job);
    // The process job then renders straight into `*buffer`, which stays the
    // caller's: it is never released here.
    void setAllocatedProcessedBuffer(void** buffer, uint64_t sizeBytes);
    // The clip's post 3D LUT resources, for the process job. Not owned.
    QvResult fillLut3DBuffersFromClipProcessing(IBlackmagicRawClipProcessingAttributes* clipAttrs);
    // The processed buffer when it is CPU memory; "Not Implemented" for hybrid
    // GPU decoding, which has no copy back.
    QvResult convertFinalProcessedBufferToCPU(void** out);
    QvResult allocateCPUBuffer(void** out, uint32_t sizeBytes);
    QvResult releaseCPUBuffer(void** buffer);

    // "[Q<queue>C<clip>#<frame>I<unique>] " from the copies below.
    qvUtf8String logPrefix() const;

    uint64_t m_queueID = 0;
    uint64_t m_uniqueID = 0;
    uint64_t m_clipID = 0;
    uint64_t m_frame = 0;
    IBlackmagicRawResourceManager* m_resourceManager;
    IBlackmagicRawManualDecoderFlow1* m_flow1;
    IBlackmagicRawManualDecoderFlow2* m_flow2;
    void* m_post3DLUTGPU = nullptr;
    void* m_post3DLUTCPU = nullptr;
    void* m_context;
    void* m_commandQueue;
    bool m_GPU;
    bool m_hybrid;
    uint32_t m_resourceType;
    uint32_t m_bitStreamSize = 0;
    void* m_bitStream = nullptr;
    uint32_t m_frameStateSize = 0;
    void* m_frameState = nullptr;
    uint32_t m_decodedBufferSize = 0;
    void* m_decodedBufferCPU = nullptr;
    void* m_decodedBufferGPU = nullptr;
    uint32_t m_workingBufferSize = 0;
    void* m_workingBuffer = nullptr;
    uint32_t m_processedBufferSize = 0;
    void* m_processedBuffer = nullptr;
    bool m_ownsProcessedBuffer = true;
    // The request's output buffer, as setup gave it.
    void* m_outBuffer = nullptr;
    // Where the finished picture is: the output buffer, or the processed
    // buffer itself when the library rendered straight into the output.
    void* m_finalImageBuffer = nullptr;
    // The pipeline the codec runs on (blackmagicRawPipelineCPU...), for the
    // messages of a copy that a GPU pipeline cannot make. Set by the creator.
    uint32_t m_pipeline = blackmagicRawPipelineCPU;

private:
    // Releases `*resource` (when set) and creates one of `size` bytes in its
    // place; `what` names it in the texts of a failure.
    QvResult growCPUResource(void** resource, uint32_t size, const char* releaseError, const char* createError);
    QvResult growGPUResource(void** resource, uint32_t size, BlackmagicRawResourceUsage usage,
                             const char* releaseError, const char* createError, bool release);
    void releaseResourceLogged(void** resource, BlackmagicRawResourceType type, void* context, void* commandQueue,
                               const char* name);
};
