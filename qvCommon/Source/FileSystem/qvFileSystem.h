#pragma once
// Every file and folder operation of the product, and (ProductFolders.h) where
// the product's own folders lie. Operations report through QvResult, whose
// success carries an empty message; the few that answer a question instead say
// so below.

#include <cstdint>
#include <cstdio>
#include <ios>
#include <iosfwd>
#include <vector>

#include "String/qvUtf8String.h"
#include "Utils/qvResult.h"

namespace qvFileSystem {

// ---- questions --------------------------------------------------------------
bool isFolderPath(const qvUtf8String& path);
bool doesFilepathExist(const qvUtf8String& path);
// The one operation that throws (std::filesystem::filesystem_error), on a
// missing path.
bool isFolderEmpty(const qvUtf8String& path);
bool isFileReadable(const qvUtf8String& path);
// Whether a probe file can be written in the folder; the probe is removed.
bool isFolderWritable(const qvUtf8String& path);
// Bytes, or -1 when the path cannot be examined.
int64_t getFileSize(const qvUtf8String& path);
qvUtf8String getParentFolder(const qvUtf8String& path);
// qvUtf8Path::Filename, except that an existing folder keeps its full name.
qvUtf8String getFilenameFromPath(const qvUtf8String& path, bool withExtension);
qvUtf8String getFilepathExtension(const qvUtf8String& path, bool toLower);
bool extensionIsBraw(const qvUtf8String& path);
// Replaces `out` by the entries of the folder in directory order, "." and ".."
// left out: full paths, or names only. A folder that cannot be read lists empty.
void readDirectory(const qvUtf8String& path, std::vector<qvUtf8String>& out, bool namesOnly);
// Walks `folder` down to depth 20 and appends each entry called `names[i]`
// (exactly) to `found[i]`. `found` needs one list per name: a shorter one is
// std::out_of_range.
void searchPathFromFinalenameInDirectoryRecursively(const qvUtf8String& folder,
                                                    const std::vector<qvUtf8String>& names,
                                                    std::vector<std::vector<qvUtf8String>>& found, int depth);

// ---- files ------------------------------------------------------------------
// Opens the stream (`mode` plus out, or plus in) and swaps it into `stream`;
// the caller tests the stream.
void getStream(std::ofstream& stream, const qvUtf8String& path, std::ios_base::openmode mode);
void getStream(std::ifstream& stream, const qvUtf8String& path, std::ios_base::openmode mode);
FILE* openFile(const qvUtf8String& path, const char* mode);
// The whole file, read in binary. `ok` (may be null) tells a missing or
// unreadable file from an empty one.
std::string loadFile(const qvUtf8String& path, bool* ok = nullptr);
// Binary, truncating.
QvResult storeFile(const qvUtf8String& path, const std::string& bytes);
// A missing file is a success.
QvResult removeFileIfExists(const qvUtf8String& path);
// rename; across volumes a copy and a removal of the source, undone if the
// source cannot be removed.
QvResult moveFile(const qvUtf8String& from, const qvUtf8String& to);
// An existing target is overwritten.
QvResult copyFile(const qvUtf8String& from, const qvUtf8String& to);

// ---- folders ----------------------------------------------------------------
// Mode 0755; an existing folder is a success.
QvResult createDirectory(const qvUtf8String& path);
QvResult createDirectoryRecursively(const qvUtf8String& path);
// A plain rmdir: only an empty folder goes, and a missing one is an error in
// spite of the name.
QvResult removeFolderIfExists(const qvUtf8String& path);
// The target must not exist and the source must.
QvResult moveFolder(const qvUtf8String& from, const qvUtf8String& to);
// Empties a folder and keeps it; a missing path is a success.
QvResult cleanFolder(const qvUtf8String& path);
// The engine of cleanFolder: removes the content of `path` (and `path` itself
// with `removeSelf`), refusing to go deeper than 50 levels.
QvResult removeFolderRecursif(const qvUtf8String& path, int depth, bool removeSelf);

// moveFile's first attempt. Tests replace it to force the copy fallback, which
// otherwise only a second volume would show; null restores rename.
using RenameFunction = int (*)(const char* from, const char* to);
void setRenameFunction(RenameFunction rename);

}  // namespace qvFileSystem

#include "FileSystem/ProductFolders.h"
