// SPDX-License-Identifier: MIT
#include "ui/show_message.h"

#include "base/run_time_error.h"
#include "ui/executable_name.h"
#include "ui/form_presenter.h"
#include "ui/message_box.h"

#include <pelmora/platform.h>

namespace pelmora {

namespace {

std::int32_t presentForm(const std::string& message, std::int32_t buttonStyle,
                         const std::string& title) {
  frmMessage form;
  form.Form_Load(executableName());
  form.SetupForm(message, title, buttonStyle);
  // A copy: the host may replace it while the form is open.
  const auto create = platform().createFormPresenter;
  const auto presenter = create ? create() : nullptr;
  if (!presenter) throw makeError(RunTimeError::noEngine);
  presenter->showModal(form);
  return form.Response;
}

}  // namespace

std::int32_t showMessageForm(const std::string& message, std::int32_t& buttonStyle,
                             const std::string& title) {
  // The host may change its variable while the form is open; the box shows the style asked for.
  const std::int32_t style = buttonStyle;
  try {
    return presentForm(message, style, title);
  } catch (...) {
    return standardMessageBox(message, style, {});
  }
}

}  // namespace pelmora
