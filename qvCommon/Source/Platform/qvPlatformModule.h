#pragma once
// Which loaded module (executable or shared object) holds a given address: the
// way a bundle finds its own file on disk.

#include <string>

namespace qvPlatform {

// The absolute path of the module that contains `address`. False when the
// address belongs to no module or the module's path is unknown.
bool ModulePathOfAddress(const void* address, std::string& path);

}  // namespace qvPlatform
