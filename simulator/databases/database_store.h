// The device's databases in its log:
//   d/b/<oid>             a database: name, type, flags, time of the last change, sort orders
//   d/r/<oid>/<record>    a record's properties
//   d/o/<record>          the oid of its database
//   d/c/<oid>             counts the changes of a database's records
//   d/deleted             counts the databases that were deleted
// Object ids stand in eight hexadecimal digits.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "simulator/databases/record.h"
#include "simulator/store/device.h"

namespace sim::databases {

struct Database {
    std::uint32_t oid = 0;
    std::u16string name;
    std::uint32_t type = 0;
    std::uint32_t flags = 0;  // CEDB_NOCOMPRESS, CEDB_SYSTEMDB
    std::uint64_t modified = 0;
    std::vector<SortOrder> sort_orders;
};

class DatabaseStore {
public:
    explicit DatabaseStore(Device& device) : device_(device) {}
    Device& device() const { return device_; }

    // Databases in the order of the device's setting "order"; `type` 0 means all.
    std::vector<std::uint32_t> All(std::uint32_t type) const;
    std::optional<Database> Get(std::uint32_t oid) const;
    std::optional<Database> ByName(std::u16string_view name) const;
    std::uint32_t DeletionCount() const;

    // Whether a database can have this name and these sort orders, others aside.
    static bool Fits(const Database& database);
    // `database.oid` comes out. kDupName (or what the setting "database.duplicate" says) for a name
    // that is there.
    Error Create(Database& database);
    // Stores name, type, flags, sort orders and time as they are given.
    Error Change(const Database& database);
    // Whether it is open is the caller's question. False when there is none.
    bool Delete(std::uint32_t oid);

    std::vector<std::uint32_t> Records(std::uint32_t database) const;
    std::optional<Record> Read(std::uint32_t database, std::uint32_t record) const;
    // The database that a record is in, 0 for an oid that is no record's.
    std::uint32_t DatabaseOf(std::uint32_t record) const;
    // Writes the whole record; `oid` 0 makes a new one and comes out.
    Error Write(const Database& database, std::uint32_t& oid, const Record& record);
    bool DeleteRecord(std::uint32_t database, std::uint32_t record);
    std::uint32_t Generation(std::uint32_t database) const;
    std::uint32_t RecordCount(std::uint32_t database) const;
    // Bytes that the records take.
    std::uint32_t SizeOf(std::uint32_t database) const;

private:
    Error CheckShape(const Database& database) const;
    Error CheckSorts(const Database& database, std::uint32_t oid, const Record& record) const;
    bool IsTaken(std::uint32_t database, const SortOrder& sort, const Property& value,
                 std::uint32_t oid) const;
    void Touch(std::uint32_t database);

    Device& device_;
};

}  // namespace sim::databases
