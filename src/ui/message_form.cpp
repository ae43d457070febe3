// SPDX-License-Identifier: MIT
#include "ui/message_form.h"

#include "base/run_time_error.h"

#include <limits>

namespace pelmora {

namespace {

// Each flag is taken off at most once, the larger ones first. This is the form's own rule, not a
// bit mask: 96, say, loses 64 and then 32, and 2048 leaves a rest that is not a button set.
int buttonSetOf(int style) {
  for (const int flag :
       {box_style::systemModal, box_style::defaultButton4, box_style::defaultButton3,
        box_style::defaultButton2, box_style::information, box_style::exclamation,
        box_style::question, box_style::critical}) {
    if (style >= flag) style -= flag;
  }
  return style;
}

void place(FormButton& button, float centre) {
  button.Left = centre - button.Width / 2.0F;
  button.Visible = true;
}

}  // namespace

std::array<const FormButton*, 7> frmMessage::buttons() const& {
  return {&OKButton,     &CancelButton, &AbortButton, &RetryButton,
          &IgnoreButton, &YesButton,    &NoButton};
}

void frmMessage::Form_Load(const std::string& executableName) {
  windowTitle_ = executableName;
  Response = box_answer::cancel;
  isLoaded_ = true;
}

void frmMessage::SetupForm(const std::string& message, const std::string& caption,
                           std::int32_t buttonStyle) {
  if (buttonStyle < std::numeric_limits<std::int16_t>::min() ||
      buttonStyle > std::numeric_limits<std::int16_t>::max()) {
    throw makeError(RunTimeError::overflow);
  }
  Message = message;
  Caption = caption;
  ButtonStyle = static_cast<std::int16_t>(buttonStyle);

  if (!Caption.empty()) windowTitle_ = Caption;
  lblMessage.Text.clear();
  for (const char c : Message) {
    if (c == '\t') {
      lblMessage.Text += "     ";
    } else {
      lblMessage.Text += c;
    }
  }
  layOutButtons();
}

void frmMessage::layOutButtons() {
  const float third = Width / 3.0F;
  const float quarter = Width / 4.0F;
  const float half = Width / 2.0F;
  switch (buttonSetOf(ButtonStyle)) {
    case box_style::ok: place(OKButton, half); break;
    case box_style::okCancel:
      place(OKButton, third);
      place(CancelButton, Width - third);
      break;
    case box_style::abortRetryIgnore:
      place(AbortButton, quarter);
      place(RetryButton, half);
      place(IgnoreButton, Width - quarter);
      break;
    case box_style::yesNoCancel:
      place(YesButton, quarter);
      place(NoButton, half);
      place(CancelButton, Width - quarter);
      break;
    case box_style::yesNo:
      place(YesButton, third);
      place(NoButton, Width - third);
      break;
    case box_style::retryCancel:
      place(RetryButton, third);
      place(CancelButton, Width - third);
      break;
    default: break;
  }
}

void frmMessage::press(const FormButton& button) {
  Response = button.Response;
  isLoaded_ = false;
}

void frmMessage::click(int response) {
  for (const FormButton* button : buttons()) {
    if (button->Visible && button->Response == response) return press(*button);
  }
  throw makeError(RunTimeError::invalidArgument);
}

}  // namespace pelmora
