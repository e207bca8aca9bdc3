// The pages of a site.
#pragma once

#include <string>
#include <vector>

#include "pc/serve/site.h"

namespace tolvenar::pc {

Reply OverviewPage(Site& site);
Reply StatePage(Site& site, std::uint16_t state);
// A state 0 is empty.
Reply ChangesPage(Site& site, std::uint16_t older, std::uint16_t newer);
Reply ObjectPage(Site& site, std::uint16_t state, const StoredObject& object);
// Tells what is missing in a download and lets the rest be taken all the same.
Reply MissingPage(const std::vector<std::string>& missing, const std::string& address);
// A few words in the place of a page.
Reply ErrorPage(int status, const std::string& told);

}  // namespace tolvenar::pc
