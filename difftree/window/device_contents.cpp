#include "difftree/window/device_contents.h"

#include "difftree/model/difference_enumerator.h"
#include "difftree/window/live_data.h"
#include "storage/format/property_text.h"

namespace tolvenar {

bool DeviceContents::ReadTextProperty(const ObjectRecord& record, const InfoBlock& block,
                                      std::uint32_t propid, TextBuilder& text) {
    RecordBuffer buffer;
    return ReadLiveRecord(databases_, record, block, buffer) &&
           FindTextProperty(buffer.bytes(), buffer.size(), buffer.count(), propid, text);
}

bool DeviceContents::ReadValueText(const ObjectRecord& record, TextBuilder& text) {
    BYTE bytes[kObjectNameUnits * sizeof(char16_t)];
    DWORD size = sizeof bytes;
    DWORD type = 0;
    if (!ReadLiveValue(live_, record, bytes, size, type) || !IsTextValue(type)) {
        return false;
    }
    AppendStoredText(bytes, size, text);
    return true;
}

}  // namespace tolvenar
