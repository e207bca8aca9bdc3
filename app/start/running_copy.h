// Another copy of the program that runs already.
#pragma once

namespace tolvenar {

enum class Arbitration {
    kGoOn,      // no copy runs, or one is just starting
    kTakeOver,  // an idle one was asked to close
    kHandOver,  // the running copy is in front now; this one leaves
};

// Looks for a running copy. An idle one is closed for a backup; in every other case it is brought
// forward.
Arbitration ArbitrateWithRunningCopy(const wchar_t* launch_reason);

// Waits two seconds at most for the main window of another copy to be gone; false when it is not.
bool WaitForOldCopy();

// Another copy has come up so far that it takes requests; its dialog comes to the front.
bool RunningCopyIsUp();
void BringRunningCopyForward();

}  // namespace tolvenar
