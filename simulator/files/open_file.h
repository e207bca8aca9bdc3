// One open file or folder of the device: what a file handle stands for. The content's host file is
// held with the same access and sharing, so the host's own rules hold between all processes and end
// with them. Every function answers a platform error code, 0 for success.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "simulator/files/file_table.h"

namespace sim::files {

struct OpenRequest {
    const wchar_t* path = nullptr;
    std::uint32_t access = 0;  // GENERIC_READ, GENERIC_WRITE
    std::uint32_t share = 0;
    std::uint32_t disposition = 0;
    std::uint32_t attributes = 0;  // of a new file; flags are ignored
    bool for_mapping = false;
};

struct FileInfo {
    Times times;
    std::uint32_t attributes = 0;
    std::uint32_t size = 0;
    std::uint32_t oid = 0;
    std::uint32_t number = 0;
    bool on_card = false;
};

class OpenFile {
public:
    // Null when it fails. `existed` tells whether the file was there before; not set on failure.
    static std::shared_ptr<OpenFile> Open(Device& device, const OpenRequest& request,
                                          std::uint32_t& error, bool& existed);
    OpenFile(FileTable& table, const Node& node, void* host, bool writes, bool for_mapping);
    ~OpenFile();
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    std::uint32_t Read(void* buffer, std::uint32_t bytes, std::uint32_t& got);
    // All or nothing: what does not fit into the free space is not written at all.
    std::uint32_t Write(const void* buffer, std::uint32_t bytes, std::uint32_t& put);
    std::uint32_t Seek(long distance, long* distance_high, std::uint32_t method,
                       std::uint32_t& position);
    std::uint32_t SetEnd();
    std::uint32_t Flush();
    // Makes the file at least so large, as a mapping does that is larger than its file.
    std::uint32_t GrowTo(std::uint32_t bytes);
    std::uint32_t Size(std::uint32_t& size);
    std::uint32_t SetTimes(const Times& times);
    Times GetTimes();
    std::uint32_t Info(FileInfo& info);
    // The change that a writable view may have made.
    void Touch();

    bool writes() const { return writes_; }
    bool for_mapping() const { return for_mapping_; }
    bool is_unsynced() const;
    bool is_folder() const { return node_.is_folder(); }
    void* host() const { return host_; }

private:
    std::uint32_t SetSize(std::uint32_t bytes);

    FileTable& table_;
    Node node_;
    void* host_;  // null for a folder
    bool writes_;
    bool for_mapping_;
    std::optional<SizeChange> size_;  // of a file that is open for writing
};

}  // namespace sim::files
