#include "_qvBRAW_Importer/AsyncImporter.h"

#include "_qvBRAW_Importer/CachePrefsWrapper.h"
#include "_qvBRAW_Importer/Handlers.h"
#include "_qvBRAW_Importer/PPix.h"
#include "_qvBRAW_Importer/PrivateData.h"
#include "_qvBRAW_Importer/Request_PPro.h"
#include "_qvBRAW_Importer/Video.h"

#include "Adobe/qvAdobePPro.h"
#include "Common/TW_Debug_Options.h"
#include "Manager/Manager.h"
#include "twImporterSharedPrefs/twImporterSharedPrefs.h"
#include "Utils/qvChrono.h"
#include "Utils/qvLogging.h"

#include <cstring>
#include <exception>

namespace {

constexpr int kFrameNotReady = 0x10000;  // the host asks again later

// Host results of the reader's selectors, by number.
constexpr int kAsyncNoErr = 0;
constexpr int kAsyncUnsupported = 1;
constexpr int kAsyncNoManager = 2;  // also bad prefs
constexpr int kAsyncStillWaiting = 3;

const char* const kSelectorNames[] = {"InitiateAsyncRead",        "CancelAsyncRead", "Flush", "GetFrame", "Close",
                                      "ContinueToWaitForAsyncIO", "SelectEfficientRenderTime"};

SDKAsyncImporter* readerOf(void* pointer) { return static_cast<SDKAsyncImporter*>(pointer); }

csSDK_int32 dispatchAsync(int selector, void* param) {
    switch (selector) {
        case 0: {
            auto* request = static_cast<aiAsyncRequest*>(param);
            return readerOf(request->inPrivateData)->OnInitiateAsyncRead(&request->inSourceRec);
        }
        case 1: {
            auto* request = static_cast<aiAsyncRequest*>(param);
            readerOf(request->inPrivateData)->OnCancelAsyncRead(&request->inSourceRec);
            return kAsyncNoErr;
        }
        case 2: return readerOf(param)->OnFlush();
        case 3: {
            auto* rec = static_cast<imSourceVideoRec*>(param);
            return readerOf(rec->inPrivateData)->OnGetFrame(rec);
        }
        case 4: {
            SDKAsyncImporter* reader = readerOf(param);
            if (!reader) return kAsyncNoErr;
            reader->logStatistics();
            delete reader;
            return kAsyncNoErr;
        }
        case 5: {
            auto* request = static_cast<aiAsyncRequest*>(param);
            return readerOf(request->inPrivateData)->OnContinueToWaitForAsyncIO(request);
        }
        default: return kAsyncNoErr;
    }
}

// The reader a selector is about, for its entry line.
SDKAsyncImporter* readerForLog(int selector, void* param) {
    if (!param) return nullptr;
    switch (selector) {
        case 0:
        case 1:
        case 5: return readerOf(static_cast<aiAsyncRequest*>(param)->inPrivateData);
        case 3: return readerOf(static_cast<imSourceVideoRec*>(param)->inPrivateData);
        case 6: return readerOf(*static_cast<void**>(param));
        default: return readerOf(param);
    }
}

imSourceVideoRec* recordForLog(int selector, void* param) {
    if (!param) return nullptr;
    switch (selector) {
        case 0:
        case 1:
        case 5: return &static_cast<aiAsyncRequest*>(param)->inSourceRec;
        case 3: return static_cast<imSourceVideoRec*>(param);
        default: return nullptr;
    }
}

}  // namespace

csSDK_int32 xAsyncImportEntry(int selector, void* param) {
    if (selector < 0 || selector > 6) return kAsyncUnsupported;
    try {
        if (SDKAsyncImporter* reader = readerForLog(selector, param)) {
            reader->LogEntryPoint(kSelectorNames[selector], recordForLog(selector, param));
        }
        return dispatchAsync(selector, param);
    } catch (const std::exception& error) {
        try {
            QV_LOG(QV_LOG_ERR, "Error : " << error.what());
        } catch (...) {
        }
    } catch (...) {
        try {
            QV_LOG(QV_LOG_ERR, "Error : unknown exception");
        } catch (...) {
        }
    }
    return kAsyncUnsupported;
}

int SDKCreateAsyncImporter(imStdParms* stdParms, imAsyncImporterCreationRec* creation) {
    if (!creation) return imUnsupported;
    return TWI_PrivateData_LockExecute(
        stdParms, static_cast<char**>(creation->inPrivateData), [&](TWI_PrivateData* privateData) {
            if (!privateData) return static_cast<int>(imUnsupported);
            creation->outAsyncEntry = xAsyncImportEntry;
            creation->outAsyncPrivateData = new SDKAsyncImporter(stdParms, privateData);
            return static_cast<int>(imNoErr);
        });
}

