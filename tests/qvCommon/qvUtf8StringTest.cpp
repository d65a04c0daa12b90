#include "String/qvUtf8String.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <set>
#include <string>
#include <vector>

namespace {

const size_t npos = qvUtf8String::npos;

// "aé€😀": characters of 1, 2, 3 and 4 bytes.
const char kMixed[] = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80";

std::vector<std::string> fields(const std::vector<qvUtf8String>& list) {
    std::vector<std::string> out;
    for (const qvUtf8String& s : list) out.push_back(s.Str());
    return out;
}

}  // namespace

TEST(qvUtf8String, CharSizeReadsTheLeadByteOnly) {
    EXPECT_EQ(qvUtf8String::CharSize(nullptr), 0u);
    EXPECT_EQ(qvUtf8String::CharSize(""), 0u);
    EXPECT_EQ(qvUtf8String::CharSize("A"), 1u);
    EXPECT_EQ(qvUtf8String::CharSize("\xC3"), 2u);
    EXPECT_EQ(qvUtf8String::CharSize("\xE2"), 3u);
    EXPECT_EQ(qvUtf8String::CharSize("\xF0"), 4u);
    EXPECT_EQ(qvUtf8String::CharSize("\x80"), 0u);
    EXPECT_EQ(qvUtf8String::CharSize("\xBF"), 0u);
    EXPECT_EQ(qvUtf8String::CharSize("\xF8"), 0u);
    EXPECT_EQ(qvUtf8String::CharSize("\xFF"), 0u);
    // Continuation bytes are not looked at: an overlong lead still counts.
    EXPECT_EQ(qvUtf8String::CharSize("\xC0\x41"), 2u);
}

TEST(qvUtf8String, TheWalkDecidesLengthAndEmptiness) {
    qvUtf8String mixed(kMixed);
    EXPECT_EQ(mixed.Length(), 4u);
    EXPECT_EQ(mixed.Size(), 10u);
    EXPECT_EQ(mixed.length(), 10u);  // lower-case length counts bytes

    // A cut-off last sequence makes the whole string empty to character operations.
    qvUtf8String cut("a\xE2");
    EXPECT_EQ(cut.Length(), 0u);
    EXPECT_EQ(cut.Size(), 2u);
    EXPECT_TRUE(cut.Empty());
    EXPECT_TRUE(cut.Substr(0).Str().empty());
    EXPECT_FALSE(cut.RemoveAt(0));
    EXPECT_FALSE(cut.ReplaceAt(0, 'x'));
    EXPECT_EQ(cut.Str(), "a\xE2");
    cut.TrimLeft('z');
    EXPECT_EQ(cut.Size(), 0u);

    // A stop at a byte that cannot lead counts what was walked.
    EXPECT_EQ(qvUtf8String("ab\xFF" "cd").Length(), 2u);
    qvUtf8String leadingContinuation("\x80" "abc");
    EXPECT_TRUE(leadingContinuation.Empty());
    EXPECT_EQ(leadingContinuation.Size(), 4u);

    // A NUL ends every character operation.
    qvUtf8String withNul("ab\0cd", 5);
    EXPECT_EQ(withNul.Size(), 5u);
    EXPECT_EQ(withNul.Length(), 2u);
}

