#pragma once
// A path that works on a qvUtf8String: either its own copy, or the caller's
// string, which then changes with every edit. Both separators are understood,
// because presets and sidecars travel between systems; the native one is "/".
// Every search for a separator runs on a copy in which "\" reads as "/".

#include <vector>

#include "String/qvUtf8String.h"

class qvUtf8Path {
public:
    enum Style {
        STYLE_AUTO = 0,     // whatever GetStyle() finds
        STYLE_MIXED = 1,    // neither or both separators
        STYLE_POSIX = 2,    // "/" only
        STYLE_WINDOWS = 3,  // "\" only
    };

    // Bits of the constructors' `flags`, applied in the order listed.
    enum Flags : unsigned {
        FLAG_POSIX = 16,
        FLAG_POSIX_TOO = 32,  // the same as FLAG_POSIX on this platform
        FLAG_NATIVE = 64,
        FLAG_ADD_BACKSLASH = 1,
        FLAG_REMOVE_BACKSLASH = 2,
    };

    // Access(): 1 asks for writing, any other value for reading.
    enum OpenMode { OPEN_READ = 0, OPEN_WRITE = 1 };

    // Works on its own copy of `path`.
    qvUtf8Path(const qvUtf8String& path, unsigned flags = 0, Style style = STYLE_MIXED);
    // Works on the caller's `path` itself, which must outlive the object.
    qvUtf8Path(qvUtf8String& path, unsigned flags = 0, Style style = STYLE_MIXED);
    // A copy of an owning path owns a copy; a copy of a borrowing path borrows
    // the same string.
    qvUtf8Path(const qvUtf8Path& other);
    qvUtf8Path& operator=(const qvUtf8Path& other);
    ~qvUtf8Path() = default;

    qvUtf8String& Str() { return *text; }
    const qvUtf8String& Str() const { return *text; }
    operator qvUtf8String&() { return *text; }
    operator const qvUtf8String&() const { return *text; }

    // ---- pieces -------------------------------------------------------------
    // Up to the last separator, without it and without trailing separators;
    // empty without a separator, and for "/a".
    qvUtf8String Parent() const;
    // What follows the last separator; empty when the path ends in one or has
    // none. Without extension, cut at the last "." unless it opens the name.
    qvUtf8String Filename(bool withExtension = true) const;
    qvUtf8String GetName() const { return Filename(false); }
    qvUtf8String GetFullName() const { return Filename(true); }
    // After the last ".", unless a separator stands behind it.
    qvUtf8String Extension() const;
    qvUtf8String GetExt() const { return Extension(); }
    qvUtf8String GetPath(bool withSeparator = false) const;
    qvUtf8String GetFullPath() const { return *text; }
    // Ends in "/" or "\".
    bool Backslash() const;
    Style GetStyle() const;
    // "\" for STYLE_WINDOWS, "/" for the others; STYLE_AUTO asks GetStyle().
    char GetSlashChar(Style style) const;
    // "\" read as "/", then split at "/": a leading "/" gives an empty first field.
    std::vector<qvUtf8String> Split() const;

    // ---- edits --------------------------------------------------------------
    // Replaces the file name (keeping the extension if asked); false, with
    // nothing changed, when the path has no file name.
    bool SetFilename(const qvUtf8String& name, bool keepExtension = false);
    // GetPath(true) + name + Extension(): the dot is not put back.
    void SetName(const qvUtf8String& name);
    // Cuts the extension's bytes and leaves the dot.
    void SetEmptyExt();
    void AddBackslash(Style style = STYLE_MIXED);
    // All trailing separators; a path of separators only becomes empty.
    void RemoveBackslash();
    void SetPosixStyle();
    void SetNativeStyle();
    void SetWindowsStyle();
    // Appends each field of `relative`, with the style's separator in front
    // when the text does not already end in one.
    qvUtf8Path& Join(const qvUtf8String& relative, Style style = STYLE_MIXED);
    // The same on a copy of `base`; an empty base gets a leading separator.
    static qvUtf8String Join(const qvUtf8String& base, const qvUtf8String& relative, Style style = STYLE_MIXED);

    // ---- the file system ----------------------------------------------------
    bool Exists() const;
    static bool Exists(const qvUtf8String& path);
    static bool Access(const qvUtf8String& path, int mode);
    // False for a path that cannot be examined.
    bool IsFile() const;
    static bool IsFile(const qvUtf8String& path);
    bool IsFolder() const;
    static bool IsFolder(const qvUtf8String& path);
    // The nearest existing ancestor, or empty.
    qvUtf8String FirstExistingParent() const;
    // The path itself if it exists, else FirstExistingParent().
    qvUtf8String FirstExistingPath() const;

    static char GetEnvSlashChar() { return '/'; }
    static char GetPathSeparator() { return '/'; }
    static qvUtf8String GetForbiddenChars() { return qvUtf8String("/:"); }

private:
    void applyFlags(unsigned flags, Style style);

    qvUtf8String own;
    qvUtf8String* text;
};

// `name` without "/" and ":".
qvUtf8String FilenameRemoveForbiddenChars(const qvUtf8String& name);

// Cuts `input` at the last occurrence of `suffix`: right behind it, or, with an
// `extension`, in front of it with "." + extension added. True when `suffix`
// was found; `output` is `input` otherwise. Either way the file name then loses
// its forbidden characters. `flag` has no effect.
bool PurifyPathString(const qvUtf8String& input, qvUtf8String& output, const qvUtf8String& suffix, bool flag,
                      const char* extension);

// chmod 0777 of an existing file; false when it is missing or chmod fails.
bool SetFileInExecutableMode(const qvUtf8String& path);

// A text starting with "~" becomes home + the text from the "~" on, tilde kept.
qvUtf8String ExpandHomeDirectory(const qvUtf8String& path);
