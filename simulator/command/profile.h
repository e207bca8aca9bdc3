// A device as a folder of the host: device.ini (NAME = VALUE settings), registry.reg, files/ and
// card/ with files.json for what the host's files do not tell, databases/*.json,
// notifications.json. Any part may lack.
#pragma once

#include <string>

#include "simulator/store/device.h"

namespace sim {

// Empties the device and fills it from a profile; the card stays as it is when the profile has
// none. Throws std::runtime_error.
void CreateFromProfile(Device& device, const std::string& folder);
void ExportProfile(Device& device, const std::string& folder);

// Sets what stands in the text of a device.ini.
void ApplySettingsText(Device& device, const std::string& text);

}  // namespace sim
