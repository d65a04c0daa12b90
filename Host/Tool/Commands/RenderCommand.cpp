// render: frames of a clip decoded through the plug-in's entry, the way a host
// asks for them (imGetSourceVideo, or an asynchronous reader with --async),
// written as image files that look like the picture, with a contact sheet.

#include "twHostClipSupport.h"
#include "twHostCommand.h"
#include "twHostFrames.h"
#include "twHostImages.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <ostream>

namespace {

bool MakeFolder(const std::string& path, std::string& error) {
    struct stat st;
    if (stat(path.c_str(), &st) == 0) {
        if (S_ISDIR(st.st_mode)) return true;
        error = path + ": exists and is not a folder";
        return false;
    }
    if (mkdir(path.c_str(), 0755) != 0) {
        error = path + ": cannot create the folder (" + std::strerror(errno) + ")";
        return false;
    }
    return true;
}

class twRenderCommand final : public twHostCommand {
public:
    void addOptions(CLI::App& command) override {
        command.add_option("CLIP", m_clip, "the clip to read")->required();
        command.add_option("OUT_DIR", m_folder, "the folder the images go to (made when missing)")->required();
        m_picture.addTo(command);
        command.add_flag("--async", m_async, "read through an asynchronous reader, as a host plays back");
        command.add_flag("--exr-float", m_exrFloat, "write BGRA_32f frames as 32-bit float EXR (default: half)");
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
        std::string error;
        if (!MakeFolder(m_folder, error)) {
            s.err << error << "\n";
            file->close();
            return kExitUsage;
        }
        twHostFrameSource source(*file, m_async);
        if (!source.ready(error)) {
            s.err << error << "\n";
            file->close();
            return kExitPluginFailure;
        }

        s.out << "Rendering " << frames.size() << (frames.size() == 1 ? " frame" : " frames") << " at " << width
              << "x" << height << " " << format->name << (m_async ? " through an asynchronous reader" : "") << "\n";
        twHostContactSheet sheet;
        size_t written = 0;
        {
            twHostProgress progress(s.err, "rendered", frames.size());
            for (long long frame : frames) {
                twSimFrameResult got = source.get(frame, width, height, format->format);
                twHostPicture picture;
                if (got.result != 0 || !twHostReadPicture(got.frame, picture)) {
                    s.err << "frame " << frame << ": the plug-in answered " << got.result
                          << (got.frame ? "" : " without a frame") << "\n";
                    code = kExitPluginFailure;
                    continue;
                }
                int r = 0, g = 0, b = 0;
                const std::string stage = twHostErrorStage(picture, r, g, b);
                if (!stage.empty()) {
                    s.out << "frame " << frame << ": error frame (" << r << ", " << g << ", " << b << "): " << stage
                          << "\n";
                }
                const std::string path = m_folder + "/" + twHostImageName(frame, picture);
                if (!twHostWriteImage(path, picture, m_exrFloat, error)) {
                    s.err << error << "\n";
                    code = kExitPluginFailure;
                    break;
                }
                sheet.add(picture);
                progress.step(++written);
            }
        }
        if (!sheet.empty()) {
            const std::string sheetPath = m_folder + "/contact-sheet.png";
            if (sheet.write(sheetPath, error)) {
                s.out << "Contact sheet: " << sheetPath << "\n";
            } else {
                s.err << error << "\n";
                code = kExitPluginFailure;
            }
        }
        source.close();
        s.out << "Wrote " << written << (written == 1 ? " image" : " images") << " to " << m_folder << "\n";
        file->close();
        return code;
    }

private:
    std::string m_clip;
    std::string m_folder;
    twHostPictureOptions m_picture;
    bool m_async = false;
    bool m_exrFloat = false;
};

[[maybe_unused]] const bool registered = twHostRegisterCommand<twRenderCommand>(
    "render", "decode frames through the plug-in and write them as images, with a contact sheet", 40);

}  // namespace
