// The program as a process, in a shell.
#pragma once

#include <cstdlib>
#include <sys/wait.h>

#include "tests/pc/pc_test.h"

namespace tolvenar::pc {

class ProgramTest : public ThreeStatesTest {
protected:
    // The exit code of a shell's command in the case's folder. "tolvenar" is the program.
    int Shell(const std::string& command) const {
        Write("shell.sh", "set -o pipefail\ncd '" + In("") +
                              "'\ntolvenar() { '" PC_PROGRAM "' \"$@\"; }\n" + command + "\n");
        return WEXITSTATUS(std::system(("bash '" + In("shell.sh") + "'").c_str()));
    }
};

}  // namespace tolvenar::pc
