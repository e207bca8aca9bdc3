#include "pc/command/export_state.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>

#include "pc/archive/tar_writer.h"
#include "pc/command/interrupt.h"
#include "pc/command/json.h"
#include "pc/command/progress_line.h"
#include "pc/storage/folder_writer.h"
#include "pc/storage/object_data.h"
#include "pc/storage/safe_names.h"
#include "pc/text/utf.h"

namespace tolvenar::pc {
namespace {

std::string Joined(const std::vector<std::string>& components) {
    std::string path;
    for (const std::string& component : components) {
        path += (path.empty() ? "" : "/") + component;
    }
    return path;
}

std::uint64_t FileBytes(const std::vector<StoredObject>& objects) {
    std::uint64_t bytes = 0;
    for (const StoredObject& object : objects) {
        bytes += object.type() == ObjectType::kFile && object.has_data ? object.data_bytes : 0;
    }
    return bytes;
}

FileTime MomentOf(const ExportJob& job) {
    for (const State& state : job.pair.states()) {
        if (state.number == job.state) {
            return state.made;
        }
    }
    return {};
}

std::string WriteObject(const ExportJob& job, const StoredObject& object,
                        const std::vector<std::string>& place, FileSink& sink) {
    if (object.is_folder()) {
        return sink.MakeFolder(place);
    }
    const std::uint64_t bytes = object.has_data ? object.data_bytes : 0;
    return sink.WriteFile(place, object.time, bytes, [&](const FileSink::Take& take) {
        return StreamData(job.pair, object, [&take](std::string_view piece) {
            return !IsInterrupted() && take(piece);
        });
    });
}

enum class Renamed { kIsTaken, kIsLeftOut };

class FilesExport {
public:
    FilesExport(const ExportJob& job, FileSink& sink, Renamed renamed)
        : job_(job), sink_(sink), renamed_(renamed) {}

    void Run() {
        const InterruptWatch watch;
        ProgressLine progress(job_.console, "export", FileBytes(job_.objects));
        for (const StoredObject& object : job_.objects) {
            if (object.type() == ObjectType::kFile) {
                Add(object);
                progress.Add(object.has_data ? object.data_bytes : 0);
            }
            if (IsInterrupted()) {
                throw Failure(ExitCode::kCannot, "interrupted");
            }
        }
    }
    // What is there now.
    const std::vector<const StoredObject*>& done() const { return done_; }

private:
    void Add(const StoredObject& object) {
        SafePath place = names_.Place(object.name, object.is_folder());
        if (object.is_in_rom()) {
            job_.omissions.Add(object, "a file of the device's ROM: no storage has its contents",
                               ExitCode::kIncomplete);
        } else if (!object.is_folder() && !DataAreSound(job_.pair, object)) {
            job_.omissions.Add(object, "its contents are damaged", ExitCode::kDamaged);
        } else if (place.is_renamed && renamed_ == Renamed::kIsLeftOut) {
            job_.omissions.Add(object, "not every machine takes its name", ExitCode::kIncomplete);
        } else {
            Write(object, std::move(place));
        }
    }
    void Write(const StoredObject& object, SafePath place) {
        if (place.is_renamed) {
            job_.omissions.Tell(
                fmt::format("renamed: {} -> {}", Printable(object.name), Joined(place.components)),
                ExitCode::kDone);
        }
        place.components.insert(place.components.begin(), "files");
        const std::string failure = WriteObject(job_, object, place.components, sink_);
        if (failure.empty()) {
            done_.push_back(&object);
        } else {
            job_.omissions.Add(object, failure.c_str(), ExitCode::kCannot);
        }
    }

    const ExportJob& job_;
    FileSink& sink_;
    const Renamed renamed_;
    SafeNames names_;
    std::vector<const StoredObject*> done_;
};

void WriteText(const std::vector<std::string>& place, const std::string& text, FileTime time,
               FileSink& sink) {
    const std::string failure = sink.WriteFile(
        place, time, text.size(), [&text](const FileSink::Take& take) { return take(text); });
    if (!failure.empty()) {
        throw Failure(ExitCode::kCannot, Joined(place) + ": " + failure);
    }
}

class FolderSink final : public FileSink {
public:
    explicit FolderSink(const std::string& folder) : writer_(folder) {}

    std::string MakeFolder(const std::vector<std::string>& components) override {
        return writer_.MakeFolder(components);
    }
    std::string WriteFile(const std::vector<std::string>& components, FileTime time, std::uint64_t,
                          const Fill& fill) override {
        return writer_.WriteFile(components, time, fill);
    }

private:
    FolderWriter writer_;
};

std::string DeviceText(const StorageHeader& head) {
    return fmt::format("processor = {}\nos.version = {}.{}\n", head.processorType, head.osMajor,
                       head.osMinor);
}

Json FileRows(const std::vector<const StoredObject*>& files) {
    Json rows = Json::object();
    for (const StoredObject* file : files) {
        Json& row = rows[ToUtf8(file->name)];
        row["attributes"] = file->attributes();
        if (!file->is_folder()) {
            row["modified"] = file->time.ticks;
        }
    }
    return rows;
}

Json IdsOf(const ExportJob& job, const std::vector<const StoredObject*>& files) {
    std::uint32_t last = 0;
    for (const StoredObject& object : job.objects) {
        last = std::max(last, object.record.dwOID);
    }
    Json ids;
    ids["next"] = last + 1;
    ids["files"] = Json::object();
    for (const StoredObject* file : files) {
        ids["files"][ToUtf8(file->name)] = file->record.dwOID;
    }
    return ids;
}

}  // namespace

void ExportTar(const ExportJob& job, const FileSink::Take& take) {
    const FileTime made = MomentOf(job);
    TarWriter tar(take, made);
    FilesExport(job, tar, Renamed::kIsTaken).Run();
    WriteText({"registry.reg"}, ExportRegistry(job.pair, job.objects, job.omissions), made, tar);
    WriteText({"databases.json"}, ExportDatabases(job.pair, job.objects, job.omissions), made, tar);
    tar.Finish();
}

void ExportProfile(const ExportJob& job, const std::string& folder, bool with_ids) {
    if (std::filesystem::exists(folder) && !std::filesystem::is_empty(folder)) {
        throw Failure(ExitCode::kCannot, folder + ": something is there already");
    }
    FolderSink sink(folder);
    FilesExport files(job, sink, Renamed::kIsLeftOut);
    files.Run();
    WriteText({"files.json"}, FileRows(files.done()).dump(1) + "\n", {}, sink);
    WriteText({"registry.reg"}, ExportRegistry(job.pair, job.objects, job.omissions), {}, sink);
    WriteText({"databases", "all.json"}, ExportDatabases(job.pair, job.objects, job.omissions), {},
              sink);
    WriteText({"device.ini"}, DeviceText(job.pair.header()), {}, sink);
    if (with_ids) {
        WriteText({"ids.json"}, IdsOf(job, files.done()).dump(1) + "\n", {}, sink);
    }
}

}  // namespace tolvenar::pc
