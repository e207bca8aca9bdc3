#include "tests/model/advanced_fixture.h"

#include "snapshot/compare/record_info.h"
#include "snapshot/engine/difference_engine.h"
#include "storage/files/handle_bytes.h"
#include "storage/format/storage_reader.h"

namespace tolvenar {
namespace {

using tests::AdvancedModel;
using tests::ContentsOf;
using tests::DeviceImage;
using tests::Differences;
using tests::ImageOf;
using Names = std::multiset<std::string>;

// The hives themselves and the program's own settings are in a state, but in no image.
void RemoveUntold(Names& lines) {
    for (auto line = lines.begin(); line != lines.end();) {
        const bool is_untold =
            line->back() == '\\' || line->find("HKCU\\Software\\Kestrin2") != std::string::npos;
        line = is_untold ? lines.erase(line) : std::next(line);
    }
}

std::u16string HiveOf(const ObjectRecord& record, const InfoBlock& block) {
    const char16_t* const kHives[] = {u"HKCR\\", u"HKCU\\", u"HKLM\\", u"HKU\\"};
    return IsRegistryObject(record) ? kHives[block.head().hive & 3] : u"";
}

}  // namespace

void AdvancedModelTest::SetUp() {
    EngineTest::SetUp();
    LetTimePass();
    RestoreDatabases(true);
}

void AdvancedModelTest::RestoreDatabases(bool on) {
    with_databases_ = on;
    SetAdvancedDatabaseRestoring(on ? 1 : 0);
}

// "+ file \a.txt": what a record of a list says about which object.
std::string AdvancedModelTest::LineOf(const ObjectRecord& record, InfoSource& info) {
    InfoBlock block;
    EXPECT_TRUE(FetchInfo(record, info, block));
    const std::string sign = (record.flags & JF_ADD) != 0 ? "+ " : "- ";
    const std::u16string name = HiveOf(record, block) + block.name();
    const std::size_t separator = name.find(kNameSeparator);
    switch (record.type) {
        case kFile: return sign + tests::FileName({name.begin(), name.end()});
        case kKey: return sign + tests::KeyName(name);
        case kValue:
            return sign + tests::ValueName(name.substr(0, separator), name.substr(separator + 1));
        case kDatabase: return sign + tests::DatabaseName(name);
        default: return sign + tests::RecordName(name, record.dwOID);
    }
}

// Of one state, or of all with 0; the lines of states themselves left out.
Names AdvancedModelTest::LinesOf(const ObjectList* list, std::uint16_t state_number) {
    const UniqueHandle sav =
        OpenFile(storage_.names.sav, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING);
    HandleBytes bytes(sav.get());
    StorageReader stored(bytes);
    InfoSource info(stored, info_);
    Names lines;
    if (list == nullptr) {
        return lines;
    }
    for (const ObjectRecord& record : RecordsOf(*list)) {
        const bool is_asked = state_number == 0 || record.state_number == state_number;
        if (is_asked && record.type != kState) {
            lines.insert(LineOf(record, info));
        }
    }
    return lines;
}

void AdvancedModelTest::BackUp() {
    const DeviceImage now = ImageOf(device().sim());
    const auto number = static_cast<std::uint16_t>(states_.size() + 1);
    const Names expected =
        tests::ExpectedBackup(states_.empty() ? DeviceImage() : states_.back(), now);
    const Answer backup = Backup(number);
    storage_.difference.reset();
    if (!states_.empty() && expected.empty()) {
        EXPECT_EQ(Done(ResultCode::kNoDifference), backup);
        return;
    }
    EXPECT_EQ(Done(), backup);
    Names added = LinesOf(storage_.journal.get(), number);
    RemoveUntold(added);
    EXPECT_EQ(Lines(), Differences(expected, added));
    states_.push_back(now);
}

void AdvancedModelTest::ExpectState(std::size_t state) {
    EXPECT_EQ(Lines(), Differences(states_[state].Lines(), ContentsOf(device().sim())))
        << "state " << state + 1;
}

void AdvancedModelTest::RestoreAndCheck(std::size_t state) {
    const Answer restore = Restore(static_cast<std::uint32_t>(state + 1));
    EXPECT_TRUE(restore == Done() || restore == Done(ResultCode::kNoDifference)) << restore;
    ExpectState(state);
    if (!HasFailure()) {
        tests::FollowIds(states_, state, ImageOf(device().sim()));
    }
}

void AdvancedModelTest::ExchangeDevice(std::uint32_t first_id) {
    ResetDevice();
    device().Set("oid.next", std::to_string(first_id));
    SetStorageSettings();
    RestoreDatabases(with_databases_);
}

void AdvancedModelTest::ShowDifferences(std::size_t state) {
    ASSERT_EQ(1, FindDifferenceEx(engine_, static_cast<std::uint32_t>(state),
                                  static_cast<std::uint32_t>(state + 1)));
}

AdvancedModel AdvancedModelTest::ModelOf(std::size_t state, Button button) const {
    const DeviceImage& older = states_[state - 1];
    const DeviceImage& newer = states_[state];
    return button == Button::kApply ? AdvancedModel(older, newer, with_databases_)
                                    : AdvancedModel(newer, older, with_databases_);
}

bool AdvancedModelTest::Press(Button button) {
    const Answer restore = RestoreAdvanced(button == Button::kApply);
    EXPECT_EQ(storage_.difference == nullptr ? Done() : Done(ResultCode::kFailed), restore);
    return restore == Done();
}

// A phase may end before everything was tried: for as many failures as the phase before it had.
void AdvancedModelTest::RetryWhileItHelps() {
    std::size_t left = 0;
    while (storage_.difference != nullptr && storage_.difference->CountRecords() != left) {
        left = storage_.difference->CountRecords();
        Press(Button::kApply);
    }
}

// What is left over is told with its sense turned round.
void AdvancedModelTest::ExpectDevice(const DeviceImage& expected, const AdvancedModel& model) {
    EXPECT_EQ(Lines(), Differences(expected.Lines(), ContentsOf(device().sim())));
    EXPECT_EQ(model.Left(), LeftOver());
}

void AdvancedModelTest::PressAndCheck(std::size_t state, Button button,
                                      const std::set<std::wstring>& locked) {
    ShowDifferences(state);
    AdvancedModel model = ModelOf(state, button);
    DeviceImage image = ImageOf(device().sim());
    {
        std::vector<tests::FileLock> locks;
        for (const std::wstring& path : locked) {
            locks.push_back(device().Lock(path));
        }
        EXPECT_EQ(model.Run(image, locked), Press(button));
        RetryWhileItHelps();
        ExpectDevice(image, model);
    }
    if (!model.Left().empty()) {
        model.Run(image, {});
        Press(Button::kApply);
        RetryWhileItHelps();
        ExpectDevice(image, model);
        storage_.difference.reset();
    }
}

}  // namespace tolvenar
