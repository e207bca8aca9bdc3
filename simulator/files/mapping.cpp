#include "simulator/files/mapping.h"

#include <map>
#include <mutex>
#include <string>
#include <windows.h>

#include "simulator/store/device_name.h"
#include "simulator/system/handles.h"

namespace sim::files {
namespace {

constexpr std::uint32_t kGranularity = 65536;

struct ViewEntry {
    std::shared_ptr<Mapping> mapping;
    bool writable = false;
};

std::mutex views_mutex;
std::map<const void*, ViewEntry> views;

bool IsWritable(std::uint32_t protection) { return (protection & 0xFF) == PAGE_READWRITE; }

std::uint32_t CheckFile(OpenFile& file, std::uint32_t protection, std::uint32_t bytes) {
    if (file.is_folder()) {
        return ERROR_ACCESS_DENIED;
    }
    if (IsWritable(protection) && !file.writes()) {
        return ERROR_ACCESS_DENIED;
    }
    // What is written through a view could not be noted.
    if (IsWritable(protection) && file.is_unsynced()) {
        return ERROR_NOT_SUPPORTED;
    }
    std::uint32_t size = 0;
    if (const std::uint32_t error = file.Size(size)) {
        return error;
    }
    if (bytes > size) {
        return IsWritable(protection) ? file.GrowTo(bytes) : ERROR_NOT_ENOUGH_MEMORY;
    }
    return size == 0 ? ERROR_FILE_INVALID : 0;
}

std::uint32_t HostMapping(Device& device, OpenFile* file, std::uint32_t protection,
                          std::uint32_t bytes, const wchar_t* name, HANDLE& host) {
    if (file != nullptr) {
        if (const std::uint32_t error = CheckFile(*file, protection, bytes)) {
            return error;
        }
    }
    const std::wstring host_name =
        name != nullptr ? ObjectName(device, (std::wstring(L"mapping-") + name).c_str())
                        : std::wstring();
    host =
        ::CreateFileMappingW(file != nullptr ? file->host() : INVALID_HANDLE_VALUE, nullptr,
                             protection, 0, bytes, name != nullptr ? host_name.c_str() : nullptr);
    return host == nullptr ? ::GetLastError() : 0;
}

}  // namespace

Mapping::Mapping(std::shared_ptr<OpenFile> file, void* file_handle, void* host, bool writable)
    : file_(std::move(file)), file_handle_(file_handle), host_(host), writable_(writable) {
    if (file_handle_ != nullptr) {
        handles::SetHeld(file_handle_, true);
    }
}

Mapping::~Mapping() {
    ::CloseHandle(host_);
    if (file_handle_ != nullptr) {
        handles::Close(handles::Kind::kFile, file_handle_);
    }
}

std::shared_ptr<Mapping> Mapping::Create(Device& device, void* file_handle,
                                         std::uint32_t protection, std::uint32_t bytes,
                                         const wchar_t* name, std::uint32_t& error, bool& existed) {
    std::shared_ptr<OpenFile> file;
    if (file_handle != INVALID_HANDLE_VALUE) {
        file = handles::Lookup<OpenFile>(handles::Kind::kFile, file_handle);
        error = file ? 0 : ERROR_INVALID_HANDLE;
        if (!file) {
            return nullptr;
        }
    }
    void* const own_handle = file && file->for_mapping() ? file_handle : nullptr;
    HANDLE host = nullptr;
    ::SetLastError(NO_ERROR);
    error = HostMapping(device, file.get(), protection, bytes, name, host);
    existed = error == 0 && ::GetLastError() == ERROR_ALREADY_EXISTS;
    if (error == 0) {
        return std::make_shared<Mapping>(file, own_handle, host, IsWritable(protection));
    }
    if (own_handle != nullptr && device.Setting("mapping.failed", "closed") != "open") {
        handles::Close(handles::Kind::kFile, own_handle);
    }
    return nullptr;
}

void* Mapping::View(const std::shared_ptr<Mapping>& mapping, std::uint32_t access,
                    std::uint32_t offset_high, std::uint32_t offset_low, std::size_t bytes,
                    std::uint32_t& error) {
    error = ERROR_INVALID_PARAMETER;
    if (offset_low % kGranularity != 0) {
        return nullptr;
    }
    const bool writable = (access & FILE_MAP_WRITE) != 0;
    if (writable && !mapping->writable_) {
        error = ERROR_ACCESS_DENIED;
        return nullptr;
    }
    void* const address = ::MapViewOfFile(mapping->host_, access, offset_high, offset_low, bytes);
    error = address != nullptr ? 0 : ::GetLastError();
    if (address == nullptr) {
        return nullptr;
    }
    std::lock_guard guard(views_mutex);
    views[address] = {mapping, writable};
    return address;
}

std::uint32_t Mapping::Unmap(const void* view) {
    ViewEntry entry;
    {
        std::lock_guard guard(views_mutex);
        const auto found = views.find(view);
        if (found == views.end()) {
            return ERROR_INVALID_PARAMETER;
        }
        entry = found->second;
        views.erase(found);
    }
    ::UnmapViewOfFile(view);
    if (entry.writable && entry.mapping->file_) {
        entry.mapping->file_->Touch();
    }
    return 0;
}

std::uint32_t Mapping::CheckView(const void* address) {
    std::lock_guard guard(views_mutex);
    auto found = views.upper_bound(address);
    if (found == views.begin()) {
        return ERROR_INVALID_PARAMETER;
    }
    --found;
    MEMORY_BASIC_INFORMATION memory;
    ::VirtualQuery(address, &memory, sizeof memory);
    return memory.AllocationBase == found->first ? 0 : ERROR_INVALID_PARAMETER;
}

void Mapping::UnmapAll() {
    std::map<const void*, ViewEntry> rest;
    {
        std::lock_guard guard(views_mutex);
        rest.swap(views);
    }
    for (const auto& view : rest) {
        ::UnmapViewOfFile(view.first);
    }
}

int Mapping::ViewCount() {
    std::lock_guard guard(views_mutex);
    return static_cast<int>(views.size());
}

}  // namespace sim::files
