// Pins our declarations of the decoder library's interfaces to the published
// binary facts: IID bytes against their text form, four-character enum values,
// and the vtable index of every method (plus the two trailing destructor
// entries where the published interface has them).

#include <BlackmagicRawAPI.h>

#include <gtest/gtest.h>

#include <cstring>

namespace {

constexpr int hexDigit(char c)
{
    return (c >= '0' && c <= '9') ? c - '0' : (c >= 'A' && c <= 'F') ? c - 'A' + 10 : (c >= 'a' && c <= 'f') ? c - 'a' + 10 : -1;
}

constexpr uint8_t iidByte(const CFUUIDBytes& b, int i)
{
    switch (i) {
    case 0: return b.byte0;
    case 1: return b.byte1;
    case 2: return b.byte2;
    case 3: return b.byte3;
    case 4: return b.byte4;
    case 5: return b.byte5;
    case 6: return b.byte6;
    case 7: return b.byte7;
    case 8: return b.byte8;
    case 9: return b.byte9;
    case 10: return b.byte10;
    case 11: return b.byte11;
    case 12: return b.byte12;
    case 13: return b.byte13;
    case 14: return b.byte14;
    default: return b.byte15;
    }
}

// The IID's bytes must be the GUID text read left to right, with no swapping.
constexpr bool iidIs(const CFUUIDBytes& iid, const char* text)
{
    int byteIndex = 0;
    for (int i = 0; text[i] != '\0';) {
        if (text[i] == '-') {
            ++i;
            continue;
        }
        const int hi = hexDigit(text[i]);
        const int lo = hexDigit(text[i + 1]);
        if (hi < 0 || lo < 0 || byteIndex >= 16 || iidByte(iid, byteIndex) != hi * 16 + lo)
            return false;
        ++byteIndex;
        i += 2;
    }
    return byteIndex == 16;
}

constexpr uint32_t fourCC(const char (&code)[5])
{
    return (uint32_t(uint8_t(code[0])) << 24) | (uint32_t(uint8_t(code[1])) << 16) |
           (uint32_t(uint8_t(code[2])) << 8) | uint32_t(uint8_t(code[3]));
}

static_assert(iidIs(IID_IUnknown, "00000000-0000-0000-C000-000000000046"), "");
static_assert(iidIs(IID_IBlackmagicRaw, "558ABA39-B344-4E9B-A484-116CF2A4B5C6"), "");
static_assert(iidIs(IID_IBlackmagicRawFactory, "78DEEB84-98C9-434A-B7E5-7AACC2988399"), "");
static_assert(iidIs(IID_IBlackmagicRawPipelineIterator, "051ED792-3D9D-4ED0-BB1F-3873E08773CB"), "");
static_assert(iidIs(IID_IBlackmagicRawPipelineDeviceIterator, "32D3385F-06EE-4260-82EB-2BABFFFACED8"), "");
static_assert(iidIs(IID_IBlackmagicRawOpenGLInteropHelper, "86444C8A-4398-4364-9166-7D10F41C315E"), "");
static_assert(iidIs(IID_IBlackmagicRawPipelineDevice, "5C7B0A9B-CF2C-4AB3-84C1-E1C7902360C8"), "");
static_assert(iidIs(IID_IBlackmagicRawToneCurve, "7E40C13D-3575-46B5-B2B7-85DAE1EEFD77"), "");
static_assert(iidIs(IID_IBlackmagicRawConfiguration, "267E9866-FB40-4BFB-8BF8-96EA3F7DA36E"), "");
static_assert(iidIs(IID_IBlackmagicRawConfigurationEx, "ACE9078F-ABA0-4B26-A954-EDA108DADA5A"), "");
static_assert(iidIs(IID_IBlackmagicRawClipGeometry, "22717196-36AE-4B8A-B5CC-24292F9660F0"), "");
static_assert(iidIs(IID_IBlackmagicRawResourceManager, "3C5C3C4A-812C-4AF0-99F0-06C6E197C189"), "");
static_assert(iidIs(IID_IBlackmagicRawMetadataIterator, "F85AE78D-5DC2-40BC-8C1D-D0D805523ADA"), "");
static_assert(iidIs(IID_IBlackmagicRawClipProcessingAttributes, "1F53C8AE-2295-4C8E-B17F-5931F4F146AC"), "");
static_assert(iidIs(IID_IBlackmagicRawFrameProcessingAttributes, "5F7C5C0F-7138-445A-9D0D-6111B6409D17"), "");
static_assert(iidIs(IID_IBlackmagicRawPost3DLUT, "86052BC4-0231-48C6-B3C8-C771112AAD68"), "");
static_assert(iidIs(IID_IBlackmagicRawProcessedImage, "D87A0F72-A883-42BB-8488-0089411C5035"), "");
static_assert(iidIs(IID_IBlackmagicRawJob, "34C05ACF-7118-45EA-8B71-887E0515395D"), "");
static_assert(iidIs(IID_IBlackmagicRawReadJobHints, "1069F99C-A4E2-415A-91C4-5E0CE0C6AF77"), "");
static_assert(iidIs(IID_IBlackmagicRawCallback, "E9F98FAC-33DB-4A65-BB94-8A82B027AED0"), "");
static_assert(iidIs(IID_IBlackmagicRawClipAudio, "76D4ACED-E0D6-45BB-B547-56B7435B2A1D"), "");
static_assert(iidIs(IID_IBlackmagicRawClipAccelerometerMotion, "983AACBB-F469-40C9-AA81-345B0B7CCD05"), "");
static_assert(iidIs(IID_IBlackmagicRawClipGyroscopeMotion, "00543A2C-FDED-4C79-A60C-A460415F0296"), "");
static_assert(iidIs(IID_IBlackmagicRawClipPDAFData, "AAE71534-F951-4062-B6A9-69B8808CD267"), "");
static_assert(iidIs(IID_IBlackmagicRawFrame, "A500B253-1808-4EF2-8692-D23C692404EA"), "");
static_assert(iidIs(IID_IBlackmagicRawFrameEx, "F8C6C374-D7FB-4BD3-AD0B-C533464FF450"), "");
static_assert(iidIs(IID_IBlackmagicRawFrameMultiVideo, "96AE962B-30A4-4904-813D-A9EFFE5953C2"), "");
static_assert(iidIs(IID_IBlackmagicRawManualDecoderFlow1, "278815A6-A3C1-47C7-A0A6-6754DEAE5E7A"), "");
static_assert(iidIs(IID_IBlackmagicRawManualDecoderFlow2, "DBEC4C39-B4C2-4A65-AA8C-2B3C7F4777E3"), "");
static_assert(iidIs(IID_IBlackmagicRawClip, "A2910203-787B-4BF2-A374-B1A459E2D351"), "");
static_assert(iidIs(IID_IBlackmagicRawClipEx, "D260C7D0-93BD-4D68-B600-93B4CAB7F870"), "");
static_assert(iidIs(IID_IBlackmagicRawClipMultiVideo, "C699E3E2-3268-4E08-8037-D5C4A2C5CE52"), "");
static_assert(iidIs(IID_IBlackmagicRawClipImmersiveVideo, "47D287A7-9148-4659-BFCF-C767A089A200"), "");
static_assert(iidIs(IID_IBlackmagicRawClipResolutions, "C63C290F-525B-4EBE-AB56-87B010CACE19"), "");

static_assert(E_NOTIMPL == int32_t(0x80000001) && E_FAIL == int32_t(0x80000008) && E_POINTER == int32_t(0x80000005) &&
                  E_INVALIDARG == int32_t(0x80000003) && E_NOINTERFACE == int32_t(0x80000004) &&
                  E_OUTOFMEMORY == int32_t(0x80000002) && E_UNEXPECTED == int32_t(0x8000FFFF) &&
                  E_HANDLE == int32_t(0x80000006) && E_ABORT == int32_t(0x80000007) &&
                  E_ACCESSDENIED == int32_t(0x80000009) && S_FALSE == 1 && S_OK == 0,
              "Linux HRESULT values");

static_assert(blackmagicRawPipelineCPU == fourCC("cpub") && blackmagicRawPipelineCUDA == fourCC("cuda") &&
                  blackmagicRawPipelineMetal == fourCC("metl") && blackmagicRawPipelineOpenCL == fourCC("opcl"),
              "");
static_assert(blackmagicRawResourceTypeBufferCPU == fourCC("cpub") &&
                  blackmagicRawResourceTypeBufferMetal == fourCC("metb") &&
                  blackmagicRawResourceTypeBufferCUDA == fourCC("cudb") &&
                  blackmagicRawResourceTypeBufferOpenCL == fourCC("oclb"),
              "");
static_assert(blackmagicRawResourceUsageReadCPUWriteCPU == fourCC("rcwc") &&
                  blackmagicRawResourceUsageReadGPUWriteGPU == fourCC("rgwg") &&
                  blackmagicRawResourceUsageReadGPUWriteCPU == fourCC("rgwc") &&
                  blackmagicRawResourceUsageReadCPUWriteGPU == fourCC("rcwg"),
              "");
static_assert(blackmagicRawResourceFormatRGBAU8 == fourCC("rgba") && blackmagicRawResourceFormatBGRAU8 == fourCC("bgra") &&
                  blackmagicRawResourceFormatRGBU16 == fourCC("16il") &&
                  blackmagicRawResourceFormatRGBAU16 == fourCC("16al") &&
                  blackmagicRawResourceFormatBGRAU16 == fourCC("16la") &&
                  blackmagicRawResourceFormatRGBU16Planar == fourCC("16pl") &&
                  blackmagicRawResourceFormatRGBF32 == fourCC("f32s") &&
                  blackmagicRawResourceFormatRGBAF32 == fourCC("f32l") &&
                  blackmagicRawResourceFormatBGRAF32 == fourCC("f32a") &&
                  blackmagicRawResourceFormatRGBF32Planar == fourCC("f32p") &&
                  blackmagicRawResourceFormatRGBF16 == fourCC("f16s") &&
                  blackmagicRawResourceFormatRGBAF16 == fourCC("f16l") &&
                  blackmagicRawResourceFormatBGRAF16 == fourCC("f16a") &&
                  blackmagicRawResourceFormatRGBF16Planar == fourCC("f16p"),
              "");
static_assert(blackmagicRawResolutionScaleFull == fourCC("full") && blackmagicRawResolutionScaleHalf == fourCC("half") &&
                  blackmagicRawResolutionScaleQuarter == fourCC("qrtr") &&
                  blackmagicRawResolutionScaleEighth == fourCC("eith"),
              "");
static_assert(blackmagicRawInstructionSetSSE41 == fourCC("se41") && blackmagicRawInstructionSetAVX == fourCC("avx_") &&
                  blackmagicRawInstructionSetAVX2 == fourCC("avx2") && blackmagicRawInstructionSetNEON == fourCC("neon"),
              "");
static_assert(blackmagicRawInteropNone == fourCC("none") && blackmagicRawInteropOpenGL == fourCC("opgl") &&
                  blackmagicRawAudioFormatPCMLittleEndian == fourCC("pcml"),
              "");
static_assert(blackmagicRawAnamorphicRatioFromMetadata == fourCC("meta") &&
                  blackmagicRawAnamorphicRatioDisabled == fourCC("dsbl") &&
                  blackmagicRawAnamorphicRatio133x == fourCC("133x") &&
                  blackmagicRawAnamorphicRatio15x == fourCC("15x_") &&
                  blackmagicRawAnamorphicRatio16x == fourCC("16x_") &&
                  blackmagicRawAnamorphicRatio166x == fourCC("166x") &&
                  blackmagicRawAnamorphicRatio18x == fourCC("18x_") && blackmagicRawAnamorphicRatio2x == fourCC("2x__"),
              "");
static_assert(blackmagicRawRotationFromMetadata == fourCC("meta") && blackmagicRawRotationDisabled == fourCC("dsbl") &&
                  blackmagicRawRotationClockwise90 == fourCC("r90_") &&
                  blackmagicRawRotationClockwise180 == fourCC("r180") &&
                  blackmagicRawRotationClockwise270 == fourCC("r270"),
              "");
static_assert(blackmagicRawFlipFromMetadata == fourCC("meta") && blackmagicRawFlipDisabled == fourCC("dsbl") &&
                  blackmagicRawFlipHorizontal == fourCC("flpx") && blackmagicRawFlipVertical == fourCC("flpy") &&
                  blackmagicRawFlipBoth == fourCC("flpb"),
              "");
static_assert(blackmagicRawClipProcessingAttributeColorScienceGen == fourCC("csgn") &&
                  blackmagicRawClipProcessingAttributeGamma == fourCC("gama") &&
                  blackmagicRawClipProcessingAttributeGamut == fourCC("gamt") &&
                  blackmagicRawClipProcessingAttributeToneCurveContrast == fourCC("tcon") &&
                  blackmagicRawClipProcessingAttributeToneCurveSaturation == fourCC("tsat") &&
                  blackmagicRawClipProcessingAttributeToneCurveMidpoint == fourCC("tmid") &&
                  blackmagicRawClipProcessingAttributeToneCurveHighlights == fourCC("thih") &&
                  blackmagicRawClipProcessingAttributeToneCurveShadows == fourCC("tsha") &&
                  blackmagicRawClipProcessingAttributeToneCurveVideoBlackLevel == fourCC("tvbl") &&
                  blackmagicRawClipProcessingAttributeToneCurveBlackLevel == fourCC("tblk") &&
                  blackmagicRawClipProcessingAttributeToneCurveWhiteLevel == fourCC("twit") &&
                  blackmagicRawClipProcessingAttributeHighlightRecovery == fourCC("hlry") &&
                  blackmagicRawClipProcessingAttributeAnalogGainIsConstant == fourCC("agic") &&
                  blackmagicRawClipProcessingAttributeAnalogGain == fourCC("gain") &&
                  blackmagicRawClipProcessingAttributePost3DLUTMode == fourCC("lutm") &&
                  blackmagicRawClipProcessingAttributeEmbeddedPost3DLUTName == fourCC("emln") &&
                  blackmagicRawClipProcessingAttributeEmbeddedPost3DLUTTitle == fourCC("emlt") &&
                  blackmagicRawClipProcessingAttributeEmbeddedPost3DLUTSize == fourCC("emls") &&
                  blackmagicRawClipProcessingAttributeEmbeddedPost3DLUTData == fourCC("emld") &&
                  blackmagicRawClipProcessingAttributeSidecarPost3DLUTName == fourCC("scln") &&
                  blackmagicRawClipProcessingAttributeSidecarPost3DLUTTitle == fourCC("sclt") &&
                  blackmagicRawClipProcessingAttributeSidecarPost3DLUTSize == fourCC("scls") &&
                  blackmagicRawClipProcessingAttributeSidecarPost3DLUTData == fourCC("scld") &&
                  blackmagicRawClipProcessingAttributeGamutCompressionEnable == fourCC("gace"),
              "");
static_assert(blackmagicRawFrameProcessingAttributeWhiteBalanceKelvin == fourCC("wbkv") &&
                  blackmagicRawFrameProcessingAttributeWhiteBalanceTint == fourCC("wbtn") &&
                  blackmagicRawFrameProcessingAttributeExposure == fourCC("expo") &&
                  blackmagicRawFrameProcessingAttributeISO == fourCC("fiso") &&
                  blackmagicRawFrameProcessingAttributeAnalogGain == fourCC("agpf"),
              "");
static_assert(blackmagicRawSizeLimitNone == fourCC("szln") && blackmagicRawSizeLimitScale == fourCC("szsc") &&
                  blackmagicRawSizeLimitCrop == fourCC("szlc"),
              "");
static_assert(blackmagicRawImmersiveAttributeOpticalLensProcessingDataFileUUID == fourCC("oldu") &&
                  blackmagicRawImmersiveAttributeOpticalILPDFileName == fourCC("oldf") &&
                  blackmagicRawImmersiveAttributeOpticalInteraxial == fourCC("olix") &&
                  blackmagicRawImmersiveAttributeOpticalProjectionKind == fourCC("olpk") &&
                  blackmagicRawImmersiveAttributeOpticalCalibrationType == fourCC("olct") &&
                  blackmagicRawImmersiveAttributeOpticalProjectionData == fourCC("olpd"),
              "");
static_assert(blackmagicRawVariantTypeSafeArray == 8 && blackmagicRawVariantTypeFloat64 == 9 &&
                  blackmagicRawVariantTypeString == 7 && blackmagicRawVariantTypeU8 == 1,
              "Linux variant type numbers");

// Itanium ABI: a pointer to a virtual member function holds 1 + the byte
// offset of its vtable slot.
template <class M>
long slotOf(M member)
{
    static_assert(sizeof(M) == 2 * sizeof(uintptr_t), "Itanium member pointer");
    uintptr_t raw[2];
    std::memcpy(raw, &member, sizeof raw);
    if ((raw[0] & 1) == 0)
        return -1;
    return long((raw[0] - 1) / sizeof(void*));
}

// The first slot a class derived from an interface would add: the length of
// the interface's vtable, destructor entries included.
#define TAIL_OF(I)                     \
    [] {                               \
        struct Probe : I {             \
            virtual void tail() = 0;   \
        };                             \
        return slotOf(&Probe::tail);   \
    }()

#define EXPECT_SLOT(I, M, idx) EXPECT_EQ(slotOf(&I::M), idx) << #I "::" #M

}  // namespace

