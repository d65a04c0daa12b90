#pragma once
// The simulated MediaCore host.
//
// One twSimHost exists at a time in a process: the plug-in reaches the host
// through plain C function tables with no context argument, so the tables find
// "the" host. Typical use in a test:
//
//     twSimHostConfig config;
//     config.identity = twSimIdentity::MediaEncoder();
//     twSimHost host(config);
//     host.loadPlugin(path);               // dlopen + xImportEntry (+ test roots hook)
//     ASSERT_EQ(host.init(), imNoErr);     // imInit
//     auto file = host.importFile(clip);   // imOpenFile8, then imGetInfo8
//     auto frame = file->getSourceVideo(file->frameRequest(0, 1920, 1080, PrPixelFormat_BGRA_4444_8u));
//     ...
//     file->close();                       // imCloseFile
//     host.shutdown();                     // imShutdown
//     EXPECT_TRUE(host.leakReport().clean()) << host.leakReport().toString();

#include "twSimDiagnostics.h"
#include "twSimEvents.h"
#include "twSimFileRegistry.h"
#include "twSimFrameCache.h"
#include "twSimFrames.h"
#include "twSimIdentity.h"
#include "twSimLeakReport.h"
#include "twSimMemory.h"
#include "twSimPlugin.h"
#include "twSimStrings.h"
#include "twSimSuites.h"

#include "MediaCoreSDK.h"

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <vector>

class twSimFile;

// Failures a test can switch on in the host's own suites.
enum class twSimFault {
    AppInfoFourCC,    // GetAppInfo(kAppInfo_AppFourCC) fails
    AppInfoVersion,   // GetAppInfo(kAppInfo_Version) fails
    TicksPerSecond,   // GetTicksPerSecond fails
    FaultCount
};

struct twSimHostConfig {
    twSimIdentity identity;
    // The host's time base. No constant is published; this is the rate hosts
    // of this family use, which every common frame and sample rate divides.
    PrTime ticksPerSecond = 254016000000LL;
    twSimFrameLayout frameLayout;
    // Handed to the plug-in's twSetTestRoots hook right after loading, when set.
    bool useTestRoots = false;
    std::string testHome;
    std::string testSystemRoot;
    // Application Settings suite: without a project both calls answer
    // suiteError_InvalidCall, as in a helper process.
    std::string projectPath;
    std::string scratchFolder;
    // The colour space ID the host passes with frame requests.
    PrSDKColorSpaceID workingColorSpace = {{0x74775F776F726BLL, 0x0709}};
    // The plug-in ID the host gives the importer in its file records.
    csSDK_int32 pluginID = 7;
    bool unloadPluginAtEnd = false;
};

struct twSimFormat {
    csSDK_int32 filetype = 0;
    csSDK_int32 flags = 0;
    std::string name;
    std::string shortName;
    std::vector<std::string> extensions;
};

struct twSimCallRecord {
    bool async = false;
    int selector = 0;
    csSDK_int32 result = 0;
};

class twSimHost {
public:
    explicit twSimHost(const twSimHostConfig& config = twSimHostConfig());
    ~twSimHost();
    twSimHost(const twSimHost&) = delete;
    twSimHost& operator=(const twSimHost&) = delete;

    // ---- the plug-in ----
    // Throws std::runtime_error when the module can't be loaded, or when test
    // roots are configured and the plug-in has no hook to take them.
    void loadPlugin(const std::string& path);
    bool hasPlugin() const { return m_plugin != nullptr; }
    const twSimPlugin& plugin() const;

    imStdParms* stdParms();
    // One selector through xImportEntry, recorded in the call log. An exception
    // escaping the plug-in is caught, reported as misuse, and gives 99.
    csSDK_int32 call(csSDK_int32 selector, void* param1, void* param2);
    csSDK_int32 callAsync(AsyncImporterEntry entry, int selector, void* param);

