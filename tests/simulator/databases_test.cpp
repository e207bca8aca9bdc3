// Databases as a program sees them: which there are, opening, describing and deleting them.
#include <cstring>
#include <string>
#include <vector>
#include <windbase.h>
#include <windows.h>

#include "simulator/databases/database_store.h"
#include "tests/support/child_role.h"
#include "tests/support/device_test.h"

namespace {

using tests::DeviceTest;

constexpr CEPROPID kName = (1u << 16) | CEVT_LPWSTR;
constexpr CEPROPID kNumber = (2u << 16) | CEVT_I4;
constexpr CEPROPID kBlobId = (3u << 16) | CEVT_BLOB;

// Holds the database of that name open.
const tests::ChildRole kDatabaseHolder(L"hold database", [](const wchar_t* name) {
    CEGUID store;
    CREATE_SYSTEMGUID(&store);
    CEOID oid = 0;
    HANDLE database = ::CeOpenDatabaseEx(&store, &oid, const_cast<wchar_t*>(name), 0, 0, nullptr);
    if (database == INVALID_HANDLE_VALUE) {
        return 1;
    }
    sim::host::TellReady();
    sim::host::WaitForParent();
    return ::CloseHandle(database) ? 0 : 2;
});

class DatabasesTest : public DeviceTest {
protected:
    DatabasesTest() {
        CREATE_SYSTEMGUID(&store_);
        CREATE_INVALIDGUID(&any_);
    }

    CEDBASEINFO Info(const wchar_t* name, DWORD type = 7) {
        CEDBASEINFO info{};
        info.dwFlags = CEDB_VALIDCREATE;
        std::wcsncpy(info.szDbaseName, name, CEDB_MAXDBASENAMELEN - 1);
        info.dwDbaseType = type;
        return info;
    }
    CEOID Create(const wchar_t* name, DWORD type = 7) {
        CEDBASEINFO info = Info(name, type);
        return ::CeCreateDatabaseEx(&store_, &info);
    }
    HANDLE Open(CEOID oid) { return ::CeOpenDatabaseEx(&store_, &oid, nullptr, 0, 0, nullptr); }
    CEDBASEINFO Described(CEOID oid) {
        CEOIDINFO info{};
        EXPECT_TRUE(::CeOidGetInfoEx(&store_, oid, &info));
        EXPECT_EQ(OBJTYPE_DATABASE, info.wObjType);
        return info.infDatabase;
    }
    std::vector<CEOID> Enumerate(DWORD type) {
        std::vector<CEOID> oids;
        HANDLE search = ::CeFindFirstDatabaseEx(&store_, type);
        while (const CEOID oid = ::CeFindNextDatabaseEx(search, nullptr)) {
            oids.push_back(oid);
        }
        EXPECT_EQ(static_cast<DWORD>(ERROR_NO_MORE_ITEMS), ::GetLastError());
        EXPECT_TRUE(::CloseHandle(search));
        return oids;
    }
    static DWORD LastError() { return ::GetLastError(); }

    CEGUID store_;
    CEGUID any_;
};

TEST_F(DatabasesTest, AnIdIsNeverGivenAgain) {
    const CEOID first = Create(L"a");
    EXPECT_NE(0u, first);
    EXPECT_TRUE(::CeDeleteDatabaseEx(&store_, first));
    EXPECT_LT(first, Create(L"a"));
}

TEST_F(DatabasesTest, WhatWasGivenIsDescribed) {
    CEDBASEINFO info = Info(L"Contacts", 24);
    info.dwFlags |= CEDB_NOCOMPRESS;
    info.wNumSortOrder = 2;
    info.rgSortSpecs[0] = {kName, CEDB_SORT_CASEINSENSITIVE};
    info.rgSortSpecs[1] = {kNumber, CEDB_SORT_DESCENDING};
    const CEDBASEINFO read = Described(::CeCreateDatabaseEx(&store_, &info));
    EXPECT_STREQ(L"Contacts", read.szDbaseName);
    EXPECT_EQ(24u, read.dwDbaseType);
    EXPECT_EQ(0u, read.wNumRecords);
    EXPECT_EQ(2u, read.wNumSortOrder);
    EXPECT_EQ(kNumber, read.rgSortSpecs[1].propid);
    EXPECT_EQ(static_cast<DWORD>(CEDB_SORT_DESCENDING), read.rgSortSpecs[1].dwFlags);
    EXPECT_EQ(static_cast<DWORD>(CEDB_NOCOMPRESS), read.dwFlags & CEDB_NOCOMPRESS);
    EXPECT_EQ(0u, read.dwFlags & CEDB_SYSTEMDB);
}

TEST_F(DatabasesTest, OnlyFieldsMarkedAsValidCount) {
    CEDBASEINFO info = Info(L"a", 24);
    info.dwFlags = CEDB_VALIDNAME;
    info.wNumSortOrder = 5;
    const CEDBASEINFO read = Described(::CeCreateDatabaseEx(&store_, &info));
    EXPECT_EQ(0u, read.dwDbaseType);
    EXPECT_EQ(0u, read.wNumSortOrder);
}

TEST_F(DatabasesTest, WhatCannotBeIsRefused) {
    CEDBASEINFO info = Info(L"");
    EXPECT_EQ(0u, ::CeCreateDatabaseEx(&store_, &info));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), LastError());
    info = Info(L"a");
    EXPECT_EQ(0u, ::CeCreateDatabaseEx(&any_, &info));
    EXPECT_EQ(0u, ::CeCreateDatabaseEx(nullptr, &info));
    EXPECT_EQ(0u, ::CeCreateDatabaseEx(&store_, nullptr));
    info.wNumSortOrder = 5;
    EXPECT_EQ(0u, ::CeCreateDatabaseEx(&store_, &info));
    info.wNumSortOrder = 1;
    info.rgSortSpecs[0] = {kBlobId, 0};
    EXPECT_EQ(0u, ::CeCreateDatabaseEx(&store_, &info));
    info = Info(L"a");
    std::wmemset(info.szDbaseName, L'n', CEDB_MAXDBASENAMELEN);
    EXPECT_EQ(0u, ::CeCreateDatabaseEx(&store_, &info));
    EXPECT_TRUE(Enumerate(0).empty());
}

