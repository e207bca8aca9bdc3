#include "simulator/notifications/notifications.h"

#include "simulator/store/byte_stream.h"

namespace sim::notifications {
namespace {

const std::u16string kEntries = u"n/e/";
const std::u16string kNextHandle = u"n/next";
// Looks like an object id of the platform, and no test takes it for an index.
constexpr std::uint32_t kFirstHandle = 0x0D000010;

std::u16string EntryKey(std::uint32_t handle) {
    std::u16string key = kEntries;
    for (int shift = 28; shift >= 0; shift -= 4) {
        key += u"0123456789abcdef"[(handle >> shift) & 0xF];
    }
    return key;
}

void PutOptional(std::string& out, const std::optional<std::u16string>& text) {
    PutNumber(out, text ? 1 : 0);
    PutText(out, text.value_or(u""));
}

std::optional<std::u16string> OptionalText(ByteReader& reader) {
    const bool is_there = reader.Number() != 0;
    std::u16string text = reader.Text();
    return is_there ? std::optional(std::move(text)) : std::nullopt;
}

void PutTime(std::string& out, const Time& time) {
    for (const std::uint16_t part : time) {
        PutNumber(out, part);
    }
}

Time TakeTime(ByteReader& reader) {
    Time time{};
    for (std::uint16_t& part : time) {
        part = static_cast<std::uint16_t>(reader.Number());
    }
    return time;
}

std::string Encode(const Notification& notification) {
    std::string entry;
    PutNumbers(entry,
               {notification.handle, notification.status, notification.kind, notification.event});
    PutOptional(entry, notification.application);
    PutOptional(entry, notification.arguments);
    PutTime(entry, notification.start);
    PutTime(entry, notification.end);
    PutNumber(entry, notification.user ? 1 : 0);
    const UserNotification user = notification.user.value_or(UserNotification{});
    PutNumber(entry, user.actions);
    PutOptional(entry, user.title);
    PutOptional(entry, user.text);
    PutOptional(entry, user.sound);
    PutNumber(entry, user.longest_sound);
    return entry;
}

Notification Decode(const std::string& entry) {
    ByteReader reader(entry);
    Notification notification;
    notification.handle = reader.Number();
    notification.status = reader.Number();
    notification.kind = reader.Number();
    notification.event = reader.Number();
    notification.application = OptionalText(reader);
    notification.arguments = OptionalText(reader);
    notification.start = TakeTime(reader);
    notification.end = TakeTime(reader);
    const bool has_user = reader.Number() != 0;
    UserNotification user;
    user.actions = reader.Number();
    user.title = OptionalText(reader);
    user.text = OptionalText(reader);
    user.sound = OptionalText(reader);
    user.longest_sound = reader.Number();
    if (has_user) {
        notification.user = std::move(user);
    }
    return notification;
}

std::uint32_t TakeHandle(LogStore::Change& change) {
    const std::string* next = change.Find(kNextHandle);
    const std::uint32_t handle = next != nullptr ? ByteReader(*next).Number() : kFirstHandle;
    std::string entry;
    PutNumber(entry, handle + 1);
    change.Set(kNextHandle, std::move(entry));
    return handle;
}

// The day of the week is no part of the order.
bool IsBefore(const Time& a, const Time& b) {
    constexpr std::size_t kParts[] = {0, 1, 3, 4, 5, 6, 7};
    for (const std::size_t part : kParts) {
        if (a[part] != b[part]) {
            return a[part] < b[part];
        }
    }
    return false;
}

constexpr std::uint32_t kSignalled = 1;

bool Vanishes(const Device& device, const char* moment) {
    return device.Setting("notification.vanishes", "before") == moment;
}

// The platform hands these to an application registered for a plain time.
constexpr char16_t kRunAtTime[] = u"AppRunAtTime";

Start StartOf(const Notification& notification) {
    const bool classic = notification.kind == kClassicTime;
    return {*notification.application,
            classic ? std::u16string(kRunAtTime) : notification.arguments.value_or(u"")};
}

}  // namespace

std::vector<Notification> All(Device& device) {
    LogStore::View view(device.store());
    std::vector<Notification> all;
    view.ForEach(kEntries, [&](const std::u16string&, const std::string& entry) {
        all.push_back(Decode(entry));
    });
    return all;
}

std::optional<Notification> Get(Device& device, std::uint32_t handle) {
    LogStore::View view(device.store());
    const std::string* entry = view.Find(EntryKey(handle));
    return entry != nullptr ? std::optional(Decode(*entry)) : std::nullopt;
}

std::uint32_t Set(Device& device, Notification notification) {
    LogStore::Change change(device.store());
    if (notification.handle == 0) {
        notification.handle = TakeHandle(change);
    } else if (change.Find(EntryKey(notification.handle)) == nullptr) {
        return 0;
    }
    change.Set(EntryKey(notification.handle), Encode(notification));
    return notification.handle;
}

bool Clear(Device& device, std::uint32_t handle) {
    LogStore::Change change(device.store());
    const bool was_there = change.Find(EntryKey(handle)) != nullptr;
    change.Erase(EntryKey(handle));
    return was_there;
}

std::optional<Due> TakeDue(Device& device, const Time& now) {
    LogStore::Change change(device.store());
    std::optional<Notification> first;
    for (Notification& notification : All(device)) {
        const bool is_due = notification.kind != kEvent && notification.status != kSignalled &&
                            !IsBefore(now, notification.start);
        if (is_due && (!first || IsBefore(notification.start, first->start))) {
            first = std::move(notification);
        }
    }
    if (!first) {
        return std::nullopt;
    }
    Due due{first->handle, first->start, std::nullopt};
    if (first->application) {
        due.start = StartOf(*first);
    }
    if (Vanishes(device, "before")) {
        change.Erase(EntryKey(first->handle));
    } else {
        first->status = kSignalled;
        change.Set(EntryKey(first->handle), Encode(*first));
    }
    return due;
}

void EndDue(Device& device, const Due& due) {
    if (Vanishes(device, "after")) {
        Clear(device, due.handle);
    }
}

std::vector<Start> Fire(Device& device, const std::u16string& arguments) {
    std::vector<Start> starts;
    for (const Notification& notification : All(device)) {
        if (notification.kind == kEvent && notification.application &&
            notification.arguments == arguments) {
            starts.push_back(StartOf(notification));
        }
    }
    return starts;
}

std::vector<Start> FireEvent(Device& device, std::uint32_t event) {
    std::vector<Start> starts;
    for (const Notification& notification : All(device)) {
        if (notification.kind == kEvent && notification.event == event &&
            notification.application) {
            starts.push_back(StartOf(notification));
        }
    }
    return starts;
}

}  // namespace sim::notifications
