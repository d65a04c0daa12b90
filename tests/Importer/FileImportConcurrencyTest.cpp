// Several host threads importing clips and reading their audio at once, some
// of them on the same clip: the registry's lock and each clip's lock are taken
// from every side, always in that order.

#include "ClipImportSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

using FileImportConcurrency = ClipImportTest;

namespace {

using twref::RefClipModel;

struct ThreadOutcome {
    std::vector<std::unique_ptr<twSimFile>> files;
    std::vector<std::string> failures;
};

void fail(ThreadOutcome& outcome, const std::string& what) { outcome.failures.push_back(what); }

// What one host thread does with one clip: import it, read all its audio in
// blocks, show its properties, quiet and reopen it, read some more.
void useClip(twSimHost& host, const std::string& path, const RefClipModel& model, ThreadOutcome& outcome) {
    outcome.files.push_back(host.importFile(path));
    twSimFile& file = *outcome.files.back();
    if (file.openResult() != imNoErr || file.infoResult() != imNoErr) return fail(outcome, path + ": import");

    const auto total = static_cast<long long>(model.effectiveAudioSampleCount());
    const int channels = static_cast<int>(model.audio.channelCount);
    for (long long at = 0; at < total; at += 4800) {
        const auto frames = static_cast<csSDK_uint32>(std::min<long long>(4800, total - at));
        const twSimAudioResult audio = file.importAudio(at, frames, channels);
        if (audio.result != imNoErr || audio.channels != expectedAudio(model, at, frames)) {
            return fail(outcome, path + ": audio at " + std::to_string(at));
        }
    }
    csSDK_int32 result = -1;
    const std::string properties = file.analysis(8192, &result);
    if (result != imNoErr || properties.find("Tarnwick Version") == std::string::npos) {
        return fail(outcome, path + ": properties");
    }
    if (file.quiet() != imNoErr || file.open() != imNoErr) return fail(outcome, path + ": quiet and open");
    const twSimAudioResult again = file.importAudio(960, 480, channels);
    if (again.result != imNoErr || again.channels != expectedAudio(model, 960, 480)) {
        fail(outcome, path + ": audio after reopening");
    }
}

}  // namespace

TEST_F(FileImportConcurrency, HostThreadsImportAndReadAudioOfSeveralClipsAtOnce) {
    startHost();
    host().formats();
    constexpr int kClips = 4;
    std::vector<RefClipModel> models;
    std::vector<std::string> paths;
    for (int i = 0; i < kClips; ++i) {
        RefClipModel model = clipWithAudio(static_cast<uint32_t>(1 + i % 2), 48000, i % 2 ? 24 : 16);
        model.frameCount = 12;
        model.audio.tone.frequency = 500.0 * (i + 1);
        models.push_back(model);
        paths.push_back(writeClip("clip" + std::to_string(i) + ".braw", model));
    }

    // Two threads per clip, so that each clip is opened, read and reopened
    // from two sides while the others are.
    std::vector<ThreadOutcome> outcomes(2 * kClips);
    std::vector<std::thread> threads;
    for (int t = 0; t < 2 * kClips; ++t) {
        const int clip = t % kClips;
        threads.emplace_back(
            [&, t, clip] { useClip(host(), paths[clip], models[clip], outcomes[static_cast<size_t>(t)]); });
    }
    for (std::thread& thread : threads) thread.join();

    std::vector<uint64_t> idsOfClip(kClips, UINT64_MAX);
    for (int t = 0; t < 2 * kClips; ++t) {
        ThreadOutcome& outcome = outcomes[static_cast<size_t>(t)];
        EXPECT_TRUE(outcome.failures.empty()) << outcome.failures.front();
        for (auto& file : outcome.files) {
            if (file->privateData()) {
                // Both threads of a clip were given its one number.
                const uint64_t id = record(*file).clipID;
                uint64_t& known = idsOfClip[static_cast<size_t>(t % kClips)];
                if (known == UINT64_MAX) known = id;
                EXPECT_EQ(id, known) << paths[static_cast<size_t>(t % kClips)];
            }
            m_files.push_back(std::move(file));
        }
    }
    std::sort(idsOfClip.begin(), idsOfClip.end());
    EXPECT_EQ(idsOfClip, (std::vector<uint64_t>{0, 1, 2, 3}));
    EXPECT_TRUE(events().empty());
}
