// Reads the records of an open database one after the other.
#pragma once

#include "storage/objects/database_layer.h"

namespace tolvenar {

class RecordWalk {
public:
    enum class Step {
        kRead,      // `oid` has `record`
        kUnread,    // `oid` is there and cannot be read
        kEnd,       // there are no more
        kCut,       // there may be more, and they cannot be read
        kNoMemory,  // the same for want of memory
    };

    // The handle moves on with each read and stands at the beginning; the database had so many
    // records when it was opened.
    RecordWalk(DatabaseLayer& layer, HANDLE database, DWORD record_count)
        : layer_(layer), database_(database), record_count_(record_count) {}
    RecordWalk(const RecordWalk&) = delete;
    RecordWalk& operator=(const RecordWalk&) = delete;

    // After the deletion of a record the walk may begin again, three times: it then gives records
    // a second time.
    Step Next();
    CEOID oid() const { return oid_; }
    // In a fresh buffer: a larger one of before would be told as the size of the record.
    RecordBuffer& record() { return record_; }

private:
    static constexpr int kRestarts = 3;

    DWORD Read();
    Step StepOver(Step step);

    DatabaseLayer& layer_;
    HANDLE database_;
    DWORD record_count_;
    DWORD position_ = 0;  // of the record that is read next
    int restarts_ = 0;
    bool has_ended_ = false;
    CEOID oid_ = 0;
    RecordBuffer record_;
};

}  // namespace tolvenar
