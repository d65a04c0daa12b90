// Requests decoded end to end through the queue, the job callbacks and the
// buffer manager against the reference decoder: the picture, direct fill, the
// failure of each stage with its code, cancellation before each stage, and the
// queue's look-ups on live requests.

#include "ManagerTestSupport.h"

#include "Manager/Callback.h"
#include "Manager/twBufferManager.h"
#include "Render/RefChart.h"
#include "Writer/RefClipWriter.h"

#include <algorithm>
#include <atomic>
#include <deque>
#include <thread>

namespace {

using twref::RefClipModel;
using twtest::FlowRequest;
using twtest::TestFrame;

constexpr uint32_t kWidth = 320;
constexpr uint32_t kHeight = 180;

class RequestFlow : public twtest::ManagerTest {
protected:
    static RefClipModel model() { return twref::RefClipWriter::makeClip(kWidth, kHeight, 24.0f, 6); }

    std::shared_ptr<qvBRAW_Clip> open(const RefClipModel& clipModel, const std::string& name = "clip.braw") {
        uint64_t id = 0;
        EXPECT_EQ(m_manager->AddClip(writeClip(name, clipModel), id), 0);
        return m_manager->GetClip(id);
    }

    // The frame index the chart shows in an 8-bit B G R A frame (green channel).
    static int64_t shownFrame(const TestFrame& frame) {
        const uint8_t* base = frame.rowBytes < 0
                                  ? frame.bytes.data() + (frame.height - 1) * static_cast<size_t>(-frame.rowBytes)
                                  : frame.bytes.data();
        uint64_t index = 0;
        const bool read = twref::RefChart::readFrameIndex(
            [&](float x, float y) {
                const uint32_t px = std::min(frame.width - 1, static_cast<uint32_t>(x * frame.width));
                const uint32_t py = std::min(frame.height - 1, static_cast<uint32_t>(y * frame.height));
                return base[static_cast<ptrdiff_t>(py) * frame.rowBytes + px * 4 + 1] / 255.0f;
            },
            true, false, index);
        return read ? static_cast<int64_t>(index) : -1;
    }

