#include "String/qvString.h"
#include "String/qvUtf8Char.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

using namespace qvString;

namespace {
// U+00E9, U+20AC, U+1F600, U+10FFFF.
const char kUtf8[] = "e\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF";
const char16_t kUtf16[] = u"e\u00E9\u20AC\U0001F600\U0010FFFF";
const char32_t kUtf32[] = U"e\u00E9\u20AC\U0001F600\U0010FFFF";
const wchar_t kWide[] = L"e\u00E9\u20AC\U0001F600\U0010FFFF";
}  // namespace

TEST(qvStringConversion, UnicodeFormsRoundTrip) {
    EXPECT_EQ(Utf8ToUtf16(kUtf8), std::u16string(kUtf16));
    EXPECT_EQ(Utf16ToUtf8(kUtf16), kUtf8);
    EXPECT_EQ(Utf8ToUtf32(kUtf8), std::u32string(kUtf32));
    EXPECT_EQ(Utf32ToUtf8(kUtf32), kUtf8);
    EXPECT_EQ(Utf8ToWstring(kUtf8), std::wstring(kWide));
    EXPECT_EQ(WstringToUtf8(kWide), kUtf8);
    EXPECT_EQ(WstringToUtf16(kWide), std::u16string(kUtf16));
    EXPECT_EQ(Utf16ToWstring(kUtf16), std::wstring(kWide));

    // Longer than the conversion's stack area.
    std::string longText;
    for (int i = 0; i < 3000; ++i) longText += "\xE2\x82\xAC";
    std::u16string longUnits = Utf8ToUtf16(longText);
    EXPECT_EQ(longUnits.size(), 3000u);
    EXPECT_EQ(Utf16ToUtf8(longUnits), longText);

    EXPECT_TRUE(Utf8ToUtf16("").empty());
    EXPECT_TRUE(Utf16ToUtf8(u"").empty());
    EXPECT_TRUE(Utf32ToUtf8(U"").empty());
}

TEST(qvStringConversion, WindowsCodePageRoundTrips) {
    std::string defined;
    for (int b = 1; b < 256; ++b) {
        if (b == 0x98) continue;  // the one byte the code page leaves undefined
        defined.push_back(static_cast<char>(b));
    }
    std::string utf8 = AnsiToUtf8(defined);
    ASSERT_FALSE(utf8.empty());
    EXPECT_EQ(Utf8ToAnsi(utf8), defined);
    EXPECT_EQ(AnsiToUtf8("\xC0\xFF"), "\xD0\x90\xD1\x8F");
    EXPECT_EQ(AnsiToUtf8("\x88"), "\xE2\x82\xAC");
    EXPECT_EQ(AnsiToUtf16("\xC0"), u"\u0410");
    EXPECT_EQ(Utf16ToAnsi(u"\u0410b"), "\xC0" "b");

    // Failures are whole: nothing of the convertible part comes back.
    EXPECT_TRUE(AnsiToUtf8("ab\x98").empty());
    EXPECT_TRUE(Utf8ToAnsi("ab\xE4\xB8\xAD").empty());
    EXPECT_TRUE(Utf16ToAnsi(u"x\u4E2D").empty());
}

TEST(qvStringConversion, MalformedUtf8GivesNothing) {
    const char* malformed[] = {
        "abc\xFF",             // not a lead byte
        "abc\x80",             // stray continuation
        "abc\xE2\x82",         // cut-off sequence
        "\xC0\xAF",            // overlong
        "\xE0\x80\xAF",        // overlong
        "\xED\xA0\x80",        // encoded surrogate
        "\xF4\x90\x80\x80",    // above U+10FFFF
    };
    for (const char* text : malformed) {
        EXPECT_TRUE(Utf8ToUtf16(text).empty()) << text;
        EXPECT_TRUE(Utf8ToUtf32(text).empty()) << text;
        EXPECT_TRUE(Utf8ToWstring(text).empty()) << text;
        EXPECT_TRUE(Utf8ToAnsi(text).empty()) << text;
    }
    // The output runs to its first zero unit.
    EXPECT_EQ(Utf8ToUtf16(std::string("a\0b", 3)), u"a");
}

