#include "app/pages/preview_panel.h"

#include "app/operations/messages.h"
#include "app/operations/requests.h"
#include "res/resource.h"

namespace tolvenar {
namespace {

constexpr std::uint64_t kKilobyte = 0x400;
constexpr std::uint64_t kMegabyte = 0x100000;
constexpr int kFigureUnits = 24;
using Figure = wchar_t[kFigureUnits];

// Rounded up: what is said to be enough is enough.
void PutSize(std::uint64_t bytes, Figure& text) {
    if (bytes < kMegabyte) {
        ::wsprintfW(text, L"%u KB", static_cast<unsigned>((bytes + kKilobyte - 1) / kKilobyte));
        return;
    }
    const auto tenths = static_cast<unsigned>((bytes * 10 + kMegabyte - 1) / kMegabyte);
    ::wsprintfW(text, L"%u.%u MB", tenths / 10, tenths % 10);
}

UINT DurationText(std::uint32_t seconds) {
    if (seconds < 45) {
        return IDS_PREVIEW_SECONDS;
    }
    return seconds < 90 ? IDS_PREVIEW_MINUTE : IDS_PREVIEW_MINUTES;
}

bool ChangesNothing(const SavedCounts& counts) {
    return counts.added + counts.changed + counts.deleted == 0;
}

}  // namespace

void PreviewPanel::Request(std::int32_t state_number) {
    OperationRequest request;
    request.kind = OperationKind::kPreview;
    request.button = IDC_PREVIEW;
    request.state_number = state_number;
    if (!PostRequest(app_, request)) {
        ShowNotStarted(app_.main_dialog);
    }
}

bool PreviewPanel::BuildTree(DifferencePanel& tree) {
    wchar_t caption[kCaptionUnits];
    PutCaption(caption);
    return tree.Build(app_.preview.engine(), app_.settings.AdvancedTreeView != 0, caption, false,
                      kShowAll);
}

void PreviewPanel::PutCaption(wchar_t (&text)[kCaptionUnits]) const {
    ::wsprintfW(text, ResourceText(app_.instance, IDS_PREVIEW_CAPTION).text(),
                app_.preview.state_number());
}

void PreviewPanel::Drop() {
    is_shown_ = false;
    app_.preview.Drop();
}

void PreviewPanel::Show() {
    is_shown_ = true;
    wchar_t caption[kCaptionUnits];
    PutCaption(caption);
    ::SetDlgItemTextW(page_, IDC_PREVIEW_CAPTION, caption);
    ShowCounts();
    ShowNeeds();
}

void PreviewPanel::ShowCounts() const {
    const PreviewFigures& figures = app_.preview.figures();
    const SavedCounts& counts = figures.counts;
    wchar_t text[2 * kResourceTextUnits];
    const UINT effect = ChangesNothing(counts) ? IDS_PREVIEW_NOTHING : IDS_PREVIEW_COUNTS;
    int length = ::wsprintfW(text, ResourceText(app_.instance, effect).text(), counts.added,
                             counts.changed, counts.deleted);
    if (figures.left_alone != 0) {
        const UINT reason = figures.is_damaged ? IDS_PREVIEW_DAMAGED : IDS_PREVIEW_LEFT_ALONE;
        length += ::wsprintfW(text + length, ResourceText(app_.instance, reason).text(),
                              figures.left_alone);
    }
    ::wcscpy(text + length, L".");
    ::SetDlgItemTextW(page_, IDC_PREVIEW_COUNTS, text);
}

void PreviewPanel::ShowNeeds() const {
    const PreviewFigures& figures = app_.preview.figures();
    wchar_t text[2 * kResourceTextUnits] = L"";
    if (!ChangesNothing(figures.counts)) {
        wchar_t time[kResourceTextUnits];
        ::wsprintfW(time, ResourceText(app_.instance, DurationText(figures.seconds)).text(),
                    (figures.seconds + 30) / 60);
        Figure needed;
        Figure missing;
        PutSize(figures.written_bytes, needed);
        PutSize(figures.missing_bytes, missing);
        if (figures.missing_bytes == 0) {
            ::wsprintfW(text, ResourceText(app_.instance, IDS_PREVIEW_NEEDS).text(), needed, time);
        } else {
            ::wsprintfW(text, ResourceText(app_.instance, IDS_PREVIEW_LACKS).text(), needed,
                        missing, time);
        }
    }
    ::SetDlgItemTextW(page_, IDC_PREVIEW_NEEDS, text);
}

}  // namespace tolvenar
