#pragma once
// The identity of one frame in the host's frame cache, and the two generations
// of the cache calls. The host keys a frame by the file's importer ID, stream 0,
// the frame number and the exact bytes of the prefs blob; the newer hosts add
// the colour profile. Any change of the settings therefore misses every frame
// decoded before it, which is what makes a change show without a flush.

#include "MediaCoreSDK.h"

#include <memory>

struct TWI_PrivateData;

class qvCachePrefsWrapper {
public:
    // The frame number comes from `time` by the file's rate, -1 when the file
    // has no tick rate. With `copyPrefs` the wrapper keeps its own copy of the
    // blob; a copy that can't be made leaves a size of 0.
    qvCachePrefsWrapper(TWI_PrivateData* privateData, void* prefs, int prefsSize, long long time, int numFormats,
                        imFrameFormat* formats, bool newCacheApi, PrSDKGuid* colorProfile, bool copyPrefs);
    ~qvCachePrefsWrapper();
    qvCachePrefsWrapper(const qvCachePrefsWrapper&) = delete;
    qvCachePrefsWrapper& operator=(const qvCachePrefsWrapper&) = delete;

    char tag[4] = {'w', 'p', 'a', 'c'};
    void* prefs = nullptr;
    int prefsSize = 0;
    int frame = -1;
    int frameCopy = -1;
    int numFormats = 0;
    imFrameFormat* formats = nullptr;  // the record's, not owned
    bool ownsPrefs = false;
    bool newCacheApi = false;
    PrSDKGuid* colorProfile = nullptr;  // the record's, not owned
};

// Looks the wrapper's frame up in the host's cache, in one of the formats the
// wrapper accepts. `*found` says whether a frame came back into `*out`. A cache
// failure is no frame failure: always 0.
int GetFromCache(TWI_PrivateData*& privateData, std::shared_ptr<qvCachePrefsWrapper> wrapper, PPix*** out,
                 bool* found);
// Gives the host's cache the frame under the wrapper's key; the host takes its
// own reference. The suite's result.
int AddToCache(TWI_PrivateData*& privateData, std::shared_ptr<qvCachePrefsWrapper> wrapper, PPix** frame);
