// What the file system of cards does otherwise than the object store: times, flushing, identifiers.
#include <set>
#include <windbase.h>

#include "tests/simulator/file_helpers.h"
#include "tests/support/device_test.h"

namespace tests {
namespace {

constexpr wchar_t kFile[] = L"\\Storage Card\\a.txt";
constexpr wchar_t kStored[] = L"\\a.txt";
constexpr unsigned long long kSecond = 10000000;
constexpr unsigned long long kHour = 3600 * kSecond;

class FatCardTest : public DeviceTest {
protected:
    static unsigned long long TimeOf(const wchar_t* path) {
        return Count(Found(path).ftLastWriteTime);
    }
    static DWORD OidOf(const wchar_t* path) { return Found(path).dwOID; }
};

// It keeps local times of two seconds, and the platform reckons with the present distance from UTC.
TEST_F(FatCardTest, TimesAreOfTwoSecondsAndMoveWithTheZone) {
    device().MakeFolder(L"\\Storage Card\\Folder");
    device().Set("zone", "CET-1");
    device().Set("clock", "2003-02-28T07:30:01.500Z");
    device().Set("card.times", "fat");
    device().PutFile(kFile, "text");
    device().PutFile(kStored, "text");
    const unsigned long long exact = TimeOf(kStored);
    EXPECT_EQ(exact - 3 * kSecond / 2, TimeOf(kFile));
    device().Set("zone", "EET-2");
    EXPECT_EQ(exact - 3 * kSecond / 2 - kHour, TimeOf(kFile));
    EXPECT_EQ(exact, TimeOf(kStored));
    device().Set("card.times", "");
}

// A driver need not know flushing; 50 and 120 say so.
TEST_F(FatCardTest, FlushingFailsAsTheDriverHasIt) {
    device().PutFile(kFile, "text");
    device().PutFile(kStored, "text");
    device().Set("card.flush.error", "50");
    for (const wchar_t* path : {kFile, kStored}) {
        HANDLE file = Open(path, GENERIC_WRITE, 0, OPEN_EXISTING);
        EXPECT_EQ(path == kFile ? ERROR_NOT_SUPPORTED : 0, ErrorOf(::FlushFileBuffers(file)));
        ::CloseHandle(file);
    }
}

// From version 3.0 on only the object store's are valid, as is documented; earlier ones gave cards
// some.
TEST_F(FatCardTest, IdentifiersAreNoneAllOnesOrItsOwn) {
    device().PutFile(kFile, "text");
    device().PutFile(L"\\Storage Card\\b.txt", "text");
    device().PutFile(kStored, "text");
    EXPECT_EQ(0u, OidOf(kFile));
    device().Set("card.oid", "ones");
    EXPECT_EQ(0xFFFFFFFFu, OidOf(kFile));
    device().Set("card.oid", "own");
    EXPECT_EQ(
        3u,
        (std::set<DWORD>{OidOf(kFile), OidOf(L"\\Storage Card\\b.txt"), OidOf(kStored)}.size()));
    CEGUID store;
    CREATE_SYSTEMGUID(&store);
    CEOIDINFO info{};
    ASSERT_TRUE(::CeOidGetInfoEx(&store, OidOf(kFile), &info));
    EXPECT_EQ(OBJTYPE_FILE, info.wObjType);
    EXPECT_STREQ(kFile, info.infFile.szFileName);
    EXPECT_FALSE(::CeOidGetInfoEx(&store, 0xFFFFFFFF, &info));
}

}  // namespace
}  // namespace tests
