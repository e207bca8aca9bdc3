#include "difftree/window/live_data.h"

#include "platform/registry_key.h"
#include "platform/text.h"
#include "storage/format/property_encoding.h"
#include "storage/objects/stored_record.h"

namespace tolvenar {

bool ReadLiveValue(LiveObjects& live, const ObjectRecord& record, void* buffer, DWORD& size,
                   DWORD& type) {
    const RegistryObject* const object = live.FindRegistryObject(record.TolvOID);
    if (object == nullptr) {
        return false;
    }
    const UniqueHkey key = OpenKey(RootKey(object->hive), Wide(object->key_path));
    return key && ::RegQueryValueExW(key.get(), Wide(object->value_name), nullptr, &type,
                                     static_cast<BYTE*>(buffer), &size) == ERROR_SUCCESS;
}

bool ReadLiveRecord(DatabaseLayer& databases, const ObjectRecord& record, const InfoBlock& block,
                    RecordBuffer& buffer) {
    if (!ReadRecordOf(databases, block.name(), record.dwOID, buffer)) {
        return false;
    }
    const auto base = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(buffer.bytes()));
    return PointersToOffsets(buffer.bytes(), buffer.size(), buffer.count(), base);
}

bool ReadLiveFile(const char16_t* path, void* buffer, DWORD& size) {
    const UniqueHandle file(::CreateFileW(Wide(path), GENERIC_READ,
                                          FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                          OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    return file && ::ReadFile(file.get(), buffer, size, &size, nullptr) != FALSE;
}

}  // namespace tolvenar
