#pragma once
// The one way JSON is read and written (sidecars, presets, settings data, the
// settings application's answers).
//
// Fixed decisions callers rely on:
// - Reading removes every line feed, carriage return and tab from the text
//   first, inside string values too.
// - Getters answer QV_JSON_NOT_FOUND for a missing key and QV_JSON_SYNTAX for a
//   value of another type; `out` is then left alone (array getters have cleared
//   it). Number getters go by how the number is stored: 3000000000 is no int,
//   1 is no float element.
// - getJSONObject / getJSONArray and the iterator reads that hand out an object
//   or array MOVE the value out of the tree: the member is left null (by key)
//   or empty (by iterator), even when the type turned out wrong. Read such a
//   value once, and put it back before writing the document again.
// - The add operations never look for an existing key; remove it first. They
//   answer QV_JSON_WRITING, changing nothing, when the target is of the wrong kind.
// Values handed out live in this document's memory: they must not outlive it,
// nor an initEmptyJSON or read of it.

#include "String/qvUtf8String.h"

#include <rapidjson/document.h>

#include <cstdint>
#include <vector>

enum QV_JSON_ERR : uint8_t {
    QV_JSON_OK = 0,
    QV_JSON_SYNTAX = 1,  // also: a value of the wrong type
    QV_JSON_NOT_FOUND = 2,
    QV_JSON_READING = 3,
    QV_JSON_WRITING = 4,
};

// "No Error", "Error JSON Syntax", "Not Found", "Error Reading", "Error Writing",
// else "Unexpected Json Error".
qvUtf8String getJsonErrMsg(QV_JSON_ERR code);

class QV_JSON {
public:
    using ObjectIterator = rapidjson::Value::MemberIterator;
    using ArrayIterator = rapidjson::Value::ValueIterator;

    QV_JSON();

    // Reading.
    QV_JSON_ERR readJSONStr(const qvUtf8String& json);
    // NOT_FOUND when the file does not exist, READING when it exists and does not open.
    QV_JSON_ERR readJSONFile(const qvUtf8String& path);

    // Getters by key.
    QV_JSON_ERR getString(rapidjson::Value& object, const char* key, qvUtf8String& out);
    QV_JSON_ERR getFloat(rapidjson::Value& object, const char* key, float& out);
    QV_JSON_ERR getDouble(rapidjson::Value& object, const char* key, double& out);
    QV_JSON_ERR getUint(rapidjson::Value& object, const char* key, unsigned int& out);
    QV_JSON_ERR getUint64(rapidjson::Value& object, const char* key, unsigned long long& out);
    QV_JSON_ERR getInt(rapidjson::Value& object, const char* key, int& out);
    QV_JSON_ERR getInt64(rapidjson::Value& object, const char* key, long long& out);
    QV_JSON_ERR getBool(rapidjson::Value& object, const char* key, bool& out);
    // The files' 0 / 1 booleans: a signed 32-bit number, not a JSON true/false.
    QV_JSON_ERR getBoolInt(rapidjson::Value& object, const char* key, bool& out);
    QV_JSON_ERR getJSONObject(rapidjson::Value& object, const char* key, rapidjson::Value& out);
    QV_JSON_ERR getJSONArray(rapidjson::Value& object, const char* key, rapidjson::Value& out);

    // Getters on arrays.
    QV_JSON_ERR getFirstFloat(rapidjson::Value& array, float& out);
    QV_JSON_ERR getFirstUint(rapidjson::Value& array, unsigned int& out);
    QV_JSON_ERR getFirstInt(rapidjson::Value& array, int& out);
    // Stop at the first element of another type, keeping what came before.
    QV_JSON_ERR getStringArray(rapidjson::Value& object, const char* key, std::vector<qvUtf8String>& out);
    QV_JSON_ERR getFloatArray(rapidjson::Value& object, const char* key, std::vector<float>& out);
    QV_JSON_ERR getUintArray(rapidjson::Value& object, const char* key, std::vector<unsigned int>& out);
    QV_JSON_ERR getIntArray(rapidjson::Value& object, const char* key, std::vector<int>& out);

