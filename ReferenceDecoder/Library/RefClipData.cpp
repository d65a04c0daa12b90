#include "Library/RefClipData.h"

#include <atomic>
#include <cmath>
#include <map>

namespace twref {
namespace {

struct Registry {
    std::mutex mutex;
    std::map<uint64_t, std::weak_ptr<RefClipData>> clips;
    std::map<const void*, std::weak_ptr<const RefLut>> luts;
};

Registry& registry()
{
    static Registry* s_registry = new Registry;
    return *s_registry;
}

std::atomic<uint64_t> g_nextClipId{1};

}  // namespace

double RefViewGeometry::anamorphicFactor(const RefClipModel& model) const
{
    switch (anamorphic) {
    case blackmagicRawAnamorphicRatio133x: return 1.33;
    case blackmagicRawAnamorphicRatio15x: return 1.5;
    case blackmagicRawAnamorphicRatio16x: return 1.6;
    case blackmagicRawAnamorphicRatio166x: return 1.66;
    case blackmagicRawAnamorphicRatio18x: return 1.8;
    case blackmagicRawAnamorphicRatio2x: return 2.0;
    case blackmagicRawAnamorphicRatioFromMetadata:
        for (const RefMetadataEntry& entry : model.metadata) {
            if (entry.key != "anamorphic" || entry.value.type != RefVariantType::String)
                continue;
            static const std::pair<const char*, double> s_ratios[] = {
                {"2x", 2.0}, {"1.8x", 1.8}, {"1.66x", 1.66}, {"1.6x", 1.6}, {"1.5x", 1.5}, {"1.33x", 1.33}};
            for (const auto& [text, factor] : s_ratios)
                if (entry.value.text == text)
                    return factor;
        }
        return 1.0;
    default: return 1.0;
    }
}

namespace {
uint32_t scaled(uint32_t width, double factor)
{
    return factor == 1.0 ? width : uint32_t(std::lround(double(width) * factor));
}
}  // namespace

void RefViewGeometry::fullSize(const RefClipModel& model, uint32_t& width, uint32_t& height) const
{
    width = scaled(model.width, anamorphicFactor(model));
    height = model.height;
}

std::vector<RefResolution> RefViewGeometry::resolutions(const RefClipModel& model) const
{
    const double factor = anamorphicFactor(model);
    std::vector<RefResolution> list = model.effectiveResolutions();
    for (RefResolution& r : list) {
        r.width = scaled(r.width, factor);
        if (r.recordedWidth != 0)
            r.recordedWidth = scaled(r.recordedWidth, factor);
    }
    return list;
}

bool RefViewGeometry::sizeForScale(const RefClipModel& model, uint32_t scale, uint32_t& width, uint32_t& height) const
{
    const RefResolutionScale code = static_cast<RefResolutionScale>(scale);
    if (refScaleDivisor(code) == 0 || refScaleIsUpsideDown(code))
        return false;
    if (!refClosestResolutionForScale(model, code, width, height))
        return false;
    width = scaled(width, anamorphicFactor(model));
    return true;
}

bool RefViewGeometry::scaleForSize(const RefClipModel& model, uint32_t width, uint32_t height, uint32_t& scale) const
{
    // The model's table is unsqueezed: look the width up as it was recorded.
    const double factor = anamorphicFactor(model);
    const uint32_t recorded = factor == 1.0 ? width : uint32_t(std::lround(double(width) / factor));
    RefResolutionScale code = RefResolutionScale::Full;
    if (!refClosestScaleForResolution(model, recorded, height, code))
        return false;
    scale = static_cast<uint32_t>(code);
    return true;
}

HRESULT RefViewGeometry::fromObject(IBlackmagicRawClipGeometry* object, RefViewGeometry& out)
{
    if (!object)
        return E_POINTER;
    RefViewGeometry g;
    HRESULT hr = object->GetAnamorphicRatio(&g.anamorphic);
    if (SUCCEEDED(hr))
        hr = object->GetRotation(&g.rotation);
    if (SUCCEEDED(hr))
        hr = object->GetFlip(&g.flip);
    if (FAILED(hr))
        return hr;
    out = g;
    return S_OK;
}

HRESULT RefClipData::open(const std::string& path, std::shared_ptr<RefCodecCore> core,
                          std::shared_ptr<RefClipData>& out, std::string& error)
{
    std::shared_ptr<RefClipData> data(new RefClipData);
    if (!RefClipFile::read(path, data->m_fileModel, data->m_layout, error))
        return E_FAIL;
    data->m_id = g_nextClipId.fetch_add(1);
    data->m_path = path;
    data->m_core = std::move(core);
    data->m_hooks = std::make_shared<RefFaultHooks>(data->m_fileModel.faults, data->m_fileModel.delays);
    if (data->m_fileModel.embeddedLut.valid())
        data->m_embeddedLut = data->keepLut(data->m_fileModel.embeddedLut);
    data->m_model = std::make_shared<const RefClipModel>(data->m_fileModel);
    {
        Registry& r = registry();
        std::lock_guard<std::mutex> lock(r.mutex);
        r.clips[data->m_id] = data;
    }
    out = std::move(data);
    return S_OK;
}

RefClipData::~RefClipData()
{
    Registry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    r.clips.erase(m_id);
    for (const std::shared_ptr<const RefLut>& lut : m_luts)
        r.luts.erase(lut->data.data());
}

std::shared_ptr<RefClipData> RefClipData::find(uint64_t id)
{
    Registry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    auto it = r.clips.find(id);
    return it == r.clips.end() ? nullptr : it->second.lock();
}

std::shared_ptr<const RefLut> RefClipData::findLut(const void* data)
{
    Registry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    auto it = r.luts.find(data);
    return it == r.luts.end() ? nullptr : it->second.lock();
}

std::shared_ptr<const RefLut> RefClipData::keepLut(RefLut lut)
{
    auto kept = std::make_shared<const RefLut>(std::move(lut));
    m_luts.push_back(kept);
    Registry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    r.luts[kept->data.data()] = kept;
    return kept;
}

std::shared_ptr<const RefClipModel> RefClipData::model() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_model;
}

