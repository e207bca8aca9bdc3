// Finds items of the difference tree by letters of their captions, also in branches that are
// closed.
#pragma once

#include "platform/win32.h"

namespace tolvenar {

class TreeSearch {
public:
    // Takes a typed character at `time`, which goes on with what was typed just before, and selects
    // the first item from the selected one on that contains all of it. False for a character that
    // begins no search.
    bool OnCharacter(HWND tree_view, wchar_t character, DWORD time);
    // Selects the next item that contains what was typed last.
    void FindNext(HWND tree_view) const;

private:
    static constexpr int kSearchUnits = 64;

    void Find(HWND tree_view, bool with_selected) const;

    wchar_t text_[kSearchUnits] = L"";
    int length_ = 0;
    DWORD last_time_ = 0;
};

}  // namespace tolvenar
