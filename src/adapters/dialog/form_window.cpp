// SPDX-License-Identifier: MIT
#include "adapters/dialog/form_window.h"

#include "base/run_time_error.h"
#include "ui/executable_name.h"
#include "ui/message_box.h"

#include <algorithm>
#include <cmath>

namespace pelmora::dialog {

namespace {

// Room for an icon of 32 pixels and the gap to the text.
constexpr int iconRoom = 48;

int pixels(float length) { return static_cast<int>(std::lround(length)); }

template <typename Control>
WindowArea areaOf(const Control& control) {
  return {pixels(control.Left), pixels(control.Top), pixels(control.Width), pixels(control.Height)};
}

WindowIcon iconOf(int style) {
  switch (style & box_style::iconMask) {
    case box_style::critical: return WindowIcon::critical;
    case box_style::question: return WindowIcon::question;
    case box_style::exclamation: return WindowIcon::exclamation;
    case box_style::information: return WindowIcon::information;
    default: return WindowIcon::none;
  }
}

}  // namespace

WindowRequest windowOf(const frmMessage& form) {
  WindowRequest request;
  request.title = form.windowTitle();
  request.text = form.lblMessage.Text;
  request.width = pixels(form.Width);
  request.height = pixels(form.Height);
  request.textArea = areaOf(form.lblMessage);
  for (const FormButton* button : form.buttons()) {
    if (button->Visible) {
      request.buttons.push_back({button->Caption, button->Response, areaOf(*button)});
    }
  }
  std::sort(request.buttons.begin(), request.buttons.end(),
            [](const auto& a, const auto& b) { return a.area.left < b.area.left; });
  return request;
}

WindowRequest windowOf(const std::string& text, int style, const std::string& title) {
  frmMessage form;
  form.Form_Load(executableName());
  form.SetupForm(text, title, style & box_style::buttonSetMask);
  WindowRequest request = windowOf(form);
  if (request.buttons.empty()) throw makeError(RunTimeError::invalidArgument);
  request.text = text;
  request.growsWithText = true;
  request.icon = iconOf(style);
  if (request.icon != WindowIcon::none) {
    request.textArea.left += iconRoom;
    request.textArea.width -= iconRoom;
  }
  const int button = (style & box_style::defaultButtonMask) / box_style::defaultButton2;
  if (button < static_cast<int>(request.buttons.size())) request.focusedButton = button;
  return request;
}

}  // namespace pelmora::dialog
