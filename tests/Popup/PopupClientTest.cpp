// The popup client against a real child process: what goes in (command line,
// standard input), what comes back (the "json:" line), and children that
// misbehave.

#include "Popup/PopupClient.h"

#include "Platform/qvPlatformPopup.h"
#include "SettingsAppStandIn.h"
#include "TempFolder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using twtest::readArguments;
using twtest::SettingsAppStandIn;
using twtest::TempFolder;

namespace {

std::vector<qvPlatform::AlertText> g_alerts;
void recordAlert(const qvPlatform::AlertText& alert) { g_alerts.push_back(alert); }

class PopupClient : public ::testing::Test {
protected:
    void SetUp() override {
        g_alerts.clear();
        qvPlatform::SetAlertHandler(recordAlert);
    }
    void TearDown() override { qvPlatform::SetAlertHandler(nullptr); }

    TempFolder m_folder;
    SettingsAppStandIn m_app{TW_POPUP_TEST_CHILD, m_folder.join("Tarnwick.app/Contents/MacOS/Tarnwick")};
};

}  // namespace

TEST(PopupAnswer, FirstJsonLineIsReadWhateverComesAround) {
    QV_JSON result;
    ASSERT_TRUE(Popup::ParseStdOutResult("Qt: starting\nwarning: json: later\r\njson:{\"modified\":true}\r\n"
                                         "json:{\"modified\":false}\n",
                                         result)
                    .isOk());
    bool modified = false;
    EXPECT_EQ(result.getBool(result.document, "modified", modified), QV_JSON_OK);
    EXPECT_TRUE(modified);

    QV_JSON last;
    EXPECT_TRUE(Popup::ParseStdOutResult("json:{\"modified\":false}", last).isOk());
}

TEST(PopupAnswer, MissingOrBrokenAnswerIsAFailure) {
    QV_JSON result;
    EXPECT_STREQ(Popup::ParseStdOutResult("", result).toString().Str().c_str(), "Json prefix not found in stdOut");
    EXPECT_STREQ(Popup::ParseStdOutResult(" json:{}\nJSON:{}\n", result).toString().Str().c_str(),
                 "Json prefix not found in stdOut");
    EXPECT_STREQ(Popup::ParseStdOutResult("json:{\"modified\":tru\n", result).toString().Str().c_str(),
                 "Json StdOut Impossible to Parse !");
}

TEST(PopupArguments, EachArgumentIsQuotedAndItsShellCharactersEscaped) {
    EXPECT_EQ(Popup::QuoteArguments({qvUtf8String("-a"), qvUtf8String("say \"hi\""), qvUtf8String("")}),
              "\"-a\" \"say \\\"hi\\\"\" \"\"");
    EXPECT_EQ(Popup::QuoteArguments({qvUtf8String("$HOME `x` a\\")}), "\"\\$HOME \\`x\\` a\\\\\"");
}

TEST(PopupArguments, EscapingStopsAtItsBoundAndDropsTheUnescapedRest) {
    const std::string quotes(10001, '"');
    const std::string line = Popup::QuoteArguments({qvUtf8String(quotes + "tail")});
    std::string expected = "\"";
    for (int i = 0; i < 9999; ++i) expected += "\\\"";
    expected += "\"";
    EXPECT_EQ(line, expected);
}

TEST_F(PopupClient, ArgumentsArriveWholeInTheChild) {
    const std::string record = m_folder.join("argv");
    m_app.script({"argv " + record, "out json:{}"});
    const std::vector<std::string> args = {
        "-sourceSettingsPopup", "/clips/A \"quoted\" name.braw", "  blanks  around  ", "Été 日本 ünïcödé",
        "$HOME and `id` and $(id)", "ends with a backslash\\", "", "tab\there", "new\nline"};
    std::vector<qvUtf8String> utf8;
    for (const std::string& arg : args) utf8.emplace_back(arg);

    qvUtf8String stdOut;
    ASSERT_TRUE(Popup::RemotePopupWithArgs("t", qvUtf8String(m_app.path()), utf8, stdOut).isOk());
    EXPECT_EQ(readArguments(record), args);
    EXPECT_EQ(stdOut.Str(), "json:{}\n");
}

