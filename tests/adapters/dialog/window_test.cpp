// The window as an operator sees and uses it.
// SPDX-License-Identifier: MIT
#include "tests/adapters/dialog/virtual_display.h"
#include "tests/support/places.h"
#include "ui/show_message.h"

#include <pelmora/dialog.h>

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <atomic>
#include <filesystem>
#include <cstdlib>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>

namespace pelmora {
namespace {

class window : public testing::Test {
 protected:
  void SetUp() override {
    if (!display.isRunning()) GTEST_SKIP() << "Xvfb or xdotool is not installed";
    platform() = {};
    platform().messageBox = [this](const std::string&, int, const std::string&) {
      hasFallenBack = true;
      return -1;
    };
    useDialogs(platform(),
               {.helperProgram = PELMORA_HELPER, .readyWithin = std::chrono::minutes(10)});
  }
  void TearDown() override {
    platform() = {};
    EXPECT_FALSE(hasFallenBack);
  }

  // Shows something while an operator of another thread sees to the window titled `title`.
  int operate(const std::function<int()>& show, const std::string& title,
              const std::function<void(unsigned long)>& operation) {
    std::atomic<bool> hasGivenUp = false;
    platform().pumpMessages = [&] {
      if (hasGivenUp) throw std::runtime_error("no window to operate");
    };
    std::thread person([&] {
      const unsigned long id = display.window(title);
      if (id != 0) {
        operation(id);
      } else {
        hasGivenUp = true;
      }
    });
    const int answer = show();
    person.join();
    return answer;
  }

  int answerOf(std::int32_t style, const std::function<void(unsigned long)>& operation) {
    return operate([&] { return showMessageForm("Go on?", style, "Question"); }, "Question",
                   operation);
  }
  int answerTo(std::int32_t style, const std::string& keys) {
    return answerOf(style, [&](unsigned long id) { display.type(id, keys); });
  }

  // Keeps a picture of the window in the build folder. It is as large as the window, and more than
  // one colour.
  void takePicture(unsigned long id, const std::string& name) const {
    const std::filesystem::path folder = std::filesystem::path(test::buildFolder()) / "screenshots";
    std::filesystem::create_directories(folder);
    const std::string file = (folder / (name + ".png")).string();
    std::filesystem::remove(file);
    display.screenshot(id, file);
    std::istringstream facts(test::outputOf("identify -format '%wx%h %k' '" + file + "'"));
    std::string size;
    int colours = 0;
    facts >> size >> colours;
    EXPECT_EQ(size, display.sizeOf(id)) << name;
    EXPECT_GT(colours, 8) << name;
  }

