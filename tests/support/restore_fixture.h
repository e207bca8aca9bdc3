// A device with a storage on its card, made block by block, and what a restore works with.
#pragma once

#include "platform/win32.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

#include "snapshot/text/progress.h"
#include "storage/objects/restore_record.h"
#include "storage/opened/engine.h"
#include "tests/support/device_test.h"

namespace tolvenar {

// Keeps what a restore announces.
class RestoreProgress final : public Progress {
public:
    void ProgressBegin(std::size_t count) override {
        begun.push_back(count);
        texts_before_range = texts.size();
    }
    void ProgressStep(const char16_t* text) override {
        if (text != nullptr) {
            texts.emplace_back(text);
        } else {
            ++items;
        }
    }
    std::vector<std::size_t> begun;
    std::vector<std::u16string> texts;
    std::size_t texts_before_range = 0;  // before the last one began
    int items = 0;
};

// One property of a database record.
struct PropertyToStore {
    CEPROPID propid;
    std::uint32_t number;   // integers and Booleans
    std::u16string string;  // CEVT_LPWSTR
    std::string blob;       // CEVT_BLOB
};

constexpr std::uint64_t kSomeTime = 0x01C2'8000'1234'5600;  // a FILETIME in 2002
constexpr CEPROPID kName = 0x0001001F;                      // a CEVT_LPWSTR
constexpr CEPROPID kNumber = 0x00020003;                    // a CEVT_I4
constexpr CEPROPID kBytes = 0x00030041;                     // a CEVT_BLOB

class RestoreFixture : public tests::DeviceTest {
protected:
    RestoreFixture();
    void TearDown() override;

    // Append a block to the storage file's bytes. The records are additions of state 1.
    ObjectRecord StoreBlock(ObjectType type, std::uint32_t first_field, std::uint32_t second_field,
                            const std::u16string& name, const std::string& data,
                            std::uint32_t dwOID = 0);
    ObjectRecord StoreFile(const std::u16string& path, const std::string& contents,
                           std::uint32_t attributes = FILE_ATTRIBUTE_ARCHIVE,
                           std::uint32_t dwOID = 900);
    ObjectRecord StoreFolder(const std::u16string& path,
                             std::uint32_t attributes = FILE_ATTRIBUTE_DIRECTORY,
                             std::uint32_t dwOID = 901);
    ObjectRecord StoreKey(HKEY root, const std::u16string& key_path);
    ObjectRecord StoreValue(HKEY root, const std::u16string& key_path,
                            const std::u16string& value_name, std::uint32_t type,
                            const std::string& data);
    ObjectRecord StoreDatabase(const std::u16string& name, std::uint32_t type,
                               const std::vector<SORTORDERSPEC>& sort_orders = {},
                               std::uint32_t dwOID = 902);
    ObjectRecord StoreRecord(const std::u16string& database, std::uint32_t dwOID,
                             const std::vector<PropertyToStore>& properties);
    // Write the bytes as the storage file, records as the journal.
    void SaveStorage();
    void SaveJournal(const std::vector<ObjectRecord>& records);
    // Reads the journal file into the open storage.
    void LoadJournal();
    std::vector<ObjectRecord> JournalOnCard();

    // The difference list, in the order of a walk. Returned by reference: the storage owns it.
    ObjectList& MakeDifference(const std::vector<ObjectRecord>& walked);
    std::vector<std::uint16_t> DifferenceFlags();

    // Records as a comparison leaves them.
    static ObjectRecord ToWriteBack(ObjectRecord stored);
    static ObjectRecord ToDelete(ObjectRecord stored_or_live);
    static ObjectRecord Live(ObjectType type, std::uint32_t dwOID);
    ObjectRecord LiveFile(const std::wstring& path);
    // Enters a registry object in the table, as a scan does.
    ObjectRecord LiveKey(HKEY root, const std::u16string& key_path);
    ObjectRecord LiveValue(HKEY root, const std::u16string& key_path,
                           const std::u16string& value_name);

    // The storage file mapped, as a restore has it; again when it has become longer.
    RestoreTools& Run();
    // The next restore takes the storage file's bytes as they are then.
    void NewRun();
    RestoreOutcome Restore(const ObjectRecord& record);
    CEOID newOid() const { return newOid_; }

    // The device's registry and databases.
    static void SetValue(HKEY root, const std::wstring& key_path, const std::wstring& name,
                         DWORD type, const std::string& data);
    static bool KeyExists(HKEY root, const std::wstring& key_path);
    // "type:bytes", "" when it is absent.
    static std::string Value(HKEY root, const std::wstring& key_path, const std::wstring& name);
    CEOID MakeDatabase(const char16_t* name, DWORD type = 1);
    bool DatabaseExists(const char16_t* name);
    CEOID AddRecord(const char16_t* database, const std::wstring& name, int number);
    // "name=number" of each record, sorted.
    std::vector<std::string> Records(const char16_t* database);

    // Files and folders of the object store with attributes, times and contents, but no ids.
    std::string StoreContent();
    // Lines of the log without date and time: "E DoRestoreRecord: Fail GetOIDInfo".
    std::vector<std::string> LogLines();
    long Calls(const std::string& function);

    OpenedStorage storage_;
    DatabaseLayer databases_;
    ObjectInfo info_;
    RestoreProgress progress_;
    Engine engine_;
    std::string sav_ = std::string(236, '\0');
    StorageMapping mapping_;
    MappedBytes mapped_{mapping_};
    std::optional<StorageReader> reader_;
    std::unique_ptr<RestoreTools> run_;

private:
    CEOID newOid_ = 0;
};

std::wstring W(const std::u16string& text);
std::string Dword(std::uint32_t value);

}  // namespace tolvenar
