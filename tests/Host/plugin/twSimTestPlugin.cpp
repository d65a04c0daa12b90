// A small importer built only for the host simulator's tests. It uses the host
// the way a real importer does: it announces a format and three pixel formats,
// opens its files, keeps per-file private data in a host handle, acquires and
// releases suites, fills frames it creates through the PPix Creator suite,
// answers from the host's frame cache, runs an asynchronous reader with its own
// worker threads, and converts audio through the Audio suite.
//
// Its clips are text files "twtest <width> <height> <frames>". A frame's BGRA
// 8-bit pixel at column x of memory row y is (blue x, green y, red frame, 255),
// all modulo 256.
//
// twTestPluginControl(key, value) switches on faults the tests look for:
// "leakHandle", "leakFrame", "keepSuite", "doubleDispose", "writePastRow",
// "unlockTwice", "throw", "cacheVersionMismatch", "pendingOnce".

#include "MediaCoreSDK.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#define TW_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

// ---- process-wide state of the plug-in ----
std::mutex g_controlMutex;
std::map<std::string, int> g_controls;
std::string g_home, g_systemRoot, g_appFourCC, g_appVersion, g_interface;

int Control(const char* key) {
    std::lock_guard<std::mutex> lock(g_controlMutex);
    auto it = g_controls.find(key);
    return it == g_controls.end() ? 0 : it->second;
}

constexpr csSDK_int32 kFileType = 0x53545754;  // "TWTS" in memory
constexpr csSDK_int32 kPrefsSize = 8;
constexpr PrPixelFormat kPixelFormats[] = {PrPixelFormat_BGRA_4444_8u, PrPixelFormat_BGRA_4444_32f,
                                           PrPixelFormat_BGRA_4444_16u};

