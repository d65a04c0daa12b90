// Threads that race to the first load, while others call the forwarders: one
// library is loaded, every factory comes from it, and no forwarder answers
// anything but "not loaded" or the library's own result.

#include "ManagerTestSupport.h"

#include "BlackmagicRawAPIDispatch.h"

#include <link.h>

#include <atomic>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <set>
#include <thread>

namespace {

int loadedDecoderCount() {
    int count = 0;
    dl_iterate_phdr(
        [](dl_phdr_info* info, size_t, void* data) {
            const std::string name = info->dlpi_name ? info->dlpi_name : "";
            if (name.size() >= 22 && name.compare(name.size() - 22, 22, "libBlackmagicRawAPI.so") == 0) {
                ++*static_cast<int*>(data);
            }
            return 0;
        },
        &count);
    return count;
}

}  // namespace

TEST(DispatchConcurrency, RacingFirstLoadsLoadOneLibraryAndForwardersStayConsistent) {
    twtest::TempFolder folder;
    constexpr int kLoaders = 6;
    constexpr int kCallers = 3;
    std::vector<std::string> installs;
    for (int i = 0; i < kLoaders; ++i) {
        installs.push_back(twtest::installDecoder(folder.join("install" + std::to_string(i)), 0,
                                                  R"({"version": "v)" + std::to_string(i) + R"("})"));
    }

    twtest::Gate start;
    std::vector<IBlackmagicRawFactory*> factories(kLoaders, nullptr);
    std::atomic<int> badAnswers{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < kLoaders; ++i) {
        threads.emplace_back([&, i] {
            start.wait();
            factories[static_cast<size_t>(i)] =
                CreateBlackmagicRawFactoryInstanceFromPath(installs[static_cast<size_t>(i)].c_str());
        });
    }
    for (int i = 0; i < kCallers; ++i) {
        threads.emplace_back([&] {
            start.wait();
            for (int round = 0; round < 200; ++round) {
                Variant variant;
                std::memset(&variant, 0xAB, sizeof(variant));
                const HRESULT hr = VariantInit(&variant);
                const bool unloaded = hr == E_FAIL && variant.vt == 0xABABABABu;
                const bool loaded = hr == S_OK && variant.vt == blackmagicRawVariantTypeEmpty;
                if (!unloaded && !loaded) ++badAnswers;
            }
        });
    }
    start.open();
    for (std::thread& thread : threads) thread.join();

    EXPECT_EQ(badAnswers.load(), 0);
    EXPECT_EQ(loadedDecoderCount(), 1);
    std::set<std::string> versions;
    for (IBlackmagicRawFactory* factory : factories) {
        ASSERT_NE(factory, nullptr);
        versions.insert(twtest::codecVersion(factory));
    }
    EXPECT_EQ(versions.size(), 1u) << "factories came from more than one library";
    EXPECT_DECODER_CLEAN();
}
