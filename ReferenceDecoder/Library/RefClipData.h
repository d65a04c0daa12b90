#pragma once
// One opened clip file as the library holds it, shared by the clip objects
// (a clone under another geometry shares it), their frames and the jobs in
// flight: the model as the file describes it, where the frame records are,
// the sidecar's effect, the LUTs, and the clip's fault hooks.

#include "Format/RefClipFile.h"
#include "Format/RefClipModel.h"
#include "Format/RefSidecar.h"
#include "Library/RefCodecCore.h"
#include "Library/RefFaultHooks.h"

#include <BlackmagicRawAPI.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace twref {

// What a clip object was opened with.
struct RefViewGeometry {
    BlackmagicRawAnamorphicRatio anamorphic = blackmagicRawAnamorphicRatioDisabled;
    BlackmagicRawRotation rotation = blackmagicRawRotationDisabled;
    BlackmagicRawFlip flip = blackmagicRawFlipDisabled;

    // Horizontal desqueeze factor; "meta" takes it from the clip's "anamorphic" metadata.
    double anamorphicFactor(const RefClipModel& model) const;
    bool flipVertical() const { return flip == blackmagicRawFlipVertical || flip == blackmagicRawFlipBoth; }
    bool flipHorizontal() const { return flip == blackmagicRawFlipHorizontal || flip == blackmagicRawFlipBoth; }

    // The clip's size and resolution list as this geometry shows them.
    void fullSize(const RefClipModel& model, uint32_t& width, uint32_t& height) const;
    std::vector<RefResolution> resolutions(const RefClipModel& model) const;
    // The picture size of a resolution scale: the first entry of that scale,
    // else the full size divided by the scale. False for a code that is no
    // scale of this interface generation.
    bool sizeForScale(const RefClipModel& model, uint32_t scale, uint32_t& width, uint32_t& height) const;
    // The scale of the entry of that size, else of the entry nearest in area.
    bool scaleForSize(const RefClipModel& model, uint32_t width, uint32_t height, uint32_t& scale) const;
    // Reads a caller's geometry object through its interface.
    static HRESULT fromObject(IBlackmagicRawClipGeometry* object, RefViewGeometry& out);
};

class RefClipData {
public:
    // Reads the clip file and its sidecar. E_FAIL with a reason on a file that
    // cannot be read or is no reference clip.
    static HRESULT open(const std::string& path, std::shared_ptr<RefCodecCore> core,
                        std::shared_ptr<RefClipData>& out, std::string& error);
    ~RefClipData();

    // A live clip by the id a frame state carries; null once it is gone.
    static std::shared_ptr<RefClipData> find(uint64_t id);
    // The LUT that owns a table handed out by GetResourceCPU/GPU; null for any other pointer.
    static std::shared_ptr<const RefLut> findLut(const void* data);

    uint64_t id() const { return m_id; }
    const std::string& path() const { return m_path; }
    const std::shared_ptr<RefCodecCore>& core() const { return m_core; }
    const RefClipLayout& layout() const { return m_layout; }
    RefHooks hooks() const { return RefHooks{m_hooks, m_core->hooks()}; }

    // The model with the sidecar applied: the clip's current defaults.
    std::shared_ptr<const RefClipModel> model() const;
    // The model as the file describes it: what the camera shot.
    const RefClipModel& fileModel() const { return m_fileModel; }
    std::shared_ptr<const RefLut> embeddedLut() const { return m_embeddedLut; }
    std::shared_ptr<const RefLut> sidecarLut() const;
    bool sidecarAttached() const;
    // Reads the sidecar again and makes its settings the clip's defaults.
    RefSidecarResult reloadSidecar();

    // The bit stream of a frame: its record size, after checking that the file
    // is still there and that the record is sound.
    HRESULT bitStreamSize(uint64_t frameIndex, uint32_t& sizeBytes) const;
    // Reads the record into out (resized); E_FAIL or the frame's corrupt result.
    HRESULT readBitStream(uint64_t frameIndex, std::vector<uint8_t>& out) const;
    // The result a damaged record of this frame gives.
    HRESULT corruptResult(uint64_t frameIndex) const;

private:
    RefClipData() = default;
    void applySidecar(const RefSidecarResult& sidecar);
    std::shared_ptr<const RefLut> keepLut(RefLut lut);

    uint64_t m_id = 0;
    std::string m_path;
    std::shared_ptr<RefCodecCore> m_core;
    RefClipModel m_fileModel;
    RefClipLayout m_layout;
    std::shared_ptr<RefFaultHooks> m_hooks;
    std::shared_ptr<const RefLut> m_embeddedLut;

    mutable std::mutex m_mutex;
    std::shared_ptr<const RefClipModel> m_model;
    std::shared_ptr<const RefLut> m_sidecarLut;
    bool m_sidecarAttached = false;
    // Every LUT handed out stays alive with the clip: callers keep the table
    // pointer after releasing the LUT object.
    std::vector<std::shared_ptr<const RefLut>> m_luts;
};

}  // namespace twref
