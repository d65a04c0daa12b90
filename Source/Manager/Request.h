#pragma once
// The unit of work of the decoder core: one frame of one clip, carried through
// the library's read, decode and process jobs. What stands here is what the
// queue reads and writes; the frame's size, format, buffers and processing
// land with the decode request itself.

#include "String/qvUtf8String.h"
#include "Utils/qvMutex.h"

#include <atomic>
#include <cstdint>

class qvParallelWorker;

class qvBRAW_Request {
public:
    // The worker is accepted and ignored: conversion runs on the calling thread.
    qvBRAW_Request(bool BMInit, qvParallelWorker* worker);
    virtual ~qvBRAW_Request();
    qvBRAW_Request(const qvBRAW_Request&) = delete;
    qvBRAW_Request& operator=(const qvBRAW_Request&) = delete;

    virtual void OnCancelled() = 0;

    // Takes no lock: the next stage that reads the flag ends the request.
    void Cancel();
    // True when a equals b, or when either is the wildcard 0xFFFFFFFE.
    static bool queueID_match(uint64_t a, uint64_t b);
    // "[Q<queue>C<clip>#<frame>I<unique>] ", the head of each of its log lines.
    qvUtf8String logPrefix() const;

    const uint64_t m_objectTag = 0x72657175;
    qvMutex m_mutex{""};
    bool m_jobInFlight = false;
    bool m_isSync = false;
    bool m_readDone = false;
    bool m_processDone = false;
    bool m_finished = false;
    bool m_BMInit;
    int32_t m_errorCode = 0;
    qvUtf8String m_errorMsg;
    bool m_cancelled = false;
    uint64_t m_queueID = 0xFFFFFFFF;
    bool m_imageEnabled = true;
    uint64_t m_uniqueID;
    uint64_t m_clipID = UINT64_MAX;
    uint64_t m_frame = 0;

    static std::atomic<uint64_t> m_uniqueIDCounter;
};
