#include "Common/twCheckInstallFolder.h"

#include "OrdinaryUser.h"
#include "TempFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

const std::string kMediaCore = "Library/Application Support/Adobe/Common/Plug-ins/7.0/MediaCore";
const std::string kProduct = kMediaCore + "/Qervane Tarnwick";
const std::string kHost = "Applications/Adobe Premiere Pro 2024";
const std::string kHostPlugIns = kHost + "/Adobe Premiere Pro 2024.app/Contents/Plug-Ins";

const std::string kVerdictOk = "Installation Diagnostic :\n\n=> Everything is correct !\n\n";
const std::string kVerdictWarn =
    "Installation Diagnostic :\n\n=> WARNING : Tarnwick is installed correctly, but some files of the BMD plugin "
    "have been found (and should not be needed). Remove them with our Uninstaller located in our installer archive "
    "(You will keep the Blackmagic RAW Player and OS Thumbnails).\n\n";
const std::string kVerdictErr =
    "Installation Diagnostic :\n\n=> ERROR : Some needed files are missing or duplicated and the plugins will not "
    "work correctly. Please try to re-install the last version of Tarnwick, or contact us for support.\n\n";
// The report when MediaCore is there but nothing of the product can be found in it.
const std::string kNothingFoundInMediaCore =
    "Impossible to check Plugins App folders.\n\n"
    "Details :\n\n"
    "- ERR - Tarnwick_Importer.bundle has not been found\n"
    "- ERR - Tarnwick_Source_Settings.plugin has not been found\n"
    "- ERR - Tarnwick_Layer_Settings.plugin has not been found\n";

struct CheckRun {
    QvResult result;
    QV_LOG_LVL level = QV_LOG_INFO;
    std::string report;
    std::string details;  // without the timing lines, which are checked for form
};

class CheckInstallFolder : public ::testing::Test {
protected:
    std::string sys(const std::string& relative) const { return m_roots.systemRoot() + "/" + relative; }
    std::string mediaCore() const { return sys(kMediaCore); }
    std::string product() const { return sys(kProduct); }
    std::string plugIns() const { return sys(kHostPlugIns); }
    const twtest::TempFolder& folder() const { return m_roots.folder(); }

    // The install tree the installer lays out, below `relative` of the system root.
    void install(const std::string& relative) const {
        const std::string at = "root/" + relative;
        folder().writeFile(at + "/Tarnwick_Importer.bundle/Contents/Linux/Tarnwick_Importer.so", "so");
        folder().makeFolder(at + "/Tarnwick_Source_Settings.plugin/Contents");
        folder().makeFolder(at + "/Tarnwick_Layer_Settings.plugin/Contents");
        folder().writeFile(at + "/libBlackmagicRawAPI.so", "so");
        folder().writeFile(at + "/Tarnwick.app/Contents/MacOS/Tarnwick", "exe");
    }
    void makeHost() const { folder().makeFolder("root/" + kHostPlugIns); }
    void remove(const std::string& relative) const { fs::remove_all(sys(relative)); }

    CheckRun run(const std::vector<twCheckInstall::CheckedFile>* files = nullptr) const {
        CheckRun out;
        qvUtf8String report;
        qvUtf8String details;
        out.level = QV_LOG_INFO;
        out.result = files ? twCheckInstall::checkInstallFolder(out.level, report, details, *files)
                           : twCheckInstall::checkInstallFolder(out.level, report, details);
        out.report = report.Str();
        out.details = details.Str();
        const size_t stats = out.details.find("Checking folders - Stats :\n");
        if (stats != std::string::npos) {
            static const std::regex timing(
                "Checking folders - Stats :\n"
                "    - Time to get Mediacore and PlugIns folder : [0-9]+ us \n"
                "    - Time to check inside folders : [0-9]+ us \n");
            EXPECT_TRUE(std::regex_match(out.details.substr(stats), timing)) << out.details.substr(stats);
            out.details.erase(stats);
        }
        return out;
    }

    // The details of a search of both folders, up to the list's entries.
    std::string detailsHead() const {
        return "Checking folders - Start\n"
               "MediaCore in the normal location exists.\n"
               " - Found folder : " + sys(kHost) + "\n"
               "Checking folder plugins in :\n"
               "    - " + mediaCore() + "\n"
               "    - " + plugIns() + "\n"
               "Checking folders - Looking into folders ...\n";
    }

