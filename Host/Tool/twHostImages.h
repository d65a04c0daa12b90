#pragma once
// Pictures written as image files with OpenImageIO: PNG for 8 and 16 bits per
// channel, OpenEXR (half or float) for float pictures, and a contact sheet of
// several pictures. The files hold the picture as it looks: RGBA, top row first.
// The host's 16-bit white (32768) becomes the file's 65535.

#include "twHostFrames.h"

#include <string>
#include <vector>

// "frame_000012.png" / ".exr" by the picture's depth.
std::string twHostImageName(long long frame, const twHostPicture& picture);
// False with the reason in `error`.
bool twHostWriteImage(const std::string& path, const twHostPicture& picture, bool exrFloat, std::string& error);

// Thumbnails of the rendered frames, side by side in rows, as an 8-bit PNG.
class twHostContactSheet {
public:
    // Each thumbnail at most `thumbWidth` wide, keeping the pictures' shape.
    explicit twHostContactSheet(int thumbWidth = 320, int columns = 4);
    void add(const twHostPicture& picture);
    bool empty() const { return m_thumbs.empty(); }
    bool write(const std::string& path, std::string& error) const;

private:
    struct Thumb {
        int width = 0;
        int height = 0;
        std::vector<unsigned char> rgba;
    };
    int m_thumbWidth;
    int m_columns;
    std::vector<Thumb> m_thumbs;
};
