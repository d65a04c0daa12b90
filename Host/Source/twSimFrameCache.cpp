#include "twSimFrameCache.h"

#include <cstdio>
#include <cstring>
#include <tuple>

namespace {

std::string IdText(const prPluginID* id) {
    return std::string(id->mGUID, strnlen(id->mGUID, sizeof(id->mGUID)));
}

}  // namespace

bool twSimCacheKey::operator<(const twSimCacheKey& o) const {
    return std::tie(importerID, stream, frame, prefs, generation, quality, colorProfileName, colorProfileData,
                    colorSpace) < std::tie(o.importerID, o.stream, o.frame, o.prefs, o.generation, o.quality,
                                           o.colorProfileName, o.colorProfileData, o.colorSpace);
}

twSimFrameCache::twSimFrameCache(twSimFrames& frames, twSimStrings& strings, twSimDiagnostics& diagnostics)
    : m_frames(frames), m_strings(strings), m_diagnostics(diagnostics) {}

twSimFrameCache::~twSimFrameCache() {
    std::lock_guard<std::mutex> lock(m_mutex);
    dropAllLocked();
}

bool twSimFrameCache::makeKey(twSimCacheKey& key, csSDK_uint32 importerID, csSDK_int32 stream, csSDK_int32 frame,
                              const void* prefs, csSDK_int32 prefsLength) const {
    key = twSimCacheKey();
    key.importerID = importerID;
    key.stream = stream;
    key.frame = frame;
    if (prefsLength < 0 || (prefsLength > 0 && !prefs)) {
        m_diagnostics.add(twSimIssue::BadParameter, "cache call with prefs " + std::string(prefs ? "" : "NULL ") +
                                                        "of length " + std::to_string(prefsLength));
        return false;
    }
    if (prefsLength > 0) key.prefs.assign(static_cast<const char*>(prefs), static_cast<size_t>(prefsLength));
    return true;
}

void twSimFrameCache::addColorProfile(twSimCacheKey& key, const PrSDKString* name, const void* data,
                                      csSDK_int32 size) const {
    if (name) key.colorProfileName = m_strings.textOrEmpty(*name);
    if (data && size > 0) key.colorProfileData.assign(static_cast<const char*>(data), static_cast<size_t>(size));
}

void twSimFrameCache::addColorSpace(twSimCacheKey& key, const PrSDKColorSpaceID* id) {
    const PrSDKColorSpaceID value = id ? *id : kPrSDKColorSpaceID_Invalid;
    key.colorSpace.assign(reinterpret_cast<const char*>(&value), sizeof(value));
}

bool twSimFrameCache::frameShape(PPixHand h, Stored& out) const {
    twSimFrameInfo info;
    if (!m_frames.describe(h, info) || !info.alive) return false;
    out = Stored{h, info.width, info.height, info.format};
    return true;
}

bool twSimFrameCache::accepts(const Stored& s, const imFrameFormat& wanted) {
    return (wanted.inFrameWidth == 0 || wanted.inFrameWidth == s.width) &&
           (wanted.inFrameHeight == 0 || wanted.inFrameHeight == s.height) &&
           (wanted.inPixelFormat == PrPixelFormat_Any || wanted.inPixelFormat == s.format);
}

prSuiteError twSimFrameCache::add(const twSimCacheKey& key, PPixHand frame) {
    Stored stored{};
    if (!frameShape(frame, stored)) {
        m_diagnostics.add(twSimIssue::UnknownFrame, "AddFrameToCache of an unknown or disposed frame");
        return suiteError_InvalidParms;
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_frames.addReference(frame, true)) return suiteError_InvalidParms;
    auto& list = m_entries[key];
    for (auto& s : list) {
        if (s.width == stored.width && s.height == stored.height && s.format == stored.format) {
            m_frames.dropCacheReference(s.frame);
            s = stored;
            ++m_stats.adds;
            ++m_stats.replaced;
            return suiteError_NoError;
        }
    }
    list.push_back(stored);
    ++m_stats.adds;
    return suiteError_NoError;
}

PPixHand twSimFrameCache::findLocked(const twSimCacheKey& key, csSDK_int32 numFormats,
                                     const imFrameFormat* formats) const {
    auto it = m_entries.find(key);
    if (it == m_entries.end() || it->second.empty()) return nullptr;
    if (numFormats <= 0 || !formats) return it->second.front().frame;
    for (csSDK_int32 i = 0; i < numFormats; ++i)
        for (const auto& s : it->second)
            if (accepts(s, formats[i])) return s.frame;
    return nullptr;
}

prSuiteError twSimFrameCache::get(const twSimCacheKey& key, csSDK_int32 numFormats, const imFrameFormat* formats,
                                  PPixHand* out) {
    if (!out) return suiteError_InvalidParms;
    *out = nullptr;
    std::lock_guard<std::mutex> lock(m_mutex);
    PPixHand found = findLocked(key, numFormats, formats);
    if (found && m_frames.addReference(found, false)) {
        *out = found;
        ++m_stats.hits;
    } else {
        ++m_stats.misses;
    }
    // A miss is not an error: the caller reads the empty out-frame.
    return suiteError_NoError;
}

