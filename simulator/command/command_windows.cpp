// window and screenshot: the device's screen from outside.
#include "simulator/command/command_row.h"
#include "simulator/windows/control.h"
#include "simulator/windows/control_json.h"
#include "simulator/windows/screenshot.h"
#include "simulator/windows/stub.h"

namespace sim {
namespace {

int ControlId(const Words& words) { return static_cast<int>(Number(words.at(0))); }

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

// WHERE is a control's id, or a pixel as "X,Y".
Json Tap(Device& device, const Words& words, int times) {
    const std::size_t comma = words[0].find(',');
    if (comma != std::string::npos) {
        windows::TapAt(device, static_cast<int>(Number(words[0].substr(0, comma))),
                       static_cast<int>(Number(words[0].substr(comma + 1))), times);
        return DoneOrThrow(true, "");
    }
    const std::string item = words.size() > 1 ? words[1] : "";
    return DoneOrThrow(windows::Tap(device, ControlId(words), item, times),
                       "nothing to tap at " + words[0] + " " + item);
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
        {"tap", 1, 2, [](Device& device, const Words& words) { return Tap(device, words, 1); },
         "ID [ITEM] | X,Y"},
        {"double-tap", 1, 2,
         [](Device& device, const Words& words) { return Tap(device, words, 2); },
         "ID [ITEM] | X,Y"},
        {"key", 1, kManyWords, WindowKey, "KEYS"},
        {"select", 2, 2, WindowSelect, "ID ITEM"},
        {"tree", 0, 0, [](Device& device, const Words&) { return Json(windows::Tree(device)); },
         ""},
        {"close", 0, 0,
         [](Device& device, const Words&) {
             return DoneOrThrow(windows::Close(device), "no window is active");
         },
         ""},
        {"help", 0, 0,
         [](Device& device, const Words&) {
             return DoneOrThrow(windows::AskForHelp(device), "the active window has no \"?\"");
         },
         ""},
        {"stub", 1, 3, WindowStub, "CLASS [TITLE] [ANSWER]"},
    };
    return rows;
}

}  // namespace

Json RunWindow(Device& device, const Words& words) {
    return RunRow(WindowVerbs(), "window ", device, words);
}

Json RunScreenshot(Device& device, const Words& words) {
    const windows::Picture picture = windows::TakeScreenshot(device);
    WriteHostFile(words[0], windows::EncodePng(picture));
    return {{"width", picture.width}, {"height", picture.height}};
}

}  // namespace sim
