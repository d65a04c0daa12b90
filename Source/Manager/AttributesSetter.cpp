#include "Manager/AttributesSetter.h"

#include "Utils/qvLogging.h"
#include "Utils/qvUtils.h"

#include <cstring>

namespace {

constexpr uint32_t kClipIdFiller = blackmagicRawClipProcessingAttributeColorScienceGen;
constexpr uint32_t kFrameIdFiller = blackmagicRawFrameProcessingAttributeISO;

void setVariant(Variant& variant, const uint16_t& value) {
    variant.vt = blackmagicRawVariantTypeU16;
    variant.uiVal = value;
}
void setVariant(Variant& variant, const bool& value) {
    variant.vt = blackmagicRawVariantTypeU16;
    variant.uiVal = value ? 1 : 0;
}
void setVariant(Variant& variant, const int16_t& value) {
    variant.vt = blackmagicRawVariantTypeS16;
    variant.iVal = value;
}
void setVariant(Variant& variant, const uint32_t& value) {
    variant.vt = blackmagicRawVariantTypeU32;
    variant.uintVal = value;
}
void setVariant(Variant& variant, const float& value) {
    variant.vt = blackmagicRawVariantTypeFloat32;
    variant.fltVal = value;
}
void setVariant(Variant& variant, const qvBSTR& value) {
    variant.vt = blackmagicRawVariantTypeString;
    variant.bstrVal = value.Get();
}

// A fixed text field of the settings records, which may fill its array with no terminator.
template <size_t N>
qvUtf8String fieldText(const char (&field)[N]) {
    return qvUtf8String(field, strnlen(field, N));
}

// The text attributes go through a string of our own, given back after the write.
void setTextAttribute(const qvUtf8String& text, uint32_t clipAttributeId, const qvUtf8String& name,
                      IBlackmagicRawClipProcessingAttributes* attrs, QvResult* result) {
    qvBSTR value;
    value.SetFromUtf8Str(text);
    AttributesSetter::setAttribute(value, clipAttributeId, kFrameIdFiller, name, attrs, nullptr, result);
    value.release();
}

}  // namespace

template <typename T>
void AttributesSetter::setAttribute(const T& value, const uint32_t& clipAttributeId, const uint32_t& frameAttributeId,
                                    const qvUtf8String& name, IBlackmagicRawClipProcessingAttributes* clipAttrs,
                                    IBlackmagicRawFrameProcessingAttributes* frameAttrs, QvResult* result) {
    Variant variant;
    VariantInit(&variant);
    setVariant(variant, value);
    if (clipAttrs == nullptr && frameAttrs == nullptr) {
        // Our own string is not the library's to free: the Variant only lends it.
        VariantInit(&variant);
        VariantClear(&variant);
        *result = QvResult("Impossible to set Attribute for " + name + " !! Both processingAttr are nullptr");
        return;
    }
    const HRESULT hr = clipAttrs ? clipAttrs->SetClipAttribute(clipAttributeId, &variant)
                                 : frameAttrs->SetFrameAttribute(frameAttributeId, &variant);
    VariantInit(&variant);
    VariantClear(&variant);
    if (hr == S_OK) return;

    bool readOnly = false;
    if (checkAttributeReadOnly(clipAttrs, frameAttrs, clipAttributeId, frameAttributeId, name, &readOnly) == S_OK &&
        readOnly) {
        QV_LOG(QV_LOG_INFO, "Setting " << name.Str() << " Attribute failed but normal : parameter is ReadOnly");
        return;
    }
    *result = QvResult("Setting " + name + " Attribute failed : " + qvUtils::getHRESULTerrorMessage(hr));
}

template void AttributesSetter::setAttribute<uint16_t>(const uint16_t&, const uint32_t&, const uint32_t&,
                                                       const qvUtf8String&, IBlackmagicRawClipProcessingAttributes*,
                                                       IBlackmagicRawFrameProcessingAttributes*, QvResult*);
template void AttributesSetter::setAttribute<qvBSTR>(const qvBSTR&, const uint32_t&, const uint32_t&,
                                                     const qvUtf8String&, IBlackmagicRawClipProcessingAttributes*,
                                                     IBlackmagicRawFrameProcessingAttributes*, QvResult*);
template void AttributesSetter::setAttribute<bool>(const bool&, const uint32_t&, const uint32_t&, const qvUtf8String&,
                                                   IBlackmagicRawClipProcessingAttributes*,
                                                   IBlackmagicRawFrameProcessingAttributes*, QvResult*);
template void AttributesSetter::setAttribute<float>(const float&, const uint32_t&, const uint32_t&,
                                                    const qvUtf8String&, IBlackmagicRawClipProcessingAttributes*,
                                                    IBlackmagicRawFrameProcessingAttributes*, QvResult*);
template void AttributesSetter::setAttribute<uint32_t>(const uint32_t&, const uint32_t&, const uint32_t&,
                                                       const qvUtf8String&, IBlackmagicRawClipProcessingAttributes*,
                                                       IBlackmagicRawFrameProcessingAttributes*, QvResult*);
template void AttributesSetter::setAttribute<int16_t>(const int16_t&, const uint32_t&, const uint32_t&,
                                                      const qvUtf8String&, IBlackmagicRawClipProcessingAttributes*,
                                                      IBlackmagicRawFrameProcessingAttributes*, QvResult*);

