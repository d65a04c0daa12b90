#pragma once
// The importer interface: selectors, results, constants and the records that the
// host and an importer exchange through xImportEntry and the asynchronous
// reader entry.

#include "MediaCoreCallbacks.h"
#include "MediaCorePixelFormats.h"
#include "MediaCoreTypes.h"

// The interface version of this declaration set, given to importers in
// imStdParms::imInterfaceVer by a host of the same generation.
constexpr csSDK_int32 IMPORTMOD_VERSION_18 = 18;
constexpr csSDK_int32 IMPORTMOD_VERSION_23 = 23;
constexpr csSDK_int32 IMPORTMOD_VERSION = IMPORTMOD_VERSION_23;

// ---- Selectors of xImportEntry. Missing numbers are retired: answer imUnsupported. ----
enum PrImporterSelector : csSDK_int32 {
    imInit = 0,
    imShutdown = 1,
    imImportImage = 5,
    imQuietFile = 8,
    imCloseFile = 9,
    imAnalysis = 12,
    imDataRateAnalysis = 13,
    imGetIndFormat = 14,
    imGetMetaData = 23,
    imSetMetaData = 24,
    imImportAudio7 = 25,
    imGetIndPixelFormat = 27,
    imGetSupports7 = 28,
    imResetSequentialAudio = 29,
    imGetSequentialAudio = 30,
    imGetRollCrawlInfo = 32,
    imRollCrawlRenderPage = 33,
    imGetSupports8 = 36,
    imGetInfo8 = 37,
    imGetPrefs8 = 38,
    imOpenFile8 = 39,
    imSaveFile8 = 40,
    imDeleteFile8 = 41,
    imCalcSize8 = 42,
    imCheckTrim8 = 43,
    imTrimFile8 = 44,
    imGetPreferredFrameSize = 45,
    imCreateAsyncImporter = 46,
    imGetSourceVideo = 47,
    imDeferredProcessing = 48,
    imGetPeakAudio = 49,
    imRetargetAccelerator = 50,
    imCopyFile = 51,
    imGetTimeInfo8 = 52,
    imSetTimeInfo8 = 53,
    imGetSubTypeNames = 54,
    imGetFileAttributes = 55,
    imQueryDestinationPath = 56,
    imQueryContentState = 57,
    imGetIndColorProfile = 58,
    imQueryInputFileList = 59,
    imQueryStreamLabel = 60,
    imInitiateAsyncClosedCaptionScan = 61,
    imGetNextClosedCaption = 62,
    imCompleteAsyncClosedCaptionScan = 63,
    imGetAudioChannelLayout = 64,
    imSelectClipFrameDescriptor = 65,
    imPerformSourceSettingsCommand = 66,
    imGetExtendedFormatInfo = 67,
    imGetDataStreamsInfo = 68,
    imGetDataStream = 69,
    imGetDataSample = 70,
    imGetSupportsPerInstancePrefs = 71,
    imGetInstancePrefs = 72,
    imGetIndColorSpace = 73,
    imGetDataStreamChunk = 74,
    imGetDataFileInfo = 75,
    imGetDataHierarchy = 76,
    imGetStreamInfo = 77,
    imGetStreamTemporalSamples = 78,
    imGetDataStreamVideoSyncTime = 79,
    imGetCurrentSystemState = 80,
    imGetInfo9 = 81,
    imGetEmbeddedLUT = 82
};

// ---- Importer results ----
enum PrImporterReturnValue : csSDK_int32 {
    imNoErr = 0,
    imTooWide = 1,
    imBadFile = 2,
    imUnsupported = 3,
    imMemErr = 4,
    imOtherErr = 5,
    imNoContent = 6,
    imBadRate = 7,
    imBadCompression = 8,
    imBadCodec = 9,
    imNotFlat = 10,
    imBadSndComp = 11,
    imNoTimecode = 12,
    imMissingComponent = 13,
    imSaveErr = 14,
    imDeleteErr = 15,
    imNotFoundErr = 16,
    imSetFile = 17,
    imIterateStreams = 18,
    imBadStreamIndex = 19,
    imCantTrim = 20,
    imDiskFull = 21,
    imDiskErr = 22,
    imFileShareViolation = 23,
    imIterateFrameSizes = 24,
    imMediaPending = 25,
    imDRMControlled = 26,
    imActivationFailed = 27,
    imFrameNotFound = 28,
    imBadHeader = 29,
    imUnsupportedCompression = 30,
    imFileOpenFailed = 31,
    imFileHasNoImportableStreams = 32,
    imFileReadFailed = 33,
    imUnsupportedAudioFormat = 34,
    imUnsupportedVideoBitDepth = 35,
    imDecompressionError = 36,
    imInvalidPreferences = 37,
    inFileNotAvailable = 38,  // spelled with "in"
    imRequiresProtectedContent = 39,
    imNoCaptions = 40,
    imMultipleDescription = 41,
    imComplexEditList = 42,
    imDelegate = 255
};

constexpr csSDK_int32 imCancel = 300;
constexpr csSDK_int32 imBadFormatIndex = 301;
constexpr csSDK_int32 imIsCacheable = 400;

constexpr prMALError malNoError = 0;
constexpr prMALError malUnknownError = 99;
constexpr prMALError malSupports7 = 100;
constexpr prMALError malSupports8 = 101;
constexpr prMALError malSupportsPerInstancePrefs = 102;

// ---- File-type flags of imIndFormatRec::flags ----
enum : csSDK_int32 {
    xfCanOpen = 0x8000,
    xfCanImport = 0x4000,
    xfCanReplace = 0x2000,
    xfUsesFiles = 0x1000,
    xfCantBatchProcess = 0x0800,
    xfCanWriteMetaData = 0x0400,
    xfCanWriteTimecode = 0x0200,
    xfIsTitle = 0x0100,
    xfIsEffect = 0x0080,
    xfIsAFilter = 0x0040,
    xfIsVFilter = 0x0020,
    xfIsStill = 0x0010,
    xfIsMovie = 0x0008,
    xfIsSound = 0x0004,
    xfIsAnimation = 0x0002,
    xfIsBackdrop = 0x0001,
    xfTypes = 0x03FF
};

