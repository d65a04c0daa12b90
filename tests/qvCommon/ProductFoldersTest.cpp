#include "Config/qvConfig.h"
#include "FileSystem/qvFileSystem.h"
#include "Platform/qvPlatformFiles.h"
#include "Platform/qvPlatformRoots.h"
#include "TempFolder.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

const std::string kMakerFolder = "/Library/Application Support/Qervane";
const std::string kMediaCore = "/Library/Application Support/Adobe/Common/Plug-ins/7.0/MediaCore";

class ProductFolders : public ::testing::Test {
protected:
    void SetUp() override {
        g_config.productFolderName = "Tarnwick";
        g_config.iniFileName = "Tarnwick_options.ini";
    }
    void TearDown() override { qvPlatform::SetExecutablePathOverride(""); }

    std::string productFolder() const { return roots.home() + kMakerFolder + "/Tarnwick"; }

    twtest::ScopedTestRoots roots;
};

std::vector<std::string> opened;
void recordOpen(const std::string& target) { opened.push_back(target); }

}  // namespace

TEST_F(ProductFolders, ApplicationDataFoldersAreCreatedUnderTheHomeFolder) {
    qvUtf8String out;
    ASSERT_TRUE(qvFileSystem::getUserHomeFolder(out).isOk());
    EXPECT_EQ(out.Str(), roots.home());

    ASSERT_TRUE(qvFileSystem::getOrCreateQVAppDataFolder(out).isOk());
    EXPECT_EQ(out.Str(), roots.home() + kMakerFolder);
    ASSERT_TRUE(qvFileSystem::getOrCreateProductAppDataFolder(out).isOk());
    EXPECT_EQ(out.Str(), productFolder());

    ASSERT_TRUE(qvFileSystem::getOrCreateProductLogFolder(out).isOk());
    EXPECT_EQ(out.Str(), productFolder() + "/Logs");
    ASSERT_TRUE(qvFileSystem::getOrCreateProductLogFolder(out, "Collected").isOk());
    EXPECT_EQ(out.Str(), productFolder() + "/Collected");
    ASSERT_TRUE(qvFileSystem::getOrCreateProductCacheFolder(out).isOk());
    EXPECT_EQ(out.Str(), productFolder() + "/Cache");
    ASSERT_TRUE(qvFileSystem::getOrCreateProductManualCacheFolder(out).isOk());
    EXPECT_EQ(out.Str(), productFolder() + "/ManualCache");

    for (const char* name : {"Logs", "Collected", "Cache", "ManualCache"}) {
        EXPECT_TRUE(fs::is_directory(productFolder() + "/" + name)) << name;
    }
}

TEST_F(ProductFolders, AFailingStepIsHandedOnUnchanged) {
    // A file where the home folder should be: nothing can be created below it.
    const std::string home = roots.folder().writeFile("home-is-a-file", "");
    qvPlatform::SetHomeFolderOverride(home);
    const std::string expected = "Impossible to create Directory at : " + home + "/Library (error 20)";

    qvUtf8String out("untouched");
    EXPECT_EQ(qvFileSystem::getOrCreateQVAppDataFolder(out).toString().Str(), expected);
    EXPECT_EQ(qvFileSystem::getOrCreateProductLogFolder(out).toString().Str(), expected);
    EXPECT_EQ(qvFileSystem::getOrCreateProductCacheFolder(out).toString().Str(), expected);
    EXPECT_EQ(qvFileSystem::getIniFilepath(out).toString().Str(), expected);
    int64_t total = 7;
    EXPECT_EQ(qvFileSystem::getCacheSpaceTaken(total).toString().Str(), expected);
    EXPECT_EQ(out.Str(), "untouched");
}

TEST_F(ProductFolders, HomeFolderFallsBackFromThePasswordEntryToHome) {
    qvUtf8String out;
    EXPECT_TRUE(qvFileSystem::getUserHomeFolderFrom(true, "/home/u", "/ignored", out).isOk());
    EXPECT_EQ(out.Str(), "/home/u");
    EXPECT_EQ(qvFileSystem::getUserHomeFolderFrom(true, "", "/ignored", out).toString().Str(),
              "Impossible to get AppData folder from getpwuid");
    EXPECT_EQ(qvFileSystem::getUserHomeFolderFrom(true, nullptr, "/ignored", out).toString().Str(),
              "Impossible to get AppData folder from getpwuid");
    EXPECT_TRUE(qvFileSystem::getUserHomeFolderFrom(false, nullptr, "/from/env", out).isOk());
    EXPECT_EQ(out.Str(), "/from/env");
    EXPECT_EQ(qvFileSystem::getUserHomeFolderFrom(false, nullptr, "", out).toString().Str(),
              "Impossible to get AppData folder from HOME env var");
    EXPECT_EQ(qvFileSystem::getUserHomeFolderFrom(false, nullptr, nullptr, out).toString().Str(),
              "Impossible to get AppData folder from HOME env var");
}

