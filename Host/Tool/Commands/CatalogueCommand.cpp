// catalogue: what the plug-in announces to a host before any file is opened,
// and the colour spaces it gives one clip.

#include "twHostCommand.h"

#include "twSimFile.h"
#include "twSimPixelFormat.h"
#include "twSimText.h"

#include <iomanip>
#include <ostream>
#include <sstream>

namespace {

std::string Hex(csSDK_uint32 value) {
    std::ostringstream ss;
    ss << "0x" << std::hex << std::uppercase << std::setw(8) << std::setfill('0') << value;
    return ss.str();
}

const char* ColorSpaceTypeName(PrSDKColorSpaceType type) {
    switch (type) {
        case kPrSDKColorSpaceType_ICC: return "ICC profile";
        case kPrSDKColorSpaceType_LUT: return "LUT";
        case kPrSDKColorSpaceType_SEITags: return "SEI tags";
        case kPrSDKColorSpaceType_MXFTags: return "MXF tags";
        case kPrSDKColorSpaceType_Predefined: return "predefined";
        default: return "undefined";
    }
}

class twCatalogueCommand final : public twHostCommand {
public:
    void addOptions(CLI::App& command) override {
        command.add_option("--clip", m_clip, "also import this file and list its colour spaces")->type_name("FILE");
    }

    int run(twHostSession& s) override {
        int code = kExitOk;
        csSDK_int32 end = 0;
        const auto formats = s.host.formats(&end);
        s.out << "Formats:\n";
        for (const auto& f : formats) {
            s.out << "  '" << twSimText::FourCCHighFirst(static_cast<csSDK_uint32>(f.filetype)) << "' ("
                  << Hex(static_cast<csSDK_uint32>(f.filetype)) << ") flags "
                  << Hex(static_cast<csSDK_uint32>(f.flags)) << "  \"" << f.name << "\" / \"" << f.shortName
                  << "\"  extensions:";
            for (const auto& e : f.extensions) s.out << " " << e;
            s.out << "\n";
        }
        if (formats.empty()) {
            s.err << "the plug-in announces no format (imGetIndFormat answered " << end << ")\n";
            code = kExitPluginFailure;
        }

        const auto pixelFormats = s.host.pixelFormats(&end);
        s.out << "Pixel formats (in the plug-in's order of preference):\n";
        int index = 1;
        for (PrPixelFormat p : pixelFormats) s.out << "  " << index++ << ". " << twSimPixelFormatName(p) << "\n";

        if (m_clip.empty()) {
            s.out << "Colour spaces: announced per file (add --clip FILE to import one and list them)\n";
            return code;
        }
        twSimFile file(s.host, m_clip);
        if (!formats.empty()) file.setFileType(formats.front().filetype);
        const csSDK_int32 opened = file.open();
        const csSDK_int32 info = opened == imNoErr ? file.getInfo() : opened;
        if (opened != imNoErr || info != imNoErr) {
            s.err << "cannot import " << m_clip << ": imOpenFile8 " << opened << ", imGetInfo8 " << info << "\n";
            return kExitPluginFailure;
        }
        const auto spaces = file.colorSpaces(&end);
        s.out << "Colour spaces of " << m_clip << " (support "
              << (file.info().vidInfo.colorSpaceSupport == imColorSpaceSupport_Fixed ? "fixed" : "none") << "):\n";
        for (const auto& c : spaces) {
            s.out << "  " << ColorSpaceTypeName(c.type);
            if (!c.name.empty()) s.out << " \"" << c.name << "\"";
            if (!c.profile.empty()) s.out << " (" << c.profile.size() << " bytes of profile)";
            s.out << "\n";
        }
        file.close();
        return code;
    }

private:
    std::string m_clip;
};

[[maybe_unused]] const bool registered = twHostRegisterCommand<twCatalogueCommand>(
    "catalogue", "list the plug-in's formats, pixel formats and colour space", 10);

}  // namespace
