#include "Platform/qvPlatformSystemInfo.h"
#include "Utils/qvCPUInfos.h"
#include "Utils/qvSystemInfos.h"

#include <gtest/gtest.h>

#include <cctype>
#include <sstream>
#include <string>

namespace {

bool startsWith(const std::string& text, const std::string& prefix) { return text.rfind(prefix, 0) == 0; }

bool isDecimal(const std::string& text) {
    if (text.empty()) return false;
    for (char c : text) {
        if (!std::isdigit(static_cast<unsigned char>(c))) return false;
    }
    return true;
}

}  // namespace

TEST(SystemInfo, ReportSectionsKeepTheirExactTexts) {
    std::ostringstream system;
    getSystemInfos(system);
    const std::string s = system.str();
    EXPECT_TRUE(startsWith(s, "     - System : \n         - Type : ")) << s;
    EXPECT_NE(s.find("\n         - Core number : "), std::string::npos);
    EXPECT_NE(s.find("         - GPU Model : "), std::string::npos);
    // The model is asked under a name no kernel knows: its line stays out.
    EXPECT_EQ(s.find("- Model : "), std::string::npos);
#if defined(__x86_64__)
    for (const char* label : {"CPU vendor", "CPU Brand String", "Cores number", "Logical cores number",
                              "Is CPU Hyper threaded", "SSE", "SSE2", "SSE3", "SSE41", "SSE42", "AVX", "AVX2"}) {
        EXPECT_NE(s.find(std::string("\n         - ") + label + " : "), std::string::npos) << label;
    }
#endif

    std::ostringstream os;
    getOSVersion(os);
    const std::string o = os.str();
    ASSERT_TRUE(startsWith(o, "     - OS Version : \n        - OSX ")) << o;
    int major = -1, minor = -1, patch = -1;
    EXPECT_EQ(std::sscanf(o.c_str() + std::string("     - OS Version : \n        - OSX ").size(), "%d.%d.%d", &major,
                          &minor, &patch),
              3);
    EXPECT_GE(major, 2);

    std::ostringstream ram;
    getRamInformations(ram);
    std::istringstream lines(ram.str());
    std::string line;
    const char* labels[] = {"     - Memory : ", "        - Total RAM : ", "        - Free RAM (Mo) : ",
                            "        - Used RAM (Mo) : ", "        - Process Resident Size (Mo) : ",
                            "        - Process Virtual Size (Mo) : "};
    for (const char* label : labels) {
        ASSERT_TRUE(std::getline(lines, line));
        ASSERT_TRUE(startsWith(line, label)) << line;
        if (std::string(label) != labels[0]) {
            EXPECT_TRUE(isDecimal(line.substr(std::string(label).size()))) << line;
        }
    }
    EXPECT_FALSE(std::getline(lines, line));

    std::ostringstream drives;
    getDriveInfos(drives);
    EXPECT_EQ(drives.str(), "");
}

TEST(SystemInfo, ProcessorCountsAreConsistent) {
    const QV_CPUInfo cpu;
#if defined(__x86_64__)
    ASSERT_TRUE(cpu.available);
    EXPECT_FALSE(cpu.vendor.empty());
    EXPECT_TRUE(cpu.sse2);  // every x86-64 processor has it
    if (!cpu.brand.empty()) {
        EXPECT_NE(cpu.brand[0], ' ');
    }
    for (char c : cpu.vendor + cpu.brand) EXPECT_TRUE(std::isprint(static_cast<unsigned char>(c)));
    EXPECT_GE(cpu.cores, 1);
    EXPECT_GE(cpu.logicalCores, cpu.cores);
    EXPECT_GE(cpu.threadsPerCore, 1);
#else
    EXPECT_FALSE(cpu.available);
#endif
}

TEST(SystemInfo, ParsersOfKernelTexts) {
    qvPlatform::MemoryFigures figures;
    EXPECT_FALSE(qvPlatform::ParseMeminfo("MemFree: 10 kB\n", figures));
    ASSERT_TRUE(qvPlatform::ParseMeminfo("MemTotal:       16384000 kB\nMemFree:  2048 kB\nActive:  1024 kB\n"
                                         "Inactive:  512 kB\nActive(anon):  999 kB\nUnevictable:  8 kB\n",
                                         figures));
    EXPECT_EQ(figures.totalBytes, 16384000ull * 1024);
    EXPECT_EQ(figures.freeBytes, 2048ull * 1024);
    EXPECT_EQ(figures.usedBytes, (1024ull + 512 + 8) * 1024);
    qvPlatform::ParseProcessStatus("Name:\tx\nVmSize:\t  204800 kB\nVmRSS:\t   10240 kB\n", figures);
    EXPECT_EQ(figures.processVirtualBytes >> 20, 200u);
    EXPECT_EQ(figures.processResidentBytes >> 20, 10u);

    int major = 0, minor = 0, patch = 0;
    ASSERT_TRUE(qvPlatform::ParseKernelRelease("6.1.0-18-amd64", major, minor, patch));
    EXPECT_EQ(major * 10000 + minor * 100 + patch, 60100);
    ASSERT_TRUE(qvPlatform::ParseKernelRelease("5.15-rc1", major, minor, patch));
    EXPECT_EQ(major * 10000 + minor * 100 + patch, 51500);
    EXPECT_FALSE(qvPlatform::ParseKernelRelease("6", major, minor, patch));
    EXPECT_FALSE(qvPlatform::ParseKernelRelease("linux", major, minor, patch));

    EXPECT_EQ(qvPlatform::ParseCpuinfoModelName("processor\t: 0\nmodel name\t: Example CPU @ 3.0GHz\nmodel name : other\n"),
              "Example CPU @ 3.0GHz");
    EXPECT_EQ(qvPlatform::ParseCpuinfoModelName("processor : 0\n"), "");

    const std::string plist =
        "<dict>\n\t<key>CFBundleName</key>\n\t<string>X</string>\n\t<key>CFBundleShortVersionString</key>\n"
        "\t<string>3.3.9</string>\n</dict>";
    EXPECT_EQ(qvPlatform::ParseInfoPlistString(plist, "CFBundleShortVersionString"), "3.3.9");
    EXPECT_EQ(qvPlatform::ParseInfoPlistString(plist, "CFBundleVersion"), "");
    EXPECT_EQ(qvPlatform::ReadSysctlText("hw.mode"), "");
    EXPECT_EQ(qvPlatform::ReadSysctlText("../../etc/passwd"), "");
}
