// The C side of the host border reached from imStdParms: the memory functions,
// the utility functions (getSPBasicSuite among them), the legacy ppix and window
// functions, class data, and the SweetPea basic suite. Each entry finds the
// living host through twSimHostAccess and answers with an error when there is
// none.

#include "twSimHost.h"

#include <cstring>

namespace {

// ---- PlugMemoryFuncs ----
char* NewPtr(csSDK_uint32 size) {
    twSimHostAccess host;
    return host ? host->memory().newPtr(size, false) : nullptr;
}
void SetPtrSize(PrMemoryPtr* ptr, csSDK_uint32 newSize) {
    twSimHostAccess host;
    if (host) host->memory().setPtrSize(ptr, newSize);
}
csSDK_int32 GetPtrSize(char* ptr) {
    twSimHostAccess host;
    return host ? host->memory().getPtrSize(ptr) : 0;
}
void DisposePtr(char* ptr) {
    twSimHostAccess host;
    if (host) host->memory().disposePtr(ptr);
}
char** NewHandle(csSDK_uint32 size) {
    twSimHostAccess host;
    return host ? host->memory().newHandle(size, false) : nullptr;
}
csSDK_int16 SetHandleSize(PrMemoryHandle h, csSDK_uint32 newSize) {
    twSimHostAccess host;
    return host ? host->memory().setHandleSize(h, newSize) : static_cast<csSDK_int16>(-1);
}
csSDK_int32 GetHandleSize(PrMemoryHandle h) {
    twSimHostAccess host;
    return host ? host->memory().getHandleSize(h) : 0;
}
void DisposeHandle(PrMemoryHandle h) {
    twSimHostAccess host;
    if (host) host->memory().disposeHandle(h);
}
char* NewPtrClear(csSDK_uint32 size) {
    twSimHostAccess host;
    return host ? host->memory().newPtr(size, true) : nullptr;
}
char** NewHandleClear(csSDK_uint32 size) {
    twSimHostAccess host;
    return host ? host->memory().newHandle(size, true) : nullptr;
}
void LockHandle(PrMemoryHandle h) {
    twSimHostAccess host;
    if (host) host->memory().lockHandle(h);
}
void UnlockHandle(PrMemoryHandle h) {
    twSimHostAccess host;
    if (host) host->memory().unlockHandle(h);
}

PlugMemoryFuncs g_memoryFuncs = {NewPtr,     SetPtrSize,  GetPtrSize,     DisposePtr, NewHandle,  SetHandleSize,
                                 GetHandleSize, DisposeHandle, NewPtrClear, NewHandleClear, LockHandle, UnlockHandle};

// ---- SPBasicSuite ----
SPErr AcquireSuite(const char* name, int version, const void** suite) {
    twSimHostAccess host;
    if (!host) {
        if (suite) *suite = nullptr;
        return kSPSuiteNotFoundError;
    }
    return host->suites().acquire(name, version, suite);
}
SPErr ReleaseSuite(const char* name, int version) {
    twSimHostAccess host;
    return host ? host->suites().release(name, version) : kSPSuiteNotFoundError;
}
SPBoolean IsEqual(const char* a, const char* b) {
    if (!a || !b) return a == b;
    return std::strcmp(a, b) == 0;
}
SPErr AllocateBlock(size_t size, void** block) {
    twSimHostAccess host;
    return host ? host->memory().allocateBlock(size, block) : kSPBadParameterError;
}
SPErr FreeBlock(void* block) {
    twSimHostAccess host;
    return host ? host->memory().freeBlock(block) : kSPBadParameterError;
}
SPErr ReallocateBlock(void* block, size_t newSize, void** newBlock) {
    twSimHostAccess host;
    return host ? host->memory().reallocateBlock(block, newSize, newBlock) : kSPBadParameterError;
}
SPErr Undefined() { return kSPUnimplementedError; }

SPBasicSuite g_basicSuite = {AcquireSuite, ReleaseSuite, IsEqual, AllocateBlock, FreeBlock, ReallocateBlock,
                             Undefined};

// ---- PlugUtilFuncs ----
void GetSerialNumber(char* result) {
    if (result) std::strcpy(result, "TWSIM-0000-0000-0000");
}
csSDK_int32 GetFileTimebase(prFileSpec*, csSDK_int32, prTimebaseRec*) { return -1; }
csSDK_int32 GetFileVideo(prFileSpec*, csSDK_int32, PPixHand, prRect*, csSDK_int32) { return -1; }
csSDK_int32 GetFileAudioSecond(prFileSpec*, csSDK_int32, char*, short, csSDK_int32, short) { return -1; }
csSDK_int32 GetFileVideoBounds(prFileSpec*, prRect*) { return -1; }
SPBasicSuite* GetSPBasicSuite() { return &g_basicSuite; }
csSDK_int32 GetFileExtString(csSDK_uint32, char* buffer, csSDK_uint32 size) {
    if (buffer && size > 0) buffer[0] = 0;
    return 0;
}

PlugUtilFuncs g_utilFuncs = {nullptr,      GetSerialNumber, GetFileTimebase,  GetFileVideo,    GetFileAudioSecond,
                             nullptr,      GetFileVideoBounds, GetSPBasicSuite, GetFileExtString};

// ---- PlugWindowFuncs ----
void UpdateAllWindows() {}
void* GetMainWnd() { return nullptr; }

PlugWindowFuncs g_windowFuncs = {UpdateAllWindows, GetMainWnd};

// ---- PlugppixFuncs (the legacy frame calls) ----
char* PpixGetPixels(PPixHand h) {
    twSimHostAccess host;
    char* pixels = nullptr;
    if (host) host->frames().getPixels(h, PrPPixBufferAccess_ReadWrite, &pixels);
    return pixels;
}
void PpixGetBounds(PPixHand h, prRect* bounds) {
    twSimHostAccess host;
    if (host) host->frames().getBounds(h, bounds);
}
int PpixGetRowbytes(PPixHand h) {
    twSimHostAccess host;
    csSDK_int32 rowBytes = 0;
    if (host) host->frames().getRowBytes(h, &rowBytes);
    return rowBytes;
}
PPixHand PpixNew(prRect* bounds) {
    twSimHostAccess host;
    PPixHand h = nullptr;
    if (host) host->frames().createFromRect(&h, PrPPixBufferAccess_ReadWrite, PrPixelFormat_BGRA_4444_8u, bounds);
    return h;
}
void PpixDispose(PPixHand h) {
    twSimHostAccess host;
    if (host) host->frames().dispose(h);
}
void PpixLockPixels(PPixHand) {}
void PpixUnlockPixels(PPixHand) {}
int PpixGetPixelAspectRatio(PPixHand h, csSDK_uint32* num, csSDK_uint32* den) {
    twSimHostAccess host;
    return host && host->frames().getPixelAspectRatio(h, num, den) == suiteError_NoError ? 0 : -1;
}
void PpixGetAlphaBounds(PPixHand h, prRect* bounds) { PpixGetBounds(h, bounds); }

PlugppixFuncs g_ppixFuncs = {PpixGetPixels, PpixGetBounds,    PpixGetRowbytes,         PpixNew,           PpixDispose,
                             PpixLockPixels, PpixUnlockPixels, PpixGetPixelAspectRatio, PpixGetAlphaBounds};

// ---- PlugTimelineFuncs: importers have no timeline ----
csSDK_int32 GetClipVideo(csSDK_int32, PPixHand, prRect*, csSDK_int32, PrClipID) { return -1; }
csSDK_int32 GetWorkArea(PrTimelineID, csSDK_int32*, csSDK_int32*) { return -1; }
void GetCurrentTimebase(PrTimelineID, csSDK_uint32* scale, csSDK_int32* sampleSize) {
    if (scale) *scale = 0;
    if (sampleSize) *sampleSize = 0;
}
csSDK_int32 GetCurrentPos(PrTimelineID) { return -1; }
csSDK_int32 GetPreviewFrameEx(PrTimelineID, csSDK_int32, PPixHand* out, const prRect*, PrPixelFormat*, csSDK_int32,
                              csSDK_uint32, csSDK_uint32, bool) {
    if (out) *out = nullptr;
    return -1;
}
csSDK_int32 GetClipVideoBounds(PrClipID, prRect*, csSDK_uint32*, csSDK_uint32*) { return -1; }
csSDK_int32 GetClipVideoEx(csSDK_int32, PPixHand* out, const prRect*, const PrPixelFormat*, csSDK_int32, csSDK_uint32,
                           csSDK_uint32, PrClipID) {
    if (out) *out = nullptr;
    return -1;
}

PlugTimelineFuncs g_timelineFuncs = {nullptr,        nullptr,       GetClipVideo,      nullptr,
                                     nullptr,        nullptr,       nullptr,           GetWorkArea,
                                     nullptr,        nullptr,       GetCurrentTimebase, GetCurrentPos,
                                     nullptr,        nullptr,       GetPreviewFrameEx, GetClipVideoBounds,
                                     GetClipVideoEx};

// ---- class data ----
int SetClassData(unsigned int theClass, void* info) {
    twSimHostAccess host;
    return host ? host->setClassData(theClass, info) : -1;
}
void* GetClassData(unsigned int theClass) {
    twSimHostAccess host;
    return host ? host->getClassData(theClass) : nullptr;
}

ClassDataFuncs g_classFuncs = {SetClassData, GetClassData};
imCallbackFuncs g_callbackFuncs = {&g_classFuncs, 0, 0};

piSuites g_piSuites = {PR_PISUITES_VERSION, &g_memoryFuncs, &g_windowFuncs, &g_ppixFuncs, &g_utilFuncs,
                       &g_timelineFuncs};

// One record for the life of the process: plug-ins may keep the pointer (and
// use it from their own threads) for as long as they stay loaded.
imStdParms g_stdParms = {IMPORTMOD_VERSION, &g_callbackFuncs, &g_piSuites};

}  // namespace

imStdParms* twSimStdParms() { return &g_stdParms; }
