// export tar and profile: a whole state, as files that lie in an archive or in a folder.
#pragma once

#include "pc/command/exports.h"
#include "pc/storage/file_sink.h"

namespace tolvenar::pc {

// Into an archive that is written as it comes to `take`:
//   files/My Documents/a.txt   the files, under names that any PC takes
//   registry.reg               as export reg
//   databases.json             as export json
void ExportTar(const ExportJob& job, const FileSink::Take& take);

// Into a folder that is not there yet, or empty: what a simulated device is made of.
//   files/, files.json      the files, and what of them a file of this machine cannot say
//   registry.reg            as export reg
//   databases/all.json      as export json
//   device.ini              processor and system
//   ids.json                when it is asked for: object ids
// A name that is not the device's own on every machine is left out and told.
void ExportProfile(const ExportJob& job, const std::string& folder, bool with_ids);

}  // namespace tolvenar::pc
