#include "TW_Settings_Utils/SidecarUtility.h"

#include "FileSystem/qvFileSystem.h"
#include "Manager/twSettingsVocabulary.h"
#include "TW_Settings_Utils/LutUtility.h"
#include "Utils/qvLogging.h"

#include <cmath>
#include <cstring>
#include <stdexcept>
#include <string>

namespace {

struct SidecarKey {
    const char* key;
    int index;
    int type;
    bool frameLevel;
};

// The written order; the reading order is the same.
constexpr SidecarKey kSidecarKeys[] = {
    {"tone_curve_saturation", BRAW_SETTING_SATURATION, SidecarUtility::TYPE_FLOAT, false},
    {"tone_curve_contrast", BRAW_SETTING_CONTRAST, SidecarUtility::TYPE_FLOAT, false},
    {"tone_curve_midpoint", BRAW_SETTING_MIDPOINT, SidecarUtility::TYPE_FLOAT, false},
    {"tone_curve_highlights", BRAW_SETTING_HIGHLIGHTS, SidecarUtility::TYPE_FLOAT, false},
    {"tone_curve_shadows", BRAW_SETTING_SHADOWS, SidecarUtility::TYPE_FLOAT, false},
    {"tone_curve_white_leve", BRAW_SETTING_WHITE_LEVEL, SidecarUtility::TYPE_FLOAT, false},
    {"tone_curve_black_leve", BRAW_SETTING_BLACK_LEVEL, SidecarUtility::TYPE_FLOAT, false},
    {"tone_curve_video_black_leve", BRAW_SETTING_USE_VIDEO_BLACK_LEVEL, SidecarUtility::TYPE_BOOL, false},
    {"viewing_gamma", BRAW_SETTING_GAMMA, SidecarUtility::TYPE_STRING, false},
    {"viewing_gamut", BRAW_SETTING_GAMUT, SidecarUtility::TYPE_STRING, false},
    {"gamut_compression_enable", BRAW_SETTING_GAMUT_COMPRESSION, SidecarUtility::TYPE_BOOL, false},
    {"viewing_bmdgen", BRAW_SETTING_COLOR_SCIENCE, SidecarUtility::TYPE_U16, false},
    {"highlight_recovery", BRAW_SETTING_HIGHLIGHT_RECOVERY, SidecarUtility::TYPE_BOOL, false},
    {"post_3dlut_mode", BRAW_SETTING_LUT_MODE, SidecarUtility::TYPE_STRING, false},
    {"exposure", BRAW_SETTING_EXPOSURE, SidecarUtility::TYPE_FLOAT, true},
    {"white_balance_kelvin", BRAW_SETTING_COLOR_TEMP, SidecarUtility::TYPE_U32, true},
    {"white_balance_tint", BRAW_SETTING_TINT, SidecarUtility::TYPE_I16, true},
    {"iso", BRAW_SETTING_ISO, SidecarUtility::TYPE_U32, true},
};

constexpr const char* kLutDataKey = "post_3dlut_sidecar_data";

// The three texts pass through strings: the records hold fixed arrays.
struct SidecarTexts {
    qvUtf8String gamma;
    qvUtf8String gamut;
    qvUtf8String lutMode;
};

// Where the value of a setting lives: its field, or its text for the three
// fixed text fields.
void* fieldOf(int index, twClipAttributes& clip, twFrameAttributes& frame, SidecarTexts& texts) {
    twGammaControlsValues& curve = clip.gammaControls;
    switch (index) {
        case BRAW_SETTING_SATURATION: return &curve.saturation;
        case BRAW_SETTING_CONTRAST: return &curve.contrast;
        case BRAW_SETTING_MIDPOINT: return &curve.midpoint;
        case BRAW_SETTING_HIGHLIGHTS: return &curve.highlights;
        case BRAW_SETTING_SHADOWS: return &curve.shadows;
        case BRAW_SETTING_WHITE_LEVEL: return &curve.whiteLevel;
        case BRAW_SETTING_BLACK_LEVEL: return &curve.blackLevel;
        case BRAW_SETTING_USE_VIDEO_BLACK_LEVEL: return &curve.useVideoBlackLevel;
        case BRAW_SETTING_GAMMA: return &texts.gamma;
        case BRAW_SETTING_GAMUT: return &texts.gamut;
        case BRAW_SETTING_GAMUT_COMPRESSION: return &clip.gamutCompression;
        case BRAW_SETTING_COLOR_SCIENCE: return &clip.colorScienceGen;
        case BRAW_SETTING_HIGHLIGHT_RECOVERY: return &clip.highlightRecovery;
        case BRAW_SETTING_LUT_MODE: return &texts.lutMode;
        case BRAW_SETTING_EXPOSURE: return &frame.exposure;
        case BRAW_SETTING_COLOR_TEMP: return &frame.kelvin;
        case BRAW_SETTING_TINT: return &frame.tint;
        case BRAW_SETTING_ISO: return &frame.iso;
        default: return nullptr;
    }
}

// A 0 / 1 integer, or a JSON boolean.
QV_JSON_ERR readBoolOrInt(QV_JSON& json, rapidjson::Value& object, const char* key, bool& out) {
    QV_JSON_ERR result = json.getBoolInt(object, key, out);
    if (result == QV_JSON_SYNTAX) result = json.getBool(object, key, out);
    return result;
}

// One value of `object` by key, stored only when it reads.
QV_JSON_ERR readTyped(QV_JSON& json, rapidjson::Value& object, const char* key, int type, void* value) {
    QV_JSON_ERR result = QV_JSON_SYNTAX;
    switch (type) {
        case SidecarUtility::TYPE_FLOAT: {
            float number = 0.0f;
            result = json.getFloat(object, key, number);
            if (result == QV_JSON_OK) *static_cast<float*>(value) = number;
            break;
        }
        case SidecarUtility::TYPE_U16:
        case SidecarUtility::TYPE_U32: {
            unsigned int number = 0;
            result = json.getUint(object, key, number);
            if (result != QV_JSON_OK) break;
            if (type == SidecarUtility::TYPE_U16) *static_cast<uint16_t*>(value) = static_cast<uint16_t>(number);
            else *static_cast<uint32_t*>(value) = number;
            break;
        }
        case SidecarUtility::TYPE_I16:
        case SidecarUtility::TYPE_I32: {
            int number = 0;
            result = json.getInt(object, key, number);
            if (result != QV_JSON_OK) break;
            if (type == SidecarUtility::TYPE_I16) *static_cast<int16_t*>(value) = static_cast<int16_t>(number);
            else *static_cast<int32_t*>(value) = number;
            break;
        }
        case SidecarUtility::TYPE_BOOL: {
            bool flag = false;
            result = readBoolOrInt(json, object, key, flag);
            if (result == QV_JSON_OK) *static_cast<bool*>(value) = flag;
            break;
        }
        case SidecarUtility::TYPE_STRING: {
            qvUtf8String text;
            result = json.getString(object, key, text);
            if (result == QV_JSON_OK) *static_cast<qvUtf8String*>(value) = text;
            break;
        }
        default: break;
    }
    return result;
}

// The frame-level value: the first member of the object under key, whatever
// its name, or a plain number under key.
QV_JSON_ERR readFrameLevel(QV_JSON& json, const char* key, int type, void* value) {
    rapidjson::Value& root = json.document;
    rapidjson::Value object;
    QV_JSON_ERR result = json.getJSONObject(root, key, object);
    if (result == QV_JSON_NOT_FOUND) return result;
    // getJSONObject moved the value out of the document, whatever its type:
    // it goes back, so that the document can still be written, and a plain
    // number can still be read where it stands.
    auto member = root.FindMember(key);
    if (result == QV_JSON_SYNTAX) {
        if (member != root.MemberEnd()) member->value = object;
        return readTyped(json, root, key, type, value);
    }
    QV_JSON_ERR read = QV_JSON_SYNTAX;
    if (object.MemberCount() > 0) {
        const std::string firstName(object.MemberBegin()->name.GetString(),
                                    object.MemberBegin()->name.GetStringLength());
        // The first member is the first one of that name.
        read = readTyped(json, object, firstName.c_str(), type, value);
    }
    if (member != root.MemberEnd()) member->value = object;
    return read;
}

// Adds a value of `type` under key; false when the value has no JSON form.
bool addTyped(QV_JSON& json, rapidjson::Value& object, const char* key, int type, const void* value) {
    switch (type) {
        case SidecarUtility::TYPE_FLOAT: {
            const float number = *static_cast<const float*>(value);
            if (!std::isfinite(number)) return false;
            return json.addFloatToObject(object, key, number) == QV_JSON_OK;
        }
        case SidecarUtility::TYPE_U16:
            return json.addUintToObject(object, key, *static_cast<const uint16_t*>(value)) == QV_JSON_OK;
        case SidecarUtility::TYPE_U32:
            return json.addUintToObject(object, key, *static_cast<const uint32_t*>(value)) == QV_JSON_OK;
        case SidecarUtility::TYPE_I16:
            return json.addIntToObject(object, key, *static_cast<const int16_t*>(value)) == QV_JSON_OK;
        case SidecarUtility::TYPE_I32:
            return json.addIntToObject(object, key, *static_cast<const int32_t*>(value)) == QV_JSON_OK;
        case SidecarUtility::TYPE_BOOL: {
            // The records come from the host's prefs blob: a flag byte may hold
            // any value, so it is read as a byte, not as a bool.
            uint8_t flag = 0;
            std::memcpy(&flag, value, 1);
            return json.addUintToObject(object, key, flag != 0 ? 1u : 0u) == QV_JSON_OK;
        }
        case SidecarUtility::TYPE_STRING:
            return json.addStringToObject(object, key, *static_cast<const qvUtf8String*>(value)) == QV_JSON_OK;
        default: return false;
    }
}

bool flagAt(const std::vector<bool>& flags, int index) {
    return index >= 0 && static_cast<size_t>(index) < flags.size() && flags[static_cast<size_t>(index)];
}

}  // namespace

