// The small menu of what the difference tree shows.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/dialog.h"

namespace tolvenar {

class TreeFilterDialog final : private Dialog {
public:
    // Modal. The change state of the items to show, 0 for all; nothing when the user leaves it.
    std::optional<std::uint32_t> Ask(HINSTANCE instance, HWND owner);

private:
    INT_PTR Dispatch(UINT message, WPARAM wparam, LPARAM lparam) override;
    INT_PTR OnInit();
    INT_PTR OnCommand(int id);

    std::optional<std::uint32_t> chosen_;
};

}  // namespace tolvenar
