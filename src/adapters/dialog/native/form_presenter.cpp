// SPDX-License-Identifier: MIT
#include "adapters/dialog/native/form_presenter.h"

#include "adapters/dialog/native/form_dialog.h"

namespace pelmora::dialog {

void NativePresenter::showModal(frmMessage& form) { showFormDialog(form); }

}  // namespace pelmora::dialog
