#include "storage/operations/key_guard.h"

#include <cstddef>
#include <memory>
#include <new>
#include <string_view>

#include "platform/registry_key.h"
#include "platform/text.h"
#include "snapshot/compare/object_finder.h"
#include "snapshot/compare/record_info.h"
#include "snapshot/records/indexed_array.h"
#include "snapshot/records/name_hash.h"
#include "snapshot/text/letter_case.h"
#include "snapshot/text/log.h"
#include "storage/operations/held_back.h"
#include "storage/operations/object_line.h"

namespace tolvenar {
namespace {

using Text = std::u16string_view;

constexpr std::size_t kNameUnits = kMaxNameBytes / sizeof(char16_t) + 1;

bool IsKeyDeletion(const ObjectRecord& record) {
    return record.type == ObjectType::kRegistryKey && IsPendingDeletion(record);
}

// The keys that a list deletes, by hive and path.
class DeletedKeys {
public:
    explicit DeletedKeys(InfoSource& info) : info_(info) {}

    bool Build(ObjectList& difference) {
        std::size_t count = 0;
        for (const ObjectList::Node& node : difference) {
            count += IsKeyDeletion(*node.record) ? 1 : 0;
        }
        if (!entries_.Reserve(count)) {
            return false;
        }
        for (ObjectList::Node& node : difference) {
            InfoBlock block;
            if (IsKeyDeletion(*node.record) && FetchInfo(*node.record, info_, block)) {
                Enter(*node.record, block);
            }
        }
        return true;
    }
    std::size_t count() const { return entries_.count(); }

    // Every key above the object of `block` stays. A value's name may hold the separator anywhere
    // in its joined name. The hash is HashOfName's, taken at every key on the way.
    void KeepAbove(const InfoBlock& block) {
        std::uint32_t hash = block.head().hive;
        const Text name(block.name());
        for (std::size_t i = 0; i < name.size(); ++i) {
            if (name[i] == u'\\' || name[i] == kNameSeparator) {
                Keep(hash, block.head().hive, Text(name.data(), i));
            }
            hash = MixBits(hash, Capital(name[i]));
        }
    }

    // Calls `action` with each key that is still to be deleted.
    template <typename Action>
    void ForEachDeleted(Action action) {
        for (Entry& entry : entries_) {
            InfoBlock block;
            if (!entry.is_kept && FetchInfo(*entry.record, info_, block)) {
                action(entry.is_kept, block);
            }
        }
    }

    void Finish() {
        for (Entry& entry : entries_) {
            InfoBlock block;
            if (entry.is_kept && FetchInfo(*entry.record, info_, block)) {
                LogObject(u"Kept, something stays below it: ", *entry.record, block, u"DoRestore",
                          kLogNote);
                entry.record->flags = 0;
            }
        }
    }

private:
    struct Entry {
        ObjectRecord* record;
        std::uint32_t hash;
        bool is_kept;
        Entry* bucket_next;
        std::uint32_t Hash() const { return hash; }
    };

    void Enter(ObjectRecord& record, const InfoBlock& block) {
        entries_.Add({&record, HashOfName(block.head().hive, block.name()), false, nullptr});
    }

    void Keep(std::uint32_t hash, std::uint32_t hive, Text path) {
        for (Entry* entry = entries_.ChainOf(hash); entry != nullptr; entry = entry->bucket_next) {
            InfoBlock block;
            if (entry->hash == hash && !entry->is_kept && FetchInfo(*entry->record, info_, block) &&
                block.head().hive == hive && EqualIgnoringCase(block.name(), path)) {
                entry->is_kept = true;
            }
        }
    }

    InfoSource& info_;
    IndexedArray<Entry> entries_;
};

// The stored versions that a list writes back.
class WrittenVersions {
public:
    bool Build(ObjectList& difference) {
        if (!entries_.Reserve(difference.CountRecords())) {
            return false;
        }
        for (const ObjectList::Node& node : difference) {
            if (IsPendingVersion(*node.record)) {
                entries_.Add({node.record->propOffset, nullptr});
            }
        }
        return true;
    }
    bool Hold(std::uint32_t propOffset) const {
        return entries_.Find(MixBits(0, propOffset), [propOffset](const Entry& entry) {
            return entry.propOffset == propOffset;
        }) != nullptr;
    }

private:
    struct Entry {
        std::uint32_t propOffset;
        Entry* bucket_next;
        std::uint32_t Hash() const { return MixBits(0, propOffset); }
    };
    IndexedArray<Entry> entries_;
};

// What the device has below a key and a list does not delete.
class Survivors {
public:
    explicit Survivors(const ObjectFinder& deleted) : deleted_(deleted) {}

