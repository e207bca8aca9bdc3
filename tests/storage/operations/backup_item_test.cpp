// The objects of a backup, one by one: their blocks and data in the storage file, their records.
#include <cstring>

#include "snapshot/records/checksum.h"
#include "storage/files/handle_bytes.h"
#include "storage/format/property_encoding.h"
#include "storage/objects/object_data_writers.h"
#include "storage/operations/backup_room.h"
#include "storage/operations/backup_writer.h"
#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

constexpr std::size_t kHead = 236;  // of a silent storage

class BackupItemTest : public EngineTest {
protected:
    // The storage file, open for appending.
    struct OpenedSav {
        explicit OpenedSav(const StorageNames& names)
            : file(OpenSavFileForWriting(names)),
              storage(bytes, ::GetFileSize(file.get(), nullptr)) {}
        UniqueHandle file;
        HandleBytes bytes{file.get()};
        StorageAppender storage;
    };

    bool Store(ObjectRecord& record) {
        OpenedSav sav(storage_.names);
        return BackupItem(engine_, sav.storage, record);
    }

    // Whether the data of an object that was described by `block` before can be written.
    bool Writes(const InfoBlock& block, CEOID oid) {
        OpenedSav sav(storage_.names);
        StoredData data;
        return BackupObjectData({info_, databases_, sav.storage, block, 0, oid}, data);
    }

    // The record of an object that is to be stored.
    static ObjectRecord Added(ObjectType type, CEOID oid) {
        ObjectRecord record{};
        record.dwOID = oid;
        record.flags = JF_ADD;
        record.type = type;
        return record;
    }
    static ObjectRecord AddedFile(CEOID oid) { return Added(kFile, oid); }

    // The record fails, and the place behind the head is taken by the next one.
    void ExpectFailure(ObjectRecord record) {
        device().PutFile(L"\\n.txt", "123456789");
        OpenedSav sav(storage_.names);
        EXPECT_FALSE(BackupItem(engine_, sav.storage, record));
        EXPECT_EQ(0u, record.propOffset);
        ObjectRecord next = AddedFile(OidOfPath(L"\\n.txt"));
        EXPECT_TRUE(BackupItem(engine_, sav.storage, next));
        EXPECT_EQ(kHead, next.propOffset);
    }
};

TEST_F(BackupItemTest, AFilesRecordLeadsToItsBlockAndData) {
    ASSERT_EQ(Done(), Backup(1));
    device().PutFile(L"\\n.txt", "123456789");
    ASSERT_TRUE(Backup(2).done);
    const ObjectRecord* record = JournalRecord(2, OidOfPath(L"\\n.txt"), kFile);
    ASSERT_NE(nullptr, record);
    EXPECT_EQ(Checksum16(Content(kSav).data() + record->propOffset, 40), record->info_checksum);
    EXPECT_EQ(record->propOffset + 40, record->data_offset);
    EXPECT_EQ("123456789", Content(kSav).substr(record->data_offset, 9));
    EXPECT_EQ(0x6F91, record->content_fingerprint);
    EXPECT_EQ(JF_ADD, record->flags);
}

TEST_F(BackupItemTest, AnEmptyFileHasNoDataAndTheFingerprintFfff) {
    device().PutFile(L"\\empty", "");
    ASSERT_EQ(Done(), Backup(1));
    const ObjectRecord* record = JournalRecord(1, OidOfPath(L"\\empty"), kFile);
    ASSERT_NE(nullptr, record);
    EXPECT_EQ(kNoData, record->data_offset);
    EXPECT_EQ(0xFFFF, record->content_fingerprint);
}

TEST_F(BackupItemTest, AFolderHasABlockWithoutDataAndTheFingerprintZero) {
    device().MakeFolder(L"\\A");
    ASSERT_EQ(Done(), Backup(1));
    const ObjectRecord* record = JournalRecord(1, OidOfPath(L"\\A"), kFile);
    ASSERT_NE(nullptr, record);
    EXPECT_NE(0u, record->propOffset);
    EXPECT_EQ(kNoData, record->data_offset);
    EXPECT_EQ(0, record->content_fingerprint);
}