std::string Utf8(const prUTF16Char* text) {
    std::string out;
    for (size_t i = 0; text && text[i]; ++i) {
        const unsigned u = text[i];
        if (u < 0x80) {
            out += static_cast<char>(u);
        } else if (u < 0x800) {
            out += static_cast<char>(0xC0 | (u >> 6));
            out += static_cast<char>(0x80 | (u & 0x3F));
        } else {
            out += static_cast<char>(0xE0 | (u >> 12));
            out += static_cast<char>(0x80 | ((u >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (u & 0x3F));
        }
    }
    return out;
}

// The field may sit at an odd address inside a packed record: write bytewise.
void Utf16(const std::string& text, void* field, size_t units) {
    auto* out = static_cast<unsigned char*>(field);
    size_t i = 0;
    for (; i < text.size() && i + 1 < units; ++i) {
        const prUTF16Char unit = static_cast<unsigned char>(text[i]);
        std::memcpy(out + 2 * i, &unit, 2);
    }
    std::memset(out + 2 * i, 0, 2);
}

SPBasicSuite* Basic(imStdParms* stdParms) { return stdParms->piSuites->utilFuncs->getSPBasicSuite(); }
PlugMemoryFuncs* Memory(imStdParms* stdParms) { return stdParms->piSuites->memFuncs; }

template <typename Suite>
Suite* Acquire(SPBasicSuite* basic, const char* name, int version) {
    const void* suite = nullptr;
    if (basic->AcquireSuite(name, version, &suite) != kSPNoError) return nullptr;
    return static_cast<Suite*>(const_cast<void*>(suite));
}

// ---- per-file private data, kept in a host handle ----
struct PrivateData {
    char magic[8];
    int width;
    int height;
    int frameCount;
    csSDK_int32 importerID;
    PrTime ticksPerSecond;
    csSDK_int32 interfaceVersion;
    SPBasicSuite* basic;
    PlugMemoryFuncs* memory;
    PrSDKStringSuite* strings;
    PrSDKPPixCreatorSuite* creator;
    PrSDKPPixCacheSuite* cache;
    PrSDKPPixSuite* ppix;
    PrSDKTimeSuite* time;
};

bool ReadClip(const std::string& path, int& width, int& height, int& frames) {
    FILE* f = std::fopen(path.c_str(), "rb");
    if (!f) return false;
    const int n = std::fscanf(f, "twtest %d %d %d", &width, &height, &frames);
    std::fclose(f);
    return n == 3 && width > 0 && height > 0 && frames > 0;
}

void ReleaseSuites(PrivateData* pd) {
    if (!pd->basic) return;
    if (pd->strings) pd->basic->ReleaseSuite(kPrSDKStringSuite, kPrSDKStringSuiteVersion);
    if (pd->creator) pd->basic->ReleaseSuite(kPrSDKPPixCreatorSuite, kPrSDKPPixCreatorSuiteVersion);
    // The cache suite is acquired as version 6 (whose table the host serves
    // from its newest one); the fault releases it under 8.
    if (pd->cache) pd->basic->ReleaseSuite(kPrSDKPPixCacheSuite, Control("cacheVersionMismatch") ? 8 : 6);
    if (pd->ppix) pd->basic->ReleaseSuite(kPrSDKPPixSuite, kPrSDKPPixSuiteVersion);
    if (pd->time) pd->basic->ReleaseSuite(kPrSDKTimeSuite, kPrSDKTimeSuiteVersion);
    pd->basic = nullptr;
}

csSDK_int32 FrameNumber(const PrivateData& pd, PrTime time) {
    if (pd.ticksPerSecond <= 0) return -1;
    return static_cast<csSDK_int32>(std::llround(static_cast<double>(time) * 25.0 / static_cast<double>(pd.ticksPerSecond)));
}

// Renders one frame into a new PPix of the first requested format.
PPixHand Render(const PrivateData& pd, const imSourceVideoRec& rec, csSDK_int32 frame) {
    int width = pd.width, height = pd.height;
    PrPixelFormat format = PrPixelFormat_BGRA_4444_8u;
    if (rec.inNumFrameFormats > 0 && rec.inFrameFormats) {
        if (rec.inFrameFormats[0].inFrameWidth > 0) width = rec.inFrameFormats[0].inFrameWidth;
        if (rec.inFrameFormats[0].inFrameHeight > 0) height = rec.inFrameFormats[0].inFrameHeight;
        if (rec.inFrameFormats[0].inPixelFormat != PrPixelFormat_Any) format = rec.inFrameFormats[0].inPixelFormat;
    }
    const prRect bounds = {0, 0, width, height};
    PPixHand h = nullptr;
    if (pd.creator->CreatePPix(&h, PrPPixBufferAccess_ReadWrite, format, &bounds) != suiteError_NoError) return nullptr;
    char* pixels = nullptr;
    csSDK_int32 rowBytes = 0;
    pd.ppix->GetPixels(h, PrPPixBufferAccess_WriteOnly, &pixels);
    pd.ppix->GetRowBytes(h, &rowBytes);
    for (int y = 0; y < height; ++y) {
        char* row = pixels + static_cast<long long>(y) * rowBytes;
        for (int x = 0; x < width; ++x) {
            const unsigned char b = static_cast<unsigned char>(x), g = static_cast<unsigned char>(y),
                                r = static_cast<unsigned char>(frame);
            if (format == PrPixelFormat_BGRA_4444_32f) {
                float* p = reinterpret_cast<float*>(row) + 4 * x;
                p[0] = b / 255.0f;
                p[1] = g / 255.0f;
                p[2] = r / 255.0f;
                p[3] = 1.0f;
            } else if (format == PrPixelFormat_BGRA_4444_16u) {
                uint16_t* p = reinterpret_cast<uint16_t*>(row) + 4 * x;
                p[0] = static_cast<uint16_t>(b * 128);
                p[1] = static_cast<uint16_t>(g * 128);
                p[2] = static_cast<uint16_t>(r * 128);
                p[3] = 32768;
            } else {
                unsigned char* p = reinterpret_cast<unsigned char*>(row) + 4 * x;
                p[0] = b;
                p[1] = g;
                p[2] = r;
                p[3] = 255;
            }
        }
    }
    if (Control("writePastRow")) {
        // One byte outside the rows: after the highest row in memory, or before
        // the lowest one when rows run backwards.
        const long long outside = rowBytes > 0 ? static_cast<long long>(height) * rowBytes
                                               : static_cast<long long>(height - 1) * rowBytes - 1;
        pixels[outside] = 0x5A;
    }
    return h;
}

bool NewCacheApi(const PrivateData& pd) { return pd.interfaceVersion >= IMPORTMOD_VERSION_23; }

PPixHand FromCache(const PrivateData& pd, imSourceVideoRec& rec, csSDK_int32 frame) {
    PPixHand out = nullptr;
    if (NewCacheApi(pd))
        pd.cache->GetFrameFromCacheWithColorSpace(static_cast<csSDK_uint32>(pd.importerID), 0, frame,
                                                  rec.inNumFrameFormats, rec.inFrameFormats, &out,
                                                  kPrRenderQuality_Medium, rec.prefs, rec.prefsSize,
                                                  &rec.opaqueColorSpaceIdentifier);
    else
        pd.cache->GetFrameFromCache(static_cast<csSDK_uint32>(pd.importerID), 0, frame, rec.inNumFrameFormats,
                                    rec.inFrameFormats, &out, rec.prefs, rec.prefsSize);
    return out;
}

void ToCache(const PrivateData& pd, imSourceVideoRec& rec, csSDK_int32 frame, PPixHand h) {
    if (NewCacheApi(pd))
        pd.cache->AddFrameToCacheWithColorSpace(static_cast<csSDK_uint32>(pd.importerID), 0, h, frame,
                                                kPrRenderQuality_Medium, rec.prefs, rec.prefsSize,
                                                &rec.opaqueColorSpaceIdentifier);
    else
        pd.cache->AddFrameToCache(static_cast<csSDK_uint32>(pd.importerID), 0, h, frame, rec.prefs, rec.prefsSize);
}

// ---- the asynchronous reader ----
class Reader {
public:
    Reader(const PrivateData& pd, PlugMemoryFuncs* memory) : m_memory(memory) {
        // Like a real reader: its own handle with a copy of the file's record.
        // Locked for the reader's life: its worker threads read it at any time.
        m_handle = memory->newHandle(sizeof(PrivateData));
        memory->lockHandle(m_handle);
        std::memcpy(*m_handle, &pd, sizeof(PrivateData));
    }
    ~Reader() {
        flush();
        m_memory->unlockHandle(m_handle);
        m_memory->disposeHandle(m_handle);
    }
    const PrivateData& pd() const { return *reinterpret_cast<PrivateData*>(*m_handle); }

    csSDK_int32 initiate(aiAsyncRequest* request) {
        imSourceVideoRec& rec = request->inSourceRec;
        const csSDK_int32 frame = FrameNumber(pd(), rec.inFrameTime);
        if (PPixHand cached = FromCache(pd(), rec, frame)) {
            pd().ppix->Dispose(cached);
            return aiNoError;
        }
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_inFlight.count(frame) || m_finished.count(frame)) return aiNoError;
        m_inFlight.insert(frame);
        // The request's record lives only for this call: keep what the worker needs.
        imSourceVideoRec copy = rec;
        const imFrameFormat* first = rec.inFrameFormats;  // packed member: copied, never referenced
        const csSDK_int32 count = first ? rec.inNumFrameFormats : 0;
        auto formats = std::make_shared<std::vector<imFrameFormat>>(first, first + count);
        m_workers.emplace_back([this, copy, formats, frame]() mutable {
            copy.inFrameFormats = formats->empty() ? nullptr : formats->data();
            PPixHand h = Render(pd(), copy, frame);
            std::lock_guard<std::mutex> done(m_mutex);
            m_inFlight.erase(frame);
            m_finished[frame] = h;
        });
        return aiNoError;
    }

    csSDK_int32 getFrame(imSourceVideoRec* rec, bool continueToWait) {
        *rec->outFrame = nullptr;
        const csSDK_int32 frame = FrameNumber(pd(), rec->inFrameTime);
        if (PPixHand cached = FromCache(pd(), *rec, frame)) {
            *rec->outFrame = cached;
            return aiNoError;
        }
        PPixHand ready = nullptr;
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            if (Control("pendingOnce") && !m_pendingGiven) {
                m_pendingGiven = true;
                return continueToWait ? aiFrameNotFound : suiteError_RenderPending;
            }
            auto it = m_finished.find(frame);
            if (it != m_finished.end()) {
                ready = it->second;
                m_finished.erase(it);
            } else if (m_inFlight.count(frame)) {
                return continueToWait ? aiFrameNotFound : suiteError_RenderPending;
            }
        }
        if (!ready) ready = Render(pd(), *rec, frame);
        if (!ready) return aiUnknownError;
        ToCache(pd(), *rec, frame, ready);
        *rec->outFrame = ready;
        return aiNoError;
    }

    void flush() {
        std::vector<std::thread> workers;
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            workers.swap(m_workers);
        }
        for (auto& w : workers) w.join();
        std::lock_guard<std::mutex> lock(m_mutex);
        for (auto& f : m_finished)
            if (f.second) pd().ppix->Dispose(f.second);
        m_finished.clear();
    }

