#include "Utils/qvJSON.h"

#include "TempFolder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

TEST(Json, ErrorTexts) {
    EXPECT_EQ(getJsonErrMsg(QV_JSON_OK).Str(), "No Error");
    EXPECT_EQ(getJsonErrMsg(QV_JSON_SYNTAX).Str(), "Error JSON Syntax");
    EXPECT_EQ(getJsonErrMsg(QV_JSON_NOT_FOUND).Str(), "Not Found");
    EXPECT_EQ(getJsonErrMsg(QV_JSON_READING).Str(), "Error Reading");
    EXPECT_EQ(getJsonErrMsg(QV_JSON_WRITING).Str(), "Error Writing");
    EXPECT_EQ(getJsonErrMsg(static_cast<QV_JSON_ERR>(9)).Str(), "Unexpected Json Error");
}

TEST(Json, NumberGettersGoByHowTheNumberIsStored) {
    QV_JSON json;
    ASSERT_EQ(json.readJSONStr(R"({"neg": -1, "big": 3000000000, "three": 3, "half": 0.5, "huge": 1e300,
                                  "t": true, "seven": 7, "zero": 0, "s": "x", "i64": -5000000000})"),
              QV_JSON_OK);
    rapidjson::Value& root = json.document;

    unsigned int u = 77;
    EXPECT_EQ(json.getUint(root, "neg", u), QV_JSON_SYNTAX);
    EXPECT_EQ(u, 77u);
    EXPECT_EQ(json.getUint(root, "big", u), QV_JSON_OK);
    EXPECT_EQ(u, 3000000000u);
    EXPECT_EQ(json.getUint(root, "half", u), QV_JSON_SYNTAX);
    EXPECT_EQ(json.getUint(root, "missing", u), QV_JSON_NOT_FOUND);

    int i = 5;
    EXPECT_EQ(json.getInt(root, "big", i), QV_JSON_SYNTAX);
    EXPECT_EQ(json.getInt(root, "neg", i), QV_JSON_OK);
    EXPECT_EQ(i, -1);
    long long i64 = 0;
    EXPECT_EQ(json.getInt64(root, "i64", i64), QV_JSON_OK);
    EXPECT_EQ(i64, -5000000000LL);
    unsigned long long u64 = 0;
    EXPECT_EQ(json.getUint64(root, "i64", u64), QV_JSON_SYNTAX);
    EXPECT_EQ(json.getUint64(root, "big", u64), QV_JSON_OK);

    float f = 0;
    EXPECT_EQ(json.getFloat(root, "three", f), QV_JSON_OK);
    EXPECT_EQ(f, 3.0f);
    double d = 0;
    EXPECT_EQ(json.getDouble(root, "huge", d), QV_JSON_OK);
    EXPECT_EQ(d, 1e300);
    EXPECT_EQ(json.getDouble(root, "s", d), QV_JSON_SYNTAX);

    bool b = false;
    EXPECT_EQ(json.getBool(root, "seven", b), QV_JSON_SYNTAX);
    EXPECT_EQ(json.getBool(root, "t", b), QV_JSON_OK);
    EXPECT_TRUE(b);
    // The files' 0 / 1 booleans are numbers: a JSON true is refused.
    EXPECT_EQ(json.getBoolInt(root, "t", b), QV_JSON_SYNTAX);
    EXPECT_EQ(json.getBoolInt(root, "seven", b), QV_JSON_OK);
    EXPECT_TRUE(b);
    EXPECT_EQ(json.getBoolInt(root, "zero", b), QV_JSON_OK);
    EXPECT_FALSE(b);

    qvUtf8String s;
    EXPECT_EQ(json.getString(root, "seven", s), QV_JSON_SYNTAX);
    EXPECT_EQ(json.getString(root, "s", s), QV_JSON_OK);
    EXPECT_EQ(s.Str(), "x");

    // A value that is no object has no keys.
    rapidjson::Value& notAnObject = root["s"];
    EXPECT_EQ(json.getString(notAnObject, "s", s), QV_JSON_NOT_FOUND);
}