    // The sibling lines of an importer at `importerFolder` + "/Tarnwick_Importer.bundle".
    std::string siblingLines(const std::string& importerFolder) const {
        return "- OK - Tarnwick_Source_Settings.plugin found : \n    - " + importerFolder +
               "/Tarnwick_Source_Settings.plugin\n"
               "- OK - Tarnwick_Layer_Settings.plugin found : \n    - " + importerFolder +
               "/Tarnwick_Layer_Settings.plugin\n"
               "- OK - libBlackmagicRawAPI.so found\n    - " + importerFolder + "/libBlackmagicRawAPI.so\n"
               "- OK - Tarnwick.app found\n    - " + importerFolder + "/Tarnwick.app\n";
    }

    twtest::ScopedTestRoots m_roots;
};

}  // namespace

TEST_F(CheckInstallFolder, GoodInstallIsCorrectAndListsEveryFileInTheDetails) {
    install(kProduct);
    makeHost();

    QV_LOG_LVL level = QV_LOG_ERR;  // reset by the check, not only raised
    qvUtf8String report("earlier text\n");
    qvUtf8String details("earlier details\n");
    ASSERT_TRUE(twCheckInstall::checkInstallFolder(level, report, details).isOk());
    EXPECT_EQ(level, QV_LOG_INFO);
    EXPECT_EQ(report.Str(), kVerdictOk + "earlier text\n" +
                                "Details :\n\n"
                                "- OK - Tarnwick_Importer.bundle found :\n"
                                "    - Found here : " + product() + "/Tarnwick_Importer.bundle\n" +
                                siblingLines(product()));
    EXPECT_EQ(details.Str().rfind("earlier details\nChecking folders - Start\n", 0), 0u);

    const CheckRun again = run();
    EXPECT_EQ(again.details,
              detailsHead() +
                  "    - Looking for FILE_NEEDED : Tarnwick_Importer.bundle\n"
                  "        => OK - found once at :\n"
                  "            - " + product() + "/Tarnwick_Importer.bundle\n"
                  "    - Looking for FILE_NEEDED : Tarnwick_Source_Settings.plugin\n"
                  "        => OK - found once at :\n"
                  "            - " + product() + "/Tarnwick_Source_Settings.plugin\n"
                  "    - Looking for FILE_NEEDED : Tarnwick_Layer_Settings.plugin\n"
                  "        => OK - found once at :\n"
                  "            - " + product() + "/Tarnwick_Layer_Settings.plugin\n"
                  "    - Looking for BMD_PLUGINS_FILES : BlackmagicRawPremiereImporter.bundle\n"
                  "    - Looking for BMD_PLUGINS_FILES : BlackmagicRawPremiereSourceEffect.plugin\n"
                  "    - Looking for BMD_LIBRARY_FILE : libBlackmagicRawAPI.so\n"
                  "        => BMD Library files found at :\n"
                  "            - " + product() + "/libBlackmagicRawAPI.so\n");
}

