#pragma once
// The check that the product's plug-ins sit where the hosts load them, once,
// with nothing of the decoder vendor's own plug-ins beside them.
//
// It walks whole application folders: run it on a thread of its own at low
// priority, never on a host thread.

#include <vector>

#include "String/qvUtf8String.h"
#include "Utils/qvLogging.h"
#include "Utils/qvResult.h"

namespace twCheckInstall {

// What finding a name means, and how many hits are right.
enum FILE_TYPE : int {
    FILE_NEEDED = 0,        // ours: exactly once
    BMD_PLUGINS_FILES = 1,  // the vendor's own plug-ins: should be gone
    FILE_WARNING = 2,       // conflicts with ours: must be gone
    BMD_LIBRARY_FILE = 3,   // the decoder library: once, beside the importer
};

struct CheckedFile {
    const char* name;
    FILE_TYPE type;
};

// "FILE_NEEDED", "BMD_PLUGINS_FILES", "FILE_WARNING", "BMD_LIBRARY_FILE", else
// "Unknow type".
const char* fileTypeToString(int type);

// The names searched for, in the order they are reported. The first entry is
// the importer, whose place anchors the sibling check.
const std::vector<CheckedFile>& checkedFiles();

// `level` is the verdict (INFO good, WARN, ERR) and only ever rises; `report`
// (for the user) and `details` (for the log) are appended to, and the verdict
// goes in front of `report`. The only error is that no folder could be
// searched at all.
QvResult checkInstallFolder(QV_LOG_LVL& level, qvUtf8String& report, qvUtf8String& details);

// The same against another list: the list is what changes between releases.
// The sibling check runs when the list holds the importer.
QvResult checkInstallFolder(QV_LOG_LVL& level, qvUtf8String& report, qvUtf8String& details,
                            const std::vector<CheckedFile>& files);

}  // namespace twCheckInstall