// Erased rather than removed: a removal moves the last member into the hole,
// which would shuffle the user's keys and the ones just written.
void SidecarUtility::removeAllMembers(QV_JSON& json, const char* key) {
    rapidjson::Value& root = json.document;
    if (!root.IsObject()) return;
    const size_t length = std::strlen(key);
    for (auto it = root.MemberBegin(); it != root.MemberEnd();) {
        if (it->name.GetStringLength() == length && std::memcmp(it->name.GetString(), key, length) == 0) {
            it = root.EraseMember(it);
        } else {
            ++it;
        }
    }
}

qvUtf8String SidecarUtility::activeKeyOf(const qvUtf8String& key) {
    if (key.StartsWith("tw_")) return key + "_active";
    return "tw_" + key + "_active";
}

void SidecarUtility::getValueAndActiveState(const qvUtf8String& key, int index, QV_JSON& json, SidecarError& error,
                                            std::vector<bool>& activeFlags, void* value, int typeCode,
                                            bool frameLevel) {
    if (frameLevel && (typeCode == TYPE_BOOL || typeCode == TYPE_STRING)) {
        throw std::runtime_error("Error - Impossible to query BoolInt in Object - Unsupported");
    }
    rapidjson::Value& root = json.document;
    bool companion = false;
    const bool companionRead = readBoolOrInt(json, root, activeKeyOf(key).c_str(), companion) == QV_JSON_OK;

    const QV_JSON_ERR read =
        frameLevel ? readFrameLevel(json, key.c_str(), typeCode, value) : readTyped(json, root, key.c_str(), typeCode, value);

    if (index >= 0 && static_cast<size_t>(index) < activeFlags.size()) {
        activeFlags[static_cast<size_t>(index)] = companionRead ? companion : read == QV_JSON_OK;
    }
    if (read == QV_JSON_SYNTAX) {
        QV_LOG(QV_LOG_ERR, "Reading Sidecar BRAW Syntax error - Json : " << getJsonErrMsg(read) << " (" << key << ")");
        error = SIDECAR_SYNTAX;
    }
}

