// The message form as a modal dialog of Windows.
// SPDX-License-Identifier: MIT
#pragma once

#include "ui/message_form.h"

namespace pelmora::dialog {

// Shows exactly what the form laid out, scaled from 96 dpi to the display's, in front of the host's
// active window; the host's windows get their messages meanwhile. The leftmost button has the focus
// and answers Enter; a text that is too long for its area is scrolled. Returns when a button was
// clicked (frmMessage::click) or the window was closed (frmMessage::close).
//
// Errors: 0x80004005 if no window can be shown.
void showFormDialog(frmMessage& form);

}  // namespace pelmora::dialog
