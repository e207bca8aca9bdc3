// What the built program's file holds for the system to read: dialogs, keys and texts, by their
// numbers and as their bytes have them.
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

#include "res/resource.h"
#include "test_folders.h"

namespace {

enum Kind : std::uint32_t {
    kIcon = 3,
    kDialog = 5,
    kString = 6,
    kAccelerator = 9,
    kIconGroup = 14,
    kVersion = 16,
};

// The resources of a 32-bit program: three levels of folders (kind, number, language), each 16
// bytes and its entries of 8; the offset of a folder below has its highest bit set.
class ProgramFile {
public:
    explicit ProgramFile(const char* path) {
        std::ifstream file(path, std::ios::binary);
        bytes_.assign(std::istreambuf_iterator<char>(file), {});
        const std::uint32_t head = Get<std::uint32_t>(0x3C);
        const std::uint32_t optional_head = head + 24;
        const auto sections = Get<std::uint16_t>(head + 6);
        root_address_ = Get<std::uint32_t>(optional_head + 96 + 2 * 8);
        std::uint32_t section = optional_head + Get<std::uint16_t>(head + 20);
        for (int i = 0; i < sections; ++i, section += 40) {
            if (Get<std::uint32_t>(section + 12) == root_address_) {
                root_ = Get<std::uint32_t>(section + 20);
            }
        }
    }

    // Empty when there is none.
    std::vector<char> Resource(Kind kind, int number) const {
        const std::uint32_t of_kind = Below(0, kind);
        const std::uint32_t of_number =
            of_kind == 0 ? 0 : Below(of_kind, static_cast<std::uint32_t>(number));
        if (of_number == 0) {
            return {};
        }
        const std::uint32_t entry = root_ + Get<std::uint32_t>(root_ + of_number + 16 + 4);
        const std::uint32_t start = Get<std::uint32_t>(entry) - root_address_ + root_;
        return {bytes_.begin() + start, bytes_.begin() + start + Get<std::uint32_t>(entry + 4)};
    }

    // Sixteen strings share a resource, each with its length before it.
    std::u16string String(int number) const {
        const std::vector<char> block = Resource(kString, number / 16 + 1);
        std::size_t place = 0;
        for (int i = 0; i < number % 16 && place + 2 <= block.size(); ++i) {
            place += 2 + 2 * Unit(block, place);
        }
        std::u16string text;
        for (std::size_t i = 0; place + 2 <= block.size() && i < Unit(block, place); ++i) {
            text.push_back(Unit(block, place + 2 + 2 * i));
        }
        return text;
    }

    static char16_t Unit(const std::vector<char>& bytes, std::size_t place) {
        char16_t unit = 0;
        std::memcpy(&unit, bytes.data() + place, sizeof unit);
        return unit;
    }

private:
    template <typename T>
    T Get(std::uint32_t place) const {
        T value{};
        if (place + sizeof value <= bytes_.size()) {
            std::memcpy(&value, bytes_.data() + place, sizeof value);
        }
        return value;
    }
    std::uint32_t Below(std::uint32_t folder, std::uint32_t number) const {
        const std::uint32_t head = root_ + folder;
        const unsigned count =
            Get<std::uint16_t>(head + 12) + unsigned{Get<std::uint16_t>(head + 14)};
        for (std::uint32_t entry = head + 16; entry < head + 16 + 8 * count; entry += 8) {
            if (Get<std::uint32_t>(entry) == number) {
                return Get<std::uint32_t>(entry + 4) & 0x7FFFFFFF;
            }
        }
        return 0;
    }

