// The command line: which command, with which options.
#pragma once

#include <string>
#include <vector>

#include "pc/command/commands.h"
#include "pc/command/console.h"

namespace CLI {
class App;
}

namespace tolvenar::pc {

struct Command {
    const char* name;
    const char* does;
    const char* example;
    void (*add_options)(CLI::App& app, Options& options);
    ExitCode (*run)(const Options& options, Console& console);
};

// The STORAGE of a command that looks at all states, and --json.
void AddStorageOfAllStates(CLI::App& app, Options& options);

// Runs what `arguments`, without the program's own name, ask for; the exit code. `more` are the
// commands of rooms above this one.
int RunCommandLine(const std::vector<std::string>& arguments, Console& console,
                   const std::vector<Command>& more = {});

}  // namespace tolvenar::pc
