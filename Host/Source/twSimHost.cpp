#include "twSimHost.h"

#include "twSimFile.h"
#include "twSimText.h"

#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace {

// Leaked on purpose: plug-in threads and static destructors may still reach
// for the host while the process exits.
std::shared_mutex& Lifetime() {
    static auto* mutex = new std::shared_mutex();
    return *mutex;
}

twSimHost* g_current = nullptr;

void* IndexParam(int index) { return reinterpret_cast<void*>(static_cast<intptr_t>(index)); }

}  // namespace

twSimHostAccess::twSimHostAccess() : m_lock(Lifetime()), m_host(g_current) {}

twSimHost::twSimHost(const twSimHostConfig& config)
    : m_config(config),
      m_memory(m_diagnostics),
      m_strings(m_diagnostics),
      m_frames(m_diagnostics),
      m_cache(m_frames, m_strings, m_diagnostics),
      m_suites(m_diagnostics) {
    m_frames.setLayout(config.frameLayout);
    twSimRegisterSuites(m_suites);
    std::unique_lock<std::shared_mutex> lock(Lifetime());
    if (g_current) throw std::logic_error("only one simulated host may exist at a time");
    twSimStdParms()->imInterfaceVer = config.identity.interfaceVersion;
    g_current = this;
}

twSimHost::~twSimHost() {
    if (m_initialized && !m_shutDown) shutdown();
    std::unique_lock<std::shared_mutex> lock(Lifetime());
    g_current = nullptr;
}

void twSimHost::loadPlugin(const std::string& path) {
    if (m_plugin) throw std::logic_error("a plug-in is already loaded");
    std::string error;
    auto plugin = twSimPlugin::Load(path, error);
    if (!plugin) throw std::runtime_error(error);
    plugin->setUnloadOnDestroy(m_config.unloadPluginAtEnd);
    if (m_config.useTestRoots && !plugin->setTestRoots(m_config.testHome, m_config.testSystemRoot))
        throw std::runtime_error(path + " has no twSetTestRoots hook: its home folder can't be redirected");
    m_plugin = std::move(plugin);
}

const twSimPlugin& twSimHost::plugin() const {
    if (!m_plugin) throw std::logic_error("no plug-in loaded");
    return *m_plugin;
}

imStdParms* twSimHost::stdParms() { return twSimStdParms(); }

void twSimHost::record(bool async, int selector, csSDK_int32 result) {
    std::lock_guard<std::mutex> lock(m_logMutex);
    m_log.push_back({async, selector, result});
}

csSDK_int32 twSimHost::call(csSDK_int32 selector, void* param1, void* param2) {
    if (!m_plugin) throw std::logic_error("no plug-in loaded");
    csSDK_int32 result = malUnknownError;
    try {
        result = m_plugin->entry()(selector, twSimStdParms(), param1, param2);
    } catch (const std::exception& e) {
        m_diagnostics.add(twSimIssue::ExceptionEscaped, "selector " + std::to_string(selector) + ": " + e.what());
    } catch (...) {
        m_diagnostics.add(twSimIssue::ExceptionEscaped, "selector " + std::to_string(selector));
    }
    record(false, selector, result);
    return result;
}

csSDK_int32 twSimHost::callAsync(AsyncImporterEntry entry, int selector, void* param) {
    csSDK_int32 result = aiUnknownError;
    try {
        result = entry(selector, param);
    } catch (const std::exception& e) {
        m_diagnostics.add(twSimIssue::ExceptionEscaped, "async selector " + std::to_string(selector) + ": " + e.what());
    } catch (...) {
        m_diagnostics.add(twSimIssue::ExceptionEscaped, "async selector " + std::to_string(selector));
    }
    record(true, selector, result);
    return result;
}

csSDK_int32 twSimHost::init() {
    std::memset(&m_importInfo, 0, sizeof(m_importInfo));
    std::memset(m_acceleratorExt, 0, sizeof(m_acceleratorExt));
    m_importInfo.acceleratorFileExt = m_acceleratorExt;
    const csSDK_int32 result = call(imInit, &m_importInfo, nullptr);
    m_initialized = result == imNoErr || result == imIsCacheable;
    m_shutDown = false;
    return result;
}

csSDK_int32 twSimHost::shutdown() {
    if (!m_plugin || m_shutDown) return imNoErr;
    const csSDK_int32 result = call(imShutdown, nullptr, nullptr);
    m_shutDown = true;
    m_initialized = false;
    return result;
}

