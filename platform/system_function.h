// Functions that not every system has. They are looked up while the program runs: a program that
// imports one is not started where it is missing.
#pragma once

#include "platform/win32.h"

namespace tolvenar {

// `Function` is the function's type, decltype(::Name). Null where the module lacks it, or is none.
template <typename Function>
Function* FindFunction(HMODULE module, const wchar_t* name) {
    return module == nullptr ? nullptr
                             : reinterpret_cast<Function*>(
                                   reinterpret_cast<void*>(::GetProcAddressW(module, name)));
}

template <typename Function>
Function* FindSystemFunction(const wchar_t* name) {
    return FindFunction<Function>(::GetModuleHandleW(L"coredll.dll"), name);
}

}  // namespace tolvenar
