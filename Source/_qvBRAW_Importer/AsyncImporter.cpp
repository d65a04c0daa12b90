#include "_qvBRAW_Importer/Handlers.h"

// Seam: the asynchronous reader lands with the decoder core; until then the
// host is told it has none and asks for frames through imGetSourceVideo.
int SDKCreateAsyncImporter(imStdParms*, imAsyncImporterCreationRec*) { return imUnsupported; }
