// The step between the user's wish and the operation: "ARE YOU SURE?".
#pragma once

#include "app/operations/application.h"

namespace tolvenar {

// Asks the user, unless that reminder is switched off, and posts the request, or that it was
// refused, to the operation window. `effect` stands below the question. On the main thread.
void ConfirmThenRun(Application& app, const OperationRequest& request, const wchar_t* effect = L"");

// After a restore: asks, in the same way, whether the program is to end, so that the device can be
// booted. On the operation thread.
void ConfirmThenEnd(Application& app);

}  // namespace tolvenar
