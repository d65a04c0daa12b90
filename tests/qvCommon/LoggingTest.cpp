#include "Utils/qvLogging.h"

#include "Config/qvConfig.h"
#include "LogTestSupport.h"
#include "ProductConfig.h"
#include "TempFolder.h"
#include "Utils/qvMutex.h"
#include "Utils/qvVersion.h"

#include <filesystem>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cctype>
#include <clocale>
#include <string>

namespace {

bool fileExists(const std::string& path) {
    struct stat st;
    return ::stat(path.c_str(), &st) == 0;
}

class LoggingTest : public ::testing::Test {
protected:
    void SetUp() override { twtest::UseProductConfig(); }
    void TearDown() override { g_logger.desactivateFileLogging(); }

    std::string logFolder() const { return m_roots.home() + "/Library/Application Support/Qervane/Tarnwick/Logs"; }
    std::string logPath() const { return logFolder() + "/Tarnwick_Importer_Premiere Pro.log"; }
    std::string oldSessionPath() const { return logFolder() + "/Tarnwick_Importer_Premiere Pro_lastSession.log"; }
    std::string logText() const { return twtest::TempFolder::readFile(logPath()); }

    void activate(QV_LOG_LVL level, bool forceNewSession = true) {
        const QvResult res = g_logger.activateFileLogging(level, "Tarnwick_Importer_Premiere Pro.log",
                                                          QV_APP_ENUM::QV_APP_PPRO, QvVersion(25, 1, 0, 0),
                                                          QvLogZipCollector(), forceNewSession);
        ASSERT_FALSE(res.hasError) << res.toString().Str();
    }

    twtest::ScopedTestRoots m_roots;
};

int s_textBuilt = 0;
const char* countedText() {
    ++s_textBuilt;
    return "built";
}

}  // namespace

TEST_F(LoggingTest, LineCarriesEveryFieldInItsExactForm) {
    activate(QV_LOG_INFO);
    QV_LOG(QV_LOG_INFO, "first message " << 42 << "|with a bar");

    const std::vector<twtest::LogLine> lines = twtest::LinesWith(logText(), "first message");
    ASSERT_EQ(lines.size(), 1u);
    const twtest::LogLine& line = lines[0];

    ASSERT_FALSE(line.elapsed.empty());
    for (char c : line.elapsed) EXPECT_TRUE(std::isdigit(static_cast<unsigned char>(c))) << line.elapsed;
    EXPECT_EQ(line.level, "INFO");
    // The kernel's id of this thread, blank-padded to at least 5.
    const std::string tid = std::to_string(::syscall(SYS_gettid));
    EXPECT_EQ(line.thread.substr(0, tid.size()), tid);
    EXPECT_GE(line.thread.size(), 5u);
    EXPECT_EQ(line.thread.find_first_not_of(' ', tid.size()), std::string::npos);
    EXPECT_EQ(line.file, "LoggingTest    ");
    EXPECT_EQ(line.function, "TestBody");
    EXPECT_EQ(line.message, "first message 42|with a bar");
}

TEST_F(LoggingTest, FileFieldIsTheStemCutOrPaddedToFifteenBytes) {
    EXPECT_EQ(QvLogging::GetPathFilename("/src/Manager/Manager.cpp").Str(), "Manager        ");
    EXPECT_EQ(QvLogging::GetPathFilename("/a/b/ExactlyFifteen1.cpp").Str(), "ExactlyFifteen1");
    EXPECT_EQ(QvLogging::GetPathFilename("/a/b/SixteenBytesLong.cpp").Str(), "SixteenBytesLon");
    EXPECT_EQ(QvLogging::GetPathFilename("bare").Str(), "bare           ");
    EXPECT_EQ(QvLogging::GetPathFilename("noextensionbutverylongname").Str(), "noextensionbutv");
    EXPECT_EQ(QvLogging::GetPathFilename("/x/archive.tar.gz").Str(), "archive.tar    ");
    // A long stem is cut after 15 characters, not bytes; a short one is padded by bytes.
    std::string accents;
    for (int i = 0; i < 16; ++i) accents += "\xC3\xA9";
    EXPECT_EQ(QvLogging::GetPathFilename("/x/" + accents + ".cpp").Str(), accents.substr(0, 30));
    EXPECT_EQ(QvLogging::GetPathFilename("/x/\xC3\xA9t\xC3\xA9.cpp").Str(), "\xC3\xA9t\xC3\xA9          ");

    EXPECT_EQ(QvLogging::GetCurrentLCPUIdStr().Str(), "~");
    EXPECT_EQ(QvLogging::getOldSessionFilepathFromCurrentOne("/l/Tarnwick_Importer_Audition.log").Str(),
              "/l/Tarnwick_Importer_Audition_lastSession.log");
}

