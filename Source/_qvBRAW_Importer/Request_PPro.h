#pragma once
// The decode request bound to one host frame: the file's record, the PPix that
// receives the picture, and the cache identity the finished frame is stored
// under. Prepared on the host's thread by SetupFromSourceVideoRec, either as a
// real request that owns a frame, or as a key request that only carries what
// the queue compares.

#include "Manager/Request.h"
#include "MediaCoreSDK.h"

#include <cstdint>
#include <memory>

struct TWI_PrivateData;
struct twImporterAttributes;
class qvBRAW_Manager;
class qvCachePrefsWrapper;

class qvBRAW_Request_PPro : public qvBRAW_Request {
public:
    qvBRAW_Request_PPro(bool BMInit, qvParallelWorker* worker);
    // A finished request that still owns its frame gives it back to the host.
    ~qvBRAW_Request_PPro() override;

    // With the manager's worker, or none without a manager.
    static std::shared_ptr<qvBRAW_Request_PPro> CreateNewRequest(bool BMInit, qvBRAW_Manager* manager);

    int32_t BeginProcessing() override;
    int32_t LaunchHeavyProcessing() override;
    int32_t HeavyProcessing() override;
    int32_t FinishProcessing() override;
    // Nothing for the host to do: the frame goes with the request.
    void OnCancelled() override;
    bool operator==(qvBRAW_Request& other) const override;

    // Prepares the request from the host's record. With `withImage` a frame is
    // made and the conversion chosen; without, nothing is allocated and the
    // request only serves as a key. 0, 99, or the failure of TWI_New_PPix; a
    // frame made before a failure stays with the request.
    int SetupFromSourceVideoRec(const qvUtf8String& tag, TWI_PrivateData*& privateData, imSourceVideoRec& rec,
                                unsigned long queueID, std::shared_ptr<qvCachePrefsWrapper> wrapper,
                                const twImporterAttributes* attributes, bool withImage);
    // The access diagnostic, then the dark fill of a request that can't decode.
    void FinishImageBuffer(TWI_PrivateData** privateData);

    const uint64_t m_objectTagPPro = 0x72717070;
    TWI_PrivateData* m_privateData = nullptr;
    PPix** m_ppix = nullptr;
    bool m_addedToCache = false;
    bool m_ownsPPix = false;
    std::shared_ptr<qvCachePrefsWrapper> m_cachePrefs;
    // Read only around DrawDonkeyEars, cleared by each setup.
    bool m_donkeyEarsAfterProcessing = false;
    bool m_donkeyEarsWithoutImage = false;
};
