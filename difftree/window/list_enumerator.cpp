#include "difftree/window/list_enumerator.h"

#include <algorithm>
#include <string_view>

#include "platform/text.h"
#include "platform/unique_resource.h"
#include "snapshot/text/log.h"
#include "storage/format/property_encoding.h"
#include "storage/format/property_text.h"

namespace tolvenar {
namespace {

constexpr char16_t kModule[] = u"BuildDifferenceTree";
constexpr std::size_t kValueTextBytes = kObjectNameUnits * sizeof(char16_t);

bool IsTextType(std::uint32_t value_type) {
    return value_type == REG_SZ || value_type == REG_EXPAND_SZ;
}

}  // namespace

ListEnumerator::ListEnumerator(Engine& engine)
    : engine_(engine), has_storage_(storage_.Open(engine.storage.names.sav)) {
    if (engine.storage.difference != nullptr) {
        cursor_ = engine.storage.difference->First();
    }
}

bool ListEnumerator::Describe() {
    if (record_->propOffset == 0) {
        return engine_.info.GetOIDInfo(record_->TolvOID, record_->dwOID, block_) &&
               block_.type() == record_->type;
    }
    const WindowBytes stored = storage_.ReadUpTo(record_->propOffset, kInfoBlockBytes);
    return stored.bytes != nullptr && ParseInfoBlock(stored.bytes, stored.length, block_) &&
           block_.type() == record_->type;
}

int ListEnumerator::Next(EnumeratedObject& object) {
    ObjectRecord* record = nullptr;
    if (!ObjectList::Next(cursor_, nullptr, &record)) {
        return kEndOfList;
    }
    record_ = record;
    if (record->type == ObjectType::kState) {
        return kNoObject;
    }
    if (record->propOffset != 0 && !has_storage_) {
        return kAbort;
    }
    if (!Describe()) {
        LogMessage(record->propOffset != 0 ? u"Fail GetInfoFromStorage" : u"Fail GetOIDInfo",
                   kModule, kLogError);
        return kNoObject;
    }
    const std::u16string_view name(block_.name());
    object.name[name.copy(object.name, kObjectNameUnits - 1)] = 0;
    object.type = record->type;
    object.flags = record->flags;
    object.dwOID = record->dwOID;
    object.hive = IsRegistryObject(*record) ? block_.head().hive : 0;
    return kObject;
}

bool ListEnumerator::ReadTextProperty(std::uint32_t propid, TextBuilder& text) {
    if (record_->propOffset == 0) {
        return ReadLiveProperty(propid, text);
    }
    const WindowBytes data = storage_.Read(record_->data_offset, block_.head().data_bytes);
    return data.bytes != nullptr &&
           FindTextProperty(data.bytes, data.length, block_.head().property_count, propid, text);
}

bool ListEnumerator::ReadLiveProperty(std::uint32_t propid, TextBuilder& text) {
    DatabaseLayer& databases = engine_.databases;
    CEOID database_oid = 0;
    const UniqueHandle database(databases.OpenDatabase(database_oid, block_.name(), 0, 0, nullptr));
    RecordBuffer record;
    if (!database || databases.SeekRecord(database.get(), CEDB_SEEK_CEOID, record_->dwOID) == 0 ||
        databases.ReadRecordProps(database.get(), record) == 0) {
        return false;
    }
    const auto base = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(record.bytes()));
    return PointersToOffsets(record.bytes(), record.size(), record.count(), base) &&
           FindTextProperty(record.bytes(), record.size(), record.count(), propid, text);
}

bool ListEnumerator::ReadValueText(TextBuilder& text) {
    if (record_->propOffset == 0) {
        return ReadLiveValue(text);
    }
    if (!IsTextType(block_.head().value_type)) {
        return false;
    }
    const auto length = std::min<std::uint32_t>(block_.head().data_bytes, kValueTextBytes);
    const WindowBytes data = storage_.Read(record_->data_offset, length);
    if (data.bytes == nullptr) {
        return false;
    }
    AppendStoredText(data.bytes, data.length, text);
    return true;
}

bool ListEnumerator::ReadLiveValue(TextBuilder& text) {
    const RegistryObject* const object = engine_.info.FindRegistryObject(record_->TolvOID);
    UniqueHkey key;
    if (object == nullptr ||
        ::RegOpenKeyExW(reinterpret_cast<HKEY>(static_cast<std::uintptr_t>(object->hive)),
                        Wide(object->key_path), 0, 0, key.Put()) != ERROR_SUCCESS) {
        return false;
    }
    BYTE bytes[kValueTextBytes];
    DWORD size = sizeof bytes;
    DWORD type = 0;
    if (::RegQueryValueExW(key.get(), Wide(object->value_name), nullptr, &type, bytes, &size) !=
            ERROR_SUCCESS ||
        !IsTextType(type)) {
        return false;
    }
    AppendStoredText(bytes, size, text);
    return true;
}

}  // namespace tolvenar
