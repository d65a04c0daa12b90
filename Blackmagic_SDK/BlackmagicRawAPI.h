#pragma once
// Declarations of the RAW decoder library's published binary interface, Linux
// x86-64, interface generation 5.0. Written from the published facts only; the
// vendor's library must be usable as a drop-in, so every slot order, IID byte and
// type layout here is load-bearing:
//  - IIDs are 16 bytes in the order the GUID is written as text, passed by value.
//  - AddRef/Release return a 64-bit unsigned long; flags are 1-byte bool.
//  - Strings are plain UTF-8 C strings; strings handed out belong to the library.
//  - Most interfaces end with a protected virtual destructor (two trailing vtable
//    entries); IUnknown has none, and neither do IBlackmagicRawPipelineDevice
//    and IBlackmagicRawReadJobHints.

#include <cstddef>
#include <cstdint>

// ---------------------------------------------------------------------------
// COM-style base types of the Linux build
// ---------------------------------------------------------------------------

typedef int HRESULT;
typedef unsigned long ULONG;
typedef void* LPVOID;

struct CFUUIDBytes {
    uint8_t byte0, byte1, byte2, byte3, byte4, byte5, byte6, byte7;
    uint8_t byte8, byte9, byte10, byte11, byte12, byte13, byte14, byte15;
};
// Passed by value: the 16 bytes travel in two registers.
typedef CFUUIDBytes REFIID;

#ifndef STDMETHODCALLTYPE
#define STDMETHODCALLTYPE
#endif

#define S_OK ((HRESULT)0x00000000)
#define S_FALSE ((HRESULT)0x00000001)
#define E_UNEXPECTED ((HRESULT)0x8000FFFF)
#define E_NOTIMPL ((HRESULT)0x80000001)
#define E_OUTOFMEMORY ((HRESULT)0x80000002)
#define E_INVALIDARG ((HRESULT)0x80000003)
#define E_NOINTERFACE ((HRESULT)0x80000004)
#define E_POINTER ((HRESULT)0x80000005)
#define E_HANDLE ((HRESULT)0x80000006)
#define E_ABORT ((HRESULT)0x80000007)
#define E_FAIL ((HRESULT)0x80000008)
#define E_ACCESSDENIED ((HRESULT)0x80000009)

#define SUCCEEDED(hr) (((HRESULT)(hr)) >= 0)
#define FAILED(hr) (((HRESULT)(hr)) < 0)
#define HRESULT_CODE(hr) ((hr) & 0xFFFF)
#define HRESULT_FACILITY(hr) (((hr) >> 16) & 0x1FFF)
#define HRESULT_SEVERITY(hr) (((hr) >> 31) & 0x1)
#define MAKE_HRESULT(sev, fac, code) \
    ((HRESULT)(((unsigned long)(sev) << 31) | ((unsigned long)(fac) << 16) | ((unsigned long)(code))))

class IUnknown {
public:
    virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, LPVOID* ppv) = 0;
    virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
    virtual ULONG STDMETHODCALLTYPE Release() = 0;
};

// ---------------------------------------------------------------------------
// Interface identifiers
// ---------------------------------------------------------------------------

