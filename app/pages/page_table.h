// Which page stands behind which tab.
#pragma once

#include "app/pages/page.h"

namespace tolvenar {

// Makes the page of tab `index`, without its window; null for a page that shares another's, and
// when there is no memory.
std::unique_ptr<Page> MakePage(int index, Application& app, Frame& frame);

// The tab whose page serves tab `index` too.
int OwnerOfPage(int index);

}  // namespace tolvenar