SDKAsyncImporter::SDKAsyncImporter(imStdParms* stdParms, TWI_PrivateData* privateData) {
    m_newCacheApi = stdParms && stdParms->imInterfaceVer >= 23;
    m_memFuncs = stdParms && stdParms->piSuites ? stdParms->piSuites->memFuncs : nullptr;
    if (m_memFuncs) {
        m_privateDataHandle = m_memFuncs->newHandle(static_cast<csSDK_uint32>(sizeof(TWI_PrivateData)));
    }
    if (!m_privateDataHandle) throw std::runtime_error("Impossible to create the reader's private data");
    m_privateData = reinterpret_cast<TWI_PrivateData*>(*m_privateDataHandle);
    // The file's state as of now; its pointers are shared and never freed here.
    std::memcpy(static_cast<void*>(m_privateData), privateData, sizeof(TWI_PrivateData));
    m_queueID = static_cast<uint32_t>(m_privateData->importerID);
    LogEntryPoint("(Create) SDKAsyncImporter", nullptr);
    if (g_logger.isLoggingActivated(QV_LOG_TRACE)) {
        m_lastReadTime = std::chrono::steady_clock::now();
        m_statsAsyncRead.start(true);
        m_statsGetFrame.start(true);
    }
}

SDKAsyncImporter::~SDKAsyncImporter() {
    // The requests of this reader point at its record: none may outlive it in
    // the queue. The library's jobs are waited for, then what finished goes.
    if (m_privateData && m_privateData->manager) m_privateData->manager->FlushQueue(m_queueID);
    if (m_memFuncs && m_privateDataHandle) m_memFuncs->disposeHandle(m_privateDataHandle);
}

bool SDKAsyncImporter::DisableImport() const { return !TWI_ManagerWorks(m_privateData); }

int SDKAsyncImporter::LogEntryPoint(const char* tag, imSourceVideoRec* rec) {
    if (!g_logger.isLoggingActivated(QV_LOG_INFO)) return 0;
    std::ostringstream line;
    if (rec) {
        int frame = -1;
        int frameAgain = -1;
        GetFrameNumberFromTime(m_privateData, rec->inFrameTime, &frame, &frameAgain);
        line << "[Q" << m_queueID << "C" << m_privateData->clipID << "#" << frame << "] ";
    }
    line << tag;
    if (rec) line << " (" << GetIntentStr(rec->inRenderContext.inIntent) << ")";
    QV_LOG(QV_LOG_INFO, line.str());
    return 0;
}

std::shared_ptr<qvCachePrefsWrapper> SDKAsyncImporter::makeWrapper(imSourceVideoRec* rec) {
    return TWI_WrapperOfRecord(m_privateData, *rec, m_newCacheApi);
}

int SDKAsyncImporter::OnInitiateAsyncRead(imSourceVideoRec* rec) {
    qvChrono chrono;
    chrono.start();
    auto wrapper = makeWrapper(rec);
    qvUtf8String tag("InitiateAsyncRead ");
    if (g_logger.isLoggingActivated(QV_LOG_TRACE)) {
        int64_t sinceLast = 0;
        {
            std::lock_guard<std::mutex> lock(m_lastReadMutex);
            const auto now = std::chrono::steady_clock::now();
            sinceLast = std::chrono::duration_cast<std::chrono::microseconds>(now - m_lastReadTime).count();
            m_lastReadTime = now;
        }
        if (sinceLast >= 1) {
            std::ostringstream text;
            text << "InitiateAsyncRead  dt " << sinceLast << " us - ";
            tag = text.str();
        }
    }
    if (DisableImport()) return 0;
    if (TWI_RecordPrefsRefused(*rec)) return kAsyncNoManager;
    PPix** cached = nullptr;
    bool found = false;
    GetFromCache(m_privateData, wrapper, &cached, &found);
    if (found) {
        QV_LOG(QV_LOG_WARN, "Frame already in cache PPID:" << static_cast<const void*>(cached));
        TWI_DisposePPix(m_privateData, cached);
        return 0;
    }

    auto request = qvBRAW_Request_PPro::CreateNewRequest(true, m_privateData->manager);
    const int setup = request->SetupFromSourceVideoRec(tag, m_privateData, *rec, m_queueID, wrapper,
                                                       TWI_AttributesOfRecord(*rec), true);
    if (setup != 0) return setup;
    m_privateData->manager->AddProcessFrameAsync(request, false);
    if (request->m_errorCode == 0) {
        QV_LOG(QV_LOG_INFO, request->logPrefix() << "AddProcess/ProcessFrameSync dt "
                                                 << chrono.getLatestSpanMicro(false) << " us");
    } else {
        QV_LOG(QV_LOG_ERR, request->logPrefix() << "AddProcessFrameAsync failed :(");
    }
    if (g_logger.isLoggingActivated(QV_LOG_TRACE)) {
        const int64_t dt = chrono.getLatestSpanMicro(false);
        QV_LOG(QV_LOG_TRACE, "End InitiateAsyncRead, lasted dt " << dt << " us --> " << m_statsAsyncRead.count
                                                                 << " / " << m_statsGetFrame.count);
        m_statsAsyncRead.addStat(static_cast<uint64_t>(dt));
    }
    return 0;
}

