#pragma once
// Which host application the plug-in runs in.

#include "String/qvUtf8String.h"

#include <cstddef>
#include <cstdint>
#include <string>

// One byte, as stored and passed around. Values 11 and above are unknown to this
// release and print as their number.
class QV_APP_ENUM {
public:
    enum Value : uint8_t {
        QV_APP_UNKNOWN = 0,
        QV_APP_PPRO = 1,
        QV_APP_PREL = 2,
        QV_APP_AE = 3,
        QV_APP_AME = 4,
        QV_APP_COTTON_WOOD = 5,
        QV_APP_PRELUDE = 6,
        QV_APP_SPEED_GRADE = 7,
        QV_APP_AUDITION = 8,
        QV_APP_CHARACTER_ANIMATOR = 9,
        QV_APP_DESKTOP = 10,
    };

    constexpr QV_APP_ENUM() : m_value(QV_APP_UNKNOWN) {}
    constexpr QV_APP_ENUM(uint8_t value) : m_value(value) {}  // NOLINT: a plain byte on purpose
    constexpr operator uint8_t() const { return m_value; }

    // "Premiere Pro", "Adobe Media Encoder", ... ; also the host part of log file names.
    qvUtf8String toString() const;

private:
    uint8_t m_value;
};
static_assert(sizeof(QV_APP_ENUM) == 1, "QV_APP_ENUM travels as one byte");

// The host as the settings side names it: the few hosts the product's bundles
// run in, without the versions and relatives QV_APP_ENUM tells apart.
enum PXC_HOST : int32_t {
    PXC_HOST_UNKNOWN = 0,
    PXC_HOST_AE = 1,
    PXC_HOST_PPRO = 2,
    PXC_HOST_AME = 3,
    PXC_HOST_DESKTOP = 4,
};

// Which of the product's bundles is running. The values not named here belong
// to a sibling product and mean nothing to this one.
enum QV_PLUGIN : int32_t {
    QV_PLUGIN_DESKTOP = 3,
    QV_PLUGIN_IMPORTER = 4,
    QV_PLUGIN_SOURCE_SETTINGS = 5,
    QV_PLUGIN_LAYER_SETTINGS = 6,
};

// Premiere Pro 2, After Effects 1, Media Encoder 3, Desktop 4; anything else,
// Premiere Elements included, 0.
PXC_HOST appEnum2pxcHost(QV_APP_ENUM app);

// What a bundle of the maker says about itself and the host it runs in. The
// product derives from it and fills the texts in UpdateHostInfo.
class qvHostBase {
public:
    qvHostBase(const std::wstring& dylibParentFolder, PXC_HOST host);
    // Back to "nothing known": build number -1, name, version and title empty.
    virtual void UpdateHostInfo();
    virtual ~qvHostBase();
    qvHostBase(const qvHostBase&) = delete;
    qvHostBase& operator=(const qvHostBase&) = delete;

    // The host flags, the host's name and the popup title, from `host` and the
    // texts UpdateHostInfo set.
    void SetupAfterDerivedHostInfo();

    // The folder that holds the bundle, with a trailing "/"; empty when unknown.
    std::wstring dylibParentFolder;
    PXC_HOST host;
    bool isAE = false;
    bool isPPro = false;
    bool isAME = false;
    bool isDesktop = false;

    int buildNumber = -1;
    std::wstring productName;
    std::wstring versionText;
    std::wstring productTitle;
    qvUtf8String productPageUrl;
    qvUtf8String userGuideUrl;
    qvUtf8String contactUrl;
    qvUtf8String changelogUrl;
    qvUtf8String changelogArchiveName;
    qvUtf8String changelogFileName;
    const unsigned char* logoData = nullptr;
    size_t logoSize = 0;
    std::wstring hostName;
    std::wstring popupTitle;
};
