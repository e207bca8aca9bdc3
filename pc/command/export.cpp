// export: a state's registry and databases as files that other programs take.
#include <filesystem>
#include <fmt/format.h>

#include "pc/command/commands.h"
#include "pc/command/exports.h"
#include "pc/command/interrupt.h"
#include "pc/command/opened.h"
#include "pc/storage/folder_writer.h"
#include "pc/storage/object_filter.h"
#include "pc/storage/state_objects.h"
#include "pc/text/utf.h"

namespace tolvenar::pc {
namespace {

struct Form {
    const char* name;
    std::string (*make)(StoredPair& pair, const std::vector<StoredObject>& objects,
                        Omissions& omissions);
};
constexpr Form kForms[] = {
    {"reg", ExportRegistry}, {"json", ExportDatabases}, {"csv", ExportTable}};

const Form& FindForm(const std::string& name) {
    for (const Form& form : kForms) {
        if (name == form.name) {
            return form;
        }
    }
    throw Failure(ExitCode::kUsage, "\"" + name + "\" is no form: give reg, json or csv");
}

void WriteOut(const std::string& bytes, const std::string& file, Console& console) {
    if (file.empty()) {
        console.out.Write(bytes);
        return;
    }
    const InterruptWatch watch;
    const std::filesystem::path path = std::filesystem::u8path(file);
    FolderWriter writer(path.has_parent_path() ? path.parent_path().u8string() : ".");
    const std::string failure =
        writer.WriteFile({path.filename().u8string()}, {},
                         [&bytes](const FolderWriter::Take& take) { return take(bytes); });
    if (!failure.empty()) {
        throw Failure(ExitCode::kCannot, file + ": " + failure);
    }
}

}  // namespace

void Omissions::Add(const StoredObject& object, const char* why, ExitCode code) {
    console_.Tell(fmt::format("not exported: {}: {}", Printable(PathOf(object)), why));
    code_ = Graver(code_, code);
}

ExitCode RunExport(const Options& options, Console& console) {
    const Form& form = FindForm(options.form);
    const Opened opened = OpenAddress(options.storage, console);
    StoredPair& pair = *opened.pair;
    const ObjectFilter filter(options.patterns);
    Omissions omissions(console);
    std::vector<StoredObject> objects;
    for (StoredObject& object : ObjectsOf(pair, pair.FindState(opened.state))) {
        if (object.is_damaged) {
            omissions.Add(object, "its block is damaged", ExitCode::kDamaged);
        } else if (filter.Takes(PathOf(object))) {
            objects.push_back(std::move(object));
        }
    }
    WriteOut(form.make(pair, objects, omissions), options.file, console);
    return Graver(omissions.code(), ListVerdict(pair));
}

}  // namespace tolvenar::pc
