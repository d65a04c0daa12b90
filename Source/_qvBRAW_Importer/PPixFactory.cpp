#include "_qvBRAW_Importer/PPixFactory.h"

#include "Manager/qvParallelWorker.h"

namespace {

bool sameFormat(const imFrameFormat& a, const imFrameFormat& b) {
    return a.inFrameWidth == b.inFrameWidth && a.inFrameHeight == b.inFrameHeight &&
           a.inPixelFormat == b.inPixelFormat;
}

}  // namespace

qvPPixFactory::qvPPixFactory() = default;

qvPPixFactory::~qvPPixFactory() {
    delete m_worker;
    m_worker = nullptr;
    // A worker's task is deleted by its concrete type, which only the code
    // that made it knows: the pool makes none, so there is none to delete here.
    m_workerTask = nullptr;
}

uint32_t qvPPixFactory::FindReq(imFrameFormat format) {
    for (size_t i = 0; i < m_requests.size(); ++i)
        if (sameFormat(m_requests[i].format, format)) return static_cast<uint32_t>(i);
    return kNotFound;
}

uint32_t qvPPixFactory::FindAlloc(imFrameFormat format) {
    for (size_t i = 0; i < m_results.size(); ++i)
        if (sameFormat(m_results[i].format, format)) return static_cast<uint32_t>(i);
    return kNotFound;
}

void qvPPixFactory::PreallocatePPix(imFrameFormat format) {
    std::lock_guard<std::mutex> lock(m_requestsMutex);
    const uint32_t index = FindReq(format);
    if (index != kNotFound) ++m_requests[index].requested;
}

PPix** qvPPixFactory::RetrievePPix(imFrameFormat format) { return CreateNewPPix(format); }

PPix** qvPPixFactory::CreateNewPPix(imFrameFormat format) {
    if (!m_creatorSuite) return nullptr;
    prRect bounds{};
    bounds.right = format.inFrameWidth;
    bounds.bottom = format.inFrameHeight;
    PPixHand frame = nullptr;
    if (m_creatorSuite->CreatePPix(&frame, PrPPixBufferAccess_ReadWrite, format.inPixelFormat, &bounds) < 0) {
        return nullptr;
    }
    return frame;
}

void qvPPixFactory::offerCreatorSuite(PrSDKPPixCreatorSuite* suite) {
    // Files are imported from several host threads at once.
    std::lock_guard<std::mutex> lock(m_requestsMutex);
    if (!m_creatorSuite) m_creatorSuite = suite;
}

void qvPPixFactory::WorkLoopCheckRequests() {
    std::lock_guard<std::mutex> requestsLock(m_requestsMutex);
    for (qvPPixFactory_Request& request : m_requests) {
        while (request.allocated < request.requested + m_minFramesAhead) {
            PPix** frame = nullptr;
            {
                std::lock_guard<std::mutex> resultsLock(m_resultsMutex);
                frame = CreateNewPPix(request.format);
                // A host that refuses frames now will refuse the next ones too.
                if (!frame) return;
                m_results.push_back(qvPPixFactory_Result{request.format, frame});
            }
            ++request.allocated;
        }
    }
}
