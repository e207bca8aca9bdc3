// notifications, fire, tick: what the device starts by itself.
#include <algorithm>
#include <cstdio>

#include "simulator/command/command_row.h"
#include "simulator/files/card_absence.h"
#include "simulator/gate/device_time.h"
#include "simulator/notifications/notifications.h"
#include "simulator/processes/process_handles.h"
#include "simulator/programs/programs.h"
#include "simulator/programs/rest.h"
#include "simulator/system/date_text.h"
#include "simulator/system/settings.h"
#include "simulator/system/zone.h"

namespace sim {
namespace {

std::wstring Units(const std::u16string& text) { return std::wstring(text.begin(), text.end()); }

// How long the walk over a time waits for what it started, before the clock goes on.
constexpr std::uint32_t kWaitMs = 60000;

// A device is asleep when a notification is due, and the start wakes it. An application that cannot
// be started is told with its error and holds nothing else up.
Json StartOne(Device& device, const notifications::Start& start, std::uint32_t wait_ms) {
    files::Resume(device);
    NoteStart(device);
    processes::Watch watch(device);
    const processes::Started started =
        processes::Start(device, Units(start.application), Units(start.arguments));
    Json row = {{"application", Utf8(start.application)}, {"arguments", Utf8(start.arguments)}};
    if (started.error != 0) {
        row["error"] = started.error;
        return row;
    }
    row["pid"] = started.pid;
    if (wait_ms != 0) {
        watch.WaitForRest(started, wait_ms);
    }
    processes::CloseStarted(started);
    return row;
}

notifications::Time LocalTime(Device& device, std::uint64_t utc) {
    const Moment m = MomentFromTicks(LocalFromUtc(DeviceZone(device), utc));
    notifications::Time time{};
    const int parts[] = {m.year, m.month,  m.weekday, m.day,
                         m.hour, m.minute, m.second,  m.milliseconds};
    for (std::size_t i = 0; i < time.size(); ++i) {
        time[i] = static_cast<std::uint16_t>(parts[i]);
    }
    return time;
}

std::string IsoText(const notifications::Time& time) {
    char text[32];
    std::snprintf(text, sizeof text, "%04u-%02u-%02uT%02u:%02u:%02u", time[0], time[1], time[3],
                  time[4], time[5], time[6]);
    return text;
}

// 0 for a time that no calendar has: it was due from the beginning.
std::uint64_t UtcOf(Device& device, const notifications::Time& time) {
    const Moment moment = {time[0], time[1], time[2], time[3], time[4], time[5], time[6], time[7]};
    return IsMoment(moment) ? ParseIsoTime(IsoText(time), DeviceZone(device)) : 0;
}

// How much too early a time's program is started.
std::uint64_t EarlyTicks(Device& device) {
    return static_cast<std::uint64_t>(device.NumberSetting("notification.early", 0)) *
           kTicksPerSecond;
}

// A clock that runs goes on running from the new time.
void MoveClock(Device& device, const std::string& iso_time) {
    const bool stands = device.NumberSetting("clock.frozen", 0) != 0;
    ApplySystemSetting(device, "clock", (stands ? "" : "+") + iso_time);
}

}  // namespace

Json RunNotifications(Device& device, const Words&) { return notifications::DumpJson(device); }

Json RunFire(Device& device, const Words& words) {
    Json list = Json::array();
    for (const notifications::Start& start : notifications::Fire(device, Wide16(words[0]))) {
        list.push_back(StartOne(device, start, 0));
    }
    return list;
}

// Goes from one time that a program is due at to the next, so that each finds the clock at its own
// time, and what it registers up to the end is due too.
Json RunTick(Device& device, const Words& words) {
    const std::uint64_t end = ParseIsoTime(words[0], DeviceZone(device));
    const std::uint64_t early = EarlyTicks(device);
    Json list = Json::array();
    while (const auto due = notifications::TakeDue(device, LocalTime(device, end + early))) {
        const std::uint64_t time = std::max(UtcOf(device, due->time), early) - early;
        if (time > device.NowUtc()) {
            MoveClock(device, IsoText(LocalTime(device, time)));
        }
        if (due->start) {
            list.push_back(StartOne(device, *due->start, time < end ? kWaitMs : 0));
        }
        notifications::EndDue(device, *due);
    }
    MoveClock(device, words[0]);
    return list;
}

}  // namespace sim
