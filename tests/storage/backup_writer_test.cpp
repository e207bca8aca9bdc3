#include "storage/backup_writer.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>

#include "platform/text.h"
#include "platform/unique_resource.h"
#include "snapshot/checksum.h"
#include "snapshot/property_encoding.h"
#include "storage/block_io.h"
#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

using Text = std::u16string;

constexpr std::uint32_t kHead = 236;  // of a silent storage
constexpr CEPROPID kNumber = 0x00010003;

std::string Wide8(const std::string& ascii) {
    std::string units;
    for (const char c : ascii) {
        units += c;  // 0xFF is the unit U+00FF
        units += '\0';
    }
    return units;
}

std::string Word(std::uint32_t value) {
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8) {
        bytes += static_cast<char>(value >> shift);
    }
    return bytes;
}

std::string Half(std::uint32_t value) { return Word(value).substr(0, 2); }

// A block as it stands in the storage file.
std::string Block(std::uint32_t word0, std::uint32_t word4, std::uint64_t time,
                  std::uint32_t data_bytes, unsigned type, const std::string& name) {
    return Word(word0) + Word(word4) + Word(static_cast<std::uint32_t>(time)) +
           Word(static_cast<std::uint32_t>(time >> 32)) + Word(data_bytes) + Half(type) +
           Half(static_cast<std::uint32_t>(2 * name.size())) + Half(0) + Wide8(name) + Half(0);
}

class BackupWriterTest : public EngineTest {
protected:
    bool Backup(std::uint32_t state, const char16_t* description = u"", bool keep_closed = false) {
        return DoBackup(engine_, state, description, keep_closed, code_, bytes_needed_);
    }

    // Puts what is on a fresh device into state 1, so that a test's own objects stand alone in 2.
    void BackupFreshDevice() {
        ASSERT_TRUE(Backup(1));
        ASSERT_EQ(ResultCode::kSuccess, code_);
    }

    std::string Sav() { return device().FileBytes(kSavPath); }

    // The journal's record of the object in `state`; null when there is none.
    const ObjectRecord* JournalRecord(std::uint16_t state, CEOID oid, ObjectType type) {
        ObjectRecord* record = nullptr;
        ObjectList::Cursor cursor = storage_.journal->First();
        while (ObjectList::Next(cursor, nullptr, &record)) {
            if (record->state_number == state && record->dwOID == oid && record->type == type) {
                return record;
            }
        }
        return nullptr;
    }

