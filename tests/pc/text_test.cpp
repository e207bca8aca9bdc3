// The PC's text: UTF-16 and UTF-8, times, patterns.
#include <ctime>
#include <gtest/gtest.h>

#include "pc/text/code_page.h"
#include "pc/text/file_time.h"
#include "pc/text/utf.h"
#include "pc/text/wildcard.h"

namespace tolvenar::pc {
namespace {

TEST(Utf, TextOfEveryLengthComesBack) {
    const std::u16string text = u"aß€\U0001F600";
    EXPECT_EQ("a\xC3\x9F\xE2\x82\xAC\xF0\x9F\x98\x80", ToUtf8(text));
    EXPECT_EQ(text, ToUtf16(ToUtf8(text)));
    EXPECT_TRUE(IsWellFormed(text));
}

TEST(Utf, ALoneSurrogateIsToldAndKeptExactly) {
    const std::u16string units = {u'a', 0xD800, u'b', 0xDC00};
    EXPECT_FALSE(IsWellFormed(units));
    EXPECT_EQ(
        "a\xEF\xBF\xBD"
        "b\xEF\xBF\xBD",
        ToUtf8(units));
    EXPECT_EQ("0061d8000062dc00", ExactUnits(units));
    EXPECT_EQ("a<U+D800>b<U+DC00>", Printable(units));
}

TEST(Utf, BytesThatAreNoTextBecomeReplacements) {
    const std::u16string bad = u"\uFFFD";
    EXPECT_EQ(bad, ToUtf16("\xFF"));
    EXPECT_EQ(bad + bad, ToUtf16("\xC0\x80"));            // too long a form
    EXPECT_EQ(bad + bad + bad, ToUtf16("\xED\xA0\x80"));  // a surrogate
    EXPECT_EQ(bad, ToUtf16("\xE2"));                      // cut
    EXPECT_EQ(bad + u"a", ToUtf16("\xE2"
                                  "a"));
    EXPECT_EQ(bad + bad + bad + bad, ToUtf16("\xF4\x90\x80\x80"));  // too large
}

TEST(Utf, NothingOfANameReachesATerminalAsAControl) {
    EXPECT_EQ("a<U+001B>[2Jb<U+000A><U+009B><U+202E>", Printable(u"a\x1b[2Jb\n\u009b\u202e"));
}

TEST(CodePage, HasBytesOfItsOwn) {
    EXPECT_EQ("a\xE9\x80\x9F", ToCodePage(u"a\u00E9\u20AC\u0178"));
    EXPECT_TRUE(FitsCodePage(u"a\u00E9\u20AC\u0178"));
}

TEST(CodePage, HoldsNoOtherLetters) {
    for (const char16_t unit : std::u16string{0x80, 0x81, 0x9F, 0x100, 0xD800}) {
        EXPECT_FALSE(FitsCodePage({&unit, 1})) << unit;
        EXPECT_EQ("?", ToCodePage({&unit, 1}));
    }
}

TEST(Wildcards, TakeAnyUnitsOrOne) {
    EXPECT_TRUE(MatchesWildcard(u"*.TXT", u"\\My Documents\\a.txt"));
    EXPECT_TRUE(MatchesWildcard(u"\\a?c*", u"\\abc"));
    EXPECT_TRUE(MatchesWildcard(u"*a*b*", u"xaxxbabx"));
    EXPECT_TRUE(MatchesWildcard(u"", u""));
    EXPECT_FALSE(MatchesWildcard(u"", u"a"));
    EXPECT_FALSE(MatchesWildcard(u"a?", u"a"));
    EXPECT_FALSE(MatchesWildcard(u"*a*b", u"ba"));
}

}  // namespace
}  // namespace tolvenar::pc
