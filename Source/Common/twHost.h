#pragma once
// What the product says about itself and the host it runs in, for the settings
// windows and the about texts; and the mapping from the settings side's host
// enumeration back to the host identity.

#include "Adobe/qvHost.h"
#include "String/qvUtf8String.h"

#include <string>

class twHost : public qvHostBase {
public:
    // `flag` is kept for the bundles that pass it; nothing here reads it.
    twHost(QV_PLUGIN plugin, PXC_HOST host, bool flag);
    void UpdateHostInfo() override;
    ~twHost() override;

    // After Effects 1 -> 3, Premiere Pro 2 -> 1, Media Encoder 3 -> 4,
    // Desktop 4 -> 10, anything else 0.
    static QV_APP_ENUM fromPXCHostToTwAppEnum(PXC_HOST host);

    QV_PLUGIN plugin;
    bool flag;
};

// The folder that holds the running bundle, with a trailing "/": the bundle's
// executable path cut at the last occurrence of the bundle's extension
// (".bundle" for the importer, ".app" for the desktop application, ".plugin"
// for the effects) and then behind the last "/". Empty when the bundle is not
// loaded in this process or its path has no such extension.
std::wstring GetDylibParentFolderPath(QV_PLUGIN plugin);
// The cut alone, for a given executable path.
std::wstring GetDylibParentFolderPathFrom(const qvUtf8String& executablePath, QV_PLUGIN plugin);
