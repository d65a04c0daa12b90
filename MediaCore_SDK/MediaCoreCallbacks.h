#pragma once
// The callback tables a plug-in reaches from imStdParms, and the SweetPea basic
// suite through which every other suite is acquired:
//   stdParms->piSuites->utilFuncs->getSPBasicSuite()->AcquireSuite(name, version, &suite)

#include "MediaCorePixelFormats.h"
#include "MediaCoreTypes.h"

struct SPBasicSuite;

#pragma pack(push, 1)

struct ClassDataFuncs {
    int (*setClassData)(unsigned int theclass, void* info);
    void* (*getClassData)(unsigned int theclass);
};

struct imCallbackFuncs {
    ClassDataFuncs* classFuncs;
    csSDK_int32 unused1;
    csSDK_int32 unused2;
};

struct PlugMemoryFuncs {
    char* (*newPtr)(csSDK_uint32 size);
    void (*setPtrSize)(PrMemoryPtr* ptr, csSDK_uint32 newsize);
    csSDK_int32 (*getPtrSize)(char* ptr);
    void (*disposePtr)(char* ptr);
    char** (*newHandle)(csSDK_uint32 size);
    csSDK_int16 (*setHandleSize)(PrMemoryHandle h, csSDK_uint32 newsize);
    csSDK_int32 (*getHandleSize)(PrMemoryHandle h);
    void (*disposeHandle)(PrMemoryHandle h);
    char* (*newPtrClear)(csSDK_uint32 size);
    char** (*newHandleClear)(csSDK_uint32 size);
    void (*lockHandle)(PrMemoryHandle h);
    void (*unlockHandle)(PrMemoryHandle h);
};

struct prFileSpec {
    int volID;
    int parID;
    char name[256];
};

struct prTimebaseRec {
    csSDK_int32 duration;
    csSDK_int32 scale;
    csSDK_int32 sampleSize;
};

// getFileExtString file classes.
enum : csSDK_uint32 {
    kFileTypes_Still = 1,
    kFileTypes_AudioOnly = 2,
    kFileTypes_AudioVideo = 3,
    kFileTypes_AllNoIntrinsics = 4
};

struct PlugUtilFuncs {
    void* unused1;
    void (*getSerialNumber)(char* result);
    csSDK_int32 (*getFileTimebase)(prFileSpec* filespec, csSDK_int32 audioOnly, prTimebaseRec* result);
    csSDK_int32 (*getFileVideo)(prFileSpec* filespec, csSDK_int32 frame, PPixHand thePort, prRect* bounds,
                                csSDK_int32 flags);
    csSDK_int32 (*getFileAudioSecond)(prFileSpec* filespec, csSDK_int32 num, char* buffer, short flags,
                                      csSDK_int32 audrate, short speed);
    void* unused2;
    csSDK_int32 (*getFileVideoBounds)(prFileSpec* filespec, prRect* bounds);
    SPBasicSuite* (*getSPBasicSuite)();
    csSDK_int32 (*getFileExtString)(csSDK_uint32 fileTypes, char* inBuffer, csSDK_uint32 inBufferSize);
};

struct PlugWindowFuncs {
    void (*updateAllWindows)();
    void* (*getMainWnd)();
};

struct PlugppixFuncs {
    char* (*ppixGetPixels)(PPixHand pix);
    void (*ppixGetBounds)(PPixHand pix, prRect* bounds);
    int (*ppixGetRowbytes)(PPixHand pix);
    PPixHand (*ppixNew)(prRect* bounds);
    void (*ppixDispose)(PPixHand pix);
    void (*ppixLockPixels)(PPixHand pix);
    void (*ppixUnlockPixels)(PPixHand pix);
    int (*ppixGetPixelAspectRatio)(PPixHand pix, csSDK_uint32* num, csSDK_uint32* den);
    void (*ppixGetAlphaBounds)(PPixHand pix, prRect* alphaBounds);
};