TEST_F(DatabasesTest, AFullStoreRefusesANewOne) {
    CEDBASEINFO info = Info(L"a");
    device().Set("store.free", "10");
    EXPECT_EQ(0u, ::CeCreateDatabaseEx(&store_, &info));
    EXPECT_EQ(static_cast<DWORD>(ERROR_DISK_FULL), LastError());
    EXPECT_TRUE(Enumerate(0).empty());
}

TEST_F(DatabasesTest, ANameIsTakenOnceWhateverItsCase) {
    Create(L"Notes");
    EXPECT_EQ(0u, Create(L"NOTES"));
    EXPECT_EQ(static_cast<DWORD>(ERROR_DUP_NAME), LastError());
    device().Set("database.duplicate", "183");
    EXPECT_EQ(0u, Create(L"Notes"));
    EXPECT_EQ(static_cast<DWORD>(ERROR_ALREADY_EXISTS), LastError());
}

TEST_F(DatabasesTest, OpeningByNameTellsTheId) {
    const CEOID oid = Create(L"Notes");
    wchar_t name[] = L"notes";
    CEOID found = 0;
    HANDLE database = ::CeOpenDatabaseEx(&store_, &found, name, 0, 0, nullptr);
    EXPECT_EQ(oid, found);
    EXPECT_TRUE(::CloseHandle(database));
    EXPECT_FALSE(::CloseHandle(database));
    database = ::CeOpenDatabaseEx(&any_, nullptr, name, 0, 0, nullptr);
    EXPECT_TRUE(::CloseHandle(database));
}

TEST_F(DatabasesTest, OpeningWhatIsNotThereGivesTheInvalidHandle) {
    wchar_t name[] = L"none";
    CEOID oid = 0;
    EXPECT_EQ(INVALID_HANDLE_VALUE, ::CeOpenDatabaseEx(&store_, &oid, name, 0, 0, nullptr));
    EXPECT_EQ(static_cast<DWORD>(ERROR_FILE_NOT_FOUND), LastError());
    EXPECT_EQ(INVALID_HANDLE_VALUE, Open(4711));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), LastError());
    oid = Create(L"a");
    EXPECT_EQ(INVALID_HANDLE_VALUE, ::CeOpenDatabaseEx(&store_, &oid, nullptr, kName, 0, nullptr));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), LastError());
    EXPECT_EQ(INVALID_HANDLE_VALUE, ::CeOpenDatabaseEx(nullptr, &oid, nullptr, 0, 0, nullptr));
}

TEST_F(DatabasesTest, AnIdIsOpenedWhateverTheNameSays) {
    CEOID oid = Create(L"a");
    Create(L"b");
    wchar_t name[] = L"b";
    HANDLE database = ::CeOpenDatabaseEx(&store_, &oid, name, 0, 0, nullptr);
    EXPECT_STREQ(L"a", Described(oid).szDbaseName);
    ::CloseHandle(database);
}

