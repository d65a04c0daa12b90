// The simulator's services on their own, reached through the same suite tables
// a plug-in gets (a host without a plug-in serves them).

#include "twSimAudio.h"
#include "twSimHost.h"
#include "twSimText.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

template <typename Suite>
const Suite* Acquire(twSimHost& host, const char* name, int version) {
    const void* suite = nullptr;
    EXPECT_EQ(host.suites().acquire(name, version, &suite), kSPNoError) << name;
    return static_cast<const Suite*>(suite);
}

PPixHand NewFrame(twSimHost& host, int width, int height, PrPixelFormat format) {
    PPixHand h = nullptr;
    EXPECT_EQ(host.frames().create(&h, PrPPixBufferAccess_ReadWrite, format, width, height), suiteError_NoError);
    return h;
}

}  // namespace

TEST(SimHostMemory, HandlesKeepSizesLockCountsAndMove) {
    twSimHost host;
    PlugMemoryFuncs* mem = host.stdParms()->piSuites->memFuncs;
    char** h = mem->newHandleClear(16);
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(mem->getHandleSize(h), 16);
    std::memcpy(*h, "0123456789abcdef", 16);

    mem->lockHandle(h);
    mem->lockHandle(h);
    EXPECT_EQ(host.memory().lockCount(h), 2);
    // Locked memory is pinned: no resize, no relocation.
    EXPECT_EQ(mem->setHandleSize(h, 32), -1);
    char* pinned = *h;
    host.memory().relocateUnlockedHandles();
    EXPECT_EQ(*h, pinned);
    mem->unlockHandle(h);
    mem->unlockHandle(h);
    EXPECT_EQ(host.memory().lockedHandles().size(), 0u);

    EXPECT_EQ(mem->setHandleSize(h, 32), 0);
    EXPECT_EQ(mem->getHandleSize(h), 32);
    EXPECT_EQ(host.memory().relocateUnlockedHandles(), 1u);
    EXPECT_EQ(std::memcmp(*h, "0123456789abcdef", 16), 0);

    mem->unlockHandle(h);  // one unlock too many
    mem->disposeHandle(h);
    mem->disposeHandle(h);  // and a second dispose
    EXPECT_EQ(host.diagnostics().count(twSimIssue::UnlockNotLocked), 1u);
    EXPECT_EQ(host.diagnostics().count(twSimIssue::UnknownHandle), 1u);
    EXPECT_EQ(host.diagnostics().count(twSimIssue::ResizeLockedHandle), 1u);
    EXPECT_EQ(host.leakReport().misuse.size(), 2u);
}

TEST(SimHostMemory, PointersAndBlocksAreTrackedUntilDisposed) {
    twSimHost host;
    PlugMemoryFuncs* mem = host.stdParms()->piSuites->memFuncs;
    char* p = mem->newPtr(10);
    EXPECT_EQ(mem->getPtrSize(p), 10);
    mem->setPtrSize(&p, 100);
    EXPECT_EQ(mem->getPtrSize(p), 100);
    char* q = mem->newPtrClear(4);
    EXPECT_EQ(std::memcmp(q, "\0\0\0\0", 4), 0);

    SPBasicSuite* basic = host.stdParms()->piSuites->utilFuncs->getSPBasicSuite();
    void* block = nullptr;
    EXPECT_EQ(basic->AllocateBlock(64, &block), kSPNoError);
    EXPECT_EQ(basic->ReallocateBlock(block, 128, &block), kSPNoError);

    twSimLeakReport report = host.leakReport();
    EXPECT_EQ(report.pointers.size(), 2u);
    EXPECT_EQ(report.blocks.size(), 1u);
    // Memory handed over to the host is no longer the plug-in's leak.
    host.memory().setHostHeld(q, true);
    EXPECT_EQ(host.leakReport().pointers.size(), 1u);

    mem->disposePtr(p);
    mem->disposePtr(p);
    host.memory().setHostHeld(q, false);
    mem->disposePtr(q);
    EXPECT_EQ(basic->FreeBlock(block), kSPNoError);
    EXPECT_EQ(mem->getPtrSize(p), 0);
    report = host.leakReport();
    EXPECT_TRUE(report.pointers.empty() && report.blocks.empty());
    EXPECT_EQ(host.diagnostics().count(twSimIssue::UnknownPointer), 2u);
}

