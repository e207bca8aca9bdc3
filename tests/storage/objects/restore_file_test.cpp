#include "storage/objects/restore_file.h"

#include <nlohmann/json.hpp>
#include <set>
#include <utility>

#include "platform/unique_resource.h"
#include "tests/support/restore_fixture.h"

namespace tolvenar {
namespace {

class RestoreFileTest : public RestoreFixture {
protected:
    // The calls that writing an object back makes, with arguments.
    std::vector<std::pair<std::string, std::string>> CallsOf(const ObjectRecord& record) {
        Run();
        device().Command("trace on");
        EXPECT_EQ(RestoreOutcome::kDone, Restore(ToWriteBack(record)));
        std::vector<std::pair<std::string, std::string>> calls;
        for (const auto& line : nlohmann::json::parse(device().Command("trace show"))) {
            calls.emplace_back(line["function"], line["arguments"]);
        }
        return calls;
    }
    // Those of these functions, in order.
    static std::vector<std::string> InOrder(
        const std::vector<std::pair<std::string, std::string>>& calls,
        const std::set<std::string>& functions) {
        std::vector<std::string> order;
        for (const auto& [function, arguments] : calls) {
            if (functions.count(function) != 0) {
                order.push_back(function);
            }
        }
        return order;
    }
    static std::string ArgumentsOf(const std::vector<std::pair<std::string, std::string>>& calls,
                                   const std::string& wanted) {
        for (const auto& [function, arguments] : calls) {
            if (function == wanted) {
                return arguments;
            }
        }
        return "";
    }
};

TEST_F(RestoreFileTest, AFileComesBackWithContentsTimeAttributesAndANewId) {
    const ObjectRecord stored =
        StoreFile(u"\\a.txt", "contents", FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ(RestoreOutcome::kDone, Restore(ToWriteBack(stored)));
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
    EXPECT_EQ(RestoreOutcome::kDone, Restore(ToWriteBack(stored)));
    EXPECT_EQ("", device().FileBytes(L"\\empty"));
}

TEST_F(RestoreFileTest, AnExistingFileIsReplaced) {
    device().PutFile(L"\\a.txt", "something longer than before");
    EXPECT_EQ(RestoreOutcome::kDone, Restore(ToWriteBack(StoreFile(u"\\a.txt", "short"))));
    EXPECT_EQ("short", device().FileBytes(L"\\a.txt"));
}

TEST_F(RestoreFileTest, AFileOfTheRomIsNotWritten) {
    const ObjectRecord in_rom = StoreFile(u"\\rom.dll", "x", FILE_ATTRIBUTE_INROM);
    const ObjectRecord module = StoreFile(u"\\module.dll", "x", FILE_ATTRIBUTE_ROMMODULE);
    EXPECT_EQ(RestoreOutcome::kDone, Restore(ToWriteBack(in_rom)));
    EXPECT_EQ(RestoreOutcome::kDone, Restore(ToWriteBack(module)));
    EXPECT_FALSE(device().Exists(L"\\rom.dll"));
    EXPECT_FALSE(device().Exists(L"\\module.dll"));
    EXPECT_EQ(0u, newOid());
}

TEST_F(RestoreFileTest, ALockedFileCanBeTriedAgain) {
    device().PutFile(L"\\a.txt", "held");
    const auto lock = device().Lock(L"\\a.txt");
    EXPECT_EQ(RestoreOutcome::kFailed, Restore(ToWriteBack(StoreFile(u"\\a.txt", "new"))));
    EXPECT_EQ("held", device().FileBytes(L"\\a.txt"));
    EXPECT_TRUE(LogLines().empty());
}

// Kept so: a changed read-only file can neither be deleted nor written over.
TEST_F(RestoreFileTest, AReadOnlyFileStaysAsItIs) {
    device().PutFile(L"\\a.txt", "old");
    device().SetAttributes(L"\\a.txt", FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(RestoreOutcome::kFailed, Restore(ToDelete(LiveFile(L"\\a.txt"))));
    EXPECT_EQ("old", device().FileBytes(L"\\a.txt"));
}

TEST_F(RestoreFileTest, AReadOnlyFileIsNotWrittenOver) {
    device().PutFile(L"\\a.txt", "old");
    device().SetAttributes(L"\\a.txt", FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(RestoreOutcome::kFailed, Restore(ToWriteBack(StoreFile(u"\\a.txt", "new"))));
    EXPECT_EQ("old", device().FileBytes(L"\\a.txt"));
}

TEST_F(RestoreFileTest, AFailedCopyIsLoggedAsANoteAndTheFileGetsTimeAndAttributesAllTheSame) {
    const ObjectRecord stored = StoreFile(u"\\a.txt", "contents", FILE_ATTRIBUTE_HIDDEN);
    Run();
    device().Fault("WriteFile", 1, 1, ERROR_DISK_FULL);
    EXPECT_EQ(RestoreOutcome::kFailed, Restore(ToWriteBack(stored)));
    EXPECT_EQ((std::vector<std::string>{"I Error: WriteFile:112"}), LogLines());
    const auto file = device().Info(L"\\a.txt");
    EXPECT_EQ(DWORD{FILE_ATTRIBUTE_HIDDEN}, file.attributes);
    EXPECT_EQ(kSomeTime, file.modified);
    EXPECT_EQ(file.oid, newOid());
}

TEST_F(RestoreFileTest, AFileWhoseIdCannotBeToldIsDoneWithoutOne) {
    const ObjectRecord stored = StoreFile(u"\\a.txt", "contents");
    Run();
    device().Fault("FindFirstFileW", 1, 1, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RestoreOutcome::kDone, Restore(ToWriteBack(stored)));
    EXPECT_EQ(0u, newOid());
}

TEST_F(RestoreFileTest, AFileInAnAbsentFolderFails) {
    EXPECT_EQ(RestoreOutcome::kFailed, Restore(ToWriteBack(StoreFile(u"\\Sub\\a.txt", "x"))));
}

TEST_F(RestoreFileTest, AFolderComesBackWithItsAttributesAndANewId) {
    const ObjectRecord stored =
        StoreFolder(u"\\Sub", FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ(RestoreOutcome::kDone, Restore(ToWriteBack(stored)));
    const auto folder = device().Info(L"\\Sub");
    EXPECT_TRUE(folder.is_folder);
    EXPECT_EQ(DWORD{FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN}, folder.attributes);
    EXPECT_EQ(folder.oid, newOid());
    EXPECT_NE(0u, newOid());
}

// Attributes come last: what is read-only cannot be given a time.
TEST_F(RestoreFileTest, AFolderIsOpenedForItsTimeAndClosedBeforeItsAttributesAreSet) {
    const auto calls =
        CallsOf(StoreFolder(u"\\Sub", FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN));
    EXPECT_EQ((std::vector<std::string>{"CreateDirectoryW", "FindFirstFileW", "CreateFileW",
                                        "SetFileTime", "CloseHandle", "SetFileAttributesW"}),
              InOrder(calls, {"CreateDirectoryW", "FindFirstFileW", "CreateFileW", "SetFileTime",
                              "CloseHandle", "SetFileAttributesW"}));
    // GENERIC_WRITE, shared with nobody, OPEN_EXISTING, the attributes.
    EXPECT_EQ("\\Sub, 1073741824, 0, 3, 18", ArgumentsOf(calls, "CreateFileW"));
}

TEST_F(RestoreFileTest, AFileIsClosedBeforeItsAttributesAreSet) {
    const auto calls = CallsOf(StoreFile(u"\\a.txt", "x"));
    EXPECT_EQ(
        (std::vector<std::string>{"CreateFileW", "WriteFile", "FlushFileBuffers", "SetFileTime",
                                  "CloseHandle", "SetFileAttributesW", "FindFirstFileW"}),
        InOrder(calls, {"CreateFileW", "WriteFile", "FlushFileBuffers", "SetFileTime",
                        "CloseHandle", "SetFileAttributesW", "FindFirstFileW"}));
    // GENERIC_WRITE, shared with nobody, CREATE_ALWAYS.
    EXPECT_EQ("\\a.txt, 1073741824, 0, 2, 128", ArgumentsOf(calls, "CreateFileW"));
}

TEST_F(RestoreFileTest, AllThreeTimesOfAFileAreSet) {
    device().Set("file.times", "separate");
    EXPECT_EQ(RestoreOutcome::kDone, Restore(ToWriteBack(StoreFile(u"\\a.txt", "x"))));
    WIN32_FIND_DATAW found{};
    const UniqueFind search(::FindFirstFileW(L"\\a.txt", &found));
    ASSERT_TRUE(search);
    for (const FILETIME& time :
         {found.ftCreationTime, found.ftLastAccessTime, found.ftLastWriteTime}) {
        EXPECT_EQ(kSomeTime, std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime);
    }
}

TEST_F(RestoreFileTest, AFileOfTheLongestPathComesBack) {
    const std::u16string folder = u"\\" + std::u16string(200, u'd');
    const std::u16string path = folder + u"\\" + std::u16string(259 - 202, u'f');
    device().MakeFolder(W(folder));
    EXPECT_EQ(RestoreOutcome::kDone, Restore(ToWriteBack(StoreFile(path, "contents"))));
    EXPECT_EQ("contents", device().FileBytes(W(path)));
    EXPECT_EQ(device().Info(W(path)).oid, newOid());
}

// Kept so: a folder whose attributes changed while it has contents is reported.
TEST_F(RestoreFileTest, AFolderThatIsThereFails) {
    device().MakeFolder(L"\\Sub");
    EXPECT_EQ(RestoreOutcome::kFailed, Restore(ToWriteBack(StoreFolder(u"\\Sub"))));
}

TEST_F(RestoreFileTest, AFolderInAnAbsentFolderFails) {
    EXPECT_EQ(RestoreOutcome::kFailed, Restore(ToWriteBack(StoreFolder(u"\\Sub\\Below"))));
}

TEST_F(RestoreFileTest, AFileIsDeleted) {
    device().PutFile(L"\\a.txt", "x");
    EXPECT_EQ(RestoreOutcome::kDone, Restore(LiveFile(L"\\a.txt")));
    EXPECT_FALSE(device().Exists(L"\\a.txt"));
}

TEST_F(RestoreFileTest, AFileThatIsGoneIsDeleted) {
    const ObjectRecord file = StoreFile(u"\\gone.txt", "x");
    const ObjectRecord folder = StoreFolder(u"\\Gone");
    EXPECT_EQ(RestoreOutcome::kDone, Restore(ToDelete(file)));
    EXPECT_EQ(RestoreOutcome::kDone, Restore(ToDelete(folder)));
}

TEST_F(RestoreFileTest, ALockedFileIsNotDeleted) {
    device().PutFile(L"\\a.txt", "x");
    const auto lock = device().Lock(L"\\a.txt");
    EXPECT_EQ(RestoreOutcome::kFailed, Restore(LiveFile(L"\\a.txt")));
}

TEST_F(RestoreFileTest, AnEmptyFolderIsDeletedAndOneWithContentsIsNot) {
    device().MakeFolder(L"\\Empty");
    device().PutFile(L"\\Full\\a.txt", "x");
    EXPECT_EQ(RestoreOutcome::kDone, Restore(LiveFile(L"\\Empty")));
    EXPECT_EQ(RestoreOutcome::kFailed, Restore(LiveFile(L"\\Full")));
    EXPECT_FALSE(device().Exists(L"\\Empty"));
    EXPECT_TRUE(device().Exists(L"\\Full\\a.txt"));
}

// Kept so: what the ROM holds keeps its folder, and the restore says so.
TEST_F(RestoreFileTest, AFolderThatRomFilesKeepIsNotDeleted) {
    device().PutFile(L"\\Full\\rom.dll", "x");
    device().SetAttributes(L"\\Full\\rom.dll", FILE_ATTRIBUTE_INROM);
    EXPECT_EQ(RestoreOutcome::kFailed, Restore(LiveFile(L"\\Full")));
}

TEST_F(RestoreFileTest, WhatIsLeftInRomAfterADeletionCountsAsDeleted) {
    device().PutFile(L"\\rom.dll", "x");
    const ObjectRecord live = LiveFile(L"\\rom.dll");
    device().SetAttributes(L"\\rom.dll", FILE_ATTRIBUTE_INROM);
    EXPECT_EQ(RestoreOutcome::kDone, Restore(live));
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
