// The interactive program: windows, threads and the message loop.
#pragma once

#include "app/operations/application.h"

namespace tolvenar {

// Another copy of the program that is there all the same.
enum class Beside {
    kNothing,
    kStuckCopy,     // it was asked to close and did not
    kStartingCopy,  // it has not come up yet: this is the second tap of a double tap
};

// Runs until the user closes the program; its exit code. Beside another copy the window classes are
// not registered and only the dialog comes up; it gives way to a starting copy that has come up.
int RunInteractive(Application& app, Beside beside);

}  // namespace tolvenar
