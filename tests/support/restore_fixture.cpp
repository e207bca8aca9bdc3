#include "tests/support/restore_fixture.h"

#include <algorithm>
#include <cstring>

#include "platform/text.h"
#include "platform/unique_resource.h"
#include "simulator/gate/counters.h"
#include "snapshot/records/checksum.h"
#include "storage/format/property_encoding.h"
#include "storage/opened/journal.h"

namespace tolvenar {
namespace {

constexpr wchar_t kSettingsPath[] = L"Software\\Kestrin2\\Tolvenar";

std::string TextBytes(const std::wstring& text) {
    return std::string(reinterpret_cast<const char*>(text.c_str()), (text.size() + 1) * 2);
}

template <typename T>
void Append(std::string& bytes, const T& value) {
    bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

std::string Narrow(const std::wstring& text) {
    std::string narrow;
    for (const wchar_t unit : text) {
        narrow.push_back(unit < 128 ? static_cast<char>(unit) : '?');
    }
    return narrow;
}

}  // namespace

std::wstring W(const std::u16string& text) { return std::wstring(text.begin(), text.end()); }

std::string Dword(std::uint32_t value) {
    std::string bytes;
    Append(bytes, value);
    return bytes;
}

RestoreFixture::RestoreFixture()
    : info_(storage_.registry_objects, databases_),
      engine_{storage_, databases_, info_, progress_} {
    EXPECT_TRUE(MakeStorageNames(u"\\Storage Card\\t", storage_.names));
    SetValue(HKEY_CURRENT_USER, kSettingsPath, L"StoragePath", REG_SZ,
             TextBytes(L"\\Storage Card\\"));
    SetValue(HKEY_CURRENT_USER, kSettingsPath, L"StorageFile", REG_SZ, TextBytes(L"t"));
}

void RestoreFixture::TearDown() {
    NewRun();
    databases_.CloseDatabaseCache();
    DeviceTest::TearDown();
}

ObjectRecord RestoreFixture::StoreBlock(ObjectType type, std::uint32_t first_field,
                                        std::uint32_t second_field, const std::u16string& name,
                                        const std::string& data, std::uint32_t dwOID) {
    ObjectRecord record{};
    record.dwOID = dwOID;
    record.propOffset = static_cast<std::uint32_t>(sav_.size());
    Append(sav_, first_field);
    Append(sav_, second_field);
    Append(sav_, type == ObjectType::kFile ? kSomeTime : std::uint64_t{0});
    Append(sav_, static_cast<std::uint32_t>(data.size()));
    Append(sav_, static_cast<std::uint16_t>(type));
    Append(sav_, static_cast<std::uint16_t>(name.size() * 2));
    Append(sav_, std::uint16_t{0});
    sav_.append(reinterpret_cast<const char*>(name.c_str()), (name.size() + 1) * 2);
    record.info_checksum =
        Checksum16(sav_.data() + record.propOffset, sav_.size() - record.propOffset);
    record.data_offset = data.empty() ? kNoData : static_cast<std::uint32_t>(sav_.size());
    record.state_number = 1;
    record.flags = JF_ADD;
    record.type = type;
    sav_ += data;
    return record;
}

ObjectRecord RestoreFixture::StoreFile(const std::u16string& path, const std::string& contents,
                                       std::uint32_t attributes, std::uint32_t dwOID) {
    return StoreBlock(ObjectType::kFile, attributes, 0, path, contents, dwOID);
}

ObjectRecord RestoreFixture::StoreFolder(const std::u16string& path, std::uint32_t attributes,
                                         std::uint32_t dwOID) {
    return StoreBlock(ObjectType::kFile, attributes, 0, path, "", dwOID);
}

ObjectRecord RestoreFixture::StoreKey(HKEY root, const std::u16string& key_path) {
    ObjectRecord record =
        StoreBlock(ObjectType::kRegistryKey,
                   static_cast<std::uint32_t>(reinterpret_cast<UINT_PTR>(root)), 0, key_path, "");
    record.TolvOID = 0x00110000u + record.propOffset;
    return record;
}

ObjectRecord RestoreFixture::StoreValue(HKEY root, const std::u16string& key_path,
                                        const std::u16string& value_name, std::uint32_t type,
                                        const std::string& data) {
    ObjectRecord record = StoreBlock(ObjectType::kRegistryValue,
                                     static_cast<std::uint32_t>(reinterpret_cast<UINT_PTR>(root)),
                                     type, key_path + kNameSeparator + value_name, data);
    record.TolvOID = 0x00110000u + record.propOffset;
    return record;
}

ObjectRecord RestoreFixture::StoreDatabase(const std::u16string& name, std::uint32_t type,
                                           const std::vector<SORTORDERSPEC>& sort_orders,
                                           std::uint32_t dwOID) {
    std::string data;
    for (const SORTORDERSPEC& spec : sort_orders) {
        Append(data, spec);
    }
    data.resize(32);
    return StoreBlock(ObjectType::kDatabase, type, static_cast<std::uint32_t>(sort_orders.size()),
                      name, data, dwOID);
}

ObjectRecord RestoreFixture::StoreRecord(const std::u16string& database, std::uint32_t dwOID,
                                         const std::vector<PropertyToStore>& properties) {
    std::string data;
    std::string behind;
    for (const PropertyToStore& property : properties) {
        StoredProperty stored{};
        stored.propid = property.propid;
        stored.value = property.number;
        const auto place =
            static_cast<std::uint32_t>(properties.size() * sizeof stored + behind.size());
        if ((property.propid & 0xFFFF) == CEVT_LPWSTR) {
            stored.value = place;
            behind.append(reinterpret_cast<const char*>(property.string.c_str()),
                          (property.string.size() + 1) * 2);
        } else if ((property.propid & 0xFFFF) == CEVT_BLOB) {
            stored.value = static_cast<std::uint32_t>(property.blob.size());
            stored.value_high = place;
            behind += property.blob;
        }
        Append(data, stored);
    }
    return StoreBlock(ObjectType::kDatabaseRecord, static_cast<std::uint32_t>(properties.size()), 0,
                      database, data + behind, dwOID);
}

void RestoreFixture::SaveStorage() { device().PutFile(L"\\Storage Card\\t.sav", sav_); }

void RestoreFixture::SaveJournal(const std::vector<ObjectRecord>& records) {
    std::string bytes;
    for (const ObjectRecord& record : records) {
        Append(bytes, record);
    }
    device().PutFile(L"\\Storage Card\\t.jrn", bytes);
}

void RestoreFixture::LoadJournal() { ASSERT_TRUE(OpenJournal(storage_, nullptr)); }

std::vector<ObjectRecord> RestoreFixture::JournalOnCard() {
    const std::string bytes = device().FileBytes(L"\\Storage Card\\t.jrn");
    std::vector<ObjectRecord> records(bytes.size() / sizeof(ObjectRecord));
    if (!records.empty()) {
        std::memcpy(records.data(), bytes.data(), records.size() * sizeof(ObjectRecord));
    }
    return records;
}

ObjectList& RestoreFixture::MakeDifference(const std::vector<ObjectRecord>& walked) {
    EXPECT_TRUE(ResetList(storage_.difference));
    for (auto record = walked.rbegin(); record != walked.rend(); ++record) {
        EXPECT_TRUE(storage_.difference->InsertCopy(StatelessKeyOf(*record), *record));
    }
    EXPECT_EQ(walked.size(), storage_.difference->CountRecords());
    return *storage_.difference;
}

std::vector<std::uint16_t> RestoreFixture::DifferenceFlags() {
    std::vector<std::uint16_t> flags;
    ObjectList::Cursor cursor = storage_.difference->First();
    ObjectRecord* record = nullptr;
    while (ObjectList::Next(cursor, nullptr, &record)) {
        flags.push_back(record->flags);
    }
    return flags;
}

ObjectRecord RestoreFixture::ToWriteBack(ObjectRecord stored) {
    stored.flags = JF_DELETE;
    return stored;
}

ObjectRecord RestoreFixture::ToDelete(ObjectRecord stored_or_live) {
    stored_or_live.flags = JF_ADD;
    return stored_or_live;
}

ObjectRecord RestoreFixture::Live(ObjectType type, std::uint32_t dwOID) {
    ObjectRecord record{};
    record.dwOID = dwOID;
    record.flags = JF_ADD;
    record.type = type;
    return record;
}

ObjectRecord RestoreFixture::LiveFile(const std::wstring& path) {
    return Live(ObjectType::kFile, device().Info(path).oid);
}

ObjectRecord RestoreFixture::LiveKey(HKEY root, const std::u16string& key_path) {
    ObjectRecord record = Live(ObjectType::kRegistryKey, 0);
    const auto hive = static_cast<std::uint32_t>(reinterpret_cast<UINT_PTR>(root));
    EXPECT_TRUE(storage_.registry_objects.Generate(key_path.c_str(), {true, hive, key_path.c_str()},
                                                   record.TolvOID));
    return record;
}

ObjectRecord RestoreFixture::LiveValue(HKEY root, const std::u16string& key_path,
                                       const std::u16string& value_name) {
    ObjectRecord record = Live(ObjectType::kRegistryValue, 0);
    const auto hive = static_cast<std::uint32_t>(reinterpret_cast<UINT_PTR>(root));
    const std::u16string full = key_path + kNameSeparator + value_name;
    EXPECT_TRUE(storage_.registry_objects.Generate(
        full.c_str(), {false, hive, key_path.c_str(), value_name.c_str(), REG_SZ, "", 0},
        record.TolvOID));
    return record;
}

RestoreTools& RestoreFixture::Run() {
    if (mapping_.size() != sav_.size()) {
        mapping_ = StorageMapping();
        SaveStorage();
        EXPECT_TRUE(mapping_.Open(storage_.names.sav));
        reader_.emplace(mapped_);
    }
    if (!run_) {
        run_.reset(new RestoreTools{info_, *reader_, databases_, mapping_, false, {}});
    }
    return *run_;
}

void RestoreFixture::NewRun() {
    run_.reset();
    mapping_ = StorageMapping();
}

RestoreOutcome RestoreFixture::Restore(const ObjectRecord& record) {
    return DoRestoreRecord(Run(), record, newOid_);
}

void RestoreFixture::SetValue(HKEY root, const std::wstring& key_path, const std::wstring& name,
                              DWORD type, const std::string& data) {
    UniqueHkey key;
    ASSERT_EQ(ERROR_SUCCESS, ::RegCreateKeyExW(root, key_path.c_str(), 0, nullptr, 0,
                                               KEY_ALL_ACCESS, nullptr, key.Put(), nullptr));
    ASSERT_EQ(ERROR_SUCCESS, ::RegSetValueExW(key.get(), name.c_str(), 0, type,
                                              reinterpret_cast<const BYTE*>(data.data()),
                                              static_cast<DWORD>(data.size())));
}

bool RestoreFixture::KeyExists(HKEY root, const std::wstring& key_path) {
    UniqueHkey key;
    return ::RegOpenKeyExW(root, key_path.c_str(), 0, 0, key.Put()) == ERROR_SUCCESS;
}

std::string RestoreFixture::Value(HKEY root, const std::wstring& key_path,
                                  const std::wstring& name) {
    UniqueHkey key;
    if (::RegOpenKeyExW(root, key_path.c_str(), 0, 0, key.Put()) != ERROR_SUCCESS) {
        return "";
    }
    BYTE data[1024];
    DWORD bytes = sizeof data;
    DWORD type = 0;
    if (::RegQueryValueExW(key.get(), name.c_str(), nullptr, &type, data, &bytes) !=
        ERROR_SUCCESS) {
        return "";
    }
    return std::to_string(type) + ":" + std::string(reinterpret_cast<char*>(data), bytes);
}

CEOID RestoreFixture::MakeDatabase(const char16_t* name, DWORD type) {
    const CEOID oid = databases_.CreateDatabase(name, type, 0, nullptr);
    EXPECT_NE(0u, oid);
    return oid;
}

bool RestoreFixture::DatabaseExists(const char16_t* name) {
    CEOID oid = 0;
    const UniqueHandle database(databases_.OpenDatabase(oid, name, 0, 0, nullptr));
    return static_cast<bool>(database);
}

CEOID RestoreFixture::AddRecord(const char16_t* database, const std::wstring& name, int number) {
    CEOID oid = 0;
    const UniqueHandle handle(databases_.OpenDatabase(oid, database, 0, 0, nullptr));
    EXPECT_TRUE(handle);
    alignas(8) CEPROPVAL properties[2] = {};
    properties[0].propid = kName;
    properties[0].val.lpwstr = const_cast<wchar_t*>(name.c_str());
    properties[1].propid = kNumber;
    properties[1].val.lVal = number;
    const CEOID record = ::CeWriteRecordProps(handle.get(), 0, 2, properties);
    EXPECT_NE(0u, record);
    return record;
}

std::vector<std::string> RestoreFixture::Records(const char16_t* database) {
    std::vector<std::string> records;
    CEOID oid = 0;
    const UniqueHandle handle(
        databases_.OpenDatabase(oid, database, 0, CEDB_AUTOINCREMENT, nullptr));
    RecordBuffer buffer;
    while (handle && databases_.ReadRecordProps(handle.get(), buffer) != 0) {
        std::wstring name;
        long number = 0;
        const auto* properties = reinterpret_cast<const CEPROPVAL*>(buffer.bytes());
        for (WORD i = 0; i < buffer.count(); ++i) {
            if (properties[i].propid == kName) {
                name = properties[i].val.lpwstr;
            } else if (properties[i].propid == kNumber) {
                number = properties[i].val.lVal;
            }
        }
        records.push_back(Narrow(name) + "=" + std::to_string(number));
    }
    std::sort(records.begin(), records.end());
    return records;
}

std::string RestoreFixture::StoreContent() {
    std::string content;
    for (const auto& entry : sim::files::ListAll(device().sim())) {
        if (entry.on_card) {
            continue;
        }
        content += Narrow(entry.path) + " " + std::to_string(entry.attributes);
        if (!entry.is_folder) {
            content += " " + std::to_string(entry.modified) + " " + device().FileBytes(entry.path);
        }
        content += "\n";
    }
    return content;
}

std::vector<std::string> RestoreFixture::LogLines() {
    std::vector<std::string> lines;
    if (!device().Exists(L"\\Storage Card\\tolvenar_log.txt")) {
        return lines;
    }
    const std::string bytes = device().FileBytes(L"\\Storage Card\\tolvenar_log.txt");
    std::wstring text(bytes.size() / 2, L'\0');
    std::memcpy(text.data(), bytes.data(), text.size() * 2);
    const std::string module_mark = " - Module: ";
    const std::string message_mark = "; Message: ";
    std::string all = Narrow(text);
    for (std::size_t end = all.find("\r\n"); end != std::string::npos; end = all.find("\r\n")) {
        const std::string line = all.substr(0, end);
        all.erase(0, end + 2);
        const std::size_t module = line.find(module_mark) + module_mark.size();
        const std::size_t message = line.find(message_mark);
        lines.push_back(line.substr(0, 1) + " " + line.substr(module, message - module) + ": " +
                        line.substr(message + message_mark.size()));
    }
    return lines;
}

long RestoreFixture::Calls(const std::string& function) {
    const auto calls = sim::TotalCalls(device().sim());
    const auto found = calls.find(function);
    return found == calls.end() ? 0 : found->second;
}

}  // namespace tolvenar
