// The modal form facility that frmMessage is shown with.
// SPDX-License-Identifier: MIT
#pragma once

#include "ui/message_form.h"

namespace pelmora {

class FormPresenter {
 public:
  virtual ~FormPresenter() = default;
  // Shows a form that is set up, and returns when a button was clicked (frmMessage::click) or the
  // window was closed (frmMessage::close).
  //
  // Errors: Error if no window can be shown or it is lost before the operator answered.
  virtual void showModal(frmMessage& form) = 0;
};

}  // namespace pelmora
