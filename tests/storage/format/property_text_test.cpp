// Texts among stored properties.
#include "storage/format/property_text.h"

#include <gtest/gtest.h>

#include "tests/support/bytes.h"

namespace tolvenar {
namespace {

constexpr std::uint32_t kText = 0x4013001F;

class PropertyTextTest : public testing::Test {
protected:
    bool Find(const std::string& bytes, std::size_t count, std::uint32_t propid = kText) {
        return FindTextProperty(Exactly(bytes).data(), bytes.size(), count, propid, text_);
    }
    TextBuffer<8> text_;
};

TEST_F(PropertyTextTest, TheStringOfTheProperty) {
    const std::string bytes = Property(0x00370003, 7) + Property(kText, 32) + Terminated(u"Ann");
    EXPECT_TRUE(Find(bytes, 2));
    EXPECT_EQ(u"Ann", std::u16string(text_.text()));
}

TEST_F(PropertyTextTest, AnEmptyStringIsFound) {
    EXPECT_TRUE(Find(Property(kText, 16) + Half(0), 1));
    EXPECT_EQ(0u, text_.length());
}

TEST_F(PropertyTextTest, AnotherPropertyOrTypeIsNot) {
    EXPECT_FALSE(Find(Property(0x40130041, 16) + Half(0), 1));
    EXPECT_FALSE(Find(Property(kText, 16) + Half(0), 0));
}

TEST_F(PropertyTextTest, ALongStringIsCut) {
    EXPECT_TRUE(Find(Property(kText, 16) + std::string(40, 'x') + Half(0), 1));
    EXPECT_EQ(7u, text_.length());
}

TEST_F(PropertyTextTest, WhatDoesNotEndInsideTheBufferIsNot) {
    EXPECT_FALSE(Find(Property(kText, 16) + "xxxx", 1));
    text_.Clear();
    EXPECT_FALSE(Find(Property(kText, 18) + Half(0), 1));
    EXPECT_FALSE(Find(Property(kText, 17) + Half(0), 1));
    EXPECT_FALSE(Find(Property(kText, 0xFFFFFFFF) + Half(0), 1));
}

TEST_F(PropertyTextTest, ACountBeyondTheBufferReadsOnlyWhatIsThere) {
    EXPECT_FALSE(Find(Property(0x00370003, 0) + std::string(15, 'x'), 0xFFFFFFFF));
}

TEST_F(PropertyTextTest, StoredTextEndsAtItsTerminatorOrWithItsBytes) {
    AppendStoredText("a\0b\0\0\0c\0", 8, text_);
    EXPECT_EQ(u"ab", std::u16string(text_.text()));
    text_.Clear();
    AppendStoredText("a\0b", 3, text_);
    EXPECT_EQ(u"a", std::u16string(text_.text()));
}

}  // namespace
}  // namespace tolvenar