TEST(SimHostStrings, BuffersCountElementsWithTheTerminator) {
    twSimHost host;
    const auto* s = Acquire<PrSDKStringSuite>(host, kPrSDKStringSuite, kPrSDKStringSuiteVersion);
    PrSDKString text;
    ASSERT_EQ(s->AllocateFromUTF8(reinterpret_cast<const prUTF8Char*>("h\xC3\xA9llo \xF0\x9F\x98\x80"), &text),
              suiteError_NoError);

    csSDK_uint32 size = 3;
    prUTF16Char small[3];
    EXPECT_EQ(s->CopyToUTF16String(&text, small, &size), suiteError_StringBufferTooSmall);
    EXPECT_EQ(size, 9u);  // 6 units, a surrogate pair, the terminator
    prUTF16Char wide[9];
    EXPECT_EQ(s->CopyToUTF16String(&text, wide, &size), suiteError_NoError);
    EXPECT_EQ(wide[1], 0xE9);
    EXPECT_EQ(wide[6], 0xD83D);
    EXPECT_EQ(wide[8], 0);

    size = 0;
    EXPECT_EQ(s->CopyToUTF8String(&text, nullptr, &size), suiteError_StringBufferTooSmall);
    EXPECT_EQ(size, 12u);

    PrSDKString copy;
    ASSERT_EQ(s->AllocateFromUTF16(wide, &copy), suiteError_NoError);
    EXPECT_EQ(host.strings().textOrEmpty(copy), "h\xC3\xA9llo \xF0\x9F\x98\x80");
    EXPECT_EQ(host.leakReport().strings.size(), 2u);

    const PrSDKString empty = {{0, 0}};
    const PrSDKString forged = {{12345, 678}};
    EXPECT_EQ(s->DisposeString(&empty), suiteError_NoError);
    EXPECT_EQ(s->DisposeString(&text), suiteError_NoError);
    EXPECT_EQ(s->DisposeString(&text), suiteError_StringNotFound);
    EXPECT_EQ(s->CopyToUTF8String(&forged, nullptr, &size), suiteError_StringNotFound);
    EXPECT_EQ(s->DisposeString(&copy), suiteError_NoError);
    host.suites().release(kPrSDKStringSuite, kPrSDKStringSuiteVersion);
    const twSimLeakReport report = host.leakReport();
    EXPECT_TRUE(report.strings.empty() && report.suites.empty());
    EXPECT_EQ(report.misuse.size(), 2u);
}

TEST(SimHostSuites, VersionsAreServedAndCountedByName) {
    twSimHost host;
    SPBasicSuite* basic = host.stdParms()->piSuites->utilFuncs->getSPBasicSuite();
    const void* v1 = nullptr;
    const void* v6 = nullptr;
    const void* v8 = nullptr;
    EXPECT_EQ(basic->AcquireSuite(kPrSDKPPixCacheSuite, 1, &v1), kSPNoError);
    EXPECT_EQ(basic->AcquireSuite(kPrSDKPPixCacheSuite, 6, &v6), kSPNoError);
    EXPECT_EQ(basic->AcquireSuite(kPrSDKPPixCacheSuite, 8, &v8), kSPNoError);
    // Version 8 only appends to 6; version 1 has other parameter lists.
    EXPECT_EQ(v6, v8);
    EXPECT_NE(v1, v6);
    EXPECT_EQ(host.suites().outstanding(kPrSDKPPixCacheSuite), 3);

    const void* none = &v1;
    EXPECT_EQ(basic->AcquireSuite(kPrSDKPPixCacheSuite, 9, &none), kSPSuiteNotFoundError);
    EXPECT_EQ(none, nullptr);
    host.suites().setAvailable(kPrSDKTimeSuite, false);
    EXPECT_EQ(basic->AcquireSuite(kPrSDKTimeSuite, 1, &none), kSPSuiteNotFoundError);

    EXPECT_EQ(basic->ReleaseSuite(kPrSDKPPixCacheSuite, 8), kSPNoError);
    EXPECT_EQ(basic->ReleaseSuite(kPrSDKPPixCacheSuite, 8), kSPNoError);  // settles the v6 or v1 acquire
    EXPECT_EQ(host.diagnostics().count(twSimIssue::ReleaseVersionMismatch), 1u);
    EXPECT_EQ(host.leakReport().suites.size(), 1u);
    EXPECT_EQ(basic->ReleaseSuite(kPrSDKPPixCacheSuite, 1), kSPNoError);
    EXPECT_TRUE(host.leakReport().suites.empty());
    EXPECT_NE(basic->ReleaseSuite(kPrSDKPPixCacheSuite, 1), kSPNoError);
    EXPECT_EQ(host.diagnostics().count(twSimIssue::ReleaseNotAcquired), 1u);

    EXPECT_TRUE(basic->IsEqual("a", "a"));
    EXPECT_FALSE(basic->IsEqual("a", "b"));
    EXPECT_EQ(basic->Undefined(), kSPUnimplementedError);
}