private:
    PlugMemoryFuncs* m_memory;
    char** m_handle;
    std::mutex m_mutex;
    std::set<csSDK_int32> m_inFlight;
    std::map<csSDK_int32, PPixHand> m_finished;
    std::vector<std::thread> m_workers;
    bool m_pendingGiven = false;
};

csSDK_int32 AsyncEntry(int selector, void* param) {
    switch (selector) {
        case aiInitiateAsyncRead: {
            auto* request = static_cast<aiAsyncRequest*>(param);
            return static_cast<Reader*>(request->inPrivateData)->initiate(request);
        }
        case aiCancelAsyncRead:
            return aiNoError;
        case aiGetFrame: {
            auto* rec = static_cast<imSourceVideoRec*>(param);
            return static_cast<Reader*>(rec->inPrivateData)->getFrame(rec, false);
        }
        case aiContinueToWaitForAsyncIO: {
            auto* request = static_cast<aiAsyncRequest*>(param);
            return static_cast<Reader*>(request->inPrivateData)->getFrame(&request->inSourceRec, true);
        }
        case aiFlush:
            static_cast<Reader*>(param)->flush();
            return aiNoError;
        case aiClose:
            delete static_cast<Reader*>(param);
            return aiNoError;
        case aiSelectEfficientRenderTime:
            return aiNoError;
        default:
            return aiUnsupported;
    }
}