TEST(Json, ReadingCleansLineBreaksAndTabsEverywhere) {
    QV_JSON json;
    ASSERT_EQ(json.readJSONStr("{\"name\": \"a\tb\", \"split\": \"one\r\ntwo\"}"), QV_JSON_OK);
    qvUtf8String s;
    ASSERT_EQ(json.getString(json.document, "name", s), QV_JSON_OK);
    EXPECT_EQ(s.Str(), "ab");
    ASSERT_EQ(json.getString(json.document, "split", s), QV_JSON_OK);
    EXPECT_EQ(s.Str(), "onetwo");
    EXPECT_EQ(json.text.Str(), "{\"name\": \"ab\", \"split\": \"onetwo\"}");

    EXPECT_EQ(json.readJSONStr("{\"a\": }"), QV_JSON_SYNTAX);
    EXPECT_EQ(json.readJSONStr(""), QV_JSON_SYNTAX);

    twtest::TempFolder folder;
    const std::string file = folder.writeFile("clip.sidecar", "{\n\t\"iso\": 800\n}\n");
    ASSERT_EQ(json.readJSONFile(file), QV_JSON_OK);
    int iso = 0;
    EXPECT_EQ(json.getInt(json.document, "iso", iso), QV_JSON_OK);
    EXPECT_EQ(iso, 800);
    EXPECT_EQ(json.readJSONFile(folder.join("missing.sidecar")), QV_JSON_NOT_FOUND);
    const QV_JSON_ERR onFolder = json.readJSONFile(folder.path());
    EXPECT_TRUE(onFolder == QV_JSON_READING || onFolder == QV_JSON_SYNTAX);
}

TEST(Json, ArrayGettersStopAtTheFirstStranger) {
    QV_JSON json;
    ASSERT_EQ(json.readJSONStr(R"({"f": [1.0, 2, 3.5], "ok": [0.25, -1.5], "tooBig": [1e39],
                                  "u": [1, 2, -3], "i": [-1, 2], "s": ["a", "b", 3], "e": [], "n": 4})"),
              QV_JSON_OK);
    rapidjson::Value& root = json.document;

    std::vector<float> floats = {9.f, 9.f, 9.f};
    EXPECT_EQ(json.getFloatArray(root, "f", floats), QV_JSON_SYNTAX);
    EXPECT_EQ(floats, std::vector<float>({1.0f}));
    EXPECT_EQ(json.getFloatArray(root, "ok", floats), QV_JSON_OK);
    EXPECT_EQ(floats, std::vector<float>({0.25f, -1.5f}));
    EXPECT_EQ(json.getFloatArray(root, "tooBig", floats), QV_JSON_SYNTAX);
    EXPECT_TRUE(floats.empty());
    EXPECT_EQ(json.getFloatArray(root, "n", floats), QV_JSON_SYNTAX);
    EXPECT_EQ(json.getFloatArray(root, "none", floats), QV_JSON_NOT_FOUND);

    std::vector<unsigned int> uints;
    EXPECT_EQ(json.getUintArray(root, "u", uints), QV_JSON_SYNTAX);
    EXPECT_EQ(uints, std::vector<unsigned int>({1, 2}));
    std::vector<int> ints;
    EXPECT_EQ(json.getIntArray(root, "i", ints), QV_JSON_OK);
    EXPECT_EQ(ints, std::vector<int>({-1, 2}));
    std::vector<qvUtf8String> strings;
    EXPECT_EQ(json.getStringArray(root, "s", strings), QV_JSON_SYNTAX);
    ASSERT_EQ(strings.size(), 2u);
    EXPECT_EQ(strings[1].Str(), "b");

    float first = 0;
    EXPECT_EQ(json.getFirstFloat(root["f"], first), QV_JSON_OK);
    EXPECT_EQ(first, 1.0f);
    EXPECT_EQ(json.getFirstFloat(root["e"], first), QV_JSON_SYNTAX);
    unsigned int firstU = 0;
    EXPECT_EQ(json.getFirstUint(root["i"], firstU), QV_JSON_SYNTAX);
    int firstI = 0;
    EXPECT_EQ(json.getFirstInt(root["i"], firstI), QV_JSON_OK);
    EXPECT_EQ(firstI, -1);
    EXPECT_EQ(json.getFirstInt(root["n"], firstI), QV_JSON_SYNTAX);
}

TEST(Json, ObjectAndArrayReadsMoveTheValueOut) {
    QV_JSON json;
    ASSERT_EQ(json.readJSONStr(R"({"lut": {"size": 33}, "list": [1, 2], "wrong": 5})"), QV_JSON_OK);
    rapidjson::Value& root = json.document;

    rapidjson::Value lut;
    ASSERT_EQ(json.getJSONObject(root, "lut", lut), QV_JSON_OK);
    int size = 0;
    EXPECT_EQ(json.getInt(lut, "size", size), QV_JSON_OK);
    EXPECT_EQ(size, 33);
    EXPECT_TRUE(root["lut"].IsNull());
    EXPECT_EQ(json.getJSONObject(root, "lut", lut), QV_JSON_SYNTAX);

    rapidjson::Value wrong;
    EXPECT_EQ(json.getJSONArray(root, "wrong", wrong), QV_JSON_SYNTAX);
    EXPECT_TRUE(root["wrong"].IsNull());

    rapidjson::Value list;
    ASSERT_EQ(json.getJSONArray(root, "list", list), QV_JSON_OK);
    EXPECT_EQ(list.Size(), 2u);
    EXPECT_EQ(json.getJSONObject(root, "absent", list), QV_JSON_NOT_FOUND);
    EXPECT_EQ(list.Size(), 2u);
}

