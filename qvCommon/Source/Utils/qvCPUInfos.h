#pragma once
// What the processor says about itself, for the machine report.

#include <string>

class QV_CPUInfo {
public:
    // Queries the processor; on a build without the instruction every field keeps
    // its starting value and `available` is false.
    QV_CPUInfo();

    bool available = false;
    std::string vendor;
    std::string brand;
    int threadsPerCore = 1;
    int cores = 0;
    int logicalCores = 0;
    bool hyperThreaded = false;
    bool sse = false;
    bool sse2 = false;
    bool sse3 = false;
    bool sse41 = false;
    bool sse42 = false;
    bool avx = false;
    bool avx2 = false;
};