TEST_F(PopupClient, HostPopupSendsItsJsonAndReadsTheAnswer) {
    const std::string input = m_folder.join("stdin");
    const std::string record = m_folder.join("argv");
    m_app.script({"stdin " + input, "argv " + record, "err diagnostics on the other stream",
                  "out json:{\"modified\":true,\"tab\":4}"});
    QV_JSON result;
    ASSERT_TRUE(Popup::RemotePopup("t", m_app.path(), "{\"popup\":\"HostPopup\",\"host\":1,\"tab\":4}", result).isOk());
    // No window of the host is known here, so no origin goes with it.
    EXPECT_EQ(TempFolder::readFile(input), "{\"popup\":\"HostPopup\",\"host\":1,\"tab\":4,\"owner\":0}");
    EXPECT_EQ(readArguments(record), std::vector<std::string>{"-popup"});
    bool modified = false;
    EXPECT_EQ(result.getBool(result.document, "modified", modified), QV_JSON_OK);
    EXPECT_TRUE(modified);
}

TEST_F(PopupClient, MissingApplicationAlertsAndFailsWithoutRunning) {
    const std::string missing = m_folder.join("nowhere/Tarnwick");
    QV_JSON result;
    const QvResult r = Popup::RemotePopup("Title", missing, "{}", result);
    EXPECT_TRUE(r.hasError);
    EXPECT_EQ(r.toString().Str(), "Application or Plugin impossible to locate at : " + missing);
    ASSERT_EQ(g_alerts.size(), 1u);
    EXPECT_EQ(g_alerts[0].button, "OK");
    EXPECT_EQ(g_alerts[0].message,
              "Error : unable to locate our application. Please reinstall our software to make the plugins work "
              "properly. You can redownload our plugins from our website");
}

TEST_F(PopupClient, ChildThatCrashesHangsOrSaysNothingGivesNoAnswer) {
    QV_JSON result;
    m_app.script({"out starting", "crash"});
    EXPECT_EQ(Popup::RemotePopup("t", m_app.path(), "{}", result).toString().Str(), "Json prefix not found in stdOut");

    m_app.script({"out nothing to say"});
    EXPECT_EQ(Popup::RemotePopup("t", m_app.path(), "{}", result).toString().Str(), "Json prefix not found in stdOut");

    const std::string pidFile = m_folder.join("pid");
    m_app.script({"out json:{\"modified\":true}", "hang " + pidFile});
    {
        twtest::HangBreaker breaker(pidFile);
        // Returns once the child is gone; what it said before is still read.
        EXPECT_TRUE(Popup::RemotePopup("t", m_app.path(), "{}", result).isOk());
    }
    EXPECT_TRUE(g_alerts.empty());
}

TEST(PopupServerPath, SearchOrderBesideTheInstallFolderThenByIdentifierThenDefault) {
    TempFolder folder;
    const std::string install = folder.makeFolder("install");
    const char* const identifier = "com.qervane.tarnwick.desktop";
    auto find = [&] {
        return Popup::GetServerBinaryPath("com.qervane.tarnwick.importer", identifier, "Tarnwick.app", "Tarnwick",
                                          install.c_str(), "/default/Tarnwick");
    };
    // Not loaded here, so the importer's own bundle gives nothing.
    EXPECT_EQ(find(), "/default/Tarnwick");

    // A renamed bundle is found by the identifier it declares.
    folder.writeFile("install/Other.app/Contents/Info.plist",
                     "<plist><dict><key>CFBundleExecutable</key>\n  <string>Tw</string>\n"
                     "<key>CFBundleIdentifier</key><string>com.qervane.tarnwick.desktop</string></dict></plist>");
    EXPECT_EQ(find(), "/default/Tarnwick");  // its executable isn't there yet
    const std::string renamed = folder.writeFile("install/Other.app/Contents/MacOS/Tw", "x");
    EXPECT_EQ(find(), renamed);

    const std::string byName = folder.writeFile("install/Tarnwick.app/Contents/MacOS/Tarnwick", "x");
    EXPECT_EQ(find(), byName);
}
