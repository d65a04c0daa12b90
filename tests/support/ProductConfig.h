#pragma once
// Fills the product configuration (g_config) as the plug-in does at start-up,
// for tests of code that derives folder and file names from it.

namespace twtest {

void UseProductConfig();

}  // namespace twtest
