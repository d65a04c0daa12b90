#include "Utils/qvChrono.h"

void qvChrono::start() {
    lastTime = std::chrono::steady_clock::now();
    stopped = false;
}

int64_t qvChrono::getLatestSpanNano(bool reset) {
    const auto now = std::chrono::steady_clock::now();
    const int64_t span =
        stopped ? 0 : std::chrono::duration_cast<std::chrono::nanoseconds>(now - lastTime).count();
    if (reset) lastTime = now;
    return span;
}

int64_t qvChrono::getLatestSpanMicro(bool reset) { return getLatestSpanNano(reset) / 1000; }
