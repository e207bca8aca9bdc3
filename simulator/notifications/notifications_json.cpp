#include <cstdio>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "simulator/notifications/notifications.h"
#include "simulator/store/json_rows.h"
#include "simulator/store/utf8.h"

namespace sim::notifications {
namespace {

using nlohmann::json;

json TextJson(const std::optional<std::u16string>& text) {
    return text ? json(Utf8(*text)) : json();
}

std::optional<std::u16string> TextOf(const json& from, const char* name) {
    const auto at = from.find(name);
    if (at == from.end() || at->is_null()) {
        return std::nullopt;
    }
    return Wide16(at->get<std::string>());
}

json TimeJson(const Time& time) {
    if (time == Time{}) {
        return {};
    }
    char text[64];
    std::snprintf(text, sizeof text, "%04u-%02u-%02uT%02u:%02u:%02u", time[0], time[1], time[3],
                  time[4], time[5], time[6]);
    return text;
}

// 0 is a Sunday.
std::uint16_t DayOfWeek(unsigned year, unsigned month, unsigned day) {
    constexpr unsigned kShift[] = {0, 3, 2, 5, 0, 3, 5, 1, 4, 6, 2, 4};
    const unsigned y = month < 3 ? year - 1 : year;
    return static_cast<std::uint16_t>((y + y / 4 - y / 100 + y / 400 + kShift[month - 1] + day) %
                                      7);
}

Time TimeOf(const json& from, const char* name) {
    const auto at = from.find(name);
    if (at == from.end() || at->is_null()) {
        return {};
    }
    const std::string text = at->get<std::string>();
    unsigned part[6] = {};
    const int count = std::sscanf(text.c_str(), "%4u-%2u-%2uT%2u:%2u:%2u", part, part + 1, part + 2,
                                  part + 3, part + 4, part + 5);
    if (count < 5 || part[1] < 1 || part[1] > 12) {
        throw std::runtime_error("not a time: " + text);
    }
    const auto narrow = [](unsigned value) { return static_cast<std::uint16_t>(value); };
    return {narrow(part[0]),
            narrow(part[1]),
            DayOfWeek(part[0], part[1], part[2]),
            narrow(part[2]),
            narrow(part[3]),
            narrow(part[4]),
            narrow(part[5]),
            0};
}

json UserJson(const std::optional<UserNotification>& user) {
    if (!user) {
        return {};
    }
    return {{"actions", user->actions},
            {"title", TextJson(user->title)},
            {"text", TextJson(user->text)},
            {"sound", TextJson(user->sound)}};
}

json WithoutHandle(const Notification& notification) {
    return {{"type", notification.kind},
            {"event", notification.event},
            {"application", TextJson(notification.application)},
            {"arguments", TextJson(notification.arguments)},
            {"start", TimeJson(notification.start)},
            {"end", TimeJson(notification.end)},
            {"user", UserJson(notification.user)}};
}

Notification NotificationOf(const json& from) {
    Notification notification;
    notification.kind = from.at("type").get<std::uint32_t>();
    notification.event = from.value("event", 0u);
    notification.application = TextOf(from, "application");
    notification.arguments = TextOf(from, "arguments");
    notification.start = TimeOf(from, "start");
    notification.end = TimeOf(from, "end");
    const auto user = from.find("user");
    if (user != from.end() && !user->is_null()) {
        notification.user.emplace();
        notification.user->actions = user->value("actions", 0u);
        notification.user->title = TextOf(*user, "title");
        notification.user->text = TextOf(*user, "text");
        notification.user->sound = TextOf(*user, "sound");
    }
    return notification;
}

}  // namespace

json DumpJson(Device& device) {
    KeyedRows rows;
    for (const Notification& notification : All(device)) {
        json row = WithoutHandle(notification);
        std::string text = row.dump();
        row["handle"] = notification.handle;
        rows.emplace_back(std::move(text), std::move(row));
    }
    return SortedRows(std::move(rows));
}

void ImportJson(Device& device, const json& notifications) {
    std::vector<Notification> all;
    for (const json& notification : notifications) {
        all.push_back(NotificationOf(notification));
    }
    LogStore::Change change(device.store());
    for (Notification& notification : all) {
        Set(device, std::move(notification));
    }
}

}  // namespace sim::notifications