TEST_F(DatabasesTest, AnOpenDatabaseRefusesItsDeletion) {
    const CEOID oid = Create(L"a");
    HANDLE first = Open(oid);
    HANDLE second = Open(oid);
    EXPECT_FALSE(::CeDeleteDatabaseEx(&store_, oid));
    EXPECT_EQ(static_cast<DWORD>(ERROR_SHARING_VIOLATION), LastError());
    ::CloseHandle(first);
    EXPECT_FALSE(::CeDeleteDatabaseEx(&store_, oid));
    ::CloseHandle(second);
    EXPECT_TRUE(::CeDeleteDatabaseEx(&store_, oid));
    EXPECT_FALSE(::CeDeleteDatabaseEx(&store_, oid));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), LastError());
}

TEST_F(DatabasesTest, ADatabaseOpenInAnotherProcessRefusesItsDeletion) {
    const CEOID oid = Create(L"Held");
    {
        sim::host::Child holder(L"hold database", L"Held");
        ASSERT_TRUE(holder.WaitReady());
        EXPECT_FALSE(::CeDeleteDatabaseEx(&store_, oid));
        EXPECT_EQ(static_cast<DWORD>(ERROR_SHARING_VIOLATION), LastError());
        EXPECT_EQ(0, holder.Finish());
    }
    EXPECT_TRUE(::CeDeleteDatabaseEx(&store_, oid));
}

TEST_F(DatabasesTest, AKilledProcessHoldsNoDatabase) {
    const CEOID oid = Create(L"Held");
    sim::host::Child holder(L"hold database", L"Held");
    ASSERT_TRUE(holder.WaitReady());
    holder.Kill();
    EXPECT_TRUE(::CeDeleteDatabaseEx(&store_, oid));
}

TEST_F(DatabasesTest, EnumerationGoesByTypeAndEndsWithNoMoreItems) {
    const CEOID a = Create(L"a", 1);
    const CEOID b = Create(L"b", 2);
    const CEOID c = Create(L"c", 0);
    EXPECT_EQ((std::vector<CEOID>{a, b, c}), Enumerate(0));
    EXPECT_EQ(std::vector<CEOID>{b}, Enumerate(2));
    device().Set("order", "reversed");
    EXPECT_EQ((std::vector<CEOID>{c, b, a}), Enumerate(0));
}

TEST_F(DatabasesTest, EnumerationTellsTheVolume) {
    Create(L"a");
    HANDLE search = ::CeFindFirstDatabaseEx(&any_, 0);
    CEGUID volume = any_;
    EXPECT_NE(0u, ::CeFindNextDatabaseEx(search, &volume));
    EXPECT_EQ(0u, volume.Data1 | volume.Data2 | volume.Data3 | volume.Data4);
    ::CloseHandle(search);
    EXPECT_EQ(0u, ::CeFindNextDatabaseEx(search, &volume));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), LastError());
    volume.Data1 = 1;
    EXPECT_EQ(INVALID_HANDLE_VALUE, ::CeFindFirstDatabaseEx(&volume, 0));
}

TEST_F(DatabasesTest, ADeletionEndsEveryEnumeration) {
    const CEOID a = Create(L"a");
    Create(L"b");
    HANDLE search = ::CeFindFirstDatabaseEx(&store_, 0);
    EXPECT_EQ(a, ::CeFindNextDatabaseEx(search, nullptr));
    EXPECT_TRUE(::CeDeleteDatabaseEx(&store_, a));
    EXPECT_EQ(0u, ::CeFindNextDatabaseEx(search, nullptr));
    EXPECT_EQ(static_cast<DWORD>(ERROR_KEY_DELETED), LastError());
    ::CloseHandle(search);
    EXPECT_EQ(1u, Enumerate(0).size());
}

TEST_F(DatabasesTest, InfoIsSetFieldByField) {
    const CEOID oid = Create(L"a", 3);
    Create(L"taken");
    CEDBASEINFO info = Info(L"b", 9);
    info.dwFlags = CEDB_VALIDNAME | CEDB_VALIDMODTIME;
    info.ftLastModified = {5, 6};
    EXPECT_TRUE(::CeSetDatabaseInfoEx(&store_, oid, &info));
    EXPECT_STREQ(L"b", Described(oid).szDbaseName);
    EXPECT_EQ(3u, Described(oid).dwDbaseType);
    EXPECT_EQ(6u, Described(oid).ftLastModified.dwHighDateTime);
    info = Info(L"taken");
    EXPECT_FALSE(::CeSetDatabaseInfoEx(&store_, oid, &info));
    EXPECT_EQ(static_cast<DWORD>(ERROR_DUP_NAME), LastError());
    EXPECT_FALSE(::CeSetDatabaseInfoEx(&store_, 4711, &info));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), LastError());
}

