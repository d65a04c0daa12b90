#pragma once
// The host suites, acquired through SPBasicSuite::AcquireSuite(name, version).
// Every function returns a prSuiteError unless its declaration says otherwise.
// A host that serves an older version hands out a table whose first slots match
// that version exactly.

#include "MediaCorePixelFormats.h"
#include "MediaCoreImporter.h"
#include "MediaCoreTypes.h"

#pragma pack(push, 1)

// ---- String suite ----
// Sizes count elements and include the terminating zero. A buffer that is too
// small gives suiteError_StringBufferTooSmall with the needed count written back.
constexpr const char* kPrSDKStringSuite = "MediaCore StringSuite";
constexpr int kPrSDKStringSuiteVersion = 1;

struct PrSDKStringSuite {
    prSuiteError (*DisposeString)(const PrSDKString* inSDKString);
    prSuiteError (*AllocateFromUTF8)(const prUTF8Char* inUTF8String, PrSDKString* outSDKString);
    prSuiteError (*CopyToUTF8String)(const PrSDKString* inSDKString, prUTF8Char* outUTF8StringBuffer,
                                     csSDK_uint32* ioUTF8StringBufferSizeInElements);
    prSuiteError (*AllocateFromUTF16)(const prUTF16Char* inUTF16String, PrSDKString* outSDKString);
    prSuiteError (*CopyToUTF16String)(const PrSDKString* inSDKString, prUTF16Char* outUTF16StringBuffer,
                                      csSDK_uint32* ioUTF16StringBufferSizeInElements);
};

// ---- PPix Creator suite ----
constexpr const char* kPrSDKPPixCreatorSuite = "Premiere PPix Creator Suite";
constexpr int kPrSDKPPixCreatorSuiteVersion = 1;

struct PrSDKPPixCreatorSuite {
    // inRequestedAccess may not be ReadOnly.
    prSuiteError (*CreatePPix)(PPixHand* outPPixHand, PrPPixBufferAccess inRequestedAccess,
                               PrPixelFormat inPixelFormat, const prRect* inBoundingRect);
    // Only ReadOnly is accepted.
    prSuiteError (*ClonePPix)(PPixHand inPPixToClone, PPixHand* outPPixHand, PrPPixBufferAccess inRequestedAccess);
};

// ---- PPix Creator 2 suite ----
constexpr const char* kPrSDKPPixCreator2Suite = "Premiere PPix Creator 2 Suite";
constexpr int kPrSDKPPixCreator2SuiteVersion = 4;

struct PrSDKPPixCreator2Suite {
    prSuiteError (*CreatePPix)(PPixHand* outPPixHand, PrPPixBufferAccess inRequestedAccess,
                               PrPixelFormat inPixelFormat, int inWidth, int inHeight, bool inUseFields,
                               int inFieldNumber, int inPARNumerator, int inPARDenominator);
    prSuiteError (*CreateRawPPix)(PPixHand* outPPixHand, PrPPixBufferAccess inRequestedAccess, int inSize,
                                  int inAlignment);
    prSuiteError (*CreateCustomPPix)(PPixHand* outPPixHand, PrPPixBufferAccess inRequestedAccess,
                                     PrPixelFormat inPixelFormat, int inWidth, int inHeight, int inPARNumerator,
                                     int inPARDenominator, int inDataBufferSize);
    prSuiteError (*CreateDiskAlignedPPix)(PPixHand* outPPixHand, PrPixelFormat inPixelFormat, int inWidth,
                                          int inHeight, int inPARNumerator, int inPARDenominator,
                                          int inMemoryAlignment, int inSectorSize,
                                          int inOffsetToPixelDataFromFirstSectorStart);
    prSuiteError (*CreateColorManagedPPix)(PPixHand* outPPixHand, PrPPixBufferAccess inRequestedAccess,
                                           PrPixelFormat inPixelFormat, int inWidth, int inHeight, bool inUseFields,
                                           int inFieldNumber, int inPARNumerator, int inPARDenominator,
                                           PrSDKColorSpaceID inColorSpaceID);
    prSuiteError (*CreateColorManagedCustomPPix)(PPixHand* outPPixHand, PrPPixBufferAccess inRequestedAccess,
                                                 PrPixelFormat inPixelFormat, int inWidth, int inHeight,
                                                 int inPARNumerator, int inPARDenominator, int inDataBufferSize,
                                                 PrSDKColorSpaceID inColorSpaceID);
    prSuiteError (*CreateColorManagedDiskAlignedPPix)(PPixHand* outPPixHand, PrPixelFormat inPixelFormat,
                                                      int inWidth, int inHeight, int inPARNumerator,
                                                      int inPARDenominator, int inMemoryAlignment, int inSectorSize,
                                                      int inOffsetToPixelDataFromFirstSectorStart,
                                                      PrSDKColorSpaceID inColorSpaceID);
};