std::vector<twSimFormat> twSimHost::formats(csSDK_int32* endResult) {
    std::vector<twSimFormat> out;
    csSDK_int32 result = imBadFormatIndex;
    for (int index = 0; index < 64; ++index) {
        imIndFormatRec rec;
        std::memset(&rec, 0, sizeof(rec));
        result = call(imGetIndFormat, IndexParam(index), &rec);
        if (result != imNoErr) break;
        twSimFormat f;
        f.filetype = rec.filetype;
        f.flags = rec.flags;
        f.name.assign(rec.FormatName, strnlen(rec.FormatName, sizeof(rec.FormatName)));
        f.shortName.assign(rec.FormatShortName, strnlen(rec.FormatShortName, sizeof(rec.FormatShortName)));
        size_t pos = 0;
        while (pos < sizeof(rec.PlatformExtension) && rec.PlatformExtension[pos] != 0) {
            const size_t len = strnlen(rec.PlatformExtension + pos, sizeof(rec.PlatformExtension) - pos);
            f.extensions.emplace_back(rec.PlatformExtension + pos, len);
            pos += len + 1;
        }
        out.push_back(f);
    }
    if (endResult) *endResult = result;
    m_catalogue = out;
    m_haveCatalogue = true;
    return out;
}

std::vector<PrPixelFormat> twSimHost::pixelFormats(csSDK_int32* endResult) {
    std::vector<PrPixelFormat> out;
    csSDK_int32 result = imBadFormatIndex;
    for (int index = 0; index < 64; ++index) {
        imIndPixelFormatRec rec;
        std::memset(&rec, 0, sizeof(rec));
        result = call(imGetIndPixelFormat, IndexParam(index), &rec);
        if (result != imNoErr) {
            // Not answering at all means the one default format.
            if (index == 0 && result == imUnsupported) out.push_back(PrPixelFormat_BGRA_4444_8u);
            break;
        }
        out.push_back(rec.outPixelFormat);
    }
    if (endResult) *endResult = result;
    return out;
}

std::vector<std::pair<csSDK_int32, std::string>> twSimHost::subTypeNames(csSDK_int32 fileType, csSDK_int32* result) {
    std::vector<std::pair<csSDK_int32, std::string>> out;
    imSubTypeDescriptionRec* names = nullptr;
    const csSDK_int32 r = call(imGetSubTypeNames, reinterpret_cast<void*>(static_cast<intptr_t>(fileType)), &names);
    if (result) *result = r;
    char* block = reinterpret_cast<char*>(names);
    if (block && m_memory.isLivePtr(block)) {
        const size_t count = static_cast<size_t>(m_memory.getPtrSize(block)) / sizeof(imSubTypeDescriptionRec);
        for (size_t i = 0; i < count; ++i) {
            csSDK_int32 subType = 0;
            std::memcpy(&subType, block + i * sizeof(imSubTypeDescriptionRec), sizeof(subType));
            out.emplace_back(subType, twSimText::Utf16ToUtf8(block + i * sizeof(imSubTypeDescriptionRec) + 4, 256));
        }
        m_memory.disposePtr(block);
    }
    return out;
}

std::unique_ptr<twSimFile> twSimHost::importFile(const std::string& path) {
    if (!m_haveCatalogue) formats();
    auto file = std::make_unique<twSimFile>(*this, path);
    const size_t dot = path.rfind('.');
    const std::string extension = dot == std::string::npos ? std::string() : path.substr(dot + 1);
    for (const auto& f : m_catalogue)
        for (const auto& e : f.extensions)
            if (e == extension && file->fileType() == 0) file->setFileType(f.filetype);
    if (file->fileType() == 0 && !m_catalogue.empty()) file->setFileType(m_catalogue.front().filetype);
    if (file->open() == imNoErr) file->getInfo();
    return file;
}

void twSimHost::setFault(twSimFault fault, bool on) { m_faults[static_cast<int>(fault)] = on; }

bool twSimHost::fault(twSimFault fault) const { return m_faults[static_cast<int>(fault)]; }

csSDK_int32 twSimHost::newImporterID() { return m_nextImporterID++; }

std::vector<twSimCallRecord> twSimHost::callLog() const {
    std::lock_guard<std::mutex> lock(m_logMutex);
    return m_log;
}

std::vector<int> twSimHost::selectorsCalled() const {
    std::lock_guard<std::mutex> lock(m_logMutex);
    std::vector<int> out;
    for (const auto& r : m_log)
        if (!r.async) out.push_back(r.selector);
    return out;
}

twSimLeakReport twSimHost::leakReport() const {
    m_frames.checkAllGuards();
    twSimLeakReport r;
    r.pointers = m_memory.leakedPointers();
    r.handles = m_memory.leakedHandles();
    r.lockedHandles = m_memory.lockedHandles();
    r.blocks = m_memory.leakedBlocks();
    r.strings = m_strings.leaked();
    r.frames = m_frames.undisposed();
    r.suites = m_suites.unreleased();
    r.dependencies = m_cache.unreleasedDependencies();
    for (const auto& d : m_diagnostics.misuse()) r.misuse.push_back(std::string(twSimIssueName(d.issue)) + ": " + d.detail);
    return r;
}

int twSimHost::setClassData(unsigned int theClass, void* info) {
    std::lock_guard<std::mutex> lock(m_classMutex);
    m_classData[theClass] = info;
    return 0;
}

void* twSimHost::getClassData(unsigned int theClass) const {
    std::lock_guard<std::mutex> lock(m_classMutex);
    auto it = m_classData.find(theClass);
    return it == m_classData.end() ? nullptr : it->second;
}
