// SPDX-License-Identifier: MIT
#include "adapters/dialog/native/form_dialog.h"

#include "adapters/os/wide_text.h"
#include "base/run_time_error.h"

#include <windows.h>

#include <cmath>
#include <string>

namespace pelmora::dialog {
namespace {

constexpr int designDpi = 96;
constexpr int labelId = 100;

// One dialog while it is shown.
class FormDialog {
 public:
  explicit FormDialog(frmMessage& form) : form_(form) {}
  ~FormDialog() {
    if (font_ != nullptr) DeleteObject(font_);
  }
  FormDialog(const FormDialog&) = delete;
  FormDialog& operator=(const FormDialog&) = delete;

  void create(HWND window);
  // Whether the command ended the dialog.
  bool press(int code);

 private:
  [[nodiscard]] int pixels(float length) const {
    return static_cast<int>(std::lround(length * static_cast<float>(dpi_) / designDpi));
  }
  void makeFont();
  void placeWindow() const;
  void createLabel() const;
  void createButtons();
  HWND createControl(const wchar_t* kind, const std::wstring& text, DWORD style, int id, float left,
                     float top, float width, float height) const;

  frmMessage& form_;
  HWND window_ = nullptr;
  HFONT font_ = nullptr;
  int dpi_ = designDpi;
};

void FormDialog::create(HWND window) {
  window_ = window;
  const HDC screen = GetDC(window);
  dpi_ = GetDeviceCaps(screen, LOGPIXELSY);
  ReleaseDC(window, screen);
  makeFont();
  SetWindowTextW(window, os::wideText(form_.windowTitle()).c_str());
  placeWindow();
  createLabel();
  createButtons();
}

void FormDialog::makeFont() {
  NONCLIENTMETRICSW metrics{};
  metrics.cbSize = sizeof(metrics);
  if (SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof(metrics), &metrics, 0) != 0) {
    font_ = CreateFontIndirectW(&metrics.lfMessageFont);
  }
}

// Centred on the work area of the first display.
void FormDialog::placeWindow() const {
  RECT frame{0, 0, pixels(form_.Width), pixels(form_.Height)};
  AdjustWindowRectEx(&frame, static_cast<DWORD>(GetWindowLongPtrW(window_, GWL_STYLE)), FALSE,
                     static_cast<DWORD>(GetWindowLongPtrW(window_, GWL_EXSTYLE)));
  const int width = frame.right - frame.left;
  const int height = frame.bottom - frame.top;
  RECT area{};
  SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0);
  SetWindowPos(window_, nullptr, area.left + (area.right - area.left - width) / 2,
               area.top + (area.bottom - area.top - height) / 2, width, height,
               SWP_NOZORDER | SWP_NOACTIVATE);
}

// An edit control breaks lines at "\r\n" alone.
std::wstring withFullLineBreaks(const std::wstring& text) {
  std::wstring result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == L'\n' && (i == 0 || text[i - 1] != L'\r')) result += L'\r';
    result += text[i];
  }
  return result;
}

void FormDialog::createLabel() const {
  const FormLabel& label = form_.lblMessage;
  const std::wstring text = os::wideText(label.Text);
  RECT needed{0, 0, pixels(label.Width), 0};
  const HDC screen = GetDC(window_);
  const HGDIOBJ before = font_ != nullptr ? SelectObject(screen, font_) : nullptr;
  DrawTextW(screen, text.c_str(), -1, &needed, DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX);
  if (before != nullptr) SelectObject(screen, before);
  ReleaseDC(window_, screen);
  const bool fits = needed.bottom <= pixels(label.Height);
  const DWORD style = fits ? SS_NOPREFIX : ES_MULTILINE | ES_READONLY | ES_AUTOVSCROLL | WS_VSCROLL;
  createControl(fits ? L"STATIC" : L"EDIT", fits ? text : withFullLineBreaks(text), style, labelId,
                label.Left, label.Top, label.Width, label.Height);
}

void FormDialog::createButtons() {
  HWND leftmost = nullptr;
  float left = form_.Width;
  for (const FormButton* button : form_.buttons()) {
    if (!button->Visible) continue;
    const HWND control =
        createControl(L"BUTTON", os::wideText(button->Caption), BS_PUSHBUTTON | WS_TABSTOP,
                      button->Response, button->Left, button->Top, button->Width, button->Height);
    if (button->Left >= left) continue;
    left = button->Left;
    leftmost = control;
  }
  if (leftmost == nullptr) return;
  SendMessageW(window_, DM_SETDEFID, static_cast<WPARAM>(GetDlgCtrlID(leftmost)), 0);
  SetFocus(leftmost);
}

HWND FormDialog::createControl(const wchar_t* kind, const std::wstring& text, DWORD style, int id,
                               float left, float top, float width, float height) const {
  const HWND control =
      CreateWindowExW(0, kind, text.c_str(), WS_CHILD | WS_VISIBLE | style, pixels(left),
                      pixels(top), pixels(width), pixels(height), window_,
                      reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), nullptr, nullptr);
  if (font_ != nullptr) SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font_), TRUE);
  return control;
}

// Closing the window arrives as the code of Cancel, whether there is such a button or not.
bool FormDialog::press(int code) {
  for (const FormButton* button : form_.buttons()) {
    if (button->Response != code) continue;
    if (button->Visible) {
      form_.click(code);
      return true;
    }
    if (code == box_answer::cancel) {
      form_.close();
      return true;
    }
  }
  return false;
}

INT_PTR CALLBACK onMessage(HWND window, UINT message, WPARAM first, LPARAM second) {
  if (message == WM_INITDIALOG) {
    SetWindowLongPtrW(window, DWLP_USER, second);
    reinterpret_cast<FormDialog*>(second)->create(window);
    return FALSE;  // the focus is set
  }
  auto* dialog = reinterpret_cast<FormDialog*>(GetWindowLongPtrW(window, DWLP_USER));
  if (message != WM_COMMAND || dialog == nullptr) return FALSE;
  const bool isButton = HIWORD(first) == BN_CLICKED;
  if (isButton && dialog->press(LOWORD(first))) EndDialog(window, TRUE);
  return TRUE;
}

// An empty dialog: the controls are made with the form's pixels, which dialog units cannot say.
struct EmptyTemplate {
  DLGTEMPLATE header{
      WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME | DS_SETFOREGROUND, 0, 0, 0, 0, 0, 0};
  WORD menu = 0, windowClass = 0, title = 0;
};

}  // namespace

void showFormDialog(frmMessage& form) {
  alignas(DWORD) EmptyTemplate empty;
  FormDialog dialog(form);
  const INT_PTR ended =
      DialogBoxIndirectParamW(GetModuleHandleW(nullptr), &empty.header, GetActiveWindow(),
                              onMessage, reinterpret_cast<LPARAM>(&dialog));
  if (ended <= 0) {
    throw Error(genericFailure, "Pelmora",
                "The message form cannot be shown: Windows refused the dialog.");
  }
}

}  // namespace pelmora::dialog
