#include "Writer/RefClipWriter.h"
#include "Format/RefClipFile.h"
#include "Format/RefLutTools.h"
#include "Format/RefTimecode.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>

namespace twref {

namespace {

bool failWith(std::string* error, const std::string& text)
{
    if (error)
        *error = text;
    return false;
}

}  // namespace

bool RefClipWriter::write(const std::string& path, const RefClipModel& model, std::string* error)
{
    const std::string json = RefClipFile::describe(model, true);
    if (json.size() > kRefMaxDescriptionBytes)
        return failWith(error, "the description is too large");
    uint64_t total = kRefClipHeaderBytes + json.size();
    const uint64_t records = model.recordedFrameCount();
    for (uint64_t i = 0; i < records && total < (uint64_t(1) << 36); ++i)
        total += kRefFrameRecordHeaderBytes + model.frameBitStreamBytes(i);
    // A clip of a billion frames is a description for a fault test, not a file
    // to fill a disk with: such tests limit RefBitStream::recordedFrames.
    if (total >= (uint64_t(1) << 36))
        return failWith(error, "the clip's frame records would exceed 64 GiB; limit bitStream.recordedFrames");

    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    if (!file)
        return failWith(error, "cannot create " + path + ": " + std::strerror(errno));
    const std::string header = RefClipFile::fileHeader(static_cast<uint32_t>(json.size()));
    file.write(header.data(), static_cast<std::streamsize>(header.size()));
    file.write(json.data(), static_cast<std::streamsize>(json.size()));
    for (uint64_t i = 0; i < records && file; ++i) {
        const std::string record = RefClipFile::makeFrameRecord(model, i);
        file.write(record.data(), static_cast<std::streamsize>(record.size()));
    }
    file.close();
    if (!file)
        return failWith(error, "cannot write " + path);
    return true;
}

bool RefClipWriter::writeBytes(const std::string& path, const std::string& bytes, std::string* error)
{
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    if (!file)
        return failWith(error, "cannot create " + path + ": " + std::strerror(errno));
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file)
        return failWith(error, "cannot write " + path);
    return true;
}

bool RefClipWriter::writeSidecar(const std::string& clipPath, const RefSidecarSettings& settings, std::string* error)
{
    const std::string path = RefSidecar::pathForClip(clipPath);
    if (!RefSidecar::write(path, settings))
        return failWith(error, "cannot write " + path);
    return true;
}

RefClipModel RefClipWriter::makeClip(uint32_t width, uint32_t height, float frameRate, uint64_t frameCount)
{
    RefClipModel model;
    model.width = width;
    model.height = height;
    model.frameRate = frameRate;
    model.frameCount = frameCount;
    model.setMetadata("sensor_area_captured", RefValue::numberArray(RefVariantType::U32, {0, 0, double(width),
                                                                                             double(height)}));
    return model;
}

RefClipModel RefClipWriter::makeClipWithAudio(uint32_t width, uint32_t height, float frameRate, uint64_t frameCount,
                                              uint32_t channels, uint32_t sampleRate, uint32_t bitDepth)
{
    RefClipModel model = makeClip(width, height, frameRate, frameCount);
    model.audio.present = true;
    model.audio.channelCount = channels;
    model.audio.sampleRate = sampleRate;
    model.audio.bitDepth = bitDepth;
    return model;
}

