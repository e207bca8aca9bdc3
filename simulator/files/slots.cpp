#include "simulator/files/slots.h"

#include <stdexcept>
#include <windows.h>

namespace sim::files {
namespace {

constexpr std::uint32_t kSlotsInView = 1024;
constexpr DWORD kViewBytes = kSlotsInView * sizeof(Slot);  // 64 KB, the granularity of a view
static_assert(kViewBytes == 65536);

}  // namespace

SlotFile::SlotFile(const std::wstring& folder)
    : file_(::CreateFileW((folder + L"\\state.files").c_str(), GENERIC_READ | GENERIC_WRITE,
                          FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                          OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)) {
    ::CreateDirectoryW((folder + L"\\content").c_str(), nullptr);
    if (file_ == INVALID_HANDLE_VALUE) {
        throw std::runtime_error("no device in this folder");
    }
}

SlotFile::~SlotFile() {
    for (Slot* view : views_) {
        if (view != nullptr) {
            ::UnmapViewOfFile(view);
        }
    }
    ::CloseHandle(file_);
}

Slot& SlotFile::At(std::uint32_t number) {
    const std::uint32_t index = number / kSlotsInView;
    std::lock_guard guard(mutex_);
    if (index >= views_.size()) {
        views_.resize(index + 1);
    }
    if (views_[index] == nullptr) {
        // A mapping that is larger than its file makes the file grow.
        HANDLE mapping = ::CreateFileMappingW(file_, nullptr, PAGE_READWRITE, 0,
                                              (index + 1) * kViewBytes, nullptr);
        if (mapping != nullptr) {
            views_[index] = static_cast<Slot*>(
                ::MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, index * kViewBytes, kViewBytes));
            ::CloseHandle(mapping);
        }
        if (views_[index] == nullptr) {
            throw std::runtime_error("state.files cannot grow");
        }
    }
    return views_[index][number % kSlotsInView];
}

std::uint64_t LoadTime(const volatile long long& place) {
    return static_cast<std::uint64_t>(
        ::InterlockedCompareExchange64(const_cast<volatile long long*>(&place), 0, 0));
}

void StoreTime(volatile long long& place, std::uint64_t time) {
    ::InterlockedExchange64(&place, static_cast<long long>(time));
}

}  // namespace sim::files
