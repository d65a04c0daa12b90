#pragma once
// Reading back log files in tests: the lines, and one line cut into its fields.

#include <sstream>
#include <string>
#include <vector>

namespace twtest {

struct LogLine {
    std::string elapsed;
    std::string level;
    std::string thread;
    std::string file;
    std::string function;
    std::string message;
};

// Cuts "<elapsed>|<level>|<thread>|<file>| <function>|<message>"; false when the
// line has fewer fields or the bar-blank after the file field is missing.
inline bool ParseLogLine(const std::string& line, LogLine& out) {
    std::vector<std::string> fields;
    size_t start = 0;
    for (int i = 0; i < 5; ++i) {
        const size_t bar = line.find('|', start);
        if (bar == std::string::npos) return false;
        fields.push_back(line.substr(start, bar - start));
        start = bar + 1;
    }
    out.elapsed = fields[0];
    out.level = fields[1];
    out.thread = fields[2];
    out.file = fields[3];
    if (fields[4].empty() || fields[4][0] != ' ') return false;
    out.function = fields[4].substr(1);
    out.message = line.substr(start);
    return true;
}

inline std::vector<std::string> SplitLines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    std::string line;
    while (std::getline(in, line)) lines.push_back(line);
    return lines;
}

// The log lines (not the header) whose message contains `needle`.
inline std::vector<LogLine> LinesWith(const std::string& fileText, const std::string& needle) {
    std::vector<LogLine> found;
    for (const std::string& line : SplitLines(fileText)) {
        LogLine parsed;
        if (ParseLogLine(line, parsed) && parsed.message.find(needle) != std::string::npos) found.push_back(parsed);
    }
    return found;
}

}  // namespace twtest