TEST(SimHostFrames, ReferencesBelongToTheirHolders) {
    twSimHost host;
    const auto* ppix = Acquire<PrSDKPPixSuite>(host, kPrSDKPPixSuite, 1);
    const auto* creator = Acquire<PrSDKPPixCreatorSuite>(host, kPrSDKPPixCreatorSuite, 1);
    const auto* cache = Acquire<PrSDKPPixCacheSuite>(host, kPrSDKPPixCacheSuite, 8);

    PPixHand h = nullptr;
    const prRect rect = {0, 0, 4, 2};
    EXPECT_EQ(creator->CreatePPix(&h, PrPPixBufferAccess_ReadOnly, PrPixelFormat_BGRA_4444_8u, &rect),
              suiteError_InvalidParms);
    ASSERT_EQ(creator->CreatePPix(&h, PrPPixBufferAccess_ReadWrite, PrPixelFormat_BGRA_4444_8u, &rect),
              suiteError_NoError);
    prRect bounds = {};
    csSDK_int32 rowBytes = 0;
    PrPixelFormat format = PrPixelFormat_Any;
    EXPECT_EQ(ppix->GetBounds(h, &bounds), suiteError_NoError);
    const csSDK_int32 right = bounds.right, bottom = bounds.bottom;  // packed record: copy out
    EXPECT_EQ(right, 4);
    EXPECT_EQ(bottom, 2);
    EXPECT_EQ(ppix->GetRowBytes(h, &rowBytes), suiteError_NoError);
    EXPECT_EQ(rowBytes, 16);
    EXPECT_EQ(ppix->GetPixelFormat(h, &format), suiteError_NoError);
    EXPECT_EQ(format, PrPixelFormat_BGRA_4444_8u);

    // A read-only clone refuses writers.
    PPixHand clone = nullptr;
    char* pixels = nullptr;
    ASSERT_EQ(creator->ClonePPix(h, &clone, PrPPixBufferAccess_ReadOnly), suiteError_NoError);
    EXPECT_EQ(ppix->GetPixels(clone, PrPPixBufferAccess_WriteOnly, &pixels), suiteError_InvalidParms);
    EXPECT_EQ(ppix->GetPixels(clone, PrPPixBufferAccess_ReadOnly, &pixels), suiteError_NoError);
    EXPECT_EQ(ppix->Dispose(clone), suiteError_NoError);

    // The cache takes its own reference; the creator's dispose leaves the frame alive.
    ASSERT_EQ(cache->AddFrameToCache(5, 0, h, 1, nullptr, 0), suiteError_NoError);
    EXPECT_EQ(ppix->Dispose(h), suiteError_NoError);
    EXPECT_TRUE(host.frames().isAlive(h));
    EXPECT_TRUE(host.leakReport().frames.empty());
    // The cache's reference is not the plug-in's to drop.
    EXPECT_EQ(ppix->Dispose(h), suiteError_InvalidParms);
    EXPECT_EQ(host.diagnostics().count(twSimIssue::UnknownFrame), 1u);

    EXPECT_EQ(cache->ExpireAllPPixesFromCache(), suiteError_NoError);
    EXPECT_FALSE(host.frames().isAlive(h));
    EXPECT_EQ(ppix->Dispose(h), suiteError_InvalidParms);
    EXPECT_EQ(host.diagnostics().count(twSimIssue::UnknownFrame), 2u);
    for (const char* name : {kPrSDKPPixSuite, kPrSDKPPixCreatorSuite}) host.suites().release(name, 1);
    host.suites().release(kPrSDKPPixCacheSuite, 8);
}

