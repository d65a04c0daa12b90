#include "Utils/qvJSON.h"

#include "FileSystem/qvFileSystem.h"

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstring>
#include <fstream>
#include <sstream>

qvUtf8String getJsonErrMsg(QV_JSON_ERR code) {
    switch (code) {
        case QV_JSON_OK: return qvUtf8String("No Error");
        case QV_JSON_SYNTAX: return qvUtf8String("Error JSON Syntax");
        case QV_JSON_NOT_FOUND: return qvUtf8String("Not Found");
        case QV_JSON_READING: return qvUtf8String("Error Reading");
        case QV_JSON_WRITING: return qvUtf8String("Error Writing");
        default: return qvUtf8String("Unexpected Json Error");
    }
}

namespace {

qvUtf8String stringOf(const rapidjson::Value& value) {
    return qvUtf8String(value.GetString(), value.GetStringLength());
}

rapidjson::SizeType sizeOf(const qvUtf8String& text) { return static_cast<rapidjson::SizeType>(text.Size()); }

}  // namespace

QV_JSON::QV_JSON() = default;

// ---- reading ---------------------------------------------------------------

QV_JSON_ERR QV_JSON::parseText() {
    // Files written by hand break strings over lines and indent with tabs; both
    // vanish before parsing, inside strings as well.
    std::string cleaned;
    cleaned.reserve(text.Size());
    for (char c : text.Str()) {
        if (c != '\n' && c != '\r' && c != '\t') cleaned += c;
    }
    text = qvUtf8String(cleaned);
    rapidjson::StringStream stream(text.c_str());
    document.ParseStream(stream);
    return document.HasParseError() ? QV_JSON_SYNTAX : QV_JSON_OK;
}

QV_JSON_ERR QV_JSON::readJSONStr(const qvUtf8String& json) {
    text = json;
    return parseText();
}

QV_JSON_ERR QV_JSON::readJSONFile(const qvUtf8String& path) {
    std::ifstream in(path.c_str(), std::ios::in | std::ios::binary);
    if (!in.is_open()) return qvFileSystem::doesFilepathExist(path) ? QV_JSON_READING : QV_JSON_NOT_FOUND;
    std::ostringstream content;
    content << in.rdbuf();
    text = qvUtf8String(content.str());
    return parseText();
}

// ---- getters by key --------------------------------------------------------

rapidjson::Value* QV_JSON::findMember(rapidjson::Value& object, const char* key) {
    if (!object.IsObject() || !key) return nullptr;
    const size_t keySize = std::strlen(key);
    for (auto it = object.MemberBegin(); it != object.MemberEnd(); ++it) {
        if (it->name.GetStringLength() == keySize && std::memcmp(it->name.GetString(), key, keySize) == 0) {
            return &it->value;
        }
    }
    return nullptr;
}

QV_JSON_ERR QV_JSON::getString(rapidjson::Value& object, const char* key, qvUtf8String& out) {
    rapidjson::Value* v = findMember(object, key);
    if (!v) return QV_JSON_NOT_FOUND;
    if (!v->IsString()) return QV_JSON_SYNTAX;
    out = stringOf(*v);
    return QV_JSON_OK;
}

QV_JSON_ERR QV_JSON::getFloat(rapidjson::Value& object, const char* key, float& out) {
    rapidjson::Value* v = findMember(object, key);
    if (!v) return QV_JSON_NOT_FOUND;
    if (!v->IsNumber()) return QV_JSON_SYNTAX;
    out = static_cast<float>(v->GetDouble());
    return QV_JSON_OK;
}

QV_JSON_ERR QV_JSON::getDouble(rapidjson::Value& object, const char* key, double& out) {
    rapidjson::Value* v = findMember(object, key);
    if (!v) return QV_JSON_NOT_FOUND;
    if (!v->IsNumber()) return QV_JSON_SYNTAX;
    out = v->GetDouble();
    return QV_JSON_OK;
}

QV_JSON_ERR QV_JSON::getUint(rapidjson::Value& object, const char* key, unsigned int& out) {
    rapidjson::Value* v = findMember(object, key);
    if (!v) return QV_JSON_NOT_FOUND;
    if (!v->IsUint()) return QV_JSON_SYNTAX;
    out = v->GetUint();
    return QV_JSON_OK;
}

