#include "twImporterSharedPrefs/twImporterSettingsInitData.h"

twImporterSettingsInitData::twImporterSettingsInitData() : twSettingsInitData(), filepath{} {}

twImporterSettingsInitData::~twImporterSettingsInitData() = default;
