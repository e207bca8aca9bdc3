// What a command is asked for, and the commands. Each writes to the console and tells how it ended;
// what ends it early is a Failure.
#pragma once

#include <string>
#include <vector>

#include "pc/command/console.h"
#include "pc/storage/kept_states.h"
#include "pc/text/failure.h"

namespace tolvenar::pc {

struct Options {
    std::string storage;  // with or without "@STATE"
    bool json = false;
    std::vector<std::string> patterns;  // of objects
    std::string object;                 // cat: its path
    bool is_long = false;               // ls: kind, size and time, too
    bool all = false;                   // verify: what is whole, too
    std::string folder = ".";           // extract: where the files go; mount: where the states are
    bool dry_run = false;               // extract, trim, salvage: tells what would be done
    std::string older;                  // diff: the states
    std::string newer;
    bool simple = false;    // diff: the tree by documents and applications
    bool flat = false;      // diff: one line for each object
    bool contents = false;  // diff: what changed in them, too
    std::string form;       // export
    std::string file;       // export, report: nothing for the output; trim, salvage: the new pair
    bool ids = false;       // export: object ids, too
    KeepRules keep;         // trim
    bool raw = false;       // cat: the bytes that are stored
    int port = 0;           // serve: 0 for one that is free
};

ExitCode RunInfo(const Options& options, Console& console);
ExitCode RunList(const Options& options, Console& console);
ExitCode RunCat(const Options& options, Console& console);
ExitCode RunFind(const Options& options, Console& console);
ExitCode RunVerify(const Options& options, Console& console);
ExitCode RunExtract(const Options& options, Console& console);
ExitCode RunDiff(const Options& options, Console& console);
ExitCode RunExport(const Options& options, Console& console);
ExitCode RunTrim(const Options& options, Console& console);
ExitCode RunSalvage(const Options& options, Console& console);

}  // namespace tolvenar::pc
