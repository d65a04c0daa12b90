// The library's exported C functions: the published ten, the Variant and
// SafeArray helpers' contracts and their tolerance of bad input, and the
// live-object report and the release journal.

#include "LibraryTestSupport.h"

#include <cstring>
#include <sstream>
#include <string>
#include <vector>

using namespace twtest;

TEST(LibraryExports, PublishedFunctionsAndTheReportAreExportedAndNothingOfTheInside)
{
    RefLibrary lib;
    for (const char* name : {"CreateBlackmagicRawFactoryInstance", "VariantInit", "VariantClear", "SafeArrayCreate",
                             "SafeArrayGetVartype", "SafeArrayGetLBound", "SafeArrayGetUBound", "SafeArrayAccessData",
                             "SafeArrayUnaccessData", "SafeArrayDestroy", "twRefDecoderLiveObjects",
                             "twRefDecoderReleaseJournal", "twRefDecoderSetStageHook"})
        EXPECT_NE(lib.symbol(name), nullptr) << name;
    // The dispatch layer's functions belong to callers, not to the library.
    EXPECT_EQ(lib.symbol("CreateBlackmagicRawFactoryInstanceFromPath"), nullptr);
    EXPECT_EQ(lib.symbol("_ZN5twref12RefClipModelC1Ev"), nullptr);
    EXPECT_EQ(lib.liveObjects(), 0u);
}

TEST(LibraryExports, VariantClearFreesOnlyWhatTheLibraryPutThere)
{
    RefLibrary lib;
    Variant v;
    std::memset(&v, 0xAB, sizeof v);
    EXPECT_EQ(lib.variantInit(&v), S_OK);
    EXPECT_EQ(v.vt, BlackmagicRawVariantType(blackmagicRawVariantTypeEmpty));
    EXPECT_EQ(lib.variantInit(nullptr), E_POINTER);
    EXPECT_EQ(lib.variantClear(nullptr), E_POINTER);

    // A caller's own text is left alone.
    char text[] = "caller text";
    v = makeString(text);
    EXPECT_EQ(lib.variantClear(&v), S_OK);
    EXPECT_EQ(v.vt, BlackmagicRawVariantType(blackmagicRawVariantTypeEmpty));
    EXPECT_STREQ(text, "caller text");

    // A text from the library is counted until it is cleared.
    TempFolder folder;
    const std::string path = writeClip(folder, "a.braw", smallClip());
    CodecSession session(lib);
    Held<IBlackmagicRawClip> clip;
    ASSERT_EQ(session.open(path, clip), S_OK);
    const uint64_t before = lib.liveObjects();
    Variant camera;
    lib.variantInit(&camera);
    ASSERT_EQ(clip->GetMetadata("camera_type", &camera), S_OK);
    ASSERT_EQ(camera.vt, BlackmagicRawVariantType(blackmagicRawVariantTypeString));
    EXPECT_EQ(lib.liveObjects(), before + 1);
    EXPECT_NE(lib.liveReport().find("VariantString"), std::string::npos);
    Variant copy = camera;  // a second Variant pointing at the same text
    EXPECT_EQ(lib.variantClear(&camera), S_OK);
    EXPECT_EQ(lib.variantClear(&copy), S_OK);  // not freed twice
    EXPECT_EQ(lib.liveObjects(), before);
}

