// From a form, or a standard message box, to the window that shows it.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/dialog/window_request.h"
#include "ui/message_form.h"

#include <string>

namespace pelmora::dialog {

// Exactly what the form laid out, each edge rounded to whole pixels. The first button has the
// focus.
[[nodiscard]] WindowRequest windowOf(const frmMessage& form);

// A standard message box: the form's buttons for the style's button set; icon and default button as
// the style says; TABs stay; the window grows with its text. Without a title it bears the host
// program's name.
//
// Errors: 5 (invalid argument) if the style names no known button set.
[[nodiscard]] WindowRequest windowOf(const std::string& text, int style, const std::string& title);

}  // namespace pelmora::dialog
