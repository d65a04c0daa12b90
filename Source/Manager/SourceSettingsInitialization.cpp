#include "Manager/SourceSettingsInitialization.h"

#include "Manager/Clip.h"
#include "Manager/twComRelease.h"
#include "Manager/twSettingsInitData.h"
#include "Manager/twVariant.h"
#include "Utils/qvLogging.h"
#include "Utils/qvUtils.h"

#include <cstring>
#include <exception>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr size_t kMaxColorSciences = 2;
constexpr size_t kMaxGamuts = 14;
constexpr size_t kMaxGammas = 16;
constexpr uint32_t kMaxIsos = 30;

qvUtf8String readOnlyText(const std::string& name) {
    return qvUtf8String(name + " is Read Only for this clip - We didn't know it could happen and that would need to "
                               "be handled !");
}

// Logged as well as returned: nothing in the panels' layout is ready for it.
QvResult readOnlyFailure(const std::string& name) {
    const qvUtf8String text = readOnlyText(name);
    QV_LOG(QV_LOG_ERR, text.Str());
    return QvResult(text);
}

std::string numberText(double value) {
    std::ostringstream text;
    text << value;
    return text.str();
}

// The texts of one list query, in the order the failures can happen.
struct ListTexts {
    const char* name;         // "Color Science": the read-only text
    const char* lengthError;  // the length query failed
    const char* tooLong;      // more entries than the record holds
    const char* sizeError;    // the values query gave another length
    const char* queryError;   // the values query failed
};

// A list of the clip, asked twice as the library offers: its length with no
// array, then its values. `take` receives each value before it is cleared.
QvResult readList(IBlackmagicRawClipProcessingAttributes* attrs, uint32_t id, size_t maxLength,
                  const ListTexts& texts, uint32_t& count, const std::function<void(uint32_t, const Variant&)>& take) {
    bool readOnly = false;
    uint32_t length = 0;
    if (FAILED(attrs->GetClipAttributeList(id, nullptr, &length, &readOnly))) return QvResult(texts.lengthError);
    if (readOnly) return readOnlyFailure(texts.name);
    if (length > maxLength) return QvResult(texts.tooLong + std::to_string(length));

    std::vector<Variant> values(length);
    for (Variant& value : values) VariantInit(&value);
    uint32_t given = length;
    const HRESULT hr = attrs->GetClipAttributeList(id, values.data(), &given, &readOnly);
    QvResult result;
    if (FAILED(hr)) {
        result = QvResult(texts.queryError);
    } else if (given != length) {
        result = QvResult(texts.sizeError);
    } else {
        count = length;
        for (uint32_t i = 0; i < length; ++i) take(i, values[i]);
    }
    for (Variant& value : values) VariantClear(&value);
    return result;
}

// The current value of a clip attribute (or, through the frame's object, of a
// frame attribute); false when the library gives none.
bool readValue(IBlackmagicRawClipProcessingAttributes* attrs, uint32_t id, ScopedVariant& value) {
    return SUCCEEDED(attrs->GetClipAttribute(id, &value.get()));
}

bool readNumber(IBlackmagicRawClipProcessingAttributes* attrs, uint32_t id, double& out) {
    ScopedVariant value;
    return readValue(attrs, id, value) && twVariantNumber(value.get(), out);
}

bool readText(IBlackmagicRawClipProcessingAttributes* attrs, uint32_t id, char* field, size_t fieldSize) {
    ScopedVariant value;
    if (!readValue(attrs, id, value) || value.get().vt != blackmagicRawVariantTypeString) return false;
    twCopyFixedText(field, fieldSize, value.get().bstrVal);
    return true;
}

// What a ranged attribute tells: its range, whether it is read-only, its value.
struct Ranged {
    double minimum = 0.0;
    double maximum = 0.0;
    bool readOnly = false;
    double value = 0.0;
};

