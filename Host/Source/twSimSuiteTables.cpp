// The suites' C tables and the functions behind them. Each function finds the
// living host through twSimHostAccess and forwards to the service that keeps
// the state; without a host it fails.

#include "twSimAudio.h"
#include "twSimHost.h"
#include "twSimText.h"

#include <cmath>
#include <cstring>

namespace {

constexpr prSuiteError kNoHost = suiteError_Fail;

// ---- String suite ----
prSuiteError DisposeString(const PrSDKString* s) {
    twSimHostAccess host;
    return host ? host->strings().disposeString(s) : kNoHost;
}
prSuiteError AllocateFromUTF8(const prUTF8Char* text, PrSDKString* out) {
    twSimHostAccess host;
    return host ? host->strings().allocateFromUTF8(text, out) : kNoHost;
}
prSuiteError CopyToUTF8String(const PrSDKString* s, prUTF8Char* buffer, csSDK_uint32* size) {
    twSimHostAccess host;
    return host ? host->strings().copyToUTF8(s, buffer, size) : kNoHost;
}
prSuiteError AllocateFromUTF16(const prUTF16Char* text, PrSDKString* out) {
    twSimHostAccess host;
    return host ? host->strings().allocateFromUTF16(text, out) : kNoHost;
}
prSuiteError CopyToUTF16String(const PrSDKString* s, prUTF16Char* buffer, csSDK_uint32* size) {
    twSimHostAccess host;
    return host ? host->strings().copyToUTF16(s, buffer, size) : kNoHost;
}

const PrSDKStringSuite g_stringSuite = {DisposeString, AllocateFromUTF8, CopyToUTF8String, AllocateFromUTF16,
                                        CopyToUTF16String};

// ---- PPix Creator suite ----
prSuiteError CreatePPix(PPixHand* out, PrPPixBufferAccess access, PrPixelFormat format, const prRect* rect) {
    twSimHostAccess host;
    return host ? host->frames().createFromRect(out, access, format, rect) : kNoHost;
}
prSuiteError ClonePPix(PPixHand in, PPixHand* out, PrPPixBufferAccess access) {
    twSimHostAccess host;
    return host ? host->frames().clone(in, out, access) : kNoHost;
}

const PrSDKPPixCreatorSuite g_creatorSuite = {CreatePPix, ClonePPix};

// ---- PPix Creator 2 suite ----
prSuiteError Create2PPix(PPixHand* out, PrPPixBufferAccess access, PrPixelFormat format, int width, int height, bool,
                         int, int parNum, int parDen) {
    twSimHostAccess host;
    return host ? host->frames().create(out, access, format, width, height, static_cast<csSDK_uint32>(parNum),
                                        static_cast<csSDK_uint32>(parDen))
                : kNoHost;
}
prSuiteError Create2RawPPix(PPixHand* out, PrPPixBufferAccess access, int size, int alignment) {
    twSimHostAccess host;
    return host ? host->frames().createSized(out, access, PrPixelFormat_Raw, size, 1, size, alignment, 1, 1,
                                             kPrSDKColorSpaceID_Invalid)
                : kNoHost;
}
prSuiteError Create2CustomPPix(PPixHand* out, PrPPixBufferAccess access, PrPixelFormat format, int width, int height,
                               int parNum, int parDen, int dataSize) {
    twSimHostAccess host;
    return host ? host->frames().createSized(out, access, format, width, height, dataSize, 0,
                                             static_cast<csSDK_uint32>(parNum), static_cast<csSDK_uint32>(parDen),
                                             kPrSDKColorSpaceID_Invalid)
                : kNoHost;
}
prSuiteError Create2DiskAlignedPPix(PPixHand* out, PrPixelFormat format, int width, int height, int parNum, int parDen,
                                    int, int, int) {
    twSimHostAccess host;
    return host ? host->frames().create(out, PrPPixBufferAccess_ReadWrite, format, width, height,
                                        static_cast<csSDK_uint32>(parNum), static_cast<csSDK_uint32>(parDen))
                : kNoHost;
}
prSuiteError Create2ColorManagedPPix(PPixHand* out, PrPPixBufferAccess access, PrPixelFormat format, int width,
                                     int height, bool, int, int parNum, int parDen, PrSDKColorSpaceID colorSpace) {
    twSimHostAccess host;
    return host ? host->frames().create(out, access, format, width, height, static_cast<csSDK_uint32>(parNum),
                                        static_cast<csSDK_uint32>(parDen), colorSpace)
                : kNoHost;
}
prSuiteError Create2ColorManagedCustomPPix(PPixHand* out, PrPPixBufferAccess access, PrPixelFormat format, int width,
                                           int height, int parNum, int parDen, int dataSize,
                                           PrSDKColorSpaceID colorSpace) {
    twSimHostAccess host;
    return host ? host->frames().createSized(out, access, format, width, height, dataSize, 0,
                                             static_cast<csSDK_uint32>(parNum), static_cast<csSDK_uint32>(parDen),
                                             colorSpace)
                : kNoHost;
}
prSuiteError Create2ColorManagedDiskAlignedPPix(PPixHand* out, PrPixelFormat format, int width, int height,
                                                int parNum, int parDen, int, int, int, PrSDKColorSpaceID colorSpace) {
    twSimHostAccess host;
    return host ? host->frames().create(out, PrPPixBufferAccess_ReadWrite, format, width, height,
                                        static_cast<csSDK_uint32>(parNum), static_cast<csSDK_uint32>(parDen),
                                        colorSpace)
                : kNoHost;
}

const PrSDKPPixCreator2Suite g_creator2Suite = {Create2PPix,
                                                Create2RawPPix,
                                                Create2CustomPPix,
                                                Create2DiskAlignedPPix,
                                                Create2ColorManagedPPix,
                                                Create2ColorManagedCustomPPix,
                                                Create2ColorManagedDiskAlignedPPix};

// ---- PPix Cache suite ----
// Key building shared by every generation: the base key, then what the
// generation adds.
struct KeyParts {
    twSimCacheGeneration generation = twSimCacheGeneration::Plain;
    csSDK_uint32 quality = 0;
    const PrSDKString* profileName = nullptr;
    const void* profileData = nullptr;
    csSDK_int32 profileSize = 0;
    const PrSDKColorSpaceID* colorSpace = nullptr;
};

bool BuildKey(twSimHost& host, twSimCacheKey& key, csSDK_uint32 importerID, csSDK_int32 stream, csSDK_int32 frame,
              const void* prefs, csSDK_int32 prefsLength, const KeyParts& parts) {
    if (!host.cache().makeKey(key, importerID, stream, frame, prefs, prefsLength)) return false;
    key.generation = parts.generation;
    key.quality = parts.quality;
    if (parts.generation == twSimCacheGeneration::ColorProfile || parts.generation == twSimCacheGeneration::ColorProfile2)
        host.cache().addColorProfile(key, parts.profileName, parts.profileData, parts.profileSize);
    if (parts.generation == twSimCacheGeneration::ColorSpace) twSimFrameCache::addColorSpace(key, parts.colorSpace);
    return true;
}

prSuiteError AddFrame(csSDK_uint32 importerID, csSDK_int32 stream, PPixHand frameHandle, csSDK_int32 frame,
                      const void* prefs, csSDK_int32 prefsLength, const KeyParts& parts) {
    twSimHostAccess host;
    if (!host) return kNoHost;
    twSimCacheKey key;
    if (!BuildKey(*host, key, importerID, stream, frame, prefs, prefsLength, parts)) return suiteError_InvalidParms;
    return host->cache().add(key, frameHandle);
}

prSuiteError GetFrame(csSDK_uint32 importerID, csSDK_int32 stream, csSDK_int32 frame, csSDK_int32 numFormats,
                      imFrameFormat* formats, PPixHand* out, const void* prefs, csSDK_int32 prefsLength,
                      const KeyParts& parts) {
    twSimHostAccess host;
    if (!host) return kNoHost;
    if (out) *out = nullptr;
    twSimCacheKey key;
    if (!BuildKey(*host, key, importerID, stream, frame, prefs, prefsLength, parts)) return suiteError_InvalidParms;
    return host->cache().get(key, numFormats, formats, out);
}

prSuiteError RegisterOnFrame(csSDK_uint32 importerID, csSDK_int32 stream, csSDK_int32 frame, csSDK_int32 numFormats,
                             imFrameFormat* formats, prPluginID* outId, const void* prefs, csSDK_int32 prefsLength,
                             const KeyParts& parts) {
    twSimHostAccess host;
    if (!host) return kNoHost;
    twSimCacheKey key;
    if (!BuildKey(*host, key, importerID, stream, frame, prefs, prefsLength, parts)) return suiteError_InvalidParms;
    return host->cache().registerDependencyOnFrame(key, numFormats, formats, outId);
}

KeyParts Profile(twSimCacheGeneration generation, csSDK_uint32 quality, const PrSDKString* name, const void* data,
                 csSDK_int32 size) {
    KeyParts p;
    p.generation = generation;
    p.quality = quality;
    p.profileName = name;
    p.profileData = data;
    p.profileSize = size;
    return p;
}

KeyParts Space(csSDK_uint32 quality, const PrSDKColorSpaceID* id) {
    KeyParts p;
    p.generation = twSimCacheGeneration::ColorSpace;
    p.quality = quality;
    p.colorSpace = id;
    return p;
}

prSuiteError AddFrameToCache1(csSDK_uint32 id, csSDK_int32 stream, PPixHand h, csSDK_int32 frame) {
    return AddFrame(id, stream, h, frame, nullptr, 0, KeyParts());
}
prSuiteError GetFrameFromCache1(csSDK_uint32 id, csSDK_int32 stream, csSDK_int32 frame, csSDK_int32 n,
                                imFrameFormat* formats, PPixHand* out) {
    return GetFrame(id, stream, frame, n, formats, out, nullptr, 0, KeyParts());
}
prSuiteError AddFrameToCache(csSDK_uint32 id, csSDK_int32 stream, PPixHand h, csSDK_int32 frame, void* prefs,
                             csSDK_int32 prefsLength) {
    return AddFrame(id, stream, h, frame, prefs, prefsLength, KeyParts());
}
prSuiteError GetFrameFromCache(csSDK_uint32 id, csSDK_int32 stream, csSDK_int32 frame, csSDK_int32 n,
                               imFrameFormat* formats, PPixHand* out, void* prefs, csSDK_int32 prefsLength) {
    return GetFrame(id, stream, frame, n, formats, out, prefs, prefsLength, KeyParts());
}
prSuiteError AddRawPPixToCache(csSDK_uint32 id, PPixHand h, csSDK_int32 key) {
    twSimHostAccess host;
    return host ? host->cache().addRaw(id, h, key) : kNoHost;
}
prSuiteError GetRawPPixFromCache(csSDK_uint32 id, csSDK_int32 key, PPixHand* out) {
    twSimHostAccess host;
    return host ? host->cache().getRaw(id, key, out) : kNoHost;
}
prSuiteError AddNamedPPixToCache(const prPluginID* name, PPixHand h) {
    twSimHostAccess host;
    return host ? host->cache().addNamed(name, h) : kNoHost;
}
prSuiteError GetNamedPPixFromCache(const prPluginID* name, PPixHand* out) {
    twSimHostAccess host;
    return host ? host->cache().getNamed(name, out) : kNoHost;
}
prSuiteError RegisterDependencyOnNamedPPix(const prPluginID* name) {
    twSimHostAccess host;
    return host ? host->cache().registerDependency(name) : kNoHost;
}
prSuiteError UnregisterDependencyOnNamedPPix(const prPluginID* name) {
    twSimHostAccess host;
    return host ? host->cache().unregisterDependency(name) : kNoHost;
}
prSuiteError ExpireNamedPPixFromCache(const prPluginID* name) {
    twSimHostAccess host;
    return host ? host->cache().expireNamed(name) : kNoHost;
}
prSuiteError ExpireAllPPixesFromCache() {
    twSimHostAccess host;
    return host ? host->cache().expireAll() : kNoHost;
}
prSuiteError AddFrameToCacheWithColorProfile(csSDK_uint32 id, csSDK_int32 stream, PPixHand h, csSDK_int32 frame,
                                             void* prefs, csSDK_int32 prefsLength, PrSDKString* name, void* data,
                                             csSDK_int32 size) {
    return AddFrame(id, stream, h, frame, prefs, prefsLength,
                    Profile(twSimCacheGeneration::ColorProfile, 0, name, data, size));
}
prSuiteError GetFrameFromCacheWithColorProfile(csSDK_uint32 id, csSDK_int32 stream, csSDK_int32 frame, csSDK_int32 n,
                                               imFrameFormat* formats, PPixHand* out, void* prefs,
                                               csSDK_int32 prefsLength, PrSDKString* name, void* data,
                                               csSDK_int32 size) {
    return GetFrame(id, stream, frame, n, formats, out, prefs, prefsLength,
                    Profile(twSimCacheGeneration::ColorProfile, 0, name, data, size));
}
prSuiteError AddFrameToCacheWithColorProfile2(csSDK_uint32 id, csSDK_int32 stream, PPixHand h, csSDK_int32 frame,
                                              PrRenderQuality quality, void* prefs, csSDK_int32 prefsLength,
                                              PrSDKString* name, void* data, csSDK_int32 size) {
    return AddFrame(id, stream, h, frame, prefs, prefsLength,
                    Profile(twSimCacheGeneration::ColorProfile2, quality, name, data, size));
}
prSuiteError GetFrameFromCacheWithColorProfile2(csSDK_uint32 id, csSDK_int32 stream, csSDK_int32 frame, csSDK_int32 n,
                                                imFrameFormat* formats, PPixHand* out, PrRenderQuality quality,
                                                void* prefs, csSDK_int32 prefsLength, PrSDKString* name, void* data,
                                                csSDK_int32 size) {
    return GetFrame(id, stream, frame, n, formats, out, prefs, prefsLength,
                    Profile(twSimCacheGeneration::ColorProfile2, quality, name, data, size));
}
prSuiteError AddFrameToCacheWithColorSpace(csSDK_uint32 id, csSDK_int32 stream, PPixHand h, csSDK_int32 frame,
                                           PrRenderQuality quality, void* prefs, csSDK_int32 prefsLength,
                                           PrSDKColorSpaceID* space) {
    return AddFrame(id, stream, h, frame, prefs, prefsLength, Space(quality, space));
}
prSuiteError GetFrameFromCacheWithColorSpace(csSDK_uint32 id, csSDK_int32 stream, csSDK_int32 frame, csSDK_int32 n,
                                             imFrameFormat* formats, PPixHand* out, PrRenderQuality quality,
                                             void* prefs, csSDK_int32 prefsLength, PrSDKColorSpaceID* space) {
    return GetFrame(id, stream, frame, n, formats, out, prefs, prefsLength, Space(quality, space));
}
prSuiteError RegisterDependencyOnFrame(csSDK_uint32 id, csSDK_int32 stream, csSDK_int32 frame, csSDK_int32 n,
                                       imFrameFormat* formats, prPluginID* outId, void* prefs,
                                       csSDK_int32 prefsLength) {
    return RegisterOnFrame(id, stream, frame, n, formats, outId, prefs, prefsLength, KeyParts());
}
prSuiteError RegisterDependencyOnFrameWithColorProfile(csSDK_uint32 id, csSDK_int32 stream, csSDK_int32 frame,
                                                       csSDK_int32 n, imFrameFormat* formats, prPluginID* outId,
                                                       void* prefs, csSDK_int32 prefsLength, PrSDKString* name,
                                                       void* data, csSDK_int32 size) {
    return RegisterOnFrame(id, stream, frame, n, formats, outId, prefs, prefsLength,
                           Profile(twSimCacheGeneration::ColorProfile, 0, name, data, size));
}
prSuiteError RegisterDependencyOnFrameWithColorProfile2(csSDK_uint32 id, csSDK_int32 stream, csSDK_int32 frame,
                                                        csSDK_int32 n, imFrameFormat* formats,
                                                        PrRenderQuality quality, prPluginID* outId, void* prefs,
                                                        csSDK_int32 prefsLength, PrSDKString* name, void* data,
                                                        csSDK_int32 size) {
    return RegisterOnFrame(id, stream, frame, n, formats, outId, prefs, prefsLength,
                           Profile(twSimCacheGeneration::ColorProfile2, quality, name, data, size));
}
prSuiteError RegisterDependencyOnFrameWithColorSpace(csSDK_uint32 id, csSDK_int32 stream, csSDK_int32 frame,
                                                     csSDK_int32 n, imFrameFormat* formats, PrRenderQuality quality,
                                                     prPluginID* outId, void* prefs, csSDK_int32 prefsLength,
                                                     PrSDKColorSpaceID* space) {
    return RegisterOnFrame(id, stream, frame, n, formats, outId, prefs, prefsLength, Space(quality, space));
}

const PrSDKPPixCacheSuite1 g_cacheSuite1 = {AddFrameToCache1, GetFrameFromCache1, AddRawPPixToCache,
                                            GetRawPPixFromCache};

// Versions 2 to 8 only ever appended slots: one table serves them all.
const PrSDKPPixCacheSuite g_cacheSuite = {AddFrameToCache,
                                          GetFrameFromCache,
                                          AddRawPPixToCache,
                                          GetRawPPixFromCache,
                                          AddNamedPPixToCache,
                                          GetNamedPPixFromCache,
                                          RegisterDependencyOnNamedPPix,
                                          UnregisterDependencyOnNamedPPix,
                                          ExpireNamedPPixFromCache,
                                          ExpireAllPPixesFromCache,
                                          AddFrameToCacheWithColorProfile,
                                          GetFrameFromCacheWithColorProfile,
                                          AddFrameToCacheWithColorProfile2,
                                          GetFrameFromCacheWithColorProfile2,
                                          AddFrameToCacheWithColorSpace,
                                          GetFrameFromCacheWithColorSpace,
                                          RegisterDependencyOnFrame,
                                          RegisterDependencyOnFrameWithColorProfile,
                                          RegisterDependencyOnFrameWithColorProfile2,
                                          RegisterDependencyOnFrameWithColorSpace};

// ---- PPix suite ----
prSuiteError PPixDispose(PPixHand h) {
    twSimHostAccess host;
    return host ? host->frames().dispose(h) : kNoHost;
}
prSuiteError PPixGetPixels(PPixHand h, PrPPixBufferAccess access, char** out) {
    twSimHostAccess host;
    return host ? host->frames().getPixels(h, access, out) : kNoHost;
}
prSuiteError PPixGetBounds(PPixHand h, prRect* out) {
    twSimHostAccess host;
    return host ? host->frames().getBounds(h, out) : kNoHost;
}
prSuiteError PPixGetRowBytes(PPixHand h, csSDK_int32* out) {
    twSimHostAccess host;
    return host ? host->frames().getRowBytes(h, out) : kNoHost;
}
prSuiteError PPixGetPixelAspectRatio(PPixHand h, csSDK_uint32* num, csSDK_uint32* den) {
    twSimHostAccess host;
    return host ? host->frames().getPixelAspectRatio(h, num, den) : kNoHost;
}
prSuiteError PPixGetPixelFormat(PPixHand h, PrPixelFormat* out) {
    twSimHostAccess host;
    return host ? host->frames().getPixelFormat(h, out) : kNoHost;
}
prSuiteError PPixGetUniqueKey(PPixHand h, unsigned char* buffer, size_t size) {
    twSimHostAccess host;
    return host ? host->frames().getUniqueKey(h, buffer, size) : kNoHost;
}
prSuiteError PPixGetUniqueKeySize(size_t* out) {
    if (!out) return suiteError_InvalidParms;
    *out = twSimFrames::kUniqueKeySize;
    return suiteError_NoError;
}
prSuiteError PPixGetRenderTime(PPixHand h, csSDK_int32* out) {
    twSimHostAccess host;
    if (!host) return kNoHost;
    if (!out || !host->frames().isAlive(h)) return suiteError_InvalidParms;
    *out = 0;
    return suiteError_NoError;
}

const PrSDKPPixSuite g_ppixSuite = {PPixDispose,        PPixGetPixels,    PPixGetBounds,
                                    PPixGetRowBytes,    PPixGetPixelAspectRatio, PPixGetPixelFormat,
                                    PPixGetUniqueKey,   PPixGetUniqueKeySize,    PPixGetRenderTime};

// ---- App Info suite ----
prSuiteError GetAppInfo(int selector, void* out) {
    twSimHostAccess host;
    if (!host) return kNoHost;
    if (!out) return suiteError_InvalidParms;
    const twSimIdentity& id = host->config().identity;
    switch (selector) {
        case PrSDKAppInfoSuite::kAppInfo_AppFourCC:
            if (host->fault(twSimFault::AppInfoFourCC)) return suiteError_Fail;
            *static_cast<csSDK_uint32*>(out) = id.appCode;
            return suiteError_NoError;
        case PrSDKAppInfoSuite::kAppInfo_Version: {
            if (host->fault(twSimFault::AppInfoVersion)) return suiteError_Fail;
            auto* v = static_cast<PrSDKAppInfoSuite::VersionInfo*>(out);
            v->major = id.major;
            v->minor = id.minor;
            v->patch = id.patch;
            return suiteError_NoError;
        }
        case PrSDKAppInfoSuite::kAppInfo_Build:
            *static_cast<csSDK_uint32*>(out) = id.build;
            return suiteError_NoError;
        case PrSDKAppInfoSuite::kAppInfo_Language: {
            auto* l = static_cast<PrSDKAppInfoSuite::LanguageInfo*>(out);
            std::memset(l->languageID, 0, sizeof(l->languageID));
            std::strncpy(l->languageID, id.language.c_str(), sizeof(l->languageID) - 1);
            return suiteError_NoError;
        }
        default:
            return suiteError_InvalidParms;
    }
}

const PrSDKAppInfoSuite g_appInfoSuite = {GetAppInfo};

// ---- Application Settings suite ----
prSuiteError GetScratchDiskFolder(unsigned int type, PrSDKString* out) {
    twSimHostAccess host;
    if (!host) return kNoHost;
    if (!out || type > kScratchDiskType_PreviewAudio) return suiteError_InvalidParms;
    const twSimHostConfig& config = host->config();
    if (config.projectPath.empty()) return suiteError_InvalidCall;
    std::string folder = config.scratchFolder;
    if (folder.empty()) {
        const size_t slash = config.projectPath.rfind('/');
        folder = slash == std::string::npos ? std::string(".") : config.projectPath.substr(0, slash);
    }
    *out = host->strings().make(folder);
    return suiteError_NoError;
}
prSuiteError GetCurrentProjectPath(PrSDKString* out) {
    twSimHostAccess host;
    if (!host) return kNoHost;
    if (!out) return suiteError_InvalidParms;
    if (host->config().projectPath.empty()) return suiteError_InvalidCall;
    *out = host->strings().make(host->config().projectPath);
    return suiteError_NoError;
}

const PrSDKApplicationSettingsSuite g_appSettingsSuite = {GetScratchDiskFolder, GetCurrentProjectPath};

// ---- Time suite ----
prSuiteError GetTicksPerSecond(PrTime* out) {
    twSimHostAccess host;
    if (!host) return kNoHost;
    if (!out) return suiteError_InvalidParms;
    if (host->fault(twSimFault::TicksPerSecond)) return suiteError_Fail;
    *out = host->config().ticksPerSecond;
    return suiteError_NoError;
}
prSuiteError GetTicksPerVideoFrame(PrVideoFrameRates rate, PrTime* out) {
    twSimHostAccess host;
    if (!host) return kNoHost;
    if (!out) return suiteError_InvalidParms;
    const PrTime ticks = host->config().ticksPerSecond;
    switch (rate) {
        case kVideoFrameRate_24Drop: *out = ticks / 24000 * 1001; break;
        case kVideoFrameRate_24: *out = ticks / 24; break;
        case kVideoFrameRate_PAL: *out = ticks / 25; break;
        case kVideoFrameRate_NTSC: *out = ticks / 30000 * 1001; break;
        case kVideoFrameRate_30: *out = ticks / 30; break;
        case kVideoFrameRate_PAL_HD: *out = ticks / 50; break;
        case kVideoFrameRate_NTSC_HD: *out = ticks / 60000 * 1001; break;
        case kVideoFrameRate_60: *out = ticks / 60; break;
        default: return suiteError_InvalidParms;
    }
    return suiteError_NoError;
}
prSuiteError GetTicksPerAudioSample(float sampleRate, PrTime* out) {
    twSimHostAccess host;
    if (!host) return kNoHost;
    if (!out || !(sampleRate > 0.0f)) return suiteError_InvalidParms;
    const PrTime ticks = host->config().ticksPerSecond;
    const double rate = static_cast<double>(sampleRate);
    const auto whole = static_cast<PrTime>(rate);
    if (static_cast<double>(whole) == rate && ticks % whole == 0) {
        *out = ticks / whole;
        return suiteError_NoError;
    }
    *out = static_cast<PrTime>(std::llround(static_cast<double>(ticks) / rate));
    return suiteError_TimeRoundedAudioRate;
}

const PrSDKTimeSuite g_timeSuite = {GetTicksPerSecond, GetTicksPerVideoFrame, GetTicksPerAudioSample};

// ---- Error suite, versions 1 to 3 ----
prSuiteError Post(int version, csSDK_uint32 rawType, const std::string& title, const std::string& description) {
    twSimHostAccess host;
    if (!host) return kNoHost;
    twSimEvent e;
    e.suiteVersion = version;
    e.type = rawType & PrSDKErrorSuite3::kEventType_Mask;
    e.flags = rawType & ~static_cast<csSDK_uint32>(PrSDKErrorSuite3::kEventType_Mask);
    e.title = title;
    e.description = description;
    host->events().post(e);
    return suiteError_NoError;
}
std::string Text(const char* s) { return s ? std::string(s) : std::string(); }

prSuiteError SetErrorString(const char* text, csSDK_uint32) { return Post(1, 3, Text(text), ""); }
prSuiteError SetWarningString(const char* text, csSDK_uint32) { return Post(1, 2, Text(text), ""); }
prSuiteError SetInfoString(const char* text, csSDK_uint32) { return Post(1, 1, Text(text), ""); }
prSuiteError SetEventString(csSDK_uint32 type, const char* title, const char* description) {
    return Post(2, type, Text(title), Text(description));
}
prSuiteError SetEventStringUnicode(csSDK_uint32 type, prUTF16Char* title, prUTF16Char* description) {
    return Post(3, type, twSimText::Utf16ToUtf8(title), twSimText::Utf16ToUtf8(description));
}

const PrSDKErrorSuite1 g_errorSuite1 = {SetErrorString, SetWarningString, SetInfoString};
const PrSDKErrorSuite2 g_errorSuite2 = {SetEventString};
const PrSDKErrorSuite3 g_errorSuite3 = {SetEventStringUnicode};

// ---- File Registration suite ----
prSuiteError RegisterFileForHostManagement(csSDK_uint32 pluginID, const char* tag, const char* path,
                                           const char* const*, int numExtensions, csSDK_uint32 flags) {
    twSimHostAccess host;
    return host ? host->registrations().registerFile(pluginID, tag, path, numExtensions, flags) : kNoHost;
}
prSuiteError GetRegisteredFilePath(csSDK_uint32 pluginID, const char* tag, char* out, csSDK_uint32 length) {
    twSimHostAccess host;
    return host ? host->registrations().registeredPath(pluginID, tag, out, length) : kNoHost;
}
prSuiteError UnregisterHostManagedFile(csSDK_uint32 pluginID, const char* tag) {
    twSimHostAccess host;
    return host ? host->registrations().unregisterFile(pluginID, tag) : kNoHost;
}

const PrSDKFileRegistrationSuite g_fileRegistrationSuite = {RegisterFileForHostManagement, GetRegisteredFilePath,
                                                            UnregisterHostManagedFile};

// ---- Audio suite ----
const PrSDKAudioSuite g_audioSuite = {twSimAudio::ToInterleaved8,   twSimAudio::ToInterleaved16,
                                      twSimAudio::ToInterleaved24,  twSimAudio::ToInterleaved32,
                                      twSimAudio::FromInterleaved8, twSimAudio::FromInterleaved16,
                                      twSimAudio::FromInterleaved24, twSimAudio::FromInterleaved32};

}  // namespace

