#pragma once
// Host codes as the product names them: the application code of the App Info
// suite, render intents and pixel formats as they appear in the log. Plain
// numbers in, so that the shared library needs no host declarations.

#include "Adobe/qvHost.h"
#include "String/qvUtf8String.h"

#include <cstdint>

// The host's application four-character code (first character in the top
// byte) to the host identity; unknown codes give QV_APP_UNKNOWN.
QV_APP_ENUM getAppEnumFromAppFour(uint32_t appFourCC);

// "Export", "Playing", ...; -1 and unknown values read "Unknown", values above
// 10 "Unknown <n>".
qvUtf8String GetIntentStr(int32_t renderIntent);

// "BGRA_8u", "VUYA_32f", ...; "(other pix_fmt)" for formats the product never
// meets.
qvUtf8String GetPixFmtStr(uint32_t pixelFormat);
