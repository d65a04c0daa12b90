#include "Format/RefTypes.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace twref {

namespace {

bool isPrintableCode(uint32_t code)
{
    for (int shift = 24; shift >= 0; shift -= 8) {
        const unsigned char c = static_cast<unsigned char>((code >> shift) & 0xFF);
        if (c < 0x20 || c > 0x7E)
            return false;
    }
    return true;
}

// Whole-string unsigned number, decimal or 0x-hex, that fits in 32 bits.
bool parseU32(const std::string& text, uint32_t& value)
{
    if (text.empty() || text[0] == '-' || text[0] == '+' || text[0] == ' ')
        return false;
    errno = 0;
    char* end = nullptr;
    const unsigned long long v = std::strtoull(text.c_str(), &end, 0);
    if (errno != 0 || end == text.c_str() || *end != '\0' || v > 0xFFFFFFFFull)
        return false;
    value = static_cast<uint32_t>(v);
    return true;
}

struct NamedResult {
    const char* name;
    int32_t value;
};

constexpr NamedResult kResults[] = {
    {"S_OK", RefResult::Ok},
    {"S_FALSE", RefResult::False},
    {"E_UNEXPECTED", RefResult::Unexpected},
    {"E_NOTIMPL", RefResult::NotImpl},
    {"E_OUTOFMEMORY", RefResult::OutOfMemory},
    {"E_INVALIDARG", RefResult::InvalidArg},
    {"E_NOINTERFACE", RefResult::NoInterface},
    {"E_POINTER", RefResult::Pointer},
    {"E_HANDLE", RefResult::Handle},
    {"E_ABORT", RefResult::Abort},
    {"E_FAIL", RefResult::Fail},
    {"E_ACCESSDENIED", RefResult::AccessDenied},
};

constexpr const char* kVariantNames[] = {"empty", "u8", "s16", "u16", "s32",
                                         "u32", "float32", "string", "array", "float64"};

struct NamedScale {
    const char* name;
    RefResolutionScale scale;
};

constexpr NamedScale kScales[] = {
    {"full", RefResolutionScale::Full},
    {"half", RefResolutionScale::Half},
    {"quarter", RefResolutionScale::Quarter},
    {"eighth", RefResolutionScale::Eighth},
    {"full_upside_down", RefResolutionScale::FullUpsideDown},
    {"half_upside_down", RefResolutionScale::HalfUpsideDown},
    {"quarter_upside_down", RefResolutionScale::QuarterUpsideDown},
    {"eighth_upside_down", RefResolutionScale::EighthUpsideDown},
};

}  // namespace

std::string refFourCCText(uint32_t code)
{
    if (isPrintableCode(code)) {
        const char text[5] = {static_cast<char>(code >> 24), static_cast<char>(code >> 16),
                              static_cast<char>(code >> 8), static_cast<char>(code), 0};
        return text;
    }
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "0x%08X", code);
    return buffer;
}

bool refParseFourCC(const std::string& text, uint32_t& code)
{
    if (text.size() == 4) {
        code = (uint32_t(uint8_t(text[0])) << 24) | (uint32_t(uint8_t(text[1])) << 16) |
               (uint32_t(uint8_t(text[2])) << 8) | uint32_t(uint8_t(text[3]));
        return true;
    }
    return parseU32(text, code);
}

bool refParseResult(const std::string& text, int32_t& result)
{
    for (const NamedResult& r : kResults) {
        if (text == r.name) {
            result = r.value;
            return true;
        }
    }
    uint32_t u = 0;
    if (parseU32(text, u)) {
        result = static_cast<int32_t>(u);
        return true;
    }
    if (!text.empty() && text[0] == '-') {
        errno = 0;
        char* end = nullptr;
        const long long v = std::strtoll(text.c_str(), &end, 10);
        if (errno == 0 && end != text.c_str() && *end == '\0' && v >= INT32_MIN) {
            result = static_cast<int32_t>(v);
            return true;
        }
    }
    return false;
}

std::string refResultText(int32_t result)
{
    for (const NamedResult& r : kResults) {
        if (r.value == result)
            return r.name;
    }
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "0x%08X", static_cast<uint32_t>(result));
    return buffer;
}

