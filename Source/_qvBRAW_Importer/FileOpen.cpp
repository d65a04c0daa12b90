#include "_qvBRAW_Importer/Globals.h"
#include "_qvBRAW_Importer/Handlers.h"
#include "_qvBRAW_Importer/PrivateData.h"
#include "_qvBRAW_Importer/Utils.h"
#include "Config/qvConfig.h"
#include "FileSystem/qvFileSystem.h"
#include "Manager/Clip.h"
#include "Manager/Manager.h"
#include "Utils/qvLogging.h"
#include "twImporterSharedPrefs/twImporterSettingsInitData.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sstream>

namespace {

// The four bytes "WARB": the format's code 'BRAW' read as a little-endian number.
constexpr csSDK_int32 kFileTypeBRAW = 0x42524157;
constexpr size_t kOpenPathUnits = 2048;
constexpr size_t kTimecodeBytes = 12;

imFileRef quietFileRef() { return imInvalidHandleValue(); }

qvUtf8String pathOf(const TWI_PrivateData* privateData) {
    return privateData->filepath ? *privateData->filepath : qvUtf8String();
}

// Copies `text` into a host buffer of `size` bytes, always terminated.
void copyLimited(char* buffer, size_t size, const std::string& text) {
    if (!buffer || size == 0) return;
    const size_t count = text.size() < size ? text.size() : size - 1;
    std::memcpy(buffer, text.data(), count);
    buffer[count] = '\0';
}

// A host string through the private data's String suite; empty without one.
PrSDKString hostString(const TWI_PrivateData* privateData, const qvUtf8String& text) {
    PrSDKString out{};
    if (privateData->stringSuite) {
        privateData->stringSuite->AllocateFromUTF8(reinterpret_cast<const prUTF8Char*>(text.c_str()), &out);
    }
    return out;
}

}  // namespace

int SDKOpenFile8(imStdParms* stdParms, void** fileRef, imFileOpenRec8* fileOpen) {
    if (!fileRef || !fileOpen) return imBadFile;

    // The host is asked who it is, as at every open; the answer serves nothing more.
    if (SPBasicSuite* basic = TWI_GetBasicSuite(stdParms)) {
        const void* suite = nullptr;
        if (basic->AcquireSuite(kPrSDKAppInfoSuite, kPrSDKAppInfoSuiteVersion, &suite) == kSPNoError) {
            if (suite) GetHostPP_(static_cast<PrSDKAppInfoSuite*>(const_cast<void*>(suite)));
            basic->ReleaseSuite(kPrSDKAppInfoSuite, kPrSDKAppInfoSuiteVersion);
        }
    }

    const char* mode = "rb";
    const PrFileOpenAccess access = fileOpen->inReadWrite;
    if (access == kPrOpenFileAccess_ReadWrite) {
        mode = "r+b";
        QV_LOG(QV_LOG_INFO, "File Permission is Read and Write");
    } else if (access == kPrOpenFileAccess_ReadOnly) {
        QV_LOG(QV_LOG_INFO, "File Permission is Read Only");
    } else {
        QV_LOG(QV_LOG_ERR, "File Permission is weird ! " << access);
    }

    const prUTF16Char* utf16Path = fileOpen->fileinfo.filepath;
    if (g_logger.isLoggingActivated(QV_LOG_INFO) && utf16Path) {
        LogsTestsOnFile(reinterpret_cast<const unsigned short*>(utf16Path), kOpenPathUnits);
    }

    const qvUtf8String path = TWI_PathFromUtf16(utf16Path, kOpenPathUnits);
    FILE* file = qvFileSystem::openFile(path, mode);
    *fileRef = file;
    if (!file) {
        const int error = errno;
        QV_LOG(QV_LOG_ERR, "fopen fct returned NULL file errno #" << error << "   " << strerror(error));
        return imBadFile;
    }
    fileOpen->fileinfo.filetype = kFileTypeBRAW;

    int code = imNoErr;
    if (!Global_Manager || Global_Manager->m_errorInfo.hasError) {
        const qvUtf8String text =
            Global_Manager ? qvUtf8String(Global_Manager->m_errorInfo.toString()) : qvUtf8String("Global_Manager nul");
        QV_LOG(QV_LOG_ERR, "Error raised : " << text);
        displayMsgToTheUser(stdParms, "Importer OpenFile Error", text, 3, true);
        code = imBadCodec;
        // Without a manager there is no registry to ask.
        if (!Global_Manager) return code;
    }

    QV_LOG(QV_LOG_INFO, "Getting Filepath : " << path);
    QV_LOG(QV_LOG_INFO, "Filepath after GetFilePathFromUTF16 : " << path);

    uint64_t clipID = 0;
    if (Global_Manager->AddClipIfNew(path, clipID, nullptr) != 0) {
        displayMsgToTheUser(stdParms, "Corrupted data " + qvFileSystem::getFilenameFromPath(path, true),
                            "Tarnwick couldn't open the following file, indicating a potential corruption. Please "
                            "check this file with our Desktop Player : " +
                                path,
                            3, false);
        return imActivationFailed;
    }
    return code;
}