// ---- selectors ----
csSDK_int32 Init(imStdParms* stdParms, imImportInfoRec* info) {
    info->canSave = 1;
    info->hasSetup = 1;
    info->canCalcSizes = 1;
    info->canTrim = 1;
    info->canAsync = 1;
    info->hasSourceSettingsEffect = 1;
    info->priority = 0x7FFFFFFF;
    g_interface = std::to_string(stdParms->imInterfaceVer);
    SPBasicSuite* basic = Basic(stdParms);
    auto* appInfo = Acquire<PrSDKAppInfoSuite>(basic, kPrSDKAppInfoSuite, kPrSDKAppInfoSuiteVersion);
    if (appInfo) {
        csSDK_uint32 code = 0;
        PrSDKAppInfoSuite::VersionInfo version = {0, 0, 0};
        if (appInfo->GetAppInfo(PrSDKAppInfoSuite::kAppInfo_AppFourCC, &code) == suiteError_NoError) {
            const char chars[5] = {static_cast<char>(code >> 24), static_cast<char>(code >> 16),
                                   static_cast<char>(code >> 8), static_cast<char>(code), 0};
            g_appFourCC = chars;
        }
        if (appInfo->GetAppInfo(PrSDKAppInfoSuite::kAppInfo_Version, &version) == suiteError_NoError)
            g_appVersion = std::to_string(version.major) + "." + std::to_string(version.minor) + "." +
                           std::to_string(version.patch);
        if (!Control("keepSuite")) basic->ReleaseSuite(kPrSDKAppInfoSuite, kPrSDKAppInfoSuiteVersion);
    }
    return imNoErr;
}

