// Every export of a sound storage whose names, values and properties are anything. What they hold
// begins no line, key, card or entry of its own, and what is read back is text where text is due.
#include <filesystem>
#include <nlohmann/json.hpp>

#include "pc/command/command_line.h"
#include "pc/text/utf.h"
#include "tests/fuzz/fuzz_source.h"
#include "tests/support/pair_builder.h"
#include "tests/support/temporary_folder.h"

using namespace tolvenar;

namespace {

constexpr std::uint32_t kPropids[] = {0x3A06001F, 0x4013001F, 0x4008001F, 0x1000001F, 0x4045001F,
                                      0x40010040, 0x00610040, 0x00170003, 0x0037001F, 0x00160041,
                                      0x0001000B, 0x00020002, 0x00030012, 0x00040005, 0x00050013};

struct Result {
    int code;
    std::string out;
};

Result Run(const std::vector<std::string>& arguments) {
    pc::TextOutput out;
    pc::TextOutput err;
    pc::Console console{out, err};
    const int code = pc::RunCommandLine(arguments, console);
    return {code, out.text};
}

// Names have no unit of zero.
std::u16string Name(FuzzInput& input) {
    std::u16string name;
    for (int units = input.Byte() % 24; units > 0; --units) {
        const std::uint16_t unit = input.Half();
        name += unit == 0 ? u'0' : static_cast<char16_t>(unit);
    }
    return name;
}

std::size_t ValueBytes(std::uint32_t propid, FuzzInput& input) {
    switch (propid & 0xFFFF) {
        case kPropertyI2:
        case kPropertyUI2: return 2;
        case kPropertyI4:
        case kPropertyUI4:
        case kPropertyBool: return 4;
        case kPropertyString:
        case kPropertyBlob: return input.Byte() % 160;
        default: return 8;
    }
}

std::vector<PairBuilder::TypedValue> Values(FuzzInput& input) {
    std::vector<PairBuilder::TypedValue> values;
    for (int count = input.Byte() % 12; count > 0; --count) {
        const std::uint32_t propid = kPropids[input.Byte() % std::size(kPropids)];
        Bytes value = input.TakeBytes(ValueBytes(propid, input));
        if ((propid & 0xFFFF) == kPropertyString) {
            const std::u16string text = TextIn(value);
            value = Units(text.substr(0, text.find(u'\0')));
        } else if ((propid & 0xFFFF) != kPropertyBlob) {
            value.resize(ValueBytes(propid, input));
        }
        values.push_back({propid, value});
    }
    return values;
}

template <typename Text>
std::size_t Count(const Text& text, const Text& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != text.npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

// Folded, in UTF-8, and of so many components.
void RequireCards(const std::string& text, const std::string& end, std::size_t count) {
    Require(Count<std::string>("\r\n" + text, "\r\n" + end + "\r\n") == count);
    Require(pc::ToUtf8(pc::ToUtf16(text)) == text);
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t line_end = text.find("\r\n", begin);
        Require(line_end != text.npos && line_end - begin <= 75);
        Require(text.substr(begin, line_end - begin).find_first_of("\r\n") == text.npos);
        begin = line_end + 2;
    }
}

bool IsDone(int code) { return code == 0 || code == 3; }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const tests::TemporaryFolder folder;
    FuzzInput input(data, size);
    PairBuilder pair;
    pair.time = 0x01DD7583957AC700;
    pair.BeginState();
    pair.AddFile(u"\\" + Name(input), input.TakeBytes(input.Byte()), 0x10);
    pair.AddDatabase(u"Contacts Database", 0x20);
    pair.AddDatabase(u"Tasks Database", 0x21);
    pair.AddDatabase(Name(input), 0x22);
    pair.AddRecord(u"Contacts Database", Values(input), 0x30);
    pair.AddRecord(u"Tasks Database", Values(input), 0x31);
    const std::u16string key = Name(input);
    pair.AddKey(key);
    const std::u16string value = Name(input);
    const std::uint32_t type = input.Byte();
    pair.AddValue(key, value, input.Rest(), type);
    folder.Write("Home.sav", pair.sav);
    folder.Write("Home.jrn", pair.JournalBytes());
    const std::string home = folder.In("Home");

    const Result reg = Run({"export", home, "reg"});
    Require(IsDone(reg.code));
    Require(Count<std::u16string>(TextIn(reg.out), u"\n[") <= 1);
    const Result reg4 = Run({"export", home, "reg4"});
    Require(IsDone(reg4.code) && Count<std::string>(reg4.out, "\n[") <= 1);
    Require(nlohmann::json::parse(Run({"export", home, "json"}).out).size() == 3);
    Require(IsDone(Run({"export", home, "csv", "db:Tasks Database"}).code));
    for (const char* form : {"vcard3", "vcard4"}) {
        const Result cards = Run({"export", home, form});
        Require(IsDone(cards.code));
        RequireCards(cards.out, "END:VCARD", 1);
    }
    const Result calendar = Run({"export", home, "ical"});
    Require(IsDone(calendar.code));
    RequireCards(calendar.out, "END:VTODO", 1);
    Require(IsDone(Run({"export", home, "tar"}).code));
    std::filesystem::remove_all(folder.In("profile"));
    Require(IsDone(Run({"export", home, "profile", "--ids", "-o", folder.In("profile")}).code));
    return 0;
}