TEST(BlackmagicRawAbi, IUnknownSlotsAndNoDestructor)
{
    EXPECT_SLOT(IUnknown, QueryInterface, 0);
    EXPECT_SLOT(IUnknown, AddRef, 1);
    EXPECT_SLOT(IUnknown, Release, 2);
    EXPECT_EQ(TAIL_OF(IUnknown), 3);
    EXPECT_EQ(sizeof(IUnknown), sizeof(void*));
}

TEST(BlackmagicRawAbi, FactoryCodecAndConfigurationSlots)
{
    EXPECT_SLOT(IBlackmagicRawFactory, CreateCodec, 3);
    EXPECT_SLOT(IBlackmagicRawFactory, CreatePipelineIterator, 4);
    EXPECT_SLOT(IBlackmagicRawFactory, CreatePipelineDeviceIterator, 5);
    EXPECT_SLOT(IBlackmagicRawFactory, CreateClipGeometry, 6);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawFactory), 9);

    EXPECT_SLOT(IBlackmagicRaw, OpenClip, 3);
    EXPECT_SLOT(IBlackmagicRaw, OpenClipWithGeometry, 4);
    EXPECT_SLOT(IBlackmagicRaw, SetCallback, 5);
    EXPECT_SLOT(IBlackmagicRaw, PreparePipeline, 6);
    EXPECT_SLOT(IBlackmagicRaw, PreparePipelineForDevice, 7);
    EXPECT_SLOT(IBlackmagicRaw, FlushJobs, 8);
    EXPECT_EQ(TAIL_OF(IBlackmagicRaw), 11);

    EXPECT_SLOT(IBlackmagicRawConfiguration, SetPipeline, 3);
    EXPECT_SLOT(IBlackmagicRawConfiguration, GetPipeline, 4);
    EXPECT_SLOT(IBlackmagicRawConfiguration, IsPipelineSupported, 5);
    EXPECT_SLOT(IBlackmagicRawConfiguration, SetCPUThreads, 6);
    EXPECT_SLOT(IBlackmagicRawConfiguration, GetCPUThreads, 7);
    EXPECT_SLOT(IBlackmagicRawConfiguration, GetMaxCPUThreadCount, 8);
    EXPECT_SLOT(IBlackmagicRawConfiguration, SetWriteMetadataPerFrame, 9);
    EXPECT_SLOT(IBlackmagicRawConfiguration, GetWriteMetadataPerFrame, 10);
    EXPECT_SLOT(IBlackmagicRawConfiguration, SetFromDevice, 11);
    EXPECT_SLOT(IBlackmagicRawConfiguration, GetVersion, 12);
    EXPECT_SLOT(IBlackmagicRawConfiguration, GetCameraSupportVersion, 13);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawConfiguration), 16);

    EXPECT_SLOT(IBlackmagicRawConfigurationEx, GetResourceManager, 3);
    EXPECT_SLOT(IBlackmagicRawConfigurationEx, SetResourceManager, 4);
    EXPECT_SLOT(IBlackmagicRawConfigurationEx, GetInstructionSet, 5);
    EXPECT_SLOT(IBlackmagicRawConfigurationEx, SetInstructionSet, 6);
    EXPECT_SLOT(IBlackmagicRawConfigurationEx, GetSizeLimit, 7);
    EXPECT_SLOT(IBlackmagicRawConfigurationEx, SetSizeLimit, 8);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawConfigurationEx), 11);

    EXPECT_SLOT(IBlackmagicRawResourceManager, CreateResource, 3);
    EXPECT_SLOT(IBlackmagicRawResourceManager, ReleaseResource, 4);
    EXPECT_SLOT(IBlackmagicRawResourceManager, CopyResource, 5);
    EXPECT_SLOT(IBlackmagicRawResourceManager, GetResourceHostPointer, 6);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawResourceManager), 9);

    EXPECT_SLOT(IBlackmagicRawToneCurve, GetToneCurve, 3);
    EXPECT_SLOT(IBlackmagicRawToneCurve, EvaluateToneCurve, 4);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawToneCurve), 7);
}