// The range is kept in `out` before it is judged; a range other than the
// expected one, compared exactly, fails. With readOnlyFails, so does a
// read-only attribute.
QvResult readRanged(IBlackmagicRawClipProcessingAttributes* attrs, uint32_t id, const std::string& name,
                    double expectedMinimum, double expectedMaximum, bool readOnlyFails, Ranged& out,
                    const std::function<void(const Ranged&)>& keepRange) {
    {
        ScopedVariant minimum;
        ScopedVariant maximum;
        if (FAILED(attrs->GetClipAttributeRange(id, &minimum.get(), &maximum.get(), &out.readOnly)) ||
            !twVariantNumber(minimum.get(), out.minimum) || !twVariantNumber(maximum.get(), out.maximum)) {
            return QvResult("Impossible to get " + name + " Range from BM");
        }
    }
    keepRange(out);
    if (out.minimum != expectedMinimum || out.maximum != expectedMaximum) {
        return QvResult("BM " + name + " Range different than usual : [" + numberText(out.minimum) + " - " +
                        numberText(out.maximum) + "]");
    }
    if (out.readOnly && readOnlyFails) return readOnlyFailure(name);
    if (!readNumber(attrs, id, out.value)) return QvResult("Impossible to get " + name + " from BM");
    return QvResult();
}

// A flag of the clip: its read-only state through the range query, then its value.
QvResult readFlag(IBlackmagicRawClipProcessingAttributes* attrs, uint32_t id, const std::string& name, bool& readOnly,
                  bool& value) {
    ScopedVariant minimum;
    ScopedVariant maximum;
    if (FAILED(attrs->GetClipAttributeRange(id, &minimum.get(), &maximum.get(), &readOnly))) {
        return QvResult("Impossible to get " + name + " Range from BM");
    }
    double number = 0.0;
    if (!readNumber(attrs, id, number)) return QvResult("Impossible to get " + name + " from BM");
    value = number != 0.0;
    return QvResult();
}

// One value of the custom gamma's tone curve, by its index in the record's
// range arrays.
struct ToneCurveControl {
    uint32_t id;
    const char* name;
    size_t rangeIndex;
    float expectedMinimum;
    float expectedMaximum;
    float twGammaControlsValues::*field;
};

// "Constrast" is how the log and the messages have always named it.
const ToneCurveControl kToneCurveControls[] = {
    {blackmagicRawClipProcessingAttributeToneCurveContrast, "Constrast", 1, 0.002f, 1.998f,
     &twGammaControlsValues::contrast},
    {blackmagicRawClipProcessingAttributeToneCurveSaturation, "Saturation", 0, 0.0f, 4.0f,
     &twGammaControlsValues::saturation},
    {blackmagicRawClipProcessingAttributeToneCurveMidpoint, "Midpoint", 2, 0.0f, 1.0f,
     &twGammaControlsValues::midpoint},
    {blackmagicRawClipProcessingAttributeToneCurveHighlights, "Highlights", 3, 0.0f, 1.998f,
     &twGammaControlsValues::highlights},
    {blackmagicRawClipProcessingAttributeToneCurveShadows, "Shadows", 4, 0.002f, 2.0f,
     &twGammaControlsValues::shadows},
    {blackmagicRawClipProcessingAttributeToneCurveWhiteLevel, "WhiteLevel", 5, 0.0f, 2.0f,
     &twGammaControlsValues::whiteLevel},
    {blackmagicRawClipProcessingAttributeToneCurveBlackLevel, "BlackLevel", 6, -1.0f, 1.0f,
     &twGammaControlsValues::blackLevel},
};

// The default curve of every gamma under every colour science of the lists.
// A pair the library has no curve for keeps its flag off.
QvResult readToneCurves(IBlackmagicRaw* codec, const qvBSTR& cameraType, twSettingsInitData& data) {
    IBlackmagicRawToneCurve* toneCurve = nullptr;
    if (FAILED(codec->QueryInterface(IID_IBlackmagicRawToneCurve, reinterpret_cast<void**>(&toneCurve))) ||
        toneCurve == nullptr) {
        twReleaseAndNull(toneCurve);
        return QvResult("BM Query Tone Curve error");
    }
    const std::string camera = cameraType.ToString();
    for (uint32_t gamma = 0; gamma < data.gammaCount; ++gamma) {
        for (uint32_t science = 0; science < data.colorScienceCount; ++science) {
            if (science >= kMaxColorSciences || gamma >= kMaxGammas) {
                toneCurve->Release();
                throw std::out_of_range("array::at");
            }
            twGammaControlsValues curve;
            uint16_t videoBlackLevel = 0;
            const std::string gammaName = qvUtf8String::FromFixedUtf8CharArray(data.gammaList[gamma]).Str();
            const HRESULT hr = toneCurve->GetToneCurve(camera.c_str(), gammaName.c_str(),
                                                       data.colorScienceList[science], &curve.contrast,
                                                       &curve.saturation, &curve.midpoint, &curve.highlights,
                                                       &curve.shadows, &curve.blackLevel, &curve.whiteLevel,
                                                       &videoBlackLevel);
            if (FAILED(hr)) continue;
            curve.useVideoBlackLevel = videoBlackLevel != 0;
            data.gammaControlsPerPreset[science][gamma] = {true, curve};
        }
    }
    toneCurve->Release();
    return QvResult();
}

