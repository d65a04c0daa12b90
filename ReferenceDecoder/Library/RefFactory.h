#pragma once
// The factory the exported CreateBlackmagicRawFactoryInstance returns, with
// the codec-level facts read when it was made.

#include "Library/RefFaultHooks.h"
#include "Library/RefLibObject.h"
#include "Library/RefLibraryConfig.h"

#include <memory>

namespace twref {

class RefFactory final : public RefLibObject, public IBlackmagicRawFactory {
public:
    explicit RefFactory(std::shared_ptr<const RefLibraryConfig> config);

    HRESULT QueryInterface(REFIID iid, LPVOID* out) override;
    TW_REF_REFCOUNTED
    HRESULT CreateCodec(IBlackmagicRaw** codec) override;
    HRESULT CreatePipelineIterator(BlackmagicRawInterop interop,
                                   IBlackmagicRawPipelineIterator** pipelineIterator) override;
    HRESULT CreatePipelineDeviceIterator(BlackmagicRawPipeline pipeline, BlackmagicRawInterop interop,
                                         IBlackmagicRawPipelineDeviceIterator** deviceIterator) override;
    HRESULT CreateClipGeometry(IBlackmagicRawClipGeometry** geometry) override;

private:
    std::shared_ptr<const RefLibraryConfig> m_config;
    std::shared_ptr<RefFaultHooks> m_hooks;
};

}  // namespace twref