// ---- imFileInfoRec8::accessModes ----
constexpr csSDK_int32 kRandomAccessImport = 0;
constexpr csSDK_int32 kSequentialAudioOnly = 1;
constexpr csSDK_int32 kSequentialVideoOnly = 2;
constexpr csSDK_int32 kSequentialOnly = 3;
constexpr csSDK_int32 kSeparateSequentialAudio = 4;

// ---- Colour support ----
constexpr csSDK_int32 imColorProfileSupport_None = 0;
constexpr csSDK_int32 imColorProfileSupport_Fixed = 1;
constexpr csSDK_int32 imColorSpaceSupport_None = 0;
constexpr csSDK_int32 imColorSpaceSupport_Fixed = 1;

// imImageInfoRec::interpretationUncertain bits.
constexpr csSDK_int32 imPixelAspectRatioUncertain = 0x1;
constexpr csSDK_int32 imFieldTypeUncertain = 0x2;
constexpr csSDK_int32 imAlphaInfoUncertain = 0x4;
constexpr csSDK_int32 imEmbeddedColorProfileUncertain = 0x8;
constexpr csSDK_int32 imColorSpaceUncertain = 0x8;

// ---- Miscellaneous ----
constexpr csSDK_uint32 imUncompressed = 0x52415720;  // 'RAW ', first character in the top byte
constexpr csSDK_uint32 imSubTypeUnknown = 0xFFFFFFFFu;

// imImportImageRec::flags.
constexpr csSDK_int32 imDraftMode = 8;
constexpr csSDK_int32 imSamplesAreFields = 16;

// imImageInfoRec::noDuration.
enum ImporterDurationType : csSDK_int32 {
    imNoDurationFalse = 0,
    imNoDurationNoDefault = 1,
    imNoDurationStillDefault = 2
};

// imImportInfoRec::addToMenu.
constexpr csSDK_int32 imMenuNone = 0;
constexpr csSDK_int32 imMenuNew = 1;

enum ImporterPulldownCadence : csSDK_int32 {
    importer_PulldownPhase_NO_PULLDOWN = 0,
    importer_PulldownPhase_WSSWW = 1,
    importer_PulldownPhase_SSWWW = 2,
    importer_PulldownPhase_SWWWS = 3,
    importer_PulldownPhase_WWWSS = 4,
    importer_PulldownPhase_WWSSW = 5,
    importer_PulldownPhase_WWWSW = 6,
    importer_PulldownPhase_WWSWW = 7,
    importer_PulldownPhase_WSWWW = 8,
    importer_PulldownPhase_SWWWW = 9,
    importer_PulldownPhase_WWWWS = 10
};

// Progress callback for long operations.
constexpr csSDK_int32 imProgressAbort = 0;
constexpr csSDK_int32 imProgressContinue = 1;
typedef csSDK_int32 (*importProgressFunc)(csSDK_int32 partDone, csSDK_int32 totalToDo, void* trimCallbackID);

constexpr int kMaxAlternateTypes = 50;

// ---- Predefined colour-space names (UTF-8, for kPrSDKColorSpaceType_Predefined) ----
constexpr const char* kPrSRGBColorSpace = "sRGB";
constexpr const char* kPrRec601525ColorSpace = "BT.601 (NTSC)";
constexpr const char* kPrRec601625ColorSpace = "BT.601 (PAL)";
constexpr const char* kPrRec709 = "BT.709";
constexpr const char* kPrRec709Scene = "BT.709 (Scene)";
constexpr const char* kPrRec709RGB = "BT.709 RGB";
constexpr const char* kPrRec709RGBScene = "BT.709 RGB (Scene)";
constexpr const char* kPrOverranged709 = "BT.709 RGB Full";
constexpr const char* kPrOverranged709Scene = "BT.709 RGB Full (Scene)";
constexpr const char* kPrOverranged709Display = "BT.709 RGB Full (Display)";
constexpr const char* kPrRec2020 = "BT.2020";
constexpr const char* kPrRec2020Scene = "BT.2020 (Scene)";
constexpr const char* kPrRec2020RGB = "BT.2020 RGB";
constexpr const char* kPrRec2020RGBScene = "BT.2020 RGB (Scene)";
constexpr const char* kPrOverranged2020 = "BT.2020 RGB Full";
constexpr const char* kPrOverranged2020Scene = "BT.2020 RGB Full (Scene)";
constexpr const char* kPrOverranged2020Display = "BT.2020 RGB Full (Display)";
constexpr const char* kPrRec2100HLG = "BT.2100 HLG";
constexpr const char* kPrRec2100HLGScene = "BT.2100 HLG (Scene)";
constexpr const char* kPrRec2100HLGRGB = "BT.2100 HLG RGB";
constexpr const char* kPrRec2100HLGRGBScene = "BT.2100 HLG RGB (Scene)";
constexpr const char* kPrOverranged2100HLG = "BT.2100 HLG RGB Full";
constexpr const char* kPrOverranged2100HLGScene = "BT.2100 HLG RGB Full (Scene)";
constexpr const char* kPrOverranged2100HLGDisplay = "BT.2100 HLG RGB Full (Display)";
constexpr const char* kPrRec2100PQ = "BT.2100 PQ";
constexpr const char* kPrRec2100PQScene = "BT.2100 PQ (Scene)";
constexpr const char* kPrRec2100PQRGB = "BT.2100 PQ RGB";
constexpr const char* kPrRec2100PQRGBScene = "BT.2100 PQ RGB (Scene)";
constexpr const char* kPrOverranged2100PQ = "BT.2100 PQ RGB Full";
constexpr const char* kPrOverranged2100PQScene = "BT.2100 PQ RGB Full (Scene)";
constexpr const char* kPrOverranged2100PQDisplay = "BT.2100 PQ RGB Full (Display)";
constexpr const char* kPrDCDMXYZ = "DCDM X'Y'Z'";
constexpr const char* kPrSonySGamutSLog2 = "Sony SGamut/SLog2";
constexpr const char* kPrSony2020SLog3 = "BT.2020/SLog3";
constexpr const char* kPrSonySGamut3CineSLog3 = "Sony SGamut3.Cine/SLog3";
constexpr const char* kPrSonySGamut3SLog3 = "Sony SGamut3/SLog3";
constexpr const char* kPrWorkingColorSpace = "Working Color Space";  // not for importers

