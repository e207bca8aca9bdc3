#include "simulator/databases/database_json.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "simulator/databases/database_store.h"
#include "simulator/store/hex.h"
#include "simulator/store/json_rows.h"
#include "simulator/store/utf8.h"

namespace sim::databases {
namespace {

using nlohmann::json;

struct ImportedRecord {
    std::uint32_t oid;
    Record record;
};

struct Imported {
    Database database;
    std::vector<ImportedRecord> records;
};

json SortOrdersJson(const Database& database) {
    json orders = json::array();
    for (const SortOrder& order : database.sort_orders) {
        orders.push_back({{"propid", order.propid}, {"flags", order.flags}});
    }
    return orders;
}

json PropertiesJson(const Record& record) {
    json properties = json::array();
    for (const Property& property : record) {
        properties.push_back({{"propid", property.propid},
                              {"flags", property.flags},
                              {"value", ToHex(property.value)}});
    }
    return properties;
}

json RecordsJson(const DatabaseStore& store, std::uint32_t database) {
    KeyedRows rows;
    for (const std::uint32_t oid : store.Records(database)) {
        json properties = PropertiesJson(*store.Read(database, oid));
        std::string text = properties.dump();
        rows.emplace_back(std::move(text), json{{"oid", oid}, {"props", std::move(properties)}});
    }
    return SortedRows(std::move(rows));
}

[[noreturn]] void Fail(const Database& database, const char* what) {
    throw std::runtime_error("database \"" + Utf8(database.name) + "\": " + what);
}

Record RecordOf(const json& from, const Database& database) {
    Record record;
    for (const json& row : from.value("props", json::array())) {
        Property property;
        property.propid = row.at("propid").get<std::uint32_t>();
        property.flags = row.value("flags", std::uint16_t{0});
        const std::optional<std::string> value = FromHex(row.at("value").get<std::string>());
        property.value = value.value_or("");
        if (!value || !IsValid(property)) {
            Fail(database, "a property's value is damaged");
        }
        Put(record, property);
    }
    return record;
}

Imported DatabaseOf(const json& from) {
    Imported imported;
    Database& database = imported.database;
    database.name = Wide16(from.at("name").get<std::string>());
    database.oid = from.value("oid", 0u);
    database.type = from.value("type", 0u);
    database.flags = from.value("flags", 0u);
    for (const json& order : from.value("sortOrders", json::array())) {
        database.sort_orders.push_back(
            {order.at("propid").get<std::uint32_t>(), order.value("flags", 0u)});
    }
    for (const json& record : from.value("records", json::array())) {
        imported.records.push_back({record.value("oid", 0u), RecordOf(record, database)});
    }
    return imported;
}

std::vector<Imported> ParseAll(const json& databases) {
    std::vector<Imported> all;
    if (databases.is_object()) {
        all.push_back(DatabaseOf(databases));
    }
    for (const json& database : databases.is_array() ? databases : json::array()) {
        all.push_back(DatabaseOf(database));
    }
    return all;
}

void Store(DatabaseStore& store, Imported& imported, AskedIds* asked) {
    if (asked != nullptr) {
        asked->Ask(imported.database.oid);
    }
    imported.database.modified = store.device().WriteTimeUtc();
    if (store.Create(imported.database) != kOk) {
        Fail(imported.database, "its name or sort orders cannot be");
    }
    for (const ImportedRecord& record : imported.records) {
        if (asked != nullptr) {
            asked->Ask(record.oid);
        }
        std::uint32_t oid = 0;
        if (store.Write(imported.database, oid, record.record) != kOk) {
            Fail(imported.database, "a record does not fit");
        }
    }
}

}  // namespace

json DumpJson(Device& device) {
    LogStore::View view(device.store());
    const DatabaseStore store(device);
    std::vector<Database> all;
    for (const std::uint32_t oid : store.All(0)) {
        all.push_back(*store.Get(oid));
    }
    std::sort(all.begin(), all.end(),
              [](const Database& a, const Database& b) { return a.name < b.name; });
    json databases = json::array();
    for (const Database& database : all) {
        databases.push_back({{"name", Utf8(database.name)},
                             {"oid", database.oid},
                             {"type", database.type},
                             {"flags", database.flags},
                             {"sortOrders", SortOrdersJson(database)},
                             {"records", RecordsJson(store, database.oid)}});
    }
    return databases;
}

void ImportJson(Device& device, const json& databases, AskedIds* asked) {
    std::vector<Imported> all = ParseAll(databases);
    DatabaseStore store(device);
    for (const Imported& imported : all) {
        if (!store.Fits(imported.database)) {
            Fail(imported.database, "its name or sort orders cannot be");
        }
    }
    LogStore::Change change(device.store());
    for (Imported& imported : all) {
        if (const std::optional<Database> old = store.ByName(imported.database.name)) {
            store.Delete(old->oid);
        }
        Store(store, imported, asked);
    }
}

bool DeleteByName(Device& device, const std::string& name) {
    LogStore::Change change(device.store());
    DatabaseStore store(device);
    const std::optional<Database> database = store.ByName(Wide16(name));
    return database && store.Delete(database->oid);
}

}  // namespace sim::databases
