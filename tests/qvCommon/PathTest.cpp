#include "FileSystem/qvUtf8Path.h"
#include "TempFolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

std::string parentOf(const char* path) { return qvUtf8Path(qvUtf8String(path)).Parent().Str(); }
std::string nameOf(const char* path, bool withExtension = true) {
    return qvUtf8Path(qvUtf8String(path)).Filename(withExtension).Str();
}
std::string extensionOf(const char* path) { return qvUtf8Path(qvUtf8String(path)).Extension().Str(); }
std::string joined(const char* base, const char* relative, qvUtf8Path::Style style = qvUtf8Path::STYLE_MIXED) {
    return qvUtf8Path::Join(base, relative, style).Str();
}

}  // namespace

TEST(Utf8Path, ParentCutsAtTheLastSeparatorOfEitherStyle) {
    EXPECT_EQ(parentOf("/a/b/clip.braw"), "/a/b");
    EXPECT_EQ(parentOf("/a/b/"), "/a");
    EXPECT_EQ(parentOf("/a/b///"), "/a");
    EXPECT_EQ(parentOf("C:\\clips\\day1\\clip.braw"), "C:\\clips\\day1");
    EXPECT_EQ(parentOf("C:\\clips/day1"), "C:\\clips");
    // No separator, and a separator only in front: both have no parent.
    EXPECT_EQ(parentOf("clip.braw"), "");
    EXPECT_EQ(parentOf("/a"), "");
    EXPECT_EQ(parentOf("/"), "");
    EXPECT_EQ(qvUtf8Path(qvUtf8String("/a/b")).GetPath(true).Str(), "/a/");
}

TEST(Utf8Path, FileNameNeedsASeparatorAndKeepsALeadingDot) {
    EXPECT_EQ(nameOf("/a/b/clip.braw"), "clip.braw");
    EXPECT_EQ(nameOf("/a/b/clip.braw", false), "clip");
    EXPECT_EQ(nameOf("/a/b.tar.gz", false), "b.tar");
    EXPECT_EQ(nameOf("/a/.hidden", false), ".hidden");
    EXPECT_EQ(nameOf("D:\\x\\y.cube", false), "y");
    // A bare name has no file name, and neither has a folder path.
    EXPECT_EQ(nameOf("clip.braw"), "");
    EXPECT_EQ(nameOf("/a/b/"), "");
    EXPECT_EQ(nameOf("/a/b\\"), "");
}

TEST(Utf8Path, ExtensionIsBehindTheLastDotUnlessASeparatorFollows) {
    EXPECT_EQ(extensionOf("/a/clip.braw"), "braw");
    EXPECT_EQ(extensionOf("clip.BRAW"), "BRAW");
    EXPECT_EQ(extensionOf("/a.b/c"), "");
    EXPECT_EQ(extensionOf("C:\\a.b\\c"), "");
    EXPECT_EQ(extensionOf("/a/b"), "");
    EXPECT_EQ(extensionOf("/a/.hidden"), "hidden");
    EXPECT_EQ(extensionOf("/a/b."), "");
}

TEST(Utf8Path, JoinAddsEachFieldWithOneSeparator) {
    EXPECT_EQ(joined("/a/", "/b/c"), "/a/b/c");
    EXPECT_EQ(joined("/a", "b/c"), "/a/b/c");
    EXPECT_EQ(joined("/a", "b\\c"), "/a/b/c");
    EXPECT_EQ(joined("", "b"), "/b");
    EXPECT_EQ(joined("/a", "b/"), "/a/b/");
    EXPECT_EQ(joined("/a", ""), "/a");
    EXPECT_EQ(joined("/a", "b//c"), "/a/b/c");
    EXPECT_EQ(joined("C:", "x/y", qvUtf8Path::STYLE_WINDOWS), "C:\\x\\y");
    EXPECT_EQ(joined("C:\\x", "y", qvUtf8Path::STYLE_AUTO), "C:\\x\\y");
    EXPECT_EQ(joined("/Library", "Application Support/Qervane"), "/Library/Application Support/Qervane");

    qvUtf8String base("/home");
    qvUtf8Path path(base);
    path.Join("user").Join("Logs/");
    EXPECT_EQ(base.Str(), "/home/user/Logs/");
}

