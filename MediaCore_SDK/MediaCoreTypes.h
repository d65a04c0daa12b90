#pragma once
// Base types and constants of the MediaCore host interface, Linux x86-64 forms.
//
// Records that cross the host border are byte packed unless a comment says
// otherwise; layouts are pinned by the static_asserts at the end of each header,
// so a change that moves one byte does not compile.

#include <cstddef>
#include <cstdint>

typedef int8_t csSDK_int8;
typedef uint8_t csSDK_uint8;
typedef int16_t csSDK_int16;
typedef uint16_t csSDK_uint16;
typedef int32_t csSDK_int32;
typedef uint32_t csSDK_uint32;
typedef int64_t csSDK_int64;
typedef uint64_t csSDK_uint64;
typedef csSDK_uint64 csSDK_size_t;

typedef csSDK_int64 prInt64;
typedef csSDK_int32 prBool;
typedef csSDK_uint8 prUTF8Char;
// 16 bits on every platform; never wchar_t, which is 4 bytes on Linux.
typedef uint16_t prUTF16Char;

typedef prInt64 PrTime;
typedef char* PrMemoryPtr;
typedef PrMemoryPtr* PrMemoryHandle;
typedef csSDK_uint32 PrFourCC;
typedef csSDK_uint32 prColor;
typedef csSDK_uint32 prPixelAspectRatio;
typedef csSDK_int32 prFieldType;
typedef csSDK_int32 PrTimelineID;
typedef csSDK_int32 PrClipID;
typedef csSDK_uint32 PrSDKAlphaType;
typedef csSDK_int32 prMALError;
typedef csSDK_int32 prSuiteError;
typedef csSDK_int32 PREMPLUGENTRY;
typedef prInt64 PrAudioSample;
typedef csSDK_int32 PrSDKColorSpaceType;
typedef void* imFileRef;

typedef int SPErr;
// The return of SPBasicSuite::IsEqual. It travels in a register; callers test
// only the low byte, which reads the same whatever width the host chose.
typedef unsigned char SPBoolean;

constexpr prBool kPrTrue = 1;
constexpr prBool kPrFalse = 0;

// The invalid file reference: (void*)-1.
inline imFileRef imInvalidHandleValue() { return reinterpret_cast<imFileRef>(static_cast<intptr_t>(-1)); }

#pragma pack(push, 1)

struct PrRatioTime {
    prInt64 mValue;
    prInt64 mScale;
};

// Opaque host string; created, read and disposed only through the String suite.
struct PrSDKString {
    csSDK_int64 opaque[2];
};

struct PrSDKGuid {
    csSDK_int64 opaque[2];
};
typedef PrSDKGuid PrSDKColorSpaceID;
typedef PrSDKGuid PrSDKLUTID;

// Linux form: four 32-bit values, left, top, right, bottom.
struct prRect {
    csSDK_int32 left;
    csSDK_int32 top;
    csSDK_int32 right;
    csSDK_int32 bottom;
};

struct prPoint {
    csSDK_int32 x;
    csSDK_int32 y;
};

struct prFPoint64 {
    double x;
    double y;
};

struct prFloatRect {
    float left;
    float top;
    float right;
    float bottom;
};

struct prDateStamp {
    csSDK_int32 day;
    csSDK_int32 month;
    csSDK_int32 year;
    csSDK_int32 hours;
    csSDK_int32 minutes;
    double seconds;
};

// NUL-terminated GUID text, 8-4-4-4-12 hex digits with dashes.
struct prPluginID {
    char mGUID[37];
};

struct TDB_TimeRecord {
    csSDK_int32 value;
    csSDK_uint32 scale;
    csSDK_int32 sampleSize;
};

// The host's frame object. Plug-ins hold a PPixHand and go through the PPix suite.
struct PPix {
    prRect bounds;
    csSDK_int32 rowbytes;
    csSDK_int32 bitsperpixel;
    void* pix;
    void* reserved[32];
};

#pragma pack(pop)

typedef PPix* PPixPtr;
typedef PPix** PPixHand;

