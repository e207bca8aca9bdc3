#include "storage/format/storage_appender.h"

#include <cstddef>
#include <cstring>
#include <new>

#include "storage/format/info_block.h"

namespace tolvenar {
namespace {

constexpr std::uint32_t kBufferBytes = 4096;

}  // namespace

StorageAppender::StorageAppender(ByteAppender& file, std::uint32_t end)
    : file_(file), file_end_(end), buffer_(new (std::nothrow) std::uint8_t[kBufferBytes]) {}

bool StorageAppender::WriteBlock(const void* buffer, std::uint32_t length,
                                 std::uint32_t& offset_out, bool with_name) {
    offset_out = position();
    std::uint32_t bytes = length;
    if (with_name) {
        std::uint16_t name_bytes = 0;
        std::memcpy(&name_bytes,
                    static_cast<const std::uint8_t*>(buffer) + offsetof(InfoBlockHead, name_bytes),
                    sizeof name_bytes);
        bytes += name_bytes;
    }
    return Write(buffer, bytes);
}

bool StorageAppender::Write(const void* bytes, std::uint32_t length) {
    if (length > 0xFFFFFFFFu - position()) {
        return false;  // offsets have 32 bits
    }
    if (buffer_ == nullptr || length > kBufferBytes) {
        return Flush() && HandOn(bytes, length);
    }
    if (held_ + length > kBufferBytes && !Flush()) {
        return false;
    }
    std::memcpy(buffer_.get() + held_, bytes, length);
    held_ += length;
    return true;
}

bool StorageAppender::Flush() {
    if (held_ == 0) {
        return true;
    }
    const std::uint32_t length = held_;
    held_ = 0;
    return HandOn(buffer_.get(), length);
}

bool StorageAppender::HandOn(const void* bytes, std::uint32_t length) {
    if (!is_at_end_ && !file_.MoveTo(file_end_)) {
        return false;
    }
    is_at_end_ = file_.Append(bytes, length);
    if (is_at_end_) {
        file_end_ += length;
    }
    return is_at_end_;
}

void StorageAppender::TakeBack(std::uint32_t position) {
    if (position >= file_end_) {
        held_ = position - file_end_;
        return;
    }
    held_ = 0;
    file_end_ = position;
    is_at_end_ = false;
}

}  // namespace tolvenar
