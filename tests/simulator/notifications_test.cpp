// Notifications as a program sees them, and what the clock and events start.
#include "simulator/notifications/notifications.h"

#include <nlohmann/json.hpp>
#include <notify.h>
#include <vector>
#include <windows.h>

#include "tests/support/device_test.h"

namespace {

using sim::notifications::Fire;
using tests::DeviceTest;

class NotificationsTest : public DeviceTest {
protected:
    CE_NOTIFICATION_TRIGGER Trigger(DWORD type, const wchar_t* arguments = L"args") {
        CE_NOTIFICATION_TRIGGER trigger{};
        trigger.dwSize = sizeof trigger;
        trigger.dwType = type;
        trigger.lpszApplication = application_;
        trigger.lpszArguments = const_cast<wchar_t*>(arguments);
        return trigger;
    }
    HANDLE AtTime(WORD hour, const wchar_t* arguments) {
        CE_NOTIFICATION_TRIGGER trigger = Trigger(CNT_TIME, arguments);
        trigger.stStartTime = {2003, 2, 5, 28, hour, 30, 0, 0};
        return ::CeSetUserNotificationEx(nullptr, &trigger, nullptr);
    }
    std::vector<HANDLE> Handles() {
        DWORD count = 0;
        EXPECT_TRUE(::CeGetUserNotificationHandles(nullptr, 0, &count));
        std::vector<HANDLE> handles(count + 1);
        EXPECT_TRUE(::CeGetUserNotificationHandles(handles.data(), count, &count));
        handles.resize(count);
        return handles;
    }
    std::vector<DWORD> Read(HANDLE handle) {
        DWORD needed = 0;
        EXPECT_FALSE(::CeGetUserNotification(handle, 0, &needed, nullptr));
        EXPECT_EQ(static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER), ::GetLastError());
        std::vector<DWORD> buffer((needed + 3) / 4 + 1, 0xA5A5A5A5);
        EXPECT_TRUE(::CeGetUserNotification(handle, needed, &needed,
                                            reinterpret_cast<LPBYTE>(buffer.data())));
        return buffer;
    }

    // What is due by then, in the order in which it is taken.
    std::vector<sim::notifications::Start> Due(const sim::notifications::Time& now) {
        std::vector<sim::notifications::Start> starts;
        while (const auto due = sim::notifications::TakeDue(device().sim(), now)) {
            if (due->start) {
                starts.push_back(*due->start);
            }
        }
        return starts;
    }

    wchar_t application_[16] = L"app.exe";
};

TEST_F(NotificationsTest, HandlesAreCountedThenListedAndStayTheSame) {
    EXPECT_TRUE(Handles().empty());
    CE_NOTIFICATION_TRIGGER trigger = Trigger(CNT_EVENT);
    HANDLE first = ::CeSetUserNotificationEx(nullptr, &trigger, nullptr);
    HANDLE second = ::CeSetUserNotificationEx(nullptr, &trigger, nullptr);
    EXPECT_NE(nullptr, first);
    EXPECT_EQ((std::vector<HANDLE>{first, second}), Handles());
    HANDLE one[1] = {};
    DWORD needed = 0;
    EXPECT_FALSE(::CeGetUserNotificationHandles(one, 1, &needed));
    EXPECT_EQ(2u, needed);
    EXPECT_EQ(nullptr, one[0]);
    EXPECT_TRUE(::CeClearUserNotification(first));
    EXPECT_EQ(std::vector<HANDLE>{second}, Handles());
    EXPECT_NE(first, ::CeSetUserNotificationEx(nullptr, &trigger, nullptr));
}