static constexpr REFIID IID_IUnknown = {0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46};
static constexpr REFIID IID_IBlackmagicRaw = {0x55, 0x8A, 0xBA, 0x39, 0xB3, 0x44, 0x4E, 0x9B, 0xA4, 0x84, 0x11, 0x6C, 0xF2, 0xA4, 0xB5, 0xC6};
static constexpr REFIID IID_IBlackmagicRawFactory = {0x78, 0xDE, 0xEB, 0x84, 0x98, 0xC9, 0x43, 0x4A, 0xB7, 0xE5, 0x7A, 0xAC, 0xC2, 0x98, 0x83, 0x99};
static constexpr REFIID IID_IBlackmagicRawPipelineIterator = {0x05, 0x1E, 0xD7, 0x92, 0x3D, 0x9D, 0x4E, 0xD0, 0xBB, 0x1F, 0x38, 0x73, 0xE0, 0x87, 0x73, 0xCB};
static constexpr REFIID IID_IBlackmagicRawPipelineDeviceIterator = {0x32, 0xD3, 0x38, 0x5F, 0x06, 0xEE, 0x42, 0x60, 0x82, 0xEB, 0x2B, 0xAB, 0xFF, 0xFA, 0xCE, 0xD8};
static constexpr REFIID IID_IBlackmagicRawOpenGLInteropHelper = {0x86, 0x44, 0x4C, 0x8A, 0x43, 0x98, 0x43, 0x64, 0x91, 0x66, 0x7D, 0x10, 0xF4, 0x1C, 0x31, 0x5E};
static constexpr REFIID IID_IBlackmagicRawPipelineDevice = {0x5C, 0x7B, 0x0A, 0x9B, 0xCF, 0x2C, 0x4A, 0xB3, 0x84, 0xC1, 0xE1, 0xC7, 0x90, 0x23, 0x60, 0xC8};
static constexpr REFIID IID_IBlackmagicRawToneCurve = {0x7E, 0x40, 0xC1, 0x3D, 0x35, 0x75, 0x46, 0xB5, 0xB2, 0xB7, 0x85, 0xDA, 0xE1, 0xEE, 0xFD, 0x77};
static constexpr REFIID IID_IBlackmagicRawConfiguration = {0x26, 0x7E, 0x98, 0x66, 0xFB, 0x40, 0x4B, 0xFB, 0x8B, 0xF8, 0x96, 0xEA, 0x3F, 0x7D, 0xA3, 0x6E};
static constexpr REFIID IID_IBlackmagicRawConfigurationEx = {0xAC, 0xE9, 0x07, 0x8F, 0xAB, 0xA0, 0x4B, 0x26, 0xA9, 0x54, 0xED, 0xA1, 0x08, 0xDA, 0xDA, 0x5A};
static constexpr REFIID IID_IBlackmagicRawClipGeometry = {0x22, 0x71, 0x71, 0x96, 0x36, 0xAE, 0x4B, 0x8A, 0xB5, 0xCC, 0x24, 0x29, 0x2F, 0x96, 0x60, 0xF0};
static constexpr REFIID IID_IBlackmagicRawResourceManager = {0x3C, 0x5C, 0x3C, 0x4A, 0x81, 0x2C, 0x4A, 0xF0, 0x99, 0xF0, 0x06, 0xC6, 0xE1, 0x97, 0xC1, 0x89};
static constexpr REFIID IID_IBlackmagicRawMetadataIterator = {0xF8, 0x5A, 0xE7, 0x8D, 0x5D, 0xC2, 0x40, 0xBC, 0x8C, 0x1D, 0xD0, 0xD8, 0x05, 0x52, 0x3A, 0xDA};
static constexpr REFIID IID_IBlackmagicRawClipProcessingAttributes = {0x1F, 0x53, 0xC8, 0xAE, 0x22, 0x95, 0x4C, 0x8E, 0xB1, 0x7F, 0x59, 0x31, 0xF4, 0xF1, 0x46, 0xAC};
static constexpr REFIID IID_IBlackmagicRawFrameProcessingAttributes = {0x5F, 0x7C, 0x5C, 0x0F, 0x71, 0x38, 0x44, 0x5A, 0x9D, 0x0D, 0x61, 0x11, 0xB6, 0x40, 0x9D, 0x17};
static constexpr REFIID IID_IBlackmagicRawPost3DLUT = {0x86, 0x05, 0x2B, 0xC4, 0x02, 0x31, 0x48, 0xC6, 0xB3, 0xC8, 0xC7, 0x71, 0x11, 0x2A, 0xAD, 0x68};
static constexpr REFIID IID_IBlackmagicRawProcessedImage = {0xD8, 0x7A, 0x0F, 0x72, 0xA8, 0x83, 0x42, 0xBB, 0x84, 0x88, 0x00, 0x89, 0x41, 0x1C, 0x50, 0x35};
static constexpr REFIID IID_IBlackmagicRawJob = {0x34, 0xC0, 0x5A, 0xCF, 0x71, 0x18, 0x45, 0xEA, 0x8B, 0x71, 0x88, 0x7E, 0x05, 0x15, 0x39, 0x5D};
static constexpr REFIID IID_IBlackmagicRawReadJobHints = {0x10, 0x69, 0xF9, 0x9C, 0xA4, 0xE2, 0x41, 0x5A, 0x91, 0xC4, 0x5E, 0x0C, 0xE0, 0xC6, 0xAF, 0x77};
static constexpr REFIID IID_IBlackmagicRawCallback = {0xE9, 0xF9, 0x8F, 0xAC, 0x33, 0xDB, 0x4A, 0x65, 0xBB, 0x94, 0x8A, 0x82, 0xB0, 0x27, 0xAE, 0xD0};
static constexpr REFIID IID_IBlackmagicRawClipAudio = {0x76, 0xD4, 0xAC, 0xED, 0xE0, 0xD6, 0x45, 0xBB, 0xB5, 0x47, 0x56, 0xB7, 0x43, 0x5B, 0x2A, 0x1D};
static constexpr REFIID IID_IBlackmagicRawClipAccelerometerMotion = {0x98, 0x3A, 0xAC, 0xBB, 0xF4, 0x69, 0x40, 0xC9, 0xAA, 0x81, 0x34, 0x5B, 0x0B, 0x7C, 0xCD, 0x05};
static constexpr REFIID IID_IBlackmagicRawClipGyroscopeMotion = {0x00, 0x54, 0x3A, 0x2C, 0xFD, 0xED, 0x4C, 0x79, 0xA6, 0x0C, 0xA4, 0x60, 0x41, 0x5F, 0x02, 0x96};
static constexpr REFIID IID_IBlackmagicRawClipPDAFData = {0xAA, 0xE7, 0x15, 0x34, 0xF9, 0x51, 0x40, 0x62, 0xB6, 0xA9, 0x69, 0xB8, 0x80, 0x8C, 0xD2, 0x67};
static constexpr REFIID IID_IBlackmagicRawFrame = {0xA5, 0x00, 0xB2, 0x53, 0x18, 0x08, 0x4E, 0xF2, 0x86, 0x92, 0xD2, 0x3C, 0x69, 0x24, 0x04, 0xEA};
static constexpr REFIID IID_IBlackmagicRawFrameEx = {0xF8, 0xC6, 0xC3, 0x74, 0xD7, 0xFB, 0x4B, 0xD3, 0xAD, 0x0B, 0xC5, 0x33, 0x46, 0x4F, 0xF4, 0x50};
static constexpr REFIID IID_IBlackmagicRawFrameMultiVideo = {0x96, 0xAE, 0x96, 0x2B, 0x30, 0xA4, 0x49, 0x04, 0x81, 0x3D, 0xA9, 0xEF, 0xFE, 0x59, 0x53, 0xC2};
static constexpr REFIID IID_IBlackmagicRawManualDecoderFlow1 = {0x27, 0x88, 0x15, 0xA6, 0xA3, 0xC1, 0x47, 0xC7, 0xA0, 0xA6, 0x67, 0x54, 0xDE, 0xAE, 0x5E, 0x7A};
static constexpr REFIID IID_IBlackmagicRawManualDecoderFlow2 = {0xDB, 0xEC, 0x4C, 0x39, 0xB4, 0xC2, 0x4A, 0x65, 0xAA, 0x8C, 0x2B, 0x3C, 0x7F, 0x47, 0x77, 0xE3};
static constexpr REFIID IID_IBlackmagicRawClip = {0xA2, 0x91, 0x02, 0x03, 0x78, 0x7B, 0x4B, 0xF2, 0xA3, 0x74, 0xB1, 0xA4, 0x59, 0xE2, 0xD3, 0x51};
static constexpr REFIID IID_IBlackmagicRawClipEx = {0xD2, 0x60, 0xC7, 0xD0, 0x93, 0xBD, 0x4D, 0x68, 0xB6, 0x00, 0x93, 0xB4, 0xCA, 0xB7, 0xF8, 0x70};
static constexpr REFIID IID_IBlackmagicRawClipMultiVideo = {0xC6, 0x99, 0xE3, 0xE2, 0x32, 0x68, 0x4E, 0x08, 0x80, 0x37, 0xD5, 0xC4, 0xA2, 0xC5, 0xCE, 0x52};
static constexpr REFIID IID_IBlackmagicRawClipImmersiveVideo = {0x47, 0xD2, 0x87, 0xA7, 0x91, 0x48, 0x46, 0x59, 0xBF, 0xCF, 0xC7, 0x67, 0xA0, 0x89, 0xA2, 0x00};
static constexpr REFIID IID_IBlackmagicRawClipResolutions = {0xC6, 0x3C, 0x29, 0x0F, 0x52, 0x5B, 0x4E, 0xBE, 0xAB, 0x56, 0x87, 0xB0, 0x10, 0xCA, 0xCE, 0x19};

// ---------------------------------------------------------------------------
// Enumerations: every one is a uint32_t; the values live in a companion enum.
// Most values are four-character codes read big-endian.
// ---------------------------------------------------------------------------

typedef uint32_t BlackmagicRawVariantType;
enum _BlackmagicRawVariantType {
    blackmagicRawVariantTypeEmpty = 0,
    blackmagicRawVariantTypeU8 = 1,
    blackmagicRawVariantTypeS16 = 2,
    blackmagicRawVariantTypeU16 = 3,
    blackmagicRawVariantTypeS32 = 4,
    blackmagicRawVariantTypeU32 = 5,
    blackmagicRawVariantTypeFloat32 = 6,
    blackmagicRawVariantTypeString = 7,
    blackmagicRawVariantTypeSafeArray = 8,
    blackmagicRawVariantTypeFloat64 = 9
};

typedef uint32_t BlackmagicRawPipeline;
enum _BlackmagicRawPipeline {
    blackmagicRawPipelineCPU = /* 'cpub' */ 0x63707562,
    blackmagicRawPipelineCUDA = /* 'cuda' */ 0x63756461,
    blackmagicRawPipelineMetal = /* 'metl' */ 0x6D65746C,
    blackmagicRawPipelineOpenCL = /* 'opcl' */ 0x6F70636C
};

typedef uint32_t BlackmagicRawResourceType;
enum _BlackmagicRawResourceType {
    blackmagicRawResourceTypeBufferCPU = /* 'cpub' */ 0x63707562,
    blackmagicRawResourceTypeBufferMetal = /* 'metb' */ 0x6D657462,
    blackmagicRawResourceTypeBufferCUDA = /* 'cudb' */ 0x63756462,
    blackmagicRawResourceTypeBufferOpenCL = /* 'oclb' */ 0x6F636C62
};

typedef uint32_t BlackmagicRawResourceUsage;
enum _BlackmagicRawResourceUsage {
    blackmagicRawResourceUsageReadCPUWriteCPU = /* 'rcwc' */ 0x72637763,
    blackmagicRawResourceUsageReadGPUWriteGPU = /* 'rgwg' */ 0x72677767,
    blackmagicRawResourceUsageReadGPUWriteCPU = /* 'rgwc' */ 0x72677763,
    blackmagicRawResourceUsageReadCPUWriteGPU = /* 'rcwg' */ 0x72637767
};

