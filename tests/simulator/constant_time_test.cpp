// What a call costs beside many objects, counted as entries of the device's state that are looked
// at.
#include <functional>
#include <map>
#include <string>

#include "simulator/host/attach.h"
#include "tests/simulator/file_helpers.h"
#include "tests/simulator/record_helpers.h"

namespace {

using namespace tests;

constexpr int kFew = 10;
constexpr int kMany = 300;
constexpr CEPROPID kUniqueId = kDwordId;

class ConstantTimeTest : public RecordFixture {
protected:
    ConstantTimeTest() {
        Fill(0, kFew);
        database_ = Create(L"Numbers", {{kNumberId, 0}, {kUniqueId, CEDB_SORT_UNIQUE}});
        FillDatabase(0, kFew);
        ::RegCreateKeyExW(HKEY_USERS, L"Key", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key_,
                          nullptr);
        FillKey(0, kFew);
    }
    void TearDown() override {
        ::RegCloseKey(key_);
        RecordFixture::TearDown();
    }

    void Grow() {
        Fill(kFew, kMany);
        FillDatabase(kFew, kMany);
        FillKey(kFew, kMany);
    }
    // Entries that the second of two equal calls looks at: the first may list what is kept then.
    static unsigned long Steps(const std::function<void()>& call) {
        call();
        const unsigned long before = sim::host::StepsOfCoredll();
        call();
        return sim::host::StepsOfCoredll() - before;
    }
    void Describe(CEOID oid) {
        CEOIDINFO info{};
        EXPECT_TRUE(::CeOidGetInfoEx(&store_, oid, &info));
    }
    HKEY key() const { return key_; }
    CEOID database() const { return database_; }
    DWORD NewNumber() { return ++number_; }

private:
    void Fill(int begin, int end) {
        for (int i = begin; i < end; ++i) {
            device().PutFile(L"\\Folder\\" + std::to_wstring(i), "content");
            Create((L"Database " + std::to_wstring(i)).c_str());
        }
    }
    void FillDatabase(int begin, int end) {
        const OpenedDatabase opened = Open(database_);
        for (int i = begin; i < end; ++i) {
            Write(opened, {Number(static_cast<LONG>(NewNumber())),
                           Number(static_cast<LONG>(NewNumber()), kUniqueId)});
        }
    }
    void FillKey(int begin, int end) {
        for (int i = begin; i < end; ++i) {
            const std::wstring name = L"Value " + std::to_wstring(i);
            ::RegSetValueExW(key_, name.c_str(), 0, REG_BINARY, nullptr, 0);
            HKEY below = nullptr;
            ::RegCreateKeyExW(key_, name.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &below,
                              nullptr);
            ::RegCloseKey(below);
        }
    }

    HKEY key_ = nullptr;
    CEOID database_ = 0;
    DWORD number_ = 0;
};

void MakeAndDeleteFile() {
    HANDLE file = Open(L"\\Folder\\new", GENERIC_WRITE, 0, CREATE_ALWAYS);
    Write(file, "some bytes");
    ::CloseHandle(file);
    ::DeleteFileW(L"\\Folder\\new");
}

TEST_F(ConstantTimeTest, ACallLooksAtAsMuchBesideManyObjectsAsBesideFew) {
    const CEOID file = Found(L"\\Folder\\3").dwOID;
    const OpenedDatabase by_number = Open(database(), 0, kNumberId);
    CEOID record = Seek(by_number, CEDB_SEEK_BEGINNING);
    const std::map<std::string, std::function<void()>> calls = {
        {"attributes by path", [] { ::GetFileAttributesW(L"\\Folder\\3"); }},
        {"an entry by path", [] { Found(L"\\Folder\\3"); }},
        {"a file that comes and goes", MakeAndDeleteFile},
        {"a file's attributes", [] { ::SetFileAttributesW(L"\\Folder\\3", 0x20); }},
        {"a file's name",
         [] {
             ::MoveFileW(L"\\Folder\\3", L"\\Folder\\a");
             ::MoveFileW(L"\\Folder\\a", L"\\Folder\\3");
         }},
        {"a file by id", [&] { Describe(file); }},
        {"a database by id", [&] { Describe(database()); }},
        {"a record by id", [&] { Describe(record); }},
        {"a database by name",
         [&] {
             CEOID oid = 0;
             wchar_t name[] = L"Numbers";
             OpenedDatabase(::CeOpenDatabaseEx(&store_, &oid, name, 0, 0, nullptr));
         }},
        {"a record that comes and goes",
         [&] {
             const OpenedDatabase opened = Open(database());
             const CEOID made =
                 Write(opened, {Number(5), Number(static_cast<LONG>(NewNumber()), kUniqueId)});
             ::CeDeleteRecord(opened.get(), made);
         }},
        {"a record by value", [&] { Seek(by_number, CEDB_SEEK_VALUEFIRSTEQUAL, Number(7)); }},
        {"a record's place", [&] { Seek(Open(database()), CEDB_SEEK_CEOID, record); }},
        {"the next record",
         [&] {
             const OpenedDatabase opened = Open(database());
             Write(opened, {Number(1)}, record);
             Read(opened);
         }},
        {"a value",
         [&] {
             ::RegSetValueExW(key(), L"new", 0, REG_BINARY, nullptr, 0);
             ::RegQueryValueExW(key(), L"new", nullptr, nullptr, nullptr, nullptr);
             ::RegDeleteValueW(key(), L"new");
         }},
        {"a key",
         [&] {
             HKEY made = nullptr;
             ::RegCreateKeyExW(key(), L"new", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &made,
                               nullptr);
             ::RegCloseKey(made);
             ::RegDeleteKeyW(key(), L"new");
         }},
        {"memory",
         [] {
             MEMORYSTATUS status{};
             ::GlobalMemoryStatus(&status);
         }},
    };
    std::map<std::string, unsigned long> beside_few;
    for (const auto& [name, call] : calls) {
        beside_few[name] = Steps(call);
    }
    Grow();
    for (const auto& [name, call] : calls) {
        EXPECT_EQ(beside_few[name], Steps(call)) << name;
        EXPECT_LT(0u, beside_few[name]) << name;
    }
}

// Sizes lie in groups of 64 places. One that changed costs a look at its group and at the groups
// beside it, of which there are 64 at most on each level.
TEST_F(ConstantTimeTest, FreeRoomCostsGroupsAndNoWalk) {
    constexpr unsigned long kAsking = 20;
    constexpr unsigned long kGroups = 5;
    const auto ask = [] {
        STORE_INFORMATION store{};
        EXPECT_TRUE(::GetStoreInformation(&store));
        ULARGE_INTEGER free{};
        EXPECT_TRUE(::GetDiskFreeSpaceExW(L"\\Storage Card", &free, nullptr, nullptr));
    };
    Grow();
    EXPECT_GE(kAsking, Steps(ask));
    const unsigned long changing = Steps(MakeAndDeleteFile);
    const auto change_and_ask = [&] {
        MakeAndDeleteFile();
        ask();
    };
    EXPECT_GE(changing + kAsking + 64 + kGroups, Steps(change_and_ask));
}

}  // namespace
