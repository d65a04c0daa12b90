#include "twHostClipSupport.h"

#include <sys/stat.h>

#include <ostream>

std::unique_ptr<twSimFile> twHostImportClip(twHostSession& s, const std::string& path) {
    s.log << "Clip: " << path << "\n";
    std::unique_ptr<twSimFile> file = s.host.importFile(path);
    const bool opened = file->openResult() == imNoErr;
    if (opened && file->infoResult() == imNoErr) {
        s.log << "imOpenFile8: " << file->openResult() << "\n";
        s.log << "imGetInfo8: " << file->infoResult() << "\n";
        return file;
    }
    struct stat st;
    if (stat(path.c_str(), &st) != 0) s.err << path << ": the file does not exist\n";
    else s.err << path << ": the file cannot be read as a clip (it may be damaged, or not a clip)\n";
    s.err << "cannot import " << path << ": imOpenFile8 " << file->openResult();
    if (opened) s.err << ", imGetInfo8 " << file->infoResult();
    s.err << "\n";
    return nullptr;
}

std::string twHostSampleTypeName(PrAudioSampleType type) {
    switch (type) {
        case kPrAudioSampleType_8BitInt: return "8-bit integer";
        case kPrAudioSampleType_8BitTwosInt: return "8-bit two's complement integer";
        case kPrAudioSampleType_16BitInt: return "16-bit integer";
        case kPrAudioSampleType_24BitInt: return "24-bit integer";
        case kPrAudioSampleType_32BitInt: return "32-bit integer";
        case kPrAudioSampleType_32BitFloat: return "32-bit float";
        case kPrAudioSampleType_64BitFloat: return "64-bit float";
        default: return "sample type " + std::to_string(static_cast<csSDK_uint32>(type));
    }
}
