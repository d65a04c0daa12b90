#pragma once
// Where the product's folders lie: the user's home, the maker's and the
// product's application-data folders, the install locations of the hosts and
// of the running program. Fixed system folders go through the platform layer
// (qvPlatform::SystemPath), so that tests can lay out installs in a temporary
// root. Include qvFileSystem.h rather than this file.

#include <cstdint>
#include <vector>

#include "String/qvUtf8String.h"
#include "Utils/qvResult.h"

namespace qvProductFolders {
// Below the home folder.
constexpr const char kMakerFolder[] = "/Library/Application Support/Qervane";
// Below the product's folder.
constexpr const char kLogs[] = "Logs";
constexpr const char kCache[] = "Cache";
constexpr const char kManualCache[] = "ManualCache";
// Fixed system places, before the platform layer's root is put in front.
constexpr const char kMediaCore[] = "/Library/Application Support/Adobe/Common/Plug-ins/7.0/MediaCore";
constexpr const char kApplications[] = "/Applications";
constexpr const char kVolumes[] = "/Volumes/";
}  // namespace qvProductFolders

namespace qvFileSystem {

// The platform's home override when set, else the password entry's folder,
// else "HOME".
QvResult getUserHomeFolder(qvUtf8String& out);
// The decision of getUserHomeFolder on given facts: `hasPasswordEntry` with its
// `passwordFolder` (may be null), else the `homeVariable` (may be null).
QvResult getUserHomeFolderFrom(bool hasPasswordEntry, const char* passwordFolder, const char* homeVariable,
                               qvUtf8String& out);

// Each getOrCreate creates its folder when needed and hands back the failure
// of an earlier step unchanged.
QvResult getOrCreateQVAppDataFolder(qvUtf8String& out);
QvResult getOrCreateProductAppDataFolder(qvUtf8String& out);
// An empty `subfolder` means "Logs".
QvResult getOrCreateProductLogFolder(qvUtf8String& out, const qvUtf8String& subfolder = qvUtf8String());
QvResult getOrCreateProductCacheFolder(qvUtf8String& out);
QvResult getOrCreateProductManualCacheFolder(qvUtf8String& out);
// A success guarantees an existing (maybe empty) ini file at `out`.
QvResult getIniFilepath(qvUtf8String& out);

// The folder of the running executable.
QvResult getHostExeFolderPath(qvUtf8String& out);
// "/Volumes/<name>/" of the executable; an error on the boot disk.
QvResult getCurrentExeDiskPath(qvUtf8String& out);
// The same rule applied to a given folder.
QvResult getDiskPathFromFolder(const qvUtf8String& folder, qvUtf8String& out);
// The nearest folder named "*.app" from `start` up (the executable's folder
// when `start` is null).
QvResult getHostFolderPath(qvUtf8String& out, const qvUtf8String* start = nullptr);
// `report` is appended to. Found on the executable's disk, the result is a
// success that leaves `out` as it was.
QvResult getMediacoreFolderPath(qvUtf8String& out, qvUtf8String& report);
// Appends the "Plug-Ins" folders of the installed hosts to `out`; always a success.
QvResult getHostPlugInsFolderPath(std::vector<qvUtf8String>& out, qvUtf8String& report);
// The path of a loaded shared object, named by file name or bundle identifier.
QvResult getDynamicLibPath(qvUtf8String& out, const char* bundleIdentifier);
// Bytes of the files directly inside Cache and ManualCache.
QvResult getCacheSpaceTaken(int64_t& total);
// Opens the path with the desktop (`force`, or no `reveal`), or shows its
// folder. Nothing happens when neither the path nor its parent exists.
void openFileOrFolder(const qvUtf8String& path, bool force, bool reveal, bool unused);

}  // namespace qvFileSystem
