#include "simulator/host/host_files.h"

#include <windows.h>

namespace sim::host {

std::optional<std::string> ReadWhole(const std::wstring& file) {
    HANDLE handle = ::CreateFileW(file.c_str(), GENERIC_READ,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        return std::nullopt;
    }
    std::string bytes(::GetFileSize(handle, nullptr), '\0');
    DWORD count = 0;
    const bool read =
        ::ReadFile(handle, &bytes[0], static_cast<DWORD>(bytes.size()), &count, nullptr) != FALSE;
    const DWORD error = ::GetLastError();
    ::CloseHandle(handle);
    if (!read) {
        ::SetLastError(error);
        return std::nullopt;
    }
    bytes.resize(count);
    return bytes;
}

bool WriteWhole(const std::wstring& file, const std::string& bytes) {
    HANDLE handle = ::CreateFileW(file.c_str(), GENERIC_WRITE,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        return false;
    }
    DWORD count = 0;
    const bool written = ::WriteFile(handle, bytes.data(), static_cast<DWORD>(bytes.size()), &count,
                                     nullptr) != FALSE;
    ::CloseHandle(handle);
    return written && count == bytes.size();
}

bool IsFolder(const std::wstring& path) {
    const DWORD attributes = ::GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

void MakeFolder(const std::wstring& path) {
    if (IsFolder(path)) {
        return;
    }
    const std::size_t cut = path.find_last_of(L"\\/");
    if (cut != std::wstring::npos && cut > 2) {
        MakeFolder(path.substr(0, cut));
    }
    ::CreateDirectoryW(path.c_str(), nullptr);
}

Listing List(const std::wstring& folder) {
    Listing listing;
    WIN32_FIND_DATAW data;
    HANDLE find = ::FindFirstFileW((folder + L"\\*").c_str(), &data);
    if (find == INVALID_HANDLE_VALUE) {
        return listing;
    }
    do {
        const std::wstring name = data.cFileName;
        if (name == L"." || name == L"..") {
            continue;
        }
        const bool is_folder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        (is_folder ? listing.folders : listing.files).push_back(name);
    } while (::FindNextFileW(find, &data));
    ::FindClose(find);
    return listing;
}

void RemoveTree(const std::wstring& folder) {
    const Listing listing = List(folder);
    for (const std::wstring& name : listing.files) {
        ::DeleteFileW((folder + L"\\" + name).c_str());
    }
    for (const std::wstring& name : listing.folders) {
        RemoveTree(folder + L"\\" + name);
    }
    ::RemoveDirectoryW(folder.c_str());
}

std::wstring FolderFromEnvironmentOrTemp(const wchar_t* name) {
    wchar_t folder[MAX_PATH] = L"";
    DWORD length = ::GetEnvironmentVariableW(name, folder, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) {
        length = ::GetTempPathW(MAX_PATH, folder);
    }
    std::wstring path(folder, length);
    while (!path.empty() && path.back() == L'\\') {
        path.pop_back();
    }
    return path;
}

}  // namespace sim::host