TEST(BlackmagicRawAbi, PipelineSlots)
{
    EXPECT_SLOT(IBlackmagicRawPipelineIterator, Next, 3);
    EXPECT_SLOT(IBlackmagicRawPipelineIterator, GetName, 4);
    EXPECT_SLOT(IBlackmagicRawPipelineIterator, GetInterop, 5);
    EXPECT_SLOT(IBlackmagicRawPipelineIterator, GetPipeline, 6);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawPipelineIterator), 9);

    EXPECT_SLOT(IBlackmagicRawPipelineDeviceIterator, Next, 3);
    EXPECT_SLOT(IBlackmagicRawPipelineDeviceIterator, GetPipeline, 4);
    EXPECT_SLOT(IBlackmagicRawPipelineDeviceIterator, GetInterop, 5);
    EXPECT_SLOT(IBlackmagicRawPipelineDeviceIterator, CreateDevice, 6);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawPipelineDeviceIterator), 9);

    EXPECT_SLOT(IBlackmagicRawPipelineDevice, SetBestInstructionSet, 3);
    EXPECT_SLOT(IBlackmagicRawPipelineDevice, SetInstructionSet, 4);
    EXPECT_SLOT(IBlackmagicRawPipelineDevice, GetInstructionSet, 5);
    EXPECT_SLOT(IBlackmagicRawPipelineDevice, GetIndex, 6);
    EXPECT_SLOT(IBlackmagicRawPipelineDevice, GetName, 7);
    EXPECT_SLOT(IBlackmagicRawPipelineDevice, GetInterop, 8);
    EXPECT_SLOT(IBlackmagicRawPipelineDevice, GetPipeline, 9);
    EXPECT_SLOT(IBlackmagicRawPipelineDevice, GetPipelineName, 10);
    EXPECT_SLOT(IBlackmagicRawPipelineDevice, GetOpenGLInteropHelper, 11);
    EXPECT_SLOT(IBlackmagicRawPipelineDevice, GetSupportedResourceFormats, 12);
    EXPECT_SLOT(IBlackmagicRawPipelineDevice, GetMaximumTextureSize, 13);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawPipelineDevice), 14);  // no destructor entries

    EXPECT_SLOT(IBlackmagicRawOpenGLInteropHelper, GetPreferredResourceFormat, 3);
    EXPECT_SLOT(IBlackmagicRawOpenGLInteropHelper, SetImage, 4);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawOpenGLInteropHelper), 7);
}

