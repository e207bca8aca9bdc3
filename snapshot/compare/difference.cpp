#include "snapshot/compare/difference.h"

#include <algorithm>

#include "snapshot/compare/list_matching.h"
#include "snapshot/compare/state_replay.h"
#include "snapshot/text/log.h"

namespace tolvenar {
namespace {

// Enters a copy of `a`. The state number of `a` itself is set to 0 behind the copy; that of the
// copy leads back to the journal's records.
bool AddToDifference(ObjectRecord& a, std::uint16_t mark, ObjectList& diff) {
    if (a.type == ObjectType::kState) {
        return true;
    }
    const ObjectKey key = StatelessKeyOf(a);
    if (diff.FindByKey(key) != nullptr) {
        LogMessage(u"Key is equal", u"CmpLists", kLogNote);
    }
    ObjectRecord copy = a;
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
void Withdraw(const ObjectRecord& added, ObjectList& diff) {
    ObjectList::Node* node = diff.FindByKey(StatelessKeyOf(added));
    if (node != nullptr && (node->record->flags & JF_ADD)) {
        diff.Remove(*node);
    }
}

void MarkPair(ObjectRecord& a, ObjectRecord& b, std::uint16_t mark, ObjectList& diff) {
    a.flags |= JF_MATCHED;
    b.flags |= JF_MATCHED;
    if (mark == JF_DELETE && IsRegistryObject(a) && IsRegistryObject(b)) {
        Withdraw(b, diff);
    }
}

// Marks the pairs that are in both lists and enters the other records of `from` under `mark`.
bool Match(const ObjectList& from, const ObjectList& against, ObjectList& diff, std::uint16_t mark,
           InfoSource& info) {
    CandidateIndex candidates;
    if (!candidates.Build(against)) {
        return false;
    }
    for (const ObjectList::Node& node : from) {
        ObjectRecord& a = *node.record;
        if (a.flags & JF_MATCHED) {
            continue;
        }
        if (ObjectRecord* b = candidates.FirstMatch(a, info)) {
            MarkPair(a, *b, mark, diff);
        } else if (!AddToDifference(a, mark, diff)) {
            return false;
        }
    }
    return true;
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

bool CmpLists(ObjectList* older, ObjectList* newer, ObjectList& diff, InfoSource& info) {
    const std::unique_ptr<ObjectList> empty = ObjectList::CreateList();
    if (empty == nullptr) {
        return false;
    }
    const ObjectList& from = older != nullptr ? *older : *empty;
    const ObjectList& to = newer != nullptr ? *newer : *empty;
    return Match(to, from, diff, JF_ADD, info) && Match(from, to, diff, JF_DELETE, info);
}

}  // namespace tolvenar
