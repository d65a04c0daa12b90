#include "FileSystem/qvFileSystem.h"
#include "FileSystem/qvUtf8Path.h"
#include "OrdinaryUser.h"
#include "TempFolder.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

// Makes a folder read-only for the life of the object (the TempFolder gives
// write access back before it cleans up, should a test stop early).
class ReadOnlyFolder {
public:
    explicit ReadOnlyFolder(std::string path) : m_path(std::move(path)) { chmod(m_path.c_str(), 0555); }
    ~ReadOnlyFolder() { chmod(m_path.c_str(), 0755); }

private:
    std::string m_path;
};

int failWithCrossDevice(const char*, const char*) {
    errno = EXDEV;
    return -1;
}

// Forces moveFile onto its copy-and-remove path, as a move to another volume does.
class ScopedCrossDeviceRename {
public:
    ScopedCrossDeviceRename() { qvFileSystem::setRenameFunction(failWithCrossDevice); }
    ~ScopedCrossDeviceRename() { qvFileSystem::setRenameFunction(nullptr); }
};

std::vector<std::string> sortedTexts(const std::vector<qvUtf8String>& list) {
    std::vector<std::string> texts;
    for (const qvUtf8String& item : list) texts.push_back(item.Str());
    std::sort(texts.begin(), texts.end());
    return texts;
}

}  // namespace

TEST(FileSystem, QuestionsAboutPaths) {
    twtest::TempFolder temp;
    const std::string file = temp.writeFile("My.Folder/clip.BRAW", "12345");
    const std::string folder = temp.join("My.Folder");

    EXPECT_EQ(qvFileSystem::getFileSize(file), 5);
    EXPECT_EQ(qvFileSystem::getFileSize(temp.join("missing")), -1);
    EXPECT_TRUE(qvFileSystem::isFolderPath(folder));
    EXPECT_FALSE(qvFileSystem::isFolderPath(file));
    EXPECT_TRUE(qvFileSystem::doesFilepathExist(file));
    EXPECT_TRUE(qvFileSystem::isFileReadable(file));
    EXPECT_FALSE(qvFileSystem::isFileReadable(temp.join("missing")));
    EXPECT_EQ(qvFileSystem::getParentFolder(file).Str(), folder);

    // An existing folder keeps its full name; a file or a missing folder loses the extension.
    EXPECT_EQ(qvFileSystem::getFilenameFromPath(folder, false).Str(), "My.Folder");
    EXPECT_EQ(qvFileSystem::getFilenameFromPath(file, false).Str(), "clip");
    EXPECT_EQ(qvFileSystem::getFilenameFromPath(temp.join("Gone.Folder"), false).Str(), "Gone");
    EXPECT_EQ(qvFileSystem::getFilenameFromPath("clip.braw", true).Str(), "");

    EXPECT_EQ(qvFileSystem::getFilepathExtension(file, false).Str(), "BRAW");
    EXPECT_EQ(qvFileSystem::getFilepathExtension(file, true).Str(), "braw");
    EXPECT_TRUE(qvFileSystem::extensionIsBraw(file));
    EXPECT_FALSE(qvFileSystem::extensionIsBraw("/a.braw/clip"));
    EXPECT_FALSE(qvFileSystem::extensionIsBraw("/a/clip.braw2"));

    EXPECT_FALSE(qvFileSystem::isFolderEmpty(folder));
    EXPECT_TRUE(qvFileSystem::isFolderEmpty(temp.makeFolder("empty")));
    EXPECT_THROW(qvFileSystem::isFolderEmpty(temp.join("missing")), fs::filesystem_error);
}

TEST(FileSystem, FolderWritableProbeLeavesNothingBehind) {
    twtest::TempFolder temp;
    const std::string folder = temp.makeFolder("w");
    EXPECT_TRUE(qvFileSystem::isFolderWritable(folder));
    EXPECT_TRUE(fs::is_empty(folder));
    EXPECT_FALSE(qvFileSystem::isFolderWritable(temp.join("missing")));
    twtest::RunAsOrdinaryUser(temp.path(), [&] {
        ReadOnlyFolder readOnly(folder);
        EXPECT_FALSE(qvFileSystem::isFolderWritable(folder));
    });
}

TEST(FileSystem, ReadDirectoryListsEntriesWithoutDots) {
    twtest::TempFolder temp;
    temp.writeFile("d/a.txt", "");
    temp.makeFolder("d/sub");
    std::vector<qvUtf8String> out = {qvUtf8String("stale")};

    qvFileSystem::readDirectory(temp.join("d"), out, true);
    EXPECT_EQ(sortedTexts(out), (std::vector<std::string>{"a.txt", "sub"}));

    qvFileSystem::readDirectory(temp.join("d/"), out, false);
    EXPECT_EQ(sortedTexts(out), (std::vector<std::string>{temp.join("d/a.txt"), temp.join("d/sub")}));

    qvFileSystem::readDirectory(temp.join("missing"), out, false);
    EXPECT_TRUE(out.empty());
}

