// An open database: its sort order and the place in it that reading and seeking move.
#pragma once

#include <memory>
#include <string>

#include "simulator/databases/database_store.h"
#include "simulator/databases/record_listing.h"

namespace sim::databases {

class OpenDatabase {
public:
    // `sort_propid` is one of the database's sort orders or 0.
    OpenDatabase(Device& device, const Database& database, std::uint32_t sort_propid,
                 bool auto_increment);
    ~OpenDatabase();
    OpenDatabase(const OpenDatabase&) = delete;
    OpenDatabase& operator=(const OpenDatabase&) = delete;

    DatabaseStore& store() { return store_; }
    std::uint32_t oid() const { return oid_; }
    std::uint32_t sort_propid() const { return sort_.propid; }

    // The record that the place is at; kKeyDeleted when it was deleted, kNoMoreItems at the end.
    Error Current(std::uint32_t& oid, Record& record);
    // After a read: moves on when the database was opened so.
    void Advance();

    // `value` is an oid, a count or, for the seeks by value, left aside. Answers the record's oid
    // and its number from the start; 0 when there is none, and the place is the end.
    std::uint32_t SeekTo(std::uint32_t way, std::uint32_t value, std::uint32_t& index);
    std::uint32_t SeekValue(std::uint32_t way, const Property& value, std::uint32_t& index);

    // New (0) or merged: listed properties are replaced, those marked for it deleted.
    Error Write(std::uint32_t& oid, const Record& changes, const Record& deletions);

private:
    // The records' present list, with the place in it found again. Within a View.
    const RecordListing& Refresh(const LogStore::View& view);
    std::uint32_t MoveTo(const RecordListing& records, std::int64_t index,
                         std::uint32_t& index_out);
    std::uint32_t MoveToEnd(const RecordListing& records);

    DatabaseStore store_;
    std::uint32_t oid_;
    SortOrder sort_;
    bool auto_increment_;
    void* in_use_;  // a named object that tells other handles and processes

    std::size_t place_ = 0;
    std::size_t count_ = 0;        // of the records at the last look
    std::uint32_t current_ = 0;    // the oid at the place; 0 at the end
    std::uint32_t following_ = 0;  // the one behind it at the last read
    bool current_deleted_ = false;
    std::uint32_t generation_ = 0;
    std::string order_;
    bool listed_ = false;
};

// Whether any process has the database open.
bool IsOpen(const Device& device, std::uint32_t oid);

// The databases that one enumeration goes over.
class DatabaseSearch {
public:
    DatabaseSearch(Device& device, std::uint32_t type);
    // 0 with kNoMoreItems at the end, or kKeyDeleted when a database was deleted meanwhile.
    std::uint32_t Next(Error& error);

private:
    DatabaseStore store_;
    std::vector<std::uint32_t> oids_;
    std::size_t at_ = 0;
    std::uint32_t deletions_;
};

}  // namespace sim::databases
