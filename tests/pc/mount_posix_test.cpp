// mount: what its operations give, and the file system itself where the system lets it be mounted.
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include "pc/mount/mounted_tree.h"
#include "pc/text/utf.h"
#include "tests/pc/child.h"
#include "tests/pc/hostile_pair.h"
#include "tests/pc/pc_test.h"

namespace tolvenar::pc {
namespace {

using Names = std::vector<std::string>;

class MountTest : public ThreeStatesTest {
protected:
    MountedTree& Tree() {
        if (tree_ == nullptr) {
            Save();
            opened_ = std::make_unique<StoredPair>(FindPair(In("Home.sav")));
            tree_ = std::make_unique<MountedTree>(*opened_);
        }
        return *tree_;
    }
    Names List(const std::string& path) {
        Names names;
        EXPECT_EQ(0, Tree().List(path, names)) << path;
        return names;
    }
    FileAttributes Look(const std::string& path) {
        FileAttributes attributes;
        EXPECT_EQ(0, Tree().Look(path, attributes)) << path;
        return attributes;
    }
    int Open(const std::string& path) {
        std::unique_ptr<OpenedFile> file;
        return Tree().Open(path, file);
    }
    // The contents, read seven bytes at a time; as many as were told before.
    Bytes ReadFile(const std::string& path) {
        std::unique_ptr<OpenedFile> file;
        EXPECT_EQ(0, Tree().Open(path, file)) << path;
        Bytes contents;
        std::string piece = "first";
        while (file != nullptr && !piece.empty()) {
            EXPECT_EQ(0, file->Read(contents.size(), 7, piece));
            contents += piece;
        }
        EXPECT_EQ(contents.size(), Look(path).bytes) << path;
        return contents;
    }

