#include "Manager/Callback.h"

qvBRAW_Manager_Callback::qvBRAW_Manager_Callback() = default;

qvBRAW_Manager_Callback::~qvBRAW_Manager_Callback() = default;

HRESULT qvBRAW_Manager_Callback::QueryInterface(REFIID, LPVOID*) { return E_NOTIMPL; }

ULONG qvBRAW_Manager_Callback::AddRef() { return 0; }

ULONG qvBRAW_Manager_Callback::Release() { return 0; }

void qvBRAW_Manager_Callback::ReadComplete(IBlackmagicRawJob*, HRESULT, IBlackmagicRawFrame*) {}

void qvBRAW_Manager_Callback::DecodeComplete(IBlackmagicRawJob*, HRESULT) {}

void qvBRAW_Manager_Callback::ProcessComplete(IBlackmagicRawJob*, HRESULT, IBlackmagicRawProcessedImage*) {}

void qvBRAW_Manager_Callback::TrimProgress(IBlackmagicRawJob*, float) {}

void qvBRAW_Manager_Callback::TrimComplete(IBlackmagicRawJob*, HRESULT) {}

void qvBRAW_Manager_Callback::SidecarMetadataParseWarning(IBlackmagicRawClip*, const char*, uint32_t, const char*) {}

void qvBRAW_Manager_Callback::SidecarMetadataParseError(IBlackmagicRawClip*, const char*, uint32_t, const char*) {}

void qvBRAW_Manager_Callback::PreparePipelineComplete(void*, HRESULT) {}
