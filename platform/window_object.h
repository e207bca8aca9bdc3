// The object behind a window, kept in a long of the window itself.
#pragma once

#include "platform/win32.h"

namespace tolvenar {

inline void KeepObject(HWND window, int place, void* object) {
    ::SetWindowLongW(window, place, static_cast<LONG>(reinterpret_cast<LONG_PTR>(object)));
}

// Null before one was kept.
template <typename Object>
Object* ObjectOf(HWND window, int place) {
    return reinterpret_cast<Object*>(static_cast<LONG_PTR>(::GetWindowLongW(window, place)));
}

// The procedure of a window class whose windows keep their object at `place`. A window without one
// behaves as the platform has it.
template <int place, typename Object, LRESULT (*on_message)(Object&, HWND, UINT, WPARAM, LPARAM)>
LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    auto* const object = ObjectOf<Object>(window, place);
    return object != nullptr ? on_message(*object, window, message, wparam, lparam)
                             : ::DefWindowProcW(window, message, wparam, lparam);
}

}  // namespace tolvenar