TEST_F(NotificationsTest, ARecordHoldsEverythingInsideItsBuffer) {
    CE_NOTIFICATION_TRIGGER trigger = Trigger(CNT_TIME, L"now");
    trigger.stStartTime = {2003, 2, 5, 28, 7, 30, 15, 0};
    wchar_t title[] = L"title";
    CE_USER_NOTIFICATION user{4, title, nullptr, nullptr, 0, 0};
    HANDLE handle = ::CeSetUserNotificationEx(nullptr, &trigger, &user);
    const std::vector<DWORD> buffer = Read(handle);
    // 16 header, 52 trigger, 24 user notification, "app.exe", "now", "title" with terminators.
    EXPECT_EQ((16u + 52 + 24 + 16 + 8 + 12) / 4 + 1, buffer.size());
    EXPECT_EQ(0xA5A5A5A5, buffer.back());
    const auto* header = reinterpret_cast<const CE_NOTIFICATION_INFO_HEADER*>(buffer.data());
    EXPECT_EQ(handle, header->hNotification);
    EXPECT_EQ(0u, header->dwStatus);
    const BYTE* start = reinterpret_cast<const BYTE*>(buffer.data());
    EXPECT_EQ(start + 16, reinterpret_cast<const BYTE*>(header->pcent));
    EXPECT_EQ(start + 68, reinterpret_cast<const BYTE*>(header->pceun));
    EXPECT_EQ(52u, header->pcent->dwSize);
    EXPECT_EQ(static_cast<DWORD>(CNT_TIME), header->pcent->dwType);
    EXPECT_EQ(start + 92, reinterpret_cast<const BYTE*>(header->pcent->lpszApplication));
    EXPECT_STREQ(L"app.exe", header->pcent->lpszApplication);
    EXPECT_STREQ(L"now", header->pcent->lpszArguments);
    EXPECT_EQ(15, header->pcent->stStartTime.wSecond);
    EXPECT_EQ(5, header->pcent->stStartTime.wDayOfWeek);
    EXPECT_STREQ(L"title", header->pceun->pwszDialogTitle);
    EXPECT_EQ(nullptr, header->pceun->pwszDialogText);
}

TEST_F(NotificationsTest, ATooSmallBufferIsLeftAloneAndTheSizeTold) {
    CE_NOTIFICATION_TRIGGER trigger = Trigger(CNT_EVENT, L"a");
    HANDLE handle = ::CeSetUserNotificationEx(nullptr, &trigger, nullptr);
    DWORD buffer[32] = {0x55};
    DWORD needed = 0;
    EXPECT_FALSE(::CeGetUserNotification(handle, 87, &needed, reinterpret_cast<LPBYTE>(buffer)));
    EXPECT_EQ(16u + 52 + 16 + 4, needed);
    EXPECT_EQ(0x55u, buffer[0]);
    EXPECT_TRUE(::CeGetUserNotification(handle, 88, &needed, reinterpret_cast<LPBYTE>(buffer)));
}

TEST_F(NotificationsTest, AnythingElseWrongLeavesNoSize) {
    DWORD needed = 5;
    EXPECT_FALSE(::CeGetUserNotification(reinterpret_cast<HANDLE>(4711), 0, &needed, nullptr));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), ::GetLastError());
    EXPECT_EQ(0u, needed);
    EXPECT_FALSE(::CeClearUserNotification(reinterpret_cast<HANDLE>(4711)));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), ::GetLastError());
}

TEST_F(NotificationsTest, AnApplicationMayBeAbsent) {
    CE_NOTIFICATION_TRIGGER trigger = Trigger(CNT_EVENT, nullptr);
    trigger.lpszApplication = nullptr;
    trigger.dwEvent = NOTIFICATION_EVENT_WAKEUP;
    const std::vector<DWORD> buffer = Read(::CeSetUserNotificationEx(nullptr, &trigger, nullptr));
    const auto* header = reinterpret_cast<const CE_NOTIFICATION_INFO_HEADER*>(buffer.data());
    EXPECT_EQ(nullptr, header->pcent->lpszApplication);
    EXPECT_EQ(nullptr, header->pcent->lpszArguments);
    EXPECT_EQ(nullptr, header->pceun);
    EXPECT_EQ(static_cast<DWORD>(NOTIFICATION_EVENT_WAKEUP), header->pcent->dwEvent);
}

TEST_F(NotificationsTest, WhatCannotBeIsRefused) {
    CE_USER_NOTIFICATION user{};
    CE_NOTIFICATION_TRIGGER trigger = Trigger(CNT_EVENT);
    EXPECT_EQ(nullptr, ::CeSetUserNotificationEx(nullptr, &trigger, &user));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), ::GetLastError());
    EXPECT_EQ(nullptr, ::CeSetUserNotificationEx(reinterpret_cast<HANDLE>(77), &trigger, nullptr));
    EXPECT_EQ(nullptr, ::CeSetUserNotificationEx(nullptr, nullptr, nullptr));
    trigger = Trigger(CNT_CLASSICTIME, L"args");
    EXPECT_EQ(nullptr, ::CeSetUserNotificationEx(nullptr, &trigger, nullptr));
    trigger = Trigger(5);
    EXPECT_EQ(nullptr, ::CeSetUserNotificationEx(nullptr, &trigger, nullptr));
    EXPECT_TRUE(Handles().empty());
}