QV_JSON_ERR QV_JSON::getUint64(rapidjson::Value& object, const char* key, unsigned long long& out) {
    rapidjson::Value* v = findMember(object, key);
    if (!v) return QV_JSON_NOT_FOUND;
    if (!v->IsUint64()) return QV_JSON_SYNTAX;
    out = v->GetUint64();
    return QV_JSON_OK;
}

QV_JSON_ERR QV_JSON::getInt(rapidjson::Value& object, const char* key, int& out) {
    rapidjson::Value* v = findMember(object, key);
    if (!v) return QV_JSON_NOT_FOUND;
    if (!v->IsInt()) return QV_JSON_SYNTAX;
    out = v->GetInt();
    return QV_JSON_OK;
}

QV_JSON_ERR QV_JSON::getInt64(rapidjson::Value& object, const char* key, long long& out) {
    rapidjson::Value* v = findMember(object, key);
    if (!v) return QV_JSON_NOT_FOUND;
    if (!v->IsInt64()) return QV_JSON_SYNTAX;
    out = v->GetInt64();
    return QV_JSON_OK;
}

QV_JSON_ERR QV_JSON::getBool(rapidjson::Value& object, const char* key, bool& out) {
    rapidjson::Value* v = findMember(object, key);
    if (!v) return QV_JSON_NOT_FOUND;
    if (!v->IsBool()) return QV_JSON_SYNTAX;
    out = v->GetBool();
    return QV_JSON_OK;
}

QV_JSON_ERR QV_JSON::getBoolInt(rapidjson::Value& object, const char* key, bool& out) {
    rapidjson::Value* v = findMember(object, key);
    if (!v) return QV_JSON_NOT_FOUND;
    if (!v->IsInt()) return QV_JSON_SYNTAX;
    out = v->GetInt() != 0;
    return QV_JSON_OK;
}

QV_JSON_ERR QV_JSON::getJSONObject(rapidjson::Value& object, const char* key, rapidjson::Value& out) {
    rapidjson::Value* v = findMember(object, key);
    if (!v) return QV_JSON_NOT_FOUND;
    out = *v;  // moves: the member is null from here on, whatever its type was
    return out.IsObject() ? QV_JSON_OK : QV_JSON_SYNTAX;
}

QV_JSON_ERR QV_JSON::getJSONArray(rapidjson::Value& object, const char* key, rapidjson::Value& out) {
    rapidjson::Value* v = findMember(object, key);
    if (!v) return QV_JSON_NOT_FOUND;
    out = *v;
    return out.IsArray() ? QV_JSON_OK : QV_JSON_SYNTAX;
}

// ---- getters on arrays -----------------------------------------------------

QV_JSON_ERR QV_JSON::getFirstFloat(rapidjson::Value& array, float& out) {
    if (!array.IsArray() || array.Empty() || !array[0].IsNumber()) return QV_JSON_SYNTAX;
    out = static_cast<float>(array[0].GetDouble());
    return QV_JSON_OK;
}

QV_JSON_ERR QV_JSON::getFirstUint(rapidjson::Value& array, unsigned int& out) {
    if (!array.IsArray() || array.Empty() || !array[0].IsUint()) return QV_JSON_SYNTAX;
    out = array[0].GetUint();
    return QV_JSON_OK;
}

QV_JSON_ERR QV_JSON::getFirstInt(rapidjson::Value& array, int& out) {
    if (!array.IsArray() || array.Empty() || !array[0].IsInt()) return QV_JSON_SYNTAX;
    out = array[0].GetInt();
    return QV_JSON_OK;
}

QV_JSON_ERR QV_JSON::getStringArray(rapidjson::Value& object, const char* key, std::vector<qvUtf8String>& out) {
    rapidjson::Value* v = findMember(object, key);
    if (!v) return QV_JSON_NOT_FOUND;
    if (!v->IsArray()) return QV_JSON_SYNTAX;
    out.clear();
    for (auto& element : v->GetArray()) {
        if (!element.IsString()) return QV_JSON_SYNTAX;
        out.push_back(stringOf(element));
    }
    return QV_JSON_OK;
}