    std::vector<char> bytes_;
    std::uint32_t root_address_ = 0;
    std::uint32_t root_ = 0;
};

struct Item {
    int id;
    int x, y, width, height;
    std::string window_class;  // a predefined one by its number, "#130"
    std::string text;
    std::uint32_t style;
};

// The resource compiler writes class names in capitals; case is nothing to the system.
bool operator==(const Item& a, const Item& b) {
    return a.id == b.id && a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height &&
           ::_stricmp(a.window_class.c_str(), b.window_class.c_str()) == 0 && a.text == b.text;
}
void PrintTo(const Item& item, std::ostream* out) {
    *out << item.id << " " << item.window_class << " '" << item.text << "' at " << item.x << ", "
         << item.y << ", " << item.width << ", " << item.height;
}

// A dialog template of either form, taken apart.
class Dialog {
public:
    explicit Dialog(std::vector<char> bytes) : bytes_(std::move(bytes)) {
        const bool is_extended = Peek(2) == 0xFFFF;
        place_ = is_extended ? 12 : 0;
        style = Long();
        place_ += is_extended ? 0 : 4;
        const int items_there = Word();
        x = Word(), y = Word(), width = Word(), height = Word();
        Text();  // menu
        Text();  // class
        caption = Text();
        points = Word();
        place_ += is_extended ? 4 : 0;
        font = Text();
        for (int i = 0; i < items_there; ++i) {
            TakeItem(is_extended);
        }
    }

    std::uint32_t style = 0;
    int x = 0, y = 0, width = 0, height = 0, points = 0;
    std::string caption, font;
    std::vector<Item> items;

private:
    std::uint16_t Peek(std::size_t place) const {
        return place + 2 <= bytes_.size() ? ProgramFile::Unit(bytes_, place) : std::uint16_t{0};
    }
    std::uint16_t Word() {
        place_ += 2;
        return Peek(place_ - 2);
    }
    std::uint32_t Long() {
        const std::uint32_t low = Word();
        return low | std::uint32_t{Word()} << 16;
    }
    std::string Text() {
        if (Peek(place_) == 0xFFFF) {
            place_ += 2;
            return "#" + std::to_string(Word());
        }
        std::string text;
        while (const std::uint16_t unit = Word()) {
            text.push_back(static_cast<char>(unit));
        }
        return text;
    }
    void TakeItem(bool is_extended) {
        Item item{};
        place_ = (place_ + 3) / 4 * 4;
        place_ += is_extended ? 8 : 0;
        item.style = Long();
        place_ += is_extended ? 0 : 4;
        item.x = Word(), item.y = Word(), item.width = Word(), item.height = Word();
        item.id = static_cast<int>(is_extended ? Long() : Word());
        item.window_class = Text();
        item.text = Text();
        place_ += Word();
        items.push_back(item);
    }

    std::vector<char> bytes_;
    std::size_t place_ = 0;
};

constexpr std::uint32_t kChild = 0x40000000;
constexpr std::uint32_t kPopup = 0x80000000;
constexpr std::uint32_t kCaption = 0x00C00000;
constexpr std::uint32_t kSystemMenu = 0x00080000;
constexpr std::uint32_t kSystemModal = 0x0002;
constexpr std::uint32_t kModalFrame = 0x0080;
constexpr std::uint32_t kForeground = 0x0200;
constexpr std::uint32_t kPartOfDialog = 0x0400;
constexpr std::uint32_t kCentred = 0x0800;
const std::string kButton = "#128";
const std::string kStatic = "#130";
enum : int { kOk = 1, kCancel = 2 };

class ResourcesTest : public ::testing::Test {
protected:
    Dialog Template(int number) const { return Dialog(file_.Resource(kDialog, number)); }
    static void ExpectItems(const Dialog& dialog, const std::vector<Item>& items) {
        EXPECT_EQ(items, dialog.items);
    }
    static void ExpectFrame(const Dialog& dialog, int width, int height, const char* caption) {
        EXPECT_EQ(width, dialog.width);
        EXPECT_EQ(height, dialog.height);
        EXPECT_EQ(caption, dialog.caption);
        EXPECT_EQ("Tahoma", dialog.font);
        EXPECT_EQ(9, dialog.points);
    }

