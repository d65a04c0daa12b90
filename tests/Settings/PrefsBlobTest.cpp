#include "twImporterSharedPrefs/twImporterSharedPrefs.h"

#include "RawBytes.h"

#include <gtest/gtest.h>

#include <new>
#include <string>

using namespace twtest;

namespace {

// The blob's offsets, as the format fixes them.
constexpr size_t kVersion = 0;
constexpr size_t kNewPrefs = 2;
constexpr size_t kAttributes = 4;
constexpr size_t kFullResWidth = 216;
constexpr size_t kFullResHeight = 220;
constexpr size_t kResolutions = 224;
constexpr size_t kResolutionCount = 384;
constexpr size_t kSidecarReloadCount = 388;
constexpr size_t kDoNotSetAspectRatio = 392;
constexpr size_t kBlobSize = 396;

Bytes defaultBlobBytes() {
    Bytes b(kBlobSize, 0);
    putU16(b, kVersion, 9);
    putU8(b, kNewPrefs, 1);
    putDefaultAttributes(b, kAttributes);
    return b;
}

// An old block of exactly `size` bytes on the heap, so that a read past its end
// is caught by the address sanitizer.
Bytes oldBlock(uint16_t version, size_t size, uint8_t aspectFlagByte) {
    Bytes b(size, 0);
    if (size >= 2) putU16(b, kVersion, version);
    if (size > kNewPrefs) putU8(b, kNewPrefs, 1);
    // Settings that must not survive the conversion.
    if (size > kAttributes) putU8(b, kAttributes, 1);
    if (size >= kAttributes + attr::size) putU32(b, kAttributes + attr::iso, 3200);
    if (size >= kSidecarReloadCount + 4) putU32(b, kSidecarReloadCount, 7);
    if (size > kDoNotSetAspectRatio) putU8(b, kDoNotSetAspectRatio, aspectFlagByte);
    return b;
}

Bytes converted(const Bytes& old) {
    return bytesOf(twImporterSharedPrefs::convertFromOldVersion(old.empty() ? nullptr : old.data(), old.size()));
}

Bytes defaultsWithAspectFlag(uint8_t flag) {
    Bytes b = defaultBlobBytes();
    putU8(b, kDoNotSetAspectRatio, flag);
    return b;
}

}  // namespace

TEST(PrefsBlob, DefaultBlobIsExactBytes) {
    ASSERT_EQ(sizeof(twImporterSharedPrefs), kBlobSize);
    alignas(twImporterSharedPrefs) unsigned char storage[sizeof(twImporterSharedPrefs)];
    for (int fill : {0x00, 0x5A, 0xFF}) {
        std::memset(storage, fill, sizeof(storage));
        auto* prefs = new (storage) twImporterSharedPrefs();
        EXPECT_EQ(bytesOf(*prefs), defaultBlobBytes()) << "memory filled with " << fill;
        prefs->~twImporterSharedPrefs();
    }
}

