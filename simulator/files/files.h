// The device's files as a tester handles them: past attributes, locks and sharing. What cannot be
// done throws FileError.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "simulator/store/device.h"

namespace sim::files {

class FileError : public std::runtime_error {
public:
    FileError(const std::wstring& path, std::uint32_t code);
    std::uint32_t code() const { return code_; }

private:
    std::uint32_t code_;
};

struct Entry {
    std::wstring path;  // full
    std::uint32_t oid = 0;
    std::uint32_t parent_oid = 0;
    std::uint32_t attributes = 0;
    std::uint32_t size = 0;
    std::uint64_t modified = 0;  // FILETIME count
    bool is_folder = false;
    bool on_card = false;
};

// Makes the folder in which the card hangs (the setting "card.name", "Storage Card"), once.
void MountCard(Device& device);
// Takes away every file and folder of the object store; the card stays.
void EraseStore(Device& device);

// Creates or replaces a file, and the folders above it. A file that is there keeps its id.
void Put(Device& device, const std::wstring& path, const std::string& bytes);
void PutHostFile(Device& device, const std::wstring& host_file, const std::wstring& path);
// Waits some seconds for a program that shares the file with nobody.
std::string Get(Device& device, const std::wstring& path);
void GetToHostFile(Device& device, const std::wstring& path, const std::wstring& host_file);
bool Exists(Device& device, const std::wstring& path);
// With the folders above it; one that is there already is no failure.
void MakeFolder(Device& device, const std::wstring& path);
// A folder goes with all that is in it.
void Erase(Device& device, const std::wstring& path);
void Rename(Device& device, const std::wstring& from, const std::wstring& to);
// The whole attribute word, in-ROM and ROM module included; a folder stays one.
void ReplaceAttributes(Device& device, const std::wstring& path, std::uint32_t attributes);
void Touch(Device& device, const std::wstring& path, std::uint64_t filetime);
// `mode` is "none", "read" or "write": what the holder shares.
void Lock(Device& device, const std::wstring& path, const std::string& mode);
void Unlock(Device& device, const std::wstring& path);

Entry Info(Device& device, const std::wstring& path);
// An object-store file or folder by its object id; nothing for every other id.
std::optional<Entry> InfoByOid(Device& device, std::uint32_t oid);
// What is directly in a folder, sorted by path.
std::vector<Entry> List(Device& device, const std::wstring& path);
// Everything, sorted by path.
std::vector<Entry> ListAll(Device& device);

// The host file with a file's content, for reading; empty when there is no such file.
std::wstring HostFile(Device& device, const std::wstring& path);

// A setting that this area has to act on: "store.free", "card.free", "oid.next", "card.name",
// "card.ready", "card.unsynced". False when the name is none of them.
bool ApplyFileSetting(Device& device, const std::string& name, const std::string& value);

}  // namespace sim::files
