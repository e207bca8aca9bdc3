// window and screenshot: the device's screen from outside.
#include "simulator/command/command_row.h"
#include "simulator/windows/control.h"
#include "simulator/windows/control_json.h"
#include "simulator/windows/screenshot.h"
#include "simulator/windows/stub.h"

namespace sim {
namespace {

int ControlId(const Words& words) { return static_cast<int>(Number(words.at(0))); }

Json DoneOrThrow(bool done, const std::string& what) {
    if (!done) {
        throw CommandError(what);
    }
    return Done();
}

Json WindowText(Device& device, const Words& words) {
    if (words.size() > 1) {
        return DoneOrThrow(windows::SetText(device, ControlId(words), words[1]),
                           "no such control, or it takes no such text");
    }
    const auto text = windows::Text(device, ControlId(words));
    if (!text) {
        throw CommandError("no control " + words[0]);
    }
    return {{"text", *text}};
}

Json WindowPress(Device& device, const Words& words) {
    return DoneOrThrow(windows::Press(device, ControlId(words)),
                       "no button " + words[0] + " that can be pressed");
}

Json WindowKey(Device& device, const Words& words) {
    std::string keys;
    for (const std::string& word : words) {
        keys += word + " ";
    }
    return DoneOrThrow(windows::PressKeys(device, keys), "no such key in: " + keys);
}

Json WindowSelect(Device& device, const Words& words) {
    return DoneOrThrow(windows::Select(device, ControlId(words), words[1]),
                       "no item " + words[1] + " in control " + words[0]);
}

Json WindowStub(Device& device, const Words& words) {
    const std::string title = words.size() > 1 ? words[1] : "";
    const std::int64_t answer = words.size() > 2 ? Number(words[2]) : 0;
    const std::uint32_t pid =
        windows::StartStub(device, Wide(words[0]), Wide(title), static_cast<std::int32_t>(answer));
    if (pid == 0) {
        throw CommandError("the window did not come up");
    }
    return {{"id", pid}};
}

const CommandRows& WindowVerbs() {
    static const CommandRows rows = {
        {"list", 0, 0, [](Device& device, const Words&) { return Json(windows::List(device)); },
         ""},
        {"text", 1, 2, WindowText, "ID [NEW-TEXT]"},
        {"press", 1, 1, WindowPress, "ID"},
        {"key", 1, kManyWords, WindowKey, "KEYS"},
        {"select", 2, 2, WindowSelect, "ID ITEM"},
        {"tree", 0, 0, [](Device& device, const Words&) { return Json(windows::Tree(device)); },
         ""},
        {"close", 0, 0,
         [](Device& device, const Words&) {
             return DoneOrThrow(windows::Close(device), "no window is active");
         },
         ""},
        {"stub", 1, 3, WindowStub, "CLASS [TITLE] [ANSWER]"},
    };
    return rows;
}

Json RunWindow(Device& device, const Words& words) {
    const Words rest(words.begin() + 1, words.end());
    for (const CommandRow& row : WindowVerbs()) {
        if (words[0] != row.name) {
            continue;
        }
        if (rest.size() < row.least_words || rest.size() > row.most_words) {
            throw CommandError(std::string("usage: window ") + row.name + " " + row.usage);
        }
        return row.run(device, rest);
    }
    throw CommandError("no such window command: " + words[0]);
}

Json RunScreenshot(Device& device, const Words& words) {
    const windows::Picture picture = windows::TakeScreenshot(device);
    WriteHostFile(words[0], windows::EncodePng(picture));
    return {{"width", picture.width}, {"height", picture.height}};
}

}  // namespace

const CommandRows& WindowCommands() {
    static const CommandRows rows = {
        {"window", 1, kManyWords, RunWindow, "list|text|press|key|select|tree|close|stub ..."},
        {"screenshot", 1, 1, RunScreenshot, "FILE"},
    };
    return rows;
}

}  // namespace sim
