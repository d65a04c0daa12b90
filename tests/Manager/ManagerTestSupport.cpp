#include "ManagerTestSupport.h"

#include "ProductConfig.h"
#include "Library/RefDecoderDebug.h"
#include "Manager/twBufferManager.h"
#include "Utils/qvLogging.h"
#include "Writer/RefClipWriter.h"

#include <dlfcn.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace twtest {

const char kSeveralPipelinesFacts[] = R"({
  "version": "5.0.0 test", "camera_support_version": "5.0 test cameras",
  "cpu_threads": 3, "max_cpu_thread_count": 12, "write_metadata_per_frame": true,
  "pipelines": [
    {"pipeline": "cpub", "devices": [
      {"name": "CPU A", "index": 0, "instruction_set": "avx_"},
      {"name": "CPU B", "index": 1, "instruction_set": "se41"},
      {"name": "CPU C", "index": 2, "instruction_set": "avx2"}]},
    {"pipeline": "cuda", "devices": [
      {"name": "GPU 0", "index": 0, "instruction_set": "se41", "context": 11, "command_queue": 12}]},
    {"pipeline": "opcl", "devices": [
      {"name": "OCL 0", "index": 0, "instruction_set": "avx2", "context": 21, "command_queue": 22}]}
  ]
})";

namespace {

int64_t fileSize(const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0 ? static_cast<int64_t>(info.st_size) : -1;
}

// The library is loaded into the process's global scope, so its debug entry is
// found without its handle.
TwRefDecoderLiveObjectsFunc liveObjectsFunction() {
    return reinterpret_cast<TwRefDecoderLiveObjectsFunc>(dlsym(RTLD_DEFAULT, TW_REF_DECODER_LIVE_OBJECTS_SYMBOL));
}

}  // namespace

std::string factsWithFaults(const std::string& faults) {
    std::string facts = kSeveralPipelinesFacts;
    facts.insert(facts.rfind('}'), ", \"faults\": " + faults);
    return facts;
}

std::string codecVersion(IBlackmagicRawFactory* factory) {
    if (!factory) return "<no factory>";
    std::string text = "<no version>";
    IBlackmagicRaw* codec = nullptr;
    if (SUCCEEDED(factory->CreateCodec(&codec)) && codec) {
        IBlackmagicRawConfiguration* configuration = nullptr;
        if (SUCCEEDED(
                codec->QueryInterface(IID_IBlackmagicRawConfiguration, reinterpret_cast<LPVOID*>(&configuration)))) {
            const char* version = nullptr;
            if (SUCCEEDED(configuration->GetVersion(&version)) && version) text = version;
            configuration->Release();
        }
        codec->Release();
    }
    factory->Release();
    return text;
}

std::string installDecoder(const std::string& folder, int64_t extraBytes, const std::string& facts) {
    std::filesystem::create_directories(folder);
    const std::string target = folder + "/libBlackmagicRawAPI.so";
    {
        std::ifstream in(TW_REF_DECODER_LIBRARY, std::ios::binary);
        std::ofstream out(target, std::ios::binary | std::ios::trunc);
        out << in.rdbuf();
    }
    const int64_t wanted = qvBRAW_Instance::expectedLibrarySize() + extraBytes;
    const int64_t built = fileSize(target);
    if (wanted < built) throw std::runtime_error("the accepted decoder size is below the size of the built one");
    // Bytes behind the last section change nothing of what the loader maps.
    std::ofstream(target, std::ios::binary | std::ios::app) << std::string(static_cast<size_t>(wanted - built), '\0');
    if (!facts.empty()) writeFacts(folder, facts);
    return folder.back() == '/' ? folder : folder + "/";
}

void writeFacts(const std::string& folder, const std::string& facts) {
    std::ofstream(folder + "/libBlackmagicRawAPI.json", std::ios::binary | std::ios::trunc) << facts;
}

uint64_t decoderLiveObjects() {
    const TwRefDecoderLiveObjectsFunc live = liveObjectsFunction();
    return live ? live(nullptr, 0) : 0;
}

std::string decoderLiveReport() {
    const TwRefDecoderLiveObjectsFunc live = liveObjectsFunction();
    if (!live) return std::string();
    std::vector<char> text(1 << 16);
    live(text.data(), static_cast<uint32_t>(text.size()));
    return text.data();
}

std::string writeSmallClip(const TempFolder& folder, const std::string& name) {
    const std::string path = folder.join(name);
    std::string error;
    if (!twref::RefClipWriter::write(path, twref::RefClipWriter::makeClip(64, 36, 24.0f, 4), &error)) {
        throw std::runtime_error(error);
    }
    return path;
}

std::shared_ptr<qvBRAW_Clip> addClip(qvBRAW_Manager& manager, const std::string& path, uint64_t id) {
    uint64_t added = UINT64_MAX;
    if (manager.AddClip(path, added) != 0 || added != id) return nullptr;
    return manager.GetClip(id);
}

TestRequest::TestRequest(uint64_t queueID, uint64_t clipID, uint64_t frame, bool finished)
    : qvBRAW_Request(true, nullptr) {
    m_queueID = queueID;
    m_clipID = clipID;
    m_frame = frame;
    m_finished = finished;
}

