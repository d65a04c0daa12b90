#include "Utils/qvVersion.h"

#include <gtest/gtest.h>

namespace {

void expectVersion(const QvVersion& v, int major, int minor, int patch, int beta) {
    EXPECT_EQ(v.major, major);
    EXPECT_EQ(v.minor, minor);
    EXPECT_EQ(v.patch, patch);
    EXPECT_EQ(v.beta, beta);
}

}  // namespace

TEST(Version, Texts) {
    EXPECT_EQ(QvVersion(3, 3, 9, 0).toString().Str(), "3.3.9");
    EXPECT_EQ(QvVersion(3, 3, 9, 2).toString().Str(), "3.3.9.beta2");
    EXPECT_EQ(QvVersion(255, 4, 1, 0).toString().Str(), "Unknown Version. Infos : 4.1");
    EXPECT_EQ(QvVersion(255, 4, 1, 3).toString().Str(), "Unknown Version. Infos : 4.1.beta3");
    EXPECT_EQ(QvVersion(3, 3, 9, 2).toWstring(), L"3.3.9.beta2");
    EXPECT_EQ(QvVersion(255, 0, 0, 0).toWstring(), L"Unknown Version. Infos : 0.0");
    expectVersion(QvVersion(), 0, 0, 0, 0);
}

TEST(Version, ParsingByDots) {
    expectVersion(QvVersion(qvUtf8String("1.2.3.beta4")), 1, 2, 3, 4);
    expectVersion(QvVersion(qvUtf8String("1.2.x")), 1, 2, 0, 0);
    expectVersion(QvVersion(qvUtf8String("25.1.7")), 25, 1, 7, 0);
    expectVersion(QvVersion(qvUtf8String("")), 0, 0, 0, 0);
    // A fourth piece only counts as "beta<n>".
    expectVersion(QvVersion(qvUtf8String("1.2.3.4")), 1, 2, 3, 0);
    // Pieces count only once a dot closes them.
    expectVersion(QvVersion(qvUtf8String("7")), 0, 0, 0, 0);
    expectVersion(QvVersion(qvUtf8String("7.8")), 7, 0, 0, 0);
    // Bytes wrap, as atoi into a byte does.
    expectVersion(QvVersion(qvUtf8String("300.2.3")), 44, 2, 3, 0);
}

TEST(Version, BundleVersionTextTakesTheTrailingNumbers) {
    expectVersion(QvVersion::FromBundleVersionText("25.1"), 25, 1, 0, 0);
    expectVersion(QvVersion::FromBundleVersionText("Version 4.5.6"), 4, 5, 6, 0);
    expectVersion(QvVersion::FromBundleVersionText("1.2.3.4"), 1, 2, 3, 4);
    expectVersion(QvVersion::FromBundleVersionText("1.2 beta"), 0, 0, 0, 0);
    expectVersion(QvVersion::FromBundleVersionText(""), 0, 0, 0, 0);
    // A test program is no bundle.
    EXPECT_EQ(VersionFromResource().Str(), "");
    expectVersion(QvVersion::FromVersionResource(), 0, 0, 0, 0);
}
