#include "snapshot/scan/file_scanner.h"

#include <algorithm>

#include "snapshot/records/checksum.h"
#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

Texts visited;

void NoteEntry(FileScan&, const char16_t* folder_path, const WIN32_FIND_DATAW& entry) {
    visited.push_back(Text(folder_path) + u"\\" + Utf16(entry.cFileName));
}

class FileScannerTest : public EngineTest {
protected:
    void SetUp() override {
        EngineTest::SetUp();
        device().MakeFolder(L"\\A");
    }

    FileScan scan() { return {*list_, info_, names_, left_out_}; }

    void Scan() {
        FileScan whole = scan();
        ScanFiles(whole, u"", MakeFileObject);
    }

    // Paths of the entries below `folder` in the order of the walk.
    Texts Walk(const char16_t* folder) {
        visited.clear();
        FileScan whole = scan();
        ScanFiles(whole, folder, NoteEntry);
        return visited;
    }

    // What was there and could not be read.
    Texts LeftOutNames() const {
        Texts names;
        for (const LeftOut::Entry* entry = left_out_.First(); entry != nullptr;
             entry = entry->next) {
            EXPECT_EQ(kFile, entry->type);
            names.emplace_back(entry->name);
        }
        return names;
    }

    // The record of the object at `path`; null when there is none.
    const ObjectRecord* RecordOf(const wchar_t* path) {
        return StorageTest::RecordOf(*list_, OidOfPath(path));
    }

    StorageFileNames names_{{u"Home.sav", u"Home.jrn", u"Home.jrn_1"}, u"\\A\\Backup"};
    LeftOut left_out_;
    const std::unique_ptr<ObjectList> list_ = ObjectList::CreateList();
};

TEST_F(FileScannerTest, AFolderComesBeforeItsContents) {
    device().MakeFolder(L"\\A\\B");
    device().PutFile(L"\\A\\B\\c.txt", "c");
    EXPECT_EQ((Texts{u"\\A\\B", u"\\A\\B\\c.txt"}), Walk(u"\\A"));
}

TEST_F(FileScannerTest, TheWalkStartsAtTheRootWhichItselfIsNotVisited) {
    const Texts all = Walk(u"");
    EXPECT_EQ(1, std::count(all.begin(), all.end(), Text(u"\\A")));
    EXPECT_EQ(0, std::count(all.begin(), all.end(), Text(u"\\")));
}

TEST_F(FileScannerTest, EveryEntryBehindASubfolderIsVisitedToo) {
    for (const wchar_t* folder : {L"\\A\\1", L"\\A\\2", L"\\A\\3"}) {
        device().MakeFolder(folder);
        device().PutFile(std::wstring(folder) + L"\\x", "x");
    }
    EXPECT_EQ(6u, Walk(u"\\A").size());
}

TEST_F(FileScannerTest, AnEmptyFolderIsVisitedOnceAndTheEntryBehindItToo) {
    device().MakeFolder(L"\\A\\B");
    device().PutFile(L"\\A\\c.txt", "c");
    EXPECT_EQ((Texts{u"\\A\\B", u"\\A\\c.txt"}), Walk(u"\\A"));
}

TEST_F(FileScannerTest, AShortFolderNameBehindALongOneIsListed) {
    device().PutFile(L"\\A\\A folder with a long name\\x", "x");
    device().PutFile(L"\\A\\S\\y", "y");
    EXPECT_EQ((Texts{u"\\A\\A folder with a long name", u"\\A\\A folder with a long name\\x",
                     u"\\A\\S", u"\\A\\S\\y"}),
              Walk(u"\\A"));
}

TEST_F(FileScannerTest, AnEntryWhoseNameBeginsWithADotIsPassedOverWithItsContents) {
    device().MakeFolder(L"\\A\\.hidden");
    device().PutFile(L"\\A\\.hidden\\x.txt", "x");
    device().PutFile(L"\\A\\.y", "y");
    EXPECT_TRUE(Walk(u"\\A").empty());
}