TEST(Utf8Path, SplitKeepsEmptyFields) {
    const std::vector<qvUtf8String> fields = qvUtf8Path(qvUtf8String("/a//b\\c")).Split();
    ASSERT_EQ(fields.size(), 5u);
    EXPECT_EQ(fields[0].Str(), "");
    EXPECT_EQ(fields[1].Str(), "a");
    EXPECT_EQ(fields[2].Str(), "");
    EXPECT_EQ(fields[3].Str(), "b");
    EXPECT_EQ(fields[4].Str(), "c");
    EXPECT_TRUE(qvUtf8Path(qvUtf8String("")).Split().empty());
}

TEST(Utf8Path, SeparatorEditsAndStyles) {
    qvUtf8String text("/");
    qvUtf8Path(text).RemoveBackslash();
    EXPECT_EQ(text.Str(), "");

    text = "/a/b/\\/";
    qvUtf8Path(text).RemoveBackslash();
    EXPECT_EQ(text.Str(), "/a/b");

    text = "C:\\x";
    qvUtf8Path(text).AddBackslash(qvUtf8Path::STYLE_AUTO);
    EXPECT_EQ(text.Str(), "C:\\x\\");
    qvUtf8Path(text).AddBackslash();
    EXPECT_EQ(text.Str(), "C:\\x\\");
    EXPECT_TRUE(qvUtf8Path(text).Backslash());
    EXPECT_EQ(qvUtf8Path(text).GetStyle(), qvUtf8Path::STYLE_WINDOWS);
    qvUtf8Path(text).SetPosixStyle();
    EXPECT_EQ(text.Str(), "C:/x/");
    EXPECT_EQ(qvUtf8Path(text).GetStyle(), qvUtf8Path::STYLE_POSIX);
    qvUtf8Path(text).SetWindowsStyle();
    EXPECT_EQ(text.Str(), "C:\\x\\");
    EXPECT_EQ(qvUtf8Path(qvUtf8String("a/b\\c")).GetStyle(), qvUtf8Path::STYLE_MIXED);
    EXPECT_EQ(qvUtf8Path(qvUtf8String("abc")).GetStyle(), qvUtf8Path::STYLE_MIXED);
    EXPECT_EQ(qvUtf8Path(qvUtf8String("C:\\x")).GetSlashChar(qvUtf8Path::STYLE_AUTO), '\\');
    EXPECT_EQ(qvUtf8Path(qvUtf8String("C:\\x")).GetSlashChar(qvUtf8Path::STYLE_MIXED), '/');
    EXPECT_EQ(qvUtf8Path(qvUtf8String("/x")).GetSlashChar(qvUtf8Path::STYLE_WINDOWS), '\\');

    // The flag sets the product passes.
    EXPECT_EQ(qvUtf8Path(qvUtf8String("C:\\a\\"), 18).Str().Str(), "C:/a");
    EXPECT_EQ(qvUtf8Path(qvUtf8String("C:\\a"), 65).Str().Str(), "C:/a/");
    EXPECT_EQ(qvUtf8Path(qvUtf8String("/a//"), 66).Str().Str(), "/a");
}

TEST(Utf8Path, NameEditsFollowTheirOddRules) {
    qvUtf8String text("/a/b.txt");
    EXPECT_TRUE(qvUtf8Path(text).SetFilename("c", true));
    EXPECT_EQ(text.Str(), "/a/c.txt");
    EXPECT_TRUE(qvUtf8Path(text).SetFilename("d.cube", false));
    EXPECT_EQ(text.Str(), "/a/d.cube");

    // The dot is not put back.
    qvUtf8Path(text).SetName("e");
    EXPECT_EQ(text.Str(), "/a/ecube");

    text = "/a/b.txt";
    qvUtf8Path(text).SetEmptyExt();
    EXPECT_EQ(text.Str(), "/a/b.");

    text = "/a/";
    EXPECT_FALSE(qvUtf8Path(text).SetFilename("x", false));
    EXPECT_EQ(text.Str(), "/a/");
    text = "bare.txt";
    EXPECT_FALSE(qvUtf8Path(text).SetFilename("x", true));
    EXPECT_EQ(text.Str(), "bare.txt");
}

