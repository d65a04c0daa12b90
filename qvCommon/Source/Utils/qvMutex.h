#pragma once
// A named, non-recursive mutex whose locks and unlocks show in the log at TRACE.
// Shared state is taken with QV_LOCK_TRACED (Utils/qvLogging.h), which also logs
// contention.

#include "String/qvUtf8String.h"

#include <mutex>

class qvMutex {
public:
    explicit qvMutex(const qvUtf8String& name);
    qvMutex(const qvMutex&) = delete;
    qvMutex& operator=(const qvMutex&) = delete;

    bool try_lock();
    // Logs "Mutex <name> <caller> locked" at TRACE before it waits.
    void lock(const char* caller = "");
    // Logs "Mutex <name> unlocked" at TRACE.
    void unlock();

    const qvUtf8String& getName() const { return m_name; }

private:
    const qvUtf8String m_name;
    std::mutex m_mutex;
};
