#include "Manager/twSettingsInitData.h"

twSettingsInitData::twSettingsInitData()
    : attributes(),
      ready(false),
      colorScienceList{},
      colorScienceCount(0),
      gamutList{},
      gamutCount(0),
      gammaList{},
      gammaCount(0),
      isoList{},
      isoCount(0),
      isoIsReadOnly(false),
      gammaControlsPerPreset{},
      colorTempMax(0),
      colorTempMin(0),
      colorTempIsReadOnly(false),
      tintMax(0),
      tintMin(0),
      tintIsReadOnly(false),
      exposureMax(0.0f),
      exposureMin(0.0f),
      toneCurveMax{},
      toneCurveMin{},
      highlightRecoveryIsReadOnly(false),
      embeddedLutAvailable(false),
      sidecarLutAvailable(false),
      timecodeFrames(0),
      timecodeIsDropFrame(false),
      hasSidecar(false),
      multiCardFiles(0) {}

twSettingsInitData::~twSettingsInitData() = default;
