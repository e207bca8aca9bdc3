// export: a state's registry and databases as files that other programs take.
#include <exception>
#include <filesystem>
#include <fmt/format.h>
#include <functional>

#include "pc/command/commands.h"
#include "pc/command/export_state.h"
#include "pc/command/exports.h"
#include "pc/command/interrupt.h"
#include "pc/command/json.h"
#include "pc/command/object_json.h"
#include "pc/command/opened.h"
#include "pc/storage/folder_writer.h"
#include "pc/storage/object_filter.h"
#include "pc/storage/state_objects.h"
#include "pc/text/utf.h"

namespace tolvenar::pc {
namespace {

using Take = FileSink::Take;

struct Form {
    const char* name;
    // Null of the one that is a folder and no file.
    void (*write)(const ExportJob& job, const Take& take);
};

// A form that is one text in memory.
using MakeText = std::string(StoredPair& pair, const std::vector<StoredObject>& objects,
                             Omissions& omissions);
template <MakeText Make>
void WriteText(const ExportJob& job, const Take& take) {
    take(Make(job.pair, job.objects, job.omissions));
}

constexpr Form kForms[] = {
    {"reg", WriteText<ExportRegistry>},
    {"reg4", WriteText<ExportOldRegistry>},
    {"json", WriteText<ExportDatabases>},
    {"csv", WriteText<ExportTable>},
    {"vcard3", WriteText<ExportCards3>},
    {"vcard4", WriteText<ExportCards4>},
    {"ical", WriteText<ExportCalendar>},
    {"tar", ExportTar},
    {"profile", nullptr},
};

const Form& FindForm(const std::string& name) {
    for (const Form& form : kForms) {
        if (name == form.name) {
            return form;
        }
    }
    std::string names;
    for (const Form& form : kForms) {
        names += (names.empty() ? "" : ", ") + std::string(form.name);
    }
    throw Failure(ExitCode::kUsage, "\"" + name + "\" is no form: give one of " + names);
}

// `write` may end in a Failure; then the file is not there.
void WriteFile(const std::string& file, const std::function<void(const Take& take)>& write) {
    const InterruptWatch watch;
    const std::filesystem::path path = std::filesystem::u8path(file);
    FolderWriter writer(path.has_parent_path() ? path.parent_path().u8string() : ".");
    std::exception_ptr thrown;
    bool is_taken = true;
    const std::string failure =
        writer.WriteFile({path.filename().u8string()}, {}, [&](const Take& take) {
            try {
                write([&](std::string_view bytes) { return is_taken = take(bytes); });
            } catch (...) {
                thrown = std::current_exception();
            }
            return is_taken && !thrown;
        });
    if (thrown && is_taken) {
        std::rethrow_exception(thrown);
    }
    if (!failure.empty()) {
        throw Failure(ExitCode::kCannot, file + ": " + failure);
    }
}

void PrintJson(const Options& options, const ExportJob& job) {
    Json json;
    json["state"] = job.state;
    json["form"] = options.form;
    json["to"] = options.file;
    json["not_exported"] = job.omissions.objects();
    json["notes"] = job.omissions.notes();
    job.console.Line(json.dump(2));
}

}  // namespace

void Omissions::Add(const StoredObject& object, const char* why, ExitCode code) {
    console_.Tell(fmt::format("not exported: {}: {}", Printable(PathOf(object)), why));
    code_ = Graver(code_, code);
    Json told = JsonOf(object);
    told["reason"] = why;
    objects_.push_back(std::move(told));
}

void Omissions::Tell(const std::string& what, ExitCode code) {
    console_.Tell(what);
    code_ = Graver(code_, code);
    notes_.push_back(what);
}

ExitCode RunExport(const Options& options, Console& console) {
    const Form& form = FindForm(options.form);
    if (form.write == nullptr && options.file.empty()) {
        throw Failure(ExitCode::kUsage, "a profile is a folder: name one with -o");
    }
    if (options.json && options.file.empty()) {
        throw Failure(ExitCode::kUsage, "--json tells of the file that -o names");
    }
    const Opened opened = OpenAddress(options.storage, console);
    StoredPair& pair = *opened.pair;
    const ObjectFilter filter(options.patterns);
    Omissions omissions(console);
    std::vector<StoredObject> objects;
    const std::uint16_t state = pair.FindState(opened.state);
    for (StoredObject& object : ObjectsOf(pair, state)) {
        if (object.is_damaged) {
            omissions.Add(object, "its block is damaged", ExitCode::kDamaged);
        } else if (filter.Takes(PathOf(object))) {
            objects.push_back(std::move(object));
        }
    }
    const ExportJob job{pair, state, objects, omissions, console};
    if (form.write == nullptr) {
        ExportProfile(job, options.file, options.ids);
    } else if (options.file.empty()) {
        form.write(job, [&console](std::string_view bytes) {
            console.out.Write(bytes);
            return !console.out.failed();
        });
    } else {
        WriteFile(options.file, [&](const Take& take) { form.write(job, take); });
    }
    if (options.json) {
        PrintJson(options, job);
    }
    return Graver(omissions.code(), ListVerdict(pair));
}

}  // namespace tolvenar::pc