csSDK_int32 GetIndFormat(int index, imIndFormatRec* rec) {
    if (index != 0) return imBadFormatIndex;
    rec->filetype = kFileType;
    rec->flags = xfCanOpen | xfCanImport | xfIsMovie;
    rec->canWriteTimecode = 1;
    std::strncpy(rec->FormatName, "Simulator test clip", sizeof(rec->FormatName) - 1);
    std::strncpy(rec->FormatShortName, "Test clip", sizeof(rec->FormatShortName) - 1);
    std::memcpy(rec->PlatformExtension, "twtest\0twt\0", 11);
    return imNoErr;
}

// Two sub-types in an array from the host's newPtr, which the host frees.
csSDK_int32 GetSubTypeNames(imStdParms* stdParms, int fileType, imSubTypeDescriptionRec** out) {
    if (fileType != kFileType || !out) return imUnsupported;
    char* block = Memory(stdParms)->newPtrClear(2 * sizeof(imSubTypeDescriptionRec));
    auto* names = reinterpret_cast<imSubTypeDescriptionRec*>(block);
    names[0].subType = static_cast<csSDK_int32>(imUncompressed);
    Utf16("Uncompressed", names[0].subTypeName, 256);
    names[1].subType = 0x31;
    Utf16("Variant", names[1].subTypeName, 256);
    *out = names;
    return imNoErr;
}

csSDK_int32 OpenFile(imFileRef* fileRef, imFileOpenRec8* rec) {
    FILE* f = std::fopen(Utf8(rec->fileinfo.filepath).c_str(), rec->inReadWrite == kPrOpenFileAccess_ReadWrite ? "r+b" : "rb");
    if (!f) return imBadFile;
    *fileRef = f;
    rec->fileinfo.filetype = kFileType;
    return imNoErr;
}

void QuietFile(imFileRef* fileRef) {
    if (fileRef && *fileRef && *fileRef != imInvalidHandleValue()) std::fclose(static_cast<FILE*>(*fileRef));
    if (fileRef) *fileRef = imInvalidHandleValue();
}

