#pragma once
// The asynchronous reader a host plays back through: it is told which frames
// will be wanted (InitiateAsyncRead), which starts their decoding on the
// library's threads, and collects them later (GetFrame) from the host's cache,
// from the queue, or, as a last resort, by decoding at once. A host may hold
// several readers on one file and call each from several threads.

#include "MediaCoreSDK.h"
#include "String/qvUtf8String.h"
#include "Utils/qvStats.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>

struct TWI_PrivateData;
class qvCachePrefsWrapper;

// The reader's entry, handed to the host by imCreateAsyncImporter. Nothing
// leaves it as an exception: playback must not open a box, so a failure is a
// log line and the result 1.
extern "C" csSDK_int32 xAsyncImportEntry(int selector, void* param);

class SDKAsyncImporter {
public:
    // Takes a copy of the file's record as it stands now, in a handle of its own.
    SDKAsyncImporter(imStdParms* stdParms, TWI_PrivateData* privateData);
    ~SDKAsyncImporter();
    SDKAsyncImporter(const SDKAsyncImporter&) = delete;
    SDKAsyncImporter& operator=(const SDKAsyncImporter&) = delete;

    int OnInitiateAsyncRead(imSourceVideoRec* rec);
    int OnCancelAsyncRead(imSourceVideoRec* rec);
    int OnFlush();
    int OnGetFrame(imSourceVideoRec* rec);
    int OnContinueToWaitForAsyncIO(aiAsyncRequest* request);
    // At level 0: the statistics into the log, before the reader goes.
    void logStatistics();

    // The queue, else a synchronous decode that the cache doesn't get. 65536
    // while the frame is still being decoded.
    int FindRequestAndProcessIt(const qvUtf8String& tag, imSourceVideoRec* rec,
                                std::shared_ptr<qvCachePrefsWrapper> wrapper, bool& frameFound);
    // No manager, or one in its failed state.
    bool DisableImport() const;
    int LogEntryPoint(const char* tag, imSourceVideoRec* rec);

    qvStats m_statsAsyncRead;
    qvStats m_statsGetFrame;
    char** m_privateDataHandle = nullptr;
    TWI_PrivateData* m_privateData = nullptr;
    std::chrono::steady_clock::time_point m_lastReadTime;
    std::mutex m_lastReadMutex;
    uint32_t m_queueID = 0xFFFFFFFF;
    bool m_newCacheApi = false;

private:
    std::shared_ptr<qvCachePrefsWrapper> makeWrapper(imSourceVideoRec* rec);
    PlugMemoryFuncs* m_memFuncs = nullptr;
};
