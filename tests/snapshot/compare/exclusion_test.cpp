#include "snapshot/compare/exclusion.h"

#include <gtest/gtest.h>

namespace tolvenar {
namespace {

constexpr StorageFileNames kStorage = {{u"mine.sav", u"mine.jrn", u"mine.jrn_1"},
                                       u"\\My Documents\\Backup"};

bool File(const char16_t* folder, const char16_t* name) {
    return IsExcluded(ExclusionKind::kFile, folder, name, &kStorage);
}
bool Key(const char16_t* path) {
    return IsExcluded(ExclusionKind::kRegistryKey, path, nullptr, nullptr);
}
bool Value(const char16_t* path, const char16_t* name) {
    return IsExcluded(ExclusionKind::kRegistryValue, path, name, nullptr);
}

TEST(ExclusionTest, FilesByNameAndFolder) {
    EXPECT_TRUE(File(u"\\Windows", u"wince.nls"));
    EXPECT_FALSE(File(u"\\Temp", u"wince.nls"));
    EXPECT_FALSE(File(u"", u"wince.nls"));
    EXPECT_FALSE(File(u"\\Windows\\Sub", u"wince.nls"));
    EXPECT_TRUE(File(u"\\Windows\\Activesync", u"SchedSync.dat"));
    EXPECT_FALSE(File(u"\\Windows", u"SchedSync.dat"));
    EXPECT_FALSE(File(u"\\Windows\\Activesync\\x", u"SchedSync.dat"));
}

TEST(ExclusionTest, FilesByNameInAnyFolder) {
    for (const char16_t* name : {u"Storage.bkp", u"Journal.bkp", u"Journal1.bkp", u"Recycled",
                                 u"new_expl.exe", u"mine.sav", u"mine.jrn", u"mine.jrn_1"}) {
        EXPECT_TRUE(File(u"", name));
        EXPECT_TRUE(File(u"\\My Documents", name));
    }
    EXPECT_FALSE(File(u"", u"Storage.bkp2"));
    EXPECT_FALSE(File(u"", u"aStorage.bkp"));
    EXPECT_FALSE(File(u"", u"other.sav"));
    EXPECT_FALSE(File(u"", u""));
}

TEST(ExclusionTest, FilesByTheBeginningOfTheirFolder) {
    // No separator is asked for behind the name.
    for (const char16_t* folder :
         {u"\\Recycled", u"\\Recycled\\deep\\down", u"\\RecycledStuff", u"\\mine.sav",
          u"\\mine.sav\\x", u"\\mine.savings", u"\\mine.jrn", u"\\mine.jrn_1"}) {
        EXPECT_TRUE(File(folder, u"a.txt"));
    }
    for (const char16_t* folder :
         {u"\\My Documents\\Recycled", u"Recycled", u"\\Recycle", u"\\My Documents\\mine.sav",
          u"mine.sav", u"/mine.sav", u"\\mine.sa"}) {
        EXPECT_FALSE(File(folder, u"a.txt"));
    }
}

TEST(ExclusionTest, TheCaseOfLettersMatters) {
    EXPECT_FALSE(File(u"\\windows", u"wince.nls"));
    EXPECT_FALSE(File(u"\\Windows", u"Wince.nls"));
    EXPECT_FALSE(File(u"", u"recycled"));
    EXPECT_FALSE(File(u"\\recycled", u"a.txt"));
    EXPECT_FALSE(Key(u"drivers\\active"));
    EXPECT_FALSE(Value(u"Comm\\SecurityProviders\\Schannel", u"Seed"));
    EXPECT_FALSE(IsExcludedDatabase(u"\\recycleinfo"));
}

// The device finds the storage's files whatever the case: "Mine" chosen where "mine.sav" is.
TEST(ExclusionTest, TheCaseOfLettersInTheStoragesOwnNamesDoesNotMatter) {
    for (const char16_t* name : {u"Mine.sav", u"MINE.JRN", u"mine.Jrn_1", u"Mine.jrn_old"}) {
        EXPECT_TRUE(File(u"\\My Documents", name));
    }
    EXPECT_TRUE(File(u"\\MINE.SAV", u"a.txt"));
    EXPECT_FALSE(File(u"", u"Mine.sav2"));
}

TEST(ExclusionTest, JournalsThatWereMovedAsideByTheirNumber) {
    for (const char16_t* name : {u"mine.jrn_old", u"mine.jrn_old2", u"mine.jrn_old1234567890"}) {
        EXPECT_TRUE(File(u"", name));
        EXPECT_TRUE(File(u"\\My Documents", name));
    }
    for (const char16_t* name :
         {u"mine.jrn_ol", u"mine.jrn_older", u"mine.jrn_old2x", u"mine.jrn_old 2", u"mine.sav_old",
          u"mine.jrn_1_old", u"other.jrn_old", u"mine.jrn_2"}) {
        EXPECT_FALSE(File(u"", name));
    }
    // Only the three names exclude what is in a folder.
    EXPECT_FALSE(File(u"\\My Documents\\mine.jrn_old", u"a.txt"));
}

TEST(ExclusionTest, TheLogInTheStoragesFolderOnly) {
    EXPECT_TRUE(File(u"\\My Documents\\Backup", u"tolvenar_log.txt"));
    EXPECT_TRUE(File(u"\\my documents\\BACKUP", u"Tolvenar_Log.txt"));
    EXPECT_FALSE(File(u"\\My Documents", u"tolvenar_log.txt"));
    EXPECT_FALSE(File(u"\\My Documents\\Backup\\Sub", u"tolvenar_log.txt"));
    EXPECT_FALSE(File(u"", u"tolvenar_log.txt"));
    EXPECT_FALSE(File(u"\\My Documents\\Backup", u"tolvenar_log2.txt"));
    // Of a storage in the root.
    const StorageFileNames in_root = {{u"mine.sav", u"mine.jrn", u"mine.jrn_1"}, u""};
    EXPECT_TRUE(IsExcluded(ExclusionKind::kFile, u"", u"tolvenar_log.txt", &in_root));
}

TEST(ExclusionTest, StorageNamesAreReadAtEveryCall) {
    const StorageFileNames other = {{u"other.sav", u"other.jrn", u"other.jrn_1"}};
    EXPECT_TRUE(IsExcluded(ExclusionKind::kFile, u"", u"other.sav", &other));
    EXPECT_FALSE(IsExcluded(ExclusionKind::kFile, u"", u"mine.sav", &other));
}

TEST(ExclusionTest, AbsentOrEmptyStorageNamesExcludeNothing) {
    const StorageFileNames none = {{nullptr, u"", u""}};
    EXPECT_FALSE(IsExcluded(ExclusionKind::kFile, u"\\My Documents", u"a.txt", &none));
    EXPECT_FALSE(IsExcluded(ExclusionKind::kFile, u"\\My Documents", u"", &none));
    EXPECT_FALSE(IsExcluded(ExclusionKind::kFile, u"\\My Documents", u"a.txt", nullptr));
    EXPECT_FALSE(IsExcluded(ExclusionKind::kFile, u"", u"_old", &none));
    EXPECT_TRUE(IsExcluded(ExclusionKind::kFile, u"", u"Recycled", nullptr));
}

TEST(ExclusionTest, KeysThatContainARulesText) {
    for (const char16_t* path :
         {u"Drivers\\Active", u"Drivers\\Active\\07", u"My\\Drivers\\ActiveThings",
          u"Comm\\Tcpip\\Hosts\\ppp_peer", u"Comm\\Tcpip\\Hosts\\ppp_peer\\x"}) {
        EXPECT_TRUE(Key(path));
    }
    for (const char16_t* path : {u"Drivers", u"Comm\\Tcpip\\Hosts", u""}) {
        EXPECT_FALSE(Key(path));
    }
}

TEST(ExclusionTest, MachineValuesByKeyPathAndName) {
    EXPECT_TRUE(Value(u"Comm\\SecurityProviders\\SCHANNEL", u"Seed"));
    EXPECT_TRUE(Value(u"Comm\\SecurityProviders\\SCHANNEL", u"RNG"));
    EXPECT_FALSE(Value(u"Comm\\SecurityProviders\\SCHANNEL", u"Other"));
    EXPECT_FALSE(Value(u"Comm\\SecurityProviders\\SCHANNEL\\x", u"Seed"));
    EXPECT_FALSE(Value(u"Comm\\SecurityProviders\\SCHANNEL", nullptr));
    EXPECT_FALSE(Value(nullptr, u"Seed"));
}

TEST(ExclusionTest, TheMachinesValuesAreNotInTheTableForAllHives) {
    EXPECT_FALSE(IsExcludedValue(kHiveCurrentUser, u"Comm\\SecurityProviders\\SCHANNEL", u"Seed"));
    EXPECT_FALSE(IsExcludedValue(kHiveLocalMachine, u"Comm\\SecurityProviders\\SCHANNEL", u"Seed"));
}

TEST(ExclusionTest, ValuesOfTheTableForAllHives) {
    const struct {
        std::uint32_t hive;
        const char16_t* key_path;
        const char16_t* name;
    } rows[] = {{0x80000001, u"Software\\Microsoft\\AirSync\\Connection", u"LastAutoSyncTime"},
                {0x80000002, u"SOFTWARE\\Microsoft\\Shell\\Rai\\:MSSHELL32", u"4"}};
    for (const auto& row : rows) {
        EXPECT_TRUE(IsExcludedValue(row.hive, row.key_path, row.name));
        EXPECT_FALSE(IsExcludedValue(0x80000003, row.key_path, row.name));
        EXPECT_FALSE(IsExcludedValue(row.hive, u"Software", row.name));
        EXPECT_FALSE(IsExcludedValue(row.hive, row.key_path, u"other"));
        // A key has no value name.
        EXPECT_FALSE(IsExcludedValue(row.hive, row.key_path, nullptr));
        EXPECT_FALSE(IsExcludedValue(row.hive, nullptr, row.name));
        EXPECT_FALSE(IsExcludedValue(0, row.key_path, row.name));
    }
}

TEST(ExclusionTest, ARegistryObjectByAllRulesForItsHive) {
    const char16_t* schannel = u"Comm\\SecurityProviders\\SCHANNEL";
    EXPECT_TRUE(IsExcludedRegistryObject(0x80000002, schannel, u"Seed"));
    EXPECT_FALSE(IsExcludedRegistryObject(0x80000001, schannel, u"Seed"));
    EXPECT_FALSE(IsExcludedRegistryObject(0x80000002, schannel, nullptr));
    EXPECT_TRUE(IsExcludedRegistryObject(0x80000002, u"Drivers\\Active\\07", nullptr));
    EXPECT_TRUE(IsExcludedRegistryObject(0x80000002, u"Drivers\\Active\\07", u"v"));
    EXPECT_FALSE(IsExcludedRegistryObject(0x80000001, u"Drivers\\Active\\07", u"v"));
    EXPECT_TRUE(IsExcludedRegistryObject(0x80000001, u"Software\\Microsoft\\AirSync\\Connection",
                                         u"LastAutoSyncTime"));
}

TEST(ExclusionTest, DatabasesOfTheRecycleBin) {
    EXPECT_TRUE(IsExcludedDatabase(u"\\RecycleInfo"));
    EXPECT_TRUE(IsExcludedDatabase(u"My\\RecycleInfo2"));
    EXPECT_FALSE(IsExcludedDatabase(u"RecycleInfo"));
    EXPECT_FALSE(IsExcludedDatabase(u"Contacts Database"));
    EXPECT_FALSE(IsExcludedDatabase(u""));
    EXPECT_FALSE(IsExcludedDatabase(nullptr));
}

TEST(StoragesOwnTest, ItsFilesInAnyFolderAndItsLogBesideThem) {
    const StorageFileNames names{{u"Home.sav", u"Home.jrn", u"Home.jrn_1"}, u"\\Card\\Backup"};
    for (const char16_t* own :
         {u"\\Card\\Backup\\Home.sav", u"\\HOME.SAV", u"\\Old\\home.jrn", u"\\Home.jrn_1",
          u"\\Home.jrn_old", u"\\Home.jrn_old12", u"\\card\\backup\\Tolvenar_Log.txt"}) {
        EXPECT_TRUE(IsStoragesOwn(own, names)) << own;
    }
    for (const char16_t* other :
         {u"\\Home.sav2", u"\\My Home.sav", u"\\tolvenar_log.txt", u"\\Home.jrn_old1x", u"Home.sav",
          u"\\Storage.bkp", u"\\Windows\\wince.nls"}) {
        EXPECT_FALSE(IsStoragesOwn(other, names)) << other;
    }
}

}  // namespace
}  // namespace tolvenar
