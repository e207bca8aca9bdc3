// A platform function that the host's own does, behind the gate. Compiled against the desktop's
// headers; cmake/ce_dlls.cmake makes one Forward for each row of a forwards file.
#pragma once

#include <type_traits>
#include <windows.h>

#include "simulator/gate/gate.h"

namespace sim {

// Many buffers that a call fills are `wchar_t*`; what stands in them before says nothing.
template <typename T>
std::string DescribeForwarded(const T& value) {
    if constexpr (std::is_same_v<T, const wchar_t*>) {
        return Describe(value);
    } else if constexpr (std::is_pointer_v<T>) {
        return Describe(reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(value)));
    } else if constexpr (std::is_class_v<T>) {
        return "{}";
    } else {
        return DescribeNumber(static_cast<long long>(value));
    }
}

template <typename Result>
Result AsResult(long value) {
    if constexpr (std::is_pointer_v<Result>) {
        return reinterpret_cast<Result>(static_cast<std::intptr_t>(value));
    } else {
        return static_cast<Result>(value);
    }
}

template <auto kReal>
struct Forward;

template <typename Result, typename... Arguments, Result(WINAPI* kReal)(Arguments...)>
struct Forward<kReal> {
    // `kFailure` is what a failing rule answers; a call that cannot fail never meets one.
    template <Call kCall, long kFailure, bool kCanFail>
    static Result WINAPI Run(Arguments... arguments) {
        GateEntry entry(kCall, kCanFail);
        if (entry.wants_arguments()) {
            (entry.AddArgument(DescribeForwarded(arguments)), ...);
        }
        const std::uint32_t error = entry.Decide();
        if (error != 0) {
            SetHostError(error);
        }
        if constexpr (std::is_void_v<Result>) {
            if (error != 0) {
                return;
            }
            kReal(arguments...);
            entry.Note(true);
            if (entry.traces()) {
                entry.Finish({});
            }
        } else {
            const auto failure = AsResult<Result>(kFailure);
            if (error != 0) {
                return failure;
            }
            Result result = kReal(arguments...);
            entry.Note(result != failure);
            if (entry.traces()) {
                entry.Finish(DescribeForwarded(result));
            }
            return result;
        }
    }
};

}  // namespace sim

// The one word of a forwarded call's export: made from a list, see ce_simulator_exports.
#define CE_FORWARD_TO(real, name, failure, can_fail)                                   \
    extern "C" decltype(&sim::Forward<&real>::Run<sim::Call::name, failure, can_fail>) \
        ce_forward_##name;                                                             \
    decltype(ce_forward_##name) ce_forward_##name =                                    \
        &sim::Forward<&real>::Run<sim::Call::name, failure, can_fail>;
#define CE_FORWARD(name, failure, can_fail) CE_FORWARD_TO(::name, name, failure, can_fail)
#define CE_FORWARD_TRANSLATED(name, failure, can_fail) \
    CE_FORWARD_TO(sim::translated::name, name, failure, can_fail)