// ---- PPix Cache suite ----
// Version 6 is slots 1-14; version 8 keeps them and appends 15-20 (15-16 came
// with version 7). Version 1 is a table of its own without the preference
// parameters. Every dependency registered must be released with slot 8.
constexpr const char* kPrSDKPPixCacheSuite = "Premiere PPix Cache Suite";
constexpr int kPrSDKPPixCacheSuiteVersion1 = 1;
constexpr int kPrSDKPPixCacheSuiteVersion2 = 2;
constexpr int kPrSDKPPixCacheSuiteVersion3 = 3;
constexpr int kPrSDKPPixCacheSuiteVersion4 = 4;
constexpr int kPrSDKPPixCacheSuiteVersion5 = 5;
constexpr int kPrSDKPPixCacheSuiteVersion6 = 6;
constexpr int kPrSDKPPixCacheSuiteVersion7 = 7;
constexpr int kPrSDKPPixCacheSuiteVersion8 = 8;
constexpr int kPrSDKPPixCacheSuiteVersion = kPrSDKPPixCacheSuiteVersion8;

struct PrSDKPPixCacheSuite1 {
    prSuiteError (*AddFrameToCache)(csSDK_uint32 inImporterID, csSDK_int32 inStreamIndex, PPixHand inPPixHand,
                                    csSDK_int32 inFrameNumber);
    prSuiteError (*GetFrameFromCache)(csSDK_uint32 inImporterID, csSDK_int32 inStreamIndex,
                                      csSDK_int32 inFrameNumber, csSDK_int32 inNumFormats, imFrameFormat* inFormats,
                                      PPixHand* outPPixHand);
    prSuiteError (*AddRawPPixToCache)(csSDK_uint32 inImporterID, PPixHand inPPixHand, csSDK_int32 inKey);
    prSuiteError (*GetRawPPixFromCache)(csSDK_uint32 inImporterID, csSDK_int32 inKey, PPixHand* outPPixHand);
};

