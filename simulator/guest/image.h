// The program's file, laid out in memory at the address that it was made for.
#pragma once

#include <string>

#include "simulator/guest/guest.h"

namespace sim::guest {

// Stops the program when the file is none, or its addresses are taken.
Image LoadImage(const std::wstring& file);

// The address of an imported function, by DLL and name.
using FindImport = Word(const char* dll, const char* name);
void FillImports(const Image& image, FindImport* find);

}  // namespace sim::guest