TEST_F(BackupItemTest, AKeyHasNoDataAndAValueItsBytes) {
    ASSERT_EQ(Done(), Backup(1));
    SetValue(HKEY_CURRENT_USER, L"T", L"v", REG_BINARY, "123456789");
    ASSERT_TRUE(Backup(2).done);
    const std::string key = Block(0x80000001, 0, 0, 0, kKey, u"T");
    const std::string value =
        Block(0x80000001, REG_BINARY, 0, 9, kValue, u"T\u00FFv") + "123456789";
    const std::string sav = Content(kSav);
    EXPECT_NE(std::string::npos, sav.find(key));
    EXPECT_NE(std::string::npos, sav.find(value));
    for (const ObjectRecord& record : RecordsOf(*storage_.journal)) {
        if (record.state_number == 2 && record.type == kKey) {
            EXPECT_EQ(kNoData, record.data_offset);
            EXPECT_EQ(0xFFFF, record.content_fingerprint);
        }
        if (record.state_number == 2 && record.type == kValue) {
            EXPECT_EQ("123456789", sav.substr(record.data_offset, 9));
            EXPECT_EQ(0x6F91, record.content_fingerprint);
        }
    }
}

TEST_F(BackupItemTest, AValueOfAKeyWhoseNameHoldsTheSeparatorIsStored) {
    SetValue(HKEY_CURRENT_USER, L"T\\a\u00FFb", L"v", REG_SZ, "123456789");
    ASSERT_EQ(Done(), Backup(1));
    EXPECT_EQ(u"", Log());
    EXPECT_NE(std::string::npos, Content(kSav).find("123456789"));
}

TEST_F(BackupItemTest, AnEmptyValueIsStored) {
    SetValue(HKEY_CURRENT_USER, L"T", L"", REG_SZ, "");
    ASSERT_EQ(Done(), Backup(1));
    EXPECT_EQ(u"", Log());
    EXPECT_NE(std::string::npos,
              Content(kSav).find(Block(0x80000001, REG_SZ, 0, 0, kValue, u"T\u00FF")));
}

TEST_F(BackupItemTest, AValueThatIsGoneOrHasAnotherLengthFails) {
    SetValue(HKEY_CURRENT_USER, L"T", L"v", REG_BINARY, "123456789");
    const struct {
        const char16_t* key_path;
        const char16_t* value_name;
        std::uint32_t data_bytes;
    } rows[] = {{u"Gone", u"v", 9}, {u"T", u"gone", 9}, {u"T", u"v", 8}, {u"T", u"v", 10}};
    for (const auto& row : rows) {
        Put(kSav, Content(kSav).substr(0, kHead));
        storage_.registry_objects.RegObjectClear();
        ASSERT_TRUE(storage_.registry_objects.RegObjectAdd(
            5, {false, 0x80000001, row.key_path, row.value_name, REG_BINARY, nullptr,
                row.data_bytes}));
        ObjectRecord record = Added(kValue, 0);
        record.TolvOID = 5;
        ExpectFailure(record);
    }
}

TEST_F(BackupItemTest, ADatabaseThatVanishesBehindItsBlockFails) {
    const CEOID oid = MakeDatabase(L"First");
    // Asked for the block first.
    Fail("CeOidGetInfoEx", 2, ERROR_INVALID_HANDLE);
    ExpectFailure(Added(kDatabase, oid));
}

TEST_F(BackupItemTest, ALargeFileOfWhichTheBlockAloneWasWrittenFails) {
    device().PutFile(L"\\large.txt", std::string(10000, 'l'));
    Fail("WriteFile", 2, ERROR_WRITE_FAULT);
    ExpectFailure(AddedFile(OidOfPath(L"\\large.txt")));
}

// Block and data go out in one write, those of a large file in two.
TEST_F(BackupItemTest, AnObjectWhoseDataCannotBeWrittenFails) {
    device().PutFile(L"\\a.txt", "a");
    const CEOID database = MakeDatabase(L"First");
    const CEOID record = AddRecord(L"First", {{kNumber, 1}});
    SetValue(HKEY_CURRENT_USER, L"T", L"v", REG_BINARY, "x");
    ASSERT_TRUE(storage_.registry_objects.RegObjectAdd(
        5, {false, 0x80000001, u"T", u"v", REG_BINARY, nullptr, 1}));
    ObjectRecord value = Added(kValue, 0);
    value.TolvOID = 5;
    for (const ObjectRecord& object : {AddedFile(OidOfPath(L"\\a.txt")), Added(kDatabase, database),
                                       Added(kDbRecord, record), value, Added(kState, 0)}) {
        Put(kSav, Content(kSav).substr(0, kHead));
        Fail("WriteFile", 1, ERROR_WRITE_FAULT);
        ExpectFailure(object);
        device().EndFaults();
    }
}

