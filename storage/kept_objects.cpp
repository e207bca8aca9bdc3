#include "storage/kept_objects.h"

#include <string_view>

#include "snapshot/record_info.h"

namespace tolvenar {
namespace {

bool IsRegistryObjectWith(const ObjectRecord& record, std::uint16_t flag) {
    return IsRegistryObject(record) && (record.flags & flag) != 0;
}

// A changed value has another identifier, so only versions with the same data come this far.
bool MayBeSameObject(const ObjectRecord& deleted, const ObjectRecord& stored, InfoSource& info) {
    if (deleted.type != stored.type || !SameTolvOID(deleted, stored)) {
        return false;
    }
    InfoBlock deleted_block;
    InfoBlock stored_block;
    if (!FetchInfo(deleted, info, deleted_block) || !FetchInfo(stored, info, stored_block)) {
        return true;
    }
    return deleted_block.head().word0 == stored_block.head().word0 &&
           std::u16string_view(deleted_block.name()) == stored_block.name();
}

bool IsWrittenBack(const ObjectList& diff, const ObjectRecord& deleted, InfoSource& info) {
    ObjectList::Cursor cursor = diff.First();
    ObjectRecord* stored = nullptr;
    while (ObjectList::Next(cursor, nullptr, &stored)) {
        if (IsRegistryObjectWith(*stored, JF_DELETE) && MayBeSameObject(deleted, *stored, info)) {
            return true;
        }
    }
    return false;
}

}  // namespace

void KeepStoredObjects(ObjectList& diff, InfoSource& info) {
    ObjectList::Cursor cursor = diff.First();
    ObjectRecord* record = nullptr;
    while (ObjectList::Next(cursor, nullptr, &record)) {
        if (IsRegistryObjectWith(*record, JF_ADD) && IsWrittenBack(diff, *record, info)) {
            record->flags = 0;
        }
    }
}

}  // namespace tolvenar
