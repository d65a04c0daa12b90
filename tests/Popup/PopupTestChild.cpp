// A stand-in for the settings application in tests. It does what the file
// "<its own path as invoked>.do" says, one instruction a line, in order:
//   argv FILE    writes its arguments to FILE, each followed by a NUL byte
//   stdin FILE   reads its standard input to the end into FILE
//   out TEXT     prints TEXT and a line feed on standard output
//   err TEXT     the same on standard error
//   result FILE  copies FILE to the result preset path (the fifth argument)
//   copy FROM TO copies the file FROM over TO (FROM holds no blank)
//   crash        ends by a signal
//   hang FILE    writes its process id to FILE and never ends by itself
// Without the file it prints nothing and exits with 0. Tests install it, or a
// link to it, where the plug-in looks for the application.

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

namespace {

std::string readAll(std::istream& in) { return std::string(std::istreambuf_iterator<char>(in), {}); }

void writeAll(const std::string& path, const std::string& bytes) {
    const std::string temporary = path + ".part";
    {
        std::ofstream out(temporary, std::ios::binary);
        out << bytes;
    }
    // Whole or not at all: a test that waits for the file reads it complete.
    std::rename(temporary.c_str(), path.c_str());
}

}  // namespace

int main(int argc, char** argv) {
    std::ifstream script(std::string(argv[0]) + ".do");
    std::string line;
    while (std::getline(script, line)) {
        const size_t blank = line.find(' ');
        const std::string verb = line.substr(0, blank);
        const std::string operand = blank == std::string::npos ? std::string() : line.substr(blank + 1);
        if (verb == "argv") {
            std::string bytes;
            for (int i = 1; i < argc; ++i) bytes += std::string(argv[i]) + '\0';
            writeAll(operand, bytes);
        } else if (verb == "stdin") {
            writeAll(operand, readAll(std::cin));
        } else if (verb == "out") {
            std::cout << operand << std::endl;
        } else if (verb == "err") {
            // One write for the whole line: the runner gathers both streams into
            // one text in the order it reads them, and a line cut in two writes
            // could have the other stream's line land in its middle.
            std::cerr << (operand + "\n") << std::flush;
        } else if (verb == "result") {
            if (argc < 6) return 2;
            std::ifstream source(operand, std::ios::binary);
            writeAll(argv[5], readAll(source));
        } else if (verb == "copy") {
            const size_t split = operand.find(' ');
            std::ifstream source(operand.substr(0, split), std::ios::binary);
            writeAll(operand.substr(split + 1), readAll(source));
        } else if (verb == "crash") {
            const rlimit noCore = {0, 0};
            setrlimit(RLIMIT_CORE, &noCore);
            std::signal(SIGSEGV, SIG_DFL);
            std::raise(SIGSEGV);
        } else if (verb == "hang") {
            writeAll(operand, std::to_string(getpid()));
            for (;;) pause();
        }
    }
    return 0;
}
