// Objects of any type under any name: what is left out, found again, or contained in one another.
#include <set>
#include <string>
#include <tuple>

#include "snapshot/compare/lost_containers.h"
#include "snapshot/compare/object_finder.h"
#include "snapshot/compare/own_files.h"
#include "snapshot/compare/written_records.h"
#include "snapshot/records/left_out.h"
#include "snapshot/text/letter_case.h"
#include "tests/fuzz/fuzz_source.h"
#include "tests/support/fake_info_source.h"

using namespace tolvenar;

namespace {

struct Object {
    ObjectType type;
    std::uint32_t first_field;  // hive or attributes
    std::uint32_t dwOID;
    std::u16string name;
};
using Objects = std::vector<Object>;
constexpr std::size_t kMostObjects = 100;

Objects TakeObjects(FuzzInput& input) {
    constexpr ObjectType kTypes[] = {ObjectType::kFile,           ObjectType::kRegistryKey,
                                     ObjectType::kRegistryValue,  ObjectType::kDatabase,
                                     ObjectType::kDatabaseRecord, ObjectType::kState,
                                     ObjectType::kNone,           static_cast<ObjectType>(33)};
    Objects objects;
    while (!input.empty() && objects.size() < kMostObjects) {
        const std::uint32_t bits = input.Byte();
        const std::uint32_t first_field =
            (bits & 7) == 0 ? bits & 0x10 : kHiveClassesRoot + (bits >> 4 & 7);
        const std::uint32_t dwOID = input.Byte();
        const std::size_t units = input.Byte() & 63;
        objects.push_back({kTypes[bits & 7], first_field, dwOID, input.Text(units)});
    }
    return objects;
}

InfoBlock BlockOf(const Object& object, const std::u16string& rest = {}) {
    InfoBlock block;
    block.head().type = static_cast<std::uint16_t>(object.type);
    block.head().hive = object.first_field;
    const std::u16string name = object.name + rest;
    Require(block.SetName(name.c_str(), name.size()));
    return block;
}

std::u16string InCapitals(std::u16string text) {
    for (char16_t& unit : text) {
        unit = Capital(unit);
    }
    return text;
}

// Equal for objects that a finder by name takes for one another.
using Name = std::tuple<ObjectType, std::uint32_t, std::u16string>;
Name NameOf(const Object& object, const std::u16string& rest = {}) {
    return {object.type, IsRegistryType(object.type) ? object.first_field : 0,
            InCapitals(object.name + rest)};
}

// Every second object is left out.
void CheckLeftOut(const Objects& objects) {
    LeftOut left_out;
    std::set<std::pair<ObjectType, std::u16string>> expected;
    for (std::size_t i = 0; i < objects.size(); i += 2) {
        left_out.Add(objects[i].type, objects[i].name);
        expected.insert({objects[i].type, InCapitals(objects[i].name)});
    }
    std::size_t entries = 0;
    for (const LeftOut::Entry* entry = left_out.First(); entry != nullptr; entry = entry->next) {
        Require(entry->name == objects[2 * entries++].name && !entry->is_kept);
    }
    Require(entries == (objects.size() + 1) / 2);
    for (const Object& object : objects) {
        const std::u16string name = InCapitals(object.name);
        Require(left_out.Contains(object.type, name) == (expected.count({object.type, name}) != 0));
        left_out.MarkKept(object.type, name);
    }
}

void CheckFinder(const Objects& objects) {
    FakeInfoSource info;
    info.keep_asked = false;
    ObjectFinder finder(info);
    Require(finder.Reserve(2 * objects.size()));
    std::vector<ObjectRecord> records(objects.size());
    std::set<Name> names;
    for (std::size_t i = 0; i < objects.size(); ++i) {
        const Object& object = objects[i];
        info.stored[static_cast<std::uint32_t>(i) + 1] = {object.name, object.type,
                                                          object.first_field};
        records[i].type = object.type;
        records[i].dwOID = object.dwOID;
        records[i].propOffset = static_cast<std::uint32_t>(i) + 1;
        Require(finder.AddByName(records[i]));
        finder.AddById(records[i]);
        names.insert(NameOf(object));
    }
    ObjectRecord unreadable{};
    unreadable.propOffset = 0xFFFFFFFF;
    Require(!finder.AddByName(unreadable));
    for (const Object& object : objects) {
        const ObjectRecord* named = finder.FindByName(BlockOf(object));
        Require(named != nullptr && NameOf(objects[named->propOffset - 1]) == NameOf(object));
        const ObjectRecord* found = finder.FindById(object.type, object.dwOID);
        Require((found != nullptr) == (object.dwOID != 0));
        Require(found == nullptr || (found->type == object.type && found->dwOID == object.dwOID));
        const bool is_expected = names.count(NameOf(object, u"?")) != 0;
        Require((finder.FindByName(BlockOf(object, u"?")) != nullptr) == is_expected);
    }
}

// What is below a container that is lost is contained in it; the container itself is not.
void CheckContainers(const Objects& objects) {
    LostContainers all;
    for (const Object& object : objects) {
        LostContainers lost;
        const InfoBlock block = BlockOf(object);
        lost.Add(block);
        all.Add(block);
        Require(!lost.Contain(block) && (lost.empty() || !all.empty()));
        if (lost.empty()) {
            continue;
        }
        const bool is_database = object.type == ObjectType::kDatabase;
        InfoBlock below = BlockOf(object, is_database ? u"" : u"\\x");
        if (is_database) {
            below.head().type = static_cast<std::uint16_t>(ObjectType::kDatabaseRecord);
        }
        Require(lost.Contain(below) && all.Contain(below));
        Require(!lost.Contain(BlockOf(object, u"x")) || object.name.empty());
    }
}

// What is excluded takes all below it along.
void CheckExclusion(const Objects& objects) {
    for (const Object& object : objects) {
        const char16_t* const name = object.name.c_str();
        const std::u16string below = object.name + u"\\x";
        for (const std::uint32_t hive : {kHiveCurrentUser, kHiveLocalMachine}) {
            const bool is_key = IsExcludedRegistryObject(hive, name, nullptr);
            Require(!is_key || IsExcludedRegistryObject(hive, below.c_str(), nullptr));
            Require(!is_key || IsExcludedRegistryObject(hive, name, objects[0].name.c_str()));
            IsExcludedRegistryObject(hive, name, objects[0].name.c_str());
        }
        Require(!IsExcludedDatabase(name) || IsExcludedDatabase(below.c_str()));
        Require(!IsExcluded(ExclusionKind::kFile, name, u"x", nullptr) ||
                IsExcluded(ExclusionKind::kFile, below.c_str(), u"x", nullptr));
        IsExcluded(ExclusionKind::kFile, name, objects[0].name.c_str(), nullptr);
    }
}

// The storage's own files are never in a snapshot, however their names are written.
void CheckOwnFiles(const Objects& objects) {
    for (const Object& object : objects) {
        StorageNames names;
        if (!MakeStorageNames(object.name.c_str(), names)) {
            continue;
        }
        const OwnFiles own(names);
        const std::u16string folder = own.names().folder;
        for (const char16_t* file : own.names().names) {
            const std::u16string name = InCapitals(file);
            Require(IsExcluded(ExclusionKind::kFile, folder.c_str(), name.c_str(), &own.names()));
        }
        const std::u16string old = std::u16string(own.names().names[kJournalName]) + u"_OLD12";
        Require(IsExcluded(ExclusionKind::kFile, u"\\", old.c_str(), &own.names()));
        Require(IsExcluded(ExclusionKind::kFile, InCapitals(folder).c_str(), u"TOLVENAR_log.txt",
                           &own.names()));
        IsExcluded(ExclusionKind::kFile, objects[0].name.c_str(), object.name.c_str(),
                   &own.names());
    }
}

void CheckWritten(const Objects& objects) {
    WrittenRecords written;
    std::set<std::uint32_t> expected;
    for (const Object& object : objects) {
        Require(written.Reserve() && written.Add(object.dwOID));
        expected.insert(object.dwOID);
    }
    for (std::uint32_t id = 0; id < 260; ++id) {
        Require(written.Contains(id) == (expected.count(id) != 0));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    const Objects objects = TakeObjects(input);
    CheckLeftOut(objects);
    CheckFinder(objects);
    CheckContainers(objects);
    CheckExclusion(objects);
    CheckOwnFiles(objects);
    CheckWritten(objects);
    return 0;
}
