// The registry as REGEDIT4 text: what `registry.reg` of a profile, `reg-import` and `reg-export`
// hold.
//   REGEDIT4                       the first line; version 5.00's is taken too
//   [HKEY_…\key]  [-HKEY_…\key]    a key is made; is deleted with everything below it
//   "name"="text"  @="text"        REG_SZ, \\ and \" escaped; @ is the value without a name
//   "name"=dword:0000002a          REG_DWORD
//   "name"=hex:01,02,\             REG_BINARY; a backslash at the end continues the line
//   "name"=hex(7):41,00,00,00      any type by its number, in hexadecimal
//   "name"=-                       the value is deleted
//   ; …                            a comment
#pragma once

#include <string>
#include <string_view>

#include "simulator/registry/registry.h"

namespace sim::registry {

// Takes the text over as one change. UTF-16 with or without a byte order mark, UTF-8, or code page
// 1252. Throws std::runtime_error with the line's number when the text is damaged; then nothing was
// changed.
void ImportText(Device& device, std::string_view bytes);

// Every key with its values, in the order of their names: REGEDIT4 in UTF-8, lines ended by CR LF.
// Texts that the quoted form cannot carry stand as hex(1).
std::string ExportText(Device& device);

}  // namespace sim::registry
