#include "Utils/qvMutex.h"

#include "Utils/qvLogging.h"

qvMutex::qvMutex(const qvUtf8String& name) : m_name(name) {}

bool qvMutex::try_lock() { return m_mutex.try_lock(); }

void qvMutex::lock(const char* caller) {
    QV_LOG(QV_LOG_TRACE, "Mutex " << m_name.Str() << " " << (caller ? caller : "") << " locked");
    m_mutex.lock();
}

void qvMutex::unlock() {
    QV_LOG(QV_LOG_TRACE, "Mutex " << m_name.Str() << " unlocked");
    m_mutex.unlock();
}
