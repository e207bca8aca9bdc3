#include "snapshot/compare/kept_objects.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>

#include "snapshot/compare/record_info.h"

namespace tolvenar {
namespace {

bool IsRegistryObjectWith(const ObjectRecord& record, std::uint16_t flag) {
    return IsRegistryObject(record) && (record.flags & flag) != 0;
}

// Two versions of one value come this far when their data differ and the identifier does not show
// it: writing the one over the other is all that it takes, and should it fail the other is there.
bool MayBeSameObject(const ObjectRecord& deleted, const ObjectRecord& stored, InfoSource& info) {
    if (deleted.type != stored.type) {
        return false;
    }
    InfoBlock deleted_block;
    InfoBlock stored_block;
    if (!FetchInfo(deleted, info, deleted_block) || !FetchInfo(stored, info, stored_block)) {
        return true;
    }
    return HaveOneName(deleted_block, stored_block);
}

// The registry objects that are written back, by identifiers without their counters: a deletion
// then looks at few of them, where a large change of the registry has thousands of each.
class WrittenBack {
public:
    // False when there is no memory.
    bool Build(const ObjectList& diff) {
        records_.reset(new (std::nothrow) const ObjectRecord*[diff.CountRecords() + 1]);
        if (records_ == nullptr) {
            return false;
        }
        for (const ObjectList::Node& node : diff) {
            if (IsRegistryObjectWith(*node.record, JF_DELETE)) {
                records_[count_++] = node.record;
            }
        }
        std::sort(begin(), end(),
                  [](const ObjectRecord* a, const ObjectRecord* b) { return IdOf(*a) < IdOf(*b); });
        return true;
    }
    bool MayHold(const ObjectRecord& deleted, InfoSource& info) const {
        const ObjectRecord** at =
            std::lower_bound(begin(), end(), IdOf(deleted),
                             [](const ObjectRecord* a, auto id) { return IdOf(*a) < id; });
        for (; at != end() && IdOf(**at) == IdOf(deleted); ++at) {
            if (MayBeSameObject(deleted, **at, info)) {
                return true;
            }
        }
        return false;
    }

private:
    static std::uint32_t IdOf(const ObjectRecord& record) { return record.TolvOID & kTolvOidMask; }
    const ObjectRecord** begin() const { return records_.get(); }
    const ObjectRecord** end() const { return records_.get() + count_; }

    std::unique_ptr<const ObjectRecord*[]> records_;
    std::size_t count_ = 0;
};

}  // namespace

bool KeepStoredObjects(ObjectList& diff, InfoSource& info) {
    WrittenBack written_back;
    if (!written_back.Build(diff)) {
        return false;
    }
    for (ObjectList::Node& node : diff) {
        ObjectRecord& record = *node.record;
        if (IsRegistryObjectWith(record, JF_ADD) && written_back.MayHold(record, info)) {
            record.flags = 0;
        }
    }
    return true;
}

}  // namespace tolvenar
