#include "app/rules/about_picture.h"

#include <algorithm>

namespace tolvenar {

AboutPicture AboutPictureAt(int step) {
    AboutPicture picture{};
    const int left = std::max(kRiseSteps - step, 0);
    // Slower towards the end.
    picture.card_offset = kPictureUnits * left * left / (kRiseSteps * kRiseSteps);
    for (int i = 0; i < kBarCount; ++i) {
        const int done = std::clamp(step - kRiseSteps - i * kBarSteps, 0, kBarSteps);
        picture.bar_widths[i] = kBarUnits * done / kBarSteps;
    }
    return picture;
}

}  // namespace tolvenar
