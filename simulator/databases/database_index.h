// What is kept in memory of a device's databases, so that no call walks over their records: how
// many and how large they are, their names, and their lists in the orders that were asked for.
#pragma once

#include <map>
#include <set>
#include <tuple>
#include <unordered_map>

#include "simulator/databases/record_listing.h"
#include "simulator/store/device.h"

namespace sim::databases {

// Entries of the log, see database_store.h.
extern const std::u16string kDatabaseEntries;
extern const std::u16string kRecordEntries;

class DatabaseIndex final : public LogStore::Watcher {
public:
    explicit DatabaseIndex(Device&) {}
    // What `view` sees; it holds as long as the view.
    static DatabaseIndex& Of(Device& device, const LogStore::View& view);

    std::uint32_t RecordCount(std::uint32_t database) const;
    std::size_t RecordBytes(std::uint32_t database) const;
    // The first database of that name in any case; 0 for none.
    std::uint32_t ByName(std::u16string_view name) const;
    RecordListing& Listing(const LogStore::View& view, std::uint32_t database,
                           const SortOrder& sort, const std::string& order);

private:
    struct Table {
        std::uint32_t records = 0;
        std::size_t bytes = 0;
        // By the sort's property and flags, and by the setting "order".
        std::map<std::tuple<std::uint32_t, std::uint32_t, std::string>, RecordListing> listings;
    };
    void Changed(const std::u16string& key, const std::string* before,
                 const std::string* now) override;
    void RecordChanged(const std::u16string& key, const std::string* before,
                       const std::string* now);
    void DatabaseChanged(std::uint32_t oid, const std::string* now);
    const Table* TableOf(std::uint32_t database) const;

    bool watches_ = false;
    std::unordered_map<std::uint32_t, Table> tables_;
    std::unordered_map<std::uint32_t, std::u16string> names_;           // folded
    std::unordered_map<std::u16string, std::set<std::uint32_t>> oids_;  // by folded name
};

}  // namespace sim::databases
