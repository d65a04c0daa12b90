#include "Format/RefTimecode.h"

#include <cmath>
#include <cstdio>

namespace twref {

namespace {

// Frames dropped per minute (except every tenth) at a drop-frame timebase:
// 2 at 30, 4 at 60. 0 where drop frame does not exist.
uint32_t droppedPerMinute(uint32_t timebase)
{
    return timebase % 30 == 0 ? timebase / 15 : 0;
}

bool readField(const std::string& text, size_t& pos, uint64_t& value)
{
    const size_t start = pos;
    value = 0;
    while (pos < text.size() && text[pos] >= '0' && text[pos] <= '9' && pos - start < 9) {
        value = value * 10 + uint64_t(text[pos] - '0');
        ++pos;
    }
    return pos > start;
}

}  // namespace

uint32_t RefTimecode::timebase(float frameRate)
{
    if (!(frameRate >= 1.0f))
        return 1;
    if (frameRate > 1000.0f)
        return 1000;
    return static_cast<uint32_t>(std::lround(frameRate));
}

bool RefTimecode::parse(const std::string& text, uint32_t tb, bool dropFrame, uint64_t& frames)
{
    if (tb == 0)
        return false;
    uint64_t fields[4];
    size_t pos = 0;
    for (int i = 0; i < 4; ++i) {
        if (!readField(text, pos, fields[i]))
            return false;
        if (i < 3) {
            if (pos >= text.size() || (text[pos] != ':' && text[pos] != ';' && text[pos] != '.'))
                return false;
            ++pos;
        }
    }
    if (pos != text.size() || fields[1] > 59 || fields[2] > 59 || fields[3] >= tb)
        return false;
    const uint64_t minutes = fields[0] * 60 + fields[1];
    frames = (minutes * 60 + fields[2]) * tb + fields[3];
    const uint32_t drop = dropFrame ? droppedPerMinute(tb) : 0;
    if (drop != 0) {
        const uint64_t dropped = drop * (minutes - minutes / 10);
        frames = frames >= dropped ? frames - dropped : 0;
    }
    return true;
}

std::string RefTimecode::format(uint64_t frames, uint32_t tb, bool dropFrame)
{
    if (tb == 0)
        tb = 1;
    const uint32_t drop = dropFrame ? droppedPerMinute(tb) : 0;
    if (drop != 0) {
        const uint64_t perTenMinutes = uint64_t(tb) * 600 - drop * 9;
        const uint64_t perMinute = uint64_t(tb) * 60 - drop;
        frames %= perTenMinutes * 6 * 24;
        const uint64_t tens = frames / perTenMinutes;
        const uint64_t rest = frames % perTenMinutes;
        frames += drop * 9 * tens + (rest > drop ? drop * ((rest - drop) / perMinute) : 0);
    }
    const uint64_t ff = frames % tb;
    uint64_t seconds = frames / tb;
    const uint64_t ss = seconds % 60;
    const uint64_t mm = (seconds / 60) % 60;
    const uint64_t hh = (seconds / 3600) % 24;
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%02u:%02u:%02u%c%02u", unsigned(hh), unsigned(mm), unsigned(ss),
                  drop != 0 ? ';' : ':', unsigned(ff));
    return buffer;
}

uint32_t RefTimecode::baseFrame(const RefClipModel& model)
{
    if (model.timecode.baseFrame >= 0)
        return static_cast<uint32_t>(model.timecode.baseFrame);
    uint64_t frames = 0;
    if (!parse(model.timecode.start, timebase(model.frameRate), model.timecode.dropFrame, frames))
        return 0;
    return static_cast<uint32_t>(frames);
}

std::string RefTimecode::forFrame(const RefClipModel& model, uint64_t frameIndex)
{
    if (const RefFrameOverride* f = model.frameOverride(frameIndex)) {
        if (f->hasTimecode)
            return f->timecode;
    }
    return format(uint64_t(baseFrame(model)) + frameIndex, timebase(model.frameRate), model.timecode.dropFrame);
}

}  // namespace twref
