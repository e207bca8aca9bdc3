#include "storage/objects/find_matching_record.h"

#include <string_view>

#include "platform/text.h"

namespace tolvenar {
namespace {

// A database whose records are known by a key property, a string, rather than by their ids.
struct SpecialDatabase {
    std::u16string_view name;
    CEPROPID key_property;
};

constexpr SpecialDatabase kSpecialDatabases[] = {
    {u"\\DesktopPositions", 0x4021001F},
};

const SpecialDatabase* FindSpecialDatabase(std::u16string_view name) {
    for (const SpecialDatabase& special : kSpecialDatabases) {
        if (special.name == name) {
            return &special;
        }
    }
    return nullptr;
}

// The record's key, null when it has none.
const wchar_t* KeyOfRecord(const CEPROPVAL* properties, WORD count, CEPROPID key_property) {
    for (WORD i = 0; i < count; ++i) {
        if (properties[i].propid == key_property &&
            (properties[i].wFlags & CEDB_PROPNOTFOUND) == 0) {
            return properties[i].val.lpwstr;
        }
    }
    return nullptr;
}

CEOID FindByKeyProperty(DatabaseLayer& layer, HANDLE database, CEPROPID key_property,
                        std::u16string_view key, const WrittenRecords& written) {
    RecordBuffer buffer;
    for (DWORD position = 0;; ++position) {
        const CEOID oid = layer.SeekRecord(database, CEDB_SEEK_BEGINNING, position);
        if (oid == 0) {
            return 0;
        }
        if (written.Contains(oid) || layer.ReadRecordProps(database, buffer) == 0) {
            continue;
        }
        const wchar_t* record_key = KeyOfRecord(reinterpret_cast<const CEPROPVAL*>(buffer.bytes()),
                                                buffer.count(), key_property);
        if (record_key != nullptr && key == Utf16(record_key)) {
            return oid;
        }
    }
}

}  // namespace

CEOID FindMatchingRecord(DatabaseLayer& layer, HANDLE database, const char16_t* database_name,
                         const CEPROPVAL* properties, WORD property_count, CEOID record_oid,
                         const WrittenRecords& written) {
    if (const SpecialDatabase* special = FindSpecialDatabase(database_name)) {
        const wchar_t* key = KeyOfRecord(properties, property_count, special->key_property);
        return key == nullptr
                   ? 0
                   : FindByKeyProperty(layer, database, special->key_property, Utf16(key), written);
    }
    if (record_oid == 0 || written.Contains(record_oid)) {
        return 0;
    }
    return layer.SeekRecord(database, CEDB_SEEK_CEOID, record_oid) == 0 ? 0 : record_oid;
}

}  // namespace tolvenar
