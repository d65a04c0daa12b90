#pragma once
// The selector handlers of xImportEntry, by the selector they answer. The
// entry owns their log lines and results; each returns what its selector
// gives the host, or nothing where the entry answers on its own.

#include "MediaCoreSDK.h"

// Life cycle and catalogue (Entry.cpp, Init.cpp, Catalogue.cpp).
void SDKInit(imStdParms* stdParms, imImportInfoRec* importInfo);
void SDKShutdown(imStdParms* stdParms);
int SDKGetIndFormat(imStdParms* stdParms, int index, imIndFormatRec* formatRec);
int SDKGetIndPixelFormat(imStdParms* stdParms, int index, imIndPixelFormatRec* pixelFormatRec);
int GetIndColorSpace(imStdParms* stdParms, int index, ColorSpaceRec* colorSpaceRec);

// File information (FileInfo.cpp).
int SDKGetInfo8(imStdParms* stdParms, imFileAccessRec8* fileAccess, imFileInfoRec8* fileInfo);

// File open, quiet and close (FileOpen.cpp).
int SDKOpenFile8(imStdParms* stdParms, void** fileRef, imFileOpenRec8* fileOpen);
void SDKQuietFile(imStdParms* stdParms, void** fileRef, void* privateData);
void SDKCloseFile(imStdParms* stdParms, void** fileRef, void* privateData);
int SDKAnalysis(imStdParms* stdParms, void* fileRef, imAnalysisRec* analysis);
int SDKGetTimeInfo8(imStdParms* stdParms, void* fileRef, imTimeInfoRec8* timeInfo);
int SDKQueryInputFileList(imStdParms* stdParms, imQueryInputFileListRec* fileList);
int GetSubTypeNames(imStdParms* stdParms, int fileType, imSubTypeDescriptionRec** subTypes);

// Importer preferences (Prefs.cpp).
void SDKGetPrefs8(imStdParms* stdParms, imFileAccessRec8* fileAccess, imGetPrefsRec* prefsRec);

// Source settings commands (SourceSettings.cpp).
int SDKPerformSourceSettingsCommand(imStdParms* stdParms, imFileAccessRec8* fileAccess,
                                    imSourceSettingsCommandRec* command);

// Audio (Audio.cpp).
int SDKImportAudio7(imStdParms* stdParms, void* fileRef, imImportAudioRec7* audio);

// Source video and frame selection (Video.cpp).
int SDKGetPreferredFrameSize(imStdParms* stdParms, imPreferredFrameSizeRec* frameSize);
int SDKGetSourceVideo(imStdParms* stdParms, void* fileRef, imSourceVideoRec* sourceVideo);
int SelectClipFrameDescriptor(imStdParms* stdParms, void* fileRef, imClipFrameDescriptorRec* descriptor);

// Asynchronous importer (AsyncImporter.cpp).
int SDKCreateAsyncImporter(imStdParms* stdParms, imAsyncImporterCreationRec* creation);
