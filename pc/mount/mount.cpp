#include "pc/mount/mount.h"

#include <CLI/CLI.hpp>
#include <filesystem>

#include "pc/command/json.h"
#include "pc/command/opened.h"
#include "pc/mount/fuse_loop.h"

namespace tolvenar::pc {
namespace {

void Tell(const Options& options, Console& console) {
    if (options.json) {
        Json json;
        json["folder"] = options.folder;
        console.Line(json.dump());
    } else {
        console.Line("The states are in \"" + options.folder + "\". Ctrl-C or umount ends it.");
    }
    // Whoever started this waits for the line.
    if (!console.out.Finish()) {
        throw Failure(ExitCode::kCannot, "the output cannot be written");
    }
}

ExitCode RunMount(const Options& options, Console& console) {
    const std::unique_ptr<StoredPair> pair = OpenWhole(options.storage, console);
    if (!std::filesystem::is_directory(options.folder)) {
        throw Failure(ExitCode::kCannot, options.folder + ": no folder");
    }
    MountedTree tree(*pair);
    bool is_clear_end = false;
    {
        FuseMount mount(tree, options.folder);
        Tell(options, console);
        is_clear_end = mount.Run();
    }
    console.Tell("unmounted");
    return is_clear_end ? ListVerdict(*pair) : ExitCode::kCannot;
}

void AddMountOptions(CLI::App& app, Options& options) {
    AddStorageOfAllStates(app, options);
    app.add_option("FOLDER", options.folder, "an empty folder, where the states are seen")
        ->required();
}

}  // namespace

const Command kMountCommand = {"mount", "shows all states as folders and files to read",
                               "tolvenar mount Home.sav /mnt", AddMountOptions, RunMount};

}  // namespace tolvenar::pc
