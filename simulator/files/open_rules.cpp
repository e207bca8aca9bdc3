// Opening: which request on which node is allowed, and the order in which a file comes to be.
#include <windows.h>

#include "simulator/files/card_absence.h"
#include "simulator/files/open_file.h"
#include "simulator/files/sharing.h"
#include "simulator/files/space.h"
#include "simulator/files/unsynced.h"
#include "simulator/processes/processes.h"

namespace sim::files {
namespace {

bool Truncates(const OpenRequest& request) {
    return request.disposition == CREATE_ALWAYS || request.disposition == TRUNCATE_EXISTING;
}

bool Creates(const OpenRequest& request) {
    return request.disposition == CREATE_NEW || request.disposition == CREATE_ALWAYS ||
           request.disposition == OPEN_ALWAYS;
}

std::uint32_t HostAccess(std::uint32_t access) {
    if ((access & GENERIC_ALL) != 0) {
        return GENERIC_READ | GENERIC_WRITE;
    }
    return access & (GENERIC_READ | GENERIC_WRITE);
}

bool Writes(const OpenRequest& request) {
    return (HostAccess(request.access) & GENERIC_WRITE) != 0 || Truncates(request);
}

std::uint32_t CheckRequest(const OpenRequest& request) {
    const bool known =
        request.disposition >= CREATE_NEW && request.disposition <= TRUNCATE_EXISTING;
    const bool cuts_unseen = request.disposition == TRUNCATE_EXISTING &&
                             (HostAccess(request.access) & GENERIC_WRITE) == 0;
    return !known || cuts_unseen ? ERROR_INVALID_PARAMETER : 0;
}

// Whether the file `node` may be opened so at all.
std::uint32_t CheckFile(FileTable& table, const Node& node, const OpenRequest& request) {
    if (request.disposition == CREATE_NEW) {
        return ERROR_FILE_EXISTS;
    }
    if ((node.stored_attributes & kRomModule) != 0) {
        return ERROR_ACCESS_DENIED;
    }
    if (Writes(request)) {
        if (table.IsProtected(node)) {
            return ERROR_WRITE_PROTECT;
        }
        if (node.is_rom() || (node.stored_attributes & kReadOnly) != 0) {
            return ERROR_ACCESS_DENIED;
        }
        if (processes::IsRunning(table.device(), table.PathOf(node))) {
            return ERROR_SHARING_VIOLATION;
        }
    }
    return LockAllows(table.LockOf(node.number), HostAccess(request.access), request.share)
               ? 0
               : ERROR_SHARING_VIOLATION;
}

// A folder opens for one purpose: setting its time.
std::shared_ptr<OpenFile> OpenFolder(FileTable& table, const Node& node, const OpenRequest& request,
                                     std::uint32_t& error) {
    const bool allowed = request.disposition == OPEN_EXISTING && Writes(request) &&
                         node.number != kRoot && !table.IsProtected(node) &&
                         table.device().Setting("folder.open", "yes") == "yes";
    error = allowed ? 0 : ERROR_ACCESS_DENIED;
    if (!allowed) {
        return nullptr;
    }
    return std::make_shared<OpenFile>(table, node, nullptr, true, request.for_mapping);
}

std::uint32_t NewAttributes(const OpenRequest& request) {
    return (request.attributes & kSettable) | kArchive;
}

HANDLE OpenHost(FileTable& table, const Node& node, const OpenRequest& request) {
    // The content's host file may not be there yet; an absent one is an empty file.
    const DWORD disposition = Truncates(request) ? CREATE_ALWAYS : OPEN_ALWAYS;
    return ::CreateFileW(table.ContentFile(node.number).c_str(), HostAccess(request.access),
                         request.share & (FILE_SHARE_READ | FILE_SHARE_WRITE), nullptr, disposition,
                         FILE_ATTRIBUTE_NORMAL, nullptr);
}

bool IsInTheWay(HANDLE host) {
    return host == INVALID_HANDLE_VALUE && ::GetLastError() == ERROR_SHARING_VIOLATION;
}

// Two who hold a file on the host hold none on the device. A tool that reads or writes it does so
// within a change of the store, so whoever is in the way within another one is a program. And the
// loader holds a program's file for a moment after its start: the device's does not stand in a
// reader's way, not even in that of one who shares nothing.
HANDLE OpenContent(FileTable& table, const Node& node, const OpenRequest& request) {
    HANDLE host = OpenHost(table, node, request);
    if (!IsInTheWay(host)) {
        return host;
    }
    LogStore::Change without_tools(table.store());
    host = OpenHost(table, node, request);
    if (!IsInTheWay(host) || Writes(request) ||
        !processes::IsRunning(table.device(), table.PathOf(node))) {
        return host;
    }
    OpenRequest beside_loader = request;
    beside_loader.share |= FILE_SHARE_READ;
    return OpenHost(table, node, beside_loader);
}

void AfterTruncation(FileTable& table, Node& node, const OpenRequest& request,
                     std::uint32_t old_size) {
    GiveSpaceBack(table, node.on_card, old_size);
    SizeChange(table, node.number).Set(0);
    NoteChange(table, node, {ChangeKind::kSize, 0, {}});
    table.SetModified(node, table.device().WriteTimeUtc());
    if (request.disposition == CREATE_ALWAYS) {
        table.SetStoredAttributes(node, NewAttributes(request));
    }
}

std::shared_ptr<OpenFile> OpenExisting(FileTable& table, Node node, const OpenRequest& request,
                                       std::uint32_t& error) {
    if (node.is_folder()) {
        return OpenFolder(table, node, request, error);
    }
    error = CheckFile(table, node, request);
    if (error != 0) {
        return nullptr;
    }
    if (Writes(request)) {
        KeepBase(table, node);
    }
    const std::uint32_t old_size = Truncates(request) ? table.SizeOf(node) : 0;
    HANDLE host = OpenContent(table, node, request);
    if (host == INVALID_HANDLE_VALUE) {
        error = ::GetLastError();
        return nullptr;
    }
    if (!table.Get(node.number)) {  // deleted by another process between the look and the opening
        ::CloseHandle(host);
        ::DeleteFileW(table.ContentFile(node.number).c_str());
        error = ERROR_FILE_NOT_FOUND;
        return nullptr;
    }
    const bool writes = (HostAccess(request.access) & GENERIC_WRITE) != 0;
    // Nobody else can be writing now: forget the handles of killed processes.
    if (writes && request.share == 0) {
        ::InterlockedExchange(&table.slot(node.number).writers, 0);
    }
    if (Truncates(request)) {
        AfterTruncation(table, node, request, old_size);
    }
    return std::make_shared<OpenFile>(table, node, host, writes, request.for_mapping);
}

std::shared_ptr<OpenFile> OpenNew(FileTable& table, const Found& found, const OpenRequest& request,
                                  std::uint32_t& error) {
    if (table.IsProtected(found.parent)) {
        error = ERROR_WRITE_PROTECT;
        return nullptr;
    }
    const Node node = table.Add(found.parent, found.name, NewAttributes(request));
    HANDLE host = OpenHost(table, node, request);
    if (host == INVALID_HANDLE_VALUE) {
        error = ::GetLastError();
        table.Remove(node);
        return nullptr;
    }
    NoteNew(table, node);
    const bool writes = (HostAccess(request.access) & GENERIC_WRITE) != 0;
    return std::make_shared<OpenFile>(table, node, host, writes, request.for_mapping);
}

}  // namespace

std::shared_ptr<OpenFile> OpenFile::Open(Device& device, const OpenRequest& request,
                                         std::uint32_t& error, bool& existed) {
    error = CheckRequest(request);
    if (error != 0) {
        return nullptr;
    }
    FileTable& table = FileTable::Of(device);
    const Path path = ParsePath(request.path);
    Found found = FindAsProgram(table, path);
    if (found.error == 0) {
        existed = true;
        return OpenExisting(table, found.node, request, error);
    }
    error = found.error;
    if (error != ERROR_FILE_NOT_FOUND || !Creates(request)) {
        return nullptr;
    }
    if (path.ends_with_separator) {
        error = ERROR_INVALID_NAME;
        return nullptr;
    }
    LogStore::Change change(table.store());
    found = FindAsProgram(table, path);  // once more, now that nobody else can create it
    error = 0;
    existed = found.error == 0;
    return existed ? OpenExisting(table, found.node, request, error)
                   : OpenNew(table, found, request, error);
}

}  // namespace sim::files
