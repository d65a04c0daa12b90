#include "_qvBRAW_Importer/Globals.h"

qvBRAW_Manager* Global_Manager = nullptr;
qvPPixFactory* g_PPixFactory = nullptr;

// Seams: the decoder core (instance, manager and its queue) and the PPix
// factory land later; until then the globals stay null, which every selector
// already has to live with after a failed start.
void TWI_CreateGlobalManager() {}
void TWI_CreatePPixFactory() {}
void TWI_FlushGlobalQueue() {}
void TWI_DestroyPPixFactory() {}
void TWI_DestroyGlobalManager() {}
