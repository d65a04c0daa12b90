#pragma once
// The codec: opens clips, carries the callback and FlushJobs, and answers for
// its configuration, its extended configuration and the tone curves. The two
// manual decoder flows are objects of their own that the codec hands out.

#include "Library/RefCodecCore.h"
#include "Library/RefLibObject.h"

#include <memory>
#include <mutex>

namespace twref {

class RefResourceManager;

class RefCodec final : public RefLibObject,
                       public IBlackmagicRaw,
                       public IBlackmagicRawConfiguration,
                       public IBlackmagicRawConfigurationEx,
                       public IBlackmagicRawToneCurve {
public:
    explicit RefCodec(std::shared_ptr<const RefLibraryConfig> config);
    ~RefCodec() override;

    const std::shared_ptr<RefCodecCore>& core() const { return m_core; }

    HRESULT QueryInterface(REFIID iid, LPVOID* out) override;
    TW_REF_REFCOUNTED

    // IBlackmagicRaw
    HRESULT OpenClip(const char* fileName, IBlackmagicRawClip** clip) override;
    HRESULT OpenClipWithGeometry(const char* fileName, IBlackmagicRawClipGeometry* geometry,
                                 IBlackmagicRawClip** clip) override;
    HRESULT SetCallback(IBlackmagicRawCallback* callback) override;
    HRESULT PreparePipeline(BlackmagicRawPipeline pipeline, void* pipelineContext, void* pipelineCommandQueue,
                            void* userData) override;
    HRESULT PreparePipelineForDevice(IBlackmagicRawPipelineDevice* pipelineDevice, void* userData) override;
    HRESULT FlushJobs() override;

    // IBlackmagicRawConfiguration
    HRESULT SetPipeline(BlackmagicRawPipeline pipeline, void* pipelineContext, void* pipelineCommandQueue) override;
    HRESULT GetPipeline(BlackmagicRawPipeline* pipeline, void** pipelineContextOut,
                        void** pipelineCommandQueueOut) override;
    HRESULT IsPipelineSupported(BlackmagicRawPipeline pipeline, bool* pipelineSupported) override;
    HRESULT SetCPUThreads(uint32_t threadCount) override;
    HRESULT GetCPUThreads(uint32_t* threadCount) override;
    HRESULT GetMaxCPUThreadCount(uint32_t* threadCount) override;
    HRESULT SetWriteMetadataPerFrame(bool writePerFrame) override;
    HRESULT GetWriteMetadataPerFrame(bool* writePerFrame) override;
    HRESULT SetFromDevice(IBlackmagicRawPipelineDevice* pipelineDevice) override;
    HRESULT GetVersion(const char** version) override;
    HRESULT GetCameraSupportVersion(const char** version) override;

    // IBlackmagicRawConfigurationEx
    HRESULT GetResourceManager(IBlackmagicRawResourceManager** resourceManager) override;
    HRESULT SetResourceManager(IBlackmagicRawResourceManager* resourceManager) override;
    HRESULT GetInstructionSet(BlackmagicRawInstructionSet* instructionSet) override;
    HRESULT SetInstructionSet(BlackmagicRawInstructionSet instructionSet) override;
    HRESULT GetSizeLimit(BlackmagicRawSizeLimit* sizeLimit, uint32_t* sizeLimitWidth,
                         uint32_t* sizeLimitHeight) override;
    HRESULT SetSizeLimit(BlackmagicRawSizeLimit sizeLimit, uint32_t sizeLimitWidth, uint32_t sizeLimitHeight) override;

    // IBlackmagicRawToneCurve
    HRESULT GetToneCurve(const char* cameraType, const char* gamma, uint16_t gen, float* contrast, float* saturation,
                         float* midpoint, float* highlights, float* shadows, float* blackLevel, float* whiteLevel,
                         uint16_t* videoBlackLevel) override;
    HRESULT EvaluateToneCurve(const char* cameraType, uint16_t gen, float contrast, float saturation, float midpoint,
                              float highlights, float shadows, float blackLevel, float whiteLevel,
                              uint16_t videoBlackLevel, float* array, uint32_t arrayElementCount) override;

private:
    HRESULT open(const char* fileName, IBlackmagicRawClipGeometry* geometry, const char* method,
                 IBlackmagicRawClip** clip);
    // A pipeline change gives the codec a new default resource manager.
    void renewResourceManager();

    std::shared_ptr<RefCodecCore> m_core;
    std::mutex m_mutex;
    RefResourceManager* m_resourceManager = nullptr;
};

}  // namespace twref