TEST_F(CheckInstallFolder, MissingSiblingsAreErrorsThatNameWhereTheyBelong) {
    install(kProduct);
    makeHost();
    const std::string importer = product() + "/Tarnwick_Importer.bundle";

    // The library and the settings application are searched for only beside the importer.
    remove(kProduct + "/libBlackmagicRawAPI.so");
    remove(kProduct + "/Tarnwick.app");
    CheckRun r = run();
    ASSERT_TRUE(r.result.isOk());
    EXPECT_EQ(r.level, QV_LOG_ERR);
    EXPECT_EQ(r.report, kVerdictErr +
                            "Details :\n\n"
                            "- OK - Tarnwick_Importer.bundle found :\n"
                            "    - Found here : " + importer + "\n"
                            "- OK - Tarnwick_Source_Settings.plugin found : \n    - " + product() +
                            "/Tarnwick_Source_Settings.plugin\n"
                            "- OK - Tarnwick_Layer_Settings.plugin found : \n    - " + product() +
                            "/Tarnwick_Layer_Settings.plugin\n"
                            "- ERR - libBlackmagicRawAPI.so not found next to importer file. Should be here : \n"
                            "    - " + product() + "/libBlackmagicRawAPI.so\n"
                            "- ERR - Tarnwick.app not found next to importer file. Should be here : \n"
                            "    - " + product() + "/Tarnwick.app\n");
    EXPECT_NE(r.details.find("    - Looking for BMD_LIBRARY_FILE : libBlackmagicRawAPI.so\n"
                             "BM Dll file is not here next to importer file\n"
                             "Tarnwick Desktop file is not here next to importer file\n"),
              std::string::npos)
        << r.details;

    // A needed plug-in that is elsewhere is found by the search but still missing beside the importer.
    install(kProduct);
    fs::rename(product() + "/Tarnwick_Layer_Settings.plugin", plugIns() + "/Tarnwick_Layer_Settings.plugin");
    remove(kProduct + "/Tarnwick_Source_Settings.plugin");
    r = run();
    EXPECT_EQ(r.level, QV_LOG_ERR);
    EXPECT_EQ(r.report, kVerdictErr +
                            "Details :\n\n"
                            "- ERR - Tarnwick_Source_Settings.plugin has not been found\n"
                            "- OK - Tarnwick_Importer.bundle found :\n"
                            "    - Found here : " + importer + "\n"
                            "- ERR - Tarnwick_Source_Settings.plugin not found next to importer file. Should be "
                            "here : \n    - " + product() + "/Tarnwick_Source_Settings.plugin\n"
                            "- ERR - Tarnwick_Layer_Settings.plugin not found next to importer file. Should be "
                            "here : \n    - " + product() + "/Tarnwick_Layer_Settings.plugin\n"
                            "- OK - libBlackmagicRawAPI.so found\n    - " + product() + "/libBlackmagicRawAPI.so\n"
                            "- OK - Tarnwick.app found\n    - " + product() + "/Tarnwick.app\n");
    EXPECT_NE(r.details.find("    - Looking for FILE_NEEDED : Tarnwick_Source_Settings.plugin\n"
                             "        => Nothing found !\n"
                             "    - Looking for FILE_NEEDED : Tarnwick_Layer_Settings.plugin\n"
                             "        => OK - found once at :\n"
                             "            - " + plugIns() + "/Tarnwick_Layer_Settings.plugin\n"),
              std::string::npos)
        << r.details;
    EXPECT_NE(r.details.find("SourceSettings file is not here next to importer file\n"
                             "LayerSettings file is not here next to importer file\n"),
              std::string::npos);
}

TEST_F(CheckInstallFolder, ImporterOutsideMediaCoreIsShownAgainstItsUsualPlaceWithoutRaisingTheVerdict) {
    // No MediaCore folder: the usual place is then computed from an empty folder.
    makeHost();
    install(kHostPlugIns);
    const CheckRun r = run();
    ASSERT_TRUE(r.result.isOk());
    EXPECT_EQ(r.level, QV_LOG_INFO);
    EXPECT_EQ(r.report, kVerdictOk +
                            "Impossible to check Mediacore folder which seems to be installed in specific "
                            "location.\n\n"
                            "Details :\n\n"
                            "- WARN - Tarnwick_Importer.bundle found but not at is usual place :\n"
                            "    - Usual Place : /Qervane Tarnwick/Tarnwick_Importer.bundle\n"
                            "    - Found here : " + plugIns() + "/Tarnwick_Importer.bundle\n" +
                            siblingLines(plugIns()));
    EXPECT_EQ(r.details.rfind("Checking folders - Start\n"
                              " - Found folder : " + sys(kHost) + "\n"
                              "Checking folder plugins in :\n"
                              "    - " + plugIns() + "\n"
                              "Checking folders - Looking into folders ...\n",
                              0),
              0u)
        << r.details;
}

TEST_F(CheckInstallFolder, DoubledImporterIsAnErrorListingBothAndSkipsTheSiblings) {
    install(kProduct);
    folder().writeFile("root/" + kHostPlugIns + "/Old/Tarnwick_Importer.bundle/Contents/Linux/Tarnwick_Importer.so",
                       "so");
    const CheckRun r = run();
    ASSERT_TRUE(r.result.isOk());
    EXPECT_EQ(r.level, QV_LOG_ERR);
    // Host folders are searched before MediaCore.
    EXPECT_EQ(r.report, kVerdictErr +
                            "Details :\n\n"
                            "- ERR - Tarnwick_Importer.bundle has been found multiple times : \n"
                            "    - " + plugIns() + "/Old/Tarnwick_Importer.bundle\n"
                            "    - " + product() + "/Tarnwick_Importer.bundle\n");
    EXPECT_NE(r.details.find("    - Looking for FILE_NEEDED : Tarnwick_Importer.bundle\n"
                             "        => ERR - found multiple times at :\n"
                             "            - " + plugIns() + "/Old/Tarnwick_Importer.bundle\n"
                             "            - " + product() + "/Tarnwick_Importer.bundle\n"
                             "    - Looking for FILE_NEEDED : Tarnwick_Source_Settings.plugin\n"),
              std::string::npos)
        << r.details;
}

