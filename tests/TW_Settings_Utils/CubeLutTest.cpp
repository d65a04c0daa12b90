// .cube files as users have them, and the LUT's way into a sidecar: members,
// the many-line layout of its numbers, and sidecars that must not be lost.

#include "SettingsFilesSupport.h"
#include "TempFolder.h"

#include "TW_Settings_Utils/LutUtility.h"
#include "TW_Settings_Utils/TW_LUT.h"

#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <filesystem>

using namespace twtest;

namespace {

const char* const kBadSize = "LUT had bad size";
const char* const kBadCount = "LUT value vecotr size is not good according to size in header";

struct CubeCase {
    const char* what;
    std::string text;
    std::string result;  // "" for success
    int kind;
    int size;
    size_t rows;
};

std::string rows(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += "0.1 0.2 0.3\n";
    return text;
}

}  // namespace

TEST(CubeGrammar, TheFilesUsersHave) {
    const std::vector<CubeCase> cases = {
        {"smallest 3D", "LUT_3D_SIZE 2\n" + rows(8), "", 2, 2, 8},
        {"a row short", "LUT_3D_SIZE 2\n" + rows(7), kBadCount, 2, 2, 7},
        {"a row too many", "LUT_3D_SIZE 2\n" + rows(9), kBadCount, 2, 2, 9},
        {"no size line", rows(8), kBadSize, 0, 0, 8},
        {"size not a number", "LUT_3D_SIZE two\n" + rows(8), kBadSize, 2, 0, 8},
        {"size zero", "LUT_1D_SIZE 0\n", kBadSize, 1, 0, 0},
        {"1D", "LUT_1D_SIZE 4\n" + rows(4), "", 1, 4, 4},
        {"comments, blank lines, indented data, tabs",
         "# made by hand\n\nTITLE  Film   look  \n#LUT_3D_SIZE 9\nLUT_3D_SIZE 2\n   \n" + rows(4) +
             "  0.1\t0.2   0.3\n\t0.1 0.2 0.3\n" + rows(2),
         "", 2, 2, 8},
        {"CRLF and stray carriage returns", "TITLE \"Crlf\"\r\nLUT_3D_SIZE 2\r\n" + std::string("0.1 0.2 0.3\r\n") +
                                                "0.1 0.2 0.\r3\r\n" + rows(6),
         "", 2, 2, 8},
        {"byte-order mark", "\xEF\xBB\xBFLUT_3D_SIZE 2\n" + rows(8), "", 2, 2, 8},
        {"exponent numbers", "LUT_3D_SIZE 2\n1e-3 2.5E-1 -0.0\n+1 .5 5.\n" + rows(6), "", 2, 2, 8},
        {"a row of two numbers is dropped, then the count fails", "LUT_3D_SIZE 2\n0.1 0.2\n" + rows(7), kBadCount, 2, 2,
         7},
        {"a row with a word is dropped silently", "LUT_3D_SIZE 2\nLUT_3D_INPUT_RANGE 0.0 1.0\n0.1 x 0.3\n" + rows(8),
         "", 2, 2, 8},
        {"no final line feed", "LUT_3D_SIZE 2\n" + rows(7) + "0.1 0.2 0.3", "", 2, 2, 8},
        {"huge size", "LUT_3D_SIZE 2147483647\n" + rows(3), kBadCount, 2, 2147483647, 3},
        {"empty file", "", kBadSize, 0, 0, 0},
    };
    for (const CubeCase& c : cases) {
        SCOPED_TRACE(c.what);
        TW_LUT lut;
        const QvResult result = lut.loadFromCubeText(c.text, "/luts/Film Look.cube");
        EXPECT_EQ(result.toString(), c.result);
        EXPECT_EQ(result.hasError, !c.result.empty());
        EXPECT_EQ(lut.kind, c.kind);
        EXPECT_EQ(lut.size, c.size);
        EXPECT_EQ(lut.values.size(), c.rows);
        EXPECT_EQ(lut.name, "Film Look.cube");
    }

    TW_LUT lut;
    ASSERT_TRUE(lut.loadFromCubeText(cases[7].text, "a.cube").isOk());
    EXPECT_EQ(lut.title, "Film look");
    ASSERT_TRUE(lut.loadFromCubeText(cases[8].text, "a.cube").isOk());
    EXPECT_EQ(lut.title, "\"Crlf\"");  // quotation marks stay
    EXPECT_EQ(lut.values[1][2], 0.3);  // "0.\r3": the carriage return is dropped, not a blank
    ASSERT_TRUE(lut.loadFromCubeText(cases[10].text, "/x/Plain.CUBE").isOk());
    EXPECT_EQ(lut.title, "Plain.CUBE");  // no TITLE: the file's name
    EXPECT_EQ(lut.name, "Plain.cube");
    EXPECT_EQ(lut.values[0][0], 1e-3);
    EXPECT_EQ(lut.values[0][1], 0.25);
    EXPECT_EQ(lut.values[1][0], 1.0);
    EXPECT_EQ(lut.values[1][1], 0.5);
}

