// Pictures for programs that draw SVG in paper's way.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace pelmora::report {

// An <svg> of a page with its own style and plain colours, and with each mark drawn as a shape in
// place of a marker: such programs know no variables, look for definitions nowhere else, and put
// markers in the wrong place.
[[nodiscard]] std::string paperPicture(const std::string& svg);

}  // namespace pelmora::report