    void ExpectEverythingClosed() {
        const UniqueHandle file(::CreateFileW(kSavPath, GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                              OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        EXPECT_TRUE(file) << "the storage file is open";
        EXPECT_EQ(nullptr, storage_.difference);
        EXPECT_EQ(nullptr, storage_.list1);
        EXPECT_EQ(nullptr, storage_.list2);
    }

    UniqueHandle OpenSavAtEnd() {
        UniqueHandle sav(::CreateFileW(kSavPath, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ,
                                       nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        EXPECT_TRUE(MoveToEnd(sav.get()));
        return sav;
    }

    ResultCode code_ = ResultCode::kNotStarted;
    std::uint32_t bytes_needed_ = 0;
};

TEST_F(BackupWriterTest, TwoStatesStandInTheStorageFileByteForByte) {
    device().Command("set clock 2001-02-03T04:05:06");
    BackupFreshDevice();
    const std::uint64_t now = 0x01C08D967DB50500;  // 2001-02-03 04:05:06 as a FILETIME
    const std::string first = Sav();
    EXPECT_EQ(Block(0, 0, now, 0, 32, "Title"), first.substr(kHead, 38));

    device().PutFile(L"\\n.txt", "123456789");
    device().Touch(L"\\n.txt", 0x01C0000011223300);
    device().SetAttributes(L"\\n.txt", FILE_ATTRIBUTE_ARCHIVE);
    ASSERT_TRUE(Backup(2, u"two"));
    const std::string title = Block(0, 0, now, 6, 32, "Title") + Wide8("two");
    const std::string file = Block(0x20, 0, 0x01C0000011223300, 9, 16, "\\n.txt") + "123456789";
    const std::string second = Sav();
    ASSERT_EQ(first.size() + title.size() + file.size(), second.size());
    EXPECT_EQ(first, second.substr(0, first.size())) << "a stored state was changed";
    EXPECT_EQ(title, second.substr(first.size(), title.size()));
    EXPECT_EQ(file, second.substr(first.size() + title.size()));
}

TEST_F(BackupWriterTest, TheFirstStatesBlockStandsAtOffset236) {
    BackupFreshDevice();
    const ObjectRecord* state = JournalRecord(1, 0, ObjectType::kState);
    ASSERT_NE(nullptr, state);
    EXPECT_EQ(kHead, state->propOffset);
    EXPECT_EQ(kHead + 38, state->data_offset);
}

TEST_F(BackupWriterTest, AStateRecordIsOfType32AndItsDataIsTheDescription) {
    ASSERT_TRUE(Backup(1, u"before the trip"));
    const ObjectRecord* state = JournalRecord(1, 0, ObjectType::kState);
    ASSERT_NE(nullptr, state);
    EXPECT_EQ(0u, state->dwOID);
    EXPECT_EQ(0u, state->TolvOID);
    EXPECT_EQ(JF_ADD, state->flags);
    EXPECT_EQ(0, state->content_fingerprint);
    EXPECT_EQ(Wide8("before the trip"), Sav().substr(state->data_offset, 30));
    EXPECT_EQ(Checksum16(Sav().data() + kHead, 38), state->info_checksum);
}

TEST_F(BackupWriterTest, ADescriptionIsCutTo199Units) {
    ASSERT_TRUE(Backup(1, Text(250, u'd').c_str()));
    EXPECT_EQ(Word(398), Sav().substr(kHead + 16, 4));
}

TEST_F(BackupWriterTest, AFilesRecordLeadsToItsBlockAndData) {
    BackupFreshDevice();
    device().PutFile(L"\\n.txt", "123456789");
    ASSERT_TRUE(Backup(2));
    const ObjectRecord* record = JournalRecord(2, OidOfPath(L"\\n.txt"), ObjectType::kFile);
    ASSERT_NE(nullptr, record);
    EXPECT_EQ(Checksum16(Sav().data() + record->propOffset, 40), record->info_checksum);
    EXPECT_EQ(record->propOffset + 40, record->data_offset);
    EXPECT_EQ("123456789", Sav().substr(record->data_offset, 9));
    EXPECT_EQ(0x6F91, record->content_fingerprint);
    EXPECT_EQ(JF_ADD, record->flags);
}

TEST_F(BackupWriterTest, AnEmptyFileHasNoDataAndTheFingerprintFfff) {
    device().PutFile(L"\\empty", "");
    BackupFreshDevice();
    const ObjectRecord* record = JournalRecord(1, OidOfPath(L"\\empty"), ObjectType::kFile);
    ASSERT_NE(nullptr, record);
    EXPECT_EQ(kNoData, record->data_offset);
    EXPECT_EQ(0xFFFF, record->content_fingerprint);
}

TEST_F(BackupWriterTest, AFolderHasABlockWithoutDataAndTheFingerprintZero) {
    device().MakeFolder(L"\\A");
    BackupFreshDevice();
    const ObjectRecord* record = JournalRecord(1, OidOfPath(L"\\A"), ObjectType::kFile);
    ASSERT_NE(nullptr, record);
    EXPECT_NE(0u, record->propOffset);
    EXPECT_EQ(kNoData, record->data_offset);
    EXPECT_EQ(0, record->content_fingerprint);
}

TEST_F(BackupWriterTest, AKeyHasNoDataAndAValueItsBytes) {
    BackupFreshDevice();
    SetValue(HKEY_CURRENT_USER, L"T", L"v", REG_BINARY, "123456789");
    ASSERT_TRUE(Backup(2));
    const std::string key = Block(0x80000001, 0, 0, 0, 2, "T");
    const std::string value = Block(0x80000001, REG_BINARY, 0, 9, 1, "T\xFFv") + "123456789";
    const std::string sav = Sav();
    EXPECT_NE(std::string::npos, sav.find(key));
    EXPECT_NE(std::string::npos, sav.find(value));
    for (const ObjectRecord& record : RecordsOf(*storage_.journal)) {
        if (record.state_number == 2 && record.type == ObjectType::kRegistryKey) {
            EXPECT_EQ(kNoData, record.data_offset);
            EXPECT_EQ(0xFFFF, record.content_fingerprint);
        }
        if (record.state_number == 2 && record.type == ObjectType::kRegistryValue) {
            EXPECT_EQ("123456789", sav.substr(record.data_offset, 9));
            EXPECT_EQ(0x6F91, record.content_fingerprint);
        }
    }
}

TEST_F(BackupWriterTest, AValueOfAKeyWhoseNameHoldsTheSeparatorIsStored) {
    SetValue(HKEY_CURRENT_USER, L"T\\a\u00FFb", L"v", REG_SZ, "123456789");
    BackupFreshDevice();
    EXPECT_EQ(u"", Log());
    EXPECT_NE(std::string::npos, Sav().find("123456789"));
}

TEST_F(BackupWriterTest, AnEmptyValueIsStored) {
    SetValue(HKEY_CURRENT_USER, L"T", L"", REG_SZ, "");
    BackupFreshDevice();
    EXPECT_EQ(u"", Log());
    EXPECT_NE(std::string::npos, Sav().find(Block(0x80000001, REG_SZ, 0, 0, 1, "T\xFF")));
}

TEST_F(BackupWriterTest, ADatabaseStoresItsSortOrdersAndKeepsItsRecordCount) {
    BackupFreshDevice();
    const CEOID oid = MakeDatabase(L"First", 77);
    AddRecord(L"First", {{kNumber, 1}});
    ASSERT_TRUE(Backup(2));
    const ObjectRecord* record = JournalRecord(2, oid, ObjectType::kDatabase);
    ASSERT_NE(nullptr, record);
    EXPECT_EQ(1, record->content_fingerprint);
    EXPECT_EQ(Block(77, 0, 0, 32, 4, "First"), Sav().substr(record->propOffset, 38));
    EXPECT_EQ(record->propOffset + 38, record->data_offset);
    CEOIDINFO info;
    ASSERT_TRUE(databases_.GetObjectInfo(oid, info));
    EXPECT_EQ(0, std::memcmp(info.infDatabase.rgSortSpecs, Sav().data() + record->data_offset, 32));
}

TEST_F(BackupWriterTest, ARecordStoresItsPropertiesWithOffsetsForPointers) {
    MakeDatabase(L"First");
    const CEOID oid = AddRecord(
        L"First", {{kNumber, 0x11223344}, {0x0002001F, 0, L"ab"}, {0x00030041, 0, {}, "xyz"}});
    BackupFreshDevice();
    const ObjectRecord* record = JournalRecord(1, oid, ObjectType::kDatabaseRecord);
    ASSERT_NE(nullptr, record);
    InfoBlock block;
    ASSERT_TRUE(info_.GetOIDInfo(0, oid, block));
    const std::string data = Sav().substr(record->data_offset, block.head().data_bytes);
    StoredProperty properties[3];
    ASSERT_LE(sizeof properties, data.size());
    std::memcpy(properties, data.data(), sizeof properties);
    for (const StoredProperty& property : properties) {
        switch (property.propid & 0xFFFF) {
            case CEVT_I4: EXPECT_EQ(0x11223344u, property.value); break;
            case CEVT_LPWSTR:
                EXPECT_EQ(Wide8("ab") + Half(0), data.substr(property.value, 6));
                break;
            default:
                EXPECT_EQ(3u, property.value);
                EXPECT_EQ("xyz", data.substr(property.value_high, 3));
        }
    }
    std::uint16_t checksum = 0;
    EXPECT_TRUE(ChecksumOfProperties(data.data(), data.size(), 3, checksum));
    EXPECT_EQ(checksum, record->content_fingerprint);
}

TEST_F(BackupWriterTest, ARecordWithoutPropertiesHasTheFingerprintZeroAndIsNoDifferenceLater) {
    MakeDatabase(L"First");
    const CEOID oid = AddEmptyRecord(L"First");
    BackupFreshDevice();
    EXPECT_EQ(u"", Log());
    ASSERT_NE(nullptr, JournalRecord(1, oid, ObjectType::kDatabaseRecord));
    EXPECT_EQ(0, JournalRecord(1, oid, ObjectType::kDatabaseRecord)->content_fingerprint);
    EXPECT_TRUE(Backup(2));
    EXPECT_EQ(ResultCode::kNoDifference, code_);
}

TEST_F(BackupWriterTest, DeletionsWriteNoBlock) {
    device().PutFile(L"\\gone.txt", "gone");
    const CEOID oid = OidOfPath(L"\\gone.txt");
    BackupFreshDevice();
    const std::size_t before = Sav().size();
    device().Remove(L"\\gone.txt");
    ASSERT_TRUE(Backup(2));
    EXPECT_EQ(before + 38, Sav().size()) << "the state's block only";
    const ObjectRecord* deletion = JournalRecord(2, oid, ObjectType::kFile);
    ASSERT_NE(nullptr, deletion);
    EXPECT_EQ(JF_DELETE, deletion->flags);
    EXPECT_EQ(JournalRecord(1, oid, ObjectType::kFile)->propOffset, deletion->propOffset);
}

TEST_F(BackupWriterTest, WithoutADifferenceNothingIsWritten) {
    BackupFreshDevice();
    const std::string sav = Sav();
    const std::string journal = device().FileBytes(kJournalPath);
    progress_.texts.clear();
    EXPECT_TRUE(Backup(2));
    EXPECT_EQ(ResultCode::kNoDifference, code_);
    EXPECT_EQ(sav, Sav());
    EXPECT_EQ(journal, device().FileBytes(kJournalPath));
    EXPECT_EQ(4, std::count(progress_.texts.begin(), progress_.texts.end(), Text(u"Complete.")));
    ExpectEverythingClosed();
    EXPECT_NE(nullptr, storage_.journal);
}

TEST_F(BackupWriterTest, TheStepsOfABackupAreAnnouncedInOrder) {
    BackupFreshDevice();
    const std::vector<Text> last(progress_.texts.end() - 3, progress_.texts.end());
    EXPECT_EQ(
        (std::vector<Text>{u"Backing Up...", u"Saving object list...", u"Loading object list..."}),
        last);
}

TEST_F(BackupWriterTest, AfterASuccessTheJournalIsLoadedAndEverythingElseIsFreed) {
    BackupFreshDevice();
    ExpectEverythingClosed();
    ASSERT_NE(nullptr, storage_.journal);
    EXPECT_EQ(1, storage_.journal->MaxStateNumber());
    for (const ObjectRecord& record : RecordsOf(*storage_.journal)) {
        EXPECT_EQ(nullptr, storage_.registry_objects.RegObjectFind(
                               record.TolvOID == 0 ? 1 : record.TolvOID));
    }
}

TEST_F(BackupWriterTest, TheJournalMayStayClosed) {
    EXPECT_TRUE(Backup(1, u"", true));
    EXPECT_EQ(ResultCode::kSuccess, code_);
    EXPECT_EQ(nullptr, storage_.journal);
    ExpectEverythingClosed();
}

TEST_F(BackupWriterTest, ABackupThatNeedsExactlyTheFreeSpaceProceedsAndOneByteMoreDoesNot) {
    device().PutFile(L"\\a.txt", "a");
    device().Set("card.free", "0");
    EXPECT_FALSE(Backup(1));
    EXPECT_EQ(ResultCode::kNoSpace, code_);
    const std::uint32_t needed = bytes_needed_;
    EXPECT_EQ(kHead, Sav().size());
    device().Set("card.free", std::to_string(needed - 1));
    EXPECT_FALSE(Backup(1));
    EXPECT_EQ(ResultCode::kNoSpace, code_);
    EXPECT_EQ(needed, bytes_needed_);
    EXPECT_EQ(kHead, Sav().size());
    ExpectEverythingClosed();
    EXPECT_NE(nullptr, storage_.journal);
    device().Set("card.free", std::to_string(needed));
    EXPECT_TRUE(Backup(1));
    EXPECT_EQ(ResultCode::kSuccess, code_);
    // Blocks and data, 32 bytes for each record, the old journal and the spare bytes.
    EXPECT_EQ(Sav().size() - kHead + device().FileBytes(kJournalPath).size() + 10000, needed);
}

TEST_F(BackupWriterTest, AStateNumberThatARecordCannotHoldFails) {
    EXPECT_FALSE(Backup(0x10000));
    EXPECT_EQ(ResultCode::kFailed, code_);
    EXPECT_EQ(kHead, Sav().size());
}

TEST_F(BackupWriterTest, AnEstimateIsBlockAndDataOfAdditionsOnly) {
    device().PutFile(L"\\n.txt", "123456789");
    ObjectRecord record{};
    record.dwOID = OidOfPath(L"\\n.txt");
    record.type = ObjectType::kFile;
    EXPECT_EQ(0u, EstimateBlockSize(engine_, record));
    record.flags = JF_ADD;
    EXPECT_EQ(28u + 12u + 9u, EstimateBlockSize(engine_, record));
    record.dwOID += 1000;
    EXPECT_EQ(0u, EstimateBlockSize(engine_, record));
}

TEST_F(BackupWriterTest, ARecordThatIsNoAdditionNeedsNothing) {
    const UniqueHandle sav = OpenSavAtEnd();
    ObjectRecord record{};
    record.dwOID = 0x00ABCDEF;
    record.flags = JF_DELETE;
    EXPECT_TRUE(BackupItem(engine_, sav.get(), record));
    EXPECT_EQ(kHead, Sav().size());
}

TEST_F(BackupWriterTest, AFailedItemsPlaceIsTakenByTheNextOne) {
    device().PutFile(L"\\held.txt", "held");
    device().PutFile(L"\\n.txt", "123456789");
    ObjectRecord held{};
    held.dwOID = OidOfPath(L"\\held.txt");
    held.flags = JF_ADD;
    held.type = ObjectType::kFile;
    ObjectRecord next = held;
    next.dwOID = OidOfPath(L"\\n.txt");
    const auto lock = device().Lock(L"\\held.txt");
    const UniqueHandle sav = OpenSavAtEnd();
    EXPECT_FALSE(BackupItem(engine_, sav.get(), held));
    EXPECT_EQ(0u, held.propOffset);
    EXPECT_TRUE(BackupItem(engine_, sav.get(), next));
    EXPECT_EQ(kHead, next.propOffset);
    EXPECT_EQ("123456789", Sav().substr(kHead + 40, 9));
}

TEST_F(BackupWriterTest, AFailedItemIsMarkedCountedAndLogged) {
    device().PutFile(L"\\held.txt", "held");
    const CEOID oid = OidOfPath(L"\\held.txt");
    auto list = ObjectList::CreateList();
    for (const CEOID id : {oid, CEOID{0x00ABCDEF}}) {
        ObjectRecord record{};
        record.dwOID = id;
        record.flags = JF_ADD;
        record.type = ObjectType::kFile;
        ASSERT_TRUE(list->AddObject(record));
    }
    const auto lock = device().Lock(L"\\held.txt");
    const UniqueHandle sav = OpenSavAtEnd();
    std::size_t failed = 99;
    EXPECT_EQ(1, BackupItems(engine_, sav.get(), *list, failed));
    EXPECT_EQ(2u, failed);
    for (const ObjectRecord& record : RecordsOf(*list)) {
        EXPECT_EQ(JF_ADD | JF_FAILED, record.flags);
    }
    EXPECT_EQ(std::vector<std::size_t>{2}, progress_.begins);
    char16_t line[100];
    ::wsprintfW(Wide(line), L"dwOID = %x, TolvOID = 0\r\nObj Name: \\held.txt\r\nObj Type: 10",
                oid);
    EXPECT_NE(Text::npos, Log().find(Text(u"backup item failed; Message: ") + line)) << "named";
    EXPECT_NE(Text::npos,
              Log().find(u"Message: unavailable info from dwOID = abcdef, TolvOID = 0"));
    EXPECT_EQ(0u, Log().find(u"E - "));
}

// Free memory of a little more than one granule: the copy is made of four views.
TEST_F(BackupWriterTest, ALargeFileIsCopiedInChunksOfTheFreeMemory) {
    std::string contents(3 * 0x10000 + 5, 0);
    for (std::size_t i = 0; i < contents.size(); ++i) {
        contents[i] = static_cast<char>(i * 7 + i / 251);
    }
    device().PutFile(L"\\big", contents);
    device().Set("memory.free", std::to_string(0x10000 + 100));
    ObjectRecord record{};
    record.dwOID = OidOfPath(L"\\big");
    record.flags = JF_ADD;
    record.type = ObjectType::kFile;
    const UniqueHandle sav = OpenSavAtEnd();
    ASSERT_TRUE(BackupItem(engine_, sav.get(), record));
    EXPECT_EQ(contents, Sav().substr(record.data_offset));
    EXPECT_EQ(Checksum16(contents.data(), contents.size()), record.content_fingerprint);
}

TEST_F(BackupWriterTest, WithLessThanAGranuleOfMemoryAFileFails) {
    device().PutFile(L"\\n.txt", "123456789");
    device().Set("memory.free", std::to_string(0xFFFF));
    ObjectRecord record{};
    record.dwOID = OidOfPath(L"\\n.txt");
    record.flags = JF_ADD;
    record.type = ObjectType::kFile;
    const UniqueHandle sav = OpenSavAtEnd();
    EXPECT_FALSE(BackupItem(engine_, sav.get(), record));
}

}  // namespace
}  // namespace tolvenar
