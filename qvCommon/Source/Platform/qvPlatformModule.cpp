#include "Platform/qvPlatformModule.h"

#include <climits>
#include <cstdlib>
#include <dlfcn.h>

namespace qvPlatform {

bool ModulePathOfAddress(const void* address, std::string& path) {
    Dl_info info{};
    if (!address || dladdr(address, &info) == 0 || !info.dli_fname || !info.dli_fname[0]) return false;
    path = info.dli_fname;
    // The main program may be reported by the name it was started with.
    if (path.front() != '/') {
        char resolved[4096];
        if (!realpath(info.dli_fname, resolved)) return false;
        path = resolved;
    }
    return true;
}

}  // namespace qvPlatform