TEST(SimHostFrameCache, KeysAreExactAndFormatsTriedInOrder) {
    twSimHost host;
    const auto* cache = Acquire<PrSDKPPixCacheSuite>(host, kPrSDKPPixCacheSuite, 8);
    char prefs[4] = {1, 2, 3, 4};
    PrSDKColorSpaceID space = {{11, 22}};
    PPixHand small8 = NewFrame(host, 8, 4, PrPixelFormat_BGRA_4444_8u);
    PPixHand small32 = NewFrame(host, 8, 4, PrPixelFormat_BGRA_4444_32f);
    ASSERT_EQ(cache->AddFrameToCacheWithColorSpace(3, 0, small8, 10, kPrRenderQuality_Medium, prefs, 4, &space),
              suiteError_NoError);
    ASSERT_EQ(cache->AddFrameToCacheWithColorSpace(3, 0, small32, 10, kPrRenderQuality_Medium, prefs, 4, &space),
              suiteError_NoError);
    host.frames().dispose(small8);
    host.frames().dispose(small32);

    auto get = [&](imFrameFormat* formats, int n, PrRenderQuality quality, const char* p, int size,
                   PrSDKColorSpaceID* id) {
        PPixHand out = nullptr;
        EXPECT_EQ(cache->GetFrameFromCacheWithColorSpace(3, 0, 10, n, formats, &out, quality,
                                                         const_cast<char*>(p), size, id),
                  suiteError_NoError);
        if (out) host.frames().dispose(out);
        return out;
    };
    imFrameFormat prefer32[] = {{8, 4, PrPixelFormat_BGRA_4444_32f}, {8, 4, PrPixelFormat_BGRA_4444_8u}};
    imFrameFormat anySize8[] = {{0, 0, PrPixelFormat_BGRA_4444_8u}};
    imFrameFormat otherSize[] = {{16, 8, PrPixelFormat_Any}};
    EXPECT_EQ(get(prefer32, 2, kPrRenderQuality_Medium, prefs, 4, &space), small32);
    EXPECT_EQ(get(anySize8, 1, kPrRenderQuality_Medium, prefs, 4, &space), small8);
    EXPECT_EQ(get(otherSize, 1, kPrRenderQuality_Medium, prefs, 4, &space), nullptr);
    EXPECT_EQ(get(anySize8, 1, kPrRenderQuality_High, prefs, 4, &space), nullptr);
    EXPECT_EQ(get(anySize8, 1, kPrRenderQuality_Medium, prefs, 3, &space), nullptr);
    const char otherPrefs[4] = {1, 2, 3, 5};
    EXPECT_EQ(get(anySize8, 1, kPrRenderQuality_Medium, otherPrefs, 4, &space), nullptr);
    PrSDKColorSpaceID otherSpace = {{11, 23}};
    EXPECT_EQ(get(anySize8, 1, kPrRenderQuality_Medium, prefs, 4, &otherSpace), nullptr);
    // The old generation never sees new-generation entries.
    PPixHand out = nullptr;
    EXPECT_EQ(cache->GetFrameFromCache(3, 0, 10, 1, anySize8, &out, prefs, 4), suiteError_NoError);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(host.cache().stats().hits, 2u);
    EXPECT_EQ(host.cache().stats().misses, 6u);

    // A dependency names a cached frame and must be given back.
    prPluginID id;
    EXPECT_EQ(cache->RegisterDependencyOnFrameWithColorSpace(3, 0, 10, 1, anySize8, kPrRenderQuality_Medium, &id,
                                                             prefs, 4, &space),
              suiteError_NoError);
    EXPECT_EQ(host.leakReport().dependencies.size(), 1u);
    PPixHand named = nullptr;
    EXPECT_EQ(cache->GetNamedPPixFromCache(&id, &named), suiteError_NoError);
    EXPECT_EQ(named, small8);
    host.frames().dispose(named);
    EXPECT_EQ(cache->UnregisterDependencyOnNamedPPix(&id), suiteError_NoError);
    EXPECT_TRUE(host.leakReport().dependencies.empty());
    host.suites().release(kPrSDKPPixCacheSuite, 8);
    EXPECT_TRUE(host.leakReport().clean()) << host.leakReport().toString();
}

