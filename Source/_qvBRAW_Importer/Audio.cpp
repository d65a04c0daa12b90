#include "_qvBRAW_Importer/Handlers.h"

// Seam: audio lands with the clip registry; without a clip a read fails.
int SDKImportAudio7(imStdParms*, void*, imImportAudioRec7*) { return 1; }