QV_JSON_ERR QV_JSON::getFloatArray(rapidjson::Value& object, const char* key, std::vector<float>& out) {
    rapidjson::Value* v = findMember(object, key);
    if (!v) return QV_JSON_NOT_FOUND;
    if (!v->IsArray()) return QV_JSON_SYNTAX;
    out.clear();
    for (auto& element : v->GetArray()) {
        // Stored as a double and within float range: "1" is refused, "1.0" taken.
        if (!element.IsFloat()) return QV_JSON_SYNTAX;
        out.push_back(element.GetFloat());
    }
    return QV_JSON_OK;
}

QV_JSON_ERR QV_JSON::getUintArray(rapidjson::Value& object, const char* key, std::vector<unsigned int>& out) {
    rapidjson::Value* v = findMember(object, key);
    if (!v) return QV_JSON_NOT_FOUND;
    if (!v->IsArray()) return QV_JSON_SYNTAX;
    out.clear();
    for (auto& element : v->GetArray()) {
        if (!element.IsUint()) return QV_JSON_SYNTAX;
        out.push_back(element.GetUint());
    }
    return QV_JSON_OK;
}

QV_JSON_ERR QV_JSON::getIntArray(rapidjson::Value& object, const char* key, std::vector<int>& out) {
    rapidjson::Value* v = findMember(object, key);
    if (!v) return QV_JSON_NOT_FOUND;
    if (!v->IsArray()) return QV_JSON_SYNTAX;
    out.clear();
    for (auto& element : v->GetArray()) {
        if (!element.IsInt()) return QV_JSON_SYNTAX;
        out.push_back(element.GetInt());
    }
    return QV_JSON_OK;
}

// ---- iteration -------------------------------------------------------------

bool QV_JSON::isObject(const rapidjson::Value& value) const { return value.IsObject(); }

bool QV_JSON::isArray(const rapidjson::Value& value) const { return value.IsArray(); }

QV_JSON_ERR QV_JSON::getObjectIterator(rapidjson::Value& object, ObjectIterator& it) {
    if (!object.IsObject()) {
        it = ObjectIterator();
        return QV_JSON_SYNTAX;
    }
    it = object.MemberBegin();
    return QV_JSON_OK;
}

QV_JSON_ERR QV_JSON::objectIteratorNext(rapidjson::Value& object, ObjectIterator& it) {
    if (isObjectIteratorEnded(object, it)) return QV_JSON_NOT_FOUND;
    ++it;
    return QV_JSON_OK;
}

bool QV_JSON::isObjectIteratorEnded(rapidjson::Value& object, const ObjectIterator& it) {
    return !object.IsObject() || it == object.MemberEnd();
}

QV_JSON_ERR QV_JSON::getKeyAndObjectFromObjectIterator(ObjectIterator& it, qvUtf8String& key, rapidjson::Value& out) {
    if (!it->value.IsObject()) return QV_JSON_SYNTAX;
    key = stringOf(it->name);
    out = it->value;
    it->value.SetObject();
    return QV_JSON_OK;
}

QV_JSON_ERR QV_JSON::getKeyAndArrayFromObjectIterator(ObjectIterator& it, qvUtf8String& key, rapidjson::Value& out) {
    if (!it->value.IsArray()) return QV_JSON_SYNTAX;
    key = stringOf(it->name);
    out = it->value;
    it->value.SetArray();
    return QV_JSON_OK;
}

QV_JSON_ERR QV_JSON::getKeyAndStringFromObjectIterator(ObjectIterator& it, qvUtf8String& key, qvUtf8String& out) {
    if (!it->value.IsString()) return QV_JSON_SYNTAX;
    key = stringOf(it->name);
    out = stringOf(it->value);
    return QV_JSON_OK;
}

QV_JSON_ERR QV_JSON::getArrayIterator(rapidjson::Value& array, ArrayIterator& it) {
    if (!array.IsArray()) {
        it = nullptr;
        return QV_JSON_SYNTAX;
    }
    it = array.Begin();
    return QV_JSON_OK;
}

QV_JSON_ERR QV_JSON::arrayIteratorNextValue(rapidjson::Value& array, ArrayIterator& it) {
    if (isArrayIteratorEnded(array, it)) return QV_JSON_NOT_FOUND;
    ++it;
    return QV_JSON_OK;
}

