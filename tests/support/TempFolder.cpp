#include "TempFolder.h"

#include "Platform/qvPlatformRoots.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

namespace twtest {

TempFolder::TempFolder() {
    std::string pattern = (fs::temp_directory_path() / "tarnwick-test-XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw std::runtime_error("mkdtemp failed");
    m_path = pattern;
}

TempFolder::~TempFolder() {
    std::error_code ec;
    // Tests may leave read-only folders behind; give them back write access first.
    for (auto it = fs::recursive_directory_iterator(m_path, fs::directory_options::skip_permission_denied, ec);
         !ec && it != fs::recursive_directory_iterator(); it.increment(ec)) {
        fs::permissions(it->path(), fs::perms::owner_all, fs::perm_options::add, ec);
    }
    fs::remove_all(m_path, ec);
}

std::string TempFolder::join(const std::string& relative) const { return m_path + "/" + relative; }

std::string TempFolder::writeFile(const std::string& relative, const std::string& bytes) const {
    const std::string full = join(relative);
    fs::create_directories(fs::path(full).parent_path());
    std::ofstream out(full, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!out) throw std::runtime_error("cannot write " + full);
    return full;
}

std::string TempFolder::makeFolder(const std::string& relative) const {
    const std::string full = join(relative);
    fs::create_directories(full);
    return full;
}

std::string TempFolder::readFile(const std::string& absolutePath) {
    std::ifstream in(absolutePath, std::ios::binary);
    std::ostringstream ss;
    ss << in.rdbuf();
    return ss.str();
}

ScopedTestRoots::ScopedTestRoots() {
    m_home = m_folder.makeFolder("home");
    m_root = m_folder.makeFolder("root");
    qvPlatform::SetHomeFolderOverride(m_home);
    qvPlatform::SetSystemRootOverride(m_root);
}

ScopedTestRoots::~ScopedTestRoots() {
    qvPlatform::SetHomeFolderOverride("");
    qvPlatform::SetSystemRootOverride("");
}

}  // namespace twtest