TEST(qvUtf8String, AddressingByCharacter) {
    qvUtf8String s(kMixed);
    EXPECT_EQ(s.OffsetOf(0), 0u);
    EXPECT_EQ(s.OffsetOf(1), 1u);
    EXPECT_EQ(s.OffsetOf(2), 3u);
    EXPECT_EQ(s.OffsetOf(3), 6u);
    EXPECT_EQ(s.OffsetOf(4), 0u);
    EXPECT_EQ(s.SizeOf(0), 1u);
    EXPECT_EQ(s.SizeOf(1), 2u);
    EXPECT_EQ(s.SizeOf(2), 3u);
    EXPECT_EQ(s.SizeOf(3), 4u);
    EXPECT_EQ(s.SizeOf(4), 0u);

    EXPECT_EQ(s.PosToBitPos(3), 6u);
    EXPECT_EQ(s.PosToBitPos(4), 10u);
    EXPECT_EQ(s.PosToBitPos(99), 10u);
    qvUtf8String invalid("ab\xFF");
    EXPECT_EQ(invalid.PosToBitPos(1), 1u);
    EXPECT_EQ(invalid.PosToBitPos(2), npos);

    EXPECT_EQ(s.PtrToPos(s.c_str()), 0u);
    EXPECT_EQ(s.PtrToPos(s.c_str() + 3), 2u);
    EXPECT_EQ(s.PtrToPos(s.c_str() + 2), npos);  // inside a sequence
    EXPECT_EQ(s.PtrToPos(s.c_str() + 10), npos);
    EXPECT_EQ(s.PtrToPos(nullptr), npos);

    EXPECT_EQ(s.CharAt(2).Str(), "\xE2\x82\xAC");
    EXPECT_EQ(s[1].Str(), "\xC3\xA9");
    EXPECT_EQ(s.at(3).Str(), "\xF0\x9F\x98\x80");
    EXPECT_TRUE(s.CharAt(4).Empty());
    EXPECT_EQ(s.LastChar().Str(), "\xF0\x9F\x98\x80");
    EXPECT_EQ(s.Last().Str(), "\xF0\x9F\x98\x80");
    EXPECT_TRUE(qvUtf8String().LastChar().Empty());
}

