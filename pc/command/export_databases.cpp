// export json and csv: databases and their records.
#include <cstring>
#include <fmt/format.h>
#include <map>

#include "pc/command/exported_records.h"
#include "pc/command/exports.h"
#include "pc/command/json.h"
#include "pc/storage/object_data.h"
#include "pc/text/hex.h"

namespace tolvenar::pc {
namespace {

constexpr std::size_t kSortOrderBytes = 8;  // property and flags

std::uint32_t WordAt(const std::vector<std::uint8_t>& data, std::size_t place) {
    std::uint32_t word;
    std::memcpy(&word, data.data() + place, sizeof word);
    return word;
}

Json SortOrdersOf(StoredPair& pair, const StoredObject& database) {
    const std::vector<std::uint8_t> data = ReadData(pair, database);
    Json orders = Json::array();
    for (std::size_t i = 0; i < database.second && (i + 1) * kSortOrderBytes <= data.size(); ++i) {
        orders.push_back({{"propid", WordAt(data, i * kSortOrderBytes)},
                          {"flags", WordAt(data, i * kSortOrderBytes + 4)}});
    }
    return orders;
}

Json JsonOf(const StoredObject& record, const std::vector<RecordProperty>& properties) {
    Json json;
    json["oid"] = record.record.dwOID;
    json["props"] = Json::array();
    for (const RecordProperty& property : properties) {
        json["props"].push_back({{"propid", property.propid},
                                 {"flags", property.flags},
                                 {"value", HexOf(property.bytes)}});
    }
    return json;
}

bool Any(const std::u16string&) { return true; }

const char* TypeName(std::uint16_t type) {
    switch (type) {
        case kPropertyI2: return "i2";
        case kPropertyI4: return "i4";
        case kPropertyR8: return "double";
        case kPropertyBool: return "bool";
        case kPropertyUI2: return "ui2";
        case kPropertyUI4: return "ui4";
        case kPropertyString: return "text";
        case kPropertyFileTime: return "time";
        case kPropertyBlob: return "blob";
        default: return "?";
    }
}

std::string Cell(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == text.npos) {
        return text;
    }
    std::string quoted = "\"";
    for (const char letter : text) {
        quoted += letter == '"' ? "\"\"" : std::string(1, letter);
    }
    return quoted + '"';
}

// A table whose columns are found on the way: of each property, and of the exact units of texts
// that are none.
class Table {
public:
    void Add(std::uint32_t oid, const std::vector<RecordProperty>& properties) {
        Row& row = rows_.emplace_back(Row{oid, {}});
        for (const RecordProperty& property : properties) {
            row.cells[NameOf(property)] = TextOf(property);
            if (!IsText(property)) {
                row.cells[NameOf(property) + " utf16"] = ExactUnits(UnitsOf(property));
            }
        }
        for (const auto& [name, text] : row.cells) {
            columns_[name];
        }
    }
    // RFC 4180, in UTF-8.
    std::string Text() const {
        std::string text = "id";
        for (const auto& [name, unused] : columns_) {
            text += "," + name;
        }
        text += "\r\n";
        for (const Row& row : rows_) {
            text += std::to_string(row.oid);
            for (const auto& [name, unused] : columns_) {
                const auto cell = row.cells.find(name);
                text += "," + (cell == row.cells.end() ? "" : Cell(cell->second));
            }
            text += "\r\n";
        }
        return text;
    }

private:
    struct Row {
        std::uint32_t oid;
        std::map<std::string, std::string> cells;
    };

    static std::string NameOf(const RecordProperty& property) {
        return fmt::format("{:04x} {}", property.id(), TypeName(property.type()));
    }
    static std::u16string UnitsOf(const RecordProperty& property) {
        std::u16string units(property.bytes.size() / sizeof(char16_t), u'\0');
        std::memcpy(units.data(), property.bytes.data(), units.size() * sizeof(char16_t));
        return units;
    }
    static bool IsText(const RecordProperty& property) {
        return property.type() != kPropertyString || IsWellFormed(UnitsOf(property));
    }

    std::vector<Row> rows_;
    std::map<std::string, bool> columns_;
};

}  // namespace

std::string ExportDatabases(StoredPair& pair, const std::vector<StoredObject>& objects,
                            Omissions& omissions) {
    Json databases = Json::array();
    std::map<std::u16string, std::size_t> places;
    for (const StoredObject& object : objects) {
        if (object.type() == ObjectType::kDatabase) {
            places[object.name] = databases.size();
            Json database;
            AddText(database, "name", object.name);
            database["oid"] = object.record.dwOID;
            database["type"] = object.first;
            database["sortOrders"] = SortOrdersOf(pair, object);
            database["records"] = Json::array();
            databases.push_back(std::move(database));
        }
    }
    ForEachRecord(pair, objects, omissions, Any,
                  [&](const StoredObject& record, const std::vector<RecordProperty>& properties) {
                      const auto place = places.find(record.name);
                      if (place == places.end()) {
                          omissions.Add(record, "its database is not among what is exported",
                                        ExitCode::kIncomplete);
                      } else {
                          databases[place->second]["records"].push_back(JsonOf(record, properties));
                      }
                  });
    return databases.dump(1) + "\n";
}

std::string ExportTable(StoredPair& pair, const std::vector<StoredObject>& objects,
                        Omissions& omissions) {
    Table table;
    const StoredObject* first = nullptr;
    ForEachRecord(pair, objects, omissions, Any,
                  [&](const StoredObject& record, const std::vector<RecordProperty>& properties) {
                      first = first == nullptr ? &record : first;
                      if (record.name != first->name) {
                          throw Failure(ExitCode::kUsage,
                                        "a table holds one database: name one, such as \"db:" +
                                            ToUtf8(first->name) + "\"");
                      }
                      table.Add(record.record.dwOID, properties);
                  });
    return table.Text();
}

}  // namespace tolvenar::pc
