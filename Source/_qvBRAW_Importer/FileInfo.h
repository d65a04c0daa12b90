#pragma once
// imGetInfo8: what the host learns of a file, from the decoder's clip.

#include "MediaCoreSDK.h"
#include "Utils/qvResult.h"

#include <cstdint>

struct TWI_PrivateData;
struct twImporterAttributes;

// Fills the file record, the private data and the resolution list of the prefs
// from the registry's clip of the private data's path: size, rate, duration,
// pixel aspect, timecode and audio. An error names what could not be read.
QvResult getInfosFromBM(imFileInfoRec8* fileInfo, TWI_PrivateData* privateData, twImporterAttributes* attributes);

// How a clip's frame rate reaches the host: a whole rate over 1, a rate of
// x/1.001 over 1001, anything else over 10000.
enum class TWI_FrameRateClass { Round, NTSC, Unknown };
TWI_FrameRateClass TWI_ClassifyFrameRate(float rate, int32_t& vidScale, int32_t& vidSampleSize);
