#include "_qvBRAW_Importer/Handlers.h"

// Seams: opening, quieting and closing files land with the clip registry.
// Until then no file opens, so there is nothing to quiet, close, analyse or
// list, and the answers are those for a file that is not there.
int SDKOpenFile8(imStdParms*, void**, imFileOpenRec8*) { return imBadFile; }
void SDKQuietFile(imStdParms*, void**, void*) {}
void SDKCloseFile(imStdParms*, void**, void*) {}
int SDKAnalysis(imStdParms*, void*, imAnalysisRec*) { return malUnknownError; }
int SDKGetTimeInfo8(imStdParms*, void*, imTimeInfoRec8*) { return imNoErr; }
int SDKQueryInputFileList(imStdParms*, imQueryInputFileListRec*) { return imUnsupported; }
int GetSubTypeNames(imStdParms*, int, imSubTypeDescriptionRec**) { return imNoErr; }
