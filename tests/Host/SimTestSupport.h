#pragma once
// Shared set-up of the host simulator's tests: a host with the test plug-in
// loaded, its controls, and test clips in a temporary folder.

#include "TempFolder.h"
#include "twSimFile.h"
#include "twSimHost.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

class SimHostTest : public ::testing::Test {
protected:
    // A fresh host with the test plug-in loaded and every fault switched off.
    twSimHost& start(const twSimHostConfig& config = twSimHostConfig()) {
        m_host.reset();
        m_host = std::make_unique<twSimHost>(config);
        m_host->loadPlugin(TW_SIM_TEST_PLUGIN);
        for (const char* key : {"leakHandle", "leakFrame", "keepSuite", "doubleDispose", "writePastRow",
                                "unlockTwice", "throw", "cacheVersionMismatch", "pendingOnce"})
            control(key, 0);
        return *m_host;
    }

    twSimHost& host() { return *m_host; }

    void control(const char* key, int value) {
        auto fn = reinterpret_cast<int (*)(const char*, int)>(m_host->plugin().symbol("twTestPluginControl"));
        ASSERT_NE(fn, nullptr);
        fn(key, value);
    }

    std::string pluginText(const char* key) {
        auto fn = reinterpret_cast<const char* (*)(const char*)>(m_host->plugin().symbol("twTestPluginText"));
        return fn ? fn(key) : std::string();
    }

    std::string clip(int width, int height, int frames, const std::string& name = "clip.twtest") {
        return m_folder.writeFile(name, "twtest " + std::to_string(width) + " " + std::to_string(height) + " " +
                                            std::to_string(frames));
    }

    twtest::TempFolder m_folder;
    std::unique_ptr<twSimHost> m_host;
};
