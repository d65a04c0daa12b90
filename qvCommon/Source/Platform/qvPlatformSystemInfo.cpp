#include "Platform/qvPlatformSystemInfo.h"

#include <dirent.h>
#include <sys/sysinfo.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <cctype>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

namespace qvPlatform {
namespace {

std::string readWholeFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return std::string();
    std::ostringstream ss;
    ss << in.rdbuf();
    return ss.str();
}

std::string trimmed(const std::string& text) {
    size_t begin = 0;
    size_t end = text.size();
    while (begin < end && std::isspace(static_cast<unsigned char>(text[begin]))) ++begin;
    while (end > begin && std::isspace(static_cast<unsigned char>(text[end - 1]))) --end;
    return text.substr(begin, end - begin);
}

// The number of a "Key:   123 kB" line of a /proc text, in bytes; false when absent.
bool procFieldBytes(const std::string& text, const char* key, uint64_t& bytes) {
    const std::string wanted = std::string(key) + ":";
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line)) {
        if (line.compare(0, wanted.size(), wanted) != 0) continue;
        std::istringstream fields(line.substr(wanted.size()));
        uint64_t value = 0;
        std::string unit;
        if (!(fields >> value)) return false;
        fields >> unit;
        bytes = (unit == "kB") ? value * 1024u : value;
        return true;
    }
    return false;
}

}  // namespace

std::string ReadSysctlText(const std::string& dottedName) {
    if (dottedName.empty() || dottedName.find('/') != std::string::npos) return std::string();
    std::string path = "/proc/sys/";
    for (char c : dottedName) path += (c == '.') ? '/' : c;
    std::string text = readWholeFile(path);
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
    return text;
}

std::string ParseCpuinfoModelName(const std::string& cpuinfoText) {
    std::istringstream lines(cpuinfoText);
    std::string line;
    while (std::getline(lines, line)) {
        const size_t colon = line.find(':');
        if (colon == std::string::npos) continue;
        if (trimmed(line.substr(0, colon)) == "model name") return trimmed(line.substr(colon + 1));
    }
    return std::string();
}

std::string CpuBrandText() { return ParseCpuinfoModelName(readWholeFile("/proc/cpuinfo")); }

long OnlineProcessorCount() {
    const long n = ::sysconf(_SC_NPROCESSORS_ONLN);
    return n > 0 ? n : 0;
}

std::vector<std::string> PciDeviceAttributeTexts(const std::string& attribute) {
    std::vector<std::string> texts;
    const std::string base = "/sys/bus/pci/devices";
    DIR* dir = ::opendir(base.c_str());
    if (!dir) return texts;
    while (const dirent* entry = ::readdir(dir)) {
        if (entry->d_name[0] == '.') continue;
        std::string value = trimmed(readWholeFile(base + "/" + entry->d_name + "/" + attribute));
        if (!value.empty()) texts.push_back(value);
    }
    ::closedir(dir);
    return texts;
}

bool ParseKernelRelease(const std::string& release, int& major, int& minor, int& patch) {
    const char* p = release.c_str();
    int numbers[3] = {0, 0, 0};
    int found = 0;
    while (found < 3 && std::isdigit(static_cast<unsigned char>(*p))) {
        char* end = nullptr;
        const long v = std::strtol(p, &end, 10);
        numbers[found++] = static_cast<int>(v > INT_MAX ? INT_MAX : v);
        p = end;
        if (*p != '.') break;
        ++p;
    }
    if (found < 2) return false;
    major = numbers[0];
    minor = numbers[1];
    patch = numbers[2];
    return true;
}

bool KernelVersion(int& major, int& minor, int& patch) {
    struct utsname names;
    if (::uname(&names) != 0) return false;
    return ParseKernelRelease(names.release, major, minor, patch);
}

bool ParseMeminfo(const std::string& meminfoText, MemoryFigures& out) {
    uint64_t total = 0;
    if (!procFieldBytes(meminfoText, "MemTotal", total)) return false;
    out.totalBytes = total;
    uint64_t value = 0;
    out.freeBytes = procFieldBytes(meminfoText, "MemFree", value) ? value : 0;
    uint64_t used = 0;
    for (const char* key : {"Active", "Inactive", "Unevictable"}) {
        if (procFieldBytes(meminfoText, key, value)) used += value;
    }
    out.usedBytes = used;
    return true;
}

void ParseProcessStatus(const std::string& statusText, MemoryFigures& out) {
    uint64_t value = 0;
    out.processResidentBytes = procFieldBytes(statusText, "VmRSS", value) ? value : 0;
    out.processVirtualBytes = procFieldBytes(statusText, "VmSize", value) ? value : 0;
}

bool ReadMemoryFigures(MemoryFigures& out) {
    out = MemoryFigures();
    bool ok = ParseMeminfo(readWholeFile("/proc/meminfo"), out);
    if (!ok) {
        struct sysinfo info;
        if (::sysinfo(&info) == 0) {
            out.totalBytes = static_cast<uint64_t>(info.totalram) * info.mem_unit;
            out.freeBytes = static_cast<uint64_t>(info.freeram) * info.mem_unit;
            out.usedBytes = out.totalBytes - out.freeBytes;
            ok = true;
        }
    }
    ParseProcessStatus(readWholeFile("/proc/self/status"), out);
    return ok;
}

std::string ParseInfoPlistString(const std::string& plistText, const std::string& key) {
    const std::string keyTag = "<key>" + key + "</key>";
    const size_t keyPos = plistText.find(keyTag);
    if (keyPos == std::string::npos) return std::string();
    size_t p = keyPos + keyTag.size();
    while (p < plistText.size() && std::isspace(static_cast<unsigned char>(plistText[p]))) ++p;
    static const char kOpen[] = "<string>";
    if (plistText.compare(p, sizeof(kOpen) - 1, kOpen) != 0) return std::string();
    p += sizeof(kOpen) - 1;
    const size_t close = plistText.find("</string>", p);
    if (close == std::string::npos) return std::string();
    return plistText.substr(p, close - p);
}

std::string MainBundleShortVersionString() {
    char buffer[PATH_MAX + 1];
    const ssize_t n = ::readlink("/proc/self/exe", buffer, PATH_MAX);
    if (n <= 0) return std::string();
    std::string path(buffer, static_cast<size_t>(n));
    // <bundle>/Contents/<platform folder>/<program>: two folders up is Contents.
    for (int up = 0; up < 2; ++up) {
        const size_t slash = path.rfind('/');
        if (slash == std::string::npos || slash == 0) return std::string();
        path.erase(slash);
    }
    if (path.size() < 9 || path.compare(path.size() - 9, 9, "/Contents") != 0) return std::string();
    return ParseInfoPlistString(readWholeFile(path + "/Info.plist"), "CFBundleShortVersionString");
}

}  // namespace qvPlatform