TEST(qvUtf8String, EditsAtAnIndex) {
    qvUtf8String s(kMixed);
    EXPECT_TRUE(s.RemoveAt(1));
    EXPECT_EQ(s.Str(), "a\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_FALSE(s.RemoveAt(3));
    EXPECT_TRUE(s.ReplaceAt(1, qvUtf8Char('x')));
    EXPECT_EQ(s.Str(), "ax\xF0\x9F\x98\x80");
    EXPECT_FALSE(s.ReplaceAt(3, qvUtf8Char('x')));

    qvUtf8String t("\xC3\xA9z");
    EXPECT_TRUE(t.InsertAt(1, qvUtf8Char(U'\u20AC')));
    EXPECT_EQ(t.Str(), "\xC3\xA9\xE2\x82\xAC" "z");
    EXPECT_TRUE(t.InsertAt(npos, qvUtf8Char('!')));
    EXPECT_TRUE(t.InsertAt(t.Length(), qvUtf8Char('?')));
    EXPECT_EQ(t.Str(), "\xC3\xA9\xE2\x82\xAC" "z!?");
    EXPECT_FALSE(t.InsertAt(t.Length() + 1, qvUtf8Char('#')));
    EXPECT_EQ(t.Str(), "\xC3\xA9\xE2\x82\xAC" "z!?");
    t.Clear();
    EXPECT_EQ(t.Size(), 0u);
}

TEST(qvUtf8String, TrimsRemoveRunsOfOneCharacter) {
    qvUtf8String s("\xC3\xA9\xC3\xA9" "a\xC3\xA9" "b\xC3\xA9");
    qvUtf8Char e(U'\u00E9');
    qvUtf8String left(s), right(s), both(s);
    left.TrimLeft(e);
    right.TrimRight(e);
    both.Trim(e);
    EXPECT_EQ(left.Str(), "a\xC3\xA9" "b\xC3\xA9");
    EXPECT_EQ(right.Str(), "\xC3\xA9\xC3\xA9" "a\xC3\xA9" "b");
    EXPECT_EQ(both.Str(), "a\xC3\xA9" "b");

    qvUtf8String only("   ");
    only.Trim(' ');
    EXPECT_EQ(only.Size(), 0u);
    qvUtf8String onlyRight("xx");
    onlyRight.TrimRight('x');
    EXPECT_EQ(onlyRight.Size(), 0u);

    // One pass in the order tab, line feed, carriage return, blank.
    qvUtf8String a("abc\n ");
    a.TrimRightAll();
    EXPECT_EQ(a.Str(), "abc\n");
    qvUtf8String b("abc\t \r\n \n");
    b.TrimRightAll();
    EXPECT_EQ(b.Str(), "abc\t \r\n");
    qvUtf8String c("abc \n");
    c.TrimRightAll();
    EXPECT_EQ(c.Str(), "abc");
}

TEST(qvUtf8String, RemoveReplaceAndReplaceString) {
    qvUtf8String s("a\xC3\xA9" "b\xC3\xA9");
    s.Remove(qvUtf8Char(U'\u00E9'));
    EXPECT_EQ(s.Str(), "ab");

    qvUtf8String path("C:\\dir\\file");
    path.Replace('\\', '/');
    EXPECT_EQ(path.Str(), "C:/dir/file");
    path.Replace('/', '/');
    EXPECT_EQ(path.Str(), "C:/dir/file");
    path.Replace(qvUtf8Char('/'), qvUtf8Char(U'\u20AC'));
    EXPECT_EQ(path.Str(), "C:\xE2\x82\xAC" "dir\xE2\x82\xAC" "file");

    qvUtf8String r("aXa");
    EXPECT_TRUE(r.ReplaceString("a", "aa"));
    EXPECT_EQ(r.Str(), "aaXaa");
    EXPECT_FALSE(r.ReplaceString("q", "z"));
    EXPECT_FALSE(r.ReplaceString("", "z"));
    EXPECT_TRUE(r.ReplaceString("aa", ""));
    EXPECT_EQ(r.Str(), "X");
}

TEST(qvUtf8String, FilterAndAppendWorkOnBytes) {
    qvUtf8String s("a\tb\xC3\xA9\x7F c\n");
    s.FilterNonPrintableChars();
    EXPECT_EQ(s.Str(), "ab c");

    std::string tail("x\0y", 3);
    qvUtf8String appended("a");
    appended.Append(qvUtf8String(tail));
    EXPECT_EQ(appended.Str(), "ax");
    qvUtf8String added("a");
    added += qvUtf8String(tail);
    EXPECT_EQ(added.Str(), std::string("ax\0y", 4));
}

TEST(qvUtf8String, IndexOfCountsCharacters) {
    qvUtf8String s("\xC3\xA9" "a\xE2\x82\xAC" "ba");
    EXPECT_EQ(s.IndexOf("b"), 3u);
    EXPECT_EQ(s.IndexOf("a"), 1u);
    EXPECT_EQ(s.IndexOf("a", 2), 4u);
    EXPECT_EQ(s.IndexOf("a", 5), npos);
    EXPECT_EQ(s.IndexOf("zz"), npos);
    EXPECT_EQ(s.IndexOf(""), 0u);
    EXPECT_EQ(s.IndexOf("", 4), 4u);
    EXPECT_EQ(s.IndexOf("", 5), npos);
    EXPECT_EQ(s.IndexOf(qvUtf8Char(U'\u20AC')), 2u);

    // The limit of LastIndexOf is a byte offset, the answer a character index.
    EXPECT_EQ(s.LastIndexOf("a"), 4u);
    EXPECT_EQ(s.LastIndexOf("a", 5), 1u);
    EXPECT_EQ(s.LastIndexOf("a", 1), npos);
    EXPECT_EQ(s.LastIndexOf("a", 2), 1u);
    EXPECT_EQ(s.LastIndexOf(""), npos);
    EXPECT_EQ(s.LastIndexOf("zz"), npos);

    EXPECT_TRUE(s.Includes("ba"));
    EXPECT_TRUE(s.Includes("a", 4));
    EXPECT_FALSE(s.Includes("b", 4));
    EXPECT_FALSE(s.Includes("", 5));
    EXPECT_TRUE(s.Includes("", 4));
    EXPECT_FALSE(qvUtf8String().Includes(""));

    EXPECT_EQ(s.Find('a'), 1u);
    EXPECT_EQ(s.Find('a', true), 4u);

    // In spite of their names these search the whole text, not any of its characters.
    qvUtf8String abc("abcabc");
    EXPECT_EQ(abc.find_first_of("cb"), npos);
    EXPECT_EQ(abc.find_first_of("bc"), 1u);
    EXPECT_EQ(abc.find_first_of('c', 3), 5u);
    EXPECT_EQ(abc.find_last_of("ab", 0), 3u);  // the position is not used
    EXPECT_EQ(abc.find_last_of('a', 1), 3u);
}

TEST(qvUtf8String, StartsWithAndTheByteOffsetRuleOfEndsWith) {
    qvUtf8String s("e.braw");
    EXPECT_TRUE(s.StartsWith(""));
    EXPECT_TRUE(s.StartsWith("e.b"));
    EXPECT_FALSE(s.StartsWith(".b"));
    EXPECT_FALSE(qvUtf8String("e").StartsWith("e.braw"));

    EXPECT_TRUE(s.EndsWith(".braw"));
    EXPECT_TRUE(s.EndsWith(""));
    EXPECT_FALSE(s.EndsWith("x.braw"));
    EXPECT_FALSE(s.EndsWith("ze.braw"));
    // A multi-byte character in front of the suffix defeats the comparison.
    qvUtf8String accented("\xC3\xA9.braw");
    EXPECT_FALSE(accented.EndsWith(".braw"));
    EXPECT_FALSE(accented.EndsWith(""));
    // Behind the suffix it does not matter.
    EXPECT_TRUE(qvUtf8String("ab\xC3\xA9").EndsWith("b\xC3\xA9"));
    // The last occurrence is the one compared.
    EXPECT_TRUE(qvUtf8String("abab").EndsWith("ab"));
}

TEST(qvUtf8String, ComparisonsAreByUnsignedBytes) {
    qvUtf8String a("abc");
    EXPECT_TRUE(a.IsEqual("abc"));
    EXPECT_FALSE(a.IsEqual(qvUtf8String("abc\0", 4)));
    EXPECT_TRUE(a == "abc");
    EXPECT_TRUE(a != "abd");
    EXPECT_TRUE(a < "abd");
    EXPECT_TRUE(a < "abcd");
    EXPECT_TRUE(a > "ab");
    EXPECT_TRUE(qvUtf8String("\xC3\xA9") > "z");
    EXPECT_TRUE(a < '\xC0');  // the char is the Cyrillic letter, lead byte 0xD0
    EXPECT_TRUE(a > 'a');

    EXPECT_TRUE(qvUtf8String("ABC").IsEqualNoCase("abc"));
    EXPECT_FALSE(qvUtf8String("ABC").IsEqualNoCase("abd"));
    // Both non-ASCII sides lower-case to nothing, so they compare equal.
    EXPECT_TRUE(qvUtf8String("\xC3\xA9").IsEqualNoCase("\xE2\x82\xAC"));
    EXPECT_FALSE(qvUtf8String("\xC3\xA9").IsEqualNoCase("e"));
}

TEST(qvUtf8String, CaseMappingWipesNonAsciiText) {
    qvUtf8String s("Hello World 42");
    s.ToLowerCase();
    EXPECT_EQ(s.Str(), "hello world 42");
    s.ToUpperCase();
    EXPECT_EQ(s.Str(), "HELLO WORLD 42");

    const qvUtf8String constant("MiXeD");
    EXPECT_EQ(constant.ToLowerCase().Str(), "mixed");
    EXPECT_EQ(constant.ToUpperCase().Str(), "MIXED");
    EXPECT_EQ(constant.Str(), "MiXeD");
    EXPECT_EQ(qvUtf8String("a.BRAW").Substr(1).ToLowerCase().Str(), ".braw");

    qvUtf8String accented("Caf\xC3\xA9");
    accented.ToLowerCase();
    EXPECT_EQ(accented.Size(), 0u);
}

TEST(qvUtf8String, SubstrAndItsRelatives) {
    qvUtf8String s(kMixed);
    EXPECT_EQ(s.Substr(1, 2).Str(), "\xC3\xA9\xE2\x82\xAC");
    EXPECT_EQ(s.Substr(2).Str(), "\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_EQ(s.Substr(3, 99).Str(), "\xF0\x9F\x98\x80");
    EXPECT_EQ(s.Substr(0, 0).Str(), "");
    EXPECT_EQ(s.Substr(4).Str(), "");
    EXPECT_EQ(qvUtf8String("\xC3\xA9" "a").Substr(2, 1).Str(), "");
    EXPECT_EQ(qvUtf8String("ab\0cd", 5).Substr(0).Str(), "ab");
    EXPECT_EQ(qvUtf8String("ab\0cd", 5).Substr(1, 1).Str(), "b");

    EXPECT_EQ(s.SubstrToIndex(1, 2).Str(), "\xC3\xA9\xE2\x82\xAC");
    EXPECT_EQ(s.SubstrToIndex(0, 0).Str(), "a");
    EXPECT_EQ(s.Left(2).Str(), "a\xC3\xA9");

    EXPECT_EQ(qvUtf8String("hello").Right(3).Str(), "llo");
    EXPECT_EQ(qvUtf8String("hello").Right(9).Str(), "");
    // Bytes minus n used as a character index.
    EXPECT_EQ(qvUtf8String("\xC3\xA9" "abc").Right(2).Str(), "c");

    EXPECT_EQ(qvUtf8String("~/x").AfterFirst('~').Str(), "~/x");
    EXPECT_EQ(qvUtf8String("a/b/c").AfterFirst('/').Str(), "/b/c");
    EXPECT_EQ(qvUtf8String("abc").AfterFirst('/').Str(), "");
}

TEST(qvUtf8String, SplitKeepsEmptyFieldsAndJoinUndoesIt) {
    using V = std::vector<std::string>;
    EXPECT_EQ(fields(qvUtf8String("a,,b").Split(",")), (V{"a", "", "b"}));
    EXPECT_EQ(fields(qvUtf8String("a,").Split(",")), (V{"a", ""}));
    EXPECT_EQ(fields(qvUtf8String(",").Split(",")), (V{"", ""}));
    EXPECT_EQ(fields(qvUtf8String("abc").Split(",")), (V{"abc"}));
    EXPECT_TRUE(qvUtf8String("").Split(",").empty());
    EXPECT_EQ(fields(qvUtf8String("a,b;c").Split(",;")), (V{"a", "b", "c"}));
    EXPECT_EQ(fields(qvUtf8String("a\xE2\x82\xAC" "b").Split("\xE2\x82\xAC")), (V{"a", "b"}));
    EXPECT_EQ(fields(qvUtf8String("a,b").Split(std::set<qvUtf8Char>())), (V{"a,b"}));
    EXPECT_EQ(fields(qvUtf8String("a,b\xFF" "c,d").Split(",")), (V{"a", "b"}));
    EXPECT_EQ(fields(qvUtf8String("/x/y").Split("/")), (V{"", "x", "y"}));

    for (const char* text : {"a,,b", ",", "a,", ",a", "abc", ",,,"}) {
        qvUtf8String original(text);
        EXPECT_EQ(qvUtf8String::Join(original.Split(","), ',').Str(), text);
    }
    EXPECT_EQ(qvUtf8String::Join({}, ',').Str(), "");
    EXPECT_EQ(qvUtf8String::Join({"x"}, ',').Str(), "x");
    EXPECT_EQ(qvUtf8String::Join({"x", "y"}, qvUtf8Char(U'\u00E9')).Str(), "x\xC3\xA9y");
}

TEST(qvUtf8String, NumberTests) {
    EXPECT_FALSE(qvUtf8String("").IsInt());
    EXPECT_FALSE(qvUtf8String("-").IsInt());
    EXPECT_TRUE(qvUtf8String("-12").IsInt());
    EXPECT_FALSE(qvUtf8String("--12").IsInt());
    EXPECT_FALSE(qvUtf8String("-12").IsUInt());
    EXPECT_TRUE(qvUtf8String("0012").IsUInt());
    EXPECT_FALSE(qvUtf8String("1.5").IsInt());
    EXPECT_FALSE(qvUtf8String("+1").IsInt());
    EXPECT_FALSE(qvUtf8String(" 1").IsInt());
    EXPECT_TRUE(qvUtf8String("1.2.3").IsFloat('.'));
    EXPECT_TRUE(qvUtf8String("-1,5").IsFloat(','));
    EXPECT_FALSE(qvUtf8String("1,5").IsFloat('.'));
    EXPECT_FALSE(qvUtf8String("1\xD9\xA3").IsUInt());  // an Arabic-Indic digit is not ASCII
    EXPECT_TRUE(qvUtf8String("1-").IsNumber(false, true, '-'));
}

TEST(qvUtf8String, ParsingNumbers) {
    long l = 0;
    EXPECT_TRUE(qvUtf8String("-42").ToInt(l));
    EXPECT_EQ(l, -42);
    EXPECT_FALSE(qvUtf8String("42x").ToInt(l));
    EXPECT_EQ(l, 42);  // written anyway
    EXPECT_FALSE(qvUtf8String("").ToInt(l));
    EXPECT_FALSE(qvUtf8String("x").ToInt(l));

    double d = 0;
    EXPECT_TRUE(qvUtf8String("2.5").ToDouble(d));
    EXPECT_DOUBLE_EQ(d, 2.5);
    EXPECT_FALSE(qvUtf8String("1.5x").ToDouble(d));
    EXPECT_DOUBLE_EQ(d, 1.5);
    EXPECT_FALSE(qvUtf8String("").ToDouble(d));
    EXPECT_FALSE(qvUtf8String("1e999").ToDouble(d));
    EXPECT_TRUE(qvUtf8String("-1e999").ToDouble(d));
    EXPECT_TRUE(d < 0 && std::isinf(d));
    EXPECT_TRUE(qvUtf8String("nan").ToDouble(d));
    EXPECT_TRUE(std::isnan(d));

    EXPECT_EQ(qvUtf8String::DoubleToString(3.14159, 2).Str(), "3.14");
    EXPECT_EQ(qvUtf8String::DoubleToString(-0.5, 3).Str(), "-0.500");
    EXPECT_EQ(qvUtf8String::DoubleToString(1234567.0, 0).Str(), "1234567");
}

TEST(qvUtf8String, VerifyPointsAtTheFirstBadSequence) {
    const char* good[] = {
        "",
        "plain ASCII",
        "\xC2\x80",               // U+0080
        "\xDF\xBF",               // U+07FF
        "\xE0\xA0\x80",           // U+0800
        "\xED\x9F\xBF",           // U+D7FF, just below the surrogates
        "\xEE\x80\x80",           // U+E000, just above them
        "\xEF\xBF\xBD",           // U+FFFD
        "\xF0\x90\x80\x80",       // U+10000
        "\xF4\x8F\xBF\xBF",       // U+10FFFF
    };
    for (const char* text : good) {
        EXPECT_EQ(qvUtf8String::Verify(text), nullptr) << text;
        EXPECT_TRUE(qvUtf8String::Valid(text));
    }

    struct Bad {
        const char* text;
        size_t badOffset;
    };
    const Bad bad[] = {
        {"ab\x80", 2},                  // stray continuation byte
        {"a\xC0\xAF", 1},               // overlong 2-byte forms
        {"\xC1\xBF", 0},
        {"\xE0\x9F\xBF", 0},            // overlong 3-byte form
        {"x\xED\xA0\x80", 1},           // high surrogate
        {"\xED\xBF\xBF", 0},            // low surrogate
        {"\xF0\x8F\xBF\xBF", 0},        // overlong 4-byte form
        {"\xF4\x90\x80\x80", 0},        // above U+10FFFF
        {"\xF5\x80\x80\x80", 0},
        {"\xFF", 0},
        {"ok\xEF\xBF\xBE", 2},          // U+FFFE
        {"\xEF\xBF\xBF", 0},            // U+FFFF
        {"ab\xE2\x82", 2},              // cut off by the terminator
        {"\xC3" "A", 0},                // continuation missing
        {"\xF0\x9F\x98" "A", 0},
    };
    for (const Bad& b : bad) {
        EXPECT_EQ(qvUtf8String::Verify(b.text), b.text + b.badOffset) << b.badOffset;
        EXPECT_FALSE(qvUtf8String::Valid(b.text));
    }
    EXPECT_EQ(qvUtf8String::Verify(nullptr), nullptr);
    EXPECT_TRUE(qvUtf8String::Valid(std::string("ok\0\xFF", 4)));
    EXPECT_FALSE(qvUtf8String::Valid(std::string("\xFF")));
}

TEST(qvUtf8String, ConstructionFromEachTextForm) {
    EXPECT_EQ(qvUtf8String("abcdef", 3).Str(), "abc");
    EXPECT_EQ(qvUtf8String(static_cast<const char*>(nullptr)).Size(), 0u);
    EXPECT_EQ(qvUtf8String(std::string("a\0b", 3)).Size(), 3u);
    EXPECT_EQ(qvUtf8String(qvUtf8Ptr("\xC0")).Str(), "\xC0");
    EXPECT_EQ(qvUtf8String(qvAnsiPtr("\xC0")).Str(), "\xD0\x90");
    EXPECT_EQ(qvUtf8String(qvAnsiPtr(std::string("\xE9"))).Str(), "\xD0\xB9");

    EXPECT_EQ(qvUtf8String(u"\u00E9\U0001F600").Str(), "\xC3\xA9\xF0\x9F\x98\x80");
    EXPECT_EQ(qvUtf8String(u"abcdef", 2).Str(), "ab");
    EXPECT_EQ(qvUtf8String(std::u16string(1, char16_t(0xD800))).Size(), 0u);
    EXPECT_EQ(qvUtf8String(L"\u00E9\U0001F600").Str(), "\xC3\xA9\xF0\x9F\x98\x80");
    EXPECT_EQ(qvUtf8String(L"abc", 1).Str(), "a");
    EXPECT_EQ(qvUtf8String(std::wstring(1, wchar_t(0x110000))).Size(), 0u);

    EXPECT_EQ(qvUtf8String(qvUtf8Char(U'\u20AC'), 3).Str(), "\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC");
    EXPECT_EQ(qvUtf8String(qvUtf8Char('x')).Str(), "x");
    EXPECT_EQ(qvUtf8String(qvUtf8Char('x'), 0).Size(), 0u);

    std::string buffer("moved");
    qvUtf8String target;
    target.MoveFromUtf8String(buffer);
    EXPECT_EQ(target.Str(), "moved");
    EXPECT_TRUE(buffer.empty());

    qvUtf8String s("\xC3\xA9t\xC3\xA9");
    EXPECT_EQ(s.ToWstring(), L"\u00E9t\u00E9");
    EXPECT_EQ(s.ToStdWstring(), L"\u00E9t\u00E9");
    EXPECT_EQ(qvUtf8String("\xD0\x90").ToAnsi(), "\xC0");
    EXPECT_EQ(s.ToUtf8(), s.Str());
    EXPECT_EQ(s.ToNativeString(), s.Str());
    EXPECT_STREQ(static_cast<const char*>(s), s.c_str());
    const std::string& bytes = s;
    EXPECT_EQ(&bytes, &s.Str());
}

TEST(qvUtf8String, FixedArraysStopAtTheirNulOrTheirEnd) {
    char twelve[12];
    std::memset(twelve, 'x', sizeof(twelve));
    EXPECT_EQ(qvUtf8String::FromFixedUtf8CharArray(twelve).Str(), std::string(12, 'x'));
    char buffer[64] = "short";
    EXPECT_EQ(qvUtf8String::FromFixedUtf8CharArray(buffer).Str(), "short");
    char empty[256] = {};
    EXPECT_EQ(qvUtf8String::FromFixedUtf8CharArray(empty).Size(), 0u);
}

TEST(qvUtf8String, OverloadsConvertTheirArgumentFirst) {
    qvUtf8String s("\xC3\xA9t\xC3\xA9");
    EXPECT_TRUE(s == u"\u00E9t\u00E9");
    EXPECT_TRUE(s == std::u16string(u"\u00E9t\u00E9"));
    EXPECT_TRUE(s == L"\u00E9t\u00E9");
    EXPECT_TRUE(s == std::wstring(L"\u00E9t\u00E9"));
    EXPECT_TRUE(s == std::string("\xC3\xA9t\xC3\xA9"));
    EXPECT_TRUE(s == qvUtf8Ptr("\xC3\xA9t\xC3\xA9"));
    EXPECT_FALSE(s == qvAnsiPtr("\xC3\xA9t\xC3\xA9"));  // read as Windows-1251
    EXPECT_TRUE(qvUtf8String("\xD0\x90") == qvAnsiPtr("\xC0"));
    EXPECT_TRUE(qvUtf8String("\xC3\xA9") == qvUtf8Char(U'\u00E9'));
    EXPECT_TRUE(s.StartsWith(u"\u00E9"));
    EXPECT_FALSE(s.EndsWith(L"\u00E9"));  // a multi-byte character stands in front
    EXPECT_TRUE(qvUtf8String("abc").EndsWith(L"bc"));
    EXPECT_EQ(s.IndexOf(L"t"), 1u);
    EXPECT_EQ(s.LastIndexOf(std::wstring(L"\u00E9")), 2u);
    EXPECT_TRUE(s.Includes(qvUtf8Char('t')));
    EXPECT_TRUE(qvUtf8String("ABC").IsEqualNoCase(u"abc"));
    EXPECT_TRUE(s.IsEqual(std::wstring(L"\u00E9t\u00E9")));

    qvUtf8String assigned;
    assigned = L"\u20AC";
    EXPECT_EQ(assigned.Str(), "\xE2\x82\xAC");
    assigned = qvAnsiPtr("\xC1");
    EXPECT_EQ(assigned.Str(), "\xD0\x91");
    assigned = qvUtf8Char('z');
    EXPECT_EQ(assigned.Str(), "z");
    assigned += u"\u00E9";
    assigned += '\xC0';
    assigned += std::string("!");
    EXPECT_EQ(assigned.Str(), "z\xC3\xA9\xD0\x90!");

    qvUtf8String mid("-");
    EXPECT_EQ((mid + "a").Str(), "-a");
    EXPECT_EQ(("a" + mid).Str(), "a-");
    EXPECT_EQ((std::string("b") + mid).Str(), "b-");
    EXPECT_EQ((mid + L"\u00E9").Str(), "-\xC3\xA9");
    EXPECT_EQ((mid + 'x').Str(), "-x");
    EXPECT_EQ((mid + qvUtf8String("y") + "z").Str(), "-yz");
    EXPECT_EQ(mid.Str(), "-");
}
