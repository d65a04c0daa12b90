#pragma once
// The frame path shared by imGetSourceVideo and the asynchronous reader: the
// frame number of a host time, and the hand-over of a finished request to the
// host (its cache, its out frame, or the error frame and message).

#include "MediaCoreSDK.h"

#include <memory>

struct TWI_PrivateData;
struct twImporterAttributes;
class qvBRAW_Manager;
class qvCachePrefsWrapper;
class qvBRAW_Request_PPro;

// The cache identity of the record's frame, without a copy of the prefs.
std::shared_ptr<qvCachePrefsWrapper> TWI_WrapperOfRecord(TWI_PrivateData* privateData, imSourceVideoRec& rec,
                                                         bool newCacheApi);
// The settings of the record's prefs blob, past its header; null without one.
const twImporterAttributes* TWI_AttributesOfRecord(const imSourceVideoRec& rec);
// True, with the reason in the log, when the record has a prefs blob that a
// frame request can't read.
bool TWI_RecordPrefsRefused(const imSourceVideoRec& rec);
// A manager that can decode: there, and not in its failed state.
bool TWI_ManagerWorks(const TWI_PrivateData* privateData);
// The synchronous decode of a prepared request, with its time or its failure
// in the log. The manager's result.
int TWI_ProcessFrameSyncLogged(qvBRAW_Manager* manager, const std::shared_ptr<qvBRAW_Request_PPro>& request);

// frame = round(time / ticksPerSecond * frameRate), halves away from zero; both
// outs -1 without private data or tick rate, and nothing with a null out. The
// second out is the same number again: callers have always been given two.
void GetFrameNumberFromTime(TWI_PrivateData* privateData, long long time, int* frame, int* frameAgain);

// Gives the finished request's frame to the host as the record's out frame,
// and, when `addToCache` and it decoded well, to the host's cache first. A
// failed request's frame is painted in its stage's colour and shown to the
// user with a message; it never enters the cache. 0.
int ProcessFinishedRequest(imSourceVideoRec* rec, std::shared_ptr<qvCachePrefsWrapper> wrapper,
                           std::shared_ptr<qvBRAW_Request_PPro> request, TWI_PrivateData* privateData,
                           bool addToCache);