TEST(Json, IteratorsWalkAndIteratorReadsLeaveEmptyValues) {
    QV_JSON json;
    ASSERT_EQ(json.readJSONStr(R"({"a": {"x": 1}, "b": [1], "c": "text", "d": [{"k": 1}, 2, "s", -4]})"), QV_JSON_OK);
    rapidjson::Value& root = json.document;

    std::vector<std::string> keys;
    QV_JSON::ObjectIterator it;
    ASSERT_EQ(json.getObjectIterator(root, it), QV_JSON_OK);
    for (; !json.isObjectIteratorEnded(root, it); json.objectIteratorNext(root, it)) {
        qvUtf8String key;
        rapidjson::Value value;
        qvUtf8String text;
        if (json.getKeyAndObjectFromObjectIterator(it, key, value) == QV_JSON_OK) {
            EXPECT_TRUE(value.HasMember("x"));
            EXPECT_TRUE(it->value.IsObject());
            EXPECT_EQ(it->value.MemberCount(), 0u);
        } else if (json.getKeyAndArrayFromObjectIterator(it, key, value) == QV_JSON_OK) {
            EXPECT_TRUE(it->value.IsArray());
            EXPECT_EQ(it->value.Size(), 0u);
        } else {
            EXPECT_EQ(json.getKeyAndStringFromObjectIterator(it, key, text), QV_JSON_OK);
            EXPECT_EQ(text.Str(), "text");
        }
        keys.push_back(key.Str());
    }
    EXPECT_EQ(keys, std::vector<std::string>({"a", "b", "c", "d"}));
    EXPECT_EQ(json.objectIteratorNext(root, it), QV_JSON_NOT_FOUND);

    // "d" was moved out above; read a fresh one.
    ASSERT_EQ(json.readJSONStr(R"([{"k": 1}, 2, "s", -4])"), QV_JSON_OK);
    rapidjson::Value& array = json.document;
    QV_JSON::ArrayIterator at;
    ASSERT_EQ(json.getArrayIterator(array, at), QV_JSON_OK);
    rapidjson::Value object;
    EXPECT_EQ(json.getObjectOnIterator(at, object), QV_JSON_OK);
    EXPECT_TRUE(at->IsObject());
    EXPECT_EQ(at->MemberCount(), 0u);
    EXPECT_EQ(json.arrayIteratorNextValue(array, at), QV_JSON_OK);
    int n = 0;
    EXPECT_EQ(json.getIntOnIterator(at, n), QV_JSON_OK);
    EXPECT_EQ(n, 2);
    qvUtf8String s;
    EXPECT_EQ(json.getStringOnIterator(at, s), QV_JSON_SYNTAX);
    json.arrayIteratorNextValue(array, at);
    EXPECT_EQ(json.getStringOnIterator(at, s), QV_JSON_OK);
    EXPECT_EQ(json.getObjectOnIterator(at, object), QV_JSON_SYNTAX);
    json.arrayIteratorNextValue(array, at);
    json.arrayIteratorNextValue(array, at);
    EXPECT_TRUE(json.isArrayIteratorEnded(array, at));
    EXPECT_EQ(json.arrayIteratorNextValue(array, at), QV_JSON_NOT_FOUND);

    // Iterating a value of the other kind is refused, and ends at once.
    EXPECT_EQ(json.getObjectIterator(array, it), QV_JSON_SYNTAX);
    EXPECT_TRUE(json.isObjectIteratorEnded(array, it));
    rapidjson::Value number(5);
    EXPECT_EQ(json.getArrayIterator(number, at), QV_JSON_SYNTAX);
    EXPECT_TRUE(json.isArrayIteratorEnded(number, at));
}