// Slots 1-14: the version 6 table.
#define TW_PPIX_CACHE_SUITE_SLOTS_V6                                                                               \
    prSuiteError (*AddFrameToCache)(csSDK_uint32 inImporterID, csSDK_int32 inStreamIndex, PPixHand inPPixHand,      \
                                    csSDK_int32 inFrameNumber, void* inPreferences,                                 \
                                    csSDK_int32 inPreferencesLength);                                               \
    prSuiteError (*GetFrameFromCache)(csSDK_uint32 inImporterID, csSDK_int32 inStreamIndex,                         \
                                      csSDK_int32 inFrameNumber, csSDK_int32 inNumFormats, imFrameFormat* inFormats, \
                                      PPixHand* outPPixHand, void* inPreferences, csSDK_int32 inPreferencesLength); \
    prSuiteError (*AddRawPPixToCache)(csSDK_uint32 inImporterID, PPixHand inPPixHand, csSDK_int32 inKey);           \
    prSuiteError (*GetRawPPixFromCache)(csSDK_uint32 inImporterID, csSDK_int32 inKey, PPixHand* outPPixHand);       \
    prSuiteError (*AddNamedPPixToCache)(const prPluginID* inPPixIdentifier, PPixHand inPPix);                       \
    prSuiteError (*GetNamedPPixFromCache)(const prPluginID* inPPixIdentifier, PPixHand* outPPixHand);               \
    prSuiteError (*RegisterDependencyOnNamedPPix)(const prPluginID* inPPixIdentifier);                              \
    prSuiteError (*UnregisterDependencyOnNamedPPix)(const prPluginID* inPPixIdentifier);                            \
    prSuiteError (*ExpireNamedPPixFromCache)(const prPluginID* inPPixIdentifier);                                   \
    prSuiteError (*ExpireAllPPixesFromCache)();                                                                     \
    prSuiteError (*AddFrameToCacheWithColorProfile)(                                                                \
        csSDK_uint32 inImporterID, csSDK_int32 inStreamIndex, PPixHand inPPixHand, csSDK_int32 inFrameNumber,       \
        void* inPreferences, csSDK_int32 inPreferencesLength, PrSDKString* inColorProfileName,                      \
        void* inColorProfileData, csSDK_int32 inColorProfileDataLength);                                            \
    prSuiteError (*GetFrameFromCacheWithColorProfile)(                                                              \
        csSDK_uint32 inImporterID, csSDK_int32 inStreamIndex, csSDK_int32 inFrameNumber, csSDK_int32 inNumFormats,  \
        imFrameFormat* inFormats, PPixHand* outPPixHand, void* inPreferences, csSDK_int32 inPreferencesLength,      \
        PrSDKString* inColorProfileName, void* inColorProfileData, csSDK_int32 inColorProfileDataSize);             \
    prSuiteError (*AddFrameToCacheWithColorProfile2)(                                                               \
        csSDK_uint32 inImporterID, csSDK_int32 inStreamIndex, PPixHand inPPixHand, csSDK_int32 inFrameNumber,       \
        PrRenderQuality inQuality, void* inPreferences, csSDK_int32 inPreferencesLength,                            \
        PrSDKString* inColorProfileName, void* inColorProfileData, csSDK_int32 inColorProfileDataLength);           \
    prSuiteError (*GetFrameFromCacheWithColorProfile2)(                                                             \
        csSDK_uint32 inImporterID, csSDK_int32 inStreamIndex, csSDK_int32 inFrameNumber, csSDK_int32 inNumFormats,  \
        imFrameFormat* inFormats, PPixHand* outPPixHand, PrRenderQuality inQuality, void* inPreferences,            \
        csSDK_int32 inPreferencesLength, PrSDKString* inColorProfileName, void* inColorProfileData,                 \
        csSDK_int32 inColorProfileDataSize);

struct PrSDKPPixCacheSuite6 {
    TW_PPIX_CACHE_SUITE_SLOTS_V6
};

struct PrSDKPPixCacheSuite {
    TW_PPIX_CACHE_SUITE_SLOTS_V6
    prSuiteError (*AddFrameToCacheWithColorSpace)(csSDK_uint32 inImporterID, csSDK_int32 inStreamIndex,
                                                  PPixHand inPPixHand, csSDK_int32 inFrameNumber,
                                                  PrRenderQuality inQuality, void* inPreferences,
                                                  csSDK_int32 inPreferencesLength,
                                                  PrSDKColorSpaceID* inPrColorSpaceID);
    prSuiteError (*GetFrameFromCacheWithColorSpace)(csSDK_uint32 inImporterID, csSDK_int32 inStreamIndex,
                                                    csSDK_int32 inFrameNumber, csSDK_int32 inNumFormats,
                                                    imFrameFormat* inFormats, PPixHand* outPPixHand,
                                                    PrRenderQuality inQuality, void* inPreferences,
                                                    csSDK_int32 inPreferencesLength,
                                                    PrSDKColorSpaceID* inPrColorSpaceID);
    prSuiteError (*RegisterDependencyOnFrame)(csSDK_uint32 inImporterID, csSDK_int32 inStreamIndex,
                                              csSDK_int32 inFrameNumber, csSDK_int32 inNumFormats,
                                              imFrameFormat* inFormats, prPluginID* outPPixIdentifier,
                                              void* inPreferences, csSDK_int32 inPreferencesLength);
    prSuiteError (*RegisterDependencyOnFrameWithColorProfile)(
        csSDK_uint32 inImporterID, csSDK_int32 inStreamIndex, csSDK_int32 inFrameNumber, csSDK_int32 inNumFormats,
        imFrameFormat* inFormats, prPluginID* outPPixIdentifier, void* inPreferences, csSDK_int32 inPreferencesLength,
        PrSDKString* inColorProfileName, void* inColorProfileData, csSDK_int32 inColorProfileDataSize);
    prSuiteError (*RegisterDependencyOnFrameWithColorProfile2)(
        csSDK_uint32 inImporterID, csSDK_int32 inStreamIndex, csSDK_int32 inFrameNumber, csSDK_int32 inNumFormats,
        imFrameFormat* inFormats, PrRenderQuality inQuality, prPluginID* outPPixIdentifier, void* inPreferences,
        csSDK_int32 inPreferencesLength, PrSDKString* inColorProfileName, void* inColorProfileData,
        csSDK_int32 inColorProfileDataSize);
    prSuiteError (*RegisterDependencyOnFrameWithColorSpace)(
        csSDK_uint32 inImporterID, csSDK_int32 inStreamIndex, csSDK_int32 inFrameNumber, csSDK_int32 inNumFormats,
        imFrameFormat* inFormats, PrRenderQuality inQuality, prPluginID* outPPixIdentifier, void* inPreferences,
        csSDK_int32 inPreferencesLength, PrSDKColorSpaceID* inPrColorSpaceID);
};

