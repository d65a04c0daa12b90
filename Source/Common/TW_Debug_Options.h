#pragma once
// The machine-wide switches of the plug-in, kept in "Tarnwick_options.ini" in
// the product's application-data folder. The user or the desktop application
// edits the file; the plug-in reads it again at start-up and whenever a
// settings popup may have changed it, and writes it only on request.
//
// Section and key names match without regard to case, values with it: a
// "logging" of "info" is not a level.

#include "String/qvUtf8String.h"
#include "Utils/qvLogging.h"

#include <vector>

class TWDebugOptions {
public:
    static constexpr size_t kPresetCount = 20;

    TWDebugOptions();

    static TWDebugOptions& getDebugOptions();
    static void loadDebugOptions();
    static void exportDebugOptions();

    // Reads the file. A missing or unreadable file gives the defaults, never an
    // error.
    void load();
    // The defaults. `alwaysSetNewSourceMode` is left as it is, deliberately: it
    // only goes back to false when the plug-in is loaded again.
    void reset();
    // "Tarnwick_options.ini Content : " and one "    - name : value" line per
    // field; booleans and the level as numbers.
    qvUtf8String to_string() const;
    // Writes the options this release knows, and only those, over the file.
    void exportToFile() const;
    // "#1 - <name>", "#2 - <name>", ...
    std::vector<qvUtf8String> getPresetNamesWithPrefix() const;
    static qvUtf8String boolToIniStr(bool value);

    bool needToUpdate = false;
    QV_LOG_LVL loggingLevel = QV_LOG_DESACTIVATED;
    bool gpuDecoding = false;
    std::vector<qvUtf8String> presetsNames;
    bool enableCorrectXML = false;
    qvUtf8String brawDesktopFilepath;
    bool disableAutoUpdate = false;
    bool importerIsFullyAsync = true;
    bool pproAmeLowerPriority = false;
    bool pproDisableTimecodeWarning = false;
    bool pproImporterOnlyOneFrameWhenLayerSettings = true;
    bool pproDisableSourceSettingsPanel = false;
    bool rememberAlwaysSetNewSourceMode = false;
    bool alwaysSetNewSourceMode = false;
    bool aeLowerPriority = false;
    bool aeLayerSettingsGPUEnabled = true;

private:
    void applyPresetName(size_t slot, const qvUtf8String& value);
};

extern TWDebugOptions debugOptions;