// An all-zero identifier marks "no colour space" / "no LUT".
constexpr PrSDKColorSpaceID kPrSDKColorSpaceID_Invalid = {{0, 0}};
constexpr PrSDKLUTID kPrSDKLUTID_Invalid = {{0, 0}};

// ---- Suite results: negative is a failure, zero or positive a success. ----
constexpr prSuiteError suiteError_NoError = 0;
constexpr prSuiteError suiteError_Fail = static_cast<prSuiteError>(-2147483647 - 1);  // 0x80000000
constexpr prSuiteError suiteError_InvalidParms = suiteError_Fail + 1;                 // 0x80000001
constexpr prSuiteError suiteError_OutOfMemory = suiteError_Fail + 2;                  // 0x80000002
constexpr prSuiteError suiteError_InvalidCall = suiteError_Fail + 3;                  // 0x80000003
constexpr prSuiteError suiteError_NotImplemented = suiteError_Fail + 4;               // 0x80000004
constexpr prSuiteError suiteError_IDNotValid = suiteError_Fail + 5;                   // 0x80000005
constexpr prSuiteError suiteError_RenderPending = 0x00010000;
constexpr prSuiteError suiteError_RenderedFrameNotFound = 0x00010001;
constexpr prSuiteError suiteError_RenderedFrameCanceled = 0x00010002;
constexpr prSuiteError suiteError_RenderInvalidPixelFormat = suiteError_Fail + 0x00010000;     // 0x80010000
constexpr prSuiteError suiteError_RenderCompletionProcNotSet = suiteError_Fail + 0x00010001;   // 0x80010001
constexpr prSuiteError suiteError_TimeRoundedAudioRate = 0x00020000;
constexpr prSuiteError suiteError_StringNotFound = suiteError_Fail + 0x000A0000;               // 0x800A0000
constexpr prSuiteError suiteError_StringBufferTooSmall = suiteError_Fail + 0x000A0001;         // 0x800A0001

// ---- SweetPea errors: four-character codes, first character in the top byte. ----
constexpr SPErr kSPNoError = 0;
constexpr SPErr kSPUnimplementedError = 0x21494D50;  // '!IMP'
constexpr SPErr kSPSuiteNotFoundError = 0x53214664;  // 'S!Fd'
constexpr SPErr kSPBadParameterError = 0x5061726D;   // 'Parm'

// ---- Enumerations used in records (all 4 bytes wide). ----
enum imRenderIntent : csSDK_int32 {
    imRenderIntent_Unknown = -1,
    imRenderIntent_Export = 0,
    imRenderIntent_Stopped = 1,
    imRenderIntent_Scrubbing = 2,
    imRenderIntent_Preroll = 3,
    imRenderIntent_Playing = 4,
    imRenderIntent_SpeculativePrefetch = 5,
    imRenderIntent_Thumbnail = 6,
    imRenderIntent_Analysis = 7,
    imRenderIntent_ExportPreview = 8,
    imRenderIntent_ExportProxies = 9
};

enum PrRenderQuality : csSDK_uint32 {
    kPrRenderQuality_Draft = 0,
    kPrRenderQuality_Low = 1,
    kPrRenderQuality_Medium = 2,
    kPrRenderQuality_High = 3,
    kPrRenderQuality_Max = 4,
    kPrRenderQuality_Invalid = 0xFFFFFFFFu
};

enum PrVideoFrameRates : csSDK_uint32 {
    kVideoFrameRate_24Drop = 1,
    kVideoFrameRate_24 = 2,
    kVideoFrameRate_PAL = 3,
    kVideoFrameRate_NTSC = 4,
    kVideoFrameRate_30 = 5,
    kVideoFrameRate_PAL_HD = 6,
    kVideoFrameRate_NTSC_HD = 7,
    kVideoFrameRate_60 = 8,
    kVideoFrameRate_Max = 0xFFFFFFFFu
};

