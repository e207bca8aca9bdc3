// A file of this machine, read as bytes at an offset. It is read, not mapped: a bad sector of a
// card fails one read instead of ending the program.
#pragma once

#include <cstdint>
#include <string>

#include "storage/format/byte_file.h"

namespace tolvenar::pc {

class FileBytes final : public ByteReader {
public:
    // Throws a Failure when the file cannot be opened for reading.
    explicit FileBytes(const std::string& path);
    ~FileBytes();
    FileBytes(const FileBytes&) = delete;
    FileBytes& operator=(const FileBytes&) = delete;

    bool ReadAt(std::uint32_t offset, void* buffer, std::uint32_t bytes,
                std::uint32_t& read) override;
    bool Size(std::uint32_t& bytes) override;

private:
#ifdef _WIN32
    void* file_;
#else
    int file_;
#endif
};

}  // namespace tolvenar::pc
