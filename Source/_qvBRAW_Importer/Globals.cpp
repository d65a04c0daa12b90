#include "_qvBRAW_Importer/Globals.h"
#include "_qvBRAW_Importer/PPixFactory.h"

#include "Manager/Instance.h"
#include "Manager/Manager.h"

qvBRAW_Manager* Global_Manager = nullptr;
qvPPixFactory* g_PPixFactory = nullptr;

// A library that is missing or of another build leaves a manager on error:
// imInit goes on, and the reason reaches the user when a file is opened.
void TWI_CreateGlobalManager() {
    qvBRAW_Instance* instance = new qvBRAW_Instance(QV_PLUGIN_IMPORTER);
    instance->init();
    Global_Manager = new qvBRAW_Manager();
    Global_Manager->init(instance);
    // Host frame buffers run bottom-up: every clip opens flipped.
    Global_Manager->m_flipVertical = true;
}

void TWI_FlushGlobalQueue() {
    if (Global_Manager) Global_Manager->FlushQueue(TW_ALL_QUEUES);
}

void TWI_DestroyGlobalManager() {
    delete Global_Manager;
    Global_Manager = nullptr;
}

void TWI_CreatePPixFactory() { g_PPixFactory = new qvPPixFactory(); }

void TWI_DestroyPPixFactory() {
    delete g_PPixFactory;
    g_PPixFactory = nullptr;
}