#undef TW_PPIX_CACHE_SUITE_SLOTS_V6

// ---- PPix suite ----
constexpr const char* kPrSDKPPixSuite = "Premiere PPix Suite";
constexpr int kPrSDKPPixSuiteVersion = 1;

struct PrSDKPPixSuite {
    prSuiteError (*Dispose)(PPixHand inPPixHand);
    prSuiteError (*GetPixels)(PPixHand inPPixHand, PrPPixBufferAccess inRequestedAccess, char** outPixelAddress);
    prSuiteError (*GetBounds)(PPixHand inPPixHand, prRect* inoutBoundingRect);
    prSuiteError (*GetRowBytes)(PPixHand inPPixHand, csSDK_int32* outRowBytes);
    prSuiteError (*GetPixelAspectRatio)(PPixHand inPPixHand, csSDK_uint32* outPixelAspectRatioNumerator,
                                        csSDK_uint32* outPixelAspectRatioDenominator);
    prSuiteError (*GetPixelFormat)(PPixHand inPPixHand, PrPixelFormat* outPixelFormat);
    prSuiteError (*GetUniqueKey)(PPixHand inPPixHand, unsigned char* inoutKeyBuffer, size_t inKeyBufferSize);
    prSuiteError (*GetUniqueKeySize)(size_t* outKeyBufferSize);
    prSuiteError (*GetRenderTime)(PPixHand inPPixHand, csSDK_int32* outRenderMilliseconds);
};

// ---- App Info suite ----
constexpr const char* kPrSDKAppInfoSuite = "MediaCore App Info Suite";
constexpr int kPrSDKAppInfoSuiteVersion = 3;

// Application codes: four characters, the first in the most significant byte.
constexpr csSDK_uint32 kAppPremierePro = 0x5050726F;        // 'PPro'
constexpr csSDK_uint32 kAppPremiereElements = 0x5072456C;   // 'PrEl'
constexpr csSDK_uint32 kAppAfterEffects = 0x46585443;       // 'FXTC'
constexpr csSDK_uint32 kAppMediaEncoder = 0x414D4520;       // 'AME '
constexpr csSDK_uint32 kAppCottonwood = 0x434F574F;         // 'COWO'
constexpr csSDK_uint32 kAppPrelude = 0x50524C44;            // 'PRLD'
constexpr csSDK_uint32 kAppSpeedGrade = 0x53504744;         // 'SPGD'
constexpr csSDK_uint32 kAppAudition = 0x41644175;           // 'AdAu'
constexpr csSDK_uint32 kAppCharacterAnimator = 0x416E6D6C;  // 'Anml'

struct PrSDKAppInfoSuite {
    enum {
        kAppInfo_AppFourCC = 0,  // csSDK_uint32
        kAppInfo_Version = 1,    // VersionInfo
        kAppInfo_Build = 2,      // csSDK_uint32 (version 2 and later)
        kAppInfo_Language = 3    // LanguageInfo (version 3)
    };
    struct VersionInfo {
        unsigned int major;
        unsigned int minor;
        unsigned int patch;
    };
    struct LanguageInfo {
        char languageID[6];  // NUL-terminated locale such as "en_US"
    };
    prSuiteError (*GetAppInfo)(int inSettingsSelector, void* outAppInfo);
};

