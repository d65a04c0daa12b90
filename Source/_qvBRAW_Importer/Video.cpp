#include "_qvBRAW_Importer/Handlers.h"

// Seams: frames land with the decoder core. Without a clip there is no size to
// prefer and no frame to give, and without prefs no descriptor to choose.
int SDKGetPreferredFrameSize(imStdParms*, imPreferredFrameSizeRec*) { return imOtherErr; }
int SDKGetSourceVideo(imStdParms*, void*, imSourceVideoRec*) { return malUnknownError; }
int SelectClipFrameDescriptor(imStdParms*, void*, imClipFrameDescriptorRec*) { return imInvalidPreferences; }
