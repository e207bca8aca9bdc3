// Windows CE's view of files, folders and searches. Thin: rules and state are in simulator/files.
#include <windows.h>

#include "simulator/exports/gated.h"
#include "simulator/files/files.h"
#include "simulator/files/open_file.h"
#include "simulator/files/search.h"
#include "simulator/files/space.h"
#include "simulator/files/tree.h"
#include "simulator/system/handles.h"

namespace {

using File = sim::files::OpenFile;
using sim::files::Search;
using sim::handles::Kind;

FILETIME FileTimeOf(std::uint64_t count) {
    return {static_cast<DWORD>(count), static_cast<DWORD>(count >> 32)};
}

std::uint64_t CountOf(const FILETIME* time) {
    if (time == nullptr) {
        return 0;
    }
    return (static_cast<std::uint64_t>(time->dwHighDateTime) << 32) | time->dwLowDateTime;
}

std::shared_ptr<File> FileOf(HANDLE handle) {
    return sim::handles::Lookup<File>(Kind::kFile, handle);
}

// Calls `body` with the open file; the body answers a platform error code.
template <typename Body>
BOOL WithFile(HANDLE handle, Body&& body) {
    LastError last_error;
    const std::shared_ptr<File> file = FileOf(handle);
    return last_error.Answer(file ? body(*file) : ERROR_INVALID_HANDLE);
}

// A call on an open file that answers TRUE or FALSE.
template <typename Body, typename... Arguments>
BOOL OnFile(Call call, HANDLE handle, Body&& body, const Arguments&... arguments) {
    return Gated(
        call, FALSE, [&] { return WithFile(handle, body); }, handle, arguments...);
}

// The same for a call that reads or writes: the body is told how many of the bytes it takes.
template <typename Body>
BOOL OnTransfer(Call call, HANDLE handle, Body&& body, DWORD bytes) {
    return Gated(
        call, FALSE,
        [&] {
            const DWORD part = sim::BytesToTransfer(bytes);
            sim::NoteTransfer(part);
            return WithFile(handle, [&](File& file) { return body(file, part); });
        },
        handle, bytes);
}

HANDLE OpenHandle(const sim::files::OpenRequest& request) {
    LastError last_error;
    std::uint32_t error = 0;
    bool existed = false;
    std::shared_ptr<File> file = File::Open(Device::Current(), request, error, existed);
    if (!last_error.Answer(error)) {
        return INVALID_HANDLE_VALUE;
    }
    if (request.disposition == CREATE_ALWAYS || request.disposition == OPEN_ALWAYS) {
        last_error.Set(existed ? ERROR_ALREADY_EXISTS : NO_ERROR);
    }
    return sim::handles::Register(Kind::kFile, std::move(file));
}

// Later systems take no share mode: who reads shares reading, who writes nothing.
std::uint32_t ShareForMapping(std::uint32_t access, std::uint32_t share) {
    if (Device::Current().Setting("mapping.share", "honoured") == "honoured") {
        return share;
    }
    return (access & GENERIC_READ) != 0 ? FILE_SHARE_READ : 0;
}

// Early systems map files for reading alone.
HANDLE OpenForMapping(sim::files::OpenRequest request) {
    const bool reads_only = Device::Current().Setting("mapping.write", "taken") == "refused";
    if (reads_only && (request.access & GENERIC_WRITE) != 0) {
        sim::SetHostError(ERROR_ACCESS_DENIED);
        return INVALID_HANDLE_VALUE;
    }
    request.share = ShareForMapping(request.access, request.share);
    return OpenHandle(request);
}

HANDLE OpenGated(Call call, const sim::files::OpenRequest& request) {
    return Gated(
        call, INVALID_HANDLE_VALUE,
        [&] { return request.for_mapping ? OpenForMapping(request) : OpenHandle(request); },
        request.path, request.access, request.share, request.disposition, request.attributes);
}

void Fill(WIN32_FIND_DATAW& data, const sim::files::FindEntry& entry) {
    data = {};
    data.dwFileAttributes = entry.info.attributes;
    data.ftCreationTime = FileTimeOf(entry.info.times.created);
    data.ftLastAccessTime = FileTimeOf(entry.info.times.accessed);
    data.ftLastWriteTime = FileTimeOf(entry.info.times.modified);
    data.nFileSizeLow = entry.info.size;
    data.dwOID = entry.info.oid;
    entry.name.copy(data.cFileName, MAX_PATH - 1);
}

void Fill(BY_HANDLE_FILE_INFORMATION& data, const sim::files::FileInfo& info) {
    data = {};
    data.dwFileAttributes = info.attributes;
    data.ftCreationTime = FileTimeOf(info.times.created);
    data.ftLastAccessTime = FileTimeOf(info.times.accessed);
    data.ftLastWriteTime = FileTimeOf(info.times.modified);
    data.dwVolumeSerialNumber = info.on_card ? 1 : 0;
    data.nFileSizeLow = info.size;
    data.nNumberOfLinks = 1;
    data.nFileIndexLow = info.number;
    data.dwOID = info.oid;
}

}  // namespace

