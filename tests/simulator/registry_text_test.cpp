// The registry's text form: what goes in comes out again, and damaged text changes nothing.
#include "simulator/registry/registry_text.h"

#include <chrono>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>
#include <windows.h>

#include "simulator/registry/registry_dump.h"
#include "test_folders.h"
#include "tests/support/device_test.h"

namespace {

using nlohmann::json;
using sim::registry::ExportText;
using sim::registry::ImportText;
using tests::DeviceTest;

class RegistryTextTest : public DeviceTest {
protected:
    void Import(const std::string& text) { ImportText(device().sim(), text); }
    std::string Export() { return ExportText(device().sim()); }
    json Dump() { return sim::registry::DumpJson(device().sim()); }
    // Type and data, as a program reads them.
    std::pair<DWORD, std::string> Read(HKEY root, const wchar_t* path, const wchar_t* name) {
        HKEY key = nullptr;
        if (::RegOpenKeyExW(root, path, 0, 0, &key) != ERROR_SUCCESS) {
            return {0, "no key"};
        }
        BYTE data[256];
        DWORD type = 0;
        DWORD size = sizeof data;
        const LONG status = ::RegQueryValueExW(key, name, nullptr, &type, data, &size);
        ::RegCloseKey(key);
        if (status != ERROR_SUCCESS) {
            return {0, "no value"};
        }
        return {type, std::string(reinterpret_cast<const char*>(data), size)};
    }
    // Importing `text` throws `message` and leaves the registry as it was.
    void ExpectRefused(const std::string& text, const std::string& message) {
        const json before = Dump();
        try {
            Import(text);
            ADD_FAILURE() << "was taken: " << text;
        } catch (const std::runtime_error& error) {
            EXPECT_NE(std::string::npos, std::string(error.what()).find(message)) << error.what();
        }
        EXPECT_EQ(before, Dump());
    }
};

std::string Utf16(const std::u16string& text) {
    return std::string(reinterpret_cast<const char*>(text.data()), text.size() * 2);
}

TEST_F(RegistryTextTest, EveryKindOfValueIsTaken) {
    Import(
        "REGEDIT4\r\n\r\n; a comment\r\n[HKEY_LOCAL_MACHINE\\a b\\c]\r\n@=\"dflt\"\r\n"
        "\"text\"=\"C:\\\\x \\\"q\\\" ; no comment\"\r\n\"num\"=dword:0001eF00\r\n"
        "\"bin\"=hex:00,fF\r\n\"multi\"=hex(7):41,00,\\\r\n  00,00,\\\r\n  00,00\r\n"
        "\"none\"=hex(0):\r\n\"odd\"=hex(1a2b):07\r\n\"a\\\\b=\\\"\"=dword:1\r\n");
    const wchar_t* path = L"a b\\c";
    EXPECT_EQ(std::make_pair(DWORD{1}, std::string("d\0f\0l\0t\0\0\0", 10)),
              Read(HKEY_LOCAL_MACHINE, path, nullptr));
    EXPECT_EQ(Utf16(std::u16string(u"C:\\x \"q\" ; no comment", 22)),
              Read(HKEY_LOCAL_MACHINE, path, L"text").second);
    EXPECT_EQ(std::make_pair(DWORD{4}, std::string("\x00\xEF\x01\x00", 4)),
              Read(HKEY_LOCAL_MACHINE, path, L"num"));
    EXPECT_EQ(std::make_pair(DWORD{3}, std::string("\x00\xFF", 2)),
              Read(HKEY_LOCAL_MACHINE, path, L"bin"));
    EXPECT_EQ(std::make_pair(DWORD{7}, std::string("A\0\0\0\0\0", 6)),
              Read(HKEY_LOCAL_MACHINE, path, L"multi"));
    EXPECT_EQ(std::make_pair(DWORD{0}, std::string()), Read(HKEY_LOCAL_MACHINE, path, L"none"));
    EXPECT_EQ(std::make_pair(DWORD{0x1A2B}, std::string("\x07")),
              Read(HKEY_LOCAL_MACHINE, path, L"odd"));
    EXPECT_EQ(4u, Read(HKEY_LOCAL_MACHINE, path, L"a\\b=\"").first);
}

TEST_F(RegistryTextTest, TheExportIsWrittenAsRegeditDoes) {
    Import(
        "REGEDIT4\n[HKEY_USERS\\b]\n\"z\"=dword:2a\n@=\"q\\\"\\\\\"\n[HKEY_USERS\\A]\n"
        "\"m\"=hex(7):00,00\n\"raw\"=hex(1):41,00\n\"n\"=hex(4):01\n");
    EXPECT_EQ(
        "REGEDIT4\r\n\r\n[HKEY_CLASSES_ROOT]\r\n\r\n[HKEY_CURRENT_USER]\r\n\r\n"
        "[HKEY_LOCAL_MACHINE]\r\n\r\n[HKEY_USERS]\r\n\r\n[HKEY_USERS\\A]\r\n"
        "\"m\"=hex(7):00,00\r\n\"n\"=hex(4):01\r\n\"raw\"=hex(1):41,00\r\n\r\n"
        "[HKEY_USERS\\b]\r\n@=\"q\\\"\\\\\"\r\n\"z\"=dword:0000002a\r\n",
        Export());
}

TEST_F(RegistryTextTest, LongDataIsContinuedOnFurtherLinesOf80Columns) {
    std::string list = "01";
    for (int i = 0; i < 99; ++i) {
        list += ",01";
    }
    Import("REGEDIT4\n[HKEY_USERS\\k]\n\"name\"=hex:" + list + "\n");
    const std::string text = Export();
    std::size_t at = text.find("\"name\"");
    for (int line = 0; at < text.size(); ++line) {
        const std::size_t end = text.find("\r\n", at);
        EXPECT_LE(end - at, 80u);
        EXPECT_EQ(line < 4, text[end - 1] == '\\') << line;
        at = end + 2;
    }
    const json before = Dump();
    Import(text);
    EXPECT_EQ(before, Dump());
}

TEST_F(RegistryTextTest, TextThatQuotesCannotCarryComesBackUnchanged) {
    const std::string odd[] = {std::string("A\0B", 3),
                               std::string("A\0\0\0\0\0", 6),
                               std::string("A\0\n\0\0\0", 6),
                               std::string("A\0", 2),
                               std::string(),
                               std::string("\x00\xD8\0\0", 4)};
    HKEY key = nullptr;
    ::RegCreateKeyExW(HKEY_USERS, L"k", 0, nullptr, 0, 0, nullptr, &key, nullptr);
    for (std::size_t i = 0; i < std::size(odd); ++i) {
        ::RegSetValueExW(key, std::to_wstring(i).c_str(), 0, REG_SZ,
                         reinterpret_cast<const BYTE*>(odd[i].data()),
                         static_cast<DWORD>(odd[i].size()));
    }
    const std::string text = Export();
    ::RegCloseKey(key);
    ASSERT_EQ(ERROR_SUCCESS, ::RegDeleteKeyW(HKEY_USERS, L"k"));
    Import(text);
    for (std::size_t i = 0; i < std::size(odd); ++i) {
        EXPECT_EQ(std::make_pair(DWORD{REG_SZ}, odd[i]),
                  Read(HKEY_USERS, L"k", std::to_wstring(i).c_str()));
    }
}

TEST_F(RegistryTextTest, TextMayBeUtf8OrUtf16OrOfCodePage1252) {
    const std::wstring path = L"\x00FC";
    Import("REGEDIT4\n[HKEY_USERS\\\xC3\xBC]\n\"8\"=dword:1\n");
    Import("\xEF\xBB\xBFREGEDIT4\n[HKEY_USERS\\\xC3\xBC]\n\"8 marked\"=dword:2\n");
    Import("REGEDIT4\n[HKEY_USERS\\\xFC]\n\"1252\"=dword:3\n");
    Import(Utf16(u"\xFEFFREGEDIT4\r\n[HKEY_USERS\\\x00FC]\r\n\"16\"=dword:4\r\n"));
    Import(
        Utf16(u"Windows Registry Editor Version 5.00\n[HKEY_USERS\\\x00FC]\n\"bare\"=dword:5\n"));
    DWORD expected = 0;
    for (const wchar_t* name : {L"8", L"8 marked", L"1252", L"16", L"bare"}) {
        const std::string data(1, static_cast<char>(++expected));
        EXPECT_EQ(data + std::string(3, '\0'), Read(HKEY_USERS, path.c_str(), name).second);
    }
    EXPECT_NE(std::string::npos, Export().find("[HKEY_USERS\\\xC3\xBC]"));
}

TEST_F(RegistryTextTest, AMinusDeletesAKeyOrAValue) {
    Import("REGEDIT4\n[HKEY_USERS\\a\\b]\n\"x\"=dword:1\n\"y\"=dword:1\n[HKEY_USERS\\c]\n");
    Import("REGEDIT4\n[-HKEY_USERS\\c]\n[HKEY_USERS\\a\\b]\n\"x\"=-\n\"none\"=-\n");
    EXPECT_EQ("no value", Read(HKEY_USERS, L"a\\b", L"x").second);
    EXPECT_EQ(4u, Read(HKEY_USERS, L"a\\b", L"y").first);
    EXPECT_EQ("no key", Read(HKEY_USERS, L"c", L"").second);
    Import("REGEDIT4\n[-HKEY_USERS\\a]\n");
    EXPECT_EQ("no key", Read(HKEY_USERS, L"a", L"").second);
}

TEST_F(RegistryTextTest, ShortRootNamesAreTaken) {
    Import("REGEDIT4\n[hkcr\\1]\n[HKCU\\2]\n[HKLM\\3]\n[HKU\\4]\n");
    std::vector<std::string> keys;
    for (const json& key : Dump()) {
        keys.push_back(key["key"]);
    }
    EXPECT_EQ((std::vector<std::string>{"HKCR\\1", "HKCU\\2", "HKLM\\3", "HKU\\4"}), keys);
}

TEST_F(RegistryTextTest, DamagedTextIsRefusedWithItsLineAndChangesNothing) {
    const std::string head = "REGEDIT4\n[HKEY_USERS\\damaged]\n";
    ExpectRefused("", "line 1");
    ExpectRefused("[HKEY_USERS\\a]\n", "line 1");
    ExpectRefused("REGEDIT4\n\"x\"=dword:1\n", "line 2");
    ExpectRefused("REGEDIT4\n[HKEY_DYN_DATA\\a]\n", "line 2");
    ExpectRefused("REGEDIT4\n[HKEY_USERS\\a\n", "line 2");
    ExpectRefused("REGEDIT4\n[HKEY_USERS\\\\a]\n", "no key");
    const char* const kDamagedValues[] = {
        "x=dword:1\n",
        "\"x\"\n",
        "\"x\"=\n",
        "\"x\"=dword:\n",
        "\"x\"=dword:123456789\n",
        "\"x\"=dword:1g\n",
        "\"x\"=hex:100\n",
        "\"x\"=hex:1,,2\n",
        "\"x\"=hex(:1\n",
        "\"x\"=hex():1\n",
    };
    for (const char* value : kDamagedValues) {
        ExpectRefused(head + value, "line 3");
    }
    ExpectRefused(head + "\"x\n", "left open");
    ExpectRefused(head + "\"x\"=hex:01,\\", "goes on");
    ExpectRefused(head + "\"" + std::string(256, 'n') + "\"=dword:1\n", "no key");
}

TEST_F(RegistryTextTest, TheDumpIsSortedAndTellsTextsWithoutTheirTerminator) {
    Import(
        "REGEDIT4\n[HKLM\\b]\n\"n\"=dword:102\n\"A\"=\"x\"\n[HKLM\\a]\n@=hex(2):41,00,00,00\n"
        "\"m\"=hex(7):00,00\n");
    EXPECT_EQ(R"([{"key":"HKLM\\a","values":[{"data":"4100","name":"","type":2},)"
              R"({"data":"0000","name":"m","type":7}]},)"
              R"({"key":"HKLM\\b","values":[{"data":"7800","name":"A","type":1},)"
              R"({"data":"02010000","name":"n","type":4}]}])",
              Dump().dump());
}

TEST_F(RegistryTextTest, FiveThousandValuesComeInWithinOneChange) {
    std::string text = "REGEDIT4\n";
    for (int key = 0; key < 50; ++key) {
        text += "[HKEY_LOCAL_MACHINE\\many\\" + std::to_string(key) + "]\n";
        for (int value = 0; value < 100; ++value) {
            text += "\"value " + std::to_string(value) + "\"=dword:00000001\n";
        }
    }
    const auto start = std::chrono::steady_clock::now();
    Import(text);
    std::size_t values = 0;
    for (const json& key : Dump()) {
        values += key["values"].size();
    }
    const auto end = std::chrono::steady_clock::now();
    EXPECT_EQ(5000u, values);
    RecordProperty("milliseconds",
                   static_cast<int>(
                       std::chrono::duration_cast<std::chrono::milliseconds>(end - start).count()));
}

// A real device's registry lies beside the source tree on some machines; the sample here has each
// kind of line that it has.
std::string RealOrSampleRegistry() {
    std::ifstream file(TOLVENAR_SOURCE_DIR "/../shared/data/ce5_english_registry.reg",
                       std::ios::binary);
    const std::string real((std::istreambuf_iterator<char>(file)),
                           std::istreambuf_iterator<char>());
    return !real.empty() ? real
                         : "REGEDIT4\n\n[HKEY_CLASSES_ROOT]\n\n[HKEY_CLASSES_ROOT\\.txt]\n"
                           "@=\"txtfile\"\n\"Content Type\"=\"text/plain\"\n\n"
                           "[HKEY_CURRENT_USER\\ControlPanel\\Sounds]\n\"Settings\"=hex:\\\n"
                           "  ff,ff,00,\\\n  01\n\"0\"=hex(7):\\\n  57,00,00,00,00,00\n"
                           "\"Flags\"=dword:00000120\n";
}

TEST_F(RegistryTextTest, AWholeDevicesRegistryComesBackWithTheSameKeysAndValues) {
    const std::string text = RealOrSampleRegistry();
    // Lines that stand for a key or a value: everything else is blank or a continuation.
    std::set<std::string> keys;
    // A value that is told twice is one.
    std::string key_now;
    std::set<std::string> value_lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        if (text[at] == '[') {
            key_now = text.substr(at, text.find(']', at) - at);
            keys.insert(key_now);
        }
        if (text[at] == '"' || text[at] == '@') {
            value_lines.insert(key_now + text.substr(at, text.find('=', at) - at));
        }
        at = end + 1;
    }
    Import(text);
    const json first = Dump();
    std::size_t values = 0;
    for (const json& key : first) {
        values += key["values"].size();
    }
    EXPECT_EQ(value_lines.size(), values);
    const std::string exported = Export();
    for (const std::string& key : keys) {
        EXPECT_NE(std::string::npos, exported.find(key + "]\r\n")) << key;
    }
    for (HKEY root : {HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKEY_USERS}) {
        wchar_t name[256];
        for (DWORD units = 256; ::RegEnumKeyExW(root, 0, name, &units, nullptr, nullptr, nullptr,
                                                nullptr) == ERROR_SUCCESS;
             units = 256) {
            ASSERT_EQ(ERROR_SUCCESS, ::RegDeleteKeyW(root, name));
        }
    }
    Import(exported);
    EXPECT_EQ(first, Dump());
    EXPECT_EQ(exported, Export());
}

}  // namespace
