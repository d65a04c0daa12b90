#include "SettingsAppStandIn.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sys/types.h>
#include <unistd.h>

namespace twtest {

SettingsAppStandIn::SettingsAppStandIn(const std::string& program, const std::string& path) : m_path(path) {
    const std::filesystem::path link(path);
    std::filesystem::create_directories(link.parent_path());
    std::filesystem::remove(link);
    std::filesystem::create_symlink(program, link);
}

void SettingsAppStandIn::script(const std::vector<std::string>& lines) const {
    std::ofstream out(m_path + ".do", std::ios::binary | std::ios::trunc);
    for (const std::string& line : lines) out << line << "\n";
}

std::vector<std::string> readArguments(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::vector<std::string> args;
    size_t start = 0;
    for (size_t end = bytes.find('\0'); end != std::string::npos; end = bytes.find('\0', start)) {
        args.push_back(bytes.substr(start, end - start));
        start = end + 1;
    }
    return args;
}

HangBreaker::HangBreaker(const std::string& pidFile)
    : m_stop(std::make_shared<std::atomic<bool>>(false)), m_thread([pidFile, stop = m_stop] {
          // The stand-in writes the file whole (rename), so a file that exists
          // holds the complete id. The wait ends when the child has started,
          // however long that takes: nothing here depends on a duration.
          while (!*stop) {
              std::ifstream in(pidFile);
              pid_t pid = 0;
              if (in >> pid && pid > 0) {
                  kill(pid, SIGKILL);
                  return;
              }
              usleep(1000);
          }
      }) {}

HangBreaker::~HangBreaker() {
    *m_stop = true;
    if (m_thread.joinable()) m_thread.join();
}

}  // namespace twtest
