#include "Common/twUtils.h"

#include "FileSystem/qvFileSystem.h"
#include "FileSystem/qvUtf8Path.h"

namespace twUtils {

QvResult getOrCreateTWPresetFolder(qvUtf8String& out) {
    qvUtf8String productFolder;
    QvResult res = qvFileSystem::getOrCreateProductAppDataFolder(productFolder);
    if (res.hasError) return res;
    out = productFolder + "/" + "TW_Preset";
    return qvFileSystem::createDirectory(out);
}

}  // namespace twUtils