typedef uint32_t BlackmagicRawResourceFormat;
enum _BlackmagicRawResourceFormat {
    blackmagicRawResourceFormatRGBAU8 = /* 'rgba' */ 0x72676261,
    blackmagicRawResourceFormatBGRAU8 = /* 'bgra' */ 0x62677261,
    blackmagicRawResourceFormatRGBU16 = /* '16il' */ 0x3136696C,
    blackmagicRawResourceFormatRGBAU16 = /* '16al' */ 0x3136616C,
    blackmagicRawResourceFormatBGRAU16 = /* '16la' */ 0x31366C61,
    blackmagicRawResourceFormatRGBU16Planar = /* '16pl' */ 0x3136706C,
    blackmagicRawResourceFormatRGBF32 = /* 'f32s' */ 0x66333273,
    blackmagicRawResourceFormatRGBAF32 = /* 'f32l' */ 0x6633326C,
    blackmagicRawResourceFormatBGRAF32 = /* 'f32a' */ 0x66333261,
    blackmagicRawResourceFormatRGBF32Planar = /* 'f32p' */ 0x66333270,
    blackmagicRawResourceFormatRGBF16 = /* 'f16s' */ 0x66313673,
    blackmagicRawResourceFormatRGBAF16 = /* 'f16l' */ 0x6631366C,
    blackmagicRawResourceFormatBGRAF16 = /* 'f16a' */ 0x66313661,
    blackmagicRawResourceFormatRGBF16Planar = /* 'f16p' */ 0x66313670
};

typedef uint32_t BlackmagicRawResolutionScale;
enum _BlackmagicRawResolutionScale {
    blackmagicRawResolutionScaleFull = /* 'full' */ 0x66756C6C,
    blackmagicRawResolutionScaleHalf = /* 'half' */ 0x68616C66,
    blackmagicRawResolutionScaleQuarter = /* 'qrtr' */ 0x71727472,
    blackmagicRawResolutionScaleEighth = /* 'eith' */ 0x65697468
};

typedef uint32_t BlackmagicRawInstructionSet;
enum _BlackmagicRawInstructionSet {
    blackmagicRawInstructionSetSSE41 = /* 'se41' */ 0x73653431,
    blackmagicRawInstructionSetAVX = /* 'avx_' */ 0x6176785F,
    blackmagicRawInstructionSetAVX2 = /* 'avx2' */ 0x61767832,
    blackmagicRawInstructionSetNEON = /* 'neon' */ 0x6E656F6E
};

typedef uint32_t BlackmagicRawInterop;
enum _BlackmagicRawInterop {
    blackmagicRawInteropNone = /* 'none' */ 0x6E6F6E65,
    blackmagicRawInteropOpenGL = /* 'opgl' */ 0x6F70676C
};

typedef uint32_t BlackmagicRawAudioFormat;
enum _BlackmagicRawAudioFormat {
    blackmagicRawAudioFormatPCMLittleEndian = /* 'pcml' */ 0x70636D6C
};

typedef uint32_t BlackmagicRawAnamorphicRatio;
enum _BlackmagicRawAnamorphicRatio {
    blackmagicRawAnamorphicRatioFromMetadata = /* 'meta' */ 0x6D657461,
    blackmagicRawAnamorphicRatioDisabled = /* 'dsbl' */ 0x6473626C,
    blackmagicRawAnamorphicRatio133x = /* '133x' */ 0x31333378,
    blackmagicRawAnamorphicRatio15x = /* '15x_' */ 0x3135785F,
    blackmagicRawAnamorphicRatio16x = /* '16x_' */ 0x3136785F,
    blackmagicRawAnamorphicRatio166x = /* '166x' */ 0x31363678,
    blackmagicRawAnamorphicRatio18x = /* '18x_' */ 0x3138785F,
    blackmagicRawAnamorphicRatio2x = /* '2x__' */ 0x32785F5F
};

typedef uint32_t BlackmagicRawRotation;
enum _BlackmagicRawRotation {
    blackmagicRawRotationFromMetadata = /* 'meta' */ 0x6D657461,
    blackmagicRawRotationDisabled = /* 'dsbl' */ 0x6473626C,
    blackmagicRawRotationClockwise90 = /* 'r90_' */ 0x7239305F,
    blackmagicRawRotationClockwise180 = /* 'r180' */ 0x72313830,
    blackmagicRawRotationClockwise270 = /* 'r270' */ 0x72323730
};

typedef uint32_t BlackmagicRawFlip;
enum _BlackmagicRawFlip {
    blackmagicRawFlipFromMetadata = /* 'meta' */ 0x6D657461,
    blackmagicRawFlipDisabled = /* 'dsbl' */ 0x6473626C,
    blackmagicRawFlipHorizontal = /* 'flpx' */ 0x666C7078,
    blackmagicRawFlipVertical = /* 'flpy' */ 0x666C7079,
    blackmagicRawFlipBoth = /* 'flpb' */ 0x666C7062
};

typedef uint32_t BlackmagicRawClipProcessingAttribute;
enum _BlackmagicRawClipProcessingAttribute {
    blackmagicRawClipProcessingAttributeColorScienceGen = /* 'csgn' */ 0x6373676E,
    blackmagicRawClipProcessingAttributeGamma = /* 'gama' */ 0x67616D61,
    blackmagicRawClipProcessingAttributeGamut = /* 'gamt' */ 0x67616D74,
    blackmagicRawClipProcessingAttributeToneCurveContrast = /* 'tcon' */ 0x74636F6E,
    blackmagicRawClipProcessingAttributeToneCurveSaturation = /* 'tsat' */ 0x74736174,
    blackmagicRawClipProcessingAttributeToneCurveMidpoint = /* 'tmid' */ 0x746D6964,
    blackmagicRawClipProcessingAttributeToneCurveHighlights = /* 'thih' */ 0x74686968,
    blackmagicRawClipProcessingAttributeToneCurveShadows = /* 'tsha' */ 0x74736861,
    blackmagicRawClipProcessingAttributeToneCurveVideoBlackLevel = /* 'tvbl' */ 0x7476626C,
    blackmagicRawClipProcessingAttributeToneCurveBlackLevel = /* 'tblk' */ 0x74626C6B,
    blackmagicRawClipProcessingAttributeToneCurveWhiteLevel = /* 'twit' */ 0x74776974,
    blackmagicRawClipProcessingAttributeHighlightRecovery = /* 'hlry' */ 0x686C7279,
    blackmagicRawClipProcessingAttributeAnalogGainIsConstant = /* 'agic' */ 0x61676963,
    blackmagicRawClipProcessingAttributeAnalogGain = /* 'gain' */ 0x6761696E,
    blackmagicRawClipProcessingAttributePost3DLUTMode = /* 'lutm' */ 0x6C75746D,
    blackmagicRawClipProcessingAttributeEmbeddedPost3DLUTName = /* 'emln' */ 0x656D6C6E,
    blackmagicRawClipProcessingAttributeEmbeddedPost3DLUTTitle = /* 'emlt' */ 0x656D6C74,
    blackmagicRawClipProcessingAttributeEmbeddedPost3DLUTSize = /* 'emls' */ 0x656D6C73,
    blackmagicRawClipProcessingAttributeEmbeddedPost3DLUTData = /* 'emld' */ 0x656D6C64,
    blackmagicRawClipProcessingAttributeSidecarPost3DLUTName = /* 'scln' */ 0x73636C6E,
    blackmagicRawClipProcessingAttributeSidecarPost3DLUTTitle = /* 'sclt' */ 0x73636C74,
    blackmagicRawClipProcessingAttributeSidecarPost3DLUTSize = /* 'scls' */ 0x73636C73,
    blackmagicRawClipProcessingAttributeSidecarPost3DLUTData = /* 'scld' */ 0x73636C64,
    blackmagicRawClipProcessingAttributeGamutCompressionEnable = /* 'gace' */ 0x67616365
};

