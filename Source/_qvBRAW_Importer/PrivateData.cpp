#include "_qvBRAW_Importer/PrivateData.h"

#include "_qvBRAW_Importer/Utils.h"
#include "String/qvUtf8String.h"
#include "Utils/qvLogging.h"

#include <stdexcept>

namespace {

PlugMemoryFuncs* memoryFuncsOf(const imStdParms* stdParms) {
    if (!stdParms || !stdParms->piSuites) return nullptr;
    return stdParms->piSuites->memFuncs;
}

constexpr char kGetInfosError[] = "Importer GetInfos Error";

// One per-file suite: where it goes in the record, and the name and version
// under which it is acquired.
struct SuiteSlot {
    const char* name;
    int version;
    const void** (*field)(TWI_PrivateData*);
};

template <typename T>
const void** fieldAddress(T*& field) {
    return static_cast<const void**>(static_cast<void*>(&field));
}

const SuiteSlot kAcquiredSuites[] = {
    {kPrSDKStringSuite, kPrSDKStringSuiteVersion, [](TWI_PrivateData* p) { return fieldAddress(p->stringSuite); }},
    {kPrSDKPPixCreatorSuite, kPrSDKPPixCreatorSuiteVersion,
     [](TWI_PrivateData* p) { return fieldAddress(p->ppixCreatorSuite); }},
    {kPrSDKPPixCacheSuite, kPrSDKPPixCacheSuiteVersion6,
     [](TWI_PrivateData* p) { return fieldAddress(p->ppixCacheSuite); }},
    {kPrSDKPPixSuite, kPrSDKPPixSuiteVersion, [](TWI_PrivateData* p) { return fieldAddress(p->ppixSuite); }},
    {kPrSDKAppInfoSuite, kPrSDKAppInfoSuiteVersion, [](TWI_PrivateData* p) { return fieldAddress(p->appInfoSuite); }},
    {kPrSDKApplicationSettingsSuite, kPrSDKApplicationSettingsSuiteVersion,
     [](TWI_PrivateData* p) { return fieldAddress(p->applicationSettingsSuite); }},
    {kPrSDKTimeSuite, kPrSDKTimeSuiteVersion, [](TWI_PrivateData* p) { return fieldAddress(p->timeSuite); }},
    {kPrSDKErrorSuite, kPrSDKErrorSuiteVersion3, [](TWI_PrivateData* p) { return fieldAddress(p->errorSuite); }},
};

struct ReleasedSuite {
    const char* name;
    int version;
};

// The cache suite goes back under version 8 although it came under 6: that is
// how this importer has always released it, and hosts accept it.
const ReleasedSuite kReleasedSuites[] = {
    {kPrSDKStringSuite, kPrSDKStringSuiteVersion},
    {kPrSDKPPixCreatorSuite, kPrSDKPPixCreatorSuiteVersion},
    {kPrSDKPPixCacheSuite, kPrSDKPPixCacheSuiteVersion8},
    {kPrSDKPPixSuite, kPrSDKPPixSuiteVersion},
    {kPrSDKTimeSuite, kPrSDKTimeSuiteVersion},
    {kPrSDKAppInfoSuite, kPrSDKAppInfoSuiteVersion},
    {kPrSDKApplicationSettingsSuite, kPrSDKApplicationSettingsSuiteVersion},
    {kPrSDKErrorSuite, kPrSDKErrorSuiteVersion3},
};

}  // namespace

int TWI_PrivateData_Lock(imStdParms* stdParms, char** handle, TWI_PrivateData** out) {
    PlugMemoryFuncs* memory = memoryFuncsOf(stdParms);
    if (!memory) return 0;
    const csSDK_int32 size = memory->getHandleSize(handle);
    if (size != static_cast<csSDK_int32>(sizeof(TWI_PrivateData))) {
        QV_LOG(QV_LOG_ERR, "Private Data Wrong Size ! " << size);
        throw std::runtime_error("Wrong PrivateData Size !");
    }
    memory->lockHandle(handle);
    *out = reinterpret_cast<TWI_PrivateData*>(*handle);
    return 0;
}

int TWI_PrivateData_Unlock(imStdParms* stdParms, TWI_PrivateData** handle) {
    PlugMemoryFuncs* memory = memoryFuncsOf(stdParms);
    if (memory) memory->unlockHandle(reinterpret_cast<PrMemoryHandle>(handle));
    return 0;
}

int TWI_PrivateData_LockExecute(imStdParms* stdParms, char** handle,
                                const std::function<int(TWI_PrivateData*)>& fn) {
    TWI_PrivateData* privateData = nullptr;
    TWI_PrivateData_Lock(stdParms, handle, &privateData);
    int result = 0;
    try {
        result = fn(privateData);
    } catch (...) {
        QV_LOG(QV_LOG_ERR, "Function failed in Private Data Locking Scope !");
        TWI_PrivateData_Unlock(stdParms, reinterpret_cast<TWI_PrivateData**>(handle));
        throw;
    }
    TWI_PrivateData_Unlock(stdParms, reinterpret_cast<TWI_PrivateData**>(handle));
    return result;
}

int TWI_PrivateData_AcquireSuites(imStdParms* stdParms, TWI_PrivateData* privateData) {
    privateData->memFuncs = memoryFuncsOf(stdParms);
    SPBasicSuite* basic = TWI_GetBasicSuite(stdParms);
    privateData->basicSuite = basic;
    if (!basic) {
        const qvUtf8String text("getSPBasicSuite returned nullptr : weird !");
        QV_LOG(QV_LOG_ERR, text);
        displayMsgToTheUser(stdParms, kGetInfosError, text, 3, true);
        return malUnknownError;
    }

    for (const SuiteSlot& slot : kAcquiredSuites) {
        const void** field = slot.field(privateData);
        *field = nullptr;
        const SPErr error = basic->AcquireSuite(slot.name, slot.version, field);
        if (error != kSPNoError || !*field) {
            const qvUtf8String text(std::wstring(L"Impossible to get \"") + qvUtf8String(slot.name).ToWstring() + L"\"");
            QV_LOG(QV_LOG_ERR, text);
            displayMsgToTheUser(stdParms, kGetInfosError, text, 3, true);
            return suiteError_Fail;
        }
    }

    privateData->ticksPerSecond = 0;
    const prSuiteError code = privateData->timeSuite->GetTicksPerSecond(&privateData->ticksPerSecond);
    if (code != suiteError_NoError || privateData->ticksPerSecond == 0) {
        QV_LOG(QV_LOG_ERR, "Impossible to get TicksPerSeconds from TimeSuite or 0. Code : " << code);
        displayMsgToTheUser(stdParms, kGetInfosError, "Impossible to get TicksPerSeconds from TimeSuite", 3, true);
        // A zero tick rate with a successful call gives 0 here: frame numbers
        // then come out as -1 later, which is where it shows.
        return code;
    }
    QV_LOG(QV_LOG_INFO, "Ticks Per seconds : " << privateData->ticksPerSecond);
    return 0;
}

void TWI_PrivateData_Release(imStdParms*, TWI_PrivateData* privateData) {
    if (!privateData || !privateData->basicSuite) return;
    for (const ReleasedSuite& suite : kReleasedSuites) privateData->basicSuite->ReleaseSuite(suite.name, suite.version);
    delete privateData->filepath;
    privateData->filepath = nullptr;
    delete privateData->timecode;
    privateData->timecode = nullptr;
}
