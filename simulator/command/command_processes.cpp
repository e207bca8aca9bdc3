// run, start, ps and kill: programs on the device.
#include "simulator/command/command_row.h"
#include "simulator/processes/process_handles.h"
#include "simulator/programs/programs.h"

namespace sim {
namespace {

constexpr std::uint32_t kNoLimitMs = 0xFFFFFFFF;

// The arguments of a program are one text; words that the caller took apart are joined by a blank.
std::wstring Joined(const Words& words) {
    std::string text;
    for (std::size_t i = 1; i < words.size(); ++i) {
        text += (i > 1 ? " " : "") + words[i];
    }
    return Wide(text);
}

processes::Started StartOrThrow(Device& device, const Words& words) {
    const processes::Started started = processes::Start(device, Wide(words[0]), Joined(words));
    if (started.error != 0) {
        throw CommandError("cannot start " + words[0] + ": error " + std::to_string(started.error));
    }
    return started;
}

}  // namespace

Json RunRun(Device& device, const Words& words) {
    const processes::Started started = StartOrThrow(device, words);
    const auto code = processes::Wait(started.process, kNoLimitMs);
    processes::CloseStarted(started);
    return {{"exit", code.value_or(0)}, {"id", started.pid}};
}

Json RunStart(Device& device, const Words& words) {
    const processes::Started started = StartOrThrow(device, words);
    processes::CloseStarted(started);
    return {{"id", started.pid}};
}

Json RunPs(Device& device, const Words&) {
    Json rows = Json::array();
    for (const processes::Running& program : processes::List(device)) {
        rows.push_back({{"id", program.pid},
                        {"path", Utf8(program.path)},
                        {"arguments", Utf8(program.arguments)}});
    }
    return rows;
}

Json RunKill(Device& device, const Words& words) {
    if (words[0] == "all") {
        processes::KillAll(device);
        return Done();
    }
    return DoneOrThrow(processes::Kill(device, static_cast<std::uint32_t>(Number(words[0]))),
                       "no such process: " + words[0]);
}

}  // namespace sim
