// A storage on the card made block by block, and what a restore of its objects works with.
#pragma once

#include <optional>

#include "storage/format/storage_reader.h"
#include "storage/objects/restore_record.h"
#include "tests/support/engine_test.h"

namespace tolvenar {

constexpr std::uint64_t kSomeTime = 0x01C2'8000'1234'5600;  // a FILETIME in 2002
constexpr auto kDone = RestoreOutcome::kDone;
constexpr auto kFailed = RestoreOutcome::kFailed;

class RestoreFixture : public StorageTest {
protected:
    void TearDown() override;

    // Append a block to the storage file's bytes. The records are additions of state 1.
    ObjectRecord StoreBlock(ObjectType type, std::uint32_t first_field, std::uint32_t second_field,
                            const Text& name, const Bytes& data, std::uint32_t dwOID = 0);
    ObjectRecord StoreFile(const Text& path, const Bytes& contents,
                           std::uint32_t attributes = FILE_ATTRIBUTE_ARCHIVE,
                           std::uint32_t dwOID = 900);
    ObjectRecord StoreFolder(const Text& path, std::uint32_t attributes = FILE_ATTRIBUTE_DIRECTORY,
                             std::uint32_t dwOID = 901);
    ObjectRecord StoreKey(HKEY root, const Text& key_path);
    ObjectRecord StoreValue(HKEY root, const Text& key_path, const Text& value_name,
                            std::uint32_t type, const Bytes& data);
    ObjectRecord StoreDatabase(const Text& name, std::uint32_t type,
                               const std::vector<SORTORDERSPEC>& sort_orders = {},
                               std::uint32_t dwOID = 902);
    ObjectRecord StoreRecord(const Text& database, std::uint32_t dwOID,
                             const std::vector<TestProperty>& properties);
    // Write the bytes as the storage file, records as the journal.
    void SaveStorage() { Put(kSav, sav_); }
    void SaveJournal(const std::vector<ObjectRecord>& records);

    // The difference list, in the order of a walk. Returned by reference: the storage owns it.
    ObjectList& MakeDifference(const std::vector<ObjectRecord>& walked);
    std::vector<std::uint16_t> DifferenceFlags();

    // Records as a comparison leaves them.
    static ObjectRecord ToWriteBack(ObjectRecord stored);
    static ObjectRecord ToDelete(ObjectRecord stored_or_live);
    static ObjectRecord Live(ObjectType type, std::uint32_t dwOID);
    ObjectRecord LiveFile(const std::wstring& path);
    // Enters a registry object in the table, as a scan does.
    ObjectRecord LiveKey(HKEY root, const Text& key_path);
    ObjectRecord LiveValue(HKEY root, const Text& key_path, const Text& value_name);

    // The storage file mapped, as a restore has it; again when it has become longer.
    RestoreTools& Run();
    // The next restore takes the storage file's bytes as they are then.
    void NewRun();
    RestoreOutcome RestoreObject(const ObjectRecord& record);
    RestoreOutcome WriteBack(const ObjectRecord& stored) {
        return RestoreObject(ToWriteBack(stored));
    }
    RestoreOutcome Delete(const ObjectRecord& stored_or_live) {
        return RestoreObject(ToDelete(stored_or_live));
    }
    // One call of `function` fails while the storage is mapped already.
    void FailInRun(const char* function, int n, std::uint32_t error);
    CEOID newOid() const { return newOid_; }

    Bytes sav_ = Bytes(236, '\0');
    StorageMapping mapping_;
    MappedBytes mapped_{mapping_};
    StorageWindow window_{mapping_};
    std::optional<StorageReader> reader_;
    WrittenRecords written_;
    KeptKey key_{0};
    std::unique_ptr<RestoreTools> run_;

private:
    CEOID newOid_ = 0;
};

}  // namespace tolvenar