TEST_F(CheckInstallFolder, VendorPluginsWarnButNeverHideAnError) {
    install(kProduct);
    // The vendor's importer carries its own copy of the library.
    folder().writeFile("root/" + kHostPlugIns + "/BlackmagicRawPremiereImporter.bundle/Contents/Linux/"
                                                "libBlackmagicRawAPI.so",
                       "so");
    folder().makeFolder("root/" + kMediaCore + "/Common/BlackmagicRawPremiereSourceEffect.plugin");
    const std::string vendorImporter = plugIns() + "/BlackmagicRawPremiereImporter.bundle";
    const std::string vendorEffect = mediaCore() + "/Common/BlackmagicRawPremiereSourceEffect.plugin";
    const std::string vendorLibrary = vendorImporter + "/Contents/Linux/libBlackmagicRawAPI.so";
    const std::string vendorLines =
        "- WARN - BlackmagicRawPremiereImporter.bundle has been found (Blackmagic RAW plugins) :\n"
        "    - " + vendorImporter + "\n"
        "- WARN - BlackmagicRawPremiereSourceEffect.plugin has been found (Blackmagic RAW plugins) :\n"
        "    - " + vendorEffect + "\n"
        "- WARN - libBlackmagicRawAPI.so has been found multiple times : \n"
        "    - " + vendorLibrary + "\n"
        "    - " + product() + "/libBlackmagicRawAPI.so\n";

    CheckRun r = run();
    ASSERT_TRUE(r.result.isOk());
    EXPECT_EQ(r.level, QV_LOG_WARN);
    EXPECT_EQ(r.report, kVerdictWarn + "Details :\n\n" + vendorLines +
                            "- OK - Tarnwick_Importer.bundle found :\n"
                            "    - Found here : " + product() + "/Tarnwick_Importer.bundle\n" +
                            siblingLines(product()));
    EXPECT_NE(r.details.find("    - Looking for BMD_PLUGINS_FILES : BlackmagicRawPremiereImporter.bundle\n"
                             "        => WARN - BMD Plugins files found at :\n"
                             "            - " + vendorImporter + "\n"
                             "    - Looking for BMD_PLUGINS_FILES : BlackmagicRawPremiereSourceEffect.plugin\n"
                             "        => WARN - BMD Plugins files found at :\n"
                             "            - " + vendorEffect + "\n"
                             "    - Looking for BMD_LIBRARY_FILE : libBlackmagicRawAPI.so\n"
                             "        => WARN : Multiple BMD Library files found at :\n"
                             "            - " + vendorLibrary + "\n"
                             "            - " + product() + "/libBlackmagicRawAPI.so\n"),
              std::string::npos)
        << r.details;

    // An error found before the vendor's files, and one found after them, both stay.
    remove(kProduct + "/Tarnwick_Layer_Settings.plugin");
    r = run();
    EXPECT_EQ(r.level, QV_LOG_ERR);
    EXPECT_EQ(r.report.rfind(kVerdictErr + "Details :\n\n"
                                           "- ERR - Tarnwick_Layer_Settings.plugin has not been found\n" +
                                 vendorLines,
                             0),
              0u)
        << r.report;
    remove(kProduct + "/Tarnwick_Importer.bundle");
    r = run();
    EXPECT_EQ(r.level, QV_LOG_ERR);
    EXPECT_EQ(r.report, kVerdictErr +
                            "Details :\n\n"
                            "- ERR - Tarnwick_Importer.bundle has not been found\n"
                            "- ERR - Tarnwick_Layer_Settings.plugin has not been found\n" +
                            vendorLines);
}

