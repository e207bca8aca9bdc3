// File mappings and their views. A mapping holds the file that it was made of until it is closed
// and its last view is gone; a handle made for mapping is closed with it and by nobody else.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "simulator/files/open_file.h"

namespace sim::files {

class Mapping {
public:
    // Of the open file `file_handle`, or of memory alone when it is INVALID_HANDLE_VALUE. Null with
    // a platform error on failure; a handle made for mapping is then closed too, unless the setting
    // "mapping.failed" is "open". `existed`: a mapping of that name was there.
    static std::shared_ptr<Mapping> Create(Device& device, void* file_handle,
                                           std::uint32_t protection, std::uint32_t bytes,
                                           const wchar_t* name, std::uint32_t& error,
                                           bool& existed);
    Mapping(std::shared_ptr<OpenFile> file, void* file_handle, void* host, bool writable);
    ~Mapping();
    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;

    // A view's address, or null with a platform error. The offset must be a multiple of 64 KB.
    static void* View(const std::shared_ptr<Mapping>& mapping, std::uint32_t access,
                      std::uint32_t offset_high, std::uint32_t offset_low, std::size_t bytes,
                      std::uint32_t& error);
    // Platform error codes.
    static std::uint32_t Unmap(const void* view);
    static std::uint32_t CheckView(const void* address);
    // Unmaps what is left when the process moves to another device.
    static void UnmapAll();
    static int ViewCount();

private:
    std::shared_ptr<OpenFile> file_;  // null: memory alone
    void* file_handle_;               // made for mapping and held by this; null otherwise
    void* host_;
    bool writable_;
};

}  // namespace sim::files