// ---- Application Settings suite ----
constexpr const char* kPrSDKApplicationSettingsSuite = "MediaCore Application Settings Suite";
constexpr int kPrSDKApplicationSettingsSuiteVersion = 1;

enum ScratchDiskType : unsigned int {
    kScratchDiskType_CaptureVideo = 0,
    kScratchDiskType_CaptureAudio = 1,
    kScratchDiskType_PreviewVideo = 2,
    kScratchDiskType_PreviewAudio = 3
};

// Both return suiteError_InvalidCall when there is no project. Returned strings
// are disposed through the String suite.
struct PrSDKApplicationSettingsSuite {
    prSuiteError (*GetScratchDiskFolder)(unsigned int inScratchDiskType, PrSDKString* outScratchDiskFolder);
    prSuiteError (*GetCurrentProjectPath)(PrSDKString* outCurrentProjectPath);
};

// ---- Time suite ----
constexpr const char* kPrSDKTimeSuite = "Premiere Time Suite";
constexpr int kPrSDKTimeSuiteVersion = 1;

struct PrSDKTimeSuite {
    prSuiteError (*GetTicksPerSecond)(PrTime* outTicksPerSec);
    prSuiteError (*GetTicksPerVideoFrame)(PrVideoFrameRates inVideoFrameRate, PrTime* outTicksPerFrame);
    // suiteError_TimeRoundedAudioRate (a success) when the rate does not divide the tick rate.
    prSuiteError (*GetTicksPerAudioSample)(float inSampleRate, PrTime* outTicksPerSample);
};

// ---- Error suite ----
constexpr const char* kPrSDKErrorSuite = "Premiere Error Suite";
constexpr int kPrSDKErrorSuiteVersion1 = 1;
constexpr int kPrSDKErrorSuiteVersion2 = 2;
constexpr int kPrSDKErrorSuiteVersion3 = 3;
constexpr int kPrSDKErrorSuiteVersion = kPrSDKErrorSuiteVersion3;

struct PrSDKErrorSuite1 {
    prSuiteError (*SetErrorString)(const char* inErrorString, csSDK_uint32 inContextID);
    prSuiteError (*SetWarningString)(const char* inWarningString, csSDK_uint32 inContextID);
    prSuiteError (*SetInfoString)(const char* inInfoString, csSDK_uint32 inContextID);
};

struct PrSDKErrorSuite2 {
    prSuiteError (*SetEventString)(csSDK_uint32 inEventType, const char* inEventTitle,
                                   const char* inEventDescription);
};

struct PrSDKErrorSuite3 {
    enum {
        kEventTypeInformational = 1,
        kEventTypeWarning = 2,
        kEventTypeError = 3,
        kEventType_Mask = 0xFF,
        kEventFlag_DecodeError = 0x100,
        kEventFlag_SubstitutedFrame = 0x200,
        kEventFlag_ImportOperation = 0x400  // the description ends with the quoted file name
    };
    // NUL-terminated UTF-16 texts.
    prSuiteError (*SetEventStringUnicode)(csSDK_uint32 inEventType, prUTF16Char* inEventTitle,
                                          prUTF16Char* inEventDescription);
};

// ---- File Registration suite ----
constexpr const char* kPrSDKFileRegistrationSuite = "Premiere File Registration Suite";
constexpr int kPrSDKFileRegistrationSuiteVersion = 1;

struct PrSDKFileRegistrationSuite {
    prSuiteError (*RegisterFileForHostManagement)(csSDK_uint32 inPluginID, const char* inFileDescTag,
                                                  const char* inFilePath, const char* const* inExtensions,
                                                  int inNumExtensions, csSDK_uint32 inFlags);
    prSuiteError (*GetRegisteredFilePath)(csSDK_uint32 inPluginID, const char* inFileDescTag, char* outFilePath,
                                          csSDK_uint32 inFilePathLength);
    prSuiteError (*UnregisterHostManagedFile)(csSDK_uint32 inPluginID, const char* inFileDescTag);
};

#pragma pack(pop)

// ---- Audio suite (no packing; pointers only) ----
// Full scale (0 dB) is +-1.0. Sources of slots 5-8 are interleaved integers;
// their destinations one float buffer per channel.
constexpr const char* kPrSDKAudioSuite = "Premiere Audio Suite";
constexpr int kPrSDKAudioSuiteVersion = 1;

