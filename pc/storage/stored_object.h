// One object of a storage as it is told and handed out: what its record and its block say.
#pragma once

#include <cstdint>
#include <string>

#include "pc/storage/stored_pair.h"
#include "pc/text/file_time.h"

namespace tolvenar::pc {

struct StoredObject {
    ObjectRecord record{};
    bool is_damaged = false;  // the block cannot be trusted: nothing below means anything
    std::u16string name;      // path of a file, path of a key, name of a database; empty for states
    std::u16string value_name;
    std::uint32_t first = 0;  // the block's words: InfoBlockHead
    std::uint32_t second = 0;
    FileTime time;
    std::uint32_t data_bytes = 0;
    bool has_data = false;  // in the storage file, if only of length 0

    ObjectType type() const { return record.type; }
    std::uint32_t hive() const { return first; }
    std::uint32_t attributes() const { return first; }
    std::uint32_t property_count() const { return first; }
    std::uint32_t value_type() const { return second; }
    bool is_folder() const;
    // A file of the ROM: its contents are in no storage.
    bool is_in_rom() const;
};

// Reads the block of `record`. One that is not what the record says gives a damaged object.
StoredObject Describe(StoredPair& pair, const ObjectRecord& record);

// "HKLM" and its like; the number for a root that is none of the four.
std::u16string HiveName(std::uint32_t hive);

// How an object is called everywhere in this program, and by which it is asked for:
//   \My Documents\a.txt          a file or folder
//   HKCU\Software\Notes          a key
//   HKCU\Software\Notes\\Font    a value: its name stands behind two backslashes
//   db:Contacts Database         a database
//   db:Contacts Database#16777293  a record, by its object id
//   damaged:8123                 what cannot be described, by the place of its block
std::u16string PathOf(const StoredObject& object);

// "file", "folder", "key", "value", "database", "record", "state", "damaged".
const char* KindOf(const StoredObject& object);

}  // namespace tolvenar::pc
