#include "storage/kept_keys.h"

#include <string_view>

#include "snapshot/registry_objects.h"

namespace tolvenar {
namespace {

bool IsKeyWith(const ObjectRecord& record, std::uint16_t flag) {
    return record.type == ObjectType::kRegistryKey && (record.flags & flag) != 0;
}

bool Describe(const ObjectRecord& record, InfoSource& info, InfoBlock& block) {
    return record.propOffset != 0 ? info.GetInfoFromStorage(record.propOffset, block)
                                  : info.GetOIDInfo(record.TolvOID, record.dwOID, block);
}

bool MayBeSameKey(const ObjectRecord& deleted, const ObjectRecord& stored, InfoSource& info) {
    InfoBlock deleted_block;
    InfoBlock stored_block;
    if (((deleted.TolvOID ^ stored.TolvOID) & kTolvOidMask) != 0) {
        return false;
    }
    if (!Describe(deleted, info, deleted_block) || !Describe(stored, info, stored_block)) {
        return true;
    }
    return deleted_block.head().word0 == stored_block.head().word0 &&
           std::u16string_view(deleted_block.name()) == stored_block.name();
}

bool IsWrittenBack(const ObjectList& diff, const ObjectRecord& deleted, InfoSource& info) {
    ObjectList::Cursor cursor = diff.First();
    ObjectRecord* stored = nullptr;
    while (ObjectList::Next(cursor, nullptr, &stored)) {
        if (IsKeyWith(*stored, JF_DELETE) && MayBeSameKey(deleted, *stored, info)) {
            return true;
        }
    }
    return false;
}

}  // namespace

void KeepStoredKeys(ObjectList& diff, InfoSource& info) {
    ObjectList::Cursor cursor = diff.First();
    ObjectRecord* record = nullptr;
    while (ObjectList::Next(cursor, nullptr, &record)) {
        if (IsKeyWith(*record, JF_ADD) && IsWrittenBack(diff, *record, info)) {
            record->flags = 0;
        }
    }
}

}  // namespace tolvenar