TEST_F(LoggingTest, LevelsBelowTheMinimumBuildNothingAndTouchNoFile) {
    // Off: nothing is evaluated, and no file appears.
    s_textBuilt = 0;
    for (int level = QV_LOG_TRACE; level <= QV_LOG_ERR; ++level) {
        QV_LOG(static_cast<QV_LOG_LVL>(level), countedText());
    }
    EXPECT_EQ(s_textBuilt, 0);
    EXPECT_FALSE(fileExists(logFolder()));

    activate(QV_LOG_WARN);
    struct stat before;
    ASSERT_EQ(::stat(logPath().c_str(), &before), 0);
    QV_LOG(QV_LOG_INFO, countedText());
    QV_LOG(QV_LOG_TRACE, countedText());
    EXPECT_EQ(s_textBuilt, 0);
    struct stat after;
    ASSERT_EQ(::stat(logPath().c_str(), &after), 0);
    EXPECT_EQ(after.st_size, before.st_size);
    EXPECT_EQ(after.st_mtim.tv_nsec, before.st_mtim.tv_nsec);

    QV_LOG(QV_LOG_WARN, countedText());
    QV_LOG(QV_LOG_ERR, countedText());
    EXPECT_EQ(s_textBuilt, 2);
    const std::vector<twtest::LogLine> lines = twtest::LinesWith(logText(), "built");
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0].level, "WARN");
    EXPECT_EQ(lines[1].level, "ERR");

    g_logger.desactivateFileLogging();
    EXPECT_FALSE(g_logger.isLoggingActivated(QV_LOG_ERR));
    EXPECT_FALSE(g_logger.isFileLoggingOn());
    QV_LOG(QV_LOG_ERR, countedText());
    EXPECT_EQ(s_textBuilt, 2);
}

TEST_F(LoggingTest, HeaderDescribesHostProductAndMachine) {
    activate(QV_LOG_INFO);
    const std::vector<std::string> lines = twtest::SplitLines(logText());
    const std::string rule(68, '-');
    ASSERT_GE(lines.size(), 8u);
    EXPECT_EQ(lines.front(), rule);
    EXPECT_EQ(lines.back(), rule);
    EXPECT_EQ(lines[1].rfind("Log creation DateTime : ", 0), 0u) << lines[1];
    EXPECT_EQ(lines[1].size(), std::string("Log creation DateTime : ").size() + 19) << lines[1];
    EXPECT_EQ(lines[2], "Host and version : Premiere Pro 25.1.0");
    EXPECT_EQ(lines[3], "Tarnwick version 3.3.9 - BUILD 610");
#if defined(__x86_64__)
    EXPECT_EQ(lines[4], "Architecture : Intel");
#endif
    EXPECT_EQ(lines[5], "Hardware informations : ");
    EXPECT_EQ(lines[6], "     - System : ");
    const std::string text = logText();
    EXPECT_NE(text.find("\n     - OS Version : \n"), std::string::npos);
    EXPECT_NE(text.find("\n     - Memory : \n        - Total RAM : "), std::string::npos);
    EXPECT_NE(text.find("\n        - Process Virtual Size (Mo) : "), std::string::npos);
    EXPECT_EQ(g_logger.getApp(), QV_APP_ENUM::QV_APP_PPRO);
    EXPECT_EQ(g_logger.getLogFilePath().Str(), logPath());
}

TEST_F(LoggingTest, NewSessionKeepsExactlyThePreviousOneAside) {
    activate(QV_LOG_INFO);
    QV_LOG(QV_LOG_INFO, "session one");
    activate(QV_LOG_INFO);
    QV_LOG(QV_LOG_INFO, "session two");

    EXPECT_EQ(twtest::LinesWith(twtest::TempFolder::readFile(oldSessionPath()), "session one").size(), 1u);
    EXPECT_TRUE(twtest::LinesWith(logText(), "session one").empty());
    EXPECT_EQ(twtest::LinesWith(logText(), "session two").size(), 1u);

    activate(QV_LOG_INFO);
    const std::string old = twtest::TempFolder::readFile(oldSessionPath());
    EXPECT_TRUE(twtest::LinesWith(old, "session one").empty());
    EXPECT_EQ(twtest::LinesWith(old, "session two").size(), 1u);
    EXPECT_EQ(old.rfind(std::string(68, '-'), 0), 0u);
    EXPECT_TRUE(twtest::LinesWith(logText(), "session two").empty());
}

TEST_F(LoggingTest, ContinuedSessionAppendsWithoutHeader) {
    activate(QV_LOG_INFO);
    QV_LOG(QV_LOG_INFO, "before");
    g_logger.desactivateFileLogging();
    activate(QV_LOG_INFO, false);
    QV_LOG(QV_LOG_INFO, "after");

    const std::string text = logText();
    EXPECT_FALSE(fileExists(oldSessionPath()));
    EXPECT_EQ(twtest::LinesWith(text, "before").size(), 1u);
    EXPECT_EQ(twtest::LinesWith(text, "after").size(), 1u);
    EXPECT_EQ(text.find("Host and version"), text.rfind("Host and version"));
}

