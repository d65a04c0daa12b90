#pragma once
// A stopwatch on the steady clock. Successive reads with `reset` measure the
// stretches between them (one decode stage after the other).

#include <chrono>
#include <cstdint>

class qvChrono {
public:
    void start();
    // Time since the last start or reset; 0 while the stopwatch has never run.
    int64_t getLatestSpanNano(bool reset);
    // The same in whole microseconds, truncated.
    int64_t getLatestSpanMicro(bool reset);

    bool stopped = true;
    std::chrono::steady_clock::time_point lastTime{};
};
