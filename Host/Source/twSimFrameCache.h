#pragma once
// The host's frame cache behind the PPix Cache suite.
//
// A frame is stored under the importer ID, the stream, the frame number and the
// exact bytes of the prefs blob, plus what the generation of the call adds: a
// colour profile (name and data), a render quality, a colour space ID. Entries
// stored by one generation are found only by the same generation. A lookup also
// names the formats the caller accepts (width, height, pixel format; zero
// members and an empty list accept anything), tried in the caller's order.
// The cache holds one reference on each stored frame; a hit hands out one more.

#include "twSimFrames.h"
#include "twSimStrings.h"

#include "MediaCoreImporter.h"

#include <map>
#include <mutex>
#include <string>
#include <vector>

enum class twSimCacheGeneration { Plain, ColorProfile, ColorProfile2, ColorSpace };

struct twSimCacheKey {
    csSDK_uint32 importerID = 0;
    csSDK_int32 stream = 0;
    csSDK_int32 frame = 0;
    std::string prefs;  // the bytes, exactly
    twSimCacheGeneration generation = twSimCacheGeneration::Plain;
    csSDK_uint32 quality = 0;
    std::string colorProfileName;
    std::string colorProfileData;
    std::string colorSpace;  // the 16 bytes of the ID

    bool operator<(const twSimCacheKey& other) const;
};

struct twSimCacheStats {
    unsigned long long adds = 0;
    unsigned long long replaced = 0;  // an add that found the same key and format
    unsigned long long hits = 0;
    unsigned long long misses = 0;
};

struct twSimCacheEntryInfo {
    twSimCacheKey key;
    PPixHand frame = nullptr;
    int width = 0;
    int height = 0;
    PrPixelFormat format = PrPixelFormat_Any;
};

class twSimFrameCache {
public:
    twSimFrameCache(twSimFrames& frames, twSimStrings& strings, twSimDiagnostics& diagnostics);
    ~twSimFrameCache();

    // ---- frame entries, every generation ----
    prSuiteError add(const twSimCacheKey& key, PPixHand frame);
    prSuiteError get(const twSimCacheKey& key, csSDK_int32 numFormats, const imFrameFormat* formats, PPixHand* out);
    // Builds a key from the suite's raw arguments; false for inconsistent ones.
    bool makeKey(twSimCacheKey& key, csSDK_uint32 importerID, csSDK_int32 stream, csSDK_int32 frame,
                 const void* prefs, csSDK_int32 prefsLength) const;
    void addColorProfile(twSimCacheKey& key, const PrSDKString* name, const void* data, csSDK_int32 size) const;
    static void addColorSpace(twSimCacheKey& key, const PrSDKColorSpaceID* id);

    // ---- raw and named frames, dependencies ----
    prSuiteError addRaw(csSDK_uint32 importerID, PPixHand frame, csSDK_int32 key);
    prSuiteError getRaw(csSDK_uint32 importerID, csSDK_int32 key, PPixHand* out);
    prSuiteError addNamed(const prPluginID* id, PPixHand frame);
    prSuiteError getNamed(const prPluginID* id, PPixHand* out);
    prSuiteError registerDependency(const prPluginID* id);
    prSuiteError unregisterDependency(const prPluginID* id);
    prSuiteError expireNamed(const prPluginID* id);
    // Names a cached frame and registers a dependency on it.
    prSuiteError registerDependencyOnFrame(const twSimCacheKey& key, csSDK_int32 numFormats,
                                           const imFrameFormat* formats, prPluginID* outId);
    prSuiteError expireAll();

    // ---- host side ----
    twSimCacheStats stats() const;
    size_t size() const;
    std::vector<twSimCacheEntryInfo> entries() const;
    std::vector<std::string> unreleasedDependencies() const;

private:
    struct Stored {
        PPixHand frame;
        int width;
        int height;
        PrPixelFormat format;
    };
    bool frameShape(PPixHand h, Stored& out) const;
    static bool accepts(const Stored& stored, const imFrameFormat& wanted);
    PPixHand findLocked(const twSimCacheKey& key, csSDK_int32 numFormats, const imFrameFormat* formats) const;
    void dropAllLocked();

    mutable std::mutex m_mutex;
    twSimFrames& m_frames;
    twSimStrings& m_strings;
    twSimDiagnostics& m_diagnostics;
    twSimCacheStats m_stats;
    std::map<twSimCacheKey, std::vector<Stored>> m_entries;
    std::map<std::pair<csSDK_uint32, csSDK_int32>, PPixHand> m_raw;
    std::map<std::string, PPixHand> m_named;
    std::map<std::string, int> m_dependencies;
    unsigned long long m_nextName = 1;
};
