#pragma once
// Who the simulated host says it is: the application code and version the App
// Info suite reports, and the interface version handed to the plug-in in
// imStdParms.

#include "MediaCoreTypes.h"

#include <string>

struct twSimIdentity {
    csSDK_uint32 appCode = 0x5050726F;  // 'PPro'
    unsigned int major = 24;
    unsigned int minor = 0;
    unsigned int patch = 0;
    csSDK_uint32 build = 1;
    std::string language = "en_US";
    csSDK_int32 interfaceVersion = 23;

    static twSimIdentity PremierePro();
    static twSimIdentity MediaEncoder();
    static twSimIdentity AfterEffects();

    // "premiere", "ame" or "aftereffects": the application code only, the
    // version stays as it is. False for any other name.
    bool setApp(const std::string& name);
    // "X.Y.Z" (or "X.Y", "X"); false, with nothing changed, for anything else.
    bool setVersion(const std::string& text);

    // "Premiere Pro 24.0.0 ('PPro'), interface 23"
    std::string describe() const;
    std::string versionText() const;
};
