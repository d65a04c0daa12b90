#pragma once
// The importer loaded into the simulated host, with its home folder and system
// root in a temporary folder, and the means to read what it wrote to its log.

#include "TempFolder.h"
#include "twSimHost.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

struct LogLine {
    std::string level;     // "INFO", "ERR", ...
    std::string thread;    // the kernel thread id, blank-padded
    std::string function;  // the function that logged
    std::string message;
};

class ImporterTest : public ::testing::Test {
protected:
    // The home folder is empty; the system root holds a complete install.
    ImporterTest();

    // A fresh host of that identity with the plug-in (the built one unless
    // another path is given) loaded and the test roots handed over. The previous
    // host, if any, is shut down and destroyed first.
    twSimHost& start(const twSimIdentity& identity = twSimIdentity::PremierePro(),
                     const std::string& plugin = TW_IMPORTER_PLUGIN);
    twSimHost& host() { return *m_host; }
    void stop() { m_host.reset(); }

    // <home>/Library/Application Support/Qervane and its product folder.
    std::string makerFolder() const;
    std::string productFolder() const;
    // Writes the options file with the "logging" level given (e.g. "INFO").
    void writeOptions(const std::string& loggingLevel) const;
    // The lines of the importer's log of that host text, e.g. "Premiere Pro".
    std::vector<LogLine> logLines(const std::string& hostText = "Premiere Pro") const;
    // Messages of the selector lines ("---- Selector - ...") in log order.
    std::vector<std::string> selectorLines(const std::string& hostText = "Premiere Pro") const;

    // Messages logged at ERR, without the install check thread's priority
    // report, which depends on what the system allows.
    std::vector<std::string> errorMessages(const std::string& hostText = "Premiere Pro") const;

    // Events of the error suite as "<type>|<title>|<description>".
    std::vector<std::string> events() const;
    static std::string bugReportText();

    twtest::TempFolder m_folder;
    std::string m_home;
    std::string m_root;
    std::unique_ptr<twSimHost> m_host;
};
