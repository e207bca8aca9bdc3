#include "tests/model/change_generator.h"

#include "snapshot/records/checksum.h"
#include "tests/support/bytes.h"
#include "tests/support/text.h"

namespace tests {
namespace {

using sim::databases::Database;
using sim::databases::Record;
using tolvenar::Terminated;

constexpr std::size_t kMostLevels = 5;

const std::vector<std::wstring> kNames = {L"a.txt", L"b",          L"Folder", L"Other folder",
                                          L"c.bin", L"no.dot.end", L"d"};
const std::vector<std::u16string> kKeyPaths = {u"HKCU\\Test",        u"HKCU\\Test\\Deep\\Deeper",
                                               u"HKCU\\Test\\Deep",  u"HKLM\\Test",
                                               u"HKLM\\Test\\Below", u"HKCR\\.test",
                                               u"HKU\\.Default\\One"};
const std::vector<std::u16string> kValueNames = {u"", u"Number", u"Some text", u"\u00E4"};
const std::vector<std::uint32_t> kAttributes = {0x20, 0x22, 0x26, 0x04};

std::vector<Database> Shapes() {
    std::vector<Database> shapes(3);
    shapes[0].name = u"Contacts";
    shapes[0].type = 24;
    shapes[0].sort_orders = {{0x00010003, 0}, {0x0002001F, 2}};
    shapes[1].name = u"\\Odd Name";
    shapes[1].type = 7;
    shapes[2].name = u"Notes";
    shapes[2].type = 24;
    shapes[2].sort_orders = {{0x00010003, 1}};
    return shapes;
}

}  // namespace

namespace {

std::string Dword(std::uint32_t number) {
    return std::string(reinterpret_cast<const char*>(&number), sizeof number);
}

// The first number from `number` on with the low byte of the checksum that `other` has.
std::string SameLowByte(const std::string& other, std::uint32_t number) {
    const auto low_byte = [](const std::string& data) {
        return tolvenar::Checksum16(data.data(), data.size()) & 0xFF;
    };
    while (low_byte(Dword(number)) != low_byte(other)) {
        ++number;
    }
    return Dword(number);
}

}  // namespace

const std::array<ImageValue, kValueKinds>& ValuePalette() {
    static const std::array<ImageValue, kValueKinds> palette = {{
        {4, std::string("\x01\0\0\0", 4)},
        {4, std::string("\x02\0\0\0", 4)},
        {4, std::string("\xFF\xFF\xFF\x7F", 4)},
        {1, Terminated(u"")},
        {1, Terminated(u"text")},
        {1, Terminated(u"a longer text")},
        {3, std::string()},
        {3, std::string("\0", 1)},
        {3, std::string(300, 'x')},
        {3, std::string(70000, 'y')},
        {7, Terminated(u"one") + Terminated(u"two") + Terminated(u"")},
        {0x1234, std::string("odd type")},
        {1, std::string("odd type")},
        {4, SameLowByte(Dword(1), 100)},
        {4, SameLowByte(Dword(1), 1000)},
        {3, SameLowByte(std::string(300, 'x'), 5000)},
    }};
    return palette;
}

std::vector<std::wstring> ChangeGenerator::Paths(bool of_folders) {
    std::vector<std::wstring> paths;
    for (const auto& [path, file] : model().files) {
        if (file.is_folder == of_folders) {
            paths.push_back(path);
        }
    }
    return paths;
}

std::wstring ChangeGenerator::AnyPath(bool of_folder) {
    const std::vector<std::wstring> paths = Paths(of_folder);
    return paths.empty() ? std::wstring() : paths[Below(paths.size())];
}

std::wstring ChangeGenerator::AnyFolder() {
    std::vector<std::wstring> folders = Paths(true);
    folders.insert(folders.begin(), std::wstring());
    return folders[Below(folders.size())];
}

std::wstring ChangeGenerator::FreePath() {
    const std::wstring folder = AnyFolder();
    const std::wstring path = folder + L"\\" + kNames[Below(kNames.size())];
    std::size_t levels = 0;
    for (const wchar_t unit : path) {
        levels += unit == L'\\' ? 1 : 0;
    }
    return model().files.count(path) != 0 || levels > kMostLevels ? std::wstring() : path;
}

std::string ChangeGenerator::AnyBytes() {
    std::string bytes(Below(4) == 0 ? Below(3) * 40000 : Below(30), '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(random_());
    }
    return bytes;
}

std::string ChangeGenerator::WriteFile() {
    std::wstring path = FreePath();
    if (path.empty()) {
        path = AnyPath(false);
    }
    if (path.empty()) {
        return {};
    }
    device_.PutFile(path, AnyBytes());
    return "write " + Narrow(path);
}

std::string ChangeGenerator::ChangeAttributes() {
    const std::wstring path = AnyPath(false);
    if (path.empty()) {
        return {};
    }
    device_.SetAttributes(path, kAttributes[Below(kAttributes.size())]);
    return "attributes of " + Narrow(path);
}

std::string ChangeGenerator::TouchFile() {
    const std::wstring path = AnyPath(false);
    if (path.empty()) {
        return {};
    }
    device_.Touch(path, 0x01C0000000000000 + Below(1000000) * 10000000ull);
    return "touch " + Narrow(path);
}

std::string ChangeGenerator::MakeFolder() {
    const std::wstring path = FreePath();
    if (path.empty()) {
        return {};
    }
    device_.MakeFolder(path);
    return "make folder " + Narrow(path);
}

template <bool of_folder>
std::string ChangeGenerator::Remove() {
    const std::wstring path = AnyPath(of_folder);
    if (path.empty()) {
        return {};
    }
    device_.Remove(path);
    return "remove " + Narrow(path);
}

template <bool of_folder>
std::string ChangeGenerator::Move() {
    const std::wstring to = FreePath();
    const std::wstring from = to.empty() ? std::wstring() : AnyPath(of_folder);
    if (from.empty() || to.compare(0, from.size() + 1, from + L"\\") == 0) {
        return {};
    }
    device_.Move(from, to);
    return "move " + Narrow(from) + " to " + Narrow(to);
}

std::string ChangeGenerator::CreateKey() {
    const std::u16string path = kKeyPaths[Below(kKeyPaths.size())];
    if (model().keys.count(path) != 0) {
        return {};
    }
    device_.CreateKey(path);
    return "create " + Narrow(path);
}

std::string ChangeGenerator::SetValue() {
    if (model().keys.empty()) {
        return {};
    }
    const std::u16string path = AnyKeyOf(model().keys);
    device_.SetValue(path, kValueNames[Below(kValueNames.size())],
                     ValuePalette()[Below(kValueKinds)]);
    return "set a value of " + Narrow(path);
}

std::string ChangeGenerator::DeleteValue() {
    if (model().keys.empty()) {
        return {};
    }
    const std::u16string path = AnyKeyOf(model().keys);
    const auto& values = model().keys[path];
    if (values.empty()) {
        return {};
    }
    device_.DeleteValue(path, AnyKeyOf(values));
    return "delete a value of " + Narrow(path);
}

std::string ChangeGenerator::DeleteKey() {
    const std::u16string path = kKeyPaths[Below(kKeyPaths.size())];
    if (model().keys.count(path) == 0) {
        return {};
    }
    device_.DeleteKey(path);
    return "delete " + Narrow(path);
}

std::string ChangeGenerator::CreateDatabase() {
    const std::vector<Database> shapes = Shapes();
    const Database& shape = shapes[Below(shapes.size())];
    if (model().databases.count(shape.name) != 0) {
        return {};
    }
    device_.CreateDatabase(shape);
    return "create database " + Narrow(shape.name);
}

std::string ChangeGenerator::DeleteDatabase() {
    if (model().databases.empty() || Below(2) == 0) {
        return {};
    }
    const std::u16string name = AnyKeyOf(model().databases);
    device_.DeleteDatabase(name);
    return "delete database " + Narrow(name);
}

Record ChangeGenerator::AnyRecord() {
    Record record;
    const auto number = Below(0x7FFFFFFF);
    sim::databases::Put(record,
                        {0x00010003, 0, std::string(reinterpret_cast<const char*>(&number), 4)});
    sim::databases::Put(record, {0x00050005, 0, std::string("\0\0\0\0\0\0\x24\x40", 8)});
    if (Below(2) == 0) {
        sim::databases::Put(record, {0x0002001F, 0, tolvenar::Units(u"name")});
    }
    if (Below(3) == 0) {
        sim::databases::Put(record, {0x00030041, 0, AnyBytes().substr(0, 5000)});
    }
    if (Below(3) == 0) {
        sim::databases::Put(record, {0x00040040, 0, std::string(8, static_cast<char>(Below(100)))});
    }
    return record;
}

std::string ChangeGenerator::AddRecord() {
    if (model().databases.empty()) {
        return {};
    }
    const std::u16string name = AnyKeyOf(model().databases);
    device_.AddRecord(name, AnyRecord());
    return "add a record to " + Narrow(name);
}

std::u16string ChangeGenerator::DatabaseWithRecords() {
    if (model().databases.empty()) {
        return {};
    }
    const std::u16string name = AnyKeyOf(model().databases);
    return model().databases[name].records.empty() ? std::u16string() : name;
}

std::string ChangeGenerator::ChangeRecord() {
    const std::u16string name = DatabaseWithRecords();
    if (name.empty()) {
        return {};
    }
    device_.ChangeRecord(name, Below(model().databases[name].records.size()), AnyRecord());
    return "change a record of " + Narrow(name);
}

std::string ChangeGenerator::DeleteRecord() {
    const std::u16string name = DatabaseWithRecords();
    if (name.empty()) {
        return {};
    }
    device_.DeleteRecord(name, Below(model().databases[name].records.size()));
    return "delete a record of " + Narrow(name);
}

std::string ChangeGenerator::Change() {
    using Step = std::string (ChangeGenerator::*)();
    // Steps that add stand more often than those that take away.
    static constexpr Step kSteps[] = {
        &ChangeGenerator::WriteFile,      &ChangeGenerator::WriteFile,
        &ChangeGenerator::WriteFile,      &ChangeGenerator::ChangeAttributes,
        &ChangeGenerator::TouchFile,      &ChangeGenerator::MakeFolder,
        &ChangeGenerator::MakeFolder,     &ChangeGenerator::Remove<false>,
        &ChangeGenerator::Remove<true>,   &ChangeGenerator::Move<false>,
        &ChangeGenerator::Move<true>,     &ChangeGenerator::CreateKey,
        &ChangeGenerator::CreateKey,      &ChangeGenerator::SetValue,
        &ChangeGenerator::SetValue,       &ChangeGenerator::SetValue,
        &ChangeGenerator::DeleteValue,    &ChangeGenerator::DeleteKey,
        &ChangeGenerator::CreateDatabase, &ChangeGenerator::CreateDatabase,
        &ChangeGenerator::DeleteDatabase, &ChangeGenerator::AddRecord,
        &ChangeGenerator::AddRecord,      &ChangeGenerator::AddRecord,
        &ChangeGenerator::ChangeRecord,   &ChangeGenerator::ChangeRecord,
        &ChangeGenerator::DeleteRecord,
    };
    for (;;) {
        const std::string told = (this->*kSteps[Below(std::size(kSteps))])();
        if (!told.empty()) {
            return told;
        }
    }
}

std::string ChangeGenerator::ChangeSome(std::size_t most) {
    std::string told;
    for (std::uint32_t count = 1 + Below(most); count != 0; --count) {
        told += Change() + "; ";
    }
    return told;
}

}  // namespace tests