typedef uint32_t BlackmagicRawFrameProcessingAttribute;
enum _BlackmagicRawFrameProcessingAttribute {
    blackmagicRawFrameProcessingAttributeWhiteBalanceKelvin = /* 'wbkv' */ 0x77626B76,
    blackmagicRawFrameProcessingAttributeWhiteBalanceTint = /* 'wbtn' */ 0x7762746E,
    blackmagicRawFrameProcessingAttributeExposure = /* 'expo' */ 0x6578706F,
    blackmagicRawFrameProcessingAttributeISO = /* 'fiso' */ 0x6669736F,
    blackmagicRawFrameProcessingAttributeAnalogGain = /* 'agpf' */ 0x61677066
};

typedef uint32_t BlackmagicRawSizeLimit;
enum _BlackmagicRawSizeLimit {
    blackmagicRawSizeLimitNone = /* 'szln' */ 0x737A6C6E,
    blackmagicRawSizeLimitScale = /* 'szsc' */ 0x737A7363,
    blackmagicRawSizeLimitCrop = /* 'szlc' */ 0x737A6C63
};

typedef uint32_t BlackmagicRawImmersiveVideoTrack;
enum _BlackmagicRawImmersiveVideoTrack {
    blackmagicRawImmersiveVideoTrackLeft = 0,
    blackmagicRawImmersiveVideoTrackRight = 1
};

typedef uint32_t BlackmagicRawImmersiveAttribute;
enum _BlackmagicRawImmersiveAttribute {
    blackmagicRawImmersiveAttributeOpticalLensProcessingDataFileUUID = /* 'oldu' */ 0x6F6C6475,
    blackmagicRawImmersiveAttributeOpticalILPDFileName = /* 'oldf' */ 0x6F6C6466,
    blackmagicRawImmersiveAttributeOpticalInteraxial = /* 'olix' */ 0x6F6C6978,
    blackmagicRawImmersiveAttributeOpticalProjectionKind = /* 'olpk' */ 0x6F6C706B,
    blackmagicRawImmersiveAttributeOpticalCalibrationType = /* 'olct' */ 0x6F6C6374,
    blackmagicRawImmersiveAttributeOpticalProjectionData = /* 'olpd' */ 0x6F6C7064
};

// ---------------------------------------------------------------------------
// Variant and SafeArray: the library's own tagged value and one-dimensional
// array (not the OLE layouts).
// ---------------------------------------------------------------------------

struct SafeArrayBound {
    uint32_t lLbound;
    uint32_t cElements;
};

struct SafeArray {
    BlackmagicRawVariantType variantType;
    uint32_t cDims;
    uint8_t* data;
    SafeArrayBound bounds;
};

// A U8 value has no named member: it is the byte at offset 8.
struct Variant {
    BlackmagicRawVariantType vt;
    union {
        int16_t iVal;
        uint16_t uiVal;
        int32_t intVal;
        uint32_t uintVal;
        float fltVal;
        double dblVal;
        const char* bstrVal;
        SafeArray* parray;
    };
};

static_assert(sizeof(HRESULT) == 4, "HRESULT is 32 bits");
static_assert(sizeof(ULONG) == 8, "AddRef/Release results are 64 bits on Linux");
static_assert(sizeof(bool) == 1, "flags are one byte");
static_assert(sizeof(REFIID) == 16 && alignof(REFIID) == 1, "an IID is 16 bytes by value");
static_assert(sizeof(SafeArrayBound) == 8 && alignof(SafeArrayBound) == 4, "SafeArrayBound layout");
static_assert(sizeof(SafeArray) == 24 && alignof(SafeArray) == 8, "SafeArray layout");
static_assert(offsetof(SafeArray, cDims) == 4 && offsetof(SafeArray, data) == 8 &&
                  offsetof(SafeArray, bounds) == 16,
              "SafeArray field offsets");
static_assert(sizeof(Variant) == 16 && alignof(Variant) == 8, "Variant layout");
static_assert(offsetof(Variant, iVal) == 8 && offsetof(Variant, bstrVal) == 8 &&
                  offsetof(Variant, parray) == 8 && offsetof(Variant, dblVal) == 8,
              "Variant value at offset 8");

// ---------------------------------------------------------------------------
// Interfaces, in published slot order
// ---------------------------------------------------------------------------

class IBlackmagicRaw;
class IBlackmagicRawFactory;
class IBlackmagicRawPipelineIterator;
class IBlackmagicRawPipelineDeviceIterator;
class IBlackmagicRawOpenGLInteropHelper;
class IBlackmagicRawPipelineDevice;
class IBlackmagicRawToneCurve;
class IBlackmagicRawConfiguration;
class IBlackmagicRawConfigurationEx;
class IBlackmagicRawClipGeometry;
class IBlackmagicRawResourceManager;
class IBlackmagicRawMetadataIterator;
class IBlackmagicRawClipProcessingAttributes;
class IBlackmagicRawFrameProcessingAttributes;
class IBlackmagicRawPost3DLUT;
class IBlackmagicRawProcessedImage;
class IBlackmagicRawJob;
class IBlackmagicRawReadJobHints;
class IBlackmagicRawCallback;
class IBlackmagicRawClipAudio;
class IBlackmagicRawClipAccelerometerMotion;
class IBlackmagicRawClipGyroscopeMotion;
class IBlackmagicRawClipPDAFData;
class IBlackmagicRawFrame;
class IBlackmagicRawFrameEx;
class IBlackmagicRawFrameMultiVideo;
class IBlackmagicRawManualDecoderFlow1;
class IBlackmagicRawManualDecoderFlow2;
class IBlackmagicRawClip;
class IBlackmagicRawClipEx;
class IBlackmagicRawClipMultiVideo;
class IBlackmagicRawClipImmersiveVideo;
class IBlackmagicRawClipResolutions;

class IBlackmagicRawPipelineIterator : public IUnknown {
public:
    virtual HRESULT Next() = 0;
    virtual HRESULT GetName(const char** pipelineName) = 0;
    virtual HRESULT GetInterop(BlackmagicRawInterop* interop) = 0;
    virtual HRESULT GetPipeline(BlackmagicRawPipeline* pipeline) = 0;

protected:
    virtual ~IBlackmagicRawPipelineIterator() {}
};

class IBlackmagicRawPipelineDeviceIterator : public IUnknown {
public:
    virtual HRESULT Next() = 0;
    virtual HRESULT GetPipeline(BlackmagicRawPipeline* pipeline) = 0;
    virtual HRESULT GetInterop(BlackmagicRawInterop* interop) = 0;
    virtual HRESULT CreateDevice(IBlackmagicRawPipelineDevice** pipelineDevice) = 0;

protected:
    virtual ~IBlackmagicRawPipelineDeviceIterator() {}
};

class IBlackmagicRawOpenGLInteropHelper : public IUnknown {
public:
    virtual HRESULT GetPreferredResourceFormat(BlackmagicRawResourceFormat* preferredFormat) = 0;
    virtual HRESULT SetImage(IBlackmagicRawProcessedImage* processedImage, uint32_t* openGLTextureName,
                             int32_t* openGLTextureTarget) = 0;

protected:
    virtual ~IBlackmagicRawOpenGLInteropHelper() {}
};

