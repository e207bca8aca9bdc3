#include "snapshot/text/letter_case.h"

#include <gtest/gtest.h>

namespace tolvenar {
namespace {

TEST(LetterCaseTest, SmallLettersHaveTheirCapitals) {
    const struct {
        char16_t small_letter;
        char16_t capital;
    } rows[] = {{u'a', u'A'},           {u'z', u'Z'},           {u'\u00E4', u'\u00C4'},
                {u'\u00FE', u'\u00DE'}, {u'\u0119', u'\u0118'}, {u'\u017E', u'\u017D'},
                {u'\u03B1', u'\u0391'}, {u'\u03AD', u'\u0388'}, {u'\u03C9', u'\u03A9'},
                {u'\u044F', u'\u042F'}, {u'\u0451', u'\u0401'}, {u'\u0491', u'\u0490'}};
    for (const auto& row : rows) {
        EXPECT_EQ(row.capital, Capital(row.small_letter));
        EXPECT_EQ(row.capital, Capital(row.capital));
    }
}

// Among them the letter that joins a key's path and a value's name.
TEST(LetterCaseTest, WhatHasNoCapitalInItsAlphabetStaysAsItIs) {
    for (const char16_t unit : {u'0', u'_', u'`', u'{', u'\\', u'\u00D7', u'\u00F7', u'\u00FF',
                                u'\u0131', u'\u0138', u'\u03C2', u'\u4E00'}) {
        EXPECT_EQ(unit, Capital(unit)) << static_cast<int>(unit);
    }
}

TEST(LetterCaseTest, NamesAreEqualWhateverTheCaseOfTheirLetters) {
    EXPECT_TRUE(EqualIgnoringCase(u"", u""));
    EXPECT_TRUE(
        EqualIgnoringCase(u"\\My Documents\\\u00DCber.txt", u"\\MY DOCUMENTS\\\u00FCBER.TXT"));
    EXPECT_FALSE(EqualIgnoringCase(u"a", u"ab"));
    EXPECT_FALSE(EqualIgnoringCase(u"ab", u"a"));
    EXPECT_FALSE(EqualIgnoringCase(u"a.txt", u"b.txt"));
    EXPECT_FALSE(EqualIgnoringCase(u"[", u"{"));
}

}  // namespace
}  // namespace tolvenar
