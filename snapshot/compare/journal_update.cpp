#include "snapshot/compare/journal_update.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace tolvenar {
namespace {

constexpr std::uint16_t kPendingFlags = JF_ADD | JF_DELETE;
// Ids from here on are given to versions whose object is on no device; devices count from below.
constexpr std::uint32_t kFirstStaleId = 0xF0000000;

// A block belongs to one object version, and updating an id does not move it: what an index may be
// made from.
std::uint32_t HashOf(std::uint32_t propOffset) { return MixBits(0, propOffset); }

bool IsSameVersion(const ObjectRecord& a, const ObjectRecord& b) {
    return a.dwOID == b.dwOID && a.info_checksum == b.info_checksum &&
           a.content_fingerprint == b.content_fingerprint && a.propOffset == b.propOffset &&
           a.data_offset == b.data_offset && a.type == b.type;
}

bool HaveOneKey(const ObjectRecord& a, const ObjectRecord& b) {
    return StatelessKeyOf(a) == StatelessKeyOf(b);
}

// Takes the records of a journal in the order of a walk and changes ids as they come by.
class IdChange {
public:
    IdChange(const ObjectRecord& object, std::uint32_t newOid) : object_(object), newOid_(newOid) {}

    // True when the record is the object's addition, which has the new id now.
    bool Visit(ObjectRecord& record) {
        if (!IsSameVersion(record, object_)) {
            return false;
        }
        if (record.state_number == object_.state_number) {
            if ((record.flags & JF_ADD) == 0 || !HasObjectStoreId(record.type)) {
                return false;
            }
            record.dwOID = newOid_;
            return true;
        }
        if (record.state_number > object_.state_number && (record.flags & JF_DELETE) != 0 &&
            (deletion_ == nullptr || record.state_number <= deletion_->state_number)) {
            deletion_ = &record;
        }
        return false;
    }

    void Finish() {
        if (deletion_ != nullptr) {
            deletion_->dwOID = newOid_;
        }
    }

private:
    const ObjectRecord object_;
    const std::uint32_t newOid_;
    ObjectRecord* deletion_ = nullptr;  // of the lowest state so far; of two, the later walked
};

}  // namespace

std::uint32_t JournalUpdater::Entry::Hash() const { return HashOf(record->propOffset); }

void JournalUpdater::BuildIndex() {
    index_tried_ = true;
    const std::size_t count = journal_->CountRecords();
    std::unique_ptr<Entry[]> entries(new (std::nothrow) Entry[count + 1]{});
    by_key_.reset(new (std::nothrow) Entry*[count + 1]);
    if (entries == nullptr || by_key_ == nullptr || !index_.Reserve(count)) {
        return;
    }
    std::size_t filled = 0;
    for (const ObjectList::Node& node : *journal_) {
        Entry& entry = entries[filled++];
        entry.record = node.record;
        if (HasObjectStoreId(node.record->type)) {
            by_key_[by_key_count_++] = &entry;
        }
    }
    // From the back, since each is put in front of its chain.
    while (filled != 0) {
        index_.Add(entries[--filled]);
    }
    entries_ = std::move(entries);
    SortByKey();
    FindLives();
}

// By key without state number, then as a replay meets them: by state, then as the journal is
// walked.
void JournalUpdater::SortByKey() {
    std::sort(by_key_.get(), by_key_.get() + by_key_count_, [](const Entry* a, const Entry* b) {
        const ObjectKey key_a = StatelessKeyOf(*a->record);
        const ObjectKey key_b = StatelessKeyOf(*b->record);
        const int order = std::memcmp(&key_a, &key_b, sizeof key_a);
        if (order != 0) {
            return order < 0;
        }
        const std::uint16_t state_a = a->record->state_number;
        const std::uint16_t state_b = b->record->state_number;
        return state_a != state_b ? state_a < state_b : a < b;
    });
}

void JournalUpdater::FindLives() {
    Entry* living = nullptr;
    for (std::size_t i = 0; i < by_key_count_; ++i) {
        Entry& entry = *by_key_[i];
        if (i != 0 && !HaveOneKey(*by_key_[i - 1]->record, *entry.record)) {
            living = nullptr;
        }
        if (living == nullptr && (entry.record->flags & kAdditionFlags) != 0) {
            living = &entry;
        }
        entry.life = living != nullptr ? living : &entry;
        if ((entry.record->flags & JF_DELETE) != 0) {
            living = nullptr;
        }
    }
}

void JournalUpdater::UpdateJournalOid(const ObjectRecord& record, std::uint32_t newOid) {
    if (newOid == 0 || journal_ == nullptr) {
        return;
    }
    if (!index_tried_) {
        BuildIndex();
    }
    IdChange change(record, newOid);
    if (entries_ == nullptr) {
        for (const ObjectList::Node& node : *journal_) {
            change.Visit(*node.record);
        }
    }
    Entry* entry = entries_ != nullptr ? index_.ChainOf(HashOf(record.propOffset)) : nullptr;
    for (; entry != nullptr; entry = entry->bucket_next) {
        if (change.Visit(*entry->record)) {
            entry->life->new_id = newOid;
        }
    }
    change.Finish();
}

bool JournalUpdater::SeparateVersions() {
    if (!index_tried_) {
        return true;
    }
    if (entries_ == nullptr) {
        return false;
    }
    Entry* const* const end = by_key_.get() + by_key_count_;
    for (Entry* const* at = by_key_.get(); at != end; ++at) {
        if ((*at)->life->new_id != 0) {
            (*at)->record->dwOID = (*at)->life->new_id;
        }
    }
    SortByKey();
    std::uint32_t stale_id = LowestStaleId();
    for (Entry* const* first = by_key_.get(); first != end;) {
        Entry* const* const next = std::find_if(first, end, [first](const Entry* entry) {
            return !HaveOneKey(*entry->record, *(*first)->record);
        });
        GiveWay(first, next, stale_id);
        first = next;
    }
    return true;
}

// Of the lives with one key, whose records these are, the one that has a new id keeps it, since its
// object is on the device; every other one gets an id of its own.
void JournalUpdater::GiveWay(Entry* const* begin, Entry* const* end, std::uint32_t& stale_id) {
    Entry* const* const kept =
        std::find_if(begin, end, [](const Entry* entry) { return entry->life->new_id != 0; });
    if (kept == end) {
        return;
    }
    const Entry* const living = (*kept)->life;
    for (Entry* const* at = begin; at != end; ++at) {
        Entry& life = *(*at)->life;
        if (&life == living) {
            continue;
        }
        if (life.new_id < kFirstStaleId) {
            life.new_id = --stale_id;
        }
        (*at)->record->dwOID = life.new_id;
    }
}

std::uint32_t JournalUpdater::LowestStaleId() const {
    std::uint32_t lowest = 0xFFFFFFFF;
    for (const ObjectList::Node& node : *journal_) {
        if (node.record->dwOID >= kFirstStaleId) {
            lowest = std::min(lowest, node.record->dwOID);
        }
    }
    return lowest;
}

void InvertPendingFlags(ObjectList& list) {
    for (ObjectList::Node& node : list) {
        if ((node.record->flags & kPendingFlags) != 0) {
            node.record->flags ^= kPendingFlags;
        }
    }
    list.RemoveIf([](const ObjectList::Node& node) { return node.record->flags == 0; });
}

}  // namespace tolvenar
