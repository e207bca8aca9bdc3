// The dialog that asks for a new storage's description.
#pragma once

#include "app/operations/application.h"
#include "storage/opened/storage_file.h"

namespace tolvenar {

class DescriptionDialog final : public DescriptionPrompt {
public:
    explicit DescriptionDialog(const Application& app) : app_(app) {}

    // Modal. True only when OK was pressed: a loop that the program's end ends answers the same.
    bool AskDescription(const char16_t* proposed, char16_t (&answer)[kMaxDescriptionUnits],
                        std::size_t& units) override;

private:
    static INT_PTR CALLBACK DialogProcedure(HWND, UINT, WPARAM, LPARAM);
    INT_PTR OnInit(HWND window);
    INT_PTR OnCommand(HWND window, int id);

    const Application& app_;
    const char16_t* proposed_ = nullptr;
    char16_t* answer_ = nullptr;
    std::size_t units_ = 0;
    bool is_confirmed_ = false;
};

}  // namespace tolvenar