TEST(BlackmagicRawAbi, ClipFamilySlots)
{
    EXPECT_SLOT(IBlackmagicRawClip, GetWidth, 3);
    EXPECT_SLOT(IBlackmagicRawClip, GetHeight, 4);
    EXPECT_SLOT(IBlackmagicRawClip, GetFrameRate, 5);
    EXPECT_SLOT(IBlackmagicRawClip, GetFrameCount, 6);
    EXPECT_SLOT(IBlackmagicRawClip, GetTimecodeForFrame, 7);
    EXPECT_SLOT(IBlackmagicRawClip, GetMetadataIterator, 8);
    EXPECT_SLOT(IBlackmagicRawClip, GetMetadata, 9);
    EXPECT_SLOT(IBlackmagicRawClip, SetMetadata, 10);
    EXPECT_SLOT(IBlackmagicRawClip, GetCameraType, 11);
    EXPECT_SLOT(IBlackmagicRawClip, CloneClipProcessingAttributes, 12);
    EXPECT_SLOT(IBlackmagicRawClip, GetMulticardFileCount, 13);
    EXPECT_SLOT(IBlackmagicRawClip, IsMulticardFilePresent, 14);
    EXPECT_SLOT(IBlackmagicRawClip, GetSidecarFileAttached, 15);
    EXPECT_SLOT(IBlackmagicRawClip, SaveSidecarFile, 16);
    EXPECT_SLOT(IBlackmagicRawClip, ReloadSidecarFile, 17);
    EXPECT_SLOT(IBlackmagicRawClip, CreateJobReadFrame, 18);
    EXPECT_SLOT(IBlackmagicRawClip, CreateJobTrim, 19);
    EXPECT_SLOT(IBlackmagicRawClip, CloneWithGeometry, 20);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawClip), 23);

    EXPECT_SLOT(IBlackmagicRawClipEx, GetMaxBitStreamSizeBytes, 3);
    EXPECT_SLOT(IBlackmagicRawClipEx, GetBitStreamSizeBytes, 4);
    EXPECT_SLOT(IBlackmagicRawClipEx, CreateJobReadFrame, 5);
    EXPECT_SLOT(IBlackmagicRawClipEx, QueryTimecodeInfo, 6);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawClipEx), 9);

    EXPECT_SLOT(IBlackmagicRawClipResolutions, GetResolutionCount, 3);
    EXPECT_SLOT(IBlackmagicRawClipResolutions, GetResolution, 4);
    EXPECT_SLOT(IBlackmagicRawClipResolutions, GetRecordedResolution, 5);
    EXPECT_SLOT(IBlackmagicRawClipResolutions, GetClosestResolutionForScale, 6);
    EXPECT_SLOT(IBlackmagicRawClipResolutions, GetClosestScaleForResolution, 7);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawClipResolutions), 10);

    EXPECT_SLOT(IBlackmagicRawClipGeometry, GetAnamorphicRatio, 3);
    EXPECT_SLOT(IBlackmagicRawClipGeometry, SetAnamorphicRatio, 4);
    EXPECT_SLOT(IBlackmagicRawClipGeometry, GetRotation, 5);
    EXPECT_SLOT(IBlackmagicRawClipGeometry, SetRotation, 6);
    EXPECT_SLOT(IBlackmagicRawClipGeometry, GetFlip, 7);
    EXPECT_SLOT(IBlackmagicRawClipGeometry, SetFlip, 8);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawClipGeometry), 11);

    EXPECT_SLOT(IBlackmagicRawClipAudio, GetAudioFormat, 3);
    EXPECT_SLOT(IBlackmagicRawClipAudio, GetAudioBitDepth, 4);
    EXPECT_SLOT(IBlackmagicRawClipAudio, GetAudioChannelCount, 5);
    EXPECT_SLOT(IBlackmagicRawClipAudio, GetAudioSampleRate, 6);
    EXPECT_SLOT(IBlackmagicRawClipAudio, GetAudioSampleCount, 7);
    EXPECT_SLOT(IBlackmagicRawClipAudio, GetAudioSamples, 8);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawClipAudio), 11);

    EXPECT_SLOT(IBlackmagicRawClipAccelerometerMotion, GetSampleRange, 6);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawClipAccelerometerMotion), 9);
    EXPECT_SLOT(IBlackmagicRawClipGyroscopeMotion, GetSampleRange, 6);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawClipGyroscopeMotion), 9);
    EXPECT_SLOT(IBlackmagicRawClipPDAFData, GetSampleImages, 8);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawClipPDAFData), 11);

    EXPECT_SLOT(IBlackmagicRawClipMultiVideo, GetVideoTrackCount, 3);
    EXPECT_SLOT(IBlackmagicRawClipMultiVideo, CreateJobReadFrameEx, 8);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawClipMultiVideo), 11);
    EXPECT_SLOT(IBlackmagicRawClipImmersiveVideo, CreateJobImmersiveReadFrame, 3);
    EXPECT_SLOT(IBlackmagicRawClipImmersiveVideo, GetImmersiveAttribute, 9);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawClipImmersiveVideo), 12);
}

