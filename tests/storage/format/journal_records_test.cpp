#include "storage/format/journal_records.h"

#include <gtest/gtest.h>

#include "tests/support/memory_bytes.h"

namespace tolvenar {
namespace {

// A record as it stands in the file, every byte by hand.
const std::string kRecord(
    "\x4d\0\0\1"
    "\0\0\0\0"
    "\xe5\xe7"
    "\x42\xcb"
    "\x3a\1\0\0"
    "\x7c\1\0\0"
    "\1\0"
    "\4\0"
    "\x10"
    "\0\0\0\0\0\0\0",
    32);

TEST(JournalRecordsTest, ARecordIsThirtyTwoBytesFieldByField) {
    MemoryBytes file(kRecord);
    JournalRecordReader records(file);
    ObjectRecord record{};
    ASSERT_TRUE(records.Next(record));
    EXPECT_EQ(0x0100004Du, record.dwOID);
    EXPECT_EQ(0u, record.TolvOID);
    EXPECT_EQ(0xE7E5, record.info_checksum);
    EXPECT_EQ(0xCB42, record.content_fingerprint);
    EXPECT_EQ(0x13Au, record.propOffset);
    EXPECT_EQ(0x17Cu, record.data_offset);
    EXPECT_EQ(1, record.state_number);
    EXPECT_EQ(JF_ADD, record.flags);
    EXPECT_EQ(ObjectType::kFile, record.type);
    EXPECT_FALSE(records.Next(record));
}

TEST(JournalRecordsTest, AShortLastRecordKeepsTheBytesOfTheOneBefore) {
    MemoryBytes file(kRecord + std::string("\x77\x66\x55\x44\x33", 5));
    JournalRecordReader records(file);
    ObjectRecord record{};
    ASSERT_TRUE(records.Next(record));
    ASSERT_TRUE(records.Next(record));
    EXPECT_EQ(0x44556677u, record.dwOID);
    EXPECT_EQ(0x33u, record.TolvOID);
    EXPECT_EQ(0x13Au, record.propOffset);
    EXPECT_FALSE(records.Next(record));
    EXPECT_EQ(1u, JournalRecordCount(32));
    EXPECT_EQ(2u, JournalRecordCount(33));
    EXPECT_EQ(0u, JournalRecordCount(0));
}

TEST(JournalRecordsTest, ReadingEndsAtAFailedReadWithWhatCameBefore) {
    MemoryBytes file(kRecord + kRecord);
    file.bad_begin = 40;
    file.bad_end = 41;
    const auto list = ObjectList::CreateList();
    std::uint32_t taken = 9;
    EXPECT_TRUE(ReadJournalRecords(file, *list, nullptr, taken));
    EXPECT_EQ(1u, taken);
    EXPECT_EQ(1u, list->CountRecords());
}

TEST(JournalRecordsTest, WhatWasReadIsWrittenBackByteForByteInReverse) {
    std::string second = kRecord;
    second[20] = 2;
    second[25] = 'r';  // a reserved byte is carried along
    MemoryBytes file(kRecord + second);
    const auto list = ObjectList::CreateList();
    std::uint32_t taken = 0;
    ASSERT_TRUE(ReadJournalRecords(file, *list, nullptr, taken));
    MemoryBytes saved;
    EXPECT_EQ(list->CountRecords(), WriteJournalRecords(saved, *list, nullptr));
    EXPECT_TRUE(second + kRecord == saved.content());
    EXPECT_EQ(2, saved.writes);
}

TEST(JournalRecordsTest, WritingEndsAtTheFirstFailure) {
    MemoryBytes file(kRecord);
    const auto list = ObjectList::CreateList();
    std::uint32_t taken = 0;
    ASSERT_TRUE(ReadJournalRecords(file, *list, nullptr, taken));
    MemoryBytes saved;
    saved.room = 31;
    EXPECT_EQ(0u, WriteJournalRecords(saved, *list, nullptr));
    EXPECT_EQ(0u, WriteJournalRecords(saved, *ObjectList::CreateList(), nullptr));
}

}  // namespace
}  // namespace tolvenar
