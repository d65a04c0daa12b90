#pragma once
// Running tarnwick-host as a separate process from the tool's tests.

#include <string>

namespace twtest {

struct ToolRun {
    int exitCode = -1;
    std::string output;
    std::string errors;  // standard error, when it is read on its own
};

// s in single quotes for the shell.
std::string Quote(const std::string& s);

bool Contains(const std::string& text, const std::string& part);

// The tool with HOME set to `home`, so that nothing reaches the real one;
// output holds what it wrote to both streams.
ToolRun RunTool(const std::string& home, const std::string& arguments);
// The same, with standard output in `output` and standard error in `errors`.
ToolRun RunToolSeparately(const std::string& home, const std::string& arguments);

}  // namespace twtest
