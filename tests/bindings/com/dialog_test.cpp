// The native dialogs: the form as it was laid out, and the system's message box.
// SPDX-License-Identifier: MIT
#include "tests/bindings/com/component.h"

#include "adapters/dialog/native/form_dialog.h"
#include "ui/executable_name.h"
#include "ui/show_message.h"

#include <pelmora/dialog.h>
#include <pelmora/platform.h>

#include <cmath>

namespace pelmora::test {
namespace {

class dialog : public testing::Test {
 protected:
  dialog() { useDialogs(platform()); }
};

TEST_F(dialog, shows_text_title_and_the_buttons_of_the_style) {
  BoxAnswerer boxes(IDNO);
  std::int32_t style = 36;
  EXPECT_EQ(showMessageForm("one\ttwo", style, "Range"), IDNO);
  ASSERT_EQ(boxes.boxes().size(), 1U);
  const Box box = boxes.boxes().front();
  EXPECT_EQ(box.title, "Range");
  EXPECT_EQ(box.text, "one     two");
  EXPECT_EQ(box.buttons, (std::vector<std::string>{"&Yes", "&No"}));
}

TEST_F(dialog, is_titled_with_the_programs_name_where_it_has_no_title) {
  BoxAnswerer boxes;
  std::int32_t style = 0;
  EXPECT_EQ(showMessageForm("text", style, ""), IDOK);
  ASSERT_EQ(boxes.boxes().size(), 1U);
  EXPECT_EQ(boxes.boxes().front().title, executableName());
  EXPECT_EQ(executableName(), "windows_test.exe");
}

TEST_F(dialog, reads_as_cancel_when_it_is_closed) {
  BoxAnswerer boxes(99);
  for (std::int32_t style : {0, 1, 4096 + 2, 4, 9})
    EXPECT_EQ(showMessageForm("text", style, ""), IDCANCEL) << style;
  ASSERT_EQ(boxes.boxes().size(), 5U);
  EXPECT_EQ(boxes.boxes()[2].buttons, (std::vector<std::string>{"&Abort", "&Retry", "&Ignore"}));
  EXPECT_TRUE(boxes.boxes()[4].buttons.empty());
}

struct Seen {
  RECT window{}, label{}, first{};
  std::string labelKind;
  bool hasFocus = false;
};

// Looks at the one dialog of this process while it is open, then closes it.
Seen look(const frmMessage& shown) {
  frmMessage form = shown;
  Seen seen;
  std::thread looker([&] {
    HWND window = nullptr;
    for (int i = 0; i < 200 && window == nullptr; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      window = FindWindowW(
          L"#32770", std::wstring(form.windowTitle().begin(), form.windowTitle().end()).c_str());
      if (window != nullptr && !IsWindowVisible(window)) window = nullptr;
    }
    if (window == nullptr) return;
    const auto areaOf = [&](int id) {
      RECT area{};
      GetWindowRect(GetDlgItem(window, id), &area);
      MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&area), 2);
      return area;
    };
    GetClientRect(window, &seen.window);
    seen.label = areaOf(100);
    std::array<char, 32> kind{};
    GetClassNameA(GetDlgItem(window, 100), kind.data(), static_cast<int>(kind.size()));
    seen.labelKind = kind.data();
    const int leftmost = form.YesButton.Visible ? IDYES : IDOK;
    seen.first = areaOf(leftmost);
    seen.hasFocus = LOWORD(SendMessageW(window, DM_GETDEFID, 0, 0)) == leftmost;
    SendMessageW(window, WM_CLOSE, 0, 0);
  });
  pelmora::dialog::showFormDialog(form);
  looker.join();
  return seen;
}

TEST_F(dialog, stands_where_the_form_was_laid_out) {
  frmMessage form;
  form.Form_Load("PelmoraLayout");
  form.SetupForm("text", "", 4);
  const Seen seen = look(form);
  const HDC screen = GetDC(nullptr);
  const int dpi = GetDeviceCaps(screen, LOGPIXELSY);
  ReleaseDC(nullptr, screen);
  const auto pixels = [&](float length) {
    return std::lround(length * static_cast<float>(dpi) / 96.0F);
  };
  EXPECT_EQ(seen.window.right, pixels(form.Width));
  EXPECT_EQ(seen.window.bottom, pixels(form.Height));
  EXPECT_EQ(seen.label.left, pixels(form.lblMessage.Left));
  EXPECT_EQ(seen.first.left, pixels(form.YesButton.Left));
  EXPECT_EQ(seen.first.top, pixels(form.YesButton.Top));
  EXPECT_EQ(seen.first.right - seen.first.left, pixels(form.YesButton.Width));
  EXPECT_EQ(seen.labelKind, "Static");
  EXPECT_TRUE(seen.hasFocus);
}

TEST_F(dialog, scrolls_a_text_that_is_too_long) {
  frmMessage form;
  form.Form_Load("PelmoraLongText");
  std::string text;
  for (int line = 0; line < 40; ++line) text += "line\n";
  form.SetupForm(text, "", 0);
  EXPECT_EQ(look(form).labelKind, "Edit");
}

TEST_F(dialog, shows_the_systems_message_box) {
  BoxAnswerer boxes(IDRETRY);
  EXPECT_EQ(platform().messageBox("Min/Max", 2, "Range"), IDRETRY);
  ASSERT_EQ(boxes.boxes().size(), 1U);
  EXPECT_EQ(boxes.boxes().front().title, "Range");
  EXPECT_EQ(boxes.boxes().front().text, "Min/Max");
  EXPECT_EQ(boxes.boxes().front().buttons.size(), 3U);
}

}  // namespace
}  // namespace pelmora::test
