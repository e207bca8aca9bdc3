#include "snapshot/compare/state_replay.h"

#include <new>

#include "snapshot/compare/entry_key.h"
#include "snapshot/compare/record_info.h"

namespace tolvenar {
namespace {

// True when a deletion's record repeats what stands in front of the state number in an addition's.
// The counter may differ: a deletion takes another one where its key was taken.
bool RepeatsBytes(const ObjectRecord& deletion, const ObjectRecord& addition) {
    return HaveOneBlock(deletion, addition) && deletion.dwOID == addition.dwOID &&
           deletion.info_checksum == addition.info_checksum &&
           deletion.content_fingerprint == addition.content_fingerprint &&
           deletion.data_offset == addition.data_offset;
}

// The same block is the same object, also when the block can no longer be read: a damaged one must
// not bring its object back as an old version in every later state.
bool IsSameObject(const ObjectRecord& record, const ObjectRecord& candidate, InfoSource& info) {
    return SameTolvOID(record, candidate) &&
           (HaveOneBlock(record, candidate) ||
            CompareObjects(record, candidate, info) == Sameness::kSame);
}

std::uint32_t HashOf(const ObjectRecord& record) {
    return MixBits(0, record.TolvOID & kTolvOidMask);
}

}  // namespace

std::uint32_t RegistryIndex::Entry::Hash() const { return HashOf(*node->record); }

bool RegistryIndex::Reserve(std::size_t additions) {
    entries_.reset(new (std::nothrow) Entry[additions + 1]{});
    used_ = 0;
    index_.Clear();
    return entries_ != nullptr && index_.Reserve(additions);
}

void RegistryIndex::Add(ObjectList::Node& node) {
    if (!IsRegistryObject(*node.record)) {
        return;
    }
    Entry& entry = entries_[used_++];
    entry.node = &node;
    // A new node stands at the front of the list; one whose record was replaced kept its place.
    index_.AddBehind(entry,
                     [&node](const Entry& present) { return present.node->serial > node.serial; });
}

void RegistryIndex::Remove(const ObjectList::Node& node) {
    if (!IsRegistryObject(*node.record)) {
        return;
    }
    Entry** link = &index_.LinkOf(HashOf(*node.record));
    while ((*link)->node != &node) {
        link = &(*link)->bucket_next;
    }
    index_.RemoveAt(*link);
}

ObjectList::Node* RegistryIndex::FindSame(const ObjectRecord& record, InfoSource& info) const {
    // Two versions of one value may have one identifier: the bytes tell which of them is meant.
    const Entry* entry = index_.Find(HashOf(record), [&record](const Entry& present) {
        return RepeatsBytes(record, *present.node->record);
    });
    if (entry == nullptr) {
        entry = index_.Find(HashOf(record), [&record, &info](const Entry& present) {
            return IsSameObject(record, *present.node->record, info);
        });
    }
    return entry == nullptr ? nullptr : entry->node;
}

bool NodesByState::Build(const ObjectList& list, std::uint16_t first, std::uint16_t last) {
    const std::size_t states = last - first + std::size_t{1};
    std::unique_ptr<std::size_t[]> starts(new (std::nothrow) std::size_t[states + 1]{});
    nodes_.reset(new (std::nothrow) const ObjectList::Node* [list.CountRecords() + 1] {});
    if (starts == nullptr || nodes_ == nullptr) {
        return false;
    }

    for (const ObjectList::Node& node : list) {
        const std::uint16_t state = node.record->state_number;
        if (state >= first && state <= last) {
            ++starts[state - first + 1u];
        }
    }
    for (std::size_t i = 0; i < states; ++i) {
        starts[i + 1] += starts[i];
    }
    size_ = starts[states];
    for (const ObjectList::Node& node : list) {
        const std::uint16_t state = node.record->state_number;
        if (state >= first && state <= last) {
            nodes_[starts[state - first]++] = &node;
        }
    }
    return true;
}

bool StateReplay::Apply(const ObjectList::Node& source) {
    const ObjectKey key = source.key.Stateless();
    const ObjectRecord& record = *source.record;
    if ((record.flags & kAdditionFlags) && !Add(key, record)) {
        return false;
    }
    if (record.flags & JF_DELETE) {
        Delete(key, record);
    }
    return true;
}

bool StateReplay::Add(const ObjectKey& own_key, const ObjectRecord& record) {
    const ObjectKey key = EntryKey(out_, own_key, record, info_);
    ObjectRecord copy = record;
    copy.flags = 0;
    if (const ObjectList::Node* present = out_.FindByKey(key)) {
        if (CountsRecords(record.type) && (record.flags & kFlagAddition20)) {
            copy.content_fingerprint = static_cast<std::uint16_t>(
                copy.content_fingerprint + present->record->content_fingerprint);
        }
        registry_.Remove(*present);
        TellOfEnd(*present->record);
    }
    ObjectList::Node* node = out_.InsertByKey(key, copy);
    if (node == nullptr) {
        return false;
    }
    registry_.Add(*node);
    if (watcher_ != nullptr) {
        watcher_->Come(record);
    }
    return true;
}

void StateReplay::Delete(const ObjectKey& key, const ObjectRecord& record) {
    ObjectList::Node* counterpart =
        IsRegistryObject(record) ? registry_.FindSame(record, info_) : out_.FindByKey(key);
    if (counterpart == nullptr) {
        return;
    }
    registry_.Remove(*counterpart);
    TellOfEnd(*counterpart->record);
    out_.Remove(*counterpart);
}

void StateReplay::TellOfEnd(const ObjectRecord& record) {
    if (watcher_ != nullptr) {
        watcher_->Go(record);
    }
}

}  // namespace tolvenar