// Cut to the size of before it would be no version that ever was.
TEST_F(BackupItemTest, AFileThatGrewOrShrankSinceItWasDescribedFails) {
    device().PutFile(L"\\n.txt", "123456789");
    InfoBlock block;
    ASSERT_TRUE(info_.GetOIDInfo(0, OidOfPath(L"\\n.txt"), block));
    for (const char* contents : {"1234567890", "12345678", ""}) {
        device().PutFile(L"\\n.txt", contents);
        EXPECT_FALSE(Writes(block, 0)) << contents;
    }
    device().PutFile(L"\\n.txt", "987654321");
    EXPECT_TRUE(Writes(block, 0));
}

TEST_F(BackupItemTest, ARecordIsWrittenAsItWasDescribed) {
    MakeDatabase(L"First");
    const CEOID oid = AddRecord(L"First", {{kNumber, 1}, {kName, 0, L"name"}});
    const CEOID other = AddRecord(L"First", {{kNumber, 1}, {kName, 0, L"eman"}});
    const ObjectInfo::KeptOpen until_written(info_);
    InfoBlock block;
    ASSERT_TRUE(info_.GetOIDInfo(0, oid, block));
    WriteRecord(L"First", oid, {{kName, 0, L"a longer name"}});
    EXPECT_TRUE(Writes(block, oid));
    // Only the properties that were read for this very description are its data.
    block.head().property_count = 3;
    EXPECT_FALSE(Writes(block, oid));
    ASSERT_TRUE(info_.GetOIDInfo(0, other, block));
    EXPECT_FALSE(Writes(block, oid));
}

TEST_F(BackupItemTest, ARecordThatChangedSinceTheScanIsStoredAsItIsNow) {
    MakeDatabase(L"First");
    const CEOID oid = AddRecord(L"First", {{kName, 0, L"name"}});
    ObjectRecord record = Added(kDbRecord, oid);
    const std::uint32_t before = EstimateBlockSize(engine_, record);
    WriteRecord(L"First", oid, {{kName, 0, L"a longer name"}});
    ASSERT_TRUE(Store(record));
    InfoBlock block;
    ASSERT_TRUE(info_.GetOIDInfo(0, oid, block));
    EXPECT_EQ(Checksum16(block.bytes(), block.size()), record.info_checksum);
    EXPECT_LT(before, block.size() + block.head().data_bytes);
    EXPECT_EQ(kHead + block.size() + block.head().data_bytes, Content(kSav).size());
}

TEST_F(BackupItemTest, AFileIsOpenedWithoutSharingAndForRandomAccess) {
    device().PutFile(L"\\a.txt", "a");
    ObjectRecord record = AddedFile(OidOfPath(L"\\a.txt"));
    OpenedSav sav(storage_.names);
    const std::string calls = device().Traced(
        "CreateFileForMappingW", [&] { EXPECT_TRUE(BackupItem(engine_, sav.storage, record)); });
    // Reading, no sharing, the file must exist; 0x10000080.
    EXPECT_NE(std::string::npos, calls.find("a.txt, 2147483648, 0, 3, 268435584\"")) << calls;
}

TEST_F(BackupItemTest, AChunkThatCannotBeUnmappedFailsItsItem) {
    device().PutFile(L"\\a.txt", "a");
    ObjectRecord record = AddedFile(OidOfPath(L"\\a.txt"));
    OpenedSav sav(storage_.names);
    Fail("UnmapViewOfFile", 1, ERROR_INVALID_PARAMETER);
    const std::string calls = device().Traced(
        "UnmapViewOfFile", [&] { EXPECT_FALSE(BackupItem(engine_, sav.storage, record)); });
    // The fault left the view open.
    const std::size_t view = calls.find("0x");
    ASSERT_NE(std::string::npos, view);
    EXPECT_TRUE(::UnmapViewOfFile(
        reinterpret_cast<void*>(std::stoul(calls.substr(view + 2), nullptr, 16))));
}

TEST_F(BackupItemTest, ADatabaseStoresItsSortOrdersAndKeepsItsRecordCount) {
    ASSERT_EQ(Done(), Backup(1));
    const CEOID oid = MakeDatabase(L"First", 77);
    AddRecord(L"First", {{kNumber, 1}});
    ASSERT_TRUE(Backup(2).done);
    const ObjectRecord* record = JournalRecord(2, oid, kDatabase);
    ASSERT_NE(nullptr, record);
    EXPECT_EQ(1, record->content_fingerprint);
    EXPECT_EQ(Block(77, 0, 0, 32, kDatabase, u"First"),
              Content(kSav).substr(record->propOffset, 38));
    EXPECT_EQ(record->propOffset + 38, record->data_offset);
    CEOIDINFO info;
    ASSERT_TRUE(databases_.GetObjectInfo(oid, info));
    EXPECT_EQ(0, std::memcmp(info.infDatabase.rgSortSpecs,
                             Content(kSav).data() + record->data_offset, 32));
}

