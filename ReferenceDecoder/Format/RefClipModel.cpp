#include "Format/RefClipModel.h"

#include <algorithm>
#include <cmath>

namespace twref {

namespace {

// A double brought into 64-bit integer range without undefined behaviour; the
// narrower casts then wrap as the value's two's complement does.
int64_t toInt64(double v)
{
    if (std::isnan(v))
        return 0;
    if (v >= 9.2233720368547758e18)
        return INT64_MAX;
    if (v <= -9.2233720368547758e18)
        return INT64_MIN;
    return static_cast<int64_t>(v);
}

RefAttribute makeAttribute(uint32_t id, const RefValue& value)
{
    RefAttribute a;
    a.id = id;
    a.value = value;
    return a;
}

RefAttribute rangedF32(uint32_t id, float value, float minimum, float maximum)
{
    RefAttribute a = makeAttribute(id, RefValue::f32(value));
    a.minimum = RefValue::f32(minimum);
    a.maximum = RefValue::f32(maximum);
    return a;
}

RefAttribute flagU16(uint32_t id, uint16_t value)
{
    RefAttribute a = makeAttribute(id, RefValue::u16(value));
    a.minimum = RefValue::u16(0);
    a.maximum = RefValue::u16(1);
    return a;
}

RefAttribute* findAttribute(std::vector<RefAttribute>& list, uint32_t id)
{
    for (RefAttribute& a : list) {
        if (a.id == id)
            return &a;
    }
    return nullptr;
}

void setEntry(std::vector<RefMetadataEntry>& list, const std::string& key, const RefValue& value)
{
    for (RefMetadataEntry& e : list) {
        if (e.key == key) {
            e.value = value;
            return;
        }
    }
    list.push_back({key, value});
}

}  // namespace

// ---- RefValue ---------------------------------------------------------------

RefValue RefValue::empty() { return RefValue(); }
RefValue RefValue::u8(uint8_t v) { return ofType(RefVariantType::U8, v); }
RefValue RefValue::s16(int16_t v) { return ofType(RefVariantType::S16, v); }
RefValue RefValue::u16(uint16_t v) { return ofType(RefVariantType::U16, v); }
RefValue RefValue::s32(int32_t v) { return ofType(RefVariantType::S32, v); }
RefValue RefValue::u32(uint32_t v) { return ofType(RefVariantType::U32, v); }
RefValue RefValue::f32(float v) { return ofType(RefVariantType::Float32, v); }
RefValue RefValue::f64(double v) { return ofType(RefVariantType::Float64, v); }

RefValue RefValue::string(const std::string& v)
{
    RefValue r;
    r.type = RefVariantType::String;
    r.text = v;
    return r;
}

RefValue RefValue::ofType(RefVariantType type, double v)
{
    RefValue r;
    r.type = type;
    switch (type) {
    case RefVariantType::U8: r.number = static_cast<uint8_t>(toInt64(v)); break;
    case RefVariantType::S16: r.number = static_cast<int16_t>(toInt64(v)); break;
    case RefVariantType::U16: r.number = static_cast<uint16_t>(toInt64(v)); break;
    case RefVariantType::S32: r.number = static_cast<int32_t>(toInt64(v)); break;
    case RefVariantType::U32: r.number = static_cast<uint32_t>(toInt64(v)); break;
    case RefVariantType::Float32:
        // Out-of-range doubles become infinities rather than undefined behaviour.
        r.number = std::isfinite(v) && std::fabs(v) > 3.4028234663852886e38
                       ? (v > 0 ? HUGE_VALF : -HUGE_VALF)
                       : static_cast<double>(static_cast<float>(v));
        break;
    case RefVariantType::Float64: r.number = v; break;
    default: return RefValue();
    }
    return r;
}

RefValue RefValue::numberArray(RefVariantType elementType, const std::vector<double>& values)
{
    RefValue r;
    r.type = RefVariantType::SafeArray;
    r.elementType = elementType;
    r.numbers.reserve(values.size());
    for (double v : values)
        r.numbers.push_back(ofType(elementType, v).number);
    return r;
}

RefValue RefValue::stringArray(const std::vector<std::string>& values)
{
    RefValue r;
    r.type = RefVariantType::SafeArray;
    r.elementType = RefVariantType::String;
    r.texts = values;
    return r;
}

bool RefValue::isNumber() const
{
    switch (type) {
    case RefVariantType::U8:
    case RefVariantType::S16:
    case RefVariantType::U16:
    case RefVariantType::S32:
    case RefVariantType::U32:
    case RefVariantType::Float32:
    case RefVariantType::Float64:
        return true;
    default:
        return false;
    }
}

size_t RefValue::arraySize() const
{
    if (type != RefVariantType::SafeArray)
        return 0;
    return elementType == RefVariantType::String ? texts.size() : numbers.size();
}

bool RefValue::operator==(const RefValue& other) const
{
    if (type != other.type)
        return false;
    switch (type) {
    case RefVariantType::Empty: return true;
    case RefVariantType::String: return text == other.text;
    case RefVariantType::SafeArray:
        return elementType == other.elementType && numbers == other.numbers && texts == other.texts;
    default: return number == other.number;
    }
}

// ---- RefLut -----------------------------------------------------------------

bool RefLut::valid() const
{
    if (size < 2 || size > kRefMaxLutSize)
        return false;
    const size_t expected = size_t(size) * size * size * 3;
    if (data.size() != expected)
        return false;
    return std::all_of(data.begin(), data.end(), [](float v) { return std::isfinite(v); });
}

bool RefLut::operator==(const RefLut& other) const
{
    return name == other.name && title == other.title && size == other.size && data == other.data;
}

// ---- defaults ---------------------------------------------------------------

const std::vector<std::string>& refDefaultGamuts()
{
    static const std::vector<std::string> s_gamuts = {
        "Blackmagic Design", "Rec.709", "Rec.2020", "DCI-P3 D65", "DCI-P3 Theater",
        "ACES AP0", "ACES AP1", "CIE 1931 XYZ D65", "CIE 1931 XYZ D50 (PCS)", "V-Gamut",
        "Canon Cinema Gamut", "ARRI Wide Gamut 3", "DaVinci Wide Gamut", "ARRI Wide Gamut 4"};
    return s_gamuts;
}

const std::vector<std::string>& refDefaultGammas()
{
    static const std::vector<std::string> s_gammas = {
        "Blackmagic Design Film", "Blackmagic Design Video", "Blackmagic Design Extended Video",
        "Blackmagic Design Custom", "Linear", "Rec.2100 Hybrid Log Gamma", "Rec.2100 ST2084 (PQ)",
        "ACEScct", "Rec.709", "V-Log", "Canon Log2", "N-Log", "ARRI LogC3",
        "DaVinci Intermediate", "L-Log", "ARRI LogC4"};
    return s_gammas;
}

std::vector<RefAttribute> refDefaultClipAttributes()
{
    std::vector<RefAttribute> list;

    RefAttribute csgn = makeAttribute(RefClipAttr::ColorScienceGen, RefValue::u16(5));
    csgn.list = {RefValue::u16(4), RefValue::u16(5)};
    list.push_back(csgn);

    RefAttribute gamut = makeAttribute(RefClipAttr::Gamut, RefValue::string("Blackmagic Design"));
    for (const std::string& g : refDefaultGamuts())
        gamut.list.push_back(RefValue::string(g));
    list.push_back(gamut);

    list.push_back(flagU16(RefClipAttr::GamutCompressionEnable, 0));

    RefAttribute gamma = makeAttribute(RefClipAttr::Gamma, RefValue::string("Blackmagic Design Film"));
    for (const std::string& g : refDefaultGammas())
        gamma.list.push_back(RefValue::string(g));
    list.push_back(gamma);

    // The tone-curve ranges are the single-precision figures the camera's
    // colour science defines.
    list.push_back(rangedF32(RefClipAttr::ToneCurveContrast, 0.5f, 0.002f, 1.998f));
    list.push_back(rangedF32(RefClipAttr::ToneCurveSaturation, 1.0f, 0.0f, 4.0f));
    list.push_back(rangedF32(RefClipAttr::ToneCurveMidpoint, 0.41f, 0.0f, 1.0f));
    list.push_back(rangedF32(RefClipAttr::ToneCurveHighlights, 1.0f, 0.0f, 1.998f));
    list.push_back(rangedF32(RefClipAttr::ToneCurveShadows, 1.0f, 0.002f, 2.0f));
    list.push_back(rangedF32(RefClipAttr::ToneCurveWhiteLevel, 1.0f, 0.0f, 2.0f));
    list.push_back(rangedF32(RefClipAttr::ToneCurveBlackLevel, 0.0f, -1.0f, 1.0f));
    list.push_back(flagU16(RefClipAttr::ToneCurveVideoBlackLevel, 0));
    list.push_back(flagU16(RefClipAttr::HighlightRecovery, 0));
    list.push_back(flagU16(RefClipAttr::AnalogGainIsConstant, 1));
    list.push_back(rangedF32(RefClipAttr::AnalogGain, 1.0f, 1.0f, 16.0f));

    RefAttribute lutMode = makeAttribute(RefClipAttr::Post3DLUTMode, RefValue::string("Disabled"));
    lutMode.list = {RefValue::string("Disabled"), RefValue::string("Embedded"), RefValue::string("Sidecar")};
    list.push_back(lutMode);
    return list;
}

std::vector<RefAttribute> refDefaultFrameAttributes()
{
    std::vector<RefAttribute> list;
    RefAttribute kelvin = makeAttribute(RefFrameAttr::WhiteBalanceKelvin, RefValue::u32(5600));
    kelvin.minimum = RefValue::u32(2000);
    kelvin.maximum = RefValue::u32(50000);
    list.push_back(kelvin);

    RefAttribute tint = makeAttribute(RefFrameAttr::WhiteBalanceTint, RefValue::s16(0));
    tint.minimum = RefValue::s16(-150);
    tint.maximum = RefValue::s16(150);
    list.push_back(tint);

    list.push_back(rangedF32(RefFrameAttr::Exposure, 0.0f, -5.0f, 5.0f));

    RefAttribute iso = makeAttribute(RefFrameAttr::ISO, RefValue::u32(800));
    for (uint32_t v : {100u, 125u, 160u, 200u, 250u, 320u, 400u, 500u, 640u, 800u, 1000u, 1250u,
                       1600u, 2000u, 2500u, 3200u})
        iso.list.push_back(RefValue::u32(v));
    iso.minimum = RefValue::u32(100);
    iso.maximum = RefValue::u32(3200);
    list.push_back(iso);

    list.push_back(rangedF32(RefFrameAttr::AnalogGain, 1.0f, 1.0f, 16.0f));
    return list;
}

std::vector<RefToneCurve> refDefaultToneCurves()
{
    std::vector<RefToneCurve> curves;
    for (uint16_t gen : {uint16_t(4), uint16_t(5)}) {
        const float midpoint = gen == 4 ? 0.38f : 0.41f;
        RefToneCurve film;
        film.gamma = "Blackmagic Design Film";
        film.colorScienceGen = gen;
        film.midpoint = midpoint;
        curves.push_back(film);

        RefToneCurve extended;
        extended.gamma = "Blackmagic Design Extended Video";
        extended.colorScienceGen = gen;
        extended.contrast = 1.18f;
        extended.saturation = 1.1f;
        extended.midpoint = midpoint;
        extended.highlights = 0.9f;
        extended.shadows = 1.12f;
        extended.videoBlackLevel = 1;
        curves.push_back(extended);

        RefToneCurve custom = film;
        custom.gamma = "Blackmagic Design Custom";
        curves.push_back(custom);
    }
    return curves;
}

std::vector<RefMetadataEntry> refDefaultClipMetadata(const std::string& cameraType)
{
    return {
        {"manufacturer", RefValue::string("Tarnwick Reference")},
        {"camera_type", RefValue::string(cameraType)},
        {"camera_id", RefValue::string("REF-0001")},
        {"firmware_version", RefValue::string("1.0")},
        {"clip_number", RefValue::string("A001_01010000_C001")},
        {"reel_name", RefValue::string("A001")},
        {"scene", RefValue::string("1")},
        {"take", RefValue::string("1")},
        {"good_take", RefValue::string("false")},
        {"braw_compression_ratio", RefValue::string("12:1")},
        {"crop_size", RefValue::string("full")},
        {"sensor_area_captured", RefValue::numberArray(RefVariantType::U32, {0, 0, 1920, 1080})},
        {"viewing_gamma", RefValue::string("Blackmagic Design Film")},
        {"viewing_gamut", RefValue::string("Blackmagic Design")},
        {"viewing_bmdgen", RefValue::u16(5)},
        {"post_3dlut_mode", RefValue::string("Disabled")},
    };
}

std::vector<RefMetadataEntry> refDefaultFrameMetadata()
{
    return {
        {"iso", RefValue::u32(800)},
        {"white_balance_kelvin", RefValue::u32(5600)},
        {"white_balance_tint", RefValue::s16(0)},
        {"exposure", RefValue::f32(0.0f)},
        {"shutter_value", RefValue::string("180\xC2\xB0")},
        {"aperture", RefValue::string("f4")},
        {"focal_length", RefValue::string("35mm")},
    };
}

std::vector<RefResolution> refDefaultResolutions(uint32_t width, uint32_t height)
{
    std::vector<RefResolution> list;
    const RefResolutionScale scales[] = {RefResolutionScale::Full, RefResolutionScale::Half,
                                         RefResolutionScale::Quarter, RefResolutionScale::Eighth};
    for (RefResolutionScale s : scales) {
        RefResolution r;
        const uint32_t d = refScaleDivisor(s);
        r.width = width / d;
        r.height = height / d;
        r.scale = s;
        list.push_back(r);
    }
    return list;
}

bool refClosestScaleForResolution(const RefClipModel& model, uint32_t width, uint32_t height,
                                  RefResolutionScale& scale)
{
    const std::vector<RefResolution> list = model.effectiveResolutions();
    const RefResolution* best = nullptr;
    double bestDistance = 0.0;
    const double area = double(width) * double(height);
    for (const RefResolution& r : list) {
        if (r.width == width && r.height == height) {
            scale = r.scale;
            return true;
        }
        const double distance = std::fabs(double(r.width) * double(r.height) - area);
        if (best == nullptr || distance < bestDistance) {
            best = &r;
            bestDistance = distance;
        }
    }
    if (best == nullptr)
        return false;
    scale = best->scale;
    return true;
}

bool refClosestResolutionForScale(const RefClipModel& model, RefResolutionScale scale, uint32_t& width,
                                  uint32_t& height)
{
    for (const RefResolution& r : model.effectiveResolutions()) {
        if (r.scale == scale) {
            width = r.width;
            height = r.height;
            return true;
        }
    }
    const uint32_t divisor = refScaleDivisor(scale);
    if (divisor == 0)
        return false;
    width = model.width / divisor;
    height = model.height / divisor;
    return true;
}

bool refFaultMatches(const RefFault& fault, const std::string& method, int64_t frame,
                     uint32_t attribute, const std::string& key)
{
    if (fault.method != method)
        return false;
    if (fault.frame >= 0 && fault.frame != frame)
        return false;
    if (fault.attribute != 0 && fault.attribute != attribute)
        return false;
    if (!fault.key.empty() && fault.key != key)
        return false;
    return true;
}

bool refDelayMatches(const RefDelay& delay, const std::string& method, int64_t frame)
{
    return delay.method == method && (delay.frame < 0 || delay.frame == frame);
}

// ---- RefClipModel -----------------------------------------------------------

RefClipModel::RefClipModel()
    : metadata(refDefaultClipMetadata(cameraType)),
      frameMetadata(refDefaultFrameMetadata()),
      clipAttributes(refDefaultClipAttributes()),
      frameAttributes(refDefaultFrameAttributes()),
      toneCurves(refDefaultToneCurves())
{
}

const RefAttribute* RefClipModel::clipAttribute(uint32_t id) const
{
    return findAttribute(const_cast<std::vector<RefAttribute>&>(clipAttributes), id);
}

RefAttribute* RefClipModel::clipAttribute(uint32_t id) { return findAttribute(clipAttributes, id); }

const RefAttribute* RefClipModel::frameAttribute(uint32_t id) const
{
    return findAttribute(const_cast<std::vector<RefAttribute>&>(frameAttributes), id);
}

RefAttribute* RefClipModel::frameAttribute(uint32_t id) { return findAttribute(frameAttributes, id); }

const RefFrameOverride* RefClipModel::frameOverride(uint64_t index) const
{
    for (const RefFrameOverride& f : frames) {
        if (f.index == index)
            return &f;
    }
    return nullptr;
}

RefFrameOverride& RefClipModel::frameOverrideFor(uint64_t index)
{
    for (RefFrameOverride& f : frames) {
        if (f.index == index)
            return f;
    }
    RefFrameOverride f;
    f.index = index;
    frames.push_back(f);
    return frames.back();
}

void RefClipModel::setMetadata(const std::string& key, const RefValue& value)
{
    setEntry(metadata, key, value);
}

void RefClipModel::setFrameMetadata(const std::string& key, const RefValue& value)
{
    setEntry(frameMetadata, key, value);
}

void RefClipModel::setClipAttributeValue(uint32_t id, const RefValue& value)
{
    if (RefAttribute* a = clipAttribute(id)) {
        a->value = value;
        return;
    }
    clipAttributes.push_back(makeAttribute(id, value));
}

void RefClipModel::setFrameAttributeValue(uint32_t id, const RefValue& value)
{
    if (RefAttribute* a = frameAttribute(id)) {
        a->value = value;
        return;
    }
    frameAttributes.push_back(makeAttribute(id, value));
}

void RefClipModel::addFault(const std::string& method, int32_t result, int64_t frame)
{
    RefFault f;
    f.method = method;
    f.result = result;
    f.frame = frame;
    faults.push_back(f);
}

void RefClipModel::addDelay(const std::string& method, uint32_t milliseconds, int64_t frame)
{
    RefDelay d;
    d.method = method;
    d.milliseconds = milliseconds;
    d.frame = frame;
    delays.push_back(d);
}

std::vector<RefResolution> RefClipModel::effectiveResolutions() const
{
    return resolutions.empty() ? refDefaultResolutions(width, height) : resolutions;
}

uint64_t RefClipModel::effectiveAudioSampleCount() const
{
    if (!audio.present)
        return 0;
    if (audio.sampleCount != 0)
        return audio.sampleCount;
    if (!(frameRate > 0.0f))
        return 0;
    const double samples = double(frameCount) * double(audio.sampleRate) / double(frameRate);
    return samples >= 1.8e19 ? UINT64_MAX : static_cast<uint64_t>(samples);
}

uint64_t RefClipModel::recordedFrameCount() const
{
    return std::min(frameCount, bitStream.recordedFrames);
}

uint32_t RefClipModel::frameBitStreamBytes(uint64_t index) const
{
    const RefFrameOverride* f = frameOverride(index);
    if (f && f->bitStreamBytes != 0)
        return f->bitStreamBytes;
    return bitStream.frameBytes;
}

std::vector<RefMetadataEntry> RefClipModel::metadataOfFrame(uint64_t index) const
{
    std::vector<RefMetadataEntry> result = frameMetadata;
    if (const RefFrameOverride* f = frameOverride(index)) {
        for (const RefMetadataEntry& e : f->metadata)
            setEntry(result, e.key, e.value);
    }
    return result;
}

RefValue RefClipModel::frameAttributeValueOf(uint64_t index, uint32_t id) const
{
    if (const RefFrameOverride* f = frameOverride(index)) {
        for (const RefAttribute& a : f->attributes) {
            if (a.id == id)
                return a.value;
        }
    }
    const RefAttribute* a = frameAttribute(id);
    return a ? a->value : RefValue();
}

}  // namespace twref
