#include "pc/storage/pair_plan.h"

#include <new>

#include "pc/text/failure.h"
#include "snapshot/compare/block_check.h"
#include "snapshot/compare/entry_key.h"
#include "snapshot/compare/record_info.h"
#include "snapshot/records/checksum.h"

namespace tolvenar::pc {

void PairPlanner::AddState(const ObjectRecord& title, const std::string& made, Blocks blocks) {
    if (number_ == 0xFFFF) {
        throw Failure(ExitCode::kCannot, "a storage has at most 65535 states");
    }
    ++number_;
    if (made.empty()) {
        Place(title, title.TolvOID);
    } else {
        MakeTitle(made);
    }
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
    plan_.objects.push_back(blocks.size());
    before_ = std::move(blocks);
}

// The identifier under which the journal can hold the record beside what has entered before.
std::uint32_t PairPlanner::Enter(ObjectList& changes, const ObjectRecord& record) {
    const ObjectKey key = EntryKey(changes, StatelessKeyOf(record), record, info_);
    if (!changes.InsertCopy(key, record)) {
        throw std::bad_alloc();
    }
    return key.TolvOID;
}

// An addition under the same key takes the place of its older version; a deletion would take the
// new one away.
bool PairPlanner::IsReplaced(const ObjectList& added, const ObjectRecord& record) {
    const ObjectList::Node* const node = added.FindByKey(StatelessKeyOf(record));
    return node != nullptr && (!IsRegistryObject(record) ||
                               CompareObjects(record, *node->record, info_) == Sameness::kSame);
}

void PairPlanner::MakeTitle(const std::string& made) {
    InfoBlock block;
    ParseInfoBlock(made.data(), made.size(), block);
    ObjectRecord record{};
    record.type = ObjectType::kState;
    record.info_checksum = Checksum16(block.bytes(), block.size());
    record.propOffset = plan_.storage_bytes;
    record.data_offset = plan_.storage_bytes + static_cast<std::uint32_t>(block.size());
    Make(made);
    Record(record, JF_ADD);
}

ObjectRecord PairPlanner::Place(const ObjectRecord& record, std::uint32_t TolvOID) {
    InfoBlock block;
    if (!reader_.GetInfoFromStorage(record.propOffset, block)) {
        throw Failure(ExitCode::kDamaged, "the block at " + std::to_string(record.propOffset) +
                                              " cannot be read: nothing was written");
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

void PairPlanner::Delete(std::uint32_t offset, std::uint32_t TolvOID) {
    ObjectRecord record = placed_.at(offset);
    record.TolvOID = TolvOID;
    Record(record, JF_DELETE);
}

void PairPlanner::Record(ObjectRecord record, std::uint16_t flags) {
    record.state_number = number_;
    record.flags = flags;
    plan_.journal.push_back(record);
}

void PairPlanner::Copy(std::uint32_t offset, std::uint32_t bytes) {
    plan_.pieces.push_back({offset, bytes, {}});
    Grow(bytes);
}

void PairPlanner::Make(const std::string& bytes) {
    plan_.pieces.push_back({0, static_cast<std::uint32_t>(bytes.size()), bytes});
    Grow(bytes.size());
}

void PairPlanner::Grow(std::size_t bytes) {
    if (bytes > 0xFFFFFFFF - std::size_t{plan_.storage_bytes}) {
        throw Failure(ExitCode::kCannot, "the new storage would be larger than 4 GB");
    }
    plan_.storage_bytes += static_cast<std::uint32_t>(bytes);
}

}  // namespace tolvenar::pc