    const ProgramFile file_{TOLVENAR_BIN_DIR "/Tolvenar.exe"};
};

TEST_F(ResourcesTest, TheMainDialog) {
    const Dialog dialog = Template(IDD_MAIN);
    ExpectFrame(dialog, 301, 105, "Tolvenar");
    EXPECT_EQ(kPopup | kCaption | kSystemMenu | kSystemModal | kModalFrame | kForeground | kCentred,
              dialog.style & ~0x40u);  // the font's own bit
    ExpectItems(dialog, {{IDC_TABS, 0, 0, 299, 19, "SysTabControl32", "", 0}});
}

TEST_F(ResourcesTest, ThePopup) {
    const Dialog dialog = Template(IDD_PROGRESS);
    ExpectFrame(dialog, 133, 85, "");
    EXPECT_EQ(kPopup | kCaption | kModalFrame | kForeground | kCentred, dialog.style & ~0x40u);
    ExpectItems(dialog, {{IDC_STEP_TEXT, 2, 2, 127, 25, kStatic, "", 0},
                         {IDC_STEP_BAR, 2, 35, 128, 14, "msctls_progress32", "", 0},
                         {IDC_TOTAL_LABEL, 2, 54, 128, 8, kStatic, "Total progress", 0},
                         {IDC_TOTAL_BAR, 2, 69, 128, 14, "msctls_progress32", "", 0}});
}

TEST_F(ResourcesTest, TheReminder) {
    const Dialog dialog = Template(IDD_REMINDER);
    EXPECT_EQ("Reminder", dialog.caption);
    ASSERT_EQ(5u, dialog.items.size());
    const int ids[] = {IDC_REMINDER_TEXT, IDC_REMINDER_OFF, kOk, kCancel, IDC_REMINDER_EFFECT};
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(ids[i], dialog.items[i].id);
        EXPECT_EQ(i == 0 || i == 4 ? kStatic : kButton, dialog.items[i].window_class);
    }
    EXPECT_EQ(3u, dialog.items[1].style & 0xF);  // a check box that checks itself
    EXPECT_EQ("OK", dialog.items[2].text);
    EXPECT_EQ("Cancel", dialog.items[3].text);
}

TEST_F(ResourcesTest, TheHostOfTheTree) {
    const Dialog dialog = Template(IDD_TREE_HOST);
    EXPECT_EQ(160, dialog.width);
    EXPECT_EQ(50, dialog.height);
    EXPECT_EQ(kChild, dialog.style & (kChild | kPopup | kCaption));
    EXPECT_EQ("MS Sans Serif", dialog.font);
    EXPECT_EQ(8, dialog.points);
    ExpectItems(dialog, {{IDC_TREE_PARENT, 1, 0, 155, 48, "CustomParentTreeWindowClass", "", 0}});
}

// In another font the dialog units of a page are not those of the main dialog; without its style
// Tab never leaves the tabs.
TEST_F(ResourcesTest, PagesAreChildrenInTheMainDialogsFont) {
    for (const int number :
         {IDD_STORAGE_PAGE, IDD_RESTORE_PAGE, IDD_OPTIONS_PAGE, IDD_ABOUT_PAGE, IDD_BACKUP_PAGE}) {
        const Dialog dialog = Template(number);
        EXPECT_EQ("Tahoma", dialog.font) << number;
        EXPECT_EQ(9, dialog.points) << number;
        EXPECT_EQ(kChild | kPartOfDialog, dialog.style & ~0x40u) << number;
    }
}

TEST_F(ResourcesTest, TheListOfStatesTellsItsSelectionAndKeepsItsOrder) {
    for (const Item& item : Template(IDD_RESTORE_PAGE).items) {
        if (item.id == IDC_STATES) {
            EXPECT_EQ(1u, item.style & 3);  // told, not sorted
            return;
        }
    }
    FAIL();
}

TEST_F(ResourcesTest, WhatAPageOnlyTellsCannotBeEdited) {
    int found = 0;
    for (const int number : {IDD_STORAGE_PAGE, IDD_RESTORE_PAGE}) {
        for (const Item& item : Template(number).items) {
            if (item.id == IDC_STATE_DESCRIPTION || item.id == IDC_STORAGE_NAME ||
                item.id == IDC_STORAGE_DESCRIPTION) {
                EXPECT_NE(0u, item.style & 0x0800) << item.id;
                ++found;
            }
        }
    }
    EXPECT_EQ(3, found);
}

