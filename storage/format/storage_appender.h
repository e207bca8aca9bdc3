// The writing end of a storage file. Platform-free; docs/formats/storage-file.md.
#pragma once

#include <cstdint>
#include <memory>

#include "storage/format/byte_file.h"

namespace tolvenar {

// Knows its position. What is small waits in a buffer until Flush, so that head, name and data of
// an object go out in one write.
class StorageAppender {
public:
    // `file` is borrowed; `end` is behind everything that it holds.
    StorageAppender(ByteAppender& file, std::uint32_t end);
    StorageAppender(const StorageAppender&) = delete;
    StorageAppender& operator=(const StorageAppender&) = delete;

    // Where the next byte goes.
    std::uint32_t position() const { return file_end_ + held_; }
    // Puts the position into `offset_out`, then appends `length` bytes of `buffer`, and as many
    // more as the name length at its bytes 22 and 23 says when `with_name` is set. This and the
    // following are false when the file refused; what was appended must be taken back then.
    bool WriteBlock(const void* buffer, std::uint32_t length, std::uint32_t& offset_out,
                    bool with_name);
    bool Write(const void* bytes, std::uint32_t length);
    // Writes what waits.
    bool Flush();
    // Goes back to a position of before: what was appended since is overwritten by what follows.
    void TakeBack(std::uint32_t position);

private:
    bool HandOn(const void* bytes, std::uint32_t length);

    ByteAppender& file_;
    std::uint32_t file_end_;
    bool is_at_end_ = false;                  // the file's writing end is at file_end_
    std::unique_ptr<std::uint8_t[]> buffer_;  // null without memory: nothing waits then
    std::uint32_t held_ = 0;
};

}  // namespace tolvenar