QvResult fillClipLists(IBlackmagicRawClipProcessingAttributes* attrs, twSettingsInitData& data) {
    twClipAttributes& clip = data.attributes.clip;

    QvResult result = readList(
        attrs, blackmagicRawClipProcessingAttributeColorScienceGen, kMaxColorSciences,
        {"Color Science", "BM Query Color Science List length error",
         "Color Version list length is superior to the max length allowed. Length : ", "BM Color Science List Size error",
         "BM Query Color Science List error"},
        data.colorScienceCount, [&](uint32_t i, const Variant& value) {
            double number = 0.0;
            data.colorScienceList[i] = twVariantNumber(value, number) ? static_cast<uint16_t>(number) : 0;
        });
    if (result.hasError) return result;
    double science = 0.0;
    if (!readNumber(attrs, blackmagicRawClipProcessingAttributeColorScienceGen, science)) {
        return QvResult("Impossible to get ColorScienceGen from BM");
    }
    clip.colorScienceGen = static_cast<uint16_t>(science);

    const auto takeName = [](char (*list)[64]) {
        return [list](uint32_t i, const Variant& value) {
            twCopyFixedText(list[i], 64, value.vt == blackmagicRawVariantTypeString ? value.bstrVal : nullptr);
        };
    };
    result = readList(attrs, blackmagicRawClipProcessingAttributeGamut, kMaxGamuts,
                      {"Gamut", "BM Query Gamut List Length error",
                       "Gamut list length is superior to the max length allowed. Length : ", "BM Gamut List Size error",
                       "BM Query Gamut List error"},
                      data.gamutCount, takeName(data.gamutList));
    if (result.hasError) return result;
    if (!readText(attrs, blackmagicRawClipProcessingAttributeGamut, clip.gamut, sizeof(clip.gamut))) {
        return QvResult("Impossible to get Gamut from BM");
    }
    double compression = 0.0;
    if (!readNumber(attrs, blackmagicRawClipProcessingAttributeGamutCompressionEnable, compression)) {
        return QvResult("Impossible to get Gamut Compression Enabled from BM");
    }
    clip.gamutCompression = compression != 0.0;

    result = readList(attrs, blackmagicRawClipProcessingAttributeGamma, kMaxGammas,
                      {"Gamma", "BM Query Gamma List length error",
                       "Gamma list length is superior to the max length allowed. Length : ", "BM Gamma List Size error",
                       "BM Query Gamma List error"},
                      data.gammaCount, takeName(data.gammaList));
    if (result.hasError) return result;
    if (!readText(attrs, blackmagicRawClipProcessingAttributeGamma, clip.gamma, sizeof(clip.gamma))) {
        return QvResult("Impossible to get Gamma from BM");
    }
    return QvResult();
}

QvResult fillClipRanges(IBlackmagicRawClipProcessingAttributes* attrs, twSettingsInitData& data) {
    twClipAttributes& clip = data.attributes.clip;
    QvResult result = readFlag(attrs, blackmagicRawClipProcessingAttributeHighlightRecovery, "Highlight Recovery",
                               data.highlightRecoveryIsReadOnly, clip.highlightRecovery);
    if (result.hasError) return result;

    for (const ToneCurveControl& control : kToneCurveControls) {
        Ranged ranged;
        result = readRanged(attrs, control.id, control.name, control.expectedMinimum, control.expectedMaximum, true,
                            ranged, [&](const Ranged& range) {
                                data.toneCurveMin[control.rangeIndex] = static_cast<float>(range.minimum);
                                data.toneCurveMax[control.rangeIndex] = static_cast<float>(range.maximum);
                            });
        if (result.hasError) return result;
        clip.gammaControls.*control.field = static_cast<float>(ranged.value);
    }

    // Its read-only state has no place in the record.
    bool videoBlackReadOnly = false;
    return readFlag(attrs, blackmagicRawClipProcessingAttributeToneCurveVideoBlackLevel, "Video BlackLvl",
                    videoBlackReadOnly, clip.gammaControls.useVideoBlackLevel);
}

