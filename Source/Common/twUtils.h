#pragma once
// The product's own start-up services on top of the shared library: its
// identity, the move away from the folder layout of earlier releases, and the
// files that go into a support archive.

#include "String/qvUtf8String.h"
#include "Utils/qvResult.h"

#include <map>
#include <vector>

namespace twUtils {

// Fills g_config with the product's version, build, names and file names.
void initQvCommon();

// <product folder>/TW_Preset, created when missing.
QvResult getOrCreateTWPresetFolder(qvUtf8String& out);

// Earlier releases kept the ini file and the presets directly in the maker's
// folder. A new place that already exists always wins: the old item is only
// removed, and only if the system lets an rmdir remove it.
QvResult transferOldIniOptionsFile();
QvResult transferOldPresetFolder();
// Removes the old cache and log folders when they are empty; only logs.
void deleteOldFolders();

// Archive folder -> paths to put there: the preset folder at the root, then the
// hosts' crash reports, plug-in loading logs, panel logs and preferences under
// "<host>/<label>".
std::map<qvUtf8String, std::vector<qvUtf8String>> getFilesOrFolderToAddInLogZip();

}  // namespace twUtils
