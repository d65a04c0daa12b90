// The sidecar beside a clip, read the way the decoder library reads it.

#include "Format/RefLutTools.h"
#include "Format/RefSidecar.h"
#include "TempFolder.h"

#include <gtest/gtest.h>

using namespace twref;

namespace {

const RefMetadataEntry* find(const std::vector<RefMetadataEntry>& list, const std::string& key)
{
    for (const RefMetadataEntry& e : list)
        if (e.key == key)
            return &e;
    return nullptr;
}

}  // namespace

TEST(FormatSidecar, ReadsEverySettingsKeyAndTheLut)
{
    const RefLut lut = RefLutTools::make(RefLutKind::Invert, 2);
    std::string data;
    for (float v : lut.data)
        data += std::to_string(v) + (data.size() % 3 == 0 ? "\n" : " ");
    const std::string text = R"({
    "tone_curve_saturation": 1.5, "tone_curve_contrast": 0.75, "tone_curve_midpoint": 0.4,
    "tone_curve_highlights": 0.9, "tone_curve_shadows": 1.1, "tone_curve_white_leve": 0.95,
    "tone_curve_black_leve": 0.05, "tone_curve_video_black_leve": true,
    "viewing_gamma": "Blackmagic Design Custom", "viewing_gamut": "Rec.709",
    "gamut_compression_enable": 1, "viewing_bmdgen": 4, "highlight_recovery": 1,
    "post_3dlut_mode": "Sidecar",
    "exposure": {"01:00:00:00": 1.5, "01:00:00:01": 2.0},
    "white_balance_kelvin": {"01:00:00:00": 3200},
    "white_balance_tint": -12,
    "iso": {"whatever": 1600},
    "post_3dlut_sidecar_name": "Invert.cube",
    "post_3dlut_sidecar_title": "Reference Invert",
    "post_3dlut_sidecar_size": 2,
    "post_3dlut_sidecar_data": ")" + data + R"(",
    "reel_name": "B007",
    "good_take": true
})";
    const RefSidecarResult r = RefSidecar::parse(text);
    ASSERT_EQ(r.status, RefSidecarResult::Status::Parsed);
    EXPECT_TRUE(r.warnings.empty()) << r.warnings[0].message;
    const RefSidecarSettings& s = r.settings;
    EXPECT_FLOAT_EQ(*s.toneCurveSaturation, 1.5f);
    EXPECT_FLOAT_EQ(*s.toneCurveWhiteLevel, 0.95f);
    EXPECT_FLOAT_EQ(*s.toneCurveBlackLevel, 0.05f);
    EXPECT_EQ(*s.toneCurveVideoBlackLevel, 1);
    EXPECT_EQ(*s.gamma, "Blackmagic Design Custom");
    EXPECT_EQ(*s.gamutCompression, 1);
    EXPECT_EQ(*s.colorScienceGen, 4);
    EXPECT_EQ(*s.lutMode, "Sidecar");
    EXPECT_FLOAT_EQ(*s.exposure, 1.5f) << "the first member of a frame-level object";
    EXPECT_EQ(*s.kelvin, 3200u);
    EXPECT_EQ(*s.tint, -12);
    EXPECT_EQ(*s.iso, 1600u);
    EXPECT_TRUE(s.lut == lut) << "data spread over lines reads as one list";
    const RefMetadataEntry* reel = find(s.metadata, "reel_name");
    ASSERT_NE(reel, nullptr);
    EXPECT_EQ(reel->value.text, "B007");
    EXPECT_NE(find(s.metadata, "iso"), nullptr);
    EXPECT_EQ(find(s.metadata, "post_3dlut_sidecar_data"), nullptr);
}

TEST(FormatSidecar, WrongTypesWarnWithTheirLineAndTheRestIsUsed)
{
    const RefSidecarResult r = RefSidecar::parse("{\n"
                                                 "  \"iso\": \"800\",\n"
                                                 "  \"viewing_gamma\": 3,\n"
                                                 "  \"highlight_recovery\": 2,\n"
                                                 "  \"white_balance_tint\": 40000,\n"
                                                 "  \"exposure\": 0.5,\n"
                                                 "  \"post_3dlut_sidecar_name\": \"x.cube\",\n"
                                                 "  \"post_3dlut_sidecar_title\": \"x\",\n"
                                                 "  \"post_3dlut_sidecar_size\": 2,\n"
                                                 "  \"post_3dlut_sidecar_data\": \"0 0 0\"\n"
                                                 "}\n");
    ASSERT_TRUE(r.attached());
    ASSERT_EQ(r.warnings.size(), 5u);
    EXPECT_EQ(r.warnings[0].line, 2u);
    EXPECT_NE(r.warnings[0].message.find("\"iso\""), std::string::npos);
    EXPECT_EQ(r.warnings[1].line, 3u);
    EXPECT_EQ(r.warnings[2].line, 4u);
    EXPECT_EQ(r.warnings[3].line, 5u);
    EXPECT_EQ(r.warnings[4].line, 10u);
    EXPECT_NE(r.warnings[4].message.find("expected 24"), std::string::npos);
    EXPECT_FALSE(r.settings.iso);
    EXPECT_FALSE(r.settings.gamma);
    EXPECT_FALSE(r.settings.lut.present());
    EXPECT_FLOAT_EQ(*r.settings.exposure, 0.5f);

    const RefSidecarResult partial = RefSidecar::parse(R"({"post_3dlut_sidecar_name": "x.cube"})");
    ASSERT_EQ(partial.warnings.size(), 1u);
    EXPECT_FALSE(partial.settings.lut.present());
}

