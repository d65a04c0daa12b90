#pragma once
// Small services without a better home: dates, timecodes, thread priority,
// sizes for people, names that Windows accepts, and min/max helpers.

#include <cstddef>
#include <cstdint>
#include <pthread.h>
#include <thread>

#include "String/qvUtf8String.h"
#include "Utils/qvResult.h"

namespace qvUtils {

// Local time. 0: "2024-03-05 14:07:09"; 1: "2024-03-05_14-07-09";
// 2: "Mar 05 - 14h 07m 09s"; any other format: empty.
qvUtf8String getCurrentDateTimeStr(int format);
// `value` zero-padded to `width` digits; empty for a width above 99.
qvUtf8String intToStringPadding(int value, int width);

// Puts the thread at the lowest priority of its policy. A warning tells what
// happened (already lowest, or from which priority to which); an error that
// the system refused.
QvResult setThreadLowPriority(pthread_t thread);
QvResult setThreadLowPriority(std::thread& thread);

void openURLInDefaultBrowser(const qvUtf8String& url);

// "1.50 KB" and the like, above 1000 or 1024 (mode with any bit but 2), else "123 B".
qvUtf8String getFileSizePretty(uint64_t size, int precision, int mode);
// "hh:mm:ss:ff", or "hh:mm:ss;ff" for drop-frame at 30 and 60 fps. Empty for a
// rate that rounds below 1.
qvUtf8String frameNumberToTimecode(int64_t frame, double fps, bool dropFrame);
// The code in decimal.
qvUtf8String getHRESULTerrorMessage(int32_t code);

// Without the characters Windows forbids, reserved device names prefixed with
// "_", "noName" for nothing left, and no trailing blanks or dots.
qvUtf8String sanitizeFileOrFolderNameForWindows(const qvUtf8String& name);

}  // namespace qvUtils

inline int32_t int_min(int32_t a, int32_t b) { return a < b ? a : b; }
inline int32_t int_max(int32_t a, int32_t b) { return a > b ? a : b; }
inline size_t st_min(size_t a, size_t b) { return a < b ? a : b; }
inline size_t st_max(size_t a, size_t b) { return a > b ? a : b; }
inline int64_t s64_min(int64_t a, int64_t b) { return a < b ? a : b; }
inline int64_t s64_max(int64_t a, int64_t b) { return a > b ? a : b; }
inline uint64_t u64_min(uint64_t a, uint64_t b) { return a < b ? a : b; }
inline uint64_t u64_max(uint64_t a, uint64_t b) { return a > b ? a : b; }
