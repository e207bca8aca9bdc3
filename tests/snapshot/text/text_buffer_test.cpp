#include "snapshot/text/text_buffer.h"

#include <gtest/gtest.h>
#include <string>

namespace tolvenar {
namespace {

TEST(TextBufferTest, IsEmptyAtFirst) {
    TextBuffer<8> text;
    EXPECT_EQ(u"", std::u16string(text.text()));
    EXPECT_EQ(0u, text.length());
}

TEST(TextBufferTest, JoinsPiecesInOrder) {
    TextBuffer<32> text;
    text.Append(u"Err:")
        .AppendNumber(-5)
        .AppendUnit(u' ')
        .Append(u"abcdef", 3)
        .AppendHex(0x80000002);
    EXPECT_EQ(u"Err:-5 abc80000002", std::u16string(text.text()));
    EXPECT_EQ(18u, text.length());
    EXPECT_FALSE(text.cut());
}

TEST(TextBufferTest, AnAbsentTextAddsNothing) {
    TextBuffer<8> text;
    text.Append(u"a").Append(nullptr).Append(u"b");
    EXPECT_EQ(u"ab", std::u16string(text.text()));
}

TEST(TextBufferTest, WritesNumbersToTheirLimits) {
    TextBuffer<64> text;
    text.AppendNumber(0).AppendUnit(u' ').AppendNumber(2147483647).AppendUnit(u' ');
    text.AppendNumber(-2147483647 - 1);
    EXPECT_EQ(u"0 2147483647 -2147483648", std::u16string(text.text()));
}

TEST(TextBufferTest, FillsHexadecimalWithZerosToItsDigits) {
    TextBuffer<64> text;
    text.AppendHex(0).AppendUnit(u' ').AppendHex(0, 8).AppendUnit(u' ').AppendHex(0xABC, 8);
    text.AppendUnit(u' ').AppendHex(0x12345, 2);
    EXPECT_EQ(u"0 00000000 00000abc 12345", std::u16string(text.text()));
}

TEST(TextBufferTest, CutsAtTheEndAndSaysSo) {
    TextBuffer<5> text;
    text.Append(u"abcd");
    EXPECT_FALSE(text.cut());
    text.Append(u"e");
    EXPECT_TRUE(text.cut());
    EXPECT_EQ(u"abcd", std::u16string(text.text()));
    text.Clear();
    EXPECT_FALSE(text.cut());
    EXPECT_EQ(u"", std::u16string(text.text()));
}

TEST(TextBufferTest, WritesIntoABufferOfSomebodyElse) {
    char16_t buffer[4] = {u'x', u'x', u'x', u'y'};
    TextBuilder text(buffer, 3);
    text.Clear();
    text.Append(u"12345");
    EXPECT_EQ(u"12", std::u16string(buffer));
    EXPECT_EQ(u'y', buffer[3]);
}

}  // namespace
}  // namespace tolvenar