TEST(LibraryExports, SafeArrayLifecycleAndBadInput)
{
    RefLibrary lib;
    SafeArrayBound bound{2, 5};
    SafeArray* array = lib.safeArrayCreate(blackmagicRawVariantTypeU32, 1, &bound);
    ASSERT_NE(array, nullptr);
    EXPECT_EQ(lib.liveObjects(), 1u);

    BlackmagicRawVariantType type = 0;
    EXPECT_EQ(lib.safeArrayGetVartype(array, &type), S_OK);
    EXPECT_EQ(type, BlackmagicRawVariantType(blackmagicRawVariantTypeU32));
    long lower = -1, upper = -1;
    EXPECT_EQ(lib.safeArrayGetLBound(array, 1, &lower), S_OK);
    EXPECT_EQ(lib.safeArrayGetUBound(array, 1, &upper), S_OK);
    EXPECT_EQ(lower, 2);
    EXPECT_EQ(upper, 6);
    void* data = nullptr;
    ASSERT_EQ(lib.safeArrayAccessData(array, &data), S_OK);
    uint32_t* values = static_cast<uint32_t*>(data);
    for (uint32_t i = 0; i < 5; ++i)
        values[i] = i * 10;  // the whole array is writable
    EXPECT_EQ(lib.safeArrayUnaccessData(array), S_OK);

    // Bad input is an error result, never a crash.
    EXPECT_EQ(lib.safeArrayGetLBound(array, 2, &lower), E_INVALIDARG);
    EXPECT_EQ(lib.safeArrayGetUBound(array, 1, nullptr), E_POINTER);
    EXPECT_EQ(lib.safeArrayAccessData(array, nullptr), E_POINTER);
    EXPECT_EQ(lib.safeArrayCreate(blackmagicRawVariantTypeU32, 2, &bound), nullptr);
    EXPECT_EQ(lib.safeArrayCreate(blackmagicRawVariantTypeU32, 1, nullptr), nullptr);
    EXPECT_EQ(lib.safeArrayCreate(blackmagicRawVariantTypeSafeArray, 1, &bound), nullptr);
    EXPECT_EQ(lib.safeArrayCreate(77, 1, &bound), nullptr);
    SafeArray foreign{};
    EXPECT_EQ(lib.safeArrayGetVartype(&foreign, &type), E_INVALIDARG);
    EXPECT_EQ(lib.safeArrayDestroy(&foreign), E_INVALIDARG);

    EXPECT_EQ(lib.safeArrayDestroy(array), S_OK);
    EXPECT_EQ(lib.safeArrayDestroy(array), E_INVALIDARG);
    EXPECT_EQ(lib.safeArrayDestroy(nullptr), E_POINTER);

    // An array held by a Variant goes with VariantClear.
    Variant v{};
    v.vt = blackmagicRawVariantTypeSafeArray;
    v.parray = lib.safeArrayCreate(blackmagicRawVariantTypeFloat32, 1, &bound);
    EXPECT_EQ(lib.variantClear(&v), S_OK);
    EXPECT_NO_LIVE_OBJECTS(lib);
}

TEST(LibraryExports, LiveReportNamesWhatACallerStillHolds)
{
    RefLibrary lib;
    IBlackmagicRawFactory* factory = lib.createFactory();
    ASSERT_NE(factory, nullptr);
    IBlackmagicRaw* codec = nullptr;
    ASSERT_EQ(factory->CreateCodec(&codec), S_OK);
    const std::string report = lib.liveReport();
    EXPECT_NE(report.find("Factory"), std::string::npos) << report;
    EXPECT_NE(report.find("Codec"), std::string::npos) << report;
    EXPECT_NE(report.find("refs=1"), std::string::npos) << report;

    // A short buffer gets a cut, terminated text.
    char small[8];
    std::memset(small, 'x', sizeof small);
    auto live = reinterpret_cast<uint64_t (*)(char*, uint32_t)>(lib.symbol("twRefDecoderLiveObjects"));
    EXPECT_GE(live(small, sizeof small), 2u);
    EXPECT_EQ(small[7], '\0');

    EXPECT_EQ(codec->AddRef(), 2u);
    EXPECT_EQ(codec->Release(), 1u);
    EXPECT_EQ(codec->Release(), 0u);
    EXPECT_EQ(factory->Release(), 0u);
    EXPECT_NO_LIVE_OBJECTS(lib);
}

TEST(LibraryExports, TheReleaseJournalNotesEveryReleaseInCallOrder)
{
    RefLibrary lib;
    auto journal = reinterpret_cast<uint64_t (*)(int, char*, uint32_t)>(lib.symbol("twRefDecoderReleaseJournal"));
    ASSERT_NE(journal, nullptr);
    IBlackmagicRawFactory* factory = lib.createFactory();
    ASSERT_NE(factory, nullptr);
    IBlackmagicRaw* codec = nullptr;
    ASSERT_EQ(factory->CreateCodec(&codec), S_OK);
    codec->AddRef();

    EXPECT_EQ(journal(1, nullptr, 0), 0u);
    codec->Release();
    factory->Release();
    codec->Release();
    char text[512];
    journal(0, text, sizeof text);
    // "<kind> <address> refs=<left>" per release, in the order of the calls; the
    // codec's last release also gives back its resource manager.
    std::vector<std::string> releases;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        releases.push_back(line.substr(0, line.find(' ')) + line.substr(line.rfind(' ')));
    EXPECT_EQ(releases, (std::vector<std::string>{"Codec refs=1", "Factory refs=0", "Codec refs=0", "ResourceManager refs=0"}))
        << text;
    // Starting again empties it; stopping ends the noting.
    EXPECT_EQ(journal(1, nullptr, 0), 0u);
    EXPECT_EQ(journal(-1, nullptr, 0), 0u);
    IBlackmagicRawFactory* later = lib.createFactory();
    ASSERT_NE(later, nullptr);
    later->Release();
    EXPECT_EQ(journal(0, nullptr, 0), 0u);
    EXPECT_NO_LIVE_OBJECTS(lib);
}
