#include "Format/RefSidecar.h"
#include "Format/RefLutTools.h"

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <limits>
#include <sstream>

namespace twref {

namespace {

using Json = rapidjson::Value;

constexpr const char* kLutMode = "post_3dlut_mode";
constexpr const char* kLutName = "post_3dlut_sidecar_name";
constexpr const char* kLutTitle = "post_3dlut_sidecar_title";
constexpr const char* kLutSize = "post_3dlut_sidecar_size";
constexpr const char* kLutData = "post_3dlut_sidecar_data";

uint32_t lineOfOffset(const std::string& text, size_t offset)
{
    uint32_t line = 1;
    for (size_t i = 0; i < offset && i < text.size(); ++i) {
        if (text[i] == '\n')
            ++line;
    }
    return line;
}

// The line where a member name first appears; 0 when it cannot be found.
uint32_t lineOfKey(const std::string& text, const std::string& key)
{
    const size_t at = text.find("\"" + key + "\"");
    return at == std::string::npos ? 0 : lineOfOffset(text, at);
}

// The LUT member is written with its numbers spread over many lines, raw line
// feeds inside the string, which strict JSON forbids. Control characters inside
// strings become blanks (one for one, so offsets and line numbers stay).
std::string withoutRawControls(const std::string& text)
{
    std::string out = text;
    bool inString = false;
    bool escaped = false;
    for (char& c : out) {
        if (!inString) {
            inString = c == '"';
            continue;
        }
        if (escaped) {
            escaped = false;
        } else if (c == '\\') {
            escaped = true;
        } else if (c == '"') {
            inString = false;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            c = ' ';
        }
    }
    return out;
}

// A frame-level value: a number, or an object whose first member is a number.
const Json* frameLevelNumber(const Json& v)
{
    if (v.IsNumber())
        return &v;
    if (v.IsObject() && v.MemberBegin() != v.MemberEnd() && v.MemberBegin()->value.IsNumber())
        return &v.MemberBegin()->value;
    return nullptr;
}

RefValue metadataValueOf(const Json& v)
{
    if (v.IsString())
        return RefValue::string(std::string(v.GetString(), v.GetStringLength()));
    if (v.IsBool())
        return RefValue::u8(v.GetBool() ? 1 : 0);
    if (v.IsInt())
        return RefValue::s32(v.GetInt());
    if (v.IsUint())
        return RefValue::u32(v.GetUint());
    if (v.IsNumber())
        return RefValue::f32(static_cast<float>(v.GetDouble()));
    if (v.IsArray()) {
        std::vector<double> numbers;
        for (const Json& item : v.GetArray()) {
            if (!item.IsNumber())
                return RefValue();
            numbers.push_back(item.GetDouble());
        }
        return RefValue::numberArray(RefVariantType::Float32, numbers);
    }
    if (v.IsObject()) {
        if (const Json* n = frameLevelNumber(v))
            return metadataValueOf(*n);
    }
    return RefValue();
}

class SidecarReader {
public:
    SidecarReader(const std::string& text, RefSidecarResult& result) : m_text(text), m_result(result) {}

    void warn(const std::string& key, const std::string& message)
    {
        RefSidecarIssue issue;
        issue.line = lineOfKey(m_text, key);
        issue.message = "\"" + key + "\": " + message;
        m_result.warnings.push_back(issue);
    }

    template <typename T>
    void readFloat(const Json& v, const std::string& key, std::optional<T>& out)
    {
        if (v.IsNumber())
            out = static_cast<T>(v.GetDouble());
        else
            warn(key, "expected a number");
    }

    void readU16(const Json& v, const std::string& key, bool boolean, std::optional<uint16_t>& out)
    {
        if (boolean && v.IsBool())
            out = v.GetBool() ? 1 : 0;
        else if (v.IsUint() && v.GetUint() <= (boolean ? 1u : 0xFFFFu))
            out = static_cast<uint16_t>(v.GetUint());
        else
            warn(key, boolean ? "expected 0 or 1" : "expected an unsigned 16-bit integer");
    }

    void readString(const Json& v, const std::string& key, std::optional<std::string>& out)
    {
        if (v.IsString())
            out = std::string(v.GetString(), v.GetStringLength());
        else
            warn(key, "expected a string");
    }

    template <typename T>
    void readFrameInteger(const Json& v, const std::string& key, int64_t minimum, int64_t maximum,
                          std::optional<T>& out)
    {
        const Json* n = frameLevelNumber(v);
        if (n && n->IsInt64() && n->GetInt64() >= minimum && n->GetInt64() <= maximum)
            out = static_cast<T>(n->GetInt64());
        else
            warn(key, "expected an integer from " + std::to_string(minimum) + " to " + std::to_string(maximum) +
                          ", directly or as the first member of an object");
    }