csSDK_int32 GetInfo(imStdParms* stdParms, imFileAccessRec8* access, imFileInfoRec8* info) {
    const std::string path = Utf8(access->filepath);
    int width = 0, height = 0, frames = 0;
    if (!ReadClip(path, width, height, frames)) return imBadFile;
    PlugMemoryFuncs* memory = Memory(stdParms);

    if (!info->prefs || memory->getPtrSize(static_cast<char*>(info->prefs)) != kPrefsSize) {
        if (info->prefs) memory->disposePtr(static_cast<char*>(info->prefs));
        char* prefs = memory->newPtrClear(kPrefsSize);
        std::memcpy(prefs, "TWP1", 4);
        info->prefs = prefs;
    }

    char** handle = static_cast<char**>(info->privatedata);
    if (!handle) {
        handle = memory->newHandleClear(sizeof(PrivateData));
        info->privatedata = handle;
    }
    memory->lockHandle(handle);
    auto* pd = reinterpret_cast<PrivateData*>(*handle);
    if (pd->basic) ReleaseSuites(pd);
    std::memcpy(pd->magic, "twtestpd", 8);
    pd->width = width;
    pd->height = height;
    pd->frameCount = frames;
    pd->importerID = info->vidInfo.importerID;
    pd->interfaceVersion = stdParms->imInterfaceVer;
    pd->memory = memory;
    pd->basic = Basic(stdParms);
    pd->strings = Acquire<PrSDKStringSuite>(pd->basic, kPrSDKStringSuite, kPrSDKStringSuiteVersion);
    pd->creator = Acquire<PrSDKPPixCreatorSuite>(pd->basic, kPrSDKPPixCreatorSuite, kPrSDKPPixCreatorSuiteVersion);
    pd->cache = Acquire<PrSDKPPixCacheSuite>(pd->basic, kPrSDKPPixCacheSuite, 6);
    pd->ppix = Acquire<PrSDKPPixSuite>(pd->basic, kPrSDKPPixSuite, kPrSDKPPixSuiteVersion);
    pd->time = Acquire<PrSDKTimeSuite>(pd->basic, kPrSDKTimeSuite, kPrSDKTimeSuiteVersion);
    csSDK_int32 result = imNoErr;
    if (!pd->strings || !pd->creator || !pd->cache || !pd->ppix || !pd->time) result = imOtherErr;
    pd->ticksPerSecond = 0;
    if (pd->time) pd->time->GetTicksPerSecond(&pd->ticksPerSecond);

    info->hasVideo = 1;
    info->hasAudio = 1;
    info->vidInfo.imageWidth = width;
    info->vidInfo.imageHeight = height;
    info->vidInfo.depth = 32;
    info->vidInfo.fieldType = prFieldsNone;
    info->vidInfo.alphaType = alphaNone;
    info->vidInfo.pixelAspectNum = 1;
    info->vidInfo.pixelAspectDen = 1;
    info->vidInfo.supportsAsyncIO = 1;
    info->vidInfo.supportsGetSourceVideo = 1;
    info->vidInfo.colorSpaceSupport = imColorSpaceSupport_Fixed;
    if (pd->strings)
        pd->strings->AllocateFromUTF8(reinterpret_cast<const prUTF8Char*>("Test Codec"), &info->vidInfo.codecDescription);
    info->vidScale = 25;
    info->vidSampleSize = 1;
    info->vidDuration = frames;
    info->vidDurationInFrames = frames;
    info->audInfo.numChannels = 2;
    info->audInfo.sampleRate = 48000.0f;
    info->audInfo.sampleType = kPrAudioSampleType_16BitInt;
    info->audDuration = static_cast<PrAudioSample>(frames) * 48000 / 25;
    Utf16("Test.Source.Settings", info->sourceSettingsMatchName, 256);

    auto* registration = Acquire<PrSDKFileRegistrationSuite>(pd->basic, kPrSDKFileRegistrationSuite,
                                                             kPrSDKFileRegistrationSuiteVersion);
    if (registration) {
        const char* const extensions[1] = {"twtest"};
        registration->RegisterFileForHostManagement(static_cast<csSDK_uint32>(info->sessionPluginID), "Test clip",
                                                    path.c_str(), extensions, 1, 0);
        pd->basic->ReleaseSuite(kPrSDKFileRegistrationSuite, kPrSDKFileRegistrationSuiteVersion);
    }
    memory->unlockHandle(handle);
    if (Control("unlockTwice")) memory->unlockHandle(handle);
    return result;
}

csSDK_int32 GetIndColorSpace(imStdParms* stdParms, int index, ColorSpaceRec* rec) {
    if (index > 0) return imOtherErr;
    char** handle = static_cast<char**>(rec->inPrivateData);
    if (!handle) return imOtherErr;
    PlugMemoryFuncs* memory = Memory(stdParms);
    memory->lockHandle(handle);
    auto* pd = reinterpret_cast<PrivateData*>(*handle);
    rec->outColorSpaceType = kPrSDKColorSpaceType_Predefined;
    pd->strings->AllocateFromUTF8(reinterpret_cast<const prUTF8Char*>(kPrRec709), &rec->ioProfileRec.outName);
    memory->unlockHandle(handle);
    return imNoErr;
}

