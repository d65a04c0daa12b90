#pragma once
// Small conversions between our UTF-8 text and the platform's string handle
// (on Linux a UTF-8 `const char*`, see Platform/qvPlatformString.h).

#include <string>

#include "Platform/qvPlatformString.h"
#include "String/qvUtf8String.h"

// Copies through a buffer of the handle's length in 16-bit units plus one, so
// any text with a multi-byte character gives an empty string; null gives empty.
std::string StringFromCFString(qvPlatform::StringRef handle);

// A new platform string from UTF-8; the caller releases it with
// qvPlatform::ReleaseString (or by holding it in a qvBSTR and calling release()).
qvPlatform::StringRef CFStringFromString(const qvUtf8String& text);

// The handle's UTF-8 text, whole; null gives empty.
qvUtf8String NSStringToString(qvPlatform::StringRef handle);