// ---- Byte-packed records ----
#pragma pack(push, 1)

// Filled by the importer in imInit. Every member after the 37-byte
// fileInfoVersion sits at an odd offset.
struct imImportInfoRec {
    csSDK_uint32 importerType;
    csSDK_int32 unused1;
    csSDK_int32 canSave;
    csSDK_int32 canDelete;
    csSDK_int32 canResize;
    csSDK_int32 canDoSubsize;
    csSDK_int32 canDoContinuousTime;
    csSDK_int32 noFile;
    csSDK_int32 addToMenu;
    csSDK_int32 hasSetup;
    csSDK_int32 dontCache;
    csSDK_int32 setupOnDblClk;
    csSDK_int32 keepLoaded;
    csSDK_int32 priority;
    csSDK_int32 canAsync;
    csSDK_int32 canCreate;
    csSDK_int32 canCalcSizes;
    csSDK_int32 canTrim;
    csSDK_int32 avoidAudioConform;
    prUTF16Char* acceleratorFileExt;  // host buffer of 256 units
    csSDK_int32 canCopy;
    csSDK_int32 canSupplyMetadataClipName;
    csSDK_int32 canValidatePrefs;
    csSDK_int32 canProvidePeakAudio;
    csSDK_int32 canProvideFileList;
    csSDK_int32 canProvideClosedCaptions;
    prPluginID fileInfoVersion;
    csSDK_int32 hasSourceSettingsEffect;
    csSDK_int32 hasPersistentData;
    csSDK_int32 reserved[10];
};

struct imIndFormatRec {
    csSDK_int32 filetype;
    csSDK_int32 flags;
    csSDK_int32 canWriteTimecode;
    char FormatName[256];
    char FormatShortName[32];
    char PlatformExtension[256];  // extensions separated by NUL characters
    prBool hasAlternateTypes;
    csSDK_int32 alternateTypes[kMaxAlternateTypes];
    csSDK_int32 canWriteMetaData;
};

struct imIndPixelFormatRec {
    void* privatedata;
    PrPixelFormat outPixelFormat;
    const void* prefs;
};

// H.265 SEI numbering; the defaults are display-referred Rec.709.
struct prSEIColorCodesRec {
    csSDK_int32 colorPrimariesCode = 1;
    csSDK_int32 transferCharacteristicCode = 1;
    csSDK_int32 matrixEquationsCode = 1;
    csSDK_int32 bitDepth = 8;
    prBool isFullRange = kPrFalse;
    prBool isRGB = kPrFalse;
    prBool isSceneReferred = kPrFalse;
};

struct matteColRec {
    unsigned char red;
    unsigned char blue;
    unsigned char green;
};

struct imImageInfoRec {
    csSDK_int32 imageWidth;
    csSDK_int32 imageHeight;
    csSDK_uint16 pixelAspectV1;
    csSDK_int16 depth;
    csSDK_int32 subType;
    char fieldType;
    char fieldsStacked;
    char reserved_1;
    char reserved_2;
    char alphaType;
    matteColRec matteColor;
    char alphaInverted;
    char isVectors;
    char drawsExternal;
    char canForceInternalDraw;
    char dontObscure;
    char isStill;
    char noDuration;
    char reserved_3;
    csSDK_uint32 pixelAspectNum;
    csSDK_uint32 pixelAspectDen;
    char isRollCrawl;
    char reservedc[3];
    csSDK_int32 importerID;  // input: the instance ID for the PPix Cache suite
    csSDK_int32 supportsAsyncIO;
    csSDK_int32 supportsGetSourceVideo;
    csSDK_int32 hasPulldown;
    csSDK_int32 pulldownCadence;
    csSDK_int32 posterFrame;
    csSDK_int32 canTransform;
    csSDK_int32 interpretationUncertain;
    csSDK_int32 colorProfileSupport;
    PrSDKString codecDescription;
    csSDK_int32 colorSpaceSupport;
    PrTime frameRate;  // non-zero: frame duration in ticks, overrides vidScale/vidSampleSize
    prBool hasEmbeddedLUT;
    csSDK_int32 bitDepth;
    csSDK_int32 reserved[11];
};

struct imAudioInfoRec7 {
    csSDK_int32 numChannels;
    float sampleRate;
    PrAudioSampleType sampleType;
};

struct imFileInfoRec8 {
    char hasVideo;
    char hasAudio;
    imImageInfoRec vidInfo;
    csSDK_int32 vidScale;
    csSDK_int32 vidSampleSize;
    csSDK_int32 vidDuration;
    imAudioInfoRec7 audInfo;
    PrAudioSample audDuration;
    csSDK_int32 accessModes;
    void* privatedata;
    void* prefs;
    char hasDataRate;
    csSDK_int32 streamIdx;
    char streamsAsComp;
    prUTF16Char streamName[256];
    csSDK_int32 sessionPluginID;  // valid during the call only
    char alwaysUnquiet;
    char hasDataStreams;
    prUTF16Char filePath[2048];
    char canProvidePeakData;
    char mayBeGrowing;
    char ignoreGrowing;
    prUTF16Char sourceSettingsMatchName[256];
    csSDK_int64 vidDurationInFrames;  // when set, the host ignores vidDuration
    PrIVProjectionType ivProjectionType;
    PrIVFrameLayout ivFrameLayout;
    csSDK_uint32 ivHorizontalCapturedView;
    csSDK_uint32 ivVerticalCapturedView;
    char mayHaveCaptions;
    char reserved[2];
};

struct imFileInfoRec9 {
    imFileInfoRec8 info;
    csSDK_uint32 systemStateFlagMask;
    csSDK_uint32 systemStateFlagsCurrent;
    csSDK_uint32 systemStateSubtypeVersion;
    csSDK_uint32 reserved[445];
};

struct imFileAccessRec8 {
    void* importID;
    csSDK_int32 filetype;
    const prUTF16Char* filepath;
    imFileRef fileref;
    PrMemoryPtr newfilename;
};

