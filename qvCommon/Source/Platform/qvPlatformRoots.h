#pragma once
// Where the product looks for the user's home folder and for the fixed system
// folders ("/Library/...", "/Applications").
//
// Production code never sets anything here and gets the real places. Tests (and
// the host simulator, through the plug-in's one exported hook) put temporary
// folders in front, so that nothing a test does reaches the real home folder or
// the real system folders.

#include <string>

namespace qvPlatform {

// Empty text clears an override. Set once, before the product starts working:
// the values are read without a lock.
void SetHomeFolderOverride(const std::string& homeFolder);
void SetSystemRootOverride(const std::string& systemRoot);

// The home override, or empty when none is set.
const std::string& HomeFolderOverride();

// A fixed absolute system path as the product sees it: the path itself, or the
// same path below the system root override ("/tmp/x" + "/Library/...").
std::string SystemPath(const std::string& absolutePath);

}  // namespace qvPlatform
