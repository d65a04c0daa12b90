#include "Manager/Clip.h"

qvUtf8String qvBRAW_Clip::getClipMetadata(const qvUtf8String&, bool) { return qvUtf8String(); }
bool qvBRAW_Clip::getClipMetadataBool(const qvUtf8String&, bool) { return false; }
bool qvBRAW_Clip::getClipMetadataMetadataCommon(const qvUtf8String&, bool, Variant&) { return false; }
int32_t qvBRAW_Clip::getClipMetadata(qvBRAW_MetadataList&) { return 1; }
qvBRAW_MetadataList qvBRAW_Clip::GetMetadataFromIterator(IBlackmagicRawMetadataIterator*, bool, double*, double*) {
    return qvBRAW_MetadataList();
}
void qvBRAW_Clip::getAudioMetadata(qvBRAW_MetadataList&) {}
qvBRAW_MetadataList qvBRAW_Clip::getMostPopularMetadata() { return qvBRAW_MetadataList(); }
qvUtf8String qvBRAW_Clip::makeMetadataKeyPretty(const qvUtf8String& key) { return key; }
qvUtf8String qvBRAW_Clip::UpperStr(qvUtf8String text, bool, bool) { return text; }
