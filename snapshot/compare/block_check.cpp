#include "snapshot/compare/block_check.h"

#include <algorithm>
#include <new>
#include <string_view>

#include "snapshot/compare/object_name.h"
#include "snapshot/records/checksum.h"
#include "snapshot/records/registry_objects.h"
#include "storage/format/state_block.h"

namespace tolvenar {
namespace {

// The end of the block and its data, as the block itself tells it.
std::uint64_t EndOf(std::uint32_t offset, const InfoBlock& block) {
    return std::uint64_t{offset} + block.size() +
           (HasStoredData(block) ? block.head().data_bytes : 0);
}

std::u16string_view WholeName(const InfoBlock& block) {
    return {block.name(), block.head().name_bytes / sizeof(char16_t)};
}

bool IsStateBlock(const InfoBlock& block) {
    return block.type() == ObjectType::kState && WholeName(block) == kStateBlockName;
}

// Of a value, which may change between scan and writing, the data are not in it.
bool HasSoundIdentifier(const ObjectRecord& record, const InfoBlock& block) {
    if (!IsRegistryObject(record)) {
        return true;
    }
    const std::uint32_t made = MakeKeyTolvOID(block.head().hive, WholeName(block));
    const std::uint32_t looked_at = record.type == ObjectType::kRegistryKey ? 0xFFFFFF : 0xFFFF;
    return ((made ^ record.TolvOID) & looked_at) == 0;
}

class Tiling {
public:
    Tiling(StorageReader& stored, std::uint32_t begin, std::uint32_t end, const StateTable& states,
           Findings& findings, UnclaimedBlocks& unclaimed, VersionWatcher* watcher)
        : stored_(stored),
          end_(end),
          covered_(begin),
          states_(states),
          findings_(findings),
          unclaimed_(unclaimed),
          watcher_(watcher) {}

    void Take(StoredVersion& version) {
        const ObjectRecord& record = *version.record;
        if (record.propOffset < kStorageHeadBytes) {
            findings_.Add(u"a block in the head", record.state_number, record.propOffset);
        }
        if (before_ != nullptr && record.state_number < before_->record->state_number) {
            findings_.Add(u"blocks of states mixed", record.state_number, record.propOffset);
        }
        // The state's own block is the first of its backup.
        const bool is_first =
            before_ == nullptr || record.state_number != before_->record->state_number;
        const bool is_itself = record.type == ObjectType::kState;
        if (is_itself != is_first && (is_itself || !states_.LacksItself(record.state_number))) {
            findings_.Add(u"a block before its state's own", record.state_number,
                          record.propOffset);
        }
        MeetBlock(record);
        Check(version);
        before_ = &version;
    }

    bool Finish() {
        if (is_end_known_ && covered_ < end_) {
            MeetGap(end_, states_.highest(), true);
        }
        return !out_of_memory_;
    }

private:
    // What is between the end of the version before and this block.
    void MeetBlock(const ObjectRecord& record) {
        if (!is_end_known_ || record.propOffset == covered_) {
            return;
        }
        if (record.propOffset > covered_) {
            const bool begins_a_backup =
                before_ == nullptr || before_->record->state_number != record.state_number;
            MeetGap(record.propOffset, record.state_number, begins_a_backup);
        } else if (before_ == nullptr) {
            return;  // a head whose description is shorter than it says
        } else if (record.propOffset >= block_end_) {
            before_->damage = Damage::kData;
        } else {
            findings_.Add(u"blocks in one another", record.state_number, record.propOffset);
        }
    }

    void Check(StoredVersion& version) {
        const ObjectRecord& record = *version.record;
        InfoBlock block;
        is_end_known_ = stored_.GetInfoFromStorage(record.propOffset, block) &&
                        block.type() == record.type &&
                        Checksum16(block.bytes(), block.size()) == record.info_checksum;
        if (watcher_ != nullptr) {
            watcher_->Meet(record, is_end_known_ ? &block : nullptr);
        }
        if (!is_end_known_) {
            version.damage = Damage::kBlock;
            return;
        }
        version.name_hash = HashOfObject(block);
        block_end_ = record.propOffset + static_cast<std::uint32_t>(block.size());
        if (record.data_offset != (HasStoredData(block) ? block_end_ : kNoData)) {
            findings_.Add(u"data not behind their block", record.state_number, record.propOffset);
        }
        if (!HasSoundIdentifier(record, block)) {
            findings_.Add(u"identifier of another name", record.state_number, record.propOffset);
        }
        const std::uint64_t data_end = EndOf(record.propOffset, block);
        if (data_end > end_) {
            version.damage = Damage::kData;
        }
        covered_ = static_cast<std::uint32_t>(std::min<std::uint64_t>(data_end, end_));
    }

