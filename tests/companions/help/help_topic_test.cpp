// How the help viewer reads the manual.
#include "companions/help/help_topic.h"

#include <gtest/gtest.h>
#include <string>

namespace help {
namespace {

std::u16string Plain(Text html) {
    char16_t buffer[200];
    const std::size_t length = PlainText(buffer, 200).Write(html);
    EXPECT_EQ(0, buffer[length]);
    return {buffer, length};
}

TEST(HelpTopicTest, AnAddressIsAFileAndPerhapsAnAnchor) {
    const Address both = ParseAddress(u"all.htp#one");
    EXPECT_EQ(u"all.htp", both.file);
    EXPECT_EQ(u"one", both.anchor);
    const Address whole = ParseAddress(u"all.htc");
    EXPECT_EQ(u"all.htc", whole.file);
    EXPECT_TRUE(whole.anchor.empty());
}

TEST(HelpTopicTest, ATopicGoesFromItsMarkToTheNext) {
    const Text file =
        u"<html><!-- PegHelp --><a name=\"a\"></a>first<!-- PegHelp --><a name=\"b\"></a>second";
    EXPECT_EQ(u"<a name=\"a\"></a>first", FindTopic(file, u"a"));
    EXPECT_EQ(u"<a name=\"b\"></a>second", FindTopic(file, u"b"));
    EXPECT_TRUE(FindTopic(file, u"c").empty());
    EXPECT_TRUE(FindTopic(file, u"").empty());
    EXPECT_TRUE(FindTopic(u"", u"a").empty());
}

TEST(HelpTopicTest, LinksComeOneAfterAnother) {
    const Text html = u"<a href=\"x#1\">One</a> and <a href=\"y\">Two</a>.";
    std::size_t at = 0;
    Link link;
    ASSERT_TRUE(NextLink(html, at, link));
    EXPECT_EQ(u"x#1", link.address);
    EXPECT_EQ(u"One", link.text);
    ASSERT_TRUE(NextLink(html, at, link));
    EXPECT_EQ(u"y", link.address);
    EXPECT_EQ(u"Two", link.text);
    EXPECT_FALSE(NextLink(html, at, link));
}

TEST(HelpTopicTest, ALinkThatIsCutOffIsNone) {
    Link link;
    for (const Text html : {u"<a href=\"x", u"<a href=\"x\"", u"<a href=\"x\">text"}) {
        std::size_t at = 0;
        EXPECT_FALSE(NextLink(html, at, link));
    }
}

TEST(HelpTopicTest, ParagraphsAndItemsBecomeLines) {
    EXPECT_EQ(u"Title\r\n\r\nOne line\r\nnext\r\n\r\n\x2022 a b\r\n\x2022 c",
              Plain(u"<h1>Title</h1>\n<p>One\nline<br>next</p>\n<ul>\n<li><b>a</b>\r\n b</li>\n"
                    u"<li>c</li>\n</ul>\n"));
}

TEST(HelpTopicTest, SignsOfTheLanguageAreWrittenOut) {
    EXPECT_EQ(u"a < b > \"c\" & d &amp", Plain(u"a &lt; b &gt; &quot;c&quot; &amp; d &amp"));
}

TEST(HelpTopicTest, WhatDoesNotFitIsCut) {
    char16_t buffer[4];
    EXPECT_EQ(3u, PlainText(buffer, 4).Write(u"abcdef"));
    EXPECT_EQ(u"abc", std::u16string(buffer));
}

TEST(HelpTopicTest, ATopicMayHaveAPictureWhichIsNoText) {
    const Text html = u"<h1>a</h1><img src=\"tolvenar_a.2bp\" alt=\"x\"><p>b</p>";
    EXPECT_EQ(u"tolvenar_a.2bp", PictureOf(html));
    EXPECT_EQ(u"a\r\n\r\nb", Plain(html));
    EXPECT_EQ(u"", PictureOf(u"<h1>a</h1>"));
    EXPECT_EQ(u"", PictureOf(u"<img src=\"cut"));
}

TEST(HelpTopicTest, TheHeadIsNoText) {
    EXPECT_EQ(u"text", BodyOf(u"<head><title>x</title></head><body>text"));
    EXPECT_EQ(u"text", BodyOf(u"text"));
}

}  // namespace
}  // namespace help