TEST(FormatSidecar, BadFilesAreIgnoredWhole)
{
    const RefSidecarResult bad = RefSidecar::parse("{\n  \"iso\": 800,\n  \"exposure\": \n}\n");
    EXPECT_EQ(bad.status, RefSidecarResult::Status::Failed);
    EXPECT_FALSE(bad.attached());
    EXPECT_EQ(bad.error.line, 4u);
    EXPECT_FALSE(bad.settings.iso) << "nothing of a broken file is used";

    EXPECT_EQ(RefSidecar::parse("[1, 2]").status, RefSidecarResult::Status::Failed);
    EXPECT_EQ(RefSidecar::parse("").status, RefSidecarResult::Status::Failed);

    twtest::TempFolder folder;
    EXPECT_EQ(RefSidecar::read(folder.join("none.sidecar")).status, RefSidecarResult::Status::Missing);
    EXPECT_EQ(RefSidecar::read(folder.path()).status, RefSidecarResult::Status::Failed);
    const std::string path = folder.writeFile("a.sidecar", R"({"iso": 400})");
    const RefSidecarResult read = RefSidecar::read(path);
    EXPECT_TRUE(read.attached());
    EXPECT_EQ(read.path, path);
    EXPECT_EQ(*read.settings.iso, 400u);
}

TEST(FormatSidecar, SettingsBecomeTheClipDefaults)
{
    RefClipModel model;
    model.clipAttribute(RefClipAttr::Gamut)->readOnly = true;
    RefSidecarSettings s;
    s.gamma = "Rec.709";
    s.gamut = "Rec.2020";
    s.highlightRecovery = 1;
    s.toneCurveContrast = 1.5f;
    s.iso = 1600;
    s.tint = -30;
    s.metadata = {{"reel_name", RefValue::string("Z9")},
                  {"iso", RefValue::s32(1600)},
                  {"new_key", RefValue::string("v")}};
    RefSidecar::applyToModel(s, model);

    EXPECT_EQ(model.clipAttribute(RefClipAttr::Gamma)->value, RefValue::string("Rec.709"));
    EXPECT_EQ(model.clipAttribute(RefClipAttr::Gamut)->value, RefValue::string("Blackmagic Design"))
        << "read-only attributes keep their value";
    EXPECT_EQ(model.clipAttribute(RefClipAttr::HighlightRecovery)->value, RefValue::u16(1));
    EXPECT_EQ(model.clipAttribute(RefClipAttr::ToneCurveContrast)->value, RefValue::f32(1.5f));
    EXPECT_EQ(model.frameAttribute(RefFrameAttr::ISO)->value, RefValue::u32(1600));
    EXPECT_EQ(model.frameAttribute(RefFrameAttr::WhiteBalanceTint)->value, RefValue::s16(-30));
    EXPECT_EQ(find(model.metadata, "reel_name")->value.text, "Z9");
    EXPECT_EQ(find(model.frameMetadata, "iso")->value, RefValue::u32(1600)) << "keeps the clip's type";
    EXPECT_EQ(model.metadata.back().key, "new_key");
}

TEST(FormatSidecar, WrittenSidecarsReadBack)
{
    RefSidecarSettings s;
    s.gamma = "Blackmagic Design Custom";
    s.toneCurveVideoBlackLevel = 1;
    s.kelvin = 4500;
    s.tint = -5;
    s.exposure = -1.25f;
    s.lut = RefLutTools::make(RefLutKind::Warm, 3, "Warm.cube", "Warm");
    s.metadata = {{"scene", RefValue::string("12")}, {"gamma_is_written_once", RefValue::u16(1)}};
    const RefSidecarResult r = RefSidecar::parse(RefSidecar::serialize(s));
    ASSERT_TRUE(r.attached());
    EXPECT_TRUE(r.warnings.empty());
    EXPECT_EQ(*r.settings.gamma, *s.gamma);
    EXPECT_EQ(*r.settings.kelvin, 4500u);
    EXPECT_EQ(*r.settings.tint, -5);
    EXPECT_FLOAT_EQ(*r.settings.exposure, -1.25f);
    EXPECT_EQ(r.settings.lut.size, 3u);
    ASSERT_EQ(r.settings.lut.data.size(), s.lut.data.size());
    for (size_t i = 0; i < s.lut.data.size(); ++i)
        EXPECT_NEAR(r.settings.lut.data[i], s.lut.data[i], 1e-6);
    EXPECT_EQ(find(r.settings.metadata, "scene")->value.text, "12");

    EXPECT_EQ(RefSidecar::pathForClip("/a/b/clip.braw"), "/a/b/clip.sidecar");
    EXPECT_EQ(RefSidecar::pathForClip("/a.b/clip"), "/a.b/clip.sidecar");
    EXPECT_EQ(RefSidecar::pathForClip("clip.v2.braw"), "clip.v2.sidecar");
}