TestFrame::TestFrame(uint32_t inWidth, uint32_t inHeight, uint32_t bytesPerPixel, int32_t inRowBytes, uint8_t inFill)
    : width(inWidth), height(inHeight), rowBytes(inRowBytes), fill(inFill) {
    const size_t stride = static_cast<size_t>(inRowBytes < 0 ? -inRowBytes : inRowBytes);
    bytes.assign(std::max(stride, static_cast<size_t>(inWidth) * bytesPerPixel) * inHeight, inFill);
}

bool TestFrame::untouched() const {
    for (uint8_t byte : bytes) {
        if (byte != fill) return false;
    }
    return true;
}

std::shared_ptr<FlowRequest> makeFlowRequest(qvBRAW_Manager& manager, const std::shared_ptr<qvBRAW_Clip>& clip,
                                             uint64_t frame, QV_PIXEL_FORMAT format, TestFrame& output,
                                             uint64_t queueID) {
    auto request = std::make_shared<FlowRequest>();
    request->m_queueID = queueID;
    const QvResult scaled = request->setScaleAndDimensions(clip, output.width, output.height, false);
    if (scaled.hasError) throw std::runtime_error(scaled.toString().Str());
    auto* buffers = new twBufferManager(manager.m_resourceManager, manager.m_manualDecoderFlow1,
                                        manager.m_manualDecoderFlow2, blackmagicRawResourceTypeBufferCPU, true,
                                        nullptr, nullptr);
    request->setup(QV_APP_ENUM::QV_APP_PPRO, frame, clip->m_frameCount, clip->m_ID, output.address(),
                   output.rowBytes, format, buffers, false, clip->m_path, clip);
    request->setClipAndtwFrameAttributesFromPrefs(nullptr, clip, true);
    return request;
}

void Gate::wait() {
    std::unique_lock<std::mutex> lock(m_mutex);
    m_waiting = true;
    m_changed.notify_all();
    m_changed.wait(lock, [this] { return m_open; });
}

void Gate::waitUntilHeld() {
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait(lock, [this] { return m_waiting; });
}

void Gate::open() {
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_open = true;
    }
    m_changed.notify_all();
}

ScopedStageHook::ScopedStageHook(Hook hook) : m_hook(std::move(hook)) {
    auto set = reinterpret_cast<TwRefDecoderSetStageHookFunc>(dlsym(RTLD_DEFAULT, TW_REF_DECODER_SET_STAGE_HOOK_SYMBOL));
    if (!set) throw std::runtime_error("the reference decoder's stage hook is not there");
    set(&ScopedStageHook::call, this);
}

ScopedStageHook::~ScopedStageHook() {
    auto set = reinterpret_cast<TwRefDecoderSetStageHookFunc>(dlsym(RTLD_DEFAULT, TW_REF_DECODER_SET_STAGE_HOOK_SYMBOL));
    if (set) set(nullptr, nullptr);
}

void ScopedStageHook::call(const char* stage, uint64_t frame, void* userData, void* context) {
    static_cast<ScopedStageHook*>(context)->m_hook(stage, frame, static_cast<qvBRAW_Request*>(userData));
}

void DecoderTest::SetUp() {
    UseProductConfig();
    const QvResult activated =
        g_logger.activateFileLogging(QV_LOG_INFO, "Tarnwick_Importer_Premiere Pro.log", QV_APP_ENUM::QV_APP_PPRO,
                                     qvUtf8String("25.0"), QvLogZipCollector(), true);
    ASSERT_FALSE(activated.hasError) << activated.toString().Str();
}

void DecoderTest::TearDown() { g_logger.desactivateFileLogging(); }

std::string DecoderTest::logText() const {
    return TempFolder::readFile(
        m_roots.home() + "/Library/Application Support/Qervane/Tarnwick/Logs/Tarnwick_Importer_Premiere Pro.log");
}

std::vector<std::string> DecoderTest::messages(const std::string& level) const {
    std::vector<std::string> out;
    for (const std::string& line : SplitLines(logText())) {
        LogLine parsed;
        if (ParseLogLine(line, parsed) && parsed.level == level) out.push_back(parsed.message);
    }
    return out;
}

bool DecoderTest::logged(const std::string& level, const std::string& message) const {
    for (const std::string& m : messages(level)) {
        if (m == message) return true;
    }
    return false;
}

std::string DecoderTest::pluginFolder() const { return m_roots.folder().join("plugin") + "/"; }

std::string DecoderTest::fixedFolder() { return qvBRAW_Instance::fixedLibraryFolder().Str(); }

void ManagerTest::SetUp() {
    DecoderTest::SetUp();
    m_install = installDecoder(fixedFolder(), 0, installFacts());
    auto* instance = new qvBRAW_Instance(QV_PLUGIN_IMPORTER);
    instance->init();
    m_manager = std::make_unique<qvBRAW_Manager>();
    ASSERT_EQ(m_manager->init(instance), 0) << m_manager->m_errorInfo.toString().Str();
    m_manager->m_flipVertical = true;
}

void ManagerTest::TearDown() {
    m_manager.reset();
    EXPECT_DECODER_CLEAN();
    DecoderTest::TearDown();
}

std::string ManagerTest::writeClip(const std::string& name, const twref::RefClipModel& model) const {
    const std::string path = m_roots.folder().join(name);
    std::string error;
    if (!twref::RefClipWriter::write(path, model, &error)) throw std::runtime_error(error);
    return path;
}

twref::RefClipModel ManagerTest::smallModel() { return twref::RefClipWriter::makeClip(64, 36, 24.0f, 4); }

}  // namespace twtest
