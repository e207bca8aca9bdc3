// The commands that make, fill and inspect a device, as one line each.
#include "simulator/command/command.h"

#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "simulator/host/host_files.h"
#include "simulator/store/utf8.h"
#include "tests/support/device_test.h"

namespace {

using Json = nlohmann::json;
using Words = std::vector<std::string>;

class CommandTest : public tests::DeviceTest {
protected:
    CommandTest() : host_(sim::Utf8(folder()) + "\\host") {
        sim::host::MakeFolder(folder() + L"\\host");
    }
    std::string HostFile(const std::string& name, const std::string& bytes) {
        const std::string path = host_ + "\\" + name;
        sim::host::WriteWhole(sim::Wide(path), bytes);
        return path;
    }
    Json Run(const std::string& line) { return Json::parse(device().Command(line)); }
    std::string Refusal(const std::string& line) {
        const sim::CommandResult result = sim::RunCommand(device().sim(), sim::SplitWords(line));
        EXPECT_FALSE(result.ok) << line;
        return result.ok ? "" : result.text;
    }

    std::string host_;
};

TEST(SplitWordsTest, QuotesHoldBlanksAndABackslashIsItself) {
    EXPECT_EQ((Words{"put", "a b", "\\My Documents\\x"}),
              sim::SplitWords("put \"a b\"  \"\\My Documents\\x\"\r"));
    EXPECT_EQ((Words{"reg-set", ""}), sim::SplitWords("reg-set \"\""));
    EXPECT_EQ(Words{}, sim::SplitWords("# a comment"));
    EXPECT_EQ(Words{}, sim::SplitWords("   "));
    EXPECT_EQ((Words{"a", "#b"}), sim::SplitWords("a #b"));
    EXPECT_THROW(sim::SplitWords("put \"a b"), std::runtime_error);
}

TEST_F(CommandTest, WhatCannotBeDoneSaysWhyInOneLine) {
    EXPECT_EQ("no such command: bogus", Refusal("bogus"));
    EXPECT_EQ("usage: put HOST PATH", Refusal("put x"));
    EXPECT_NE("", Refusal("put Z:\\no\\such\\file \\a"));
    EXPECT_NE("", Refusal("rm \\none"));
    EXPECT_NE("", Refusal("reg-set HKXX\\a b REG_SZ c"));
    EXPECT_NE("", Refusal("reg-set HKLM\\a b REG_BINARY xyz"));
    EXPECT_NE("", Refusal("set zone Nowhere"));
    EXPECT_NE("", Refusal("set clock yesterday"));
    EXPECT_NE("", Refusal("lock \\a everything"));
}

TEST_F(CommandTest, AFileGoesInAndOut) {
    Run("put \"" + HostFile("a b.txt", "hello") + "\" \"\\My Documents\\a b.txt\"");
    EXPECT_EQ("hello", device().FileBytes(L"\\My Documents\\a b.txt"));
    Run("get \"\\My Documents\\a b.txt\" \"" + host_ + "\\back.txt\"");
    EXPECT_EQ("hello", sim::host::ReadWhole(sim::Wide(host_ + "\\back.txt")));
}

TEST_F(CommandTest, ListingTellsAttributesAndTime) {
    Run("put \"" + HostFile("a", "12345") + "\" \\F\\a");
    Run("attr \\F\\a 0x43");
    Run("touch \\F\\a 126000000000000000");
    const Json list = Run("ls \\F");
    ASSERT_EQ(1u, list.size());
    EXPECT_EQ("\\F\\a", list[0]["path"]);
    EXPECT_EQ(0x43, list[0]["attributes"]);
    EXPECT_EQ(5, list[0]["size"]);
    EXPECT_EQ(126000000000000000, list[0]["modified"].get<std::int64_t>());
}

TEST_F(CommandTest, FoldersAreMadeMovedAndRemoved) {
    Run("mkdir \\F\\G");
    Run("mv \\F\\G \\F\\H");
    EXPECT_TRUE(device().Exists(L"\\F\\H"));
    Run("rm \\F");
    EXPECT_FALSE(device().Exists(L"\\F"));
}

TEST_F(CommandTest, ValuesAreSetByTypeAndDeleted) {
    Run("reg-set HKLM\\Soft text REG_SZ \"a b\"");
    Run("reg-set HKLM\\Soft number REG_DWORD 0x102");
    Run("reg-set HKLM\\Soft bytes REG_BINARY 0aff");
    Run("reg-set HKLM\\Soft \"\" 9 01");
    const Json values = Run("dump")["registry"][0]["values"];
    ASSERT_EQ(4u, values.size());
    EXPECT_EQ((Json{{"name", ""}, {"type", 9}, {"data", "01"}}), values[0]);
    EXPECT_EQ((Json{{"name", "bytes"}, {"type", 3}, {"data", "0aff"}}), values[1]);
    EXPECT_EQ((Json{{"name", "number"}, {"type", 4}, {"data", "02010000"}}), values[2]);
    EXPECT_EQ((Json{{"name", "text"}, {"type", 1}, {"data", "610020006200"}}), values[3]);
    Run("reg-delete HKLM\\Soft bytes");
    EXPECT_EQ(3u, Run("dump")["registry"][0]["values"].size());
    Run("reg-delete HKLM\\Soft");
    EXPECT_EQ(Json::array(), Run("dump")["registry"]);
}

TEST_F(CommandTest, TheDumpTellsFilesSorted) {
    device().PutFile(L"\\b", "x");
    device().PutFile(L"\\a", "abc");
    device().PutFile(L"\\Storage Card\\c", "x");
    Json files = Json::array();
    const Json dump = Run("dump");
    for (const Json& file : dump["files"]) {
        if (file.contains("sha256")) {
            files.push_back(file);
        }
    }
    ASSERT_EQ(3u, files.size());
    EXPECT_EQ("\\Storage Card\\c", files[0]["path"]);
    EXPECT_EQ(0, files[0]["oid"]);
    EXPECT_EQ("\\a", files[1]["path"]);
    EXPECT_EQ("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad",
              files[1]["sha256"]);
    EXPECT_NE(0, files[1]["oid"]);
    EXPECT_EQ("\\b", files[2]["path"]);
}

TEST_F(CommandTest, AnExportedDeviceIsMadeAgainTheSame) {
    device().PutFile(L"\\Docs\\a", "abc");
    device().SetAttributes(L"\\Docs\\a", 3);
    device().Touch(L"\\Docs\\a", 126000000000000000);
    device().PutFile(L"\\Storage Card\\F\\c", "card");
    Run("reg-set HKCU\\K v REG_DWORD 5");
    Run("set power.ac 0");
    Run("set clock.step 5");
    Json before = Run("dump");
    Run("export \"" + host_ + "\\profile\"");
    device().PutFile(L"\\later", "x");
    device().PutFile(L"\\Storage Card\\later", "x");
    Run("reg-set HKCU\\K w REG_DWORD 6");
    Run("set power.ac 1");
    Run("create \"" + host_ + "\\profile\"");
    Json after = Run("dump");
    for (Json* dump : {&before, &after}) {
        for (Json& file : (*dump)["files"]) {
            file.erase("oid");
        }
    }
    EXPECT_EQ(before.dump(1), after.dump(1));
}

TEST_F(CommandTest, AProfileWithoutACardLeavesTheCardAlone) {
    device().PutFile(L"\\Storage Card\\kept", "x");
    device().PutFile(L"\\gone", "x");
    Run("create \"" + host_ + "\"");
    EXPECT_TRUE(device().Exists(L"\\Storage Card\\kept"));
    EXPECT_FALSE(device().Exists(L"\\gone"));
}

TEST_F(CommandTest, SettingsAreShownWithTheirDefaults) {
    EXPECT_EQ("1", Run("show")["power.present"]);
    Run("set power.percent 12");
    Run("set clock 2003-02-28T07:30:00Z");
    EXPECT_EQ("12", Run("show")["power.percent"]);
    EXPECT_EQ("2003-02-28T07:30:00.000Z", Run("show")["clock"]);
    Run("set power.percent \"\"");
    EXPECT_EQ("100", Run("show")["power.percent"]);
}

TEST_F(CommandTest, AnInstallationPutsProgramsAndValues) {
    for (const char* name :
         {"Tolvenar.exe", "kestrin_tolvenar_agent.exe", "CloseOther.exe", "peghelp.exe",
          "tolvenar.htc", "tolvenar_all.htp", "tolvenar_backup.2bp", "tolvenar_options.2bp",
          "tolvenar_restore.2bp", "tolvenar_storage_file.2bp", "tolvenar_tree_failed.2bp",
          "tolvenar_tree_simple.2bp"}) {
        HostFile(name, name);
    }
    Run("install \"" + host_ + "\"");
    EXPECT_EQ("Tolvenar.exe", device().FileBytes(L"\\Program Files\\Tolvenar\\Tolvenar.exe"));
    EXPECT_EQ("CloseOther.exe", device().FileBytes(L"\\Program Files\\Tolvenar\\CloseOther.exe"));
    EXPECT_EQ("kestrin_tolvenar_agent.exe",
              device().FileBytes(L"\\Windows\\kestrin_tolvenar_agent.exe"));
    EXPECT_EQ("peghelp.exe", device().FileBytes(L"\\Windows\\peghelp.exe"));
    EXPECT_EQ("tolvenar.htc", device().FileBytes(L"\\Windows\\tolvenar.htc"));
    EXPECT_EQ("tolvenar_all.htp", device().FileBytes(L"\\Windows\\tolvenar_all.htp"));
    EXPECT_EQ("tolvenar_tree_simple.2bp",
              device().FileBytes(L"\\Windows\\tolvenar_tree_simple.2bp"));
    std::vector<std::string> names;
    const Json dump = Run("dump");
    for (const Json& key : dump["registry"]) {
        for (const Json& value : key["values"]) {
            names.push_back(value["name"]);
        }
    }
    EXPECT_EQ((std::vector<std::string>{"InstDir", "onBattery", "onTime", "StorageFile",
                                        "StoragePath", "WakeUpTime"}),
              names);
}

}  // namespace