struct imFileOpenRec8 {
    imFileAccessRec8 fileinfo;
    void* privatedata;
    csSDK_int32 delegatetype;
    PrFileOpenAccess inReadWrite;
    csSDK_int32 inImporterID;
    csSDK_size_t outExtraMemoryUsage;
    csSDK_int32 inStreamIdx;
};

// A zero member means "any".
struct imFrameFormat {
    csSDK_int32 inFrameWidth;
    csSDK_int32 inFrameHeight;
    PrPixelFormat inPixelFormat;
};

struct imRenderContext {
    imRenderIntent inIntent;
    double inPlaybackRatio;
    double inPlaybackRate;
};

struct imSourceVideoRec {
    void* inPrivateData;
    csSDK_int32 currentStreamIdx;
    PrTime inFrameTime;
    imFrameFormat* inFrameFormats;  // in order of preference; NULL means any
    csSDK_int32 inNumFrameFormats;
    bool removePulldown;
    char unused2[3];
    PPixHand* outFrame;
    void* prefs;
    csSDK_int32 prefsSize;
    PrSDKString selectedColorProfileName;
    PrRenderQuality inQuality;
    imRenderContext inRenderContext;
    PrSDKColorSpaceID opaqueColorSpaceIdentifier;
};

struct ClipFrameDescriptor {
    PrPixelFormat inPixelFormat;
    csSDK_int32 inWidth;
    csSDK_int32 inHeight;
    csSDK_int32 inPixelAspectRatioNumerator;
    csSDK_int32 inPixelAspectRatioDenominator;
    prFieldType inFieldType;
    PrRenderQuality inQuality;
};

struct imClipFrameDescriptorRec {
    void* inPrefs;
    ClipFrameDescriptor inDesiredClipFrameDescriptor;
    ClipFrameDescriptor outBestFrameDescriptor;  // pre-filled with the host's guess
    void* inPrivateData;
};

// The asynchronous reader's entry, handed to the host in imCreateAsyncImporter.
typedef csSDK_int32 (*AsyncImporterEntry)(int inSelector, void* inParam);

struct imAsyncImporterCreationRec {
    void* inPrivateData;
    void* inPrefs;
    AsyncImporterEntry outAsyncEntry;
    void* outAsyncPrivateData;
};

struct aiAsyncRequest {
    void* inPrivateData;  // the asynchronous reader's own private data
    long unused1;         // 8 bytes on Linux
    imSourceVideoRec inSourceRec;
};

struct aiSelectEfficientRenderTimeRec {
    void* inPrivateData;
    void* prefs;
    csSDK_int32 prefsSize;
    PrTime ioTime;
    imRenderContext inRenderContext;
};

struct aiGetMinPlaybackSpeedForSelectingEfficientTimeRec {
    void* inPrivateData;
    double outPlaybackSpeed;
};

// 0 x 0 means any size.
struct imPreferredFrameSizeRec {
    void* inPrivateData;
    void* inPrefs;
    PrPixelFormat inPixelFormat;
    csSDK_int32 inIndex;
    csSDK_int32 outWidth;
    csSDK_int32 outHeight;
};

// Two passes: the first has prefs == NULL and asks for prefsLength.
struct imGetPrefsRec {
    char* prefs;
    csSDK_int32 prefsLength;
    char firstTime;
    PrTimelineID timelineData;
    csSDK_int32 unused;
    TDB_TimeRecord tdbTimelineLocation;
    csSDK_int32 sessionPluginID;
    csSDK_int32 imageWidth;
    csSDK_int32 imageHeight;
    csSDK_uint32 pixelAspectNum;
    csSDK_uint32 pixelAspectDen;
    csSDK_int32 vidScale;
    csSDK_int32 vidSampleSize;
    float sampleRate;
};

struct imGetInstancePrefsRec {
    void* privateData;
    imGetPrefsRec prefsRec;
};

struct imAnalysisRec {
    void* privatedata;
    void* prefs;
    csSDK_int32 buffersize;  // the importer may raise it to ask for more
    char* buffer;
    csSDK_int32 timecodeFormat;
};

struct imTimeInfoRec8 {
    void* privatedata;
    void* prefs;
    char orgtime[18];  // timecode text; semicolons mean drop-frame
    csSDK_int32 orgScale;
    csSDK_int32 orgSampleSize;
    char alttime[18];
    csSDK_int32 altScale;
    csSDK_int32 altSampleSize;
    char orgreel[40];
    char altreel[40];
    char logcomment[256];
    csSDK_int32 dataType;  // 1 = SMPTE timecode
};

// First pass: fill outNumFilePaths. Second pass: fill the host's array of
// that many empty strings through the String suite.
struct imQueryInputFileListRec {
    void* inPrivateData;
    void* inPrefs;
    PrSDKString inBasePath;
    csSDK_int32 outNumFilePaths;
    PrSDKString* outFilePaths;
};

struct imImportAudioRec7 {
    PrAudioSample position;  // negative: continue from the end of the last read
    csSDK_uint32 size;       // sample frames; 32 bits on Linux, so buffer sits at 12
    float** buffer;          // one buffer of size floats per channel
    void* privateData;
    void* prefs;
};

// The content of ioData is private to the importer and its source-settings effect.
struct imSourceSettingsCommandRec {
    char* ioData;
    csSDK_int32 inDataSize;
    void* inPrivateData;
};

struct imSubTypeDescriptionRec {
    csSDK_int32 subType;
    prUTF16Char subTypeName[256];
};

struct imDeferredProcessingRec {
    void* inPrivateData;
    float outProgress;
    char outInvalidateFile;
    char outCallAgain;
};

struct imCurrentSystemStateRec {
    csSDK_uint32 inSystemStateMask;
    csSDK_uint32 outCommonStateMask;
    csSDK_uint32 outCurrentSystemState;
    csSDK_uint32 inSubtype;
    csSDK_uint32 outSubtypeVersion;
    csSDK_uint32 reserved[6];
};

struct imFileAttributesRec {
    prDateStamp creationDateStamp;
    csSDK_int32 reserved[40];
};

struct imGetAudioChannelLayoutRec {
    void* inPrivateData;
    PrAudioChannelLabel outChannelLabels[kMaxAudioChannelCount];
};

