// A device suspends when no key is pressed for a while, also in the middle of a long operation. A
// minute is the shortest that a user can set; after a start by a notification it is seconds.
#pragma once

namespace tolvenar {

// Presses a silent key.
void KeepAwake();
// The same when the last press is ten seconds ago: for steps that may take a second or more.
void StayAwake();
// The same between small steps, of which eight are quicker than that: it seldom asks the clock.
void StayAwakeBetweenObjects();

}  // namespace tolvenar
