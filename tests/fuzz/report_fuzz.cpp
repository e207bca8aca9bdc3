// report, and all that a mounted storage shows, of a storage whose two files hold anything behind a
// sound head: 16 bits tell how much of the input is the journal, the rest are blocks. Whatever is
// there, no name of it becomes a tag.
#include "pc/mount/mounted_tree.h"
#include "pc/report/report.h"
#include "pc/text/failure.h"
#include "tests/fuzz/fuzz_source.h"
#include "tests/support/temporary_folder.h"

using namespace tolvenar;

namespace {

std::size_t CountOf(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = 0; (at = text.find(part, at)) != text.npos; at += part.size()) {
        ++count;
    }
    return count;
}

void ReadAll(pc::MountedTree& tree, const std::string& folder) {
    std::vector<std::string> names;
    tree.List(folder, names);
    for (const std::string& name : names) {
        Require(!name.empty() && name != "." && name != ".." && name.find('/') == name.npos);
        const std::string path = (folder == "/" ? "" : folder) + "/" + name;
        pc::FileAttributes attributes;
        Require(tree.Look(path, attributes) == 0);
        if (attributes.is_folder) {
            ReadAll(tree, path);
            continue;
        }
        std::unique_ptr<pc::OpenedFile> file;
        std::string piece;
        if (tree.Open(path, file) == 0) {
            Require(file->Read(0, attributes.bytes, piece) != 0 ||
                    piece.size() == attributes.bytes);
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const tests::TemporaryFolder folder;
    FuzzInput input(data, size);
    const std::uint16_t journal_bytes = input.Half();
    folder.Write("Home.jrn", input.TakeBytes(journal_bytes));
    folder.Write("Home.sav", Head(u"Handheld", 1) + input.Rest());

    pc::TextOutput out;
    pc::TextOutput err;
    pc::Console console{out, err};
    const int code =
        pc::RunCommandLine({"report", folder.In("Home")}, console, {pc::kReportCommand});
    Require(code == 0 || code == 4);
    Require(out.text.empty() || CountOf(out.text, "<style>") == 1);
    Require(out.text.find("<script") == out.text.npos && out.text.find("<img") == out.text.npos);
    try {
        pc::StoredPair pair(pc::FindPair(folder.In("Home")));
        pc::MountedTree tree(pair);
        ReadAll(tree, "/");
    } catch (const pc::Failure&) {
    }
    return 0;
}