csSDK_int32 GetSourceVideo(imStdParms* stdParms, imSourceVideoRec* rec) {
    char** handle = static_cast<char**>(rec->inPrivateData);
    PlugMemoryFuncs* memory = Memory(stdParms);
    memory->lockHandle(handle);
    const PrivateData pd = *reinterpret_cast<PrivateData*>(*handle);
    memory->unlockHandle(handle);
    const csSDK_int32 frame = FrameNumber(pd, rec->inFrameTime);
    if (PPixHand cached = FromCache(pd, *rec, frame)) {
        *rec->outFrame = cached;
        return imNoErr;
    }
    PPixHand h = Render(pd, *rec, frame);
    if (!h) return imMemErr;
    if (Control("leakFrame")) {
        PPixHand lost = nullptr;
        const prRect r = {0, 0, 8, 8};
        pd.creator->CreatePPix(&lost, PrPPixBufferAccess_ReadWrite, PrPixelFormat_BGRA_4444_8u, &r);
    }
    if (Control("doubleDispose")) {
        PPixHand scratch = nullptr;
        const prRect r = {0, 0, 8, 8};
        pd.creator->CreatePPix(&scratch, PrPPixBufferAccess_ReadWrite, PrPixelFormat_BGRA_4444_8u, &r);
        pd.ppix->Dispose(scratch);
        pd.ppix->Dispose(scratch);
    }
    ToCache(pd, *rec, frame, h);
    *rec->outFrame = h;
    return imNoErr;
}

csSDK_int32 CreateAsyncImporter(imStdParms* stdParms, imAsyncImporterCreationRec* rec) {
    char** handle = static_cast<char**>(rec->inPrivateData);
    PlugMemoryFuncs* memory = Memory(stdParms);
    memory->lockHandle(handle);
    auto* reader = new Reader(*reinterpret_cast<PrivateData*>(*handle), memory);
    memory->unlockHandle(handle);
    rec->outAsyncEntry = AsyncEntry;
    rec->outAsyncPrivateData = reader;
    return imNoErr;
}

csSDK_int32 ImportAudio(imStdParms* stdParms, imImportAudioRec7* rec) {
    char** handle = static_cast<char**>(rec->privateData);
    const PrivateData pd = *reinterpret_cast<PrivateData*>(*handle);
    const long long total = static_cast<long long>(pd.frameCount) * 48000 / 25;
    const long long start = rec->position < 0 ? 0 : rec->position;
    const long long count = std::max(0LL, std::min<long long>(rec->size, total - start));
    std::vector<short> interleaved(static_cast<size_t>(count) * 2);
    for (long long f = 0; f < count; ++f) {
        interleaved[static_cast<size_t>(2 * f)] = static_cast<short>((start + f) % 32768);
        interleaved[static_cast<size_t>(2 * f + 1)] = static_cast<short>(-((start + f) % 32768));
    }
    SPBasicSuite* basic = Basic(stdParms);
    auto* audio = Acquire<PrSDKAudioSuite>(basic, kPrSDKAudioSuite, kPrSDKAudioSuiteVersion);
    if (!audio) return imOtherErr;
    const prSuiteError err = audio->UninterleaveAndConvertFrom16BitInteger(
        interleaved.data(), rec->buffer, 2, static_cast<unsigned int>(count));
    basic->ReleaseSuite(kPrSDKAudioSuite, kPrSDKAudioSuiteVersion);
    return err == suiteError_NoError ? imNoErr : imOtherErr;
}

csSDK_int32 GetPrefs(imGetPrefsRec* rec) {
    if (rec->prefsLength == 0) {
        rec->prefsLength = kPrefsSize;
        return imNoErr;
    }
    std::memcpy(rec->prefs, "TWP1", 4);
    rec->prefs[4] = static_cast<char>(rec->prefs[4] + 1);  // settings changed once more
    return imNoErr;
}