    // ---- life cycle ----
    csSDK_int32 init();
    bool initialized() const { return m_initialized; }
    const imImportInfoRec& importInfo() const { return m_importInfo; }
    csSDK_int32 shutdown();

    // ---- catalogue ----
    // imGetIndFormat / imGetIndPixelFormat from index 0 until the plug-in stops;
    // the result that ended the enumeration goes to *endResult. The formats are
    // kept: importFile() picks a file's type from them.
    std::vector<twSimFormat> formats(csSDK_int32* endResult = nullptr);
    std::vector<PrPixelFormat> pixelFormats(csSDK_int32* endResult = nullptr);
    // imGetSubTypeNames: the importer allocates the array with newPtr and the
    // host reads and frees it.
    std::vector<std::pair<csSDK_int32, std::string>> subTypeNames(csSDK_int32 fileType,
                                                                  csSDK_int32* result = nullptr);

    // ---- files ----
    // The host's order for an importer that opens its own files: the format
    // catalogue if the host doesn't know it yet (the file type is the format
    // whose extension the file has), imOpenFile8, then imGetInfo8. The file is
    // returned whatever the results (see its openResult() and infoResult()).
    std::unique_ptr<twSimFile> importFile(const std::string& path);

    // ---- services ----
    twSimMemory& memory() { return m_memory; }
    twSimStrings& strings() { return m_strings; }
    twSimFrames& frames() { return m_frames; }
    twSimFrameCache& cache() { return m_cache; }
    twSimSuites& suites() { return m_suites; }
    twSimEvents& events() { return m_events; }
    twSimFileRegistry& registrations() { return m_registrations; }
    twSimDiagnostics& diagnostics() { return m_diagnostics; }
    const twSimHostConfig& config() const { return m_config; }

    void setFault(twSimFault fault, bool on);
    bool fault(twSimFault fault) const;

    csSDK_int32 newImporterID();
    std::vector<twSimCallRecord> callLog() const;
    // The selectors of xImportEntry in call order.
    std::vector<int> selectorsCalled() const;

    twSimLeakReport leakReport() const;

    // Class data of the imCallbackFuncs table.
    int setClassData(unsigned int theClass, void* info);
    void* getClassData(unsigned int theClass) const;

private:
    void record(bool async, int selector, csSDK_int32 result);

    twSimHostConfig m_config;
    twSimDiagnostics m_diagnostics;
    twSimMemory m_memory;
    twSimStrings m_strings;
    twSimFrames m_frames;
    twSimFrameCache m_cache;
    twSimSuites m_suites;
    twSimEvents m_events;
    twSimFileRegistry m_registrations;
    std::unique_ptr<twSimPlugin> m_plugin;
    std::vector<twSimFormat> m_catalogue;
    bool m_haveCatalogue = false;
    imImportInfoRec m_importInfo{};
    prUTF16Char m_acceleratorExt[256] = {};
    bool m_initialized = false;
    bool m_shutDown = false;
    std::atomic<bool> m_faults[static_cast<int>(twSimFault::FaultCount)] = {};
    std::atomic<csSDK_int32> m_nextImporterID{1};
    mutable std::mutex m_logMutex;
    std::vector<twSimCallRecord> m_log;
    mutable std::mutex m_classMutex;
    std::map<unsigned int, void*> m_classData;
};

// Gives the C entry points the host that is alive, and keeps it alive for the
// duration of one call. False when no host exists (a plug-in thread calling
// after its host went away gets an error instead of freed memory).
class twSimHostAccess {
public:
    twSimHostAccess();
    explicit operator bool() const { return m_host != nullptr; }
    twSimHost* operator->() const { return m_host; }
    twSimHost& operator*() const { return *m_host; }

private:
    std::shared_lock<std::shared_mutex> m_lock;
    twSimHost* m_host;
};

// The static tables handed to plug-ins (defined with the C entry points).
imStdParms* twSimStdParms();
void twSimRegisterSuites(twSimSuites& suites);