TEST_F(CheckInstallFolder, UnreachableFolders) {
    // No MediaCore, and a host without its Plug-Ins folder: nothing to search.
    folder().makeFolder("root/" + kHost);
    folder().writeFile("root/Applications/notes.txt", "");
    CheckRun r = run();
    EXPECT_TRUE(r.result.hasError);
    EXPECT_EQ(r.result.toString().Str(), "Nothing to check, impossible to get Mediacore or HostPlugin folder");
    EXPECT_EQ(r.level, QV_LOG_INFO) << "the caller's level is left alone";
    EXPECT_EQ(r.report,
              "Impossible to check Mediacore folder which seems to be installed in specific location.\n\n"
              "Impossible to check Plugins App folders.\n\n");
    // The two host entries come in directory order.
    EXPECT_EQ(r.details.rfind("Checking folders - Start\n", 0), 0u);
    EXPECT_NE(r.details.find(" - Found non folder location : " + sys("Applications/notes.txt") + "\n"),
              std::string::npos);
    EXPECT_NE(r.details.find(" - Found folder : " + sys(kHost) + "\nApplication does not have Plug-Ins path in : " +
                             plugIns() + "\n"),
              std::string::npos);
    const std::string nothing =
        "Checking folders - Nothing to check, impossible to get Mediacore or HostPlugin folder\n";
    ASSERT_GE(r.details.size(), nothing.size());
    EXPECT_EQ(r.details.substr(r.details.size() - nothing.size()), nothing);

    remove("Applications");
    r = run();
    EXPECT_TRUE(r.result.hasError);
    EXPECT_EQ(r.details, "Checking folders - Start\n"
                         "All Applications OSX Path does not exist.\n"
                         "Checking folders - Nothing to check, impossible to get Mediacore or HostPlugin folder\n");

    // MediaCore is there but cannot be listed: it is searched, and finds nothing.
    folder().writeFile("root/" + kMediaCore, "not a folder");
    r = run();
    ASSERT_TRUE(r.result.isOk());
    EXPECT_EQ(r.level, QV_LOG_ERR);
    EXPECT_EQ(r.report, kVerdictErr + kNothingFoundInMediaCore);
}

TEST_F(CheckInstallFolder, UnreadableMediaCoreIsSearchedAsEmpty) {
    install(kProduct);
    twtest::RunAsOrdinaryUser(folder().path(), [&] {
        chmod(mediaCore().c_str(), 0);
        const CheckRun r = run();
        chmod(mediaCore().c_str(), 0755);
        ASSERT_TRUE(r.result.isOk());
        EXPECT_EQ(r.level, QV_LOG_ERR);
        EXPECT_EQ(r.report, kVerdictErr + kNothingFoundInMediaCore);
    });
}

TEST_F(CheckInstallFolder, ConflictingNamesOfALaterListAreErrors) {
    install(kProduct);
    makeHost();
    folder().makeFolder("root/" + kHostPlugIns + "/Conflicting.plugin");
    folder().makeFolder("root/" + kHostPlugIns + "/Odd.plugin");
    const std::vector<twCheckInstall::CheckedFile> files = {
        {"Conflicting.plugin", twCheckInstall::FILE_WARNING},
        {"Tarnwick_Importer.bundle", twCheckInstall::FILE_NEEDED},
        {"Absent.plugin", twCheckInstall::FILE_WARNING},
        {"Odd.plugin", static_cast<twCheckInstall::FILE_TYPE>(7)},
    };
    const CheckRun r = run(&files);
    ASSERT_TRUE(r.result.isOk());
    EXPECT_EQ(r.level, QV_LOG_ERR);
    EXPECT_EQ(r.report, kVerdictErr +
                            "Details :\n\n"
                            "- ERR - Conflicting.plugin has been found and should not (conflicting with "
                            "Tarnwick) :\n"
                            "    - " + plugIns() + "/Conflicting.plugin\n"
                            "- OK - Tarnwick_Importer.bundle found :\n"
                            "    - Found here : " + product() + "/Tarnwick_Importer.bundle\n" +
                            siblingLines(product()));
    EXPECT_EQ(r.details, detailsHead() +
                             "    - Looking for FILE_WARNING : Conflicting.plugin\n"
                             "        => ERR - found and should not at :\n"
                             "            - " + plugIns() + "/Conflicting.plugin\n"
                             "    - Looking for FILE_NEEDED : Tarnwick_Importer.bundle\n"
                             "        => OK - found once at :\n"
                             "            - " + product() + "/Tarnwick_Importer.bundle\n"
                             "    - Looking for FILE_WARNING : Absent.plugin\n"
                             "    - Looking for Unknow type : Odd.plugin\n");
}
