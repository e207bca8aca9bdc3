#include "simulator/windows/control.h"

#include <algorithm>
#include <mutex>
#include <set>

#include "simulator/store/device_name.h"
#include "simulator/windows/context_help.h"
#include "simulator/windows/control_json.h"
#include "simulator/windows/control_pipe.h"
#include "simulator/windows/desktop.h"
#include "simulator/windows/host_windows.h"
#include "simulator/windows/inspect.h"
#include "simulator/windows/inspect_tree.h"
#include "simulator/windows/keys.h"
#include "simulator/windows/on_desktop.h"
#include "simulator/windows/tap.h"

namespace sim::windows {
namespace {

using nlohmann::json;

HWND ToWindow(std::uint32_t handle) { return static_cast<HWND>(ULongToHandle(handle)); }

std::wstring PipeName(const std::wstring& desktop, std::uint32_t pid) {
    return L"\\\\.\\pipe\\" + desktop + L"-" + std::to_wstring(pid);
}

std::vector<Window> DescribePart(HWND top, const json& request) {
    if (request.contains("id")) {
        return DescribeControls(top, request.at("id"));
    }
    if (request.value("visible", false)) {
        return DescribeVisible(top);
    }
    return request.value("tops", false) ? DescribeTop(top) : Describe(top);
}

json DescribeAll(const json& request) {
    std::vector<Window> list;
    for (const json& top : request.at("windows")) {
        const auto windows = DescribePart(ToWindow(top.get<std::uint32_t>()), request);
        list.insert(list.end(), windows.begin(), windows.end());
    }
    return list;
}

// The answering side: what a request asks of this process's windows.
json Answer(const json& request) {
    const std::string verb = request.value("verb", "");
    if (verb == "describe") {
        return DescribeAll(request);
    }
    HWND window = ToWindow(request.value("window", 0u));
    const std::string text = request.value("text", "");
    if (verb == "text") {
        return SetControlText(window, text);
    }
    if (verb == "select") {
        return SelectItem(window, text);
    }
    if (verb == "tree") {
        return TreeItems(window);
    }
    if (verb == "spot") {
        const auto spot = SpotOf(window, text);
        return spot ? json{spot->x, spot->y} : json();
    }
    return nullptr;
}

// The asking side. The window's own process answers; one that does not (a program of the host's) is
// asked from here as far as that goes.
json AskProcess(const std::wstring& desktop, DWORD pid, const json& request) {
    if (pid != ::GetCurrentProcessId()) {
        if (auto answer = AskPipe(PipeName(desktop, pid), request)) {
            return *answer;
        }
    }
    return Answer(request);
}

DWORD OwnerOf(HWND window) {
    DWORD pid = 0;
    ::GetWindowThreadProcessId(window, &pid);
    return pid;
}

json AskOwner(const std::wstring& desktop, HWND window, const char* verb, const std::string& text) {
    return AskProcess(desktop, OwnerOf(window),
                      {{"verb", verb}, {"window", HandleToULong(window)}, {"text", text}});
}

// Windows from front to back, those of one process that follow each other together: asking a
// process is what takes time.
struct Group {
    DWORD pid;
    std::vector<std::uint32_t> tops;
};

BOOL CALLBACK CollectTop(HWND window, LPARAM param) {
    auto& groups = *reinterpret_cast<std::vector<Group>*>(param);
    if (IsHostsOwn(window)) {
        return TRUE;
    }
    const DWORD pid = OwnerOf(window);
    if (groups.empty() || groups.back().pid != pid) {
        groups.push_back({pid, {}});
    }
    groups.back().tops.push_back(HandleToULong(window));
    return TRUE;
}

// `request` says which windows.
std::vector<Window> ListHere(const std::wstring& desktop, json request) {
    request["verb"] = "describe";
    std::vector<Group> groups;
    ::EnumWindows(CollectTop, reinterpret_cast<LPARAM>(&groups));
    std::vector<Window> list;
    for (const Group& group : groups) {
        request["windows"] = group.tops;
        const json answer = AskProcess(desktop, group.pid, request);
        if (!answer.is_array()) {
            continue;
        }
        for (const json& window : answer) {
            list.push_back(window.get<Window>());
        }
    }
    return list;
}

bool IsBelow(const std::vector<Window>& list, const Window& window, std::uint32_t ancestor) {
    std::uint32_t at = window.handle;
    while (at != 0 && at != ancestor) {
        const auto found = std::find_if(list.begin(), list.end(),
                                        [at](const Window& other) { return other.handle == at; });
        at = found != list.end() ? found->parent : 0;
    }
    return at == ancestor;
}

// Parts of a control, such as a time picker's arrows, have ids of the host's own choice.
bool IsPartOfControl(const std::vector<Window>& list, const Window& window) {
    return std::any_of(list.begin(), list.end(), [&window](const Window& other) {
        return other.handle == window.parent &&
               (other.class_name == "SysDateTimePick32" || other.class_name == "ComboBox");
    });
}

// Pages of a dialog use an id more than once: what the user sees comes first, and the active window
// before the others.
std::optional<Window> FindIn(const std::vector<Window>& list, int id) {
    std::uint32_t active = 0;
    for (const Window& window : list) {
        if (window.active) {
            active = window.handle;
        }
    }
    std::optional<Window> best;
    int best_rank = 0;
    for (const Window& window : list) {
        if (window.id != id || window.parent == 0 || IsPartOfControl(list, window)) {
            continue;
        }
        const bool in_active = active != 0 && IsBelow(list, window, active);
        const int rank = 1 + (window.visible ? 2 : 0) + (in_active ? 1 : 0);
        if (rank > best_rank) {
            best = window;
            best_rank = rank;
        }
    }
    return best;
}

std::optional<Window> FindHere(const Device& device, int id) {
    return FindIn(ListHere(DeviceName(device), {{"id", id}}), id);
}

std::vector<Window> ListPart(const Device& device, const json& request) {
    std::vector<Window> list;
    OnDesktop(device, [&] { list = ListHere(DeviceName(device), request); });
    return list;
}

bool AskControl(const Device& device, int id, const char* verb, const std::string& text) {
    bool done = false;
    OnDesktop(device, [&] {
        const auto control = FindHere(device, id);
        if (!control) {
            return;
        }
        const json answer = AskOwner(DeviceName(device), ToWindow(control->handle), verb, text);
        done = answer.is_boolean() && answer.get<bool>();
    });
    return done;
}

}  // namespace

void AnswerOutside(const Device& device) {
    static std::mutex mutex;
    static std::set<std::wstring> served;
    const std::wstring name = PipeName(DeviceName(device), ::GetCurrentProcessId());
    std::lock_guard guard(mutex);
    if (served.insert(name).second) {
        ServePipe(name, Answer);
    }
}

std::vector<Window> List(const Device& device) { return ListPart(device, json::object()); }

std::vector<Window> ListTops(const Device& device) { return ListPart(device, {{"tops", true}}); }

std::vector<Window> ListVisible(const Device& device) {
    return ListPart(device, {{"visible", true}});
}

std::vector<Window> ListControls(const Device& device, int id) {
    return ListPart(device, {{"id", id}});
}

std::optional<Window> Find(const Device& device, int id) {
    std::optional<Window> found;
    OnDesktop(device, [&] { found = FindHere(device, id); });
    return found;
}

std::optional<std::string> Text(const Device& device, int id) {
    const auto control = Find(device, id);
    return control ? std::optional<std::string>(control->text) : std::nullopt;
}

bool SetText(const Device& device, int id, const std::string& text) {
    return AskControl(device, id, "text", text);
}

bool Press(const Device& device, int id) {
    bool pressed = false;
    OnDesktop(device, [&] {
        const auto button = FindHere(device, id);
        pressed =
            button && button->enabled && ::PostMessageW(ToWindow(button->handle), BM_CLICK, 0, 0);
    });
    return pressed;
}

bool Tap(const Device& device, int id, const std::string& item, int times) {
    bool tapped = false;
    OnDesktop(device, [&] {
        const auto control = FindHere(device, id);
        if (!control || !control->visible) {
            return;
        }
        const json spot = AskOwner(DeviceName(device), ToWindow(control->handle), "spot", item);
        tapped = spot.is_array();
        if (tapped) {
            TapScreen({spot.at(0), spot.at(1)}, times);
        }
    });
    return tapped;
}

void TapAt(const Device& device, int x, int y, int times) {
    OnDesktop(device, [&] { TapScreen({x, y}, times); });
}

bool Select(const Device& device, int id, const std::string& item) {
    return AskControl(device, id, "select", item);
}

std::vector<TreeItem> Tree(const Device& device) {
    std::vector<TreeItem> items;
    OnDesktop(device, [&] {
        for (const Window& window : ListHere(DeviceName(device), {{"visible", true}})) {
            if (window.class_name != "SysTreeView32") {
                continue;
            }
            const json answer = AskOwner(DeviceName(device), ToWindow(window.handle), "tree", "");
            items = answer.get<std::vector<TreeItem>>();
            return;
        }
    });
    return items;
}

bool PressKeys(const Device& device, const std::string& keys) {
    const auto presses = ParseKeys(keys);
    if (!presses) {
        return false;
    }
    OnDesktop(device, [&] { TypeKeys(*presses); });
    return true;
}

bool Close(const Device& device) {
    bool closed = false;
    OnDesktop(device, [&] {
        HWND active = ::GetForegroundWindow();
        closed = active != nullptr && ::PostMessageW(active, WM_SYSCOMMAND, SC_CLOSE, 0);
    });
    return closed;
}

bool AskForHelp(const Device& device) {
    bool tapped = false;
    OnDesktop(device, [&] { tapped = TapContextHelp(::GetForegroundWindow()); });
    return tapped;
}

}  // namespace sim::windows
