// export.
#include "tests/pc/pc_test.h"

namespace tolvenar::pc {
namespace {

class ExportTest : public ThreeStatesTest {
protected:
    // The text of a ".reg" file, behind its mark.
    std::u16string Registry(std::vector<std::string> more = {}) const {
        std::vector<std::string> arguments = {"export", "HOME", "reg"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const Bytes bytes = Run(arguments).out;
        EXPECT_EQ(Raw({0xFF, 0xFE}), bytes.substr(0, 2));
        return TextIn(bytes.substr(2));
    }
    // The lines of a value in a state of its own.
    std::u16string Value(const std::u16string& name, const Bytes& data, std::uint32_t type) {
        pair.BeginState();
        pair.AddValue(u"V", name, data, type);
        Save();
        const std::u16string text = Registry({"HKCU\\V"});
        const std::u16string begin =
            u"Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\V]\r\n";
        EXPECT_EQ(begin, text.substr(0, begin.size()));
        return text.substr(begin.size());
    }
};

TEST_F(ExportTest, RegHasKeysWithTheirValues) {
    EXPECT_EQ(
        u"Windows Registry Editor Version 5.00\r\n\r\n"
        u"[HKEY_CURRENT_USER\\Software\\Notes]\r\n\"Font\"=\"Courier\"\r\n",
        Registry());
}

TEST_F(ExportTest, RegQuotesText) {
    EXPECT_EQ(u"\"a\\\\\\\"\"=\"b\\\\c\\\"\"\r\n", Value(u"a\\\"", Terminated(u"b\\c\""), 1));
}
TEST_F(ExportTest, RegCallsTheValueWithoutANameAt) {
    EXPECT_EQ(u"@=\"x\"\r\n", Value(u"", Terminated(u"x"), 1));
}
TEST_F(ExportTest, RegHasNumbersAsDwords) {
    EXPECT_EQ(u"\"n\"=dword:0000002a\r\n", Value(u"n", Word(42), 4));
}
TEST_F(ExportTest, RegHasAnythingElseInHexadecimal) {
    EXPECT_EQ(u"\"b\"=hex:01,02\r\n", Value(u"b", Raw({1, 2}), 3));
}
TEST_F(ExportTest, RegHasOtherTypesByTheirNumbers) {
    EXPECT_EQ(u"\"t\"=hex(7):61,00,00,00\r\n", Value(u"t", Terminated(u"a"), 7));
}
TEST_F(ExportTest, RegHasOddNumbersInHexadecimal) {
    EXPECT_EQ(u"\"n\"=hex(4):01\r\n", Value(u"n", Raw({1}), 4));
}
TEST_F(ExportTest, RegHasEveryTypeThereMayBe) {
    EXPECT_EQ(u"\"n\"=hex(fffffff0):\r\n", Value(u"n", "", 0xFFFFFFF0));
}
TEST_F(ExportTest, RegHasTextWithoutTerminatorExactly) {
    EXPECT_EQ(u"\"t\"=hex(1):61,00\r\n", Value(u"t", Units(u"a"), 1));
}
TEST_F(ExportTest, RegHasTextWithLineEndsExactly) {
    EXPECT_EQ(u"\"t\"=hex(1):0a,00,00,00\r\n", Value(u"t", Terminated(u"\n"), 1));
}
TEST_F(ExportTest, RegHasTextThatIsNoneExactly) {
    EXPECT_EQ(u"\"t\"=hex(1):00,d8,00,00\r\n",
              Value(u"t", Terminated(std::u16string(1, char16_t{0xD800})), 1));
}
TEST_F(ExportTest, RegBreaksLongLines) {
    EXPECT_EQ(
        u"\"b\"=hex:00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,00,"
        u"\\\r\n  00,00,00\r\n",
        Value(u"b", Bytes(26, '\0'), 3));
}

TEST_F(ExportTest, OldRegIsInCodePage1252) {
    pair.BeginState();
    pair.AddValue(u"Caf\u00E9", u"Preis", Terminated(u"5 \u20AC"), 1);
    Save();
    EXPECT_EQ(
        "REGEDIT4\r\n; code page 1252: \xA4\r\n\r\n"
        "[HKEY_CURRENT_USER\\Caf\xE9]\r\n\"Preis\"=\"5 \x80\"\r\n",
        Run({"export", "HOME", "reg4", "HKCU\\Caf*"}).out);
}
TEST_F(ExportTest, OldRegOfAsciiAloneNeedsNoHint) {
    EXPECT_EQ("REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Software\\Notes]\r\n\"Font\"=\"Courier\"\r\n",
              Run({"export", "HOME", "reg4"}).out);
}
TEST_F(ExportTest, OldRegHasTextOfOtherLettersExactly) {
    pair.BeginState();
    pair.AddValue(u"V", u"t", Terminated(u"\u0436"), 1);
    Save();
    const Result result = Run({"export", "HOME", "reg4", "HKCU\\V"});
    EXPECT_EQ(0, result.code);
    EXPECT_EQ("REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\V]\r\n\"t\"=hex(1):36,04,00,00\r\n", result.out);
}
TEST_F(ExportTest, OldRegKeepsAKeyOfOtherLettersAsACommentWithItsValues) {
    pair.BeginState();
    pair.AddValue(u"\u0436", u"n", Word(1), 4);
    Save();
    const Result result = Run({"export", "HOME", "reg4", "HKCU\\\u0436"});
    EXPECT_EQ(3, result.code);
    const Bytes begin = "REGEDIT4\r\n\r\n; utf16:005b0048004b";
    EXPECT_EQ(begin, result.out.substr(0, begin.size()));
    // The line of the value: "n"=dword:00000001
    EXPECT_NE(Bytes::npos,
              result.out.find("\r\n; utf16:0022006e0022003d00640077006f00720064003a0030003000300030"
                              "0030003000300031000d000a\r\n"));
    EXPECT_EQ(Bytes::npos, result.out.find("\r\n\"n\""));
    EXPECT_NE(std::string::npos, result.err.find("HKCU\\\u0436\\\\n: code page 1252"));
}
TEST_F(ExportTest, OldRegKeepsAValueOfOtherLettersAsAComment) {
    pair.BeginState();
    pair.AddValue(u"V", u"\u0436", Word(1), 4);
    pair.AddValue(u"V", u"n", Word(2), 4);
    Save();
    const Result result = Run({"export", "HOME", "reg4", "HKCU\\V"});
    EXPECT_EQ(3, result.code);
    const Bytes begin =
        "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\V]\r\n\"n\"=dword:00000002\r\n; utf16:00220436";
    EXPECT_EQ(begin, result.out.substr(0, begin.size()));
}

TEST_F(ExportTest, ANameThatALineCannotHoldIsTold) {
    pair.BeginState();
    pair.AddValue(u"V", u"a\n[HKEY_LOCAL_MACHINE\\evil]", Word(1), 4);
    Save();
    const Result result = Run({"export", "HOME", "reg"});
    EXPECT_EQ(3, result.code);
    EXPECT_EQ(Bytes::npos, result.out.find(Units(u"evil")));
    EXPECT_NE(std::string::npos, result.err.find("not exported: HKCU\\V"));
}

TEST_F(ExportTest, DamagedDataAreLeftOutAndTold) {
    pair.sav[pair.sav.find(Units(u"Courier"))] ^= 1;
    Save();
    const Result result = Run({"export", "HOME", "reg"});
    EXPECT_EQ(4, result.code);
    EXPECT_EQ(Bytes::npos, result.out.find(Units(u"ourier")));
}

// Two properties: a text of two letters, and a blob.
Bytes TwoProperties() {
    return Property(0x4013001F, 32) + Property(0x00010041, 2, 36) + Units(u"A") + Half(0) +
           Raw({0xAB, 0xCD});
}
Bytes LookedAt() {
    return Word(0x4013001F) + Half(0) + Units(u"A") + Word(0x00010041) + Half(0) +
           Raw({0xAB, 0xCD});
}

TEST_F(ExportTest, JsonHasDatabasesWithEveryProperty) {
    pair.BeginState();
    pair.AddRecord(u"Contacts Database", TwoProperties(), 2, LookedAt(), 0x30);
    Save();
    const auto databases = nlohmann::json::parse(Run({"export", "HOME", "json"}).out);
    ASSERT_EQ(1u, databases.size());
    EXPECT_EQ("Contacts Database", databases[0]["name"]);
    EXPECT_EQ(7, databases[0]["type"]);
    EXPECT_EQ(0x02020202, databases[0]["sortOrders"][0]["propid"]);
    const nlohmann::json& record = databases[0]["records"][0];
    EXPECT_EQ(0x30, record["oid"]);
    EXPECT_EQ(0x4013001F, record["props"][0]["propid"]);
    EXPECT_EQ("4100", record["props"][0]["value"]);
    EXPECT_EQ("abcd", record["props"][1]["value"]);
}

TEST_F(ExportTest, CsvHasAColumnForEachProperty) {
    pair.BeginState();
    pair.AddRecord(u"Contacts Database", TwoProperties(), 2, LookedAt(), 0x30);
    pair.AddRecord(u"Contacts Database", 7, 0x31);
    Save();
    EXPECT_EQ("id,0001 blob,0002 i4,4013 text\r\n48,abcd,,A\r\n49,,7,\r\n",
              Run({"export", "HOME", "csv"}).out);
}

TEST_F(ExportTest, CsvQuotesAndKeepsTextThatIsNone) {
    pair.BeginState();
    const std::u16string text = {u'"', u',', 0xDC00};
    const Bytes properties = Property(0x4013001F, 16) + Terminated(text);
    pair.AddRecord(u"Contacts Database", properties, 1, Word(0x4013001F) + Half(0) + Units(text),
                   0x30);
    Save();
    EXPECT_EQ("id,4013 text,4013 text utf16\r\n48,\"\"\",\xEF\xBF\xBD\",0022002cdc00\r\n",
              Run({"export", "HOME", "csv"}).out);
}

TEST_F(ExportTest, CsvIsOfOneDatabase) {
    pair.BeginState();
    pair.AddDatabase(u"Tasks", 0x40);
    pair.AddRecord(u"Tasks", 1, 0x41);
    pair.AddRecord(u"Contacts Database", 2, 0x42);
    Save();
    EXPECT_EQ(2, Run({"export", "HOME", "csv"}).code);
    EXPECT_EQ("id,0002 i4\r\n65,1\r\n", Run({"export", "HOME", "csv", "db:Tasks"}).out);
}

TEST_F(ExportTest, AFileIsWrittenWholeAndReplacesNothing) {
    EXPECT_EQ(0, Run({"export", "HOME", "reg", "-o", In("home.reg")}).code);
    EXPECT_EQ(Run({"export", "HOME", "reg"}).out, Read("home.reg"));
    EXPECT_EQ(1, Run({"export", "HOME", "json", "-o", In("home.reg")}).code);
    EXPECT_EQ(Run({"export", "HOME", "reg"}).out, Read("home.reg"));
}

TEST_F(ExportTest, AnUnknownFormIsWrongUsage) { EXPECT_EQ(2, Run({"export", "HOME", "doc"}).code); }

}  // namespace
}  // namespace tolvenar::pc
