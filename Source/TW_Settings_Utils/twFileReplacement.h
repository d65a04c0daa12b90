#pragma once
// Replacing a user's settings file without ever leaving it half written: the
// new content goes into a temporary file beside it, which is then renamed over
// it. A reader sees the old file or the new one, never a mix; a full disk, a
// read-only folder or a crash in the middle leaves the old file as it was.
//
//     twFileReplacement replacement(path, "sidecar");
//     write everything to replacement.tempPath() ...
//     QvResult result = replacement.commit();
//
// A replacement that is not committed removes its temporary file.

#include "String/qvUtf8String.h"
#include "Utils/qvResult.h"

#include <string>

class twFileReplacement {
public:
    // `tag` goes into the temporary file's name, so that a leftover after a
    // crash tells which writer made it.
    twFileReplacement(const qvUtf8String& path, const qvUtf8String& tag);
    ~twFileReplacement();
    twFileReplacement(const twFileReplacement&) = delete;
    twFileReplacement& operator=(const twFileReplacement&) = delete;

    // Beside the file that is replaced (a link is followed to its target), so
    // that the rename stays on one volume.
    const qvUtf8String& tempPath() const { return m_tempPath; }
    // The file that will be replaced.
    const qvUtf8String& targetPath() const { return m_targetPath; }

    // Renames the temporary file over the target, with the target's permission
    // bits when it existed. A target the user can't write is refused, as a
    // write into it would be. On failure the target is untouched and the
    // temporary file is gone.
    QvResult commit();

    // Writes `bytes` to the temporary file and commits.
    QvResult replaceWith(const std::string& bytes);

private:
    qvUtf8String m_targetPath;
    qvUtf8String m_tempPath;
    bool m_committed = false;
};
