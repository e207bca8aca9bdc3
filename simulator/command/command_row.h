// What a family of commands is made of. Handlers answer with JSON and throw CommandError otherwise.
#pragma once

#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "simulator/store/device.h"
#include "simulator/store/utf8.h"

namespace sim {

using Json = nlohmann::json;
using Words = std::vector<std::string>;

class CommandError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

using CommandHandler = Json(Device& device, const Words& words);

// One command; the counts are those of the words behind its name.
struct CommandRow {
    const char* name;
    std::size_t least_words;
    std::size_t most_words;
    CommandHandler* run;
    const char* usage;
};
using CommandRows = std::vector<CommandRow>;
constexpr std::size_t kManyWords = 1000;

// Runs the row that the first word names on the words behind it. Messages name the row with
// `prefix` before it. Throws CommandError.
Json RunRow(const CommandRows& rows, const std::string& prefix, Device& device, const Words& words);

// The handlers, by family; the table of commands is in command.cpp.
CommandHandler RunDbImport, RunDbExport, RunDbDelete;
CommandHandler RunNotifications, RunFire, RunTick;
CommandHandler RunPut, RunGet, RunMkdir, RunRm, RunMv, RunAttr, RunTouch, RunLs, RunLock, RunUnlock,
    RunLose, RunResume, RunSuspend;
CommandHandler RunFault, RunDelay, RunCrash, RunCrashHalf, RunFaults, RunTrace, RunCounters,
    RunPass;
CommandHandler RunRun, RunStart, RunPs, RunKill;
CommandHandler RunCreate, RunExport, RunDump, RunInstall;
CommandHandler RunInstallCab, RunRemoveApp;
CommandHandler RunRegImport, RunRegExport, RunRegSet, RunRegDelete, RunRegLock, RunRegUnlock;
CommandHandler RunSet, RunLike, RunShow;
CommandHandler RunWindow, RunScreenshot;

// Answer of a command that has nothing to tell.
inline Json Done() { return Json::object({{"ok", true}}); }
// The same, or a CommandError with `what` when it was not done.
Json DoneOrThrow(bool done, const std::string& what);

// A whole number, decimal or 0x…; throws CommandError.
std::int64_t Number(const std::string& word);

// A path of the host as the user writes it. A leading slash is the machine's root under Wine.
std::wstring HostPath(const std::string& path);
// Whole host files; both throw CommandError.
std::string ReadHostFile(const std::string& path);
void WriteHostFile(const std::string& path, const std::string& bytes);

}  // namespace sim
