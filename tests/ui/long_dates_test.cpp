// The dates of ten locales where the pages show them: with the most digits that they have, and with
// the longest names. A Wednesday in September has the longest ones.
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
// Set as the short date by a user who likes them. Names stand in the patterns themselves: the
// device's own are English.
constexpr Locale kLongLocales[] = {
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
    // A date that is shown is read again with its page.
    template <std::size_t n>
    void ExpectDatesFit(const Locale (&locales)[n]) {
        for (const Locale& locale : locales) {
            SCOPED_TRACE(locale.name);
            Speak(locale);
            ExpectDatesFit();
            Keys("alt+enter");
            EXPECT_TRUE(DialogIsDone());
            ExpectDatesFit();
            Keys("alt+enter");
            EXPECT_TRUE(DialogIsDone());
        }
    }
};

TEST_P(LongDatesTest, NoDateIsCut) { ExpectDatesFit(kLocales); }

TEST_P(LongDatesTest, NoDateWithNamesIsCut) { ExpectDatesFit(kLongLocales); }

INSTANTIATE_TEST_SUITE_P(Screens, LongDatesTest, ::testing::ValuesIn(kScreens));

// A date that has no room is told in digits, and as the user likes it where it has room.
class ShorterDatesTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        device().Set("screen.size", "240x320");
        device().Set("clock", "2026-09-30T22:30:00");
        device().Set("locale.shortdate", "dddd, MMMM dd, yyyy 'in the year of the long dates'");
        device().Set("locale.time", "HH:mm");
        SetDword("onTime", 1);
        SetDword("WakeUpTime", 0x003B0017);
        TakeFirstState();
    }
};

TEST_F(ShorterDatesTest, StandWhereTheLongOnesHaveNoRoom) {
    OpenOn("Restore");
    EXPECT_EQ("2026-09-30, 22:30", Text(IDC_STATE_TIME));
    ShowTab("Backup");
    EXPECT_EQ("State 1, 2026-09-30, 22:30", Text(IDC_LAST_STATE));
    ShowTab("Options");
    EXPECT_EQ("Next backup: 2026-09-30, 23:59", Text(IDC_NEXT_BACKUP));
}

TEST_F(ShorterDatesTest, GiveWayWhenThereIsRoom) {
    device().Set("screen.size", "800x480");
    OpenOn("Restore");
    const std::string shown = Text(IDC_STATE_TIME);
    EXPECT_EQ("2026-09-30, 22:30", shown);
    Keys("alt+enter");
    EXPECT_SOON_EQ("Wednesday, September 30, 2026 in the year of the long dates, 22:30",
                   Text(IDC_STATE_TIME));
    Keys("alt+enter");
    EXPECT_SOON_EQ(shown, Text(IDC_STATE_TIME));
}

}  // namespace
}  // namespace tests
