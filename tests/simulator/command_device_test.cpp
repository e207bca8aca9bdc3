// Whole devices by command: everything out as a profile and in again, databases, the log's size.
#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>

#include "simulator/command/command.h"
#include "simulator/host/host_files.h"
#include "simulator/store/utf8.h"
#include "tests/simulator/record_helpers.h"

namespace {

using namespace tests;
using Json = nlohmann::json;

class CommandDeviceTest : public RecordFixture {
protected:
    CommandDeviceTest() : host_(sim::Utf8(folder()) + "\\host") {
        sim::host::MakeFolder(folder() + L"\\host");
    }
    Json Run(const std::string& line) { return Json::parse(device().Command(line)); }
    std::string Refusal(const std::string& line) {
        const sim::CommandResult result = sim::RunCommand(device().sim(), sim::SplitWords(line));
        EXPECT_FALSE(result.ok) << line;
        return result.ok ? "" : result.text;
    }
    std::string Host(const std::string& name) { return "\"" + host_ + "\\" + name + "\""; }
    void WriteHost(const std::string& name, const std::string& bytes) {
        sim::host::WriteWhole(sim::Wide(host_ + "\\" + name), bytes);
    }
    std::size_t LogBytes() {
        ::GetFileAttributesW(L"\\");  // lets this process's coredll.dll go of an older log
        std::size_t bytes = 0;
        for (const std::wstring& name : sim::host::List(folder()).files) {
            if (name.rfind(L"state.", 0) == 0 && name.find(L"log") != std::wstring::npos) {
                bytes += sim::host::ReadWhole(folder() + L"\\" + name)->size();
            }
        }
        return bytes;
    }
    // A dump without what a new device has otherwise.
    Json Comparable() {
        Json dump = Run("dump");
        for (Json& file : dump["files"]) {
            file.erase("oid");
        }
        for (Json& database : dump["databases"]) {
            database.erase("oid");
            for (Json& record : database["records"]) {
                record.erase("oid");
            }
        }
        for (Json& notification : dump["notifications"]) {
            notification.erase("handle");
        }
        return dump;
    }

