// The window of one message.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/dialog/window_request.h"

#include <FL/Fl_Text_Buffer.H>
#include <FL/Fl_Window.H>

#include <functional>
#include <optional>
#include <vector>

class Fl_Button;
class Fl_Text_Display;

namespace pelmora::dialog {

// Keys: the letter of a caption, with or without Alt, presses that button; Return and the space bar
// press the one with the focus; TAB and the arrows move the focus; Escape and the close box close;
// the page keys scroll a long text.
class MessageWindow : public Fl_Window {
 public:
  // Code of the pressed button, or nothing if closed.
  using Answer = std::function<void(std::optional<int>)>;

  // Needs an open display: a growing window measures its text.
  MessageWindow(const WindowRequest& request, Answer answer);
  ~MessageWindow() override;

  int handle(int event) override;

 private:
  void addText(const WindowRequest& request);
  void addButtons(const WindowRequest& request);
  [[nodiscard]] int extraHeight(const WindowRequest& request) const;
  [[nodiscard]] bool pressByKey(int key);
  [[nodiscard]] bool scrollByKey(int key);
  void press(const Fl_Widget* button);

  Answer answer_;
  Fl_Text_Buffer text_;
  Fl_Text_Display* display_ = nullptr;  // children of the window, which deletes them
  std::vector<Fl_Button*> buttons_;
  std::vector<int> codes_;
  std::size_t focused_ = 0;
};

}  // namespace pelmora::dialog
