// Sidecars as the decoder library and the product's tools have them: the keys
// in their order and types, exact round trips, the reading rules, foreign keys
// kept, and bad files that neither crash nor get lost.

#include "SettingsFilesSupport.h"
#include "TempFolder.h"

#include "Manager/twSettingsVocabulary.h"
#include "TW_Settings_Utils/LutUtility.h"
#include "TW_Settings_Utils/SidecarUtility.h"

#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>

using namespace twtest;

namespace {

const std::vector<std::string> kKeysInOrder = {
    "tone_curve_saturation", "tone_curve_contrast", "tone_curve_midpoint", "tone_curve_highlights",
    "tone_curve_shadows", "tone_curve_white_leve", "tone_curve_black_leve", "tone_curve_video_black_leve",
    "viewing_gamma", "viewing_gamut", "gamut_compression_enable", "viewing_bmdgen", "highlight_recovery",
    "post_3dlut_mode", "exposure", "white_balance_kelvin", "white_balance_tint", "iso"};
// The BRAW_Settings index of each key above.
const std::vector<int> kIndexOfKey = {12, 13, 14, 15, 16, 17, 18, 19, 11, 1, 2, 0, 5, 7, 4, 9, 10, 3};

rapidjson::Document parseFile(const std::string& path) {
    rapidjson::Document doc;
    doc.Parse(TempFolder::readFile(path).c_str());
    return doc;
}

std::vector<std::string> memberNames(const rapidjson::Value& object) {
    std::vector<std::string> names;
    for (auto m = object.MemberBegin(); m != object.MemberEnd(); ++m) names.emplace_back(m->name.GetString());
    return names;
}

struct SidecarFixture : ::testing::Test {
    TempFolder folder;
    std::string sidecar = folder.join("A001.sidecar");
};

}  // namespace

TEST_F(SidecarFixture, WritesEveryKeyInOrderWithItsTypeAndTheFrameLevelObjects) {
    twAttributes prefs = variedSettings(0);
    ASSERT_EQ(SidecarUtility::writeSidecarFromPrefs(sidecar, prefs), SidecarUtility::SIDECAR_OK);
    const rapidjson::Document doc = parseFile(sidecar);
    ASSERT_TRUE(doc.IsObject());
    EXPECT_EQ(memberNames(doc), kKeysInOrder);
    // The "_leve" names are the format's; no companions in a plain sidecar.
    EXPECT_FALSE(doc.HasMember("tone_curve_white_level"));
    EXPECT_FALSE(doc.HasMember("tw_iso_active"));

    EXPECT_TRUE(doc["tone_curve_video_black_leve"].IsUint());
    EXPECT_EQ(doc["gamut_compression_enable"].GetUint(), 1u);
    EXPECT_EQ(doc["highlight_recovery"].GetUint(), 0u);
    EXPECT_EQ(doc["viewing_bmdgen"].GetUint(), 5u);
    EXPECT_STREQ(doc["viewing_gamma"].GetString(), "Blackmagic Design Custom");
    EXPECT_STREQ(doc["post_3dlut_mode"].GetString(), "Embedded");
    for (const char* frameKey : {"exposure", "white_balance_kelvin", "white_balance_tint", "iso"}) {
        SCOPED_TRACE(frameKey);
        ASSERT_TRUE(doc[frameKey].IsObject());
        ASSERT_EQ(doc[frameKey].MemberCount(), 1u);
        EXPECT_STREQ(doc[frameKey].MemberBegin()->name.GetString(), "01:02:03:04");
    }
    EXPECT_EQ(doc["iso"]["01:02:03:04"].GetUint(), 1600u);
    EXPECT_EQ(doc["white_balance_tint"]["01:02:03:04"].GetInt(), -37);
    EXPECT_EQ(doc["tone_curve_black_leve"].GetDouble(), -0.75);
}