TEST_F(ProductFolders, IniFileAlwaysExistsAfterSuccess) {
    const std::string ini = productFolder() + "/Tarnwick_options.ini";
    qvUtf8String out;
    ASSERT_TRUE(qvFileSystem::getIniFilepath(out).isOk());
    EXPECT_EQ(out.Str(), ini);
    EXPECT_TRUE(fs::is_regular_file(ini));
    EXPECT_EQ(fs::file_size(ini), 0u);

    // An existing file keeps its content.
    roots.folder().writeFile(ini.substr(roots.folder().path().size() + 1), "[Section]\nkey=1\n");
    ASSERT_TRUE(qvFileSystem::getIniFilepath(out).isOk());
    EXPECT_EQ(twtest::TempFolder::readFile(ini), "[Section]\nkey=1\n");

    // A folder of that name gives way to the file; a full one cannot.
    fs::remove(ini);
    fs::create_directory(ini);
    ASSERT_TRUE(qvFileSystem::getIniFilepath(out).isOk());
    EXPECT_TRUE(fs::is_regular_file(ini));
    fs::remove(ini);
    fs::create_directories(ini + "/inside");
    EXPECT_EQ(qvFileSystem::getIniFilepath(out).toString().Str(),
              "Impossible to remove Directory at : " + ini + " : Directory not empty");
}

TEST_F(ProductFolders, ExecutableAndHostFolders) {
    qvUtf8String out;
    ASSERT_TRUE(qvFileSystem::getHostExeFolderPath(out).isOk());
    EXPECT_EQ(out.Str(), fs::read_symlink("/proc/self/exe").parent_path().string());
    EXPECT_EQ(qvFileSystem::getCurrentExeDiskPath(out).toString().Str(),
              "Impossible to get Disk Path from current Exe Path");

    const std::string volumes = roots.systemRoot() + "/Volumes/";
    qvPlatform::SetExecutablePathOverride(volumes + "Work Disk/Apps/Host.app/Contents/MacOS/Host");
    ASSERT_TRUE(qvFileSystem::getHostExeFolderPath(out).isOk());
    EXPECT_EQ(out.Str(), volumes + "Work Disk/Apps/Host.app/Contents/MacOS");
    ASSERT_TRUE(qvFileSystem::getCurrentExeDiskPath(out).isOk());
    EXPECT_EQ(out.Str(), volumes + "Work Disk/");
    ASSERT_TRUE(qvFileSystem::getHostFolderPath(out).isOk());
    EXPECT_EQ(out.Str(), volumes + "Work Disk/Apps/Host.app");

    EXPECT_EQ(qvFileSystem::getDiskPathFromFolder(volumes + "NoSlash", out).toString().Str(),
              "Impossible to get Disk Path from current Exe Path");

    const qvUtf8String start("/opt/tools/bin");
    EXPECT_EQ(qvFileSystem::getHostFolderPath(out, &start).toString().Str(),
              "Impossible to find Root Host Folder from Host Exe Path /opt/tools/bin");
    const qvUtf8String bundle("/x/Editor.app");
    ASSERT_TRUE(qvFileSystem::getHostFolderPath(out, &bundle).isOk());
    EXPECT_EQ(out.Str(), "/x/Editor.app");

    qvPlatform::SetExecutablePathOverride(std::string(1100, 'p'));
    EXPECT_EQ(qvFileSystem::getHostExeFolderPath(out).toString().Str(), "Size too small for Executable path !");
}

TEST_F(ProductFolders, MediaCoreFolderInTheUsualPlaceOrOnTheExecutablesDisk) {
    qvUtf8String out("before");
    qvUtf8String report;
    // Nowhere, and the program is on the boot disk.
    EXPECT_EQ(qvFileSystem::getMediacoreFolderPath(out, report).toString().Str(),
              "Impossible to get Disk Path from current Exe Path");
    EXPECT_EQ(report.Str(), "");

    const std::string disk = roots.systemRoot() + "/Volumes/Ext/";
    qvPlatform::SetExecutablePathOverride(disk + "Applications/Host.app/Contents/MacOS/Host");
    EXPECT_EQ(qvFileSystem::getMediacoreFolderPath(out, report).toString().Str(),
              "Mediacore in current Disk Path does not exist");
    EXPECT_EQ(report.Str(), "Mediacore in current Disk Path does not exist\n");

    // On the executable's disk it is a success that leaves `out` alone.
    fs::create_directories(disk + kMediaCore.substr(1));
    report = "";
    EXPECT_TRUE(qvFileSystem::getMediacoreFolderPath(out, report).isOk());
    EXPECT_EQ(out.Str(), "before");
    EXPECT_EQ(report.Str(), "");

    fs::create_directories(roots.systemRoot() + kMediaCore);
    EXPECT_TRUE(qvFileSystem::getMediacoreFolderPath(out, report).isOk());
    EXPECT_EQ(out.Str(), roots.systemRoot() + kMediaCore);
    EXPECT_EQ(report.Str(), "MediaCore in the normal location exists.\n");
}