TEST(PrefsBlob, RawBytesReadThroughTheRecord) {
    Bytes b(kBlobSize, 0);
    putU16(b, kVersion, 9);
    putU8(b, kNewPrefs, 0);
    putU8(b, kAttributes + attr::useClipAndFrameAttributes, 1);
    putU16(b, kAttributes + attr::colorScienceGen, 5);
    putText(b, kAttributes + attr::gamut, 64, "Rec.2020");
    putU8(b, kAttributes + attr::gamutCompression, 1);
    putText(b, kAttributes + attr::gamma, 64, "Blackmagic Design Custom");
    putF32(b, kAttributes + attr::saturation, 1.5f);
    putF32(b, kAttributes + attr::contrast, 0.75f);
    putF32(b, kAttributes + attr::midpoint, 0.25f);
    putF32(b, kAttributes + attr::highlights, 0.125f);
    putF32(b, kAttributes + attr::shadows, 1.875f);
    putF32(b, kAttributes + attr::whiteLevel, 1.25f);
    putF32(b, kAttributes + attr::blackLevel, -0.5f);
    putU8(b, kAttributes + attr::useVideoBlackLevel, 1);
    putU8(b, kAttributes + attr::highlightRecovery, 1);
    putText(b, kAttributes + attr::lutMode, 12, "Embedded");
    putU32(b, kAttributes + attr::iso, 1600);
    putU32(b, kAttributes + attr::kelvin, 4300);
    putI16(b, kAttributes + attr::tint, -42);
    putF32(b, kAttributes + attr::exposure, 1.5f);
    putText(b, kAttributes + attr::timecode, 12, "10:20:30:40");
    putU32(b, kFullResWidth, 12288);
    putU32(b, kFullResHeight, 6480);
    for (uint32_t i = 0; i < 20; ++i) {
        putU32(b, kResolutions + 8 * i, 12288 >> (i % 4));
        putU32(b, kResolutions + 8 * i + 4, 1000 + i);
    }
    putU8(b, kResolutionCount, 20);
    putU32(b, kSidecarReloadCount, 0x01020304);
    putU8(b, kDoNotSetAspectRatio, 1);

    const auto p = fromBytes<twImporterSharedPrefs>(b);
    EXPECT_EQ(p.version, 9);
    EXPECT_EQ(p.newPrefs, 0);
    EXPECT_TRUE(p.useClipAndFrameAttributes);
    EXPECT_EQ(p.clip.colorScienceGen, 5);
    EXPECT_STREQ(p.clip.gamut, "Rec.2020");
    EXPECT_TRUE(p.clip.gamutCompression);
    EXPECT_TRUE(p.clip.isCustomGamma());
    EXPECT_EQ(p.clip.gammaControls.saturation, 1.5f);
    EXPECT_EQ(p.clip.gammaControls.contrast, 0.75f);
    EXPECT_EQ(p.clip.gammaControls.midpoint, 0.25f);
    EXPECT_EQ(p.clip.gammaControls.highlights, 0.125f);
    EXPECT_EQ(p.clip.gammaControls.shadows, 1.875f);
    EXPECT_EQ(p.clip.gammaControls.whiteLevel, 1.25f);
    EXPECT_EQ(p.clip.gammaControls.blackLevel, -0.5f);
    EXPECT_TRUE(p.clip.gammaControls.useVideoBlackLevel);
    EXPECT_TRUE(p.clip.highlightRecovery);
    EXPECT_STREQ(p.clip.lutMode, "Embedded");
    EXPECT_EQ(p.frame.iso, 1600u);
    EXPECT_EQ(p.frame.kelvin, 4300u);
    EXPECT_EQ(p.frame.tint, -42);
    EXPECT_EQ(p.frame.exposure, 1.5f);
    EXPECT_STREQ(p.frame.timecode, "10:20:30:40");
    EXPECT_EQ(p.fullRes, QvResolution(12288, 6480));
    for (uint32_t i = 0; i < 20; ++i) EXPECT_EQ(p.resolutions[i], QvResolution(12288 >> (i % 4), 1000 + i)) << i;
    EXPECT_EQ(p.resolutionCount, 20);
    EXPECT_EQ(p.sidecarReloadCount, 0x01020304u);
    EXPECT_TRUE(p.doNotSetAspectRatio);

    // And back: the record's bytes are the ones it was read from.
    EXPECT_EQ(bytesOf(p), b);
}