TEST_F(SidecarFixture, PrefsSurviveASidecarExactly) {
    for (int variant = 0; variant < kSettingsVariants; ++variant) {
        SCOPED_TRACE(variant);
        const twAttributes written = variedSettings(variant);
        ASSERT_EQ(SidecarUtility::writeSidecarFromPrefs(sidecar, written), SidecarUtility::SIDECAR_OK);
        twAttributes read;
        ASSERT_EQ(SidecarUtility::fillPrefsFromSidecar(sidecar, read), SidecarUtility::SIDECAR_OK);
        EXPECT_EQ(settingsDifference(written.clip, written.frame, read.clip, read.frame), "");
    }
}

// Every pattern of flags, through companions, comes back as it went, except
// the two settings that have no key of their own (LUT enabled, white balance
// preset), which a document of these keys can't carry.
TEST_F(SidecarFixture, ActiveFlagPatternsSurviveTheirCompanions) {
    std::vector<std::vector<bool>> patterns;
    patterns.push_back(std::vector<bool>(BRAW_SETTINGS_COUNT, true));
    patterns.push_back(std::vector<bool>(BRAW_SETTINGS_COUNT, false));
    for (size_t bit = 0; bit < BRAW_SETTINGS_COUNT; ++bit) {
        std::vector<bool> one(BRAW_SETTINGS_COUNT, false), allBut(BRAW_SETTINGS_COUNT, true);
        one[bit] = true;
        allBut[bit] = false;
        patterns.push_back(one);
        patterns.push_back(allBut);
    }
    for (unsigned seed = 1; seed < 40; ++seed) {
        std::vector<bool> mixed(BRAW_SETTINGS_COUNT);
        for (size_t i = 0; i < mixed.size(); ++i) mixed[i] = ((seed * 2654435761u) >> (i + 3)) & 1u;
        patterns.push_back(mixed);
    }
    const twAttributes settings = variedSettings(3);
    for (const std::vector<bool>& pattern : patterns) {
        QV_JSON json;
        json.initEmptyJSON(true);
        SidecarUtility::fillJSONFromSidecarValues(json, settings.clip, settings.frame, pattern, true);
        QV_JSON back;
        ASSERT_EQ(back.readJSONStr(json.generateJsonFinalString()), QV_JSON_OK);
        twAttributes read;
        std::vector<bool> flags(BRAW_SETTINGS_COUNT, false);
        ASSERT_EQ(SidecarUtility::fillPrefsFromJSONSidecarValues(back, read.clip, read.frame, flags),
                  SidecarUtility::SIDECAR_OK);
        std::vector<bool> expected = pattern;
        expected[BRAW_SETTING_LUT_ENABLED] = false;
        expected[BRAW_SETTING_WB_PRESET] = false;
        EXPECT_EQ(flags, expected);
        // A cleared flag still carries its value.
        EXPECT_EQ(settingsDifference(settings.clip, settings.frame, read.clip, read.frame), "");
    }
}