const char* refVariantTypeName(RefVariantType type)
{
    const uint32_t index = static_cast<uint32_t>(type);
    return index < sizeof kVariantNames / sizeof kVariantNames[0] ? kVariantNames[index] : "unknown";
}

bool refParseVariantType(const std::string& text, RefVariantType& type)
{
    for (uint32_t i = 0; i < sizeof kVariantNames / sizeof kVariantNames[0]; ++i) {
        if (text == kVariantNames[i]) {
            type = static_cast<RefVariantType>(i);
            return true;
        }
    }
    if (text == "safearray") {
        type = RefVariantType::SafeArray;
        return true;
    }
    return false;
}

uint32_t refScaleDivisor(RefResolutionScale scale)
{
    switch (scale) {
    case RefResolutionScale::Full:
    case RefResolutionScale::FullUpsideDown:
        return 1;
    case RefResolutionScale::Half:
    case RefResolutionScale::HalfUpsideDown:
        return 2;
    case RefResolutionScale::Quarter:
    case RefResolutionScale::QuarterUpsideDown:
        return 4;
    case RefResolutionScale::Eighth:
    case RefResolutionScale::EighthUpsideDown:
        return 8;
    }
    return 0;
}

bool refScaleIsUpsideDown(RefResolutionScale scale)
{
    return scale == RefResolutionScale::FullUpsideDown || scale == RefResolutionScale::HalfUpsideDown ||
           scale == RefResolutionScale::QuarterUpsideDown || scale == RefResolutionScale::EighthUpsideDown;
}

std::string refScaleName(RefResolutionScale scale)
{
    for (const NamedScale& s : kScales) {
        if (s.scale == scale)
            return s.name;
    }
    return refFourCCText(static_cast<uint32_t>(scale));
}

bool refParseScale(const std::string& text, RefResolutionScale& scale)
{
    for (const NamedScale& s : kScales) {
        if (text == s.name) {
            scale = s.scale;
            return true;
        }
    }
    uint32_t code = 0;
    if (!refParseFourCC(text, code))
        return false;
    scale = static_cast<RefResolutionScale>(code);
    return true;
}

RefVariantType refClipAttributeType(uint32_t id)
{
    switch (id) {
    case RefClipAttr::ColorScienceGen:
    case RefClipAttr::ToneCurveVideoBlackLevel:
    case RefClipAttr::HighlightRecovery:
    case RefClipAttr::AnalogGainIsConstant:
    case RefClipAttr::EmbeddedPost3DLUTSize:
    case RefClipAttr::SidecarPost3DLUTSize:
    case RefClipAttr::GamutCompressionEnable:
        return RefVariantType::U16;
    case RefClipAttr::Gamma:
    case RefClipAttr::Gamut:
    case RefClipAttr::Post3DLUTMode:
    case RefClipAttr::EmbeddedPost3DLUTName:
    case RefClipAttr::EmbeddedPost3DLUTTitle:
    case RefClipAttr::SidecarPost3DLUTName:
    case RefClipAttr::SidecarPost3DLUTTitle:
        return RefVariantType::String;
    case RefClipAttr::ToneCurveContrast:
    case RefClipAttr::ToneCurveSaturation:
    case RefClipAttr::ToneCurveMidpoint:
    case RefClipAttr::ToneCurveHighlights:
    case RefClipAttr::ToneCurveShadows:
    case RefClipAttr::ToneCurveBlackLevel:
    case RefClipAttr::ToneCurveWhiteLevel:
    case RefClipAttr::AnalogGain:
    case RefClipAttr::EmbeddedPost3DLUTData:
    case RefClipAttr::SidecarPost3DLUTData:
        return RefVariantType::Float32;
    default:
        return RefVariantType::Empty;
    }
}

RefVariantType refFrameAttributeType(uint32_t id)
{
    switch (id) {
    case RefFrameAttr::WhiteBalanceKelvin:
    case RefFrameAttr::ISO:
        return RefVariantType::U32;
    case RefFrameAttr::WhiteBalanceTint:
        return RefVariantType::S16;
    case RefFrameAttr::Exposure:
    case RefFrameAttr::AnalogGain:
        return RefVariantType::Float32;
    default:
        return RefVariantType::Empty;
    }
}

}  // namespace twref