TEST(FileSystem, SearchByNameGoesTwentyFoldersDownAndIntoMatches) {
    twtest::TempFolder temp;
    const std::string root = temp.makeFolder("plugins");
    temp.writeFile("plugins/Tarnwick_Importer.bundle/Contents/Info.plist", "");
    // A match inside a match is found too.
    temp.makeFolder("plugins/Tarnwick_Importer.bundle/Contents/Tarnwick_Importer.bundle");
    temp.writeFile("plugins/x/BlackmagicRawAPI.framework", "");

    std::string atLimit = "plugins";
    for (int i = 1; i <= 20; ++i) atLimit += "/" + std::to_string(i);
    temp.writeFile(atLimit + "/Deep.plugin", "");
    temp.writeFile(atLimit + "/21/TooDeep.plugin", "");

    const std::vector<qvUtf8String> names = {qvUtf8String("Tarnwick_Importer.bundle"),
                                             qvUtf8String("BlackmagicRawAPI.framework"),
                                             qvUtf8String("Deep.plugin"), qvUtf8String("TooDeep.plugin"),
                                             qvUtf8String("tarnwick_importer.bundle")};
    std::vector<std::vector<qvUtf8String>> found(names.size());
    qvFileSystem::searchPathFromFinalenameInDirectoryRecursively(root, names, found, 0);

    EXPECT_EQ(sortedTexts(found[0]),
              (std::vector<std::string>{root + "/Tarnwick_Importer.bundle",
                                        root + "/Tarnwick_Importer.bundle/Contents/Tarnwick_Importer.bundle"}));
    EXPECT_EQ(sortedTexts(found[1]), (std::vector<std::string>{root + "/x/BlackmagicRawAPI.framework"}));
    EXPECT_EQ(sortedTexts(found[2]), (std::vector<std::string>{temp.join(atLimit + "/Deep.plugin")}));
    EXPECT_TRUE(found[3].empty());
    EXPECT_TRUE(found[4].empty()) << "names compare exactly";

    std::vector<std::vector<qvUtf8String>> tooShort(1);
    EXPECT_THROW(qvFileSystem::searchPathFromFinalenameInDirectoryRecursively(root, names, tooShort, 0),
                 std::out_of_range);
}

TEST(FileSystem, StoreLoadAndStreams) {
    twtest::TempFolder temp;
    const std::string path = temp.join("blob.bin");
    const std::string bytes("a\0b\r\n\xff", 6);
    EXPECT_TRUE(qvFileSystem::storeFile(path, bytes).isOk());
    bool ok = false;
    EXPECT_EQ(qvFileSystem::loadFile(path, &ok), bytes);
    EXPECT_TRUE(ok);

    // Truncating: a shorter content replaces a longer one whole.
    EXPECT_TRUE(qvFileSystem::storeFile(path, "z").isOk());
    EXPECT_EQ(qvFileSystem::loadFile(path, nullptr), "z");

    EXPECT_TRUE(qvFileSystem::storeFile(temp.join("empty"), "").isOk());
    EXPECT_EQ(qvFileSystem::loadFile(temp.join("empty"), &ok), "");
    EXPECT_TRUE(ok);
    EXPECT_EQ(qvFileSystem::loadFile(temp.join("missing"), &ok), "");
    EXPECT_FALSE(ok);

    EXPECT_EQ(qvFileSystem::storeFile(temp.join("no/such/folder/x"), "x").toString().Str(),
              "Can't open output file stream");

    std::ofstream out;
    qvFileSystem::getStream(out, temp.join("stream.txt"), std::ios::trunc);
    ASSERT_TRUE(out.is_open());
    out << "line";
    out.close();
    std::ifstream in;
    qvFileSystem::getStream(in, temp.join("stream.txt"), std::ios::binary);
    std::string line;
    std::getline(in, line);
    EXPECT_EQ(line, "line");
    qvFileSystem::getStream(in, temp.join("missing"), std::ios::binary);
    EXPECT_FALSE(in.is_open());

    FILE* handle = qvFileSystem::openFile(temp.join("stream.txt"), "rb");
    ASSERT_NE(handle, nullptr);
    fclose(handle);
    EXPECT_EQ(qvFileSystem::openFile(temp.join("missing"), "rb"), nullptr);
}

