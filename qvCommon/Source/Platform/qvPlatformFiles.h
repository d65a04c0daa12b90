#pragma once
// Process and desktop services that the file-system code needs and that each
// operating system offers in its own way: where the running executable lies,
// where a loaded shared object lies, and handing a file or a web address to the
// desktop's default application.

#include <cstddef>
#include <string>

namespace qvPlatform {

// Writes the running executable's absolute path, terminated, into `buffer`.
// False when the path cannot be read or does not fit (terminator included).
bool ExecutablePath(char* buffer, size_t bufferSize);

// Tests cannot move the test program into a fake install: they name the
// executable path to report instead. Empty text restores the real one.
void SetExecutablePathOverride(const std::string& path);

enum class LibraryLookup {
    Found,      // `buffer` holds the path
    NotLoaded,  // no loaded object answers to that name
    NoPath      // the object is loaded but its path is unknown or does not fit
};

// Finds a shared object of this process by name and writes its path into
// `buffer`. A name matches an object whose file name is the name itself or the
// name followed by ".so" and anything after it ("libc" finds "libc.so.6"). The
// product's bundle identifiers are known as well and stand for their shared
// object ("com.qervane.tarnwick.importer" is "Tarnwick_Importer.so").
LibraryLookup LoadedLibraryPath(const std::string& name, char* buffer, size_t bufferSize);

// The home folder named by the password entry of the process's user. False
// when there is no entry; `folder` is then empty, and may be empty as well
// when the entry names no folder.
bool PasswordHomeFolder(std::string& folder);

// Hands a path or an address to the desktop ("xdg-open"), without waiting for
// the application it starts.
void OpenWithDesktop(const std::string& target);

// Replaces the desktop launcher, so that tests see what would be opened
// without starting anything. Null restores "xdg-open".
using DesktopLauncher = void (*)(const std::string& target);
void SetDesktopLauncher(DesktopLauncher launcher);

}  // namespace qvPlatform
