// Which comparison of states the difference tree shows, and what the advanced page says of it.
#pragma once

#include "app/operations/application.h"

namespace tolvenar {

constexpr int kComparisonTextUnits = 200;

class ShownComparison {
public:
    using Text = wchar_t[kComparisonTextUnits];

    explicit ShownComparison(const HINSTANCE& instance) : instance_(instance) {}

    void Forget() { state_ = older_ = kNoState; }
    // `older`: kNoState when `state` is the oldest.
    void Keep(std::int32_t state, std::int32_t older) {
        state_ = state;
        older_ = older;
    }
    bool IsMade() const { return state_ != kNoState; }

    // Above the tree; empty without two states.
    void PutCaption(Text& text) const;
    // Beside the buttons: what they do, or why it is not the selected state that they act on.
    void PutLine(std::int32_t selected, Text& text) const;
    // What `button` will do, for its confirmation; empty when there is nothing to do.
    void PutEffect(int button, Text& text) const;

private:
    void Put(UINT format, std::int32_t first, std::int32_t second, Text& text) const;

    const HINSTANCE& instance_;
    std::int32_t state_ = kNoState;
    std::int32_t older_ = kNoState;
};

}  // namespace tolvenar
