#include "twSimFileRegistry.h"

#include <cstring>

prSuiteError twSimFileRegistry::registerFile(csSDK_uint32 pluginID, const char* tag, const char* path,
                                             int numExtensions, csSDK_uint32 flags) {
    if (!tag || !path) return suiteError_InvalidParms;
    // The extension list is recorded by count only: what plug-ins pass there is
    // not always a readable list.
    twSimFileRegistration r{pluginID, tag, path, numExtensions, flags};
    std::lock_guard<std::mutex> lock(m_mutex);
    m_history.push_back(r);
    for (auto& c : m_current) {
        if (c.pluginID == pluginID && c.tag == r.tag) {
            c = r;
            return suiteError_NoError;
        }
    }
    m_current.push_back(r);
    return suiteError_NoError;
}

prSuiteError twSimFileRegistry::registeredPath(csSDK_uint32 pluginID, const char* tag, char* out,
                                               csSDK_uint32 outLength) const {
    if (!tag || !out || outLength == 0) return suiteError_InvalidParms;
    std::lock_guard<std::mutex> lock(m_mutex);
    for (const auto& c : m_current) {
        if (c.pluginID == pluginID && c.tag == tag) {
            if (c.path.size() + 1 > outLength) return suiteError_StringBufferTooSmall;
            std::memcpy(out, c.path.c_str(), c.path.size() + 1);
            return suiteError_NoError;
        }
    }
    return suiteError_InvalidParms;
}

prSuiteError twSimFileRegistry::unregisterFile(csSDK_uint32 pluginID, const char* tag) {
    if (!tag) return suiteError_InvalidParms;
    std::lock_guard<std::mutex> lock(m_mutex);
    for (auto it = m_current.begin(); it != m_current.end(); ++it) {
        if (it->pluginID == pluginID && it->tag == tag) {
            m_current.erase(it);
            return suiteError_NoError;
        }
    }
    return suiteError_InvalidParms;
}

std::vector<twSimFileRegistration> twSimFileRegistry::history() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_history;
}

std::vector<twSimFileRegistration> twSimFileRegistry::current() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_current;
}