// Informational only: audio always travels as 32-bit float.
enum PrAudioSampleType : csSDK_uint32 {
    kPrAudioSampleType_8BitInt = 1,
    kPrAudioSampleType_8BitTwosInt = 2,
    kPrAudioSampleType_16BitInt = 3,
    kPrAudioSampleType_24BitInt = 4,
    kPrAudioSampleType_32BitInt = 5,
    kPrAudioSampleType_32BitFloat = 6,
    kPrAudioSampleType_64BitFloat = 7,
    kPrAudioSampleType_16BitIntBigEndian = 8,
    kPrAudioSampleType_24BitIntBigEndian = 9,
    kPrAudioSampleType_32BitIntBigEndian = 10,
    kPrAudioSampleType_32BitFloatBigEndian = 11,
    kPrAudioSampleType_Compressed = 12,
    kPrAudioSampleType_Packed = 13,
    kPrAudioSampleType_Other = 14,
    kPrAudioSampleType_Any = 15,
    kPrAudioSampleType_AudioPeakData = 16,
    kPrAudioSampleType_Max = 0xFFFFFFFFu
};

constexpr int kMaxAudioChannelCount = 32;

enum PrAudioChannelType : csSDK_int32 {
    kPrAudioChannelType_Mono = 1,
    kPrAudioChannelType_Stereo = 2,
    kPrAudioChannelType_51 = 3,
    kPrAudioChannelType_MaxChannel = 4
};

enum PrAudioChannelLabel : csSDK_int32 {
    kPrAudioChannelLabel_Discrete = 0,
    kPrAudioChannelLabel_FrontLeft = 100,
    kPrAudioChannelLabel_FrontRight = 101,
    kPrAudioChannelLabel_FrontCenter = 102,
    kPrAudioChannelLabel_LowFrequency = 103,
    kPrAudioChannelLabel_BackLeft = 104,
    kPrAudioChannelLabel_BackRight = 105,
    kPrAudioChannelLabel_BackCenter = 106,
    kPrAudioChannelLabel_FrontLeftOfCenter = 107,
    kPrAudioChannelLabel_FrontRightOfCenter = 108,
    kPrAudioChannelLabel_SideLeft = 109,
    kPrAudioChannelLabel_SideRight = 110,
    kPrAudioChannelLabel_TopCenter = 111,
    kPrAudioChannelLabel_TopFrontLeft = 112,
    kPrAudioChannelLabel_TopFrontRight = 113,
    kPrAudioChannelLabel_TopFrontCenter = 114,
    kPrAudioChannelLabel_TopBackLeft = 115,
    kPrAudioChannelLabel_TopBackRight = 116,
    kPrAudioChannelLabel_TopBackCenter = 117,
    kPrAudioChannelLabel_FrontLeftWide = 118,
    kPrAudioChannelLabel_FrontRightWide = 119,
    kPrAudioChannelLabel_LeftHeight = 127,
    kPrAudioChannelLabel_RightHeight = 128,
    kPrAudioChannelLabel_RearSurroundLeft = 129,
    kPrAudioChannelLabel_RearSurroundRight = 130,
    kPrAudioChannelLabel_LFE2 = 131,
    kPrAudioChannelLabel_LeftTotal = 132,
    kPrAudioChannelLabel_RightTotal = 133,
    kPrAudioChannelLabel_Ambisonic_W = 134,
    kPrAudioChannelLabel_Ambisonic_X = 135,
    kPrAudioChannelLabel_Ambisonic_Y = 136,
    kPrAudioChannelLabel_Ambisonic_Z = 137,
    kPrAudioChannelLabel_BottomFrontLeft = 138,
    kPrAudioChannelLabel_BottomFrontCenter = 139,
    kPrAudioChannelLabel_BottomFrontRight = 140,
    kPrAudioChannelLabel_ProximityLeft = 141,
    kPrAudioChannelLabel_ProximityRight = 142
};

// PrSDKAlphaType values (stored in a char inside imImageInfoRec).
enum : csSDK_uint32 {
    alphaUnknown = 0,
    alphaStraight = 1,
    alphaBlackMatte = 2,
    alphaWhiteMatte = 3,
    alphaArbitrary = 4,
    alphaNone = 5,
    alphaOpaque = 6,
    alphaIgnore = 7
};

