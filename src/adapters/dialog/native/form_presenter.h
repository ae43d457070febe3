// Fills the role FormPresenter with a dialog of Windows.
// SPDX-License-Identifier: MIT
#pragma once

#include "ui/form_presenter.h"

namespace pelmora::dialog {

class NativePresenter : public FormPresenter {
 public:
  void showModal(frmMessage& form) override;
};

}  // namespace pelmora::dialog