    void readFrameFloat(const Json& v, const std::string& key, std::optional<float>& out)
    {
        if (const Json* n = frameLevelNumber(v))
            out = static_cast<float>(n->GetDouble());
        else
            warn(key, "expected a number, directly or as the first member of an object");
    }

    void readLut(const Json& doc)
    {
        const char* keys[] = {kLutName, kLutTitle, kLutSize, kLutData};
        int found = 0;
        for (const char* k : keys)
            found += doc.HasMember(k) ? 1 : 0;
        if (found == 0)
            return;
        if (found != 4) {
            warn(doc.HasMember(kLutData) ? kLutData : kLutName,
                 "a sidecar LUT needs the name, title, size and data members");
            return;
        }
        RefLut lut;
        const Json& name = doc[kLutName];
        const Json& title = doc[kLutTitle];
        const Json& size = doc[kLutSize];
        const Json& data = doc[kLutData];
        if (!name.IsString() || !title.IsString()) {
            warn(kLutName, "expected strings for the LUT name and title");
            return;
        }
        if (!size.IsUint() || size.GetUint() < 2 || size.GetUint() > kRefMaxLutSize) {
            warn(kLutSize, "expected a LUT size from 2 to " + std::to_string(kRefMaxLutSize));
            return;
        }
        lut.name = name.GetString();
        lut.title = title.GetString();
        lut.size = size.GetUint();
        if (data.IsString()) {
            if (!RefLutTools::parseNumberList(std::string(data.GetString(), data.GetStringLength()), lut.data)) {
                warn(kLutData, "expected numbers separated by blanks");
                return;
            }
        } else if (data.IsArray()) {
            for (const Json& item : data.GetArray()) {
                if (!item.IsNumber()) {
                    warn(kLutData, "expected numbers");
                    return;
                }
                lut.data.push_back(static_cast<float>(item.GetDouble()));
            }
        } else {
            warn(kLutData, "expected a string of numbers");
            return;
        }
        if (!lut.valid()) {
            warn(kLutData, "holds " + std::to_string(lut.data.size()) + " numbers, expected " +
                               std::to_string(size_t(lut.size) * lut.size * lut.size * 3));
            return;
        }
        m_result.settings.lut = std::move(lut);
    }

    void read(const Json& doc)
    {
        RefSidecarSettings& s = m_result.settings;
        for (auto m = doc.MemberBegin(); m != doc.MemberEnd(); ++m) {
            const std::string key(m->name.GetString(), m->name.GetStringLength());
            const Json& v = m->value;
            if (key == "tone_curve_saturation") readFloat(v, key, s.toneCurveSaturation);
            else if (key == "tone_curve_contrast") readFloat(v, key, s.toneCurveContrast);
            else if (key == "tone_curve_midpoint") readFloat(v, key, s.toneCurveMidpoint);
            else if (key == "tone_curve_highlights") readFloat(v, key, s.toneCurveHighlights);
            else if (key == "tone_curve_shadows") readFloat(v, key, s.toneCurveShadows);
            else if (key == "tone_curve_white_leve") readFloat(v, key, s.toneCurveWhiteLevel);
            else if (key == "tone_curve_black_leve") readFloat(v, key, s.toneCurveBlackLevel);
            else if (key == "tone_curve_video_black_leve") readU16(v, key, true, s.toneCurveVideoBlackLevel);
            else if (key == "viewing_gamma") readString(v, key, s.gamma);
            else if (key == "viewing_gamut") readString(v, key, s.gamut);
            else if (key == "gamut_compression_enable") readU16(v, key, true, s.gamutCompression);
            else if (key == "viewing_bmdgen") readU16(v, key, false, s.colorScienceGen);
            else if (key == "highlight_recovery") readU16(v, key, true, s.highlightRecovery);
            else if (key == kLutMode) readString(v, key, s.lutMode);
            else if (key == "exposure") readFrameFloat(v, key, s.exposure);
            else if (key == "white_balance_kelvin") readFrameInteger(v, key, 0, 0xFFFFFFFFll, s.kelvin);
            else if (key == "white_balance_tint") readFrameInteger(v, key, INT16_MIN, INT16_MAX, s.tint);
            else if (key == "iso") readFrameInteger(v, key, 0, 0xFFFFFFFFll, s.iso);
            if (key == kLutName || key == kLutTitle || key == kLutSize || key == kLutData)
                continue;
            const RefValue value = metadataValueOf(v);
            if (value.type != RefVariantType::Empty)
                s.metadata.push_back({key, value});
        }
        readLut(doc);
    }

private:
    const std::string& m_text;
    RefSidecarResult& m_result;
};

void setValue(RefClipModel& model, bool clipLevel, uint32_t id, const RefValue& value)
{
    RefAttribute* a = clipLevel ? model.clipAttribute(id) : model.frameAttribute(id);
    if (a == nullptr || a->readOnly || !a->supported)
        return;
    const RefVariantType type = a->value.type != RefVariantType::Empty ? a->value.type : value.type;
    a->value = value.type == RefVariantType::String ? value : RefValue::ofType(type, value.number);
}

// Replaces an existing entry keeping its type when both are numbers.
bool overrideEntry(std::vector<RefMetadataEntry>& list, const RefMetadataEntry& entry)
{
    for (RefMetadataEntry& e : list) {
        if (e.key != entry.key)
            continue;
        if (e.value.isNumber() && entry.value.isNumber())
            e.value = RefValue::ofType(e.value.type, entry.value.number);
        else
            e.value = entry.value;
        return true;
    }
    return false;
}

}  // namespace

std::string RefSidecar::pathForClip(const std::string& clipPath)
{
    const size_t slash = clipPath.find_last_of('/');
    const size_t dot = clipPath.find_last_of('.');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash))
        return clipPath + ".sidecar";
    return clipPath.substr(0, dot) + ".sidecar";
}

