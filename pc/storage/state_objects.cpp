#include "pc/storage/state_objects.h"

#include <algorithm>
#include <new>
#include <set>
#include <tuple>

namespace tolvenar::pc {
namespace {

int GroupOf(const StoredObject& object) {
    if (object.is_damaged) {
        return 3;
    }
    return object.type() == ObjectType::kFile ? 0 : IsRegistryObject(object.record) ? 1 : 2;
}

// A key stands before its values, a database before its records, and both before what is below.
auto OrderOf(const StoredObject& object) {
    const bool is_registry = IsRegistryObject(object.record);
    return std::make_tuple(
        GroupOf(object), is_registry ? object.hive() : 0u, std::u16string_view(object.name),
        object.type() == ObjectType::kRegistryValue || object.type() == ObjectType::kDatabaseRecord,
        std::u16string_view(object.value_name), object.record.dwOID, object.record.propOffset);
}

std::set<std::uint32_t> OlderVersions(const StoredPair& pair, const ObjectList& state) {
    std::set<std::uint32_t> offsets;
    const bool done = pair.check().ForEachDouble(
        state,
        [&](const ObjectRecord& older, const ObjectRecord&) { offsets.insert(older.propOffset); });
    if (!done) {
        throw std::bad_alloc();
    }
    return offsets;
}

}  // namespace

bool StandsBefore(const StoredObject& a, const StoredObject& b) { return OrderOf(a) < OrderOf(b); }

std::vector<StoredObject> DescribeAll(StoredPair& pair, std::vector<ObjectRecord> records) {
    std::sort(records.begin(), records.end(), [](const ObjectRecord& a, const ObjectRecord& b) {
        return a.propOffset < b.propOffset;
    });
    std::vector<StoredObject> objects;
    objects.reserve(records.size());
    for (const ObjectRecord& record : records) {
        objects.push_back(Describe(pair, record));
    }
    return objects;
}

namespace {

template <typename Wanted>
std::vector<StoredObject> ObjectsOf(StoredPair& pair, std::uint16_t state, Wanted is_wanted) {
    std::unique_ptr<ObjectList> list = pair.BuildState(state);
    const std::set<std::uint32_t> older = OlderVersions(pair, *list);
    std::vector<ObjectRecord> records;
    records.reserve(list->CountRecords());
    for (const ObjectList::Node& node : *list) {
        const ObjectRecord& record = *node.record;
        if (is_wanted(record.type) && older.count(record.propOffset) == 0) {
            records.push_back(record);
        }
    }
    list.reset();  // the objects take its memory
    std::vector<StoredObject> objects = DescribeAll(pair, std::move(records));
    std::sort(objects.begin(), objects.end(),
              [](const StoredObject& a, const StoredObject& b) { return OrderOf(a) < OrderOf(b); });
    return objects;
}

}  // namespace

std::vector<StoredObject> ObjectsOf(StoredPair& pair, std::uint16_t state) {
    return ObjectsOf(pair, state, [](ObjectType type) { return type != ObjectType::kState; });
}

std::vector<StoredObject> FilesOf(StoredPair& pair, std::uint16_t state) {
    return ObjectsOf(pair, state, [](ObjectType type) { return type == ObjectType::kFile; });
}

}  // namespace tolvenar::pc
