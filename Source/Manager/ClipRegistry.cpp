#include "Manager/Clip.h"
#include "Manager/Manager.h"

int32_t qvBRAW_Manager::AddClip(const qvUtf8String&, uint64_t&) { return 1; }
int32_t qvBRAW_Manager::AddClipIfNew(const qvUtf8String&, uint64_t&, bool*) { return 1; }
std::shared_ptr<qvBRAW_Clip> qvBRAW_Manager::GetClip(uint64_t) { return nullptr; }
bool qvBRAW_Manager::GetClipIDFromFilepath(const qvUtf8String&, uint64_t&, std::shared_ptr<qvBRAW_Clip>&) {
    return false;
}
uint64_t qvBRAW_Manager::GetClipsCount() { return m_clips.size(); }
int32_t qvBRAW_Manager::CloseClip(uint64_t) { return 0; }
int32_t qvBRAW_Manager::CloseClip(std::shared_ptr<qvBRAW_Clip>) { return 0; }
int32_t qvBRAW_Manager::reloadClipIfNeeded(uint64_t) { return 1; }
QvResult qvBRAW_Manager::getAllDataFromClip(bool& generated, uint64_t, bool, std::shared_ptr<twSettingsInitData>&,
                                            bool) {
    generated = false;
    return QvResult("Codec is null !");
}
QvResult qvBRAW_Manager::probeFirstFrame(const std::shared_ptr<qvBRAW_Clip>&, bool, bool, qvBRAW_MetadataList&) {
    return QvResult();
}
