#include "snapshot/records/left_out.h"

#include <memory>
#include <new>

#include "snapshot/records/name_hash.h"
#include "snapshot/text/letter_case.h"

namespace tolvenar {
namespace {

std::uint32_t HashOf(ObjectType type, std::u16string_view name) {
    return HashOfName(static_cast<std::uint32_t>(type), name);
}

}  // namespace

std::uint32_t LeftOut::Entry::Hash() const { return HashOf(type, name); }

void LeftOut::Add(ObjectType type, std::u16string_view name, std::uint32_t dwOID) {
    std::unique_ptr<char16_t[]> copy(new (std::nothrow) char16_t[name.size() + 1]);
    if (copy == nullptr || !index_.ReserveOneMore()) {
        NoteLackOfMemory();
        return;
    }
    copy[name.copy(copy.get(), name.size())] = 0;
    auto* entry = new (std::nothrow) Entry{type, dwOID, false, copy.get(), nullptr, nullptr};
    if (entry == nullptr) {
        NoteLackOfMemory();
        return;
    }
    static_cast<void>(copy.release());
    (last_ == nullptr ? first_ : last_->next) = entry;
    last_ = entry;
    index_.Add(*entry);
}

void LeftOut::MarkKept(ObjectType type, std::u16string_view name, std::uint32_t dwOID) {
    if (Entry* entry = Find(type, name, dwOID)) {
        entry->is_kept = true;
    }
}

LeftOut::Entry* LeftOut::Find(ObjectType type, std::u16string_view name,
                              std::uint32_t dwOID) const {
    return index_.Find(HashOf(type, name), [type, name, dwOID](const Entry& present) {
        return present.type == type && present.dwOID == dwOID &&
               EqualIgnoringCase(present.name, name);
    });
}

void LeftOut::Clear() {
    while (first_ != nullptr) {
        Entry* entry = first_;
        first_ = entry->next;
        delete[] entry->name;
        delete entry;
    }
    last_ = nullptr;
    index_.Clear();
    has_unlisted_databases_ = false;
    lacks_memory_ = false;
}

}  // namespace tolvenar
