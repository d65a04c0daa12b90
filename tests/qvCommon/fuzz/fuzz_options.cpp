// Any text as the options file: loading never fails, and what an export writes
// loads back to the same options.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "Common/TW_Debug_Options.h"
#include "Config/qvConfig.h"
#include "Platform/qvPlatformRoots.h"

namespace {

std::string& homeFolder() {
    static std::string s_home;
    return s_home;
}

void removeHome() {
    std::error_code ec;
    std::filesystem::remove_all(homeFolder(), ec);
}

// A home folder of its own, so that the fuzzer never touches the real one.
const std::string& iniPath() {
    static const std::string s_path = [] {
        std::string pattern = (std::filesystem::temp_directory_path() / "tarnwick-fuzz-XXXXXX").string();
        if (!mkdtemp(pattern.data())) std::abort();
        homeFolder() = pattern;
        std::atexit(removeHome);
        qvPlatform::SetHomeFolderOverride(pattern);
        g_config.productFolderName = "Tarnwick";
        g_config.iniFileName = "Tarnwick_options.ini";
        const std::string folder = pattern + "/Library/Application Support/Qervane/Tarnwick";
        std::filesystem::create_directories(folder);
        return folder + "/Tarnwick_options.ini";
    }();
    return s_path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    {
        std::ofstream out(iniPath(), std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    }
    TWDebugOptions options;
    options.load();
    if (options.presetsNames.size() != TWDebugOptions::kPresetCount) std::abort();
    for (const qvUtf8String& name : options.presetsNames) {
        if (name.Empty() || name.Size() > 64 * 4 || name.Includes("|")) std::abort();
    }
    if (options.loggingLevel < QV_LOG_TRACE || options.loggingLevel > QV_LOG_DESACTIVATED) std::abort();
    const qvUtf8String report = options.to_string();
    options.getPresetNamesWithPrefix();

    options.exportToFile();
    TWDebugOptions back;
    back.alwaysSetNewSourceMode = !options.alwaysSetNewSourceMode;
    back.load();
    if (back.alwaysSetNewSourceMode != options.alwaysSetNewSourceMode) std::abort();
    // Preset names are not written back, and the flag about them goes with them.
    back.needToUpdate = options.needToUpdate;
    if (back.to_string() != report) std::abort();
    return 0;
}
