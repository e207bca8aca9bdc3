#include "pc/command/export_state.h"

#include <fmt/format.h>

#include "pc/archive/tar_writer.h"
#include "pc/command/interrupt.h"
#include "pc/command/progress_line.h"
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

void ExportFile(const ExportJob& job, const StoredObject& object, SafeNames& names,
                FileSink& sink) {
    SafePath place = names.Place(object.name, object.is_folder());
    if (object.is_in_rom()) {
        job.omissions.Add(object, "a file of the device's ROM: no storage has its contents",
                          ExitCode::kIncomplete);
        return;
    }
    if (!object.is_folder() && !DataAreSound(job.pair, object)) {
        job.omissions.Add(object, "its contents are damaged", ExitCode::kDamaged);
        return;
    }
    if (place.is_renamed) {
        job.omissions.Tell(
            fmt::format("renamed: {} -> {}", Printable(object.name), Joined(place.components)),
            ExitCode::kDone);
    }
    place.components.insert(place.components.begin(), "files");
    const std::string failure = WriteObject(job, object, place.components, sink);
    if (!failure.empty()) {
        job.omissions.Add(object, failure.c_str(), ExitCode::kCannot);
    }
}

void ExportFiles(const ExportJob& job, FileSink& sink) {
    const InterruptWatch watch;
    ProgressLine progress(job.console, "export", FileBytes(job.objects));
    SafeNames names;
    for (const StoredObject& object : job.objects) {
        if (object.type() == ObjectType::kFile) {
            ExportFile(job, object, names, sink);
            progress.Add(object.has_data ? object.data_bytes : 0);
        }
        if (IsInterrupted()) {
            throw Failure(ExitCode::kCannot, "interrupted");
        }
    }
}

void WriteText(const std::string& name, const std::string& text, FileTime time, FileSink& sink) {
    const std::string failure = sink.WriteFile(
        {name}, time, text.size(), [&text](const FileSink::Take& take) { return take(text); });
    if (!failure.empty()) {
        throw Failure(ExitCode::kCannot, name + ": " + failure);
    }
}

}  // namespace

void ExportTar(const ExportJob& job, const FileSink::Take& take) {
    const FileTime made = MomentOf(job);
    TarWriter tar(take, made);
    ExportFiles(job, tar);
    WriteText("registry.reg", ExportRegistry(job.pair, job.objects, job.omissions), made, tar);
    WriteText("databases.json", ExportDatabases(job.pair, job.objects, job.omissions), made, tar);
    tar.Finish();
}

}  // namespace tolvenar::pc
