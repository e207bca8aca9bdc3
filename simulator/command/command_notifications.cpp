// notifications, fire, tick: what the device starts by itself.
#include "simulator/command/command_row.h"
#include "simulator/notifications/notifications.h"
#include "simulator/processes/process_handles.h"
#include "simulator/processes/processes.h"
#include "simulator/system/date_text.h"
#include "simulator/system/settings.h"

namespace sim {
namespace {

std::wstring Units(const std::u16string& text) { return std::wstring(text.begin(), text.end()); }

// An application that cannot be started is told with its error and holds nothing else up.
Json StartAll(Device& device, const std::vector<notifications::Start>& starts) {
    Json list = Json::array();
    for (const notifications::Start& start : starts) {
        const processes::Started started =
            processes::Start(device, Units(start.application), Units(start.arguments));
        Json row = {{"application", Utf8(start.application)}, {"arguments", Utf8(start.arguments)}};
        if (started.error != 0) {
            row["error"] = started.error;
        } else {
            row["pid"] = started.pid;
            processes::CloseStarted(started);
        }
        list.push_back(std::move(row));
    }
    return list;
}

Json RunNotifications(Device& device, const Words&) { return notifications::DumpJson(device); }

Json RunFire(Device& device, const Words& words) {
    return StartAll(device, notifications::Fire(device, Wide16(words[0])));
}

notifications::Time LocalNow(Device& device) {
    const Moment m = MomentFromTicks(LocalFromUtc(DeviceZone(device), device.NowUtc()));
    notifications::Time time{};
    const int parts[] = {m.year, m.month,  m.weekday, m.day,
                         m.hour, m.minute, m.second,  m.milliseconds};
    for (std::size_t i = 0; i < time.size(); ++i) {
        time[i] = static_cast<std::uint16_t>(parts[i]);
    }
    return time;
}

// A clock that runs goes on running from the new time.
Json RunTick(Device& device, const Words& words) {
    const bool stands = device.NumberSetting("clock.frozen", 0) != 0;
    ApplySetting(device, "clock", (stands ? "" : "+") + words[0]);
    return StartAll(device, notifications::Due(device, LocalNow(device)));
}

}  // namespace

const CommandRows& NotificationCommands() {
    static const CommandRows rows = {
        {"notifications", 0, 0, RunNotifications, ""},
        {"fire", 1, 1, RunFire, "ARGUMENTS"},
        {"tick", 1, 1, RunTick, "ISO-TIME"},
    };
    return rows;
}

}  // namespace sim