int SDKAsyncImporter::OnCancelAsyncRead(imSourceVideoRec* rec) {
    if (DisableImport()) return 0;
    auto wrapper = makeWrapper(rec);
    auto key = qvBRAW_Request_PPro::CreateNewRequest(true, m_privateData->manager);
    if (key->SetupFromSourceVideoRec("OnCancelAsyncRead ", m_privateData, *rec, m_queueID, wrapper,
                                     TWI_AttributesOfRecord(*rec), false) != 0) {
        return 0;
    }
    std::shared_ptr<qvBRAW_Request> found;
    bool stillProcessing = false;
    m_privateData->manager->FindInQueue(key, found, stillProcessing, false, true, false);
    if (!found) return 0;
    qvMutex& request_source_m_mutex = found->m_mutex;
    QV_LOCK_TRACED(request_source_m_mutex);
    if (!found->m_finished) found->Cancel();
    request_source_m_mutex.unlock();
    return 0;
}

int SDKAsyncImporter::OnFlush() {
    if (!m_privateData->manager) return kAsyncNoManager;
    m_privateData->manager->FlushQueue(m_queueID);
    return 0;
}

int SDKAsyncImporter::FindRequestAndProcessIt(const qvUtf8String& tag, imSourceVideoRec* rec,
                                              std::shared_ptr<qvCachePrefsWrapper> wrapper, bool& frameFound) {
    qvBRAW_Manager* manager = m_privateData->manager;
    auto key = qvBRAW_Request_PPro::CreateNewRequest(true, manager);
    const int setup =
        key->SetupFromSourceVideoRec(tag, m_privateData, *rec, m_queueID, wrapper, TWI_AttributesOfRecord(*rec), false);
    if (setup != 0) {
        QV_LOG(QV_LOG_ERR, tag << " : SetupFromSourceVideoRec returned error");
        return setup;
    }
    const bool waitProcessToFinish = debugOptions.importerIsFullyAsync;
    std::shared_ptr<qvBRAW_Request> found;
    bool stillProcessing = false;
    manager->GetFrame(key, found, stillProcessing, true, waitProcessToFinish);
    if (found && stillProcessing) {
        if (waitProcessToFinish) {
            QV_LOG(QV_LOG_ERR, "Request Found but still processing - Should be impossible when waitProcessToFinish");
        } else {
            QV_LOG(QV_LOG_INFO, "Request Found but still processing");
        }
        return kFrameNotReady;
    }
    // Only host requests can equal a host key; anything else is no frame for the host.
    if (auto hostRequest = std::dynamic_pointer_cast<qvBRAW_Request_PPro>(found)) {
        ProcessFinishedRequest(rec, wrapper, hostRequest, m_privateData, true);
        frameFound = true;
        return 0;
    }

    QV_LOG(QV_LOG_WARN, "Frame is not in Queue (Maybe Special Effects issue) - Processing Frame Sync");
    auto request = qvBRAW_Request_PPro::CreateNewRequest(true, manager);
    const int syncSetup = request->SetupFromSourceVideoRec(tag, m_privateData, *rec, m_queueID, wrapper,
                                                           TWI_AttributesOfRecord(*rec), true);
    if (syncSetup != 0) {
        QV_LOG(QV_LOG_ERR, tag << " : SetupFromSourceVideoRec returned error for Sync Request ..");
        return syncSetup;
    }
    TWI_ProcessFrameSyncLogged(manager, request);
    ProcessFinishedRequest(rec, wrapper, request, m_privateData, false);
    frameFound = true;
    return 0;
}

