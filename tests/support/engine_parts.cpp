#include "tests/support/engine_parts.h"

#include <algorithm>
#include <gtest/gtest.h>

#include "app/settings/settings.h"
#include "platform/heap.h"
#include "platform/text.h"
#include "platform/unique_resource.h"
#include "storage/opened/journal.h"
#include "storage/opened/storage_file.h"
#include "storage/operations/backup_writer.h"
#include "storage/operations/pair_proof.h"
#include "storage/operations/restore_engine.h"

namespace tolvenar {
namespace {

UniqueHandle OpenDatabaseByName(const std::wstring& name) {
    CEGUID volume{};
    CEOID oid = 0;
    return UniqueHandle(
        ::CeOpenDatabaseEx(&volume, &oid, const_cast<wchar_t*>(name.c_str()), 0, 0, nullptr));
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

std::ostream& operator<<(std::ostream& stream, const Answer& answer) {
    return stream << (answer.done ? "done, " : "failed, ") << static_cast<int>(answer.code);
}

bool EngineParts::Open() {
    OpenStorageResult result{};
    return MakeStorageNames(kStoragePath, storage_.names) &&
           OpenStorage(storage_.names.sav, storage_, result) && OpenJournal(storage_, nullptr);
}

bool EngineParts::Make() { return CreateStorage(kStoragePath, nullptr) != nullptr && Open(); }

Answer EngineParts::Backup(std::uint32_t state, const char16_t* description, bool keep_closed) {
    Answer answer{};
    answer.done = DoBackup(engine_, state, description, keep_closed, backup_);
    answer.code = backup_.code;
    return answer;
}

Answer EngineParts::Backup() { return Backup(NextStateNumber(storage_.journal.get())); }

Answer EngineParts::Restore(std::uint32_t state) {
    const bool done = DoRestore(engine_, state, questions_, restore_);
    return {done, restore_.code};
}

Answer EngineParts::RestoreAdvanced(bool invert) {
    const bool done = DoAdvancedRestore(engine_, invert, questions_, restore_);
    return {done, restore_.code};
}

std::size_t EngineParts::FindingsInPair() {
    Descriptions descriptions(engine_);
    PairCheck check(*storage_.journal, descriptions.stored);
    EXPECT_TRUE(CheckOpenPair(engine_, descriptions, check));
    std::size_t findings = check.findings_in_list();
    for (const ObjectList::Node& node : *storage_.journal) {
        findings += check.DamageOf(*node.record) == Damage::kNone ? 0 : 1;
    }
    return findings;
}

void SetStorageSettings() {
    SetValue(HKEY_CURRENT_USER, Wide(kSettingsKey), Wide(setting::kStorageFile), REG_SZ,
             Terminated(u"Home"));
    SetValue(HKEY_CURRENT_USER, Wide(kSettingsKey), Wide(setting::kStoragePath), REG_SZ,
             Terminated(u"\\Storage Card\\Backup\\"));
}

void SetAdvancedDatabaseRestoring(std::uint32_t value) {
    EXPECT_TRUE(WriteSetting(setting::kAdvancedDBRestoring, value));
}

CEOID OidOfPath(const wchar_t* path) {
    WIN32_FIND_DATAW entry{};
    const UniqueFind search(::FindFirstFileW(path, &entry));
    EXPECT_TRUE(search) << ::GetLastError();
    return entry.dwOID;
}

void SetValue(HKEY root, const std::wstring& key_path, const std::wstring& name, DWORD type,
              const Bytes& data) {
    UniqueHkey key;
    DWORD disposition = 0;
    ASSERT_EQ(ERROR_SUCCESS, ::RegCreateKeyExW(root, key_path.c_str(), 0, nullptr, 0,
                                               KEY_ALL_ACCESS, nullptr, key.Put(), &disposition));
    ASSERT_EQ(ERROR_SUCCESS, ::RegSetValueExW(key.get(), name.c_str(), 0, type,
                                              reinterpret_cast<const BYTE*>(data.data()),
                                              static_cast<DWORD>(data.size())));
}

bool KeyExists(HKEY root, const std::wstring& key_path) {
    UniqueHkey key;
    return ::RegOpenKeyExW(root, key_path.c_str(), 0, 0, key.Put()) == ERROR_SUCCESS;
}

Bytes Value(HKEY root, const std::wstring& key_path, const std::wstring& name) {
    UniqueHkey key;
    char data[1024];
    DWORD bytes = sizeof data;
    DWORD type = 0;
    if (::RegOpenKeyExW(root, key_path.c_str(), 0, 0, key.Put()) != ERROR_SUCCESS ||
        ::RegQueryValueExW(key.get(), name.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(data),
                           &bytes) != ERROR_SUCCESS) {
        return "";
    }
    return std::to_string(type) + ":" + Bytes(data, bytes);
}

CEOID MakeDatabase(const std::wstring& name, DWORD type,
                   const std::vector<SORTORDERSPEC>& sort_orders) {
    CEDBASEINFO info{};
    info.dwFlags = CEDB_VALIDNAME | CEDB_VALIDTYPE | CEDB_VALIDSORTSPEC;
    info.wNumSortOrder = static_cast<WORD>(sort_orders.size());
    std::copy(sort_orders.begin(), sort_orders.end(), info.rgSortSpecs);
    wcscpy(info.szDbaseName, name.c_str());
    info.dwDbaseType = type;
    CEGUID volume{};
    const CEOID oid = ::CeCreateDatabaseEx(&volume, &info);
    EXPECT_NE(0u, oid) << ::GetLastError();
    return oid;
}

CEOID WriteRecord(const std::wstring& database, CEOID record,
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

CEOID AddRecord(const std::wstring& database, const std::vector<TestProperty>& properties) {
    return WriteRecord(database, 0, properties);
}

CEOID AddRecord(const std::wstring& database, const std::wstring& name, std::uint32_t number) {
    return AddRecord(database, {{kName, 0, name}, {kNumber, number}});
}

CEOID AddEmptyRecord(const std::wstring& database) {
    const CEOID oid = AddRecord(database, {{kNumber, 1}});
    CEPROPVAL deletion{};
    deletion.propid = kNumber;
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

}  // namespace tolvenar
