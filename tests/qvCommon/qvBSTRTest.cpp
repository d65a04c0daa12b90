#include "String/CFStringHelpers.h"
#include "String/qvBSTR.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>
#include <vector>

TEST(qvBSTR, HoldsOurStringsUntilReleased) {
    qvBSTR s;
    EXPECT_TRUE(s.IsNull());
    EXPECT_EQ(s.ToString(), "");
    s.release();  // safe on null

    s.SetFromUtf8Str("clip \xC3\xA9.braw");
    ASSERT_FALSE(s.IsNull());
    EXPECT_TRUE(qvPlatform::IsOwnedString(s.Get()));
    EXPECT_EQ(s.ToString(), "clip \xC3\xA9.braw");
    EXPECT_EQ(s.ToQvUtf8String().Str(), "clip \xC3\xA9.braw");
    EXPECT_EQ(s.ToWstring(), L"clip \u00E9.braw");

    // Copies share the handle; the second release finds nothing left to free.
    qvBSTR copy = s;
    const char* handle = s.Get();
    s.release();
    EXPECT_TRUE(s.IsNull());
    EXPECT_FALSE(qvPlatform::IsOwnedString(handle));
    copy.release();
    EXPECT_TRUE(copy.IsNull());
}

TEST(qvBSTR, LibraryStringsAreNeverFreed) {
    static const char kLibraryText[] = "owned by the library";
    qvBSTR s;
    s.m_str = kLibraryText;
    EXPECT_EQ(s.ToString(), kLibraryText);
    s.release();  // would crash the sanitizers if it freed the text
    EXPECT_TRUE(s.IsNull());
    EXPECT_STREQ(kLibraryText, "owned by the library");

    // The library's out-parameter form writes straight into the handle.
    qvBSTR out;
    const char** slot = reinterpret_cast<const char**>(&out);
    *slot = kLibraryText;
    EXPECT_EQ(out.Get(), kLibraryText);
}

TEST(qvBSTR, SettingAgainDoesNotReleaseTheOldHandle) {
    qvBSTR s;
    s.SetFromUtf16Wstr(L"first \u20AC");
    EXPECT_EQ(s.ToString(), "first \xE2\x82\xAC");
    qvBSTR old = s;
    s.SetFromUtf8Str("second");
    EXPECT_TRUE(qvPlatform::IsOwnedString(old.Get()));
    EXPECT_EQ(old.ToString(), "first \xE2\x82\xAC");
    old.release();
    s.release();
}

TEST(qvBSTR, FillCopiesIntoCallerBuffers) {
    qvBSTR s;
    s.SetFromUtf8Str("abcdef");
    char narrow[8];
    std::memset(narrow, '#', sizeof(narrow));
    s.FillStr(narrow, 4);
    EXPECT_EQ(std::string(narrow, 5), "abcd#");  // strncpy: no terminator when full
    s.FillStr(narrow, 8);
    EXPECT_STREQ(narrow, "abcdef");

    wchar_t wide[16];
    s.FillWstr(wide, 0);  // the size is not used
    EXPECT_STREQ(wide, L"abcdef");
    s.release();
}

TEST(CFStringHelpers, PlatformStringsFollowTheBufferRule) {
    EXPECT_EQ(StringFromCFString(nullptr), "");
    qvPlatform::StringRef ascii = CFStringFromString("plain");
    EXPECT_EQ(StringFromCFString(ascii), "plain");
    qvPlatform::StringRef accented = CFStringFromString("caf\xC3\xA9");
    EXPECT_EQ(StringFromCFString(accented), "");
    EXPECT_EQ(NSStringToString(accented).Str(), "caf\xC3\xA9");
    EXPECT_EQ(NSStringToString(nullptr).Size(), 0u);
    EXPECT_EQ(StringFromCFString("bad \xFF"), "");
    qvPlatform::ReleaseString(ascii);
    qvPlatform::ReleaseString(accented);
    EXPECT_FALSE(qvPlatform::IsOwnedString(ascii));
}

// Decoder callbacks and host threads make and release strings at once; the
// record of which strings are ours must stay consistent under that.
TEST(qvStringConcurrency, StringsMadeAndReleasedOnManyThreads) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 300;
    std::vector<std::thread> threads;
    std::vector<int> failures(kThreads, 0);
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([t, &failures] {
            for (int i = 0; i < kRounds; ++i) {
                qvUtf8String text = qvUtf8String("thread ") + std::to_string(t) + " \xC3\xA9 " + std::to_string(i);
                qvBSTR s;
                s.SetFromUtf8Str(text);
                if (s.ToQvUtf8String() != text) ++failures[t];
                if (qvUtf8String(s.ToWstring()) != text) ++failures[t];
                if (!qvPlatform::IsOwnedString(s.Get())) ++failures[t];
                s.release();
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (int t = 0; t < kThreads; ++t) EXPECT_EQ(failures[t], 0) << "thread " << t;
}