prSuiteError twSimFrameCache::addRaw(csSDK_uint32 importerID, PPixHand frame, csSDK_int32 key) {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_frames.addReference(frame, true)) return suiteError_InvalidParms;
    auto& slot = m_raw[{importerID, key}];
    if (slot) m_frames.dropCacheReference(slot);
    slot = frame;
    return suiteError_NoError;
}

prSuiteError twSimFrameCache::getRaw(csSDK_uint32 importerID, csSDK_int32 key, PPixHand* out) {
    if (!out) return suiteError_InvalidParms;
    *out = nullptr;
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_raw.find({importerID, key});
    if (it != m_raw.end() && m_frames.addReference(it->second, false)) *out = it->second;
    return suiteError_NoError;
}

prSuiteError twSimFrameCache::addNamed(const prPluginID* id, PPixHand frame) {
    if (!id) return suiteError_InvalidParms;
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_frames.addReference(frame, true)) return suiteError_InvalidParms;
    auto& slot = m_named[IdText(id)];
    if (slot) m_frames.dropCacheReference(slot);
    slot = frame;
    return suiteError_NoError;
}

prSuiteError twSimFrameCache::getNamed(const prPluginID* id, PPixHand* out) {
    if (!id || !out) return suiteError_InvalidParms;
    *out = nullptr;
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_named.find(IdText(id));
    if (it != m_named.end() && m_frames.addReference(it->second, false)) *out = it->second;
    return suiteError_NoError;
}

prSuiteError twSimFrameCache::registerDependency(const prPluginID* id) {
    if (!id) return suiteError_InvalidParms;
    std::lock_guard<std::mutex> lock(m_mutex);
    ++m_dependencies[IdText(id)];
    return suiteError_NoError;
}

prSuiteError twSimFrameCache::unregisterDependency(const prPluginID* id) {
    if (!id) return suiteError_InvalidParms;
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_dependencies.find(IdText(id));
    if (it == m_dependencies.end() || it->second == 0) {
        m_diagnostics.add(twSimIssue::BadParameter, "UnregisterDependencyOnNamedPPix without a registration: " +
                                                        IdText(id));
        return suiteError_InvalidParms;
    }
    if (--it->second == 0) m_dependencies.erase(it);
    return suiteError_NoError;
}

prSuiteError twSimFrameCache::expireNamed(const prPluginID* id) {
    if (!id) return suiteError_InvalidParms;
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_named.find(IdText(id));
    if (it != m_named.end()) {
        m_frames.dropCacheReference(it->second);
        m_named.erase(it);
    }
    return suiteError_NoError;
}

prSuiteError twSimFrameCache::registerDependencyOnFrame(const twSimCacheKey& key, csSDK_int32 numFormats,
                                                        const imFrameFormat* formats, prPluginID* outId) {
    if (!outId) return suiteError_InvalidParms;
    std::memset(outId, 0, sizeof(*outId));
    std::lock_guard<std::mutex> lock(m_mutex);
    PPixHand found = findLocked(key, numFormats, formats);
    if (!found) return suiteError_RenderedFrameNotFound;
    if (!m_frames.addReference(found, true)) return suiteError_RenderedFrameNotFound;
    std::snprintf(outId->mGUID, sizeof(outId->mGUID), "00000000-0000-0000-0000-%012llx", m_nextName++);
    const std::string name = IdText(outId);
    m_named[name] = found;
    ++m_dependencies[name];
    return suiteError_NoError;
}

void twSimFrameCache::dropAllLocked() {
    for (auto& e : m_entries)
        for (auto& s : e.second) m_frames.dropCacheReference(s.frame);
    for (auto& r : m_raw) m_frames.dropCacheReference(r.second);
    for (auto& n : m_named) m_frames.dropCacheReference(n.second);
    m_entries.clear();
    m_raw.clear();
    m_named.clear();
}

prSuiteError twSimFrameCache::expireAll() {
    std::lock_guard<std::mutex> lock(m_mutex);
    dropAllLocked();
    return suiteError_NoError;
}

twSimCacheStats twSimFrameCache::stats() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_stats;
}

size_t twSimFrameCache::size() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    size_t n = 0;
    for (const auto& e : m_entries) n += e.second.size();
    return n;
}

std::vector<twSimCacheEntryInfo> twSimFrameCache::entries() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<twSimCacheEntryInfo> out;
    for (const auto& e : m_entries)
        for (const auto& s : e.second) out.push_back({e.first, s.frame, s.width, s.height, s.format});
    return out;
}

std::vector<std::string> twSimFrameCache::unreleasedDependencies() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<std::string> out;
    for (const auto& d : m_dependencies)
        out.push_back("dependency on " + d.first + " registered " + std::to_string(d.second) + " time(s)");
    return out;
}
