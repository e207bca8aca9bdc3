// Reads a file by pages and keeps those that were read last: one small block after the other costs
// no read for most of them. Platform-free.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "storage/format/byte_file.h"

namespace tolvenar {

// A jump reads one page. Reads that go on behind the pages that were read last, or before them,
// take twice as many each time, up to 64 pages, which is also the most that is kept; what was read
// first goes first. The file must not change meanwhile.
class PageCache {
public:
    explicit PageCache(ByteReader& file, std::uint32_t page_bytes = kPageBytes)
        : file_(file), page_bytes_(page_bytes) {}
    PageCache(const PageCache&) = delete;
    PageCache& operator=(const PageCache&) = delete;

    // As ByteReader::ReadAt. Where a page cannot be read or kept the bytes alone are read: a bad
    // place of the file costs no neighbour.
    bool ReadAt(std::uint32_t offset, void* buffer, std::uint32_t bytes, std::uint32_t& read);
    // Tells that these bytes are read next: they are read together, as far as they can be kept.
    void Expect(std::uint32_t offset, std::uint32_t bytes);

    static constexpr std::uint32_t kPageBytes = 4096;  // what a device's card reads at once
    static constexpr std::uint32_t kMaxPages = 64;

private:
    // Pages that were read together.
    struct Run {
        std::uint32_t first_page;
        std::uint32_t pages;
        std::uint32_t bytes;  // fewer than the pages have where the file ends
        std::unique_ptr<std::uint8_t[]> data;

        bool Holds(std::uint32_t page) const {
            return page >= first_page && page - first_page < pages;
        }
    };

    const Run* Find(std::uint32_t page);
    Run RunAt(std::uint32_t page);
    const Run* Load(std::uint32_t page);
    void MakeRoomFor(Run& run);

    ByteReader& file_;
    const std::uint32_t page_bytes_;
    std::unique_ptr<Run[]> runs_;  // a ring of kMaxPages: each has one page at least
    std::uint32_t oldest_ = 0;
    std::uint32_t count_ = 0;
    std::uint32_t pages_kept_ = 0;
    std::uint32_t last_found_ = 0;
    std::uint32_t previous_page_ = 0;  // before the run that was read last
    std::uint32_t next_page_ = 0;      // behind it
    int direction_ = 0;                // of that run: 1 forward, -1 back, 0 after a jump
    std::uint32_t pages_ahead_ = 0;
    std::uint32_t expected_begin_ = 0;  // pages
    std::uint32_t expected_end_ = 0;
};

}  // namespace tolvenar