    // Iteration. An iterator belongs to the value it was taken from.
    bool isObject(const rapidjson::Value& value) const;
    bool isArray(const rapidjson::Value& value) const;
    QV_JSON_ERR getObjectIterator(rapidjson::Value& object, ObjectIterator& it);
    QV_JSON_ERR objectIteratorNext(rapidjson::Value& object, ObjectIterator& it);
    bool isObjectIteratorEnded(rapidjson::Value& object, const ObjectIterator& it);
    QV_JSON_ERR getKeyAndObjectFromObjectIterator(ObjectIterator& it, qvUtf8String& key, rapidjson::Value& out);
    QV_JSON_ERR getKeyAndArrayFromObjectIterator(ObjectIterator& it, qvUtf8String& key, rapidjson::Value& out);
    QV_JSON_ERR getKeyAndStringFromObjectIterator(ObjectIterator& it, qvUtf8String& key, qvUtf8String& out);
    QV_JSON_ERR getArrayIterator(rapidjson::Value& array, ArrayIterator& it);
    QV_JSON_ERR arrayIteratorNextValue(rapidjson::Value& array, ArrayIterator& it);
    bool isArrayIteratorEnded(rapidjson::Value& array, const ArrayIterator& it);
    QV_JSON_ERR getStringOnIterator(ArrayIterator& it, qvUtf8String& out);
    QV_JSON_ERR getIntOnIterator(ArrayIterator& it, int& out);
    QV_JSON_ERR getObjectOnIterator(ArrayIterator& it, rapidjson::Value& out);

    // Building. The targets must be values of this document.
    void initEmptyJSON(bool isObject);
    void createEmptyObject(rapidjson::Value& out);
    void createEmptyArray(rapidjson::Value& out);
    QV_JSON_ERR addBoolToObject(rapidjson::Value& object, const char* key, bool value);
    QV_JSON_ERR addFloatToObject(rapidjson::Value& object, const char* key, float value);
    QV_JSON_ERR addDoubleToObject(rapidjson::Value& object, const char* key, double value);
    QV_JSON_ERR addIntToObject(rapidjson::Value& object, const char* key, int value);
    QV_JSON_ERR addUintToObject(rapidjson::Value& object, const char* key, unsigned int value);
    QV_JSON_ERR addInt64ToObject(rapidjson::Value& object, const char* key, int64_t value);
    QV_JSON_ERR addUint64ToObject(rapidjson::Value& object, const char* key, uint64_t value);
    QV_JSON_ERR addStringToObject(rapidjson::Value& object, const char* key, const qvUtf8String& value);
    QV_JSON_ERR addStringUTF8ToObject(rapidjson::Value& object, const char* key, const qvUtf8String& value);
    // Move `value` in; it is left null.
    QV_JSON_ERR addObjectToObject(rapidjson::Value& object, const char* key, rapidjson::Value& value);
    QV_JSON_ERR addArrayToObject(rapidjson::Value& object, const char* key, rapidjson::Value& value);
    QV_JSON_ERR addObjectToArray(rapidjson::Value& array, rapidjson::Value& object);
    QV_JSON_ERR addFloatArrayToObject(rapidjson::Value& object, const char* key, const std::vector<float>& list);
    QV_JSON_ERR addDoubleArrayToObject(rapidjson::Value& object, const char* key, const std::vector<double>& list);
    QV_JSON_ERR addUintArrayToObject(rapidjson::Value& object, const char* key,
                                     const std::vector<unsigned int>& list);
    QV_JSON_ERR addIntArrayToObject(rapidjson::Value& object, const char* key, const std::vector<int>& list);
    QV_JSON_ERR addStringArrayToObject(rapidjson::Value& object, const char* key,
                                       const std::vector<qvUtf8String>& list);
    QV_JSON_ERR addStringUTF8ArrayToObject(rapidjson::Value& object, const char* key,
                                           const std::vector<qvUtf8String>& list);
    // Moves every value of `list` in; they are left null.
    QV_JSON_ERR addObjectArrayToObject(rapidjson::Value& object, const char* key,
                                       std::vector<rapidjson::Value>& list);
    // A list of lists: `list` becomes one array element of `array`.
    QV_JSON_ERR addInt64ArrayToArray(rapidjson::Value& array, const std::vector<int64_t>& list);
    bool removeMemberFromObject(rapidjson::Value& object, const char* key);

    // Writing: pretty text (4-blank indent) to a file, or the compact form.
    QV_JSON_ERR writeJSONFile(const qvUtf8String& path);
    qvUtf8String generateJsonFinalString();

    rapidjson::Document document;
    qvUtf8String text;

private:
    QV_JSON_ERR parseText();
    rapidjson::Value* findMember(rapidjson::Value& object, const char* key);
    QV_JSON_ERR addMember(rapidjson::Value& object, const char* key, rapidjson::Value& value);
};
