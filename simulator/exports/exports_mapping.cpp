// Windows CE's view of file mappings.
#include <windows.h>

#include "simulator/exports/gated.h"
#include "simulator/files/mapping.h"
#include "simulator/system/handles.h"

namespace {

using sim::files::Mapping;
using sim::handles::Kind;

HANDLE CreateMapping(HANDLE file, DWORD protection, DWORD bytes, LPCWSTR name) {
    LastError last_error;
    std::uint32_t error = 0;
    bool existed = false;
    auto mapping =
        Mapping::Create(Device::Current(), file, protection, bytes, name, error, existed);
    if (!last_error.Answer(error)) {
        return nullptr;
    }
    last_error.Set(existed ? ERROR_ALREADY_EXISTS : NO_ERROR);
    return sim::handles::Register(Kind::kMapping, std::move(mapping));
}

}  // namespace

HANDLE WINAPI CreateFileMappingW(HANDLE file, LPSECURITY_ATTRIBUTES security, DWORD protection,
                                 DWORD size_high, DWORD size_low, LPCWSTR name) {
    return Gated(
        Call::CreateFileMappingW, static_cast<HANDLE>(nullptr),
        [&]() -> HANDLE {
            if (security != nullptr || size_high != 0) {
                sim::SetHostError(ERROR_INVALID_PARAMETER);
                return nullptr;
            }
            return CreateMapping(file, protection, size_low, name);
        },
        file, protection, size_low, name);
}

LPVOID WINAPI MapViewOfFile(HANDLE handle, DWORD access, DWORD offset_high, DWORD offset_low,
                            SIZE_T bytes) {
    return Gated(
        Call::MapViewOfFile, static_cast<LPVOID>(nullptr),
        [&]() -> LPVOID {
            LastError last_error;
            const auto mapping = sim::handles::Lookup<Mapping>(Kind::kMapping, handle);
            std::uint32_t error = ERROR_INVALID_HANDLE;
            LPVOID view = nullptr;
            if (mapping) {
                view = Mapping::View(mapping, access, offset_high, offset_low, bytes, error);
            }
            last_error.Answer(error);
            return view;
        },
        handle, access, offset_low, bytes);
}

BOOL WINAPI UnmapViewOfFile(LPCVOID view) {
    return GatedAnswer(
        Call::UnmapViewOfFile, [&] { return Mapping::Unmap(view); }, view);
}

// Views and files share their memory; there is nothing left to flush.
BOOL WINAPI FlushViewOfFile(LPCVOID address, SIZE_T bytes) {
    return GatedAnswer(
        Call::FlushViewOfFile, [&] { return Mapping::CheckView(address); }, address, bytes);
}
