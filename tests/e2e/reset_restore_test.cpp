// A device that was reset and has the program installed again, which restores it and runs
// meanwhile.
#include "tests/support/contents.h"
#include "tests/support/program_test.h"

namespace tests {
namespace {

const std::wstring kFolder = L"\\Program Files\\Tolvenar";
const std::wstring kLetter = L"\\My Documents\\letter.txt";

class ResetRestoreTest : public ProgramTest {
protected:
    // The installation as it was, in every file and time, under new ids.
    void InstallAnew() {
        const DeviceImage image = ImageOf(device().sim());
        device().Remove(kFolder);
        device().Set("oid.next", "70000");
        for (const auto& [path, file] : image.files) {
            if (path.compare(0, kFolder.size(), kFolder) != 0) {
                continue;
            }
            if (file.is_folder) {
                device().MakeFolder(path);
            } else {
                device().PutFile(path, file.bytes);
                device().Touch(path, file.modified);
            }
            device().SetAttributes(path, file.attributes);
        }
    }
};

TEST_F(ResetRestoreTest, TheProgramThatRunsIsAsStoredAndTheRestoreEndsWell) {
    device().PutFile(kLetter, "Dear reader");
    ASSERT_EQ(0, BackUp());
    const Contents stored = ContentsOf(device().sim());
    InstallAnew();
    device().Remove(kLetter);
    EXPECT_EQ(0, RestoreLast());
    EXPECT_EQ(Texts(), Differences(stored, ContentsOf(device().sim())));
    const std::string journal = device().FileBytes(kJournalFile);
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(journal, device().FileBytes(kJournalFile));
    EXPECT_EQ(Numbers{1}, States());
}

}  // namespace
}  // namespace tests