TEST_F(FileScannerTest, AMountedCardIsMetButNotEntered) {
    device().PutFile(L"\\Storage Card\\on the card.txt", "x");
    const Texts all = Walk(u"");
    EXPECT_EQ(1, std::count(all.begin(), all.end(), Text(u"\\Storage Card")));
    for (const Text& path : all) {
        EXPECT_NE(0u, path.rfind(u"\\Storage Card\\", 0)) << "entered";
    }
}

TEST_F(FileScannerTest, AMountedCardGetsNoRecord) {
    WIN32_FIND_DATAW card{};
    card.dwFileAttributes = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_TEMPORARY;
    card.dwOID = OidOfPath(L"\\A");
    wcscpy(card.cFileName, L"A");
    FileScan whole = scan();
    MakeFileObject(whole, u"", card);
    EXPECT_EQ(0u, list_->CountRecords());
    EXPECT_EQ(nullptr, left_out_.First());
}

TEST_F(FileScannerTest, AFilesRecordHoldsIdentifierChecksumsAndTheMarkOfAScan) {
    device().PutFile(L"\\A\\nine.txt", "123456789");
    Scan();
    const ObjectRecord* record = RecordOf(L"\\A\\nine.txt");
    ASSERT_NE(nullptr, record);
    InfoBlock block;
    ASSERT_TRUE(info_.GetOIDInfo(0, record->dwOID, block));
    EXPECT_EQ(28u + 22u, block.size());
    ObjectRecord expected =
        MakeRecord(kFile, OidOfPath(L"\\A\\nine.txt"), 0, Checksum16(block.bytes(), 50), 0x6F91);
    expected.state_number = 0xFFFF;
    EXPECT_EQ(BytesOf(expected), BytesOf(*record));
}

TEST_F(FileScannerTest, AnEmptyFileHasTheFingerprintFfffAndAFolderZero) {
    device().PutFile(L"\\A\\empty", "");
    Scan();
    ASSERT_NE(nullptr, RecordOf(L"\\A\\empty"));
    EXPECT_EQ(0xFFFF, RecordOf(L"\\A\\empty")->content_fingerprint);
    ASSERT_NE(nullptr, RecordOf(L"\\A"));
    EXPECT_EQ(0, RecordOf(L"\\A")->content_fingerprint);
}

// Oddity 13.
TEST_F(FileScannerTest, AFileThatIsOpenElsewhereWithoutSharingGetsNoRecord) {
    device().PutFile(L"\\A\\held.txt", "held");
    device().PutFile(L"\\A\\other.txt", "other");
    const auto held = device().Lock(L"\\A\\held.txt");
    Scan();
    EXPECT_EQ(nullptr, RecordOf(L"\\A\\held.txt"));
    EXPECT_NE(nullptr, RecordOf(L"\\A\\other.txt"));
    EXPECT_EQ(Texts{u"\\A\\held.txt"}, LeftOutNames());
}

TEST_F(FileScannerTest, AFileIsOpenedWithoutSharing) {
    device().PutFile(L"\\A\\x.txt", "x");
    const UniqueHandle reader = Reader(u"\\A\\x.txt");
    Scan();
    EXPECT_EQ(nullptr, RecordOf(L"\\A\\x.txt"));
}

TEST_F(FileScannerTest, AFileIsOpenedWithItsAttributesAndForRandomAccess) {
    device().PutFile(L"\\A\\x.txt", "x");
    device().SetAttributes(L"\\A\\x.txt", FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_ARCHIVE);
    const std::string calls = device().Traced("CreateFileForMappingW", [&] { Scan(); });
    // Reading, no sharing, the file must exist; 0x10000022.
    EXPECT_NE(std::string::npos, calls.find("x.txt, 2147483648, 0, 3, 268435490")) << calls;
}

TEST_F(FileScannerTest, AFileIsClosedAgainBeforeTheNextEntry) {
    device().PutFile(L"\\A\\x.txt", "x");
    Scan();
    EXPECT_TRUE(::DeleteFileW(L"\\A\\x.txt"));
}

