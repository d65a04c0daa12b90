#pragma once
// What the machine report needs to know about the computer and the process.
// Every reader degrades to an empty text, zero or false: the report is written
// into log headers and must never stop anything.

#include <cstdint>
#include <string>
#include <vector>

namespace qvPlatform {

// A kernel setting by its dotted name ("kernel.ostype" reads
// /proc/sys/kernel/ostype), without the trailing line end; empty when the
// setting does not exist.
std::string ReadSysctlText(const std::string& dottedName);

// The processor's marketing name as the kernel reports it; empty if unknown.
std::string CpuBrandText();
// The "model name" of the first processor listed in a /proc/cpuinfo text.
std::string ParseCpuinfoModelName(const std::string& cpuinfoText);

// Processors currently online.
long OnlineProcessorCount();

// For each PCI device, the text of its sysfs attribute `attribute` when the
// device has one and it is not empty.
std::vector<std::string> PciDeviceAttributeTexts(const std::string& attribute);

// The running kernel's version numbers. False when the release text cannot be
// read or does not start with "major.minor".
bool KernelVersion(int& major, int& minor, int& patch);
// "6.1.0-18-amd64" gives 6, 1, 0; a missing third number gives 0.
bool ParseKernelRelease(const std::string& release, int& major, int& minor, int& patch);

struct MemoryFigures {
    uint64_t totalBytes = 0;
    uint64_t freeBytes = 0;
    // Pages in use by programs and caches: active, inactive and unevictable lists.
    uint64_t usedBytes = 0;
    uint64_t processResidentBytes = 0;
    uint64_t processVirtualBytes = 0;
};

// False when the machine's memory figures cannot be read at all.
bool ReadMemoryFigures(MemoryFigures& out);
// Fill the machine part from a /proc/meminfo text; false without "MemTotal".
bool ParseMeminfo(const std::string& meminfoText, MemoryFigures& out);
// Fill the process part from a /proc/<pid>/status text.
void ParseProcessStatus(const std::string& statusText, MemoryFigures& out);

// The short version text of the bundle that holds the running executable
// (Contents/Info.plist above Contents/<platform>/<program>); empty when the
// program is not inside such a bundle.
std::string MainBundleShortVersionString();
// The <string> value following <key>`key`</key> in a property list text.
std::string ParseInfoPlistString(const std::string& plistText, const std::string& key);

}  // namespace qvPlatform