RefSidecarResult RefSidecar::parse(const std::string& text)
{
    RefSidecarResult result;
    const std::string json = withoutRawControls(text);
    rapidjson::Document doc;
    doc.Parse<rapidjson::kParseFullPrecisionFlag | rapidjson::kParseIterativeFlag>(json.data(), json.size());
    if (doc.HasParseError()) {
        result.status = RefSidecarResult::Status::Failed;
        result.error.line = lineOfOffset(text, doc.GetErrorOffset());
        result.error.message = std::string("invalid JSON: ") + rapidjson::GetParseError_En(doc.GetParseError());
        return result;
    }
    if (!doc.IsObject()) {
        result.status = RefSidecarResult::Status::Failed;
        result.error.line = 1;
        result.error.message = "the sidecar is not a JSON object";
        return result;
    }
    result.status = RefSidecarResult::Status::Parsed;
    SidecarReader reader(text, result);
    reader.read(doc);
    return result;
}

RefSidecarResult RefSidecar::read(const std::string& sidecarPath)
{
    struct stat st;
    if (::stat(sidecarPath.c_str(), &st) != 0) {
        RefSidecarResult result;
        result.path = sidecarPath;
        return result;
    }
    std::ifstream file(sidecarPath, std::ios::binary);
    if (!file || !S_ISREG(st.st_mode)) {
        RefSidecarResult result;
        result.path = sidecarPath;
        result.status = RefSidecarResult::Status::Failed;
        result.error.message = "cannot open the sidecar";
        return result;
    }
    std::ostringstream content;
    content << file.rdbuf();
    RefSidecarResult result = parse(content.str());
    result.path = sidecarPath;
    return result;
}

void RefSidecar::applyToModel(const RefSidecarSettings& s, RefClipModel& model)
{
    auto f32 = [&](uint32_t id, const std::optional<float>& v) {
        if (v)
            setValue(model, true, id, RefValue::f32(*v));
    };
    auto u16 = [&](uint32_t id, const std::optional<uint16_t>& v) {
        if (v)
            setValue(model, true, id, RefValue::u16(*v));
    };
    auto text = [&](uint32_t id, const std::optional<std::string>& v) {
        if (v)
            setValue(model, true, id, RefValue::string(*v));
    };
    f32(RefClipAttr::ToneCurveSaturation, s.toneCurveSaturation);
    f32(RefClipAttr::ToneCurveContrast, s.toneCurveContrast);
    f32(RefClipAttr::ToneCurveMidpoint, s.toneCurveMidpoint);
    f32(RefClipAttr::ToneCurveHighlights, s.toneCurveHighlights);
    f32(RefClipAttr::ToneCurveShadows, s.toneCurveShadows);
    f32(RefClipAttr::ToneCurveWhiteLevel, s.toneCurveWhiteLevel);
    f32(RefClipAttr::ToneCurveBlackLevel, s.toneCurveBlackLevel);
    u16(RefClipAttr::ToneCurveVideoBlackLevel, s.toneCurveVideoBlackLevel);
    text(RefClipAttr::Gamma, s.gamma);
    text(RefClipAttr::Gamut, s.gamut);
    u16(RefClipAttr::GamutCompressionEnable, s.gamutCompression);
    u16(RefClipAttr::ColorScienceGen, s.colorScienceGen);
    u16(RefClipAttr::HighlightRecovery, s.highlightRecovery);
    text(RefClipAttr::Post3DLUTMode, s.lutMode);
    if (s.exposure)
        setValue(model, false, RefFrameAttr::Exposure, RefValue::f32(*s.exposure));
    if (s.kelvin)
        setValue(model, false, RefFrameAttr::WhiteBalanceKelvin, RefValue::u32(*s.kelvin));
    if (s.tint)
        setValue(model, false, RefFrameAttr::WhiteBalanceTint, RefValue::s16(*s.tint));
    if (s.iso)
        setValue(model, false, RefFrameAttr::ISO, RefValue::u32(*s.iso));

    for (const RefMetadataEntry& e : s.metadata) {
        if (overrideEntry(model.metadata, e) || overrideEntry(model.frameMetadata, e))
            continue;
        model.metadata.push_back(e);
    }
}