void SDKQuietFile(imStdParms*, void** fileRef, void*) {
    if (!fileRef) return;
    // The host does not quiet a file it has not opened; a reference that is
    // not a file is left alone rather than handed to fclose.
    if (*fileRef && *fileRef != quietFileRef()) {
        const int result = std::fclose(static_cast<FILE*>(*fileRef));
        if (result < 0) {
            QV_LOG(QV_LOG_ERR, "Error while closing the file ! " << result);
        } else {
            QV_LOG(QV_LOG_INFO, "File Closed");
        }
    }
    *fileRef = quietFileRef();
}

void SDKCloseFile(imStdParms* stdParms, void** fileRef, void* privateDataHandle) {
    char** handle = static_cast<char**>(privateDataHandle);
    if (!handle) {
        if (fileRef && *fileRef != quietFileRef()) SDKQuietFile(stdParms, fileRef, nullptr);
        return;
    }
    TWI_PrivateData_LockExecute(stdParms, handle, [&](TWI_PrivateData* privateData) {
        if (fileRef && *fileRef != quietFileRef()) SDKQuietFile(stdParms, fileRef, privateDataHandle);
        if (privateData->manager) privateData->manager->FlushQueue(static_cast<uint32_t>(privateData->importerID));
        TWI_PrivateData_Release(stdParms, privateData);
        return 0;
    });
    // The clip stays in the registry for the next import of the same path.
    if (stdParms && stdParms->piSuites && stdParms->piSuites->memFuncs) {
        stdParms->piSuites->memFuncs->disposeHandle(handle);
    }
}

int SDKAnalysis(imStdParms* stdParms, void*, imAnalysisRec* analysis) {
    if (!analysis) return malUnknownError;
    return TWI_PrivateData_LockExecute(
        stdParms, static_cast<char**>(analysis->privatedata), [&](TWI_PrivateData* privateData) {
            std::ostringstream text;
            text << "\n\n";
            const std::shared_ptr<qvBRAW_Clip> clip =
                privateData->manager ? privateData->manager->GetClip(privateData->clipID) : nullptr;
            if (!clip) return static_cast<int>(malUnknownError);

            bool generated = false;
            std::shared_ptr<twSettingsInitData> data = std::make_shared<twImporterSettingsInitData>();
            const QvResult all = privateData->manager->getAllDataFromClip(generated, privateData->clipID, true, data,
                                                                          true);
            if (!all.hasError) {
                // The registry fills the list under the clip's lock.
                QV_LOCK_TRACED(clip->m_bmClipMutex);
                const qvBRAW_MetadataList metadata = clip->m_metadata;
                clip->m_bmClipMutex.unlock();
                for (const auto& entry : metadata) {
                    text << qvBRAW_Clip::makeMetadataKeyPretty(entry.first) << ":\n      " << entry.second << "\n";
                }
            } else {
                QV_LOG(QV_LOG_ERR, "[C" << privateData->clipID << "]"
                                        << "Impossible to display BRAW Metadata : " << all.toString());
                text << "!! Error while getting BRAW Metadata - Impossible to display them here : " << all.toString()
                     << "\n";
            }
            text << "\nTimecode :\n      " << (privateData->timecode ? privateData->timecode->Str() : std::string()) << "\n\nTarnwick "
                 << "Version " << g_config.version.toString();
            copyLimited(analysis->buffer, analysis->buffersize > 0 ? static_cast<size_t>(analysis->buffersize) : 0,
                        text.str());
            return static_cast<int>(imNoErr);
        });
}

