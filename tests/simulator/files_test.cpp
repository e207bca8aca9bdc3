// The device's files and folders as a program sees them.
#include "platform/win32.h"

#include <string>

#include "tests/support/device_test.h"

namespace {

class FilesTest : public tests::DeviceTest {};

TEST_F(FilesTest, AWrittenFileReadsBack) {
    HANDLE file = ::CreateFileW(L"\\a.txt", GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
    ASSERT_NE(INVALID_HANDLE_VALUE, file) << ::GetLastError();
    DWORD count = 0;
    EXPECT_TRUE(::WriteFile(file, "hello", 5, &count, nullptr));
    EXPECT_EQ(5u, count);
    EXPECT_TRUE(::CloseHandle(file));
    EXPECT_EQ("hello", device().FileBytes(L"\\A.TXT"));
}

}  // namespace
