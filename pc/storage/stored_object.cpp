#include "pc/storage/stored_object.h"

#include "pc/text/utf.h"
#include "snapshot/compare/block_check.h"
#include "snapshot/compare/exclusion.h"

namespace tolvenar::pc {
namespace {

constexpr std::uint32_t kFolderAttribute = 0x10;

std::u16string Number(std::uint32_t number) { return ToUtf16(std::to_string(number)); }

// A path in the registry: the root's own is empty.
std::u16string KeyPath(const StoredObject& object) {
    const std::u16string hive = HiveName(object.hive());
    return object.name.empty() ? hive : hive + u"\\" + object.name;
}

void SetNames(StoredPair& pair, const InfoBlock& block, StoredObject& object) {
    object.name.assign(block.name(), block.head().name_bytes / sizeof(char16_t));
    std::size_t separator = 0;
    if (object.type() == ObjectType::kRegistryValue &&
        pair.value_names().FindSeparator(object.record, block, separator)) {
        object.value_name = object.name.substr(separator + 1);
        object.name.resize(separator);
    }
}

}  // namespace

bool StoredObject::is_folder() const {
    return type() == ObjectType::kFile && (attributes() & kFolderAttribute) != 0;
}

bool StoredObject::is_in_rom() const {
    return type() == ObjectType::kFile && !is_folder() &&
           (attributes() & kAttributesWithoutData) != 0;
}

StoredObject Describe(StoredPair& pair, const ObjectRecord& record) {
    StoredObject object;
    object.record = record;
    InfoBlock block;
    object.is_damaged = !pair.check().BlockIsSound(record.propOffset) ||
                        !pair.reader().GetInfoFromStorage(record.propOffset, block) ||
                        block.type() != record.type;
    if (object.is_damaged) {
        return object;
    }
    const InfoBlockHead& head = block.head();
    object.first = head.hive;
    object.second = head.value_type;
    object.time = FileTime::Of(head.time_low, head.time_high);
    object.data_bytes = head.data_bytes;
    object.has_data = HasStoredData(block);
    SetNames(pair, block, object);
    return object;
}

std::u16string HiveName(std::uint32_t hive) {
    static const char16_t* const kNames[] = {u"HKCR", u"HKCU", u"HKLM", u"HKUS"};
    return IsHive(hive) ? kNames[hive - kHiveClassesRoot] : Number(hive);
}

std::u16string PathOf(const StoredObject& object) {
    if (object.is_damaged) {
        return u"damaged:" + Number(object.record.propOffset);
    }
    switch (object.type()) {
        case ObjectType::kFile: return object.name;
        case ObjectType::kRegistryKey: return KeyPath(object);
        case ObjectType::kRegistryValue: return KeyPath(object) + u"\\\\" + object.value_name;
        case ObjectType::kDatabase: return u"db:" + object.name;
        case ObjectType::kDatabaseRecord:
            return u"db:" + object.name + u"#" + Number(object.record.dwOID);
        default: return u"state:" + Number(object.record.state_number);
    }
}

const char* KindOf(const StoredObject& object) {
    if (object.is_damaged) {
        return "damaged";
    }
    switch (object.type()) {
        case ObjectType::kFile: return object.is_folder() ? "folder" : "file";
        case ObjectType::kRegistryKey: return "key";
        case ObjectType::kRegistryValue: return "value";
        case ObjectType::kDatabase: return "database";
        case ObjectType::kDatabaseRecord: return "record";
        default: return "state";
    }
}

}  // namespace tolvenar::pc
