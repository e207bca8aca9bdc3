#include "tests/support/restore_fixture.h"

#include "snapshot/records/checksum.h"

namespace tolvenar {
namespace {

std::uint32_t HiveOf(HKEY root) {
    return static_cast<std::uint32_t>(reinterpret_cast<UINT_PTR>(root));
}

}  // namespace

void RestoreFixture::TearDown() {
    NewRun();
    databases_.CloseDatabaseCache();
    StorageTest::TearDown();
}

ObjectRecord RestoreFixture::StoreBlock(ObjectType type, std::uint32_t first_field,
                                        std::uint32_t second_field, const Text& name,
                                        const Bytes& data, std::uint32_t dwOID) {
    const Bytes block =
        Block(first_field, second_field, type == kFile ? kSomeTime : 0, data.size(), type, name);
    ObjectRecord record{};
    record.dwOID = dwOID;
    record.propOffset = static_cast<std::uint32_t>(sav_.size());
    record.info_checksum = Checksum16(block.data(), block.size());
    sav_ += block;
    record.data_offset = data.empty() ? kNoData : static_cast<std::uint32_t>(sav_.size());
    record.state_number = 1;
    record.flags = JF_ADD;
    record.type = type;
    sav_ += data;
    return record;
}

ObjectRecord RestoreFixture::StoreFile(const Text& path, const Bytes& contents,
                                       std::uint32_t attributes, std::uint32_t dwOID) {
    return StoreBlock(kFile, attributes, 0, path, contents, dwOID);
}

ObjectRecord RestoreFixture::StoreFolder(const Text& path, std::uint32_t attributes,
                                         std::uint32_t dwOID) {
    return StoreBlock(kFile, attributes, 0, path, "", dwOID);
}

ObjectRecord RestoreFixture::StoreKey(HKEY root, const Text& key_path) {
    ObjectRecord record = StoreBlock(kKey, HiveOf(root), 0, key_path, "");
    record.TolvOID = 0x00110000u + record.propOffset;
    return record;
}

ObjectRecord RestoreFixture::StoreValue(HKEY root, const Text& key_path, const Text& value_name,
                                        std::uint32_t type, const Bytes& data) {
    ObjectRecord record =
        StoreBlock(kValue, HiveOf(root), type, key_path + kNameSeparator + value_name, data);
    record.TolvOID = 0x00110000u + record.propOffset;
    return record;
}

ObjectRecord RestoreFixture::StoreDatabase(const Text& name, std::uint32_t type,
                                           const std::vector<SORTORDERSPEC>& sort_orders,
                                           std::uint32_t dwOID) {
    Bytes data;
    for (const SORTORDERSPEC& spec : sort_orders) {
        data += BytesOf(spec);
    }
    data.resize(32);
    return StoreBlock(kDatabase, type, static_cast<std::uint32_t>(sort_orders.size()), name, data,
                      dwOID);
}

ObjectRecord RestoreFixture::StoreRecord(const Text& database, std::uint32_t dwOID,
                                         const std::vector<TestProperty>& properties) {
    constexpr std::size_t kPropertyBytes = 16;
    Bytes data;
    Bytes behind;
    for (const TestProperty& property : properties) {
        const auto place =
            static_cast<std::uint32_t>(properties.size() * kPropertyBytes + behind.size());
        if ((property.propid & 0xFFFF) == CEVT_LPWSTR) {
            data += Property(property.propid, place);
            behind += Terminated(Utf16(property.text.c_str()));
        } else if ((property.propid & 0xFFFF) == CEVT_BLOB) {
            data +=
                Property(property.propid, static_cast<std::uint32_t>(property.blob.size()), place);
            behind += property.blob;
        } else {
            data += Property(property.propid, property.number);
        }
    }
    return StoreBlock(kDbRecord, static_cast<std::uint32_t>(properties.size()), 0, database,
                      data + behind, dwOID);
}

void RestoreFixture::SaveJournal(const std::vector<ObjectRecord>& records) {
    Bytes bytes;
    for (const ObjectRecord& record : records) {
        bytes += BytesOf(record);
    }
    Put(kJournal, bytes);
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
    return FieldsOf(*storage_.difference, &ObjectRecord::flags);
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
    return Live(kFile, device().Info(path).oid);
}

ObjectRecord RestoreFixture::LiveKey(HKEY root, const Text& key_path) {
    ObjectRecord record = Live(kKey, 0);
    EXPECT_TRUE(storage_.registry_objects.Generate(
        key_path.c_str(), {true, HiveOf(root), key_path.c_str()}, record.TolvOID));
    return record;
}

ObjectRecord RestoreFixture::LiveValue(HKEY root, const Text& key_path, const Text& value_name) {
    ObjectRecord record = Live(kValue, 0);
    const Text full = key_path + kNameSeparator + value_name;
    EXPECT_TRUE(storage_.registry_objects.Generate(
        full.c_str(), {false, HiveOf(root), key_path.c_str(), value_name.c_str(), REG_SZ, "", 0},
        record.TolvOID));
    return record;
}

RestoreTools& RestoreFixture::Run() {
    if (mapping_.size() != sav_.size()) {
        window_.Close();
        mapping_ = StorageMapping();
        SaveStorage();
        EXPECT_TRUE(mapping_.Open(storage_.names.sav));
        reader_.emplace(mapped_);
    }
    if (!run_) {
        run_.reset(new RestoreTools{info_,
                                    databases_,
                                    mapping_,
                                    window_,
                                    DatabaseRestore::kByDevice,
                                    written_,
                                    {storage_.journal.get(), *reader_, info_},
                                    key_});
    }
    return *run_;
}

void RestoreFixture::NewRun() {
    run_.reset();
    key_.Close();
    window_.Close();
    mapping_ = StorageMapping();
}

RestoreOutcome RestoreFixture::RestoreObject(const ObjectRecord& record) {
    return DoRestoreRecord(Run(), record, newOid_);
}

void RestoreFixture::FailInRun(const char* function, int n, std::uint32_t error) {
    Run();
    Fail(function, n, error);
}

}  // namespace tolvenar
