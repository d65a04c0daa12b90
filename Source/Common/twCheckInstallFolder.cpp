#include "Common/twCheckInstallFolder.h"

#include <cstdint>
#include <string>

#include "FileSystem/qvFileSystem.h"
#include "Utils/qvChrono.h"

namespace twCheckInstall {
namespace {

constexpr const char kImporter[] = "Tarnwick_Importer.bundle";
constexpr const char kSourceSettings[] = "Tarnwick_Source_Settings.plugin";
constexpr const char kLayerSettings[] = "Tarnwick_Layer_Settings.plugin";
constexpr const char kDesktopApp[] = "Tarnwick.app";
// Bundles keep their names on this platform, but the decoder library is no
// bundle here: it is one shared object beside the importer bundle, under the
// name the importer loads it by.
constexpr const char kDecoderLibrary[] = "libBlackmagicRawAPI.so";
// The installer's folder inside MediaCore.
constexpr const char kProductInstallFolder[] = "Qervane Tarnwick";

constexpr const char kNothingToCheck[] = "Nothing to check, impossible to get Mediacore or HostPlugin folder";

void raiseLevel(QV_LOG_LVL& level, QV_LOG_LVL to) {
    if (to > level) level = to;
}

const char* verdictText(QV_LOG_LVL level) {
    switch (level) {
        case QV_LOG_INFO:
            return "=> Everything is correct !";
        case QV_LOG_WARN:
            return "=> WARNING : Tarnwick is installed correctly, but some files of the BMD plugin have been found "
                   "(and should not be needed). Remove them with our Uninstaller located in our installer archive "
                   "(You will keep the Blackmagic RAW Player and OS Thumbnails).";
        default:
            return "=> ERROR : Some needed files are missing or duplicated and the plugins will not work correctly. "
                   "Please try to re-install the last version of Tarnwick, or contact us for support.";
    }
}

// What one entry's hits say: the lines for both texts and the level they call for.
void reportHits(const CheckedFile& file, const std::vector<qvUtf8String>& paths, QV_LOG_LVL& level,
                qvUtf8String& report, qvUtf8String& details) {
    const qvUtf8String name(file.name);
    const size_t count = paths.size();
    const char* detailsHead = nullptr;
    qvUtf8String reportHead;
    QV_LOG_LVL rise = QV_LOG_INFO;
    bool pathsInReport = false;

    if (file.type == FILE_NEEDED && count == 0) {
        details += "        => Nothing found !\n";
        report += "- ERR - " + name + " has not been found\n";
        raiseLevel(level, QV_LOG_ERR);
        return;
    }
    if (file.type == FILE_NEEDED && count == 1) {
        detailsHead = "        => OK - found once at :\n";
    } else if (file.type == FILE_NEEDED) {
        detailsHead = "        => ERR - found multiple times at :\n";
        reportHead = "- ERR - " + name + " has been found multiple times : \n";
        rise = QV_LOG_ERR;
        pathsInReport = true;
    } else if (file.type == BMD_PLUGINS_FILES && count > 0) {
        detailsHead = "        => WARN - BMD Plugins files found at :\n";
        reportHead = "- WARN - " + name + " has been found (Blackmagic RAW plugins) :\n";
        rise = QV_LOG_WARN;
        pathsInReport = true;
    } else if (file.type == FILE_WARNING && count > 0) {
        detailsHead = "        => ERR - found and should not at :\n";
        reportHead = "- ERR - " + name + " has been found and should not (conflicting with Tarnwick) :\n";
        rise = QV_LOG_ERR;
        pathsInReport = true;
    } else if (file.type == BMD_LIBRARY_FILE && count == 1) {
        detailsHead = "        => BMD Library files found at :\n";
    } else if (file.type == BMD_LIBRARY_FILE && count > 1) {
        detailsHead = "        => WARN : Multiple BMD Library files found at :\n";
        reportHead = "- WARN - " + name + " has been found multiple times : \n";
        rise = QV_LOG_WARN;
        pathsInReport = true;
    } else {
        return;
    }

    details += detailsHead;
    report += reportHead;
    raiseLevel(level, rise);
    for (const qvUtf8String& path : paths) {
        if (pathsInReport) report += "    - " + path + "\n";
        details += "            - " + path + "\n";
    }
}

struct Sibling {
    const char* name;
    const char* foundText;
    const char* missingDetails;
};

// The importer's companions, which only work from the importer's own folder.
void checkSiblings(const qvUtf8String& mediaCore, const qvUtf8String& importer, QV_LOG_LVL& level,
                   qvUtf8String& report, qvUtf8String& details) {
    static const Sibling kSiblings[] = {
        {kSourceSettings, " found : \n", "SourceSettings file is not here next to importer file\n"},
        {kLayerSettings, " found : \n", "LayerSettings file is not here next to importer file\n"},
        {kDecoderLibrary, " found\n", "BM Dll file is not here next to importer file\n"},
        {kDesktopApp, " found\n", "Tarnwick Desktop file is not here next to importer file\n"},
    };

    const qvUtf8String parent = qvFileSystem::getParentFolder(importer);
    if (qvFileSystem::doesFilepathExist(importer)) {
        // An empty `mediaCore` (MediaCore on another disk) gives "/Qervane ...",
        // which never matches: the importer is then reported as misplaced.
        const qvUtf8String usual = mediaCore + "/" + kProductInstallFolder + "/" + kImporter;
        if (usual == importer) {
            report += qvUtf8String("- OK - ") + kImporter + " found :\n";
        } else {
            // Informative only: an importer elsewhere still loads.
            report += qvUtf8String("- WARN - ") + kImporter + " found but not at is usual place :\n";
            report += "    - Usual Place : " + usual + "\n";
        }
        report += "    - Found here : " + importer + "\n";
    }
    if (parent.Str().empty()) {
        report += "- ERR - Impossible to get Importer Parent Folder\n";
        details += "Impossible to get Importer Parent Folder\n";
        raiseLevel(level, QV_LOG_ERR);
        return;
    }
    for (const Sibling& sibling : kSiblings) {
        const qvUtf8String path = parent + "/" + sibling.name;
        if (qvFileSystem::doesFilepathExist(path)) {
            report += qvUtf8String("- OK - ") + sibling.name + sibling.foundText;
            report += "    - " + path + "\n";
        } else {
            report += qvUtf8String("- ERR - ") + sibling.name + " not found next to importer file. Should be here : \n";
            report += "    - " + path + "\n";
            details += sibling.missingDetails;
            raiseLevel(level, QV_LOG_ERR);
        }
    }
}

}  // namespace

const char* fileTypeToString(int type) {
    switch (type) {
        case FILE_NEEDED:
            return "FILE_NEEDED";
        case BMD_PLUGINS_FILES:
            return "BMD_PLUGINS_FILES";
        case FILE_WARNING:
            return "FILE_WARNING";
        case BMD_LIBRARY_FILE:
            return "BMD_LIBRARY_FILE";
        default:
            return "Unknow type";
    }
}

const std::vector<CheckedFile>& checkedFiles() {
    // No FILE_WARNING entry at present; releases add and drop names here.
    static const std::vector<CheckedFile> s_files = {
        {kImporter, FILE_NEEDED},
        {kSourceSettings, FILE_NEEDED},
        {kLayerSettings, FILE_NEEDED},
        {"BlackmagicRawPremiereImporter.bundle", BMD_PLUGINS_FILES},
        {"BlackmagicRawPremiereSourceEffect.plugin", BMD_PLUGINS_FILES},
        {kDecoderLibrary, BMD_LIBRARY_FILE},
    };
    return s_files;
}

QvResult checkInstallFolder(QV_LOG_LVL& level, qvUtf8String& report, qvUtf8String& details) {
    return checkInstallFolder(level, report, details, checkedFiles());
}

QvResult checkInstallFolder(QV_LOG_LVL& level, qvUtf8String& report, qvUtf8String& details,
                            const std::vector<CheckedFile>& files) {
    details += "Checking folders - Start\n";
    std::vector<std::vector<qvUtf8String>> found(files.size());
    qvChrono chrono;
    chrono.start();

    // Whether MediaCore was found is settled here: a later failure empties the
    // path but the folder is still listed and searched (as nothing).
    qvUtf8String mediaCore;
    qvFileSystem::getMediacoreFolderPath(mediaCore, details);
    const bool mediaCoreFound = !mediaCore.Str().empty();
    if (!mediaCoreFound) {
        report += "Impossible to check Mediacore folder which seems to be installed in specific location.\n\n";
    }

    std::vector<qvUtf8String> plugIns;
    const QvResult plugInsResult = qvFileSystem::getHostPlugInsFolderPath(plugIns, details);
    if (plugInsResult.hasError) {
        details += "Impossible to get Plugins Folder paths : " + plugInsResult.toString() + "\n";
        report += "Error happened when checked Plugins Paths : " + plugInsResult.toString() + "\n";
        mediaCore = qvUtf8String();
    }
    if (plugIns.empty()) report += "Impossible to check Plugins App folders.\n\n";
    if (!mediaCoreFound && plugIns.empty()) {
        details += "Checking folders - Nothing to check, impossible to get Mediacore or HostPlugin folder\n";
        return QvResult(kNothingToCheck);
    }

    details += "Checking folder plugins in :\n";
    if (mediaCoreFound) details += "    - " + mediaCore + "\n";
    for (const qvUtf8String& folder : plugIns) details += "    - " + folder + "\n";
    const int64_t foldersMicro = chrono.getLatestSpanMicro(true);

    details += "Checking folders - Looking into folders ...\n";
    std::vector<qvUtf8String> names;
    names.reserve(files.size());
    for (const CheckedFile& file : files) names.emplace_back(file.name);
    for (const qvUtf8String& folder : plugIns) {
        qvFileSystem::searchPathFromFinalenameInDirectoryRecursively(folder, names, found, 0);
    }
    if (mediaCoreFound) qvFileSystem::searchPathFromFinalenameInDirectoryRecursively(mediaCore, names, found, 0);

    report += "Details :\n\n";
    level = QV_LOG_INFO;
    for (size_t i = 0; i < files.size(); ++i) {
        details += qvUtf8String("    - Looking for ") + fileTypeToString(files[i].type) + " : " + files[i].name + "\n";
        reportHits(files[i], found[i], level, report, details);
    }

    for (size_t i = 0; i < files.size(); ++i) {
        if (names[i] != kImporter) continue;
        if (found[i].size() == 1 && !found[i][0].Str().empty()) {
            checkSiblings(mediaCore, found[i][0], level, report, details);
        }
        break;
    }

    report = "Installation Diagnostic :\n\n" + qvUtf8String(verdictText(level)) + "\n\n" + report;

    const int64_t searchMicro = chrono.getLatestSpanMicro(true);
    details += "Checking folders - Stats :\n";
    details += "    - Time to get Mediacore and PlugIns folder : " + qvUtf8String(std::to_string(foldersMicro)) + " us \n";
    details += "    - Time to check inside folders : " + qvUtf8String(std::to_string(searchMicro)) + " us \n";
    return QvResult();
}

}  // namespace twCheckInstall
