#pragma once
// A clip's audio as the host sees it: what imGetInfo8 announces, and the
// samples ImportAudio7 delivers, always as 32-bit float, one buffer per
// channel. Every call into the library's audio goes through the clip's
// m_bmClipMutex.

#include "MediaCoreSDK.h"
#include "Utils/qvResult.h"

#include <memory>

class qvBRAW_Clip;
struct TWI_PrivateData;

// Reads the clip's audio figures into the file record (has-audio, channels,
// rate, sample type, duration) and the private data. A clip without audio gets
// through with has-audio 0; an error names the figure the library refused.
QvResult GetInfoAudio(std::shared_ptr<qvBRAW_Clip> clip, TWI_PrivateData* privateData, imFileInfoRec8* fileInfo);

// The range a read covers: from the record's position, or from *position
// when that is negative; `count` frames of the record's size, fewer at the end
// of `totalSamples`. *position moves to the end of the range.
void calculateAudioRequest(const imImportAudioRec7* audio, long long totalSamples, long long* position,
                           long long* start, long long* count);