// No trailing destructor entries in this generation.
class IBlackmagicRawPipelineDevice : public IUnknown {
public:
    virtual HRESULT SetBestInstructionSet() = 0;
    virtual HRESULT SetInstructionSet(BlackmagicRawInstructionSet instructionSet) = 0;
    virtual HRESULT GetInstructionSet(BlackmagicRawInstructionSet* instructionSet) = 0;
    virtual HRESULT GetIndex(uint32_t* deviceIndex) = 0;
    virtual HRESULT GetName(const char** deviceName) = 0;
    virtual HRESULT GetInterop(BlackmagicRawInterop* interop) = 0;
    virtual HRESULT GetPipeline(BlackmagicRawPipeline* pipeline, void** context, void** commandQueue) = 0;
    virtual HRESULT GetPipelineName(const char** pipelineName) = 0;
    virtual HRESULT GetOpenGLInteropHelper(IBlackmagicRawOpenGLInteropHelper** interopHelper) = 0;
    virtual HRESULT GetSupportedResourceFormats(BlackmagicRawResourceFormat* resourceFormats,
                                                uint32_t* resourceFormatCount) = 0;
    virtual HRESULT GetMaximumTextureSize(uint32_t* maximumWidth, uint32_t* maximumHeight) = 0;
};

class IBlackmagicRawToneCurve : public IUnknown {
public:
    virtual HRESULT GetToneCurve(const char* cameraType, const char* gamma, uint16_t gen, float* contrast,
                                 float* saturation, float* midpoint, float* highlights, float* shadows,
                                 float* blackLevel, float* whiteLevel, uint16_t* videoBlackLevel) = 0;
    virtual HRESULT EvaluateToneCurve(const char* cameraType, uint16_t gen, float contrast, float saturation,
                                      float midpoint, float highlights, float shadows, float blackLevel,
                                      float whiteLevel, uint16_t videoBlackLevel, float* array,
                                      uint32_t arrayElementCount) = 0;

protected:
    virtual ~IBlackmagicRawToneCurve() {}
};

class IBlackmagicRawConfiguration : public IUnknown {
public:
    virtual HRESULT SetPipeline(BlackmagicRawPipeline pipeline, void* pipelineContext,
                                void* pipelineCommandQueue) = 0;
    virtual HRESULT GetPipeline(BlackmagicRawPipeline* pipeline, void** pipelineContextOut,
                                void** pipelineCommandQueueOut) = 0;
    virtual HRESULT IsPipelineSupported(BlackmagicRawPipeline pipeline, bool* pipelineSupported) = 0;
    virtual HRESULT SetCPUThreads(uint32_t threadCount) = 0;
    virtual HRESULT GetCPUThreads(uint32_t* threadCount) = 0;
    virtual HRESULT GetMaxCPUThreadCount(uint32_t* threadCount) = 0;
    virtual HRESULT SetWriteMetadataPerFrame(bool writePerFrame) = 0;
    virtual HRESULT GetWriteMetadataPerFrame(bool* writePerFrame) = 0;
    virtual HRESULT SetFromDevice(IBlackmagicRawPipelineDevice* pipelineDevice) = 0;
    virtual HRESULT GetVersion(const char** version) = 0;
    virtual HRESULT GetCameraSupportVersion(const char** version) = 0;

protected:
    virtual ~IBlackmagicRawConfiguration() {}
};

class IBlackmagicRawConfigurationEx : public IUnknown {
public:
    virtual HRESULT GetResourceManager(IBlackmagicRawResourceManager** resourceManager) = 0;
    virtual HRESULT SetResourceManager(IBlackmagicRawResourceManager* resourceManager) = 0;
    virtual HRESULT GetInstructionSet(BlackmagicRawInstructionSet* instructionSet) = 0;
    virtual HRESULT SetInstructionSet(BlackmagicRawInstructionSet instructionSet) = 0;
    virtual HRESULT GetSizeLimit(BlackmagicRawSizeLimit* sizeLimit, uint32_t* sizeLimitWidth,
                                 uint32_t* sizeLimitHeight) = 0;
    virtual HRESULT SetSizeLimit(BlackmagicRawSizeLimit sizeLimit, uint32_t sizeLimitWidth,
                                 uint32_t sizeLimitHeight) = 0;

protected:
    virtual ~IBlackmagicRawConfigurationEx() {}
};

class IBlackmagicRawResourceManager : public IUnknown {
public:
    virtual HRESULT CreateResource(void* context, void* commandQueue, uint32_t sizeBytes,
                                   BlackmagicRawResourceType type, BlackmagicRawResourceUsage usage,
                                   void** resource) = 0;
    virtual HRESULT ReleaseResource(void* context, void* commandQueue, void* resource,
                                    BlackmagicRawResourceType type) = 0;
    virtual HRESULT CopyResource(void* context, void* commandQueue, void* source,
                                 BlackmagicRawResourceType sourceType, void* destination,
                                 BlackmagicRawResourceType destinationType, uint32_t sizeBytes,
                                 bool copyAsync) = 0;
    virtual HRESULT GetResourceHostPointer(void* context, void* commandQueue, void* resource,
                                           BlackmagicRawResourceType resourceType, void** hostPointer) = 0;

protected:
    virtual ~IBlackmagicRawResourceManager() {}
};

class IBlackmagicRawMetadataIterator : public IUnknown {
public:
    virtual HRESULT Next() = 0;
    virtual HRESULT GetKey(const char** key) = 0;
    virtual HRESULT GetData(Variant* data) = 0;

protected:
    virtual ~IBlackmagicRawMetadataIterator() {}
};

class IBlackmagicRawClipProcessingAttributes : public IUnknown {
public:
    virtual HRESULT GetClipAttribute(BlackmagicRawClipProcessingAttribute attribute, Variant* value) = 0;
    virtual HRESULT SetClipAttribute(BlackmagicRawClipProcessingAttribute attribute, Variant* value) = 0;
    virtual HRESULT GetClipAttributeRange(BlackmagicRawClipProcessingAttribute attribute, Variant* valueMin,
                                          Variant* valueMax, bool* isReadOnly) = 0;
    virtual HRESULT GetClipAttributeList(BlackmagicRawClipProcessingAttribute attribute, Variant* array,
                                         uint32_t* arrayElementCount, bool* isReadOnly) = 0;
    virtual HRESULT GetISOList(uint32_t* array, uint32_t* arrayElementCount, bool* isReadOnly) = 0;
    virtual HRESULT GetPost3DLUT(IBlackmagicRawPost3DLUT** lut) = 0;

protected:
    virtual ~IBlackmagicRawClipProcessingAttributes() {}
};

class IBlackmagicRawFrameProcessingAttributes : public IUnknown {
public:
    virtual HRESULT GetFrameAttribute(BlackmagicRawFrameProcessingAttribute attribute, Variant* value) = 0;
    virtual HRESULT SetFrameAttribute(BlackmagicRawFrameProcessingAttribute attribute, Variant* value) = 0;
    virtual HRESULT GetFrameAttributeRange(BlackmagicRawFrameProcessingAttribute attribute, Variant* valueMin,
                                           Variant* valueMax, bool* isReadOnly) = 0;
    virtual HRESULT GetFrameAttributeList(BlackmagicRawFrameProcessingAttribute attribute, Variant* array,
                                          uint32_t* arrayElementCount, bool* isReadOnly) = 0;
    virtual HRESULT GetISOList(uint32_t* array, uint32_t* arrayElementCount, bool* isReadOnly) = 0;

protected:
    virtual ~IBlackmagicRawFrameProcessingAttributes() {}
};