struct imPeakAudioRec {
    void* inPrivateData;
    void* inPrefs;
    PrAudioSample inPosition;
    float inSampleRate;
    csSDK_int32 inNumSampleFrames;
    float** outMaxima;
    float** outMinima;
};

// Legacy still path; Linux layout (16-byte prRect).
struct imImportImageRec {
    csSDK_int32 unused1;
    csSDK_int32 dstWidth;
    csSDK_int32 dstHeight;
    csSDK_int32 dstOriginX;
    csSDK_int32 dstOriginY;
    csSDK_int32 srcWidth;
    csSDK_int32 srcHeight;
    csSDK_int32 srcOriginX;
    csSDK_int32 srcOriginY;
    csSDK_int32 unused2;
    csSDK_int32 unused3;
    csSDK_int32 rowbytes;
    char* pix;
    csSDK_int32 pixsize;
    PrPixelFormat pixformat;
    csSDK_int32 flags;
    prFieldType fieldType;
    csSDK_int32 scale;
    csSDK_int32 sampleSize;
    csSDK_int32 in;
    csSDK_int32 out;
    csSDK_int32 pos;
    void* privatedata;
    void* prefs;
    prRect alphaBounds;
    csSDK_int32 applyTransform;
    float transform[3][3];
    prRect destClipRect;
};

#pragma pack(pop)

// ---- Colour records: natural alignment (their byte-packed members keep alignment 1) ----

struct RawColorProfileRec {
    csSDK_int32 ioBufferSize;
    void* inDestinationBuffer;  // NULL on the first of the two ICC passes
    PrSDKString outName;
};

// imGetIndColorSpace; only the sub-record named by outColorSpaceType is meaningful.
struct ColorSpaceRec {
    void* inPrivateData;
    PrSDKColorSpaceType outColorSpaceType;
    RawColorProfileRec ioProfileRec;
    prSEIColorCodesRec outSEICodesRec;
};
typedef ColorSpaceRec imIndColorSpaceRec;

// Obsolete imGetIndColorProfile.
struct ColorProfileRec {
    void* inPrivateData;
    csSDK_int32 ioBufferSize;
    void* inDestinationBuffer;
    PrSDKString outName;
};
typedef ColorProfileRec imIndColorProfileRec;

struct RawColorSpaceRec {
    PrSDKColorSpaceType colorSpaceType;
    RawColorProfileRec profileRec;
    prSEIColorCodesRec seiCodesRec;
};

struct EmbeddedLUTRec {
    void* privateData;
    RawColorProfileRec lutBlobRec;
    RawColorSpaceRec lutInputColorSpaceRec;
    RawColorSpaceRec lutOutputColorSpaceRec;
};
typedef EmbeddedLUTRec imIndEmbeddedLUTRec;

// ---- Entry points ----
// The exported importer entry, found by name ("xImportEntry", C linkage).
typedef csSDK_int32 (*ImportEntryFunc)(csSDK_int32 selector, imStdParms* stdParms, void* param1, void* param2);

// ---- Asynchronous reader selectors and results ----
// aiFlush and aiClose receive the reader's private data itself; aiGetFrame an
// imSourceVideoRec whose inPrivateData is that private data; the others an
// aiAsyncRequest (or their own record).
enum : int {
    aiInitiateAsyncRead = 0,
    aiCancelAsyncRead = 1,
    aiFlush = 2,
    aiGetFrame = 3,
    aiClose = 4,
    aiContinueToWaitForAsyncIO = 5,
    aiSelectEfficientRenderTime = 6,
    aiGetMinPlaybackSpeedForSelectingEfficientTime = 7
};

enum : int {
    aiNoError = 0,
    aiUnsupported = 1,
    aiUnknownError = 2,
    aiFrameNotFound = 3
};

// ---- Layout checks: offsets from the published interface ----
static_assert(sizeof(imImportInfoRec) == 193, "imImportInfoRec size");
static_assert(offsetof(imImportInfoRec, canSave) == 8 && offsetof(imImportInfoRec, hasSetup) == 36 &&
                  offsetof(imImportInfoRec, dontCache) == 40 && offsetof(imImportInfoRec, setupOnDblClk) == 44 &&
                  offsetof(imImportInfoRec, keepLoaded) == 48 && offsetof(imImportInfoRec, priority) == 52 &&
                  offsetof(imImportInfoRec, canAsync) == 56 && offsetof(imImportInfoRec, canCalcSizes) == 64 &&
                  offsetof(imImportInfoRec, canTrim) == 68 && offsetof(imImportInfoRec, avoidAudioConform) == 72 &&
                  offsetof(imImportInfoRec, acceleratorFileExt) == 76 && offsetof(imImportInfoRec, canCopy) == 84 &&
                  offsetof(imImportInfoRec, canValidatePrefs) == 92 &&
                  offsetof(imImportInfoRec, canProvideFileList) == 100 &&
                  offsetof(imImportInfoRec, fileInfoVersion) == 108 &&
                  offsetof(imImportInfoRec, hasSourceSettingsEffect) == 145 &&
                  offsetof(imImportInfoRec, hasPersistentData) == 149 && offsetof(imImportInfoRec, reserved) == 153,
              "imImportInfoRec offsets");

static_assert(sizeof(imIndFormatRec) == 764 && offsetof(imIndFormatRec, flags) == 4 &&
                  offsetof(imIndFormatRec, canWriteTimecode) == 8 && offsetof(imIndFormatRec, FormatName) == 12 &&
                  offsetof(imIndFormatRec, FormatShortName) == 268 &&
                  offsetof(imIndFormatRec, PlatformExtension) == 300 &&
                  offsetof(imIndFormatRec, hasAlternateTypes) == 556 &&
                  offsetof(imIndFormatRec, alternateTypes) == 560 && offsetof(imIndFormatRec, canWriteMetaData) == 760,
              "imIndFormatRec");

static_assert(sizeof(imIndPixelFormatRec) == 20 && offsetof(imIndPixelFormatRec, outPixelFormat) == 8 &&
                  offsetof(imIndPixelFormatRec, prefs) == 12,
              "imIndPixelFormatRec");

static_assert(sizeof(prSEIColorCodesRec) == 28 && alignof(prSEIColorCodesRec) == 1, "prSEIColorCodesRec");
static_assert(sizeof(matteColRec) == 3, "matteColRec");

