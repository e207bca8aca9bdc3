// The picture of the About page, step by step: a storage card comes up and three states are written
// to it. Platform-free.
#pragma once

namespace tolvenar {

constexpr int kPictureUnits = 32;  // the picture's side; the icon has the same picture
constexpr int kBarCount = 3;
constexpr int kBarUnits = 16;  // a bar that is written whole

// The last step is the whole picture and stays.
constexpr int kRiseSteps = 8;
constexpr int kBarSteps = 10;
constexpr int kLastPictureStep = kRiseSteps + kBarCount * kBarSteps;

struct AboutPicture {
    int card_offset;            // how far the card is below its place, in units
    int bar_widths[kBarCount];  // from the top, in sixteenths of a bar
};
// The picture at a step from 0 on; behind the last one it stays the same.
AboutPicture AboutPictureAt(int step);

}  // namespace tolvenar
