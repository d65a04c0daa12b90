// The JSON description of a reference clip: reading it into a RefClipModel and
// writing a model out. The member vocabulary is documented in
// ReferenceDecoder/README.md; keep the two in step.

#include "Format/RefClipFile.h"
#include "Format/RefLutTools.h"

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cmath>
#include <cstring>
#include <limits>

namespace twref {

namespace {

using Json = rapidjson::Value;

constexpr const char* kFormatName = "tarnwick-reference-clip";

// ---- reading ----------------------------------------------------------------

// Reads one description; the first problem ends the reading with a message
// that names the member ("clip_attributes.gamt.value: expected a string").
class Reader {
public:
    explicit Reader(std::string& error) : m_error(error) {}

    bool fail(const std::string& path, const std::string& what)
    {
        m_error = path + ": " + what;
        return false;
    }

    bool readModel(const Json& root, RefClipModel& model);

private:
    bool checkMembers(const Json& object, const std::string& path,
                      std::initializer_list<const char*> allowed);
    bool readU32(const Json& v, const std::string& path, uint32_t& out);
    bool readU64(const Json& v, const std::string& path, uint64_t& out);
    bool readI64(const Json& v, const std::string& path, int64_t& out);
    bool readU16(const Json& v, const std::string& path, uint16_t& out);
    bool readFloat(const Json& v, const std::string& path, float& out);
    bool readDouble(const Json& v, const std::string& path, double& out);
    bool readBool(const Json& v, const std::string& path, bool& out);
    bool readString(const Json& v, const std::string& path, std::string& out);
    bool readCode(const Json& v, const std::string& path, uint32_t& out);
    bool readResult(const Json& v, const std::string& path, int32_t& out);
    bool readValue(const Json& v, const std::string& path, RefVariantType hint, RefValue& out);
    bool readMetadata(const Json& v, const std::string& path, std::vector<RefMetadataEntry>& out);
    bool readAttributeEntry(const Json& v, const std::string& path, RefVariantType hint,
                           RefAttribute& attribute);
    bool readAttributes(const Json& v, const std::string& path, bool clipLevel,
                        std::vector<RefAttribute>& list);
    bool readResolutions(const Json& v, const std::string& path, std::vector<RefResolution>& out);
    bool readAudio(const Json& v, const std::string& path, RefAudioModel& audio);
    bool readTimecode(const Json& v, const std::string& path, RefTimecodeModel& timecode);
    bool readToneCurves(const Json& v, const std::string& path, std::vector<RefToneCurve>& out);
    bool readLut(const Json& v, const std::string& path, RefLut& lut);
    bool readBitStream(const Json& v, const std::string& path, RefBitStream& bitStream);
    bool readFrames(const Json& v, const std::string& path, std::vector<RefFrameOverride>& out);
    bool readFaults(const Json& v, const std::string& path, std::vector<RefFault>& out);
    bool readDelays(const Json& v, const std::string& path, std::vector<RefDelay>& out);

