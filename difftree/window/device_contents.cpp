#include "difftree/window/device_contents.h"

#include "difftree/model/difference_enumerator.h"
#include "platform/registry_key.h"
#include "platform/text.h"
#include "storage/format/property_encoding.h"
#include "storage/format/property_text.h"

namespace tolvenar {

bool DeviceContents::ReadTextProperty(const ObjectRecord& record, const InfoBlock& block,
                                      std::uint32_t propid, TextBuilder& text) {
    CEOID database_oid = 0;
    const UniqueHandle database(databases_.OpenDatabase(database_oid, block.name(), 0, 0, nullptr));
    RecordBuffer buffer;
    if (!database || databases_.SeekRecord(database.get(), CEDB_SEEK_CEOID, record.dwOID) == 0 ||
        databases_.ReadRecordProps(database.get(), buffer) == 0) {
        return false;
    }
    const auto base = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(buffer.bytes()));
    return PointersToOffsets(buffer.bytes(), buffer.size(), buffer.count(), base) &&
           FindTextProperty(buffer.bytes(), buffer.size(), buffer.count(), propid, text);
}

bool DeviceContents::ReadValueText(const ObjectRecord& record, TextBuilder& text) {
    const RegistryObject* const object = live_.FindRegistryObject(record.TolvOID);
    if (object == nullptr) {
        return false;
    }
    const UniqueHkey key = OpenKey(RootKey(object->hive), Wide(object->key_path));
    if (!key) {
        return false;
    }
    BYTE bytes[kObjectNameUnits * sizeof(char16_t)];
    DWORD size = sizeof bytes;
    DWORD type = 0;
    if (::RegQueryValueExW(key.get(), Wide(object->value_name), nullptr, &type, bytes, &size) !=
            ERROR_SUCCESS ||
        !IsTextValue(type)) {
        return false;
    }
    AppendStoredText(bytes, size, text);
    return true;
}

}  // namespace tolvenar
