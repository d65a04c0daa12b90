#pragma once
// The unit of work of the decoder core: one frame of one clip, at one size, in
// one output pixel format, with one set of processing attributes, carried
// through the library's read, decode and process jobs as their user data.
//
// Locking: m_mutex is held by each stage callback for the whole stage, and by
// the queue's walks under m_queueMutex (which always comes first). Everything
// but m_cancelled and the id counter is guarded by m_mutex once the request is
// queued.

#include <BlackmagicRawAPI.h>

#include "Adobe/qvHost.h"
#include "Manager/qvPixelFormat.h"
#include "Manager/twAttributes.h"
#include "String/qvUtf8String.h"
#include "Utils/qvChrono.h"
#include "Utils/qvImageTypes.h"
#include "Utils/qvMutex.h"
#include "Utils/qvResult.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>

class qvBRAW_Clip;
class qvParallelWorker;
class twBufferManager;

// The stage at which a request failed, kept in m_errorCode. Each has its own
// colour in the frame the host receives.
enum TW_REQUEST_ERROR_CODE : int32_t {
    TW_REQUEST_ERROR_NONE = 0,
    TW_REQUEST_ERROR_CORRUPTED_FRAME = 1,
    TW_REQUEST_ERROR_FIRST_FRAME_INFOS = 2,
    TW_REQUEST_ERROR_PROCESSING_ATTRIBUTES = 3,
    TW_REQUEST_ERROR_NOT_RAISED_4 = 4,
    TW_REQUEST_ERROR_READ_JOB = 5,
    TW_REQUEST_ERROR_READ_COMPLETE = 6,
    TW_REQUEST_ERROR_FRAME_SETUP = 7,
    TW_REQUEST_ERROR_DECODE_JOB = 8,
    TW_REQUEST_ERROR_NOT_RAISED_9 = 9,
    TW_REQUEST_ERROR_PROCESS_JOB_CPU = 10,
    TW_REQUEST_ERROR_PROCESS_JOB_GPU = 11,
    TW_REQUEST_ERROR_PROCESSED_IMAGE = 12,
};

// A copier of the row walker: `count` elements from *src to *dst.
using qvBRAW_RowCopier = void (*)(class qvBRAW_Request* request, unsigned char** dst, unsigned char** src,
                                  const unsigned long& count);
// A pixel function of the downscale: one pixel from *src to *dst, both advanced.
using qvBRAW_PixelFunction = void (*)(unsigned char** dst, unsigned char** src);

class qvBRAW_Request {
public:
    // The worker is accepted and ignored: conversion runs on the calling thread.
    qvBRAW_Request(bool BMInit, qvParallelWorker* worker);
    // Deletes the buffer manager and releases the clone of the clip's attributes.
    virtual ~qvBRAW_Request();
    qvBRAW_Request(const qvBRAW_Request&) = delete;
    qvBRAW_Request& operator=(const qvBRAW_Request&) = delete;

    // --- Stages (virtual, in this order) ---
    // Called by the read stage under m_mutex before decoding; 1 ends the
    // request there, with no decode; 2 says that it ended the request through
    // HandleError with the lock held, which has released the lock.
    virtual int32_t ProcessReadFrame(IBlackmagicRawFrame* frame);
    // Ends the request with `code` and the text "(code) message" (plus the
    // library's text of `hresult`). With mutexHeld, m_mutex is unlocked here
    // (or handed to m_onFinished).
    virtual int32_t HandleError(int code, int hresult, const qvUtf8String& message, bool mutexHeld);
    virtual int32_t BeginProcessing();
    virtual int32_t LaunchHeavyProcessing();
    // The conversion into the output buffer (RequestPixelConversion.cpp). 0
    // when the buffer is final or nothing was asked, 1 when it can't be made.
    virtual int32_t HeavyProcessing();
    virtual int32_t FinishProcessing();
    virtual void OnCancelled() = 0;
    // Same frame, clip, queue (wildcard aware), library scale, format, path
    // and settings. The area does not count.
    virtual bool operator==(qvBRAW_Request& other) const;