HRESULT AttributesSetter::checkAttributeReadOnly(IBlackmagicRawClipProcessingAttributes* clipAttrs,
                                                 IBlackmagicRawFrameProcessingAttributes* frameAttrs,
                                                 const uint32_t& clipAttributeId, const uint32_t& frameAttributeId,
                                                 const qvUtf8String& name, bool* readOnly) {
    bool flag = false;
    Variant minimum;
    Variant maximum;
    VariantInit(&minimum);
    VariantInit(&maximum);
    uint32_t count = 0;
    HRESULT hr = S_OK;
    if (clipAttrs) {
        hr = clipAttrs->GetClipAttributeRange(clipAttributeId, &minimum, &maximum, &flag);
        // The fall-back asks the frame side, which the clip fill never gives:
        // without it the attribute counts as writable and the write's error stands.
        if (hr != S_OK && frameAttrs) hr = frameAttrs->GetFrameAttributeList(frameAttributeId, nullptr, &count, &flag);
    } else if (frameAttrs) {
        if (frameAttributeId == blackmagicRawFrameProcessingAttributeISO) {
            hr = frameAttrs->GetISOList(nullptr, &count, &flag);
        } else {
            hr = frameAttrs->GetFrameAttributeRange(frameAttributeId, &minimum, &maximum, &flag);
            if (hr != S_OK) hr = frameAttrs->GetFrameAttributeList(frameAttributeId, nullptr, &count, &flag);
        }
    } else {
        QV_LOG(QV_LOG_ERR, "Clip and Frame Processing Attribute are nullptr !!");
        hr = E_POINTER;
    }
    if (hr != S_OK && (clipAttrs || frameAttrs)) {
        QV_LOG(QV_LOG_ERR, "Call to GetClipAttributeRange for " << name.Str() << " - IsReadOnly impossible to get : "
                                                                << qvUtils::getHRESULTerrorMessage(hr).Str());
    }
    VariantClear(&minimum);
    VariantClear(&maximum);
    *readOnly = flag;
    return hr;
}

QvResult AttributesSetter::fillClipProcessingAttributesFromPrefs(IBlackmagicRawClipProcessingAttributes* attrs,
                                                                 const twClipAttributes& prefs) {
    QvResult result;
    setAttribute(prefs.colorScienceGen, blackmagicRawClipProcessingAttributeColorScienceGen, kFrameIdFiller,
                 "ColorScience", attrs, nullptr, &result);
    if (result.hasError) return result;
    setTextAttribute(fieldText(prefs.gamut), blackmagicRawClipProcessingAttributeGamut, "Gamut", attrs, &result);
    if (result.hasError) return result;
    setAttribute(prefs.gamutCompression, blackmagicRawClipProcessingAttributeGamutCompressionEnable, kFrameIdFiller,
                 "Gamut Compression", attrs, nullptr, &result);
    if (result.hasError) return result;
    setTextAttribute(fieldText(prefs.gamma), blackmagicRawClipProcessingAttributeGamma, "Gamma", attrs, &result);
    if (result.hasError) return result;

    // The tone curve acts only under the custom gamma; elsewhere it is left alone.
    if (prefs.isCustomGamma()) {
        const twGammaControlsValues& curve = prefs.gammaControls;
        struct FloatAttribute {
            float value;
            uint32_t id;
            const char* name;
        };
        const FloatAttribute floats[] = {
            {curve.contrast, blackmagicRawClipProcessingAttributeToneCurveContrast, "Contrast"},
            {curve.saturation, blackmagicRawClipProcessingAttributeToneCurveSaturation, "Saturation"},
            {curve.midpoint, blackmagicRawClipProcessingAttributeToneCurveMidpoint, "Midpoint"},
            {curve.highlights, blackmagicRawClipProcessingAttributeToneCurveHighlights, "Highlights"},
            {curve.shadows, blackmagicRawClipProcessingAttributeToneCurveShadows, "Shadows"},
            {curve.whiteLevel, blackmagicRawClipProcessingAttributeToneCurveWhiteLevel, "WhiteLvl"},
            {curve.blackLevel, blackmagicRawClipProcessingAttributeToneCurveBlackLevel, "BlackLvl"},
        };
        for (const FloatAttribute& attribute : floats) {
            setAttribute(attribute.value, attribute.id, kFrameIdFiller, attribute.name, attrs, nullptr, &result);
            if (result.hasError) return result;
        }
        setAttribute(curve.useVideoBlackLevel, blackmagicRawClipProcessingAttributeToneCurveVideoBlackLevel,
                     kFrameIdFiller, "Video BlackLvl", attrs, nullptr, &result);
        if (result.hasError) return result;
    }

    setAttribute(prefs.highlightRecovery, blackmagicRawClipProcessingAttributeHighlightRecovery, kFrameIdFiller,
                 "Highlight Recovery", attrs, nullptr, &result);
    if (result.hasError) return result;
    setTextAttribute(fieldText(prefs.lutMode), blackmagicRawClipProcessingAttributePost3DLUTMode, "LutMode", attrs,
                     &result);
    return result;
}

QvResult AttributesSetter::fillFrameProcessingAttributesFromPrefs(IBlackmagicRawFrameProcessingAttributes* attrs,
                                                                  const twFrameAttributes& prefs) {
    QvResult result;
    setAttribute(prefs.iso, kClipIdFiller, blackmagicRawFrameProcessingAttributeISO, "ISO", nullptr, attrs, &result);
    if (result.hasError) return result;
    setAttribute(prefs.kelvin, kClipIdFiller, blackmagicRawFrameProcessingAttributeWhiteBalanceKelvin, "Color Temp",
                 nullptr, attrs, &result);
    if (result.hasError) return result;
    setAttribute(prefs.tint, kClipIdFiller, blackmagicRawFrameProcessingAttributeWhiteBalanceTint, "Tint", nullptr,
                 attrs, &result);
    if (result.hasError) return result;
    setAttribute(prefs.exposure, kClipIdFiller, blackmagicRawFrameProcessingAttributeExposure, "Exposure", nullptr,
                 attrs, &result);
    return result;
}
