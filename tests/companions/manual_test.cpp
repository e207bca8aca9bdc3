// The manual as it is installed: every section that is asked for is there, and every link leads
// somewhere.
#include <algorithm>
#include <set>

#include "companions/help/help_topic.h"
#include "companions/help/picture.h"
#include "tests/support/program_test.h"

namespace tests {
namespace {

using help::Text;

class ManualTest : public ProgramTest {
protected:
    std::u16string Read(const std::wstring& name) {
        const std::string bytes = device().FileBytes(L"\\Windows\\" + name);
        return {bytes.begin(), bytes.end()};
    }
    std::u16string Contents() { return Read(L"tolvenar.htc"); }
    std::u16string Manual() { return Read(L"tolvenar_all.htp"); }
    static std::vector<std::u16string> Anchors(Text manual) {
        std::vector<std::u16string> anchors;
        for (std::size_t at = manual.find(help::kAnchor); at != Text::npos;
             at = manual.find(help::kAnchor, at + 1)) {
            anchors.emplace_back(help::Until(manual, at + help::kAnchor.size(), u"\""));
        }
        return anchors;
    }
};

TEST_F(ManualTest, EverySectionThatThePagesAskForIsThere) {
    const std::u16string manual = Manual();
    for (const Text anchor :
         {u"tolvenar_manual_backup", u"tolvenar_normal_restore", u"tolvenar_advanced_restore",
          u"tolvenar_option_storage", u"tolvenar_options_content"}) {
        EXPECT_GT(help::FindTopic(manual, anchor).size(), 300u)
            << std::string(anchor.begin(), anchor.end());
    }
}

// The pages' sections and what a restore left over.
TEST_F(ManualTest, EveryPictureIsInstalledAndCanBeShown) {
    const std::u16string manual = Manual();
    std::set<std::wstring> names;
    for (std::size_t at = manual.find(help::kPicture); at != Text::npos;
         at = manual.find(help::kPicture, at + 1)) {
        const Text name = help::Until(manual, at + help::kPicture.size(), u"\"");
        names.emplace(name.begin(), name.end());
    }
    EXPECT_EQ(6u, names.size());
    for (const std::wstring& name : names) {
        const std::string bytes = device().FileBytes(L"\\Windows\\" + name);
        const help::Picture picture =
            help::DecodePicture(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
        EXPECT_NE(nullptr, picture.pixels);
        EXPECT_LE(picture.width, 280);
        EXPECT_LE(picture.height, 130);
    }
}

TEST_F(ManualTest, EachAnchorIsThereOnceAndBeginsATopic) {
    const std::u16string manual = Manual();
    const auto anchors = Anchors(manual);
    EXPECT_EQ(anchors.size(), std::set<std::u16string>(anchors.begin(), anchors.end()).size());
    for (const auto& anchor : anchors) {
        EXPECT_FALSE(help::FindTopic(manual, anchor).empty());
    }
}

TEST_F(ManualTest, TheContentsLeadToEverySectionByItsTitle) {
    const std::u16string contents = Contents();
    const std::u16string manual = Manual();
    std::vector<std::u16string> linked;
    std::size_t at = 0;
    for (help::Link link; help::NextLink(contents, at, link);) {
        const help::Address address = help::ParseAddress(link.address);
        EXPECT_EQ(u"tolvenar_all.htp", address.file);
        const Text topic = help::FindTopic(manual, address.anchor);
        EXPECT_NE(Text::npos, topic.find(u"<h1>" + std::u16string(link.text) + u"</h1>"))
            << std::string(link.text.begin(), link.text.end());
        linked.emplace_back(address.anchor);
    }
    EXPECT_EQ(Anchors(manual), linked);
}

// The viewer knows no other tags, and its text is ASCII.
TEST_F(ManualTest, ItIsWrittenAsTheViewerReadsIt) {
    const std::set<std::u16string> known = {u"html", u"head", u"title", u"body", u"h1", u"h2", u"p",
                                            u"ul",   u"li",   u"b",     u"br",   u"a",  u"img"};
    for (const std::u16string& file : {Contents(), Manual()}) {
        EXPECT_TRUE(std::all_of(file.begin(), file.end(), [](char16_t c) { return c < 0x7F; }));
        std::vector<std::u16string> open;
        for (std::size_t at = file.find(u'<'); at != Text::npos; at = file.find(u'<', at + 1)) {
            const Text tag = help::Until(file, at + 1, u">");
            if (tag.front() == u'!') {
                continue;
            }
            const bool closes = tag.front() == u'/';
            const std::u16string name(tag.substr(closes ? 1 : 0, tag.find(u' ')));
            EXPECT_EQ(1u, known.count(name)) << std::string(tag.begin(), tag.end());
            if (name == u"img") {
                continue;  // has no end
            }
            if (!closes) {
                open.push_back(name);
                continue;
            }
            ASSERT_FALSE(open.empty());
            EXPECT_EQ(open.back(), name) << std::string(name.begin(), name.end());
            open.pop_back();
        }
        EXPECT_TRUE(open.empty());
    }
}

}  // namespace
}  // namespace tests