TEST(Json, BuildingAndWritingRoundTrip) {
    QV_JSON json;
    json.initEmptyJSON(true);
    EXPECT_EQ(json.generateJsonFinalString().Str(), "{}");
    rapidjson::Value& root = json.document;
    json.addBoolToObject(root, "b", true);
    json.addFloatToObject(root, "f", 0.1f);
    json.addDoubleToObject(root, "d", 2.5);
    json.addIntToObject(root, "i", -3);
    json.addUintToObject(root, "u", 3000000000u);
    json.addInt64ToObject(root, "i64", -5000000000LL);
    json.addUint64ToObject(root, "u64", 18000000000000000000ULL);
    json.addStringToObject(root, "s", qvUtf8String("caf\xC3\xA9"));
    json.addStringUTF8ToObject(root, "s", qvUtf8String("second"));
    json.addFloatArrayToObject(root, "fa", {1.0f, 0.5f});
    json.addDoubleArrayToObject(root, "da", {});
    json.addUintArrayToObject(root, "ua", {7});
    json.addIntArrayToObject(root, "ia", {-7});
    json.addStringArrayToObject(root, "sa", {qvUtf8String("x"), qvUtf8String("y")});
    json.addStringUTF8ArrayToObject(root, "sa8", {});

    rapidjson::Value inner;
    json.createEmptyObject(inner);
    json.addIntToObject(inner, "k", 1);
    rapidjson::Value list;
    json.createEmptyArray(list);
    json.addInt64ArrayToArray(list, {1, 2});
    json.addInt64ArrayToArray(list, {});
    json.addObjectToArray(list, inner);
    EXPECT_TRUE(inner.IsNull());
    json.addArrayToObject(root, "lists", list);
    EXPECT_TRUE(list.IsNull());
    std::vector<rapidjson::Value> objects(2);
    json.createEmptyObject(objects[0]);
    json.createEmptyObject(objects[1]);
    json.addObjectArrayToObject(root, "objs", objects);
    EXPECT_TRUE(objects[0].IsNull());
    rapidjson::Value empty;
    json.createEmptyObject(empty);
    json.addObjectToObject(root, "o", empty);

    const std::string compact = json.generateJsonFinalString().Str();
    EXPECT_EQ(compact,
              "{\"b\":true,\"f\":0.10000000149011612,\"d\":2.5,\"i\":-3,\"u\":3000000000,\"i64\":-5000000000,"
              "\"u64\":18000000000000000000,\"s\":\"caf\xC3\xA9\",\"s\":\"second\",\"fa\":[1.0,0.5],\"da\":[],"
              "\"ua\":[7],\"ia\":[-7],\"sa\":[\"x\",\"y\"],\"sa8\":[],\"lists\":[[1,2],[],{\"k\":1}],"
              "\"objs\":[{},{}],\"o\":{}}");

    // A second add of a key makes a second member; a reader finds the first.
    qvUtf8String s;
    EXPECT_EQ(json.getString(root, "s", s), QV_JSON_OK);
    EXPECT_EQ(s.Str(), "caf\xC3\xA9");
    EXPECT_TRUE(json.removeMemberFromObject(root, "s"));
    EXPECT_EQ(json.getString(root, "s", s), QV_JSON_OK);
    EXPECT_EQ(s.Str(), "second");
    EXPECT_FALSE(json.removeMemberFromObject(root, "absent"));
    // Adding into something that is no object changes nothing.
    rapidjson::Value number(1);
    EXPECT_NE(json.addIntToObject(number, "k", 1), QV_JSON_OK);
    EXPECT_TRUE(number.IsInt());

    twtest::TempFolder folder;
    const std::string path = folder.join("out.json");
    ASSERT_EQ(json.writeJSONFile(path), QV_JSON_OK);
    const std::string pretty = twtest::TempFolder::readFile(path);
    EXPECT_EQ(pretty.rfind("{\n    \"b\": true,\n    \"f\": 0.10000000149011612,", 0), 0u) << pretty;

    QV_JSON back;
    ASSERT_EQ(back.readJSONFile(path), QV_JSON_OK);
    std::vector<float> floats;
    EXPECT_EQ(back.getFloatArray(back.document, "fa", floats), QV_JSON_OK);
    EXPECT_EQ(floats, std::vector<float>({1.0f, 0.5f}));
    float f = 0;
    EXPECT_EQ(back.getFloat(back.document, "f", f), QV_JSON_OK);
    EXPECT_EQ(f, 0.1f);
    EXPECT_EQ(back.generateJsonFinalString().Str(), json.generateJsonFinalString().Str());

    EXPECT_EQ(json.writeJSONFile(folder.join("no/such/folder/out.json")), QV_JSON_WRITING);

    json.initEmptyJSON(false);
    EXPECT_EQ(json.generateJsonFinalString().Str(), "[]");
}