// prFieldType values.
enum : csSDK_int32 {
    prFieldsInvalid = -1,
    prFieldsNone = 0,
    prFieldsUpperFirst = 1,
    prFieldsLowerFirst = 2,
    prFieldsUnknown = 3,
    prFieldsAny = 4
};

// PrSDKColorSpaceType values.
enum : csSDK_int32 {
    kPrSDKColorSpaceType_Undefined = 0,
    kPrSDKColorSpaceType_ICC = 1,
    kPrSDKColorSpaceType_LUT = 2,
    kPrSDKColorSpaceType_SEITags = 3,
    kPrSDKColorSpaceType_MXFTags = 4,
    kPrSDKColorSpaceType_Predefined = 5
};

enum PrFileOpenAccess : csSDK_uint32 {
    kPrOpenFileAccess_ReadOnly = 0,
    kPrOpenFileAccess_ReadWrite = 1,
    kPrOpenFileAccess_ForceEnumSize = 0xFFFFFFFFu
};

enum PrPPixBufferAccess : csSDK_int32 {
    PrPPixBufferAccess_ReadOnly = 0,
    PrPPixBufferAccess_WriteOnly = 1,
    PrPPixBufferAccess_ReadWrite = 2
};

enum PrIVProjectionType : csSDK_int32 {
    kPrIVProjectionNone = 0,
    kPrIVProjectionEquirectangular = 1
};

enum PrIVFrameLayout : csSDK_int32 {
    kPrIVFrameLayoutMonoscopic = 0,
    kPrIVFrameLayoutStereoscopicOverUnder = 1,
    kPrIVFrameLayoutStereoscopicSideBySide = 2
};

static_assert(sizeof(PrRatioTime) == 16, "PrRatioTime");
static_assert(sizeof(PrSDKString) == 16 && alignof(PrSDKString) == 1, "PrSDKString");
static_assert(sizeof(PrSDKGuid) == 16 && alignof(PrSDKGuid) == 1, "PrSDKGuid");
static_assert(sizeof(prRect) == 16, "prRect");
static_assert(offsetof(prRect, left) == 0 && offsetof(prRect, top) == 4 && offsetof(prRect, right) == 8 &&
                  offsetof(prRect, bottom) == 12,
              "prRect order");
static_assert(sizeof(prPoint) == 8 && sizeof(prFPoint64) == 16 && sizeof(prFloatRect) == 16, "points");
static_assert(sizeof(prDateStamp) == 28 && offsetof(prDateStamp, seconds) == 20, "prDateStamp");
static_assert(sizeof(prPluginID) == 37, "prPluginID");
static_assert(sizeof(TDB_TimeRecord) == 12, "TDB_TimeRecord");
static_assert(sizeof(PPix) == 288 && offsetof(PPix, rowbytes) == 16 && offsetof(PPix, bitsperpixel) == 20 &&
                  offsetof(PPix, pix) == 24 && offsetof(PPix, reserved) == 32,
              "PPix");
static_assert(sizeof(imRenderIntent) == 4 && sizeof(PrRenderQuality) == 4 && sizeof(PrVideoFrameRates) == 4 &&
                  sizeof(PrAudioSampleType) == 4 && sizeof(PrAudioChannelLabel) == 4 &&
                  sizeof(PrFileOpenAccess) == 4 && sizeof(PrPPixBufferAccess) == 4 &&
                  sizeof(PrIVProjectionType) == 4 && sizeof(PrIVFrameLayout) == 4,
              "enums in records are 4 bytes");
static_assert(suiteError_Fail == static_cast<prSuiteError>(0x80000000u) &&
                  suiteError_RenderInvalidPixelFormat == static_cast<prSuiteError>(0x80010000u) &&
                  suiteError_StringBufferTooSmall == static_cast<prSuiteError>(0x800A0001u),
              "suite error values");
