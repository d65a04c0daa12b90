#include "Platform/qvPlatformRoots.h"
#include "TempFolder.h"

#include <gtest/gtest.h>

TEST(PlatformRoots, SystemPathsFollowTheOverrideAndComeBackWithoutIt) {
    EXPECT_EQ(qvPlatform::SystemPath("/Applications"), "/Applications");
    {
        twtest::ScopedTestRoots roots;
        EXPECT_EQ(qvPlatform::SystemPath("/Applications"), roots.systemRoot() + "/Applications");
        EXPECT_EQ(qvPlatform::HomeFolderOverride(), roots.home());
    }
    EXPECT_EQ(qvPlatform::SystemPath("/Library/Application Support"), "/Library/Application Support");
    EXPECT_TRUE(qvPlatform::HomeFolderOverride().empty());
}

TEST(PlatformRoots, TrailingSeparatorsOfTheRootDoNotDoubleTheSeparator) {
    qvPlatform::SetSystemRootOverride("/tmp/root///");
    EXPECT_EQ(qvPlatform::SystemPath("/Applications"), "/tmp/root/Applications");
    qvPlatform::SetSystemRootOverride("");
}
