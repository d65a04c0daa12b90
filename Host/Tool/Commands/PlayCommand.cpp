// play: a clip played back through the plug-in's asynchronous readers the way
// a host plays: each reader starts its frames ahead, collects them in order
// (asking again, a bounded number of times, while a frame is not ready yet),
// cancels what it gives up on, and is flushed at the end. Reports frames per
// second, the latency of InitiateAsyncRead and GetFrame, cache hits, and every
// error frame with its colour and the stage it names.

#include "twHostClipSupport.h"
#include "twHostCommand.h"
#include "twHostFrames.h"

#include "twSimAsyncReader.h"

#include <algorithm>
#include <chrono>
#include <iomanip>
#include <mutex>
#include <ostream>
#include <sstream>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

constexpr csSDK_int32 kNotReady = 0x10000;
constexpr int kMaxRetries = 200000;

double Microseconds(Clock::duration d) { return std::chrono::duration<double, std::micro>(d).count(); }

std::string Percentiles(std::vector<double> samples) {
    if (samples.empty()) return "none";
    std::sort(samples.begin(), samples.end());
    auto at = [&samples](double q) {
        const size_t i = std::min(samples.size() - 1, static_cast<size_t>(q * static_cast<double>(samples.size())));
        return samples[i];
    };
    std::ostringstream out;
    out << std::fixed << std::setprecision(0) << "p50 " << at(0.5) << " us, p90 " << at(0.9) << " us, p99 "
        << at(0.99) << " us, max " << samples.back() << " us";
    return out.str();
}

struct ErrorFrame {
    long long frame;
    int red, green, blue;
    std::string stage;
};

// What the reader threads gather, under one lock.
struct PlayRecord {
    std::mutex mutex;
    std::vector<double> initiate;
    std::vector<double> getFrame;
    std::vector<ErrorFrame> errors;
    std::vector<std::string> failures;
    size_t frames = 0;
    size_t retries = 0;
    size_t skipped = 0;
};

class twPlayCommand final : public twHostCommand {
public:
    void addOptions(CLI::App& command) override {
        command.add_option("CLIP", m_clip, "the clip to play")->required();
        command.add_option("--readers", m_readers, "asynchronous readers, each on its own thread (default 1)")
            ->type_name("N")
            ->check(twHostWholeNumber(1, 64, "a number of readers"));
        command.add_option("--ahead", m_ahead, "frames each reader starts ahead of the one it collects (default 4)")
            ->type_name("K")
            ->check(twHostWholeNumber(0, 1000, "a number of frames"));
        command.add_option("--loops", m_loops, "how many times the frames are played (default 1)")
            ->type_name("L")
            ->check(twHostWholeNumber(1, 1000, "a number of loops"));
        m_picture.addTo(command);
    }

