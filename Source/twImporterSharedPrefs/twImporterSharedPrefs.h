#pragma once
// The importer's prefs: the block of bytes the host keeps per imported clip in
// its project, hands back on every frame request and uses as part of its frame
// cache key. The source settings effect writes into it too. It is a file format
// in all but name: a project saved years ago hands back the block of its day,
// so the layout below is fixed byte for byte, and size and version are its
// identity.
//
//   0   version (u16)            4   twAttributes (212 bytes)
//   2   newPrefs (u8)          216   fullRes width, height (u32 each)
//   3   padding                224   resolutions: 20 pairs of u32, biggest first
//                              384   resolution count (u8), 3 bytes padding
//                              388   sidecarReloadCount (u32)
//                              392   doNotSetAspectRatio (u8), 3 bytes padding

#include "Manager/twAttributes.h"
#include "String/qvUtf8String.h"
#include "Utils/qvResolution.h"
#include "Utils/qvResult.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

constexpr uint16_t TW_IMPORTER_PREFS_VERSION = 9;
constexpr unsigned TW_IMPORTER_PREFS_SIZE = 396;
// The first bytes of any version: what must be there to read a block at all.
constexpr unsigned TW_IMPORTER_PREFS_HEADER_SIZE = 4;
constexpr size_t TW_IMPORTER_PREFS_MAX_RESOLUTIONS = 20;

// The header of every version of the blob.
struct SharedPrefsJsonCheck {
    uint16_t version;
    // 1 in a blob the importer has just made and that hasn't been through
    // imGetInfo8 yet, which always leaves 0.
    uint8_t newPrefs;
    uint8_t padding;

    // The current version, new.
    SharedPrefsJsonCheck();
};

// Everything after the header: the clip's decode settings, and what the
// importer learnt of the clip that frame requests need without opening it.
struct twImporterAttributes : twAttributes {
    QvResolution fullRes;
    QvResolution resolutions[TW_IMPORTER_PREFS_MAX_RESOLUTIONS];
    uint8_t resolutionCount;
    uint8_t padding0[3];
    // Raised by the source settings to ask an open clip to read its sidecar again.
    uint32_t sidecarReloadCount;
    // Set: the pixel aspect stays 1:1 whatever the clip's metadata says.
    bool doNotSetAspectRatio;
    uint8_t padding1[3];

    twImporterAttributes();

    // The settings' text, then "fullRes : WxH" and "doNotSetAspectRatio : 0|1".
    static qvUtf8String toStr(const twImporterAttributes& attributes);
};

struct twImporterSharedPrefs : SharedPrefsJsonCheck, twImporterAttributes {
    // Version 9, newPrefs 1, default settings, no resolutions.
    twImporterSharedPrefs();

    // "Version : ", "NewPrefs : ", then the attributes' text.
    static qvUtf8String toStr(const twImporterSharedPrefs& prefs);

    // A current blob for the block `oldPrefs` of `oldSize` bytes that isn't
    // current. The decode settings of an old block are dropped (the sidecar and
    // the host's effect hold them). A block older than version 9 gets
    // doNotSetAspectRatio set, so that a clip imported before the importer read
    // anamorphic metadata keeps its picture shape; a version 9 block of another
    // size keeps its own flag when the block reaches that far (else it is
    // clear); a newer version, or a block too short to hold its version, gives
    // the defaults.
    static twImporterSharedPrefs convertFromOldVersion(const void* oldPrefs, size_t oldSize);
};

// Settings equal, and the same reload count: the resolutions and the aspect
// flag describe the clip, not what is asked of it.
bool operator==(const twImporterAttributes& a, const twImporterAttributes& b);
// The same on the attributes; version and newPrefs don't count.
bool operator==(const twImporterSharedPrefs& a, const twImporterSharedPrefs& b);
inline bool operator!=(const twImporterAttributes& a, const twImporterAttributes& b) { return !(a == b); }
inline bool operator!=(const twImporterSharedPrefs& a, const twImporterSharedPrefs& b) { return !(a == b); }

// Whether a frame request may read `prefs` of `size` bytes as a current blob:
// the current size and version 9 or later. Refusals say why.
QvResult checkPrefsSizeAndVersion(const void* prefs, unsigned size);

// The layout checks. The records derive from one another, which makes offsetof
// "conditionally supported"; both compilers we build with support it.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
static_assert(sizeof(SharedPrefsJsonCheck) == TW_IMPORTER_PREFS_HEADER_SIZE, "prefs header layout");
static_assert(offsetof(SharedPrefsJsonCheck, newPrefs) == 2, "prefs header layout");
static_assert(sizeof(twImporterAttributes) == 392, "twImporterAttributes layout");
static_assert(sizeof(twImporterSharedPrefs) == TW_IMPORTER_PREFS_SIZE, "the prefs blob is 396 bytes");
static_assert(offsetof(twImporterSharedPrefs, version) == 0 && offsetof(twImporterSharedPrefs, newPrefs) == 2,
              "prefs blob layout");
static_assert(offsetof(twImporterSharedPrefs, useClipAndFrameAttributes) == 4 &&
                  offsetof(twImporterSharedPrefs, clip) == 8 && offsetof(twImporterSharedPrefs, frame) == 188,
              "prefs blob layout: twAttributes at 4");
static_assert(offsetof(twImporterSharedPrefs, fullRes) == 216 && offsetof(twImporterSharedPrefs, resolutions) == 224 &&
                  offsetof(twImporterSharedPrefs, resolutionCount) == 384 &&
                  offsetof(twImporterSharedPrefs, sidecarReloadCount) == 388 &&
                  offsetof(twImporterSharedPrefs, doNotSetAspectRatio) == 392,
              "prefs blob layout");
#pragma GCC diagnostic pop
static_assert(std::is_trivially_copyable<twImporterSharedPrefs>::value, "the prefs blob is copied as plain bytes");
