// FindFirstFileW and its kin.
#include "tests/simulator/file_helpers.h"
#include "tests/support/device_test.h"

namespace tests {
namespace {

using NameList = std::vector<std::wstring>;

class SearchTest : public DeviceTest {
protected:
    void PutAll(const wchar_t* folder, const NameList& names) {
        for (const std::wstring& name : names) {
            device().PutFile(folder + name, "x");
        }
    }
};

TEST_F(SearchTest, EverythingMatchesStarDotStar) {
    PutAll(L"\\dir\\", {L"a.txt", L"README", L"b.c.d"});
    device().MakeFolder(L"\\dir\\sub");
    const NameList all = {L"README", L"a.txt", L"b.c.d", L"sub"};
    EXPECT_EQ(all, Sorted(Names(L"\\dir\\*.*")));
    EXPECT_EQ(all, Sorted(Names(L"\\dir\\*")));
}

TEST_F(SearchTest, WildcardsMatchWithoutRegardToCase) {
    PutAll(L"\\", {L"One.TXT", L"two.txt", L"three.doc", L"t.txt"});
    EXPECT_EQ((NameList{L"One.TXT", L"t.txt", L"two.txt"}), Sorted(Names(L"\\*.txt")));
    EXPECT_EQ((NameList{L"two.txt"}), Names(L"\\T?O.*"));
    EXPECT_EQ((NameList{L"three.doc", L"two.txt"}), Sorted(Names(L"\\t??*.*")));
    EXPECT_EQ((NameList{L"One.TXT"}), Names(L"\\oNE.txt"));
}

TEST_F(SearchTest, TheRootIsListedAndHasNoDots) {
    PutAll(L"\\", {L"a.txt"});
    EXPECT_EQ((NameList{L"Storage Card", L"a.txt"}), Sorted(Names(L"\\*.*")));
}

TEST_F(SearchTest, NothingFoundIsAFailureWithTheErrorOfTheDevice) {
    device().MakeFolder(L"\\dir");
    WIN32_FIND_DATAW data;
    EXPECT_EQ(INVALID_HANDLE_VALUE, ::FindFirstFileW(L"\\dir\\*.*", &data));
    EXPECT_EQ(static_cast<DWORD>(ERROR_NO_MORE_FILES), ::GetLastError());
    device().Set("find.nothing", "2");
    EXPECT_EQ(INVALID_HANDLE_VALUE, ::FindFirstFileW(L"\\dir\\*.*", &data));
    EXPECT_EQ(static_cast<DWORD>(ERROR_FILE_NOT_FOUND), ::GetLastError());
    EXPECT_EQ(INVALID_HANDLE_VALUE, ::FindFirstFileW(L"\\none\\*.*", &data));
    EXPECT_EQ(static_cast<DWORD>(ERROR_PATH_NOT_FOUND), ::GetLastError());
}

TEST_F(SearchTest, WildcardsStandInTheLastNameOnly) {
    device().PutFile(L"\\dir\\a.txt", "x");
    WIN32_FIND_DATAW data;
    EXPECT_EQ(INVALID_HANDLE_VALUE, ::FindFirstFileW(L"\\d*\\a.txt", &data));
}

TEST_F(SearchTest, TheOrderIsASwitch) {
    PutAll(L"\\dir\\", {L"c", L"a", L"d", L"b", L"e"});
    EXPECT_EQ((NameList{L"c", L"a", L"d", L"b", L"e"}), Names(L"\\dir\\*.*"));
    device().Set("order", "reversed");
    EXPECT_EQ((NameList{L"e", L"b", L"d", L"a", L"c"}), Names(L"\\dir\\*.*"));
    device().Set("order", "shuffled:1");
    const NameList one = Names(L"\\dir\\*.*");
    EXPECT_EQ((NameList{L"a", L"b", L"c", L"d", L"e"}), Sorted(one));
    EXPECT_EQ(one, Names(L"\\dir\\*.*"));
    bool differs = false;
    for (int seed = 2; seed < 6; ++seed) {
        device().Set("order", "shuffled:" + std::to_string(seed));
        differs = differs || Names(L"\\dir\\*.*") != one;
    }
    EXPECT_TRUE(differs);
}

TEST_F(SearchTest, AnEntryShowsSizeTimeIdAndAttributes) {
    device().PutFile(L"\\a.txt", "12345");
    device().Touch(L"\\a.txt", 126227808000000000ull);
    const WIN32_FIND_DATAW data = Found(L"\\a.txt");
    EXPECT_EQ(5u, data.nFileSizeLow);
    EXPECT_EQ(0u, data.nFileSizeHigh);
    EXPECT_EQ(0x20u, data.dwFileAttributes);
    EXPECT_EQ(126227808000000000ull, Count(data.ftLastWriteTime));
    EXPECT_EQ(device().Info(L"\\a.txt").oid, data.dwOID);
}

TEST_F(SearchTest, AFileThatGrowsIsShownAtItsSize) {
    HANDLE file = Open(L"\\a.txt", GENERIC_WRITE, FILE_SHARE_READ, CREATE_NEW);
    EXPECT_TRUE(Write(file, "12345"));
    EXPECT_EQ(5u, Found(L"\\a.txt").nFileSizeLow);
    EXPECT_TRUE(::CloseHandle(file));
    EXPECT_EQ(5u, Found(L"\\a.txt").nFileSizeLow);
}

TEST_F(SearchTest, WhatIsDeletedOnTheWayIsLeftOut) {
    PutAll(L"\\dir\\", {L"a", L"b", L"c"});
    WIN32_FIND_DATAW data;
    HANDLE find = ::FindFirstFileW(L"\\dir\\*.*", &data);
    EXPECT_TRUE(::DeleteFileW(L"\\dir\\b"));
    EXPECT_TRUE(::FindNextFileW(find, &data));
    EXPECT_STREQ(L"c", data.cFileName);
    EXPECT_FALSE(::FindNextFileW(find, &data));
    EXPECT_TRUE(::FindClose(find));
}

TEST_F(SearchTest, ASearchIsClosedByItsOwnCall) {
    device().PutFile(L"\\a.txt", "x");
    WIN32_FIND_DATAW data;
    HANDLE find = ::FindFirstFileW(L"\\*.*", &data);
    EXPECT_EQ(ERROR_INVALID_HANDLE, ErrorOf(::CloseHandle(find)));
    EXPECT_TRUE(::FindClose(find));
    EXPECT_EQ(ERROR_INVALID_HANDLE, ErrorOf(::FindClose(find)));
    EXPECT_EQ(ERROR_INVALID_HANDLE, ErrorOf(::FindNextFileW(find, &data)));
}

}  // namespace
}  // namespace tests