struct PrSDKAudioSuite {
    prSuiteError (*ConvertAndInterleaveTo8BitInteger)(float** inSource, char* outDestination,
                                                      unsigned int inNumChannels, unsigned int inNumSampleFrames);
    prSuiteError (*ConvertAndInterleaveTo16BitInteger)(float** inSource, short* outDestination,
                                                       unsigned int inNumChannels, unsigned int inNumSampleFrames);
    prSuiteError (*ConvertAndInterleaveTo24BitInteger)(float** inSource, char* outDestination,
                                                       unsigned int inNumChannels, unsigned int inNumSampleFrames);
    prSuiteError (*ConvertAndInterleaveTo32BitInteger)(float** inSource, csSDK_int32* outDestination,
                                                       unsigned int inNumChannels, unsigned int inNumSampleFrames);
    prSuiteError (*UninterleaveAndConvertFrom8BitInteger)(char* inSource, float** outDestination,
                                                          unsigned int inNumChannels, unsigned int inNumSampleFrames);
    prSuiteError (*UninterleaveAndConvertFrom16BitInteger)(short* inSource, float** outDestination,
                                                           unsigned int inNumChannels,
                                                           unsigned int inNumSampleFrames);
    prSuiteError (*UninterleaveAndConvertFrom24BitInteger)(char* inSource, float** outDestination,
                                                           unsigned int inNumChannels,
                                                           unsigned int inNumSampleFrames);
    prSuiteError (*UninterleaveAndConvertFrom32BitInteger)(csSDK_int32* inSource, float** outDestination,
                                                           unsigned int inNumChannels,
                                                           unsigned int inNumSampleFrames);
};

static_assert(sizeof(PrSDKStringSuite) == 40 && offsetof(PrSDKStringSuite, CopyToUTF16String) == 32, "String suite");
static_assert(sizeof(PrSDKPPixCreatorSuite) == 16, "PPix Creator suite");
static_assert(sizeof(PrSDKPPixCreator2Suite) == 56, "PPix Creator 2 suite");
static_assert(sizeof(PrSDKPPixCacheSuite1) == 32, "PPix Cache suite v1");
static_assert(sizeof(PrSDKPPixCacheSuite6) == 112, "PPix Cache suite v6");
static_assert(sizeof(PrSDKPPixCacheSuite) == 160 && offsetof(PrSDKPPixCacheSuite, AddFrameToCacheWithColorProfile2) == 96 &&
                  offsetof(PrSDKPPixCacheSuite, GetFrameFromCacheWithColorProfile2) == 104 &&
                  offsetof(PrSDKPPixCacheSuite, AddFrameToCacheWithColorSpace) == 112 &&
                  offsetof(PrSDKPPixCacheSuite, GetFrameFromCacheWithColorSpace) == 120 &&
                  offsetof(PrSDKPPixCacheSuite, RegisterDependencyOnFrameWithColorSpace) == 152,
              "PPix Cache suite v8");
static_assert(sizeof(PrSDKPPixSuite) == 72 && offsetof(PrSDKPPixSuite, GetPixelFormat) == 40 &&
                  offsetof(PrSDKPPixSuite, GetRenderTime) == 64,
              "PPix suite");
static_assert(sizeof(PrSDKAppInfoSuite) == 8 && sizeof(PrSDKAppInfoSuite::VersionInfo) == 12 &&
                  sizeof(PrSDKAppInfoSuite::LanguageInfo) == 6,
              "App Info suite");
static_assert(sizeof(PrSDKApplicationSettingsSuite) == 16, "Application Settings suite");
static_assert(sizeof(PrSDKTimeSuite) == 24, "Time suite");
static_assert(sizeof(PrSDKErrorSuite1) == 24 && sizeof(PrSDKErrorSuite2) == 8 && sizeof(PrSDKErrorSuite3) == 8,
              "Error suites");
static_assert(sizeof(PrSDKFileRegistrationSuite) == 24, "File Registration suite");
static_assert(sizeof(PrSDKAudioSuite) == 64 && offsetof(PrSDKAudioSuite, UninterleaveAndConvertFrom8BitInteger) == 32,
              "Audio suite");
