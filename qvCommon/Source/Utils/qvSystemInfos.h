#pragma once
// The machine report written into every log header: system and processor,
// operating system, memory. Each part degrades to a shorter text; nothing here
// fails.

#include "String/qvUtf8String.h"

#include <iosfwd>

void getSystemInfos(std::ostream& stream);
void getOSVersion(std::ostream& stream);
void getRamInformations(std::ostream& stream);
// Writes nothing in this build.
void getDriveInfos(std::ostream& stream);

// The texts behind the three reports above (without their title lines).
qvUtf8String GetOSXSystemInfos();
qvUtf8String GetOSXVersion();
qvUtf8String getOSXRamInfos();
// One "GPU Model" line per display device, or the "Nothing found" line.
qvUtf8String displayGraphicsInfo();