TEST_F(NotificationsTest, AHandleIsOverwritten) {
    HANDLE handle = AtTime(7, L"old");
    CE_NOTIFICATION_TRIGGER trigger = Trigger(CNT_EVENT, L"new");
    EXPECT_EQ(handle, ::CeSetUserNotificationEx(handle, &trigger, nullptr));
    EXPECT_EQ(std::vector<HANDLE>{handle}, Handles());
    const std::vector<DWORD> buffer = Read(handle);
    const auto* header = reinterpret_cast<const CE_NOTIFICATION_INFO_HEADER*>(buffer.data());
    EXPECT_STREQ(L"new", header->pcent->lpszArguments);
}

TEST_F(NotificationsTest, ATimeStartsItsApplicationOnceAndIsGone) {
    AtTime(9, L"late");
    AtTime(8, L"second");
    AtTime(7, L"first");
    EXPECT_TRUE(Due({2003, 2, 5, 28, 7, 29, 59, 999}).empty());
    const auto due = Due({2003, 2, 5, 28, 8, 30, 0, 0});
    ASSERT_EQ(2u, due.size());
    EXPECT_EQ(u"app.exe", due[0].application);
    EXPECT_EQ(u"first", due[0].arguments);
    EXPECT_EQ(u"second", due[1].arguments);
    EXPECT_EQ(1u, Handles().size());
    EXPECT_EQ(1u, Due({2004, 1, 0, 1, 0, 0, 0, 0}).size());
    EXPECT_TRUE(Handles().empty());
}

TEST_F(NotificationsTest, AnEventStartsItsApplicationAndStays) {
    CE_NOTIFICATION_TRIGGER trigger = Trigger(CNT_EVENT, L"on event");
    trigger.dwEvent = NOTIFICATION_EVENT_OFF_AC_POWER;
    ::CeSetUserNotificationEx(nullptr, &trigger, nullptr);
    for (int round = 0; round < 2; ++round) {
        const auto started = Fire(device().sim(), u"on event");
        ASSERT_EQ(1u, started.size());
        EXPECT_EQ(u"app.exe", started[0].application);
        EXPECT_EQ(1u, sim::notifications::FireEvent(device().sim(), 4).size());
    }
    EXPECT_TRUE(Fire(device().sim(), u"other").empty());
    EXPECT_TRUE(sim::notifications::FireEvent(device().sim(), 11).empty());
    EXPECT_TRUE(Due({9999, 1, 0, 1, 0, 0, 0, 0}).empty());
}

TEST_F(NotificationsTest, AClassicTimeHasTheStandardCommandLine) {
    CE_NOTIFICATION_TRIGGER trigger = Trigger(CNT_CLASSICTIME, nullptr);
    trigger.stStartTime = {2003, 1, 0, 1, 0, 0, 0, 0};
    ::CeSetUserNotificationEx(nullptr, &trigger, nullptr);
    const auto due = Due({2003, 1, 0, 1, 0, 0, 0, 0});
    ASSERT_EQ(1u, due.size());
    EXPECT_EQ(u"AppRunAtTime", due[0].arguments);
}

TEST_F(NotificationsTest, TheDumpComesBackWhenItIsTaken) {
    AtTime(7, L"b");
    CE_NOTIFICATION_TRIGGER trigger = Trigger(CNT_EVENT, L"a");
    ::CeSetUserNotificationEx(nullptr, &trigger, nullptr);
    nlohmann::json dump = sim::notifications::DumpJson(device().sim());
    ASSERT_EQ(2u, dump.size());
    EXPECT_EQ("a", dump[0]["arguments"]);
    EXPECT_EQ("2003-02-28T07:30:00", dump[1]["start"]);
    for (HANDLE handle : Handles()) {
        ::CeClearUserNotification(handle);
    }
    sim::notifications::ImportJson(device().sim(), dump);
    nlohmann::json again = sim::notifications::DumpJson(device().sim());
    for (nlohmann::json* rows : {&dump, &again}) {
        for (nlohmann::json& row : *rows) {
            row.erase("handle");
        }
    }
    EXPECT_EQ(dump, again);
}

}  // namespace
