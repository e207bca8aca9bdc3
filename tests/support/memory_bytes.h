// A file in memory, for tests that need bytes and no device. Platform-free.
#pragma once

#include <algorithm>
#include <cstring>
#include <string>

#include "storage/format/byte_file.h"

namespace tolvenar {

class MemoryBytes final : public ByteReader, public ByteAppender {
public:
    explicit MemoryBytes(std::string content = {}) : content_(std::move(content)) {}

    bool ReadAt(std::uint32_t offset, void* buffer, std::uint32_t bytes,
                std::uint32_t& read) override {
        ++reads;
        read = 0;
        if (offset < bad_end && offset + bytes > bad_begin) {
            return false;
        }
        if (offset < content_.size()) {
            read = std::min(bytes, static_cast<std::uint32_t>(content_.size() - offset));
            std::memcpy(buffer, content_.data() + offset, read);
        }
        bytes_read += read;
        return true;
    }
    bool Size(std::uint32_t& bytes) override {
        bytes = static_cast<std::uint32_t>(content_.size());
        return true;
    }
    bool Append(const void* buffer, std::uint32_t bytes) override {
        ++writes;
        const std::uint32_t taken = std::min(bytes, room);
        room -= taken;
        if (content_.size() < end_ + taken) {
            content_.resize(end_ + taken);
        }
        std::memcpy(content_.data() + end_, buffer, taken);
        end_ += taken;
        return taken == bytes;
    }
    bool MoveTo(std::uint32_t offset) override {
        ++moves;
        end_ = offset;
        return !refuses_moves;
    }
    const std::string& content() const { return content_; }

    int reads = 0;
    std::uint64_t bytes_read = 0;
    int writes = 0;
    int moves = 0;
    bool refuses_moves = false;
    std::uint32_t room = 0xFFFFFFFF;  // bytes that may still be written
    std::uint32_t bad_begin = 0;      // what touches these bytes cannot be read
    std::uint32_t bad_end = 0;

private:
    std::string content_;
    std::uint32_t end_ = 0;
};

}  // namespace tolvenar