class IBlackmagicRawPost3DLUT : public IUnknown {
public:
    virtual HRESULT GetName(const char** name) = 0;
    virtual HRESULT GetTitle(const char** title) = 0;
    virtual HRESULT GetSize(uint32_t* size) = 0;
    virtual HRESULT GetResourceGPU(void* context, void* commandQueue, BlackmagicRawResourceType* type,
                                   void** resource) = 0;
    virtual HRESULT GetResourceCPU(void** resource) = 0;
    virtual HRESULT GetResourceSizeBytes(uint32_t* sizeBytes) = 0;
    virtual HRESULT WriteCubeFile(const char* fileName) = 0;

protected:
    virtual ~IBlackmagicRawPost3DLUT() {}
};

class IBlackmagicRawProcessedImage : public IUnknown {
public:
    virtual HRESULT GetWidth(uint32_t* width) = 0;
    virtual HRESULT GetHeight(uint32_t* height) = 0;
    virtual HRESULT GetResource(void** resource) = 0;
    virtual HRESULT GetResourceType(BlackmagicRawResourceType* type) = 0;
    virtual HRESULT GetResourceFormat(BlackmagicRawResourceFormat* format) = 0;
    virtual HRESULT GetResourceSizeBytes(uint32_t* sizeBytes) = 0;
    virtual HRESULT GetResourceContextAndCommandQueue(void** context, void** commandQueue) = 0;

protected:
    virtual ~IBlackmagicRawProcessedImage() {}
};

class IBlackmagicRawJob : public IUnknown {
public:
    virtual HRESULT Submit() = 0;
    virtual HRESULT Abort() = 0;
    virtual HRESULT SetUserData(void* userData) = 0;
    virtual HRESULT GetUserData(void** userData) = 0;

protected:
    virtual ~IBlackmagicRawJob() {}
};

// No trailing destructor entries in this generation.
class IBlackmagicRawReadJobHints : public IUnknown {
public:
    virtual HRESULT SetReaderResolutionScale(BlackmagicRawResolutionScale readerResolutionScale) = 0;
};

class IBlackmagicRawCallback : public IUnknown {
public:
    virtual void ReadComplete(IBlackmagicRawJob* job, HRESULT result, IBlackmagicRawFrame* frame) = 0;
    virtual void DecodeComplete(IBlackmagicRawJob* job, HRESULT result) = 0;
    virtual void ProcessComplete(IBlackmagicRawJob* job, HRESULT result,
                                 IBlackmagicRawProcessedImage* processedImage) = 0;
    virtual void TrimProgress(IBlackmagicRawJob* job, float progress) = 0;
    virtual void TrimComplete(IBlackmagicRawJob* job, HRESULT result) = 0;
    virtual void SidecarMetadataParseWarning(IBlackmagicRawClip* clip, const char* fileName, uint32_t lineNumber,
                                             const char* info) = 0;
    virtual void SidecarMetadataParseError(IBlackmagicRawClip* clip, const char* fileName, uint32_t lineNumber,
                                           const char* info) = 0;
    virtual void PreparePipelineComplete(void* userData, HRESULT result) = 0;

protected:
    virtual ~IBlackmagicRawCallback() {}
};

class IBlackmagicRawClipAudio : public IUnknown {
public:
    virtual HRESULT GetAudioFormat(BlackmagicRawAudioFormat* format) = 0;
    virtual HRESULT GetAudioBitDepth(uint32_t* bitDepth) = 0;
    virtual HRESULT GetAudioChannelCount(uint32_t* channelCount) = 0;
    virtual HRESULT GetAudioSampleRate(uint32_t* sampleRate) = 0;
    virtual HRESULT GetAudioSampleCount(uint64_t* sampleCount) = 0;
    virtual HRESULT GetAudioSamples(int64_t sampleFrameIndex, void* buffer, uint32_t bufferSizeBytes,
                                    uint32_t maxSampleCount, uint32_t* samplesRead, uint32_t* bytesRead) = 0;

protected:
    virtual ~IBlackmagicRawClipAudio() {}
};

class IBlackmagicRawClipAccelerometerMotion : public IUnknown {
public:
    virtual HRESULT GetSampleRate(float* sampleRate) = 0;
    virtual HRESULT GetSampleCount(uint32_t* sampleCount) = 0;
    virtual HRESULT GetSampleSize(uint32_t* sampleSize) = 0;
    virtual HRESULT GetSampleRange(uint64_t sampleStartIndex, uint32_t sampleCount, float* samples,
                                   uint32_t* sampleCountOut) = 0;

protected:
    virtual ~IBlackmagicRawClipAccelerometerMotion() {}
};

class IBlackmagicRawClipGyroscopeMotion : public IUnknown {
public:
    virtual HRESULT GetSampleRate(float* sampleRate) = 0;
    virtual HRESULT GetSampleCount(uint32_t* sampleCount) = 0;
    virtual HRESULT GetSampleSize(uint32_t* sampleSize) = 0;
    virtual HRESULT GetSampleRange(uint64_t sampleStartIndex, uint32_t sampleCount, float* samples,
                                   uint32_t* sampleCountOut) = 0;

protected:
    virtual ~IBlackmagicRawClipGyroscopeMotion() {}
};

class IBlackmagicRawClipPDAFData : public IUnknown {
public:
    virtual HRESULT GetSampleImageWidthInPixels(uint32_t* sampleImageWidthInPixelsOut) = 0;
    virtual HRESULT GetSampleImageHeightInPixels(uint32_t* sampleImageHeightInPixelsOut) = 0;
    virtual HRESULT GetSampleImageBytesPerPixel(uint32_t* sampleImageBytesPerPixelOut) = 0;
    virtual HRESULT GetSampleSize(uint32_t* sampleSizeOut) = 0;
    virtual HRESULT GetSampleCount(uint32_t* sampleCountOut) = 0;
    virtual HRESULT GetSampleImages(uint64_t sampleIndex, uint8_t* leftSampleImageDataOut,
                                    uint8_t* rightSampleImageDataOut, uint32_t sampleImageDataSize) = 0;

protected:
    virtual ~IBlackmagicRawClipPDAFData() {}
};

class IBlackmagicRawFrame : public IUnknown {
public:
    virtual HRESULT GetFrameIndex(uint64_t* frameIndex) = 0;
    virtual HRESULT GetTimecode(const char** timecode) = 0;
    virtual HRESULT GetMetadataIterator(IBlackmagicRawMetadataIterator** iterator) = 0;
    virtual HRESULT GetMetadata(const char* key, Variant* value) = 0;
    virtual HRESULT SetMetadata(const char* key, Variant* value) = 0;
    virtual HRESULT CloneFrameProcessingAttributes(
        IBlackmagicRawFrameProcessingAttributes** frameProcessingAttributes) = 0;
    virtual HRESULT SetResolutionScale(BlackmagicRawResolutionScale resolutionScale) = 0;
    virtual HRESULT GetResolutionScale(BlackmagicRawResolutionScale* resolutionScale) = 0;
    virtual HRESULT SetResourceFormat(BlackmagicRawResourceFormat resourceFormat) = 0;
    virtual HRESULT GetResourceFormat(BlackmagicRawResourceFormat* resourceFormat) = 0;
    virtual HRESULT GetSensorRate(float* sensorRate) = 0;
    virtual HRESULT CreateJobDecodeAndProcessFrame(IBlackmagicRawClipProcessingAttributes* clipProcessingAttributes,
                                                   IBlackmagicRawFrameProcessingAttributes* frameProcessingAttributes,
                                                   IBlackmagicRawJob** job) = 0;

protected:
    virtual ~IBlackmagicRawFrame() {}
};

