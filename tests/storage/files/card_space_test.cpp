#include "storage/files/card_space.h"

#include "tests/support/device_test.h"

namespace tolvenar {
namespace {

class CardSpaceTest : public tests::DeviceTest {};

TEST_F(CardSpaceTest, WhatIsBelowTheCardsFolderIsOnIt) {
    device().MakeFolder(L"\\Storage Card\\Backups");
    EXPECT_TRUE(IsOnMountedCard(u"\\Storage Card\\Home.sav"));
    EXPECT_TRUE(IsOnMountedCard(u"\\Storage Card\\Backups\\Home.sav"));
}

// The card's folder itself is the device's.
TEST_F(CardSpaceTest, WhatIsElsewhereIsNot) {
    device().MakeFolder(L"\\Backups");
    for (const char16_t* path : {u"\\Backups\\Home.sav", u"\\Home.sav", u"\\Storage Card",
                                 u"\\No Card\\Home.sav", u"Home", u""}) {
        EXPECT_FALSE(IsOnMountedCard(path)) << testing::PrintToString(std::u16string(path));
    }
}

}  // namespace
}  // namespace tolvenar
