#include "snapshot/compare/difference.h"

#include <algorithm>

#include "snapshot/compare/entry_key.h"
#include "snapshot/compare/list_matching.h"
#include "snapshot/compare/state_replay.h"
#include "snapshot/text/log.h"

namespace tolvenar {
namespace {

// Enters a copy of `a`. The state number of `a` itself is set to 0 behind the copy; that of the
// copy leads back to the journal's records.
bool AddToDifference(ObjectRecord& a, std::uint16_t mark, ObjectList& diff, InfoSource& info) {
    if (a.type == ObjectType::kState) {
        return true;
    }
    const ObjectKey own_key = StatelessKeyOf(a);
    if (diff.FindByKey(own_key) != nullptr) {
        LogMessage(u"Key is equal", u"CmpLists", kLogNote);
    }
    const ObjectKey key = EntryKey(diff, own_key, a, info);
    ObjectRecord copy = a;
    if (mark == JF_DELETE) {
        // The journal holds one record for each key, too. An addition keeps its identifier, by
        // which the device describes it; a deletion finds its object under any counter.
        copy.TolvOID = key.TolvOID;
    }
    copy.flags = static_cast<std::uint16_t>((copy.flags & ~(JF_PRESENT | JF_MATCHED)) | mark);
    if (!diff.InsertCopy(key, copy)) {
        return false;
    }
    a.state_number = 0;
    return true;
}

// Takes an addition out again: only its second comparison could read both descriptions (the first
// failed for a moment), and it is no difference. A restore would delete the object and have nothing
// to write back.
void Withdraw(const ObjectRecord& added, ObjectList& diff, InfoSource& info) {
    ObjectList::Node* node = diff.FindByKey(EntryKey(diff, StatelessKeyOf(added), added, info));
    if (node != nullptr && (node->record->flags & JF_ADD)) {
        diff.Remove(*node);
    }
}

void MarkPair(ObjectRecord& a, ObjectRecord& b, std::uint16_t mark, ObjectList& diff,
              InfoSource& info) {
    a.flags |= JF_MATCHED;
    b.flags |= JF_MATCHED;
    if (mark == JF_DELETE && IsRegistryObject(a) && IsRegistryObject(b)) {
        Withdraw(b, diff, info);
    }
}

// Marks the pairs that are in both lists and enters the other records of `from` under `mark`.
bool Match(const ObjectList& from, const ObjectList& against, ObjectList& diff, std::uint16_t mark,
           InfoSource& info, PairTest may_match) {
    CandidateIndex candidates;
    if (!candidates.Build(against)) {
        return false;
    }
    for (const ObjectList::Node& node : from) {
        ObjectRecord& a = *node.record;
        if (a.flags & JF_MATCHED) {
            continue;
        }
        if (ObjectRecord* b = candidates.FirstMatch(a, info, may_match)) {
            MarkPair(a, *b, mark, diff, info);
        } else if (!AddToDifference(a, mark, diff, info)) {
            return false;
        }
    }
    return true;
}

// The description of a value tells its type and its length, its fingerprint the data.
bool MayBeOneVersion(const ObjectRecord& a, const ObjectRecord& b) {
    if (!IsRegistryObject(a) || !IsRegistryObject(b)) {
        return true;
    }
    return a.type == b.type &&
           (a.type == ObjectType::kRegistryKey ||
            (a.content_fingerprint == b.content_fingerprint && a.info_checksum == b.info_checksum));
}

}  // namespace

bool BuildStateList(ObjectList& out, const ObjectList& all, std::uint32_t state, InfoSource& info) {
    const std::uint32_t first = all.MinStateNumber();
    if (all.CountRecords() == 0 || first > state) {
        return true;
    }
    const std::uint32_t last = std::min<std::uint32_t>(state, 0xFFFF);
    NodesByState nodes;
    StateReplay replay(out, info);
    if (!nodes.Build(all, static_cast<std::uint16_t>(first), static_cast<std::uint16_t>(last)) ||
        !replay.Reserve(nodes.size())) {
        return false;
    }
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const ObjectRecord& record = *nodes[i].record;
        // Of the state records only the state's own belongs to it.
        if (record.type == ObjectType::kState && record.state_number != state) {
            continue;
        }
        if (!replay.Apply(nodes[i])) {
            return false;
        }
    }
    return true;
}

bool CmpLists(ObjectList* older, ObjectList* newer, ObjectList& diff, InfoSource& info,
              PairTest may_match) {
    const std::unique_ptr<ObjectList> empty = ObjectList::CreateList();
    if (empty == nullptr) {
        return false;
    }
    const ObjectList& from = older != nullptr ? *older : *empty;
    const ObjectList& to = newer != nullptr ? *newer : *empty;
    return Match(to, from, diff, JF_ADD, info, may_match) &&
           Match(from, to, diff, JF_DELETE, info, may_match);
}

bool FindChanges(ObjectList* older, ObjectList* newer, ObjectList& diff, InfoSource& info) {
    return CmpLists(older, newer, diff, info, MayBeOneVersion);
}

}  // namespace tolvenar
