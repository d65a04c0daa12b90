#include "_qvBRAW_Importer/Handlers.h"

// Seam: the prefs blob and the settings popup land later; the selector's
// result does not depend on this handler.
void SDKGetPrefs8(imStdParms*, imFileAccessRec8*, imGetPrefsRec*) {}
