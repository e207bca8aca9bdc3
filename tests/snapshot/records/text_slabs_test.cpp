#include "snapshot/records/text_slabs.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tolvenar {
namespace {

TEST(TextSlabsTest, EveryTextIsACopyThatStays) {
    TextSlabs texts;
    std::vector<const char16_t*> copies;
    for (int i = 0; i < 3000; ++i) {
        const std::u16string text(static_cast<std::size_t>(i % 40), static_cast<char16_t>(i));
        copies.push_back(texts.Copy(text));
        ASSERT_NE(nullptr, copies.back());
    }
    for (int i = 0; i < 3000; ++i) {
        const std::u16string text(static_cast<std::size_t>(i % 40), static_cast<char16_t>(i));
        EXPECT_EQ(text, copies[static_cast<std::size_t>(i)]);
    }
}

TEST(TextSlabsTest, ATextMayBeLongerThanASlab) {
    TextSlabs texts;
    const char16_t* const small = texts.Copy(u"small");
    const std::u16string text(50000, u'x');
    EXPECT_EQ(text, texts.Copy(text));
    EXPECT_EQ(std::u16string(u"small"), small);
    EXPECT_EQ(std::u16string(u"behind"), texts.Copy(u"behind"));
}

TEST(TextSlabsTest, ClearedItBeginsAnew) {
    TextSlabs texts;
    texts.Copy(u"one");
    texts.Clear();
    EXPECT_EQ(std::u16string(u"two"), texts.Copy(u"two"));
}

}  // namespace
}  // namespace tolvenar
