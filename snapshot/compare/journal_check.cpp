#include "snapshot/compare/journal_check.h"

#include <new>

namespace tolvenar {
namespace {

constexpr std::uint16_t kKnownFlags = JF_PRESENT | JF_MATCHED | JF_DELETE | kAdditionFlags;

bool HasSoundFlags(const ObjectRecord& record) {
    const bool adds = (record.flags & kAdditionFlags) != 0;
    const bool deletes = (record.flags & JF_DELETE) != 0;
    return (record.flags & ~kKnownFlags) == 0 && adds != deletes;
}

// The id that a type does not use is 0.
bool HasSoundIds(const ObjectRecord& record) {
    switch (TraitsOf(record.type).id) {
        case IdSource::kObjectStore: return record.TolvOID == 0;
        case IdSource::kGenerated: return record.dwOID == 0;
        default: return record.TolvOID == 0 && record.dwOID == 0;
    }
}

const char16_t* FaultOf(const ObjectRecord& record) {
    if (!IsKnownType(record.type)) {
        return u"unknown type";
    }
    if (!HasSoundFlags(record)) {
        return u"unknown flags";
    }
    if (record.state_number == 0) {
        return u"no state number";
    }
    if (record.type == ObjectType::kState && (record.flags & JF_DELETE) != 0) {
        return u"deletion of a state";
    }
    return HasSoundIds(record) ? nullptr : u"foreign identifier";
}

// Walks the runs of records with one state number.
class Runs {
public:
    explicit Runs(StateTable& states) : states_(states) {}

    // False when the record stands apart from the others of its state, or parts them from their
    // state record.
    bool Take(const ObjectRecord& record) {
        const bool goes_on = record.state_number == state_;
        const bool is_inside = goes_on && is_state_inside_;
        const bool is_apart = !goes_on && states_.HasRecords(record.state_number);
        is_state_inside_ = goes_on && record.type == ObjectType::kState;
        state_ = record.state_number;
        states_.Note(record);
        return !is_inside && !is_apart;
    }

private:
    StateTable& states_;
    std::uint32_t state_ = 0x10000;  // of the record before; no number at first
    bool is_state_inside_ = false;   // that was a state record, and not the first of its run
};

}  // namespace

bool StateTable::Reserve(std::uint16_t highest) {
    marks_.reset(new (std::nothrow) std::uint8_t[highest + std::size_t{1}]{});
    highest_ = highest;
    return marks_ != nullptr;
}

void StateTable::Note(const ObjectRecord& record) {
    const bool is_itself = record.type == ObjectType::kState;
    marks_[record.state_number] |= is_itself ? kHasRecords | kHasItself : kHasRecords;
}

std::uint16_t StateTable::LastState() const {
    std::uint16_t state = highest_;
    while (state != 0 && (marks_[state] & kHasItself) == 0) {
        --state;
    }
    return state;
}

bool CheckRecords(const ObjectList& journal, StateTable& states, Findings& findings) {
    if (!states.Reserve(journal.MaxStateNumber())) {
        return false;
    }
    Runs runs(states);
    for (const ObjectList::Node& node : journal) {
        const ObjectRecord& record = *node.record;
        if (const char16_t* fault = FaultOf(record)) {
            findings.Add(fault, record.state_number, record.propOffset);
        }
        if (!runs.Take(record)) {
            findings.Add(u"records of states mixed", record.state_number, record.propOffset);
        }
    }
    for (std::uint32_t state = 1; state <= states.highest(); ++state) {
        if (!states.HasRecords(state)) {
            findings.Add(u"no record of the state", state);
        }
    }
    return true;
}

}  // namespace tolvenar
