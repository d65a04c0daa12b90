#pragma once
// The source settings effect's side of imPerformSourceSettingsCommand for
// tarnwick-host: the effect's record laid out by its wire offsets, the
// importer's answer taken back, and what a settings panel shows of it.

#include "twHostSession.h"
#include "twSimFile.h"

#include "twImporterSharedPrefs/twImporterSettingsInitData.h"

#include <cstdint>
#include <iosfwd>
#include <string>

// The commands the effect can give.
enum class twHostPanelCommand { Fill, ReloadOptions, ReloadSidecar };

struct twHostPanelAnswer {
    csSDK_int32 result = 0;
    // The importer put its own record in the effect's pointer.
    bool answered = false;
    // The importer set its failure flag in the effect's record.
    bool failed = false;
    // The answer, or the effect's record when there is none.
    twImporterSettingsInitData record;
};

// Sends one command about `file`, as the effect does, and copies out the
// record the effect's pointer leads to afterwards.
twHostPanelAnswer twHostSendPanelCommand(twSimFile& file, twHostPanelCommand command);

// What a panel shows, for a person.
void twHostPrintPanel(std::ostream& out, const twImporterSettingsInitData& data);
// The JSON the panels read.
std::string twHostPanelJson(twImporterSettingsInitData& data);
