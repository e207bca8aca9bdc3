// What a device holds, with the object ids that a backup stores beside it, read past the program.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/model/device_model.h"

namespace tests {

struct ImageFile {
    bool is_folder = false;
    std::uint32_t oid = 0;
    ModelFile content;  // of a folder the attributes alone
};

struct ImageDatabase {
    sim::databases::Database shape;
    std::map<std::uint32_t, sim::databases::Record> records;
};

struct DeviceImage {
    std::map<std::wstring, ImageFile> files;
    std::map<std::u16string, std::map<std::u16string, ModelValue>> keys;
    std::map<std::u16string, ImageDatabase> databases;

    DeviceModel Model() const;  // without the ids
};

bool SameVersion(const ImageFile& a, const ImageFile& b);
bool SameRecord(const sim::databases::Record& a, const sim::databases::Record& b);

// Nothing of the card, nothing of the program's own settings.
DeviceImage ImageOf(sim::Device& device);

// Names an object by its kind and name: two versions of one object are called the same, and so are
// the lines of the object's records in a list.
std::string FileName(const std::wstring& path);
std::string KeyName(const std::u16string& path);  // "HKLM\\…"
std::string ValueName(const std::u16string& path, const std::u16string& name);
std::string DatabaseName(const std::u16string& name);
std::string RecordName(const std::u16string& database, std::uint32_t oid);

// What a backup of `now` must add to the states when `last` is the last one: a line for each
// record, "+ " or "- " and the object's name.
std::multiset<std::string> ExpectedBackup(const DeviceImage& last, const DeviceImage& now);

// After a restore of one of the states, which made the device `now`: whatever was written back has
// a new id, and has it in each state that holds this version of it.
void FollowIds(std::vector<DeviceImage>& states, std::size_t restored, const DeviceImage& now);

}  // namespace tests
