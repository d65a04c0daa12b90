#include "_qvBRAW_Importer/Handlers.h"

// Seam: the source settings exchange lands later; until then every command is
// refused as one without usable data.
int SDKPerformSourceSettingsCommand(imStdParms*, imFileAccessRec8*, imSourceSettingsCommandRec*) { return imOtherErr; }