TEST(FileSystem, CreatingFolders) {
    twtest::TempFolder temp;
    const std::string deep = temp.join("a/b\\c/d//");
    EXPECT_TRUE(qvFileSystem::createDirectoryRecursively(deep).isOk());
    EXPECT_TRUE(fs::is_directory(temp.join("a/b/c/d")));
    // Existing folders are a success, at every level.
    EXPECT_TRUE(qvFileSystem::createDirectoryRecursively(deep).isOk());
    EXPECT_TRUE(qvFileSystem::createDirectory(temp.join("a/")).isOk());

    const std::string file = temp.writeFile("plain", "");
    EXPECT_EQ(qvFileSystem::createDirectory(file + "/sub/").toString().Str(),
              "Impossible to create Directory at : " + file + "/sub (error 20)");
    EXPECT_EQ(qvFileSystem::createDirectoryRecursively(file + "/sub/more").toString().Str(),
              "Impossible to create Directory at : " + file + "/sub (error 20)");
    EXPECT_FALSE(fs::exists(file + "/sub/more"));

    const std::string locked = temp.makeFolder("locked");
    twtest::RunAsOrdinaryUser(temp.path(), [&] {
        ReadOnlyFolder readOnly(locked);
        EXPECT_EQ(qvFileSystem::createDirectory(locked + "/x").toString().Str(),
                  "Impossible to create Directory at : " + locked + "/x - Privilege Access Error");
    });
}

TEST(FileSystem, RemovingFilesAndFolders) {
    twtest::TempFolder temp;
    const std::string file = temp.writeFile("full/f.txt", "x");
    EXPECT_TRUE(qvFileSystem::removeFileIfExists(temp.join("missing")).isOk());
    EXPECT_TRUE(qvFileSystem::removeFileIfExists(file).isOk());
    EXPECT_FALSE(fs::exists(file));

    // A link whose target is gone is still removed.
    ASSERT_EQ(symlink(temp.join("nowhere").c_str(), temp.join("dangling").c_str()), 0);
    EXPECT_TRUE(qvFileSystem::removeFileIfExists(temp.join("dangling")).isOk());
    EXPECT_FALSE(fs::is_symlink(temp.join("dangling")));

    temp.writeFile("full/g.txt", "x");
    EXPECT_EQ(qvFileSystem::removeFolderIfExists(temp.join("full")).toString().Str(),
              "Impossible to remove Directory at : " + temp.join("full") + " : Directory not empty");
    EXPECT_EQ(qvFileSystem::removeFolderIfExists(temp.join("missing")).toString().Str(),
              "Impossible to remove Directory at : " + temp.join("missing") + " : No such file or directory");
    EXPECT_TRUE(qvFileSystem::removeFolderIfExists(temp.makeFolder("empty")).isOk());
    EXPECT_FALSE(fs::exists(temp.join("empty")));

    twtest::RunAsOrdinaryUser(temp.path(), [&] {
        ReadOnlyFolder readOnly(temp.join("full"));
        EXPECT_EQ(qvFileSystem::removeFileIfExists(temp.join("full/g.txt")).toString().Str(),
                  "Impossible to remove file " + temp.join("full/g.txt"));
    });
}

TEST(FileSystem, CopyFile) {
    twtest::TempFolder temp;
    const std::string from = temp.writeFile("from.bin", std::string(200000, 'q'));
    const std::string to = temp.writeFile("to.bin", "old content that is longer than nothing");
    EXPECT_TRUE(qvFileSystem::copyFile(from, to).isOk());
    EXPECT_EQ(twtest::TempFolder::readFile(to), std::string(200000, 'q'));

    const std::string empty = temp.writeFile("empty", "");
    EXPECT_TRUE(qvFileSystem::copyFile(empty, to).isOk());
    EXPECT_EQ(twtest::TempFolder::readFile(to), "");

    EXPECT_EQ(qvFileSystem::copyFile(temp.join("missing"), to).toString().Str(), "Impossible to open input stream");
    EXPECT_EQ(qvFileSystem::copyFile(temp.path(), to).toString().Str(), "Impossible to open input stream");
    EXPECT_EQ(qvFileSystem::copyFile(from, temp.join("no/such/x")).toString().Str(),
              "Impossible to open output stream");
}

