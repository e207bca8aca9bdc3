// What a restore does to lists: new object ids for the journal, and turning a list's sense round.
// Platform-free.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "snapshot/records/hash_index.h"
#include "snapshot/records/object_list.h"

namespace tolvenar {

// Gives re-created objects their new ids in the journal. The results are those of walking the whole
// journal for each object; an index, made with the first object, leaves only the records of the
// same data block to be looked at. Without memory for it the journal is walked.
class JournalUpdater {
public:
    // `journal` keeps its records for as long as this lives; null when there is none.
    explicit JournalUpdater(ObjectList* journal) : journal_(journal) {}
    JournalUpdater(const JournalUpdater&) = delete;
    JournalUpdater& operator=(const JournalUpdater&) = delete;

    // The object of `record`, a difference list's, is `newOid` now; nothing happens when that is 0.
    // Its additions in the same state get the new id, and so does the next later deletion of it.
    // Nodes keep the keys under which they stand.
    void UpdateJournalOid(const ObjectRecord& record, std::uint32_t newOid);

    // After the last object; the journal's states hold the same objects then as before. Versions
    // that replace one another without a deletion, as those of a file of which only the contents
    // changed, share an id: the new one goes to all of them and to the deletion that ends them. A
    // device that was reset gives out ids again, so a new id may be the stale one of another
    // version, which would be one with this one as soon as a state held both: it gets an id that no
    // object has. False without memory: the journal must not be saved then.
    bool SeparateVersions();

private:
    struct Entry {
        ObjectRecord* record;
        Entry* bucket_next;
        // The first record of the same life, null for an object without an object-store id. A life
        // begins with an addition, goes on with the additions that replace it and ends with the
        // deletion of the last one; all its records have one key without state number.
        Entry* life;
        std::uint32_t new_id;  // of a life, in its first record; 0 while it keeps its id

        std::uint32_t Hash() const;
    };

    void BuildIndex();
    void SortByKey();
    void FindLives();
    void GiveWay(Entry* const* begin, Entry* const* end, std::uint32_t& stale_id);
    std::uint32_t LowestStaleId() const;

    ObjectList* journal_;
    bool index_tried_ = false;
    std::unique_ptr<Entry[]> entries_;  // null without an index
    HashIndex<Entry> index_;            // every chain in the order of the journal
    std::unique_ptr<Entry*[]> by_key_;  // those that belong to a life
    std::size_t by_key_count_ = 0;
};

// Exchanges JF_ADD and JF_DELETE of every record that has either, and removes every record that has
// no flag then: those that were handled, and those that had both.
void InvertPendingFlags(ObjectList& list);

}  // namespace tolvenar