TEST(BlackmagicRawAbi, AttributesAndLutSlots)
{
    EXPECT_SLOT(IBlackmagicRawClipProcessingAttributes, GetClipAttribute, 3);
    EXPECT_SLOT(IBlackmagicRawClipProcessingAttributes, SetClipAttribute, 4);
    EXPECT_SLOT(IBlackmagicRawClipProcessingAttributes, GetClipAttributeRange, 5);
    EXPECT_SLOT(IBlackmagicRawClipProcessingAttributes, GetClipAttributeList, 6);
    EXPECT_SLOT(IBlackmagicRawClipProcessingAttributes, GetISOList, 7);
    EXPECT_SLOT(IBlackmagicRawClipProcessingAttributes, GetPost3DLUT, 8);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawClipProcessingAttributes), 11);

    EXPECT_SLOT(IBlackmagicRawFrameProcessingAttributes, GetFrameAttribute, 3);
    EXPECT_SLOT(IBlackmagicRawFrameProcessingAttributes, SetFrameAttribute, 4);
    EXPECT_SLOT(IBlackmagicRawFrameProcessingAttributes, GetFrameAttributeRange, 5);
    EXPECT_SLOT(IBlackmagicRawFrameProcessingAttributes, GetFrameAttributeList, 6);
    EXPECT_SLOT(IBlackmagicRawFrameProcessingAttributes, GetISOList, 7);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawFrameProcessingAttributes), 10);

    EXPECT_SLOT(IBlackmagicRawPost3DLUT, GetName, 3);
    EXPECT_SLOT(IBlackmagicRawPost3DLUT, GetTitle, 4);
    EXPECT_SLOT(IBlackmagicRawPost3DLUT, GetSize, 5);
    EXPECT_SLOT(IBlackmagicRawPost3DLUT, GetResourceGPU, 6);
    EXPECT_SLOT(IBlackmagicRawPost3DLUT, GetResourceCPU, 7);
    EXPECT_SLOT(IBlackmagicRawPost3DLUT, GetResourceSizeBytes, 8);
    EXPECT_SLOT(IBlackmagicRawPost3DLUT, WriteCubeFile, 9);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawPost3DLUT), 12);

    EXPECT_SLOT(IBlackmagicRawMetadataIterator, Next, 3);
    EXPECT_SLOT(IBlackmagicRawMetadataIterator, GetKey, 4);
    EXPECT_SLOT(IBlackmagicRawMetadataIterator, GetData, 5);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawMetadataIterator), 8);
}

