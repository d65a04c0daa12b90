#pragma once
// What the simulated host knows of pixel formats: the packed formats it can
// allocate frames for, and a readable name of every published code.

#include "MediaCorePixelFormats.h"

#include <string>

// Bytes per pixel of a format the host can allocate, 0 for any other (planar,
// compressed, custom).
int twSimBytesPerPixel(PrPixelFormat format);

// "BGRA_4444_8u 'bgra'"; "unknown 'abcd'" for a code outside the published list.
std::string twSimPixelFormatName(PrPixelFormat format);
