// A file of the host, read as bytes at an offset.
#pragma once

#include <cstdio>

#include "storage/format/byte_file.h"

namespace tolvenar {

class HostFile final : public ByteReader {
public:
    explicit HostFile(const char* path) : file_(std::fopen(path, "rb")) {}
    ~HostFile() {
        if (file_ != nullptr) {
            std::fclose(file_);
        }
    }
    HostFile(const HostFile&) = delete;
    HostFile& operator=(const HostFile&) = delete;

    explicit operator bool() const { return file_ != nullptr; }
    bool ReadAt(std::uint32_t offset, void* buffer, std::uint32_t bytes,
                std::uint32_t& read) override {
        read = 0;
        if (std::fseek(file_, static_cast<long>(offset), SEEK_SET) != 0) {
            return false;
        }
        read = static_cast<std::uint32_t>(std::fread(buffer, 1, bytes, file_));
        return std::ferror(file_) == 0;
    }
    bool Size(std::uint32_t& bytes) override {
        if (std::fseek(file_, 0, SEEK_END) != 0) {
            return false;
        }
        const long size = std::ftell(file_);
        bytes = static_cast<std::uint32_t>(size);
        return size >= 0 && static_cast<unsigned long>(size) <= 0xFFFFFFFFul;
    }

private:
    std::FILE* file_;
};

}  // namespace tolvenar