SidecarUtility::SidecarError SidecarUtility::fillPrefsFromJSONSidecarValues(QV_JSON& json, twClipAttributes& clip,
                                                                            twFrameAttributes& frame,
                                                                            std::vector<bool>& activeFlags) {
    if (activeFlags.size() < BRAW_SETTINGS_COUNT) activeFlags.resize(BRAW_SETTINGS_COUNT, false);
    SidecarError error = SIDECAR_OK;
    SidecarTexts texts;
    for (const SidecarKey& k : kSidecarKeys) {
        getValueAndActiveState(k.key, k.index, json, error, activeFlags, fieldOf(k.index, clip, frame, texts), k.type,
                               k.frameLevel);
    }
    // An empty text names nothing: the field keeps its value. Judged by its
    // bytes, as the field will hold them: a text that isn't valid UTF-8 still
    // names something.
    auto namesSomething = [](const qvUtf8String& text) { return text.Size() > 0 && text.Str()[0] != '\0'; };
    if (namesSomething(texts.gamma)) twCopyFixedText(clip.gamma, sizeof(clip.gamma), texts.gamma.c_str());
    if (namesSomething(texts.gamut)) twCopyFixedText(clip.gamut, sizeof(clip.gamut), texts.gamut.c_str());
    if (namesSomething(texts.lutMode)) twCopyFixedText(clip.lutMode, sizeof(clip.lutMode), texts.lutMode.c_str());
    return error;
}

SidecarUtility::SidecarError SidecarUtility::fillPrefsFromSidecar(const qvUtf8String& path, twAttributes& prefs) {
    // A folder opens as a stream on this platform and would read as bad JSON.
    if (qvFileSystem::isFolderPath(path)) return SIDECAR_CANT_OPEN;
    QV_JSON json;
    const QV_JSON_ERR read = json.readJSONFile(path);
    switch (read) {
        case QV_JSON_OK: {
            if (!json.document.IsObject()) return SIDECAR_BAD_JSON;
            std::vector<bool> flags(BRAW_SETTINGS_COUNT, false);
            return fillPrefsFromJSONSidecarValues(json, prefs.clip, prefs.frame, flags);
        }
        case QV_JSON_SYNTAX: return SIDECAR_BAD_JSON;
        case QV_JSON_NOT_FOUND: return SIDECAR_MISSING;
        case QV_JSON_READING: return SIDECAR_CANT_OPEN;
        default:
            throw std::runtime_error("Weird Error returned from Sidecar after reading the file : " +
                                     std::to_string(static_cast<int>(read)));
    }
}