    std::deque<TestFrame> m_lastingFrames;
};

TEST_F(RequestFlow, TightWholeFrameIsFilledByTheLibraryDirectlyAndOtherLayoutsAreConverted) {
    std::shared_ptr<qvBRAW_Clip> clip = open(model());

    TestFrame tight(kWidth, kHeight, 4, kWidth * 4);
    auto direct = twtest::makeFlowRequest(*m_manager, clip, 3, QV_PIXEL_FORMAT_BGRA_8_LOW, tight);
    EXPECT_FALSE(direct->m_bufferManager->m_ownsProcessedBuffer);
    ASSERT_EQ(m_manager->ProcessFrameSync(direct), 0);
    EXPECT_EQ(direct->m_errorCode, 0) << direct->m_errorMsg.Str();
    EXPECT_TRUE(direct->m_finished);
    // The library's processed buffer is the host's frame: no pass ran.
    EXPECT_EQ(direct->m_bufferManager->m_processedBuffer, tight.address());
    EXPECT_EQ(direct->m_bufferManager->m_finalImageBuffer, tight.address());
    bool filledDirectly = false;
    for (const std::string& message : messages("INFO")) {
        if (message.find("Final Buffer has been filled by BMD directly !") != std::string::npos) filledDirectly = true;
    }
    EXPECT_TRUE(filledDirectly) << logText();
    EXPECT_EQ(shownFrame(tight), 3);

    // Padded rows, a stride from the last row, and a format the library can't
    // give as it is: each needs a pass of its own from a buffer of ours.
    TestFrame padded(kWidth, kHeight, 4, kWidth * 4 + 12);
    TestFrame upward(kWidth, kHeight, 4, -static_cast<int32_t>(kWidth * 4));
    TestFrame argb(kWidth, kHeight, 4, kWidth * 4);
    auto paddedRequest = twtest::makeFlowRequest(*m_manager, clip, 2, QV_PIXEL_FORMAT_BGRA_8_LOW, padded);
    auto upwardRequest = twtest::makeFlowRequest(*m_manager, clip, 1, QV_PIXEL_FORMAT_BGRA_8_LOW, upward);
    auto argbRequest = twtest::makeFlowRequest(*m_manager, clip, 1, QV_PIXEL_FORMAT_ARGB_8_UP, argb);
    for (auto* request : {paddedRequest.get(), upwardRequest.get(), argbRequest.get()}) {
        EXPECT_TRUE(request->m_bufferManager->m_ownsProcessedBuffer);
    }
    ASSERT_EQ(m_manager->ProcessFrameSync(paddedRequest), 0);
    ASSERT_EQ(m_manager->ProcessFrameSync(upwardRequest), 0);
    ASSERT_EQ(m_manager->ProcessFrameSync(argbRequest), 0);
    EXPECT_NE(paddedRequest->m_bufferManager->m_processedBuffer, padded.address());
    EXPECT_EQ(paddedRequest->m_bufferManager->m_finalImageBuffer, padded.address());
    EXPECT_EQ(shownFrame(padded), 2);
    EXPECT_EQ(shownFrame(upward), 1);
    EXPECT_FALSE(argb.untouched());
    EXPECT_EQ(m_manager->GetQueueSizeSafe(), 0u);
}

struct StageFault {
    const char* what;
    int code;
    const char* messageHead;
    void (*apply)(RefClipModel& model);
};

TEST_F(RequestFlow, EachFailingStageEndsTheRequestWithItsCodeAndLeavesTheFrameAlone) {
    const StageFault faults[] = {
        {"corrupted frame", 1, "(1) Frame seems to be corrupted",
         [](RefClipModel& m) { m.frameOverrideFor(2).corrupt = true; }},
        {"read job refused", 5, "(5) Impossible to Create Job Read Frame - ",
         [](RefClipModel& m) { m.addFault("ClipEx.CreateJobReadFrame", twref::RefResult::Fail); }},
        {"read job not submitted", 5, "(5) Failed to Submit Read Job",
         [](RefClipModel& m) { m.addFault("Job.Submit", twref::RefResult::Fail); }},
        {"read stage failed", 6, "(6) ReadComplete called with error code - ",
         [](RefClipModel& m) { m.addFault("stage.read", twref::RefResult::Fail); }},
        {"resource format refused", 7, "(7) Failed SetResourceFormat on Frame ! ",
         [](RefClipModel& m) { m.addFault("Frame.SetResourceFormat", twref::RefResult::Fail); }},
        {"resolution scale refused", 7, "(7) Failed SetResolutionScale on Frame ! ",
         [](RefClipModel& m) { m.addFault("Frame.SetResolutionScale", twref::RefResult::Fail); }},
        {"frame state refused", 7, "(7) Error populateFrameStateBuffer : Failed Populating FrameState Buffer ",
         [](RefClipModel& m) { m.addFault("ManualDecoderFlow1.PopulateFrameStateBuffer", twref::RefResult::Fail); }},
        {"decode job refused", 8, "(8) Error createDecodeJob : Failed Created Job Decode ",
         [](RefClipModel& m) { m.addFault("ManualDecoderFlow1.CreateJobDecode", twref::RefResult::Fail); }},
        {"decode job not submitted", 8, "(8) Impossible to submit DecodeJob ! ",
         [](RefClipModel& m) {
             twref::RefFault fault;
             fault.method = "Job.Submit";
             fault.skip = 1;
             m.faults.push_back(fault);
         }},
        {"process job refused", 10, "(10) Error CreateProcess Job : Failed Creating CPU Process Job",
         [](RefClipModel& m) { m.addFault("ManualDecoderFlow1.CreateJobProcess", twref::RefResult::Fail); }},
        {"process user data refused", 10, "(10) Impossible to Set UserData on processJob ! ",
         [](RefClipModel& m) {
             twref::RefFault fault;
             fault.method = "Job.SetUserData";
             fault.skip = 2;
             m.faults.push_back(fault);
         }},
        {"decode stage failed", 12, "(12) ProcessComplete called without image - ",
         [](RefClipModel& m) { m.addFault("stage.decode", twref::RefResult::Fail); }},
        {"process stage failed", 12, "(12) ProcessComplete called without image - ",
         [](RefClipModel& m) { m.addFault("stage.process", twref::RefResult::Fail); }},
        {"image width unreadable", 12, "(12) Failed GetWidth - ",
         [](RefClipModel& m) { m.addFault("ProcessedImage.GetWidth", twref::RefResult::Fail); }},
    };
    int index = 0;
    for (const StageFault& fault : faults) {
        SCOPED_TRACE(fault.what);
        RefClipModel clipModel = model();
        fault.apply(clipModel);
        std::shared_ptr<qvBRAW_Clip> clip = open(clipModel, "fault" + std::to_string(index++) + ".braw");
        ASSERT_TRUE(clip);
        TestFrame frame(kWidth, kHeight, 4, kWidth * 4 + 8);
        auto request = twtest::makeFlowRequest(*m_manager, clip, 2, QV_PIXEL_FORMAT_BGRA_8_LOW, frame);
        m_manager->ProcessFrameSync(request);
        EXPECT_TRUE(request->m_finished);
        EXPECT_EQ(request->m_errorCode, fault.code);
        EXPECT_EQ(request->m_errorMsg.Str().compare(0, strlen(fault.messageHead), fault.messageHead), 0)
            << request->m_errorMsg.Str();
        EXPECT_EQ(request->m_onCancelledCount, 1);
        EXPECT_TRUE(frame.untouched());
        // Collected like any other request: it leaves the queue when found.
        EXPECT_EQ(m_manager->GetQueueSizeSafe(), 0u);
    }
}

TEST_F(RequestFlow, SettingsRefusedBeforeQueueingEndTheRequestWithCode3AndNothingIsQueued) {
    RefClipModel refusing = model();
    refusing.addFault("Clip.CloneClipProcessingAttributes", twref::RefResult::Fail);
    std::shared_ptr<qvBRAW_Clip> clip = open(refusing);
    TestFrame frame(kWidth, kHeight, 4, kWidth * 4);
    auto request = twtest::makeFlowRequest(*m_manager, clip, 0, QV_PIXEL_FORMAT_BGRA_8_LOW, frame);
    EXPECT_EQ(request->m_errorCode, 3);
    EXPECT_EQ(request->m_errorMsg.Str().rfind("(3) Impossible to Clone Processing Attributes - ", 0), 0u);
    EXPECT_EQ(request->m_clipProcessingAttributes, nullptr);
    EXPECT_EQ(m_manager->ProcessFrameSync(request), 1);
    EXPECT_EQ(m_manager->GetQueueSizeSafe(), 0u);

    // A frame setting the library refuses, applied in the read stage.
    RefClipModel tintRefused = model();
    twref::RefFault fault;
    fault.method = "FrameProcessingAttributes.SetFrameAttribute";
    fault.attribute = blackmagicRawFrameProcessingAttributeWhiteBalanceTint;
    tintRefused.faults.push_back(fault);
    std::shared_ptr<qvBRAW_Clip> tintClip = open(tintRefused, "tint.braw");
    TestFrame tintFrame(kWidth, kHeight, 4, kWidth * 4 + 4);
    auto tintRequest = std::make_shared<FlowRequest>();
    tintRequest->m_queueID = 1;
    ASSERT_FALSE(tintRequest->setScaleAndDimensions(tintClip, kWidth, kHeight, false).hasError);
    tintRequest->setup(QV_APP_ENUM::QV_APP_PPRO, 1, tintClip->m_frameCount, tintClip->m_ID, tintFrame.address(),
                       tintFrame.rowBytes, QV_PIXEL_FORMAT_BGRA_8_LOW,
                       new twBufferManager(m_manager->m_resourceManager, m_manager->m_manualDecoderFlow1, nullptr,
                                           blackmagicRawResourceTypeBufferCPU, true, nullptr, nullptr),
                       false, tintClip->m_path, tintClip);
    twAttributes prefs;
    prefs.useClipAndFrameAttributes = true;
    tintRequest->setClipAndtwFrameAttributesFromPrefs(&prefs, tintClip, true);
    ASSERT_EQ(tintRequest->m_errorCode, 0) << tintRequest->m_errorMsg.Str();
    m_manager->ProcessFrameSync(tintRequest);
    EXPECT_EQ(tintRequest->m_errorCode, 3);
    EXPECT_EQ(tintRequest->m_errorMsg.Str().rfind("(3) Setting Tint Attribute failed : ", 0), 0u)
        << tintRequest->m_errorMsg.Str();
    EXPECT_TRUE(tintFrame.untouched());
}

TEST_F(RequestFlow, AReadOnlyFrameSettingIsPassedOverAndTheOthersStillApply) {
    RefClipModel readOnlyIso = model();
    readOnlyIso.frameAttribute(blackmagicRawFrameProcessingAttributeISO)->readOnly = true;
    std::shared_ptr<qvBRAW_Clip> clip = open(readOnlyIso);
    TestFrame neutral(kWidth, kHeight, 4, kWidth * 4);
    TestFrame warm(kWidth, kHeight, 4, kWidth * 4);
    auto neutralRequest = twtest::makeFlowRequest(*m_manager, clip, 1, QV_PIXEL_FORMAT_BGRA_8_LOW, neutral);
    auto warmRequest = std::make_shared<FlowRequest>();
    warmRequest->m_queueID = 1;
    ASSERT_FALSE(warmRequest->setScaleAndDimensions(clip, kWidth, kHeight, false).hasError);
    warmRequest->setup(QV_APP_ENUM::QV_APP_PPRO, 1, clip->m_frameCount, clip->m_ID, warm.address(), warm.rowBytes,
                       QV_PIXEL_FORMAT_BGRA_8_LOW,
                       new twBufferManager(m_manager->m_resourceManager, m_manager->m_manualDecoderFlow1, nullptr,
                                           blackmagicRawResourceTypeBufferCPU, true, nullptr, nullptr),
                       false, clip->m_path, clip);
    twAttributes prefs;
    prefs.useClipAndFrameAttributes = true;
    prefs.frame.iso = 3200;
    prefs.frame.kelvin = 10000;
    warmRequest->setClipAndtwFrameAttributesFromPrefs(&prefs, clip, true);
    ASSERT_EQ(m_manager->ProcessFrameSync(neutralRequest), 0);
    ASSERT_EQ(m_manager->ProcessFrameSync(warmRequest), 0);
    EXPECT_EQ(warmRequest->m_errorCode, 0) << warmRequest->m_errorMsg.Str();
    EXPECT_TRUE(logged("INFO", "Setting ISO Attribute failed but normal : parameter is ReadOnly"));
    // The white balance reached the picture.
    EXPECT_NE(neutral.bytes, warm.bytes);
    EXPECT_EQ(shownFrame(warm), 1);
}

TEST_F(RequestFlow, ACancelBeforeEachStageEndsTheRequestThereWithoutTouchingTheFrame) {
    std::shared_ptr<qvBRAW_Clip> clip = open(model());
    for (const char* stageName : {"read", "decode", "process"}) {
        SCOPED_TRACE(stageName);
        TestFrame frame(kWidth, kHeight, 4, kWidth * 4 + 16);
        auto request = twtest::makeFlowRequest(*m_manager, clip, 1, QV_PIXEL_FORMAT_BGRA_8_LOW, frame);
        const std::string cancelAt = stageName;
        std::vector<std::string> stages;
        {
            twtest::ScopedStageHook hook([&](const std::string& stage, uint64_t, qvBRAW_Request* target) {
                stages.push_back(stage);
                if (stage == cancelAt) target->Cancel();
            });
            EXPECT_EQ(m_manager->ProcessFrameSync(request), 0);
        }
        EXPECT_TRUE(request->m_finished);
        EXPECT_EQ(request->m_errorCode, 0);
        EXPECT_EQ(request->m_onCancelledCount, 1);
        // The stage that found the flag was the last one.
        EXPECT_TRUE(request->m_readDone);
        EXPECT_FALSE(request->m_processDone);
        EXPECT_EQ(stages.back(), cancelAt);
        EXPECT_TRUE(frame.untouched());
    }
    // A request cancelled before it was even queued stops at its read, even
    // one that the library would have filled directly.
    TestFrame frame(kWidth, kHeight, 4, kWidth * 4);
    auto early = twtest::makeFlowRequest(*m_manager, clip, 0, QV_PIXEL_FORMAT_BGRA_8_LOW, frame);
    early->Cancel();
    EXPECT_EQ(m_manager->ProcessFrameSync(early), 0);
    EXPECT_TRUE(early->m_finished);
    EXPECT_FALSE(early->m_processDone);
    EXPECT_EQ(early->m_onCancelledCount, 1);
    EXPECT_TRUE(frame.untouched());
}

TEST_F(RequestFlow, SyncDecodeReturnsOnlyOnceEveryCallbackOfTheRequestHasRun) {
    RefClipModel slow = model();
    // Slow stages widen the window in which a wait that returned early would be seen.
    slow.addDelay("stage.decode", 20);
    slow.addDelay("stage.process", 20);
    std::shared_ptr<qvBRAW_Clip> clip = open(slow);
    TestFrame frame(kWidth, kHeight, 4, kWidth * 4 + 4);
    auto request = twtest::makeFlowRequest(*m_manager, clip, 4, QV_PIXEL_FORMAT_BGRA_8_LOW, frame);
    std::atomic<int> processCallbacks{0};
    twtest::ScopedStageHook hook([&](const std::string& stage, uint64_t, qvBRAW_Request*) {
        if (stage == "process") ++processCallbacks;
    });
    ASSERT_EQ(m_manager->ProcessFrameSync(request), 0);
    EXPECT_EQ(processCallbacks.load(), 1);
    EXPECT_TRUE(request->m_finished);
    EXPECT_TRUE(request->m_processDone);
    EXPECT_FALSE(request->m_jobInFlight);
    EXPECT_EQ(shownFrame(frame), 4);
    EXPECT_EQ(m_manager->GetQueueSizeSafe(), 0u);
}

TEST_F(RequestFlow, QueueLookUpsSeeRunningRequestsStayAndFinishedOnesLeave) {
    std::shared_ptr<qvBRAW_Clip> clip = open(model());
    TestFrame frame(kWidth, kHeight, 4, kWidth * 4 + 4);
    auto running = twtest::makeFlowRequest(*m_manager, clip, 2, QV_PIXEL_FORMAT_BGRA_8_LOW, frame, 5);
    twtest::Gate gate;
    twtest::ScopedStageHook hook([&](const std::string& stage, uint64_t, qvBRAW_Request*) {
        if (stage == "decode") gate.wait();
    });
    ASSERT_EQ(m_manager->AddProcessFrameAsync(running, false), 0);
    gate.waitUntilHeld();

    // An equal key of another queue-blind reader finds it, running, and leaves it in.
    TestFrame keyFrame(kWidth, kHeight, 4, kWidth * 4 + 4);
    auto key = twtest::makeFlowRequest(*m_manager, clip, 2, QV_PIXEL_FORMAT_BGRA_8_LOW, keyFrame, TW_ALL_QUEUES);
    key->m_finished = true;  // never queued
    std::shared_ptr<qvBRAW_Request> found;
    bool stillProcessing = false;
    EXPECT_EQ(m_manager->GetFrame(key, found, stillProcessing, true, false), 0);
    EXPECT_EQ(found, running);
    EXPECT_TRUE(stillProcessing);
    EXPECT_EQ(m_manager->GetQueueSizeSafe(), 1u);
    // Without accepting an equivalent only the very object matches.
    found.reset();
    m_manager->FindInQueue(key, found, stillProcessing, false, false, false);
    EXPECT_EQ(found, nullptr);

    // A frame past the end is queued with no job and is finished for its collector.
    TestFrame pastEndFrame(kWidth, kHeight, 4, kWidth * 4);
    auto pastEnd = twtest::makeFlowRequest(*m_manager, clip, clip->m_frameCount, QV_PIXEL_FORMAT_BGRA_8_LOW,
                                           pastEndFrame, 5);
    EXPECT_FALSE(pastEnd->m_imageEnabled);
    ASSERT_EQ(m_manager->AddProcessFrameAsync(pastEnd, false), 0);
    EXPECT_FALSE(pastEnd->m_jobInFlight);
    found.reset();
    m_manager->FindInQueue(pastEnd, found, stillProcessing, true, false, false);
    EXPECT_EQ(found, pastEnd);
    EXPECT_FALSE(stillProcessing);
    EXPECT_TRUE(pastEndFrame.untouched());

    // Waiting for it: the held stage is let go from the flush's side.
    std::thread opener([&gate] { gate.open(); });
    found.reset();
    EXPECT_EQ(m_manager->GetFrame(key, found, stillProcessing, true, true), 0);
    opener.join();
    EXPECT_EQ(found, running);
    EXPECT_FALSE(stillProcessing);
    EXPECT_EQ(running->m_errorCode, 0);
    EXPECT_EQ(shownFrame(frame), 2);
    EXPECT_EQ(m_manager->GetQueueSizeSafe(), 0u);
}

TEST_F(RequestFlow, FlushOfOneQueueTakesItsFinishedRequestsAndLeavesTheOthersAlone) {
    std::shared_ptr<qvBRAW_Clip> clip = open(model());
    TestFrame frame7(kWidth, kHeight, 4, kWidth * 4);
    TestFrame frame8(kWidth, kHeight, 4, kWidth * 4);
    auto of7 = twtest::makeFlowRequest(*m_manager, clip, 1, QV_PIXEL_FORMAT_BGRA_8_LOW, frame7, 7);
    auto of8 = twtest::makeFlowRequest(*m_manager, clip, 1, QV_PIXEL_FORMAT_BGRA_8_LOW, frame8, 8);
    ASSERT_EQ(m_manager->AddProcessFrameAsync(of7, false), 0);
    ASSERT_EQ(m_manager->AddProcessFrameAsync(of8, false), 0);
    EXPECT_EQ(m_manager->FlushQueue(7), 0);
    EXPECT_EQ(m_manager->GetQueueSizeSafe(), 1u);
    EXPECT_EQ(m_manager->m_queue.front(), of8);
    EXPECT_FALSE(of8->m_cancelled);
    EXPECT_TRUE(of8->m_finished);
    EXPECT_EQ(shownFrame(frame8), 1);
    EXPECT_EQ(m_manager->removeFromQueue(of8.get()), 0);
    EXPECT_EQ(m_manager->GetQueueSizeSafe(), 0u);

    // A request whose callback could not find it never finishes: the flush of
    // its queue cancels it and leaves it where it is.
    RefClipModel lost = model();
    lost.addFault("Job.GetUserData", twref::RefResult::Fail);
    std::shared_ptr<qvBRAW_Clip> lostClip = open(lost, "lost.braw");
    TestFrame lostFrame(kWidth, kHeight, 4, kWidth * 4 + 4);
    auto unfinished = twtest::makeFlowRequest(*m_manager, lostClip, 1, QV_PIXEL_FORMAT_BGRA_8_LOW, lostFrame, 7);
    ASSERT_EQ(m_manager->AddProcessFrameAsync(unfinished, false), 0);
    EXPECT_EQ(m_manager->FlushQueue(7), 0);
    EXPECT_EQ(m_manager->GetQueueSizeSafe(), 1u);
    EXPECT_TRUE(unfinished->m_cancelled);
    EXPECT_FALSE(unfinished->m_finished);
    EXPECT_TRUE(lostFrame.untouched());
    m_manager->removeFromQueue(unfinished.get());
    unfinished->m_finished = true;
}

TEST_F(RequestFlow, ARequestLeftInTheQueueGivesItsBuffersBackWhenTheManagerGoes) {
    std::shared_ptr<qvBRAW_Clip> clip = open(model());
    // The host's frame outlives the manager, whose end waits for the stages.
    m_lastingFrames.emplace_back(kWidth, kHeight, 4, kWidth * 4 + 4);
    {
        auto request =
            twtest::makeFlowRequest(*m_manager, clip, 1, QV_PIXEL_FORMAT_BGRA_8_LOW, m_lastingFrames.back());
        ASSERT_EQ(m_manager->AddProcessFrameAsync(request, false), 0);
    }
    clip.reset();
    // TearDown checks that the decoder holds nothing once the manager is gone.
}

}  // namespace