TEST_F(FileScannerTest, FilesInRomAreNeverRecorded) {
    device().PutFile(L"\\A\\x.txt", "x");
    for (const DWORD attributes : {FILE_ATTRIBUTE_INROM, FILE_ATTRIBUTE_ROMMODULE}) {
        WIN32_FIND_DATAW entry{};
        entry.dwFileAttributes = attributes;
        entry.nFileSizeLow = 1;
        entry.dwOID = OidOfPath(L"\\A\\x.txt");
        wcscpy(entry.cFileName, L"x.txt");
        FileScan whole = scan();
        MakeFileObject(whole, u"\\A", entry);
        EXPECT_EQ(0u, list_->CountRecords()) << attributes;
        EXPECT_EQ(nullptr, left_out_.First());
        entry.dwFileAttributes = FILE_ATTRIBUTE_ARCHIVE;
        MakeFileObject(whole, u"\\A", entry);
        EXPECT_EQ(1u, list_->CountRecords());
        list_->ClearList();
    }
}

TEST_F(FileScannerTest, ExcludedNamesGetNoRecord) {
    for (const wchar_t* name : {L"Storage.bkp", L"Journal.bkp", L"Home.sav", L"Home.jrn",
                                L"Home.jrn_1", L"new_expl.exe"}) {
        device().PutFile(std::wstring(L"\\A\\") + name, "x");
    }
    device().PutFile(L"\\A\\Home2.sav", "x");
    Scan();
    EXPECT_EQ(nullptr, RecordOf(L"\\A\\Storage.bkp"));
    EXPECT_EQ(nullptr, RecordOf(L"\\A\\Home.sav"));
    EXPECT_EQ(nullptr, RecordOf(L"\\A\\Home.jrn"));
    EXPECT_EQ(nullptr, RecordOf(L"\\A\\Home.jrn_1"));
    EXPECT_EQ(nullptr, RecordOf(L"\\A\\new_expl.exe"));
    EXPECT_NE(nullptr, RecordOf(L"\\A\\Home2.sav"));
    EXPECT_EQ(nullptr, left_out_.First());
}

// The log of a storage in the object store lies beside the storage; elsewhere the name is a user's.
TEST_F(FileScannerTest, TheLogBesideTheStorageGetsNoRecordAndAFileOfThatNameElsewhereDoes) {
    device().PutFile(L"\\A\\backup\\tolvenar_log.txt", "x");
    device().PutFile(L"\\A\\tolvenar_log.txt", "x");
    Scan();
    EXPECT_EQ(nullptr, RecordOf(L"\\A\\backup\\tolvenar_log.txt"));
    EXPECT_NE(nullptr, RecordOf(L"\\A\\tolvenar_log.txt"));
}

// Identifier 0 describes the state that is being written.
TEST_F(FileScannerTest, AnEntryWithoutAnIdentifierGetsNoRecord) {
    WIN32_FIND_DATAW entry{};
    entry.dwFileAttributes = FILE_ATTRIBUTE_ARCHIVE;
    wcscpy(entry.cFileName, L"x.txt");
    FileScan whole = scan();
    MakeFileObject(whole, u"\\A", entry);
    EXPECT_EQ(0u, list_->CountRecords());
    EXPECT_EQ(nullptr, left_out_.First());
}

// The name of a folder excludes the folder, not what is in it: the walk goes on below.
TEST_F(FileScannerTest, AnExcludedFoldersContentsAreRecorded) {
    device().MakeFolder(L"\\A\\Recycled");
    device().PutFile(L"\\A\\Recycled\\x.txt", "x");
    Scan();
    EXPECT_EQ(nullptr, RecordOf(L"\\A\\Recycled"));
    EXPECT_NE(nullptr, RecordOf(L"\\A\\Recycled\\x.txt"));
}

