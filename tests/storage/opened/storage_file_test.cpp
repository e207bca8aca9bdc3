#include "storage/opened/storage_file.h"

#include "tests/storage/opened/storage_file_fixture.h"

namespace tolvenar {
namespace {

class StorageFileTest : public StorageFileFixture {
protected:
    void SetUp() override {
        StorageTest::SetUp();
        SetOrigName(u"Handheld");
        device().Command("set processor 4000");
        device().Command("set os.version 2.11");
        device().Command("set clock 2026-11-16T04:33:10Z");
    }
    static void SetOrigName(const Text& name) {
        SetValue(HKEY_LOCAL_MACHINE, L"Ident", L"OrigName", REG_SZ, Terminated(name));
    }
    // The head of a storage made on this device, without description.
    static Bytes Head() { return tolvenar::Head(u"Handheld", 0x01DD7583957AC700); }
};

TEST_F(StorageFileTest, ASilentStorageHas236BytesWithoutDescription) {
    const auto header = CreateStorage(kStoragePath, nullptr);
    ASSERT_TRUE(header);
    EXPECT_EQ(Head(), Content(kSav));
    EXPECT_EQ(Text(u"Handheld"), header->deviceName);
    EXPECT_EQ(0u, header->descriptionBytes);
    EXPECT_TRUE(IsFree(kSav));
}

TEST_F(StorageFileTest, AnExistingStorageIsReset) {
    Put(kSav, Bytes(5000, 'x'));
    ASSERT_TRUE(CreateStorage(kSav, nullptr));
    EXPECT_EQ(Head(), Content(kSav));
}

TEST_F(StorageFileTest, AnExistingStorageThatIsKeptIsLeftAsItIs) {
    Put(kSav, Bytes(5000, 'x'));
    EXPECT_FALSE(CreateStorage(kSav, nullptr, Existing::kKept));
    EXPECT_EQ(Bytes(5000, 'x'), Content(kSav));
}

TEST_F(StorageFileTest, AChosenJournalsPathMakesTheStorageBesideIt) {
    ASSERT_TRUE(CreateStorage(kJournal, nullptr));
    EXPECT_TRUE(Exists(kSav));
    EXPECT_FALSE(Exists(kJournal));
}

TEST_F(StorageFileTest, AStorageIsCreatedAtTheFirstDotOfItsPath) {
    ASSERT_TRUE(CreateStorage(u"\\Storage Card\\my.backup\\data", nullptr));
    EXPECT_TRUE(Exists(u"\\Storage Card\\my.sav"));
}

TEST_F(StorageFileTest, AStorageThatCannotBeCreatedIsNull) {
    EXPECT_FALSE(CreateStorage(u"\\No Card\\Home", nullptr));
    Put(kSav, "123");
    {
        const UniqueHandle held = Hold(kSav);
        EXPECT_FALSE(CreateStorage(kSav, nullptr));
    }
    EXPECT_EQ("123", Content(kSav));
}

TEST_F(StorageFileTest, ADescriptionOfTenUnitsMakesAHeadOf252Bytes) {
    ScriptedPrompt prompt(true, u"ten units!");
    const auto header = CreateStorage(kSav, &prompt);
    ASSERT_TRUE(header);
    Bytes expected = Head();
    expected.resize(232);
    expected[228] = 20;
    EXPECT_EQ(expected + Units(u"ten units!"), Content(kSav));
    EXPECT_EQ(Text(u"ten units!"), header->description);
    const auto read = ReadStorageHeader(kSav);
    ASSERT_TRUE(read);
    EXPECT_EQ(0, std::memcmp(header.get(), read.get(), sizeof *read));
}

// The program may be ended under the question, or the battery be empty.
TEST_F(StorageFileTest, AWholeHeadIsOnTheCardBeforeTheDescriptionIsAsked) {
    class LookingPrompt final : public DescriptionPrompt {
    public:
        explicit LookingPrompt(tests::TestDevice& device) : device_(device) {}
        bool AskDescription(const char16_t*, char16_t (&)[kMaxDescriptionUnits],
                            std::size_t&) override {
            size = device_.Info(Wide(kSav)).size;
            flushes = device_.Calls("FlushFileBuffers");
            return false;
        }
        std::uint64_t size = 0;
        long flushes = 0;

    private:
        tests::TestDevice& device_;
    };
    LookingPrompt prompt(device());
    const long flushes = device().Calls("FlushFileBuffers");
    ASSERT_TRUE(CreateStorage(kSav, &prompt));
    EXPECT_EQ(236u, prompt.size);
    EXPECT_EQ(Head(), Content(kSav));
    EXPECT_EQ(flushes + 1, prompt.flushes);
}

TEST_F(StorageFileTest, ADescriptionOfOneUnitCanBeOpened) {
    ScriptedPrompt prompt(true, u"x");
    ASSERT_TRUE(CreateStorage(kSav, &prompt));
    EXPECT_EQ(234u, Content(kSav).size());
    EXPECT_EQ(OpenStorageResult::kOpened, Open());
    EXPECT_EQ(Text(u"x"), storage_.header->description);
}

TEST_F(StorageFileTest, TwoHundredUnitsAreWrittenAndOneFewerKept) {
    ScriptedPrompt prompt(true, Text(200, u'd'));
    const auto header = CreateStorage(kSav, &prompt);
    ASSERT_TRUE(header);
    EXPECT_EQ(632u, Content(kSav).size());
    EXPECT_EQ(400u, header->descriptionBytes);
    EXPECT_EQ(Text(199, u'd'), header->description);
    const auto read = ReadStorageHeader(kSav);
    ASSERT_TRUE(read);
    EXPECT_EQ(Text(199, u'd'), read->description);
}

TEST_F(StorageFileTest, ACancelledDescriptionIsNone) {
    ScriptedPrompt prompt(false, u"not this");
    ASSERT_TRUE(CreateStorage(kSav, &prompt));
    EXPECT_EQ(Head(), Content(kSav));
}

// The head would end before its last four bytes and could not be read again.
TEST_F(StorageFileTest, AnEmptyDescriptionIsNone) {
    ScriptedPrompt prompt(true, u"");
    ASSERT_TRUE(CreateStorage(kSav, &prompt));
    EXPECT_EQ(Head(), Content(kSav));
}

TEST_F(StorageFileTest, TheOfferedDescriptionTellsDeviceAndLocalTime) {
    device().Command("set zone UTC-5");
    device().Command("set clock 2026-11-16T04:33:10Z");
    ScriptedPrompt prompt(false, u"");
    ASSERT_TRUE(CreateStorage(kSav, &prompt));
    EXPECT_EQ(Text(u"Device: Handheld, Processor:MIPS(4000)\r\nWindows CE v2.11\r\nStorage created "
                   u"at Monday, November 16, 2026, 9:33:10 AM\r\n----------\r\n"),
              prompt.offered);
}

TEST_F(StorageFileTest, AMinorVersionHasTwoDigits) {
    StorageHeader header{};
    header.osMajor = 3;
    char16_t text[kDeviceTextUnits];
    const std::size_t length = FormatDeviceText(header, text);
    EXPECT_EQ(length, Text(text).size());
    EXPECT_NE(Text::npos, Text(text).find(u"Processor:Unknown(0)\r\nWindows CE v3.00\r\n"));
}

TEST_F(StorageFileTest, ADeviceWithoutANameIsUnknown) {
    ASSERT_EQ(ERROR_SUCCESS, ::RegDeleteKeyW(HKEY_LOCAL_MACHINE, L"Ident"));
    StorageHeader header{};
    ReadDeviceIdent(header);
    EXPECT_EQ(Text(u"Unknown"), header.deviceName);
    EXPECT_EQ(4000u, header.processorType);
    EXPECT_EQ(2u, header.osMajor);
    EXPECT_EQ(11u, header.osMinor);
    EXPECT_EQ(1u, header.formatFamily);
    EXPECT_EQ(4u, header.formatRevision);
}

TEST_F(StorageFileTest, ANameIsReadUpTo200Bytes) {
    SetOrigName(Text(99, u'n'));
    StorageHeader header{};
    ReadDeviceIdent(header);
    EXPECT_EQ(Text(99, u'n'), header.deviceName);
    SetOrigName(Text(100, u'n'));
    header = {};
    ReadDeviceIdent(header);
    EXPECT_EQ(Text(u"Unknown"), header.deviceName);
}

TEST_F(StorageFileTest, AnOpenedStorageHasItsHeaderAndTwoEmptyLists) {
    Put(kSav, Head());
    EXPECT_EQ(OpenStorageResult::kOpened, Open());
    ASSERT_TRUE(storage_.header && storage_.older && storage_.newer);
    EXPECT_EQ(Text(u"Handheld"), storage_.header->deviceName);
    EXPECT_EQ(0u, storage_.older->CountRecords());
    EXPECT_EQ(0u, storage_.newer->CountRecords());
    EXPECT_FALSE(storage_.journal);
    EXPECT_FALSE(storage_.difference);
    EXPECT_TRUE(IsFree(kSav));
    EXPECT_EQ(Head(), Content(kSav));
}

// The dialog hands over what was chosen: a journal.
TEST_F(StorageFileTest, AChosenJournalOpensTheStorageBesideIt) {
    Put(kSav, Head());
    OpenStorageResult result;
    EXPECT_FALSE(OpenStorage(kJournal, storage_, result));
    EXPECT_EQ(OpenStorageResult::kFileMissing, result);
    Put(kJournal, "");
    EXPECT_TRUE(OpenStorage(kJournal, storage_, result));
}

TEST_F(StorageFileTest, BlocksBehindTheHeadDoNotMatter) {
    Put(kSav, Head() + Bytes(100, 'x'));
    EXPECT_EQ(OpenStorageResult::kOpened, Open());
    EXPECT_EQ(Text(), storage_.header->description);
}

TEST_F(StorageFileTest, OpeningForgetsWhatTheLastRegistryScanMet) {
    Put(kSav, Head());
    ASSERT_EQ(1, storage_.registry_objects.RegObjectAdd(5, {true, 0x80000001, u"Key"}));
    EXPECT_EQ(OpenStorageResult::kOpened, Open());
    EXPECT_EQ(nullptr, storage_.registry_objects.RegObjectFind(5));
}

struct RefusedRow {
    std::size_t offset;
    int value;
    OpenStorageResult result;
};

TEST_F(StorageFileTest, ARefusedStorageLeavesTheOpenOneAndItsFile) {
    Put(kSav, Head());
    ASSERT_EQ(OpenStorageResult::kOpened, Open());
    const StorageHeader* const header = storage_.header.get();
    const ObjectList* const list = storage_.older.get();
    const RefusedRow rows[] = {
        {200, 0xA1, OpenStorageResult::kOtherDevice},
        {216, 5, OpenStorageResult::kOtherDevice},
        {216, 0, OpenStorageResult::kUnsupportedRevision},
    };
    for (const RefusedRow& row : rows) {
        Bytes bytes = Head();
        bytes[row.offset] = static_cast<char>(row.value);
        Put(kSav, bytes);
        EXPECT_EQ(row.result, Open());
        EXPECT_EQ(header, storage_.header.get());
        EXPECT_EQ(list, storage_.older.get());
        EXPECT_EQ(bytes, Content(kSav));
    }
    device().Remove(Wide(kSav));
    EXPECT_EQ(OpenStorageResult::kFileMissing, Open());
    EXPECT_EQ(header, storage_.header.get());
}

TEST_F(StorageFileTest, AnOlderRevisionIsOpened) {
    Bytes bytes = Head();
    bytes[216] = 3;
    Put(kSav, bytes);
    EXPECT_EQ(OpenStorageResult::kOpened, Open());
    EXPECT_EQ(3u, storage_.header->formatRevision);
}

TEST_F(StorageFileTest, AHeadThatIsBeingReadCanBeReadAndAMissingOneIsNotMade) {
    ASSERT_TRUE(CreateStorage(kSav, nullptr));
    const UniqueHandle reader = Reader(kSav);
    EXPECT_TRUE(ReadStorageHeader(kSav));
    EXPECT_EQ(OpenStorageResult::kFileMissing, Open()) << "opened without sharing";
    EXPECT_FALSE(ReadStorageHeader(u"\\Storage Card\\None.sav"));
    EXPECT_FALSE(Exists(u"\\Storage Card\\None.sav"));
}

TEST_F(StorageFileTest, AStorageThatIsWriteProtectedIsOpened) {
    ASSERT_TRUE(CreateStorage(kSav, nullptr));
    device().SetAttributes(Wide(kSav), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(OpenStorageResult::kOpened, Open());
}

TEST_F(StorageFileTest, OnlyAFileThatIsNotThereIsReallyAbsent) {
    EXPECT_TRUE(IsReallyAbsent(kSav));
    EXPECT_TRUE(IsReallyAbsent(u"\\No Card\\Home.sav"));
    Put(kSav, Head());
    EXPECT_FALSE(IsReallyAbsent(kSav));
    const tests::FileLock lock = device().Lock(Wide(kSav), "write");
    EXPECT_EQ(OpenStorageResult::kFileMissing, Open());
    EXPECT_FALSE(IsReallyAbsent(kSav));
}

TEST_F(StorageFileTest, AFileWhoseAttributesCannotBeReadIsNotAbsent) {
    Fail("GetFileAttributesW", 1, ERROR_NOT_READY);
    EXPECT_FALSE(IsReallyAbsent(kSav));
    Fail("GetFileAttributesW", 1, ERROR_PATH_NOT_FOUND);
    EXPECT_TRUE(IsReallyAbsent(kSav));
}

TEST_F(StorageFileTest, ClosingFreesListsAndHeader) {
    Put(kSav, Head());
    ASSERT_EQ(OpenStorageResult::kOpened, Open());
    storage_.journal = ObjectList::CreateList();
    storage_.difference = ObjectList::CreateList();
    FreeWorkingLists(storage_, false);
    EXPECT_FALSE(storage_.older || storage_.newer);
    EXPECT_TRUE(storage_.difference && storage_.journal && storage_.header);
    FreeWorkingLists(storage_, true);
    EXPECT_FALSE(storage_.difference);
    EXPECT_TRUE(storage_.journal && storage_.header);
    CloseStorage(storage_);
    EXPECT_FALSE(storage_.journal || storage_.header);
}

}  // namespace
}  // namespace tolvenar