QvResult fillLutFacts(IBlackmagicRawClipProcessingAttributes* attrs, twSettingsInitData& data) {
    twClipAttributes& clip = data.attributes.clip;
    if (!readText(attrs, blackmagicRawClipProcessingAttributePost3DLUTMode, clip.lutMode, sizeof(clip.lutMode))) {
        return QvResult("Impossible to get LUT Mode from BM");
    }
    ScopedVariant embedded;
    data.embeddedLutAvailable = readValue(attrs, blackmagicRawClipProcessingAttributeEmbeddedPost3DLUTName, embedded);
    ScopedVariant sidecar;
    data.sidecarLutAvailable = readValue(attrs, blackmagicRawClipProcessingAttributeSidecarPost3DLUTName, sidecar);
    return QvResult();
}

// Under the clip's lock.
QvResult fillClipFacts(qvBRAW_Clip& clip, IBlackmagicRaw* codec, twSettingsInitData& data) {
    // A closed clip has no library object to ask.
    if (clip.m_BM == nullptr) return QvResult("initClipSSInitData - Clip is not opened");

    qvBSTR cameraType;
    if (FAILED(clip.m_BM->GetCameraType(&cameraType.m_str))) return QvResult("BM Get Camera Name error");

    qvBSTR timecode;
    if (FAILED(clip.m_BM->GetTimecodeForFrame(0, &timecode.m_str))) return QvResult("BM Get Timecode error");
    twCopyFixedText(data.attributes.frame.timecode, sizeof(data.attributes.frame.timecode),
                    timecode.ToString().c_str());

    bool dropFrame = false;
    data.timecodeFrames = static_cast<int32_t>(clip.getTimecodeFrames(dropFrame, false));
    data.timecodeIsDropFrame = dropFrame;

    const HRESULT sidecar = clip.m_BM->GetSidecarFileAttached(&data.hasSidecar);
    if (FAILED(sidecar)) {
        return QvResult("BM GetSidecarFileAttached error : " + qvUtils::getHRESULTerrorMessage(sidecar));
    }

    uint32_t files = 1;
    if (FAILED(clip.m_BM->GetMulticardFileCount(&files))) {
        QV_LOG(QV_LOG_WARN, "Impossible to get MulticardFileCount from BM - the clip counts as one file");
        files = 1;
    }
    data.multiCardFiles = files;

    const QvResult shared = SourceSettingsInitialization::initClipSourceSettingsInitDataSharedPrefs(clip, codec,
                                                                                                    cameraType);
    if (shared.hasError) {
        QV_LOG(QV_LOG_ERR, "Error raised in initClipSourceSettingsInitDataSharedPrefs");
        return shared;
    }
    return QvResult();
}

}  // namespace

QvResult SourceSettingsInitialization::initClipSourceSettingsInitData(qvBRAW_Clip& clip, IBlackmagicRaw* codec) {
    if (codec == nullptr) return QvResult("initClipSSInitData - in_codec is nullptr");

    QV_LOCK_TRACED(clip.m_bmClipMutex);
    const std::shared_ptr<twSettingsInitData> data = clip.m_sourceSettingsInitData;
    if (!data) {
        clip.m_bmClipMutex.unlock();
        return QvResult("initClipSSInitData - m_sourceSettingsInitData should have already been allocated");
    }
    data->ready = false;

    QvResult result;
    try {
        result = fillClipFacts(clip, codec, *data);
    } catch (const std::exception& error) {
        result = QvResult(qvUtf8String("Exception raised in initClipSourceSettingsInitData : ") + error.what());
    } catch (...) {
        result = QvResult("Unknown Error raised in initClipSourceSettingsInitData");
    }
    // A partly filled record must never be seen.
    if (result.hasError && clip.m_sourceSettingsInitData == data) clip.m_sourceSettingsInitData.reset();
    clip.m_bmClipMutex.unlock();
    return result;
}