static_assert(sizeof(imImageInfoRec) == 160 && offsetof(imImageInfoRec, depth) == 10 &&
                  offsetof(imImageInfoRec, subType) == 12 && offsetof(imImageInfoRec, alphaType) == 20 &&
                  offsetof(imImageInfoRec, isStill) == 29 && offsetof(imImageInfoRec, pixelAspectNum) == 32 &&
                  offsetof(imImageInfoRec, importerID) == 44 && offsetof(imImageInfoRec, codecDescription) == 80 &&
                  offsetof(imImageInfoRec, colorSpaceSupport) == 96 && offsetof(imImageInfoRec, frameRate) == 100 &&
                  offsetof(imImageInfoRec, hasEmbeddedLUT) == 108 && offsetof(imImageInfoRec, bitDepth) == 112 &&
                  offsetof(imImageInfoRec, reserved) == 116,
              "imImageInfoRec");
static_assert(sizeof(imAudioInfoRec7) == 12 && offsetof(imAudioInfoRec7, sampleType) == 8, "imAudioInfoRec7");

static_assert(sizeof(imFileInfoRec8) == 5376, "imFileInfoRec8 size");
static_assert(offsetof(imFileInfoRec8, hasAudio) == 1 && offsetof(imFileInfoRec8, vidInfo) == 2 &&
                  offsetof(imFileInfoRec8, vidInfo.imageWidth) == 2 &&
                  offsetof(imFileInfoRec8, vidInfo.imageHeight) == 6 &&
                  offsetof(imFileInfoRec8, vidInfo.depth) == 12 && offsetof(imFileInfoRec8, vidInfo.subType) == 14 &&
                  offsetof(imFileInfoRec8, vidInfo.fieldType) == 18 &&
                  offsetof(imFileInfoRec8, vidInfo.fieldsStacked) == 19 &&
                  offsetof(imFileInfoRec8, vidInfo.alphaType) == 22 &&
                  offsetof(imFileInfoRec8, vidInfo.matteColor) == 23 &&
                  offsetof(imFileInfoRec8, vidInfo.isStill) == 31 &&
                  offsetof(imFileInfoRec8, vidInfo.noDuration) == 32 &&
                  offsetof(imFileInfoRec8, vidInfo.pixelAspectNum) == 34 &&
                  offsetof(imFileInfoRec8, vidInfo.pixelAspectDen) == 38 &&
                  offsetof(imFileInfoRec8, vidInfo.isRollCrawl) == 42 &&
                  offsetof(imFileInfoRec8, vidInfo.importerID) == 46 &&
                  offsetof(imFileInfoRec8, vidInfo.supportsAsyncIO) == 50 &&
                  offsetof(imFileInfoRec8, vidInfo.supportsGetSourceVideo) == 54 &&
                  offsetof(imFileInfoRec8, vidInfo.hasPulldown) == 58 &&
                  offsetof(imFileInfoRec8, vidInfo.colorProfileSupport) == 78 &&
                  offsetof(imFileInfoRec8, vidInfo.codecDescription) == 82 &&
                  offsetof(imFileInfoRec8, vidInfo.colorSpaceSupport) == 98 &&
                  offsetof(imFileInfoRec8, vidInfo.frameRate) == 102 &&
                  offsetof(imFileInfoRec8, vidInfo.hasEmbeddedLUT) == 110 &&
                  offsetof(imFileInfoRec8, vidInfo.bitDepth) == 114 &&
                  offsetof(imFileInfoRec8, vidInfo.reserved) == 118,
              "imFileInfoRec8 video offsets");
static_assert(offsetof(imFileInfoRec8, vidScale) == 162 && offsetof(imFileInfoRec8, vidSampleSize) == 166 &&
                  offsetof(imFileInfoRec8, vidDuration) == 170 &&
                  offsetof(imFileInfoRec8, audInfo.numChannels) == 174 &&
                  offsetof(imFileInfoRec8, audInfo.sampleRate) == 178 &&
                  offsetof(imFileInfoRec8, audInfo.sampleType) == 182 &&
                  offsetof(imFileInfoRec8, audDuration) == 186 && offsetof(imFileInfoRec8, accessModes) == 194 &&
                  offsetof(imFileInfoRec8, privatedata) == 198 && offsetof(imFileInfoRec8, prefs) == 206 &&
                  offsetof(imFileInfoRec8, hasDataRate) == 214 && offsetof(imFileInfoRec8, streamIdx) == 215 &&
                  offsetof(imFileInfoRec8, streamsAsComp) == 219 && offsetof(imFileInfoRec8, streamName) == 220 &&
                  offsetof(imFileInfoRec8, sessionPluginID) == 732 &&
                  offsetof(imFileInfoRec8, alwaysUnquiet) == 736 && offsetof(imFileInfoRec8, hasDataStreams) == 737 &&
                  offsetof(imFileInfoRec8, filePath) == 738 && offsetof(imFileInfoRec8, canProvidePeakData) == 4834 &&
                  offsetof(imFileInfoRec8, mayBeGrowing) == 4835 && offsetof(imFileInfoRec8, ignoreGrowing) == 4836 &&
                  offsetof(imFileInfoRec8, sourceSettingsMatchName) == 4837 &&
                  offsetof(imFileInfoRec8, vidDurationInFrames) == 5349 &&
                  offsetof(imFileInfoRec8, ivProjectionType) == 5357 &&
                  offsetof(imFileInfoRec8, ivFrameLayout) == 5361 &&
                  offsetof(imFileInfoRec8, ivHorizontalCapturedView) == 5365 &&
                  offsetof(imFileInfoRec8, ivVerticalCapturedView) == 5369 &&
                  offsetof(imFileInfoRec8, mayHaveCaptions) == 5373 && offsetof(imFileInfoRec8, reserved) == 5374,
              "imFileInfoRec8 offsets");
static_assert(sizeof(imFileInfoRec9) == 7168 && offsetof(imFileInfoRec9, systemStateFlagMask) == 5376 &&
                  offsetof(imFileInfoRec9, reserved) == 5388,
              "imFileInfoRec9");

