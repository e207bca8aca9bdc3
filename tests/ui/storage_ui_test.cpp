#include "tests/ui/storage_ui_test.h"

#include "platform/win32.h"

#include <cstring>
#include <map>

#include "simulator/registry/registry.h"

namespace tests {
namespace {

constexpr char kSettingsKey[] = "HKCU\\Software\\Kestrin2\\Tolvenar";
constexpr char16_t kSettingsPath[] = u"HKCU\\Software\\Kestrin2\\Tolvenar";
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
    SetSetting("StorageFile", "Other");
    device().PutFile(kNote, kOtherText);
    BackUp();
    SetSetting("StorageFile", "Backup");
}

void StorageUiTest::OpenPage() {
    Open();
    ShowTab("Storage file");
    ASSERT_TRUE(Eventually([&] { return Sees(kBrowse); }));
}

void StorageUiTest::Browse() {
    Press(kBrowse);
    ASSERT_TRUE(Eventually([&] { return Shows(kOpenTitle) && Sees(kOpenName); }));
}

void StorageUiTest::ChooseFile(const std::string& name) {
    Browse();
    Type(kOpenName, name);
    Press(kOk);
}

void StorageUiTest::ChooseNew(const std::string& name) {
    ChooseFile(name);
    ASSERT_TRUE(Eventually([&] { return BoxIsUp(); }));
    Press(kYes);
}

void StorageUiTest::AnswerDescription(int button) {
    ASSERT_TRUE(Eventually([&] { return Shows(kDescriptionTitle); }));
    Press(button);
    EXPECT_TRUE(Eventually([&] { return !Shows(kDescriptionTitle); }));
}

bool StorageUiTest::NameBecomes(const std::string& text) {
    return Eventually([&] { return Text(kStorageName) == text; }) && DialogIsDone();
}

void StorageUiTest::ExpectNoneOpen() {
    EXPECT_TRUE(NameBecomes(""));
    EXPECT_EQ("", Text(kStorageDescription));
    EXPECT_EQ("No storage file is open. Browse to choose or create one.", Text(kStorageFolder));
    EXPECT_FALSE(Sees(kStorageFolderLabel));
}

void StorageUiTest::ExpectFirstOpen() {
    EXPECT_TRUE(NameBecomes("Backup"));
    EXPECT_EQ(" ", Text(kStorageDescription));
    EXPECT_EQ(kCardFolder, Text(kStorageFolder));
    EXPECT_TRUE(Sees(kStorageFolderLabel));
    EXPECT_EQ("Backup", Setting("StorageFile"));
    EXPECT_EQ(kCardFolder, Setting("StoragePath"));
}

void StorageUiTest::StartHeldBackupOfNote() {
    device().PutFile(kNote, "meanwhile " + std::to_string(++backups_));
    StartHeldBackup();
}

std::string StorageUiTest::Setting(const std::string& name) {
    const sim::registry::Registry registry(device().sim());
    std::u16string subkey;
    sim::registry::KeyId key;
    const auto root = sim::registry::RootOfPath(kSettingsPath, subkey);
    if (!root || registry.Place(*root, subkey, key) != sim::registry::kOk) {
        return "no key";
    }
    const auto value = registry.Find(key, std::u16string(name.begin(), name.end()));
    if (!value) {
        return "no value";
    }
    std::string text;
    for (std::size_t i = 0; i + 1 < value->data.size() && value->data[i] != 0; i += 2) {
        text += static_cast<char>(value->data[i]);
    }
    return text;
}

void StorageUiTest::SetSetting(const std::string& name, const std::string& text) {
    Ask(std::string("reg-set ") + kSettingsKey + " " + name + " REG_SZ \"" + text + "\"");
}

void StorageUiTest::DeleteSetting(const std::string& name) {
    Ask(std::string("reg-delete ") + kSettingsKey + " " + name);
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
