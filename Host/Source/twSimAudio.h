#pragma once
// The Audio suite's conversions between per-channel float buffers (full scale
// +-1.0) and interleaved signed integers of 8, 16, 24 (three little-endian
// bytes) and 32 bits. Integer n-bit value v maps to v / 2^(n-1); floats are
// scaled back, rounded to nearest and clamped.

#include "MediaCoreTypes.h"

namespace twSimAudio {

prSuiteError ToInterleaved8(float** in, char* out, unsigned int channels, unsigned int frames);
prSuiteError ToInterleaved16(float** in, short* out, unsigned int channels, unsigned int frames);
prSuiteError ToInterleaved24(float** in, char* out, unsigned int channels, unsigned int frames);
prSuiteError ToInterleaved32(float** in, csSDK_int32* out, unsigned int channels, unsigned int frames);
prSuiteError FromInterleaved8(char* in, float** out, unsigned int channels, unsigned int frames);
prSuiteError FromInterleaved16(short* in, float** out, unsigned int channels, unsigned int frames);
prSuiteError FromInterleaved24(char* in, float** out, unsigned int channels, unsigned int frames);
prSuiteError FromInterleaved32(csSDK_int32* in, float** out, unsigned int channels, unsigned int frames);

}  // namespace twSimAudio
