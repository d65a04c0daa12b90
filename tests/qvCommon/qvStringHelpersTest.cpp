#include "String/qvStringHelpers.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

TEST(qvStringHelpers, CharCopyCharAlwaysTerminatesAndZeroesTheRest) {
    char buffer[8];
    std::memset(buffer, '#', sizeof(buffer));
    CharCopyChar("abc", 3, buffer, 6);
    EXPECT_EQ(std::string(buffer, 8), std::string("abc\0\0\0##", 8));

    std::memset(buffer, '#', sizeof(buffer));
    CharCopyChar("abcdefgh", 8, buffer, 4);
    EXPECT_EQ(std::string(buffer, 8), std::string("abc\0####", 8));

    std::memset(buffer, '#', sizeof(buffer));
    CharCopyChar("abc", 3, buffer, 1);
    EXPECT_EQ(std::string(buffer, 2), std::string("\0#", 2));
    CharCopyChar("abc", 3, buffer, 0);
    EXPECT_EQ(buffer[1], '#');
    CharCopyChar(nullptr, 5, buffer, 3);
    EXPECT_EQ(std::string(buffer, 4), std::string("\0\0\0#", 4));

    std::memset(buffer, '#', sizeof(buffer));
    qvStringCopyChar(qvUtf8String("\xC3\xA9" "z"), buffer, 3);
    EXPECT_EQ(std::string(buffer, 4), std::string("\xC3\xA9\0#", 4));

    CharNull(buffer, 5);
    EXPECT_EQ(std::string(buffer, 6), std::string("\0\0\0\0\0#", 6));
}

TEST(qvStringHelpers, CopyStrCharToCharArrayLeavesTheTailAlone) {
    char buffer[8];
    std::memset(buffer, '#', sizeof(buffer));
    CopyStrCharToCharArray("ab", buffer, 6);
    EXPECT_EQ(std::string(buffer, 8), std::string("ab\0#####", 8));

    std::memset(buffer, '#', sizeof(buffer));
    CopyStrCharToCharArray("abcdefgh", buffer, 5);
    EXPECT_EQ(std::string(buffer, 8), std::string("abcd\0###", 8));

    // A copied last byte of zero is terminator enough.
    std::memset(buffer, '#', sizeof(buffer));
    CopyStrCharToCharArray(qvUtf8String(std::string("a\0", 2)), buffer, 6);
    EXPECT_EQ(std::string(buffer, 8), std::string("a\0######", 8));

    std::memset(buffer, '#', sizeof(buffer));
    CopyStrCharToCharArray("", buffer, 4);
    EXPECT_EQ(std::string(buffer, 2), std::string("\0#", 2));
    CopyStrCharToCharArray("abc", buffer, 0);
    EXPECT_EQ(buffer[1], '#');
}

TEST(qvStringHelpers, SixteenBitStringFunctions) {
    EXPECT_EQ(w16_strlen(u"abc"), 3u);
    EXPECT_EQ(w16_strlen(static_cast<const char16_t*>(nullptr)), 0u);

    char16_t buffer[6];
    std::fill(buffer, buffer + 6, u'#');
    EXPECT_EQ(w16_strcpy(buffer, u"xy"), buffer);
    EXPECT_EQ(std::u16string(buffer, 4), std::u16string(u"xy\0#", 4));

    std::fill(buffer, buffer + 6, u'#');
    w16_strncpy(buffer, u"ab", 5);
    EXPECT_EQ(std::u16string(buffer, 6), std::u16string(u"ab\0\0\0#", 6));
    std::fill(buffer, buffer + 6, u'#');
    w16_strncpy(buffer, u"abcdef", 3);
    EXPECT_EQ(std::u16string(buffer, 4), u"abc#");  // no terminator, like strncpy
    std::fill(buffer, buffer + 6, u'#');
    w16_strncpyz(buffer, u"abcdef", 3);
    EXPECT_EQ(std::u16string(buffer, 4), std::u16string(u"ab\0#", 4));

    unsigned short host[4] = {0x41, 0xE9, 0x20AC, 0};
    EXPECT_EQ(w16_strlen(host), 3u);
    EXPECT_EQ(UTF16UShorttoQvString(host).Str(), "A\xC3\xA9\xE2\x82\xAC");
    EXPECT_EQ(UTF16UShorttoQvString(nullptr).Size(), 0u);
    unsigned short copy[4] = {9, 9, 9, 9};
    w16_strncpyz(copy, host, 4);
    EXPECT_EQ(copy[2], 0x20AC);
    EXPECT_EQ(copy[3], 0);
    unsigned short copy2[4];
    w16_strcpy(copy2, host);
    EXPECT_EQ(w16_strlen(copy2), 3u);
    w16_strncpy(copy2, host, 2);
    EXPECT_EQ(copy2[1], 0xE9);
}

TEST(qvStringHelpers, Base64MatchesTheRfcVectors) {
    const char* plain[] = {"", "f", "fo", "foo", "foob", "fooba", "foobar"};
    const char* coded[] = {"", "Zg==", "Zm8=", "Zm9v", "Zm9vYg==", "Zm9vYmE=", "Zm9vYmFy"};
    for (int i = 0; i < 7; ++i) {
        int n = static_cast<int>(std::strlen(plain[i]));
        std::string out(Base64encode_len(n), '#');
        EXPECT_EQ(Base64encode_len(n), static_cast<int>(std::strlen(coded[i])) + 1);
        EXPECT_EQ(Base64encode(&out[0], plain[i], n), static_cast<int>(std::strlen(coded[i])) + 1);
        EXPECT_STREQ(out.c_str(), coded[i]);

        std::string back(Base64decode_len(coded[i]), '#');
        EXPECT_EQ(Base64decode(&back[0], coded[i]), n);
        EXPECT_STREQ(back.c_str(), plain[i]);
    }
}

TEST(qvStringHelpers, Base64DecodingStopsOutsideTheAlphabet) {
    char out[32];
    EXPECT_EQ(Base64decode(out, "Zm9v!Zm9v"), 3);
    EXPECT_STREQ(out, "foo");
    EXPECT_EQ(Base64decode_len("Zm9v!Zm9v"), 4);
    EXPECT_EQ(Base64decode(out, "Zm8"), 2);  // unpadded tail
    EXPECT_STREQ(out, "fo");
    EXPECT_EQ(Base64decode(out, "Zm9vZ"), 3);  // a lone digit carries nothing
    EXPECT_EQ(Base64decode(out, "=Zm9v"), 0);
    EXPECT_EQ(out[0], '\0');
    EXPECT_EQ(Base64decode_len(""), 1);
    EXPECT_EQ(Base64decode_len("Zm9vYg=="), 7);
    EXPECT_EQ(Base64decode(out, "+/+/"), 3);
    EXPECT_EQ(std::string(out, 3), "\xFB\xFF\xBF");
}

TEST(qvStringHelpers, Base64RoundTripsEveryByte) {
    std::string all;
    for (int b = 0; b < 256; ++b) all.push_back(static_cast<char>(b));
    for (int n = 0; n <= 256; n += 37) {
        std::string coded(Base64encode_len(n), '\0');
        Base64encode(&coded[0], all.data(), n);
        std::string back(Base64decode_len(coded.c_str()), '\0');
        ASSERT_EQ(Base64decode(&back[0], coded.c_str()), n);
        EXPECT_EQ(back.substr(0, n), all.substr(0, n));
    }
}
