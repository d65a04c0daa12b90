#include "FileSystem/qvUtf8Path.h"

#include <sys/stat.h>
#include <unistd.h>

#include "Platform/qvPlatformFiles.h"
#include "Platform/qvPlatformRoots.h"

// Separators, dots and the forbidden characters are ASCII, and ASCII bytes
// never occur inside a multi-byte UTF-8 sequence: byte positions give the same
// answers as character positions for valid text, and keep working for file
// names that the system hands out in another encoding.

namespace {

bool isSeparator(char c) { return c == '/' || c == '\\'; }

std::string posixCopy(const std::string& text) {
    std::string copy = text;
    for (char& c : copy) {
        if (c == '\\') c = '/';
    }
    return copy;
}

// Index of the first byte of the file name: behind the last separator, or npos
// when there is no separator at all.
size_t fileNameStart(const std::string& text) {
    const size_t slash = posixCopy(text).rfind('/');
    return slash == std::string::npos ? std::string::npos : slash + 1;
}

// Byte index of the dot that starts the extension of the name at `nameStart`,
// or npos when the name has none or the dot opens the name.
size_t extensionDot(const std::string& text, size_t nameStart) {
    const size_t dot = text.rfind('.');
    if (dot == std::string::npos || dot <= nameStart) return std::string::npos;
    return dot;
}

std::vector<qvUtf8String> splitAtSlash(const std::string& text) {
    std::vector<qvUtf8String> fields;
    if (text.empty()) return fields;
    size_t start = 0;
    for (;;) {
        const size_t slash = text.find('/', start);
        if (slash == std::string::npos) break;
        fields.emplace_back(text.substr(start, slash - start));
        start = slash + 1;
    }
    fields.emplace_back(text.substr(start));
    return fields;
}

}  // namespace

qvUtf8Path::qvUtf8Path(const qvUtf8String& path, unsigned flags, Style style) : own(path), text(&own) {
    applyFlags(flags, style);
}

qvUtf8Path::qvUtf8Path(qvUtf8String& path, unsigned flags, Style style) : text(&path) { applyFlags(flags, style); }

qvUtf8Path::qvUtf8Path(const qvUtf8Path& other) : own(other.own), text(other.text == &other.own ? &own : other.text) {}

qvUtf8Path& qvUtf8Path::operator=(const qvUtf8Path& other) {
    if (this == &other) return *this;
    own = other.own;
    text = other.text == &other.own ? &own : other.text;
    return *this;
}

void qvUtf8Path::applyFlags(unsigned flags, Style style) {
    if (flags & FLAG_POSIX) SetPosixStyle();
    if (flags & FLAG_POSIX_TOO) SetPosixStyle();
    if (flags & FLAG_NATIVE) SetNativeStyle();
    if (flags & FLAG_ADD_BACKSLASH) AddBackslash(style);
    if (flags & FLAG_REMOVE_BACKSLASH) RemoveBackslash();
}

qvUtf8String qvUtf8Path::Parent() const {
    std::string copy = posixCopy(text->Str());
    while (!copy.empty() && copy.back() == '/') copy.pop_back();
    const size_t slash = copy.rfind('/');
    if (slash == std::string::npos) return qvUtf8String();
    return qvUtf8String(text->Str().substr(0, slash));
}

qvUtf8String qvUtf8Path::Filename(bool withExtension) const {
    const std::string& s = text->Str();
    if (Backslash()) return qvUtf8String();
    const size_t start = fileNameStart(s);
    if (start == std::string::npos) return qvUtf8String();
    if (withExtension) return qvUtf8String(s.substr(start));
    const size_t dot = extensionDot(s, start);
    return qvUtf8String(dot == std::string::npos ? s.substr(start) : s.substr(start, dot - start));
}

qvUtf8String qvUtf8Path::Extension() const {
    const std::string& s = text->Str();
    const size_t dot = s.rfind('.');
    if (dot == std::string::npos) return qvUtf8String();
    const size_t slash = posixCopy(s).rfind('/');
    if (slash != std::string::npos && slash > dot) return qvUtf8String();
    return qvUtf8String(s.substr(dot + 1));
}

qvUtf8String qvUtf8Path::GetPath(bool withSeparator) const {
    qvUtf8String path = Parent();
    if (withSeparator) path += '/';
    return path;
}

bool qvUtf8Path::Backslash() const {
    const std::string& s = text->Str();
    return !s.empty() && isSeparator(s.back());
}

qvUtf8Path::Style qvUtf8Path::GetStyle() const {
    const std::string& s = text->Str();
    const bool slash = s.find('/') != std::string::npos;
    const bool backslash = s.find('\\') != std::string::npos;
    if (slash && !backslash) return STYLE_POSIX;
    if (backslash && !slash) return STYLE_WINDOWS;
    return STYLE_MIXED;
}

char qvUtf8Path::GetSlashChar(Style style) const {
    if (style == STYLE_AUTO) style = GetStyle();
    return style == STYLE_WINDOWS ? '\\' : '/';
}