void RefClipWriter::addAllMetadataTypes(RefClipModel& model)
{
    model.setMetadata("test_u8", RefValue::u8(200));
    model.setMetadata("test_s16", RefValue::s16(-1234));
    model.setMetadata("test_u16", RefValue::u16(54321));
    model.setMetadata("test_s32", RefValue::s32(-123456789));
    model.setMetadata("test_u32", RefValue::u32(4000000000u));
    model.setMetadata("test_float32", RefValue::f32(3.25f));
    model.setMetadata("test_float64", RefValue::f64(2.718281828459045));
    model.setMetadata("test_string", RefValue::string("reference"));
    model.setMetadata("test_empty", RefValue::empty());
    model.setMetadata("test_array_u8", RefValue::numberArray(RefVariantType::U8, {1, 2, 3}));
    model.setMetadata("test_array_s16", RefValue::numberArray(RefVariantType::S16, {-1, 0, 1}));
    model.setMetadata("test_array_u16", RefValue::numberArray(RefVariantType::U16, {10, 20}));
    model.setMetadata("test_array_s32", RefValue::numberArray(RefVariantType::S32, {-70000, 70000}));
    model.setMetadata("test_array_u32", RefValue::numberArray(RefVariantType::U32, {1, 4000000000.0}));
    model.setMetadata("test_array_float32", RefValue::numberArray(RefVariantType::Float32, {0.5, 1.5, 2.5}));
    model.setMetadata("test_array_float64", RefValue::numberArray(RefVariantType::Float64, {0.1, 0.2}));
    model.setMetadata("test_array_string", RefValue::stringArray({"a", "b"}));
    model.setFrameMetadata("frame_u8", RefValue::u8(7));
    model.setFrameMetadata("frame_s16", RefValue::s16(-7));
    model.setFrameMetadata("frame_u16", RefValue::u16(7));
    model.setFrameMetadata("frame_s32", RefValue::s32(-70000));
    model.setFrameMetadata("frame_u32", RefValue::u32(70000));
    model.setFrameMetadata("frame_float32", RefValue::f32(0.75f));
    model.setFrameMetadata("frame_float64", RefValue::f64(0.125));
    model.setFrameMetadata("frame_string", RefValue::string("frame"));
    model.setFrameMetadata("frame_array", RefValue::numberArray(RefVariantType::Float32, {1, 2, 3, 4}));
}

void RefClipWriter::addEmbeddedLut(RefClipModel& model, uint32_t size)
{
    model.embeddedLut = RefLutTools::make(RefLutKind::Warm, size, "Embedded Warm.cube", "Embedded Warm");
    model.setClipAttributeValue(RefClipAttr::Post3DLUTMode, RefValue::string("Embedded"));
    model.setMetadata("post_3dlut_mode", RefValue::string("Embedded"));
    model.setMetadata("post_3dlut_embedded_name", RefValue::string(model.embeddedLut.name));
}

RefClipModel RefClipWriter::trimmed(const RefClipModel& model, uint64_t first, uint64_t count)
{
    RefClipModel out = model;
    first = std::min(first, model.frameCount);
    count = std::min(count, model.frameCount - first);
    out.frameCount = count;
    out.bitStream.recordedFrames = UINT64_MAX;
    out.frames.clear();
    for (const RefFrameOverride& f : model.frames) {
        if (f.index >= first && f.index - first < count) {
            RefFrameOverride moved = f;
            moved.index = f.index - first;
            out.frames.push_back(moved);
        }
    }
    const uint32_t timebase = RefTimecode::timebase(model.frameRate);
    const uint64_t base = uint64_t(RefTimecode::baseFrame(model)) + first;
    out.timecode.start = RefTimecode::format(base, timebase, model.timecode.dropFrame);
    out.timecode.baseFrame = model.timecode.baseFrame >= 0 ? int64_t(base & 0xFFFFFFFFu) : -1;
    if (model.audio.present && model.frameRate > 0.0f) {
        const uint64_t total = model.effectiveAudioSampleCount();
        const double perFrame = double(model.audio.sampleRate) / double(model.frameRate);
        const uint64_t start = std::min<uint64_t>(total, uint64_t(double(first) * perFrame));
        const uint64_t end = std::min<uint64_t>(total, uint64_t(double(first + count) * perFrame));
        out.audio.sampleCount = end - start;
    }
    // A trimmed clip is a healthy copy: the faults described a source's behaviour.
    out.faults.clear();
    out.delays.clear();
    return out;
}

}  // namespace twref
