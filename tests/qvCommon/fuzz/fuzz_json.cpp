// Any bytes read as a JSON document: every getter, iterator and moving read on
// whatever came out must hold, and the document written back must read again.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "Utils/qvJSON.h"

namespace {

// Deep enough for every real file; keeps the walk's own stack bounded.
constexpr int kMaxDepth = 64;

void walk(QV_JSON& json, rapidjson::Value& value, int depth);

void readEveryWayByKey(QV_JSON& json, rapidjson::Value& object, const char* key) {
    qvUtf8String s;
    float f = 0;
    double d = 0;
    unsigned int u = 0;
    unsigned long long u64 = 0;
    int i = 0;
    long long i64 = 0;
    bool b = false;
    json.getString(object, key, s);
    json.getFloat(object, key, f);
    json.getDouble(object, key, d);
    json.getUint(object, key, u);
    json.getUint64(object, key, u64);
    json.getInt(object, key, i);
    json.getInt64(object, key, i64);
    json.getBool(object, key, b);
    json.getBoolInt(object, key, b);
    std::vector<qvUtf8String> strings;
    std::vector<float> floats;
    std::vector<unsigned int> uints;
    std::vector<int> ints;
    json.getStringArray(object, key, strings);
    json.getFloatArray(object, key, floats);
    json.getUintArray(object, key, uints);
    json.getIntArray(object, key, ints);
}

void walkObject(QV_JSON& json, rapidjson::Value& object, int depth) {
    QV_JSON::ObjectIterator it;
    if (json.getObjectIterator(object, it) != QV_JSON_OK) std::abort();
    std::vector<qvUtf8String> keys;
    for (; !json.isObjectIteratorEnded(object, it); json.objectIteratorNext(object, it)) {
        qvUtf8String key;
        qvUtf8String text;
        rapidjson::Value inner;
        keys.push_back(qvUtf8String(it->name.GetString(), it->name.GetStringLength()));
        readEveryWayByKey(json, object, keys.back().c_str());
        if (json.getKeyAndStringFromObjectIterator(it, key, text) == QV_JSON_OK) continue;
        if (json.getKeyAndObjectFromObjectIterator(it, key, inner) == QV_JSON_OK ||
            json.getKeyAndArrayFromObjectIterator(it, key, inner) == QV_JSON_OK) {
            if (!json.isObject(it->value) && !json.isArray(it->value)) std::abort();
            walk(json, inner, depth + 1);
            // Put it back, as a caller that writes the document again must.
            it->value = inner;
        }
    }
    // Moving reads by key, after which the member is null.
    for (const qvUtf8String& key : keys) {
        rapidjson::Value out;
        const QV_JSON_ERR objectRead = json.getJSONObject(object, key.c_str(), out);
        if (objectRead == QV_JSON_NOT_FOUND) std::abort();
        rapidjson::Value again;
        if (json.getJSONArray(object, key.c_str(), again) == QV_JSON_OK) std::abort();
    }
}

void walkArray(QV_JSON& json, rapidjson::Value& array, int depth) {
    float f = 0;
    unsigned int u = 0;
    int i = 0;
    json.getFirstFloat(array, f);
    json.getFirstUint(array, u);
    json.getFirstInt(array, i);
    QV_JSON::ArrayIterator it;
    if (json.getArrayIterator(array, it) != QV_JSON_OK) std::abort();
    for (; !json.isArrayIteratorEnded(array, it); json.arrayIteratorNextValue(array, it)) {
        qvUtf8String s;
        json.getStringOnIterator(it, s);
        json.getIntOnIterator(it, i);
        rapidjson::Value inner;
        if (json.getObjectOnIterator(it, inner) == QV_JSON_OK) {
            walk(json, inner, depth + 1);
        } else if (json.isArray(*it)) {
            walk(json, *it, depth + 1);
        }
    }
}

void walk(QV_JSON& json, rapidjson::Value& value, int depth) {
    if (depth > kMaxDepth) return;
    if (json.isObject(value)) walkObject(json, value, depth);
    if (json.isArray(value)) walkArray(json, value, depth);
    // Iterating a value of the other kind must end at once.
    QV_JSON::ObjectIterator oit;
    if (!json.isObject(value) && (json.getObjectIterator(value, oit) == QV_JSON_OK ||
                                  !json.isObjectIteratorEnded(value, oit)))
        std::abort();
    QV_JSON::ArrayIterator ait;
    if (!json.isArray(value) && (json.getArrayIterator(value, ait) == QV_JSON_OK ||
                                 !json.isArrayIteratorEnded(value, ait)))
        std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    QV_JSON json;
    if (json.readJSONStr(qvUtf8String(reinterpret_cast<const char*>(data), size)) != QV_JSON_OK) return 0;
    walk(json, json.document, 0);

    const qvUtf8String written = json.generateJsonFinalString();
    QV_JSON back;
    // Readable again; not byte-identical, since the default parse is not exact
    // in the last digit of long numbers.
    if (back.readJSONStr(written) != QV_JSON_OK) std::abort();
    return 0;
}
