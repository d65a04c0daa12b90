#include "twSimPlugin.h"

#include <dlfcn.h>

namespace {
typedef void (*TestRootsFunc)(const char* home, const char* systemRoot);
}

std::unique_ptr<twSimPlugin> twSimPlugin::Load(const std::string& path, std::string& error) {
    dlerror();
    void* module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!module) {
        const char* why = dlerror();
        error = why ? std::string("cannot load the plug-in: ") + why : "cannot load " + path;
        return nullptr;
    }
    void* entry = dlsym(module, "xImportEntry");
    if (!entry) {
        error = path + " does not export xImportEntry";
        dlclose(module);
        return nullptr;
    }
    std::unique_ptr<twSimPlugin> plugin(new twSimPlugin());
    plugin->m_path = path;
    plugin->m_module = module;
    plugin->m_entry = reinterpret_cast<ImportEntryFunc>(entry);
    return plugin;
}

twSimPlugin::~twSimPlugin() {
    if (m_unload && m_module) dlclose(m_module);
}

void* twSimPlugin::symbol(const char* name) const { return m_module ? dlsym(m_module, name) : nullptr; }

bool twSimPlugin::hasTestRootsHook() const { return symbol("twSetTestRoots") != nullptr; }

bool twSimPlugin::setTestRoots(const std::string& home, const std::string& systemRoot) const {
    auto hook = reinterpret_cast<TestRootsFunc>(symbol("twSetTestRoots"));
    if (!hook) return false;
    hook(home.c_str(), systemRoot.c_str());
    return true;
}
