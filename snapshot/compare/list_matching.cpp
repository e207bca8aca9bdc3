#include "snapshot/compare/list_matching.h"

#include <new>

#include "snapshot/compare/record_info.h"

namespace tolvenar {
namespace {

constexpr std::uint32_t kEnd = 0xFFFFFFFF;

std::uint32_t Mix(std::uint32_t hash, std::uint32_t word) {
    hash = (hash ^ word) * 0x9E3779B1u;
    return hash ^ (hash >> 15);
}

// Registry records can only match what has the same identifier but for its counter, all others only
// what has the same ids and info checksum, so these choose the bucket.
std::uint32_t RegistryHash(const ObjectRecord& record) {
    return Mix(1, record.TolvOID & kTolvOidMask);
}
std::uint32_t PlainHash(const ObjectRecord& record) {
    return Mix(Mix(Mix(0, record.dwOID), record.TolvOID), record.info_checksum);
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
    // The number of a database's records is no property of the database.
    const bool databases = a.type == ObjectType::kDatabase && b.type == ObjectType::kDatabase;
    return databases || a.content_fingerprint == b.content_fingerprint;
}

bool CandidateIndex::Build(const ObjectList& against) {
    const std::size_t count = against.CountRecords();
    bucket_count_ = 1;
    while (bucket_count_ < count) {
        bucket_count_ *= 2;
    }
    entries_.reset(new (std::nothrow) Entry[count + 1]);
    buckets_.reset(new (std::nothrow) std::uint32_t[bucket_count_]);
    if (entries_ == nullptr || buckets_ == nullptr) {
        return false;
    }

    std::uint32_t used = 0;
    for (ObjectList::Cursor node = against.First(); node != nullptr; node = node->next) {
        if (!(node->record->flags & JF_MATCHED)) {
            entries_[used++] = {node->record, kEnd};
        }
    }
    for (std::size_t i = 0; i < bucket_count_; ++i) {
        buckets_[i] = kEnd;
    }
    // From the back, so that every chain runs in the order of the list.
    while (used != 0) {
        Entry& entry = entries_[--used];
        const bool registry = IsRegistryObject(*entry.record);
        std::uint32_t& bucket =
            BucketOf(registry ? RegistryHash(*entry.record) : PlainHash(*entry.record));
        entry.next = bucket;
        bucket = used;
    }
    return true;
}

ObjectRecord* CandidateIndex::FirstMatch(const ObjectRecord& a, InfoSource& info) {
    // Candidates stand in two chains, which are followed together in the order of the list.
    std::uint32_t no_second_chain = kEnd;
    std::uint32_t* registry = &BucketOf(RegistryHash(a));
    std::uint32_t* plain = &BucketOf(PlainHash(a));
    if (plain == registry) {
        plain = &no_second_chain;
    }
    while (*registry != *plain) {
        std::uint32_t*& link = *registry < *plain ? registry : plain;
        Entry& entry = entries_[*link];
        if (entry.record->flags & JF_MATCHED) {
            *link = entry.next;
        } else if (IsMatch(a, *entry.record, info)) {
            return entry.record;
        } else {
            link = &entry.next;
        }
    }
    return nullptr;
}

}  // namespace tolvenar
