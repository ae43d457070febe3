// SPDX-License-Identifier: MIT
#include "adapters/dialog/dialog_presenter.h"

#include "adapters/dialog/form_window.h"

#include <utility>

namespace pelmora::dialog {

DialogPresenter::DialogPresenter(std::shared_ptr<WindowHost> windows)
    : windows_(std::move(windows)) {}

void DialogPresenter::showModal(frmMessage& form) {
  const auto code = windows_->show(windowOf(form));
  if (code) {
    form.click(*code);
  } else {
    form.close();
  }
}

}  // namespace pelmora::dialog
