// The About page: name, version, and a short animation each time it is shown.
#pragma once

#include "app/pages/page.h"
#include "app/pages/page_layouts.h"
#include "platform/unique_resource.h"
#include "res/resource.h"

namespace tolvenar {

class AboutPage final : public Page {
public:
    AboutPage(Application& app, Frame& frame) : Page(app, frame, IDD_ABOUT_PAGE) {}

    void OnShow(int index) override;
    void OnHide() override;

private:
    LayoutSet Layouts() const override { return AboutLayouts(); }
    void OnInit() override;
    INT_PTR OnMessage(UINT message, WPARAM wparam, LPARAM lparam) override;
    INT_PTR OnTimer();
    INT_PTR OnDraw(LPARAM lparam) const;

    UniqueGdiObject bold_font_;
    int step_ = 0;
};

}  // namespace tolvenar
