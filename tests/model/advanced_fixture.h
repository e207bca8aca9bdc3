// States of a device, restores of the differences between two of them, and a model of what those
// must do.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "tests/model/advanced_model.h"
#include "tests/support/engine_test.h"

namespace tolvenar {

enum class Button { kApply, kTakeBack };  // "+" and "--"

class AdvancedModelTest : public EngineTest {
protected:
    using Names = std::multiset<std::string>;

    void SetUp() override;
    void RestoreDatabases(bool on);

    // A backup that must add what the model says, or find no difference.
    void BackUp();
    void RestoreAndCheck(std::size_t state);
    void ExpectState(std::size_t state);
    // The same card in another device, which is empty and gives ids of its own.
    void ExchangeDevice(std::uint32_t first_id);

    // Asks for the differences of a state from the one before it, as a double click does.
    void ShowDifferences(std::size_t state);
    // True when nothing was left over.
    bool Press(Button button);
    // A button pressed while some files are held open, and "+" pressed again once they are not.
    void PressAndCheck(std::size_t state, Button button, const std::set<std::wstring>& locked = {});
    // The difference list, a line for each record.
    Names LeftOver() { return LinesOf(storage_.difference.get(), 0); }

    bool with_databases_ = true;
    std::vector<tests::DeviceImage> states_;  // state n stands at n - 1

private:
    std::string LineOf(const ObjectRecord& record, InfoSource& info);
    Names LinesOf(const ObjectList* list, std::uint16_t state_number);
    tests::AdvancedModel ModelOf(std::size_t state, Button button) const;
    void RetryWhileItHelps();
    void ExpectDevice(const tests::DeviceImage& expected, const tests::AdvancedModel& model);
};

}  // namespace tolvenar
