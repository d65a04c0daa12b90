#pragma once
// The importer's record of one file. It lives in a memory handle of the host,
// is never constructed, and is reached only through TWI_PrivateData_Lock and
// its companions, which pin the handle while the record is in use. The lock
// pins memory and excludes nobody: two host threads may hold the same record.

#include "MediaCoreSDK.h"

#include <cstdint>
#include <functional>

class qvUtf8String;
class qvBRAW_Manager;

struct TWI_PrivateData {
    int64_t audioSampleCount;
    int64_t audioExpectedSamples;
    uint64_t audioChannelCount;
    double frameRate;
    int32_t vidScale;
    int32_t vidSampleSize;
    double audioSampleRate;
    uint32_t audioBitDepth;
    bool hasAudio;
    int64_t audioPosition;
    PlugMemoryFuncs* memFuncs;
    csSDK_int32 importerID;
    SPBasicSuite* basicSuite;
    PrSDKStringSuite* stringSuite;
    PrSDKPPixCreatorSuite* ppixCreatorSuite;
    PrSDKPPixCacheSuite* ppixCacheSuite;
    PrSDKPPixSuite* ppixSuite;
    PrSDKTimeSuite* timeSuite;
    PrSDKAppInfoSuite* appInfoSuite;
    PrSDKApplicationSettingsSuite* applicationSettingsSuite;
    PrSDKErrorSuite3* errorSuite;
    int64_t ticksPerSecond;
    int32_t host;  // PXC_HOST
    qvUtf8String* filepath;
    uint64_t clipID;
    qvUtf8String* timecode;
    int64_t frameCount;
    qvBRAW_Manager* manager;
    bool hasClipInfo;
    uint64_t clipIDForTime;
};

// Pins the handle and points `*out` at the record. A handle whose size is not
// the record's is another importer's or another release's: that throws
// std::runtime_error("Wrong PrivateData Size !"), for the entry's barrier to
// show. Without the host's memory functions nothing happens and `*out` stays.
int TWI_PrivateData_Lock(imStdParms* stdParms, char** handle, TWI_PrivateData** out);
int TWI_PrivateData_Unlock(imStdParms* stdParms, TWI_PrivateData** handle);
// Lock, run, unlock; the handle is unlocked when `fn` throws, and the exception
// goes on.
int TWI_PrivateData_LockExecute(imStdParms* stdParms, char** handle, const std::function<int(TWI_PrivateData*)>& fn);

// Takes the host's memory functions, the basic suite and the per-file suites
// into the record, and the tick rate. 0, or the failure's code with a message
// box; suites after a failed one stay null.
int TWI_PrivateData_AcquireSuites(imStdParms* stdParms, TWI_PrivateData* privateData);
// Releases the suites and frees the two strings. Nothing without a basic suite.
void TWI_PrivateData_Release(imStdParms* stdParms, TWI_PrivateData* privateData);
