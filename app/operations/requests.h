// Requests for operations: from the main thread to the operation thread, one at a time.
#pragma once

#include "app/operations/application.h"
#include "app/rules/start_rules.h"

namespace tolvenar {

// A storage is open and its journal loaded. For the main thread while the lists are free, and for
// the operation thread.
bool HasStorage(const Application& app);
// What stands against the user's wish. On the main thread.
Refusal WhyRefused(const Application& app, Wish wish);

// Hands a request that the user confirmed to the operation thread. False when there is no such
// thread or the message cannot be posted: nothing is asked for then.
bool PostRequest(Application& app, const OperationRequest& request);
// Tells the operation window that the user refused.
void PostRefusal(const Application& app, const OperationRequest& request);
// Posts the answer to the reminder after a restore. False as above.
bool PostRestoredAnswer(const Application& app, bool go_on);

// On the operation thread, for a message that asks for the kind of operation, and the button, in
// `request`: makes the rest of it what the page put in or, when another program posted the message,
// what the pages show now. A preview of a restore is given up. False, and the message dropped,
// while an operation runs already: a box that it shows lets messages through.
bool TakeRequest(Application& app, OperationRequest& request);

}  // namespace tolvenar
