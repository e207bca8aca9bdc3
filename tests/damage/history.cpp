#include "tests/damage/history.h"

#include "platform/win32.h"

#include "simulator/databases/database_store.h"
#include "simulator/files/files.h"
#include "tests/support/engine_parts.h"

namespace tolvenar {
namespace {

using sim::databases::DatabaseStore;
using tests::TestDevice;

constexpr CEPROPID kShort = 0x00040002;     // CEVT_I2
constexpr CEPROPID kUShort = 0x00050012;    // CEVT_UI2
constexpr CEPROPID kUnsigned = 0x00060013;  // CEVT_UI4
constexpr CEPROPID kTime = 0x00070040;      // CEVT_FILETIME
constexpr CEPROPID kTrue = 0x0008000B;      // CEVT_BOOL
constexpr CEPROPID kReal = 0x00090005;      // CEVT_R8

constexpr DWORD kHidden = 0x22;
constexpr DWORD kProtected = 0x21;
constexpr DWORD kHiddenFolder = 0x12;
constexpr std::uint64_t kModified = 0x01C1'8000'0000'0000;

void PutHidden(TestDevice& device, const std::wstring& path, const Bytes& bytes, DWORD attributes) {
    device.PutFile(path, bytes);
    device.SetAttributes(path, attributes);
}

// Its description is the same whatever it holds, as long as its size is.
void PutUntouched(TestDevice& device, const std::wstring& path, const Bytes& bytes) {
    device.PutFile(path, bytes);
    device.Touch(path, kModified);
}

void DeleteValue(const wchar_t* key_path, const wchar_t* name) {
    UniqueHkey key;
    ASSERT_EQ(ERROR_SUCCESS, ::RegOpenKeyExW(HKEY_CURRENT_USER, key_path, 0, 0, key.Put()));
    ASSERT_EQ(ERROR_SUCCESS, ::RegDeleteValueW(key.get(), name));
}

// The record of a database with this kNumber; a record keeps it through all its versions.
CEOID RecordOf(TestDevice& device, const char16_t* database, std::uint32_t number) {
    const DatabaseStore store(device.sim());
    const std::uint32_t oid = store.ByName(database).value().oid;
    for (const std::uint32_t record : store.Records(oid)) {
        if (sim::databases::Find(*store.Read(oid, record), kNumber)->value == Word(number)) {
            return record;
        }
    }
    ADD_FAILURE() << "no record " << number;
    return 0;
}

void DeleteRecord(TestDevice& device, const char16_t* database, std::uint32_t number) {
    DatabaseStore store(device.sim());
    store.DeleteRecord(store.ByName(database)->oid, RecordOf(device, database, number));
}

void ChangeRecord(TestDevice& device, const std::wstring& database, std::uint32_t number,
                  const TestProperty& property) {
    const std::u16string name(database.begin(), database.end());
    WriteRecord(database, RecordOf(device, name.c_str(), number), {property});
}

void DeleteDatabase(TestDevice& device, const char16_t* name) {
    DatabaseStore store(device.sim());
    store.Delete(store.ByName(name)->oid);
}

void FillFiles(TestDevice& device) {
    device.PutFile(L"\\Docs\\a.txt", "first");
    device.PutFile(L"\\Docs\\Deep\\b", "second");
    device.PutFile(L"\\kept", "never changed");
    device.PutFile(L"\\empty", "");
    device.PutFile(L"\\gone", "soon");
    device.PutFile(L"\\Case", "of letters");
    PutUntouched(device, L"\\same", "1234");
    PutHidden(device, L"\\hid", "hidden", kHidden);
    PutHidden(device, L"\\ro", "protected", kProtected);
    device.MakeFolder(L"\\Bare");
    device.MakeFolder(L"\\Secret");
    device.SetAttributes(L"\\Secret", kHiddenFolder);
}

void FillRegistry() {
    SetValue(HKEY_CURRENT_USER, L"T", L"Kept", REG_DWORD, Word(1));
    SetValue(HKEY_CURRENT_USER, L"T", L"Text", REG_SZ, Terminated(u"one"));
    SetValue(HKEY_CURRENT_USER, L"T", L"None", REG_BINARY, "");
    SetValue(HKEY_CURRENT_USER, L"T", L"Type", REG_BINARY, Word(7));
    SetValue(HKEY_CURRENT_USER, L"T", L"Gone", REG_DWORD, Word(9));
    SetValue(HKEY_CURRENT_USER, L"T\\Deep", L"", REG_MULTI_SZ, Terminated(u"m") + Terminated(u""));
    SetValue(HKEY_LOCAL_MACHINE, L"G\\Sub", L"v", REG_DWORD, Word(2));
    SetValue(HKEY_CLASSES_ROOT, L".t", L"", REG_SZ, Terminated(u"t"));
    SetValue(HKEY_USERS, L".D", L"x", 0x1234, "odd");
}

void FillDatabases() {
    MakeDatabase(L"Contacts", 24, {{kNumber, 0}, {kName, CEDB_SORT_CASEINSENSITIVE}});
    TestProperty time{kTime};
    time.time = {0x12345678, 0x01C18000};
    TestProperty real{kReal};
    real.real = 1.5;
    AddRecord(L"Contacts", {{kNumber, 1}, {kName, 0, L"Ann"}, {kBytes, 0, {}, "abcde"}});
    AddRecord(L"Contacts", {{kNumber, 2}, {kShort, 20}, {kUShort, 21}, {kUnsigned, 22}, time});
    AddRecord(L"Contacts", {{kNumber, 3}, {kTrue, 1}, real, {kName, 0, L"Carl"}});
    AddRecord(L"Contacts", {{kNumber, 4}, {kBytes, 0, {}, ""}});
    MakeDatabase(L"Notes", 7, {{kNumber, CEDB_SORT_DESCENDING}});
    AddRecord(L"Notes", {{kNumber, 5}, {kName, 0, L"note"}});
    AddRecord(L"Notes", {{kNumber, 6}});
    MakeDatabase(L"Kept", 7);
    AddRecord(L"Kept", {{kNumber, 7}, {kName, 0, L"kept"}});
}

void ReachFirst(TestDevice& device) {
    FillFiles(device);
    FillRegistry();
    FillDatabases();
}

void ReachSecond(TestDevice& device) {
    device.PutFile(L"\\Docs\\a.txt", "first, but longer");
    device.Remove(L"\\gone");
    device.PutFile(L"\\New\\n", "new");
    PutUntouched(device, L"\\same", "1243");
    sim::files::Rename(device.sim(), L"\\Case", L"\\cASE");
    SetValue(HKEY_CURRENT_USER, L"T", L"Text", REG_SZ, Terminated(u"two"));
    SetValue(HKEY_CURRENT_USER, L"T", L"Type", REG_DWORD, Word(7));
    SetValue(HKEY_CURRENT_USER, L"N", L"n", REG_DWORD, Word(3));
    DeleteValue(L"T", L"Gone");
    ChangeRecord(device, L"Contacts", 1, {kName, 0, L"Anna"});
    DeleteRecord(device, u"Contacts", 4);
    AddRecord(L"Contacts", {{kNumber, 8}, {kName, 0, L"Dora"}});
    MakeDatabase(L"More", 9);
    AddRecord(L"More", {{kNumber, 9}});
}

void ReachThird(TestDevice& device) {
    device.PutFile(L"\\Docs\\a.txt", "third");
    device.Remove(L"\\Docs\\Deep");
    device.PutFile(L"\\third", "3");
    device.SetAttributes(L"\\hid", 0x20);
    PutUntouched(device, L"\\same", "1324");
    SetValue(HKEY_CURRENT_USER, L"T", L"Text", REG_SZ, Terminated(u"three"));
    SetValue(HKEY_CURRENT_USER, L"T", L"Third", REG_BINARY, "");
    ::RegDeleteKeyW(HKEY_LOCAL_MACHINE, L"G");
    ChangeRecord(device, L"Contacts", 2, {kUShort, 121});
    DeleteRecord(device, u"Contacts", 8);
    AddRecord(L"Contacts", {{kNumber, 10}, {kName, 0, L"Eve"}});
    DeleteDatabase(device, u"Notes");
}

}  // namespace

void ReachState(TestDevice& device, std::uint32_t state) {
    using Step = void (*)(TestDevice&);
    constexpr Step kSteps[kStates] = {ReachFirst, ReachSecond, ReachThird};
    kSteps[state - 1](device);
}

void ChangeSince(TestDevice& device) {
    device.PutFile(L"\\Docs\\a.txt", "what the user wrote since");
    device.PutFile(L"\\mine", "the user's");
    device.Remove(L"\\third");
    PutUntouched(device, L"\\same", "4321");
    SetValue(HKEY_CURRENT_USER, L"T", L"Text", REG_SZ, Terminated(u"four"));
    SetValue(HKEY_CURRENT_USER, L"Mine\\Own", L"m", REG_DWORD, Word(4));
    ::RegDeleteKeyW(HKEY_CURRENT_USER, L"N");
    DeleteValue(L"T", L"Kept");
    ChangeRecord(device, L"Contacts", 1, {kName, 0, L"Annabel"});
    ChangeRecord(device, L"Contacts", 3, {kName, 0, L"Charles"});
    DeleteRecord(device, u"Contacts", 10);
    AddRecord(L"Contacts", {{kNumber, 11}, {kName, 0, L"Fred"}});
    DeleteDatabase(device, u"More");
    MakeDatabase(L"Own", 3);
    AddRecord(L"Own", {{kNumber, 12}});
}

void FillForeignDevice(TestDevice& device) {
    device.PutFile(L"\\Docs\\a.txt", "of another device");
    device.PutFile(L"\\kept", "never changed here, too");
    device.PutFile(L"\\theirs", "another's");
    SetValue(HKEY_CURRENT_USER, L"T", L"Text", REG_SZ, Terminated(u"other"));
    SetValue(HKEY_CURRENT_USER, L"T", L"Theirs", REG_DWORD, Word(5));
    MakeDatabase(L"Contacts", 24);
    AddRecord(L"Contacts", {{kNumber, 1}, {kName, 0, L"Zoe"}});
}

}  // namespace tolvenar