TEST_F(LoggingTest, ALogFolderRemovedSinceIsMadeAgain) {
    activate(QV_LOG_INFO);
    QV_LOG(QV_LOG_INFO, "before the folder went");
    g_logger.desactivateFileLogging();
    std::filesystem::remove_all(logFolder());

    activate(QV_LOG_INFO, false);
    QV_LOG(QV_LOG_INFO, "after the folder went");
    EXPECT_EQ(g_logger.getLogFilePath().Str(), logPath());
    EXPECT_EQ(twtest::LinesWith(logText(), "after the folder went").size(), 1u);
    EXPECT_TRUE(twtest::LinesWith(logText(), "before the folder went").empty());
}

TEST_F(LoggingTest, MutexTraceLinesAtTrace) {
    activate(QV_LOG_TRACE);
    qvMutex mutex("QueueMutex");
    mutex.lock("Flush");
    EXPECT_FALSE(mutex.try_lock());
    mutex.unlock();
    EXPECT_TRUE(mutex.try_lock());
    mutex.unlock();

    const std::string text = logText();
    const std::vector<twtest::LogLine> locked = twtest::LinesWith(text, "Mutex QueueMutex Flush locked");
    ASSERT_EQ(locked.size(), 1u);
    EXPECT_EQ(locked[0].level, "TRACE");
    EXPECT_EQ(twtest::LinesWith(text, "Mutex QueueMutex unlocked").size(), 2u);
    // Uncontended traced locks write nothing.
    std::mutex plain;
    QV_LOCK_TRACED(plain);
    plain.unlock();
    EXPECT_TRUE(twtest::LinesWith(logText(), " MU").empty());
}

TEST_F(LoggingTest, FinalZipFolderIsCreatedBesideTheLogs) {
    qvUtf8String folder;
    const QvResult res = g_logger.getFinalLogFolder(folder);
    ASSERT_FALSE(res.hasError) << res.toString().Str();
    EXPECT_EQ(folder.Str(), m_roots.home() + "/Library/Application Support/Qervane/Tarnwick/Final_Zip_To_Send");
    struct stat st;
    ASSERT_EQ(::stat(folder.c_str(), &st), 0);
    EXPECT_TRUE(S_ISDIR(st.st_mode));
    EXPECT_FALSE(g_logger.getFinalLogFolder(folder).hasError);
}

TEST_F(LoggingTest, UnreachableLogFolderLeavesLoggingOff) {
    // The product folder cannot be made: a file stands where it should be.
    m_roots.folder().writeFile("home/Library/Application Support/Qervane/Tarnwick", "not a folder");
    const QvResult res = g_logger.activateFileLogging(QV_LOG_INFO, "x.log", QV_APP_ENUM::QV_APP_AE, "1.0",
                                                      QvLogZipCollector(), true);
    EXPECT_TRUE(res.hasError);
    EXPECT_FALSE(g_logger.isLoggingActivated(QV_LOG_ERR));
    EXPECT_FALSE(g_logger.isFileLoggingOn());
}

TEST(LoggingFormat, VariadicFormattingIsCutAt1023Bytes) {
    EXPECT_EQ(VariadicToQvString(L"%d-%s-%.2f", 7, "seven", 7.5).Str(), "7-seven-7.50");
    const std::string big(2000, 'a');
    EXPECT_EQ(VariadicToQvString(L"%s", big.c_str()).Size(), 1023u);
    EXPECT_EQ(OutputLogIfDevMode(L"%d", 1).Str(), "");
    testing::internal::CaptureStdout();
    const qvUtf8String printed = OutputLog(L"value %u", 12u);
    const qvUtf8String copy = OutputLog(qvUtf8String("plain"));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "value 12\nplain\n");
    EXPECT_EQ(printed.Str(), "value 12");
    EXPECT_EQ(copy.Str(), "plain");
}

TEST(LoggingFormat, LevelTextsAndHostNames) {
    ASSERT_EQ(QvLogging::loggingLevelStr.size(), 6u);
    EXPECT_EQ(QvLogging::loggingLevelStr[QV_LOG_TRACE].Str(), "TRACE");
    EXPECT_EQ(QvLogging::loggingLevelStr[QV_LOG_ERR].Str(), "ERR");
    EXPECT_EQ(QvLogging::loggingLevelStr[QV_LOG_DESACTIVATED].Str(), "DESACTIVATED");

    const char* names[] = {"Unknown",     "Premiere Pro", "Premiere Elements", "After Effects",
                           "Adobe Media Encoder", "Cotton Wood", "Prelude", "Speed Grade",
                           "Audition",    "Character Animator", "Desktop"};
    for (uint8_t i = 0; i <= 10; ++i) EXPECT_EQ(QV_APP_ENUM(i).toString().Str(), names[i]);
    EXPECT_EQ(QV_APP_ENUM(11).toString().Str(), "11");
    EXPECT_EQ(QV_APP_ENUM(255).toString().Str(), "255");
}
