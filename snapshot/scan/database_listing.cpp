#include "snapshot/scan/database_listing.h"

#include <algorithm>
#include <new>

#include "platform/unique_resource.h"

namespace tolvenar {
namespace {

constexpr DWORD kAllTypes = 0;
constexpr int kRestarts = 3;
constexpr std::size_t kFirstCapacity = 64;

}  // namespace

DatabaseListing::End DatabaseListing::Read(DatabaseLayer& layer) {
    DWORD error = ERROR_KEY_DELETED;
    for (int restart = 0; error == ERROR_KEY_DELETED && restart <= kRestarts; ++restart) {
        error = ReadOnce(layer);
    }
    if (lacks_memory_) {
        return End::kNoMemory;
    }
    return error == ERROR_NO_MORE_ITEMS ? End::kWhole : End::kCut;
}

// The error that ended the enumeration.
DWORD DatabaseListing::ReadOnce(DatabaseLayer& layer) {
    count_ = 0;
    const UniqueHandle find(layer.FindFirstDatabase(kAllTypes));
    if (!find) {
        return ::GetLastError();
    }
    while (const CEOID oid = layer.FindNextDatabase(find.get())) {
        if (!Add(oid)) {
            lacks_memory_ = true;
            return ERROR_NOT_ENOUGH_MEMORY;
        }
    }
    return ::GetLastError();
}

bool DatabaseListing::Add(CEOID oid) {
    if (count_ == capacity_) {
        const std::size_t capacity = std::max(kFirstCapacity, 2 * capacity_);
        std::unique_ptr<CEOID[]> larger(new (std::nothrow) CEOID[capacity]);
        if (larger == nullptr) {
            return false;
        }
        std::copy_n(oids_.get(), count_, larger.get());
        oids_ = std::move(larger);
        capacity_ = capacity;
    }
    oids_[count_++] = oid;
    return true;
}

}  // namespace tolvenar