TEST_F(ResourcesTest, TheButtonsOfDifferencesAndFailedItems) {
    std::vector<std::string> texts;
    for (const Item& item : Template(IDD_RESTORE_PAGE).items) {
        if (item.id == IDC_APPLY_CHANGES || item.id == IDC_TAKE_BACK_CHANGES ||
            item.id == IDC_FAILED_OK) {
            EXPECT_EQ(kButton, item.window_class);
            texts.push_back(item.text);
        }
    }
    EXPECT_EQ((std::vector<std::string>{"+", "--", "OK"}), texts);
}

// An entry is flags, key, command and two bytes of nothing; the last has 0x80.
TEST_F(ResourcesTest, TheKeys) {
    const std::vector<char> bytes = file_.Resource(kAccelerator, IDR_ACCELERATORS);
    std::vector<std::vector<int>> keys;
    for (std::size_t place = 0; place + 8 <= bytes.size(); place += 8) {
        keys.push_back({ProgramFile::Unit(bytes, place) & 0x7F, ProgramFile::Unit(bytes, place + 2),
                        ProgramFile::Unit(bytes, place + 4)});
    }
    constexpr int kVirtual = 1;
    constexpr int kNoInversion = 2;
    constexpr int kShift = 4;
    constexpr int kControl = 8;
    constexpr int kAlt = 16;
    constexpr int kPlain = kVirtual | kNoInversion;
    EXPECT_EQ((std::vector<std::vector<int>>{{kPlain | kAlt, 'H', IDM_HELP_PAGE},
                                             {kPlain | kControl, 9, IDM_NEXT_PAGE},
                                             {kPlain | kControl | kShift, 9, IDM_PREVIOUS_PAGE},
                                             {kPlain | kControl, 'W', IDM_CLOSE},
                                             {kPlain | kAlt, 'X', IDM_CLOSE},
                                             {kPlain | kControl, 'Q', IDM_QUIT}}),
              keys);
}

TEST_F(ResourcesTest, TheTextsOfTheTree) {
    const char16_t* const texts[] = {
        u"",
        u"Differences",
        u"Applications",
        u"Documents",
        u"Databases",
        u"Registry",
        u"Files",
        u"Other",
        u"Outlook Data",
        u"Other",
        u"Unknown",
        u"Contacts Database",
        u"Tasks Database",
        u"Appointments Database",
        u"\\PMAILDB",
        u"Contacts",
        u"Tasks",
        u"Appointments",
        u"Inbox",
        u"My Documents\\",
        u"No subject",
    };
    int number = 0;
    for (const char16_t* const text : texts) {
        EXPECT_EQ(text, file_.String(number)) << number;
        ++number;
    }
}

// Nothing stands behind it.
TEST_F(ResourcesTest, TheRussianSet) {
    for (int number = IDS_RU_DIFFERENCES; number <= IDS_RU_NO_SUBJECT; ++number) {
        const std::u16string text = file_.String(number);
        EXPECT_FALSE(text.empty()) << number;
        const char16_t first = text.empty() ? u'\0' : text[0];
        EXPECT_TRUE(first >= u'\u0410' && first <= u'\u044F') << number;
    }
    EXPECT_EQ(u"\u0420\u0430\u0437\u043B\u0438\u0447\u0438\u044F",
              file_.String(IDS_RU_DIFFERENCES));
    EXPECT_EQ(u"", file_.String(IDS_RU_NO_SUBJECT + 1));
}

TEST_F(ResourcesTest, IconAndVersionAreThere) {
    EXPECT_FALSE(file_.Resource(kIconGroup, IDI_TOLVENAR).empty());
    EXPECT_FALSE(file_.Resource(kVersion, 1).empty());
    for (const int number : {IDD_DESCRIPTION, IDD_AUTOBACKUP_PROMPT}) {
        EXPECT_FALSE(file_.Resource(kDialog, number).empty()) << number;
    }
}

}  // namespace
