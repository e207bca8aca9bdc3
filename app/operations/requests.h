// Requests for operations: from the main thread to the operation thread, one at a time.
#pragma once

#include "app/operations/application.h"

namespace tolvenar {

// A request is on its way or an operation runs: no other may be asked for, nothing that it works
// with may be changed and the program may not be closed.
bool IsOccupied(const Application& app);

// Posts the user's answer to the operation window. A request to go on counts as pending until the
// operation thread takes it. False when there is no such window or the post fails.
bool PostAnswer(Application& app, UINT message, bool go_on, LPARAM lparam);

// On the operation thread: takes a request and marks the program as busy. False, and the request
// dropped, while an operation runs already: a box that it shows lets messages through.
bool TakeRequest(Application& app);
// The operation has ended its work on the storage's lists; its report may follow.
void ReleaseLists(Application& app);
// The operation has ended.
void EndRequest(Application& app);

// Whether the main thread may look at the storage's lists: no operation is on them or about to be.
bool ListsAreFree(const Application& app);
// A storage is open and its journal loaded. For the main thread, while the lists are free.
bool HasStorage(const Application& app);

}  // namespace tolvenar
