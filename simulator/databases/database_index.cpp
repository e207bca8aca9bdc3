#include "simulator/databases/database_index.h"

#include "simulator/files/key_number.h"
#include "simulator/store/byte_stream.h"
#include "simulator/store/names.h"

namespace sim::databases {
namespace {

constexpr std::size_t kDigits = 8;

std::uint32_t NumberAt(const std::u16string& key, std::size_t at) {
    return files::NumberOfKey(key.substr(at, kDigits));
}

std::size_t SizeOf(const std::string* entry) { return entry != nullptr ? entry->size() : 0; }

}  // namespace

const std::u16string kDatabaseEntries = u"d/b/";
const std::u16string kRecordEntries = u"d/r/";

DatabaseIndex& DatabaseIndex::Of(Device& device, const LogStore::View& view) {
    DatabaseIndex& index = device.Part<DatabaseIndex>();
    if (!index.watches_) {
        index.watches_ = true;
        view.Watch(kDatabaseEntries, index);
        view.Watch(kRecordEntries, index);
    }
    return index;
}

const DatabaseIndex::Table* DatabaseIndex::TableOf(std::uint32_t database) const {
    const auto found = tables_.find(database);
    return found != tables_.end() ? &found->second : nullptr;
}

std::uint32_t DatabaseIndex::RecordCount(std::uint32_t database) const {
    const Table* table = TableOf(database);
    return table != nullptr ? table->records : 0;
}

std::size_t DatabaseIndex::RecordBytes(std::uint32_t database) const {
    const Table* table = TableOf(database);
    return table != nullptr ? table->bytes : 0;
}

std::uint32_t DatabaseIndex::ByName(std::u16string_view name) const {
    const auto found = oids_.find(FoldName(name));
    return found != oids_.end() ? *found->second.begin() : 0;
}

RecordListing& DatabaseIndex::Listing(const LogStore::View& view, std::uint32_t database,
                                      const SortOrder& sort, const std::string& order) {
    auto& listings = tables_[database].listings;
    const auto [at, is_new] = listings.try_emplace({sort.propid, sort.flags, order}, sort, order);
    if (!is_new) {
        return at->second;
    }
    const std::u16string prefix = kRecordEntries + files::KeyNumber(database) + u"/";
    RecordListing& listing = at->second;
    view.ForEach(prefix, [&](const std::u16string& key, const std::string& entry) {
        listing.Put(NumberAt(key, prefix.size()), Decode(entry));
    });
    return listing;
}

void DatabaseIndex::Changed(const std::u16string& key, const std::string* before,
                            const std::string* now) {
    if (key.compare(0, kRecordEntries.size(), kRecordEntries) == 0) {
        RecordChanged(key, before, now);
    } else {
        DatabaseChanged(NumberAt(key, kDatabaseEntries.size()), now);
    }
}

void DatabaseIndex::RecordChanged(const std::u16string& key, const std::string* before,
                                  const std::string* now) {
    const std::size_t database_at = kRecordEntries.size();
    const std::uint32_t record = NumberAt(key, database_at + kDigits + 1);
    Table& table = tables_[NumberAt(key, database_at)];
    table.records += (now != nullptr ? 1u : 0u) - (before != nullptr ? 1u : 0u);
    table.bytes += SizeOf(now) - SizeOf(before);
    for (auto& [order, listing] : table.listings) {
        if (now != nullptr) {
            listing.Put(record, Decode(*now));
        } else {
            listing.Remove(record);
        }
    }
}

// An entry begins with the name.
void DatabaseIndex::DatabaseChanged(std::uint32_t oid, const std::string* now) {
    const auto old = names_.find(oid);
    if (old != names_.end()) {
        std::set<std::uint32_t>& same_name = oids_[old->second];
        same_name.erase(oid);
        if (same_name.empty()) {
            oids_.erase(old->second);
        }
        names_.erase(old);
    }
    if (now != nullptr) {
        const std::u16string name = FoldName(ByteReader(*now).Text());
        oids_[name].insert(oid);
        names_[oid] = name;
    }
}

}  // namespace sim::databases
