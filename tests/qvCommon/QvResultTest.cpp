#include "Utils/qvResult.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

TEST(QvResult, SuccessErrorAndWarningAreExclusive) {
    QvResult ok;
    EXPECT_TRUE(ok.isOk());
    EXPECT_FALSE(ok.hasError);
    EXPECT_FALSE(ok.hasWarning);
    char zeros[256] = {};
    EXPECT_EQ(std::memcmp(ok.message, zeros, sizeof(zeros)), 0);
    EXPECT_EQ(ok.toString().Size(), 0u);

    QvResult error(qvUtf8String("Impossible to open Clip"), false);
    EXPECT_TRUE(error.hasError);
    EXPECT_FALSE(error.hasWarning);
    EXPECT_FALSE(error.isOk());
    EXPECT_EQ(error.toString().Str(), "Impossible to open Clip");

    QvResult warning("slow", true);
    EXPECT_FALSE(warning.hasError);
    EXPECT_TRUE(warning.hasWarning);
    EXPECT_FALSE(warning.isOk());

    QvResult emptyError("", false);
    EXPECT_TRUE(emptyError.hasError);
    EXPECT_EQ(emptyError.toString().Size(), 0u);

    // A plain value: a byte copy is a faithful copy.
    QvResult copy;
    std::memcpy(&copy, &error, sizeof(QvResult));
    EXPECT_EQ(copy.toString().Str(), "Impossible to open Clip");
    EXPECT_TRUE(copy.hasError);
}

TEST(QvResult, LongMessagesAreCutAt256Bytes) {
    std::string text(300, 'x');
    text[255] = 'y';
    QvResult r(text, false);
    EXPECT_EQ(r.message[255], 'y');
    EXPECT_EQ(r.toString().Str(), text.substr(0, 256));

    QvResult exact(std::string(255, 'z'), false);
    EXPECT_EQ(exact.message[255], '\0');
    EXPECT_EQ(exact.toString().Size(), 255u);

    // A shorter message zero-fills what the previous one left.
    QvResult reused(std::string(200, 'a'), false);
    reused = QvResult("b", true);
    EXPECT_EQ(reused.toString().Str(), "b");
    EXPECT_EQ(reused.message[100], '\0');
}
