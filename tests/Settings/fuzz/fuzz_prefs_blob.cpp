// Any block the host hands back as prefs: the check must read inside it, and a
// conversion must read inside it and always give a current blob.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "twImporterSharedPrefs/twImporterSharedPrefs.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // A copy of exactly the input's size, so that any read past it is caught.
    std::vector<uint8_t> block(data, data + size);
    const void* prefs = block.empty() ? nullptr : block.data();

    const QvResult check = checkPrefsSizeAndVersion(prefs, static_cast<unsigned>(size));
    if (check.isOk() && size != TW_IMPORTER_PREFS_SIZE) std::abort();

    const twImporterSharedPrefs converted = twImporterSharedPrefs::convertFromOldVersion(prefs, size);
    if (!checkPrefsSizeAndVersion(&converted, sizeof(converted)).isOk()) std::abort();
    if (converted.version != TW_IMPORTER_PREFS_VERSION || converted.newPrefs != 1) std::abort();
    if (converted.useClipAndFrameAttributes || converted.resolutionCount != 0) std::abort();
    uint8_t flag = 0;
    std::memcpy(&flag, reinterpret_cast<const uint8_t*>(&converted) + 392, 1);
    if (flag > 1) std::abort();
    return 0;
}
