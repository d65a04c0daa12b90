#pragma once
// Running statistics of 64-bit samples (durations in microseconds, mostly),
// printed into the log when a reader closes.

#include "String/qvUtf8String.h"

#include <cstdint>
#include <mutex>

class qvStats {
public:
    qvStats();
    qvStats(const qvStats&) = delete;
    qvStats& operator=(const qvStats&) = delete;

    // Forgets every sample. With `threadSafe`, samples may come from any thread.
    void start(bool threadSafe);
    void addStat(uint64_t sample);
    // Computes mean and deviation, once; later calls change nothing.
    void finish();
    // "[min ; mean ± stdDev ; max ] #count", each value times `factor`, or
    // " No stat recorded " before the first sample.
    qvUtf8String toString(double factor, bool asIntegers);

    uint64_t sum = 0;
    uint64_t sumOfSquares = 0;
    uint64_t count = 0;
    uint64_t min = UINT64_MAX;
    uint64_t max = UINT64_MAX;
    double mean = 0.0;
    double stdDev = 0.0;
    bool finished = false;
    bool threadSafe = false;
    std::mutex mutex;
};
