#include "platform/file_mapping.h"

namespace tolvenar {
namespace {

constexpr DWORD kUsualGranularity = 0x10000;

DWORD AskGranularity() {
    SYSTEM_INFO info{};
    ::GetSystemInfo(&info);
    return info.dwAllocationGranularity == 0 ? kUsualGranularity : info.dwAllocationGranularity;
}

}  // namespace

DWORD AllocationGranularity() {
    static const DWORD granularity = AskGranularity();
    return granularity;
}

UniqueHandle MapFileForReading(const wchar_t* path, DWORD share, DWORD flags, DWORD* size) {
    UniqueHandle file(
        ::CreateFileForMappingW(path, GENERIC_READ, share, nullptr, OPEN_EXISTING, flags, nullptr));
    if (!file) {
        return {};
    }
    if (size != nullptr) {
        *size = ::GetFileSize(file.get(), nullptr);
        if (*size == INVALID_FILE_SIZE) {
            return {};
        }
    }
    UniqueHandle mapping(::CreateFileMappingW(file.get(), nullptr, PAGE_READONLY, 0, 0, nullptr));
    if (mapping) {
        file.Release();  // the mapping owns it from here on
    }
    return mapping;
}

}  // namespace tolvenar
