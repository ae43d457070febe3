// SPDX-License-Identifier: MIT
#include "adapters/dialog/helper/message_window.h"

#include "adapters/dialog/helper/icon_box.h"

#include <FL/Fl.H>
#include <FL/Fl_Button.H>
#include <FL/Fl_Text_Display.H>
#include <FL/fl_draw.H>

#include <algorithm>
#include <cctype>
#include <string>
#include <utility>

namespace pelmora::dialog {

namespace {

constexpr int fontSize = 14;

// Line ends as the text widget knows them; other control characters would be drawn as codes.
std::string drawable(const std::string& text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '\r') {
      if (i + 1 == text.size() || text[i + 1] != '\n') result += '\n';
    } else if (c == '\n' || c == '\t' || !std::iscntrl(static_cast<unsigned char>(c))) {
      result += c;
    }
  }
  return result;
}

// Letter after the "&" of a caption, in lower case; 0 if there is none.
int mnemonic(const char* caption) {
  for (const char* c = caption; *c != '\0'; ++c) {
    if (*c == '&') return std::tolower(static_cast<unsigned char>(c[1]));
  }
  return 0;
}

}  // namespace

MessageWindow::MessageWindow(const WindowRequest& request, Answer answer)
    : Fl_Window(request.width, request.height), answer_(std::move(answer)) {
  copy_label(request.title.c_str());
  addText(request);
  addButtons(request);
  end();
  const int extra = request.growsWithText ? extraHeight(request) : 0;
  for (Fl_Button* button : buttons_) button->position(button->x(), button->y() + extra);
  display_->size(display_->w(), display_->h() + extra);
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;
  Fl::screen_work_area(left, top, width, height, 0);
  resize(left + (width - request.width) / 2, top + (height - request.height - extra) / 2,
         request.width, request.height + extra);
  set_modal();
  callback([](Fl_Widget* self, void*) { static_cast<MessageWindow*>(self)->answer_({}); });
}

MessageWindow::~MessageWindow() { display_->buffer(nullptr); }

void MessageWindow::addText(const WindowRequest& request) {
  const WindowArea& area = request.textArea;
  if (request.icon != WindowIcon::none) {
    new IconBox(area.left - IconBox::size - 16, area.top, request.icon);
  }
  text_.text(drawable(request.text).c_str());
  display_ = new Fl_Text_Display(area.left, area.top, area.width, area.height);
  display_->box(FL_FLAT_BOX);
  display_->color(FL_BACKGROUND_COLOR);
  display_->textfont(FL_HELVETICA);
  display_->textsize(fontSize);
  display_->buffer(text_);
  display_->wrap_mode(Fl_Text_Display::WRAP_AT_BOUNDS, 0);
  display_->clear_visible_focus();  // the focus stays among the buttons
}

void MessageWindow::addButtons(const WindowRequest& request) {
  for (const WindowButton& wanted : request.buttons) {
    const WindowArea& area = wanted.area;
    auto* button = new Fl_Button(area.left, area.top, area.width, area.height);
    button->copy_label(wanted.caption.c_str());
    button->labelsize(fontSize);
    button->callback(
        [](Fl_Widget* pressed, void* self) { static_cast<MessageWindow*>(self)->press(pressed); },
        this);
    buttons_.push_back(button);
    codes_.push_back(wanted.code);
  }
  const auto wished = static_cast<std::size_t>(std::max(request.focusedButton, 0));
  focused_ = wished < buttons_.size() ? wished : 0;
}

int MessageWindow::extraHeight(const WindowRequest& request) const {
  // The widget's own margins, and a scroll bar that it would reserve room for.
  constexpr int margins = 24;
  const std::string text = drawable(request.text);
  fl_font(FL_HELVETICA, fontSize);
  int width = request.textArea.width - margins;
  int height = 0;
  fl_measure(text.c_str(), width, height, 0);
  const int most = std::max(0, Fl::h() * 2 / 3 - request.height);
  return std::clamp(height + margins - request.textArea.height, 0, most);
}

int MessageWindow::handle(int event) {
  if (event == FL_KEYBOARD || event == FL_SHORTCUT) {
    const int key = Fl::event_key();
    if (key == FL_Escape) {
      answer_({});
      return 1;
    }
    if (pressByKey(key) || scrollByKey(key)) return 1;
  }
  if (event == FL_SHOW && !buttons_.empty()) {
    const int handled = Fl_Window::handle(event);
    buttons_[focused_]->take_focus();
    return handled;
  }
  return Fl_Window::handle(event);
}

bool MessageWindow::pressByKey(int key) {
  // Ctrl and the like belong to the text (copying) and to the desktop.
  if (Fl::event_state(FL_CTRL | FL_META) != 0 || buttons_.empty()) return false;
  if (key == FL_Enter || key == FL_KP_Enter) {
    const auto focus = std::find(buttons_.begin(), buttons_.end(), Fl::focus());
    press(focus == buttons_.end() ? buttons_[focused_] : *focus);
    return true;
  }
  const auto named = std::find_if(buttons_.begin(), buttons_.end(), [key](const Fl_Button* button) {
    return key != 0 && mnemonic(button->label()) == key;
  });
  if (named == buttons_.end()) return false;
  press(*named);
  return true;
}

bool MessageWindow::scrollByKey(int key) {
  if (key != FL_Page_Up && key != FL_Page_Down) return false;
  for (int line = 0; line < 4; ++line) {
    if (key == FL_Page_Up) {
      display_->move_up();
    } else {
      display_->move_down();
    }
  }
  display_->show_insert_position();
  return true;
}

void MessageWindow::press(const Fl_Widget* button) {
  const auto place = std::find(buttons_.begin(), buttons_.end(), button);
  answer_(codes_[static_cast<std::size_t>(place - buttons_.begin())]);
}

}  // namespace pelmora::dialog
