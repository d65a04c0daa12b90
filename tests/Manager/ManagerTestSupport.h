#pragma once
// What the decoder core's tests share: reference decoder installs laid out in a
// temporary system root, the library's live-object report, a log to read back,
// clips opened the way the registry opens them, and requests for the queue.

#include "LogTestSupport.h"
#include "TempFolder.h"

#include "Manager/Clip.h"
#include "Manager/Instance.h"
#include "Manager/Manager.h"
#include "Manager/Request.h"
#include "Format/RefClipModel.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace twtest {

// Codec-level facts offering three pipelines: a CPU with three devices of
// different instruction sets (AVX, SSE41, AVX2 in that order), a CUDA device
// and an OpenCL device, each GPU with its own context and command queue.
extern const char kSeveralPipelinesFacts[];

// kSeveralPipelinesFacts with these codec-level faults (a JSON array).
std::string factsWithFaults(const std::string& faults);

// The version text of a codec made by `factory`, which is then released.
std::string codecVersion(IBlackmagicRawFactory* factory);

// Copies the decoder library built in this tree into `folder` (made when
// missing) as libBlackmagicRawAPI.so, at the size the instance accepts plus
// `extraBytes`, with `facts` beside it when not empty. The folder with "/".
std::string installDecoder(const std::string& folder, int64_t extraBytes = 0, const std::string& facts = "");
// Rewrites the facts file of an install.
void writeFacts(const std::string& folder, const std::string& facts);

// Objects the loaded reference decoder still holds (0 when none is loaded),
// and their list.
uint64_t decoderLiveObjects();
std::string decoderLiveReport();
#define EXPECT_DECODER_CLEAN() EXPECT_EQ(twtest::decoderLiveObjects(), 0u) << twtest::decoderLiveReport()

// A small reference clip written at folder/name.
std::string writeSmallClip(const TempFolder& folder, const std::string& name);

// Opens a clip through the registry, which must give it the number `id`.
std::shared_ptr<qvBRAW_Clip> addClip(qvBRAW_Manager& manager, const std::string& path, uint64_t id);

// A request that counts its cancellations.
class TestRequest : public qvBRAW_Request {
public:
    TestRequest(uint64_t queueID, uint64_t clipID, uint64_t frame, bool finished);
    void OnCancelled() override { ++m_onCancelledCount; }
    int m_onCancelledCount = 0;
};

// A request that converts into its output buffer once processed, as the
// host's request does, and counts its cancellations.
class FlowRequest : public qvBRAW_Request {
public:
    FlowRequest() : qvBRAW_Request(true, nullptr) {}
    int32_t BeginProcessing() override {
        const int32_t result = qvBRAW_Request::BeginProcessing();
        return result != 0 ? result : LaunchHeavyProcessing();
    }
    void OnCancelled() override { ++m_onCancelledCount; }
    int m_onCancelledCount = 0;
};

// A host frame: its bytes, and the address and stride a request writes through
// (a negative stride addresses the frame from its last row).
struct TestFrame {
    TestFrame(uint32_t width, uint32_t height, uint32_t bytesPerPixel, int32_t rowBytes, uint8_t fill = 0xAB);
    void* address() { return rowBytes < 0 ? bytes.data() + (height - 1) * static_cast<size_t>(-rowBytes) : bytes.data(); }
    bool untouched() const;

    uint32_t width;
    uint32_t height;
    int32_t rowBytes;
    uint8_t fill;
    std::vector<uint8_t> bytes;
};

// A request for the whole of `frame` of the clip at its full size, prepared the
// way the host's request is: scale, CPU buffers of the manager, output
// buffer, the clip's own settings.
std::shared_ptr<FlowRequest> makeFlowRequest(qvBRAW_Manager& manager, const std::shared_ptr<qvBRAW_Clip>& clip,
                                             uint64_t frame, QV_PIXEL_FORMAT format, TestFrame& output,
                                             uint64_t queueID = 1);

// Holds the threads that wait on it until it is opened; says when one is held.
class Gate {
public:
    void wait();
    void waitUntilHeld();
    void open();

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_waiting = false;
    bool m_open = false;
};

// Installs the reference decoder's stage hook for the life of the object.
class ScopedStageHook {
public:
    using Hook = std::function<void(const std::string& stage, uint64_t frame, qvBRAW_Request* request)>;
    explicit ScopedStageHook(Hook hook);
    ~ScopedStageHook();
    ScopedStageHook(const ScopedStageHook&) = delete;
    ScopedStageHook& operator=(const ScopedStageHook&) = delete;

private:
    static void call(const char* stage, uint64_t frame, void* userData, void* context);
    Hook m_hook;
};

// Test roots, the product's configuration and a log at INFO in the test home.
class DecoderTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    std::string logText() const;
    // Messages of the log lines at `level` ("INFO", "ERR"...), in order.
    std::vector<std::string> messages(const std::string& level) const;
    bool logged(const std::string& level, const std::string& message) const;

    // <temp>/plugin/ and the product's fixed install folder under the test root.
    std::string pluginFolder() const;
    static std::string fixedFolder();

    ScopedTestRoots m_roots;
};

// A manager started on the reference decoder in the fixed folder, flipping
// clips as the importer asks it to. The decoder must hold nothing once the
// manager is gone.
class ManagerTest : public DecoderTest {
protected:
    void SetUp() override;
    void TearDown() override;
    // Codec-level facts of the install (none by default).
    virtual std::string installFacts() const { return std::string(); }

    // Writes `model` at <temp>/name; its path.
    std::string writeClip(const std::string& name, const twref::RefClipModel& model) const;
    // A small clip (64x36, 24 fps, 4 frames) to change before writing.
    static twref::RefClipModel smallModel();

    std::string m_install;
    std::unique_ptr<qvBRAW_Manager> m_manager;
};

}  // namespace twtest
