#pragma once
// An asynchronous reader the importer created for a file (imCreateAsyncImporter)
// and the host side of its protocol. Every call may come from any host thread,
// several at once; close() sends aiFlush then aiClose, once, and nothing
// reaches the reader after that.
//
// Record shapes, decided here and nowhere else: aiInitiateAsyncRead,
// aiCancelAsyncRead and aiContinueToWaitForAsyncIO get an aiAsyncRequest whose
// inPrivateData and inSourceRec.inPrivateData are the reader's private data;
// aiGetFrame gets a bare imSourceVideoRec with the reader's private data first;
// aiFlush and aiClose get the private data itself.

#include "twSimFile.h"

#include <atomic>

class twSimAsyncReader {
public:
    twSimAsyncReader(twSimFile& file, AsyncImporterEntry entry, void* privateData);
    ~twSimAsyncReader();
    twSimAsyncReader(const twSimAsyncReader&) = delete;
    twSimAsyncReader& operator=(const twSimAsyncReader&) = delete;

    csSDK_int32 initiateRead(const twSimFrameRequest& request);
    csSDK_int32 cancelRead(const twSimFrameRequest& request);
    twSimFrameResult getFrame(const twSimFrameRequest& request);
    twSimFrameResult continueToWait(const twSimFrameRequest& request);
    // aiGetFrame again while the reader answers "still rendering" (0x10000),
    // yielding in between, at most `maxCalls` calls.
    twSimFrameResult waitForFrame(const twSimFrameRequest& request, long maxCalls = 10000000);
    csSDK_int32 selectEfficientRenderTime(PrTime& ioTime, const imRenderContext& context);
    csSDK_int32 flush();
    csSDK_int32 close();
    bool closed() const { return m_closed; }
    void* privateData() const { return m_privateData; }

private:
    bool usable(const char* what);
    twSimFrameResult requestCall(int selector, const twSimFrameRequest& request);

    twSimFile& m_file;
    AsyncImporterEntry m_entry;
    void* m_privateData;
    std::atomic<bool> m_closed{false};
};
