#include "snapshot/scan/record_walk.h"

#include "platform/keep_awake.h"

namespace tolvenar {

// 0 or why nothing was read.
DWORD RecordWalk::Read() {
    record_.Clear();
    oid_ = layer_.ReadRecordProps(database_, record_);
    if (oid_ == 0) {
        return ::GetLastError();
    }
    ++position_;
    return ERROR_SUCCESS;
}

RecordWalk::Step RecordWalk::Next() {
    if (has_ended_) {
        return Step::kEnd;
    }
    StayAwakeBetweenObjects();
    DWORD error = Read();
    for (; error == ERROR_KEY_DELETED && restarts_ < kRestarts; ++restarts_) {
        position_ = 0;
        layer_.SeekRecord(database_, CEDB_SEEK_BEGINNING, position_);
        error = Read();
    }
    switch (error) {
        case ERROR_SUCCESS: return Step::kRead;
        case ERROR_NO_MORE_ITEMS: return Step::kEnd;
        case ERROR_KEY_DELETED: return Step::kCut;
        case ERROR_NOT_ENOUGH_MEMORY:
        case ERROR_OUTOFMEMORY: return Step::kNoMemory;
        // A record without properties may read as "no data".
        case ERROR_NO_DATA: return StepOver(Step::kRead);
        default: return StepOver(Step::kUnread);
    }
}

// The record is asked for by its place, and the one behind it: the platform does not say whether a
// read that fails moves on, nor where a seek beyond the end leaves the handle.
RecordWalk::Step RecordWalk::StepOver(Step step) {
    record_.Clear();
    oid_ = layer_.SeekRecord(database_, CEDB_SEEK_BEGINNING, position_);
    const bool had_all = position_ >= record_count_;
    if (oid_ == 0) {
        return step == Step::kRead || had_all ? Step::kEnd : Step::kCut;
    }
    ++position_;
    const bool has_next = layer_.SeekRecord(database_, CEDB_SEEK_BEGINNING, position_) != 0;
    has_ended_ = !has_next && position_ >= record_count_;
    return step;
}

}  // namespace tolvenar
