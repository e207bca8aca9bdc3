#include "tests/model/device_model.h"

#include <stdexcept>

#include "simulator/registry/registry.h"
#include "tests/model/object_versions.h"

namespace tests {
namespace {

using sim::databases::Database;
using sim::databases::DatabaseStore;
using sim::databases::Record;
using sim::registry::KeyId;
using sim::registry::Registry;

template <typename Text>
bool IsAtOrBelow(const Text& path, const Text& ancestor) {
    return path.compare(0, ancestor.size(), ancestor) == 0 &&
           (path.size() == ancestor.size() || path[ancestor.size()] == '\\');
}

template <typename Map, typename Text>
void EraseAtAndBelow(Map& map, const Text& ancestor) {
    for (auto entry = map.begin(); entry != map.end();) {
        entry = IsAtOrBelow(entry->first, ancestor) ? map.erase(entry) : std::next(entry);
    }
}

template <typename Map>
void MoveAtAndBelow(Map& map, const std::wstring& from, const std::wstring& to) {
    Map moved;
    for (const auto& [path, thing] : map) {
        moved[IsAtOrBelow(path, from) ? to + path.substr(from.size()) : path] = thing;
    }
    map = moved;
}

KeyId PlaceOf(const Registry& registry, const std::u16string& path) {
    std::u16string rest;
    const auto root = sim::registry::RootOfPath(path, rest);
    KeyId place;
    if (!root || registry.Place(*root, rest, place) != sim::registry::kOk) {
        throw std::runtime_error("no key path");
    }
    return place;
}

auto At(ImageDatabase& database, std::size_t index) {
    return std::next(database.records.begin(), static_cast<std::ptrdiff_t>(index));
}

void Check(bool done, const char* what) {
    if (!done) {
        throw std::runtime_error(what);
    }
}

}  // namespace

void ModelledDevice::NoteFile(const std::wstring& path, const std::string& bytes) {
    const sim::files::Entry entry = device_.Info(path);
    model_.files[path] = {entry.is_folder, 0, entry.attributes, entry.modified, bytes};
}

void ModelledDevice::PutFile(const std::wstring& path, const std::string& bytes) {
    device_.PutFile(path, bytes);
    NoteFile(path, bytes);
}

void ModelledDevice::SetAttributes(const std::wstring& path, std::uint32_t attributes) {
    device_.SetAttributes(path, attributes);
    model_.files.at(path).attributes = attributes;
}

void ModelledDevice::Touch(const std::wstring& path, std::uint64_t time) {
    device_.Touch(path, time);
    model_.files.at(path).modified = time;
}

void ModelledDevice::MakeFolder(const std::wstring& path) {
    device_.MakeFolder(path);
    NoteFile(path, "");
}

void ModelledDevice::Remove(const std::wstring& path) {
    device_.Remove(path);
    EraseAtAndBelow(model_.files, path);
}

void ModelledDevice::Move(const std::wstring& from, const std::wstring& to) {
    sim::files::Rename(device_.sim(), from, to);
    MoveAtAndBelow(model_.files, from, to);
}

void ModelledDevice::CreateKey(const std::u16string& path) {
    Registry registry(device_.sim());
    std::u16string rest;
    const auto root = sim::registry::RootOfPath(path, rest);
    KeyId place;
    bool created = false;
    Check(registry.Create(*root, rest, u"", place, created) == sim::registry::kOk, "create key");
    for (std::size_t end = path.find(u'\\'); end != path.npos; end = path.find(u'\\', end + 1)) {
        const std::u16string above = path.substr(0, end);
        if (above.find(u'\\') != above.npos) {
            model_.keys[above];
        }
    }
    model_.keys[path];
}

void ModelledDevice::SetValue(const std::u16string& path, const std::u16string& name,
                              const ImageValue& value) {
    Registry registry(device_.sim());
    registry.Set(PlaceOf(registry, path), {name, value.first, value.second});
    model_.keys.at(path)[name] = value;
}

void ModelledDevice::DeleteValue(const std::u16string& path, const std::u16string& name) {
    Registry registry(device_.sim());
    Check(registry.DeleteValue(PlaceOf(registry, path), name), "delete value");
    model_.keys.at(path).erase(name);
}

void ModelledDevice::DeleteKey(const std::u16string& path) {
    Registry registry(device_.sim());
    Check(registry.Delete(PlaceOf(registry, path)), "delete key");
    EraseAtAndBelow(model_.keys, path);
}

void ModelledDevice::CreateDatabase(const Database& shape) {
    Database made = shape;
    made.modified = device_.sim().WriteTimeUtc();
    Check(DatabaseStore(device_.sim()).Create(made) == sim::databases::kOk, "create database");
    model_.databases[shape.name] = {shape, {}};
}

void ModelledDevice::DeleteDatabase(const std::u16string& name) {
    DatabaseStore store(device_.sim());
    Check(store.Delete(store.ByName(name)->oid), "delete database");
    model_.databases.erase(name);
}

void ModelledDevice::AddRecord(const std::u16string& database, const Record& record) {
    DatabaseStore store(device_.sim());
    std::uint32_t oid = 0;
    Check(store.Write(*store.ByName(database), oid, record) == sim::databases::kOk, "add record");
    auto& records = model_.databases.at(database).records;
    records[records.empty() ? 1 : records.rbegin()->first + 1] = record;
}

std::uint32_t ModelledDevice::FindRecord(const Database& database, const Record& record) {
    const DatabaseStore store(device_.sim());
    for (const std::uint32_t oid : store.Records(database.oid)) {
        if (SameRecord(*store.Read(database.oid, oid), record)) {
            return oid;
        }
    }
    throw std::runtime_error("find record");
}

void ModelledDevice::ChangeRecord(const std::u16string& database, std::size_t index,
                                  const Record& record) {
    DatabaseStore store(device_.sim());
    const Database shape = *store.ByName(database);
    Record& old = At(model_.databases.at(database), index)->second;
    std::uint32_t oid = FindRecord(shape, old);
    Check(store.Write(shape, oid, record) == sim::databases::kOk, "change record");
    old = record;
}

void ModelledDevice::DeleteRecord(const std::u16string& database, std::size_t index) {
    DatabaseStore store(device_.sim());
    const Database shape = *store.ByName(database);
    ImageDatabase& held = model_.databases.at(database);
    const auto record = At(held, index);
    Check(store.DeleteRecord(shape.oid, FindRecord(shape, record->second)), "delete record");
    held.records.erase(record);
}

}  // namespace tests