TEST(qvStringConversion, SurrogatesAndOutOfRangeValuesFailTheWholeText) {
    const std::u16string lonely[] = {
        std::u16string(u"a") + char16_t(0xD800),                 // high surrogate at the end
        std::u16string(u"a") + char16_t(0xD800) + u"b",          // high surrogate alone
        std::u16string(u"a") + char16_t(0xDC00) + char16_t(0xD800),  // low surrogate first
    };
    for (const std::u16string& units : lonely) {
        EXPECT_TRUE(Utf16ToUtf8(units).empty());
        EXPECT_TRUE(Utf16ToWstring(units).empty());
    }
    EXPECT_TRUE(Utf32ToUtf8(std::u32string(U"ab") + char32_t(0xD800)).empty());
    EXPECT_TRUE(Utf32ToUtf8(std::u32string(U"ab") + char32_t(0xDFFF)).empty());
    EXPECT_TRUE(Utf32ToUtf8(std::u32string(U"ab") + char32_t(0x110000)).empty());
    EXPECT_TRUE(WstringToUtf8(std::wstring(L"ab") + wchar_t(-1)).empty());
    EXPECT_EQ(Utf32ToUtf8(std::u32string(1, char32_t(0xD7FF))), "\xED\x9F\xBF");
    EXPECT_EQ(Utf32ToUtf8(std::u32string(1, char32_t(0xE000))), "\xEE\x80\x80");
    EXPECT_EQ(Utf32ToUtf8(std::u32string(1, char32_t(0x7F))), "\x7F");
    EXPECT_EQ(Utf32ToUtf8(std::u32string(1, char32_t(0x80))), "\xC2\x80");
    EXPECT_EQ(Utf32ToUtf8(std::u32string(1, char32_t(0x7FF))), "\xDF\xBF");
    EXPECT_EQ(Utf32ToUtf8(std::u32string(1, char32_t(0x800))), "\xE0\xA0\x80");
    EXPECT_EQ(Utf32ToUtf8(std::u32string(1, char32_t(0xFFFF))), "\xEF\xBF\xBF");
    EXPECT_EQ(Utf32ToUtf8(std::u32string(1, char32_t(0x10000))), "\xF0\x90\x80\x80");
}

TEST(qvStringConversion, FixedSizeUnitLists) {
    std::vector<char16_t> roomy = WstringToUtf16(L"ab\U0001F600", 6);
    EXPECT_EQ(roomy, (std::vector<char16_t>{u'a', u'b', 0xD83D, 0xDE00, 0, 0}));
    std::vector<char16_t> tight = WstringToUtf16(L"abcd", 3);
    EXPECT_EQ(tight, (std::vector<char16_t>{u'a', u'b', u'c'}));
    std::vector<char16_t> tightZ = WstringToUtf16z(L"abcd", 3);
    EXPECT_EQ(tightZ, (std::vector<char16_t>{u'a', u'b', 0}));
    EXPECT_TRUE(WstringToUtf16(L"abc", 0).empty());
    EXPECT_TRUE(WstringToUtf16z(L"abc", 0).empty());
    EXPECT_EQ(WstringToUtf16z(L"", 2), (std::vector<char16_t>{0, 0}));
}

TEST(qvStringConversion, EncodeStringEdges) {
    EXPECT_TRUE(macEncodeString("abc", 0, "UTF-8", "UTF-16LE").empty());
    EXPECT_TRUE(macEncodeString(static_cast<const char*>(nullptr), 3, "UTF-8", "UTF-16LE").empty());
    EXPECT_TRUE(macEncodeString("abc", 3, "NO-SUCH-PAGE", "UTF-16LE").empty());
    EXPECT_EQ(macEncodeString("abcdef", 3, "UTF-8", "UTF-16LE"), u"abc");
    EXPECT_EQ(macEncodeString(u"xyz", 2, "UTF-16LE", "UTF-8"), "xy");
}