static_assert(sizeof(imFileAccessRec8) == 36 && offsetof(imFileAccessRec8, filetype) == 8 &&
                  offsetof(imFileAccessRec8, filepath) == 12 && offsetof(imFileAccessRec8, fileref) == 20 &&
                  offsetof(imFileAccessRec8, newfilename) == 28,
              "imFileAccessRec8");
static_assert(sizeof(imFileOpenRec8) == 68 && offsetof(imFileOpenRec8, fileinfo.filetype) == 8 &&
                  offsetof(imFileOpenRec8, fileinfo.filepath) == 12 && offsetof(imFileOpenRec8, privatedata) == 36 &&
                  offsetof(imFileOpenRec8, delegatetype) == 44 && offsetof(imFileOpenRec8, inReadWrite) == 48 &&
                  offsetof(imFileOpenRec8, inImporterID) == 52 &&
                  offsetof(imFileOpenRec8, outExtraMemoryUsage) == 56 && offsetof(imFileOpenRec8, inStreamIdx) == 64,
              "imFileOpenRec8");

static_assert(sizeof(imFrameFormat) == 12 && offsetof(imFrameFormat, inPixelFormat) == 8, "imFrameFormat");
static_assert(sizeof(imRenderContext) == 20 && offsetof(imRenderContext, inPlaybackRatio) == 4 &&
                  offsetof(imRenderContext, inPlaybackRate) == 12,
              "imRenderContext");
static_assert(sizeof(imSourceVideoRec) == 112 && offsetof(imSourceVideoRec, currentStreamIdx) == 8 &&
                  offsetof(imSourceVideoRec, inFrameTime) == 12 && offsetof(imSourceVideoRec, inFrameFormats) == 20 &&
                  offsetof(imSourceVideoRec, inNumFrameFormats) == 28 &&
                  offsetof(imSourceVideoRec, removePulldown) == 32 && offsetof(imSourceVideoRec, outFrame) == 36 &&
                  offsetof(imSourceVideoRec, prefs) == 44 && offsetof(imSourceVideoRec, prefsSize) == 52 &&
                  offsetof(imSourceVideoRec, selectedColorProfileName) == 56 &&
                  offsetof(imSourceVideoRec, inQuality) == 72 && offsetof(imSourceVideoRec, inRenderContext) == 76 &&
                  offsetof(imSourceVideoRec, opaqueColorSpaceIdentifier) == 96,
              "imSourceVideoRec");

static_assert(sizeof(ClipFrameDescriptor) == 28 && offsetof(ClipFrameDescriptor, inFieldType) == 20 &&
                  offsetof(ClipFrameDescriptor, inQuality) == 24,
              "ClipFrameDescriptor");
static_assert(sizeof(imClipFrameDescriptorRec) == 72 &&
                  offsetof(imClipFrameDescriptorRec, inDesiredClipFrameDescriptor.inPixelFormat) == 8 &&
                  offsetof(imClipFrameDescriptorRec, inDesiredClipFrameDescriptor.inWidth) == 12 &&
                  offsetof(imClipFrameDescriptorRec, inDesiredClipFrameDescriptor.inHeight) == 16 &&
                  offsetof(imClipFrameDescriptorRec, inDesiredClipFrameDescriptor.inPixelAspectRatioNumerator) == 20 &&
                  offsetof(imClipFrameDescriptorRec, inDesiredClipFrameDescriptor.inPixelAspectRatioDenominator) ==
                      24 &&
                  offsetof(imClipFrameDescriptorRec, inDesiredClipFrameDescriptor.inFieldType) == 28 &&
                  offsetof(imClipFrameDescriptorRec, inDesiredClipFrameDescriptor.inQuality) == 32 &&
                  offsetof(imClipFrameDescriptorRec, outBestFrameDescriptor.inPixelFormat) == 36 &&
                  offsetof(imClipFrameDescriptorRec, outBestFrameDescriptor.inWidth) == 40 &&
                  offsetof(imClipFrameDescriptorRec, outBestFrameDescriptor.inHeight) == 44 &&
                  offsetof(imClipFrameDescriptorRec, outBestFrameDescriptor.inPixelAspectRatioNumerator) == 48 &&
                  offsetof(imClipFrameDescriptorRec, outBestFrameDescriptor.inPixelAspectRatioDenominator) == 52 &&
                  offsetof(imClipFrameDescriptorRec, outBestFrameDescriptor.inFieldType) == 56 &&
                  offsetof(imClipFrameDescriptorRec, outBestFrameDescriptor.inQuality) == 60 &&
                  offsetof(imClipFrameDescriptorRec, inPrivateData) == 64,
              "imClipFrameDescriptorRec");

static_assert(sizeof(imAsyncImporterCreationRec) == 32 && offsetof(imAsyncImporterCreationRec, inPrefs) == 8 &&
                  offsetof(imAsyncImporterCreationRec, outAsyncEntry) == 16 &&
                  offsetof(imAsyncImporterCreationRec, outAsyncPrivateData) == 24,
              "imAsyncImporterCreationRec");
static_assert(sizeof(aiAsyncRequest) == 128 && offsetof(aiAsyncRequest, unused1) == 8 &&
                  offsetof(aiAsyncRequest, inSourceRec) == 16,
              "aiAsyncRequest");
static_assert(sizeof(aiSelectEfficientRenderTimeRec) == 48 && offsetof(aiSelectEfficientRenderTimeRec, ioTime) == 20 &&
                  offsetof(aiSelectEfficientRenderTimeRec, inRenderContext) == 28,
              "aiSelectEfficientRenderTimeRec");
static_assert(sizeof(aiGetMinPlaybackSpeedForSelectingEfficientTimeRec) == 16, "aiGetMinPlaybackSpeed record");

static_assert(sizeof(imPreferredFrameSizeRec) == 32 && offsetof(imPreferredFrameSizeRec, inPixelFormat) == 16 &&
                  offsetof(imPreferredFrameSizeRec, inIndex) == 20 && offsetof(imPreferredFrameSizeRec, outWidth) == 24 &&
                  offsetof(imPreferredFrameSizeRec, outHeight) == 28,
              "imPreferredFrameSizeRec");
