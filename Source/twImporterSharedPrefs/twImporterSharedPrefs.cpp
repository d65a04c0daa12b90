#include "twImporterSharedPrefs/twImporterSharedPrefs.h"

#include <cstring>
#include <sstream>

namespace {

// The block comes from the host at any alignment: read it bytewise.
uint16_t readVersion(const void* prefs) {
    uint16_t version = 0;
    std::memcpy(&version, prefs, sizeof(version));
    return version;
}

}  // namespace

SharedPrefsJsonCheck::SharedPrefsJsonCheck() : version(TW_IMPORTER_PREFS_VERSION), newPrefs(1), padding(0) {}

twImporterAttributes::twImporterAttributes()
    : twAttributes(),
      fullRes(),
      resolutions(),
      resolutionCount(0),
      padding0{},
      sidecarReloadCount(0),
      doNotSetAspectRatio(false),
      padding1{} {}

qvUtf8String twImporterAttributes::toStr(const twImporterAttributes& attributes) {
    std::ostringstream text;
    text << twAttributes::toStr(attributes).Str();
    text << "fullRes : " << attributes.fullRes.width << "x" << attributes.fullRes.height << "\n";
    text << "doNotSetAspectRatio : " << (attributes.doNotSetAspectRatio ? 1 : 0) << "\n";
    return qvUtf8String(text.str());
}

twImporterSharedPrefs::twImporterSharedPrefs() : SharedPrefsJsonCheck(), twImporterAttributes() {}

qvUtf8String twImporterSharedPrefs::toStr(const twImporterSharedPrefs& prefs) {
    std::ostringstream text;
    text << "Version : " << prefs.version << "\n";
    text << "NewPrefs : " << static_cast<unsigned>(prefs.newPrefs) << "\n";
    text << twImporterAttributes::toStr(prefs).Str();
    return qvUtf8String(text.str());
}

twImporterSharedPrefs twImporterSharedPrefs::convertFromOldVersion(const void* oldPrefs, size_t oldSize) {
    twImporterSharedPrefs prefs;
    if (!oldPrefs || oldSize < sizeof(uint16_t)) return prefs;

    const uint16_t oldVersion = readVersion(oldPrefs);
    if (oldVersion < TW_IMPORTER_PREFS_VERSION) {
        prefs.doNotSetAspectRatio = true;
    } else if (oldVersion == TW_IMPORTER_PREFS_VERSION) {
        // A version 9 block of another size: take its flag only from inside the block.
        constexpr size_t flagOffset = TW_IMPORTER_PREFS_SIZE - 4;
        static_assert(flagOffset == 392, "doNotSetAspectRatio sits at byte 392");
        if (oldSize > flagOffset) {
            const uint8_t flag = static_cast<const uint8_t*>(oldPrefs)[flagOffset];
            prefs.doNotSetAspectRatio = flag != 0;
        }
    }
    return prefs;
}

bool operator==(const twImporterAttributes& a, const twImporterAttributes& b) {
    return static_cast<const twAttributes&>(a) == static_cast<const twAttributes&>(b) &&
           a.sidecarReloadCount == b.sidecarReloadCount;
}

bool operator==(const twImporterSharedPrefs& a, const twImporterSharedPrefs& b) {
    return static_cast<const twImporterAttributes&>(a) == static_cast<const twImporterAttributes&>(b);
}

QvResult checkPrefsSizeAndVersion(const void* prefs, unsigned size) {
    if (!prefs) return QvResult("Prefs nullptr");
    if (size < TW_IMPORTER_PREFS_HEADER_SIZE) return QvResult("Prefs size inferior to Pref Header size !");
    const uint16_t version = readVersion(prefs);
    if (size == TW_IMPORTER_PREFS_SIZE && version >= TW_IMPORTER_PREFS_VERSION) return QvResult();
    std::ostringstream text;
    text << "Prefs version : " << version << ", size : " << size << ", SharedPrefs size :" << TW_IMPORTER_PREFS_SIZE;
    return QvResult(qvUtf8String(text.str()));
}
