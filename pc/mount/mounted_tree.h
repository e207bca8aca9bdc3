// A storage as a file system: a folder for each state. What each call of the system gives, without
// the system; failures are its numbers. Nothing can be changed.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "pc/mount/state_files.h"

namespace tolvenar::pc {

struct FileAttributes {
    bool is_folder = false;
    std::uint64_t bytes = 0;
    FileTime time;
};

class OpenedFile {
public:
    virtual ~OpenedFile() = default;
    // Up to so many bytes from `offset` on; fewer at the end alone. 0, or what failed.
    virtual int Read(std::uint64_t offset, std::size_t bytes, std::string& piece) = 0;
};

class MountedTree {
public:
    explicit MountedTree(StoredPair& pair) : pair_(pair) {}
    MountedTree(const MountedTree&) = delete;
    MountedTree& operator=(const MountedTree&) = delete;

    // Each gives 0 or what failed. `path` begins with "/".
    int Look(const std::string& path, FileAttributes& attributes);
    int List(const std::string& path, std::vector<std::string>& names);
    // EIO where contents are damaged, ENODATA where the storage has none: a file of the ROM.
    int Open(const std::string& path, std::unique_ptr<OpenedFile>& file);

private:
    // Null when there is no such state or file.
    FileNode* Find(const std::string& path);
    StateFiles* FilesOf(const std::string& name);
    int Make(const FileNode& node, std::string& contents);

    StoredPair& pair_;
    std::map<std::uint16_t, std::unique_ptr<StateFiles>> states_;  // that were looked at
};

}  // namespace tolvenar::pc
