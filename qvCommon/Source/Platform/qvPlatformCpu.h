#pragma once
// Direct access to the processor's identification instruction.

#include <cstdint>

namespace qvPlatform {

struct CpuidRegisters {
    uint32_t eax = 0;
    uint32_t ebx = 0;
    uint32_t ecx = 0;
    uint32_t edx = 0;
};

// True when this build can query the processor at all (x86-64 only).
bool CpuidAvailable();

// Runs the instruction for `leaf` / `subLeaf`. All registers are zero when the
// build has no such instruction.
CpuidRegisters Cpuid(uint32_t leaf, uint32_t subLeaf = 0);

}  // namespace qvPlatform