std::vector<qvUtf8String> qvUtf8Path::Split() const { return splitAtSlash(posixCopy(text->Str())); }

bool qvUtf8Path::SetFilename(const qvUtf8String& name, bool keepExtension) {
    if (Filename(true).Str().empty()) return false;
    const std::string s = text->Str();
    const size_t start = fileNameStart(s);
    std::string result = s.substr(0, start) + name.Str();
    if (keepExtension) {
        const size_t dot = extensionDot(s, start);
        if (dot != std::string::npos) result += s.substr(dot);
    }
    *text = qvUtf8String(result);
    return true;
}

void qvUtf8Path::SetName(const qvUtf8String& name) {
    const qvUtf8String extension = Extension();
    *text = GetPath(true) + name + extension;
}

void qvUtf8Path::SetEmptyExt() {
    const size_t cut = Extension().Size();
    std::string s = text->Str();
    s.resize(s.size() - cut);
    *text = qvUtf8String(s);
}

void qvUtf8Path::AddBackslash(Style style) {
    if (Backslash()) return;
    *text += GetSlashChar(style);
}

void qvUtf8Path::RemoveBackslash() {
    std::string s = text->Str();
    while (!s.empty() && isSeparator(s.back())) s.pop_back();
    if (s.size() != text->Size()) *text = qvUtf8String(s);
}

void qvUtf8Path::SetPosixStyle() {
    if (text->Str().find('\\') != std::string::npos) *text = qvUtf8String(posixCopy(text->Str()));
}

void qvUtf8Path::SetNativeStyle() { SetPosixStyle(); }

void qvUtf8Path::SetWindowsStyle() {
    std::string s = text->Str();
    for (char& c : s) {
        if (c == '/') c = '\\';
    }
    *text = qvUtf8String(s);
}

qvUtf8Path& qvUtf8Path::Join(const qvUtf8String& relative, Style style) {
    for (const qvUtf8String& field : splitAtSlash(posixCopy(relative.Str()))) {
        if (!Backslash()) *text += GetSlashChar(style);
        *text += field;
    }
    return *this;
}

qvUtf8String qvUtf8Path::Join(const qvUtf8String& base, const qvUtf8String& relative, Style style) {
    qvUtf8Path path(base);
    path.Join(relative, style);
    return path.Str();
}

bool qvUtf8Path::Exists() const { return Exists(*text); }

bool qvUtf8Path::Exists(const qvUtf8String& path) { return access(path.c_str(), F_OK) == 0; }

bool qvUtf8Path::Access(const qvUtf8String& path, int mode) {
    return access(path.c_str(), mode == OPEN_WRITE ? W_OK : R_OK) == 0;
}

bool qvUtf8Path::IsFile() const { return IsFile(*text); }

bool qvUtf8Path::IsFile(const qvUtf8String& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

bool qvUtf8Path::IsFolder() const { return IsFolder(*text); }

bool qvUtf8Path::IsFolder(const qvUtf8String& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

qvUtf8String qvUtf8Path::FirstExistingParent() const {
    qvUtf8String parent = Parent();
    while (!parent.Str().empty()) {
        if (Exists(parent)) return parent;
        parent = qvUtf8Path(parent).Parent();
    }
    return qvUtf8String();
}

qvUtf8String qvUtf8Path::FirstExistingPath() const { return Exists() ? *text : FirstExistingParent(); }

qvUtf8String FilenameRemoveForbiddenChars(const qvUtf8String& name) {
    std::string clean;
    clean.reserve(name.Size());
    for (char c : name.Str()) {
        if (c != '/' && c != ':') clean += c;
    }
    return qvUtf8String(clean);
}

bool PurifyPathString(const qvUtf8String& input, qvUtf8String& output, const qvUtf8String& suffix, bool,
                      const char* extension) {
    const std::string& s = input.Str();
    const size_t at = s.rfind(suffix.Str());
    const bool found = at != std::string::npos;
    if (!found) {
        output = input;
    } else if (extension) {
        output = qvUtf8String(s.substr(0, at) + "." + extension);
    } else {
        output = qvUtf8String(s.substr(0, at + suffix.Size()));
    }
    qvUtf8Path path(output);
    const qvUtf8String name = path.GetName();
    if (!name.Str().empty()) path.SetFilename(FilenameRemoveForbiddenChars(name), true);
    return found;
}

bool SetFileInExecutableMode(const qvUtf8String& path) {
    if (!qvUtf8Path::Exists(path)) return false;
    return chmod(path.c_str(), 0777) == 0;
}

qvUtf8String ExpandHomeDirectory(const qvUtf8String& path) {
    if (path.Str().empty() || path.Str()[0] != '~') return path;
    std::string home = qvPlatform::HomeFolderOverride();
    if (home.empty() && !qvPlatform::PasswordHomeFolder(home)) return path;
    // AfterFirst keeps the tilde itself: "~/x" becomes home + "~/x".
    return qvUtf8String(home + path.Str());
}
