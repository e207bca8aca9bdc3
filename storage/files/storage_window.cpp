#include "storage/files/storage_window.h"

#include <algorithm>

#include "platform/keep_awake.h"

namespace tolvenar {

const std::uint8_t* StorageWindow::At(std::uint32_t offset, std::uint32_t length) {
    if (!Holds(offset, length) && !MapAround(offset, length) && !Map(offset, length)) {
        return nullptr;
    }
    return static_cast<const std::uint8_t*>(view_.get()) + (offset - begin_);
}

void StorageWindow::Close() {
    if (view_) {
        view_.Close();
    }
}

bool StorageWindow::Holds(std::uint32_t offset, std::uint32_t length) const {
    return view_ && length != 0 && offset >= begin_ && offset < end_ && length <= end_ - offset;
}

// A list may go through the file either way: behind the bytes, or before them, is what comes next.
bool StorageWindow::MapAround(std::uint32_t offset, std::uint32_t length) {
    const std::uint32_t size = storage_.size();
    if (length == 0 || length >= kWindowBytes || offset >= size || length > size - offset) {
        return false;
    }
    const bool goes_back = offset < begin_;
    const std::uint32_t end = offset + length;
    const std::uint32_t begin = !goes_back ? offset : end > kWindowBytes ? end - kWindowBytes : 0;
    return Map(begin, std::min(kWindowBytes, size - begin));
}

bool StorageWindow::Map(std::uint32_t offset, std::uint32_t length) {
    std::uint32_t adjust = 0;
    StayAwake();
    Close();
    view_ = MapStorageView(storage_, offset, length, adjust);
    if (view_) {
        begin_ = offset - adjust;
        end_ = offset + length;
    }
    return static_cast<bool>(view_);
}

}  // namespace tolvenar
