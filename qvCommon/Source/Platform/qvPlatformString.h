#pragma once
// The platform's string object, Linux form.
//
// The decoder library passes strings as plain UTF-8 `const char*`, and a
// string it hands out belongs to it. Strings we create for it (or for any
// other platform call) are ours and must be released; releasing a string we
// did not create only forgets it. That lets one handle type and one release
// call serve both directions, as the string handle does on other platforms.

#include <cstddef>
#include <string>

namespace qvPlatform {

using StringRef = const char*;

// A new string holding `size` bytes of `utf8` (stopping at a NUL), or null
// for a null input. Released with ReleaseString.
StringRef CreateString(const char* utf8, size_t size);
StringRef CreateString(const char* utf8);

// Frees a string made by CreateString; any other handle (null included) is
// left alone.
void ReleaseString(StringRef str);

// Whether `str` is a live string made by CreateString.
bool IsOwnedString(StringRef str);

// Length of the string in 16-bit units, the unit the platform's string
// service counts in. False when the text is not readable as UTF-8.
bool StringLength16(StringRef str, size_t& units);

// Copies the string as UTF-8 into a buffer of `bufferSize` bytes, terminator
// included. False, with an empty `out`, when it does not fit or cannot be read.
bool CopyStringToBuffer(StringRef str, size_t bufferSize, std::string& out);

// Case mapping without a locale. The result is copied back through a buffer
// of the mapped string's length in 16-bit units plus one, so only text that
// ends up as single-byte characters survives; anything else comes back empty.
std::string LowercaseUtf8(const char* utf8);
std::string UppercaseUtf8(const char* utf8);

}  // namespace qvPlatform
