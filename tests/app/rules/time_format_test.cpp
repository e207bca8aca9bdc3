#include "app/rules/time_format.h"

#include <gtest/gtest.h>
#include <string>

namespace tolvenar {
namespace {

std::u16string WithoutSeconds(const std::u16string& pattern) {
    char16_t text[kTimeFormatUnits] = {};
    pattern.copy(text, kTimeFormatUnits);
    DropSeconds(text);
    const std::u16string kept(text, kTimeFormatUnits);
    return kept.substr(0, kept.find(u'\0'));
}

TEST(TimeFormatTest, SecondsGoWithTheSeparatorBeforeThem) {
    EXPECT_EQ(u"h:mm tt", WithoutSeconds(u"h:mm:ss tt"));
    EXPECT_EQ(u"HH:mm", WithoutSeconds(u"HH:mm:ss"));
    EXPECT_EQ(u"H.mm", WithoutSeconds(u"H.mm.s"));
    EXPECT_EQ(u"tt h:mm", WithoutSeconds(u"tt h:mm:ss"));
}

TEST(TimeFormatTest, APatternWithoutSecondsStays) {
    EXPECT_EQ(u"HH:mm", WithoutSeconds(u"HH:mm"));
    EXPECT_EQ(u"", WithoutSeconds(u""));
}

TEST(TimeFormatTest, QuotedTextStays) {
    EXPECT_EQ(u"H' hours 'mm' mins'", WithoutSeconds(u"H' hours 'mm' mins'"));
    EXPECT_EQ(u"H' hours 'mm", WithoutSeconds(u"H' hours 'mm:ss"));
}

TEST(TimeFormatTest, APatternThatFillsTheBufferStaysWithinIt) {
    const std::u16string full(kTimeFormatUnits, u'H');
    char16_t text[kTimeFormatUnits];
    full.copy(text, kTimeFormatUnits);
    DropSeconds(text);
    EXPECT_EQ(full, std::u16string(text, kTimeFormatUnits));
}

}  // namespace
}  // namespace tolvenar
