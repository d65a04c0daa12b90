#pragma once
// What the clip commands of tarnwick-host share: a clip imported the way the
// host imports one, and the words for the host's audio sample types.

#include "twHostSession.h"
#include "twSimFile.h"

#include <memory>
#include <string>

// The host's order for a file, after a "Clip: <path>" line: imOpenFile8, then
// imGetInfo8. On failure it
// returns null and tells the error stream in words first (the file does not
// exist, or it cannot be read as a clip), then the selectors' codes.
std::unique_ptr<twSimFile> twHostImportClip(twHostSession& session, const std::string& path);

std::string twHostSampleTypeName(PrAudioSampleType type);