TEST(Utf8Path, BorrowingPathsEditTheCallersStringAndCopiesKeepTheirKind) {
    qvUtf8String callers("/x/y/");
    qvUtf8Path borrowing(callers);
    qvUtf8Path borrowedCopy(borrowing);
    borrowedCopy.RemoveBackslash();
    EXPECT_EQ(callers.Str(), "/x/y");

    const qvUtf8String constant("/p/q");
    qvUtf8Path owning(constant);
    qvUtf8Path ownedCopy(owning);
    ownedCopy.Join("r");
    EXPECT_EQ(ownedCopy.Str().Str(), "/p/q/r");
    EXPECT_EQ(owning.Str().Str(), "/p/q");
    EXPECT_EQ(constant.Str(), "/p/q");

    qvUtf8Path assigned(qvUtf8String("/other"));
    assigned = owning;
    assigned.Join("s");
    EXPECT_EQ(assigned.Str().Str(), "/p/q/s");
    EXPECT_EQ(owning.Str().Str(), "/p/q");
    assigned = borrowing;
    assigned.Join("z");
    EXPECT_EQ(callers.Str(), "/x/y/z");
}

TEST(Utf8Path, FileSystemQuestions) {
    twtest::TempFolder temp;
    const std::string file = temp.writeFile("sub/file.txt", "x");
    const std::string folder = temp.join("sub");

    EXPECT_TRUE(qvUtf8Path::Exists(file));
    EXPECT_TRUE(qvUtf8Path::IsFile(file));
    EXPECT_FALSE(qvUtf8Path::IsFolder(file));
    EXPECT_TRUE(qvUtf8Path::IsFolder(folder));
    EXPECT_FALSE(qvUtf8Path::IsFile(folder));
    EXPECT_FALSE(qvUtf8Path::IsFile(temp.join("missing")));
    EXPECT_FALSE(qvUtf8Path::IsFolder(temp.join("missing")));
    EXPECT_TRUE(qvUtf8Path::Access(file, qvUtf8Path::OPEN_READ));
    EXPECT_TRUE(qvUtf8Path::Access(file, qvUtf8Path::OPEN_WRITE));
    EXPECT_FALSE(qvUtf8Path::Access(temp.join("missing"), qvUtf8Path::OPEN_READ));

    const qvUtf8Path deep(qvUtf8String(temp.join("sub/no/such/thing.txt")));
    EXPECT_EQ(deep.FirstExistingParent().Str(), folder);
    EXPECT_EQ(deep.FirstExistingPath().Str(), folder);
    EXPECT_EQ(qvUtf8Path(qvUtf8String(file)).FirstExistingPath().Str(), file);
    EXPECT_EQ(qvUtf8Path(qvUtf8String("/a")).FirstExistingParent().Str(), "");
    EXPECT_EQ(qvUtf8Path(qvUtf8String("relative/none")).FirstExistingParent().Str(), "");
}

TEST(Utf8Path, FreeFunctions) {
    EXPECT_EQ(FilenameRemoveForbiddenChars("a:b/c.txt").Str(), "abc.txt");
    EXPECT_EQ(qvUtf8Path::GetForbiddenChars().Str(), "/:");

    qvUtf8String out;
    // Cut behind the last occurrence of the suffix, then the name is cleaned.
    EXPECT_TRUE(PurifyPathString("/p/my:clip_A001_A001.braw", out, "_A001", false, nullptr));
    EXPECT_EQ(out.Str(), "/p/myclip_A001_A001");
    // With an extension the cut is in front of the suffix.
    EXPECT_TRUE(PurifyPathString("/p/clip.braw.sidecar", out, ".braw", true, "cube"));
    EXPECT_EQ(out.Str(), "/p/clip.cube");
    EXPECT_FALSE(PurifyPathString("/p/a:b.txt", out, "zzz", false, "x"));
    EXPECT_EQ(out.Str(), "/p/ab.txt");
    // No separator, no file name: nothing to clean.
    EXPECT_FALSE(PurifyPathString("a:b", out, "zzz", false, nullptr));
    EXPECT_EQ(out.Str(), "a:b");

    twtest::TempFolder temp;
    const std::string script = temp.writeFile("run.sh", "#!/bin/sh\n");
    EXPECT_TRUE(SetFileInExecutableMode(script));
    struct stat info;
    ASSERT_EQ(stat(script.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777u, 0777u);
    EXPECT_FALSE(SetFileInExecutableMode(temp.join("missing.sh")));
}

TEST(Utf8Path, ExpandHomeDirectoryKeepsTheTilde) {
    twtest::ScopedTestRoots roots;
    EXPECT_EQ(ExpandHomeDirectory("~/Movies").Str(), roots.home() + "~/Movies");
    EXPECT_EQ(ExpandHomeDirectory("/abs/~x").Str(), "/abs/~x");
    EXPECT_EQ(ExpandHomeDirectory("").Str(), "");
}
