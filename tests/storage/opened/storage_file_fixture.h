// A storage file that is opened, and a user who is asked for its description.
#pragma once

#include "tests/support/engine_test.h"

namespace tolvenar {

class StorageFileFixture : public StorageTest {
protected:
    OpenStorageResult Open() {
        OpenStorageResult result = OpenStorageResult::kOutOfMemory;
        const bool opened = OpenStorage(kSav, storage_, result);
        EXPECT_EQ(opened, result == OpenStorageResult::kOpened);
        return result;
    }
};

// Answers what it is given; remembers what was offered.
class ScriptedPrompt : public DescriptionPrompt {
public:
    ScriptedPrompt(bool confirm, Text text) : confirm_(confirm), text_(std::move(text)) {}
    bool AskDescription(const char16_t* proposed, char16_t (&answer)[kMaxDescriptionUnits],
                        std::size_t& units) override {
        offered = proposed;
        units = text_.size();
        text_.copy(answer, kMaxDescriptionUnits);
        return confirm_;
    }
    Text offered;

private:
    bool confirm_;
    Text text_;
};

}  // namespace tolvenar