TEST(SimHostInfoSuites, TimeIdentityAndProjectAnswers) {
    twSimHostConfig config;
    config.identity = twSimIdentity::AfterEffects();
    config.identity.language = "fr_FR";
    twSimHost host(config);
    const auto* time = Acquire<PrSDKTimeSuite>(host, kPrSDKTimeSuite, 1);
    PrTime ticks = 0;
    EXPECT_EQ(time->GetTicksPerSecond(&ticks), suiteError_NoError);
    EXPECT_EQ(ticks, 254016000000LL);
    EXPECT_EQ(time->GetTicksPerVideoFrame(kVideoFrameRate_24Drop, &ticks), suiteError_NoError);
    EXPECT_EQ(ticks, 254016000000LL * 1001 / 24000);
    EXPECT_EQ(time->GetTicksPerVideoFrame(kVideoFrameRate_PAL, &ticks), suiteError_NoError);
    EXPECT_EQ(ticks, 254016000000LL / 25);
    EXPECT_EQ(time->GetTicksPerAudioSample(48000.0f, &ticks), suiteError_NoError);
    EXPECT_EQ(ticks, 5292000);
    EXPECT_EQ(time->GetTicksPerAudioSample(44100.5f, &ticks), suiteError_TimeRoundedAudioRate);
    EXPECT_EQ(ticks, 5759935);  // 5759934.7 rounded
    host.setFault(twSimFault::TicksPerSecond, true);
    EXPECT_EQ(time->GetTicksPerSecond(&ticks), suiteError_Fail);

    const auto* app = Acquire<PrSDKAppInfoSuite>(host, kPrSDKAppInfoSuite, 3);
    csSDK_uint32 code = 0;
    PrSDKAppInfoSuite::LanguageInfo language = {};
    EXPECT_EQ(app->GetAppInfo(PrSDKAppInfoSuite::kAppInfo_AppFourCC, &code), suiteError_NoError);
    EXPECT_EQ(code, kAppAfterEffects);
    EXPECT_EQ(app->GetAppInfo(PrSDKAppInfoSuite::kAppInfo_Language, &language), suiteError_NoError);
    EXPECT_STREQ(language.languageID, "fr_FR");

    // No project: the settings suite answers as in a helper process.
    const auto* settings = Acquire<PrSDKApplicationSettingsSuite>(host, kPrSDKApplicationSettingsSuite, 1);
    PrSDKString path = {};
    EXPECT_EQ(settings->GetCurrentProjectPath(&path), suiteError_InvalidCall);
    EXPECT_EQ(settings->GetScratchDiskFolder(kScratchDiskType_PreviewVideo, &path), suiteError_InvalidCall);
}

TEST(SimHostErrorSuite, EventsOfEveryVersionAreRecorded) {
    twSimHost host;
    const auto* v1 = Acquire<PrSDKErrorSuite1>(host, kPrSDKErrorSuite, 1);
    const auto* v3 = Acquire<PrSDKErrorSuite3>(host, kPrSDKErrorSuite, 3);
    v1->SetWarningString("careful", 0);
    const std::u16string title = u"BRAW - Title \u00e9";
    const std::u16string text = u"Details";
    std::vector<prUTF16Char> t(title.begin(), title.end()), d(text.begin(), text.end());
    t.push_back(0);
    d.push_back(0);
    v3->SetEventStringUnicode(PrSDKErrorSuite3::kEventTypeError | PrSDKErrorSuite3::kEventFlag_DecodeError, t.data(),
                              d.data());
    const auto events = host.events().all();
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[0].type, 2u);
    EXPECT_EQ(events[0].title, "careful");
    EXPECT_EQ(events[1].suiteVersion, 3);
    EXPECT_EQ(events[1].type, 3u);
    EXPECT_EQ(events[1].flags, static_cast<csSDK_uint32>(PrSDKErrorSuite3::kEventFlag_DecodeError));
    EXPECT_EQ(events[1].title, "BRAW - Title \xC3\xA9");
    EXPECT_EQ(events[1].description, "Details");
    EXPECT_EQ(host.events().countWithTitle("BRAW - "), 1u);
}

