// What is left of a journal: the records that lead to blocks, whatever else is lost.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "snapshot/records/object_record.h"
#include "storage/format/storage_reader.h"

namespace tolvenar::pc {

class SurvivingRecords {
public:
    // None without a journal. What of it can be read is taken.
    explicit SurvivingRecords(const std::string& journal_path);

    std::size_t count() const { return count_; }
    // The record that proves the block at `offset`: it has its checksum and type, and leads to its
    // data. An addition goes before a deletion. Null when there is none.
    const ObjectRecord* ProofOf(std::uint32_t offset, const InfoBlock& block) const;
    // Some record leads to this place, so if none proves the block there one of both is damaged.
    bool LeadTo(std::uint32_t offset) const { return by_block_.count(offset) != 0; }
    // The places that records lead to, in order.
    std::vector<std::uint32_t> Places() const;
    // A later state deleted what is stored at this place.
    bool TellDeletionOf(std::uint32_t offset) const;
    bool HaveId(std::uint32_t dwOID) const { return ids_.count(dwOID) != 0; }

private:
    std::map<std::uint32_t, std::vector<ObjectRecord>> by_block_;
    std::set<std::uint32_t> ids_;
    std::size_t count_ = 0;
};

}  // namespace tolvenar::pc