TEST(FileSystem, MoveFileRenamesOrCopiesAndRemoves) {
    twtest::TempFolder temp;
    const std::string a = temp.writeFile("a.txt", "A");
    EXPECT_TRUE(qvFileSystem::moveFile(a, temp.join("b.txt")).isOk());
    EXPECT_FALSE(fs::exists(a));
    EXPECT_EQ(twtest::TempFolder::readFile(temp.join("b.txt")), "A");

    ScopedCrossDeviceRename crossDevice;
    EXPECT_TRUE(qvFileSystem::moveFile(temp.join("b.txt"), temp.join("c.txt")).isOk());
    EXPECT_FALSE(fs::exists(temp.join("b.txt")));
    EXPECT_EQ(twtest::TempFolder::readFile(temp.join("c.txt")), "A");

    // The copy's failure is the answer, and the source stays.
    EXPECT_EQ(qvFileSystem::moveFile(temp.join("c.txt"), temp.join("no/such/d.txt")).toString().Str(),
              "Impossible to open output stream");
    EXPECT_TRUE(fs::exists(temp.join("c.txt")));

    // A source that cannot be removed: the copy is taken back, no half-move stays.
    const std::string stuck = temp.writeFile("locked/e.txt", "E");
    twtest::RunAsOrdinaryUser(temp.path(), [&] {
        ReadOnlyFolder readOnly(temp.join("locked"));
        EXPECT_EQ(qvFileSystem::moveFile(stuck, temp.join("e.txt")).toString().Str(),
                  "Impossible to remove file " + stuck);
        EXPECT_TRUE(fs::exists(stuck));
        EXPECT_FALSE(fs::exists(temp.join("e.txt")));
    });
}

TEST(FileSystem, MoveFolderChecksBothEnds) {
    twtest::TempFolder temp;
    temp.writeFile("src/inside.txt", "i");
    temp.writeFile("taken/other.txt", "o");

    EXPECT_EQ(qvFileSystem::moveFolder(temp.join("src"), temp.join("taken")).toString().Str(),
              "Impossible to move folder because destination already exist : " + temp.join("taken"));
    EXPECT_TRUE(fs::exists(temp.join("src/inside.txt")));
    EXPECT_TRUE(fs::exists(temp.join("taken/other.txt")));

    EXPECT_EQ(qvFileSystem::moveFolder(temp.join("missing"), temp.join("new")).toString().Str(),
              "Impossible to move folder because inFolder does not exist : " + temp.join("missing"));

    EXPECT_TRUE(qvFileSystem::moveFolder(temp.join("src"), temp.join("dst")).isOk());
    EXPECT_EQ(twtest::TempFolder::readFile(temp.join("dst/inside.txt")), "i");
    EXPECT_FALSE(fs::exists(temp.join("src")));
}

TEST(FileSystem, CleanFolderEmptiesButKeepsTheFolder) {
    twtest::TempFolder temp;
    temp.writeFile("cache/a.bin", "a");
    temp.writeFile("cache/sub/b.bin", "b");
    temp.makeFolder("cache/sub/empty");
    const std::string outside = temp.writeFile("outside/keep.txt", "k");
    ASSERT_EQ(symlink(temp.join("outside").c_str(), temp.join("cache/link").c_str()), 0);

    EXPECT_TRUE(qvFileSystem::cleanFolder(temp.join("cache")).isOk());
    EXPECT_TRUE(fs::is_directory(temp.join("cache")));
    EXPECT_TRUE(fs::is_empty(temp.join("cache")));
    // A link is removed, never followed.
    EXPECT_TRUE(fs::exists(outside));

    EXPECT_TRUE(qvFileSystem::cleanFolder(temp.join("missing")).isOk());
    EXPECT_EQ(qvFileSystem::cleanFolder(outside).toString().Str(), "cleanFolder - FolderPath input is not a folder");
}

TEST(FileSystem, RemoveFolderRecursifStopsAtDepthFiftyOne) {
    twtest::TempFolder temp;
    std::string fifty = "root";
    for (int i = 1; i <= 50; ++i) fifty += "/" + std::to_string(i);
    temp.writeFile(fifty + "/last.txt", "x");
    EXPECT_TRUE(qvFileSystem::cleanFolder(temp.join("root")).isOk());
    EXPECT_TRUE(fs::is_empty(temp.join("root")));

    const std::string deeper = fifty + "/51";
    temp.writeFile(deeper + "/never.txt", "x");
    temp.writeFile(fifty + "/also.txt", "x");
    EXPECT_EQ(qvFileSystem::cleanFolder(temp.join("root")).toString().Str(), "removeFolderRecursif - Max Depth Reached");
    EXPECT_TRUE(fs::exists(temp.join(deeper + "/never.txt")));
    EXPECT_TRUE(fs::exists(temp.join("root/1")));

    EXPECT_EQ(qvFileSystem::removeFolderRecursif(temp.join("root"), 51, true).toString().Str(),
              "removeFolderRecursif - Max Depth Reached");
    EXPECT_TRUE(qvFileSystem::removeFolderRecursif(temp.join(deeper), 0, true).isOk());
    EXPECT_FALSE(fs::exists(temp.join(deeper)));
}
