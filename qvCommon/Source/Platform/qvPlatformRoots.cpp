#include "Platform/qvPlatformRoots.h"

namespace qvPlatform {
namespace {
std::string& homeOverride() {
    static std::string s_home;
    return s_home;
}
std::string& systemRootOverride() {
    static std::string s_root;
    return s_root;
}
}  // namespace

void SetHomeFolderOverride(const std::string& homeFolder) { homeOverride() = homeFolder; }

void SetSystemRootOverride(const std::string& systemRoot) {
    std::string root = systemRoot;
    while (root.size() > 1 && root.back() == '/') root.pop_back();
    systemRootOverride() = root;
}

const std::string& HomeFolderOverride() { return homeOverride(); }

std::string SystemPath(const std::string& absolutePath) {
    const std::string& root = systemRootOverride();
    if (root.empty() || root == "/") return absolutePath;
    return root + absolutePath;
}

}  // namespace qvPlatform
