#include "Environment/package.h"

namespace Environment {

Package::Package(const std::vector<std::shared_ptr<Variable>>& variables) {
    for (const std::shared_ptr<Variable>& variable : variables) {
        if (!variable) continue;
        m_variables.push_back(variable);
        // posix_spawn takes `char* const*` but never writes through it.
        m_pointers.push_back(const_cast<char*>(variable->Str()));
        m_wideBlock += static_cast<std::wstring>(*variable);
        m_wideBlock += L'\0';
    }
    m_pointers.push_back(nullptr);
}

char* const* Package::Ptr(const std::shared_ptr<Package>& package) {
    return package ? package->m_pointers.data() : nullptr;
}

}  // namespace Environment
