#pragma once
// A pool of host frames made ahead of need, per frame format, so that the
// thread that wants a frame would not pay for the host's allocation. The
// process has one (g_PPixFactory), from imInit to imShutdown. The frame paths
// allocate directly: the pool only learns the creator suite of the first file,
// and keeps its whole interface for a version that draws on it.

#include "MediaCoreSDK.h"

#include <cstdint>
#include <mutex>
#include <vector>

class qvParallelWorker;
class qvParallelWorker_Task;

struct qvPPixFactory_Request {
    imFrameFormat format;
    uint64_t requested;  // frames asked for
    uint64_t allocated;  // frames prepared so far
};

struct qvPPixFactory_Result {
    imFrameFormat format;
    PPix** frame;
};

class qvPPixFactory {
public:
    static constexpr uint32_t kNotFound = 0xFFFFFFFF;

    qvPPixFactory();
    // The worker, then its task, then the rest. Prepared frames are the host's
    // memory and stay with the host.
    ~qvPPixFactory();
    qvPPixFactory(const qvPPixFactory&) = delete;
    qvPPixFactory& operator=(const qvPPixFactory&) = delete;

    // Index of the record of exactly that size and pixel format, kNotFound
    // without one. The caller holds m_requestsMutex.
    uint32_t FindReq(imFrameFormat format);
    // The same over the prepared frames; the caller holds m_resultsMutex.
    uint32_t FindAlloc(imFrameFormat format);
    // One more frame of that format asked for. A format nobody recorded has no
    // count to raise: nothing happens.
    void PreallocatePPix(imFrameFormat format);
    // A new read-write frame of that format from the creator suite, at once;
    // null without a suite or when the host refuses.
    PPix** RetrievePPix(imFrameFormat format);
    PPix** CreateNewPPix(imFrameFormat format);
    // The first creator suite offered stays: imGetInfo8 offers each file's.
    void offerCreatorSuite(PrSDKPPixCreatorSuite* suite);
    // One round of the work loop: every recorded format is brought to
    // m_minFramesAhead frames beyond those asked for.
    void WorkLoopCheckRequests();

    PrSDKPPixCreatorSuite* m_creatorSuite = nullptr;
    uint64_t m_minFramesAhead = 10;
    bool m_started = false;
    std::vector<qvPPixFactory_Request> m_requests;
    std::mutex m_requestsMutex;
    std::vector<qvPPixFactory_Result> m_results;
    std::mutex m_resultsMutex;
    qvParallelWorker_Task* m_workerTask = nullptr;
    qvParallelWorker* m_worker = nullptr;
};
