// What every file of exports opens with: the gate that each function passes, and the last error
// that it leaves.
#pragma once

#include <windows.h>

#include "simulator/gate/gate.h"
#include "simulator/store/device.h"
#include "simulator/system/last_error.h"

using sim::Call;
using sim::Device;
using sim::Gated;
using sim::GatedVoid;
using sim::LastError;

// Gated, for calls that answer TRUE or FALSE: `body` answers the platform error code that FALSE
// leaves as the last error.
template <typename Body, typename... Arguments>
BOOL GatedAnswer(Call call, Body&& body, const Arguments&... arguments) {
    return Gated(
        call, FALSE,
        [&]() -> BOOL {
            LastError last_error;
            return last_error.Answer(body());
        },
        arguments...);
}