    // --- Preparation, on the host's thread, in this order ---
    QvResult setScaleAndDimensions(std::shared_ptr<qvBRAW_Clip> clip, const QvRationalScale& scaleX,
                                   const QvRationalScale& scaleY, const QvRect& rect, bool allowDownscale);
    QvResult setScaleAndDimensions(std::shared_ptr<qvBRAW_Clip> clip, uint32_t width, uint32_t height,
                                   bool allowDownscale);
    // Takes `bufferManager` over. Throws std::runtime_error for a format that
    // can't be delivered.
    void setup(QV_APP_ENUM app, uint64_t frame, uint64_t frameCount, uint64_t clipID, void* outBuffer,
               int32_t rowBytes, const QV_PIXEL_FORMAT& format, twBufferManager* bufferManager, bool skipConversion,
               const qvUtf8String& filePath, std::shared_ptr<qvBRAW_Clip> clip);
    void setClipAndtwFrameAttributesFromPrefs(const twAttributes* prefs, std::shared_ptr<qvBRAW_Clip> clip,
                                              bool withImage);

    // Takes no lock: the next stage that reads the flag ends the request.
    void Cancel();
    // The place for marking a frame; nothing is drawn.
    void DrawDonkeyEars();
    // Without the library, a request with no picture shows a flat dark frame:
    // every byte of a buffer with a positive stride is 31.
    void FinishImageBuffer();
    // True when a equals b, or when either is the wildcard 0xFFFFFFFE.
    static bool queueID_match(uint64_t a, uint64_t b);
    // m_bmBytesPerPixel from m_bmPixelFormat; throws for an unknown format.
    uint8_t setBMPixelBytesNumber();
    // "[Q<queue>C<clip>#<frame>I<unique>] ", the head of each of its log lines.
    qvUtf8String logPrefix() const;

    // --- Pixel conversion (RequestPixelConversion.cpp) ---
    // Sets m_pxlConvAlgo and m_bmPixelFormat from the output format and the
    // downscale. Throws std::runtime_error.
    void decidePixelConversionAlgorithm();
    void CopyMemoryCPUorGPU(void* dst, void* src, unsigned long bytes, bool withTiming);
    // The row walker.
    template <typename T, bool leadingAlpha, bool copierKeepsCursors>
    void HeavyProcessing_Main(const T& alpha, qvBRAW_RowCopier fn, uint32_t elementsPerPixel);
    // The nearest-sample downscale.
    template <typename T>
    void HeavyProcessing_Downscale(qvBRAW_PixelFunction fn);

    const uint64_t m_objectTag = 0x72657175;
    bool m_recordFileAndTimecode = false;
    qvMutex m_mutex{""};
    bool m_jobInFlight = false;
    bool m_isSync = false;
    bool m_readDone = false;
    bool m_processDone = false;
    bool m_finished = false;
    qvChrono m_chrono;
    bool m_BMInit;
    int32_t m_errorCode = 0;
    qvUtf8String m_errorMsg;
    // Written by Cancel from any thread without a lock while a stage may read
    // it; atomic so that the store and the reads are well defined.
    std::atomic<bool> m_cancelled{false};
    std::function<int(qvBRAW_Request*, bool)> m_onFinished;
    uint64_t m_queueID = 0xFFFFFFFF;
    bool m_imageEnabled = true;
    uint64_t m_uniqueID;
    uint64_t m_clipID = UINT64_MAX;
    uint64_t m_frame = 0;
    uint64_t m_frameCount = 0;
    int32_t m_pxlConvAlgo = 0;
    QV_PIXEL_FORMAT m_pixelFormat = QV_PIXEL_FORMAT_NONE;
    int32_t m_rowBytes = -1;
    uint32_t m_width = 0;
    uint32_t m_height = 0;
    QvRect m_rect;
    uint32_t m_bmPixelFormat = blackmagicRawResourceFormatRGBAU8;
    uint8_t m_bmBytesPerPixel = 4;
    IBlackmagicRawProcessedImage* m_processedImage = nullptr;
    uint32_t m_resolutionScale = blackmagicRawResolutionScaleFull;
    bool m_downscale = false;
    float m_scaleX = 1.0f;
    float m_scaleY = 1.0f;
    uint32_t m_srcWidth = 0;
    uint32_t m_srcHeight = 0;
    IBlackmagicRawClipProcessingAttributes* m_clipProcessingAttributes = nullptr;
    twAttributes m_attributes;
    qvUtf8String m_fileName;
    qvUtf8String m_timecode;
    bool m_skipConversion = false;
    twBufferManager* m_bufferManager = nullptr;

    static std::atomic<uint64_t> m_uniqueIDCounter;
    // The colour of the frame a failed request shows, by the stage that failed.
    static const std::map<TW_REQUEST_ERROR_CODE, QvColor> s_errorCodeToColor;
};