static_assert(sizeof(imGetPrefsRec) == 65 && offsetof(imGetPrefsRec, prefsLength) == 8 &&
                  offsetof(imGetPrefsRec, firstTime) == 12 && offsetof(imGetPrefsRec, timelineData) == 13 &&
                  offsetof(imGetPrefsRec, unused) == 17 && offsetof(imGetPrefsRec, tdbTimelineLocation) == 21 &&
                  offsetof(imGetPrefsRec, sessionPluginID) == 33 && offsetof(imGetPrefsRec, imageWidth) == 37 &&
                  offsetof(imGetPrefsRec, imageHeight) == 41 && offsetof(imGetPrefsRec, pixelAspectNum) == 45 &&
                  offsetof(imGetPrefsRec, pixelAspectDen) == 49 && offsetof(imGetPrefsRec, vidScale) == 53 &&
                  offsetof(imGetPrefsRec, vidSampleSize) == 57 && offsetof(imGetPrefsRec, sampleRate) == 61,
              "imGetPrefsRec");
static_assert(sizeof(imGetInstancePrefsRec) == 73, "imGetInstancePrefsRec");
static_assert(sizeof(imAnalysisRec) == 32 && offsetof(imAnalysisRec, buffersize) == 16 &&
                  offsetof(imAnalysisRec, buffer) == 20 && offsetof(imAnalysisRec, timecodeFormat) == 28,
              "imAnalysisRec");
static_assert(sizeof(imTimeInfoRec8) == 408 && offsetof(imTimeInfoRec8, orgtime) == 16 &&
                  offsetof(imTimeInfoRec8, orgScale) == 34 && offsetof(imTimeInfoRec8, orgSampleSize) == 38 &&
                  offsetof(imTimeInfoRec8, alttime) == 42 && offsetof(imTimeInfoRec8, altScale) == 60 &&
                  offsetof(imTimeInfoRec8, orgreel) == 68 && offsetof(imTimeInfoRec8, altreel) == 108 &&
                  offsetof(imTimeInfoRec8, logcomment) == 148 && offsetof(imTimeInfoRec8, dataType) == 404,
              "imTimeInfoRec8");
static_assert(sizeof(imQueryInputFileListRec) == 44 && offsetof(imQueryInputFileListRec, inBasePath) == 16 &&
                  offsetof(imQueryInputFileListRec, outNumFilePaths) == 32 &&
                  offsetof(imQueryInputFileListRec, outFilePaths) == 36,
              "imQueryInputFileListRec");
static_assert(sizeof(imImportAudioRec7) == 36 && offsetof(imImportAudioRec7, size) == 8 &&
                  offsetof(imImportAudioRec7, buffer) == 12 && offsetof(imImportAudioRec7, privateData) == 20 &&
                  offsetof(imImportAudioRec7, prefs) == 28,
              "imImportAudioRec7");
static_assert(sizeof(imSourceSettingsCommandRec) == 20 && offsetof(imSourceSettingsCommandRec, inDataSize) == 8 &&
                  offsetof(imSourceSettingsCommandRec, inPrivateData) == 12,
              "imSourceSettingsCommandRec");
static_assert(sizeof(imSubTypeDescriptionRec) == 516 && offsetof(imSubTypeDescriptionRec, subTypeName) == 4,
              "imSubTypeDescriptionRec");
static_assert(sizeof(imDeferredProcessingRec) == 14 && offsetof(imDeferredProcessingRec, outCallAgain) == 13,
              "imDeferredProcessingRec");
static_assert(sizeof(imCurrentSystemStateRec) == 44, "imCurrentSystemStateRec");
static_assert(sizeof(imFileAttributesRec) == 188, "imFileAttributesRec");
static_assert(sizeof(imGetAudioChannelLayoutRec) == 136, "imGetAudioChannelLayoutRec");
static_assert(sizeof(imPeakAudioRec) == 48 && offsetof(imPeakAudioRec, outMaxima) == 32, "imPeakAudioRec");
static_assert(sizeof(imImportImageRec) == 180 && offsetof(imImportImageRec, rowbytes) == 44 &&
                  offsetof(imImportImageRec, pix) == 48 && offsetof(imImportImageRec, pixformat) == 60 &&
                  offsetof(imImportImageRec, privatedata) == 92 && offsetof(imImportImageRec, alphaBounds) == 108 &&
                  offsetof(imImportImageRec, applyTransform) == 124 && offsetof(imImportImageRec, transform) == 128 &&
                  offsetof(imImportImageRec, destClipRect) == 164,
              "imImportImageRec");

static_assert(sizeof(RawColorProfileRec) == 32 && alignof(RawColorProfileRec) == 8 &&
                  offsetof(RawColorProfileRec, inDestinationBuffer) == 8 && offsetof(RawColorProfileRec, outName) == 16,
              "RawColorProfileRec");
static_assert(sizeof(ColorSpaceRec) == 80 && offsetof(ColorSpaceRec, outColorSpaceType) == 8 &&
                  offsetof(ColorSpaceRec, ioProfileRec) == 16 && offsetof(ColorSpaceRec, ioProfileRec.ioBufferSize) == 16 &&
                  offsetof(ColorSpaceRec, ioProfileRec.inDestinationBuffer) == 24 &&
                  offsetof(ColorSpaceRec, ioProfileRec.outName) == 32 && offsetof(ColorSpaceRec, outSEICodesRec) == 48,
              "ColorSpaceRec");
static_assert(sizeof(ColorProfileRec) == 40 && offsetof(ColorProfileRec, ioBufferSize) == 8 &&
                  offsetof(ColorProfileRec, inDestinationBuffer) == 16 && offsetof(ColorProfileRec, outName) == 24,
              "ColorProfileRec");
static_assert(sizeof(RawColorSpaceRec) == 72 && offsetof(RawColorSpaceRec, profileRec) == 8 &&
                  offsetof(RawColorSpaceRec, seiCodesRec) == 40,
              "RawColorSpaceRec");
static_assert(sizeof(EmbeddedLUTRec) == 184 && offsetof(EmbeddedLUTRec, lutBlobRec) == 8 &&
                  offsetof(EmbeddedLUTRec, lutInputColorSpaceRec) == 40 &&
                  offsetof(EmbeddedLUTRec, lutOutputColorSpaceRec) == 112,
              "EmbeddedLUTRec");
