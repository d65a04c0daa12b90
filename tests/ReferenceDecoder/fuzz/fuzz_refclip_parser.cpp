// Feeds arbitrary bytes to the reference clip parser: whole files, and the same
// bytes as a bare description. Whatever it accepts must describe and parse
// again to the same model.

#include "Format/RefClipFile.h"
#include "Format/RefSidecar.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    using namespace twref;
    RefClipModel model;
    RefClipLayout layout;
    std::string error;
    if (RefClipFile::parse(data, size, model, layout, error)) {
        for (size_t i = 0; i < layout.frames.size() && i < 4; ++i) {
            const RefFrameRecordInfo& f = layout.frames[i];
            if (f.offset + f.sizeBytes > size)
                std::abort();
            RefClipFile::validateFrameRecord(data + f.offset, f.sizeBytes, i, error);
        }
    }
    RefClipModel described;
    if (RefClipFile::parseDescription(reinterpret_cast<const char*>(data), size, described, error)) {
        const std::string text = RefClipFile::describe(described, false);
        RefClipModel again;
        if (!RefClipFile::parseDescription(text.data(), text.size(), again, error) ||
            RefClipFile::describe(again, false) != text)
            std::abort();
    }
    RefSidecar::parse(std::string(reinterpret_cast<const char*>(data), size));
    return 0;
}
