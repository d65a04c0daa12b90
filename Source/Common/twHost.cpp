#include "Common/twHost.h"

#include "Common/twDeployment.h"
#include "Config/qvConfig.h"
#include "FileSystem/qvFileSystem.h"
#include "Platform/qvPlatformModule.h"

#include <cstdint>
#include <vector>

namespace {

struct BundleInfo {
    const char* extension;
    const char* identifier;
};

BundleInfo bundleInfo(QV_PLUGIN plugin) {
    switch (plugin) {
        case QV_PLUGIN_DESKTOP: return {".app", "com.qervane.tarnwick.desktop"};
        case QV_PLUGIN_IMPORTER: return {".bundle", "com.qervane.tarnwick.importer"};
        case QV_PLUGIN_LAYER_SETTINGS: return {".plugin", "com.qervane.tarnwick.layersettings"};
        default: return {".plugin", "com.qervane.tarnwick.sourcesettings"};
    }
}

// The executable path as the bundle lookup gives it, in a buffer of this size.
constexpr size_t kExecutablePathBufferSize = 1024;

// The product's logo: a small uncompressed picture made once, so that the
// popups have something to show without a resource file beside the bundle.
const std::vector<unsigned char>& productLogo() {
    static const std::vector<unsigned char> s_logo = [] {
        const uint32_t side = 64;
        const uint32_t pixelBytes = side * side * 4;
        const uint32_t headerBytes = 14 + 40;
        std::vector<unsigned char> bytes(headerBytes + pixelBytes, 0);
        auto put32 = [&bytes](size_t at, uint32_t value) {
            for (int i = 0; i < 4; ++i) bytes[at + i] = static_cast<unsigned char>(value >> (8 * i));
        };
        bytes[0] = 'B';
        bytes[1] = 'M';
        put32(2, headerBytes + pixelBytes);
        put32(10, headerBytes);
        put32(14, 40);
        put32(18, side);
        put32(22, side);
        bytes[26] = 1;   // planes
        bytes[28] = 32;  // bits per pixel
        put32(34, pixelBytes);
        for (int y = 0; y < int(side); ++y) {
            for (int x = 0; x < int(side); ++x) {
                unsigned char* pixel = &bytes[headerBytes + (y * side + x) * 4];
                const bool ring = (x - 32) * (x - 32) + (y - 32) * (y - 32) < 900;
                pixel[0] = ring ? 0x30 : 0x20;                                   // blue
                pixel[1] = static_cast<unsigned char>(ring ? 0x90 + x : 0x20);  // green
                pixel[2] = static_cast<unsigned char>(ring ? 0x40 + y : 0x20);  // red
                pixel[3] = 0xFF;
            }
        }
        return bytes;
    }();
    return s_logo;
}

}  // namespace

twHost::twHost(QV_PLUGIN inPlugin, PXC_HOST inHost, bool inFlag)
    : qvHostBase(GetDylibParentFolderPath(inPlugin), inHost), plugin(inPlugin), flag(inFlag) {
    // Virtual calls do not reach the derived class from the base constructor,
    // so the texts are set here.
    UpdateHostInfo();
    SetupAfterDerivedHostInfo();
}

twHost::~twHost() = default;

void twHost::UpdateHostInfo() {
    qvHostBase::UpdateHostInfo();
    buildNumber = 610;
    productName = L"Tarnwick";
    versionText = g_config.version.toWstring();
    productTitle = productName + L" " + versionText;
    productPageUrl = twDeployment::productPageUrl();
    userGuideUrl = twDeployment::userGuideUrl();
    contactUrl = twDeployment::contactUrl();
    changelogUrl = twDeployment::changelogUrl();
    changelogArchiveName = "Changelog_Tarnwick3.zip";
    changelogFileName = "Tarnwick3.txt";
    logoData = productLogo().data();
    logoSize = productLogo().size();
}

QV_APP_ENUM twHost::fromPXCHostToTwAppEnum(PXC_HOST host) {
    switch (host) {
        case PXC_HOST_AE: return QV_APP_ENUM::QV_APP_AE;
        case PXC_HOST_PPRO: return QV_APP_ENUM::QV_APP_PPRO;
        case PXC_HOST_AME: return QV_APP_ENUM::QV_APP_AME;
        case PXC_HOST_DESKTOP: return QV_APP_ENUM::QV_APP_DESKTOP;
        default: return QV_APP_ENUM::QV_APP_UNKNOWN;
    }
}

std::wstring GetDylibParentFolderPathFrom(const qvUtf8String& executablePath, QV_PLUGIN plugin) {
    const std::string& path = executablePath.Str();
    if (path.empty() || path.size() >= kExecutablePathBufferSize) return std::wstring();
    const size_t extension = path.rfind(bundleInfo(plugin).extension);
    if (extension == std::string::npos) return std::wstring();
    const size_t slash = path.rfind('/', extension);
    if (slash == std::string::npos) return std::wstring();
    return qvUtf8String(path.substr(0, slash + 1)).ToWstring();
}

std::wstring GetDylibParentFolderPath(QV_PLUGIN plugin) {
    const BundleInfo info = bundleInfo(plugin);
    // The bundle that holds this code knows its own file by an address inside
    // it; another bundle of the product is looked up among the loaded modules.
    std::string ownPath;
    if (qvPlatform::ModulePathOfAddress(reinterpret_cast<const void*>(&GetDylibParentFolderPath), ownPath) &&
        ownPath.rfind(info.extension) != std::string::npos) {
        return GetDylibParentFolderPathFrom(qvUtf8String(ownPath), plugin);
    }
    qvUtf8String loaded;
    if (qvFileSystem::getDynamicLibPath(loaded, info.identifier).hasError) return std::wstring();
    return GetDylibParentFolderPathFrom(loaded, plugin);
}
