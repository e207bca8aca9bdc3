// The small menu of what the difference tree shows.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/dialog.h"

namespace tolvenar {

class TreeFilterDialog final : private Dialog {
public:
    // Modal. The kind of items to show (kShow..., a change state); nothing when the user leaves it.
    // Without `has_failed` there are none that failed to choose.
    std::optional<std::uint32_t> Ask(HINSTANCE instance, HWND owner, bool has_failed);

private:
    INT_PTR Dispatch(UINT message, WPARAM wparam, LPARAM lparam) override;
    INT_PTR OnInit();
    INT_PTR OnCommand(int id);

    std::optional<std::uint32_t> chosen_;
    bool has_failed_ = false;
};

}  // namespace tolvenar
