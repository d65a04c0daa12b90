#include "ProductConfig.h"

#include "Config/qvConfig.h"

namespace twtest {

void UseProductConfig() {
    g_config.version = QvVersion(3, 3, 9, 0);
    g_config.buildNumber = 610;
    g_config.productName = "Tarnwick";
    g_config.productId = "Tarnwick";
    g_config.productFolderName = "Tarnwick";
    g_config.iniFileName = "Tarnwick_options.ini";
    g_config.cmdFileName = "Tarnwick_CmdFile.txt";
    g_config.logSubfolder = qvUtf8String();
}

}  // namespace twtest
