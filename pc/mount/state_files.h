// One state as folders and files with names that any PC takes:
//   Files/My Documents/letter.txt            a file
//   Registry/HKCU/Software/Notes/Font.txt    what a value says, as text
//   Registry/HKCU/Software/Notes/values.reg  the values of a key, exactly
//   Databases/Contacts Database/33.txt       what a record says, as text
//   Databases/Contacts Database/33.json      the record, exactly
//   Damaged/8123                             what has lost its name; it cannot be opened
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "pc/storage/safe_names.h"
#include "pc/storage/stored_object.h"

namespace tolvenar::pc {

enum class FileKind { kFolder, kFile, kText, kRegistry, kRecord, kDamaged };

struct FileNode {
    FileKind kind = FileKind::kFolder;
    FileTime time;
    std::vector<const StoredObject*> objects;  // that a file is made of
    std::map<std::string, FileNode> below;
    std::optional<std::uint64_t> bytes;  // once they were counted
};

class StateFiles {
public:
    // `made` is the time of what has none of its own.
    StateFiles(StoredPair& pair, std::uint16_t state, FileTime made);
    StateFiles(const StateFiles&) = delete;
    StateFiles& operator=(const StateFiles&) = delete;

    FileNode& root() { return root_; }

private:
    void Enter(const StoredObject& object);
    void EnterRegistry(const StoredObject& object);
    void EnterDatabase(const StoredObject& object);
    FileNode& Folder(const std::u16string& path);
    // A new file; when something else has that name already, by another one.
    FileNode& NewFile(std::u16string path, FileKind kind);
    FileNode& At(const SafePath& place);

    const FileTime made_;
    const std::vector<StoredObject> objects_;
    std::map<std::u16string, const StoredObject*> databases_;
    std::map<FileNode*, FileNode*> values_;  // of a key's folder its "values.reg"
    SafeNames names_;
    FileNode root_;
};

}  // namespace tolvenar::pc
