#include "Utils/qvUtils.h"

#include <cerrno>
#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "Platform/qvPlatformFiles.h"
#include "Platform/qvPlatformThread.h"

namespace qvUtils {
namespace {

const char* const kMonths[12] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// Names Windows keeps for devices, compared whole and case-sensitively. COM1
// stands twice, as it always has; the second one never matches first.
const char* const kReservedNames[] = {"CON",  "PRN",  "AUX",  "NUL",  "COM1", "COM1", "COM2", "COM3", "COM4",
                                      "COM5", "COM6", "COM7", "COM8", "COM9", "LPT1", "LPT2", "LPT3", "LPT4",
                                      "LPT5", "LPT6", "LPT7", "LPT8", "LPT9"};

constexpr int kMaxTrailingCuts = 10000;

}  // namespace

qvUtf8String getCurrentDateTimeStr(int format) {
    const time_t now = time(nullptr);
    struct tm local;
    if (!localtime_r(&now, &local)) return qvUtf8String();
    char text[64];
    switch (format) {
        case 0:
            strftime(text, sizeof(text), "%Y-%m-%d %H:%M:%S", &local);
            break;
        case 1:
            strftime(text, sizeof(text), "%Y-%m-%d_%H-%M-%S", &local);
            break;
        case 2:
            // Spelled out here: strftime's month name follows the locale.
            snprintf(text, sizeof(text), "%s %02d - %02dh %02dm %02ds", kMonths[local.tm_mon % 12], local.tm_mday,
                     local.tm_hour, local.tm_min, local.tm_sec);
            break;
        default:
            return qvUtf8String();
    }
    return qvUtf8String(text);
}

qvUtf8String intToStringPadding(int value, int width) {
    if (width > 99) return qvUtf8String();
    char text[128];
    snprintf(text, sizeof(text), "%0*d", width, value);
    return qvUtf8String(text);
}

QvResult setThreadLowPriority(pthread_t thread) {
    qvPlatform::ThreadSchedule before;
    int error = qvPlatform::GetThreadSchedule(thread, before);
    if (error != 0) {
        return QvResult(qvUtf8String("Failed to set Lowest Priority mode on thread - Error ") + strerror(error));
    }
    // An ordinary thread's policy has one priority level, already its minimum:
    // the platform's lowest schedule for it is a lower class, so that the
    // thread really runs behind the host's threads.
    const qvPlatform::ThreadSchedule lowest = qvPlatform::LowestThreadSchedule(before);
    if (lowest.policy == before.policy && lowest.priority == before.priority) {
        return QvResult("Thread Policy : " + std::to_string(before.policy) + " is already at min value : " +
                            std::to_string(before.priority),
                        true);
    }
    error = qvPlatform::SetThreadSchedule(thread, lowest);
    if (error != 0) {
        return QvResult(qvUtf8String("Failed to set Lowest Priority mode on thread - Error ") + strerror(error));
    }
    // The policy read back is the one now in force, which the platform may have changed.
    qvPlatform::ThreadSchedule after = lowest;
    qvPlatform::GetThreadSchedule(thread, after);
    return QvResult("Thread with Policy " + std::to_string(after.policy) + " changed priority from " +
                        std::to_string(before.priority) + " to " + std::to_string(after.priority),
                    true);
}

QvResult setThreadLowPriority(std::thread& thread) { return setThreadLowPriority(thread.native_handle()); }

void openURLInDefaultBrowser(const qvUtf8String& url) { qvPlatform::OpenWithDesktop(url.Str()); }

qvUtf8String getFileSizePretty(uint64_t size, int precision, int mode) {
    const bool binary = (mode & ~2) != 0;
    const uint64_t unit = binary ? 1024 : 1000;
    const uint64_t divisors[4] = {unit, unit * unit, unit * unit * unit, unit * unit * unit * unit};
    const char* const names[4] = {" KB", " MB", " GB", " TB"};
    for (int power = 3; power >= 0; --power) {
        if (size > divisors[power]) {
            const double value = static_cast<double>(size) / static_cast<double>(divisors[power]);
            return qvUtf8String::DoubleToString(value, precision) + names[power];
        }
    }
    return qvUtf8String(std::to_string(size) + " B");
}

qvUtf8String frameNumberToTimecode(int64_t frame, double fps, bool dropFrame) {
    const int64_t rate = static_cast<int64_t>(std::llround(fps));
    if (rate < 1) return qvUtf8String();

    char separator = ':';
    int64_t dropped = 0;
    if (dropFrame && rate == 30) {
        separator = ';';
        dropped = 2;
    } else if (dropFrame && rate == 60) {
        separator = ';';
        dropped = 4;
    }

    const int64_t perMinute = rate * 60;
    const int64_t perDropMinute = perMinute - dropped;
    const int64_t perTenMinutes = dropped + perDropMinute * 10;
    const int64_t perHour = perTenMinutes * 6;

    int64_t hours = frame / perHour;
    int64_t rest = frame % perHour;
    int64_t minutes = 10 * (rest / perTenMinutes);
    rest %= perTenMinutes;
    int64_t seconds = 0;
    int64_t frames = 0;
    if (rest < perMinute) {
        seconds = rest / rate;
        frames = rest % rate;
    } else {
        rest -= perMinute;
        minutes += rest / perDropMinute + 1;
        rest %= perDropMinute;
        seconds = rest / rate;
        frames = rest % rate;
        if (dropFrame) {
            frames += dropped;
            if (frames >= rate) {
                frames -= rate;
                if (++seconds >= 60) {
                    seconds = 0;
                    if (++minutes >= 60) {
                        minutes = 0;
                        if (++hours > 23) hours = 0;
                    }
                }
            }
        }
    }

    const int frameWidth = frames >= 1000 ? 4 : frames >= 100 ? 3 : 2;
    char text[96];
    snprintf(text, sizeof(text), "%02" PRId64 ":%02" PRId64 ":%02" PRId64 "%c%0*" PRId64, hours, minutes, seconds,
             separator, frameWidth, frames);
    return qvUtf8String(text);
}

qvUtf8String getHRESULTerrorMessage(int32_t code) { return qvUtf8String(std::to_string(code)); }

qvUtf8String sanitizeFileOrFolderNameForWindows(const qvUtf8String& name) {
    std::string clean;
    clean.reserve(name.Size());
    for (char c : name.Str()) {
        const unsigned char byte = static_cast<unsigned char>(c);
        if (strchr("<>:\"/\\|?*", c) && c != '\0') continue;
        if (byte >= 1 && byte <= 31) continue;
        clean += c;
    }
    for (const char* reserved : kReservedNames) {
        if (clean == reserved) {
            clean.insert(clean.begin(), '_');
            break;
        }
    }
    if (clean.empty()) clean = "noName";
    for (int cut = 0; cut < kMaxTrailingCuts && !clean.empty() && (clean.back() == ' ' || clean.back() == '.'); ++cut) {
        clean.pop_back();
    }
    return qvUtf8String(clean);
}

}  // namespace qvUtils