TEST(qvStringConversion, CaseMappingKeepsOnlyAsciiText) {
    EXPECT_EQ(Utf8ToLower("ABC xyz 09 [@]"), "abc xyz 09 [@]");
    EXPECT_EQ(Utf8ToUpper("abc XYZ 09 `{"), "ABC XYZ 09 `{");
    EXPECT_EQ(Utf8ToLower(""), "");
    EXPECT_EQ(Utf8ToLower("Caf\xC3\xA9"), "");
    EXPECT_EQ(Utf8ToUpper("\xC3\xA9"), "");
    EXPECT_EQ(Utf8ToUpper("stra\xC3\x9F" "e"), "");
    EXPECT_EQ(Utf8ToLower("AB\xFF"), "");  // unreadable
}

TEST(qvUtf8Char, ConstructionFromEachCharacterType) {
    EXPECT_TRUE(qvUtf8Char().Empty());
    EXPECT_TRUE(qvUtf8Char('\0').Empty());
    EXPECT_EQ(qvUtf8Char('A').Str(), "A");
    EXPECT_EQ(qvUtf8Char('\xC0').Str(), "\xD0\x90");  // Windows-1251, not a bare byte
    EXPECT_TRUE(qvUtf8Char('\x98').Empty());
    EXPECT_EQ(qvUtf8Char(L'\u00E9').Str(), "\xC3\xA9");
    EXPECT_EQ(qvUtf8Char(u'\u20AC').Str(), "\xE2\x82\xAC");
    EXPECT_TRUE(qvUtf8Char(char16_t(0xD800)).Empty());
    EXPECT_EQ(qvUtf8Char(U'\U0001F600').Str(), "\xF0\x9F\x98\x80");
    EXPECT_TRUE(qvUtf8Char(char32_t(0x110000)).Empty());
    EXPECT_TRUE(qvUtf8Char(char32_t(0xDC00)).Empty());

    qvUtf8Char built;
    built.AppendString("\xC3");
    built.AppendString(std::string("\xA9"));
    EXPECT_EQ(built, qvUtf8Char(U'\u00E9'));
    EXPECT_EQ(built.Size(), 2u);
}

TEST(qvUtf8Char, ComparisonsAndOrder) {
    qvUtf8Char e(U'\u00E9');
    EXPECT_TRUE(e == L'\u00E9');
    EXPECT_TRUE(e == u'\u00E9');
    EXPECT_TRUE(e == U'\u00E9');
    EXPECT_TRUE(e != 'e');
    EXPECT_TRUE(qvUtf8Char('\xE9') == U'\u0439');
    EXPECT_FALSE(qvUtf8Char() == 'a');
    EXPECT_TRUE(qvUtf8Char() == qvUtf8Char('\0'));

    EXPECT_TRUE(qvUtf8Char('7').IsDigit());
    EXPECT_FALSE(qvUtf8Char('x').IsDigit());
    EXPECT_FALSE(qvUtf8Char().IsDigit());
    EXPECT_FALSE(qvUtf8Char(U'\u0663').IsDigit());

    // Unsigned byte order: a multi-byte character sorts after every ASCII one.
    std::set<qvUtf8Char> set{e, qvUtf8Char('z'), qvUtf8Char('a'), qvUtf8Char('z')};
    ASSERT_EQ(set.size(), 3u);
    auto it = set.begin();
    EXPECT_EQ(*it++, 'a');
    EXPECT_EQ(*it++, 'z');
    EXPECT_EQ(*it, e);
    EXPECT_TRUE(qvUtf8Char() < qvUtf8Char('a'));
    qvUtf8Char prefix;
    prefix.AppendString("\xC3");
    EXPECT_TRUE(prefix < e);
    EXPECT_FALSE(e < prefix);
}
