#pragma once
// The importer's side of its source settings effect, and the two time
// conversions that the effect's side uses to show a clip's timecode in the
// host's units.

#include "MediaCoreSDK.h"
#include "String/qvUtf8String.h"
#include "Utils/qvResult.h"

// The host's ticks of a timecode "HH:MM:SS:FF" at `rate`, as decimal text.
// Timecode of a x/1.001 rate counts nominal seconds of a slowed clock.
QvResult convertTimecodeToTicks(qvUtf8String& ticksOut, PrSDKTimeSuite* timeSuite, const PrVideoFrameRates& rate,
                                const qvUtf8String& timecode);

// The host's frame rate value of `rate` frames per second. A whole or x/1.001
// rate the host has no value for leaves `out` as it was; a rate that is
// neither fails.
QvResult convertFrameRate(PrVideoFrameRates& out, float rate);
