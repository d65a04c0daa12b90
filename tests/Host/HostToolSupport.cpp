#include "HostToolSupport.h"

#include <sys/wait.h>

#include <cstdio>
#include <fstream>
#include <iterator>

namespace twtest {

std::string Quote(const std::string& s) {
    std::string out = "'";
    for (char c : s) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

bool Contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

namespace {

ToolRun Run(const std::string& home, const std::string& arguments, const std::string& errorRedirect) {
    const std::string command = "HOME=" + Quote(home) + " " + Quote(TW_HOST_TOOL) + " " + arguments + " " + errorRedirect;
    ToolRun run;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return run;
    char buffer[4096];
    size_t n;
    while ((n = fread(buffer, 1, sizeof(buffer), pipe)) > 0) run.output.append(buffer, n);
    const int status = pclose(pipe);
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

}  // namespace

ToolRun RunTool(const std::string& home, const std::string& arguments) { return Run(home, arguments, "2>&1"); }

ToolRun RunToolSeparately(const std::string& home, const std::string& arguments) {
    const std::string errors = home + "/tool-errors.txt";
    ToolRun run = Run(home, arguments, "2>" + Quote(errors));
    std::ifstream in(errors, std::ios::binary);
    run.errors.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    std::remove(errors.c_str());
    return run;
}

}  // namespace twtest