int SDKGetTimeInfo8(imStdParms* stdParms, void*, imTimeInfoRec8* timeInfo) {
    if (!timeInfo) return imNoErr;
    return TWI_PrivateData_LockExecute(
        stdParms, static_cast<char**>(timeInfo->privatedata), [&](TWI_PrivateData* privateData) {
            // Before the clip was read there is no timecode to give.
            if (!privateData->hasClipInfo) return static_cast<int>(imNoErr);
            copyLimited(timeInfo->orgtime, kTimecodeBytes,
                        privateData->timecode ? privateData->timecode->Str() : std::string());
            timeInfo->dataType = 0;
            return static_cast<int>(imNoErr);
        });
}

int SDKQueryInputFileList(imStdParms* stdParms, imQueryInputFileListRec* fileList) {
    if (!fileList) return imUnsupported;
    // Only After Effects collects a clip's files this way.
    QV_APP_ENUM app;
    QvVersion version;
    getHostAndVersion(stdParms, app, version);
    if (app != QV_APP_ENUM::QV_APP_AE) return imUnsupported;

    return TWI_PrivateData_LockExecute(
        stdParms, static_cast<char**>(fileList->inPrivateData), [&](TWI_PrivateData* privateData) {
            const qvUtf8String path = pathOf(privateData);
            const qvUtf8String dualCard = TWI_CompanionPath(path, "braw2");
            const qvUtf8String sidecar = TWI_CompanionPath(path, "sidecar");
            const bool hasDualCard = qvFileSystem::doesFilepathExist(dualCard);
            const bool hasSidecar = qvFileSystem::doesFilepathExist(sidecar);
            // Two passes: the count first, then the host's array of that many strings.
            if (fileList->outNumFilePaths == 0) {
                fileList->outNumFilePaths = 1 + (hasDualCard ? 1 : 0) + (hasSidecar ? 1 : 0);
                return static_cast<int>(imNoErr);
            }
            PrSDKString* paths = fileList->outFilePaths;
            const csSDK_int32 count = fileList->outNumFilePaths;
            if (!paths) return static_cast<int>(imNoErr);
            paths[0] = hostString(privateData, path);
            if (hasDualCard && count >= 2) paths[1] = hostString(privateData, dualCard);
            // With the sidecar alone, the last entry is entry 1.
            if (hasSidecar && count >= 2) paths[count - 1] = hostString(privateData, sidecar);
            return static_cast<int>(imNoErr);
        });
}

int GetSubTypeNames(imStdParms* stdParms, int fileType, imSubTypeDescriptionRec**) {
    const auto code = static_cast<csSDK_uint32>(fileType);
    const char characters[5] = {static_cast<char>(code >> 24), static_cast<char>(code >> 16),
                                 static_cast<char>(code >> 8), static_cast<char>(code), '\0'};
    QV_LOG(QV_LOG_INFO, "id : " << fileType << " -> " << characters);
    PlugMemoryFuncs* memory = stdParms && stdParms->piSuites ? stdParms->piSuites->memFuncs : nullptr;
    if (!memory) return imNoErr;
    // The description is made and not handed to the host, which then lists no
    // subtype names; it goes back to the host's allocator at once.
    char** handle = memory->newHandle(sizeof(imSubTypeDescriptionRec));
    if (!handle) return imNoErr;
    imSubTypeDescriptionRec description;
    std::memset(&description, 0, sizeof(description));
    description.subType = kFileTypeBRAW;
    std::memcpy(*handle, &description, sizeof(description));
    memory->disposeHandle(handle);
    return imNoErr;
}