void twSimRegisterSuites(twSimSuites& suites) {
    suites.add(kPrSDKStringSuite, kPrSDKStringSuiteVersion, &g_stringSuite);
    suites.add(kPrSDKPPixCreatorSuite, kPrSDKPPixCreatorSuiteVersion, &g_creatorSuite);
    suites.add(kPrSDKPPixCreator2Suite, kPrSDKPPixCreator2SuiteVersion, &g_creator2Suite);
    suites.add(kPrSDKPPixCacheSuite, kPrSDKPPixCacheSuiteVersion1, &g_cacheSuite1);
    for (int v = kPrSDKPPixCacheSuiteVersion2; v <= kPrSDKPPixCacheSuiteVersion8; ++v)
        suites.add(kPrSDKPPixCacheSuite, v, &g_cacheSuite);
    suites.add(kPrSDKPPixSuite, kPrSDKPPixSuiteVersion, &g_ppixSuite);
    for (int v = 1; v <= kPrSDKAppInfoSuiteVersion; ++v) suites.add(kPrSDKAppInfoSuite, v, &g_appInfoSuite);
    suites.add(kPrSDKApplicationSettingsSuite, kPrSDKApplicationSettingsSuiteVersion, &g_appSettingsSuite);
    suites.add(kPrSDKTimeSuite, kPrSDKTimeSuiteVersion, &g_timeSuite);
    suites.add(kPrSDKErrorSuite, kPrSDKErrorSuiteVersion1, &g_errorSuite1);
    suites.add(kPrSDKErrorSuite, kPrSDKErrorSuiteVersion2, &g_errorSuite2);
    suites.add(kPrSDKErrorSuite, kPrSDKErrorSuiteVersion3, &g_errorSuite3);
    suites.add(kPrSDKFileRegistrationSuite, kPrSDKFileRegistrationSuiteVersion, &g_fileRegistrationSuite);
    suites.add(kPrSDKAudioSuite, kPrSDKAudioSuiteVersion, &g_audioSuite);
}