    // Nothing points to the bytes from covered_ to `gap_end`, where a block of `next_state` begins
    // or the file ends. An ended backup left its state's block at their begin, a failed item at the
    // end of a backup anything but a whole block.
    void MeetGap(std::uint32_t gap_end, std::uint32_t next_state, bool is_behind_a_backup) {
        const std::uint32_t state = before_ == nullptr ? 0 : before_->record->state_number;
        std::uint64_t block_end = 0;
        InfoBlock block;
        const bool is_whole = ReadWhole(covered_, gap_end, block, block_end);
        if (is_whole && IsStateBlock(block)) {
            if (AnyLacksItself(state, next_state)) {
                findings_.Add(u"record of the state lost", next_state, covered_);
            }
            return;
        }
        if (!is_behind_a_backup) {
            findings_.Add(u"record of a block lost", state, covered_);
            return;
        }
        if (!is_whole) {
            return;
        }
        InfoBlock second;
        std::uint64_t second_end = 0;
        const bool is_one_object =
            !ReadWhole(static_cast<std::uint32_t>(block_end), gap_end, second, second_end);
        if (!is_one_object) {
            findings_.Add(u"records of blocks lost", state, covered_);
        } else if (!unclaimed_.Add({covered_, static_cast<std::uint16_t>(state)})) {
            out_of_memory_ = true;
        }
    }

    // A whole block and its data between `offset` and `limit`.
    bool ReadWhole(std::uint32_t offset, std::uint32_t limit, InfoBlock& block,
                   std::uint64_t& block_end) {
        if (!stored_.GetInfoFromStorage(offset, block) || !IsKnownType(block.type())) {
            return false;
        }
        block_end = EndOf(offset, block);
        return block_end <= limit;
    }

    bool AnyLacksItself(std::uint32_t behind, std::uint32_t last) const {
        for (std::uint32_t state = behind + 1; state <= last; ++state) {
            if (states_.LacksItself(state)) {
                return true;
            }
        }
        return false;
    }

    StorageReader& stored_;
    const std::uint32_t end_;
    std::uint32_t covered_;        // behind the block and the data of the version before
    std::uint32_t block_end_ = 0;  // behind its block
    bool is_end_known_ = true;     // both mean something
    StoredVersion* before_ = nullptr;
    const StateTable& states_;
    Findings& findings_;
    UnclaimedBlocks& unclaimed_;
    VersionWatcher* const watcher_;
    bool out_of_memory_ = false;
};

}  // namespace

bool HasStoredData(const InfoBlock& block) {
    switch (block.type()) {
        case ObjectType::kRegistryKey: return false;
        case ObjectType::kFile:
            return (block.head().attributes & kAttributesWithoutData) == 0 &&
                   block.head().data_bytes != 0;
        default: return true;
    }
}

bool UnclaimedBlocks::Add(const UnclaimedBlock& block) {
    if (count_ == room_) {
        const std::size_t room = room_ == 0 ? 4 : 2 * room_;
        std::unique_ptr<UnclaimedBlock[]> grown(new (std::nothrow) UnclaimedBlock[room]);
        if (grown == nullptr) {
            return false;
        }
        std::copy_n(blocks_.get(), count_, grown.get());
        blocks_ = std::move(grown);
        room_ = room;
    }
    blocks_[count_++] = block;
    return true;
}

bool CheckBlocks(StoredVersion* versions, std::size_t count, StorageReader& stored,
                 std::uint32_t begin, std::uint32_t end, const StateTable& states,
                 Findings& findings, UnclaimedBlocks& unclaimed, VersionWatcher* watcher) {
    Tiling tiling(stored, begin, end, states, findings, unclaimed, watcher);
    std::for_each(versions, versions + count,
                  [&tiling](StoredVersion& version) { tiling.Take(version); });
    return tiling.Finish();
}

}  // namespace tolvenar