  test::VirtualDisplay display;
  bool hasFallenBack = false;
};

// Middle of each button by hand: the designed form is 420 wide, its buttons 110 to 138 from the
// top.
TEST_F(window, click_gives_the_code_of_the_button_there) {
  const auto clickAt = [this](int x) {
    return [this, x](unsigned long id) { display.click(id, x, 124); };
  };
  EXPECT_EQ(answerOf(0, clickAt(210)), 1);
  EXPECT_EQ(answerOf(2, clickAt(105)), 3);
  EXPECT_EQ(answerOf(2, clickAt(210)), 4);
  EXPECT_EQ(answerOf(2, clickAt(315)), 5);
  EXPECT_EQ(answerOf(4, clickAt(140)), 6);
  EXPECT_EQ(answerOf(4, clickAt(280)), 7);
  EXPECT_EQ(answerOf(5, clickAt(280)), 2);
}

TEST_F(window, buttons_reach_from_edge_to_edge_as_laid_out) {
  // Yes: 96 to 184; No: 236 to 324. A click between them does nothing.
  EXPECT_EQ(answerOf(4,
                     [this](unsigned long id) {
                       display.click(id, 94, 124);
                       display.click(id, 186, 124);
                       display.click(id, 234, 124);
                       display.click(id, 238, 112);
                     }),
            7);
  EXPECT_EQ(answerOf(4, [this](unsigned long id) { display.click(id, 182, 136); }), 6);
}

TEST_F(window, letter_of_a_caption_presses_its_button) {
  EXPECT_EQ(answerTo(4, "y"), 6);
  EXPECT_EQ(answerTo(2, "r"), 4);
  EXPECT_EQ(answerTo(0, "o"), 1);
}

TEST_F(window, letter_with_alt_presses_its_button) {
  EXPECT_EQ(answerTo(4, "alt+n"), 7);
  EXPECT_EQ(answerTo(2, "alt+a"), 3);
  EXPECT_EQ(answerTo(2, "alt+i"), 5);
  EXPECT_EQ(answerTo(1, "alt+c"), 2);
}

TEST_F(window, letter_counts_in_upper_case_too) { EXPECT_EQ(answerTo(4, "shift+n"), 7); }

TEST_F(window, letter_with_control_and_letters_of_hidden_buttons_do_nothing) {
  EXPECT_EQ(answerTo(4, "ctrl+y r a c o n"), 7);
}

TEST_F(window, return_presses_the_first_button) { EXPECT_EQ(answerTo(2, "Return"), 3); }

TEST_F(window, return_presses_the_button_with_the_focus) {
  EXPECT_EQ(answerTo(2, "Tab Return"), 4);
  EXPECT_EQ(answerTo(2, "Right Right KP_Enter"), 5);
  EXPECT_EQ(answerTo(2, "Tab shift+Tab space"), 3);
}

TEST_F(window, text_that_was_clicked_does_not_keep_return) {
  EXPECT_EQ(answerOf(4,
                     [this](unsigned long id) {
                       display.click(id, 30, 30);
                       display.type(id, "Return");
                     }),
            6);
}

TEST_F(window, escape_reads_as_cancel) {
  EXPECT_EQ(answerTo(0, "Escape"), 2);
  EXPECT_EQ(answerTo(4, "Escape"), 2);
}

TEST_F(window, close_box_reads_as_cancel) {
  EXPECT_EQ(answerOf(4, [this](unsigned long id) { display.pressCloseBox(id); }), 2);
}

TEST_F(window, form_without_buttons_can_be_closed) { EXPECT_EQ(answerTo(6, "Return y Escape"), 2); }

TEST_F(window, form_without_a_title_bears_the_name_of_the_program) {
  std::int32_t style = 0;
  EXPECT_EQ(
      operate([&] { return showMessageForm("text", style, ""); }, "adapters_dialog_window_test",
              [this](unsigned long id) { display.type(id, "o"); }),
      1);
}

TEST_F(window, default_button_of_a_message_box_has_the_focus) {
  EXPECT_EQ(operate([] { return platform().messageBox("Go on?", 32 + 256 + 4, "Question"); },
                    "Question", [this](unsigned long id) { display.type(id, "Return"); }),
            7);
}

TEST_F(window, is_as_large_as_laid_out) {
  std::string size;
  answerOf(0, [&](unsigned long id) {
    size = display.sizeOf(id);
    display.type(id, "Escape");
  });
  EXPECT_EQ(size, "420x152");
}

TEST_F(window, message_box_grows_with_its_text) {
  std::string text;
  for (int line = 0; line < 12; ++line) text += "line\r\n";
  int height = 0;
  operate([&] { return platform().messageBox(text, 0, "Long"); }, "Long",
          [&](unsigned long id) {
            const std::string size = display.sizeOf(id);
            height = std::stoi(size.substr(size.find('x') + 1));
            display.type(id, "Escape");
          });
  EXPECT_GT(height, 152 + 6 * 14);
  EXPECT_LE(height, 400);  // two thirds of the display
}

TEST_F(window, host_of_the_shared_library_finds_the_helper_beside_it) {
  EXPECT_EQ(operate([] { return WEXITSTATUS(std::system(PELMORA_HOST)); }, "Question",
                    [this](unsigned long id) { display.type(id, "i"); }),
            5);
}

// The pictures are for people to look at, too.
TEST_F(window, form_of_every_style_is_drawn_whole_and_with_content) {
  for (std::int32_t style = 0; style <= 5; ++style) {
    const std::string title = "Style " + std::to_string(style);
    operate(
        [&] {
          return showMessageForm("Error in RawData:SetRaw\r\nType\tmismatch in row 3.", style,
                                 title);
        },
        title,
        [&](unsigned long id) {
          takePicture(id, "style" + std::to_string(style));
          display.type(id, "Escape");
        });
  }
}

TEST_F(window, message_box_of_every_kind_is_drawn_whole_and_with_content) {
  const auto shoot = [this](const std::string& text, int style, const std::string& name) {
    operate([&] { return platform().messageBox(text, style, name); }, name,
            [&](unsigned long id) {
              takePicture(id, name);
              display.type(id, "Escape");
            });
  };
  shoot(
      "Min/Max values are out of range of raw data\r\nMin X : 100\t\tMin Raw : 412.5\r\n"
      "Max X : 90000\tMax Raw : 8123.75\r\n\r\nPress 'Abort' to cancel, 'Retry' to set Min/Max "
      "to Raw min/max or 'Ignore' to continue.",
      2, "range");
  shoot("File not found", 64, "information");
  shoot(
      "Error in modFlow:copyCalData \r\nSyntax error (missing operator) in query expression "
      "'Roshko_@A & \"x\" < µ'.",
      16, "critical");
  shoot("Go on?", 32 + 4, "question");
  shoot("Careful.", 48 + 1, "exclamation");
  std::string statement = "Error in RawData:SeriesViaCaldb_RotorA\r\n";
  for (int i = 0; i < 60; ++i)
    statement += "INSERT INTO Raw1 ( Roshko, Strouhal, SeriesID ) SELECT ";
  shoot(statement, 16, "long");
  std::int32_t style = 0;
  operate([&] { return showMessageForm(statement, style, "longform"); }, "longform",
          [&](unsigned long id) {
            takePicture(id, "longform");
            display.type(id, "Next Next");
            takePicture(id, "longform-scrolled");
            display.type(id, "Escape");
          });
}

}  // namespace
}  // namespace pelmora
