#include "tests/damage/holdings.h"

#include "tests/support/engine_parts.h"
#include "tests/support/text.h"

namespace tolvenar {
namespace {

// Names of all kinds are the same in either case.
std::string Folded(std::string name) {
    for (char& letter : name) {
        letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter;
    }
    return name;
}

template <typename Path>
std::string NameOf(const char* kind, const Path& path) {
    return std::string(kind) + " " + Folded(tests::Narrow(path));
}

std::string RecordNameOf(const std::u16string& database, const sim::databases::Record& record) {
    const sim::databases::Property* number = sim::databases::Find(record, kNumber);
    return number == nullptr ? NameOf("record", database)
                             : Folded(tests::RecordLine(database, {*number}));
}

}  // namespace

Holdings::Holdings(const tests::DeviceImage& image) : lines(image.Lines()) {
    for (const auto& [path, file] : image.files) {
        objects[NameOf(file.is_folder ? "folder" : "file", path)].insert(file.bytes);
    }
    for (const auto& [path, values] : image.keys) {
        objects[NameOf("key", path)].insert("");
        for (const auto& [name, value] : values) {
            objects[NameOf("value", path) + " [" + Folded(tests::Narrow(name)) + "]"].insert(
                std::to_string(value.first) + ":" + value.second);
        }
    }
    for (const auto& [name, database] : image.databases) {
        objects[NameOf("database", name)].insert("");
        for (const auto& [oid, record] : database.records) {
            objects[RecordNameOf(name, record)].insert(tests::RecordLine(name, record));
        }
    }
}

}  // namespace tolvenar
