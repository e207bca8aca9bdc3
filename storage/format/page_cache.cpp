#include "storage/format/page_cache.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace tolvenar {

const PageCache::Run* PageCache::Find(std::uint32_t page) {
    if (count_ == 0) {
        return nullptr;
    }
    if (runs_[last_found_].Holds(page)) {
        return &runs_[last_found_];
    }
    for (std::uint32_t i = 0; i < count_; ++i) {
        const std::uint32_t place = (oldest_ + i) % kMaxPages;
        if (runs_[place].Holds(page)) {
            last_found_ = place;
            return &runs_[place];
        }
    }
    return nullptr;
}

void PageCache::Expect(std::uint32_t offset, std::uint32_t bytes) {
    expected_begin_ = offset / page_bytes_;
    expected_end_ =
        static_cast<std::uint32_t>((std::uint64_t{offset} + bytes + page_bytes_ - 1) / page_bytes_);
}

// Drops the oldest. The memory of one that was as large is used again.
void PageCache::MakeRoomFor(Run& run) {
    while (pages_kept_ + run.pages > kMaxPages) {
        Run& oldest = runs_[oldest_];
        if (oldest.pages == run.pages) {
            run.data = std::move(oldest.data);
        }
        pages_kept_ -= oldest.pages;
        oldest = Run{};
        oldest_ = (oldest_ + 1) % kMaxPages;
        --count_;
    }
}

// The pages that are read when this one is wanted: more of them while reads go on one way.
PageCache::Run PageCache::RunAt(std::uint32_t page) {
    int direction = 0;
    if (page == next_page_ || page == previous_page_) {
        direction = page == next_page_ ? 1 : -1;
    }
    const bool goes_on = pages_ahead_ != 0 && direction != 0 && direction != -direction_;
    pages_ahead_ = goes_on ? std::min(2 * pages_ahead_, kMaxPages) : 1;
    direction_ = direction;
    if (direction >= 0) {
        if (page >= expected_begin_ && page < expected_end_) {
            pages_ahead_ = std::clamp(expected_end_ - page, pages_ahead_, kMaxPages);
        }
        return {page, pages_ahead_, 0, nullptr};
    }
    const std::uint32_t pages = std::min(pages_ahead_, page + 1);
    return {page + 1 - pages, pages, 0, nullptr};
}

// Reads the page and its run. Null when it cannot be read or kept.
const PageCache::Run* PageCache::Load(std::uint32_t page) {
    if (runs_ == nullptr) {
        runs_.reset(new (std::nothrow) Run[kMaxPages]{});
    }
    Run run = RunAt(page);
    MakeRoomFor(run);
    if (run.data == nullptr) {
        run.data.reset(new (std::nothrow) std::uint8_t[run.pages * page_bytes_]);
    }
    if (runs_ == nullptr || run.data == nullptr ||
        !file_.ReadAt(run.first_page * page_bytes_, run.data.get(), run.pages * page_bytes_,
                      run.bytes)) {
        pages_ahead_ = 0;
        return nullptr;
    }
    last_found_ = (oldest_ + count_) % kMaxPages;
    previous_page_ = run.first_page - 1;
    next_page_ = run.first_page + run.pages;
    pages_kept_ += run.pages;
    ++count_;
    runs_[last_found_] = std::move(run);
    return &runs_[last_found_];
}

bool PageCache::ReadAt(std::uint32_t offset, void* buffer, std::uint32_t bytes,
                       std::uint32_t& read) {
    read = 0;
    const std::uint32_t wanted = std::min(bytes, 0xFFFFFFFFu - offset);
    while (read < wanted) {
        const std::uint32_t place = offset + read;
        const std::uint32_t page = place / page_bytes_;
        const Run* run = Find(page);
        if (run == nullptr) {
            run = Load(page);
        }
        if (run == nullptr) {
            return file_.ReadAt(offset, buffer, bytes, read);
        }
        const std::uint32_t within = place - run->first_page * page_bytes_;
        if (within >= run->bytes) {
            return true;  // the file ends here
        }
        const std::uint32_t part = std::min(wanted - read, run->bytes - within);
        std::memcpy(static_cast<std::uint8_t*>(buffer) + read, run->data.get() + within, part);
        read += part;
    }
    return true;
}

}  // namespace tolvenar
