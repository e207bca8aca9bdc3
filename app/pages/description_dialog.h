// The dialog that asks for a new storage's description.
#pragma once

#include "app/operations/application.h"
#include "platform/dialog.h"
#include "storage/opened/storage_file.h"

namespace tolvenar {

class DescriptionDialog final : public DescriptionPrompt, private Dialog {
public:
    explicit DescriptionDialog(const Application& app) : app_(app) {}

    // Modal. True only when OK was pressed: a loop that the program's end ends answers the same.
    bool AskDescription(const char16_t* proposed, char16_t (&answer)[kMaxDescriptionUnits],
                        std::size_t& units) override;

private:
    INT_PTR Dispatch(UINT message, WPARAM wparam, LPARAM lparam) override;
    INT_PTR OnInit();
    INT_PTR OnCommand(int id);

    const Application& app_;
    const char16_t* proposed_ = nullptr;
    char16_t* answer_ = nullptr;
    std::size_t units_ = 0;
    bool is_confirmed_ = false;
};

}  // namespace tolvenar