void SidecarUtility::setValueAndActiveStateInJson(const qvUtf8String& key, int index, QV_JSON& json,
                                                  const std::vector<bool>& activeFlags, const void* value,
                                                  int typeCode, bool frameLevel, const qvUtf8String& frameKey,
                                                  bool writeActive) {
    if (!json.document.IsObject()) return;
    if (writeActive) {
        const qvUtf8String activeKey = activeKeyOf(key);
        SidecarUtility::removeAllMembers(json, activeKey.c_str());
        json.addUintToObject(json.document, activeKey.c_str(), flagAt(activeFlags, index) ? 1u : 0u);
    }
    // NaN and the infinities have no JSON form, and a writer that met one would
    // stop in the middle of the file: such a value is not written, and the
    // document keeps what it held under that key.
    if (typeCode == TYPE_FLOAT && !std::isfinite(*static_cast<const float*>(value))) {
        QV_LOG(QV_LOG_WARN, "Not writing " << key << " : its value is not a finite number");
        return;
    }
    SidecarUtility::removeAllMembers(json, key.c_str());
    if (frameLevel) {
        rapidjson::Value object;
        json.createEmptyObject(object);
        addTyped(json, object, frameKey.c_str(), typeCode, value);
        json.addObjectToObject(json.document, key.c_str(), object);
    } else {
        addTyped(json, json.document, key.c_str(), typeCode, value);
    }
}

void SidecarUtility::fillJSONFromSidecarValues(QV_JSON& json, const twClipAttributes& clip,
                                               const twFrameAttributes& frame, const std::vector<bool>& activeFlags,
                                               bool writeActive) {
    SidecarTexts texts;
    texts.gamma = qvUtf8String::FromFixedUtf8CharArray(clip.gamma);
    texts.gamut = qvUtf8String::FromFixedUtf8CharArray(clip.gamut);
    texts.lutMode = qvUtf8String::FromFixedUtf8CharArray(clip.lutMode);
    const qvUtf8String frameKey = qvUtf8String::FromFixedUtf8CharArray(frame.timecode);
    // The fields are only read through these addresses.
    twClipAttributes& clipFields = const_cast<twClipAttributes&>(clip);
    twFrameAttributes& frameFields = const_cast<twFrameAttributes&>(frame);
    for (const SidecarKey& k : kSidecarKeys) {
        setValueAndActiveStateInJson(k.key, k.index, json, activeFlags, fieldOf(k.index, clipFields, frameFields, texts),
                                     k.type, k.frameLevel, frameKey, writeActive);
    }
}

SidecarUtility::SidecarError SidecarUtility::writeSidecarFromPrefs(const qvUtf8String& path, const twAttributes& prefs) {
    QV_JSON json;
    bool lutRemembered = false;
    const QV_JSON_ERR read = json.readJSONFile(path);
    if (read == QV_JSON_READING || qvFileSystem::isFolderPath(path)) {
        // A file that is there but can't be read can't be kept: writing over it
        // would lose what it holds.
        QV_LOG(QV_LOG_ERR, "Sidecar " << path << " exists but can't be read : not written");
        return SIDECAR_WRITE_FAILED;
    }
    if (read == QV_JSON_OK && json.document.IsObject()) {
        qvUtf8String lutData;
        lutRemembered = json.getString(json.document, kLutDataKey, lutData) == QV_JSON_OK;
    } else {
        // Missing, or not a JSON object: a new file (bad JSON is replaced on purpose).
        json.initEmptyJSON(true);
    }
    const std::vector<bool> allActive(BRAW_SETTINGS_COUNT, true);
    fillJSONFromSidecarValues(json, prefs.clip, prefs.frame, allActive, false);

    // The settings and the LUT's layout go in one replacement of the file.
    bool layoutFailed = false;
    const QvResult written = LutUtility::writeSidecar(json, path, lutRemembered, layoutFailed);
    if (layoutFailed) {
        QV_LOG(QV_LOG_ERR, "Error while Updating Sidecar Lut : " << written.toString());
        return SIDECAR_WRITE_FAILED;
    }
    if (written.hasError) {
        QV_LOG(QV_LOG_ERR, "Impossible to write sidecar " << path << " : " << written.toString());
        return SIDECAR_WRITE_FAILED;
    }
    return SIDECAR_OK;
}