class IBlackmagicRawFrameEx : public IUnknown {
public:
    virtual HRESULT GetBitStreamSizeBytes(uint32_t* bitStreamSizeBytes) = 0;
    virtual HRESULT GetProcessedImageResolution(uint32_t* width, uint32_t* height) = 0;

protected:
    virtual ~IBlackmagicRawFrameEx() {}
};

class IBlackmagicRawFrameMultiVideo : public IUnknown {
public:
    virtual HRESULT GetVideoTrackIndex(uint32_t* videoTrackIndex) = 0;

protected:
    virtual ~IBlackmagicRawFrameMultiVideo() {}
};

class IBlackmagicRawManualDecoderFlow1 : public IUnknown {
public:
    virtual HRESULT PopulateFrameStateBuffer(IBlackmagicRawFrame* frame,
                                             IBlackmagicRawClipProcessingAttributes* clipProcessingAttributes,
                                             IBlackmagicRawFrameProcessingAttributes* frameProcessingAttributes,
                                             void* frameState, uint32_t frameStateSizeBytes) = 0;
    virtual HRESULT GetFrameStateSizeBytes(uint32_t* frameStateSizeBytes) = 0;
    virtual HRESULT GetDecodedSizeBytes(void* frameStateBufferCPU, uint32_t* decodedSizeBytes) = 0;
    virtual HRESULT GetProcessedSizeBytes(void* frameStateBufferCPU, uint32_t* processedSizeBytes) = 0;
    virtual HRESULT GetPost3DLUTSizeBytes(void* frameStateBufferCPU, uint32_t* post3DLUTSizeBytes) = 0;
    virtual HRESULT CreateJobDecode(void* frameStateBufferCPU, void* bitStreamBufferCPU, void* decodedBufferCPU,
                                    IBlackmagicRawJob** job) = 0;
    virtual HRESULT CreateJobProcess(void* frameStateBufferCPU, void* decodedBufferCPU, void* processedBufferCPU,
                                     void* post3DLUTBufferCPU, IBlackmagicRawJob** job) = 0;

protected:
    virtual ~IBlackmagicRawManualDecoderFlow1() {}
};

class IBlackmagicRawManualDecoderFlow2 : public IUnknown {
public:
    virtual HRESULT PopulateFrameStateBuffer(IBlackmagicRawFrame* frame,
                                             IBlackmagicRawClipProcessingAttributes* clipProcessingAttributes,
                                             IBlackmagicRawFrameProcessingAttributes* frameProcessingAttributes,
                                             void* frameState, uint32_t frameStateSizeBytes) = 0;
    virtual HRESULT GetFrameStateSizeBytes(uint32_t* frameStateSizeBytes) = 0;
    virtual HRESULT GetDecodedSizeBytes(void* frameStateBufferCPU, uint32_t* decodedSizeBytes) = 0;
    virtual HRESULT GetWorkingSizeBytes(void* frameStateBufferCPU, uint32_t* workingSizeBytes) = 0;
    virtual HRESULT GetProcessedSizeBytes(void* frameStateBufferCPU, uint32_t* processedSizeBytes) = 0;
    virtual HRESULT GetPost3DLUTSizeBytes(void* frameStateBufferCPU, uint32_t* post3DLUTSizeBytes) = 0;
    virtual HRESULT CreateJobDecode(void* frameStateBufferCPU, void* bitStreamBufferCPU, void* decodedBufferCPU,
                                    IBlackmagicRawJob** job) = 0;
    virtual HRESULT CreateJobProcess(void* context, void* commandQueue, void* frameStateBufferCPU,
                                     void* decodedBufferGPU, void* workingBufferGPU, void* processedBufferGPU,
                                     void* post3DLUTBufferGPU, IBlackmagicRawJob** job) = 0;

protected:
    virtual ~IBlackmagicRawManualDecoderFlow2() {}
};

class IBlackmagicRawClip : public IUnknown {
public:
    virtual HRESULT GetWidth(uint32_t* width) = 0;
    virtual HRESULT GetHeight(uint32_t* height) = 0;
    virtual HRESULT GetFrameRate(float* frameRate) = 0;
    virtual HRESULT GetFrameCount(uint64_t* frameCount) = 0;
    virtual HRESULT GetTimecodeForFrame(uint64_t frameIndex, const char** timecode) = 0;
    virtual HRESULT GetMetadataIterator(IBlackmagicRawMetadataIterator** iterator) = 0;
    virtual HRESULT GetMetadata(const char* key, Variant* value) = 0;
    virtual HRESULT SetMetadata(const char* key, Variant* value) = 0;
    virtual HRESULT GetCameraType(const char** cameraType) = 0;
    virtual HRESULT CloneClipProcessingAttributes(
        IBlackmagicRawClipProcessingAttributes** clipProcessingAttributes) = 0;
    virtual HRESULT GetMulticardFileCount(uint32_t* multicardFileCount) = 0;
    virtual HRESULT IsMulticardFilePresent(uint32_t index, bool* isMulticardFilePresent) = 0;
    virtual HRESULT GetSidecarFileAttached(bool* isSidecarFileAttached) = 0;
    virtual HRESULT SaveSidecarFile() = 0;
    virtual HRESULT ReloadSidecarFile() = 0;
    virtual HRESULT CreateJobReadFrame(uint64_t frameIndex, IBlackmagicRawJob** job) = 0;
    virtual HRESULT CreateJobTrim(const char* fileName, uint64_t frameIndex, uint64_t frameCount,
                                  IBlackmagicRawClipProcessingAttributes* clipProcessingAttributes,
                                  IBlackmagicRawFrameProcessingAttributes* frameProcessingAttributes,
                                  IBlackmagicRawJob** job) = 0;
    virtual HRESULT CloneWithGeometry(IBlackmagicRawClipGeometry* geometry, IBlackmagicRawClip** clip) = 0;

protected:
    virtual ~IBlackmagicRawClip() {}
};

class IBlackmagicRawClipEx : public IUnknown {
public:
    virtual HRESULT GetMaxBitStreamSizeBytes(uint32_t* maxBitStreamSizeBytes) = 0;
    virtual HRESULT GetBitStreamSizeBytes(uint64_t frameIndex, uint32_t* bitStreamSizeBytes) = 0;
    virtual HRESULT CreateJobReadFrame(uint64_t frameIndex, void* bitStream, uint32_t bitStreamSizeBytes,
                                       IBlackmagicRawJob** job) = 0;
    virtual HRESULT QueryTimecodeInfo(uint32_t* baseFrameIndex, bool* isDropFrameTimecode) = 0;

protected:
    virtual ~IBlackmagicRawClipEx() {}
};

class IBlackmagicRawClipMultiVideo : public IUnknown {
public:
    virtual HRESULT GetVideoTrackCount(uint32_t* videoTrackCount) = 0;
    virtual HRESULT GetVideoFrameCount(uint32_t videoTrackIndex, uint64_t* videoFrameCount) = 0;
    virtual HRESULT GetVideoTrackSource(uint32_t videoTrackIndex, uint32_t* videoSourceFourCC) = 0;
    virtual HRESULT CreateJobReadFrame(uint32_t videoTrackIndex, uint64_t frameIndex, IBlackmagicRawJob** job) = 0;
    virtual HRESULT GetBitStreamSizeBytes(uint32_t videoTrackIndex, uint64_t frameIndex,
                                          uint32_t* bitStreamSizeBytes) = 0;
    virtual HRESULT CreateJobReadFrameEx(uint32_t videoTrackIndex, uint64_t frameIndex, void* bitStream,
                                         uint32_t bitStreamSizeBytes, IBlackmagicRawJob** job) = 0;

protected:
    virtual ~IBlackmagicRawClipMultiVideo() {}
};

