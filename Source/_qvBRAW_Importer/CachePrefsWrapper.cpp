#include "_qvBRAW_Importer/CachePrefsWrapper.h"

#include "_qvBRAW_Importer/PPix.h"
#include "_qvBRAW_Importer/PrivateData.h"
#include "_qvBRAW_Importer/Video.h"

#include "Utils/qvChrono.h"
#include "Utils/qvLogging.h"

#include <cstdlib>
#include <cstring>

namespace {

// The host reads this constant as the render quality of the newer calls; the
// importer has always passed it as it stands.
constexpr PrRenderQuality kNewCacheMode = static_cast<PrRenderQuality>(2);

}  // namespace

qvCachePrefsWrapper::qvCachePrefsWrapper(TWI_PrivateData* privateData, void* inPrefs, int inPrefsSize,
                                         long long time, int inNumFormats, imFrameFormat* inFormats,
                                         bool inNewCacheApi, PrSDKGuid* inColorProfile, bool copyPrefs)
    : prefs(inPrefs),
      prefsSize(inPrefsSize),
      numFormats(inNumFormats),
      formats(inFormats),
      newCacheApi(inNewCacheApi),
      colorProfile(inColorProfile) {
    GetFrameNumberFromTime(privateData, time, &frame, &frameCopy);
    if (!copyPrefs) return;
    prefs = nullptr;
    void* copy = inPrefsSize > 0 ? std::malloc(static_cast<size_t>(inPrefsSize)) : nullptr;
    if (!copy) {
        prefsSize = 0;
        return;
    }
    if (inPrefs) {
        std::memcpy(copy, inPrefs, static_cast<size_t>(inPrefsSize));
    } else {
        std::memset(copy, 0, static_cast<size_t>(inPrefsSize));
    }
    prefs = copy;
    ownsPrefs = true;
}

qvCachePrefsWrapper::~qvCachePrefsWrapper() {
    if (ownsPrefs) std::free(prefs);
}

int GetFromCache(TWI_PrivateData*& privateData, std::shared_ptr<qvCachePrefsWrapper> wrapper, PPix*** out,
                 bool* found) {
    if (!out) {
        if (found) *found = false;
        return 0;
    }
    *out = nullptr;
    qvChrono chrono;
    chrono.start();
    PrSDKPPixCacheSuite* cache = privateData->ppixCacheSuite;
    prSuiteError result;
    if (!wrapper->newCacheApi) {
        QV_LOG(QV_LOG_INFO, "PrPro is old - Getting Frame From Cache without Color Space");
        result = cache->GetFrameFromCache(static_cast<csSDK_uint32>(privateData->importerID), 0, wrapper->frame,
                                          wrapper->numFormats, wrapper->formats, out, wrapper->prefs,
                                          wrapper->prefsSize);
    } else {
        result = cache->GetFrameFromCacheWithColorSpace(static_cast<csSDK_uint32>(privateData->importerID), 0,
                                                        wrapper->frame, wrapper->numFormats, wrapper->formats, out,
                                                        kNewCacheMode, wrapper->prefs, wrapper->prefsSize,
                                                        wrapper->colorProfile);
    }
    const bool hit = result == suiteError_NoError && *out != nullptr;
    if (found) *found = hit;
    if (hit) TWI_PPix_Test_Access(privateData, *out);
    QV_LOG(QV_LOG_INFO, " GetFrameFromCache"
                            << " ID:" << privateData->importerID << " PF:" << wrapper->frame << " Found: " << hit
                            << " dt:" << chrono.getLatestSpanMicro(false));
    return 0;
}

int AddToCache(TWI_PrivateData*& privateData, std::shared_ptr<qvCachePrefsWrapper> wrapper, PPix** frame) {
    TWI_PPix_Test_Access(privateData, frame);
    qvChrono chrono;
    chrono.start();
    PrSDKPPixCacheSuite* cache = privateData->ppixCacheSuite;
    prSuiteError result;
    if (!wrapper->newCacheApi) {
        QV_LOG(QV_LOG_INFO, "PrPro is old - Adding Frame To Cache without Color Space");
        result = cache->AddFrameToCache(static_cast<csSDK_uint32>(privateData->importerID), 0, frame, wrapper->frame,
                                        wrapper->prefs, wrapper->prefsSize);
    } else {
        // The stream index goes as a null value, as the importer has always
        // passed it: stream 0.
        result = cache->AddFrameToCacheWithColorSpace(static_cast<csSDK_uint32>(privateData->importerID), 0, frame,
                                                      wrapper->frame, kNewCacheMode, wrapper->prefs,
                                                      wrapper->prefsSize, wrapper->colorProfile);
    }
    QV_LOG(QV_LOG_INFO, " AddFrameToCache"
                            << " ID:" << privateData->importerID << " PF:" << wrapper->frame << " S:" << result
                            << " Pref:" << wrapper->prefsSize << " dt:" << chrono.getLatestSpanMicro(false));
    TWI_PPix_Test_Access(privateData, frame);
    return result;
}
