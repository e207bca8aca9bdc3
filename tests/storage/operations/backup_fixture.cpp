#include "tests/storage/operations/backup_fixture.h"

namespace tolvenar {

std::string Wide8(const std::string& ascii) {
    std::string units;
    for (const char c : ascii) {
        units += c;
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

std::string Block(std::uint32_t first_field, std::uint32_t second_field, std::uint64_t time,
                  std::uint32_t data_bytes, unsigned type, const std::string& name) {
    return Word(first_field) + Word(second_field) + Word(static_cast<std::uint32_t>(time)) +
           Word(static_cast<std::uint32_t>(time >> 32)) + Word(data_bytes) + Half(type) +
           Half(static_cast<std::uint32_t>(2 * name.size())) + Half(0) + Wide8(name) + Half(0);
}

bool BackupTest::Backup(std::uint32_t state, const char16_t* description, bool keep_closed) {
    return DoBackup(engine_, state, description, keep_closed, code_, bytes_needed_);
}

void BackupTest::BackupFreshDevice() {
    ASSERT_TRUE(Backup(1));
    ASSERT_EQ(ResultCode::kSuccess, code_);
}

const ObjectRecord* BackupTest::JournalRecord(std::uint16_t state, CEOID oid, ObjectType type) {
    ObjectRecord* record = nullptr;
    ObjectList::Cursor cursor = storage_.journal->First();
    while (ObjectList::Next(cursor, nullptr, &record)) {
        if (record->state_number == state && record->dwOID == oid && record->type == type) {
            return record;
        }
    }
    return nullptr;
}

void BackupTest::ExpectEverythingClosed() {
    for (const wchar_t* path : {kSavPath, kJournalPath}) {
        const UniqueHandle file(::CreateFileW(path, GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                              OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        EXPECT_TRUE(file) << "open";
    }
    EXPECT_EQ(nullptr, storage_.difference);
    EXPECT_EQ(nullptr, storage_.older);
    EXPECT_EQ(nullptr, storage_.newer);
}

}  // namespace tolvenar
