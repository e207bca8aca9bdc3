#include "pc/storage/surviving_records.h"

#include <algorithm>

#include "pc/storage/file_bytes.h"
#include "snapshot/compare/block_check.h"
#include "snapshot/records/checksum.h"
#include "storage/format/journal_records.h"

namespace tolvenar::pc {
namespace {

bool Proves(const ObjectRecord& record, std::uint32_t offset, const InfoBlock& block) {
    const std::uint32_t data =
        HasStoredData(block) ? offset + static_cast<std::uint32_t>(block.size()) : kNoData;
    return IsKnownType(record.type) && record.type == block.type() && record.data_offset == data &&
           record.info_checksum == Checksum16(block.bytes(), block.size());
}

}  // namespace

SurvivingRecords::SurvivingRecords(const std::string& journal_path) {
    if (journal_path.empty()) {
        return;
    }
    FileBytes file(journal_path);
    JournalRecordReader reader(file);
    ObjectRecord record;
    while (reader.Next(record)) {
        std::vector<ObjectRecord>& records = by_block_[record.propOffset];
        const bool is_addition = (record.flags & kAdditionFlags) != 0;
        records.insert(is_addition ? records.begin() : records.end(), record);
        ids_.insert(record.dwOID);
        ++count_;
    }
}

const ObjectRecord* SurvivingRecords::ProofOf(std::uint32_t offset, const InfoBlock& block) const {
    const auto records = by_block_.find(offset);
    if (records == by_block_.end()) {
        return nullptr;
    }
    const auto proof =
        std::find_if(records->second.begin(), records->second.end(),
                     [&](const ObjectRecord& record) { return Proves(record, offset, block); });
    return proof == records->second.end() ? nullptr : &*proof;
}

std::vector<std::uint32_t> SurvivingRecords::Places() const {
    std::vector<std::uint32_t> places;
    for (const auto& [place, records] : by_block_) {
        places.push_back(place);
    }
    return places;
}

bool SurvivingRecords::TellDeletionOf(std::uint32_t offset) const {
    const auto records = by_block_.find(offset);
    return records != by_block_.end() &&
           std::any_of(records->second.begin(), records->second.end(),
                       [](const ObjectRecord& record) { return (record.flags & JF_DELETE) != 0; });
}

}  // namespace tolvenar::pc
