// Dialog templates, message boxes and the open dialog.
#include "platform/win32.h"

#include <optional>

#include "simulator/windows/control.h"
#include "simulator/windows/dialog_template.h"
#include "simulator/windows/open_choice.h"
#include "simulator/windows/open_dialog.h"
#include "tests/support/programs.h"

namespace tests {
namespace {

namespace windows = sim::windows;
using windows::ChoiceKind;

using Bytes = std::vector<std::uint8_t>;

// Style, extended style, item count, four places: the head of an old template.
Bytes OldHead(std::uint8_t style_low, std::uint8_t items) {
    return {style_low, 0, 0, 0, 0, 0, 0, 0, items, 0, 0, 0, 0, 0, 0, 0, 0, 0};
}

Bytes operator+(Bytes left, const Bytes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

const Bytes kDialogName = {'D', 0, 'i', 0, 'a', 0, 'l', 0, 'o', 0, 'g', 0, 0, 0};

TEST(DialogTemplateTest, AnUnnamedClassBecomesDialog) {
    const Bytes title = {'T', 0, 0, 0};
    const Bytes in = OldHead(0, 0) + Bytes{0, 0} + Bytes{0, 0} + title;
    const Bytes out = OldHead(0, 0) + Bytes{0, 0} + kDialogName + title;
    EXPECT_EQ(out, windows::WithDialogClass(in.data()));
}

TEST(DialogTemplateTest, ANamedClassAndAMenuNumberStay) {
    const Bytes menu = {0xFF, 0xFF, 7, 0};
    const Bytes own_class = {'C', 0, 0, 0};
    const Bytes in = OldHead(0, 0) + menu + own_class + Bytes{0, 0};
    EXPECT_EQ(in, windows::WithDialogClass(in.data()));
}

TEST(DialogTemplateTest, ItemsStayAlignedBehindTheFont) {
    const Bytes font = {8, 0, 'S', 0, 0, 0};
    const Bytes item = Bytes(18, 0x11) + Bytes{0xFF, 0xFF, 0x80, 0} + Bytes{'O', 0, 0, 0} +
                       Bytes{2, 0, 0xAA, 0xBB};  // creation data of two bytes
    // Head 18, menu 2, class 2, title 2, font 6: 30, so two bytes of padding come before the item.
    const Bytes in = OldHead(0x40, 1) + Bytes{0, 0, 0, 0, 0, 0} + font + Bytes{0, 0} + item;
    // With the name 12 bytes longer: 42, again two bytes short of a multiple of four.
    const Bytes out =
        OldHead(0x40, 1) + Bytes{0, 0} + kDialogName + Bytes{0, 0} + font + Bytes{0, 0} + item;
    EXPECT_EQ(out, windows::WithDialogClass(in.data()));
}

TEST(DialogTemplateTest, TheExtendedFormHasItsOwnPlaces) {
    Bytes head(26, 0);
    head[0] = 1;
    head[2] = 0xFF;
    head[3] = 0xFF;
    head[12] = 0x40;
    head[16] = 1;
    const Bytes font = {8, 0, 0x90, 1, 0, 1, 'S', 0, 0, 0};
    const Bytes item = Bytes(24, 0x22) + Bytes{'B', 0, 0, 0} + Bytes{0, 0} + Bytes{0, 0};
    // 26 + 6 + 10 = 42: two bytes of padding; 12 more: 54, two again.
    const Bytes in = head + Bytes{0, 0, 0, 0, 0, 0} + font + Bytes{0, 0} + item;
    const Bytes out = head + Bytes{0, 0} + kDialogName + Bytes{0, 0} + font + Bytes{0, 0} + item;
    EXPECT_EQ(out, windows::WithDialogClass(in.data()));
}

class OpenChoiceTest : public DeviceTest {
protected:
    OpenChoiceTest() {
        device().PutFile(L"\\Storage Card\\Backups\\Home.jrn", "j");
        device().PutFile(L"\\Storage Card\\Backups\\Home.sav", "s");
        device().MakeFolder(L"\\Storage Card\\Backups\\Old");
    }
    windows::Choice Decide(const std::wstring& typed) {
        return windows::Decide(device().sim(), L"\\Storage Card\\Backups", typed, rules_);
    }
    windows::ChoiceRules rules_ = {L"jrn", false, false, true, false};
};

TEST_F(OpenChoiceTest, NothingTypedIsNothingChosen) {
    EXPECT_EQ(ChoiceKind::kNothing, Decide(L"").kind);
    EXPECT_EQ(ChoiceKind::kNothing, Decide(L"  ").kind);
}

TEST_F(OpenChoiceTest, AnExistingFileIsTheAnswerWithItsFullPath) {
    const auto choice = Decide(L" home.JRN ");
    EXPECT_EQ(ChoiceKind::kFile, choice.kind);
    EXPECT_EQ(L"\\Storage Card\\Backups\\home.JRN", choice.path);
}

TEST_F(OpenChoiceTest, TheDefaultExtensionIsAddedToANameWithoutADot) {
    EXPECT_EQ(L"\\Storage Card\\Backups\\Home.jrn", Decide(L"Home").path);
    EXPECT_EQ(L"\\Storage Card\\Backups\\Home.sav", Decide(L"Home.sav").path);
    EXPECT_EQ(L"\\Storage Card\\Backups\\a.b", Decide(L"a.b").path);
}

TEST_F(OpenChoiceTest, AMissingFileIsAskedForUnderTheCreatePrompt) {
    EXPECT_EQ(ChoiceKind::kAskCreate, Decide(L"New").kind);
    rules_.create_prompt = false;
    EXPECT_EQ(ChoiceKind::kFile, Decide(L"New").kind);
    rules_.file_must_exist = true;
    EXPECT_EQ(ChoiceKind::kNoSuchFile, Decide(L"New").kind);
}

TEST_F(OpenChoiceTest, AMissingFolderIsToldWhereItHasToExist) {
    EXPECT_EQ(ChoiceKind::kNoSuchFolder, Decide(L"\\Nowhere\\New.jrn").kind);
    rules_.create_prompt = false;
    EXPECT_EQ(ChoiceKind::kFile, Decide(L"\\Nowhere\\New.jrn").kind);
}

TEST_F(OpenChoiceTest, AFolderIsEntered) {
    EXPECT_EQ(ChoiceKind::kFolder, Decide(L"Old").kind);
    EXPECT_EQ(L"\\Storage Card\\Backups\\Old", Decide(L"Old\\").path);
    EXPECT_EQ(L"\\Storage Card", Decide(L"\\Storage Card").path);
    EXPECT_EQ(ChoiceKind::kFolder, Decide(L"\\").kind);
}

TEST_F(OpenChoiceTest, AWildcardIsAPattern) {
    EXPECT_EQ(ChoiceKind::kPattern, Decide(L"*.sav").kind);
    EXPECT_EQ(L"*.sav", Decide(L"*.sav").path);
}

TEST_F(OpenChoiceTest, AnExistingFileIsAskedForUnderTheOverwritePrompt) {
    rules_.overwrite_prompt = true;
    EXPECT_EQ(ChoiceKind::kAskOverwrite, Decide(L"Home").kind);
}

TEST_F(OpenChoiceTest, TheListingHoldsFoldersThenMatchingFilesWithoutHiddenOnes) {
    device().PutFile(L"\\Storage Card\\Backups\\hidden.jrn", "h");
    device().SetAttributes(L"\\Storage Card\\Backups\\hidden.jrn", FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ((std::vector<std::wstring>{L"Old\\", L"Home.jrn"}),
              windows::Listing(device().sim(), L"\\Storage Card\\Backups", {L"*.jrn"}));
}

TEST(OpenFilterTest, PairsOfTextAndPatternsAreTakenApart) {
    const auto filters = windows::ParseFilters(L"Backups\0*.jrn;*.sav\0All\0*.*\0");
    ASSERT_EQ(2u, filters.size());
    EXPECT_EQ(L"Backups", filters[0].text);
    EXPECT_EQ((std::vector<std::wstring>{L"*.jrn", L"*.sav"}), filters[0].patterns);
    EXPECT_EQ((std::vector<std::wstring>{L"*.*"}), filters[1].patterns);
    EXPECT_TRUE(windows::ParseFilters(nullptr).empty());
}

class DialogProbeTest : public OpenChoiceTest {
protected:
    DialogProbeTest() { InstallProgram(sim(), "probe.exe", kProbe); }
    sim::Device& sim() { return device().sim(); }
    static constexpr wchar_t kProbe[] = L"\\Windows\\probe.exe";
};

// The probe's open dialog is up.
class OpenDialogTest : public DialogProbeTest {
protected:
    void SetUp() override {
        program_.emplace(sim(), kProbe, L"open");
        ASSERT_TRUE(
            Eventually([&] { return windows::Find(sim(), windows::kOpenFilterBox).has_value(); }));
    }
    std::vector<std::string> Listed() {
        return windows::Find(sim(), windows::kOpenFileList).value_or(windows::Window{}).items;
    }
    std::wstring Chosen() {
        const std::string bytes = device().FileBytes(L"\\chosen.txt");
        return {reinterpret_cast<const wchar_t*>(bytes.data()), bytes.size() / sizeof(wchar_t)};
    }
    std::optional<Program> program_;
};

TEST_F(OpenDialogTest, ItOpensInTheInitialFolderWithTheFilterAndTheTitle) {
    EXPECT_EQ("Home", windows::Text(sim(), windows::kOpenNameEdit));
    EXPECT_EQ("\\Storage Card\\Backups", windows::Text(sim(), windows::kOpenFolderText));
    EXPECT_EQ((std::vector<std::string>{"Old\\", "Home.jrn"}), Listed());
    EXPECT_EQ("Choose backup file", windows::List(sim()).at(0).text);
    EXPECT_FALSE(windows::Find(sim(), windows::kOpenReadOnlyCheck).has_value());
    EXPECT_TRUE(windows::Press(sim(), IDCANCEL));
    EXPECT_EQ(0, program_->ExitCode());
    EXPECT_FALSE(device().Exists(L"\\chosen.txt"));
}

TEST_F(DialogProbeTest, TheOpenDialogRefusesAnInitialNameThatIsNone) {
    for (const wchar_t* text : {L"a<b", L"a:b", L"a/b", L"a|b.jrn"}) {
        wchar_t name[MAX_PATH] = L"";
        ::wcscpy(name, text);
        OPENFILENAMEW data{};
        data.lStructSize = sizeof data;
        data.lpstrFile = name;
        data.nMaxFile = MAX_PATH;
        EXPECT_FALSE(::GetOpenFileNameW(&data)) << text;
        EXPECT_EQ(0x3002u, ::CommDlgExtendedError());
        EXPECT_STREQ(text, name);
    }
}

TEST_F(OpenDialogTest, AChosenFileComesBackAsADevicePath) {
    EXPECT_TRUE(windows::Select(sim(), windows::kOpenFileList, "Home.jrn"));
    EXPECT_TRUE(windows::Press(sim(), IDOK));
    EXPECT_EQ(1022, program_->ExitCode());  // the name stands at unit 22
    EXPECT_EQ(L"\\Storage Card\\Backups\\Home.jrn", Chosen());
}

TEST_F(OpenDialogTest, AnotherFilterListsOtherFiles) {
    EXPECT_TRUE(windows::Select(sim(), windows::kOpenFilterBox, "All files (*.*)"));
    EXPECT_TRUE(Eventually([&] { return Listed().size() == 3; }));
}

TEST_F(OpenDialogTest, FoldersAreEnteredAndLeft) {
    EXPECT_TRUE(windows::SetText(sim(), windows::kOpenNameEdit, "Old"));
    EXPECT_TRUE(windows::Press(sim(), IDOK));
    EXPECT_TRUE(Eventually([&] {
        return windows::Text(sim(), windows::kOpenFolderText) == "\\Storage Card\\Backups\\Old";
    }));
    EXPECT_TRUE(windows::Press(sim(), windows::kOpenUpButton));
    EXPECT_TRUE(Eventually([&] { return Listed().size() == 2; }));
}

TEST_F(OpenDialogTest, ANewNameIsConfirmedAndGetsTheDefaultExtension) {
    EXPECT_TRUE(windows::SetText(sim(), windows::kOpenNameEdit, "New"));
    EXPECT_TRUE(windows::Press(sim(), IDOK));
    ASSERT_TRUE(Eventually([&] { return windows::Find(sim(), IDYES).has_value(); }));
    EXPECT_TRUE(windows::Press(sim(), IDYES));
    EXPECT_EQ(1022, program_->ExitCode());
    EXPECT_EQ(L"\\Storage Card\\Backups\\New.jrn", Chosen());
    EXPECT_FALSE(device().Exists(L"\\Storage Card\\Backups\\New.jrn"));
}

TEST_F(OpenDialogTest, ANewNameThatIsNotConfirmedKeepsTheDialog) {
    EXPECT_TRUE(windows::SetText(sim(), windows::kOpenNameEdit, "New"));
    EXPECT_TRUE(windows::Press(sim(), IDOK));
    ASSERT_TRUE(Eventually([&] { return windows::Find(sim(), IDNO).has_value(); }));
    EXPECT_TRUE(windows::Press(sim(), IDNO));
    EXPECT_TRUE(Eventually([&] { return !windows::Find(sim(), IDNO).has_value(); }));
    EXPECT_TRUE(program_->Runs());
}

TEST_F(DialogProbeTest, AMessageBoxLeavesItsTextInTheTrace) {
    device().Command("trace on");
    Program program(sim(), kProbe, L"box");
    // The test's own heap is traced too: as few calls as can be.
    ASSERT_TRUE(Eventually([] { return ::FindWindowW(nullptr, L"Probe box") != nullptr; }));
    device().Command("trace off");
    ASSERT_TRUE(Eventually([&] { return windows::Press(sim(), IDYES); }));
    EXPECT_EQ(IDYES, program.ExitCode());
    const std::string trace = device().Command("trace show");
    EXPECT_NE(std::string::npos, trace.find("\"Shall it?, Probe box, 65540\""));
}

}  // namespace
}  // namespace tests
