#pragma once
// The process-wide objects of the importer, created by imInit and destroyed by
// imShutdown; null before and after.

class qvBRAW_Manager;
class qvPPixFactory;

extern qvBRAW_Manager* Global_Manager;
extern qvPPixFactory* g_PPixFactory;

// imInit: the decoder instance (this importer's bundle) handed to a new manager
// whose clips open flipped vertically, then the frame allocator.
void TWI_CreateGlobalManager();
void TWI_CreatePPixFactory();
// imShutdown, in this order: the queue flushed for every importer, the
// allocator destroyed, the manager destroyed. Each is safe without its object.
void TWI_FlushGlobalQueue();
void TWI_DestroyPPixFactory();
void TWI_DestroyGlobalManager();
