#pragma once
// The settings windows of the product, shown by its companion application
// "Tarnwick.app" as a child process: the preferences window of a host, and the
// source settings of one clip. Each call waits until the window is closed.

#include "Adobe/qvHost.h"
#include "Manager/twAttributes.h"
#include "String/qvUtf8String.h"

#include <cstdint>

// A tab of the preferences window, handed on to the application unchanged.
using TABS_ID = int32_t;

// The application's identity and where it is installed.
constexpr const char TW_DESKTOP_BUNDLE_IDENTIFIER[] = "com.qervane.tarnwick.desktop";
constexpr const char TW_DESKTOP_BUNDLE_NAME[] = "Tarnwick.app";
constexpr const char TW_DESKTOP_BINARY_NAME[] = "Tarnwick";
constexpr const char TW_DESKTOP_INSTALL_FOLDER[] =
    "/Library/Application Support/Adobe/Common/Plug-ins/7.0/MediaCore/Qervane Tarnwick";
constexpr const char TW_DESKTOP_DEFAULT_PATH[] =
    "/Library/Application Support/Adobe/Common/Plug-ins/7.0/MediaCore/Qervane Tarnwick/Tarnwick.app/Contents/MacOS/"
    "Tarnwick";

// The files of a source settings popup, in the product's cache folder.
constexpr const char TW_POPUP_INPUT_PRESET[] = "sourceSettingsPopup_InputPreset.twPreset";
constexpr const char TW_POPUP_RESULT_PRESET[] = "sourceSettingsPopup_ResultPreset.twPreset";

// The application, found from the bundle `bundleIdentifier` that asks for it.
std::string twFindSettingsApplication(const char* bundleIdentifier);

// The preferences window at `tab`, for the host `app` (mapped as
// appEnum2pxcHost does). `modified`, when given, receives the window's answer.
void twHostOpenSettings_WithLogs(QV_APP_ENUM app, TABS_ID tab, bool* modified, const char* bundleIdentifier);
void twHostOpenSettings_WithLogs(PXC_HOST host, TABS_ID tab, bool* modified, const char* bundleIdentifier);

// The source settings of the clip `filePath`, starting from `attributes` when
// they are in use. The attributes change only when the application left a
// result preset; `modified` is read from the answer only when it is true on
// the way in.
void twOpenSourceSettingsPopup(PXC_HOST host, const char* bundleIdentifier, const qvUtf8String& filePath,
                               bool& modified, twAttributes& attributes);