TEST_F(ProductFolders, HostPlugInsFoldersOfTheInstalledHosts) {
    std::vector<qvUtf8String> out;
    qvUtf8String report;
    EXPECT_TRUE(qvFileSystem::getHostPlugInsFolderPath(out, report).isOk());
    EXPECT_TRUE(out.empty());
    EXPECT_EQ(report.Str(), "All Applications OSX Path does not exist.\n");

    const std::string apps = roots.systemRoot() + "/Applications";
    const std::string premiere = apps + "/Adobe Premiere Pro 2024";
    const std::string encoder = apps + "/Adobe Media Encoder 2024";
    fs::create_directories(premiere + "/Adobe Premiere Pro 2024.app/Contents/Plug-Ins");
    fs::create_directories(encoder);
    fs::create_directories(apps + "/Other Editor");
    roots.folder().writeFile("root/Applications/notes.txt", "");

    report = "";
    EXPECT_TRUE(qvFileSystem::getHostPlugInsFolderPath(out, report).isOk());
    ASSERT_EQ(out.size(), 1u);
    EXPECT_EQ(out[0].Str(), premiere + "/Adobe Premiere Pro 2024.app/Contents/Plug-Ins");
    const std::string text = report.Str();
    for (const std::string& line :
         {" - Found non folder location : " + apps + "/notes.txt\n", " - Found folder : " + premiere + "\n",
          " - Found folder : " + apps + "/Other Editor\n",
          "Application does not have Plug-Ins path in : " + encoder + "/Adobe Media Encoder 2024.app/Contents/Plug-Ins\n"}) {
        EXPECT_NE(text.find(line), std::string::npos) << line;
    }
    EXPECT_EQ(text.find("Other Editor.app"), std::string::npos);
}

TEST_F(ProductFolders, DynamicLibraryByName) {
    qvUtf8String out;
    ASSERT_TRUE(qvFileSystem::getDynamicLibPath(out, "libc").isOk());
    EXPECT_NE(out.Str().find("libc.so"), std::string::npos);
    EXPECT_TRUE(fs::exists(out.Str()));
    EXPECT_EQ(qvFileSystem::getDynamicLibPath(out, "com.qervane.tarnwick.importer").toString().Str(),
              "GetDynamicLibPath - Impossible to get MainBundle");
    EXPECT_EQ(qvFileSystem::getDynamicLibPath(out, nullptr).toString().Str(),
              "GetDynamicLibPath - Impossible to get MainBundle");
}

TEST_F(ProductFolders, CacheSpaceCountsOnlyTheTopLevelOfBothCaches) {
    qvUtf8String cache;
    qvUtf8String manual;
    ASSERT_TRUE(qvFileSystem::getOrCreateProductCacheFolder(cache).isOk());
    ASSERT_TRUE(qvFileSystem::getOrCreateProductManualCacheFolder(manual).isOk());
    int64_t total = -5;
    ASSERT_TRUE(qvFileSystem::getCacheSpaceTaken(total).isOk());
    EXPECT_EQ(total, 0);

    const std::string base = productFolder().substr(roots.folder().path().size() + 1);
    roots.folder().writeFile(base + "/Cache/a", std::string(10, 'a'));
    roots.folder().writeFile(base + "/Cache/b", std::string(20, 'b'));
    roots.folder().writeFile(base + "/ManualCache/c", std::string(5, 'c'));
    roots.folder().writeFile(base + "/ManualCache/sub/deep", std::string(100000, 'd'));
    const int64_t subfolder = static_cast<int64_t>(qvFileSystem::getFileSize(manual + "/sub"));
    ASSERT_TRUE(qvFileSystem::getCacheSpaceTaken(total).isOk());
    EXPECT_EQ(total, 35 + subfolder);
}

TEST_F(ProductFolders, OpeningGoesToTheDesktopLauncher) {
    qvPlatform::SetDesktopLauncher(recordOpen);
    opened.clear();
    const std::string file = roots.folder().writeFile("docs/readme.txt", "");
    const std::string docs = roots.folder().join("docs");

    qvFileSystem::openFileOrFolder(roots.folder().join("nowhere/at/all"), true, false, false);
    EXPECT_TRUE(opened.empty());
    qvFileSystem::openFileOrFolder(file, false, false, false);
    qvFileSystem::openFileOrFolder(file, true, true, false);
    qvFileSystem::openFileOrFolder(file, false, true, false);
    // A missing file in an existing folder is still shown.
    qvFileSystem::openFileOrFolder(docs + "/missing.txt", false, false, false);
    EXPECT_EQ(opened, (std::vector<std::string>{file, file, docs, docs + "/missing.txt"}));
    qvPlatform::SetDesktopLauncher(nullptr);
}
