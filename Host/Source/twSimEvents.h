#pragma once
// Events posted through the Error suite (every version), kept for tests and for
// the command line to show.

#include "MediaCoreTypes.h"

#include <mutex>
#include <string>
#include <vector>

struct twSimEvent {
    int suiteVersion = 3;
    csSDK_uint32 type = 0;   // informational 1, warning 2, error 3 (the low byte of the raw value)
    csSDK_uint32 flags = 0;  // decode error, substituted frame, import operation
    std::string title;       // UTF-8
    std::string description;
};

class twSimEvents {
public:
    void post(const twSimEvent& event);
    std::vector<twSimEvent> all() const;
    size_t size() const;
    // Events whose title contains the text.
    size_t countWithTitle(const std::string& text) const;
    void clear();

private:
    mutable std::mutex m_mutex;
    std::vector<twSimEvent> m_events;
};