bool QV_JSON::isArrayIteratorEnded(rapidjson::Value& array, const ArrayIterator& it) {
    return !array.IsArray() || it == array.End();
}

QV_JSON_ERR QV_JSON::getStringOnIterator(ArrayIterator& it, qvUtf8String& out) {
    if (!it->IsString()) return QV_JSON_SYNTAX;
    out = stringOf(*it);
    return QV_JSON_OK;
}

QV_JSON_ERR QV_JSON::getIntOnIterator(ArrayIterator& it, int& out) {
    if (!it->IsInt()) return QV_JSON_SYNTAX;
    out = it->GetInt();
    return QV_JSON_OK;
}

QV_JSON_ERR QV_JSON::getObjectOnIterator(ArrayIterator& it, rapidjson::Value& out) {
    if (!it->IsObject()) return QV_JSON_SYNTAX;
    out = *it;
    it->SetObject();
    return QV_JSON_OK;
}

// ---- building --------------------------------------------------------------

void QV_JSON::initEmptyJSON(bool isObjectRoot) {
    rapidjson::Document fresh;
    if (isObjectRoot) {
        fresh.SetObject();
    } else {
        fresh.SetArray();
    }
    // The old tree and its memory leave with `fresh`.
    document.Swap(fresh);
}

void QV_JSON::createEmptyObject(rapidjson::Value& out) { out.SetObject(); }

void QV_JSON::createEmptyArray(rapidjson::Value& out) { out.SetArray(); }

QV_JSON_ERR QV_JSON::addMember(rapidjson::Value& object, const char* key, rapidjson::Value& value) {
    if (!object.IsObject() || !key) return QV_JSON_WRITING;
    auto& allocator = document.GetAllocator();
    rapidjson::Value name(key, allocator);
    object.AddMember(name, value, allocator);
    return QV_JSON_OK;
}

QV_JSON_ERR QV_JSON::addBoolToObject(rapidjson::Value& object, const char* key, bool value) {
    rapidjson::Value v(value);
    return addMember(object, key, v);
}

QV_JSON_ERR QV_JSON::addFloatToObject(rapidjson::Value& object, const char* key, float value) {
    rapidjson::Value v(static_cast<double>(value));
    return addMember(object, key, v);
}

QV_JSON_ERR QV_JSON::addDoubleToObject(rapidjson::Value& object, const char* key, double value) {
    rapidjson::Value v(value);
    return addMember(object, key, v);
}

QV_JSON_ERR QV_JSON::addIntToObject(rapidjson::Value& object, const char* key, int value) {
    rapidjson::Value v(value);
    return addMember(object, key, v);
}

QV_JSON_ERR QV_JSON::addUintToObject(rapidjson::Value& object, const char* key, unsigned int value) {
    rapidjson::Value v(value);
    return addMember(object, key, v);
}

QV_JSON_ERR QV_JSON::addInt64ToObject(rapidjson::Value& object, const char* key, int64_t value) {
    rapidjson::Value v(value);
    return addMember(object, key, v);
}

QV_JSON_ERR QV_JSON::addUint64ToObject(rapidjson::Value& object, const char* key, uint64_t value) {
    rapidjson::Value v(value);
    return addMember(object, key, v);
}

QV_JSON_ERR QV_JSON::addStringToObject(rapidjson::Value& object, const char* key, const qvUtf8String& value) {
    rapidjson::Value v(value.c_str(), sizeOf(value), document.GetAllocator());
    return addMember(object, key, v);
}

QV_JSON_ERR QV_JSON::addStringUTF8ToObject(rapidjson::Value& object, const char* key, const qvUtf8String& value) {
    return addStringToObject(object, key, value);
}

QV_JSON_ERR QV_JSON::addObjectToObject(rapidjson::Value& object, const char* key, rapidjson::Value& value) {
    return addMember(object, key, value);
}

QV_JSON_ERR QV_JSON::addArrayToObject(rapidjson::Value& object, const char* key, rapidjson::Value& value) {
    return addMember(object, key, value);
}

QV_JSON_ERR QV_JSON::addObjectToArray(rapidjson::Value& array, rapidjson::Value& object) {
    if (!array.IsArray()) return QV_JSON_WRITING;
    array.PushBack(object, document.GetAllocator());
    return QV_JSON_OK;
}

