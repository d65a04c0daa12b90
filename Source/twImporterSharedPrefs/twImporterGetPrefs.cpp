#include "twImporterSharedPrefs/twImporterGetPrefs.h"

#include "Common/TW_Debug_Options.h"
#include "twImporterSharedPrefs/twImporterSharedPrefs.h"

#include <algorithm>
#include <cstring>

std::atomic<bool> g_SettingsPopupOpen{false};

namespace {

// PXC_HOST values of the hosts that show the importer's own settings popup.
constexpr int32_t kHostAfterEffects = 1;
constexpr int32_t kHostMediaEncoder = 3;

// Claims the popup flag for one popup: only one host thread wins it, and the
// flag is given back however the popup ends.
class PopupOpenFlag {
public:
    PopupOpenFlag() {
        bool expected = false;
        m_claimed = g_SettingsPopupOpen.compare_exchange_strong(expected, true);
    }
    ~PopupOpenFlag() {
        if (m_claimed) g_SettingsPopupOpen = false;
    }
    PopupOpenFlag(const PopupOpenFlag&) = delete;
    PopupOpenFlag& operator=(const PopupOpenFlag&) = delete;
    bool claimed() const { return m_claimed; }

private:
    bool m_claimed;
};

qvUtf8String filePathOf(const imFileAccessRec8* fileAccess) {
    if (!fileAccess) return qvUtf8String();
    const prUTF16Char* path = fileAccess->filepath;  // packed record: read the member once
    if (!path) return qvUtf8String();
    return qvUtf8String(reinterpret_cast<const char16_t*>(path));
}

}  // namespace

void TWI_GetPrefs(int32_t host, const imFileAccessRec8* fileAccess, imGetPrefsRec* prefsRec,
                  const twImporterPrefsServices& services) {
    if (!prefsRec) return;

    const twImporterSharedPrefs defaults;
    char* const buffer = prefsRec->prefs;
    const csSDK_int32 length = prefsRec->prefsLength;
    // Never past the host's buffer, even when it is shorter than the blob.
    const size_t room = (buffer && length > 0) ? std::min<size_t>(static_cast<size_t>(length), sizeof(defaults)) : 0;
    if (room > 0) std::memcpy(buffer, &defaults, room);

    if ((host == kHostAfterEffects || host == kHostMediaEncoder) && !g_SettingsPopupOpen) {
        if (length <= 0) {
            prefsRec->prefsLength = static_cast<csSDK_int32>(TW_IMPORTER_PREFS_SIZE);
            return;
        }
        PopupOpenFlag popupOpen;
        if (popupOpen.claimed() && room > 0 && services.openSettingsPopup) {
            const qvUtf8String path = filePathOf(fileAccess);

            // The settings at offset 4 of the buffer, edited through an aligned
            // copy: the host's buffer has no alignment promise.
            twAttributes attributes;
            const size_t offset = TW_IMPORTER_PREFS_HEADER_SIZE;
            const size_t size = room > offset ? std::min(room - offset, sizeof(attributes)) : 0;
            if (size > 0) std::memcpy(&attributes, buffer + offset, size);

            bool optionsChanged = false;
            services.openSettingsPopup(host, TW_IMPORTER_BUNDLE_IDENTIFIER, path, optionsChanged, attributes);
            if (size > 0) std::memcpy(buffer + offset, &attributes, size);

            if (optionsChanged) {
                TWDebugOptions::loadDebugOptions();
                if (services.updateLogs) services.updateLogs();
            }
        }
    }

    if (prefsRec->prefsLength <= 0) prefsRec->prefsLength = static_cast<csSDK_int32>(TW_IMPORTER_PREFS_SIZE);
}