    std::unique_ptr<StoredPair> opened_;
    std::unique_ptr<MountedTree> tree_;
};

TEST_F(MountTest, StatesAreFolders) {
    EXPECT_EQ((Names{"State 1", "State 2", "State 3"}), List("/"));
    EXPECT_EQ((Names{"Databases", "Files", "Registry"}), List("/State 2"));
    EXPECT_TRUE(Look("/").is_folder);
    EXPECT_EQ(kTime + kHour, Look("/State 2").time.ticks);
}

TEST_F(MountTest, FilesHaveTheirContentsSizesAndTimes) {
    EXPECT_EQ((Names{"letter.txt", "notes.txt"}), List("/State 1/Files/My Documents"));
    EXPECT_EQ((Names{"letter.txt", "plan.txt"}), List("/State 3/Files/My Documents"));
    EXPECT_EQ("Dear Ann", ReadFile("/State 1/Files/My Documents/letter.txt"));
    EXPECT_EQ("Dear Ann, bye", ReadFile("/State 2/Files/My Documents/letter.txt"));
    EXPECT_EQ("", ReadFile("/State 3/Files/My Documents/plan.txt"));
    EXPECT_EQ(kTime + kHour, Look("/State 3/Files/My Documents/letter.txt").time.ticks);
}

TEST_F(MountTest, KeysAreFoldersOfValues) {
    const std::string key = "/State 2/Registry/HKCU/Software/Notes";
    EXPECT_EQ((Names{"Font.txt", "values.reg"}), List(key));
    EXPECT_EQ("Courier\n", ReadFile(key + "/Font.txt"));
    EXPECT_EQ(Run({"export", "HOME@2", "reg"}).out, ReadFile(key + "/values.reg"));
}

TEST_F(MountTest, DatabasesAreFoldersOfRecords) {
    const std::string database = "/State 1/Databases/Contacts Database";
    EXPECT_EQ((Names{"33.json", "33.txt"}), List(database));
    EXPECT_EQ(Run({"cat", "HOME@1", "db:Contacts Database#33"}).out,
              ReadFile(database + "/33.txt"));
    EXPECT_EQ(Run({"export", "HOME@1", "json"}).out, ReadFile(database + "/33.json"));
    EXPECT_EQ(Names(), List("/State 3/Databases/Contacts Database"));
}

TEST_F(MountTest, WhatIsNotThereIsNotThere) {
    FileAttributes attributes;
    Names names;
    for (const char* path :
         {"/State 4", "/State", "/State 1/x", "/State 1/Files/..", "/x/y",
          "/State 1/Files/My Documents/letter.txt/x", "/State 01", "/State 1/"}) {
        EXPECT_EQ(ENOENT, Tree().Look(path, attributes)) << path;
        EXPECT_EQ(ENOENT, Tree().List(path, names)) << path;
        EXPECT_EQ(ENOENT, Open(path)) << path;
    }
    EXPECT_EQ(ENOTDIR, Tree().List("/State 1/Files/My Documents/letter.txt", names));
    EXPECT_EQ(EISDIR, Open("/State 1/Files"));
    EXPECT_EQ(EISDIR, Open("/"));
}

TEST_F(MountTest, DamagedContentsAreAnErrorAndNoOtherBytes) {
    pair.sav[pair.sav.find("Dear Ann, bye")] ^= 1;
    pair.sav[pair.sav.find(Units(u"Courier"))] ^= 1;
    EXPECT_EQ(EIO, Open("/State 2/Files/My Documents/letter.txt"));
    EXPECT_EQ(EIO, Open("/State 2/Registry/HKCU/Software/Notes/Font.txt"));
    EXPECT_EQ(EIO, Open("/State 2/Registry/HKCU/Software/Notes/values.reg"));
    EXPECT_EQ("Dear Ann", ReadFile("/State 1/Files/My Documents/letter.txt"));
    EXPECT_EQ("Tahoma\n", ReadFile("/State 1/Registry/HKCU/Software/Notes/Font.txt"));
}

TEST_F(MountTest, ADamagedRecordIsAnErrorInBothForms) {
    const ObjectRecord record = pair.AddRecord(u"Contacts Database", 9, 0x22);
    pair.sav[record.data_offset + 8] ^= 1;
    EXPECT_EQ(EIO, Open("/State 3/Databases/Contacts Database/34.txt"));
    EXPECT_EQ(EIO, Open("/State 3/Databases/Contacts Database/34.json"));
}

TEST_F(MountTest, WhatLostItsNameCannotBeOpened) {
    const std::size_t name = pair.sav.find(Units(u"plan.txt"));
    pair.sav[name] ^= 1;
    const Names damaged = List("/State 3/Damaged");
    ASSERT_EQ(1u, damaged.size());
    EXPECT_EQ(EIO, Open("/State 3/Damaged/" + damaged[0]));
    EXPECT_EQ((Names{"letter.txt"}), List("/State 3/Files/My Documents"));
}

TEST_F(MountTest, AFileOfTheRomHasNoContents) {
    pair.BeginState();
    pair.AddRomFile(u"\\Windows\\notes.exe", 0x50);
    EXPECT_EQ((Names{"notes.exe"}), List("/State 4/Files/Windows"));
    EXPECT_EQ(ENODATA, Open("/State 4/Files/Windows/notes.exe"));
}

TEST_F(MountTest, NoNameIsAWayOut) {
    AddHostileState(pair);
    std::vector<std::string> folders = {"/State 4"};
    std::size_t files = 0;
    while (!folders.empty()) {
        const std::string folder = folders.back();
        folders.pop_back();
        for (const std::string& name : List(folder)) {
            EXPECT_TRUE(name != "." && name != ".." && name.find('/') == name.npos) << name;
            const std::string path = folder + "/" + name;
            if (Look(path).is_folder) {
                folders.push_back(path);
            } else {
                ReadFile(path);
                ++files;
            }
        }
    }
    // Of state 3 the letter, the plan and the font's two; of this one four files, and two of a
    // value and of a record each.
    EXPECT_EQ(12u, files);
    EXPECT_EQ("away", ReadFile("/State 4/Files/__/__/_CON.txt"));
}

TEST_F(MountTest, NoValueHidesAnother) {
    pair.BeginState();
    pair.AddValue(u"V", u"a\\b", Terminated(u"backslash"), 1);
    pair.AddValue(u"V", u"a\uFF3Cb", Terminated(u"wide"), 1);
    pair.AddValue(u"V", u"", Terminated(u"nameless"), 1);
    pair.AddValue(u"V", u"(Default)", Terminated(u"named"), 1);
    pair.AddKey(u"V\\values.reg");
    std::vector<std::string> said;
    for (const std::string& name : List("/State 4/Registry/HKCU/V")) {
        const std::string path = "/State 4/Registry/HKCU/V/" + name;
        if (!Look(path).is_folder && name.find(".txt") != name.npos) {
            said.push_back(ReadFile(path));
        }
    }
    std::sort(said.begin(), said.end());
    EXPECT_EQ((Names{"backslash\n", "named\n", "nameless\n", "wide\n"}), said);
}

// The program as a process, in a folder of the system.
class RealMountTest : public MountTest {
protected:
    void SetUp() override { std::filesystem::create_directory(In("mnt")); }
    std::vector<std::string> Arguments() const {
        return {"mount", In("Home.sav"), In("mnt"), "--json"};
    }
    // A container may have the device and no right to mount.
    bool MayMount() const {
        const int device = ::open("/dev/fuse", O_RDWR | O_CLOEXEC);
        ::close(device);
        const std::string folder = In("mnt");
        return device >= 0 && ::mount("none", folder.c_str(), "tmpfs", 0, nullptr) == 0 &&
               ::umount(folder.c_str()) == 0;
    }
    int OpenAt(const std::string& path, int flags) const {
        const int file = ::open(In("mnt/" + path).c_str(), flags, 0666);
        const int failure = file < 0 ? errno : 0;
        ::close(file);
        return failure;
    }
};

TEST_F(RealMountTest, TheSystemReadsIt) {
    if (!MayMount()) {
        GTEST_SKIP() << "/dev/fuse does not open";
    }
    pair.sav[pair.sav.find("Dear Ann, bye")] ^= 1;
    Save();
    const Child child(Arguments(), In("told"));
    ASSERT_NE("", child.ReadLine()) << Read("told");
    EXPECT_EQ("Dear Ann", Read("mnt/State 1/Files/My Documents/letter.txt"));
    EXPECT_EQ("Tahoma\n", Read("mnt/State 1/Registry/HKCU/Software/Notes/Font.txt"));
    struct stat status {};
    EXPECT_EQ(0, ::stat(In("mnt/State 1/Files/My Documents/letter.txt").c_str(), &status));
    EXPECT_EQ(1794803590, status.st_mtim.tv_sec);
    EXPECT_EQ(EIO, OpenAt("State 2/Files/My Documents/letter.txt", O_RDONLY));
    EXPECT_EQ(EROFS, OpenAt("State 1/Files/My Documents/letter.txt", O_RDWR));
    EXPECT_EQ(EROFS, OpenAt("State 1/Files/new.txt", O_WRONLY | O_CREAT));
    child.Interrupt();
    EXPECT_EQ(0, child.End());
    EXPECT_EQ("tolvenar: unmounted\n", Read("told"));
    EXPECT_TRUE(std::filesystem::is_empty(In("mnt")));
}

TEST_F(RealMountTest, UnmountingEndsIt) {
    if (!MayMount()) {
        GTEST_SKIP() << "/dev/fuse does not open";
    }
    const Child child(Arguments(), In("told"));
    ASSERT_NE("", child.ReadLine()) << Read("told");
    EXPECT_EQ(0, ::umount(In("mnt").c_str()));
    EXPECT_EQ(0, child.End());
}

TEST_F(RealMountTest, WithoutAFolderItCannot) {
    EXPECT_EQ(1, Run({"mount", "HOME", In("nowhere")}).code);
}

}  // namespace
}  // namespace tolvenar::pc