TEST(CubeGrammar, DomainLinesAndTheirMistakes) {
    TW_LUT lut;
    ASSERT_TRUE(lut.loadFromCubeText("DOMAIN_MIN -0.1 0 1e-2\nDOMAIN_MAX 2 2 2\nLUT_1D_SIZE 2\n" + rows(2), "d.cube")
                    .isOk());
    EXPECT_EQ(lut.domainMin[0], -0.1);
    EXPECT_EQ(lut.domainMin[2], 0.01);
    EXPECT_EQ(lut.domainMax[1], 2.0);
    // Too few numbers, too many, or a word: the domain stays as it was.
    ASSERT_TRUE(lut.loadFromCubeText("DOMAIN_MIN 1 1\nDOMAIN_MAX 3 3 3 3\nDOMAIN_MAX 3 x 3\nLUT_1D_SIZE 2\n" + rows(2),
                                     "d.cube")
                    .isOk());
    EXPECT_EQ(lut.domainMin[0], 0.0);
    EXPECT_EQ(lut.domainMax[0], 1.0);
    // A second load starts afresh.
    EXPECT_EQ(lut.values.size(), 2u);
}

// Every size a camera or grading tool writes, values read exactly.
TEST(CubeGrammar, SizesFromTwoToSixtyFiveReadExactly) {
    TempFolder folder;
    for (int size : {2, 3, 17, 33, 65}) {
        for (int kind : {1, 2}) {
            SCOPED_TRACE(std::to_string(size) + (kind == 1 ? " 1D" : " 3D"));
            const std::string path = folder.writeFile("L.cube", cubeText(kind, size, "TITLE \"L\"\n"));
            TW_LUT lut;
            ASSERT_TRUE(lut.loadFromCubeFile(path).isOk());
            ASSERT_EQ(lut.values.size(), kind == 1 ? size_t(size) : size_t(size) * size * size);
            for (size_t row = 0; row < lut.values.size(); row += 97) {
                for (int c = 0; c < 3; ++c) ASSERT_EQ(lut.values[row][c], cubeValueAt(row, c, size));
            }
            EXPECT_EQ(lut.values.back()[2], cubeValueAt(lut.values.size() - 1, 2, size));
        }
    }
    TW_LUT lut;
    EXPECT_EQ(lut.loadFromCubeFile(folder.join("missing.cube")).toString(), "Impossible to open cube filepath stream");
    EXPECT_EQ(lut.loadFromCubeFile(folder.path()).toString(), "Impossible to open cube filepath stream");
}

TEST(CubeInSidecar, TheMembersAndTheirText) {
    TW_LUT lut;
    ASSERT_TRUE(lut.loadFromCubeText("TITLE Warm\nLUT_1D_SIZE 2\n0.5 -0.25 1e-7\n1 0.1234567 12.5\n", "/l/Warm.cube")
                    .isOk());
    QV_JSON json;
    ASSERT_EQ(json.readJSONStr(R"({"post_3dlut_sidecar_data": "old", "note": 1, "post_3dlut_mode": "Embedded"})"),
              QV_JSON_OK);
    ASSERT_TRUE(lut.addLUTToSidecar(json).isOk());
    EXPECT_EQ(json.generateJsonFinalString(),
              R"({"note":1,"post_3dlut_mode":"Sidecar","post_3dlut_sidecar_name":"Warm.cube",)"
              R"("post_3dlut_sidecar_title":"Warm","post_3dlut_sidecar_size":2,)"
              R"("post_3dlut_sidecar_data":"0.500000 -0.250000 0.000000 1.000000 0.123457 12.500000"})");

    std::vector<double> numbers{9.0};
    EXPECT_TRUE(LutUtility::fromLUTStringToFloatVector("1  2.5e1 x -3 ", numbers).isOk());
    EXPECT_EQ(numbers, (std::vector<double>{1.0, 25.0, -3.0}));
}

