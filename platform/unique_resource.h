// One owner for every system handle.
#pragma once

#include "platform/win32.h"

#include <utility>

namespace tolvenar {

// Owns one system handle. NULL and INVALID_HANDLE_VALUE both mean "none": CE calls use either.
template <typename T, auto close>
class UniqueResource {
public:
    UniqueResource() noexcept = default;
    explicit UniqueResource(T handle) noexcept : handle_(handle) {}
    UniqueResource(UniqueResource&& other) noexcept : handle_(other.Release()) {}
    UniqueResource& operator=(UniqueResource&& other) noexcept {
        if (this != &other) {
            Reset(other.Release());
        }
        return *this;
    }
    ~UniqueResource() { Reset(); }

    explicit operator bool() const noexcept { return handle_ && handle_ != Invalid(); }
    T get() const noexcept { return handle_; }
    T Release() noexcept { return std::exchange(handle_, T{}); }
    // Of an open handle, for closings that may fail and where nobody asks for the last error of
    // before: two calls fewer than Reset. The handle is gone in any case.
    auto Close() noexcept { return close(Release()); }
    // For calls that return the handle through a pointer.
    T* Put() noexcept {
        Reset();
        return &handle_;
    }
    void Reset(T handle = T{}) noexcept {
        if (*this) {
            const DWORD error = ::GetLastError();  // closing must not hide the caller's failure
            close(handle_);
            ::SetLastError(error);
        }
        handle_ = handle;
    }

private:
    static T Invalid() noexcept { return reinterpret_cast<T>(INVALID_HANDLE_VALUE); }
    T handle_{};
};

using UniqueHandle =
    UniqueResource<HANDLE, ::CloseHandle>;  // file, mapping, database, thread, mutex
using UniqueFind = UniqueResource<HANDLE, ::FindClose>;
using UniqueHkey = UniqueResource<HKEY, ::RegCloseKey>;
using UniqueModule = UniqueResource<HMODULE, ::FreeLibrary>;
using UniqueView = UniqueResource<void*, ::UnmapViewOfFile>;
using UniqueLocal = UniqueResource<HLOCAL, ::LocalFree>;
using UniqueWindow = UniqueResource<HWND, ::DestroyWindow>;
using UniqueGdiObject = UniqueResource<HGDIOBJ, ::DeleteObject>;
using UniqueDc = UniqueResource<HDC, ::DeleteDC>;  // one that was created

}  // namespace tolvenar
