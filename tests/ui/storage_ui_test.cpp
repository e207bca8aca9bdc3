#include "tests/ui/storage_ui_test.h"

#include <cstring>
#include <map>

namespace tests {
namespace {

constexpr std::size_t kHeadBytes = 232;

void PutNumber(std::string& bytes, std::size_t at, std::uint32_t number) {
    std::memcpy(&bytes[at], &number, sizeof number);
}

}  // namespace

// Made once: devices are alike, ids too.
void StorageUiTest::SetUp() {
    UiTest::SetUp();
    static std::map<std::wstring, std::string> made;
    if (made.empty()) {
        MakeStorages();
        for (const std::wstring& path :
             {kStorageFile, kJournalFile, kOtherStorage, kOtherJournal}) {
            made[path] = device().FileBytes(path);
        }
        return;
    }
    for (const auto& [path, bytes] : made) {
        device().PutFile(path, bytes);
    }
    device().PutFile(kNote, kOtherText);
}

void StorageUiTest::MakeStorages() {
    device().PutFile(kNote, "first");
    BackUp();
    device().PutFile(kNote, "second one");
    BackUp();
    device().PutFile(kOtherStorage, EmptyStorage(u"The other one"));
    SetText("StorageFile", "Other");
    device().PutFile(kNote, kOtherText);
    BackUp();
    SetText("StorageFile", "Backup");
}

void StorageUiTest::OpenPage() { OpenOn("Storage file"); }

void StorageUiTest::Browse() {
    Press(IDC_BROWSE);
    ASSERT_SOON(Shows(kOpenTitle) && Sees(kOpenName));
}

void StorageUiTest::ChooseFile(const std::string& name) {
    Browse();
    Type(kOpenName, name);
    Press(IDOK);
}

void StorageUiTest::ChooseNew(const std::string& name) {
    ChooseFile(name);
    ASSERT_SOON(BoxIsUp());
    Press(IDYES);
}

void StorageUiTest::AnswerDescription(int button) {
    ASSERT_SOON(Shows(kDescriptionTitle));
    Press(button);
    EXPECT_SOON(!Shows(kDescriptionTitle));
}

bool StorageUiTest::NameBecomes(const std::string& text) {
    return Eventually([&] { return Text(IDC_STORAGE_NAME) == text; }) && DialogIsDone();
}

bool StorageUiTest::IsCreatedAs(const std::string& text) {
    ExpectTab("Backup");
    ShowTab("Storage file");
    return NameBecomes(text);
}

void StorageUiTest::ExpectNoneOpen() {
    EXPECT_TRUE(NameBecomes(""));
    EXPECT_EQ("", Text(IDC_STORAGE_DESCRIPTION));
    // "Browse to choose…", or "…is not there. …browse for another."
    EXPECT_NE(std::string::npos, Text(IDC_STORAGE_FOLDER).find("rowse "));
    EXPECT_FALSE(Sees(IDC_STORAGE_FOLDER_LABEL));
}

void StorageUiTest::ExpectFirstOpen() {
    EXPECT_TRUE(NameBecomes("Backup"));
    EXPECT_EQ(" ", Text(IDC_STORAGE_DESCRIPTION));
    EXPECT_EQ(kCardFolder, Text(IDC_STORAGE_FOLDER));
    EXPECT_TRUE(Sees(IDC_STORAGE_FOLDER_LABEL));
    EXPECT_EQ("Backup", SettingText("StorageFile"));
    EXPECT_EQ(kCardFolder, SettingText("StoragePath"));
}

void StorageUiTest::StartHeldBackupOfNote() {
    device().PutFile(kNote, "meanwhile " + std::to_string(++backups_));
    StartHeldBackup();
}

std::string EmptyStorage(const std::u16string& description) {
    std::string bytes(kHeadBytes, '\0');
    bytes.replace(0, 14, std::string("U\0n\0k\0n\0o\0w\0n\0", 14));
    PutNumber(bytes, 200, 2577);  // processor
    PutNumber(bytes, 204, 3);     // version of the system
    PutNumber(bytes, 212, 1);     // family and revision of the format
    PutNumber(bytes, 216, 4);
    const auto length = static_cast<std::uint32_t>(description.size() * sizeof(char16_t));
    PutNumber(bytes, 228, length);
    const std::string text(reinterpret_cast<const char*>(description.data()), length);
    return bytes + (text.empty() ? std::string(4, '\0') : text);
}

}  // namespace tests
