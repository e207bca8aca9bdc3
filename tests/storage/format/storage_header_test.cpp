#include "storage/format/storage_header.h"

#include <gtest/gtest.h>

#include "tests/support/bytes.h"

namespace tolvenar {
namespace {

using Text = std::u16string;

// Device "Box" (processor 4000, system 2.11), family 1, revision 4, created at 0x01DD7583957AC700.
Bytes HeadOfBox() {
    Bytes head = Raw({'B', 0, 'o', 0, 'x', 0});
    head.resize(200);
    return head + Raw({0xA0, 0x0F, 0, 0, 2, 0, 0, 0, 11, 0, 0, 0, 1, 0, 0, 0, 4, 0}) +
           Raw({0, 0, 0x00, 0xC7, 0x7A, 0x95, 0x83, 0x75, 0xDD, 0x01, 0, 0, 0, 0, 0, 0, 0, 0});
}

Bytes WithDescription(std::uint32_t claimed_bytes, const Text& text) {
    Bytes bytes = HeadOfBox();
    Patch(bytes, 228, claimed_bytes);
    return bytes.substr(0, 232) + Units(text);
}

bool Parse(const Bytes& bytes, StorageHeader& header) {
    std::memset(&header, 0xCC, sizeof header);
    return ParseStorageHeader(Exactly(bytes).data(), bytes.size(), header);
}

TEST(StorageHeaderTest, EveryFieldComesFromItsPlace) {
    StorageHeader header;
    ASSERT_TRUE(Parse(HeadOfBox(), header));
    EXPECT_EQ(Text(u"Box"), header.deviceName);
    EXPECT_EQ(4000u, header.processorType);
    EXPECT_EQ(2u, header.osMajor);
    EXPECT_EQ(11u, header.osMinor);
    EXPECT_EQ(1u, header.formatFamily);
    EXPECT_EQ(4u, header.formatRevision);
    EXPECT_EQ(0x957AC700u, header.created_low);
    EXPECT_EQ(0x01DD7583u, header.created_high);
    EXPECT_EQ(0u, header.descriptionBytes);
    EXPECT_EQ(Text(), header.description);
}

TEST(StorageHeaderTest, AHeadThatIsNotWholeIsRefused) {
    const Bytes whole = HeadOfBox();
    StorageHeader header;
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_FALSE(Parse(whole.substr(0, size), header)) << size;
        EXPECT_EQ(0u, header.processorType) << size;
    }
}

TEST(StorageHeaderTest, TheDescriptionIsTerminatedInMemory) {
    StorageHeader header;
    const Bytes bytes = WithDescription(20, u"ten units!");
    ASSERT_EQ(252u, bytes.size());
    ASSERT_TRUE(Parse(bytes + "xxxx", header));  // read along with it
    EXPECT_EQ(20u, header.descriptionBytes);
    EXPECT_EQ(Text(u"ten units!"), header.description);
}

// 232 and 2 bytes: shorter than a head without a description.
TEST(StorageHeaderTest, ADescriptionOfOneUnitIsRead) {
    StorageHeader header;
    ASSERT_TRUE(Parse(WithDescription(2, u"x"), header));
    EXPECT_EQ(Text(u"x"), header.description);
}

TEST(StorageHeaderTest, ADescriptionThatEndsEarlyIsWhatIsThere) {
    StorageHeader header;
    ASSERT_TRUE(Parse(WithDescription(20, u"four"), header));
    EXPECT_EQ(Text(u"four"), header.description);
}

TEST(StorageHeaderTest, AHeadThatEndsBeforeItsDescriptionIsRefused) {
    StorageHeader header;
    EXPECT_FALSE(Parse(WithDescription(20, u""), header));
    EXPECT_FALSE(Parse(WithDescription(2, u""), header));
}

TEST(StorageHeaderTest, OfTwoHundredUnitsTheLastIsLostInMemory) {
    StorageHeader header;
    ASSERT_TRUE(Parse(WithDescription(400, Text(199, u'd') + u"e"), header));
    EXPECT_EQ(400u, header.descriptionBytes);
    EXPECT_EQ(Text(199, u'd'), header.description);
}

TEST(StorageHeaderTest, AClaimOfMoreThanFourHundredBytesIsCut) {
    StorageHeader header;
    ASSERT_TRUE(Parse(WithDescription(0xFFFFFFFF, Text(300, u'd')), header));
    EXPECT_EQ(400u, header.descriptionBytes);
    EXPECT_EQ(Text(199, u'd'), header.description);
    EXPECT_EQ(636u, StorageHeaderBytesToRead(header));
}

TEST(StorageHeaderTest, AnOddClaimLosesItsHalfUnit) {
    StorageHeader header;
    ASSERT_TRUE(Parse(WithDescription(5, u"abcd"), header));
    EXPECT_EQ(Text(u"ab"), header.description);
}

TEST(StorageHeaderTest, ANameWithoutTerminatorIsCut) {
    Bytes bytes = HeadOfBox();
    for (std::size_t i = 0; i < 200; ++i) {
        bytes[i] = i % 2 == 0 ? 'n' : 0;
    }
    StorageHeader header;
    ASSERT_TRUE(Parse(bytes, header));
    EXPECT_EQ(Text(99, u'n'), header.deviceName);
}

TEST(StorageHeaderTest, TheReaderAsksForFourBytesBehindTheDescription) {
    StorageHeader header{};
    EXPECT_EQ(236u, StorageHeaderBytesToRead(header));
    header.descriptionBytes = 20;
    EXPECT_EQ(256u, StorageHeaderBytesToRead(header));
    header.descriptionBytes = 401;
    EXPECT_EQ(636u, StorageHeaderBytesToRead(header));
}

TEST(StorageHeaderTest, SetDescriptionCountsBytesAndReplacesTheOldOne) {
    StorageHeader header{};
    SetDescription(header, u"a longer one", 12);
    EXPECT_EQ(24u, header.descriptionBytes);
    SetDescription(header, u"short", 5);
    EXPECT_EQ(10u, header.descriptionBytes);
    EXPECT_EQ(Text(u"short"), header.description);
    SetDescription(header, Text(250, u'd').c_str(), 250);
    EXPECT_EQ(400u, header.descriptionBytes);
    EXPECT_EQ(Text(199, u'd'), header.description);
}

struct CheckRow {
    const char* what;
    std::uint32_t processor, major, minor, family, revision;
    OpenStorageResult result;
};

class CheckStorageHeaderTest : public testing::TestWithParam<CheckRow> {};

TEST_P(CheckStorageHeaderTest, DecidesByDeviceAndFormat) {
    StorageHeader device{};
    device.processorType = 4000;
    device.osMajor = 2;
    device.osMinor = 11;
    device.formatFamily = 1;
    device.formatRevision = 4;
    StorageHeader stored = device;
    stored.processorType = GetParam().processor;
    stored.osMajor = GetParam().major;
    stored.osMinor = GetParam().minor;
    stored.formatFamily = GetParam().family;
    stored.formatRevision = GetParam().revision;
    EXPECT_EQ(GetParam().result, CheckStorageHeader(stored, device)) << GetParam().what;
}

INSTANTIATE_TEST_SUITE_P(
    Rows, CheckStorageHeaderTest,
    testing::Values(
        CheckRow{"the same", 4000, 2, 11, 1, 4, OpenStorageResult::kOpened},
        CheckRow{"an older revision", 4000, 2, 11, 1, 3, OpenStorageResult::kOpened},
        CheckRow{"the oldest that is read", 4000, 2, 11, 1, 1, OpenStorageResult::kOpened},
        CheckRow{"a newer revision", 4000, 2, 11, 1, 5, OpenStorageResult::kOtherDevice},
        CheckRow{"another processor", 2577, 2, 11, 1, 4, OpenStorageResult::kOtherDevice},
        CheckRow{"another version", 4000, 3, 11, 1, 4, OpenStorageResult::kOtherDevice},
        CheckRow{"another minor version", 4000, 2, 12, 1, 4, OpenStorageResult::kOtherDevice},
        CheckRow{"another family", 4000, 2, 11, 2, 4, OpenStorageResult::kOtherDevice},
        CheckRow{"revision 0", 4000, 2, 11, 1, 0, OpenStorageResult::kUnsupportedRevision},
        CheckRow{"revision 0 of another device", 2577, 2, 11, 1, 0,
                 OpenStorageResult::kUnsupportedRevision},
        CheckRow{"revision 0 of another family", 4000, 2, 11, 0, 0,
                 OpenStorageResult::kOtherDevice}));

TEST(OpenStorageResultTest, TheNumbersAreTheSystems) {
    EXPECT_EQ(1, static_cast<int>(OpenStorageResult::kHeaderUnreadable));
    EXPECT_EQ(2, static_cast<int>(OpenStorageResult::kObjectIdsNotReset));
    EXPECT_EQ(3, static_cast<int>(OpenStorageResult::kOtherDevice));
    EXPECT_EQ(4, static_cast<int>(OpenStorageResult::kFileMissing));
    EXPECT_EQ(5, static_cast<int>(OpenStorageResult::kOutOfMemory));
    EXPECT_EQ(6, static_cast<int>(OpenStorageResult::kUnsupportedRevision));
}

TEST(ProcessorNameTest, FourProcessorsHaveNames) {
    EXPECT_EQ(Text(u"StrongARM"), ProcessorName(2577));
    EXPECT_EQ(Text(u"MIPS"), ProcessorName(4000));
    EXPECT_EQ(Text(u"SH3"), ProcessorName(10003));
    EXPECT_EQ(Text(u"SH4"), ProcessorName(10005));
    EXPECT_EQ(Text(u"Unknown"), ProcessorName(10004));
    EXPECT_EQ(Text(u"Unknown"), ProcessorName(0));
}

}  // namespace
}  // namespace tolvenar