TEST_F(FileScannerTest, AnEntryThatCannotBeDescribedGetsNoRecord) {
    WIN32_FIND_DATAW entry{};
    entry.dwFileAttributes = FILE_ATTRIBUTE_ARCHIVE;
    entry.dwOID = 0x00ABCDEF;
    wcscpy(entry.cFileName, L"gone.txt");
    FileScan whole = scan();
    MakeFileObject(whole, u"\\A", entry);
    EXPECT_EQ(0u, list_->CountRecords());
}

TEST_F(FileScannerTest, AFolderThatCannotBeListedIsRecordedWithoutItsContents) {
    device().MakeFolder(L"\\A\\B");
    device().PutFile(L"\\A\\B\\c.txt", "c");
    device().PutFile(L"\\A\\d.txt", "d");
    device().Fault("FindFirstFileW", 1, 1, 5, "B\\*.*");
    Scan();
    device().EndFaults();
    EXPECT_NE(nullptr, RecordOf(L"\\A\\B"));
    EXPECT_EQ(nullptr, RecordOf(L"\\A\\B\\c.txt"));
    EXPECT_NE(nullptr, RecordOf(L"\\A\\d.txt"));
}

TEST_F(FileScannerTest, AFileThatCannotBeMappedGetsNoRecordAndStaysUsable) {
    device().PutFile(L"\\A\\x.txt", "x");
    for (const char* call : {"CreateFileForMappingW", "CreateFileMappingW", "MapViewOfFile"}) {
        list_->ClearList();
        device().Fault(call, 1, 1000, 8);
        Scan();
        device().EndFaults();
        EXPECT_EQ(nullptr, RecordOf(L"\\A\\x.txt")) << call;
        EXPECT_NE(nullptr, RecordOf(L"\\A")) << call;
    }
    EXPECT_TRUE(::DeleteFileW(L"\\A\\x.txt"));
}

// "\*.*" does not fit behind paths of 256 and 257 units, and there is room for a file in them.
TEST_F(FileScannerTest, AFileInTheLongestFolderPathIsRecorded) {
    std::wstring path = L"\\A";
    while (path.size() < 240) {
        path += L"\\" + std::wstring(19, L'b');
    }
    const std::wstring parent = path;
    for (const std::size_t units : {255u, 256u, 257u}) {
        path = parent + L"\\" + std::wstring(units - parent.size() - 1, L'c');
        ASSERT_EQ(units, path.size());
        device().PutFile(path + L"\\x", "x");
        list_->ClearList();
        Scan();
        EXPECT_NE(nullptr, RecordOf((path + L"\\x").c_str())) << units;
    }
}

TEST_F(FileScannerTest, TheDeepestPathIsWalkedToItsEnd) {
    std::wstring path = L"\\A";
    while (path.size() + 2 < MAX_PATH - 8) {
        path += L"\\b";
        ASSERT_TRUE(::CreateDirectoryW(path.c_str(), nullptr)) << path.size();
    }
    device().PutFile(path + L"\\c", "c");
    EXPECT_EQ((path.size() - 2) / 2 + 1, Walk(u"\\A").size());
}

// A card whose folders do not tell that they are a card's: by their identifiers its files are known
// for none of the object store's, and asking for a description takes a tenth of a second each.
TEST_F(FileScannerTest, WhatHasNoIdentifierOfTheObjectStoreIsNotDescribed) {
    device().PutFile(L"\\Storage Card\\Folder\\a.txt", "text");
    device().Set("card.temporary", "none");
    for (const char* oid : {"none", "ones"}) {
        device().Set("card.oid", oid);
        list_->ClearList();
        const long before = device().Calls("CeOidGetInfoEx");
        Scan();
        EXPECT_EQ(1u, list_->CountRecords()) << oid;
        EXPECT_EQ(1, device().Calls("CeOidGetInfoEx") - before) << oid;
        EXPECT_EQ(nullptr, left_out_.First());
    }
}

}  // namespace
}  // namespace tolvenar
