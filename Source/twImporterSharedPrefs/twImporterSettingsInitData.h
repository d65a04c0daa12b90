#pragma once
// The settings data of a clip as the importer hands it to the source settings
// effect: the clip's facts, and the path of the clip they belong to.

#include "Manager/twSettingsInitData.h"

#include <cstddef>

constexpr size_t TW_IMPORTER_SETTINGS_FILEPATH_SIZE = 1024;

class twImporterSettingsInitData : public twSettingsInitData {
public:
    twImporterSettingsInitData();
    ~twImporterSettingsInitData() override;

    // UTF-8, NUL-padded; a path that fills the array keeps no terminator.
    char filepath[TW_IMPORTER_SETTINGS_FILEPATH_SIZE];
};
