// Bytes of a file, wherever they are: behind a handle, a mapping, a buffer or a host's file.
// Platform-free.
#pragma once

#include <cstdint>

namespace tolvenar {

class ByteReader {
public:
    // Reads up to `bytes` bytes at `offset`; `read` says how many, fewer only where the file ends.
    // False when the reading failed.
    virtual bool ReadAt(std::uint32_t offset, void* buffer, std::uint32_t bytes,
                        std::uint32_t& read) = 0;
    // Bytes of the whole file. False when they cannot be told, or are 4 GB and more: offsets have
    // 32 bits.
    virtual bool Size(std::uint32_t& bytes) = 0;

protected:
    ~ByteReader() = default;
};

class ByteAppender {
public:
    // Writes all bytes at the writing end, which moves behind them. False when fewer were written;
    // the writing end is unknown then until MoveTo.
    virtual bool Append(const void* buffer, std::uint32_t bytes) = 0;
    // Puts the writing end at `offset`.
    virtual bool MoveTo(std::uint32_t offset) = 0;

protected:
    ~ByteAppender() = default;
};

}  // namespace tolvenar
