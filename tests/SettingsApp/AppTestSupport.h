#pragma once
// What the settings application's tests share: test roots with the decoder
// library installed where the product looks for it, reference clips, and panel
// data as the first-frame probe fills it.

#include "TempFolder.h"

#include "Manager/twSettingsInitData.h"

#include "Format/RefClipModel.h"

#include <QString>

#include <functional>
#include <memory>
#include <string>

namespace twtest {

// Temporary home and system root, the product's identity and options read
// from there, and the decoder library built in this tree installed in the
// product's fixed folder below the root.
class AppTestRoots {
public:
    AppTestRoots();
    const ScopedTestRoots& roots() const { return m_roots; }
    // A 640x360 reference clip of 6 frames at folder/name, changed by `change`.
    QString writeClip(const std::string& name,
                      const std::function<void(twref::RefClipModel&)>& change = nullptr) const;
    QString path(const std::string& relative) const { return QString::fromStdString(m_roots.folder().join(relative)); }
    QString iniPath() const;

private:
    ScopedTestRoots m_roots;
};

// Panel data of a clip that offers less than the vocabulary: ISO 400, 1600 and
// 3200 (1600 current), colour temperature 2500 to 10000 K, tint -50 to 50,
// exposure -3 to 3, colour science 5 only, three gammas with the curve of the
// first known, no embedded LUT, a sidecar LUT.
twSettingsInitData narrowClipData();

}  // namespace twtest