// Not usable by importers (they have no timeline); declared for completeness.
struct PlugTimelineFuncs {
    void* unused2;
    void* unused3;
    csSDK_int32 (*getClipVideo)(csSDK_int32 frame, PPixHand thePort, prRect* bounds, csSDK_int32 flags,
                                PrClipID clipData);
    void* unused1;
    void* unused8;
    void* unused9;
    void* unused10;
    csSDK_int32 (*getWorkArea)(PrTimelineID timelineData, csSDK_int32* workAreaStart, csSDK_int32* workAreaEnd);
    void* unused7;
    void* unused4;
    void (*getCurrentTimebase)(PrTimelineID timelineData, csSDK_uint32* scale, csSDK_int32* sampleSize);
    csSDK_int32 (*getCurrentPos)(PrTimelineID timelineData);
    void* unused5;
    void* unused6;
    csSDK_int32 (*getPreviewFrameEx)(PrTimelineID timelineData, csSDK_int32 inFrame, PPixHand* outRenderedFrame,
                                     const prRect* inFrameRect, PrPixelFormat* formats, csSDK_int32 formatCount,
                                     csSDK_uint32 parNum, csSDK_uint32 parDen, bool inAlwaysRender);
    csSDK_int32 (*getClipVideoBounds)(PrClipID inClipData, prRect* outBounds, csSDK_uint32* parNum,
                                      csSDK_uint32* parDen);
    csSDK_int32 (*getClipVideoEx)(csSDK_int32 inFrame, PPixHand* outRenderedFrame, const prRect* inFrameRect,
                                  const PrPixelFormat* formats, csSDK_int32 formatCount, csSDK_uint32 parNum,
                                  csSDK_uint32 parDen, PrClipID inClipData);
};

struct piSuites {
    int piInterfaceVer;
    PlugMemoryFuncs* memFuncs;
    PlugWindowFuncs* windFuncs;
    PlugppixFuncs* ppixFuncs;
    PlugUtilFuncs* utilFuncs;
    PlugTimelineFuncs* timelineFuncs;
};

struct imStdParms {
    csSDK_int32 imInterfaceVer;
    imCallbackFuncs* funcs;
    struct piSuites* piSuites;
};

#pragma pack(pop)

constexpr int PR_PISUITES_VERSION = 9;

// ---- SweetPea basic suite (natural alignment) ----
constexpr const char* kSPBasicSuite = "SP Basic Suite";
constexpr int kSPBasicSuiteVersion = 4;

struct SPBasicSuite {
    SPErr (*AcquireSuite)(const char* name, int version, const void** suite);
    SPErr (*ReleaseSuite)(const char* name, int version);
    SPBoolean (*IsEqual)(const char* token1, const char* token2);
    SPErr (*AllocateBlock)(size_t size, void** block);
    SPErr (*FreeBlock)(void* block);
    SPErr (*ReallocateBlock)(void* block, size_t newSize, void** newblock);
    SPErr (*Undefined)();
};

static_assert(sizeof(ClassDataFuncs) == 16, "ClassDataFuncs");
static_assert(sizeof(imCallbackFuncs) == 16 && offsetof(imCallbackFuncs, unused1) == 8, "imCallbackFuncs");
static_assert(sizeof(PlugMemoryFuncs) == 96 && offsetof(PlugMemoryFuncs, newHandle) == 32 &&
                  offsetof(PlugMemoryFuncs, getHandleSize) == 48 && offsetof(PlugMemoryFuncs, lockHandle) == 80 &&
                  offsetof(PlugMemoryFuncs, unlockHandle) == 88,
              "PlugMemoryFuncs");
static_assert(sizeof(prFileSpec) == 264 && sizeof(prTimebaseRec) == 12, "util records");
static_assert(sizeof(PlugUtilFuncs) == 72 && offsetof(PlugUtilFuncs, getSPBasicSuite) == 56 &&
                  offsetof(PlugUtilFuncs, getFileExtString) == 64,
              "PlugUtilFuncs");
static_assert(sizeof(PlugWindowFuncs) == 16, "PlugWindowFuncs");
static_assert(sizeof(PlugppixFuncs) == 72 && offsetof(PlugppixFuncs, ppixGetAlphaBounds) == 64, "PlugppixFuncs");
static_assert(sizeof(PlugTimelineFuncs) == 136 && offsetof(PlugTimelineFuncs, getPreviewFrameEx) == 112 &&
                  offsetof(PlugTimelineFuncs, getClipVideoEx) == 128,
              "PlugTimelineFuncs");
static_assert(sizeof(piSuites) == 44 && offsetof(piSuites, memFuncs) == 4 && offsetof(piSuites, windFuncs) == 12 &&
                  offsetof(piSuites, ppixFuncs) == 20 && offsetof(piSuites, utilFuncs) == 28 &&
                  offsetof(piSuites, timelineFuncs) == 36,
              "piSuites");
static_assert(sizeof(imStdParms) == 20 && offsetof(imStdParms, funcs) == 4 && offsetof(imStdParms, piSuites) == 12,
              "imStdParms");
static_assert(sizeof(SPBasicSuite) == 56 && alignof(SPBasicSuite) == 8 && offsetof(SPBasicSuite, Undefined) == 48,
              "SPBasicSuite");
