// The step between the user's wish and the operation: "ARE YOU SURE?".
#pragma once

#include "app/operations/application.h"

namespace tolvenar {

// Asks the user, unless that reminder is switched off, and posts the request, or that it was
// refused, to the operation window. On the main thread.
void ConfirmThenRun(Application& app, const OperationRequest& request);

// After a restore: asks, in the same way, whether the program is to end, so that the device can be
// booted. On the operation thread.
void ConfirmThenEnd(Application& app);

}  // namespace tolvenar