QvResult SourceSettingsInitialization::initClipSourceSettingsInitDataSharedPrefs(qvBRAW_Clip& clip,
                                                                                 IBlackmagicRaw* codec,
                                                                                 const qvBSTR& cameraType) {
    const std::shared_ptr<twSettingsInitData> data = clip.m_sourceSettingsInitData;
    if (!data || clip.m_BM == nullptr || codec == nullptr) {
        return QvResult("initClipSSInitData - m_sourceSettingsInitData should have already been allocated");
    }
    IBlackmagicRawClipProcessingAttributes* attrs = nullptr;
    if (FAILED(clip.m_BM->CloneClipProcessingAttributes(&attrs)) || attrs == nullptr) {
        twReleaseAndNull(attrs);
        return QvResult("BM Query Clip Processing Attributes error");
    }

    QvResult result;
    try {
        result = fillClipLists(attrs, *data);
        if (!result.hasError) result = readToneCurves(codec, cameraType, *data);
        if (!result.hasError) result = fillClipRanges(attrs, *data);
        if (!result.hasError) result = fillLutFacts(attrs, *data);
    } catch (const std::exception& error) {
        result = QvResult(qvUtf8String("Exception raised : ") + error.what());
    } catch (...) {
        result = QvResult("Unknown Error raised");
    }
    attrs->Release();
    return result;
}

QvResult SourceSettingsInitialization::getFrameInfosFromBM(IBlackmagicRawFrame* frame,
                                                           std::shared_ptr<twSettingsInitData> data) {
    if (frame == nullptr || !data) {
        return QvResult("Querying interface IID_IBlackmagicRawClipProcessingAttributes failed !");
    }
    // The frame answers its own attribute ids through this object as well.
    IBlackmagicRawClipProcessingAttributes* attrs = nullptr;
    if (FAILED(frame->QueryInterface(IID_IBlackmagicRawClipProcessingAttributes, reinterpret_cast<void**>(&attrs))) ||
        attrs == nullptr) {
        twReleaseAndNull(attrs);
        return QvResult("Querying interface IID_IBlackmagicRawClipProcessingAttributes failed !");
    }

    QvResult result;
    try {
        twFrameAttributes& values = data->attributes.frame;
        uint32_t length = 0;
        bool readOnly = false;
        double number = 0.0;
        Ranged ranged;
        if (FAILED(attrs->GetISOList(nullptr, &length, &readOnly))) {
            result = QvResult("BM Query ISO List length error");
        } else if (length > kMaxIsos) {
            result = QvResult("ISO list length is superior to the max length allowed. Length : " +
                              std::to_string(length));
        } else {
            uint32_t given = length;
            if (FAILED(attrs->GetISOList(data->isoList, &given, &readOnly))) {
                result = QvResult("BM Query ISO List error");
            } else if (given != length) {
                result = QvResult("BM ISO List Size error");
            }
        }
        if (!result.hasError) {
            data->isoCount = length;
            data->isoIsReadOnly = readOnly;
            if (!readNumber(attrs, blackmagicRawFrameProcessingAttributeISO, number)) {
                result = QvResult("Impossible to get ISO from BM");
            } else {
                values.iso = static_cast<uint32_t>(number);
            }
        }
        if (!result.hasError) {
            result = readRanged(attrs, blackmagicRawFrameProcessingAttributeWhiteBalanceKelvin, "ColorTemp", 2000.0,
                                50000.0, false, ranged, [&](const Ranged& range) {
                                    data->colorTempMin = static_cast<uint32_t>(range.minimum);
                                    data->colorTempMax = static_cast<uint32_t>(range.maximum);
                                });
            data->colorTempIsReadOnly = ranged.readOnly;
            if (!result.hasError) values.kelvin = static_cast<uint32_t>(ranged.value);
        }
        if (!result.hasError) {
            ranged = Ranged();
            result = readRanged(attrs, blackmagicRawFrameProcessingAttributeWhiteBalanceTint, "Tint", -150.0, 150.0,
                                false, ranged, [&](const Ranged& range) {
                                    data->tintMin = static_cast<int16_t>(range.minimum);
                                    data->tintMax = static_cast<int16_t>(range.maximum);
                                });
            data->tintIsReadOnly = ranged.readOnly;
            if (!result.hasError) values.tint = static_cast<int16_t>(ranged.value);
        }
        if (!result.hasError) {
            ranged = Ranged();
            result = readRanged(attrs, blackmagicRawFrameProcessingAttributeExposure, "Exposure", -5.0, 5.0, true,
                                ranged, [&](const Ranged& range) {
                                    data->exposureMin = static_cast<float>(range.minimum);
                                    data->exposureMax = static_cast<float>(range.maximum);
                                });
            if (!result.hasError) values.exposure = static_cast<float>(ranged.value);
        }
    } catch (const std::exception& error) {
        result = QvResult(qvUtf8String("Exception raised : ") + error.what());
    } catch (...) {
        result = QvResult("Unknown exception raised");
    }
    attrs->Release();
    return result;
}
