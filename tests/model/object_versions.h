// The versions of objects in images of a device: what a backup adds of them, and the ids that they
// get when a restore writes them back.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "tests/support/contents.h"

namespace tests {

bool SameVersion(const ImageFile& a, const ImageFile& b);
bool SameRecord(const sim::databases::Record& a, const sim::databases::Record& b);

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

// After a restore of one of the states, which made the device `now`: whatever was written back, or
// is there under another id, has that id in each state that holds this version of it. A version of
// another life with that key has an id of its own.
void FollowIds(std::vector<DeviceImage>& states, std::size_t restored, const DeviceImage& now);

}  // namespace tests
