#include "storage/objects/restore_database.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

#include "platform/unique_resource.h"
#include "storage/format/property_encoding.h"
#include "storage/objects/find_matching_record.h"

namespace tolvenar {
namespace {

constexpr std::size_t kMaxProperties = 0xFFFF;

// A database of the handle cache, given back at the end.
class CachedDatabase {
public:
    CachedDatabase(DatabaseLayer& layer, const char16_t* name) : layer_(layer) {
        CEOID oid = 0;
        handle_ = layer.OpenDatabaseCached(oid, name, 0, 0, nullptr);
    }
    ~CachedDatabase() {
        if (*this) {
            layer_.CloseDatabaseCached(handle_);
        }
    }
    CachedDatabase(const CachedDatabase&) = delete;
    CachedDatabase& operator=(const CachedDatabase&) = delete;

    explicit operator bool() const { return handle_ != INVALID_HANDLE_VALUE; }
    HANDLE get() const { return handle_; }

private:
    DatabaseLayer& layer_;
    HANDLE handle_;
};

RestoreOutcome DeleteRecord(HANDLE database, CEOID record_oid) {
    // 87 is the platform's word for a record that is not there.
    ::SetLastError(ERROR_SUCCESS);
    const BOOL deleted = ::CeDeleteRecord(database, record_oid);
    return deleted || ::GetLastError() == ERROR_INVALID_PARAMETER ? RestoreOutcome::kDone
                                                                  : RestoreOutcome::kFailed;
}

// The properties with their strings and blobs, as the device wants them; null when the stored ones
// are damaged or there is no memory.
std::unique_ptr<BYTE[]> CopyProperties(const StoredBytes& data, std::uint32_t count) {
    if (!data.complete() || count > kMaxProperties) {
        return nullptr;
    }
    std::unique_ptr<BYTE[]> buffer(new (std::nothrow) BYTE[data.length + 1]);
    if (buffer == nullptr) {
        return nullptr;
    }
    if (data.length != 0) {
        std::memcpy(buffer.get(), data.bytes, data.length);
    }
    const auto base = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(buffer.get()));
    if (!OffsetsToPointers(buffer.get(), data.length, count, base)) {
        return nullptr;
    }
    return buffer;
}

RestoreOutcome WriteRecord(DatabaseLayer& databases, WrittenRecords& written, HANDLE database,
                           const StoredBytes& data, const InfoBlock& block, CEOID record_oid,
                           CEOID& newOid) {
    const std::unique_ptr<BYTE[]> buffer = CopyProperties(data, block.head().property_count);
    if (buffer == nullptr || !written.Reserve()) {
        return FailWith(ERROR_INVALID_DATA);
    }
    auto* properties = reinterpret_cast<CEPROPVAL*>(buffer.get());
    const auto count = static_cast<WORD>(block.head().property_count);
    const CEOID matching = FindMatchingRecord(databases, database, block.name(), properties, count,
                                              record_oid, written);
    newOid = ::CeWriteRecordProps(database, matching, count, properties);
    // Room for it is there: a record that is written but not entered could be overwritten.
    return newOid != 0 && written.Add(newOid) ? RestoreOutcome::kDone : RestoreOutcome::kFailed;
}

RestoreOutcome RestoreRecord(DatabaseLayer& databases, WrittenRecords& written,
                             const StoredBytes& data, const InfoBlock& block, CEOID record_oid,
                             CEOID& newOid, RestoreMode mode) {
    const CachedDatabase database(databases, block.name());
    if (mode == RestoreMode::kDelete) {
        return database && record_oid != 0 ? DeleteRecord(database.get(), record_oid)
                                           : RestoreOutcome::kDone;
    }
    if (!database) {
        return FailWith(ERROR_PATH_NOT_FOUND);
    }
    return WriteRecord(databases, written, database.get(), data, block, record_oid, newOid);
}

// The id of a database that can be opened, else 0. Not through the cache: what is looked for here
// is about to be deleted or changed, which an open handle would prevent.
CEOID ProbeDatabase(DatabaseLayer& databases, const char16_t* name) {
    CEOID oid = 0;
    const UniqueHandle database(databases.OpenDatabase(oid, name, 0, 0, nullptr));
    return database ? oid : 0;
}

// A database with records waits for the pass after the one in which they went.
RestoreOutcome DeleteDatabase(DatabaseLayer& databases, const char16_t* name) {
    const CEOID oid = ProbeDatabase(databases, name);
    if (oid == 0) {
        return RestoreOutcome::kDone;
    }
    CEOIDINFO info;
    if (!databases.GetObjectInfo(oid, info) || info.infDatabase.wNumRecords != 0) {
        return FailWith(ERROR_DIR_NOT_EMPTY);
    }
    return databases.DeleteDatabase(oid) || ProbeDatabase(databases, name) == 0
               ? RestoreOutcome::kDone
               : RestoreOutcome::kFailed;
}

// The sort orders of a stored database. False when they are damaged.
bool ReadSortOrders(const StoredBytes& data, const InfoBlock& block, CEDBASEINFO& info) {
    const std::uint32_t sort_orders = block.head().sort_order_count;
    if (sort_orders > CEDB_MAXSORTORDER || !data.complete() ||
        data.length < sort_orders * sizeof(SORTORDERSPEC)) {
        return false;
    }
    info = CEDBASEINFO{};
    info.dwFlags = CEDB_VALIDSORTSPEC;
    info.wNumSortOrder = static_cast<WORD>(sort_orders);
    if (data.length != 0) {
        std::memcpy(info.rgSortSpecs, data.bytes,
                    std::min<std::size_t>(data.length, sizeof info.rgSortSpecs));
    }
    return true;
}

// Where there is no order some systems tell one of property 0.
WORD OrdersInUse(const CEDBASEINFO& info) {
    const bool is_placeholder = info.wNumSortOrder == 1 && info.rgSortSpecs[0].propid == 0;
    return is_placeholder ? 0 : std::min<WORD>(info.wNumSortOrder, CEDB_MAXSORTORDER);
}

bool HasSortOrders(DatabaseLayer& databases, CEOID oid, const CEDBASEINFO& wanted) {
    CEOIDINFO present;
    if (!databases.GetObjectInfo(oid, present) || present.wObjType != OBJTYPE_DATABASE) {
        return false;
    }
    const WORD orders = OrdersInUse(wanted);
    return OrdersInUse(present.infDatabase) == orders &&
           std::memcmp(present.infDatabase.rgSortSpecs, wanted.rgSortSpecs,
                       orders * sizeof(SORTORDERSPEC)) == 0;
}

// A database that is made without an order is given one of property 0. One whose orders the device
// does not take is made without them.
CEOID CreateSorted(DatabaseLayer& databases, const InfoBlock& block, const CEDBASEINFO& orders) {
    CEDBASEINFO info;
    const DWORD type = block.head().database_type;
    if (!DescribeNewDatabase(block.name(), type, 0, nullptr, info)) {
        return 0;
    }
    info.dwFlags |= CEDB_VALIDSORTSPEC;
    info.wNumSortOrder = std::max<WORD>(OrdersInUse(orders), 1);
    std::copy_n(orders.rgSortSpecs, OrdersInUse(orders), info.rgSortSpecs);
    const CEOID oid = databases.CreateDatabase(info);
    return oid != 0 || ::GetLastError() != ERROR_INVALID_PARAMETER
               ? oid
               : databases.CreateDatabase(block.name(), type, 0, nullptr);
}

// The sort orders of a database that is there are set only when others are stored: the device
// refuses it while anybody has the database open, and sorts all of its records.
RestoreOutcome WriteDatabase(DatabaseLayer& databases, const StoredBytes& data,
                             const InfoBlock& block, CEOID& newOid) {
    CEDBASEINFO orders;
    if (!ReadSortOrders(data, block, orders)) {
        return FailWith(ERROR_INVALID_DATA);
    }
    newOid = ProbeDatabase(databases, block.name());
    if (newOid == 0) {
        newOid = CreateSorted(databases, block, orders);
    }
    if (newOid == 0) {
        return RestoreOutcome::kFailed;
    }
    return HasSortOrders(databases, newOid, orders) || databases.SetDatabaseInfo(newOid, orders)
               ? RestoreOutcome::kDone
               : FailWith(kSortOrdersRefused);
}

}  // namespace

RestoreOutcome RestoreDatabaseObject(DatabaseLayer& databases, WrittenRecords& written,
                                     const StoredBytes& data, const InfoBlock& block,
                                     CEOID record_oid, CEOID& newOid, RestoreMode mode) {
    newOid = 0;
    if (block.type() == ObjectType::kDatabaseRecord) {
        return RestoreRecord(databases, written, data, block, record_oid, newOid, mode);
    }
    databases.DropCachedDatabase(block.name());
    return mode == RestoreMode::kDelete ? DeleteDatabase(databases, block.name())
                                        : WriteDatabase(databases, data, block, newOid);
}

bool WouldOverwriteRecord(DatabaseLayer& databases, const WrittenRecords& written,
                          const StoredBytes& data, const InfoBlock& block, CEOID record_oid) {
    const CachedDatabase database(databases, block.name());
    const std::unique_ptr<BYTE[]> buffer = CopyProperties(data, block.head().property_count);
    if (!database || buffer == nullptr) {
        return false;
    }
    return FindMatchingRecord(
               databases, database.get(), block.name(), reinterpret_cast<CEPROPVAL*>(buffer.get()),
               static_cast<WORD>(block.head().property_count), record_oid, written) != 0;
}

}  // namespace tolvenar