TEST_F(DatabasesTest, AnIdLeadsToAFileOrAFolder) {
    device().PutFile(L"\\Docs\\a.txt", "12345");
    CEOIDINFO info{};
    const CEOID file = device().Info(L"\\Docs\\a.txt").oid;
    const CEOID folder = device().Info(L"\\Docs").oid;
    ASSERT_TRUE(::CeOidGetInfoEx(&store_, file, &info));
    EXPECT_EQ(OBJTYPE_FILE, info.wObjType);
    EXPECT_STREQ(L"\\Docs\\a.txt", info.infFile.szFileName);
    EXPECT_EQ(5u, info.infFile.dwLength);
    EXPECT_EQ(folder, info.infFile.oidParent);
    EXPECT_EQ(device().Info(L"\\Docs\\a.txt").attributes, info.infFile.dwAttributes);
    ASSERT_TRUE(::CeOidGetInfoEx(&store_, folder, &info));
    EXPECT_EQ(OBJTYPE_DIRECTORY, info.wObjType);
    EXPECT_STREQ(L"\\Docs", info.infDirectory.szDirName);
}

TEST_F(DatabasesTest, AnUnknownIdIsAnInvalidHandle) {
    CEOIDINFO info{};
    for (const CEOID oid : {CEOID{0}, CEOID{4711}, CEOID{0xFFFFFFFF}}) {
        EXPECT_FALSE(::CeOidGetInfoEx(&store_, oid, &info));
        EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_HANDLE), LastError());
    }
    EXPECT_FALSE(::CeOidGetInfoEx(&store_, 1, nullptr));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), LastError());
}

// Both may write the volume's id, as is documented: a caller that hands on what it got back asks
// for another volume.
TEST_F(DatabasesTest, TheVolumesIdMayBeWritten) {
    CEOID oid = Create(L"First");
    for (const bool is_written : {false, true}) {
        device().Set("database.volume", is_written ? "written" : "kept");
        CEGUID volume = store_;
        const HANDLE database = ::CeOpenDatabaseEx(&volume, &oid, nullptr, 0, 0, nullptr);
        ASSERT_NE(INVALID_HANDLE_VALUE, database);
        ::CloseHandle(database);
        EXPECT_EQ(is_written, std::memcmp(&volume, &store_, sizeof volume) != 0);
        volume = store_;
        const HANDLE search = ::CeFindFirstDatabaseEx(&volume, 0);
        EXPECT_EQ(oid, ::CeFindNextDatabaseEx(search, &volume));
        ::CloseHandle(search);
        EXPECT_EQ(is_written, std::memcmp(&volume, &store_, sizeof volume) != 0);
    }
}

// Told for some versions only: the sort orders of an open database stay as they are.
TEST_F(DatabasesTest, SortOrdersOfAnOpenDatabaseMayBeRefused) {
    const CEOID oid = Create(L"First");
    CEDBASEINFO info{};
    info.dwFlags = CEDB_VALIDSORTSPEC;
    info.wNumSortOrder = 1;
    info.rgSortSpecs[0] = {kNumber, 0};
    HANDLE database = Open(oid);
    device().Set("database.info.open", "refused");
    EXPECT_FALSE(::CeSetDatabaseInfoEx(&store_, oid, &info));
    EXPECT_EQ(static_cast<DWORD>(ERROR_SHARING_VIOLATION), ::GetLastError());
    ::CloseHandle(database);
    EXPECT_TRUE(::CeSetDatabaseInfoEx(&store_, oid, &info));
}

TEST_F(DatabasesTest, UniqueSortOrdersMayBeRefused) {
    CEDBASEINFO info = Info(L"First");
    info.wNumSortOrder = 1;
    info.rgSortSpecs[0] = {kNumber, CEDB_SORT_UNIQUE};
    device().Set("database.unique", "refused");
    EXPECT_EQ(0u, ::CeCreateDatabaseEx(&store_, &info));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), ::GetLastError());
    const CEOID oid = Create(L"First");
    EXPECT_FALSE(::CeSetDatabaseInfoEx(&store_, oid, &info));
}

// Whether a database without sort orders tells one of property 0 is open.
TEST_F(DatabasesTest, ASortOrderOfNoPropertyStandsForNone) {
    CEDBASEINFO info = Info(L"First");
    info.wNumSortOrder = 1;
    info.rgSortSpecs[0] = {0, 0};
    const CEOID oid = ::CeCreateDatabaseEx(&store_, &info);
    EXPECT_EQ(0, Described(oid).wNumSortOrder);
    device().Set("database.no.orders", "placeholder");
    EXPECT_EQ(1, Described(oid).wNumSortOrder);
    EXPECT_EQ(0u, Described(oid).rgSortSpecs[0].propid);
}

}  // namespace