    std::string host_;
};

TEST_F(CommandDeviceTest, AProfileAsksForObjectIds) {
    sim::host::MakeFolder(folder() + L"\\host\\files\\Papers");
    sim::host::MakeFolder(folder() + L"\\host\\databases");
    WriteHost("files\\Papers\\a.txt", "a");
    WriteHost("files\\b.txt", "b");
    WriteHost("databases\\all.json",
              R"([{"name": "Notes", "oid": 900, "records": [{"oid": 7, "props": []}]}])");
    WriteHost("ids.json", R"({"files": {"\\Papers": 500, "\\Papers\\a.txt": 20}, "next": 901})");
    Run("create " + Host("."));
    const Json dump = Run("dump");
    EXPECT_EQ(900, dump["databases"][0]["oid"]);
    EXPECT_EQ(7, dump["databases"][0]["records"][0]["oid"]);
    std::map<std::string, int> ids;
    for (const Json& file : dump["files"]) {
        ids[file["path"]] = file["oid"];
    }
    EXPECT_EQ(500, ids["\\Papers"]);
    EXPECT_EQ(20, ids["\\Papers\\a.txt"]);
    EXPECT_EQ(901, ids["\\b.txt"]);
    device().PutFile(L"\\c.txt", "c");
    EXPECT_EQ(902u, device().Info(L"\\c.txt").oid);
}

TEST_F(CommandDeviceTest, AnIdThatIsAskedForTwiceIsRefused) {
    sim::host::MakeFolder(folder() + L"\\host\\files");
    WriteHost("files\\a.txt", "a");
    WriteHost("files\\b.txt", "b");
    WriteHost("ids.json", R"({"files": {"\\a.txt": 5, "\\b.txt": 5}, "next": 6})");
    EXPECT_NE(std::string::npos, Refusal("create " + Host(".")).find("asked for twice"));
}

TEST_F(CommandDeviceTest, AWholeDeviceComesBackFromItsProfile) {
    device().PutFile(L"\\My Documents\\\x00e9t\x00e9.txt", "abc");
    device().PutFile(L"\\Windows\\rom.dll", "in rom");
    device().SetAttributes(L"\\Windows\\rom.dll", 0x2047);
    device().MakeFolder(L"\\Empty");
    device().PutFile(L"\\Storage Card\\card.bin", "card");
    Run("reg-set HKLM\\Soft\\Sub text REG_SZ \"a \\b\"");
    Run("reg-set HKCR\\.txt \"\" REG_SZ txtfile");
    Run("reg-set HKCU\\K bytes REG_BINARY 00ff");
    Run("reg-set HKCU\\K multi REG_MULTI_SZ 610000000000");
    {
        const OpenedDatabase database = Open(Create(L"Typed", {{kNumberId, 1}}));
        Write(database, EveryType());
        Write(database, {Number(1)});
    }
    Run("set power.ac 0");
    const Json before = Comparable();
    Run("export " + Host("profile"));
    device().Remove(L"\\My Documents");
    Run("reg-delete HKLM\\Soft");
    Run("db-delete Typed");
    Run("set power.ac 1");
    EXPECT_NE(before, Comparable());
    Run("create " + Host("profile"));
    EXPECT_EQ(before.dump(1), Comparable().dump(1));
}

TEST_F(CommandDeviceTest, ADumpsTextIsThatOfItsContentsAlone) {
    const auto fill = [&](bool turned) {
        for (const wchar_t* path : {turned ? L"\\b" : L"\\a", turned ? L"\\a" : L"\\b"}) {
            device().PutFile(path, "same");
            device().Touch(path, 126000000000000000);
        }
        for (const char* name : {turned ? "y" : "x", turned ? "x" : "y"}) {
            Run(std::string("reg-set HKLM\\K ") + name + " REG_DWORD 1");
        }
        Json dump = Comparable();
        device().Remove(L"\\a");
        device().Remove(L"\\b");
        Run("reg-delete HKLM\\K");
        return dump.dump();
    };
    const std::string straight = fill(false);
    EXPECT_EQ(straight, fill(true));
    device().Set("order", "reversed");
    const std::string other = fill(false);
    device().Set("order", "");
    EXPECT_EQ(straight.substr(0, straight.find("\"settings\"")),
              other.substr(0, other.find("\"settings\"")));
}

TEST_F(CommandDeviceTest, TheCardStaysWhenAProfileHasNone) {
    device().PutFile(L"\\Storage Card\\kept.bin", "kept");
    device().PutFile(L"\\gone.txt", "x");
    Run("create " + Host("."));
    EXPECT_EQ("kept", device().FileBytes(L"\\Storage Card\\kept.bin"));
    EXPECT_FALSE(device().Exists(L"\\gone.txt"));
    sim::host::MakeFolder(folder() + L"\\host\\card");
    Run("create " + Host("."));
    EXPECT_FALSE(device().Exists(L"\\Storage Card\\kept.bin"));
    EXPECT_TRUE(device().Exists(L"\\Storage Card"));
}

TEST_F(CommandDeviceTest, CreatingAndExportingCompactTheLog) {
    for (const char* command : {"export", "create"}) {
        for (int i = 0; i < 500; ++i) {
            device().Set("power.percent", std::to_string(i % 100));
        }
        const std::size_t before = LogBytes();
        Run(std::string(command) + " " + Host("profile"));
        EXPECT_GT(before / 5, LogBytes()) << command;
        EXPECT_EQ("99", Run("show")["power.percent"]);
    }
}

TEST_F(CommandDeviceTest, DatabasesGoInAndOutAndAway) {
    WriteHost("in.json", R"({"name": "Notes", "records": [{"props": [
                            {"propid": 131075, "value": "05000000"}]}]})");
    Run("db-import " + Host("in.json"));
    Run("db-export " + Host("out.json"));
    const Json out = Json::parse(*sim::host::ReadWhole(sim::Wide(host_ + "\\out.json")));
    EXPECT_EQ(Run("dump")["databases"], out);
    EXPECT_EQ("05000000", out[0]["records"][0]["props"][0]["value"]);
    Run("db-delete notes");
    EXPECT_EQ(Json::array(), Run("dump")["databases"]);
    EXPECT_EQ("no such database: Notes", Refusal("db-delete Notes"));
    WriteHost("bad.json", "[{");
    EXPECT_NE("", Refusal("db-import " + Host("bad.json")));
    EXPECT_NE("", Refusal("db-import " + Host("absent.json")));
}

}  // namespace
