#include "ImporterTestSupport.h"

#include <filesystem>
#include <fstream>
#include <sstream>

ImporterTest::ImporterTest() : m_home(m_folder.makeFolder("home")), m_root(m_folder.makeFolder("root")) {
    // A complete install where hosts look for plug-ins, so that the install
    // check started by imInit finds nothing to show.
    const std::string product = "root/Library/Application Support/Adobe/Common/Plug-ins/7.0/MediaCore/Qervane Tarnwick";
    m_folder.writeFile(product + "/Tarnwick_Importer.bundle/Contents/Linux/Tarnwick_Importer.so", "so");
    m_folder.makeFolder(product + "/Tarnwick_Source_Settings.plugin/Contents");
    m_folder.makeFolder(product + "/Tarnwick_Layer_Settings.plugin/Contents");
    m_folder.writeFile(product + "/libBlackmagicRawAPI.so", "so");
#ifdef TW_SETTINGS_APP
    // The settings application the build stages, so that a popup opened from
    // this install runs the real one.
    std::filesystem::create_symlink(TW_SETTINGS_APP,
                                    m_folder.makeFolder(product + "/Tarnwick.app/Contents/MacOS") + "/Tarnwick");
#else
    m_folder.writeFile(product + "/Tarnwick.app/Contents/MacOS/Tarnwick", "exe");
#endif
}

twSimHost& ImporterTest::start(const twSimIdentity& identity, const std::string& plugin) {
    m_host.reset();
    twSimHostConfig config;
    config.identity = identity;
    config.useTestRoots = true;
    config.testHome = m_home;
    config.testSystemRoot = m_root;
    m_host = std::make_unique<twSimHost>(config);
    m_host->loadPlugin(plugin);
    return *m_host;
}

std::string ImporterTest::makerFolder() const { return m_home + "/Library/Application Support/Qervane"; }

std::string ImporterTest::productFolder() const { return makerFolder() + "/Tarnwick"; }

void ImporterTest::writeOptions(const std::string& loggingLevel) const {
    m_folder.writeFile("home/Library/Application Support/Qervane/Tarnwick/Tarnwick_options.ini",
                       "[General]\nlogging=" + loggingLevel + "\n");
}

std::vector<LogLine> ImporterTest::logLines(const std::string& hostText) const {
    std::vector<LogLine> lines;
    std::ifstream file(productFolder() + "/Logs/Tarnwick_Importer_" + hostText + ".log");
    std::string text;
    while (std::getline(file, text)) {
        // <elapsed>|<level>|<thread>|<file>| <function>|<message>
        std::vector<size_t> bars;
        for (size_t at = text.find('|'); at != std::string::npos && bars.size() < 5; at = text.find('|', at + 1)) {
            bars.push_back(at);
        }
        if (bars.size() < 5) continue;
        LogLine line;
        line.level = text.substr(bars[0] + 1, bars[1] - bars[0] - 1);
        line.thread = text.substr(bars[1] + 1, bars[2] - bars[1] - 1);
        line.function = text.substr(bars[3] + 2, bars[4] - bars[3] - 2);
        line.message = text.substr(bars[4] + 1);
        lines.push_back(line);
    }
    return lines;
}

std::vector<std::string> ImporterTest::selectorLines(const std::string& hostText) const {
    std::vector<std::string> out;
    for (const LogLine& line : logLines(hostText)) {
        if (line.message.rfind("---- Selector - ", 0) == 0) out.push_back(line.message);
    }
    return out;
}

std::vector<std::string> ImporterTest::errorMessages(const std::string& hostText) const {
    std::vector<std::string> out;
    for (const LogLine& line : logLines(hostText)) {
        if (line.level != "ERR") continue;
        if (line.message.rfind("Error when setting CheckInstallFolder priority", 0) == 0) continue;
        out.push_back(line.message);
    }
    return out;
}

std::vector<std::string> ImporterTest::events() const {
    std::vector<std::string> out;
    for (const twSimEvent& event : m_host->events().all()) {
        out.push_back(std::to_string(event.type) + "|" + event.title + "|" + event.description);
    }
    return out;
}

std::string ImporterTest::bugReportText() {
    return std::string("Please send us a bug report ! ") + TW_BUG_REPORT_URL + " You can contact us at " +
           TW_SUPPORT_EMAIL;
}