TEST(SidecarReading, TheFormsTheFilesHold) {
    QV_JSON json;
    ASSERT_EQ(json.readJSONStr(R"({
        "iso": 3200,
        "white_balance_kelvin": {"02:00:00:00": 4100, "03:00:00:00": 9999},
        "white_balance_tint": {"x": -12},
        "exposure": {"00:00:00:00": 1},
        "gamut_compression_enable": true,
        "highlight_recovery": false,
        "tone_curve_video_black_leve": 1,
        "tw_tone_curve_contrast_active": 0, "tone_curve_contrast": 1.5,
        "tw_viewing_gamut_active": true,
        "viewing_gamma": "",
        "viewing_bmdgen": 4
    })"),
              QV_JSON_OK);
    twClipAttributes clip;
    twFrameAttributes frame;
    clip.highlightRecovery = true;
    std::vector<bool> flags(BRAW_SETTINGS_COUNT, false);
    EXPECT_EQ(SidecarUtility::fillPrefsFromJSONSidecarValues(json, clip, frame, flags), SidecarUtility::SIDECAR_OK);
    EXPECT_EQ(frame.iso, 3200u);       // a plain number at frame level
    EXPECT_EQ(frame.kelvin, 4100u);    // the first member, whatever its name
    EXPECT_EQ(frame.tint, -12);
    EXPECT_EQ(frame.exposure, 1.0f);   // an integer is a number too
    EXPECT_TRUE(clip.gamutCompression);  // JSON booleans are read as 0 / 1
    EXPECT_FALSE(clip.highlightRecovery);
    EXPECT_TRUE(clip.gammaControls.useVideoBlackLevel);
    EXPECT_STREQ(clip.gamma, "Blackmagic Design Film");  // an empty text names nothing
    EXPECT_TRUE(flags[BRAW_SETTING_GAMMA]);
    EXPECT_EQ(clip.gammaControls.contrast, 1.5f);  // a cleared companion still stores the value
    EXPECT_FALSE(flags[BRAW_SETTING_CONTRAST]);
    EXPECT_TRUE(flags[BRAW_SETTING_GAMUT]);        // companion set, value absent
    EXPECT_TRUE(flags[BRAW_SETTING_ISO]);          // no companion: active because it is there
    EXPECT_FALSE(flags[BRAW_SETTING_SATURATION]);  // neither
    EXPECT_STREQ(clip.gamut, "Blackmagic Design");

    // The frame-level objects read are still in the document, as they were.
    EXPECT_NE(json.generateJsonFinalString().Str().find(
                  R"("white_balance_kelvin":{"02:00:00:00":4100,"03:00:00:00":9999})"),
              std::string::npos);
}

// For each key in turn, values of other types: that field keeps its value and
// its flag is cleared, the result says so, and every other key is read all
// the same.
TEST(SidecarReading, AWrongTypeSpoilsOnlyItsOwnKey) {
    const twAttributes wanted = variedSettings(0);
    QV_JSON reference;
    reference.initEmptyJSON(true);
    SidecarUtility::fillJSONFromSidecarValues(reference, wanted.clip, wanted.frame,
                                              std::vector<bool>(BRAW_SETTINGS_COUNT, true), false);
    const std::string good = reference.generateJsonFinalString().Str();
    for (size_t k = 0; k < kKeysInOrder.size(); ++k) {
        const char* key = kKeysInOrder[k].c_str();
        const bool isText = k == 8 || k == 9 || k == 13;
        const bool isFloat = k < 7 || k == 14;
        std::vector<std::string> wrongValues = {"[1]", "{}", "null", "{\"a\": \"b\"}"};
        wrongValues.push_back(isText ? "1" : "\"text\"");
        if (!isText && !isFloat) wrongValues.push_back("2.5");
        if (k == 11 || k == 15 || k == 17) wrongValues.push_back("-4");  // unsigned ones
        for (const std::string& wrong : wrongValues) {
            SCOPED_TRACE(kKeysInOrder[k] + " = " + wrong);
            QV_JSON json;
            ASSERT_EQ(json.readJSONStr(good), QV_JSON_OK);
            rapidjson::Document replacement;
            replacement.Parse(wrong.c_str());
            json.document[key].CopyFrom(replacement, json.document.GetAllocator());
            twAttributes read;
            std::vector<bool> flags(BRAW_SETTINGS_COUNT, false);
            EXPECT_EQ(SidecarUtility::fillPrefsFromJSONSidecarValues(json, read.clip, read.frame, flags),
                      SidecarUtility::SIDECAR_SYNTAX);

            // What a file without that key reads.
            QV_JSON without;
            ASSERT_EQ(without.readJSONStr(good), QV_JSON_OK);
            without.removeMemberFromObject(without.document, key);
            twAttributes expected;
            std::vector<bool> expectedFlags(BRAW_SETTINGS_COUNT, false);
            ASSERT_EQ(SidecarUtility::fillPrefsFromJSONSidecarValues(without, expected.clip, expected.frame,
                                                                      expectedFlags),
                      SidecarUtility::SIDECAR_OK);
            EXPECT_EQ(settingsDifference(read.clip, read.frame, expected.clip, expected.frame), "");
            EXPECT_EQ(flags, expectedFlags);
            EXPECT_FALSE(flags[static_cast<size_t>(kIndexOfKey[k])]);
        }
    }
}

