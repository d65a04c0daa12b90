// Several host readers decoding frames of several clips at once through one
// queue, with synchronous and asynchronous requests, cancels of each other's
// equivalents and flushes of their own queues interleaved; the library's
// threads run the stages meanwhile. Every request ends, each picture that was
// not cancelled is the frame asked for, and the library holds nothing after.

#include "ManagerTestSupport.h"

#include "Render/RefChart.h"
#include "Writer/RefClipWriter.h"

#include <algorithm>
#include <deque>
#include <thread>

namespace {

using twtest::FlowRequest;
using twtest::TestFrame;

constexpr uint32_t kWidth = 192;
constexpr uint32_t kHeight = 108;
constexpr uint64_t kFrames = 8;

int64_t shownFrame(const TestFrame& frame) {
    uint64_t index = 0;
    const bool read = twref::RefChart::readFrameIndex(
        [&](float x, float y) {
            const uint32_t px = std::min(frame.width - 1, static_cast<uint32_t>(x * frame.width));
            const uint32_t py = std::min(frame.height - 1, static_cast<uint32_t>(y * frame.height));
            return frame.bytes[static_cast<size_t>(py) * frame.rowBytes + px * 4 + 1] / 255.0f;
        },
        true, false, index);
    return read ? static_cast<int64_t>(index) : -1;
}

struct Issued {
    std::shared_ptr<FlowRequest> request;
    TestFrame* frame;
};

class RequestQueueConcurrency : public twtest::ManagerTest {};

TEST_F(RequestQueueConcurrency, ReadersOfSeveralClipsDecodeCancelAndFlushAtOnce) {
    std::vector<std::shared_ptr<qvBRAW_Clip>> clips;
    for (int c = 0; c < 3; ++c) {
        uint64_t id = 0;
        ASSERT_EQ(m_manager->AddClip(writeClip("clip" + std::to_string(c) + ".braw",
                                               twref::RefClipWriter::makeClip(kWidth, kHeight, 24.0f, kFrames)),
                                     id),
                  0);
        clips.push_back(m_manager->GetClip(id));
    }

    constexpr int kReaders = 4;
    constexpr int kPerReader = 12;
    std::vector<std::deque<TestFrame>> frames(kReaders);
    std::vector<std::vector<Issued>> issued(kReaders);
    std::vector<std::thread> readers;
    for (int reader = 0; reader < kReaders; ++reader) {
        readers.emplace_back([&, reader] {
            const uint64_t queueID = 10 + static_cast<uint64_t>(reader);
            for (int i = 0; i < kPerReader; ++i) {
                const auto& clip = clips[static_cast<size_t>(i + reader) % clips.size()];
                const uint64_t frameIndex = static_cast<uint64_t>(i * 3 + reader) % kFrames;
                // Tight rows are filled by the library directly, padded ones converted.
                const int32_t rowBytes = static_cast<int32_t>(kWidth * 4) + ((i % 2) ? 16 : 0);
                frames[reader].emplace_back(kWidth, kHeight, 4, rowBytes);
                TestFrame& frame = frames[reader].back();
                auto request =
                    twtest::makeFlowRequest(*m_manager, clip, frameIndex, QV_PIXEL_FORMAT_BGRA_8_LOW, frame, queueID);
                issued[reader].push_back({request, &frame});
                if (i % 4 == 3) {
                    // Its result may be 1: a cancelled request can be swept up by
                    // another reader's flush before this one looks for it.
                    m_manager->ProcessFrameSync(request);
                    EXPECT_TRUE(request->m_finished);
                } else {
                    EXPECT_EQ(m_manager->AddProcessFrameAsync(request, false), 0);
                }
                if (i % 3 == 1) {
                    // Another reader's equivalent, as the reader's cancel finds it.
                    TestFrame keyFrame(kWidth, kHeight, 4, kWidth * 4);
                    auto key = twtest::makeFlowRequest(*m_manager, clip, frameIndex, QV_PIXEL_FORMAT_BGRA_8_LOW,
                                                       keyFrame, TW_ALL_QUEUES);
                    key->m_finished = true;
                    std::shared_ptr<qvBRAW_Request> found;
                    bool stillProcessing = false;
                    m_manager->FindInQueue(key, found, stillProcessing, false, true, false);
                    if (found) found->Cancel();
                }
                if (i % 5 == 4) {
                    EXPECT_EQ(m_manager->FlushQueue(static_cast<uint32_t>(queueID)), 0);
                }
                if (i % 4 == 2) {
                    std::shared_ptr<qvBRAW_Request> found;
                    bool stillProcessing = false;
                    m_manager->GetFrame(request, found, stillProcessing, false, true);
                }
                m_manager->GetQueueSizeSafe();
            }
        });
    }
    for (std::thread& reader : readers) reader.join();

    EXPECT_EQ(m_manager->FlushQueue(TW_ALL_QUEUES), 0);
    EXPECT_EQ(m_manager->GetQueueSizeSafe(), 0u);
    size_t decoded = 0;
    for (const auto& list : issued) {
        for (const Issued& entry : list) {
            const FlowRequest& request = *entry.request;
            EXPECT_TRUE(request.m_finished);
            EXPECT_EQ(request.m_errorCode, 0) << request.m_errorMsg.Str();
            EXPECT_LE(request.m_onCancelledCount, 1);
            // A request that ran to its end shows its own frame; one that was
            // cancelled may have been filled by the library already.
            if (request.m_onCancelledCount == 0) {
                EXPECT_TRUE(request.m_processDone);
                EXPECT_EQ(shownFrame(*entry.frame), static_cast<int64_t>(request.m_frame));
                ++decoded;
            }
        }
    }
    EXPECT_GT(decoded, 0u);
}

}  // namespace
