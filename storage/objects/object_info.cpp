#include "storage/objects/object_info.h"

#include <string_view>

#include "platform/text.h"
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

bool DescribeAs(InfoBlock& block, const char16_t* database_name, WORD count, DWORD bytes) {
    block.head().property_count = count;
    block.head().data_bytes = bytes;
    return SetTypeAndName(block, ObjectType::kDatabaseRecord, database_name);
}

}  // namespace

bool ObjectInfo::GetOIDInfo(std::uint32_t TolvOID, std::uint32_t dwOID, InfoBlock& block) {
    block.Clear();
    described_record_ = 0;
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

// What cannot be read counts as a record without properties. The description then differs from the
// stored one, so the record is looked at again rather than taken for absent.
bool ObjectInfo::DescribeRecord(CEOID oid, CEOID database_oid, InfoBlock& block) {
    const KeptOpen until_described(*this);
    const bool was_open = records_.Holds(database_oid);
    if (!was_open && !OpenDatabase(database_oid)) {
        return false;
    }
    bool is_read = records_.Read(oid);
    // The handle of before may be of no use any more.
    if (!is_read && was_open) {
        if (!OpenDatabase(database_oid)) {
            return false;
        }
        is_read = records_.Read(oid);
    }
    described_record_ = is_read ? oid : 0;
    return DescribeAs(block, records_.database_name(), records_.record().count(),
                      records_.record().size());
}

bool ObjectInfo::DescribeReadRecord(const ReadRecord& record, InfoBlock& block) {
    block.Clear();
    CEOIDINFO info;
    return GetObjectInfoPatiently(record.oid, info) && info.wObjType == OBJTYPE_RECORD &&
           info.infRecord.oidParent == record.database_oid &&
           DescribeAs(block, record.database_name, record.count, record.bytes);
}

// False when it is no database; one that cannot be opened has a name all the same.
bool ObjectInfo::OpenDatabase(CEOID oid) {
    CEOIDINFO info;
    if (!GetObjectInfoPatiently(oid, info) || info.wObjType != OBJTYPE_DATABASE) {
        return false;
    }
    records_.Open(oid, TextIn(info.infDatabase.szDbaseName, CEDB_MAXDBASENAMELEN));
    return true;
}

RecordBuffer* ObjectInfo::DescribedRecord(CEOID oid) {
    return oid != 0 && described_record_ == oid ? &records_.record() : nullptr;
}

const std::uint8_t* ObjectInfo::ReadValue(std::uint32_t TolvOID, std::uint32_t bytes) {
    const KeptOpen until_read(*this);
    const RegistryObject* const value = registry_objects_.RegObjectFind(TolvOID);
    return value == nullptr ? nullptr : values_.Read(*value, bytes);
}

void ObjectInfo::EndUse() {
    if (--users_ == 0) {
        described_record_ = 0;
        records_.Close();
        values_.Close();
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
