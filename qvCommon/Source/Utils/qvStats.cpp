#include "Utils/qvStats.h"

#include <cmath>
#include <iomanip>
#include <sstream>

namespace {

// Takes the statistics' mutex only for statistics started thread-safe.
class OptionalLock {
public:
    OptionalLock(std::mutex& m, bool active) : m_mutex(m), m_active(active) {
        if (m_active) m_mutex.lock();
    }
    ~OptionalLock() {
        if (m_active) m_mutex.unlock();
    }
    OptionalLock(const OptionalLock&) = delete;
    OptionalLock& operator=(const OptionalLock&) = delete;

private:
    std::mutex& m_mutex;
    bool m_active;
};

void writeValue(std::ostringstream& out, double value, bool asIntegers) {
    if (asIntegers) {
        out << std::llround(value);
    } else {
        out << std::fixed << std::setprecision(6) << value;
    }
}

}  // namespace

qvStats::qvStats() { start(false); }

void qvStats::start(bool isThreadSafe) {
    OptionalLock lock(mutex, threadSafe);
    sum = 0;
    sumOfSquares = 0;
    count = 0;
    min = UINT64_MAX;
    max = UINT64_MAX;
    finished = false;
    threadSafe = isThreadSafe;
}

void qvStats::addStat(uint64_t x) {
    OptionalLock lock(mutex, threadSafe);
    sum += x;
    sumOfSquares += x * x;
    count += 1;
    if (min == UINT64_MAX || x < min) min = x;
    if (max == UINT64_MAX || x > max) max = x;
}

void qvStats::finish() {
    OptionalLock lock(mutex, threadSafe);
    if (finished) return;
    finished = true;
    if (count == 0) {
        mean = -1.0;
        stdDev = -1.0;
        return;
    }
    mean = static_cast<double>(sum) / static_cast<double>(count);
    // Integer arithmetic with wrap-around is what the figures have always been
    // computed with; huge samples overflow the squares, which is accepted.
    const uint64_t difference = sumOfSquares - sum * sum / count;
    stdDev = std::sqrt(static_cast<double>(difference) / static_cast<double>(count));
}

qvUtf8String qvStats::toString(double factor, bool asIntegers) {
    OptionalLock lock(mutex, threadSafe);
    if (count == 0) return qvUtf8String(" No stat recorded ");
    std::ostringstream out;
    out << "[";
    writeValue(out, static_cast<double>(min) * factor, asIntegers);
    out << " ; ";
    writeValue(out, mean * factor, asIntegers);
    out << " \xC2\xB1 ";
    writeValue(out, stdDev * factor, asIntegers);
    out << " ; ";
    writeValue(out, static_cast<double>(max) * factor, asIntegers);
    out << " ] #" << count;
    return qvUtf8String(out.str());
}