TEST(CubeInSidecar, TheSidecarGetsTheLutLaidOutOverLines) {
    TempFolder folder;
    const std::string cube = folder.writeFile("Look.cube", cubeText(2, 2));
    const std::string sidecar = folder.join("A001.sidecar");

    // No sidecar yet: one is made.
    ASSERT_TRUE(LutUtility::addLUTToSidecar(sidecar, cube).isOk());
    const std::string text = TempFolder::readFile(sidecar);
    const std::string expectedTail =
        "    \"post_3dlut_sidecar_data\": \"0.0000000000 0.0411520000 0.0823050000\n" +
        std::string(32, ' ') + "0.3333330000 0.0411520000 0.0823050000\n";
    EXPECT_NE(text.find(expectedTail), std::string::npos) << text;
    EXPECT_EQ(text.substr(text.size() - 4), "\"\n}\n");
    QV_JSON json;
    ASSERT_EQ(json.readJSONFile(sidecar), QV_JSON_OK);

    // A sidecar of other tools keeps its keys; a second LUT replaces the first.
    folder.writeFile("A001.sidecar", R"({"camera": {"id": "B"}, "post_3dlut_sidecar_size": 99})");
    ASSERT_TRUE(LutUtility::addLUTToSidecar(sidecar, cube).isOk());
    ASSERT_EQ(json.readJSONFile(sidecar), QV_JSON_OK);
    EXPECT_TRUE(json.document.HasMember("camera"));
    EXPECT_EQ(json.document["post_3dlut_sidecar_size"].GetInt(), 2);
    EXPECT_EQ(json.document.MemberCount(), 6u);

    // A bad cube changes nothing.
    folder.writeFile("Bad.cube", "LUT_3D_SIZE 3\n0 0 0\n");
    const std::string before = TempFolder::readFile(sidecar);
    EXPECT_EQ(LutUtility::addLUTToSidecar(sidecar, folder.join("Bad.cube")).toString(), kBadCount);
    EXPECT_EQ(TempFolder::readFile(sidecar), before);
}

TEST(CubeInSidecar, ASidecarThatDoesNotReadIsNeverOverwritten) {
    TempFolder folder;
    const std::string cube = folder.writeFile("Look.cube", cubeText(2, 2));
    for (const char* bad : {"{\"iso\": ", "[]", "not json at all"}) {
        SCOPED_TRACE(bad);
        const std::string sidecar = folder.writeFile("A001.sidecar", bad);
        EXPECT_EQ(LutUtility::addLUTToSidecar(sidecar, cube).toString(),
                  "Sidecar exists but can not be loaded .. Aborting because it could erase Data");
        EXPECT_EQ(TempFolder::readFile(sidecar), bad);
    }
    EXPECT_EQ(LutUtility::addLUTToSidecar(folder.makeFolder("B001.sidecar"), cube).toString(),
              "Sidecar exists but can not be loaded .. Aborting because it could erase Data");
}

TEST(CubeInSidecar, TheSecondPassRewritesOnlyTheLutMember) {
    TempFolder folder;
    // A data text whose count isn't a multiple of 3: the sidecar stays as it is.
    const std::string odd = "{\n    \"post_3dlut_sidecar_data\": \"1 2 3 4\",\n    \"x\": 1\n}";
    const std::string sidecar = folder.writeFile("A.sidecar", odd);
    EXPECT_EQ(LutUtility::updateSidecarWithGoodLUTSyntax(sidecar, "0").toString(),
              "Impossible to update Sidecar LUT if Lut Vector length is not a multiple of 3");
    EXPECT_EQ(TempFolder::readFile(sidecar), odd);
    EXPECT_EQ(LutUtility::updateSidecarWithGoodLUTSyntax(folder.join("none.sidecar"), "0").toString(),
              "removeInfiniteTagInMedia - Impossible to open stream");

    // The member keeps its comma; a text that merely names the key, and a
    // nested member of that name, are other members' and stay.
    std::string out;
    ASSERT_TRUE(LutUtility::layoutLUTMember("{\n"
                                            "    \"note\": \"see post_3dlut_sidecar_data\",\n"
                                            "    \"nested\": {\n"
                                            "        \"post_3dlut_sidecar_data\": \"a b\"\n"
                                            "    },\n"
                                            "    \"post_3dlut_sidecar_data\": \"1 2 3 4 5 6\",\n"
                                            "    \"post_3dlut_mode\": \"Sidecar\"\n"
                                            "}",
                                            out)
                    .isOk());
    EXPECT_EQ(out, "{\n"
                   "    \"note\": \"see post_3dlut_sidecar_data\",\n"
                   "    \"nested\": {\n"
                   "        \"post_3dlut_sidecar_data\": \"a b\"\n"
                   "    },\n"
                   "    \"post_3dlut_sidecar_data\": \"1.0000000000 2.0000000000 3.0000000000\n" +
                       std::string(32, ' ') +
                       "4.0000000000 5.0000000000 6.0000000000\",\n"
                       "    \"post_3dlut_mode\": \"Sidecar\"\n"
                       "}\n");
    QV_JSON json;
    EXPECT_EQ(json.readJSONStr(out), QV_JSON_OK);
}
