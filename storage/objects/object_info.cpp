#include "storage/objects/object_info.h"

#include <string_view>

#include "platform/text.h"
#include "platform/unique_resource.h"
#include "storage/format/state_block.h"

namespace tolvenar {
namespace {

constexpr int kInfoTries = 10;
constexpr DWORD kInfoRetryMs = 10;

// The text in a buffer of `units` units, which the platform may have filled to the last.
std::u16string_view TextIn(const wchar_t* buffer, std::size_t units) {
    std::size_t length = 0;
    while (length < units && buffer[length] != 0) {
        ++length;
    }
    return {Utf16(buffer), length};
}

void SetTime(InfoBlock& block, const FILETIME& time) {
    block.head().time_low = time.dwLowDateTime;
    block.head().time_high = time.dwHighDateTime;
}

bool SetTypeAndName(InfoBlock& block, ObjectType type, std::u16string_view name) {
    block.head().type = static_cast<std::uint16_t>(type);
    return block.SetName(name.data(), name.size());
}

bool DescribeFile(const CEFILEINFO& file, InfoBlock& block) {
    block.head().attributes = file.dwAttributes;
    block.head().data_bytes = file.dwLength;
    SetTime(block, file.ftLastChanged);
    return SetTypeAndName(block, ObjectType::kFile, TextIn(file.szFileName, MAX_PATH));
}

bool DescribeFolder(const CEDIRINFO& folder, InfoBlock& block) {
    block.head().attributes = folder.dwAttributes | FILE_ATTRIBUTE_DIRECTORY;
    return SetTypeAndName(block, ObjectType::kFile, TextIn(folder.szDirName, MAX_PATH));
}

bool DescribeDatabase(const CEDBASEINFO& database, InfoBlock& block) {
    block.head().database_type = database.dwDbaseType;
    block.head().sort_order_count = database.wNumSortOrder;
    block.head().data_bytes = sizeof database.rgSortSpecs;
    return SetTypeAndName(block, ObjectType::kDatabase,
                          TextIn(database.szDbaseName, CEDB_MAXDBASENAMELEN));
}

}  // namespace

bool ObjectInfo::GetOIDInfo(std::uint32_t TolvOID, std::uint32_t dwOID, InfoBlock& block) {
    block.Clear();
    if (TolvOID != 0) {
        return dwOID == 0 && DescribeRegistryObject(TolvOID, block);
    }
    return dwOID == 0 ? DescribeState(block) : DescribeStoreObject(dwOID, block);
}

void ObjectInfo::SetStateDescription(const char16_t* text) {
    const std::u16string_view description(text == nullptr ? u"" : text);
    state_description_[description.copy(state_description_, kStateDescriptionUnits - 1)] = 0;
}

// The time stays zero: the platform keeps none for a registry object.
bool ObjectInfo::DescribeRegistryObject(std::uint32_t TolvOID, InfoBlock& block) const {
    const RegistryObject* object = registry_objects_.RegObjectFind(TolvOID);
    if (object == nullptr) {
        return false;
    }
    block.head().hive = object->hive;
    const ObjectType type = object->is_key ? ObjectType::kRegistryKey : ObjectType::kRegistryValue;
    if (!SetTypeAndName(block, type, object->key_path)) {
        return false;
    }
    if (object->is_key) {
        return true;
    }
    block.head().value_type = object->value_type;
    block.head().data_bytes = object->data_bytes;
    const std::u16string_view value_name(object->value_name == nullptr ? u"" : object->value_name);
    return block.AppendName(&kNameSeparator, 1) &&
           block.AppendName(value_name.data(), value_name.size());
}

bool ObjectInfo::DescribeState(InfoBlock& block) const {
    SYSTEMTIME now{};
    FILETIME time{};
    ::GetSystemTime(&now);
    ::SystemTimeToFileTime(&now, &time);
    SetTime(block, time);
    block.head().data_bytes = static_cast<std::uint32_t>(
        std::u16string_view(state_description_).size() * sizeof(char16_t));
    return SetTypeAndName(block, ObjectType::kState, kStateBlockName);
}

bool ObjectInfo::DescribeStoreObject(CEOID oid, InfoBlock& block) {
    CEOIDINFO info;
    if (!GetObjectInfoPatiently(oid, info)) {
        return false;
    }
    switch (info.wObjType) {
        case OBJTYPE_FILE: return DescribeFile(info.infFile, block);
        case OBJTYPE_DIRECTORY: return DescribeFolder(info.infDirectory, block);
        case OBJTYPE_DATABASE: return DescribeDatabase(info.infDatabase, block);
        case OBJTYPE_RECORD: return DescribeRecord(oid, info.infRecord.oidParent, block);
        default: return true;
    }
}

bool ObjectInfo::DescribeRecord(CEOID oid, CEOID database_oid, InfoBlock& block) {
    CEOIDINFO parent;
    if (!GetObjectInfoPatiently(database_oid, parent) || parent.wObjType != OBJTYPE_DATABASE) {
        return false;
    }
    const auto name = TextIn(parent.infDatabase.szDbaseName, CEDB_MAXDBASENAMELEN);
    if (!SetTypeAndName(block, ObjectType::kDatabaseRecord, name)) {
        return false;
    }
    CountProperties(block.name(), oid, block);
    return true;
}

// What cannot be read counts as a record without properties. The description then differs from the
// stored one, so the record is looked at again rather than taken for absent.
void ObjectInfo::CountProperties(const char16_t* database_name, CEOID oid, InfoBlock& block) {
    CEOID database_oid = 0;
    const UniqueHandle database(
        databases_.OpenDatabase(database_oid, database_name, 0, 0, nullptr));
    if (!database || databases_.SeekRecord(database.get(), CEDB_SEEK_CEOID, oid) == 0) {
        return;
    }
    RecordBuffer record;
    if (databases_.ReadRecordProps(database.get(), record) != 0) {
        block.head().property_count = record.count();
        block.head().data_bytes = record.size();
    }
}

bool ObjectInfo::GetObjectInfoPatiently(CEOID oid, CEOIDINFO& info) {
    for (int i = 0; i < kInfoTries; ++i) {
        if (databases_.GetObjectInfo(oid, info)) {
            return true;
        }
        ::Sleep(kInfoRetryMs);
    }
    return false;
}

}  // namespace tolvenar
