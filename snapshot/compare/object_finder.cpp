#include "snapshot/compare/object_finder.h"

#include <new>

#include "snapshot/compare/object_name.h"
#include "snapshot/compare/record_info.h"

namespace tolvenar {
namespace {

std::uint32_t HashOf(ObjectType type, std::uint32_t dwOID) {
    return MixBits(static_cast<std::uint32_t>(type), dwOID);
}

}  // namespace

bool ObjectFinder::Reserve(std::size_t records) {
    entries_.reset(new (std::nothrow) Entry[records + 1]);
    return entries_ != nullptr && names_.Reserve(records) && ids_.Reserve(records);
}

bool ObjectFinder::AddByName(ObjectRecord& record) {
    InfoBlock block;
    if (!FetchInfo(record, info_, block)) {
        return false;
    }
    Enter(record, HashOfObject(block), names_);
    return true;
}

void ObjectFinder::AddById(ObjectRecord& record) {
    if (record.dwOID != 0) {
        Enter(record, HashOf(record.type, record.dwOID), ids_);
    }
}

ObjectRecord* ObjectFinder::FindByName(const InfoBlock& block) const {
    const std::uint32_t hash = HashOfObject(block);
    const Entry* entry = names_.Find(hash, [this, hash, &block](const Entry& present) {
        InfoBlock described;
        return present.hash == hash && FetchInfo(*present.record, info_, described) &&
               IsOneObject(described, block);
    });
    return entry == nullptr ? nullptr : entry->record;
}

ObjectRecord* ObjectFinder::FindById(ObjectType type, std::uint32_t dwOID) const {
    const Entry* entry = ids_.Find(HashOf(type, dwOID), [type, dwOID](const Entry& present) {
        return present.record->type == type && present.record->dwOID == dwOID;
    });
    return entry == nullptr ? nullptr : entry->record;
}

void ObjectFinder::Enter(ObjectRecord& record, std::uint32_t hash, HashIndex<Entry>& index) {
    Entry& entry = entries_[used_++];
    entry = {&record, hash, nullptr};
    index.Add(entry);
}

}  // namespace tolvenar
