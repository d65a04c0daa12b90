#pragma once
// A complete environment for a child process: the variables it was built from,
// the null-terminated pointer array that posix_spawn takes, and a wide block
// (every text with its terminator, end to end) for platforms that want one.

#include <memory>
#include <string>
#include <vector>

#include "Environment/variable.h"

namespace Environment {

class Package {
public:
    explicit Package(const std::vector<std::shared_ptr<Variable>>& variables);

    Package(const Package&) = delete;
    Package& operator=(const Package&) = delete;

    // The pointer array of `package`, or null for an empty pointer (which
    // means: the parent's own environment).
    static char* const* Ptr(const std::shared_ptr<Package>& package);

    const std::vector<std::shared_ptr<Variable>>& Variables() const { return m_variables; }
    const std::wstring& WideBlock() const { return m_wideBlock; }

private:
    std::vector<std::shared_ptr<Variable>> m_variables;
    std::vector<char*> m_pointers;
    std::wstring m_wideBlock;
};

}  // namespace Environment
