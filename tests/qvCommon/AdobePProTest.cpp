// Host codes as the product reads and logs them.

#include "Adobe/qvAdobePPro.h"

#include <gtest/gtest.h>

TEST(AdobePPro, ApplicationCodesNameTheHost) {
    const std::pair<uint32_t, const char*> codes[] = {
        {0x5050726F, "Premiere Pro"},     {0x5072456C, "Premiere Elements"}, {0x46585443, "After Effects"},
        {0x414D4520, "Adobe Media Encoder"}, {0x434F574F, "Cotton Wood"},   {0x50524C44, "Prelude"},
        {0x53504744, "Speed Grade"},      {0x41644175, "Audition"},          {0x416E6D6C, "Character Animator"},
        // Without its trailing blank the encoder is nobody; nor is a code read the other way round.
        {0x414D4500, "Unknown"},          {0x6F725050, "Unknown"},           {0, "Unknown"},
    };
    for (const auto& code : codes) EXPECT_EQ(getAppEnumFromAppFour(code.first).toString(), code.second) << code.first;
}

TEST(AdobePPro, IntentsAndPixelFormatsHaveTheirLogNames) {
    const char* intents[] = {"Unknown", "Export", "Stopped", "Scrubbing", "Prerol", "Playing", "SpeculativePrefetch",
                             "Thumbnail", "Analysis", "ExportPreview", "ExportProxies", "DistantPrefetch"};
    for (int intent = -1; intent <= 10; ++intent) EXPECT_EQ(GetIntentStr(intent), intents[intent + 1]);
    EXPECT_EQ(GetIntentStr(11), "Unknown 11");
    EXPECT_EQ(GetIntentStr(-5), "Unknown");

    EXPECT_EQ(GetPixFmtStr(0x61726762), "BGRA_8u");
    EXPECT_EQ(GetPixFmtStr(0x61724742), "BGRA_32f");
    EXPECT_EQ(GetPixFmtStr(0x61726742), "BGRA_16u");
    EXPECT_EQ(GetPixFmtStr(0x4C675258), "XRGB_32f_Lin");
    EXPECT_EQ(GetPixFmtStr(0x61795556), "VUYA_32f");
    EXPECT_EQ(GetPixFmtStr(0x78724742), "BGRX_32f");
    EXPECT_EQ(GetPixFmtStr(0x62677261), "ARGB_8u");
    EXPECT_EQ(GetPixFmtStr(0x32767579), "(other pix_fmt)");
    EXPECT_EQ(GetPixFmtStr(0), "(other pix_fmt)");
}
