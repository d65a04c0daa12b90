#include "_qvBRAW_Importer/Handlers.h"
#include "_qvBRAW_Importer/PrivateData.h"

#include <cstring>

namespace {

// The format's four-character code, 'BRAW' with the first character in the
// top byte: in memory it reads "WARB".
constexpr csSDK_int32 kBrawFileType = 0x42524157;
constexpr csSDK_int32 kBrawFormatFlags = 0xC008;

// The host reads the importer's preference from the order: 8-bit first.
const PrPixelFormat kPixelFormats[] = {
    PrPixelFormat_BGRA_4444_8u,
    PrPixelFormat_BGRA_4444_32f,
    PrPixelFormat_BGRA_4444_16u,
};

template <size_t N>
void copyLimited(char (&destination)[N], const char* text) {
    strncpy(destination, text, N);
    destination[N - 1] = '\0';
}

}  // namespace

int SDKGetIndFormat(imStdParms*, int index, imIndFormatRec* formatRec) {
    if (index != 0) return imBadFormatIndex;
    formatRec->filetype = kBrawFileType;
    formatRec->flags = kBrawFormatFlags;
    formatRec->canWriteTimecode = 1;
    copyLimited(formatRec->FormatName, "Blackmagic RAW with Tarnwick");
    copyLimited(formatRec->FormatShortName, "Blackmagic RAW");
    copyLimited(formatRec->PlatformExtension, "braw");
    formatRec->canWriteMetaData = 1;
    return imNoErr;
}

int SDKGetIndPixelFormat(imStdParms*, int index, imIndPixelFormatRec* pixelFormatRec) {
    if (index < 0 || index >= static_cast<int>(sizeof(kPixelFormats) / sizeof(kPixelFormats[0]))) {
        return imBadFormatIndex;
    }
    pixelFormatRec->outPixelFormat = kPixelFormats[index];
    return imNoErr;
}

int GetIndColorSpace(imStdParms* stdParms, int index, ColorSpaceRec* colorSpaceRec) {
    // One colour space is all this importer announces.
    if (index > 0) return imOtherErr;
    return TWI_PrivateData_LockExecute(
        stdParms, static_cast<char**>(colorSpaceRec->inPrivateData), [colorSpaceRec](TWI_PrivateData* privateData) {
            colorSpaceRec->outColorSpaceType = kPrSDKColorSpaceType_Predefined;
            if (privateData && privateData->stringSuite) {
                privateData->stringSuite->AllocateFromUTF8(reinterpret_cast<const prUTF8Char*>(kPrRec709),
                                                           &colorSpaceRec->ioProfileRec.outName);
            }
            return static_cast<int>(imNoErr);
        });
}