    int run(twHostSession& s) override {
        twHostPictureRequest asked;
        int code = kExitOk;
        std::unique_ptr<twSimFile> file = m_picture.importClip(s, m_clip, asked, code);
        if (!file) return code;
        const std::vector<long long>& frames = asked.frames;
        const int width = asked.width;
        const int height = asked.height;
        const twHostPixelFormat* format = asked.format;
        std::vector<std::unique_ptr<twSimAsyncReader>> readers;
        for (int r = 0; r < m_readers; ++r) {
            csSDK_int32 created = 0;
            readers.push_back(file->createAsyncReader(&created));
            if (!readers.back()) {
                s.err << "the importer gave no asynchronous reader (imCreateAsyncImporter " << created << ")\n";
                readers.clear();
                file->close();
                return kExitPluginFailure;
            }
        }
        s.out << "Playing " << frames.size() << (frames.size() == 1 ? " frame" : " frames") << " at " << width << "x"
              << height << " " << format->name << " with " << m_readers << (m_readers == 1 ? " reader" : " readers")
              << ", " << m_ahead << " ahead, " << m_loops << (m_loops == 1 ? " loop" : " loops") << "\n";

        const unsigned long long hitsBefore = s.host.cache().stats().hits;
        PlayRecord record;
        const Clock::time_point start = Clock::now();
        std::vector<std::thread> threads;
        for (int r = 0; r < m_readers; ++r) {
            // Reader r plays every m_readers-th frame, starting at the r-th.
            std::vector<long long> own;
            for (size_t i = static_cast<size_t>(r); i < frames.size(); i += static_cast<size_t>(m_readers))
                own.push_back(frames[i]);
            threads.emplace_back([&, r, own] {
                play(*file, *readers[static_cast<size_t>(r)], own, width, height, *format, record);
            });
        }
        for (std::thread& t : threads) t.join();
        const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
        for (auto& reader : readers) reader->flush();
        readers.clear();

        s.out << std::fixed << std::setprecision(2);
        s.out << "Frames: " << record.frames << " in " << seconds << " s: "
              << (seconds > 0 ? static_cast<double>(record.frames) / seconds : 0.0) << " frames per second\n";
        s.out << "InitiateAsyncRead: " << Percentiles(record.initiate) << "\n";
        s.out << "GetFrame: " << Percentiles(record.getFrame) << "\n";
        s.out << "Not ready yet, asked again: " << record.retries << "; given up and cancelled: " << record.skipped
              << "\n";
        s.out << "Cache hits: " << s.host.cache().stats().hits - hitsBefore << "\n";
        s.out << "Error frames: " << record.errors.size() << "\n";
        for (const ErrorFrame& e : record.errors) {
            s.out << "  frame " << e.frame << ": (" << e.red << ", " << e.green << ", " << e.blue << ") " << e.stage
                  << "\n";
        }
        for (const std::string& f : record.failures) s.err << f << "\n";
        file->close();
        return record.failures.empty() ? kExitOk : kExitPluginFailure;
    }

private:
    void play(twSimFile& file, twSimAsyncReader& reader, const std::vector<long long>& frames, int width, int height,
              const twHostPixelFormat& format, PlayRecord& record) const {
        auto request = [&](long long f) { return file.frameRequest(f, width, height, format.format); };
        std::vector<double> initiate;
        std::vector<double> getFrame;
        std::vector<ErrorFrame> errors;
        std::vector<std::string> failures;
        size_t collected = 0;
        size_t retries = 0;
        size_t skipped = 0;
        auto initiateAt = [&](size_t i) {
            const Clock::time_point t = Clock::now();
            const csSDK_int32 result = reader.initiateRead(request(frames[i]));
            initiate.push_back(Microseconds(Clock::now() - t));
            if (result != 0) failures.push_back("InitiateAsyncRead of frame " + std::to_string(frames[i]) +
                                                " answered " + std::to_string(result));
        };
        const auto ahead = static_cast<size_t>(m_ahead);
        for (int loop = 0; loop < m_loops; ++loop) {
            for (size_t i = 0; i < std::min(ahead, frames.size()); ++i) initiateAt(i);
            for (size_t i = 0; i < frames.size(); ++i) {
                if (i + ahead < frames.size()) initiateAt(i + ahead);
                twSimFrameResult got;
                int attempts = 0;
                for (;;) {
                    const Clock::time_point t = Clock::now();
                    got = reader.getFrame(request(frames[i]));
                    getFrame.push_back(Microseconds(Clock::now() - t));
                    if (got.result != kNotReady || ++attempts >= kMaxRetries) break;
                    ++retries;
                    std::this_thread::yield();
                }
                if (got.result == kNotReady) {
                    reader.cancelRead(request(frames[i]));
                    ++skipped;
                    continue;
                }
                twHostPicture picture;
                if (got.result != 0 || !twHostReadPicture(got.frame, picture)) {
                    failures.push_back("GetFrame of frame " + std::to_string(frames[i]) + " answered " +
                                       std::to_string(got.result));
                    continue;
                }
                ++collected;
                ErrorFrame e{frames[i], 0, 0, 0, std::string()};
                e.stage = twHostErrorStage(picture, e.red, e.green, e.blue);
                if (!e.stage.empty()) errors.push_back(e);
            }
        }
        std::lock_guard<std::mutex> lock(record.mutex);
        record.initiate.insert(record.initiate.end(), initiate.begin(), initiate.end());
        record.getFrame.insert(record.getFrame.end(), getFrame.begin(), getFrame.end());
        record.errors.insert(record.errors.end(), errors.begin(), errors.end());
        record.failures.insert(record.failures.end(), failures.begin(), failures.end());
        record.frames += collected;
        record.retries += retries;
        record.skipped += skipped;
    }

    std::string m_clip;
    int m_readers = 1;
    int m_ahead = 4;
    int m_loops = 1;
    twHostPictureOptions m_picture;
};

[[maybe_unused]] const bool registered = twHostRegisterCommand<twPlayCommand>(
    "play", "play a clip back through asynchronous readers, as a host does, and measure it", 50);

}  // namespace