TEST(SimHostAudio, IntegerSamplesMapToFullScaleFloats) {
    // Two channels, interleaved: 24-bit little-endian, with the sign extended.
    char packed[12] = {0, 0, 0x40, 0, 0, static_cast<char>(0xC0), static_cast<char>(0xFF), static_cast<char>(0xFF),
                       0x7F, 0, 0, static_cast<char>(0x80)};
    float left[2], right[2];
    float* channels[2] = {left, right};
    ASSERT_EQ(twSimAudio::FromInterleaved24(packed, channels, 2, 2), suiteError_NoError);
    EXPECT_FLOAT_EQ(left[0], 0.5f);
    EXPECT_FLOAT_EQ(right[0], -0.5f);
    EXPECT_FLOAT_EQ(left[1], 8388607.0f / 8388608.0f);
    EXPECT_FLOAT_EQ(right[1], -1.0f);

    char back[12];
    ASSERT_EQ(twSimAudio::ToInterleaved24(channels, back, 2, 2), suiteError_NoError);
    EXPECT_EQ(std::memcmp(back, packed, 12), 0);

    float loud[3] = {1.5f, -2.0f, 0.25f};
    float* one[1] = {loud};
    short s16[3];
    char s8[3];
    ASSERT_EQ(twSimAudio::ToInterleaved16(one, s16, 1, 3), suiteError_NoError);
    EXPECT_EQ(s16[0], 32767);
    EXPECT_EQ(s16[1], -32768);
    EXPECT_EQ(s16[2], 8192);
    ASSERT_EQ(twSimAudio::ToInterleaved8(one, s8, 1, 3), suiteError_NoError);
    EXPECT_EQ(s8[2], 32);
    EXPECT_EQ(twSimAudio::FromInterleaved16(s16, nullptr, 1, 3), suiteError_InvalidParms);
}

TEST(SimHostText, ConversionsAndIdentityParsing) {
    EXPECT_EQ(twSimText::Utf16ToUtf8(twSimText::Utf8ToUtf16("a\xC3\xA9\xF0\x9F\x98\x80")), "a\xC3\xA9\xF0\x9F\x98\x80");
    EXPECT_EQ(twSimText::Utf8ToUtf16("a\xFF" "b"), std::u16string(u"a\uFFFDb"));
    EXPECT_EQ(twSimText::Utf8ToUtf16("\xC0\xAF"), std::u16string(u"\uFFFD\uFFFD"));  // overlong
    EXPECT_EQ(twSimText::FourCCHighFirst(kAppMediaEncoder), "AME ");
    EXPECT_EQ(twSimText::FourCCLowFirst(PrPixelFormat_BGRA_4444_8u), "bgra");
    prUTF16Char field[4];
    twSimText::CopyToUtf16Field("abcdef", field, 4);
    EXPECT_EQ(twSimText::Utf16ToUtf8(field, 4), "abc");

    twSimIdentity id;
    EXPECT_TRUE(id.setVersion("25.1.3"));
    EXPECT_EQ(id.versionText(), "25.1.3");
    EXPECT_TRUE(id.setVersion("12"));
    EXPECT_EQ(id.versionText(), "12.0.0");
    for (const char* bad : {"", "1.2.3.4", "a.b", "1..2", "1.2."}) {
        EXPECT_FALSE(id.setVersion(bad)) << bad;
        EXPECT_EQ(id.versionText(), "12.0.0");
    }
    EXPECT_TRUE(id.setApp("ame"));
    EXPECT_EQ(id.appCode, kAppMediaEncoder);
    EXPECT_FALSE(id.setApp("photoshop"));
}
