#include "app/rules/about_picture.h"

#include <gtest/gtest.h>

namespace tolvenar {
namespace {

TEST(AboutPictureTest, ItBeginsWithTheCardOutOfSight) {
    const AboutPicture first = AboutPictureAt(0);
    EXPECT_EQ(kPictureUnits, first.card_offset);
    for (const int width : first.bar_widths) {
        EXPECT_EQ(0, width);
    }
}

TEST(AboutPictureTest, TheCardRisesBeforeTheBarsAreWritten) {
    for (int step = 1; step <= kRiseSteps; ++step) {
        const AboutPicture picture = AboutPictureAt(step);
        EXPECT_LE(picture.card_offset, AboutPictureAt(step - 1).card_offset);
        EXPECT_EQ(0, picture.bar_widths[0]);
    }
    EXPECT_EQ(0, AboutPictureAt(kRiseSteps).card_offset);
}

TEST(AboutPictureTest, TheBarsAreWrittenOneAfterAnother) {
    for (int step = 1; step <= kLastPictureStep; ++step) {
        const AboutPicture before = AboutPictureAt(step - 1);
        const AboutPicture picture = AboutPictureAt(step);
        for (int i = 0; i < kBarCount; ++i) {
            EXPECT_GE(picture.bar_widths[i], before.bar_widths[i]);
            const bool begins = picture.bar_widths[i] > 0;
            EXPECT_TRUE(i == 0 || !begins || picture.bar_widths[i - 1] == kBarUnits) << step;
        }
    }
}

TEST(AboutPictureTest, TheLastStepIsTheWholePictureAndStays) {
    for (const int step : {kLastPictureStep, kLastPictureStep + 1, 1000}) {
        const AboutPicture picture = AboutPictureAt(step);
        EXPECT_EQ(0, picture.card_offset);
        for (const int width : picture.bar_widths) {
            EXPECT_EQ(kBarUnits, width);
        }
    }
}

}  // namespace
}  // namespace tolvenar
