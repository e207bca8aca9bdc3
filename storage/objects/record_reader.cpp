#include "storage/objects/record_reader.h"

namespace tolvenar {

void RecordReader::Open(CEOID database_oid, std::u16string_view name) {
    Close();
    name_[name.copy(name_, CEDB_MAXDBASENAMELEN)] = 0;
    database_oid_ = database_oid;
    CEOID opened = 0;
    database_.Reset(databases_.OpenDatabase(opened, name_, 0, 0, nullptr));
}

bool RecordReader::Read(CEOID oid) {
    record_.Clear();
    if (!database_ || databases_.SeekRecord(database_.get(), CEDB_SEEK_CEOID, oid) == 0) {
        return false;
    }
    if (databases_.ReadRecordProps(database_.get(), record_) != 0) {
        return true;
    }
    const bool is_empty = ::GetLastError() == ERROR_NO_DATA;
    record_.Clear();
    return is_empty;
}

void RecordReader::Close() {
    record_.Clear();
    if (database_) {
        database_.Close();
    }
}

}  // namespace tolvenar
