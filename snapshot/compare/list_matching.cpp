#include "snapshot/compare/list_matching.h"

#include <new>

#include "snapshot/compare/record_info.h"

namespace tolvenar {
namespace {

// Registry records can only match what has the same identifier but for its counter, all others only
// what has the same ids and info checksum, so these choose the bucket.
std::uint32_t RegistryHash(const ObjectRecord& record) {
    return MixBits(1, record.TolvOID & kTolvOidMask);
}
std::uint32_t PlainHash(const ObjectRecord& record) {
    return MixBits(MixBits(MixBits(0, record.dwOID), record.TolvOID), record.info_checksum);
}

// A registry value is compared by name with whatever it is offered to, a key with registry objects.
bool IsRegistryPair(const ObjectRecord& a, const ObjectRecord& b) {
    return b.type == ObjectType::kRegistryValue ||
           (b.type == ObjectType::kRegistryKey && IsRegistryObject(a));
}

}  // namespace

bool IsMatch(const ObjectRecord& a, const ObjectRecord& b, InfoSource& info) {
    if (IsRegistryPair(a, b)) {
        return SameTolvOID(a, b) && IsEqualRegs(a, b, info);
    }
    if (a.dwOID != b.dwOID || a.TolvOID != b.TolvOID || a.info_checksum != b.info_checksum) {
        return false;
    }
    return (CountsRecords(a.type) && CountsRecords(b.type)) ||
           a.content_fingerprint == b.content_fingerprint;
}

std::uint32_t CandidateIndex::Entry::Hash() const {
    return IsRegistryObject(*record) ? RegistryHash(*record) : PlainHash(*record);
}

bool CandidateIndex::Build(const ObjectList& against) {
    const std::size_t count = against.CountRecords();
    entries_.reset(new (std::nothrow) Entry[count + 1]);
    if (entries_ == nullptr || !index_.Reserve(count)) {
        return false;
    }
    std::size_t used = 0;
    for (const ObjectList::Node& node : against) {
        if (!(node.record->flags & JF_MATCHED)) {
            entries_[used++] = {node.record, nullptr};
        }
    }
    // From the back, since each is put in front of its chain.
    while (used != 0) {
        index_.Add(entries_[--used]);
    }
    return true;
}

ObjectRecord* CandidateIndex::FirstMatch(const ObjectRecord& a, InfoSource& info,
                                         PairTest may_match) {
    // Candidates stand in two chains, which are followed together in the order of the list.
    Entry* no_second_chain = nullptr;
    Entry** registry = &index_.LinkOf(RegistryHash(a));
    Entry** plain = &index_.LinkOf(PlainHash(a));
    if (plain == registry) {
        plain = &no_second_chain;
    }
    while (*registry != *plain) {
        Entry**& link = IsEarlier(*registry, *plain) ? registry : plain;
        Entry& entry = **link;
        if (entry.record->flags & JF_MATCHED) {
            index_.RemoveAt(*link);
        } else if ((may_match == nullptr || may_match(a, *entry.record)) &&
                   IsMatch(a, *entry.record, info)) {
            return entry.record;
        } else {
            link = &entry.bucket_next;
        }
    }
    return nullptr;
}

}  // namespace tolvenar
