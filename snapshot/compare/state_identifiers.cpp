#include "snapshot/compare/state_identifiers.h"

#include <new>
#include <string_view>

#include "snapshot/compare/record_info.h"

namespace tolvenar {
namespace {

using Text = std::u16string_view;

bool IsEntryOf(const InfoBlock& block, const RegistryEntry& entry) {
    const Text name(block.name());
    const Text key_path(entry.key_path);
    if (block.head().hive != entry.hive || name.substr(0, key_path.size()) != key_path) {
        return false;
    }
    const Text rest = name.substr(key_path.size());
    return entry.is_key
               ? rest.empty()
               : !rest.empty() && rest[0] == kNameSeparator && rest.substr(1) == entry.value_name;
}

// Puts a terminator in the place of a value's first separator.
HolderNames SplitNames(InfoBlock& block) {
    char16_t* const name = block.name();
    const std::size_t separator = Text(name).find(kNameSeparator);
    if (block.type() != ObjectType::kRegistryValue || separator == Text::npos) {
        return {name, nullptr};
    }
    name[separator] = 0;
    return {name, name + separator + 1};
}

}  // namespace

bool StateIdentifiers::Build(const ObjectList& state) {
    const std::size_t count = state.CountRecords();
    entries_.reset(new (std::nothrow) Entry[count + 1]);
    if (entries_ == nullptr || !index_.Reserve(count)) {
        return false;
    }
    Entry* next = entries_.get();
    for (const ObjectList::Node& node : state) {
        if (IsRegistryObject(*node.record)) {
            next->record = node.record;
            index_.Add(*next++);
        }
    }
    return true;
}

bool StateIdentifiers::IsHeldByAnother(std::uint32_t TolvOID, const RegistryEntry& entry,
                                       HolderNames& names) {
    return index_.Find(RegistryObject::HashOf(TolvOID), [&](const Entry& held) {
        return held.record->TolvOID == TolvOID && IsOther(*held.record, entry, names);
    }) != nullptr;
}

bool StateIdentifiers::IsOther(const ObjectRecord& record, const RegistryEntry& entry,
                               HolderNames& names) {
    if (!FetchInfo(record, info_, holder_)) {
        names = {};
        return true;
    }
    const ObjectType type = entry.is_key ? ObjectType::kRegistryKey : ObjectType::kRegistryValue;
    if (record.type == type && IsEntryOf(holder_, entry)) {
        return false;
    }
    names = SplitNames(holder_);
    return true;
}

}  // namespace tolvenar
