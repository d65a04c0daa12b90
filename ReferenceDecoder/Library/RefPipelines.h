#pragma once
// Pipeline discovery: the pipeline iterator, the device iterator of one
// pipeline, and the device objects, all over the codec-level facts.

#include "Library/RefFaultHooks.h"
#include "Library/RefLibObject.h"
#include "Library/RefLibraryConfig.h"

#include <memory>
#include <vector>

namespace twref {

class RefPipelineIterator final : public RefLibObject, public IBlackmagicRawPipelineIterator {
public:
    RefPipelineIterator(std::vector<RefPipelineConfig> pipelines, std::shared_ptr<RefFaultHooks> hooks);

    HRESULT QueryInterface(REFIID iid, LPVOID* out) override;
    TW_REF_REFCOUNTED
    HRESULT Next() override;
    HRESULT GetName(const char** pipelineName) override;
    HRESULT GetInterop(BlackmagicRawInterop* interop) override;
    HRESULT GetPipeline(BlackmagicRawPipeline* pipeline) override;

private:
    const RefPipelineConfig* current() const;
    std::vector<RefPipelineConfig> m_pipelines;
    std::shared_ptr<RefFaultHooks> m_hooks;
    size_t m_index = 0;
};

class RefPipelineDeviceIterator final : public RefLibObject, public IBlackmagicRawPipelineDeviceIterator {
public:
    RefPipelineDeviceIterator(RefPipelineConfig pipeline, std::shared_ptr<RefFaultHooks> hooks);

    HRESULT QueryInterface(REFIID iid, LPVOID* out) override;
    TW_REF_REFCOUNTED
    HRESULT Next() override;
    HRESULT GetPipeline(BlackmagicRawPipeline* pipeline) override;
    HRESULT GetInterop(BlackmagicRawInterop* interop) override;
    HRESULT CreateDevice(IBlackmagicRawPipelineDevice** pipelineDevice) override;

private:
    RefPipelineConfig m_pipeline;
    std::shared_ptr<RefFaultHooks> m_hooks;
    size_t m_index = 0;
};

class RefPipelineDevice final : public RefLibObject, public IBlackmagicRawPipelineDevice {
public:
    RefPipelineDevice(const RefPipelineConfig& pipeline, RefDeviceConfig device, std::shared_ptr<RefFaultHooks> hooks);

    HRESULT QueryInterface(REFIID iid, LPVOID* out) override;
    TW_REF_REFCOUNTED
    HRESULT SetBestInstructionSet() override;
    HRESULT SetInstructionSet(BlackmagicRawInstructionSet instructionSet) override;
    HRESULT GetInstructionSet(BlackmagicRawInstructionSet* instructionSet) override;
    HRESULT GetIndex(uint32_t* deviceIndex) override;
    HRESULT GetName(const char** deviceName) override;
    HRESULT GetInterop(BlackmagicRawInterop* interop) override;
    HRESULT GetPipeline(BlackmagicRawPipeline* pipeline, void** context, void** commandQueue) override;
    HRESULT GetPipelineName(const char** pipelineName) override;
    HRESULT GetOpenGLInteropHelper(IBlackmagicRawOpenGLInteropHelper** interopHelper) override;
    HRESULT GetSupportedResourceFormats(BlackmagicRawResourceFormat* resourceFormats,
                                        uint32_t* resourceFormatCount) override;
    HRESULT GetMaximumTextureSize(uint32_t* maximumWidth, uint32_t* maximumHeight) override;

private:
    BlackmagicRawPipeline m_pipeline;
    BlackmagicRawInterop m_interop;
    std::string m_pipelineName;
    RefDeviceConfig m_device;
    std::shared_ptr<RefFaultHooks> m_hooks;
};

}  // namespace twref
