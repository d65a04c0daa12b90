#include "twSimAsyncReader.h"

#include "twSimHost.h"

#include <cstring>
#include <thread>

twSimAsyncReader::twSimAsyncReader(twSimFile& file, AsyncImporterEntry entry, void* privateData)
    : m_file(file), m_entry(entry), m_privateData(privateData) {}

twSimAsyncReader::~twSimAsyncReader() { close(); }

bool twSimAsyncReader::usable(const char* what) {
    if (!m_closed) return true;
    m_file.host().diagnostics().add(twSimIssue::CallAfterClose, std::string("host asked for ") + what +
                                                                    " on a closed reader; not sent");
    return false;
}

twSimFrameResult twSimAsyncReader::requestCall(int selector, const twSimFrameRequest& request) {
    twSimFrameResult result;
    PPixHand out = nullptr;
    std::vector<imFrameFormat> formats;
    aiAsyncRequest rec;
    std::memset(&rec, 0, sizeof(rec));
    rec.inPrivateData = m_privateData;
    m_file.fillSourceRecord(rec.inSourceRec, request, m_privateData, &out, formats);
    result.result = m_file.host().callAsync(m_entry, selector, &rec);
    m_file.host().strings().release(rec.inSourceRec.selectedColorProfileName);
    result.frame = twSimFrameRef(m_file.host().frames(), out);
    return result;
}

csSDK_int32 twSimAsyncReader::initiateRead(const twSimFrameRequest& request) {
    if (!usable("aiInitiateAsyncRead")) return aiUnknownError;
    return requestCall(aiInitiateAsyncRead, request).result;
}

csSDK_int32 twSimAsyncReader::cancelRead(const twSimFrameRequest& request) {
    if (!usable("aiCancelAsyncRead")) return aiUnknownError;
    return requestCall(aiCancelAsyncRead, request).result;
}

twSimFrameResult twSimAsyncReader::continueToWait(const twSimFrameRequest& request) {
    if (!usable("aiContinueToWaitForAsyncIO")) return twSimFrameResult{aiUnknownError, twSimFrameRef()};
    return requestCall(aiContinueToWaitForAsyncIO, request);
}

twSimFrameResult twSimAsyncReader::getFrame(const twSimFrameRequest& request) {
    twSimFrameResult result;
    if (!usable("aiGetFrame")) {
        result.result = aiUnknownError;
        return result;
    }
    PPixHand out = nullptr;
    std::vector<imFrameFormat> formats;
    imSourceVideoRec rec;
    m_file.fillSourceRecord(rec, request, m_privateData, &out, formats);
    result.result = m_file.host().callAsync(m_entry, aiGetFrame, &rec);
    m_file.host().strings().release(rec.selectedColorProfileName);
    result.frame = twSimFrameRef(m_file.host().frames(), out);
    return result;
}

twSimFrameResult twSimAsyncReader::waitForFrame(const twSimFrameRequest& request, long maxCalls) {
    twSimFrameResult result = getFrame(request);
    for (long calls = 1; result.result == suiteError_RenderPending && calls < maxCalls; ++calls) {
        std::this_thread::yield();
        result = getFrame(request);
    }
    return result;
}

csSDK_int32 twSimAsyncReader::selectEfficientRenderTime(PrTime& ioTime, const imRenderContext& context) {
    if (!usable("aiSelectEfficientRenderTime")) return aiUnknownError;
    aiSelectEfficientRenderTimeRec rec;
    std::memset(&rec, 0, sizeof(rec));
    rec.inPrivateData = m_privateData;
    rec.prefs = m_file.prefs();
    rec.prefsSize = m_file.prefsSize();
    rec.ioTime = ioTime;
    rec.inRenderContext = context;
    const csSDK_int32 result = m_file.host().callAsync(m_entry, aiSelectEfficientRenderTime, &rec);
    ioTime = rec.ioTime;
    return result;
}

csSDK_int32 twSimAsyncReader::flush() {
    if (!usable("aiFlush")) return aiUnknownError;
    return m_file.host().callAsync(m_entry, aiFlush, m_privateData);
}

csSDK_int32 twSimAsyncReader::close() {
    if (m_closed.exchange(true)) return aiNoError;
    // A host always flushes a reader before closing it.
    m_file.host().callAsync(m_entry, aiFlush, m_privateData);
    return m_file.host().callAsync(m_entry, aiClose, m_privateData);
}
