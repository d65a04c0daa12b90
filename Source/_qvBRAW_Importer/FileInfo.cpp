#include "_qvBRAW_Importer/Handlers.h"

// Seam: file information lands with the clip registry; until then no clip can
// be read, which the host is told as for an unreadable file.
int SDKGetInfo8(imStdParms*, imFileAccessRec8*, imFileInfoRec8*) { return imOtherErr; }
