#pragma once
// Plain enumerations of the reference clip format. Their numeric values are the
// decoder interface's published values (four-character codes, variant type
// numbers, result codes), so the library maps them by value with a cast and
// this folder needs none of the interface declarations.

#include <cstdint>
#include <string>

namespace twref {

// Four-character code as the interface writes it: 'gamt' -> 0x67616D74.
constexpr uint32_t refFourCC(const char (&c)[5])
{
    return (uint32_t(uint8_t(c[0])) << 24) | (uint32_t(uint8_t(c[1])) << 16) |
           (uint32_t(uint8_t(c[2])) << 8) | uint32_t(uint8_t(c[3]));
}
// "gamt" for 0x67616D74; printable codes only, else "0x67616D74".
std::string refFourCCText(uint32_t code);
// Accepts "gamt" (exactly four characters), "0x67616D74" or a decimal number.
bool refParseFourCC(const std::string& text, uint32_t& code);

// Result codes (Linux values of the interface).
namespace RefResult {
constexpr int32_t Ok = 0;
constexpr int32_t False = 1;
constexpr int32_t Unexpected = int32_t(0x8000FFFFu);
constexpr int32_t NotImpl = int32_t(0x80000001u);
constexpr int32_t OutOfMemory = int32_t(0x80000002u);
constexpr int32_t InvalidArg = int32_t(0x80000003u);
constexpr int32_t NoInterface = int32_t(0x80000004u);
constexpr int32_t Pointer = int32_t(0x80000005u);
constexpr int32_t Handle = int32_t(0x80000006u);
constexpr int32_t Abort = int32_t(0x80000007u);
constexpr int32_t Fail = int32_t(0x80000008u);
constexpr int32_t AccessDenied = int32_t(0x80000009u);
}  // namespace RefResult
// "E_FAIL", "S_OK"... , "0x80000008", "-2147483640" or "2147483656".
bool refParseResult(const std::string& text, int32_t& result);
// The symbolic name when there is one, else "0x%08X".
std::string refResultText(int32_t result);

// Variant type numbers (Linux numbering: SafeArray 8, Float64 9).
enum class RefVariantType : uint32_t {
    Empty = 0,
    U8 = 1,
    S16 = 2,
    U16 = 3,
    S32 = 4,
    U32 = 5,
    Float32 = 6,
    String = 7,
    SafeArray = 8,
    Float64 = 9,
};
// "empty", "u8", "s16", "u16", "s32", "u32", "float32", "string", "array", "float64".
const char* refVariantTypeName(RefVariantType type);
bool refParseVariantType(const std::string& text, RefVariantType& type);

enum class RefResourceFormat : uint32_t {
    RGBAU8 = 0x72676261,        // 'rgba'
    BGRAU8 = 0x62677261,        // 'bgra'
    RGBU16 = 0x3136696C,        // '16il'
    RGBAU16 = 0x3136616C,       // '16al'
    BGRAU16 = 0x31366C61,       // '16la'
    RGBU16Planar = 0x3136706C,  // '16pl'
    RGBF32 = 0x66333273,        // 'f32s'
    RGBAF32 = 0x6633326C,       // 'f32l'
    BGRAF32 = 0x66333261,       // 'f32a'
    RGBF32Planar = 0x66333270,  // 'f32p'
    RGBF16 = 0x66313673,        // 'f16s'
    RGBAF16 = 0x6631366C,       // 'f16l'
    BGRAF16 = 0x66313661,       // 'f16a'
    RGBF16Planar = 0x66313670,  // 'f16p'
};

enum class RefResolutionScale : uint32_t {
    Full = 0x66756C6C,              // 'full'
    Half = 0x68616C66,              // 'half'
    Quarter = 0x71727472,           // 'qrtr'
    Eighth = 0x65697468,            // 'eith'
    FullUpsideDown = 0x6C6C7566,    // 'lluf'
    HalfUpsideDown = 0x666C6168,    // 'flah'
    QuarterUpsideDown = 0x72747271, // 'rtrq'
    EighthUpsideDown = 0x68746965,  // 'htie'
};
// Divisor of a scale (1, 2, 4, 8), 0 for a code that is no scale.
uint32_t refScaleDivisor(RefResolutionScale scale);
bool refScaleIsUpsideDown(RefResolutionScale scale);
// "full", "half", "quarter", "eighth", "full_upside_down"... ; any other code as refFourCCText.
std::string refScaleName(RefResolutionScale scale);
// The names above, a four-character code or a number.
bool refParseScale(const std::string& text, RefResolutionScale& scale);

// Clip processing attribute ids.
namespace RefClipAttr {
constexpr uint32_t ColorScienceGen = refFourCC("csgn");
constexpr uint32_t Gamma = refFourCC("gama");
constexpr uint32_t Gamut = refFourCC("gamt");
constexpr uint32_t ToneCurveContrast = refFourCC("tcon");
constexpr uint32_t ToneCurveSaturation = refFourCC("tsat");
constexpr uint32_t ToneCurveMidpoint = refFourCC("tmid");
constexpr uint32_t ToneCurveHighlights = refFourCC("thih");
constexpr uint32_t ToneCurveShadows = refFourCC("tsha");
constexpr uint32_t ToneCurveVideoBlackLevel = refFourCC("tvbl");
constexpr uint32_t ToneCurveBlackLevel = refFourCC("tblk");
constexpr uint32_t ToneCurveWhiteLevel = refFourCC("twit");
constexpr uint32_t HighlightRecovery = refFourCC("hlry");
constexpr uint32_t AnalogGainIsConstant = refFourCC("agic");
constexpr uint32_t AnalogGain = refFourCC("gain");
constexpr uint32_t Post3DLUTMode = refFourCC("lutm");
constexpr uint32_t EmbeddedPost3DLUTName = refFourCC("emln");
constexpr uint32_t EmbeddedPost3DLUTTitle = refFourCC("emlt");
constexpr uint32_t EmbeddedPost3DLUTSize = refFourCC("emls");
constexpr uint32_t EmbeddedPost3DLUTData = refFourCC("emld");
constexpr uint32_t SidecarPost3DLUTName = refFourCC("scln");
constexpr uint32_t SidecarPost3DLUTTitle = refFourCC("sclt");
constexpr uint32_t SidecarPost3DLUTSize = refFourCC("scls");
constexpr uint32_t SidecarPost3DLUTData = refFourCC("scld");
constexpr uint32_t GamutCompressionEnable = refFourCC("gace");
}  // namespace RefClipAttr

// Frame processing attribute ids.
namespace RefFrameAttr {
constexpr uint32_t WhiteBalanceKelvin = refFourCC("wbkv");
constexpr uint32_t WhiteBalanceTint = refFourCC("wbtn");
constexpr uint32_t Exposure = refFourCC("expo");
constexpr uint32_t ISO = refFourCC("fiso");
constexpr uint32_t AnalogGain = refFourCC("agpf");
}  // namespace RefFrameAttr

// The variant type the interface gives an attribute's value (the element type
// for the two LUT data arrays); Empty for an id that is no known attribute.
RefVariantType refClipAttributeType(uint32_t id);
RefVariantType refFrameAttributeType(uint32_t id);

namespace RefGeometry {
constexpr uint32_t FromMetadata = refFourCC("meta");
constexpr uint32_t Disabled = refFourCC("dsbl");
constexpr uint32_t FlipHorizontal = refFourCC("flpx");
constexpr uint32_t FlipVertical = refFourCC("flpy");
constexpr uint32_t FlipBoth = refFourCC("flpb");
}  // namespace RefGeometry

constexpr uint32_t kRefAudioFormatPCMLittleEndian = refFourCC("pcml");

}  // namespace twref
