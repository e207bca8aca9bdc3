// The program's entry.
#include <csignal>
#include <unistd.h>

#include "pc/program/more_commands.h"

int main(int count, char** arguments) {
    using namespace tolvenar::pc;
    // A pipe that was closed is a write that fails, and told as such.
    std::signal(SIGPIPE, SIG_IGN);
    // A file that may not grow further is one as well.
    std::signal(SIGXFSZ, SIG_IGN);
    HandleOutput out(STDOUT_FILENO);
    HandleOutput err(STDERR_FILENO);
    Console console{out, err, ::isatty(STDERR_FILENO) != 0};
    return RunCommandLine({arguments + 1, arguments + count}, console, MoreCommands());
}
