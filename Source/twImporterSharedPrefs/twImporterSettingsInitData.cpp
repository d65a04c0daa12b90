#include "twImporterSharedPrefs/twImporterSettingsInitData.h"

#include <cstring>

twImporterSettingsInitData::twImporterSettingsInitData()
    : twSettingsInitData(),
      importerFailed(false),
      reserved{},
      filepathLength(0),
      filepath{},
      reloadOptionsCommand(0),
      reloadSidecarCommand(0),
      importerAnswered(0),
      adobeTimecodeSet(0),
      adobeTimecode(TW_ADOBE_TIMECODE_UNKNOWN) {}

twImporterSettingsInitData::twImporterSettingsInitData(const twSettingsInitData& data)
    : twImporterSettingsInitData() {
    static_cast<twSettingsInitData&>(*this) = data;
}

twImporterSettingsInitData::~twImporterSettingsInitData() = default;

void twImporterSettingsInitData::fillInfosIntoJSONObject(QV_JSON& json, rapidjson::Value& object) {
    json.addStringToObject(object, "filepath", qvUtf8String::FromFixedUtf8CharArray(filepath));
    twSettingsInitData::fillInfosIntoJSONObject(json, object);
}

void twImporterSettingsInitData::setFilepath(const qvUtf8String& path) {
    twCopyFixedText(filepath, sizeof(filepath), path.c_str());
    filepathLength = ::strnlen(filepath, sizeof(filepath));
}