TEST_F(SidecarFixture, KeysItDoesNotKnowStayAsTheyWere) {
    const std::string foreign = R"({
        "camera_notes": "Take 3, \"good\" \u00e9\\path",
        "tone_curve_contrast": 0.9,
        "clip_markers": [{"in": 12, "out": 48, "label": "A"}, {"in": 100}],
        "lens": {"focal_length": 35.5, "iris": {"t": 2.8, "ok": true}, "none": null},
        "reel": 18446744073709551615,
        "offset": -9223372036854775808,
        "ratio": 0.1,
        "tiny": 1e-300,
        "empty": {},
        "iso": {"00:00:00:00": 400},
        "flag": false
    })";
    folder.writeFile("A001.sidecar", foreign);
    const rapidjson::Document before = parseFile(sidecar);
    ASSERT_EQ(SidecarUtility::writeSidecarFromPrefs(sidecar, variedSettings(2)), SidecarUtility::SIDECAR_OK);
    const rapidjson::Document after = parseFile(sidecar);
    ASSERT_TRUE(after.IsObject());
    for (auto m = before.MemberBegin(); m != before.MemberEnd(); ++m) {
        const std::string name = m->name.GetString();
        if (name == "tone_curve_contrast" || name == "iso") continue;
        SCOPED_TRACE(name);
        ASSERT_TRUE(after.HasMember(name.c_str()));
        EXPECT_TRUE(after[name.c_str()] == m->value);
    }
    // The touched keys are the last ones, in their order.
    const std::vector<std::string> names = memberNames(after);
    ASSERT_EQ(names.size(), 9 + kKeysInOrder.size());
    EXPECT_EQ(std::vector<std::string>(names.end() - static_cast<long>(kKeysInOrder.size()), names.end()),
              kKeysInOrder);

    // A key the file holds twice is written once.
    folder.writeFile("A001.sidecar", R"({"iso": 100, "iso": {"a": 200}, "tw_x": 1})");
    ASSERT_EQ(SidecarUtility::writeSidecarFromPrefs(sidecar, variedSettings(0)), SidecarUtility::SIDECAR_OK);
    twAttributes read;
    ASSERT_EQ(SidecarUtility::fillPrefsFromSidecar(sidecar, read), SidecarUtility::SIDECAR_OK);
    EXPECT_EQ(read.frame.iso, 1600u);
    EXPECT_EQ(TempFolder::readFile(sidecar).find("\"iso\""), TempFolder::readFile(sidecar).rfind("\"iso\""));
}

