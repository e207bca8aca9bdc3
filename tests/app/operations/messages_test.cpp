// What each result of an operation or an opening tells the user, and what counts as success. Of the
// boxes only the call is looked at: they are refused, so that nobody has to answer them.
#include "app/operations/messages.h"

#include <nlohmann/json.hpp>
#include <vector>

#include "tests/support/device_test.h"

namespace tolvenar {
namespace {

using Texts = std::vector<std::string>;

constexpr bool kGood = true;
constexpr bool kBad = false;
// The style of each box with the bit that brings it to the front.
const std::string kError = ", Tolvenar, 65552";
const std::string kWarning = ", Tolvenar, 65584";
const std::string kInformation = ", Tolvenar, 65600";

const std::string kJournal = "Journal read Fail." + kError;
const std::string kNotStarted = "Can't start action. Try again." + kWarning;

std::string NoMemory(const std::string& figure) {
    return "Not enough memory to start operation. You need to free at least the " + figure +
           " Mb of the device memory." + kError;
}

struct Row {
    int code;
    bool is_good;
    std::string box;  // empty: none
};

class MessagesTest : public tests::DeviceTest {
protected:
    void SetUp() override {
        device().Fault("MessageBoxW", 1, 1000, 5);
        device().Command("trace on");
    }
    // Looks at all boxes at once: reading the trace after each would take most of the time.
    void TearDown() override {
        Texts boxes;
        for (const auto& line : nlohmann::json::parse(device().Command("trace show MessageBoxW"))) {
            boxes.push_back(line["arguments"]);
        }
        device().Command("trace off");
        EXPECT_EQ(expected_, boxes);
        DeviceTest::TearDown();
    }
    // The next box; an empty text stands for none.
    void ExpectBox(const std::string& box) {
        if (!box.empty()) {
            expected_.push_back(box);
        }
    }
    static ResultCode Code(int code) { return static_cast<ResultCode>(code); }
    static bool Backup(int code, bool automatic, bool is_first_pass) {
        return ReportBackup(Code(code),
                            {nullptr, automatic, is_first_pass, 12345, 8388608 - 1572864});
    }

    Texts expected_;
};

// A full card speaks at the second pass alone.
TEST_F(MessagesTest, OfABackup) {
    const std::string space =
        "Not enough disk space to backup. You need to free 12345 bytes on the storage card." +
        kError;
    const Row rows[] = {
        {1, kGood, ""},
        {2, kBad, "Difference not found. There is nothing to Backup." + kInformation},
        {3, kBad, "Create Differences Fail." + kError},
        {4, kBad, "Backup Fail." + kError},
        {5, kBad, kJournal},
        {6, kBad, space},
        {7, kGood, ""},
        {8, kBad, kNotStarted},
        {9, kBad, NoMemory("1.5")},
        {10, kBad, "The storage is write-protected." + kError},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.code);
        EXPECT_EQ(row.is_good, Backup(row.code, false, true));
        ExpectBox(row.code == 6 ? "" : row.box);
        EXPECT_EQ(row.is_good, Backup(row.code, false, false));
        ExpectBox(row.box);
        EXPECT_EQ(row.is_good, Backup(row.code, true, true));
        EXPECT_EQ(row.is_good, Backup(row.code, true, false));
    }
}

TEST_F(MessagesTest, OfAStorageFileThatIsFull) {
    ReportContext context{nullptr, false, false, 12345, 0};
    context.storage_is_full = true;
    EXPECT_FALSE(ReportBackup(ResultCode::kNoSpace, context));
    ExpectBox(
        "The storage file is full and takes no more states. Its states can be restored as "
        "before.\nPlease choose a new storage file." +
        kError);
    context.automatic = true;
    EXPECT_FALSE(ReportBackup(ResultCode::kNoSpace, context));
}

// The figure of a backup of more than 2 GB is no negative one.
TEST_F(MessagesTest, OfALargeBackup) {
    ReportBackup(ResultCode::kNoSpace, {nullptr, false, false, 3000000000, 0});
    ExpectBox(
        "Not enough disk space to backup. You need to free 3000000000 bytes on the storage card." +
        kError);
}

TEST_F(MessagesTest, OfAnUnattendedRestore) {
    const Row rows[] = {
        {1, kGood, ""},
        {2, kGood, "Difference not found. There is nothing to Restore." + kInformation},
        {3, kBad, ""},
        {4, kBad, "Restore Fail. Probably some files are locked." + kWarning},
        {5, kBad, kJournal},
        {6, kGood, "Storage is empty. There is nothing to Restore." + kInformation},
        {7, kBad, "Restore Fail. Probably your Storage Card Driver is obsolete." + kWarning},
        {8, kBad, kNotStarted},
        {9, kBad, NoMemory("8.0")},
        {10, kBad, ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.code);
        EXPECT_EQ(row.is_good, ReportRestore(nullptr, {Code(row.code)}));
        ExpectBox(row.box);
    }
}

TEST_F(MessagesTest, ADamagedStorageIsToldAsOneInEveryRestore) {
    RestoreResult damaged{ResultCode::kFailed};
    damaged.is_damaged = true;
    const std::string box =
        "Restore Fail. The storage is damaged: some items were left as they are. The log names "
        "them." +
        kWarning;
    EXPECT_FALSE(ReportRestore(nullptr, damaged));
    ExpectBox(box);
    ReportInteractiveRestore(nullptr, damaged);
    ExpectBox(box);
}

TEST_F(MessagesTest, ARestoreThatHadNoRoomSaysHowMuchIsMissing) {
    RestoreResult without_room{ResultCode::kFailed};
    without_room.missing_bytes = 12345;
    EXPECT_FALSE(ReportRestore(nullptr, without_room));
    ExpectBox(
        "Restore Fail. The device lacks 12345 bytes for everything that is to be restored. "
        "Nothing was changed." +
        kWarning);
}

TEST_F(MessagesTest, OfARestoreInTheDialog) {
    for (const int silent : {1, 3, 4, 8}) {
        ReportInteractiveRestore(nullptr, {Code(silent)});
    }
    const struct {
        int code;
        std::string box;
    } rows[] = {
        {2, "Difference not found. There is nothing to Restore." + kInformation},
        {5, kJournal},
        {6, "Storage is empty. There is nothing to Restore." + kInformation},
        {7, "Restore Fail. Probably your Storage Card Driver is obsolete." + kWarning},
        {9, NoMemory("8.0")},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.code);
        ReportInteractiveRestore(nullptr, {Code(row.code)});
        ExpectBox(row.box);
    }
}

TEST_F(MessagesTest, OfAStorageFileThatCannotBeOpened) {
    const std::string texts[] = {
        "",
        "Storage header was not created.",
        "",
        "Storage file is not compatible with your device.",
        "",
        "",
        "This Storage File is not compatible with the Tolvenar version,\nplease use earlier "
        "Tolvenar version.",
        "",
    };
    int result = 0;
    for (const std::string& text : texts) {
        SCOPED_TRACE(result);
        TellWhyNotOpened(static_cast<OpenStorageResult>(result));
        ExpectBox(text.empty() ? "" : text + ", Tolvenar, 65536");
        ++result;
    }
}

}  // namespace
}  // namespace tolvenar