void CloseFile(imStdParms* stdParms, imFileRef* fileRef, void* privateData) {
    QuietFile(fileRef);
    char** handle = static_cast<char**>(privateData);
    if (!handle) return;
    PlugMemoryFuncs* memory = Memory(stdParms);
    memory->lockHandle(handle);
    ReleaseSuites(reinterpret_cast<PrivateData*>(*handle));
    memory->unlockHandle(handle);
    if (!Control("leakHandle")) memory->disposeHandle(handle);
}

csSDK_int32 Dispatch(csSDK_int32 selector, imStdParms* stdParms, void* param1, void* param2) {
    const int index = static_cast<int>(reinterpret_cast<intptr_t>(param1));
    switch (selector) {
        case imInit: return Init(stdParms, static_cast<imImportInfoRec*>(param1));
        case imShutdown: return imNoErr;
        case imGetIndFormat: return GetIndFormat(index, static_cast<imIndFormatRec*>(param2));
        case imGetIndPixelFormat:
            if (index < 0 || index >= 3) return imBadFormatIndex;
            static_cast<imIndPixelFormatRec*>(param2)->outPixelFormat = kPixelFormats[index];
            return imNoErr;
        case imGetSupports8:
            if (Control("throw")) throw std::runtime_error("test plug-in told to throw");
            return malSupports8;
        case imOpenFile8: return OpenFile(static_cast<imFileRef*>(param1), static_cast<imFileOpenRec8*>(param2));
        case imQuietFile: QuietFile(static_cast<imFileRef*>(param1)); return imNoErr;
        case imCloseFile: CloseFile(stdParms, static_cast<imFileRef*>(param1), param2); return imNoErr;
        case imGetInfo8:
            return GetInfo(stdParms, static_cast<imFileAccessRec8*>(param1), static_cast<imFileInfoRec8*>(param2));
        case imGetIndColorSpace: return GetIndColorSpace(stdParms, index, static_cast<ColorSpaceRec*>(param2));
        case imGetSourceVideo: return GetSourceVideo(stdParms, static_cast<imSourceVideoRec*>(param2));
        case imCreateAsyncImporter:
            return CreateAsyncImporter(stdParms, static_cast<imAsyncImporterCreationRec*>(param1));
        case imImportAudio7: return ImportAudio(stdParms, static_cast<imImportAudioRec7*>(param2));
        case imGetPrefs8: return GetPrefs(static_cast<imGetPrefsRec*>(param2));
        case imGetSubTypeNames:
            return GetSubTypeNames(stdParms, index, static_cast<imSubTypeDescriptionRec**>(param2));
        default: return imUnsupported;
    }
}

}  // namespace

TW_EXPORT csSDK_int32 xImportEntry(csSDK_int32 selector, imStdParms* stdParms, void* param1, void* param2) {
    return Dispatch(selector, stdParms, param1, param2);
}

TW_EXPORT void twSetTestRoots(const char* home, const char* systemRoot) {
    std::lock_guard<std::mutex> lock(g_controlMutex);
    g_home = home ? home : "";
    g_systemRoot = systemRoot ? systemRoot : "";
}

TW_EXPORT int twTestPluginControl(const char* key, int value) {
    std::lock_guard<std::mutex> lock(g_controlMutex);
    g_controls[key] = value;
    return 0;
}

// "home", "systemRoot", "appFourCC", "appVersion", "interface": what the plug-in was told.
TW_EXPORT const char* twTestPluginText(const char* key) {
    std::lock_guard<std::mutex> lock(g_controlMutex);
    const std::string k = key;
    if (k == "home") return g_home.c_str();
    if (k == "systemRoot") return g_systemRoot.c_str();
    if (k == "appFourCC") return g_appFourCC.c_str();
    if (k == "appVersion") return g_appVersion.c_str();
    if (k == "interface") return g_interface.c_str();
    return "";
}
