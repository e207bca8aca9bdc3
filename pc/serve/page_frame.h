// A page of the site that is being written.
#pragma once

#include <string>
#include <string_view>

#include "pc/command/console.h"
#include "pc/serve/reply.h"

namespace tolvenar::pc {

class PageFrame {
public:
    explicit PageFrame(std::u16string_view title);

    Output& out() { return out_; }
    // The title, and the way back to the first page.
    void WriteHeading(const std::string& utf8);
    Reply Finish();

private:
    TextOutput out_;
};

}  // namespace tolvenar::pc
