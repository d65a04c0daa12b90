#include "Adobe/qvHost.h"

#include <string>

qvUtf8String QV_APP_ENUM::toString() const {
    switch (m_value) {
        case QV_APP_UNKNOWN: return qvUtf8String("Unknown");
        case QV_APP_PPRO: return qvUtf8String("Premiere Pro");
        case QV_APP_PREL: return qvUtf8String("Premiere Elements");
        case QV_APP_AE: return qvUtf8String("After Effects");
        case QV_APP_AME: return qvUtf8String("Adobe Media Encoder");
        case QV_APP_COTTON_WOOD: return qvUtf8String("Cotton Wood");
        case QV_APP_PRELUDE: return qvUtf8String("Prelude");
        case QV_APP_SPEED_GRADE: return qvUtf8String("Speed Grade");
        case QV_APP_AUDITION: return qvUtf8String("Audition");
        case QV_APP_CHARACTER_ANIMATOR: return qvUtf8String("Character Animator");
        case QV_APP_DESKTOP: return qvUtf8String("Desktop");
        default: return qvUtf8String(std::to_string(unsigned(m_value)));
    }
}

PXC_HOST appEnum2pxcHost(QV_APP_ENUM app) {
    switch (static_cast<uint8_t>(app)) {
        case QV_APP_ENUM::QV_APP_PPRO: return PXC_HOST_PPRO;
        case QV_APP_ENUM::QV_APP_AE: return PXC_HOST_AE;
        case QV_APP_ENUM::QV_APP_AME: return PXC_HOST_AME;
        case QV_APP_ENUM::QV_APP_DESKTOP: return PXC_HOST_DESKTOP;
        default: return PXC_HOST_UNKNOWN;
    }
}

qvHostBase::qvHostBase(const std::wstring& parentFolder, PXC_HOST inHost)
    : dylibParentFolder(parentFolder), host(inHost) {}

qvHostBase::~qvHostBase() = default;

void qvHostBase::UpdateHostInfo() {
    buildNumber = -1;
    productName.clear();
    versionText.clear();
    productTitle.clear();
}

void qvHostBase::SetupAfterDerivedHostInfo() {
    isAE = host == PXC_HOST_AE;
    isPPro = host == PXC_HOST_PPRO;
    isAME = host == PXC_HOST_AME;
    isDesktop = host == PXC_HOST_DESKTOP;
    switch (host) {
        case PXC_HOST_AE: hostName = L"After Effects"; break;
        case PXC_HOST_PPRO: hostName = L"Premiere Pro"; break;
        case PXC_HOST_AME: hostName = L"Media Encoder"; break;
        default: hostName = L"Unknown Host"; break;
    }
    popupTitle = productName + L" " + versionText + L" for " + hostName;
}
