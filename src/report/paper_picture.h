// Pictures for the program that makes a PDF of the page.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace pelmora::report {

// An <svg> of the page with a style of its own, plain colours, and each mark drawn as a shape. The
// program does not support variables in styles, finds no definitions outside the <svg>, and puts
// markers in the wrong place.
[[nodiscard]] std::string paperPicture(const std::string& svg);

}  // namespace pelmora::report