QV_JSON_ERR QV_JSON::addFloatArrayToObject(rapidjson::Value& object, const char* key, const std::vector<float>& list) {
    auto& allocator = document.GetAllocator();
    rapidjson::Value array(rapidjson::kArrayType);
    for (float f : list) array.PushBack(rapidjson::Value(static_cast<double>(f)), allocator);
    return addMember(object, key, array);
}

QV_JSON_ERR QV_JSON::addDoubleArrayToObject(rapidjson::Value& object, const char* key,
                                            const std::vector<double>& list) {
    auto& allocator = document.GetAllocator();
    rapidjson::Value array(rapidjson::kArrayType);
    for (double d : list) array.PushBack(rapidjson::Value(d), allocator);
    return addMember(object, key, array);
}

QV_JSON_ERR QV_JSON::addUintArrayToObject(rapidjson::Value& object, const char* key,
                                          const std::vector<unsigned int>& list) {
    auto& allocator = document.GetAllocator();
    rapidjson::Value array(rapidjson::kArrayType);
    for (unsigned int u : list) array.PushBack(rapidjson::Value(u), allocator);
    return addMember(object, key, array);
}

QV_JSON_ERR QV_JSON::addIntArrayToObject(rapidjson::Value& object, const char* key, const std::vector<int>& list) {
    auto& allocator = document.GetAllocator();
    rapidjson::Value array(rapidjson::kArrayType);
    for (int i : list) array.PushBack(rapidjson::Value(i), allocator);
    return addMember(object, key, array);
}

QV_JSON_ERR QV_JSON::addStringArrayToObject(rapidjson::Value& object, const char* key,
                                            const std::vector<qvUtf8String>& list) {
    auto& allocator = document.GetAllocator();
    rapidjson::Value array(rapidjson::kArrayType);
    for (const qvUtf8String& s : list) array.PushBack(rapidjson::Value(s.c_str(), sizeOf(s), allocator), allocator);
    return addMember(object, key, array);
}

QV_JSON_ERR QV_JSON::addStringUTF8ArrayToObject(rapidjson::Value& object, const char* key,
                                                const std::vector<qvUtf8String>& list) {
    return addStringArrayToObject(object, key, list);
}

QV_JSON_ERR QV_JSON::addObjectArrayToObject(rapidjson::Value& object, const char* key,
                                            std::vector<rapidjson::Value>& list) {
    if (!object.IsObject() || !key) return QV_JSON_WRITING;
    auto& allocator = document.GetAllocator();
    rapidjson::Value array(rapidjson::kArrayType);
    for (rapidjson::Value& v : list) array.PushBack(v, allocator);
    return addMember(object, key, array);
}

QV_JSON_ERR QV_JSON::addInt64ArrayToArray(rapidjson::Value& array, const std::vector<int64_t>& list) {
    if (!array.IsArray()) return QV_JSON_WRITING;
    auto& allocator = document.GetAllocator();
    rapidjson::Value inner(rapidjson::kArrayType);
    for (int64_t i : list) inner.PushBack(rapidjson::Value(i), allocator);
    array.PushBack(inner, allocator);
    return QV_JSON_OK;
}

bool QV_JSON::removeMemberFromObject(rapidjson::Value& object, const char* key) {
    if (!object.IsObject() || !key) return false;
    return object.RemoveMember(key);
}

// ---- writing ---------------------------------------------------------------

QV_JSON_ERR QV_JSON::writeJSONFile(const qvUtf8String& path) {
    rapidjson::StringBuffer buffer;
    rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(buffer);
    writer.SetIndent(' ', 4);
    document.Accept(writer);
    std::ofstream out;
    qvFileSystem::getStream(out, path, std::ios::trunc | std::ios::binary);
    out.write(buffer.GetString(), static_cast<std::streamsize>(buffer.GetSize()));
    out.close();
    return out.fail() ? QV_JSON_WRITING : QV_JSON_OK;
}

qvUtf8String QV_JSON::generateJsonFinalString() {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    document.Accept(writer);
    return qvUtf8String(buffer.GetString(), buffer.GetSize());
}