TEST(PrefsBlob, RecordFieldsLandAtTheirOffsets) {
    twImporterSharedPrefs p;
    p.newPrefs = 0;
    p.useClipAndFrameAttributes = true;
    p.frame.kelvin = 0xA1B2C3D4;
    p.clip.gammaControls.blackLevel = 0.5f;
    p.fullRes = QvResolution(8192, 4320);
    p.resolutions[0] = QvResolution(8192, 4320);
    p.resolutions[19] = QvResolution(0x11223344, 0x55667788);
    p.resolutionCount = 2;
    p.sidecarReloadCount = 0xCAFEF00D;
    p.doNotSetAspectRatio = true;

    const Bytes b = bytesOf(p);
    EXPECT_EQ(getU16(b, kVersion), 9);
    EXPECT_EQ(b[kNewPrefs], 0);
    EXPECT_EQ(b[kAttributes], 1);
    EXPECT_EQ(getU32(b, kAttributes + attr::kelvin), 0xA1B2C3D4u);
    EXPECT_EQ(getF32(b, kAttributes + attr::blackLevel), 0.5f);
    EXPECT_EQ(getU32(b, kFullResWidth), 8192u);
    EXPECT_EQ(getU32(b, kFullResHeight), 4320u);
    EXPECT_EQ(getU32(b, kResolutions), 8192u);
    EXPECT_EQ(getU32(b, kResolutions + 4), 4320u);
    EXPECT_EQ(getU32(b, kResolutions + 19 * 8), 0x11223344u);
    EXPECT_EQ(getU32(b, kResolutions + 19 * 8 + 4), 0x55667788u);
    EXPECT_EQ(b[kResolutionCount], 2);
    EXPECT_EQ(getU32(b, kSidecarReloadCount), 0xCAFEF00Du);
    EXPECT_EQ(b[kDoNotSetAspectRatio], 1);
    for (size_t pad : {size_t{3}, size_t{385}, size_t{386}, size_t{387}, size_t{393}, size_t{394}, size_t{395}})
        EXPECT_EQ(b[pad], 0) << pad;
}

TEST(PrefsBlob, OlderVersionsKeepTheirPictureShape) {
    // Any version before 9, at any size that holds a version: defaults, with
    // the pixel aspect left alone; nothing of the old settings survives.
    for (uint16_t version = 0; version < 9; ++version) {
        for (size_t size : {size_t{2}, size_t{4}, size_t{216}, size_t{300}, kBlobSize, size_t{512}}) {
            EXPECT_EQ(converted(oldBlock(version, size, 0)), defaultsWithAspectFlag(1))
                << "version " << version << " size " << size;
        }
    }
}

TEST(PrefsBlob, VersionNineOfAnotherSizeKeepsItsFlagWhenItHasOne) {
    EXPECT_EQ(converted(oldBlock(9, 393, 1)), defaultsWithAspectFlag(1));
    EXPECT_EQ(converted(oldBlock(9, 393, 0)), defaultsWithAspectFlag(0));
    EXPECT_EQ(converted(oldBlock(9, 512, 1)), defaultsWithAspectFlag(1));
    // A flag byte other than 1 still means set, and is stored as 1.
    EXPECT_EQ(converted(oldBlock(9, 400, 0x7F)), defaultsWithAspectFlag(1));
    // The current size converts the same way when asked to.
    EXPECT_EQ(converted(oldBlock(9, kBlobSize, 1)), defaultsWithAspectFlag(1));

    // A block that ends before the flag has none: never read past it.
    for (size_t size : {size_t{2}, size_t{4}, size_t{300}, size_t{392}})
        EXPECT_EQ(converted(oldBlock(9, size, 1)), defaultsWithAspectFlag(0)) << size;
}

TEST(PrefsBlob, NewerOrUnreadableBlocksGiveTheDefaults) {
    for (uint16_t version : {uint16_t{10}, uint16_t{0x0100}, uint16_t{0xFFFF}})
        EXPECT_EQ(converted(oldBlock(version, kBlobSize, 1)), defaultBlobBytes()) << version;
    EXPECT_EQ(converted(Bytes{}), defaultBlobBytes());
    EXPECT_EQ(converted(Bytes{3}), defaultBlobBytes());  // one byte: no version to read
    EXPECT_EQ(bytesOf(twImporterSharedPrefs::convertFromOldVersion(nullptr, kBlobSize)), defaultBlobBytes());
}

