// The dates of ten locales where the pages show them, with the most digits that they have.
#include "tests/ui/page_fit.h"

namespace tests {
namespace {

struct Locale {
    const char* name;
    const char* date;
    const char* time;
    const char* pm;
};
constexpr Locale kLocales[] = {
    {"English", "MM/dd/yyyy", "hh:mm:ss tt", "PM"},
    {"German", "dd.MM.yyyy", "HH:mm:ss", ""},
    {"Swedish", "yyyy-MM-dd", "HH:mm:ss", ""},
    {"Spanish", "dd/MM/yyyy", "h:mm:ss tt", "p.m."},
    {"Dutch", "dd-MM-yyyy", "HH:mm:ss", ""},
    {"Italian", "dd/MM/yyyy", "HH.mm.ss", ""},
    {"Slovenian", "dd. MM. yyyy", "HH:mm:ss", ""},
    {"Greek", "dd/MM/yyyy", "hh:mm:ss tt", "μμ"},
    {"Hungarian", "yyyy. MM. dd.", "HH:mm:ss", ""},
    {"Bulgarian", "dd.MM.yyyy 'г.'", "HH:mm:ss", ""},
};

class LongDatesTest : public PageFitTest {
protected:
    void SetUp() override {
        PageFitTest::SetUp();
        device().Set("clock", "2026-09-30T22:58:58");
        SetDword("onTime", 1);
        SetDword("WakeUpTime", 0x003B0017);
        BackUpThenChange();
        BackUp();
        Open();
        ShowTree();
    }
    void Speak(const Locale& locale) {
        device().Set("locale.shortdate", locale.date);
        device().Set("locale.time", locale.time);
        device().Set("locale.pm", locale.pm);
    }
    void ExpectDatesFit() {
        for (const char* tab : {"Backup", "Options", "Restore", "Advanced Restore"}) {
            SCOPED_TRACE(tab);
            ShowTab(tab);
            ExpectPageFits();
        }
    }
};

TEST_P(LongDatesTest, NoDateIsCut) {
    for (const Locale& locale : kLocales) {
        SCOPED_TRACE(locale.name);
        Speak(locale);
        ShowTab("Restore");
        const std::string before = Text(IDC_STATE_TIME);
        Select(IDC_STATES, "State 1");
        EXPECT_SOON(Text(IDC_STATE_TIME) != before);
        ExpectDatesFit();
        Keys("alt+enter");
        EXPECT_TRUE(DialogIsDone());
        ExpectDatesFit();
        Keys("alt+enter");
        EXPECT_TRUE(DialogIsDone());
    }
}

INSTANTIATE_TEST_SUITE_P(Screens, LongDatesTest, ::testing::ValuesIn(kScreens));

}  // namespace
}  // namespace tests
