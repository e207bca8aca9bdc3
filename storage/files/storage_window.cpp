#include "storage/files/storage_window.h"

#include <algorithm>

namespace tolvenar {
namespace {

constexpr std::uint32_t kWindowBytes = 0x40000;

}  // namespace

bool StorageWindow::Holds(std::uint32_t offset, std::uint32_t length) const {
    return view_.bytes != nullptr && offset >= view_offset_ &&
           offset - view_offset_ <= view_.length &&
           length <= view_.length - (offset - view_offset_);
}

WindowBytes StorageWindow::Read(std::uint32_t offset, std::uint32_t length) {
    if (offset > mapping_.size() || length > mapping_.size() - offset) {
        return {nullptr, 0};
    }
    if (!Holds(offset, length)) {
        const std::uint32_t start = offset / kWindowBytes * kWindowBytes;
        const std::uint32_t wanted = std::max(kWindowBytes, offset - start + length);
        view_ = StoredBytes();  // a device has address room for few views
        view_ = MapStoredBytes(mapping_, start, std::min(wanted, mapping_.size() - start));
        view_offset_ = start;
    }
    return Holds(offset, length) ? WindowBytes{view_.bytes + (offset - view_offset_), length}
                                 : WindowBytes{nullptr, 0};
}

WindowBytes StorageWindow::ReadUpTo(std::uint32_t offset, std::uint32_t length) {
    if (offset >= mapping_.size()) {
        return {nullptr, 0};
    }
    return Read(offset, std::min(length, mapping_.size() - offset));
}

}  // namespace tolvenar
