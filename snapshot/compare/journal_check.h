// What the records of a journal must be, whatever they point to. Platform-free.
#pragma once

#include <cstdint>
#include <memory>

#include "snapshot/compare/findings.h"
#include "snapshot/records/object_list.h"

namespace tolvenar {

// Which state numbers have records at all, and which a record of their own.
class StateTable {
public:
    // Room for the numbers up to `highest`. False when there is no memory.
    bool Reserve(std::uint16_t highest);
    std::uint16_t highest() const { return highest_; }
    void Note(const ObjectRecord& record);
    bool HasRecords(std::uint32_t state) const { return (marks_[state] & kHasRecords) != 0; }
    // Records but none of its own: the state's own block failed, or its record is lost.
    bool LacksItself(std::uint32_t state) const { return marks_[state] == kHasRecords; }
    // The greatest number with a record of its own; 0 when there is none.
    std::uint16_t LastState() const;

private:
    static constexpr std::uint8_t kHasRecords = 1;
    static constexpr std::uint8_t kHasItself = 2;

    std::unique_ptr<std::uint8_t[]> marks_;
    std::uint16_t highest_ = 0;
};

// Checks type, flags and ids of every record, that each number up to the highest has records, and
// that the records of each state stand together with the state's own at an end: a load reverses
// the whole list, a backup enters its records at the front. False when there is no memory.
bool CheckRecords(const ObjectList& journal, StateTable& states, Findings& findings);

}  // namespace tolvenar
