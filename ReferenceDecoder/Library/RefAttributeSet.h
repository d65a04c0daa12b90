#pragma once
// The processing attributes behind the attribute objects: current values,
// ranges, lists and read-only flags of the clip and frame attributes, and the
// clip's two LUTs, which the LUT attributes ('emln'...'scld') describe and
// the 'lutm' mode selects. Thread-safe; the objects that use it are clones
// the caller may share between threads.

#include "Format/RefClipModel.h"

#include <BlackmagicRawAPI.h>

#include <memory>
#include <mutex>
#include <vector>

namespace twref {

class RefAttributeSet {
public:
    // Which ids a caller's object answers.
    enum class Side { Clip, Frame, Both };

    RefAttributeSet(std::vector<RefAttribute> clipAttributes, std::vector<RefAttribute> frameAttributes,
                    std::shared_ptr<const RefLut> embeddedLut, std::shared_ptr<const RefLut> sidecarLut);

    HRESULT get(Side side, uint32_t id, Variant* value) const;
    HRESULT set(Side side, uint32_t id, const Variant* value);
    HRESULT range(Side side, uint32_t id, Variant* minimum, Variant* maximum, bool* readOnly) const;
    HRESULT list(Side side, uint32_t id, Variant* array, uint32_t* count, bool* readOnly) const;
    HRESULT isoList(uint32_t* array, uint32_t* count, bool* readOnly) const;

    // The LUT the current 'lutm' selects; null for none.
    std::shared_ptr<const RefLut> activeLut() const;

    std::vector<RefAttribute> clipAttributes() const;
    std::vector<RefAttribute> frameAttributes() const;
    // Overwrites this set's current values with another's (the attributes a
    // caller hands to PopulateFrameStateBuffer).
    void takeClipValuesFrom(const RefAttributeSet& other);
    void takeFrameValuesFrom(const RefAttributeSet& other);

private:
    const RefAttribute* find(Side side, uint32_t id) const;
    RefAttribute* find(Side side, uint32_t id);
    bool lutAttribute(uint32_t id, RefValue& value, HRESULT& result) const;

    mutable std::mutex m_mutex;
    std::vector<RefAttribute> m_clip;
    std::vector<RefAttribute> m_frame;
    std::shared_ptr<const RefLut> m_embeddedLut;
    std::shared_ptr<const RefLut> m_sidecarLut;
};

}  // namespace twref
