#include "Platform/qvPlatformCpu.h"

#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#endif

namespace qvPlatform {

bool CpuidAvailable() {
#if defined(__x86_64__) || defined(__i386__)
    return true;
#else
    return false;
#endif
}

CpuidRegisters Cpuid(uint32_t leaf, uint32_t subLeaf) {
    CpuidRegisters r;
#if defined(__x86_64__) || defined(__i386__)
    __cpuid_count(leaf, subLeaf, r.eax, r.ebx, r.ecx, r.edx);
#else
    (void)leaf;
    (void)subLeaf;
#endif
    return r;
}

}  // namespace qvPlatform
