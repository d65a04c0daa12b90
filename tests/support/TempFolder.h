#pragma once
// A fresh folder under the system's temporary folder, removed with all its
// content when the object goes away. Tests build their file trees in it.

#include <string>

namespace twtest {

class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::string& path() const { return m_path; }
    // path() + "/" + relative
    std::string join(const std::string& relative) const;

    // Writes bytes to path() + "/" + relative, creating the folders on the way.
    std::string writeFile(const std::string& relative, const std::string& bytes) const;
    // Creates path() + "/" + relative and its parents.
    std::string makeFolder(const std::string& relative) const;
    static std::string readFile(const std::string& absolutePath);

private:
    std::string m_path;
};

// Puts the platform layer's home folder and system root inside a TempFolder for
// the lifetime of the object, so that no test reaches the real ones.
class ScopedTestRoots {
public:
    ScopedTestRoots();
    ~ScopedTestRoots();
    const std::string& home() const { return m_home; }
    const std::string& systemRoot() const { return m_root; }
    const TempFolder& folder() const { return m_folder; }

private:
    TempFolder m_folder;
    std::string m_home;
    std::string m_root;
};

}  // namespace twtest