int SDKAsyncImporter::OnGetFrame(imSourceVideoRec* rec) {
    qvChrono chrono;
    chrono.start();
    auto wrapper = makeWrapper(rec);
    *rec->outFrame = nullptr;
    if (TWI_RecordPrefsRefused(*rec)) return kAsyncNoManager;
    PPix** cached = nullptr;
    bool hit = false;
    GetFromCache(m_privateData, wrapper, &cached, &hit);
    const imFrameFormat* format = rec->inNumFrameFormats > 0 ? rec->inFrameFormats : nullptr;
    QV_LOG(QV_LOG_INFO, "GetFrame PPID:" << static_cast<const void*>(cached) << " - "
                                         << (format ? format->inFrameWidth : 0) << "x"
                                         << (format ? format->inFrameHeight : 0) << " - "
                                         << GetIntentStr(rec->inRenderContext.inIntent) << " - "
                                         << GetPixFmtStr(format ? static_cast<uint32_t>(format->inPixelFormat) : 0u));
    int result = 0;
    if (hit) {
        *rec->outFrame = cached;
        QV_LOG(QV_LOG_INFO, "Frame retrieved from cache PPID:" << static_cast<const void*>(cached));
        return 0;
    }
    if (!DisableImport()) {
        bool found = false;
        result = FindRequestAndProcessIt("OnGetFrame", rec, wrapper, found);
    } else {
        if (!format) return 99;
        PPix** dark = nullptr;
        const int created = TWI_New_PPix(m_privateData, *format, &dark, nullptr, nullptr);
        if (created != 0) {
            QV_LOG(QV_LOG_ERR, "Error during TWI_New_PPix - Can not continue");
            return created;
        }
        TWI_PPix_Test_Access(m_privateData, dark);
        TWI_FillPPix(m_privateData, dark, 31, 31, 31);
        *rec->outFrame = dark;
        return 0;
    }
    QV_LOG(QV_LOG_INFO, "End of GetFrame " << (*rec->outFrame ? "Frame Found ! Res: " : "without frame :( Res: ")
                                           << result);
    if (g_logger.isLoggingActivated(QV_LOG_TRACE)) {
        const int64_t dt = chrono.getLatestSpanMicro(false);
        QV_LOG(QV_LOG_TRACE, "End GetFrame, lasted dt " << dt << " us");
        m_statsGetFrame.addStat(static_cast<uint64_t>(dt));
    }
    if (result != 0) return result;
    if (*rec->outFrame) return 0;
    // Nothing came back and nothing failed: an amber frame says the queue gave nothing.
    if (!format) return 0;
    const int created = TWI_New_PPix(m_privateData, *format, rec->outFrame, nullptr, nullptr);
    if (created != 0) {
        QV_LOG(QV_LOG_ERR, "Error during TWI_New_PPix - Can not continue");
        return created;
    }
    TWI_FillPPix(m_privateData, *rec->outFrame, 255, 192, 0);
    return 0;
}

int SDKAsyncImporter::OnContinueToWaitForAsyncIO(aiAsyncRequest* request) {
    imSourceVideoRec* rec = &request->inSourceRec;
    *rec->outFrame = nullptr;
    auto wrapper = makeWrapper(rec);
    PPix** cached = nullptr;
    bool hit = false;
    GetFromCache(m_privateData, wrapper, &cached, &hit);
    int result = 0;
    if (hit) {
        QV_LOG(QV_LOG_INFO, "Frame retrieved from cache PPID:" << static_cast<const void*>(cached));
        *rec->outFrame = cached;
    } else if (DisableImport()) {
        result = kAsyncStillWaiting;
    } else {
        bool found = false;
        result = FindRequestAndProcessIt("OnContinueToWaitForAsyncIO", rec, wrapper, found) == 0 ? kAsyncNoErr
                                                                                                  : kAsyncStillWaiting;
    }
    QV_LOG(QV_LOG_INFO, "End of OnContinueToWaitForAsyncIO "
                            << (*rec->outFrame ? "Frame Found ! Res: " : "without frame :( Res: ") << result);
    return result;
}

void SDKAsyncImporter::logStatistics() {
    if (!g_logger.isLoggingActivated(QV_LOG_TRACE)) return;
    m_statsAsyncRead.finish();
    m_statsGetFrame.finish();
    QV_LOG(QV_LOG_TRACE, "\n Stats_AsyncRead in ms : " << m_statsAsyncRead.toString(0.001, false));
    QV_LOG(QV_LOG_TRACE, "\n Stats_GetFrame  in ms : " << m_statsGetFrame.toString(0.001, false));
}
