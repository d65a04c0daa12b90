#pragma once
// Text helpers of the host simulator: the host speaks UTF-16 to plug-ins and the
// simulator's callers speak UTF-8.

#include "MediaCoreTypes.h"

#include <string>

namespace twSimText {

// Invalid input is replaced by U+FFFD rather than refused: the host shows what it gets.
std::u16string Utf8ToUtf16(const std::string& utf8);
std::string Utf16ToUtf8(const std::u16string& utf16);
// Reads a NUL-terminated UTF-16 text of at most maxUnits units. Record fields
// of packed records may sit at odd addresses (sourceSettingsMatchName at byte
// 4837), so the units are read bytewise, never through a prUTF16Char lvalue.
std::string Utf16ToUtf8(const void* text, size_t maxUnits = static_cast<size_t>(-1));
// Writes a NUL-terminated copy into a fixed-size field, cut to fit (bytewise too).
void CopyToUtf16Field(const std::string& utf8, void* field, size_t fieldUnits);

// Four characters of a code. Pixel formats keep their first character in the
// lowest byte; application codes and most other tags in the highest.
std::string FourCCLowFirst(csSDK_uint32 code);
std::string FourCCHighFirst(csSDK_uint32 code);

}  // namespace twSimText
