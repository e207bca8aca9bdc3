// After a resume the driver of a card is unloaded and loaded again: for seconds its calls fail,
// with which error depends on the driver.
#include "tests/simulator/file_helpers.h"
#include "tests/support/device_test.h"
#include "tests/support/programs.h"

namespace tests {
namespace {

constexpr wchar_t kCard[] = L"\\Storage Card";
constexpr wchar_t kFile[] = L"\\Storage Card\\a.txt";
constexpr wchar_t kNew[] = L"\\Storage Card\\new.txt";

class LateCardTest : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        device().PutFile(kFile, "0123456789");
        device().PutFile(L"\\b.txt", "");
    }
    // The card stays away until the test has looked.
    void ResumeWith(const std::string& error) {
        device().Set("card.ready", "60000 " + error);
        device().Command("resume");
    }
    // The last error of asking for attributes, 0 when they are told.
    static long AttributesError(const wchar_t* path) {
        return ErrorOf(::GetFileAttributesW(path) != INVALID_FILE_ATTRIBUTES);
    }
};

TEST_F(LateCardTest, ByDefaultTheCardIsThereAtOnce) {
    device().Command("resume");
    EXPECT_EQ(0, OpenError(kFile, GENERIC_WRITE));
}

TEST_F(LateCardTest, WhileItIsAwayEachCallHasTheDriversError) {
    for (const long error : {ERROR_ACCESS_DENIED, ERROR_DEV_NOT_EXIST, ERROR_PATH_NOT_FOUND}) {
        ResumeWith(std::to_string(error));
        EXPECT_EQ(error, OpenError(kFile, GENERIC_READ));
        EXPECT_EQ(error, OpenError(kNew, GENERIC_WRITE, 0, CREATE_NEW));
        EXPECT_EQ(error, OpenError(kNew, GENERIC_WRITE, 0, CREATE_ALWAYS));
        EXPECT_EQ(error, AttributesError(kFile));
        EXPECT_EQ(error, AttributesError(kCard));
        EXPECT_EQ(error, ErrorOf(::DeleteFileW(kFile)));
        EXPECT_EQ(error, ErrorOf(::MoveFileW(kFile, kNew)));
        EXPECT_EQ(error, ErrorOf(::CreateDirectoryW(L"\\Storage Card\\F", nullptr)));
        WIN32_FIND_DATAW data;
        EXPECT_EQ(INVALID_HANDLE_VALUE, ::FindFirstFileW(L"\\Storage Card\\*", &data));
        EXPECT_EQ(static_cast<DWORD>(error), ::GetLastError());
    }
    EXPECT_EQ("0123456789", device().FileBytes(kFile));
    EXPECT_FALSE(device().Exists(kNew));
}

TEST_F(LateCardTest, ItsFolderIsGoneFromTheRootWithPathNotFoundAlone) {
    ResumeWith("55");
    EXPECT_EQ(1u, Names(L"\\Storage*").size());
    ResumeWith("3");
    EXPECT_EQ(0u, Names(L"\\Storage*").size());
}

TEST_F(LateCardTest, WhatIsOpenFailsMeanwhile) {
    HANDLE file = Open(kFile, GENERIC_READ | GENERIC_WRITE, 0, OPEN_EXISTING);
    ASSERT_NE(INVALID_HANDLE_VALUE, file);
    ResumeWith("55");
    char byte = 0;
    DWORD count = 0;
    EXPECT_EQ(ERROR_DEV_NOT_EXIST, ErrorOf(::ReadFile(file, &byte, 1, &count, nullptr)));
    EXPECT_EQ(ERROR_DEV_NOT_EXIST, ErrorOf(::WriteFile(file, "x", 1, &count, nullptr)));
    EXPECT_EQ(ERROR_DEV_NOT_EXIST, ErrorOf(::SetEndOfFile(file)));
    EXPECT_EQ(ERROR_DEV_NOT_EXIST, ErrorOf(::FlushFileBuffers(file)));
    EXPECT_TRUE(::CloseHandle(file));
    EXPECT_EQ("0123456789", device().FileBytes(kFile));
}

TEST_F(LateCardTest, TheObjectStoreIsThereAllTheTime) {
    ResumeWith("55");
    EXPECT_EQ(0, OpenError(L"\\b.txt", GENERIC_WRITE));
    EXPECT_EQ(0, OpenError(L"\\c.txt", GENERIC_WRITE, 0, CREATE_NEW));
}

TEST_F(LateCardTest, ItComesBackByItself) {
    device().Set("card.ready", "300 55");
    device().Command("resume");
    EXPECT_EQ(ERROR_DEV_NOT_EXIST, AttributesError(kFile));
    EXPECT_SOON_EQ(0, AttributesError(kFile));
}

TEST_F(LateCardTest, WhereSleepsAreShorterItComesEarlier) {
    device().Set("card.ready", "3600000 55");
    device().Set("sleep.scale", "36000");
    device().Command("resume");
    EXPECT_EQ(ERROR_DEV_NOT_EXIST, AttributesError(kFile));
    EXPECT_SOON_EQ(0, AttributesError(kFile));
}

// Whether what it starts can be started or not.
TEST_F(LateCardTest, ANotificationWakesTheDevice) {
    device().Set("card.ready", "60000 55");
    CE_NOTIFICATION_TRIGGER trigger{};
    trigger.dwSize = sizeof trigger;
    trigger.dwType = CNT_EVENT;
    trigger.dwEvent = NOTIFICATION_EVENT_WAKEUP;
    trigger.lpszApplication = const_cast<wchar_t*>(L"missing.exe");
    trigger.lpszArguments = const_cast<wchar_t*>(L"Wake");
    ASSERT_NE(nullptr, ::CeSetUserNotificationEx(nullptr, &trigger, nullptr));
    device().Command("fire Other");
    EXPECT_EQ(0, AttributesError(kFile));
    device().Command("fire Wake");
    EXPECT_EQ(ERROR_DEV_NOT_EXIST, AttributesError(kFile));
}

TEST_F(LateCardTest, AnythingButMillisecondsAndAnErrorIsRefused) {
    for (const char* value : {"soon", "300", "300 55 1", "300 0"}) {
        EXPECT_THROW(device().Set("card.ready", value), std::exception) << value;
    }
}

}  // namespace
}  // namespace tests
