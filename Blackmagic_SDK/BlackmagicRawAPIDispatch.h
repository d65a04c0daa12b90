#pragma once
// The dispatch layer of the decoder library: finds libBlackmagicRawAPI.so at
// run time, loads it once per process, and forwards the library's plain C
// functions to it. The plug-in exports these same names, so that code built
// against the library's own exports runs unchanged inside it.
//
// The first load that gives a factory function wins: from then on every entry
// point ignores the path it is given and asks that library for a new factory.
// Before any load the nine Variant and SafeArray forwarders answer E_FAIL
// (SafeArrayCreate null) and do nothing.

#include <BlackmagicRawAPI.h>

// File name of the library inside the folder that is searched.
#define TW_BLACKMAGIC_RAW_LIBRARY_NAME "libBlackmagicRawAPI.so"

extern "C" {
// A factory from the library in `loadPath`, a folder; a "/" is added when it
// lacks one. Null for a null path or a library that cannot be loaded.
IBlackmagicRawFactory* CreateBlackmagicRawFactoryInstanceFromPath(const char* loadPath);
// The folder of the running program (/proc/self/exe, resolved), with
// "/" + relativePath behind it when relativePath is given.
IBlackmagicRawFactory* CreateBlackmagicRawFactoryInstanceFromExeRelativePath(const char* relativePath);
// The private library folder of the running program: its "BlackmagicRawAPI"
// sub-folder.
IBlackmagicRawFactory* CreateBlackmagicRawFactoryInstanceFromBundle(void);
// FromBundle, then the program's own folder.
IBlackmagicRawFactory* CreateBlackmagicRawFactoryInstance(void);
}