HANDLE WINAPI CreateFileW(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES,
                          DWORD disposition, DWORD attributes, HANDLE) {
    return OpenGated(Call::CreateFileW, {path, access, share, disposition, attributes, false});
}

HANDLE WINAPI CreateFileForMappingW(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES,
                                    DWORD disposition, DWORD attributes, HANDLE) {
    return OpenGated(Call::CreateFileForMappingW,
                     {path, access, share, disposition, attributes, true});
}

BOOL WINAPI ReadFile(HANDLE handle, LPVOID buffer, DWORD bytes, LPDWORD got, LPOVERLAPPED) {
    return OnTransfer(
        Call::ReadFile, handle,
        [&](File& file, DWORD part) -> std::uint32_t {
            std::uint32_t count = 0;
            const std::uint32_t error = file.Read(buffer, part, count);
            if (got != nullptr) {
                *got = count;
            }
            return error;
        },
        bytes);
}

BOOL WINAPI WriteFile(HANDLE handle, LPCVOID buffer, DWORD bytes, LPDWORD put, LPOVERLAPPED) {
    return OnTransfer(
        Call::WriteFile, handle,
        [&](File& file, DWORD part) -> std::uint32_t {
            std::uint32_t count = 0;
            if (sim::TakeHalfWrite()) {
                file.Write(buffer, part / 2, count);
                sim::EndThisProcess(sim::kCrashExitCode);
            }
            const std::uint32_t error = file.Write(buffer, part, count);
            if (put != nullptr) {
                *put = count;
            }
            return error;
        },
        bytes);
}

DWORD WINAPI SetFilePointer(HANDLE handle, LONG distance, PLONG distance_high, DWORD method) {
    return Gated(
        Call::SetFilePointer, INVALID_SET_FILE_POINTER,
        [&] {
            std::uint32_t position = INVALID_SET_FILE_POINTER;
            WithFile(handle, [&](File& file) {
                return file.Seek(distance, distance_high, method, position);
            });
            return static_cast<DWORD>(position);
        },
        handle, distance, method);
}

BOOL WINAPI SetEndOfFile(HANDLE handle) {
    return OnFile(Call::SetEndOfFile, handle, [](File& file) { return file.SetEnd(); });
}

BOOL WINAPI FlushFileBuffers(HANDLE handle) {
    return OnFile(Call::FlushFileBuffers, handle, [](File& file) { return file.Flush(); });
}

DWORD WINAPI GetFileSize(HANDLE handle, LPDWORD size_high) {
    return Gated(
        Call::GetFileSize, INVALID_FILE_SIZE,
        [&] {
            std::uint32_t size = INVALID_FILE_SIZE;
            const BOOL known = WithFile(handle, [&](File& file) { return file.Size(size); });
            if (known && size_high != nullptr) {
                *size_high = 0;
            }
            return static_cast<DWORD>(size);
        },
        handle);
}

BOOL WINAPI GetFileTime(HANDLE handle, LPFILETIME created, LPFILETIME accessed,
                        LPFILETIME modified) {
    return OnFile(Call::GetFileTime, handle, [&](File& file) -> std::uint32_t {
        const sim::files::Times times = file.GetTimes();
        if (created != nullptr) {
            *created = FileTimeOf(times.created);
        }
        if (accessed != nullptr) {
            *accessed = FileTimeOf(times.accessed);
        }
        if (modified != nullptr) {
            *modified = FileTimeOf(times.modified);
        }
        return NO_ERROR;
    });
}

BOOL WINAPI SetFileTime(HANDLE handle, const FILETIME* created, const FILETIME* accessed,
                        const FILETIME* modified) {
    return OnFile(Call::SetFileTime, handle, [&](File& file) {
        return file.SetTimes({CountOf(created), CountOf(accessed), CountOf(modified)});
    });
}

BOOL WINAPI GetFileInformationByHandle(HANDLE handle, LPBY_HANDLE_FILE_INFORMATION data) {
    return OnFile(Call::GetFileInformationByHandle, handle, [&](File& file) {
        sim::files::FileInfo info;
        const std::uint32_t error = file.Info(info);
        if (error == 0) {
            Fill(*data, info);
        }
        return error;
    });
}

BOOL WINAPI CloseHandle(HANDLE handle) {
    return Gated(
        Call::CloseHandle, FALSE,
        [&]() -> BOOL { return sim::handles::CloseAnyKind(handle) ? TRUE : FALSE; }, handle);
}