TEST(PrefsBlob, SizeAndVersionCheckForEachKindOfBlock) {
    auto check = [](const Bytes& b, unsigned size) { return checkPrefsSizeAndVersion(b.data(), size); };
    auto expectError = [](const QvResult& r, const std::string& text) {
        EXPECT_TRUE(r.hasError);
        EXPECT_FALSE(r.hasWarning);
        EXPECT_EQ(r.toString().Str(), text);
    };

    expectError(checkPrefsSizeAndVersion(nullptr, kBlobSize), "Prefs nullptr");
    for (unsigned size = 0; size < 4; ++size)
        expectError(check(Bytes(4, 0), size), "Prefs size inferior to Pref Header size !");

    expectError(check(oldBlock(8, kBlobSize, 0), kBlobSize), "Prefs version : 8, size : 396, SharedPrefs size :396");
    expectError(check(oldBlock(9, 300, 0), 300), "Prefs version : 9, size : 300, SharedPrefs size :396");
    expectError(check(oldBlock(9, 400, 0), 400), "Prefs version : 9, size : 400, SharedPrefs size :396");
    expectError(check(oldBlock(0, 4, 0), 4), "Prefs version : 0, size : 4, SharedPrefs size :396");

    EXPECT_TRUE(check(defaultBlobBytes(), kBlobSize).isOk());
    // A newer version of the current size passes: imGetInfo8 settles it.
    EXPECT_TRUE(check(oldBlock(10, kBlobSize, 0), kBlobSize).isOk());

    // The host's block has no alignment promise.
    Bytes shifted(kBlobSize + 1, 0);
    putU16(shifted, 1, 9);
    EXPECT_TRUE(checkPrefsSizeAndVersion(shifted.data() + 1, kBlobSize).isOk());
}

TEST(PrefsBlob, EqualityLooksAtSettingsAndReloadCountOnly) {
    const twImporterSharedPrefs base;
    twImporterSharedPrefs other;
    other.version = 8;
    other.newPrefs = 0;
    other.fullRes = QvResolution(6144, 3456);
    other.resolutions[0] = QvResolution(6144, 3456);
    other.resolutionCount = 1;
    other.doNotSetAspectRatio = true;
    // Settings not in use don't count either.
    other.frame.iso = 400;
    EXPECT_TRUE(base == other);
    EXPECT_TRUE(static_cast<const twImporterAttributes&>(base) == static_cast<const twImporterAttributes&>(other));

    other.sidecarReloadCount = 1;
    EXPECT_FALSE(base == other);
    EXPECT_TRUE(base != other);

    twImporterSharedPrefs inUse;
    inUse.useClipAndFrameAttributes = true;
    EXPECT_FALSE(base == inUse);
    twImporterSharedPrefs inUseOtherIso = inUse;
    inUseOtherIso.frame.iso = 400;
    EXPECT_FALSE(inUse == inUseOtherIso);
}

TEST(PrefsBlob, TextForTheLog) {
    twImporterSharedPrefs p;
    EXPECT_EQ(twImporterSharedPrefs::toStr(p).Str(),
              "Version : 9\n"
              "NewPrefs : 1\n"
              "useClipAndFrameAttributes: 0\n"
              "fullRes : 0x0\n"
              "doNotSetAspectRatio : 0\n");

    p.newPrefs = 0;
    p.useClipAndFrameAttributes = true;
    p.fullRes = QvResolution(4096, 2160);
    p.doNotSetAspectRatio = true;
    const std::string text = twImporterSharedPrefs::toStr(p).Str();
    const std::string head = "Version : 9\nNewPrefs : 0\n";
    const std::string tail = "fullRes : 4096x2160\ndoNotSetAspectRatio : 1\n";
    ASSERT_GT(text.size(), head.size() + tail.size());
    EXPECT_EQ(text.substr(0, head.size()), head);
    EXPECT_EQ(text.substr(head.size(), text.size() - head.size() - tail.size()), twAttributes::toStr(p).Str());
    EXPECT_EQ(text.substr(text.size() - tail.size()), tail);
}
