#pragma once
// A product or host version: four bytes, major.minor.patch and a beta number.

#include "String/qvUtf8String.h"

#include <cstdint>
#include <string>

struct QvVersion {
    QvVersion() = default;
    QvVersion(uint8_t major, uint8_t minor, uint8_t patch, uint8_t beta);
    // "1.2.3" / "1.2.3.beta4" / "1.2.x"; an empty text gives 0.0.0.0.
    explicit QvVersion(const qvUtf8String& text);

    // "major.minor.patch", then ".beta<n>" when beta is not 0. A major of 255
    // reads "Unknown Version. Infos : minor.patch".
    qvUtf8String toString() const;
    std::wstring toWstring() const;

    // The version of the bundle the running program belongs to; 0.0.0.0 when
    // there is none.
    static QvVersion FromVersionResource();
    // The rule FromVersionResource applies to the bundle's version text: the
    // trailing "n.n[.n][.n]" of the text, missing numbers 0.
    static QvVersion FromBundleVersionText(const qvUtf8String& text);

    uint8_t major = 0;
    uint8_t minor = 0;
    uint8_t patch = 0;
    uint8_t beta = 0;  // 255 in `major` marks an unknown version
};

// The running program's bundle version text, or empty.
qvUtf8String VersionFromResource();
