#include "simulator/files/tree.h"

#include <windows.h>

#include "simulator/files/card_absence.h"
#include "simulator/files/open_file.h"
#include "simulator/files/sharing.h"
#include "simulator/files/space.h"
#include "simulator/files/unsynced.h"

namespace sim::files {
namespace {

bool IsInside(FileTable& table, Node node, std::uint32_t folder) {
    while (node.number != folder && node.number != kRoot) {
        const std::optional<Node> up = table.Get(node.parent);
        if (!up) {
            return false;
        }
        node = *up;
    }
    return node.number == folder;
}

std::uint32_t CheckMove(FileTable& table, const Found& from, const Found& to) {
    if (from.error != 0) {
        return from.error;
    }
    if (to.error == 0 && to.node.number != from.node.number) {
        return ERROR_ALREADY_EXISTS;
    }
    if (to.error != 0 && to.error != ERROR_FILE_NOT_FOUND) {
        return to.error;
    }
    if (table.IsProtected(from.node) || table.IsProtected(to.parent)) {
        return ERROR_WRITE_PROTECT;
    }
    if (from.node.number == kRoot || from.node.is_card || from.node.is_rom()) {
        return ERROR_ACCESS_DENIED;
    }
    if (!from.node.is_folder()) {
        return CheckUnused(table, from.node);
    }
    if (to.parent.on_card != from.node.on_card) {
        return ERROR_NOT_SAME_DEVICE;
    }
    return IsInside(table, to.parent, from.node.number) ? ERROR_SHARING_VIOLATION : 0;
}

std::uint32_t CopyContent(OpenFile& source, OpenFile& target) {
    char buffer[65536];
    for (;;) {
        std::uint32_t got = 0;
        std::uint32_t put = 0;
        if (const std::uint32_t error = source.Read(buffer, sizeof buffer, got)) {
            return error;
        }
        if (got == 0) {
            return 0;
        }
        if (const std::uint32_t error = target.Write(buffer, got, put)) {
            return error;
        }
    }
}

// Calls `change` with the table and the node that `path` leads to; it answers an error code.
template <typename Change>
std::uint32_t ChangeNode(Device& device, const wchar_t* path, Change&& change) {
    FileTable& table = FileTable::Of(device);
    LogStore::Change kept_together(table.store());
    const Found found = FindAsProgram(table, path);
    return found.error != 0 ? found.error : change(table, found.node);
}

std::uint32_t DeleteFileNode(FileTable& table, const Node& node) {
    if (table.IsProtected(node)) {
        return ERROR_WRITE_PROTECT;
    }
    if (node.is_folder() || node.is_rom() || (node.stored_attributes & kReadOnly) != 0) {
        return ERROR_ACCESS_DENIED;
    }
    if (const std::uint32_t error = CheckUnused(table, node)) {
        return error;
    }
    const std::uint32_t size = table.SizeOf(node);
    NoteChange(table, node, {ChangeKind::kGone, 0, {}});
    table.Remove(node);
    GiveSpaceBack(table, node.on_card, size);
    return 0;
}

std::uint32_t RemoveFolderNode(FileTable& table, const Node& node) {
    if (!node.is_folder()) {
        return ERROR_DIRECTORY;
    }
    if (table.IsProtected(node)) {
        return ERROR_WRITE_PROTECT;
    }
    if (node.number == kRoot || node.is_card || node.is_rom() ||
        (node.stored_attributes & kReadOnly) != 0) {
        return ERROR_ACCESS_DENIED;
    }
    if (table.HasChildren(node.number)) {
        return ERROR_DIR_NOT_EMPTY;
    }
    NoteChange(table, node, {ChangeKind::kGone, 0, {}});
    table.Remove(node);
    return 0;
}

}  // namespace

std::uint32_t DeleteOne(Device& device, const wchar_t* path) {
    return ChangeNode(device, path, DeleteFileNode);
}

std::uint32_t MoveOne(Device& device, const wchar_t* from_path, const wchar_t* to_path) {
    FileTable& table = FileTable::Of(device);
    {
        LogStore::Change change(table.store());
        Found from = FindAsProgram(table, from_path);
        const Found to = FindAsProgram(table, to_path);
        if (const std::uint32_t error = CheckMove(table, from, to)) {
            return error;
        }
        if (to.parent.on_card == from.node.on_card) {
            NoteChange(table, from.node,
                       {ChangeKind::kPlace, to.parent.number, NameBytes(to.name)});
            table.Move(from.node, to.parent, to.name);
            return 0;
        }
    }
    if (const std::uint32_t error = CopyOne(device, from_path, to_path, true)) {
        return error;
    }
    return DeleteOne(device, from_path);
}

std::uint32_t CopyOne(Device& device, const wchar_t* from, const wchar_t* to, bool fail_if_exists) {
    std::uint32_t error = 0;
    bool existed = false;
    OpenRequest read{from, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, 0, false};
    const auto source = OpenFile::Open(device, read, error, existed);
    if (source == nullptr) {
        return error;
    }
    FileInfo info;
    error = source->Info(info);
    if (error != 0) {
        return error;
    }
    const DWORD disposition = fail_if_exists ? CREATE_NEW : CREATE_ALWAYS;
    OpenRequest write{to, GENERIC_WRITE, 0, disposition, info.attributes, false};
    auto target = OpenFile::Open(device, write, error, existed);
    if (target == nullptr) {
        return error;
    }
    error = CopyContent(*source, *target);
    if (error == 0) {
        target->SetTimes(info.times);
    }
    target.reset();
    if (error != 0) {
        DeleteOne(device, to);
        return error;
    }
    return SetAttributes(device, to, info.attributes);
}

std::uint32_t CreateFolder(Device& device, const wchar_t* path) {
    FileTable& table = FileTable::Of(device);
    LogStore::Change change(table.store());
    const Found found = FindAsProgram(table, path);
    if (found.error == 0) {
        return ERROR_ALREADY_EXISTS;
    }
    if (found.error != ERROR_FILE_NOT_FOUND) {
        return found.error;
    }
    if (table.IsProtected(found.parent)) {
        return ERROR_WRITE_PROTECT;
    }
    NoteNew(table, table.Add(found.parent, found.name, kFolder));
    return 0;
}

std::uint32_t RemoveFolder(Device& device, const wchar_t* path) {
    return ChangeNode(device, path, RemoveFolderNode);
}

std::uint32_t GetAttributes(Device& device, const wchar_t* path, std::uint32_t& attributes) {
    FileTable& table = FileTable::Of(device);
    const Found found = FindAsProgram(table, path);
    if (found.error == 0) {
        attributes = table.AttributesOf(found.node);
    }
    return found.error;
}

std::uint32_t SetAttributes(Device& device, const wchar_t* path, std::uint32_t attributes) {
    return ChangeNode(device, path, [&](FileTable& table, Node node) -> std::uint32_t {
        if (table.IsProtected(node)) {
            return ERROR_WRITE_PROTECT;
        }
        if (node.number == kRoot || node.is_rom()) {
            return ERROR_ACCESS_DENIED;
        }
        NoteChange(table, node, {ChangeKind::kEntry, 0, {}});
        table.SetStoredAttributes(node,
                                  (node.stored_attributes & ~kSettable) | (attributes & kSettable));
        return 0;
    });
}

std::uint32_t VolumeOf(Device& device, const wchar_t* path, bool& card) {
    if (path == nullptr) {
        card = false;
        return 0;
    }
    const Found found = FindAsProgram(FileTable::Of(device), path);
    if (found.error != 0) {
        return ERROR_PATH_NOT_FOUND;
    }
    if (!found.node.is_folder()) {
        return ERROR_DIRECTORY;
    }
    card = found.node.on_card;
    return 0;
}

}  // namespace sim::files