TEST_F(SidecarFixture, BadFilesAreToldApartAndNeverLost) {
    twAttributes prefs = variedSettings(1);
    const twAttributes untouched = prefs;
    EXPECT_EQ(SidecarUtility::fillPrefsFromSidecar(sidecar, prefs), SidecarUtility::SIDECAR_MISSING);

    for (const char* bad : {"{\"iso\": {\"00:00:00:00\": 800", "", "{\"iso\": 800,}", "\xEF\xBB\xBF{}", "[1, 2]", "7"}) {
        SCOPED_TRACE(bad);
        folder.writeFile("A001.sidecar", bad);
        EXPECT_EQ(SidecarUtility::fillPrefsFromSidecar(sidecar, prefs), SidecarUtility::SIDECAR_BAD_JSON);
        EXPECT_EQ(settingsDifference(prefs.clip, prefs.frame, untouched.clip, untouched.frame), "");
        // A file that isn't a JSON object is replaced by a good one.
        ASSERT_EQ(SidecarUtility::writeSidecarFromPrefs(sidecar, untouched), SidecarUtility::SIDECAR_OK);
        twAttributes read;
        ASSERT_EQ(SidecarUtility::fillPrefsFromSidecar(sidecar, read), SidecarUtility::SIDECAR_OK);
        EXPECT_EQ(settingsDifference(read.clip, read.frame, untouched.clip, untouched.frame), "");
    }

    // A folder where the sidecar should be: neither read nor replaced.
    const std::string asFolder = folder.makeFolder("B001.sidecar");
    folder.writeFile("B001.sidecar/keep.txt", "x");
    EXPECT_EQ(SidecarUtility::fillPrefsFromSidecar(asFolder, prefs), SidecarUtility::SIDECAR_CANT_OPEN);
    EXPECT_EQ(SidecarUtility::writeSidecarFromPrefs(asFolder, prefs), SidecarUtility::SIDECAR_WRITE_FAILED);
    EXPECT_EQ(TempFolder::readFile(asFolder + "/keep.txt"), "x");

    // A folder that doesn't exist.
    EXPECT_EQ(SidecarUtility::writeSidecarFromPrefs(folder.join("none/C001.sidecar"), prefs),
              SidecarUtility::SIDECAR_WRITE_FAILED);
    // No temporary file is ever left behind.
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
        EXPECT_EQ(entry.path().filename().string().find(".tmp"), std::string::npos) << entry.path();
    }
}

TEST_F(SidecarFixture, ALinkedSidecarStaysALink) {
    folder.writeFile("real/A001.sidecar", R"({"note": "kept"})");
    std::filesystem::create_symlink(folder.join("real/A001.sidecar"), sidecar);
    ASSERT_EQ(SidecarUtility::writeSidecarFromPrefs(sidecar, variedSettings(0)), SidecarUtility::SIDECAR_OK);
    EXPECT_TRUE(std::filesystem::is_symlink(sidecar));
    EXPECT_NE(TempFolder::readFile(folder.join("real/A001.sidecar")).find("\"note\": \"kept\""), std::string::npos);
}

// The sidecar LUT keeps its many-line layout through a write of the settings,
// and the member it is no longer last keeps a valid document.
TEST_F(SidecarFixture, ALutInTheSidecarKeepsItsLayoutThroughASettingsWrite) {
    const std::string cube = folder.writeFile("Look.cube", cubeText(2, 3, "TITLE \"Look\"\n"));
    folder.writeFile("A001.sidecar", R"({"reel": "R1"})");
    ASSERT_TRUE(LutUtility::addLUTToSidecar(sidecar, cube).isOk());
    ASSERT_EQ(SidecarUtility::writeSidecarFromPrefs(sidecar, variedSettings(0)), SidecarUtility::SIDECAR_OK);

    const std::string text = TempFolder::readFile(sidecar);
    const std::string rowStart = "\n" + std::string(32, ' ');
    size_t rows = 1, at = 0;
    while ((at = text.find(rowStart, at + 1)) != std::string::npos) ++rows;
    EXPECT_EQ(rows, 27u);
    EXPECT_NE(text.find("\"post_3dlut_sidecar_data\": \"0.0000000000 0.0308640000 0.0617280000\n"),
              std::string::npos)
        << text.substr(0, 700);
    // Still a JSON document for the product's reader, settings and LUT alike.
    twAttributes read;
    ASSERT_EQ(SidecarUtility::fillPrefsFromSidecar(sidecar, read), SidecarUtility::SIDECAR_OK);
    EXPECT_EQ(settingsDifference(read.clip, read.frame, variedSettings(0).clip, variedSettings(0).frame), "");
    QV_JSON json;
    ASSERT_EQ(json.readJSONFile(sidecar), QV_JSON_OK);
    qvUtf8String data;
    ASSERT_EQ(json.getString(json.document, "post_3dlut_sidecar_data", data), QV_JSON_OK);
    std::vector<double> numbers;
    LutUtility::fromLUTStringToFloatVector(data, numbers);
    ASSERT_EQ(numbers.size(), 81u);
    EXPECT_NEAR(numbers[80], cubeValueAt(26, 2, 3), 1e-6);
}

