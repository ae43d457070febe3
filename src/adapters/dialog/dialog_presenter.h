// Fills the role FormPresenter with a window.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/dialog/window_host.h"
#include "ui/form_presenter.h"

#include <memory>

namespace pelmora::dialog {

class DialogPresenter : public FormPresenter {
 public:
  explicit DialogPresenter(std::shared_ptr<WindowHost> windows);
  void showModal(frmMessage& form) override;

 private:
  std::shared_ptr<WindowHost> windows_;
};

}  // namespace pelmora::dialog
