#include "Common/twDeployment.h"

// Every value comes from the build; a build that forgets one must not compile.
#ifndef TW_BUG_REPORT_URL
#error "TW_BUG_REPORT_URL must be defined by the build"
#endif

namespace twDeployment {

const char* bugReportUrl() { return TW_BUG_REPORT_URL; }
const char* downloadUrl() { return TW_DOWNLOAD_URL; }
const char* supportEmail() { return TW_SUPPORT_EMAIL; }
const char* productPageUrl() { return TW_PRODUCT_PAGE_URL; }
const char* userGuideUrl() { return TW_USER_GUIDE_URL; }
const char* contactUrl() { return TW_CONTACT_URL; }
const char* changelogUrl() { return TW_CHANGELOG_URL; }
const char* websiteUrl() { return TW_WEBSITE_URL; }
const char* timecodeHelpUrl() { return TW_TIMECODE_HELP_URL; }

}  // namespace twDeployment
