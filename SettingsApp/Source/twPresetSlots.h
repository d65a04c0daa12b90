#pragma once
// The 20 preset slots of the "TW_Preset" folder as a list a window edits:
// creating, renaming and deleting change the list in memory, and nothing
// reaches the folder before apply(), so a window that is cancelled leaves the
// presets as they were.

#include "TW_Settings_Utils/TW_Presets.h"

#include <QString>
#include <QStringList>

#include <array>

class twPresetSlots {
public:
    static constexpr int kCount = 20;

    // Every slot from its file; a slot without a readable file is free.
    void load();
    // "#N - name" of each slot, as the host's panels show them.
    QStringList displayedNames() const;
    bool isUsed(int slot) const;
    const TW_Preset& preset(int slot) const { return m_slots[static_cast<size_t>(slot)].preset; }
    // The used slots, in order.
    std::vector<int> usedSlots() const;

    // A new named preset in the first free slot, holding `clip`, `frame` and
    // `wb` with every setting active. The slot, or -1 when all are used or the
    // name is empty.
    int create(const QString& name, const twClipAttributes& clip, const twFrameAttributes& frame, WB_Preset wb);
    bool rename(int slot, const QString& name);
    bool remove(int slot);
    bool hasChanges() const;
    // Writes the changed slots and removes the deleted files. An empty text,
    // or the first failure in words.
    QString apply();

private:
    struct Slot {
        TW_Preset preset;
        bool used = false;
        bool changed = false;
        bool removed = false;
    };
    std::array<Slot, kCount> m_slots;
};
