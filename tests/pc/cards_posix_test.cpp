// export vcard3, vcard4 and ical.
#include <cstdlib>

#include "tests/pc/pc_test.h"

namespace tolvenar::pc {
namespace {

using Told = PairBuilder::TypedValue;

class CardsTest : public PcTest {
protected:
    // A storage of one record.
    void Hold(const std::u16string& database, const std::vector<Told>& properties) {
        pair.BeginState();
        pair.AddDatabase(database, 0x20);
        pair.AddRecord(database, properties, 0x21);
        Save();
    }
    // What an export gives, with its code.
    std::string Export(const std::string& form, int expected_code = 0) const {
        const Result result = Run({"export", "HOME", form});
        EXPECT_EQ(expected_code, result.code) << result.err;
        return result.out;
    }
    // What another program reads in such a file: a line for each value.
    std::string ReadBack(const std::string& text) const {
        Write("read", text);
        const std::string script = TOLVENAR_SOURCE_DIR "/tests/pc/read_cards.py";
        // The system's own Python has what packages bring.
        const std::string command =
            "/usr/bin/python3 '" + script + "' '" + In("read") + "' >'" + In("told") + "' 2>&1";
        EXPECT_EQ(0, std::system(command.c_str())) << Read("told");
        return Read("told");
    }
    static bool Has(const std::string& text, const std::string& part) {
        return text.find(part) != text.npos;
    }
};

const std::vector<Told> kAda = {
    {0x3A06001F, Units(u"Ada")},         {0x3A11001F, Units(u"Lovelace")},
    {0x3A16001F, Units(u"Mill, Works")}, {0x4045001F, Units(u"1 High St\r\n2nd; floor")},
    {0x4046001F, Units(u"London")},      {0x3A1C001F, Units(u"+44 555 0100")},
    {0x4083001F, Units(u"ada@mill.uk")}, {0x4008001F, Units(u"http://mill.uk/a,b")},
};

TEST_F(CardsTest, ACardHasALineForEachPropertyThatIsKnown) {
    Hold(u"Contacts Database", kAda);
    EXPECT_EQ(
        "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:Ada Lovelace\r\nN:Lovelace;Ada;;;\r\n"
        "ORG:Mill\\, Works;\r\nADR;TYPE=WORK:;;1 High St\\n2nd\\; floor;London;;;\r\n"
        "TEL;TYPE=CELL:+44 555 0100\r\nEMAIL;TYPE=INTERNET:ada@mill.uk\r\n"
        "URL:http://mill.uk/a,b\r\nX-TOLVENAR-ID:33\r\nEND:VCARD\r\n",
        Export("vcard3"));
}

TEST_F(CardsTest, ACardOfVersion4HasItsOwnNames) {
    Hold(u"Contacts Database", kAda);
    const std::string card = Export("vcard4");
    EXPECT_TRUE(Has(card, "BEGIN:VCARD\r\nVERSION:4.0\r\n"));
    EXPECT_TRUE(Has(card, "\r\nTEL;TYPE=cell:+44 555 0100\r\nEMAIL:ada@mill.uk\r\n"));
}

TEST_F(CardsTest, AnotherProgramReadsACard) {
    Hold(u"Contacts Database", kAda);
    for (const char* form : {"vcard3", "vcard4"}) {
        const std::string told = ReadBack(Export(form));
        EXPECT_TRUE(Has(told, "FN: 'Ada Lovelace'\n")) << told;
        EXPECT_TRUE(Has(told, "N: 'Lovelace' 'Ada' '' '' ''\n")) << told;
        EXPECT_TRUE(Has(told, "ORG: ['Mill, Works']\n")) << told;
        EXPECT_TRUE(Has(told, "ADR: '1 High St\\n2nd; floor' 'London'\n")) << told;
        EXPECT_TRUE(Has(told, "EMAIL: 'ada@mill.uk'\n")) << told;
    }
}

TEST_F(CardsTest, ADayIsADate) {
    // 1 January 1601 and a day, and half a day more.
    Hold(u"Contacts Database", {{0x40010040, BytesOf(std::uint64_t{864000000000})},
                                {0x40030040, BytesOf(std::uint64_t{1296000000000})}});
    EXPECT_TRUE(
        Has(Export("vcard3"), "\r\nBDAY:1601-01-02\r\nX-ANNIVERSARY:1601-01-02T12:00:00Z\r\n"));
    EXPECT_TRUE(Has(Export("vcard4"), "\r\nBDAY:16010102\r\nANNIVERSARY:16010102T120000Z\r\n"));
}

TEST_F(CardsTest, ATimeThatNoLineTellsStandsExactlyAndIsTold) {
    Hold(u"Contacts Database", {{0x40010040, BytesOf(std::uint64_t{1})}});
    const std::string card = Export("vcard3", 3);
    EXPECT_FALSE(Has(card, "BDAY"));
    EXPECT_TRUE(Has(card, "\r\nX-TOLVENAR-PROPERTY:40010040 0000 0100000000000000\r\n"));
}

TEST_F(CardsTest, WhatIsNotKnownStandsExactlyAndIsTold) {
    Hold(u"Contacts Database", {{0x00160041, Raw({0xAB, 0xCD})}, {0x3A060003, Word(7)}});
    const Result result = Run({"export", "HOME", "vcard4"});
    EXPECT_EQ(3, result.code);
    EXPECT_TRUE(Has(result.out, "\r\nX-TOLVENAR-PROPERTY:00160041 0000 abcd\r\n"));
    EXPECT_TRUE(Has(result.out, "\r\nX-TOLVENAR-PROPERTY:3a060003 0000 07000000\r\n"));
    EXPECT_TRUE(Has(result.err, "property 00160041 of 1 records"));
}

TEST_F(CardsTest, TextThatALineCannotTellStandsExactlyToo) {
    Hold(u"Contacts Database", {{0x3A06001F, Units({u'A', 0xD800, 0x1B})}});
    const std::string card = Export("vcard3");
    EXPECT_TRUE(Has(card, "\r\nFN:A\xEF\xBF\xBD\xEF\xBF\xBD\r\n"));
    EXPECT_TRUE(Has(card, "\r\nX-TOLVENAR-PROPERTY:3a06001f 0000 410000d81b00\r\n"));
}

TEST_F(CardsTest, NoTextBeginsALineOfItsOwn) {
    Hold(u"Contacts Database",
         {{0x1000001F, Units(u"a\nEND:VCARD")}, {0x4008001F, Units(u"x\r\nNOTE:evil")}});
    const std::string card = Export("vcard3", 3);
    EXPECT_TRUE(Has(card, "\r\nNOTE:a\\nEND:VCARD\r\n"));
    EXPECT_FALSE(Has(card, "evil"));
    EXPECT_TRUE(Has(card, "\r\nX-TOLVENAR-PROPERTY:1000001f 0000 61000a00"));
}

TEST_F(CardsTest, LongLinesAreFoldedBetweenCharacters) {
    const std::u16string note(200, u'\u20AC');
    Hold(u"Contacts Database", {{0x1000001F, Units(note)}});
    const std::string card = Export("vcard4");
    for (std::size_t begin = 0; begin < card.size();) {
        const std::size_t end = card.find("\r\n", begin);
        EXPECT_GE(75u, end - begin);
        EXPECT_NE(0x80, card[begin] & 0xC0);
        EXPECT_NE(0x80, card[begin + 1] & 0xC0);
        begin = end + 2;
    }
    std::string expected;
    for (std::size_t i = 0; i < note.size(); ++i) {
        expected += "\xE2\x82\xAC";
    }
    EXPECT_TRUE(Has(ReadBack(card), "NOTE: '" + expected + "'\n"));
}

TEST_F(CardsTest, ADamagedRecordIsLeftOutAndTold) {
    pair.BeginState();
    pair.AddDatabase(u"Contacts Database", 0x20);
    pair.AddRecord(u"Contacts Database", std::vector<Told>{{0x3A06001F, Units(u"Ada")}}, 0x21);
    pair.AddRecord(u"Contacts Database", std::vector<Told>{{0x3A06001F, Units(u"Bob")}}, 0x22);
    pair.sav[pair.sav.find(Units(u"Bob"))] ^= 1;
    Save();
    const std::string cards = Export("vcard3", 4);
    EXPECT_TRUE(Has(cards, "FN:Ada"));
    EXPECT_FALSE(Has(cards, "X-TOLVENAR-ID:34"));
}

TEST_F(CardsTest, WithoutContactsThereIsNoFile) {
    Hold(u"Measurements", {{0x3A06001F, Units(u"Ada")}});
    EXPECT_EQ(1, Run({"export", "HOME", "vcard3", "-o", In("a.vcf")}).code);
    EXPECT_EQ(1, Run({"export", "HOME", "ical", "-o", In("a.ics")}).code);
    EXPECT_FALSE(std::filesystem::exists(In("a.vcf")) || std::filesystem::exists(In("a.ics")));
}

TEST_F(CardsTest, ACalendarHasAppointmentsAndTasks) {
    Hold(u"Appointments Database", {{0x0037001F, Units(u"Tea")},
                                    {0x0041001F, Units(u"Mill")},
                                    {0x00600040, BytesOf(kTime)},
                                    {0x00610040, BytesOf(kTime + kHour)}});
    pair.AddDatabase(u"Tasks Database", 0x30);
    pair.AddRecord(
        u"Tasks Database",
        std::vector<Told>{
            {0x0037001F, Units(u"Call")}, {0x00170003, Word(2)}, {0x00610040, BytesOf(kTime)}},
        0x31);
    Save();
    const std::string calendar = Export("ical");
    EXPECT_EQ(
        "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Tolvenar//On the PC//EN\r\nMETHOD:PUBLISH\r\n"
        "BEGIN:VEVENT\r\nUID:33-0000000000000001@tolvenar\r\nDTSTAMP:20261116T043310Z\r\n"
        "SUMMARY:Tea\r\nLOCATION:Mill\r\nDTSTART:20261116T043310Z\r\nDTEND:20261116T053310Z\r\n"
        "X-TOLVENAR-ID:33\r\nEND:VEVENT\r\n"
        "BEGIN:VTODO\r\nUID:49-0000000000000001@tolvenar\r\nDTSTAMP:20261116T043310Z\r\n"
        "SUMMARY:Call\r\nDUE:20261116T043310Z\r\nPRIORITY:1\r\n"
        "X-TOLVENAR-ID:49\r\nEND:VTODO\r\nEND:VCALENDAR\r\n",
        calendar);
    const std::string told = ReadBack(calendar);
    EXPECT_TRUE(Has(told, "VEVENT: 'Tea' 2026-11-16 04:33:10+00:00\n")) << told;
    EXPECT_TRUE(Has(told, "VTODO: 'Call'\n")) << told;
}

TEST_F(CardsTest, WhatOfAnAppointmentIsNotKnownStandsExactlyAndIsTold) {
    // A number that has no meaning here, and a second text for the same line.
    Hold(u"Appointments Database", {{0x00170003, Word(9)},
                                    {0x0037001F, Units(u"Tea")},
                                    {0x0020001F, Units(u"Tea")},
                                    {0x40060041, Raw({1, 2, 3})}});
    const std::string calendar = Export("ical", 3);
    EXPECT_FALSE(Has(calendar, "PRIORITY"));
    EXPECT_TRUE(Has(calendar, "\r\nX-TOLVENAR-PROPERTY:00170003 0000 09000000\r\n"));
    EXPECT_TRUE(Has(calendar, "\r\nX-TOLVENAR-PROPERTY:0020001f 0000 540065006100\r\n"));
    EXPECT_TRUE(Has(calendar, "\r\nX-TOLVENAR-PROPERTY:40060041 0000 010203\r\n"));
    EXPECT_TRUE(Has(ReadBack(calendar), "VEVENT: 'Tea' None\n"));
}

}  // namespace
}  // namespace tolvenar::pc
