#include "tests/support/engine_test.h"

#include "platform/heap.h"
#include "platform/text.h"
#include "simulator/gate/rules.h"
#include "storage/opened/storage_file.h"

namespace tolvenar {
namespace {

constexpr CEPROPID kAnyProperty = 0x00010003;
constexpr const wchar_t* kSettingsKey = L"Software\\Kestrin2\\Tolvenar";
constexpr const wchar_t* kLogPath = L"\\Storage Card\\Backup\\tolvenar_log.txt";
constexpr const wchar_t* kStorageFolder = L"\\Storage Card\\Backup";

std::string TextBytes(const wchar_t* text) {
    return {reinterpret_cast<const char*>(text), (wcslen(text) + 1) * sizeof(wchar_t)};
}

UniqueHandle OpenDatabaseByName(const wchar_t* name) {
    CEGUID volume{};
    CEOID oid = 0;
    return UniqueHandle(
        ::CeOpenDatabaseEx(&volume, &oid, const_cast<wchar_t*>(name), 0, 0, nullptr));
}

CEPROPVAL ToPlatform(const TestProperty& property) {
    CEPROPVAL value{};
    value.propid = property.propid;
    switch (TypeFromPropID(property.propid)) {
        case CEVT_LPWSTR: value.val.lpwstr = const_cast<wchar_t*>(property.text.c_str()); break;
        case CEVT_BLOB:
            value.val.blob.dwCount = static_cast<DWORD>(property.blob.size());
            value.val.blob.lpb = reinterpret_cast<BYTE*>(const_cast<char*>(property.blob.data()));
            break;
        case CEVT_R8: value.val.dblVal = property.real; break;
        case CEVT_FILETIME: value.val.filetime = property.time; break;
        default: value.val.ulVal = property.number;
    }
    return value;
}

}  // namespace

void EngineTest::SetUp() {
    DeviceTest::SetUp();
    device().MakeFolder(kStorageFolder);
    SetStorageSettings();
    ASSERT_TRUE(MakeStorageNames(kStoragePath, storage_.names));
    ASSERT_NE(nullptr, CreateStorage(kStoragePath, nullptr));
    OpenStorageResult result{};
    ASSERT_TRUE(OpenStorage(storage_.names.sav, storage_, result));
    ASSERT_TRUE(OpenJournal(storage_, nullptr));
}

void EngineTest::SetStorageSettings() {
    SetValue(HKEY_CURRENT_USER, kSettingsKey, L"StorageFile", REG_SZ, TextBytes(L"Home"));
    SetValue(HKEY_CURRENT_USER, kSettingsKey, L"StoragePath", REG_SZ,
             TextBytes(L"\\Storage Card\\Backup\\"));
}

void EngineTest::TearDown() {
    CloseStorage(storage_);
    DeviceTest::TearDown();
}

void EngineTest::FailCall(const char* function, int n, std::uint32_t error) {
    sim::Rule rule;
    rule.function = function;
    rule.first = n;
    rule.value = static_cast<long>(error);
    sim::AddRule(device().sim(), rule);
}

std::u16string EngineTest::Log() {
    if (!device().Exists(kLogPath)) {
        return {};
    }
    const std::string bytes = device().FileBytes(kLogPath);
    return {reinterpret_cast<const char16_t*>(bytes.data()), bytes.size() / sizeof(char16_t)};
}

CEOID OidOfPath(const wchar_t* path) {
    WIN32_FIND_DATAW entry{};
    const UniqueFind search(::FindFirstFileW(path, &entry));
    EXPECT_TRUE(search) << ::GetLastError();
    return entry.dwOID;
}

void SetValue(HKEY root, const wchar_t* key_path, const wchar_t* name, DWORD type,
              const std::string& data) {
    UniqueHkey key;
    DWORD disposition = 0;
    ASSERT_EQ(ERROR_SUCCESS, ::RegCreateKeyExW(root, key_path, 0, nullptr, 0, KEY_ALL_ACCESS,
                                               nullptr, key.Put(), &disposition));
    ASSERT_EQ(ERROR_SUCCESS,
              ::RegSetValueExW(key.get(), name, 0, type, reinterpret_cast<const BYTE*>(data.data()),
                               static_cast<DWORD>(data.size())));
}

CEOID MakeDatabase(const wchar_t* name, DWORD type) {
    CEDBASEINFO info{};
    info.dwFlags = CEDB_VALIDNAME | CEDB_VALIDTYPE;
    wcscpy(info.szDbaseName, name);
    info.dwDbaseType = type;
    CEGUID volume{};
    const CEOID oid = ::CeCreateDatabaseEx(&volume, &info);
    EXPECT_NE(0u, oid) << ::GetLastError();
    return oid;
}

CEOID WriteRecord(const wchar_t* database, CEOID record,
                  const std::vector<TestProperty>& properties) {
    const UniqueHandle handle = OpenDatabaseByName(database);
    EXPECT_TRUE(handle) << ::GetLastError();
    std::vector<CEPROPVAL> values;
    for (const TestProperty& property : properties) {
        values.push_back(ToPlatform(property));
    }
    const CEOID oid =
        ::CeWriteRecordProps(handle.get(), record, static_cast<WORD>(values.size()), values.data());
    EXPECT_NE(0u, oid) << ::GetLastError();
    return oid;
}

CEOID AddRecord(const wchar_t* database, const std::vector<TestProperty>& properties) {
    return WriteRecord(database, 0, properties);
}

CEOID AddEmptyRecord(const wchar_t* database) {
    const CEOID oid = AddRecord(database, {{kAnyProperty, 1}});
    CEPROPVAL deletion{};
    deletion.propid = kAnyProperty;
    deletion.wFlags = CEDB_PROPDELETE;
    const UniqueHandle handle = OpenDatabaseByName(database);
    EXPECT_EQ(oid, ::CeWriteRecordProps(handle.get(), oid, 1, &deletion)) << ::GetLastError();
    return oid;
}

bool TakePendingFault(int n) {
    for (int i = 0; i < n; ++i) {
        void* block = HeapAllocate(0, 8);
        if (block == nullptr) {
            return true;
        }
        HeapRelease(block);
    }
    return false;
}

std::vector<ObjectRecord> RecordsOf(const ObjectList& list) {
    std::vector<ObjectRecord> records;
    ObjectList::Cursor cursor = list.First();
    ObjectRecord* record = nullptr;
    while (ObjectList::Next(cursor, nullptr, &record)) {
        records.push_back(*record);
    }
    return records;
}

}  // namespace tolvenar