std::shared_ptr<const RefLut> RefClipData::sidecarLut() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_sidecarLut;
}

bool RefClipData::sidecarAttached() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_sidecarAttached;
}

RefSidecarResult RefClipData::reloadSidecar()
{
    RefSidecarResult sidecar = RefSidecar::read(RefSidecar::pathForClip(m_path));
    applySidecar(sidecar);
    return sidecar;
}

void RefClipData::applySidecar(const RefSidecarResult& sidecar)
{
    // A sidecar that fails to parse is ignored whole: the clip's own settings stand.
    auto model = std::make_shared<RefClipModel>(m_fileModel);
    std::shared_ptr<const RefLut> lut;
    if (sidecar.attached()) {
        RefSidecar::applyToModel(sidecar.settings, *model);
        if (sidecar.settings.lut.valid()) {
            std::lock_guard<std::mutex> lock(m_mutex);
            lut = keepLut(sidecar.settings.lut);
        }
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    m_model = std::move(model);
    m_sidecarLut = std::move(lut);
    m_sidecarAttached = sidecar.attached();
}

HRESULT RefClipData::corruptResult(uint64_t frameIndex) const
{
    const RefFrameOverride* f = m_fileModel.frameOverride(frameIndex);
    return f && f->corrupt ? f->corruptResult : E_FAIL;
}

HRESULT RefClipData::bitStreamSize(uint64_t frameIndex, uint32_t& sizeBytes) const
{
    if (frameIndex >= m_fileModel.frameCount)
        return E_INVALIDARG;
    std::vector<uint8_t> record;
    const HRESULT hr = readBitStream(frameIndex, record);
    if (FAILED(hr))
        return hr;
    sizeBytes = uint32_t(record.size());
    return S_OK;
}

HRESULT RefClipData::readBitStream(uint64_t frameIndex, std::vector<uint8_t>& out) const
{
    if (frameIndex >= m_fileModel.frameCount)
        return E_INVALIDARG;
    bool damaged = false;
    std::string error;
    if (!RefClipFile::readFrameRecord(m_path, m_layout, frameIndex, out, damaged, error))
        return damaged ? corruptResult(frameIndex) : E_FAIL;
    return S_OK;
}

}  // namespace twref
