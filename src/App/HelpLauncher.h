#pragma once

#include <string_view>

namespace pulsara {

// Opens the program's manual (<data folder>/Pulsara.htm) in the desktop's browser, at the
// anchor when one is given. The result of the launch is not looked at: a desktop without a
// browser simply shows nothing.
void openHelp(std::u16string_view anchor = {});

} // namespace pulsara
