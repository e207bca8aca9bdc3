// Files and folders of the host, for tools and tests: host paths, not the device's.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sim::host {

// On failure the host's last error says why.
std::optional<std::string> ReadWhole(const std::wstring& file);
bool WriteWhole(const std::wstring& file, const std::string& bytes);
bool IsFolder(const std::wstring& path);
void MakeFolder(const std::wstring& path);
// A folder with all that is in it.
void RemoveTree(const std::wstring& folder);
// Names in a folder, folders apart from files.
struct Listing {
    std::vector<std::wstring> folders;
    std::vector<std::wstring> files;
};
Listing List(const std::wstring& folder);
// The folder for temporary files, or the one in the environment variable `name` when it is set.
std::wstring FolderFromEnvironmentOrTemp(const wchar_t* name);

}  // namespace sim::host
