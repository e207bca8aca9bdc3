// Windows CE's dialogs are of the class "Dialog", the host's of #32770, and the host's message
// boxes are of #32770 too. A dialog template that names no class is therefore given one.
#pragma once

#include <cstdint>
#include <vector>

namespace sim::windows {

inline constexpr wchar_t kDialogClass[] = L"Dialog";
inline constexpr wchar_t kHostDialogClass[] = L"#32770";

// A copy of the dialog template at `bytes`, old or extended form, which names the class "Dialog"
// where it named none. The template is well formed, as the platform demands of its caller.
std::vector<std::uint8_t> WithDialogClass(const void* bytes);

}  // namespace sim::windows
