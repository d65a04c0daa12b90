#pragma once
// The host's frames (PPix) as the importer makes and paints them. The host owns
// every frame; the importer creates them through the file's creator suite,
// fills them, and hands them over or disposes of them through the PPix suite.

#include "MediaCoreSDK.h"

struct TWI_PrivateData;

// A new read-write frame of `format`'s size and pixel format. `pixels` and
// `rowBytes`, when given, receive its memory and stride. 0, the creator's
// negative code, or 0x80000002 when no frame or no memory came back.
int TWI_New_PPix(TWI_PrivateData* privateData, imFrameFormat format, PPix*** out, char** pixels, int* rowBytes);

// A diagnostic for the log at level 2: which accesses the frame grants.
void TWI_PPix_Test_Access(TWI_PrivateData* privateData, PPix** frame);

// Paints every pixel of the frame with one opaque colour, in whichever host
// format it has; 8-bit components are scaled to the format's range. A format
// outside the BGRA/ARGB families is logged and left as it is. Always 0.
int TWI_FillPPix(TWI_PrivateData* privateData, PPix** frame, unsigned char red, unsigned char green,
                 unsigned char blue);

// Hands the frame back to the host; nothing without a frame or a suite.
void TWI_DisposePPix(TWI_PrivateData* privateData, PPix** frame);
