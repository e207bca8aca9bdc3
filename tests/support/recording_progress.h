// Notes what would be shown. Header only and platform-free.
#pragma once

#include <string>
#include <vector>

#include "snapshot/text/progress.h"
#include "tests/support/text.h"

namespace tolvenar {

class RecordingProgress final : public Progress {
public:
    void ProgressBegin(std::size_t count) override {
        if (!quiet) {
            begins.push_back(count);
            events.push_back("begin " + std::to_string(count));
        }
    }
    void ProgressStep(const char16_t* text) override {
        steps += text == nullptr ? 1 : 0;
        if (!quiet && text != nullptr) {
            texts.emplace_back(text);
        }
        if (!quiet) {
            events.push_back(text == nullptr ? "step" : tests::Narrow(std::u16string(text)));
        }
    }

    std::vector<std::size_t> begins;
    std::vector<std::u16string> texts;
    std::size_t steps = 0;            // without a text
    std::vector<std::string> events;  // all of it, in order: "begin 3", a text, "step"
    bool quiet = false;               // while allocations fail or are counted
};

}  // namespace tolvenar
