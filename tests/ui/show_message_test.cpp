// SPDX-License-Identifier: MIT
#include "ui/show_message.h"

#include "ui/form_presenter.h"

#include <pelmora/error.h>
#include <pelmora/platform.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

namespace pelmora {
namespace {

// An operator made of code.
class FakePresenter : public FormPresenter {
 public:
  explicit FakePresenter(std::function<void(frmMessage&)> operate, int* alive = nullptr)
      : operate_(std::move(operate)), alive_(alive) {
    if (alive_ != nullptr) ++*alive_;
  }
  ~FakePresenter() override {
    if (alive_ != nullptr) --*alive_;
  }
  void showModal(frmMessage& form) override { operate_(form); }

 private:
  std::function<void(frmMessage&)> operate_;
  int* alive_;
};

class show_message : public testing::Test {
 protected:
  show_message() {
    platform() = {};
    platform().messageBox = [this](const std::string& text, int style, const std::string& title) {
      box_ += text + "|" + std::to_string(style) + "|" + title + "\n";
      return 5;
    };
  }
  ~show_message() override { platform() = {}; }

  static void operateWith(std::function<void(frmMessage&)> operate, int* alive = nullptr) {
    platform().createFormPresenter = [=] {
      return std::make_unique<FakePresenter>(operate, alive);
    };
  }

  std::string box_;
};

TEST_F(show_message, gives_the_code_of_the_pressed_button) {
  operateWith([](frmMessage& form) { form.NoButton_Click(); });
  std::int32_t style = 4;
  EXPECT_EQ(showMessageForm("text", style, "title"), 7);
  EXPECT_EQ(box_, "");
}

TEST_F(show_message, closing_gives_cancel) {
  operateWith([](frmMessage& form) { form.close(); });
  std::int32_t style = 0;
  EXPECT_EQ(showMessageForm("text", style, ""), 2);
}

TEST_F(show_message, form_is_loaded_and_set_up_when_it_is_shown) {
  frmMessage seen;
  operateWith([&](frmMessage& form) {
    seen = form;
    form.OKButton_Click();
  });
  std::int32_t style = 64;
  EXPECT_EQ(showMessageForm("Type\tmismatch", style, "Sort"), 1);
  EXPECT_TRUE(seen.isLoaded());
  EXPECT_EQ(seen.Response, 2);
  EXPECT_EQ(seen.windowTitle(), "Sort");
  EXPECT_EQ(seen.Message, "Type\tmismatch");
  EXPECT_EQ(seen.lblMessage.Text, "Type     mismatch");
  EXPECT_EQ(seen.ButtonStyle, 64);
  EXPECT_TRUE(seen.OKButton.Visible);
  EXPECT_EQ(style, 64);
}

TEST_F(show_message, empty_title_shows_the_name_of_the_host_program) {
  std::string title;
  operateWith([&](frmMessage& form) { title = form.windowTitle(); });
  std::int32_t style = 0;
  showMessageForm("text", style, "");
  EXPECT_EQ(title, "ui_test");
}

TEST_F(show_message, without_a_presenter_the_standard_box_answers) {
  std::int32_t style = 2;
  EXPECT_EQ(showMessageForm("a\tb", style, "title"), 5);
  EXPECT_EQ(box_, "a\tb|2|\n");
}

TEST_F(show_message, presenter_that_is_not_delivered_falls_back) {
  platform().createFormPresenter = [] { return nullptr; };
  std::int32_t style = 36;
  EXPECT_EQ(showMessageForm("text", style, "title"), 5);
  EXPECT_EQ(box_, "text|36|\n");
}

TEST_F(show_message, presenter_that_fails_falls_back_once) {
  operateWith([](frmMessage&) { throw Error(5, "dialog", "window lost"); });
  std::int32_t style = 4098;
  EXPECT_EQ(showMessageForm("text", style, "title"), 5);
  EXPECT_EQ(box_, "text|4098|\n");
}

TEST_F(show_message, any_exception_of_a_presenter_falls_back) {
  operateWith([](frmMessage&) { throw 42; });
  std::int32_t style = 0;
  EXPECT_EQ(showMessageForm("text", style, ""), 5);
}

TEST_F(show_message, style_beyond_16_bits_goes_to_the_standard_box) {
  operateWith([](frmMessage& form) { form.OKButton_Click(); });
  std::int32_t style = 65536;
  EXPECT_EQ(showMessageForm("text", style, "title"), 5);
  EXPECT_EQ(box_, "text|65536|\n");
}

TEST_F(show_message, nothing_can_be_shown_gives_the_harmless_answer) {
  platform() = {};
  std::int32_t style = 4;
  EXPECT_EQ(showMessageForm("text", style, ""), 7);
}

TEST_F(show_message, throwing_box_gives_the_harmless_answer) {
  platform().messageBox = [](const std::string&, int, const std::string&) -> int {
    throw std::runtime_error("no terminal");
  };
  std::int32_t style = 2;
  EXPECT_EQ(showMessageForm("text", style, ""), 3);
}

TEST_F(show_message, presenter_is_released_in_every_case) {
  int alive = 0;
  std::int32_t style = 0;
  operateWith(
      [&](frmMessage& form) {
        EXPECT_EQ(alive, 1);
        form.OKButton_Click();
      },
      &alive);
  showMessageForm("text", style, "");
  EXPECT_EQ(alive, 0);
  operateWith([](frmMessage&) { throw std::runtime_error("lost"); }, &alive);
  showMessageForm("text", style, "");
  EXPECT_EQ(alive, 0);
}

TEST_F(show_message, fallback_shows_the_style_that_was_asked_for) {
  std::int32_t style = 1;
  operateWith([&](frmMessage&) {
    style = 4;
    throw std::runtime_error("lost");
  });
  showMessageForm("text", style, "");
  EXPECT_EQ(box_, "text|1|\n");
}

}  // namespace
}  // namespace pelmora
