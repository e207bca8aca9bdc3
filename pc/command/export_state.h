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

}  // namespace tolvenar::pc
