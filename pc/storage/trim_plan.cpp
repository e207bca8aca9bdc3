#include "pc/storage/trim_plan.h"

#include <map>
#include <new>
#include <string>

#include "pc/storage/stored_object.h"
#include "pc/text/failure.h"
#include "pc/text/utf.h"
#include "snapshot/compare/block_check.h"
#include "snapshot/compare/entry_key.h"
#include "snapshot/compare/record_info.h"

namespace tolvenar::pc {
namespace {

// The objects of a state by the places of their blocks, which tell one version from another.
using Blocks = std::map<std::uint32_t, ObjectRecord>;

Blocks BlocksOf(StoredPair& pair, std::uint16_t state) {
    Blocks blocks;
    const std::unique_ptr<ObjectList> list = pair.BuildState(state);
    for (const ObjectList::Node& node : *list) {
        if (node.record->type != ObjectType::kState) {
            blocks[node.record->propOffset] = *node.record;
        }
    }
    return blocks;
}

class Trimmer {
public:
    explicit Trimmer(StoredPair& pair) : pair_(pair) { Copy(0, pair.sizes().storage_head); }

    void Add(const State& state) {
        ++number_;
        Place(*state.record, state.record->TolvOID);
        const Blocks blocks = BlocksOf(pair_, state.number);
        const std::unique_ptr<ObjectList> changes = ObjectList::CreateList();
        if (changes == nullptr) {
            throw std::bad_alloc();
        }
        for (const auto& [offset, record] : blocks) {
            if (before_.count(offset) == 0) {
                placed_[offset] = Place(record, Enter(*changes, record));
            }
        }
        for (const auto& [offset, record] : before_) {
            if (blocks.count(offset) == 0 && !IsReplaced(*changes, record)) {
                Delete(offset, Enter(*changes, record));
            }
        }
        before_ = blocks;
    }
    TrimPlan Finish() { return std::move(plan_); }

private:
    // The identifier under which the journal can hold the record beside what has entered before.
    std::uint32_t Enter(ObjectList& changes, const ObjectRecord& record) {
        const ObjectKey key = EntryKey(changes, StatelessKeyOf(record), record, pair_.info());
        if (!changes.InsertCopy(key, record)) {
            throw std::bad_alloc();
        }
        return key.TolvOID;
    }
    // An addition under the same key takes the place of its older version; a deletion would take
    // the new one away.
    bool IsReplaced(const ObjectList& added, const ObjectRecord& record) {
        const ObjectList::Node* const node = added.FindByKey(StatelessKeyOf(record));
        return node != nullptr &&
               (!IsRegistryObject(record) ||
                CompareObjects(record, *node->record, pair_.info()) == Sameness::kSame);
    }
    ObjectRecord Place(const ObjectRecord& record, std::uint32_t TolvOID) {
        InfoBlock block;
        if (pair_.check().DamageOf(record) != Damage::kNone ||
            !pair_.reader().GetInfoFromStorage(record.propOffset, block)) {
            throw Failure(ExitCode::kDamaged,
                          Printable(PathOf(Describe(pair_, record))) +
                              " is damaged, and a new pair must not be: nothing was written");
        }
        const auto block_bytes = static_cast<std::uint32_t>(block.size());
        ObjectRecord placed = record;
        placed.TolvOID = TolvOID;
        placed.propOffset = plan_.storage_bytes;
        placed.data_offset = HasStoredData(block) ? plan_.storage_bytes + block_bytes : kNoData;
        Copy(record.propOffset, block_bytes + (HasStoredData(block) ? block.head().data_bytes : 0));
        Record(placed, JF_ADD);
        return placed;
    }
    void Delete(std::uint32_t offset, std::uint32_t TolvOID) {
        ObjectRecord record = placed_.at(offset);
        record.TolvOID = TolvOID;
        Record(record, JF_DELETE);
    }
    void Record(ObjectRecord record, std::uint16_t flags) {
        record.state_number = number_;
        record.flags = flags;
        plan_.journal.push_back(record);
    }
    void Copy(std::uint32_t offset, std::uint32_t bytes) {
        plan_.pieces.push_back({offset, bytes});
        plan_.storage_bytes += bytes;
    }

    StoredPair& pair_;
    TrimPlan plan_;
    std::uint16_t number_ = 0;
    Blocks before_;  // of the state before
    Blocks placed_;  // the new records, by the old places
};

// The bytes of a block's head and name, and those of its data by their checksum's record.
std::multimap<std::string, std::uint16_t> ContentsOf(StoredPair& pair, std::uint16_t state) {
    std::multimap<std::string, std::uint16_t> contents;
    for (const auto& [offset, record] : BlocksOf(pair, state)) {
        InfoBlock block;
        if (pair.reader().GetInfoFromStorage(offset, block)) {
            contents.emplace(
                std::string(reinterpret_cast<const char*>(block.bytes()), block.size()) +
                    std::to_string(record.dwOID),
                record.content_fingerprint);
        }
    }
    return contents;
}

}  // namespace

TrimPlan PlanTrim(StoredPair& pair, const std::vector<State>& kept) {
    Trimmer trimmer(pair);
    for (const State& state : kept) {
        trimmer.Add(state);
    }
    return trimmer.Finish();
}

bool IsTrimOf(StoredPair& trimmed, StoredPair& pair, const std::vector<State>& kept) {
    if (!trimmed.findings().empty() || trimmed.states().size() != kept.size()) {
        return false;
    }
    for (std::size_t i = 0; i < kept.size(); ++i) {
        if (ContentsOf(trimmed, trimmed.states()[i].number) != ContentsOf(pair, kept[i].number)) {
            return false;
        }
    }
    return true;
}

}  // namespace tolvenar::pc
