#include "Utils/qvCPUInfos.h"

#include "Platform/qvPlatformCpu.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace {

std::string printableOnly(const std::string& text) {
    std::string out;
    for (char c : text) {
        if (std::isprint(static_cast<unsigned char>(c))) out += c;
    }
    return out;
}

std::string registersText(std::initializer_list<uint32_t> registers) {
    std::string text;
    for (uint32_t r : registers) {
        char bytes[4];
        std::memcpy(bytes, &r, 4);
        text.append(bytes, 4);
    }
    return text;
}

bool bit(uint32_t value, int index) { return ((value >> index) & 1u) != 0; }

}  // namespace

QV_CPUInfo::QV_CPUInfo() {
    if (!qvPlatform::CpuidAvailable()) return;
    available = true;

    const qvPlatform::CpuidRegisters leaf0 = qvPlatform::Cpuid(0);
    const uint32_t maxLeaf = leaf0.eax;
    vendor = printableOnly(registersText({leaf0.ebx, leaf0.edx, leaf0.ecx}));

    const qvPlatform::CpuidRegisters ext0 = qvPlatform::Cpuid(0x80000000u);
    const uint32_t maxExtLeaf = ext0.eax;
    if (maxExtLeaf >= 0x80000004u) {
        std::string raw;
        for (uint32_t leaf = 0x80000002u; leaf <= 0x80000004u; ++leaf) {
            const qvPlatform::CpuidRegisters r = qvPlatform::Cpuid(leaf);
            raw += registersText({r.eax, r.ebx, r.ecx, r.edx});
        }
        raw.resize(std::min<size_t>(std::strlen(raw.c_str()), 999));
        const size_t first = raw.find_first_not_of(' ');
        brand = printableOnly(first == std::string::npos ? std::string() : raw.substr(first));
    }

    const qvPlatform::CpuidRegisters leaf1 = maxLeaf >= 1 ? qvPlatform::Cpuid(1) : qvPlatform::CpuidRegisters();
    hyperThreaded = bit(leaf1.edx, 28);
    sse = bit(leaf1.edx, 25);
    sse2 = bit(leaf1.edx, 26);
    sse3 = bit(leaf1.ecx, 0);
    sse41 = bit(leaf1.ecx, 19);
    sse42 = bit(leaf1.ecx, 20);
    avx = bit(leaf1.ecx, 28);
    if (maxLeaf >= 7) avx2 = bit(qvPlatform::Cpuid(7, 0).ebx, 5);

    std::string upperVendor = vendor;
    for (char& c : upperVendor) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));

    bool divided = false;
    if (upperVendor.find("INTEL") != std::string::npos) {
        if (maxLeaf < 11) {
            logicalCores = static_cast<int>((leaf1.ebx >> 16) & 0xFFu);
            if (maxLeaf >= 4) cores = static_cast<int>((qvPlatform::Cpuid(4, 0).eax >> 26) & 0x3Fu) + 1;
        } else {
            for (uint32_t subLeaf = 0; subLeaf < 4; ++subLeaf) {
                const qvPlatform::CpuidRegisters r = qvPlatform::Cpuid(11, subLeaf);
                const uint32_t levelType = (r.ecx >> 8) & 0xFFu;
                if (levelType == 1) threadsPerCore = static_cast<int>(r.ebx & 0xFFFFu);
                if (levelType == 2) logicalCores = static_cast<int>(r.ebx & 0xFFFFu);
            }
            // A hypervisor may report no thread level; keep the division defined.
            if (threadsPerCore > 0) cores = logicalCores / threadsPerCore;
            divided = true;
        }
    } else if (upperVendor.find("AMD") != std::string::npos) {
        logicalCores = static_cast<int>((leaf1.ebx >> 16) & 0xFFu);
        if (maxExtLeaf >= 0x80000008u) cores = static_cast<int>(qvPlatform::Cpuid(0x80000008u).ecx & 0xFFu) + 1;
    }

    if (!divided) {
        if (!hyperThreaded) {
            cores = 1;
            logicalCores = 1;
        } else if (cores < 2) {
            cores = 1;
            logicalCores = std::max(logicalCores, 2);
        }
    }
}