class IBlackmagicRawClipImmersiveVideo : public IUnknown {
public:
    virtual HRESULT CreateJobImmersiveReadFrame(BlackmagicRawImmersiveVideoTrack videoTrack, uint64_t frameIndex,
                                                IBlackmagicRawJob** job) = 0;
    virtual HRESULT GetImmersiveBitStreamSizeBytes(BlackmagicRawImmersiveVideoTrack videoTrack,
                                                   uint64_t frameIndex, uint32_t* bitStreamSizeBytes) = 0;
    virtual HRESULT CreateJobImmersiveReadFrameEx(BlackmagicRawImmersiveVideoTrack videoTrack, uint64_t frameIndex,
                                                  void* bitStream, uint32_t bitStreamSizeBytes,
                                                  IBlackmagicRawJob** job) = 0;
    virtual HRESULT GetDistanceBetweenLenses(uint32_t* distanceBetweenLenses) = 0;
    virtual HRESULT GetComfortDisparityAdjustment(int32_t* comfortDisparityAdjustment) = 0;
    virtual HRESULT GetHorizontalFieldOfView(uint32_t* horizontalFieldOfView) = 0;
    virtual HRESULT GetImmersiveAttribute(BlackmagicRawImmersiveAttribute attribute, Variant* value) = 0;

protected:
    virtual ~IBlackmagicRawClipImmersiveVideo() {}
};

class IBlackmagicRawClipResolutions : public IUnknown {
public:
    virtual HRESULT GetResolutionCount(uint32_t* resolutionCount) = 0;
    virtual HRESULT GetResolution(uint32_t resolutionIndex, uint32_t* resolutionWidthPixels,
                                  uint32_t* resolutionHeightPixels) = 0;
    virtual HRESULT GetRecordedResolution(uint32_t resolutionIndex, uint32_t* recordedResolutionWidthPixels,
                                          uint32_t* recordedResolutionHeightPixels) = 0;
    virtual HRESULT GetClosestResolutionForScale(BlackmagicRawResolutionScale resolutionScale,
                                                 uint32_t* resolutionWidthPixels,
                                                 uint32_t* resolutionHeightPixels) = 0;
    virtual HRESULT GetClosestScaleForResolution(uint32_t resolutionWidthPixels, uint32_t resolutionHeightPixels,
                                                 BlackmagicRawResolutionScale* resolutionScale) = 0;

protected:
    virtual ~IBlackmagicRawClipResolutions() {}
};

class IBlackmagicRawClipGeometry : public IUnknown {
public:
    virtual HRESULT GetAnamorphicRatio(BlackmagicRawAnamorphicRatio* anamorphic) = 0;
    virtual HRESULT SetAnamorphicRatio(BlackmagicRawAnamorphicRatio anamorphic) = 0;
    virtual HRESULT GetRotation(BlackmagicRawRotation* rotation) = 0;
    virtual HRESULT SetRotation(BlackmagicRawRotation rotation) = 0;
    virtual HRESULT GetFlip(BlackmagicRawFlip* flip) = 0;
    virtual HRESULT SetFlip(BlackmagicRawFlip flip) = 0;

protected:
    virtual ~IBlackmagicRawClipGeometry() {}
};

class IBlackmagicRaw : public IUnknown {
public:
    virtual HRESULT OpenClip(const char* fileName, IBlackmagicRawClip** clip) = 0;
    virtual HRESULT OpenClipWithGeometry(const char* fileName, IBlackmagicRawClipGeometry* geometry,
                                         IBlackmagicRawClip** clip) = 0;
    virtual HRESULT SetCallback(IBlackmagicRawCallback* callback) = 0;
    virtual HRESULT PreparePipeline(BlackmagicRawPipeline pipeline, void* pipelineContext,
                                    void* pipelineCommandQueue, void* userData) = 0;
    virtual HRESULT PreparePipelineForDevice(IBlackmagicRawPipelineDevice* pipelineDevice, void* userData) = 0;
    virtual HRESULT FlushJobs() = 0;

protected:
    virtual ~IBlackmagicRaw() {}
};

class IBlackmagicRawFactory : public IUnknown {
public:
    virtual HRESULT CreateCodec(IBlackmagicRaw** codec) = 0;
    virtual HRESULT CreatePipelineIterator(BlackmagicRawInterop interop,
                                           IBlackmagicRawPipelineIterator** pipelineIterator) = 0;
    virtual HRESULT CreatePipelineDeviceIterator(BlackmagicRawPipeline pipeline, BlackmagicRawInterop interop,
                                                 IBlackmagicRawPipelineDeviceIterator** deviceIterator) = 0;
    virtual HRESULT CreateClipGeometry(IBlackmagicRawClipGeometry** geometry) = 0;

protected:
    virtual ~IBlackmagicRawFactory() {}
};

// ---------------------------------------------------------------------------
// Exported C functions of libBlackmagicRawAPI.so. The last two factory forms
// belong to the caller's dispatch layer, which loads the library by path.
// ---------------------------------------------------------------------------

extern "C" {
IBlackmagicRawFactory* CreateBlackmagicRawFactoryInstance(void);
IBlackmagicRawFactory* CreateBlackmagicRawFactoryInstanceFromPath(const char* loadPath);
IBlackmagicRawFactory* CreateBlackmagicRawFactoryInstanceFromExeRelativePath(const char* relativePath);

HRESULT VariantInit(Variant* variant);
HRESULT VariantClear(Variant* variant);

SafeArray* SafeArrayCreate(BlackmagicRawVariantType variantType, uint32_t dimensions, SafeArrayBound* safeArrayBound);
HRESULT SafeArrayGetVartype(SafeArray* safeArray, BlackmagicRawVariantType* variantType);
HRESULT SafeArrayGetLBound(SafeArray* safeArray, uint32_t dimensions, long* lBound);
HRESULT SafeArrayGetUBound(SafeArray* safeArray, uint32_t dimensions, long* uBound);
HRESULT SafeArrayAccessData(SafeArray* safeArray, void** data);
HRESULT SafeArrayUnaccessData(SafeArray* safeArray);
HRESULT SafeArrayDestroy(SafeArray* safeArray);
}

// Function-pointer types of the ten library exports, for callers that resolve
// them with dlsym.
typedef IBlackmagicRawFactory* (*CreateBlackmagicRawFactoryInstanceFunc)(void);
typedef HRESULT (*VariantInitFunc)(Variant*);
typedef HRESULT (*VariantClearFunc)(Variant*);
typedef SafeArray* (*SafeArrayCreateFunc)(BlackmagicRawVariantType, uint32_t, SafeArrayBound*);
typedef HRESULT (*SafeArrayGetVartypeFunc)(SafeArray*, BlackmagicRawVariantType*);
typedef HRESULT (*SafeArrayGetLBoundFunc)(SafeArray*, uint32_t, long*);
typedef HRESULT (*SafeArrayGetUBoundFunc)(SafeArray*, uint32_t, long*);
typedef HRESULT (*SafeArrayAccessDataFunc)(SafeArray*, void**);
typedef HRESULT (*SafeArrayUnaccessDataFunc)(SafeArray*);
typedef HRESULT (*SafeArrayDestroyFunc)(SafeArray*);
