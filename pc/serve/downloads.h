// What a browser saves: contents that were proved, and the forms of an export.
#pragma once

#include "pc/serve/site.h"

namespace tolvenar::pc {

Reply FileDownload(Site& site, const StoredObject& object);

enum class Form { kReg, kJson, kCsv };
// The objects of a state that `root` is or that lie below it, all of them when it is null. What
// cannot be given whole is told first, unless `anyway`.
Reply ExportDownload(Site& site, std::uint16_t state, const StoredObject* root, Form form,
                     const Request& request);

}  // namespace tolvenar::pc
