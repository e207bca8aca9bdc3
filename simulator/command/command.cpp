#include "simulator/command/command.h"

#include "simulator/command/command_row.h"
#include "simulator/gate/trace.h"

namespace sim {
namespace {

const CommandRows& Commands() {
    static const CommandRows rows = {
        {"db-import", 1, 1, RunDbImport, "FILE"},
        {"db-export", 1, 1, RunDbExport, "FILE"},
        {"db-delete", 1, 1, RunDbDelete, "NAME"},

        {"notifications", 0, 0, RunNotifications, ""},
        {"fire", 1, 1, RunFire, "ARGUMENTS"},
        {"tick", 1, 1, RunTick, "ISO-TIME"},

        {"put", 2, 2, RunPut, "HOST PATH"},
        {"get", 2, 2, RunGet, "PATH HOST"},
        {"mkdir", 1, 1, RunMkdir, "PATH"},
        {"rm", 1, 1, RunRm, "PATH"},
        {"mv", 2, 2, RunMv, "PATH PATH"},
        {"attr", 2, 2, RunAttr, "PATH N"},
        {"touch", 2, 2, RunTouch, "PATH FILETIME"},
        {"ls", 1, 1, RunLs, "PATH"},
        {"lock", 1, 2, RunLock, "PATH [none|read|write]"},
        {"unlock", 1, 1, RunUnlock, "PATH"},
        {"lose", 1, 2, RunLose, "SEED [CHANGES]"},
        {"resume", 0, 0, RunResume, ""},
        {"suspend", 0, 0, RunSuspend, ""},

        {"fault", 3, 5, RunFault, "FUNCTION N [COUNT] ERROR|short [MATCH]"},
        {"delay", 3, 4, RunDelay, "FUNCTION N MS [MATCH]"},
        {"crash", 2, 3, RunCrash, "FUNCTION N [MATCH]"},
        {"crash-half", 2, 3, RunCrashHalf, "WriteFile N [MATCH]"},
        {"faults", 0, 1, RunFaults, "[all|clear]"},
        {"trace", 1, 2, RunTrace, "on|off|show [FUNCTION]"},
        {"counters", 0, 1, RunCounters, "[clear]"},
        {"pass", 1, 1, RunPass, "MS"},

        {"run", 1, kManyWords, RunRun, "PATH [ARGUMENTS]"},
        {"start", 1, kManyWords, RunStart, "PATH [ARGUMENTS]"},
        {"ps", 0, 0, RunPs, ""},
        {"kill", 1, 1, RunKill, "PID|all"},

        {"create", 1, 1, RunCreate, "PROFILE"},
        {"export", 1, 1, RunExport, "PROFILE"},
        {"dump", 0, 0, RunDump, ""},
        {"install", 1, 1, RunInstall, "FOLDER"},
        {"install-cab", 1, 1, RunInstallCab, "FILE"},
        {"remove-app", 1, 1, RunRemoveApp, "APP"},

        {"reg-import", 1, 1, RunRegImport, "FILE"},
        {"reg-export", 1, 1, RunRegExport, "FILE"},
        {"reg-set", 4, 4, RunRegSet, "KEY NAME TYPE DATA"},
        {"reg-delete", 1, 2, RunRegDelete, "KEY [NAME]"},
        {"reg-lock", 1, 1, RunRegLock, "KEY"},
        {"reg-unlock", 1, 1, RunRegUnlock, "KEY"},

        {"set", 2, 2, RunSet, "NAME VALUE"},
        {"like", 1, 1, RunLike, "kind|strict-2.11|strict-4|random-N"},
        {"show", 0, 0, RunShow, ""},

        {"window", 1, kManyWords, RunWindow, "list|text|press|tap|key|select|tree|close|stub ..."},
        {"screenshot", 1, 1, RunScreenshot, "FILE"},
    };
    return rows;
}

std::string OneLine(std::string text) {
    for (char& c : text) {
        if (c == '\n' || c == '\r') {
            c = ' ';
        }
    }
    return text;
}

}  // namespace

CommandResult RunCommand(Device& device, const std::vector<std::string>& words) {
    try {
        const UntracedThread thread(device);
        return {true, RunRow(Commands(), "", device, words)
                          .dump(-1, ' ', false, Json::error_handler_t::replace)};
    } catch (const std::exception& error) {
        return {false, OneLine(error.what())};
    }
}

std::vector<std::string> SplitWords(const std::string& line) {
    Words words;
    std::string word;
    bool quoted = false;
    bool started = false;
    for (const char c : line) {
        if (c == '"') {
            quoted = !quoted;
            started = true;
        } else if (!quoted && (c == ' ' || c == '\t' || c == '\r')) {
            if (started) {
                words.push_back(word);
            }
            word.clear();
            started = false;
        } else if (!quoted && !started && words.empty() && c == '#') {
            return {};
        } else {
            word += c;
            started = true;
        }
    }
    if (quoted) {
        throw CommandError("a quote is left open");
    }
    if (started) {
        words.push_back(word);
    }
    return words;
}

}  // namespace sim
