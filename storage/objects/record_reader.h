// Reads database records for their descriptions and their data.
#pragma once

#include <string_view>

#include "storage/objects/database_layer.h"

namespace tolvenar {

// Keeps a database open and the record that was read last. Between objects that are read together
// nobody else deletes the database: whoever is done closes.
class RecordReader {
public:
    explicit RecordReader(DatabaseLayer& databases) : databases_(databases) {}
    RecordReader(const RecordReader&) = delete;
    RecordReader& operator=(const RecordReader&) = delete;

    // True when the database of this id was opened last and is open.
    bool Holds(CEOID database_oid) const { return database_ && database_oid_ == database_oid; }
    // The name under which it was opened.
    const char16_t* database_name() const { return name_; }
    // Opens the database of this name in the place of the one before, if it can.
    void Open(CEOID database_oid, std::u16string_view name);

    // Reads a record of the open database into a fresh buffer: the platform tells the size of a
    // buffer that was larger, and the size is part of the description. False without the database
    // or the record. One without data reads as one without properties.
    bool Read(CEOID oid);
    // What was read last; empty after a failure.
    RecordBuffer& record() { return record_; }

    void Close();

private:
    DatabaseLayer& databases_;
    UniqueHandle database_;
    CEOID database_oid_ = 0;
    char16_t name_[CEDB_MAXDBASENAMELEN + 1] = {};
    RecordBuffer record_;
};

}  // namespace tolvenar
