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

    // After the last object. A device that was reset gives out ids again, so a new id may be the
    // stale one of another version of the journal, and two records of one state with one key are
    // one when the journal is loaded again. Such a version gets an id that no object has. False
    // without memory: the journal must not be saved then.
    bool SeparateVersions();

private:
    // The data block of an object and the id that it has now.
    struct NewId {
        std::uint32_t oid;
        std::uint32_t propOffset;
    };
    struct Entry {
        ObjectRecord* record;
        Entry* bucket_next;

        std::uint32_t Hash() const;
    };

    void BuildIndex();
    void Remember(const NewId& id);
    const NewId* FindOtherVersion(const ObjectRecord& record) const;
    bool HasKeyOfNewId(const ObjectRecord& record, const NewId& id) const;
    void GiveId(const ObjectRecord& version, std::uint32_t oid);
    std::uint32_t LowestStaleId() const;

    ObjectList* journal_;
    bool index_tried_ = false;
    std::unique_ptr<Entry[]> entries_;  // null without an index
    HashIndex<Entry> index_;            // every chain in the order of the journal
    std::unique_ptr<NewId[]> new_ids_;
    std::size_t new_id_count_ = 0;
    std::size_t new_id_room_ = 0;
    bool is_complete_ = true;  // every new id could be remembered
};

// Exchanges JF_ADD and JF_DELETE of every record that has either, and removes every record that has
// no flag then: those that were handled, and those that had both.
void InvertPendingFlags(ObjectList& list);

}  // namespace tolvenar
