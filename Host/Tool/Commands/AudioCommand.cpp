// audio: a clip's audio read the way a host reads it, in blocks, and written
// to a WAV file of 32-bit float samples.

#include "twHostClipSupport.h"
#include "twHostCommand.h"
#include "twWavWriter.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <ostream>

namespace {

class twAudioCommand final : public twHostCommand {
public:
    void addOptions(CLI::App& command) override {
        command.add_option("CLIP", m_clip, "the clip to read")->required();
        command.add_option("OUT", m_output, "the WAV file to write")->required()->type_name("OUT.wav");
        command.add_option("--start", m_start, "the first sample frame to read (default 0)")
            ->type_name("N")
            ->check(twHostWholeNumber(0, LLONG_MAX, "a count of sample frames"));
        m_countOption = command.add_option("--count", m_count, "how many sample frames to read (default: to the end)")
                            ->type_name("N")
                            ->check(twHostWholeNumber(0, LLONG_MAX, "a count of sample frames"));
    }

    int run(twHostSession& s) override {
        std::unique_ptr<twSimFile> imported = twHostImportClip(s, m_clip);
        if (!imported) return kExitPluginFailure;
        twSimFile& file = *imported;

        const imFileInfoRec8& info = file.info();
        if (!info.hasAudio || info.audInfo.numChannels <= 0) {
            s.err << m_clip << " has no audio\n";
            file.close();
            return kExitPluginFailure;
        }
        const int channels = info.audInfo.numChannels;
        const long long total = info.audDuration;
        const long long start = m_start;
        long long count = m_countOption->count() > 0 ? m_count : std::max(0LL, total - start);
        if (start > total) {
            s.err << "--start " << start << " lies beyond the end of the audio (" << total << " sample frames)\n";
            file.close();
            return kExitUsage;
        }
        // The importer delivers nothing past the end of the clip; the file holds
        // what it delivered.
        if (start + count > total) {
            s.out << "The audio ends at sample frame " << total << ": " << total - start << " of the " << count
                  << " sample frames asked for exist\n";
            count = total - start;
        }

        const auto rate = static_cast<uint32_t>(std::lround(info.audInfo.sampleRate));
        twWavWriter wav;
        std::string error;
        if (!wav.open(m_output, static_cast<uint32_t>(channels), rate, error)) {
            s.err << error << "\n";
            file.close();
            return kExitPluginFailure;
        }
        // A host asks for audio in blocks of about a second.
        const long long block = std::max<long long>(rate, 1);
        int code = kExitOk;
        for (long long done = 0; done < count && code == kExitOk;) {
            const auto frames = static_cast<csSDK_uint32>(std::min(block, count - done));
            twSimAudioResult read = file.importAudio(start + done, frames, channels);
            if (read.result != imNoErr) {
                s.err << "ImportAudio7 answered " << read.result << " at sample frame " << start + done << "\n";
                code = kExitPluginFailure;
                break;
            }
            std::vector<const float*> buffers;
            for (const auto& c : read.channels) buffers.push_back(c.data());
            if (!wav.append(buffers.data(), frames, error)) {
                s.err << m_output << ": " << error << "\n";
                code = kExitPluginFailure;
            }
            done += frames;
        }
        if (!wav.finish(error)) {
            s.err << m_output << ": " << error << "\n";
            code = kExitPluginFailure;
        }
        s.out << "Audio: " << channels << (channels == 1 ? " channel, " : " channels, ") << rate << " Hz, "
              << twHostSampleTypeName(info.audInfo.sampleType) << " in the clip\n";
        s.out << "Wrote " << wav.framesWritten() << " sample frames from " << start << " as 32-bit float to "
              << m_output << "\n";
        file.close();
        return code;
    }

private:
    std::string m_clip;
    std::string m_output;
    long long m_start = 0;
    long long m_count = 0;
    CLI::Option* m_countOption = nullptr;
};

[[maybe_unused]] const bool registered = twHostRegisterCommand<twAudioCommand>(
    "audio", "write a clip's audio as a 32-bit float WAV file", 30);

}  // namespace
