#pragma once
// Companion files handed to the host for management (File Registration suite).

#include "MediaCoreTypes.h"

#include <mutex>
#include <string>
#include <vector>

struct twSimFileRegistration {
    csSDK_uint32 pluginID = 0;
    std::string tag;
    std::string path;
    int numExtensions = 0;
    csSDK_uint32 flags = 0;
};

class twSimFileRegistry {
public:
    prSuiteError registerFile(csSDK_uint32 pluginID, const char* tag, const char* path, int numExtensions,
                              csSDK_uint32 flags);
    prSuiteError registeredPath(csSDK_uint32 pluginID, const char* tag, char* out, csSDK_uint32 outLength) const;
    prSuiteError unregisterFile(csSDK_uint32 pluginID, const char* tag);
    // Every registration made, in order, including those later withdrawn.
    std::vector<twSimFileRegistration> history() const;
    // The registrations in force.
    std::vector<twSimFileRegistration> current() const;

private:
    mutable std::mutex m_mutex;
    std::vector<twSimFileRegistration> m_history;
    std::vector<twSimFileRegistration> m_current;
};