TEST(BlackmagicRawAbi, FrameJobAndDecoderSlots)
{
    EXPECT_SLOT(IBlackmagicRawFrame, GetFrameIndex, 3);
    EXPECT_SLOT(IBlackmagicRawFrame, GetTimecode, 4);
    EXPECT_SLOT(IBlackmagicRawFrame, GetMetadataIterator, 5);
    EXPECT_SLOT(IBlackmagicRawFrame, GetMetadata, 6);
    EXPECT_SLOT(IBlackmagicRawFrame, SetMetadata, 7);
    EXPECT_SLOT(IBlackmagicRawFrame, CloneFrameProcessingAttributes, 8);
    EXPECT_SLOT(IBlackmagicRawFrame, SetResolutionScale, 9);
    EXPECT_SLOT(IBlackmagicRawFrame, GetResolutionScale, 10);
    EXPECT_SLOT(IBlackmagicRawFrame, SetResourceFormat, 11);
    EXPECT_SLOT(IBlackmagicRawFrame, GetResourceFormat, 12);
    EXPECT_SLOT(IBlackmagicRawFrame, GetSensorRate, 13);
    EXPECT_SLOT(IBlackmagicRawFrame, CreateJobDecodeAndProcessFrame, 14);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawFrame), 17);

    EXPECT_SLOT(IBlackmagicRawFrameEx, GetBitStreamSizeBytes, 3);
    EXPECT_SLOT(IBlackmagicRawFrameEx, GetProcessedImageResolution, 4);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawFrameEx), 7);
    EXPECT_SLOT(IBlackmagicRawFrameMultiVideo, GetVideoTrackIndex, 3);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawFrameMultiVideo), 6);

    EXPECT_SLOT(IBlackmagicRawProcessedImage, GetWidth, 3);
    EXPECT_SLOT(IBlackmagicRawProcessedImage, GetHeight, 4);
    EXPECT_SLOT(IBlackmagicRawProcessedImage, GetResource, 5);
    EXPECT_SLOT(IBlackmagicRawProcessedImage, GetResourceType, 6);
    EXPECT_SLOT(IBlackmagicRawProcessedImage, GetResourceFormat, 7);
    EXPECT_SLOT(IBlackmagicRawProcessedImage, GetResourceSizeBytes, 8);
    EXPECT_SLOT(IBlackmagicRawProcessedImage, GetResourceContextAndCommandQueue, 9);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawProcessedImage), 12);

    EXPECT_SLOT(IBlackmagicRawJob, Submit, 3);
    EXPECT_SLOT(IBlackmagicRawJob, Abort, 4);
    EXPECT_SLOT(IBlackmagicRawJob, SetUserData, 5);
    EXPECT_SLOT(IBlackmagicRawJob, GetUserData, 6);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawJob), 9);
    EXPECT_SLOT(IBlackmagicRawReadJobHints, SetReaderResolutionScale, 3);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawReadJobHints), 4);  // no destructor entries

    EXPECT_SLOT(IBlackmagicRawCallback, ReadComplete, 3);
    EXPECT_SLOT(IBlackmagicRawCallback, DecodeComplete, 4);
    EXPECT_SLOT(IBlackmagicRawCallback, ProcessComplete, 5);
    EXPECT_SLOT(IBlackmagicRawCallback, TrimProgress, 6);
    EXPECT_SLOT(IBlackmagicRawCallback, TrimComplete, 7);
    EXPECT_SLOT(IBlackmagicRawCallback, SidecarMetadataParseWarning, 8);
    EXPECT_SLOT(IBlackmagicRawCallback, SidecarMetadataParseError, 9);
    EXPECT_SLOT(IBlackmagicRawCallback, PreparePipelineComplete, 10);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawCallback), 13);

    EXPECT_SLOT(IBlackmagicRawManualDecoderFlow1, PopulateFrameStateBuffer, 3);
    EXPECT_SLOT(IBlackmagicRawManualDecoderFlow1, GetFrameStateSizeBytes, 4);
    EXPECT_SLOT(IBlackmagicRawManualDecoderFlow1, GetDecodedSizeBytes, 5);
    EXPECT_SLOT(IBlackmagicRawManualDecoderFlow1, GetProcessedSizeBytes, 6);
    EXPECT_SLOT(IBlackmagicRawManualDecoderFlow1, GetPost3DLUTSizeBytes, 7);
    EXPECT_SLOT(IBlackmagicRawManualDecoderFlow1, CreateJobDecode, 8);
    EXPECT_SLOT(IBlackmagicRawManualDecoderFlow1, CreateJobProcess, 9);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawManualDecoderFlow1), 12);

    EXPECT_SLOT(IBlackmagicRawManualDecoderFlow2, PopulateFrameStateBuffer, 3);
    EXPECT_SLOT(IBlackmagicRawManualDecoderFlow2, GetFrameStateSizeBytes, 4);
    EXPECT_SLOT(IBlackmagicRawManualDecoderFlow2, GetDecodedSizeBytes, 5);
    EXPECT_SLOT(IBlackmagicRawManualDecoderFlow2, GetWorkingSizeBytes, 6);
    EXPECT_SLOT(IBlackmagicRawManualDecoderFlow2, GetProcessedSizeBytes, 7);
    EXPECT_SLOT(IBlackmagicRawManualDecoderFlow2, GetPost3DLUTSizeBytes, 8);
    EXPECT_SLOT(IBlackmagicRawManualDecoderFlow2, CreateJobDecode, 9);
    EXPECT_SLOT(IBlackmagicRawManualDecoderFlow2, CreateJobProcess, 10);
    EXPECT_EQ(TAIL_OF(IBlackmagicRawManualDecoderFlow2), 13);
}

// An IID travels by value in two registers; a by-reference declaration would
// hand the callee a pointer instead. Checked through the type of the slot.
TEST(BlackmagicRawAbi, QueryInterfaceTakesTheIidByValue)
{
    using QI = HRESULT (IUnknown::*)(CFUUIDBytes, void**);
    QI member = &IUnknown::QueryInterface;
    EXPECT_EQ(slotOf(member), 0);
}