std::string RefSidecar::serialize(const RefSidecarSettings& s)
{
    rapidjson::StringBuffer buffer;
    rapidjson::PrettyWriter<rapidjson::StringBuffer> w(buffer);
    w.SetIndent(' ', 4);
    std::vector<std::string> written;
    auto key = [&](const char* k) {
        written.emplace_back(k);
        w.Key(k);
    };
    auto f32 = [&](const char* k, const std::optional<float>& v) {
        if (v) {
            key(k);
            w.Double(*v);
        }
    };
    auto uint = [&](const char* k, const auto& v) {
        if (v) {
            key(k);
            w.Uint(*v);
        }
    };
    auto text = [&](const char* k, const std::optional<std::string>& v) {
        if (v) {
            key(k);
            w.String(v->c_str(), static_cast<rapidjson::SizeType>(v->size()));
        }
    };
    w.StartObject();
    f32("tone_curve_saturation", s.toneCurveSaturation);
    f32("tone_curve_contrast", s.toneCurveContrast);
    f32("tone_curve_midpoint", s.toneCurveMidpoint);
    f32("tone_curve_highlights", s.toneCurveHighlights);
    f32("tone_curve_shadows", s.toneCurveShadows);
    f32("tone_curve_white_leve", s.toneCurveWhiteLevel);
    f32("tone_curve_black_leve", s.toneCurveBlackLevel);
    uint("tone_curve_video_black_leve", s.toneCurveVideoBlackLevel);
    text("viewing_gamma", s.gamma);
    text("viewing_gamut", s.gamut);
    uint("gamut_compression_enable", s.gamutCompression);
    uint("viewing_bmdgen", s.colorScienceGen);
    uint("highlight_recovery", s.highlightRecovery);
    text(kLutMode, s.lutMode);
    f32("exposure", s.exposure);
    uint("white_balance_kelvin", s.kelvin);
    if (s.tint) {
        key("white_balance_tint");
        w.Int(*s.tint);
    }
    uint("iso", s.iso);
    if (s.lut.present()) {
        key(kLutName);
        w.String(s.lut.name.c_str());
        key(kLutTitle);
        w.String(s.lut.title.c_str());
        key(kLutSize);
        w.Uint(s.lut.size);
        std::string data;
        char number[32];
        for (size_t i = 0; i < s.lut.data.size(); ++i) {
            std::snprintf(number, sizeof number, i == 0 ? "%.6f" : " %.6f", s.lut.data[i]);
            data += number;
        }
        key(kLutData);
        w.String(data.c_str(), static_cast<rapidjson::SizeType>(data.size()));
    }
    for (const RefMetadataEntry& e : s.metadata) {
        bool done = false;
        for (const std::string& k : written)
            done = done || k == e.key;
        if (done)
            continue;
        w.Key(e.key.c_str(), static_cast<rapidjson::SizeType>(e.key.size()));
        const RefValue& v = e.value;
        if (v.type == RefVariantType::String) {
            w.String(v.text.c_str(), static_cast<rapidjson::SizeType>(v.text.size()));
        } else if (v.type == RefVariantType::SafeArray) {
            w.StartArray();
            for (double d : v.numbers)
                w.Double(d);
            for (const std::string& t : v.texts)
                w.String(t.c_str(), static_cast<rapidjson::SizeType>(t.size()));
            w.EndArray();
        } else if (v.type == RefVariantType::Float32 || v.type == RefVariantType::Float64) {
            w.Double(v.number);
        } else if (v.isNumber()) {
            w.Int64(static_cast<int64_t>(v.number));
        } else {
            w.Null();
        }
    }
    w.EndObject();
    return std::string(buffer.GetString(), buffer.GetSize()) + "\n";
}

bool RefSidecar::write(const std::string& sidecarPath, const RefSidecarSettings& settings)
{
    std::ofstream file(sidecarPath, std::ios::binary | std::ios::trunc);
    if (!file)
        return false;
    const std::string text = serialize(settings);
    file.write(text.data(), static_cast<std::streamsize>(text.size()));
    return static_cast<bool>(file);
}

}  // namespace twref
