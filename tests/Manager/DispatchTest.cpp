// The dispatch layer before and after the library is loaded: the forwarders'
// answers without a library, the rule that the first load wins for every later
// path, and the program-relative entry points.

#include "ManagerTestSupport.h"

#include "BlackmagicRawAPIDispatch.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace {

std::string factsWithVersion(const std::string& version) { return R"({"version": ")" + version + R"("})"; }

std::string realFolder(const std::string& path) {
    char resolved[PATH_MAX];
    return realpath(path.c_str(), resolved) ? std::string(resolved) : std::string();
}

std::string executableFolder() {
    char path[PATH_MAX] = {0};
    const ssize_t length = readlink("/proc/self/exe", path, sizeof(path) - 1);
    if (length <= 0) return std::string();
    std::string folder = realFolder(std::string(path, static_cast<size_t>(length)));
    return folder.substr(0, folder.rfind('/'));
}

}  // namespace

TEST(Dispatch, ForwardersFailWithoutALibraryAndLeaveTheirArgumentsAlone) {
    twtest::TempFolder folder;
    twtest::ScopedTestRoots roots;

    const auto expectUnloaded = [](const char* when) {
        Variant variant;
        std::memset(&variant, 0xAB, sizeof(variant));
        EXPECT_EQ(VariantInit(&variant), E_FAIL) << when;
        EXPECT_EQ(VariantClear(&variant), E_FAIL) << when;
        EXPECT_EQ(variant.vt, 0xABABABABu) << when;

        SafeArrayBound bound{0, 4};
        EXPECT_EQ(SafeArrayCreate(blackmagicRawVariantTypeU32, 1, &bound), nullptr) << when;

        SafeArray array{};
        BlackmagicRawVariantType type = 77;
        long lower = 5;
        long upper = 6;
        void* data = &array;
        EXPECT_EQ(SafeArrayGetVartype(&array, &type), E_FAIL) << when;
        EXPECT_EQ(SafeArrayGetLBound(&array, 1, &lower), E_FAIL) << when;
        EXPECT_EQ(SafeArrayGetUBound(&array, 1, &upper), E_FAIL) << when;
        EXPECT_EQ(SafeArrayAccessData(&array, &data), E_FAIL) << when;
        EXPECT_EQ(SafeArrayUnaccessData(&array), E_FAIL) << when;
        EXPECT_EQ(SafeArrayDestroy(&array), E_FAIL) << when;
        EXPECT_EQ(type, 77u) << when;
        EXPECT_EQ(lower, 5) << when;
        EXPECT_EQ(upper, 6) << when;
        EXPECT_EQ(data, &array) << when;
    };
    expectUnloaded("before any load");

    // Loads that find nothing usable leave the layer as it was.
    EXPECT_EQ(CreateBlackmagicRawFactoryInstanceFromPath(nullptr), nullptr);
    EXPECT_EQ(CreateBlackmagicRawFactoryInstanceFromPath(folder.makeFolder("empty").c_str()), nullptr);
    folder.writeFile("junk/libBlackmagicRawAPI.so", "not a shared object");
    EXPECT_EQ(CreateBlackmagicRawFactoryInstanceFromPath(folder.join("junk").c_str()), nullptr);
    // Nothing beside the test program either.
    EXPECT_EQ(CreateBlackmagicRawFactoryInstanceFromBundle(), nullptr);
    EXPECT_EQ(CreateBlackmagicRawFactoryInstanceFromExeRelativePath(nullptr), nullptr);
    EXPECT_EQ(CreateBlackmagicRawFactoryInstance(), nullptr);
    expectUnloaded("after loads that found no library");
}

TEST(Dispatch, FirstLoadWinsForEveryLaterPathAndEntryPoint) {
    twtest::TempFolder folder;
    twtest::ScopedTestRoots roots;
    const std::string first = twtest::installDecoder(folder.join("first"), 0, factsWithVersion("first"));
    const std::string second = twtest::installDecoder(folder.join("second"), 0, factsWithVersion("second"));

    // The folder may come without its trailing slash.
    const std::string withoutSlash = first.substr(0, first.size() - 1);
    EXPECT_EQ(twtest::codecVersion(CreateBlackmagicRawFactoryInstanceFromPath(withoutSlash.c_str())), "first");
    // Every later call gets a new factory of the first library, whatever it names.
    EXPECT_EQ(twtest::codecVersion(CreateBlackmagicRawFactoryInstanceFromPath(second.c_str())), "first");
    EXPECT_EQ(twtest::codecVersion(CreateBlackmagicRawFactoryInstanceFromPath(nullptr)), "first");
    EXPECT_EQ(twtest::codecVersion(CreateBlackmagicRawFactoryInstanceFromPath(folder.join("nowhere").c_str())),
              "first");
    EXPECT_EQ(twtest::codecVersion(CreateBlackmagicRawFactoryInstanceFromExeRelativePath("nowhere")), "first");
    EXPECT_EQ(twtest::codecVersion(CreateBlackmagicRawFactoryInstanceFromBundle()), "first");
    EXPECT_EQ(twtest::codecVersion(CreateBlackmagicRawFactoryInstance()), "first");

    // The forwarders now reach the library.
    Variant variant;
    std::memset(&variant, 0xAB, sizeof(variant));
    EXPECT_EQ(VariantInit(&variant), S_OK);
    EXPECT_EQ(variant.vt, blackmagicRawVariantTypeEmpty);
    EXPECT_EQ(VariantClear(&variant), S_OK);
    SafeArrayBound bound{0, 4};
    SafeArray* array = SafeArrayCreate(blackmagicRawVariantTypeU32, 1, &bound);
    ASSERT_NE(array, nullptr);
    BlackmagicRawVariantType type = 0;
    EXPECT_EQ(SafeArrayGetVartype(array, &type), S_OK);
    EXPECT_EQ(type, blackmagicRawVariantTypeU32);
    long upper = 0;
    EXPECT_EQ(SafeArrayGetUBound(array, 1, &upper), S_OK);
    EXPECT_EQ(upper, 3);
    void* data = nullptr;
    EXPECT_EQ(SafeArrayAccessData(array, &data), S_OK);
    EXPECT_NE(data, nullptr);
    EXPECT_EQ(SafeArrayUnaccessData(array), S_OK);
    EXPECT_EQ(SafeArrayDestroy(array), S_OK);

    EXPECT_DECODER_CLEAN();
}

TEST(Dispatch, ExeRelativePathStartsAtTheProgramsOwnFolder) {
    twtest::TempFolder folder;
    const std::string install =
        realFolder(twtest::installDecoder(folder.join("relative"), 0, factsWithVersion("relative")));
    const std::string exeFolder = executableFolder();
    ASSERT_FALSE(exeFolder.empty());
    ASSERT_FALSE(install.empty());

    // Up to the root from the program's folder, then down to the install.
    std::string relative;
    for (char c : exeFolder) {
        if (c == '/') relative += "../";
    }
    relative += install.substr(1);
    EXPECT_EQ(twtest::codecVersion(CreateBlackmagicRawFactoryInstanceFromExeRelativePath(relative.c_str())),
              "relative");
    EXPECT_DECODER_CLEAN();
}
