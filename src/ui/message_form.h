// The message form: a text and up to three of seven buttons. State and layout; no window.
// SPDX-License-Identifier: MIT
#pragma once

#include "ui/message_box.h"

#include <array>
#include <cstdint>
#include <string>

namespace pelmora {

// Lengths are pixels of a 96 dpi display, in single precision; the origin is the upper left corner
// of the form's client area.

struct FormLabel {
  std::string Text;
  float Left = 0, Top = 0, Width = 0, Height = 0;
};

struct FormButton {
  const char* Caption;    // "&" stands before the mnemonic
  std::int16_t Response;  // the code that a click gives
  float Left = 0, Top = 110, Width = 88, Height = 28;
  bool Visible = false;  // hidden by design; the layout shows what a style needs
};

// The form of one message. Load it, set it up, show it modally (form_presenter.h), read Response.
//
//   frmMessage form;
//   form.Form_Load(executableName());
//   form.SetupForm("Go on?", "", box_style::question + box_style::yesNo);
class frmMessage {
 public:
  // Code of the button that was pressed; 2 (Cancel) from loading until one is pressed.
  std::int16_t Response = 0;
  // What SetupForm was given.
  std::string Message, Caption;
  std::int16_t ButtonStyle = 0;

  // As designed; the layout moves the buttons' left edges and nothing else.
  float Width = 420, Height = 152;
  FormLabel lblMessage{{}, 16, 14, 388, 88};
  FormButton OKButton{"&OK", box_answer::ok};
  FormButton CancelButton{"&Cancel", box_answer::cancel};
  FormButton AbortButton{"&Abort", box_answer::abort};
  FormButton RetryButton{"&Retry", box_answer::retry};
  FormButton IgnoreButton{"&Ignore", box_answer::ignore};
  FormButton YesButton{"&Yes", box_answer::yes};
  FormButton NoButton{"&No", box_answer::no};

  // Window title: the executable's name from loading, or the caption if SetupForm was given one.
  [[nodiscard]] const std::string& windowTitle() const { return windowTitle_; }
  // False before loading and after a click: the modal display ends when it turns false.
  [[nodiscard]] bool isLoaded() const { return isLoaded_; }
  // All seven, in the order of their codes; they live as long as the form.
  [[nodiscard]] std::array<const FormButton*, 7> buttons() const&;
  std::array<const FormButton*, 7> buttons() const&& = delete;

  void Form_Load(const std::string& executableName);
  // Title, text (every TAB shown as five blanks) and buttons. An unknown button set shows none.
  //
  // Errors: 6 (overflow) if the style does not fit 16 bits.
  void SetupForm(const std::string& message, const std::string& caption, std::int32_t buttonStyle);

  void OKButton_Click() { press(OKButton); }
  void CancelButton_Click() { press(CancelButton); }
  void AbortButton_Click() { press(AbortButton); }
  void RetryButton_Click() { press(RetryButton); }
  void IgnoreButton_Click() { press(IgnoreButton); }
  void YesButton_Click() { press(YesButton); }
  void NoButton_Click() { press(NoButton); }
  // Closing without a button: Response stays as loaded.
  void close() { isLoaded_ = false; }
  // Clicks the button with this code.
  //
  // Errors: 5 (invalid argument) if no visible button has it; the form is unchanged then.
  void click(int response);

 private:
  void layOutButtons();
  void press(const FormButton& button);

  std::string windowTitle_;
  bool isLoaded_ = false;
};

}  // namespace pelmora
