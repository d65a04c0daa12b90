#pragma once
// The geometry a clip is opened or cloned with.

#include "Library/RefFaultHooks.h"
#include "Library/RefLibObject.h"

#include <atomic>
#include <memory>

namespace twref {

class RefClipGeometry final : public RefLibObject, public IBlackmagicRawClipGeometry {
public:
    explicit RefClipGeometry(std::shared_ptr<RefFaultHooks> hooks);

    HRESULT QueryInterface(REFIID iid, LPVOID* out) override;
    TW_REF_REFCOUNTED
    HRESULT GetAnamorphicRatio(BlackmagicRawAnamorphicRatio* anamorphic) override;
    HRESULT SetAnamorphicRatio(BlackmagicRawAnamorphicRatio anamorphic) override;
    HRESULT GetRotation(BlackmagicRawRotation* rotation) override;
    HRESULT SetRotation(BlackmagicRawRotation rotation) override;
    HRESULT GetFlip(BlackmagicRawFlip* flip) override;
    HRESULT SetFlip(BlackmagicRawFlip flip) override;

private:
    std::shared_ptr<RefFaultHooks> m_hooks;
    std::atomic<BlackmagicRawAnamorphicRatio> m_anamorphic{blackmagicRawAnamorphicRatioDisabled};
    std::atomic<BlackmagicRawRotation> m_rotation{blackmagicRawRotationDisabled};
    std::atomic<BlackmagicRawFlip> m_flip{blackmagicRawFlipDisabled};
};

}  // namespace twref
