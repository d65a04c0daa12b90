// frames: raw pixels of decoded frames on standard output, one frame after the
// other, top row first and without row padding, for another program to read:
//
//   tarnwick-host frames clip.braw | ffmpeg -f rawvideo -pix_fmt bgra -s WxH -r RATE -i - out.mov
//
// The geometry and progress go to standard error, never into the stream.
// BGRA_16u frames are widened from the host's 0-32768 to 0-65535 so that they
// read as "bgra64le"; BGRA_32f frames are the host's floats as they are.

#include "twHostClipSupport.h"
#include "twHostCommand.h"
#include "twHostFrames.h"

#include <cstdint>
#include <cstring>
#include <ostream>
#include <sstream>

namespace {

const char* FfmpegPixelFormat(const twHostPixelFormat& format) {
    switch (format.bytesPerChannel) {
        case 1: return "bgra";
        case 2: return "bgra64le";
        default: return nullptr;
    }
}

// The host's 16-bit white (32768) becomes 65535.
void Widen16(std::vector<unsigned char>& bytes) {
    for (size_t at = 0; at + 1 < bytes.size(); at += 2) {
        uint16_t v;
        std::memcpy(&v, bytes.data() + at, 2);
        const uint32_t wide = (static_cast<uint32_t>(v) * 65535u + 16384u) / 32768u;
        v = static_cast<uint16_t>(wide > 65535u ? 65535u : wide);
        std::memcpy(bytes.data() + at, &v, 2);
    }
}

class twFramesCommand final : public twHostCommand {
public:
    void addOptions(CLI::App& command) override {
        command.add_option("CLIP", m_clip, "the clip to read")->required();
        m_picture.addTo(command);
    }

    bool writesDataToStandardOutput() const override { return true; }

    int run(twHostSession& s) override {
        // Everything but the pixels goes to the error stream.
        twHostSession text{s.host, s.options, s.err, s.err, s.err};
        twHostPictureRequest asked;
        int code = kExitOk;
        std::unique_ptr<twSimFile> file = m_picture.importClip(text, m_clip, asked, code);
        if (!file) return code;
        const std::vector<long long>& frames = asked.frames;
        const int width = asked.width;
        const int height = asked.height;
        const twHostPixelFormat* format = asked.format;
        const imFileInfoRec8& info = file->info();
        std::ostringstream rate;
        rate << info.vidScale << "/" << (info.vidSampleSize > 0 ? info.vidSampleSize : 1);
        s.err << "frames: " << frames.size() << " of " << width << "x" << height << " " << format->name << ", "
              << (format->bytesPerChannel * 4) << " bytes a pixel, rate " << rate.str() << "\n";
        if (const char* pixelFormat = FfmpegPixelFormat(*format)) {
            s.err << "read with: ffmpeg -f rawvideo -pix_fmt " << pixelFormat << " -s " << width << "x" << height
                  << " -r " << rate.str() << " -i - OUT\n";
        } else {
            s.err << "each pixel is four 32-bit floats in the order blue, green, red, alpha\n";
        }

        twHostFrameSource source(*file, false);
        {
            twHostProgress progress(s.err, "frames", frames.size());
            size_t done = 0;
            for (long long frame : frames) {
                twSimFrameResult got = source.get(frame, width, height, format->format);
                twHostPicture picture;
                if (got.result != 0 || !twHostReadPicture(got.frame, picture)) {
                    s.err << "frame " << frame << ": the plug-in answered " << got.result << "\n";
                    code = kExitPluginFailure;
                    break;
                }
                if (format->bytesPerChannel == 2) Widen16(picture.bytes);
                s.out.write(reinterpret_cast<const char*>(picture.bytes.data()),
                            static_cast<std::streamsize>(picture.bytes.size()));
                if (!s.out) {
                    s.err << "standard output was closed after " << done << " frames\n";
                    code = kExitPluginFailure;
                    break;
                }
                progress.step(++done);
            }
        }
        s.out.flush();
        file->close();
        return code;
    }

private:
    std::string m_clip;
    twHostPictureOptions m_picture;
};

[[maybe_unused]] const bool registered = twHostRegisterCommand<twFramesCommand>(
    "frames", "write decoded frames as raw pixels to standard output, for other programs", 60);

}  // namespace