    std::string& m_error;
};

bool Reader::checkMembers(const Json& object, const std::string& path,
                          std::initializer_list<const char*> allowed)
{
    if (!object.IsObject())
        return fail(path, "expected an object");
    for (auto m = object.MemberBegin(); m != object.MemberEnd(); ++m) {
        bool known = false;
        for (const char* name : allowed) {
            if (std::strcmp(m->name.GetString(), name) == 0) {
                known = true;
                break;
            }
        }
        if (!known)
            return fail(path, std::string("unknown member \"") + m->name.GetString() + "\"");
    }
    return true;
}

bool Reader::readU32(const Json& v, const std::string& path, uint32_t& out)
{
    if (!v.IsUint())
        return fail(path, "expected an unsigned 32-bit integer");
    out = v.GetUint();
    return true;
}

bool Reader::readU64(const Json& v, const std::string& path, uint64_t& out)
{
    if (!v.IsUint64())
        return fail(path, "expected an unsigned integer");
    out = v.GetUint64();
    return true;
}

bool Reader::readI64(const Json& v, const std::string& path, int64_t& out)
{
    if (!v.IsInt64())
        return fail(path, "expected an integer");
    out = v.GetInt64();
    return true;
}

bool Reader::readU16(const Json& v, const std::string& path, uint16_t& out)
{
    if (!v.IsUint() || v.GetUint() > 0xFFFF)
        return fail(path, "expected an unsigned 16-bit integer");
    out = static_cast<uint16_t>(v.GetUint());
    return true;
}

bool Reader::readDouble(const Json& v, const std::string& path, double& out)
{
    if (!v.IsNumber())
        return fail(path, "expected a number");
    out = v.GetDouble();
    return true;
}

bool Reader::readFloat(const Json& v, const std::string& path, float& out)
{
    double d = 0;
    if (!readDouble(v, path, d))
        return false;
    out = RefValue::ofType(RefVariantType::Float32, d).number;
    return true;
}

bool Reader::readBool(const Json& v, const std::string& path, bool& out)
{
    if (v.IsBool()) {
        out = v.GetBool();
        return true;
    }
    if (v.IsUint() && v.GetUint() <= 1) {
        out = v.GetUint() == 1;
        return true;
    }
    return fail(path, "expected true, false, 0 or 1");
}

bool Reader::readString(const Json& v, const std::string& path, std::string& out)
{
    if (!v.IsString())
        return fail(path, "expected a string");
    out.assign(v.GetString(), v.GetStringLength());
    return true;
}

bool Reader::readCode(const Json& v, const std::string& path, uint32_t& out)
{
    if (v.IsUint()) {
        out = v.GetUint();
        return true;
    }
    if (!v.IsString() || !refParseFourCC(std::string(v.GetString(), v.GetStringLength()), out))
        return fail(path, "expected a four-character code or a number");
    return true;
}

bool Reader::readResult(const Json& v, const std::string& path, int32_t& out)
{
    if (v.IsInt()) {
        out = v.GetInt();
        return true;
    }
    if (v.IsUint()) {
        out = static_cast<int32_t>(v.GetUint());
        return true;
    }
    if (v.IsString() && refParseResult(v.GetString(), out))
        return true;
    return fail(path, "expected a result code (\"E_FAIL\", \"0x80000008\" or a number)");
}

// A value: a bare JSON value (typed by the hint, else by its JSON form) or an
// object {"type": ..., "value": ..., "element": ...}.
bool Reader::readValue(const Json& v, const std::string& path, RefVariantType hint, RefValue& out)
{
    if (v.IsObject()) {
        if (!checkMembers(v, path, {"type", "value", "element"}))
            return false;
        auto typeMember = v.FindMember("type");
        if (typeMember == v.MemberEnd() || !typeMember->value.IsString())
            return fail(path + ".type", "expected a type name");
        RefVariantType type;
        if (!refParseVariantType(typeMember->value.GetString(), type))
            return fail(path + ".type", std::string("unknown type \"") + typeMember->value.GetString() + "\"");
        auto valueMember = v.FindMember("value");
        if (type == RefVariantType::Empty) {
            out = RefValue();
            return true;
        }
        if (valueMember == v.MemberEnd())
            return fail(path, "missing \"value\"");
        const Json& value = valueMember->value;
        if (type == RefVariantType::String) {
            RefValue text;
            if (!readString(value, path + ".value", text.text))
                return false;
            text.type = RefVariantType::String;
            out = std::move(text);
            return true;
        }
        if (type == RefVariantType::SafeArray) {
            RefVariantType element = RefVariantType::Float32;
            auto elementMember = v.FindMember("element");
            if (elementMember != v.MemberEnd()) {
                if (!elementMember->value.IsString() ||
                    !refParseVariantType(elementMember->value.GetString(), element) ||
                    element == RefVariantType::SafeArray)
                    return fail(path + ".element", "expected an element type name");
            }
            if (!value.IsArray())
                return fail(path + ".value", "expected an array");
            RefValue array;
            array.type = RefVariantType::SafeArray;
            array.elementType = element;
            for (rapidjson::SizeType i = 0; i < value.Size(); ++i) {
                const std::string itemPath = path + ".value[" + std::to_string(i) + "]";
                if (element == RefVariantType::String) {
                    std::string text;
                    if (!readString(value[i], itemPath, text))
                        return false;
                    array.texts.push_back(text);
                } else if (element == RefVariantType::Empty) {
                    return fail(itemPath, "an array of empty elements holds nothing");
                } else {
                    double d = 0;
                    if (!readDouble(value[i], itemPath, d))
                        return false;
                    array.numbers.push_back(RefValue::ofType(element, d).number);
                }
            }
            out = array;
            return true;
        }
        double d = 0;
        if (!readDouble(value, path + ".value", d))
            return false;
        out = RefValue::ofType(type, d);
        return true;
    }
    if (v.IsString()) {
        out = RefValue::string(std::string(v.GetString(), v.GetStringLength()));
        if (hint != RefVariantType::Empty && hint != RefVariantType::String)
            return fail(path, std::string("expected a ") + refVariantTypeName(hint));
        return true;
    }
    if (v.IsBool()) {
        out = RefValue::ofType(hint != RefVariantType::Empty ? hint : RefVariantType::U8, v.GetBool() ? 1 : 0);
        if (hint == RefVariantType::String)
            return fail(path, "expected a string");
        return true;
    }
    if (v.IsNumber()) {
        if (hint == RefVariantType::String)
            return fail(path, "expected a string");
        if (hint != RefVariantType::Empty) {
            out = RefValue::ofType(hint, v.GetDouble());
        } else if (v.IsInt()) {
            out = RefValue::s32(v.GetInt());
        } else if (v.IsUint()) {
            out = RefValue::u32(v.GetUint());
        } else if (v.IsInt64() || v.IsUint64()) {
            out = RefValue::f64(v.GetDouble());
        } else {
            out = RefValue::f32(static_cast<float>(v.GetDouble()));
        }
        return true;
    }
    if (v.IsArray()) {
        bool allStrings = true;
        for (const Json& item : v.GetArray())
            allStrings = allStrings && item.IsString();
        RefValue array;
        array.type = RefVariantType::SafeArray;
        array.elementType = allStrings && v.Size() > 0 ? RefVariantType::String
                            : hint != RefVariantType::Empty && hint != RefVariantType::String ? hint
                                                                                              : RefVariantType::Float32;
        for (rapidjson::SizeType i = 0; i < v.Size(); ++i) {
            const std::string itemPath = path + "[" + std::to_string(i) + "]";
            if (array.elementType == RefVariantType::String) {
                array.texts.emplace_back(v[i].GetString(), v[i].GetStringLength());
            } else {
                double d = 0;
                if (!readDouble(v[i], itemPath, d))
                    return false;
                array.numbers.push_back(RefValue::ofType(array.elementType, d).number);
            }
        }
        out = array;
        return true;
    }
    return fail(path, "expected a value");
}

bool Reader::readMetadata(const Json& v, const std::string& path, std::vector<RefMetadataEntry>& out)
{
    if (!v.IsObject())
        return fail(path, "expected an object");
    std::vector<RefMetadataEntry> list;
    for (auto m = v.MemberBegin(); m != v.MemberEnd(); ++m) {
        RefMetadataEntry e;
        e.key.assign(m->name.GetString(), m->name.GetStringLength());
        if (!readValue(m->value, path + "." + e.key, RefVariantType::Empty, e.value))
            return false;
        list.push_back(std::move(e));
    }
    out = std::move(list);
    return true;
}

bool Reader::readAttributeEntry(const Json& v, const std::string& path, RefVariantType hint,
                               RefAttribute& attribute)
{
    if (!v.IsObject())
        return readValue(v, path, hint, attribute.value);
    if (v.HasMember("type"))  // a typed value, not an attribute entry
        return readValue(v, path, hint, attribute.value);
    if (!checkMembers(v, path, {"id", "value", "min", "max", "list", "read_only", "supported"}))
        return false;
    for (auto m = v.MemberBegin(); m != v.MemberEnd(); ++m) {
        const std::string name = m->name.GetString();
        const std::string memberPath = path + "." + name;
        if (name == "id")
            continue;
        if (name == "value") {
            if (!readValue(m->value, memberPath, hint, attribute.value))
                return false;
        } else if (name == "min") {
            if (!readValue(m->value, memberPath, hint, attribute.minimum))
                return false;
        } else if (name == "max") {
            if (!readValue(m->value, memberPath, hint, attribute.maximum))
                return false;
        } else if (name == "list") {
            if (!m->value.IsArray())
                return fail(memberPath, "expected an array");
            std::vector<RefValue> list;
            for (rapidjson::SizeType i = 0; i < m->value.Size(); ++i) {
                RefValue item;
                if (!readValue(m->value[i], memberPath + "[" + std::to_string(i) + "]", hint, item))
                    return false;
                list.push_back(item);
            }
            attribute.list = std::move(list);
        } else if (name == "read_only") {
            if (!readBool(m->value, memberPath, attribute.readOnly))
                return false;
        } else if (name == "supported") {
            if (!readBool(m->value, memberPath, attribute.supported))
                return false;
        }
    }
    return true;
}

// An object merges over the list by id; an array of entries with "id"
// replaces the list.
bool Reader::readAttributes(const Json& v, const std::string& path, bool clipLevel,
                            std::vector<RefAttribute>& list)
{
    auto hintOf = [clipLevel](uint32_t id) {
        return clipLevel ? refClipAttributeType(id) : refFrameAttributeType(id);
    };
    if (v.IsArray()) {
        std::vector<RefAttribute> replaced;
        for (rapidjson::SizeType i = 0; i < v.Size(); ++i) {
            const std::string itemPath = path + "[" + std::to_string(i) + "]";
            if (!v[i].IsObject() || !v[i].HasMember("id"))
                return fail(itemPath, "expected an object with an \"id\"");
            RefAttribute a;
            if (!readCode(v[i]["id"], itemPath + ".id", a.id))
                return false;
            if (!readAttributeEntry(v[i], itemPath, hintOf(a.id), a))
                return false;
            replaced.push_back(std::move(a));
        }
        list = std::move(replaced);
        return true;
    }
    if (!v.IsObject())
        return fail(path, "expected an object or an array");
    for (auto m = v.MemberBegin(); m != v.MemberEnd(); ++m) {
        const std::string name(m->name.GetString(), m->name.GetStringLength());
        uint32_t id = 0;
        if (!refParseFourCC(name, id))
            return fail(path + "." + name, "the name is no four-character code");
        RefAttribute* existing = nullptr;
        for (RefAttribute& a : list) {
            if (a.id == id)
                existing = &a;
        }
        RefAttribute a = existing ? *existing : RefAttribute();
        a.id = id;
        if (!readAttributeEntry(m->value, path + "." + name, hintOf(id), a))
            return false;
        if (existing)
            *existing = a;
        else
            list.push_back(a);
    }
    return true;
}

bool Reader::readResolutions(const Json& v, const std::string& path, std::vector<RefResolution>& out)
{
    if (!v.IsArray())
        return fail(path, "expected an array");
    std::vector<RefResolution> list;
    for (rapidjson::SizeType i = 0; i < v.Size(); ++i) {
        const std::string p = path + "[" + std::to_string(i) + "]";
        const Json& item = v[i];
        if (!checkMembers(item, p, {"width", "height", "scale", "recorded_width", "recorded_height"}))
            return false;
        RefResolution r;
        if (!item.HasMember("width") || !item.HasMember("height"))
            return fail(p, "needs \"width\" and \"height\"");
        if (!readU32(item["width"], p + ".width", r.width) || !readU32(item["height"], p + ".height", r.height))
            return false;
        if (item.HasMember("scale")) {
            const Json& s = item["scale"];
            if (s.IsUint()) {
                r.scale = static_cast<RefResolutionScale>(s.GetUint());
            } else if (!s.IsString() || !refParseScale(s.GetString(), r.scale)) {
                return fail(p + ".scale", "expected a scale name, code or number");
            }
        }
        if (item.HasMember("recorded_width") && !readU32(item["recorded_width"], p + ".recorded_width", r.recordedWidth))
            return false;
        if (item.HasMember("recorded_height") && !readU32(item["recorded_height"], p + ".recorded_height", r.recordedHeight))
            return false;
        list.push_back(r);
    }
    out = std::move(list);
    return true;
}

bool Reader::readAudio(const Json& v, const std::string& path, RefAudioModel& audio)
{
    if (!checkMembers(v, path, {"present", "format", "channels", "sample_rate", "bit_depth",
                                "sample_count", "tone"}))
        return false;
    audio.present = true;  // an audio member means audio unless it says otherwise
    for (auto m = v.MemberBegin(); m != v.MemberEnd(); ++m) {
        const std::string name = m->name.GetString();
        const std::string p = path + "." + name;
        bool ok = true;
        if (name == "present")
            ok = readBool(m->value, p, audio.present);
        else if (name == "format")
            ok = readCode(m->value, p, audio.format);
        else if (name == "channels")
            ok = readU32(m->value, p, audio.channelCount);
        else if (name == "sample_rate")
            ok = readU32(m->value, p, audio.sampleRate);
        else if (name == "bit_depth")
            ok = readU32(m->value, p, audio.bitDepth);
        else if (name == "sample_count")
            ok = readU64(m->value, p, audio.sampleCount);
        else if (name == "tone") {
            ok = checkMembers(m->value, p, {"frequency", "amplitude"});
            if (ok && m->value.HasMember("frequency"))
                ok = readDouble(m->value["frequency"], p + ".frequency", audio.tone.frequency);
            if (ok && m->value.HasMember("amplitude"))
                ok = readDouble(m->value["amplitude"], p + ".amplitude", audio.tone.amplitude);
        }
        if (!ok)
            return false;
    }
    return true;
}

bool Reader::readTimecode(const Json& v, const std::string& path, RefTimecodeModel& timecode)
{
    if (!checkMembers(v, path, {"start", "drop_frame", "base_frame"}))
        return false;
    if (v.HasMember("start") && !readString(v["start"], path + ".start", timecode.start))
        return false;
    if (v.HasMember("drop_frame") && !readBool(v["drop_frame"], path + ".drop_frame", timecode.dropFrame))
        return false;
    if (v.HasMember("base_frame") && !readI64(v["base_frame"], path + ".base_frame", timecode.baseFrame))
        return false;
    return true;
}

bool Reader::readToneCurves(const Json& v, const std::string& path, std::vector<RefToneCurve>& out)
{
    if (!v.IsArray())
        return fail(path, "expected an array");
    std::vector<RefToneCurve> list;
    for (rapidjson::SizeType i = 0; i < v.Size(); ++i) {
        const std::string p = path + "[" + std::to_string(i) + "]";
        const Json& item = v[i];
        if (!checkMembers(item, p, {"gamma", "gen", "contrast", "saturation", "midpoint", "highlights",
                                    "shadows", "black_level", "white_level", "video_black_level"}))
            return false;
        RefToneCurve c;
        if (!item.HasMember("gamma") || !readString(item["gamma"], p + ".gamma", c.gamma))
            return fail(p, "needs a \"gamma\" string");
        bool ok = true;
        if (ok && item.HasMember("gen")) ok = readU16(item["gen"], p + ".gen", c.colorScienceGen);
        if (ok && item.HasMember("contrast")) ok = readFloat(item["contrast"], p + ".contrast", c.contrast);
        if (ok && item.HasMember("saturation")) ok = readFloat(item["saturation"], p + ".saturation", c.saturation);
        if (ok && item.HasMember("midpoint")) ok = readFloat(item["midpoint"], p + ".midpoint", c.midpoint);
        if (ok && item.HasMember("highlights")) ok = readFloat(item["highlights"], p + ".highlights", c.highlights);
        if (ok && item.HasMember("shadows")) ok = readFloat(item["shadows"], p + ".shadows", c.shadows);
        if (ok && item.HasMember("black_level")) ok = readFloat(item["black_level"], p + ".black_level", c.blackLevel);
        if (ok && item.HasMember("white_level")) ok = readFloat(item["white_level"], p + ".white_level", c.whiteLevel);
        if (ok && item.HasMember("video_black_level"))
            ok = readU16(item["video_black_level"], p + ".video_black_level", c.videoBlackLevel);
        if (!ok)
            return false;
        list.push_back(c);
    }
    out = std::move(list);
    return true;
}

bool Reader::readLut(const Json& v, const std::string& path, RefLut& lut)
{
    if (!checkMembers(v, path, {"name", "title", "size", "data", "generate"}))
        return false;
    RefLut result;
    if (v.HasMember("size") && !readU32(v["size"], path + ".size", result.size))
        return false;
    if (result.size > kRefMaxLutSize)
        return fail(path + ".size", "a LUT edge is at most " + std::to_string(kRefMaxLutSize));
    if (v.HasMember("generate")) {
        std::string kind;
        if (!readString(v["generate"], path + ".generate", kind))
            return false;
        RefLutKind k;
        if (kind == "identity") k = RefLutKind::Identity;
        else if (kind == "invert") k = RefLutKind::Invert;
        else if (kind == "warm") k = RefLutKind::Warm;
        else if (kind == "mono") k = RefLutKind::Mono;
        else return fail(path + ".generate", "expected identity, invert, warm or mono");
        if (result.size < 2)
            return fail(path + ".size", "a generated LUT needs a size of at least 2");
        result = RefLutTools::make(k, result.size);
    }
    if (v.HasMember("data")) {
        const Json& data = v["data"];
        if (data.IsString()) {
            if (!RefLutTools::parseNumberList(data.GetString(), result.data))
                return fail(path + ".data", "expected numbers separated by blanks");
        } else if (data.IsArray()) {
            result.data.clear();
            result.data.reserve(data.Size());
            for (rapidjson::SizeType i = 0; i < data.Size(); ++i) {
                if (!data[i].IsNumber())
                    return fail(path + ".data[" + std::to_string(i) + "]", "expected a number");
                result.data.push_back(static_cast<float>(data[i].GetDouble()));
            }
        } else {
            return fail(path + ".data", "expected an array of numbers or a string of numbers");
        }
    }
    if (v.HasMember("name") && !readString(v["name"], path + ".name", result.name))
        return false;
    if (v.HasMember("title") && !readString(v["title"], path + ".title", result.title))
        return false;
    // A LUT of the wrong length is kept as it is: the library reports it as
    // invalid, which is a case tests need.
    lut = std::move(result);
    return true;
}

bool Reader::readBitStream(const Json& v, const std::string& path, RefBitStream& bitStream)
{
    if (!checkMembers(v, path, {"frame_bytes", "recorded_frames"}))
        return false;
    if (v.HasMember("frame_bytes") && !readU32(v["frame_bytes"], path + ".frame_bytes", bitStream.frameBytes))
        return false;
    if (v.HasMember("recorded_frames") &&
        !readU64(v["recorded_frames"], path + ".recorded_frames", bitStream.recordedFrames))
        return false;
    return true;
}

bool Reader::readFrames(const Json& v, const std::string& path, std::vector<RefFrameOverride>& out)
{
    if (!v.IsArray())
        return fail(path, "expected an array");
    std::vector<RefFrameOverride> list;
    for (rapidjson::SizeType i = 0; i < v.Size(); ++i) {
        const std::string p = path + "[" + std::to_string(i) + "]";
        const Json& item = v[i];
        if (!checkMembers(item, p, {"index", "corrupt", "corrupt_result", "timecode", "bit_stream_bytes",
                                    "metadata", "attributes"}))
            return false;
        RefFrameOverride f;
        if (!item.HasMember("index") || !readU64(item["index"], p + ".index", f.index))
            return fail(p, "needs an unsigned \"index\"");
        bool ok = true;
        if (ok && item.HasMember("corrupt")) ok = readBool(item["corrupt"], p + ".corrupt", f.corrupt);
        if (ok && item.HasMember("corrupt_result"))
            ok = readResult(item["corrupt_result"], p + ".corrupt_result", f.corruptResult);
        if (ok && item.HasMember("timecode")) {
            f.hasTimecode = true;
            ok = readString(item["timecode"], p + ".timecode", f.timecode);
        }
        if (ok && item.HasMember("bit_stream_bytes"))
            ok = readU32(item["bit_stream_bytes"], p + ".bit_stream_bytes", f.bitStreamBytes);
        if (ok && item.HasMember("metadata")) ok = readMetadata(item["metadata"], p + ".metadata", f.metadata);
        if (ok && item.HasMember("attributes"))
            ok = readAttributes(item["attributes"], p + ".attributes", false, f.attributes);
        if (!ok)
            return false;
        list.push_back(std::move(f));
    }
    out = std::move(list);
    return true;
}

bool Reader::readFaults(const Json& v, const std::string& path, std::vector<RefFault>& out)
{
    if (!v.IsArray())
        return fail(path, "expected an array");
    std::vector<RefFault> list;
    for (rapidjson::SizeType i = 0; i < v.Size(); ++i) {
        const std::string p = path + "[" + std::to_string(i) + "]";
        const Json& item = v[i];
        if (!checkMembers(item, p, {"method", "result", "frame", "attribute", "key", "skip", "count"}))
            return false;
        RefFault f;
        if (!item.HasMember("method") || !readString(item["method"], p + ".method", f.method))
            return fail(p, "needs a \"method\" string");
        bool ok = true;
        if (ok && item.HasMember("result")) ok = readResult(item["result"], p + ".result", f.result);
        if (ok && item.HasMember("frame")) ok = readI64(item["frame"], p + ".frame", f.frame);
        if (ok && item.HasMember("attribute")) ok = readCode(item["attribute"], p + ".attribute", f.attribute);
        if (ok && item.HasMember("key")) ok = readString(item["key"], p + ".key", f.key);
        if (ok && item.HasMember("skip")) ok = readU32(item["skip"], p + ".skip", f.skip);
        if (ok && item.HasMember("count")) ok = readU32(item["count"], p + ".count", f.count);
        if (!ok)
            return false;
        list.push_back(std::move(f));
    }
    out = std::move(list);
    return true;
}

bool Reader::readDelays(const Json& v, const std::string& path, std::vector<RefDelay>& out)
{
    if (!v.IsArray())
        return fail(path, "expected an array");
    std::vector<RefDelay> list;
    for (rapidjson::SizeType i = 0; i < v.Size(); ++i) {
        const std::string p = path + "[" + std::to_string(i) + "]";
        const Json& item = v[i];
        if (!checkMembers(item, p, {"method", "frame", "milliseconds"}))
            return false;
        RefDelay d;
        if (!item.HasMember("method") || !readString(item["method"], p + ".method", d.method))
            return fail(p, "needs a \"method\" string");
        bool ok = true;
        if (ok && item.HasMember("frame")) ok = readI64(item["frame"], p + ".frame", d.frame);
        if (ok && item.HasMember("milliseconds"))
            ok = readU32(item["milliseconds"], p + ".milliseconds", d.milliseconds);
        if (!ok)
            return false;
        list.push_back(std::move(d));
    }
    out = std::move(list);
    return true;
}

bool Reader::readModel(const Json& root, RefClipModel& model)
{
    if (!checkMembers(root, "description",
                      {"format", "version", "width", "height", "frame_rate", "sensor_rate", "frame_count",
                       "camera_type", "multicard_file_count", "timecode", "resolutions", "metadata",
                       "frame_metadata", "audio", "clip_attributes", "frame_attributes", "tone_curves",
                       "embedded_lut", "bit_stream", "frames", "faults", "delays"}))
        return false;
    for (auto m = root.MemberBegin(); m != root.MemberEnd(); ++m) {
        const std::string name = m->name.GetString();
        const Json& v = m->value;
        bool ok = true;
        if (name == "format") {
            std::string format;
            ok = readString(v, name, format);
            if (ok && format != kFormatName)
                return fail(name, std::string("expected \"") + kFormatName + "\"");
        } else if (name == "version") {
            uint32_t version = 0;
            ok = readU32(v, name, version);
            if (ok && version != kRefClipVersion)
                return fail(name, "unsupported version " + std::to_string(version));
        } else if (name == "width") {
            ok = readU32(v, name, model.width);
        } else if (name == "height") {
            ok = readU32(v, name, model.height);
        } else if (name == "frame_rate") {
            ok = readFloat(v, name, model.frameRate);
        } else if (name == "sensor_rate") {
            ok = readFloat(v, name, model.sensorRate);
        } else if (name == "frame_count") {
            ok = readU64(v, name, model.frameCount);
        } else if (name == "camera_type") {
            ok = readString(v, name, model.cameraType);
        } else if (name == "multicard_file_count") {
            ok = readU32(v, name, model.multicardFileCount);
        } else if (name == "timecode") {
            ok = readTimecode(v, name, model.timecode);
        } else if (name == "resolutions") {
            ok = readResolutions(v, name, model.resolutions);
        } else if (name == "metadata") {
            ok = readMetadata(v, name, model.metadata);
        } else if (name == "frame_metadata") {
            ok = readMetadata(v, name, model.frameMetadata);
        } else if (name == "audio") {
            ok = readAudio(v, name, model.audio);
        } else if (name == "clip_attributes") {
            ok = readAttributes(v, name, true, model.clipAttributes);
        } else if (name == "frame_attributes") {
            ok = readAttributes(v, name, false, model.frameAttributes);
        } else if (name == "tone_curves") {
            ok = readToneCurves(v, name, model.toneCurves);
        } else if (name == "embedded_lut") {
            ok = readLut(v, name, model.embeddedLut);
        } else if (name == "bit_stream") {
            ok = readBitStream(v, name, model.bitStream);
        } else if (name == "frames") {
            ok = readFrames(v, name, model.frames);
        } else if (name == "faults") {
            ok = readFaults(v, name, model.faults);
        } else if (name == "delays") {
            ok = readDelays(v, name, model.delays);
        }
        if (!ok)
            return false;
    }
    return true;
}

bool parseInto(const char* json, size_t length, RefClipModel& model, std::string& error)
{
    if (json == nullptr) {
        error = "no description";
        return false;
    }
    rapidjson::Document doc;
    doc.Parse<rapidjson::kParseNanAndInfFlag | rapidjson::kParseFullPrecisionFlag | rapidjson::kParseIterativeFlag>(
        json, length);
    if (doc.HasParseError()) {
        error = std::string("description is not valid JSON: ") + rapidjson::GetParseError_En(doc.GetParseError()) +
                " (offset " + std::to_string(doc.GetErrorOffset()) + ")";
        return false;
    }
    if (!doc.IsObject()) {
        error = "description: expected a JSON object";
        return false;
    }
    Reader reader(error);
    return reader.readModel(doc, model);
}

// ---- writing ----------------------------------------------------------------

// Non-finite numbers are written the way the reader's NaN/Infinity extension
// reads them (frame rates of fault tests can be anything).
template <typename W>
void writeDouble(W& w, double d)
{
    if (std::isfinite(d)) {
        w.Double(d);
        return;
    }
    const char* text = std::isnan(d) ? "NaN" : (d > 0 ? "Infinity" : "-Infinity");
    w.RawValue(text, std::strlen(text), rapidjson::kNumberType);
}

template <typename W>
void writeValue(W& w, const RefValue& v)
{
    w.StartObject();
    w.Key("type");
    w.String(refVariantTypeName(v.type));
    switch (v.type) {
    case RefVariantType::Empty:
        break;
    case RefVariantType::String:
        w.Key("value");
        w.String(v.text.c_str(), static_cast<rapidjson::SizeType>(v.text.size()));
        break;
    case RefVariantType::SafeArray:
        w.Key("element");
        w.String(refVariantTypeName(v.elementType));
        w.Key("value");
        w.StartArray();
        if (v.elementType == RefVariantType::String) {
            for (const std::string& t : v.texts)
                w.String(t.c_str(), static_cast<rapidjson::SizeType>(t.size()));
        } else {
            for (double d : v.numbers)
                writeDouble(w, d);
        }
        w.EndArray();
        break;
    default:
        w.Key("value");
        writeDouble(w, v.number);
        break;
    }
    w.EndObject();
}

template <typename W>
void writeMetadata(W& w, const std::vector<RefMetadataEntry>& list)
{
    w.StartObject();
    for (const RefMetadataEntry& e : list) {
        w.Key(e.key.c_str(), static_cast<rapidjson::SizeType>(e.key.size()));
        writeValue(w, e.value);
    }
    w.EndObject();
}

template <typename W>
void writeAttributes(W& w, const std::vector<RefAttribute>& list)
{
    w.StartArray();
    for (const RefAttribute& a : list) {
        w.StartObject();
        w.Key("id");
        w.String(refFourCCText(a.id).c_str());
        w.Key("value");
        writeValue(w, a.value);
        if (a.minimum.type != RefVariantType::Empty) {
            w.Key("min");
            writeValue(w, a.minimum);
        }
        if (a.maximum.type != RefVariantType::Empty) {
            w.Key("max");
            writeValue(w, a.maximum);
        }
        if (!a.list.empty()) {
            w.Key("list");
            w.StartArray();
            for (const RefValue& item : a.list)
                writeValue(w, item);
            w.EndArray();
        }
        w.Key("read_only");
        w.Bool(a.readOnly);
        w.Key("supported");
        w.Bool(a.supported);
        w.EndObject();
    }
    w.EndArray();
}

template <typename W>
void writeString(W& w, const char* key, const std::string& value)
{
    w.Key(key);
    w.String(value.c_str(), static_cast<rapidjson::SizeType>(value.size()));
}

template <typename W>
void writeModel(W& w, const RefClipModel& m)
{
    w.StartObject();
    writeString(w, "format", kFormatName);
    w.Key("version");
    w.Uint(kRefClipVersion);
    w.Key("width");
    w.Uint(m.width);
    w.Key("height");
    w.Uint(m.height);
    w.Key("frame_rate");
    writeDouble(w, m.frameRate);
    w.Key("sensor_rate");
    writeDouble(w, m.sensorRate);
    w.Key("frame_count");
    w.Uint64(m.frameCount);
    writeString(w, "camera_type", m.cameraType);
    w.Key("multicard_file_count");
    w.Uint(m.multicardFileCount);

    w.Key("timecode");
    w.StartObject();
    writeString(w, "start", m.timecode.start);
    w.Key("drop_frame");
    w.Bool(m.timecode.dropFrame);
    w.Key("base_frame");
    w.Int64(m.timecode.baseFrame);
    w.EndObject();

    w.Key("resolutions");
    w.StartArray();
    for (const RefResolution& r : m.resolutions) {
        w.StartObject();
        w.Key("width");
        w.Uint(r.width);
        w.Key("height");
        w.Uint(r.height);
        writeString(w, "scale", refScaleName(r.scale));
        w.Key("recorded_width");
        w.Uint(r.recordedWidth);
        w.Key("recorded_height");
        w.Uint(r.recordedHeight);
        w.EndObject();
    }
    w.EndArray();

    w.Key("metadata");
    writeMetadata(w, m.metadata);
    w.Key("frame_metadata");
    writeMetadata(w, m.frameMetadata);

    w.Key("audio");
    w.StartObject();
    w.Key("present");
    w.Bool(m.audio.present);
    writeString(w, "format", refFourCCText(m.audio.format));
    w.Key("channels");
    w.Uint(m.audio.channelCount);
    w.Key("sample_rate");
    w.Uint(m.audio.sampleRate);
    w.Key("bit_depth");
    w.Uint(m.audio.bitDepth);
    w.Key("sample_count");
    w.Uint64(m.audio.sampleCount);
    w.Key("tone");
    w.StartObject();
    w.Key("frequency");
    writeDouble(w, m.audio.tone.frequency);
    w.Key("amplitude");
    writeDouble(w, m.audio.tone.amplitude);
    w.EndObject();
    w.EndObject();

    w.Key("clip_attributes");
    writeAttributes(w, m.clipAttributes);
    w.Key("frame_attributes");
    writeAttributes(w, m.frameAttributes);

    w.Key("tone_curves");
    w.StartArray();
    for (const RefToneCurve& c : m.toneCurves) {
        w.StartObject();
        writeString(w, "gamma", c.gamma);
        w.Key("gen");
        w.Uint(c.colorScienceGen);
        w.Key("contrast");
        writeDouble(w, c.contrast);
        w.Key("saturation");
        writeDouble(w, c.saturation);
        w.Key("midpoint");
        writeDouble(w, c.midpoint);
        w.Key("highlights");
        writeDouble(w, c.highlights);
        w.Key("shadows");
        writeDouble(w, c.shadows);
        w.Key("black_level");
        writeDouble(w, c.blackLevel);
        w.Key("white_level");
        writeDouble(w, c.whiteLevel);
        w.Key("video_black_level");
        w.Uint(c.videoBlackLevel);
        w.EndObject();
    }
    w.EndArray();

    if (m.embeddedLut.present() || !m.embeddedLut.data.empty() || !m.embeddedLut.name.empty() ||
        !m.embeddedLut.title.empty()) {
        w.Key("embedded_lut");
        w.StartObject();
        writeString(w, "name", m.embeddedLut.name);
        writeString(w, "title", m.embeddedLut.title);
        w.Key("size");
        w.Uint(m.embeddedLut.size);
        w.Key("data");
        w.StartArray();
        for (float f : m.embeddedLut.data)
            writeDouble(w, f);
        w.EndArray();
        w.EndObject();
    }

    w.Key("bit_stream");
    w.StartObject();
    w.Key("frame_bytes");
    w.Uint(m.bitStream.frameBytes);
    w.Key("recorded_frames");
    w.Uint64(m.bitStream.recordedFrames);
    w.EndObject();

    w.Key("frames");
    w.StartArray();
    for (const RefFrameOverride& f : m.frames) {
        w.StartObject();
        w.Key("index");
        w.Uint64(f.index);
        w.Key("corrupt");
        w.Bool(f.corrupt);
        writeString(w, "corrupt_result", refResultText(f.corruptResult));
        if (f.hasTimecode)
            writeString(w, "timecode", f.timecode);
        w.Key("bit_stream_bytes");
        w.Uint(f.bitStreamBytes);
        w.Key("metadata");
        writeMetadata(w, f.metadata);
        w.Key("attributes");
        writeAttributes(w, f.attributes);
        w.EndObject();
    }
    w.EndArray();

    w.Key("faults");
    w.StartArray();
    for (const RefFault& f : m.faults) {
        w.StartObject();
        writeString(w, "method", f.method);
        writeString(w, "result", refResultText(f.result));
        w.Key("frame");
        w.Int64(f.frame);
        if (f.attribute != 0)
            writeString(w, "attribute", refFourCCText(f.attribute));
        if (!f.key.empty())
            writeString(w, "key", f.key);
        w.Key("skip");
        w.Uint(f.skip);
        w.Key("count");
        w.Uint(f.count);
        w.EndObject();
    }
    w.EndArray();

    w.Key("delays");
    w.StartArray();
    for (const RefDelay& d : m.delays) {
        w.StartObject();
        writeString(w, "method", d.method);
        w.Key("frame");
        w.Int64(d.frame);
        w.Key("milliseconds");
        w.Uint(d.milliseconds);
        w.EndObject();
    }
    w.EndArray();
    w.EndObject();
}

}  // namespace

bool RefClipFile::parseDescription(const char* json, size_t length, RefClipModel& model, std::string& error)
{
    RefClipModel fresh;
    if (!parseInto(json, length, fresh, error))
        return false;
    model = std::move(fresh);
    return true;
}

bool RefClipFile::mergeDescription(const char* json, size_t length, RefClipModel& model, std::string& error)
{
    RefClipModel copy = model;
    if (!parseInto(json, length, copy, error))
        return false;
    model = std::move(copy);
    return true;
}

std::string RefClipFile::describe(const RefClipModel& model, bool pretty)
{
    rapidjson::StringBuffer buffer;
    if (pretty) {
        rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(buffer);
        writer.SetIndent(' ', 2);
        writer.SetFormatOptions(rapidjson::kFormatSingleLineArray);
        writeModel(writer, model);
    } else {
        rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
        writeModel(writer, model);
    }
    return std::string(buffer.GetString(), buffer.GetSize());
}

}  // namespace twref