HANDLE WINAPI FindFirstFileW(LPCWSTR pattern, LPWIN32_FIND_DATAW data) {
    return Gated(
        Call::FindFirstFileW, INVALID_HANDLE_VALUE,
        [&]() -> HANDLE {
            LastError last_error;
            std::uint32_t error = 0;
            sim::files::FindEntry entry;
            auto search = Search::Begin(Device::Current(), pattern, entry, error);
            if (!last_error.Answer(error)) {
                return INVALID_HANDLE_VALUE;
            }
            Fill(*data, entry);
            return sim::handles::Register(Kind::kFind, std::move(search));
        },
        pattern);
}

BOOL WINAPI FindNextFileW(HANDLE handle, LPWIN32_FIND_DATAW data) {
    return GatedAnswer(
        Call::FindNextFileW,
        [&]() -> DWORD {
            const auto search = sim::handles::Lookup<Search>(Kind::kFind, handle);
            if (!search) {
                return ERROR_INVALID_HANDLE;
            }
            sim::files::FindEntry entry;
            if (!search->Next(entry)) {
                return ERROR_NO_MORE_FILES;
            }
            Fill(*data, entry);
            return NO_ERROR;
        },
        handle);
}

BOOL WINAPI FindClose(HANDLE handle) {
    return GatedAnswer(
        Call::FindClose,
        [&] {
            const bool closed = sim::handles::Close(Kind::kFind, handle);
            return closed ? NO_ERROR : ERROR_INVALID_HANDLE;
        },
        handle);
}

DWORD WINAPI GetFileAttributesW(LPCWSTR path) {
    return Gated(
        Call::GetFileAttributesW, INVALID_FILE_ATTRIBUTES,
        [&] {
            std::uint32_t attributes = INVALID_FILE_ATTRIBUTES;
            LastError last_error;
            last_error.Answer(sim::files::GetAttributes(Device::Current(), path, attributes));
            return static_cast<DWORD>(attributes);
        },
        path);
}

BOOL WINAPI SetFileAttributesW(LPCWSTR path, DWORD attributes) {
    return GatedAnswer(
        Call::SetFileAttributesW,
        [&] { return sim::files::SetAttributes(Device::Current(), path, attributes); }, path,
        attributes);
}

BOOL WINAPI DeleteFileW(LPCWSTR path) {
    return GatedAnswer(
        Call::DeleteFileW, [&] { return sim::files::DeleteOne(Device::Current(), path); }, path);
}

BOOL WINAPI MoveFileW(LPCWSTR from, LPCWSTR to) {
    return GatedAnswer(
        Call::MoveFileW, [&] { return sim::files::MoveOne(Device::Current(), from, to); }, from,
        to);
}

BOOL WINAPI CopyFileW(LPCWSTR from, LPCWSTR to, BOOL fail_if_exists) {
    return GatedAnswer(
        Call::CopyFileW,
        [&] { return sim::files::CopyOne(Device::Current(), from, to, fail_if_exists != FALSE); },
        from, to, fail_if_exists);
}

BOOL WINAPI CreateDirectoryW(LPCWSTR path, LPSECURITY_ATTRIBUTES) {
    return GatedAnswer(
        Call::CreateDirectoryW, [&] { return sim::files::CreateFolder(Device::Current(), path); },
        path);
}

BOOL WINAPI RemoveDirectoryW(LPCWSTR path) {
    return GatedAnswer(
        Call::RemoveDirectoryW, [&] { return sim::files::RemoveFolder(Device::Current(), path); },
        path);
}

BOOL WINAPI GetDiskFreeSpaceExW(LPCWSTR path, PULARGE_INTEGER free_to_caller, PULARGE_INTEGER total,
                                PULARGE_INTEGER free) {
    return GatedAnswer(
        Call::GetDiskFreeSpaceExW,
        [&] {
            bool card = false;
            const std::uint32_t error = sim::files::VolumeOf(Device::Current(), path, card);
            if (error != 0) {
                return error;
            }
            const sim::files::Space space = sim::files::SpaceOf(Device::Current(), card);
            if (free_to_caller != nullptr) {
                free_to_caller->QuadPart = space.free;
            }
            if (total != nullptr) {
                total->QuadPart = space.size;
            }
            if (free != nullptr) {
                free->QuadPart = space.free;
            }
            return error;
        },
        path);
}

BOOL WINAPI GetStoreInformation(LPSTORE_INFORMATION information) {
    return GatedAnswer(Call::GetStoreInformation, [&]() -> std::uint32_t {
        if (information == nullptr) {
            return ERROR_INVALID_PARAMETER;
        }
        const sim::files::Space space = sim::files::SpaceOf(Device::Current(), false);
        information->dwStoreSize = static_cast<DWORD>(space.size);
        information->dwFreeSize = static_cast<DWORD>(space.free);
        return NO_ERROR;
    });
}
