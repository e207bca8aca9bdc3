#include "simulator/gate/gate_file.h"

#include <cstring>
#include <stdexcept>
#include <windows.h>

namespace sim {
namespace {

constexpr long kLayout = static_cast<long>(sizeof(GateFile) + (kCallCount << 20));

void ClearOtherLayout(GateFile& file) {
    if (::InterlockedCompareExchange(&file.layout, kLayout, 0) == 0 || file.layout == kLayout) {
        return;
    }
    std::memset(static_cast<void*>(&file), 0, sizeof file);
    file.layout = kLayout;
}

}  // namespace

MappedGate::MappedGate(const std::wstring& folder) {
    const HANDLE file = ::CreateFileW((folder + L"\\gate").c_str(), GENERIC_READ | GENERIC_WRITE,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    const HANDLE mapping =
        ::CreateFileMappingW(file, nullptr, PAGE_READWRITE, 0, sizeof(GateFile), nullptr);
    if (mapping != nullptr) {
        file_ = static_cast<GateFile*>(::MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, 0, 0));
        ::CloseHandle(mapping);
    }
    if (file != INVALID_HANDLE_VALUE) {
        ::CloseHandle(file);
    }
    if (file_ == nullptr) {
        throw std::runtime_error("no device in this folder");
    }
    ClearOtherLayout(*file_);
}

MappedGate::~MappedGate() { ::UnmapViewOfFile(file_); }

GateFile& GateOf(Device& device) { return *device.Part<MappedGate>(); }

}  // namespace sim
