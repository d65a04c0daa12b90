#pragma once
// What the frame tests compare against: the reference decoder's own picture of
// a frame, rendered here in the library's resource format and brought into the
// host's pixel format by the rules a host frame follows, written out again in
// the test and not taken from the importer.

#include "Format/RefClipModel.h"
#include "twSimFrameRef.h"

#include "MediaCorePixelFormats.h"

#include <string>
#include <vector>

// The frame as the host should hold it: `height` rows, the picture's bottom
// row first (host frames run bottom-up), each row tight.
std::vector<unsigned char> expectedHostFrame(const twref::RefClipModel& model, uint64_t frame, int width, int height,
                                             PrPixelFormat format);
int hostBytesPerPixel(PrPixelFormat format);
// Empty when every row of `frame` (read through its own row bytes) equals the
// expected rows; else where and how it first differs.
std::string differenceFrom(const twSimFrameRef& frame, const std::vector<unsigned char>& expected);
// One flat colour over the whole frame, as 8-bit red, green, blue (the host's
// 16-bit white is 32385 for painted frames); false when it isn't flat.
bool flatColour(const twSimFrameRef& frame, int& red, int& green, int& blue);
