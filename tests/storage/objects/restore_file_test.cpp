#include "storage/objects/restore_file.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "tests/support/restore_fixture.h"

namespace tolvenar {
namespace {

class RestoreFileTest : public RestoreFixture {
protected:
    // The calls that writing an object back makes: these functions in this order, whatever stands
    // between them, CreateFileW with these arguments.
    void ExpectCalls(const ObjectRecord& record, const Lines& functions,
                     const std::string& arguments) {
        Run();
        const std::string trace = device().Traced("", [&] { EXPECT_EQ(kDone, WriteBack(record)); });
        Lines called;
        for (const auto& line : nlohmann::json::parse(trace)) {
            const std::string function = line["function"];
            if (std::count(functions.begin(), functions.end(), function) != 0) {
                called.push_back(function);
            }
            EXPECT_TRUE(function != "CreateFileW" || line["arguments"] == arguments) << line;
        }
        EXPECT_EQ(functions, called);
    }
};

TEST_F(RestoreFileTest, AFileComesBackWithContentsTimeAttributesAndANewId) {
    const ObjectRecord stored =
        StoreFile(u"\\a.txt", "contents", FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ(kDone, WriteBack(stored));
    EXPECT_EQ("contents", device().FileBytes(L"\\a.txt"));
    const auto file = device().Info(L"\\a.txt");
    EXPECT_EQ(DWORD{FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN}, file.attributes);
    EXPECT_EQ(kSomeTime, file.modified);
    EXPECT_EQ(file.oid, newOid());
    EXPECT_NE(0u, newOid());
}

TEST_F(RestoreFileTest, AFileWithoutContentsComesBackEmpty) {
    const ObjectRecord stored = StoreFile(u"\\empty", "");
    EXPECT_EQ(kNoData, stored.data_offset);
    EXPECT_EQ(kDone, WriteBack(stored));
    EXPECT_EQ("", device().FileBytes(L"\\empty"));
}

TEST_F(RestoreFileTest, AnExistingFileIsReplaced) {
    device().PutFile(L"\\a.txt", "something longer than before");
    EXPECT_EQ(kDone, WriteBack(StoreFile(u"\\a.txt", "short")));
    EXPECT_EQ("short", device().FileBytes(L"\\a.txt"));
}

TEST_F(RestoreFileTest, AFileOfTheRomIsNotWritten) {
    const ObjectRecord in_rom = StoreFile(u"\\rom.dll", "x", FILE_ATTRIBUTE_INROM);
    const ObjectRecord module = StoreFile(u"\\module.dll", "x", FILE_ATTRIBUTE_ROMMODULE);
    EXPECT_EQ(kDone, WriteBack(in_rom));
    EXPECT_EQ(kDone, WriteBack(module));
    EXPECT_FALSE(device().Exists(L"\\rom.dll"));
    EXPECT_FALSE(device().Exists(L"\\module.dll"));
    EXPECT_EQ(0u, newOid());
}

TEST_F(RestoreFileTest, ALockedFileCanBeTriedAgain) {
    device().PutFile(L"\\a.txt", "held");
    const auto lock = device().Lock(L"\\a.txt");
    EXPECT_EQ(kFailed, WriteBack(StoreFile(u"\\a.txt", "new")));
    EXPECT_EQ("held", device().FileBytes(L"\\a.txt"));
    EXPECT_TRUE(LogLines().empty());
}

// Oddity 15: a changed read-only file can neither be deleted nor written over.
TEST_F(RestoreFileTest, AReadOnlyFileStaysAsItIs) {
    device().PutFile(L"\\a.txt", "old");
    device().SetAttributes(L"\\a.txt", FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(kFailed, Delete(LiveFile(L"\\a.txt")));
    EXPECT_EQ("old", device().FileBytes(L"\\a.txt"));
}

TEST_F(RestoreFileTest, AReadOnlyFileIsNotWrittenOver) {
    device().PutFile(L"\\a.txt", "old");
    device().SetAttributes(L"\\a.txt", FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(kFailed, WriteBack(StoreFile(u"\\a.txt", "new")));
    EXPECT_EQ("old", device().FileBytes(L"\\a.txt"));
}

TEST_F(RestoreFileTest, AFailedCopyIsLoggedAsANoteAndTheFileGetsTimeAndAttributesAllTheSame) {
    const ObjectRecord stored = StoreFile(u"\\a.txt", "contents", FILE_ATTRIBUTE_HIDDEN);
    FailInRun("WriteFile", 1, ERROR_DISK_FULL);
    EXPECT_EQ(kFailed, WriteBack(stored));
    EXPECT_EQ(DWORD{ERROR_DISK_FULL}, ::GetLastError());
    EXPECT_EQ((Lines{"I Error: WriteFile:112"}), LogLines());
    const auto file = device().Info(L"\\a.txt");
    EXPECT_EQ(DWORD{FILE_ATTRIBUTE_HIDDEN}, file.attributes);
    EXPECT_EQ(kSomeTime, file.modified);
    EXPECT_EQ(file.oid, newOid());
}

TEST_F(RestoreFileTest, AFileWhoseIdCannotBeToldIsDoneWithoutOne) {
    const ObjectRecord stored = StoreFile(u"\\a.txt", "contents");
    FailInRun("FindFirstFileW", 1, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(kDone, WriteBack(stored));
    EXPECT_EQ(0u, newOid());
}

TEST_F(RestoreFileTest, AFileInAnAbsentFolderFails) {
    EXPECT_EQ(kFailed, WriteBack(StoreFile(u"\\Sub\\a.txt", "x")));
}

TEST_F(RestoreFileTest, AFolderComesBackWithItsAttributesAndANewId) {
    const ObjectRecord stored =
        StoreFolder(u"\\Sub", FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ(kDone, WriteBack(stored));
    const auto folder = device().Info(L"\\Sub");
    EXPECT_TRUE(folder.is_folder);
    EXPECT_EQ(DWORD{FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN}, folder.attributes);
    EXPECT_EQ(folder.oid, newOid());
    EXPECT_NE(0u, newOid());
}

// Attributes come last: what is read-only cannot be given a time.
TEST_F(RestoreFileTest, AFolderIsOpenedForItsTimeAndClosedBeforeItsAttributesAreSet) {
    // GENERIC_WRITE, shared with nobody, OPEN_EXISTING, the attributes.
    ExpectCalls(StoreFolder(u"\\Sub", FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN),
                {"CreateDirectoryW", "FindFirstFileW", "CreateFileW", "SetFileTime", "CloseHandle",
                 "SetFileAttributesW"},
                "\\Sub, 1073741824, 0, 3, 18");
}

TEST_F(RestoreFileTest, AFileIsClosedBeforeItsAttributesAreSet) {
    // GENERIC_WRITE, shared with nobody, CREATE_ALWAYS.
    ExpectCalls(StoreFile(u"\\a.txt", "x"),
                {"CreateFileW", "WriteFile", "FlushFileBuffers", "SetFileTime", "CloseHandle",
                 "SetFileAttributesW", "FindFirstFileW"},
                "\\a.txt, 1073741824, 0, 2, 128");
}

TEST_F(RestoreFileTest, AllThreeTimesOfAFileAreSet) {
    device().Set("file.times", "separate");
    EXPECT_EQ(kDone, WriteBack(StoreFile(u"\\a.txt", "x")));
    WIN32_FIND_DATAW found{};
    const UniqueFind search(::FindFirstFileW(L"\\a.txt", &found));
    ASSERT_TRUE(search);
    for (const FILETIME& time :
         {found.ftCreationTime, found.ftLastAccessTime, found.ftLastWriteTime}) {
        EXPECT_EQ(kSomeTime, std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime);
    }
}

TEST_F(RestoreFileTest, AFileOfTheLongestPathComesBack) {
    const Text folder = u"\\" + Text(200, u'd');
    const Text path = folder + u"\\" + Text(259 - 202, u'f');
    device().MakeFolder(Wide(folder.c_str()));
    EXPECT_EQ(kDone, WriteBack(StoreFile(path, "contents")));
    EXPECT_EQ("contents", device().FileBytes(Wide(path.c_str())));
    EXPECT_EQ(device().Info(Wide(path.c_str())).oid, newOid());
}

// Oddity 14: a folder whose attributes changed while it has contents is reported.
TEST_F(RestoreFileTest, AFolderThatIsThereFails) {
    device().MakeFolder(L"\\Sub");
    EXPECT_EQ(kFailed, WriteBack(StoreFolder(u"\\Sub")));
}

TEST_F(RestoreFileTest, AFolderInAnAbsentFolderFails) {
    EXPECT_EQ(kFailed, WriteBack(StoreFolder(u"\\Sub\\Below")));
}

TEST_F(RestoreFileTest, AFileIsDeleted) {
    device().PutFile(L"\\a.txt", "x");
    EXPECT_EQ(kDone, Delete(LiveFile(L"\\a.txt")));
    EXPECT_FALSE(device().Exists(L"\\a.txt"));
}

TEST_F(RestoreFileTest, AFileThatIsGoneIsDeleted) {
    const ObjectRecord file = StoreFile(u"\\gone.txt", "x");
    const ObjectRecord folder = StoreFolder(u"\\Gone");
    EXPECT_EQ(kDone, Delete(file));
    EXPECT_EQ(kDone, Delete(folder));
}

TEST_F(RestoreFileTest, ALockedFileIsNotDeleted) {
    device().PutFile(L"\\a.txt", "x");
    const auto lock = device().Lock(L"\\a.txt");
    EXPECT_EQ(kFailed, Delete(LiveFile(L"\\a.txt")));
}

TEST_F(RestoreFileTest, AnEmptyFolderIsDeletedAndOneWithContentsIsNot) {
    device().MakeFolder(L"\\Empty");
    device().PutFile(L"\\Full\\a.txt", "x");
    EXPECT_EQ(kDone, Delete(LiveFile(L"\\Empty")));
    EXPECT_EQ(kFailed, Delete(LiveFile(L"\\Full")));
    EXPECT_FALSE(device().Exists(L"\\Empty"));
    EXPECT_TRUE(device().Exists(L"\\Full\\a.txt"));
}

// Oddity 16: what the ROM holds keeps its folder, and the restore says so.
TEST_F(RestoreFileTest, AFolderThatRomFilesKeepIsNotDeleted) {
    device().PutFile(L"\\Full\\rom.dll", "x");
    device().SetAttributes(L"\\Full\\rom.dll", FILE_ATTRIBUTE_INROM);
    EXPECT_EQ(kFailed, Delete(LiveFile(L"\\Full")));
}

TEST_F(RestoreFileTest, WhatIsLeftInRomAfterADeletionCountsAsDeleted) {
    device().PutFile(L"\\rom.dll", "x");
    const ObjectRecord live = LiveFile(L"\\rom.dll");
    device().SetAttributes(L"\\rom.dll", FILE_ATTRIBUTE_INROM);
    EXPECT_EQ(kDone, RestoreObject(live));
    EXPECT_TRUE(device().Exists(L"\\rom.dll"));
}

TEST_F(RestoreFileTest, StillExistsAsksForWhatADeletionCouldRemove) {
    device().PutFile(L"\\a.txt", "x");
    device().PutFile(L"\\rom.dll", "x");
    device().PutFile(L"\\module.dll", "x");
    device().MakeFolder(L"\\Sub");
    device().SetAttributes(L"\\rom.dll", FILE_ATTRIBUTE_INROM);
    device().SetAttributes(L"\\module.dll", FILE_ATTRIBUTE_ROMMODULE);
    EXPECT_EQ(1, StillExists(u"\\a.txt"));
    EXPECT_EQ(1, StillExists(u"\\Sub"));
    EXPECT_EQ(0, StillExists(u"\\rom.dll"));
    EXPECT_EQ(0, StillExists(u"\\module.dll"));
    EXPECT_EQ(0, StillExists(u"\\absent"));
}

}  // namespace
}  // namespace tolvenar
