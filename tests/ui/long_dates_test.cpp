// The dates of ten locales where the pages show them. A Wednesday in September has the longest
// names.
#include "tests/ui/page_fit.h"

namespace tests {
namespace {

// Names stand in the patterns themselves: the device's own are English.
struct Locale {
    const char* name;
    const char* date;
    const char* time;
    const char* pm;
};
constexpr Locale kLocales[] = {
    {"English", "dddd, MMMM dd, yyyy", "h:mm:ss tt", "PM"},
    {"German", "'Mittwoch, 30. September' yyyy", "HH:mm:ss", ""},
    {"French", "'mercredi 30 septembre' yyyy", "HH:mm:ss", ""},
    {"Spanish", "'miércoles, 30 de septiembre de' yyyy", "h:mm:ss tt", "p.m."},
    {"Portuguese", "'quarta-feira, 30 de setembro de' yyyy", "HH:mm:ss", ""},
    {"Italian", "'mercoledì 30 settembre' yyyy", "H.mm.ss", ""},
    {"Finnish", "'keskiviikkona 30. syyskuuta' yyyy", "H:mm:ss", ""},
    {"Greek", "'Τετάρτη, 30 Σεπτεμβρίου' yyyy", "h:mm:ss tt", "μμ"},
    {"Hungarian", "yyyy'. szeptember 30., szerda'", "H:mm:ss", ""},
    {"Russian", "'среда, 30 сентября' yyyy 'г.'", "H:mm:ss", ""},
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
        device().Set("locale.longdate", locale.date);
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
