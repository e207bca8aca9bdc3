// What an object holds as lines of text. Every byte is written out.
#include "difftree/model/data_text.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tolvenar {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes BytesOf(const std::u16string& text) {
    Bytes bytes;
    for (const char16_t unit : text) {
        bytes.push_back(static_cast<std::uint8_t>(unit & 0xFF));
        bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
    }
    return bytes;
}
Bytes BytesOf(const char* text) { return Bytes(text, text + std::char_traits<char>::length(text)); }
TextKind KindOf(const Bytes& bytes) { return KindOfText(bytes.data(), bytes.size()); }

std::u16string Lines(const Bytes& bytes) {
    TextBuffer<200> text;
    AppendLines(bytes.data(), bytes.size(), text);
    return text.text();
}
std::u16string Value(std::uint32_t type, const Bytes& bytes) {
    TextBuffer<200> text;
    AppendValueData(type, bytes.data(), bytes.size(), text);
    return text.text();
}
void TimeAsNumbers(std::uint32_t low, std::uint32_t high, TextBuilder& text) {
    text.AppendUnit(u'<').AppendUnsigned(high).AppendUnit(u':').AppendUnsigned(low).AppendUnit(
        u'>');
}
std::u16string Fields(const Bytes& bytes, std::size_t count) {
    TextBuffer<400> text;
    AppendProperties(bytes.data(), bytes.size(), count, TimeAsNumbers, text);
    return text.text();
}

TEST(DataTextTest, BytesWithoutControlCharactersAreText) {
    EXPECT_EQ(TextKind::kBytes, KindOf(BytesOf("one\ttwo\r\nthree")));
    EXPECT_EQ(TextKind::kBytes, KindOf({0xC0, 0xE0, 0xFF}));
    EXPECT_EQ(TextKind::kNone, KindOf({'a', 0, 'b', 'c'}));
    EXPECT_EQ(TextKind::kNone, KindOf({0x7B, 0x01}));
    EXPECT_EQ(TextKind::kNone, KindOf({}));
}

TEST(DataTextTest, Utf16IsTextWithItsMarkOrWithZeroHighBytes) {
    EXPECT_EQ(TextKind::kUtf16, KindOf({0xFF, 0xFE, 0x10, 0x04}));
    EXPECT_EQ(TextKind::kUtf16, KindOf(BytesOf(u"one\r\ntwo")));
    EXPECT_EQ(TextKind::kNone, KindOf({'a', 0, 3, 0}));
    EXPECT_EQ(TextKind::kNone, KindOf({0}));
}

TEST(DataTextTest, AnyLineEndBecomesCarriageReturnAndLineFeed) {
    EXPECT_EQ(u"1\r\n2\r\n3\r\n4", Lines(BytesOf(u"1\n2\r\n3\r4")));
    EXPECT_EQ(u"\r\n\r\n", Lines(BytesOf(u"\n\n")));
}

TEST(DataTextTest, MarkTerminatorControlsAndAnOddByteAreNoText) {
    EXPECT_EQ(u"a b", Lines(BytesOf(u"\uFEFFa\tb")));
    EXPECT_EQ(u"a", Lines(BytesOf(std::u16string(u"a\0b", 3))));
    EXPECT_EQ(u"a", Lines({'a', 0, 'b'}));
    EXPECT_EQ(u"", Lines({}));
}

TEST(DataTextTest, ValuesAreShownByTheirType) {
    EXPECT_EQ(u"text", Value(1, BytesOf(std::u16string(u"text\0", 5))));
    EXPECT_EQ(u"%x%", Value(2, BytesOf(u"%x%")));
    EXPECT_EQ(u"258 (0x00000102)", Value(4, {2, 1, 0, 0}));
    EXPECT_EQ(u"one\r\ntwo\r\n", Value(7, BytesOf(std::u16string(u"one\0two\0\0", 9))));
    EXPECT_EQ(u"00 ff 10", Value(3, {0, 0xFF, 0x10}));
    EXPECT_EQ(u"", Value(3, {}));
}

TEST(DataTextTest, ANumberOfAnotherSizeAndUnknownTypesAreBytes) {
    EXPECT_EQ(u"01 02", Value(4, {1, 2}));
    EXPECT_EQ(u"61 00", Value(77, {'a', 0}));
}

TEST(DataTextTest, EightBytesStandOnALine) {
    EXPECT_EQ(u"01 02 03 04 05 06 07 08\r\n09", Value(3, {1, 2, 3, 4, 5, 6, 7, 8, 9}));
}

TEST(DataTextTest, EachFieldHasALineWithItsIdentifier) {
    const Bytes fields = {
        2,    0,    0x01, 0x40, 0, 0, 0, 0, 0xFE,
        0xFF, 0,    0,    0,    0, 0, 0,  // I2: -2
        18,   0,    0x02, 0x40, 0, 0, 0, 0, 0xFE,
        0xFF, 9,    9,    0,    0, 0, 0,  // UI2: 65534
        3,    0,    0x03, 0x40, 0, 0, 0, 0, 0xFF,
        0xFF, 0xFF, 0xFF, 0,    0, 0, 0,  // I4: -1
        19,   0,    0x04, 0x40, 0, 0, 0, 0, 0xFF,
        0xFF, 0xFF, 0xFF, 0,    0, 0, 0,  // UI4
        64,   0,    0x05, 0x40, 0, 0, 0, 0, 7,
        0,    0,    0,    8,    0, 0, 0,  // file time
        31,   0,    0x13, 0x40, 0, 0, 0, 0, 128,
        0,    0,    0,    0,    0, 0, 0,  // string at 128
        65,   0,    0x07, 0x40, 0, 0, 0, 0, 3,
        0,    0,    0,    134,  0, 0, 0,  // blob: 3 bytes at 134
        5,    0,    0x08, 0x40, 0, 0, 0, 0, 1,
        0,    0,    0,    2,    0, 0, 0,  // double: its bits
        'A',  0,    'b',  0,    0, 0, 1, 2, 3,
    };
    EXPECT_EQ(
        u"4001: -2\r\n4002: 65534\r\n4003: -1\r\n4004: 4294967295\r\n4005: <8:7>\r\n4013: Ab\r\n"
        u"4007: 01 02 03 \r\n4008: 0x0000000200000001\r\n",
        Fields(fields, 8));
}

TEST(DataTextTest, WhatIsNotWholeInTheBufferHasNoValue) {
    const Bytes fields = {
        31, 0, 1, 0, 0, 0, 0, 0, 200,  0,    0,    0,    0,    0,    0,    0,     // string outside
        65, 0, 2, 0, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 32,   0,    0,    0,     // blob too long
        65, 0, 3, 0, 0, 0, 0, 0, 1,    0,    0,    0,    0xFF, 0xFF, 0xFF, 0xFF,  // blob outside
    };
    EXPECT_EQ(u"0001: \r\n0002: \r\n0003: \r\n", Fields(fields, 3));
    EXPECT_EQ(u"0001: \r\n0002: \r\n0003: \r\n", Fields(fields, 1000));
}

TEST(DataTextTest, OfALongBlobTheStartIsShown) {
    Bytes fields = {65, 0, 1, 0, 0, 0, 0, 0, 33, 0, 0, 0, 16, 0, 0, 0};
    fields.insert(fields.end(), 33, 0xAB);
    std::u16string expected = u"0001: ";
    for (int i = 0; i < 32; ++i) {
        expected += u"ab ";
    }
    EXPECT_EQ(expected + u"...\r\n", Fields(fields, 1));
}

}  // namespace
}  // namespace tolvenar