TEST_F(BackupItemTest, ARecordStoresItsPropertiesWithOffsetsForPointers) {
    MakeDatabase(L"First");
    const CEOID oid = AddRecord(
        L"First", {{kNumber, 0x11223344}, {0x0002001F, 0, L"ab"}, {0x00030041, 0, {}, "xyz"}});
    ASSERT_EQ(Done(), Backup(1));
    const ObjectRecord* record = JournalRecord(1, oid, kDbRecord);
    ASSERT_NE(nullptr, record);
    InfoBlock block;
    ASSERT_TRUE(info_.GetOIDInfo(0, oid, block));
    const std::string data = Content(kSav).substr(record->data_offset, block.head().data_bytes);
    StoredProperty properties[3];
    ASSERT_LE(sizeof properties, data.size());
    std::memcpy(properties, data.data(), sizeof properties);
    for (const StoredProperty& property : properties) {
        switch (property.propid & 0xFFFF) {
            case CEVT_I4: EXPECT_EQ(0x11223344u, property.value); break;
            case CEVT_LPWSTR: EXPECT_EQ(Terminated(u"ab"), data.substr(property.value, 6)); break;
            default:
                EXPECT_EQ(3u, property.value);
                EXPECT_EQ("xyz", data.substr(property.value_high, 3));
        }
    }
    std::uint16_t checksum = 0;
    EXPECT_TRUE(ChecksumOfProperties(data.data(), data.size(), 3, checksum));
    EXPECT_EQ(checksum, record->content_fingerprint);
}

// Such a record may read as "no data".
TEST_F(BackupItemTest, ARecordWithoutPropertiesHasTheFingerprintZeroAndIsNoDifferenceLater) {
    MakeDatabase(L"First");
    std::uint32_t state = 1;
    for (const char* read_as : {"", "no-data"}) {
        device().Set("database.empty.record", read_as);
        const CEOID oid = AddEmptyRecord(L"First");
        const auto number = static_cast<std::uint16_t>(state);
        ASSERT_TRUE(Backup(state++).done);
        EXPECT_EQ(u"", Log()) << read_as;
        const ObjectRecord* record = JournalRecord(number, oid, kDbRecord);
        ASSERT_NE(nullptr, record) << read_as;
        EXPECT_EQ(0, record->content_fingerprint);
        EXPECT_EQ(record->propOffset + 38, record->data_offset);
        EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(state)) << read_as;
    }
}

TEST_F(BackupItemTest, ARecordThatCannotBeReadIsNotStoredAsAnotherOneOrAsAnEmptyOne) {
    MakeDatabase(L"First");
    AddRecord(L"First", {{kNumber, 1}});
    const CEOID oid = AddRecord(L"First", {{kNumber, 2}});
    for (const char* function : {"CeSeekDatabase", "CeOpenDatabaseEx", "CeReadRecordPropsEx"}) {
        Put(kSav, Content(kSav).substr(0, kHead));
        Fail(function, 1, ERROR_NOT_ENOUGH_MEMORY);
        ExpectFailure(Added(kDbRecord, oid));
        device().EndFaults();
    }
}

TEST_F(BackupItemTest, AnEstimateIsBlockAndDataOfAdditionsOnly) {
    device().PutFile(L"\\n.txt", "123456789");
    ObjectRecord record = AddedFile(OidOfPath(L"\\n.txt"));
    EXPECT_EQ(28u + 12u + 9u, EstimateBlockSize(engine_, record));
    record.flags = JF_DELETE;
    EXPECT_EQ(0u, EstimateBlockSize(engine_, record));
    record.flags = JF_ADD;
    record.dwOID += 1000;
    EXPECT_EQ(0u, EstimateBlockSize(engine_, record));
}

TEST_F(BackupItemTest, ARecordThatIsNoAdditionNeedsNothing) {
    OpenedSav sav(storage_.names);
    ObjectRecord record{};
    record.dwOID = 0x00ABCDEF;
    record.flags = JF_DELETE;
    EXPECT_TRUE(BackupItem(engine_, sav.storage, record));
    EXPECT_EQ(kHead, Content(kSav).size());
}

