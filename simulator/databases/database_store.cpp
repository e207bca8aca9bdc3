#include "simulator/databases/database_store.h"

#include <algorithm>

#include "simulator/databases/database_index.h"
#include "simulator/files/file_table.h"
#include "simulator/files/key_number.h"
#include "simulator/files/space.h"
#include "simulator/store/byte_stream.h"
#include "simulator/store/names.h"

namespace sim::databases {
namespace {

const std::u16string kDeleted = u"d/deleted";
std::u16string Digits(std::uint32_t oid) { return files::KeyNumber(oid); }

std::uint32_t OidAt(const std::u16string& key, std::size_t at) {
    return files::NumberOfKey(key.substr(at));
}

std::u16string RecordsKey(std::uint32_t database) {
    return kRecordEntries + Digits(database) + u"/";
}
std::u16string RecordKey(std::uint32_t database, std::uint32_t record) {
    return RecordsKey(database) + Digits(record);
}
std::u16string OwnerKey(std::uint32_t record) { return u"d/o/" + Digits(record); }
std::u16string CountKey(std::uint32_t database) { return u"d/c/" + Digits(database); }

std::uint32_t NumberAt(const LogStore::View& view, const std::u16string& key) {
    const std::string* stored = view.Find(key);
    return stored != nullptr ? ByteReader(*stored).Number() : 0;
}

void SetNumber(LogStore::Change& change, const std::u16string& key, std::uint32_t number) {
    std::string entry;
    PutNumber(entry, number);
    change.Set(key, std::move(entry));
}

std::string EncodeDatabase(const Database& database) {
    std::string entry;
    PutText(entry, database.name);
    PutNumbers(entry, {database.type, database.flags});
    PutLong(entry, database.modified);
    PutNumber(entry, static_cast<std::uint32_t>(database.sort_orders.size()));
    for (const SortOrder& order : database.sort_orders) {
        PutNumbers(entry, {order.propid, order.flags});
    }
    return entry;
}

Database DecodeDatabase(std::uint32_t oid, const std::string& entry) {
    ByteReader reader(entry);
    Database database;
    database.oid = oid;
    database.name = reader.Text();
    database.type = reader.Number();
    database.flags = reader.Number();
    database.modified = reader.Long();
    database.sort_orders.resize(reader.Number());
    for (SortOrder& order : database.sort_orders) {
        order.propid = reader.Number();
        order.flags = reader.Number();
    }
    return database;
}

// Calls `visit(oid, entry)` for each entry whose key is `prefix` and an oid.
template <typename Visit>
void ForEachOid(const LogStore::View& view, const std::u16string& prefix, Visit&& visit) {
    view.ForEach(prefix, [&](const std::u16string& key, const std::string& entry) {
        visit(OidAt(key, prefix.size()), entry);
    });
}

std::vector<std::uint32_t> Arranged(const Device& device, const std::vector<std::uint32_t>& oids) {
    const std::string order = device.Setting("order", "stored");
    if (order == "stored") {
        return oids;
    }
    std::vector<Enumerated> items;
    for (const std::uint32_t oid : oids) {
        items.push_back({oid, Digits(oid)});
    }
    Arrange(items, order);
    std::vector<std::uint32_t> arranged;
    for (const Enumerated& item : items) {
        arranged.push_back(item.sequence);
    }
    return arranged;
}

bool HasRoom(Device& device, std::size_t bytes) {
    files::FileTable& table = files::FileTable::Of(device);
    const auto count = static_cast<std::uint32_t>(bytes);
    if (!files::TakeSpace(table, false, count)) {
        return false;
    }
    // Records are not counted among the files; it is enough that they would fit.
    files::GiveSpaceBack(table, false, count);
    return true;
}

}  // namespace

std::vector<std::uint32_t> DatabaseStore::All(std::uint32_t type) const {
    LogStore::View view(device_.store());
    std::vector<std::uint32_t> oids;
    ForEachOid(view, kDatabaseEntries, [&](std::uint32_t oid, const std::string& entry) {
        if (type == 0 || DecodeDatabase(oid, entry).type == type) {
            oids.push_back(oid);
        }
    });
    return Arranged(device_, oids);
}

std::optional<Database> DatabaseStore::Get(std::uint32_t oid) const {
    LogStore::View view(device_.store());
    const std::string* entry = view.Find(kDatabaseEntries + Digits(oid));
    return entry != nullptr ? std::optional(DecodeDatabase(oid, *entry)) : std::nullopt;
}

std::optional<Database> DatabaseStore::ByName(std::u16string_view name) const {
    LogStore::View view(device_.store());
    return Get(DatabaseIndex::Of(device_, view).ByName(name));
}

std::uint32_t DatabaseStore::DeletionCount() const {
    return NumberAt(LogStore::View(device_.store()), kDeleted);
}

// Blobs cannot be sorted by, and the name must leave room for its terminator.
bool DatabaseStore::Fits(const Database& database) {
    const auto sorts = [](const SortOrder& order) {
        const auto type = static_cast<ValueType>(order.propid & 0xFFFF);
        return FixedBytes(type) >= 0 && type != kBlob;
    };
    return !database.name.empty() && database.name.size() <= kMaxNameUnits &&
           database.sort_orders.size() <= kMaxSortOrders &&
           std::all_of(database.sort_orders.begin(), database.sort_orders.end(), sorts);
}

Error DatabaseStore::CheckShape(const Database& database) const {
    if (!Fits(database)) {
        return kInvalidParameter;
    }
    const std::optional<Database> same_name = ByName(database.name);
    const bool is_taken = same_name && same_name->oid != database.oid;
    return is_taken ? static_cast<Error>(device_.NumberSetting("database.duplicate", kDupName))
                    : kOk;
}

Error DatabaseStore::Create(Database& database) {
    LogStore::Change change(device_.store());
    database.oid = 0;
    if (const Error error = CheckShape(database)) {
        return error;
    }
    std::string entry = EncodeDatabase(database);
    if (!HasRoom(device_, entry.size())) {
        return kDiskFull;
    }
    database.oid = device_.TakeObjectId();
    change.Set(kDatabaseEntries + Digits(database.oid), std::move(entry));
    return kOk;
}

Error DatabaseStore::Change(const Database& database) {
    LogStore::Change change(device_.store());
    if (const Error error = CheckShape(database)) {
        return error;
    }
    change.Set(kDatabaseEntries + Digits(database.oid), EncodeDatabase(database));
    SetNumber(change, CountKey(database.oid), Generation(database.oid) + 1);
    return kOk;
}

bool DatabaseStore::Delete(std::uint32_t oid) {
    LogStore::Change change(device_.store());
    if (change.Find(kDatabaseEntries + Digits(oid)) == nullptr) {
        return false;
    }
    std::vector<std::uint32_t> records;
    ForEachOid(change, RecordsKey(oid),
               [&](std::uint32_t record, const std::string&) { records.push_back(record); });
    for (const std::uint32_t record : records) {
        change.Erase(RecordKey(oid, record));
        change.Erase(OwnerKey(record));
    }
    change.Erase(CountKey(oid));
    change.Erase(kDatabaseEntries + Digits(oid));
    SetNumber(change, kDeleted, DeletionCount() + 1);
    return true;
}

std::vector<std::uint32_t> DatabaseStore::Records(std::uint32_t database) const {
    LogStore::View view(device_.store());
    std::vector<std::uint32_t> oids;
    ForEachOid(view, RecordsKey(database),
               [&](std::uint32_t record, const std::string&) { oids.push_back(record); });
    return Arranged(device_, oids);
}

std::optional<Record> DatabaseStore::Read(std::uint32_t database, std::uint32_t record) const {
    LogStore::View view(device_.store());
    const std::string* entry = view.Find(RecordKey(database, record));
    return entry != nullptr ? std::optional(Decode(*entry)) : std::nullopt;
}

std::uint32_t DatabaseStore::DatabaseOf(std::uint32_t record) const {
    return NumberAt(LogStore::View(device_.store()), OwnerKey(record));
}

// Whether another record than `oid` has the value.
bool DatabaseStore::IsTaken(std::uint32_t database, const SortOrder& sort, const Property& value,
                            std::uint32_t oid) const {
    LogStore::View view(device_.store());
    const RecordListing& listing =
        DatabaseIndex::Of(device_, view).Listing(view, database, sort, "stored");
    std::size_t index = listing.FirstNotBefore(value);
    if (listing.At(index) == oid) {
        ++index;
    }
    return listing.IsEqual(index, value);
}

Error DatabaseStore::CheckSorts(const Database& database, std::uint32_t oid,
                                const Record& record) const {
    for (const SortOrder& order : database.sort_orders) {
        const Property* value = Find(record, order.propid);
        if (value == nullptr && (order.flags & kNonNull) != 0) {
            return kAccessDenied;
        }
        if (value == nullptr || (order.flags & kUnique) == 0) {
            continue;
        }
        if (IsTaken(database.oid, order, *value, oid)) {
            return kAlreadyExists;
        }
    }
    return kOk;
}

Error DatabaseStore::Write(const Database& database, std::uint32_t& oid, const Record& record) {
    LogStore::Change change(device_.store());
    const std::string entry = Encode(record);
    const std::string* old = oid != 0 ? change.Find(RecordKey(database.oid, oid)) : nullptr;
    const std::size_t old_size = old != nullptr ? old->size() : 0;
    if (entry.size() > kMaxRecordBytes || (oid != 0 && old == nullptr)) {
        return kInvalidParameter;
    }
    if (const Error error = CheckSorts(database, oid, record)) {
        return error;
    }
    const bool is_full = oid == 0 && RecordCount(database.oid) >= kMaxRecords;
    if (is_full || (entry.size() > old_size && !HasRoom(device_, entry.size() - old_size))) {
        return kDiskFull;
    }
    if (oid == 0) {
        oid = device_.TakeObjectId();
        SetNumber(change, OwnerKey(oid), database.oid);
    }
    change.Set(RecordKey(database.oid, oid), entry);
    Touch(database.oid);
    return kOk;
}

bool DatabaseStore::DeleteRecord(std::uint32_t database, std::uint32_t record) {
    LogStore::Change change(device_.store());
    if (change.Find(RecordKey(database, record)) == nullptr) {
        return false;
    }
    change.Erase(RecordKey(database, record));
    change.Erase(OwnerKey(record));
    Touch(database);
    return true;
}

void DatabaseStore::Touch(std::uint32_t oid) {
    LogStore::Change change(device_.store());
    if (std::optional<Database> database = Get(oid)) {
        database->modified = device_.WriteTimeUtc();
        change.Set(kDatabaseEntries + Digits(oid), EncodeDatabase(*database));
    }
    SetNumber(change, CountKey(oid), Generation(oid) + 1);
}

std::uint32_t DatabaseStore::Generation(std::uint32_t database) const {
    return NumberAt(LogStore::View(device_.store()), CountKey(database));
}

std::uint32_t DatabaseStore::RecordCount(std::uint32_t database) const {
    LogStore::View view(device_.store());
    return DatabaseIndex::Of(device_, view).RecordCount(database);
}

std::uint32_t DatabaseStore::SizeOf(std::uint32_t database) const {
    LogStore::View view(device_.store());
    return static_cast<std::uint32_t>(DatabaseIndex::Of(device_, view).RecordBytes(database));
}

}  // namespace sim::databases
