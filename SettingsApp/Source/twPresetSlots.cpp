#include "twPresetSlots.h"

#include "FileSystem/qvFileSystem.h"
#include "Manager/twSettingsVocabulary.h"

void twPresetSlots::load() {
    for (int i = 0; i < kCount; ++i) {
        Slot& slot = m_slots[static_cast<size_t>(i)];
        slot = Slot();
        if (TW_Preset::fromSlot(i, slot.preset).hasError) continue;
        if (!qvFileSystem::doesFilepathExist(slot.preset.m_filePath)) continue;
        slot.used = !slot.preset.load().hasError;
    }
}

QStringList twPresetSlots::displayedNames() const {
    QStringList names;
    for (const Slot& slot : m_slots) names << QString::fromStdString(slot.preset.getDisplayedName().Str());
    return names;
}

bool twPresetSlots::isUsed(int slot) const { return slot >= 0 && slot < kCount && m_slots[static_cast<size_t>(slot)].used; }

std::vector<int> twPresetSlots::usedSlots() const {
    std::vector<int> used;
    for (int i = 0; i < kCount; ++i) {
        if (isUsed(i)) used.push_back(i);
    }
    return used;
}

int twPresetSlots::create(const QString& name, const twClipAttributes& clip, const twFrameAttributes& frame,
                          WB_Preset wb) {
    if (name.trimmed().isEmpty()) return -1;
    for (int i = 0; i < kCount; ++i) {
        Slot& slot = m_slots[static_cast<size_t>(i)];
        if (slot.used) continue;
        const qvUtf8String path = slot.preset.m_filePath;
        slot.preset = TW_Preset();
        slot.preset.m_index = i;
        slot.preset.m_filePath = path;
        slot.preset.setName(qvUtf8String(name.trimmed().toStdString()));
        slot.preset.setValues(clip, frame, wb, std::vector<bool>(BRAW_SETTINGS_COUNT, true));
        slot.used = true;
        slot.changed = true;
        slot.removed = false;
        return i;
    }
    return -1;
}

bool twPresetSlots::rename(int slot, const QString& name) {
    if (!isUsed(slot) || name.trimmed().isEmpty()) return false;
    Slot& entry = m_slots[static_cast<size_t>(slot)];
    entry.preset.setName(qvUtf8String(name.trimmed().toStdString()));
    entry.changed = true;
    return true;
}

bool twPresetSlots::remove(int slot) {
    if (!isUsed(slot)) return false;
    Slot& entry = m_slots[static_cast<size_t>(slot)];
    const qvUtf8String path = entry.preset.m_filePath;
    entry.preset = TW_Preset();
    entry.preset.m_index = slot;
    entry.preset.m_filePath = path;
    entry.used = false;
    entry.changed = false;
    entry.removed = true;
    return true;
}

bool twPresetSlots::hasChanges() const {
    for (const Slot& slot : m_slots) {
        if (slot.changed || slot.removed) return true;
    }
    return false;
}

QString twPresetSlots::apply() {
    for (Slot& slot : m_slots) {
        if (slot.removed) {
            const QvResult removed = qvFileSystem::removeFileIfExists(slot.preset.m_filePath);
            if (removed.hasError) return QString::fromStdString(removed.toString().Str());
            slot.removed = false;
        }
        if (slot.changed) {
            const QvResult saved = slot.preset.save();
            if (saved.hasError) return QString::fromStdString(saved.toString().Str());
            slot.changed = false;
        }
    }
    return QString();
}