TEST_F(BackupItemTest, AFailedItemsPlaceIsTakenByTheNextOne) {
    device().PutFile(L"\\held.txt", "held");
    device().PutFile(L"\\n.txt", "123456789");
    ObjectRecord held = AddedFile(OidOfPath(L"\\held.txt"));
    ObjectRecord next = AddedFile(OidOfPath(L"\\n.txt"));
    const auto lock = device().Lock(L"\\held.txt");
    OpenedSav sav(storage_.names);
    EXPECT_FALSE(BackupItem(engine_, sav.storage, held));
    EXPECT_EQ(0u, held.propOffset);
    EXPECT_TRUE(BackupItem(engine_, sav.storage, next));
    EXPECT_EQ(kHead, next.propOffset);
    EXPECT_EQ("123456789", Content(kSav).substr(kHead + 40, 9));
}

TEST_F(BackupItemTest, AFailedItemIsMarkedCountedAndLogged) {
    device().PutFile(L"\\held.txt", "held");
    const CEOID oid = OidOfPath(L"\\held.txt");
    auto list = ObjectList::CreateList();
    for (const CEOID id : {oid, CEOID{0x00ABCDEF}}) {
        ASSERT_TRUE(list->AddObject(AddedFile(id)));
    }
    const auto lock = device().Lock(L"\\held.txt");
    OpenedSav sav(storage_.names);
    std::size_t failed = 99;
    EXPECT_EQ(1, BackupItems(engine_, sav.storage, *list, failed));
    EXPECT_EQ(2u, failed);
    for (const ObjectRecord& record : RecordsOf(*list)) {
        EXPECT_EQ(JF_ADD | JF_FAILED, record.flags);
    }
    EXPECT_EQ(std::vector<std::size_t>{2}, progress_.begins);
    EXPECT_EQ(2u, progress_.steps);
    char16_t line[100];
    ::wsprintfW(Wide(line), L"dwOID = %x, TolvOID = 0\r\nObj Name: \\held.txt\r\nObj Type: 10",
                oid);
    EXPECT_NE(Text::npos, Log().find(Text(u"backup item failed; Message: ") + line)) << "named";
    EXPECT_NE(Text::npos,
              Log().find(u"Message: unavailable info from dwOID = abcdef, TolvOID = 0"));
    EXPECT_EQ(0u, Log().find(u"E - "));
}

TEST_F(BackupItemTest, AFileInRomHasABlockWithoutDataAndTheFingerprintZero) {
    for (const DWORD attribute : {FILE_ATTRIBUTE_INROM, FILE_ATTRIBUTE_ROMMODULE}) {
        device().PutFile(L"\\rom.dll", "123456789");
        device().SetAttributes(L"\\rom.dll", attribute);
        ObjectRecord record = AddedFile(OidOfPath(L"\\rom.dll"));
        record.content_fingerprint = 0x1234;
        ASSERT_TRUE(Store(record));
        EXPECT_EQ(kNoData, record.data_offset);
        EXPECT_EQ(0, record.content_fingerprint);
    }
}

TEST_F(BackupItemTest, AnObjectOfAnUnknownTypeFails) {
    OpenedSav sav(storage_.names);
    InfoBlock block;
    block.head().type = 64;
    StoredData data;
    EXPECT_FALSE(BackupObjectData({info_, databases_, sav.storage, block, 0, 5}, data));
    EXPECT_EQ(kHead, Content(kSav).size());
}

// Free memory of a little more than one granule: the copy is made of four views.
TEST_F(BackupItemTest, ALargeFileIsCopiedInChunksOfTheFreeMemory) {
    std::string contents(3 * 0x10000 + 5, 0);
    for (std::size_t i = 0; i < contents.size(); ++i) {
        contents[i] = static_cast<char>(i * 7 + i / 251);
    }
    device().PutFile(L"\\big", contents);
    device().Set("memory.free", std::to_string(0x10000 + 100));
    ObjectRecord record = AddedFile(OidOfPath(L"\\big"));
    ASSERT_TRUE(Store(record));
    EXPECT_EQ(contents, Content(kSav).substr(record.data_offset));
    EXPECT_EQ(Checksum16(contents.data(), contents.size()), record.content_fingerprint);
}

TEST_F(BackupItemTest, WithLessThanAGranuleOfMemoryAFileFails) {
    device().PutFile(L"\\n.txt", "123456789");
    device().Set("memory.free", std::to_string(0xFFFF));
    ObjectRecord record = AddedFile(OidOfPath(L"\\n.txt"));
    EXPECT_FALSE(Store(record));
}

}  // namespace
}  // namespace tolvenar
