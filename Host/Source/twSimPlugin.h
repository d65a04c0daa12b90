#pragma once
// A plug-in module loaded the way a host loads it: dlopen, then the exported
// C symbol xImportEntry. The optional twSetTestRoots hook lets a test host put
// temporary folders in front of the plug-in's home folder and system root.

#include "MediaCoreImporter.h"

#include <memory>
#include <string>

class twSimPlugin {
public:
    // Null, with the reason in `error`, when the module or its entry is missing.
    static std::unique_ptr<twSimPlugin> Load(const std::string& path, std::string& error);
    ~twSimPlugin();
    twSimPlugin(const twSimPlugin&) = delete;
    twSimPlugin& operator=(const twSimPlugin&) = delete;

    const std::string& path() const { return m_path; }
    ImportEntryFunc entry() const { return m_entry; }
    void* symbol(const char* name) const;

    // Calls twSetTestRoots(home, systemRoot) when the plug-in exports it.
    bool setTestRoots(const std::string& home, const std::string& systemRoot) const;
    bool hasTestRootsHook() const;

    // Real hosts keep a plug-in loaded for the life of the process, and the
    // plug-in's own threads may outlive its shutdown; unloading is opt-in.
    void setUnloadOnDestroy(bool unload) { m_unload = unload; }

private:
    twSimPlugin() = default;

    std::string m_path;
    void* m_module = nullptr;
    ImportEntryFunc m_entry = nullptr;
    bool m_unload = false;
};
