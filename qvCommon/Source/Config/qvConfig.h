#pragma once
// The product's identity, filled once at start-up (before any other thread runs)
// and read freely afterwards.

#include "String/qvUtf8String.h"
#include "Utils/qvVersion.h"

#include <string>

struct QvConfig {
    QvVersion version;
    long buildNumber = -1;
    std::string productName;
    std::string supportEmail;
    std::string productId;
    std::string productUrl;
    std::string productFolderName;
    std::string iniFileName;
    std::string cmdFileName;
    // Empty selects the default "Logs" folder.
    qvUtf8String logSubfolder;
};

extern QvConfig g_config;
