#pragma once
// What the settings-file tests share: settings records filled with values that
// differ from the defaults and from each other, exact comparison of records,
// generated .cube texts, and running a piece of a test as an ordinary user.

#include "Manager/twAttributes.h"

#include <functional>
#include <string>
#include <vector>

namespace twtest {

// Settings that differ in every field from the defaults; `variant` walks
// through edge values (full-length texts, extreme integers, negative zero,
// tiny and huge floats). Texts are never empty: an empty text names nothing.
twAttributes variedSettings(int variant);
constexpr int kSettingsVariants = 6;

// Every setting byte for byte (the timecode is where the frame values are
// filed, not a setting); a message naming the first difference, or empty.
std::string settingsDifference(const twClipAttributes& a, const twFrameAttributes& fa, const twClipAttributes& b,
                               const twFrameAttributes& fb);

// A .cube text: 1D (kind 1) or 3D (kind 2) of `size`, red fastest, with the
// value of each channel from valueAt. `header` goes before the size line.
double cubeValueAt(size_t row, int channel, int size);
std::string cubeText(int kind, int size, const std::string& header = std::string());

// Runs `body` in a child process as user and group 65534 (nobody) and returns
// its exit code, or -1 when it did not exit normally. Tests run as root, which
// every permission lets through; an ordinary user is what a permission test needs.
int runAsUnprivileged(const std::function<int()>& body);
constexpr unsigned kUnprivilegedId = 65534;

}  // namespace twtest
