#include "Adobe/qvAdobePPro.h"

#include <string>

namespace {

constexpr uint32_t fourCC(char a, char b, char c, char d) {
    return (uint32_t(uint8_t(a)) << 24) | (uint32_t(uint8_t(b)) << 16) | (uint32_t(uint8_t(c)) << 8) | uint8_t(d);
}

struct PixelFormatName {
    uint32_t value;
    const char* name;
};

const PixelFormatName kPixelFormatNames[] = {
    {0x61726762, "BGRA_8u"},  {0x62677261, "ARGB_8u"},      {0x61726742, "BGRA_16u"}, {0x62677241, "ARGB_16u"},
    {0x61724742, "BGRA_32f"}, {0x62677278, "XRGB_8u"},      {0x78726762, "BGRX_8u"},  {0x62677258, "XRGB_16u"},
    {0x78726742, "BGRX_16u"}, {0x62675258, "XRGB_32f"},     {0x78724742, "BGRX_32f"}, {0x4C675258, "XRGB_32f_Lin"},
    {0x61797576, "VUYA_8u"},  {0x61795556, "VUYA_32f"},
};

}  // namespace

QV_APP_ENUM getAppEnumFromAppFour(uint32_t appFourCC) {
    switch (appFourCC) {
        case fourCC('P', 'P', 'r', 'o'): return QV_APP_ENUM::QV_APP_PPRO;
        case fourCC('P', 'r', 'E', 'l'): return QV_APP_ENUM::QV_APP_PREL;
        case fourCC('F', 'X', 'T', 'C'): return QV_APP_ENUM::QV_APP_AE;
        case fourCC('A', 'M', 'E', ' '): return QV_APP_ENUM::QV_APP_AME;
        case fourCC('C', 'O', 'W', 'O'): return QV_APP_ENUM::QV_APP_COTTON_WOOD;
        case fourCC('P', 'R', 'L', 'D'): return QV_APP_ENUM::QV_APP_PRELUDE;
        case fourCC('S', 'P', 'G', 'D'): return QV_APP_ENUM::QV_APP_SPEED_GRADE;
        case fourCC('A', 'd', 'A', 'u'): return QV_APP_ENUM::QV_APP_AUDITION;
        case fourCC('A', 'n', 'm', 'l'): return QV_APP_ENUM::QV_APP_CHARACTER_ANIMATOR;
        default: return QV_APP_ENUM::QV_APP_UNKNOWN;
    }
}

qvUtf8String GetIntentStr(int32_t renderIntent) {
    static const char* const kNames[] = {"Export",   "Stopped",       "Scrubbing",     "Prerol",
                                         "Playing",  "SpeculativePrefetch", "Thumbnail", "Analysis",
                                         "ExportPreview", "ExportProxies", "DistantPrefetch"};
    if (renderIntent > 10) return qvUtf8String("Unknown ") + std::to_string(renderIntent);
    if (renderIntent < 0) return qvUtf8String("Unknown");
    return qvUtf8String(kNames[renderIntent]);
}

qvUtf8String GetPixFmtStr(uint32_t pixelFormat) {
    for (const PixelFormatName& entry : kPixelFormatNames) {
        if (entry.value == pixelFormat) return qvUtf8String(entry.name);
    }
    return qvUtf8String("(other pix_fmt)");
}