    bool AreBelow(const InfoBlock& key) {
        block_ = key;
        return AnyBelow();
    }

private:
    // Below the key that block_ names, which is as before afterwards.
    bool AnyBelow() {
        const UniqueHkey key = OpenKey(RootKey(block_.head().hive), Wide(block_.name()), KEY_READ);
        return key && (AnyValue(key.get()) || AnyKey(key.get()));
    }

    bool AnyValue(HKEY key) {
        for (DWORD i = 0;; ++i) {
            DWORD units = kNameUnits;
            const LONG status =
                ::RegEnumValueW(key, i, Wide(name_), &units, nullptr, nullptr, nullptr, nullptr);
            if (status != ERROR_SUCCESS) {
                return status != ERROR_NO_MORE_ITEMS;
            }
            if (Stays(ObjectType::kRegistryValue, kNameSeparator)) {
                return true;
            }
        }
    }

    bool AnyKey(HKEY key) {
        const std::size_t length = block_.head().name_bytes / sizeof(char16_t);
        for (DWORD i = 0;; ++i) {
            DWORD units = kNameUnits;
            const LONG status =
                ::RegEnumKeyExW(key, i, Wide(name_), &units, nullptr, nullptr, nullptr, nullptr);
            if (status != ERROR_SUCCESS) {
                return status != ERROR_NO_MORE_ITEMS;
            }
            if (Stays(ObjectType::kRegistryKey, u'\\')) {
                return true;
            }
            const bool found = !Lengthen(u'\\') || AnyBelow();
            Shorten(length);
            if (found) {
                return true;
            }
        }
    }

    // Whether the object name_ below the key stays on the device; also when it has too long a name
    // for any list.
    bool Stays(ObjectType type, char16_t separator) {
        const std::size_t length = block_.head().name_bytes / sizeof(char16_t);
        const bool fits = Lengthen(separator);
        block_.head().type = static_cast<std::uint16_t>(type);
        const ObjectRecord* record = fits ? deleted_.FindByName(block_) : nullptr;
        block_.head().type = static_cast<std::uint16_t>(ObjectType::kRegistryKey);
        Shorten(length);
        return record == nullptr;
    }

    bool Lengthen(char16_t separator) {
        const Text name(name_);
        const bool is_root = block_.head().name_bytes == 0 && separator == u'\\';
        return (is_root || block_.AppendName(&separator, 1)) &&
               block_.AppendName(name.data(), name.size());
    }
    void Shorten(std::size_t units) {
        block_.head().name_bytes = static_cast<std::uint16_t>(units * sizeof(char16_t));
        block_.name()[units] = 0;
    }

    const ObjectFinder& deleted_;
    InfoBlock block_;
    char16_t name_[kNameUnits];
};

bool KeepAboveWhatStays(ObjectList& difference, const ObjectList* target, InfoSource& info,
                        DeletedKeys& keys) {
    WrittenVersions written;
    if (!written.Build(difference)) {
        return false;
    }
    const auto keep = [&](const ObjectRecord& record) {
        InfoBlock block;
        if (FetchInfo(record, info, block)) {
            keys.KeepAbove(block);
        }
    };
    for (const ObjectList::Node& node : difference) {
        if (IsRegistryObject(*node.record) && IsHeldBack(*node.record)) {
            keep(*node.record);
        }
    }
    if (target == nullptr) {
        return true;
    }
    for (const ObjectList::Node& node : *target) {
        if (IsRegistryObject(*node.record) && !written.Hold(node.record->propOffset)) {
            keep(*node.record);
        }
    }
    return true;
}

bool KeepAboveSurvivors(ObjectList& difference, InfoSource& info, DeletedKeys& keys) {
    ObjectFinder deleted(info);
    if (!deleted.Reserve(difference.CountRecords())) {
        return false;
    }
    for (const ObjectList::Node& node : difference) {
        if (IsRegistryObject(*node.record) && IsPendingDeletion(*node.record)) {
            deleted.AddByName(*node.record);
        }
    }
    const std::unique_ptr<Survivors> survivors(new (std::nothrow) Survivors(deleted));
    if (survivors == nullptr) {
        return false;
    }
    keys.ForEachDeleted(
        [&](bool& is_kept, const InfoBlock& block) { is_kept = survivors->AreBelow(block); });
    return true;
}

}  // namespace

bool KeepKeys(ObjectList& difference, const ObjectList* target, bool of_other_states,
              InfoSource& info) {
    DeletedKeys keys(info);
    if (!keys.Build(difference)) {
        return false;
    }
    if (keys.count() == 0) {
        return true;
    }
    if (!KeepAboveWhatStays(difference, target, info, keys) ||
        (of_other_states && !KeepAboveSurvivors(difference, info, keys))) {
        return false;
    }
    keys.Finish();
    RemoveHandled(difference);
    return true;
}

}  // namespace tolvenar
