// What the product says about itself and its host, and the two host
// enumerations' mappings.

#include "Common/twHost.h"

#include "Config/qvConfig.h"
#include "ProductConfig.h"

#include <gtest/gtest.h>

TEST(TwHostMapping, BothEnumerationsMapOntoEachOther) {
    const PXC_HOST fromApp[] = {PXC_HOST_UNKNOWN, PXC_HOST_PPRO, PXC_HOST_UNKNOWN, PXC_HOST_AE,
                                PXC_HOST_AME,     PXC_HOST_UNKNOWN, PXC_HOST_UNKNOWN, PXC_HOST_UNKNOWN,
                                PXC_HOST_UNKNOWN, PXC_HOST_UNKNOWN, PXC_HOST_DESKTOP, PXC_HOST_UNKNOWN};
    for (uint8_t app = 0; app < 12; ++app) EXPECT_EQ(appEnum2pxcHost(QV_APP_ENUM(app)), fromApp[app]) << int(app);
    EXPECT_EQ(appEnum2pxcHost(QV_APP_ENUM(255)), PXC_HOST_UNKNOWN);

    const uint8_t fromHost[] = {0, 3, 1, 4, 10, 0};
    for (int host = 0; host < 6; ++host) {
        EXPECT_EQ(twHost::fromPXCHostToTwAppEnum(static_cast<PXC_HOST>(host)), fromHost[host]) << host;
    }
    EXPECT_EQ(twHost::fromPXCHostToTwAppEnum(static_cast<PXC_HOST>(-1)), 0);
    // Every host the settings side knows comes back to itself.
    for (int host = 1; host <= 4; ++host) {
        const PXC_HOST pxc = static_cast<PXC_HOST>(host);
        EXPECT_EQ(appEnum2pxcHost(twHost::fromPXCHostToTwAppEnum(pxc)), pxc);
    }
}

TEST(TwHostInfo, DescribesTheProductAndTheHost) {
    twtest::UseProductConfig();
    const std::pair<PXC_HOST, std::wstring> hosts[] = {
        {PXC_HOST_AE, L"After Effects"},   {PXC_HOST_PPRO, L"Premiere Pro"}, {PXC_HOST_AME, L"Media Encoder"},
        {PXC_HOST_DESKTOP, L"Unknown Host"}, {PXC_HOST_UNKNOWN, L"Unknown Host"},
    };
    for (const auto& host : hosts) {
        twHost info(QV_PLUGIN_IMPORTER, host.first, false);
        EXPECT_EQ(info.hostName, host.second);
        EXPECT_EQ(info.popupTitle, L"Tarnwick 3.3.9 for " + host.second);
        EXPECT_EQ(info.isAE, host.first == PXC_HOST_AE);
        EXPECT_EQ(info.isPPro, host.first == PXC_HOST_PPRO);
        EXPECT_EQ(info.isAME, host.first == PXC_HOST_AME);
        EXPECT_EQ(info.isDesktop, host.first == PXC_HOST_DESKTOP);
    }

    twHost info(QV_PLUGIN_SOURCE_SETTINGS, PXC_HOST_PPRO, true);
    EXPECT_EQ(info.buildNumber, 610);
    EXPECT_EQ(info.productName, L"Tarnwick");
    EXPECT_EQ(info.versionText, L"3.3.9");
    EXPECT_EQ(info.productTitle, L"Tarnwick 3.3.9");
    EXPECT_EQ(info.changelogArchiveName, "Changelog_Tarnwick3.zip");
    EXPECT_EQ(info.changelogFileName, "Tarnwick3.txt");
    EXPECT_FALSE(info.productPageUrl.Empty());
    ASSERT_NE(info.logoData, nullptr);
    EXPECT_GT(info.logoSize, 54u);
    EXPECT_EQ(info.logoData[0], 'B');
    // This test program is no bundle of the product.
    EXPECT_TRUE(info.dylibParentFolder.empty());

    // The base class forgets what it knew.
    info.qvHostBase::UpdateHostInfo();
    EXPECT_EQ(info.buildNumber, -1);
    EXPECT_TRUE(info.productName.empty());
    EXPECT_TRUE(info.versionText.empty());
    EXPECT_TRUE(info.productTitle.empty());
}

TEST(TwHostInfo, BundleParentFolderIsCutAtTheLastExtension) {
    const qvUtf8String importer("/x/MediaCore/Qervane Tarnwick/Tarnwick_Importer.bundle/Contents/Linux/Tarnwick_Importer.so");
    EXPECT_EQ(GetDylibParentFolderPathFrom(importer, QV_PLUGIN_IMPORTER), L"/x/MediaCore/Qervane Tarnwick/");
    EXPECT_EQ(GetDylibParentFolderPathFrom(qvUtf8String("/a.bundle/b/c.bundle/Contents/Linux/c.so"), QV_PLUGIN_IMPORTER),
              L"/a.bundle/b/");
    EXPECT_EQ(GetDylibParentFolderPathFrom(qvUtf8String("/Apps/Tarnwick.app/Contents/MacOS/Tarnwick"), QV_PLUGIN_DESKTOP),
              L"/Apps/");
    // Unknown plug-in values are the source settings effect.
    EXPECT_EQ(GetDylibParentFolderPathFrom(qvUtf8String("/p/Fx.plugin/Contents/Linux/Fx.so"), static_cast<QV_PLUGIN>(11)),
              L"/p/");
    EXPECT_TRUE(GetDylibParentFolderPathFrom(importer, QV_PLUGIN_DESKTOP).empty());
    EXPECT_TRUE(GetDylibParentFolderPathFrom(qvUtf8String(), QV_PLUGIN_IMPORTER).empty());
    EXPECT_TRUE(GetDylibParentFolderPathFrom(qvUtf8String("/" + std::string(1100, 'a') + ".bundle/x"),
                                             QV_PLUGIN_IMPORTER)
                    .empty());
    EXPECT_TRUE(GetDylibParentFolderPath(QV_PLUGIN_IMPORTER).empty());
}
