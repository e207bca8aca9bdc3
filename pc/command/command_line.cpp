#include "pc/command/command_line.h"

#include <CLI/CLI.hpp>
#include <iterator>
#include <new>

#include "pc/command/completion.h"
#include "pc/command/manual_page.h"
#include "res/version.h"

namespace tolvenar::pc {
namespace {

constexpr const char* kAddressHelp =
    "the storage: its .sav, its .jrn or their common name; \"@STATE\" behind it is a state, by "
    "number, \"last\" or a local time such as 2026-11-16 (the last state made until then); the "
    "last state when it is left away";
constexpr const char* kStorageHelp = "the storage: its .sav, its .jrn or their common name";
constexpr const char* kPatternHelp =
    "which objects: their path, with \"*\" and \"?\", and all below it; a path that begins with "
    "\"/\" may have slashes for backslashes";
constexpr const char* kExitCodes =
    "Exit codes: 0 done, 1 cannot, 2 wrong usage, 3 done but incomplete (what is told), 4 "
    "damaged,\n"
    "5 not a storage. The storage itself is never written to.";

void AddStorage(CLI::App& app, Options& options, const char* help) {
    app.add_option("STORAGE", options.storage, help)->required();
}

void AddStorageAndJson(CLI::App& app, Options& options, const char* help) {
    AddStorage(app, options, help);
    app.add_flag("--json", options.json, "the result as JSON");
}

void AddInfoOptions(CLI::App& app, Options& options) { AddStorageOfAllStates(app, options); }

void AddListOptions(CLI::App& app, Options& options) {
    AddStorageAndJson(app, options, kAddressHelp);
    app.add_option("PATTERN", options.patterns, kPatternHelp);
    app.add_flag("-l,--long", options.is_long, "kind, size and time, too");
}

void AddCatOptions(CLI::App& app, Options& options) {
    AddStorageAndJson(app, options, kAddressHelp);
    app.add_option("OBJECT", options.object, "its path, as ls tells it")->required();
    app.add_flag("--raw", options.raw, "of a value or record the bytes as they are stored");
}

void AddFindOptions(CLI::App& app, Options& options) {
    AddStorageAndJson(app, options, kStorageHelp);
    app.add_option("PATTERN", options.patterns, kPatternHelp)->required();
}

void AddVerifyOptions(CLI::App& app, Options& options) {
    AddStorageAndJson(app, options, kStorageHelp);
    app.add_flag("--all", options.all, "tells of every object, not of the damaged ones alone");
}

void AddExtractOptions(CLI::App& app, Options& options) {
    AddStorageAndJson(app, options, kAddressHelp);
    app.add_option("PATTERN", options.patterns, kPatternHelp);
    app.add_option("-o,--output", options.folder, "the folder, made when it is not there");
    app.add_flag("--dry-run", options.dry_run, "writes nothing and tells what would be written");
}

void AddDiffOptions(CLI::App& app, Options& options) {
    AddStorageAndJson(app, options, kStorageHelp);
    app.add_option("OLDER", options.older, "a state, or 0 for nothing at all")->required();
    app.add_option("NEWER", options.newer, "a state")->required();
    app.add_option(
        "PATTERN", options.patterns,
        std::string("for --flat, --contents and the objects of --json: ") + kPatternHelp);
    app.add_flag("--simple", options.simple, "the tree by documents, applications and databases");
    app.add_flag("--flat", options.flat,
                 "a line for each object: A added, D deleted, C changed, ! damaged");
    app.add_flag("--contents", options.contents, "the same, and the lines that differ");
}

void AddExportOptions(CLI::App& app, Options& options) {
    AddStorageAndJson(app, options, kAddressHelp);
    app.add_option("FORM", options.form,
                   "reg: the registry as a .reg file of version 5; reg4: as one of REGEDIT4, for "
                   "older programs; json: databases with every "
                   "property; csv: one database as a table; vcard3, vcard4: contacts as cards; "
                   "ical: appointments and tasks as a calendar; tar: everything as an archive; "
                   "profile: everything as the folder that a simulated device is made of")
        ->required();
    app.add_option("PATTERN", options.patterns, kPatternHelp);
    app.add_option("-o,--output", options.file, "the file, which must not be there yet");
    app.add_flag("--ids", options.ids, "profile: the object ids, too");
}

void AddTrimOptions(CLI::App& app, Options& options) {
    AddStorageAndJson(app, options, kStorageHelp);
    app.add_option("-o,--output", options.file, "the common name of the new pair")->required();
    app.add_option("--keep", options.keep.states, "these states, with commas between")
        ->delimiter(',');
    app.add_option("--keep-last", options.keep.last, "so many newest states");
    app.add_option("--keep-daily", options.keep.daily,
                   "the last state of each of so many newest days that have one");
    app.add_option("--keep-monthly", options.keep.monthly, "the same of months");
    app.add_flag("--dry-run", options.dry_run, "writes nothing and tells what would be kept");
}

void AddSalvageOptions(CLI::App& app, Options& options) {
    AddStorageAndJson(app, options, kStorageHelp);
    app.add_option("-o,--output", options.file, "the common name of the new pair")->required();
    app.add_flag("--dry-run", options.dry_run, "writes nothing and tells what would be saved");
}

const Command kCommands[] = {
    {"info", "tells what a storage is and which states it holds", "tolvenar info Home.sav",
     AddInfoOptions, RunInfo},
    {"ls", "lists the files, registry and databases of a state",
     "tolvenar ls -l Home.sav@3 '/My Documents' 'HKCU*'", AddListOptions, RunList},
    {"cat", "writes out what a file, value or record of a state holds",
     "tolvenar cat Home.sav@3 '/My Documents/letter.txt'", AddCatOptions, RunCat},
    {"find", "tells in which states an object is, and when it changed",
     "tolvenar find Home.sav '*letter*'", AddFindOptions, RunFind},
    {"verify", "proves the journal, every block and all contents",
     "tolvenar verify Home.sav && echo good", AddVerifyOptions, RunVerify},
    {"extract", "copies the files of a state into a folder",
     "tolvenar extract Home.sav@3 '/My Documents' -o rescued", AddExtractOptions, RunExtract},
    {"diff", "tells what differs between two states",
     "tolvenar diff Home.sav 2 3 --contents '/My Documents'", AddDiffOptions, RunDiff},
    {"export", "gives registry and databases to other programs",
     "tolvenar export Home.sav@3 vcard4 -o contacts.vcf", AddExportOptions, RunExport},
    {"trim", "makes a new storage with only some of the states",
     "tolvenar trim Home.sav --keep-daily 7 --keep-monthly 12 -o small/Home", AddTrimOptions,
     RunTrim},
    {"salvage", "makes a new storage out of one whose journal is lost or damaged",
     "tolvenar salvage Home.sav -o rescued/Home", AddSalvageOptions, RunSalvage},
};

// The forms in which the command line is described for others. The command that gives them is for
// the installation alone, so --help does not tell of it.
struct Description {
    const char* form;
    std::string (*make)(const CLI::App& app);
};
const Description kDescriptions[] = {{"man", ManualPage},
                                     {"bash", BashCompletion},
                                     {"zsh", ZshCompletion},
                                     {"fish", FishCompletion}};
constexpr const char* kDescribe = "describe";

ExitCode Describe(const CLI::App& app, const std::string& form, Console& console) {
    for (const Description& description : kDescriptions) {
        if (form == description.form) {
            console.out.Write(description.make(app));
            return ExitCode::kDone;
        }
    }
    console.Tell("\"" + form + "\" is no form: give man, bash, zsh or fish");
    return ExitCode::kUsage;
}

// The parser's own words for help and errors go where the console says.
int TellOfParser(const CLI::App& app, const CLI::ParseError& error, Console& console) {
    if (error.get_exit_code() == 0) {
        console.out.Write(error.get_name() == "CallForVersion" ? std::string(error.what()) + "\n"
                                                               : app.help());
        return 0;
    }
    console.Tell(std::string(error.what()) + " (--help tells more)");
    return static_cast<int>(ExitCode::kUsage);
}

ExitCode Run(const Command& command, const Options& options, Console& console) {
    try {
        return command.run(options, console);
    } catch (const Failure& failure) {
        console.Tell(failure.what());
        return failure.code;
    } catch (const std::bad_alloc&) {
        console.Tell("there is not enough memory");
    } catch (const std::exception& error) {
        console.Tell(error.what());
    }
    return ExitCode::kCannot;
}

}  // namespace

void AddStorageOfAllStates(CLI::App& app, Options& options) {
    AddStorageAndJson(app, options, kStorageHelp);
}

int RunCommandLine(const std::vector<std::string>& arguments, Console& console,
                   const std::vector<Command>& more) {
    CLI::App app("Reads, checks and uses a storage of Tolvenar on this machine.", "tolvenar");
    app.require_subcommand(1);
    app.allow_windows_style_options(false);  // a path may begin with "/"
    app.footer(kExitCodes);
    app.set_version_flag("--version", "tolvenar " TOLVENAR_VERSION);
    Options options;
    std::vector<Command> commands(std::begin(kCommands), std::end(kCommands));
    commands.insert(commands.end(), more.begin(), more.end());
    for (const Command& command : commands) {
        CLI::App* const subcommand = app.add_subcommand(command.name, command.does);
        subcommand->footer(std::string("Example: ") + command.example + "\n" + kExitCodes);
        command.add_options(*subcommand, options);
    }
    app.add_subcommand(kDescribe)->group("")->add_option("FORM", options.form)->required();
    std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
    try {
        app.parse(reversed);
    } catch (const CLI::ParseError& error) {
        return TellOfParser(app, error, console);
    }
    ExitCode code = ExitCode::kUsage;
    if (app.got_subcommand(kDescribe)) {
        code = Describe(app, options.form, console);
    }
    for (const Command& command : commands) {
        if (app.got_subcommand(command.name)) {
            code = Run(command, options, console);
        }
    }
    if (!console.out.Finish()) {
        console.Tell("the output cannot be written");
        code = ExitCode::kCannot;
    }
    return static_cast<int>(code);
}

}  // namespace tolvenar::pc
