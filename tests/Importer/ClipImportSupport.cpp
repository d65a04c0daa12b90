#include "ClipImportSupport.h"

#include "Library/RefDecoderDebug.h"
#include "Render/RefAudioRenderer.h"
#include "Writer/RefClipWriter.h"

#include <dlfcn.h>

#include <cstring>
#include <fstream>
#include <iterator>

void ClipImportTest::TearDown() {
    if (m_host && !m_finished) finish();
}

twSimHost& ClipImportTest::startHost(const twSimIdentity& identity, const std::string& plugin) {
    twSimHost& host = start(identity, plugin);
    EXPECT_EQ(host.init(), imNoErr);
    m_finished = false;
    return host;
}

std::string ClipImportTest::writeClip(const std::string& name, const twref::RefClipModel& model) const {
    const std::string path = m_folder.join(name);
    std::string error;
    EXPECT_TRUE(twref::RefClipWriter::write(path, model, &error)) << error;
    return path;
}

twSimFile& ClipImportTest::importClip(const std::string& path) {
    m_files.push_back(host().importFile(path));
    return *m_files.back();
}

twSimFile& ClipImportTest::newFile(const std::string& path) {
    m_files.push_back(std::make_unique<twSimFile>(host(), path));
    const std::vector<twSimFormat> formats = host().formats();
    if (!formats.empty()) m_files.back()->setFileType(formats.front().filetype);
    return *m_files.back();
}

const TWI_PrivateData& ClipImportTest::record(const twSimFile& file) {
    return **static_cast<TWI_PrivateData* const*>(file.privateData());
}

std::vector<unsigned char> ClipImportTest::prefsBytes(const twSimFile& file) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(file.prefs());
    if (!bytes) return {};
    return std::vector<unsigned char>(bytes, bytes + file.prefsSize());
}

std::string ClipImportTest::logText(const std::string& hostText) const {
    std::ifstream in(productFolder() + "/Logs/Tarnwick_Importer_" + hostText + ".log", std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void ClipImportTest::finish() {
    m_finished = true;
    // As a host does: every file it still holds, opened or with a record, is closed once.
    for (auto& file : m_files) {
        const bool open = file->fileRef() != nullptr && file->fileRef() != imInvalidHandleValue();
        if (open || file->privateData()) file->close();
    }
    m_files.clear();
    EXPECT_EQ(host().shutdown(), imNoErr);
    EXPECT_TRUE(host().leakReport().clean()) << host().leakReport().toString();
    if (!m_expectDecoder) return;
    std::string report;
    EXPECT_EQ(decoderLiveObjectCount(&report), 0u) << report;
}

uint64_t decoderLiveObjectCount(std::string* report) {
    const auto live =
        reinterpret_cast<TwRefDecoderLiveObjectsFunc>(dlsym(RTLD_DEFAULT, TW_REF_DECODER_LIVE_OBJECTS_SYMBOL));
    EXPECT_NE(live, nullptr) << "the reference decoder is not loaded";
    if (!live) return 0;
    char text[4096] = {};
    const uint64_t count = live(text, sizeof(text));
    if (report) *report = text;
    return count;
}

twref::RefClipModel clipWithAudio(uint32_t channels, uint32_t sampleRate, uint32_t bitDepth) {
    twref::RefClipModel model;
    model.audio.present = true;
    model.audio.channelCount = channels;
    model.audio.sampleRate = sampleRate;
    model.audio.bitDepth = bitDepth;
    return model;
}

std::vector<std::vector<float>> expectedAudio(const twref::RefClipModel& model, int64_t first, uint32_t count) {
    const uint32_t channels = model.audio.channelCount;
    const uint32_t width = twref::RefAudioRenderer::bytesPerSample(model.audio.bitDepth);
    std::vector<unsigned char> bytes(static_cast<size_t>(count) * channels * width);
    uint32_t written = 0;
    const uint32_t frames =
        twref::RefAudioRenderer::render(model.audio, model.effectiveAudioSampleCount(), first, count, bytes.data(),
                                        static_cast<uint32_t>(bytes.size()), &written);
    std::vector<std::vector<float>> out(channels);
    for (uint32_t frame = 0; frame < frames; ++frame) {
        for (uint32_t channel = 0; channel < channels; ++channel) {
            const unsigned char* sample = bytes.data() + (static_cast<size_t>(frame) * channels + channel) * width;
            uint32_t raw = 0;
            for (uint32_t b = 0; b < width; ++b) raw |= static_cast<uint32_t>(sample[b]) << (8 * b);
            // Sign-extend the container, then scale by the depth's full range.
            const uint32_t bits = 8 * width;
            int64_t value = bits == 32 ? static_cast<int32_t>(raw)
                                       : static_cast<int64_t>(raw) - ((raw >> (bits - 1)) ? (int64_t{1} << bits) : 0);
            out[channel].push_back(static_cast<float>(static_cast<double>(value) / static_cast<double>(int64_t{1} << (bits - 1))));
        }
    }
    return out;
}

int32_t readInt32(const void* bytes, size_t offset) {
    int32_t value;
    std::memcpy(&value, static_cast<const unsigned char*>(bytes) + offset, sizeof(value));
    return value;
}
