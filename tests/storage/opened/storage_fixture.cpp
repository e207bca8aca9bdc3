#include "tests/storage/opened/storage_fixture.h"

#include "simulator/gate/rules.h"
#include "storage/files/block_io.h"

namespace tolvenar {

void StorageTest::SetUp() {
    ::CreateDirectoryW(L"\\Backups", nullptr);
    HKEY hkey = nullptr;
    DWORD disposition = 0;
    ASSERT_EQ(ERROR_SUCCESS, ::RegCreateKeyExW(HKEY_CURRENT_USER, Wide(kSettingsKey), 0, nullptr, 0,
                                               KEY_ALL_ACCESS, nullptr, &hkey, &disposition));
    const UniqueHkey owner(hkey);
    const wchar_t folder[] = L"\\Backups\\";
    ASSERT_EQ(ERROR_SUCCESS,
              ::RegSetValueExW(hkey, L"StoragePath", 0, REG_SZ,
                               reinterpret_cast<const BYTE*>(folder), sizeof folder));
    ASSERT_TRUE(WriteStorageFileName(u"Home"));
    ASSERT_TRUE(MakeStorageNames(u"\\Backups\\Home", storage_.names));
}

void StorageTest::TearDown() {
    CloseStorage(storage_);
    DeviceTest::TearDown();
}

void StorageTest::FailAllocation(int n) {
    sim::Rule rule;
    rule.function = "HeapAlloc";
    rule.first = n;
    rule.value = ERROR_NOT_ENOUGH_MEMORY;
    sim::AddRule(device().sim(), rule);
}

long StorageTest::SeenAllocations() {
    const long seen = sim::Rules(device().sim()).at(0).seen;
    device().DropFaults();
    return seen;
}

void StorageTest::Put(const char16_t* path, const Bytes& bytes) {
    const UniqueHandle file = OpenFile(path, GENERIC_WRITE, 0, CREATE_ALWAYS);
    ASSERT_TRUE(file);
    ASSERT_TRUE(WriteAll(file.get(), bytes.data(), static_cast<std::uint32_t>(bytes.size())));
}

Bytes StorageTest::Content(const char16_t* path) {
    const UniqueHandle file =
        OpenFile(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING);
    std::uint32_t size = 0;
    EXPECT_TRUE(file && FileBytes(file.get(), size));
    Bytes bytes(size);
    EXPECT_TRUE(ReadAll(file.get(), bytes.data(), size));
    return bytes;
}

UniqueHandle StorageTest::Hold(const char16_t* path) {
    return OpenFile(path, GENERIC_READ | GENERIC_WRITE, 0, OPEN_EXISTING);
}

Text StorageTest::Log() {
    if (!Exists(kLog)) {
        return {};
    }
    const Bytes bytes = Content(kLog);
    return Text(reinterpret_cast<const char16_t*>(bytes.data()), bytes.size() / 2);
}

std::size_t Occurrences(const Text& text, const Text& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != Text::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

}  // namespace tolvenar
