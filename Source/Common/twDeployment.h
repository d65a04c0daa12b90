#pragma once
// Addresses that belong to the deployment rather than to the code: the maker's
// pages and support address, fixed at build time (see Source/CMakeLists.txt).

namespace twDeployment {

const char* bugReportUrl();
const char* downloadUrl();
const char* supportEmail();
const char* productPageUrl();
const char* userGuideUrl();
const char* contactUrl();
const char* changelogUrl();
const char* websiteUrl();
const char* timecodeHelpUrl();

}  // namespace twDeployment
