// One version of an object in lines: stored ones and live ones of every type.
#include "difftree/window/object_details.h"

#include "tests/support/restore_fixture.h"

namespace tolvenar {
namespace {

// Of the stored files, in the device's zone and patterns.
const Text kStoredTime = u"10/30/02, 10:35:31 AM\r\n";

class ObjectDetailsTest : public RestoreFixture {
protected:
    Text Told(const ObjectRecord& record) {
        SaveStorage();
        TextBuffer<4000> text;
        ObjectDetails(::GetModuleHandleW(nullptr), engine_).Append(record, text);
        return text.text();
    }
};

TEST_F(ObjectDetailsTest, AStoredTextFileHasSizeTimeAttributesAndItsFirstLines) {
    EXPECT_EQ(u"8 bytes\r\n" + kStoredTime + u"read-only archive \r\n\r\none\r\ntwo",
              Told(StoreFile(u"\\a.txt", "one\r\ntwo",
                             FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_ARCHIVE)));
    EXPECT_EQ(u"10 bytes\r\n" + kStoredTime + u"hidden system \r\n\r\nfive",
              Told(StoreFile(u"\\b.txt", "\xFF\xFE" + Units(u"five"),
                             FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM)));
}

TEST_F(ObjectDetailsTest, BytesOfTheDevicesCodePageAreText) {
    EXPECT_EQ(u"3 bytes\r\n" + kStoredTime + u"archive \r\n\r\n\u00E4\u00F6\u00FC",
              Told(StoreFile(u"\\a.txt", "\xE4\xF6\xFC")));
}

TEST_F(ObjectDetailsTest, OfOtherFilesTheFirstBytesAreShown) {
    EXPECT_EQ(u"3 bytes\r\n" + kStoredTime + u"archive \r\n\r\n00 01 ff",
              Told(StoreFile(u"\\a.pwi", Bytes("\0\1\xFF", 3))));
    const Text told = Told(StoreFile(u"\\a.bin", Bytes(5000, '\0')));
    EXPECT_EQ(128u, Occurrences<char16_t>(told, u"00") - 2);  // two of them in the size
}

TEST_F(ObjectDetailsTest, FoldersEmptyFilesAndFilesInRomHoldNothing) {
    EXPECT_EQ(u"Folder\r\n" + kStoredTime + u"\r\n", Told(StoreFolder(u"\\a")));
    EXPECT_EQ(u"0 bytes\r\n" + kStoredTime + u"archive \r\n", Told(StoreFile(u"\\a", "")));
    EXPECT_EQ(u"0 bytes\r\n" + kStoredTime + u"in ROM \r\n",
              Told(StoreFile(u"\\a", "", FILE_ATTRIBUTE_INROM)));
}

TEST_F(ObjectDetailsTest, StoredRegistryObjects) {
    EXPECT_EQ(u"Registry key\r\n", Told(StoreKey(HKEY_USERS, u"k")));
    EXPECT_EQ(u"10 bytes\r\n\r\ntext",
              Told(StoreValue(HKEY_USERS, u"k", u"v", REG_SZ, Terminated(u"text"))));
    EXPECT_EQ(u"4 bytes\r\n\r\n5 (0x00000005)",
              Told(StoreValue(HKEY_USERS, u"k", u"v", REG_DWORD, Word(5))));
    EXPECT_EQ(u"0 bytes\r\n", Told(StoreValue(HKEY_USERS, u"k", u"v", REG_BINARY, "")));
}

TEST_F(ObjectDetailsTest, StoredDatabasesAndTheirRecords) {
    EXPECT_EQ(u"Database of type 24\r\n", Told(StoreDatabase(u"People", 24)));
    EXPECT_EQ(u"Record of 2 fields\r\n\r\n4001: 7\r\n4013: Ann\r\n",
              Told(StoreRecord(u"People", 1, {{0x40010003, 7}, {0x4013001F, 0, L"Ann"}})));
}

TEST_F(ObjectDetailsTest, WhatTheDeviceHoldsIsReadFromIt) {
    device().PutFile(L"\\live.txt", "on the device");
    EXPECT_NE(Text::npos, Told(LiveFile(L"\\live.txt")).find(u"\r\n\r\non the device"));
    SetValue(HKEY_LOCAL_MACHINE, L"Live", L"v", REG_SZ, Terminated(u"now"));
    EXPECT_NE(Text::npos, Told(LiveValue(HKEY_LOCAL_MACHINE, u"Live", u"v")).find(u"\r\n\r\nnow"));
    MakeDatabase(L"People");
    const Text record = Told(Live(kDbRecord, AddRecord(L"People", L"Ann", 1)));
    EXPECT_EQ(0u, record.find(u"Record of 2 fields\r\n")) << tests::Narrow(record);
    EXPECT_NE(Text::npos, record.find(u": Ann\r\n"));
}

TEST_F(ObjectDetailsTest, WhatCannotBeReadIsTold) {
    const Text unreadable = u"What it holds cannot be read.";
    ObjectRecord beyond = StoreFile(u"\\a.txt", "hello");
    beyond.propOffset = 1000000;
    EXPECT_EQ(unreadable, Told(beyond));
    ObjectRecord without_data = StoreFile(u"\\a.txt", "hello");
    without_data.data_offset = 1000000;
    EXPECT_EQ(u"5 bytes\r\n" + kStoredTime + u"archive \r\n" + unreadable, Told(without_data));
    ObjectRecord other = StoreFile(u"\\a.txt", "hello");
    other.type = kDatabase;
    EXPECT_EQ(unreadable, Told(other));
    EXPECT_EQ(unreadable, Told(Live(kFile, 0x7654321)));
    device().Fault("CreateFileForMappingW", 1, 1, ERROR_SHARING_VIOLATION, "Home.sav");
    EXPECT_EQ(unreadable, Told(StoreFile(u"\\a.txt", "hello")));
}

}  // namespace
}  // namespace tolvenar