// A read-only folder: the sidecar, although the user may write it, is left
// exactly as it was, and nothing is left beside it.
TEST_F(SidecarFixture, AReadOnlyFolderLeavesTheSidecarIntact) {
    const std::string clipFolder = folder.makeFolder("card");
    const std::string path = clipFolder + "/A001.sidecar";
    const std::string original = R"({"iso": {"00:00:00:00": 400}, "note": "mine"})";
    folder.writeFile("card/A001.sidecar", original);
    const std::string cube = folder.writeFile("Look.cube", cubeText(2, 2));
    ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
    ASSERT_EQ(chmod(clipFolder.c_str(), 0755), 0);
    ASSERT_EQ(chmod(cube.c_str(), 0644), 0);
    ASSERT_EQ(chown(path.c_str(), kUnprivilegedId, kUnprivilegedId), 0);

    const int code = runAsUnprivileged([&] {
        twAttributes prefs;
        if (SidecarUtility::fillPrefsFromSidecar(path, prefs) != SidecarUtility::SIDECAR_OK || prefs.frame.iso != 400)
            return 1;
        if (SidecarUtility::writeSidecarFromPrefs(path, variedSettings(0)) != SidecarUtility::SIDECAR_WRITE_FAILED)
            return 2;
        if (!LutUtility::addLUTToSidecar(path, cube).hasError) return 3;
        return 0;
    });
    EXPECT_EQ(code, 0);
    EXPECT_EQ(TempFolder::readFile(path), original);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(clipFolder), std::filesystem::directory_iterator()), 1);
}

// A sidecar the user made read-only stays as it is, in a folder they may write.
TEST_F(SidecarFixture, AReadOnlySidecarIsNotReplaced) {
    const std::string clipFolder = folder.makeFolder("card");
    const std::string path = clipFolder + "/A001.sidecar";
    folder.writeFile("card/A001.sidecar", R"({"note": "mine"})");
    ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
    ASSERT_EQ(chown(clipFolder.c_str(), kUnprivilegedId, kUnprivilegedId), 0);
    ASSERT_EQ(chown(path.c_str(), kUnprivilegedId, kUnprivilegedId), 0);
    ASSERT_EQ(chmod(path.c_str(), 0444), 0);

    const int code = runAsUnprivileged([&] {
        return SidecarUtility::writeSidecarFromPrefs(path, variedSettings(0)) == SidecarUtility::SIDECAR_WRITE_FAILED
                   ? 0
                   : 1;
    });
    EXPECT_EQ(code, 0);
    EXPECT_EQ(TempFolder::readFile(path), R"({"note": "mine"})");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(clipFolder), std::filesystem::directory_iterator()), 1);
}

// A sidecar the user can't read is neither read nor replaced.
TEST_F(SidecarFixture, AnUnreadableSidecarIsNotReplaced) {
    const std::string clipFolder = folder.makeFolder("card");
    const std::string path = clipFolder + "/A001.sidecar";
    folder.writeFile("card/A001.sidecar", R"({"note": "mine"})");
    ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
    ASSERT_EQ(chown(clipFolder.c_str(), kUnprivilegedId, kUnprivilegedId), 0);
    ASSERT_EQ(chmod(path.c_str(), 0), 0);

    const int code = runAsUnprivileged([&] {
        twAttributes prefs;
        if (SidecarUtility::fillPrefsFromSidecar(path, prefs) != SidecarUtility::SIDECAR_CANT_OPEN) return 1;
        if (SidecarUtility::writeSidecarFromPrefs(path, variedSettings(0)) != SidecarUtility::SIDECAR_WRITE_FAILED)
            return 2;
        return 0;
    });
    EXPECT_EQ(code, 0);
    EXPECT_EQ(TempFolder::readFile(path), R"({"note": "mine"})");
}
