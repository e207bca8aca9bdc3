#include "simulator/files/files.h"

#include <algorithm>
#include <windows.h>

#include "simulator/files/card_absence.h"
#include "simulator/files/file_table.h"
#include "simulator/files/space.h"
#include "simulator/files/unsynced.h"
#include "simulator/host/host_files.h"
#include "simulator/store/utf8.h"

namespace sim::files {
namespace {

constexpr DWORD kPatienceMs = 10000;
constexpr DWORD kPauseMs = 5;

Node Existing(FileTable& table, const std::wstring& path) {
    const Found found = table.Find(path.c_str());
    if (found.error != 0) {
        throw FileError(path, found.error);
    }
    return found.node;
}

Node FolderAt(FileTable& table, const std::vector<std::wstring>& names, std::size_t count,
              const std::wstring& path) {
    Node node;
    for (std::size_t i = 0; i < count; ++i) {
        const std::optional<Node> child = table.Child(node.number, names[i]);
        node = child ? *child : table.Add(node, names[i], kFolder);
        if (!node.is_folder()) {
            throw FileError(path, ERROR_PATH_NOT_FOUND);
        }
    }
    return node;
}

Entry EntryOf(FileTable& table, const Node& node) {
    Entry entry;
    entry.path = table.PathOf(node);
    entry.oid = node.oid;
    const std::optional<Node> parent = table.Get(node.parent);
    entry.parent_oid = parent ? parent->oid : 0;
    entry.attributes = table.AttributesOf(node);
    entry.size = table.SizeOf(node);
    entry.modified = table.TimesOf(node).modified;
    entry.is_folder = node.is_folder();
    entry.on_card = node.on_card;
    return entry;
}

void EraseTree(FileTable& table, const Node& node) {
    for (const std::uint32_t number : table.Children(node.number)) {
        if (const std::optional<Node> child = table.Get(number)) {
            EraseTree(table, *child);
        }
    }
    const std::uint32_t size = table.SizeOf(node);
    Forget(table, node.number);
    table.Remove(node);
    if (!node.is_rom()) {
        GiveSpaceBack(table, node.on_card, size);
    }
}

// The host's handle lives within a change of the store: see OpenContent.
std::uint32_t TryToGet(Device& device, const std::wstring& path, std::string& bytes) {
    FileTable& table = FileTable::Of(device);
    LogStore::Change change(table.store());
    const Node node = Existing(table, path);
    if (node.is_folder()) {
        return ERROR_ACCESS_DENIED;
    }
    std::optional<std::string> content = host::ReadWhole(table.ContentFile(node.number));
    if (content) {
        bytes = std::move(*content);
        return 0;
    }
    const std::uint32_t error = ::GetLastError();
    return error == ERROR_FILE_NOT_FOUND ? 0 : error;  // an absent one is an empty file
}

std::vector<Entry> Sorted(std::vector<Entry> entries) {
    std::sort(entries.begin(), entries.end(),
              [](const Entry& a, const Entry& b) { return a.path < b.path; });
    return entries;
}

}  // namespace

FileError::FileError(const std::wstring& path, std::uint32_t code)
    : std::runtime_error(Utf8(path) + ": error " + std::to_string(code)), code_(code) {}

void MountCard(Device& device) {
    FileTable& table = FileTable::Of(device);
    LogStore::Change change(table.store());
    const std::wstring name = Wide(device.Setting("card.name", "Storage Card"));
    if (!table.Child(kRoot, name)) {
        table.Add(Node(), name, kFolder, true);
    }
}

void EraseStore(Device& device) {
    FileTable& table = FileTable::Of(device);
    LogStore::Change change(table.store());
    for (const std::uint32_t number : table.Children(kRoot)) {
        const std::optional<Node> node = table.Get(number);
        if (node && !node->on_card) {
            EraseTree(table, *node);
        }
    }
}

void Put(Device& device, const std::wstring& path, const std::string& bytes) {
    FileTable& table = FileTable::Of(device);
    LogStore::Change change(table.store());
    const Path parsed = ParsePath(path.c_str());
    if (parsed.error != 0 || parsed.names.empty()) {
        throw FileError(path, ERROR_INVALID_NAME);
    }
    const Node parent = FolderAt(table, parsed.names, parsed.names.size() - 1, path);
    const std::optional<Node> old = table.Child(parent.number, parsed.names.back());
    const Node node = old ? *old : table.Add(parent, parsed.names.back(), kArchive);
    if (node.is_folder()) {
        throw FileError(path, ERROR_ACCESS_DENIED);
    }
    const std::uint32_t old_size = table.SizeOf(node);
    SizeChange size(table, node.number);
    if (!host::WriteWhole(table.ContentFile(node.number), bytes)) {
        throw FileError(path, ERROR_SHARING_VIOLATION);
    }
    if (!node.is_rom()) {
        GiveSpaceBack(table, node.on_card, old_size);
        AddToUsed(table, node.on_card, static_cast<std::uint32_t>(bytes.size()));
    }
    size.Set(static_cast<std::uint32_t>(bytes.size()));
    Forget(table, node.number);
    if (old) {
        table.SetModified(node, device.WriteTimeUtc());
    }
}

void PutHostFile(Device& device, const std::wstring& host_file, const std::wstring& path) {
    const std::optional<std::string> bytes = host::ReadWhole(host_file);
    if (!bytes) {
        throw FileError(host_file, ERROR_FILE_NOT_FOUND);
    }
    Put(device, path, *bytes);
}

std::string Get(Device& device, const std::wstring& path) {
    const DWORD begin = ::GetTickCount();
    for (;;) {
        std::string bytes;
        const std::uint32_t error = TryToGet(device, path, bytes);
        if (error == 0) {
            return bytes;
        }
        if (error != ERROR_SHARING_VIOLATION || ::GetTickCount() - begin > kPatienceMs) {
            throw FileError(path, error);
        }
        ::Sleep(kPauseMs);
    }
}

void GetToHostFile(Device& device, const std::wstring& path, const std::wstring& host_file) {
    if (!host::WriteWhole(host_file, Get(device, path))) {
        throw FileError(host_file, ERROR_ACCESS_DENIED);
    }
}

bool Exists(Device& device, const std::wstring& path) {
    return FileTable::Of(device).Find(path.c_str()).error == 0;
}

void MakeFolder(Device& device, const std::wstring& path) {
    FileTable& table = FileTable::Of(device);
    LogStore::Change change(table.store());
    const Path parsed = ParsePath(path.c_str());
    if (parsed.error != 0) {
        throw FileError(path, parsed.error);
    }
    FolderAt(table, parsed.names, parsed.names.size(), path);
}

void Erase(Device& device, const std::wstring& path) {
    FileTable& table = FileTable::Of(device);
    LogStore::Change change(table.store());
    const Node node = Existing(table, path);
    if (node.number == kRoot || node.is_card) {
        throw FileError(path, ERROR_ACCESS_DENIED);
    }
    EraseTree(table, node);
}

void Rename(Device& device, const std::wstring& from, const std::wstring& to) {
    FileTable& table = FileTable::Of(device);
    LogStore::Change change(table.store());
    Node node = Existing(table, from);
    const Found target = table.Find(to.c_str());
    const bool is_free = target.error == ERROR_FILE_NOT_FOUND ||
                         (target.error == 0 && target.node.number == node.number);
    if (!is_free) {
        throw FileError(to, target.error != 0 ? target.error : ERROR_ALREADY_EXISTS);
    }
    if (!node.is_card && target.parent.on_card != node.on_card) {
        throw FileError(to, ERROR_NOT_SAME_DEVICE);
    }
    table.Move(node, target.parent, target.name);
    Forget(table, node.number);
}

void ReplaceAttributes(Device& device, const std::wstring& path, std::uint32_t attributes) {
    FileTable& table = FileTable::Of(device);
    LogStore::Change change(table.store());
    Node node = Existing(table, path);
    const std::uint32_t shown_only = kFolder | kNormal | kTemporary;
    const bool was_rom = node.is_rom();
    Forget(table, node.number);
    table.SetStoredAttributes(node,
                              (attributes & ~shown_only) | (node.stored_attributes & kFolder));
    if (node.is_rom() == was_rom) {
        return;
    }
    // What is in ROM takes no space of the store.
    const std::uint32_t size = table.SizeOf(node);
    if (was_rom) {
        AddToUsed(table, node.on_card, size);
    } else {
        GiveSpaceBack(table, node.on_card, size);
    }
}

void Touch(Device& device, const std::wstring& path, std::uint64_t filetime) {
    FileTable& table = FileTable::Of(device);
    const Node node = Existing(table, path);
    table.SetTimes(node, {filetime, filetime, filetime});
    Forget(table, node.number);
}

void Lock(Device& device, const std::wstring& path, const std::string& mode) {
    FileTable& table = FileTable::Of(device);
    if (mode != "none" && mode != "read" && mode != "write") {
        throw FileError(path, ERROR_INVALID_PARAMETER);
    }
    table.SetLock(Existing(table, path).number, mode);
}

void Unlock(Device& device, const std::wstring& path) {
    FileTable& table = FileTable::Of(device);
    table.SetLock(Existing(table, path).number, "");
}

Entry Info(Device& device, const std::wstring& path) {
    FileTable& table = FileTable::Of(device);
    LogStore::View view(table.store());
    return EntryOf(table, Existing(table, path));
}

std::optional<Entry> InfoByOid(Device& device, std::uint32_t oid) {
    FileTable& table = FileTable::Of(device);
    LogStore::View view(table.store());
    const std::optional<Node> node = table.ByToldOid(oid);
    if (!node) {
        return std::nullopt;
    }
    return EntryOf(table, *node);
}

std::vector<Entry> List(Device& device, const std::wstring& path) {
    FileTable& table = FileTable::Of(device);
    LogStore::View view(table.store());
    std::vector<Entry> entries;
    for (const std::uint32_t number : table.Children(Existing(table, path).number)) {
        if (const std::optional<Node> node = table.Get(number)) {
            entries.push_back(EntryOf(table, *node));
        }
    }
    return Sorted(std::move(entries));
}

std::vector<Entry> ListAll(Device& device) {
    FileTable& table = FileTable::Of(device);
    LogStore::View view(table.store());
    std::vector<Entry> entries;
    for (const std::uint32_t number : table.All()) {
        if (const std::optional<Node> node = table.Get(number)) {
            entries.push_back(EntryOf(table, *node));
        }
    }
    return Sorted(std::move(entries));
}

std::wstring HostFile(Device& device, const std::wstring& path) {
    FileTable& table = FileTable::Of(device);
    const Found found = table.Find(path.c_str());
    if (found.error != 0 || found.node.is_folder()) {
        return {};
    }
    return table.ContentFile(found.node.number);
}

bool ApplyFileSetting(Device& device, const std::string& name, const std::string& value) {
    const std::uint64_t number = std::strtoull(value.c_str(), nullptr, 0);
    if (name == "store.free" || name == "card.free") {
        SetFree(device, name == "card.free", number);
    } else if (name == "oid.next") {
        device.SetNextObjectId(static_cast<std::uint32_t>(number));
    } else if (name == "card.unsynced") {
        if (value != "yes" && value != "no" && value != "always") {
            throw std::runtime_error("card.unsynced is yes, no or always");
        }
        device.SetSetting(name, value);
        ForgetAll(FileTable::Of(device));
    } else if (name == "card.ready") {
        CheckCardReady(value);
        device.SetSetting(name, value);
    } else if (name == "card.name") {
        FileTable& table = FileTable::Of(device);
        LogStore::Change change(table.store());
        const std::wstring old = L"\\" + Wide(device.Setting("card.name", "Storage Card"));
        device.SetSetting(name, value);
        if (Exists(device, old)) {
            Rename(device, old, L"\\" + Wide(value));
        }
    } else {
        return false;
    }
    return true;
}

}  // namespace sim::files
