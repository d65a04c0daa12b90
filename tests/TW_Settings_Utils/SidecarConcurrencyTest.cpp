// Writers and readers of one sidecar at once, as the plug-in, the settings
// application and the decoder library are: a reader always finds a whole file,
// holding one writer's settings, and no temporary file outlives its writer.

#include "SettingsFilesSupport.h"
#include "TempFolder.h"

#include "TW_Settings_Utils/SidecarUtility.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <thread>

using namespace twtest;

TEST(SidecarConcurrency, ReadersNeverSeeAHalfWrittenSidecar) {
    TempFolder folder;
    const std::string path = folder.writeFile("A001.sidecar", R"({"note": "kept"})");
    const twAttributes variants[] = {variedSettings(0), variedSettings(2)};
    ASSERT_EQ(SidecarUtility::writeSidecarFromPrefs(path, variants[0]), SidecarUtility::SIDECAR_OK);

    std::atomic<bool> writing{true};
    std::atomic<int> failedWrites{0}, badReads{0}, reads{0};
    std::vector<std::thread> threads;
    for (int w = 0; w < 2; ++w) {
        threads.emplace_back([&, w] {
            for (int i = 0; i < 40; ++i) {
                if (SidecarUtility::writeSidecarFromPrefs(path, variants[(w + i) % 2]) != SidecarUtility::SIDECAR_OK)
                    ++failedWrites;
            }
        });
    }
    for (int r = 0; r < 2; ++r) {
        threads.emplace_back([&] {
            while (writing.load()) {
                twAttributes read;
                ++reads;
                if (SidecarUtility::fillPrefsFromSidecar(path, read) != SidecarUtility::SIDECAR_OK) {
                    ++badReads;
                    continue;
                }
                const bool isOne = settingsDifference(read.clip, read.frame, variants[0].clip, variants[0].frame).empty() ||
                                   settingsDifference(read.clip, read.frame, variants[1].clip, variants[1].frame).empty();
                if (!isOne) ++badReads;
            }
        });
    }
    threads[0].join();
    threads[1].join();
    writing = false;
    threads[2].join();
    threads[3].join();

    EXPECT_EQ(failedWrites.load(), 0);
    EXPECT_EQ(badReads.load(), 0) << "of " << reads.load() << " reads";
    EXPECT_NE(TempFolder::readFile(path).find("\"note\": \"kept\""), std::string::npos);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), std::filesystem::directory_iterator()), 1);
}
