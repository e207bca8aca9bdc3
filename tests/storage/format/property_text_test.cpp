// Texts among stored properties.
#include "storage/format/property_text.h"

#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace tolvenar {
namespace {

constexpr std::uint32_t kText = 0x4013001F;

void Append32(std::string& bytes, std::uint32_t value) {
    for (int i = 0; i < 4; ++i) {
        bytes += static_cast<char>(value >> (8 * i));
    }
}

// A property's 16 bytes.
std::string Property(std::uint32_t propid, std::uint32_t value) {
    std::string bytes;
    Append32(bytes, propid);
    Append32(bytes, 0);
    Append32(bytes, value);
    Append32(bytes, 0);
    return bytes;
}

class PropertyTextTest : public testing::Test {
protected:
    bool Find(const std::string& bytes, std::size_t count, std::uint32_t propid = kText) {
        // A heap block of this size, so that a read past it is noticed.
        std::unique_ptr<char[]> copy(new char[bytes.size()]);
        std::memcpy(copy.get(), bytes.data(), bytes.size());
        return FindTextProperty(copy.get(), bytes.size(), count, propid, text_);
    }
    TextBuffer<8> text_;
};

TEST_F(PropertyTextTest, TheStringOfTheProperty) {
    const std::string bytes =
        Property(0x00370003, 7) + Property(kText, 32) + std::string("A\0n\0n\0\0\0", 8);
    EXPECT_TRUE(Find(bytes, 2));
    EXPECT_EQ(u"Ann", std::u16string(text_.text()));
}

TEST_F(PropertyTextTest, AnEmptyStringIsFound) {
    EXPECT_TRUE(Find(Property(kText, 16) + std::string(2, '\0'), 1));
    EXPECT_EQ(0u, text_.length());
}

TEST_F(PropertyTextTest, AnotherPropertyOrTypeIsNot) {
    EXPECT_FALSE(Find(Property(0x40130041, 16) + std::string(2, '\0'), 1));
    EXPECT_FALSE(Find(Property(kText, 16) + std::string(2, '\0'), 0));
}

TEST_F(PropertyTextTest, ALongStringIsCut) {
    EXPECT_TRUE(Find(Property(kText, 16) + std::string(40, 'x') + std::string(2, '\0'), 1));
    EXPECT_EQ(7u, text_.length());
}

TEST_F(PropertyTextTest, WhatDoesNotEndInsideTheBufferIsNot) {
    EXPECT_FALSE(Find(Property(kText, 16) + "xxxx", 1));
    text_.Clear();
    EXPECT_FALSE(Find(Property(kText, 18) + std::string(2, '\0'), 1));
    EXPECT_FALSE(Find(Property(kText, 17) + std::string(2, '\0'), 1));
    EXPECT_FALSE(Find(Property(kText, 0xFFFFFFFF) + std::string(2, '\0'), 1));
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
