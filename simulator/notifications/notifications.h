// The device's notifications: which application is started, with which arguments, at which event or
// time. Kept in its log as n/e/<handle in eight hexadecimal digits>; handles are given out once.
#pragma once

#include <array>
#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "simulator/store/device.h"

namespace sim::notifications {

// The platform's kinds of trigger.
enum Kind : std::uint32_t { kEvent = 1, kTime = 2, kPeriod = 3, kClassicTime = 4 };

// Year, month, day of week, day, hour, minute, second, millisecond: local time as it was given.
using Time = std::array<std::uint16_t, 8>;

struct UserNotification {
    std::uint32_t actions = 0;
    std::optional<std::u16string> title;
    std::optional<std::u16string> text;
    std::optional<std::u16string> sound;
    std::uint32_t longest_sound = 0;
};

struct Notification {
    std::uint32_t handle = 0;
    std::uint32_t status = 0;  // 1: its time has come
    std::uint32_t kind = kEvent;
    std::uint32_t event = 0;
    std::optional<std::u16string> application;
    std::optional<std::u16string> arguments;
    Time start{};
    Time end{};
    std::optional<UserNotification> user;
};

// All of them, in the order in which their handles were given out.
std::vector<Notification> All(Device& device);
std::optional<Notification> Get(Device& device, std::uint32_t handle);
// Replaces the one with `notification.handle`, or makes a new one for 0. The handle; 0 when there
// is none to replace.
std::uint32_t Set(Device& device, Notification notification);
bool Clear(Device& device, std::uint32_t handle);

// What is to be started.
struct Start {
    std::u16string application;
    std::u16string arguments;
};

// The earliest notification whose time has come by `now` and that has not been taken: its time, and
// what it starts when it names an application. Nothing when none is due. When it vanishes is not
// the same on every system (setting "notification.vanishes"): here, in `EndDue`, or never.
struct Due {
    std::uint32_t handle = 0;
    Time time{};
    std::optional<Start> start;
};
std::optional<Due> TakeDue(Device& device, const Time& now);
// Its program has started. Whatever the handle stands for by now may go with it.
void EndDue(Device& device, const Due& due);
// The event notifications with these arguments; they stay.
std::vector<Start> Fire(Device& device, const std::u16string& arguments);
// The event notifications of one platform event, such as 4 for the end of AC power; they stay.
std::vector<Start> FireEvent(Device& device, std::uint32_t event);

// [{"handle", "type", "event", "application", "arguments", "start", "end", "user"}], sorted by
// everything but the handle. Absent texts are null; times are "YYYY-MM-DDTHH:MM:SS", null when
// unused.
nlohmann::json DumpJson(Device& device);
// Takes an array as above, handles ignored, beside what is there. Throws std::runtime_error when it
// is damaged; then nothing was changed.
void ImportJson(Device& device, const nlohmann::json& notifications);

}  // namespace sim::notifications
