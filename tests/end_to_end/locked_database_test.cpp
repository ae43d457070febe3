// A curve database that another process has locked.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"
#include "tests/support/held_database.h"

#include <chrono>
#include <memory>
#include <thread>

namespace pelmora::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class locked_database : public CommandTest {
 protected:
  locked_database() {
    init();
    done({"raw", curves, write("p.csv", "1,2\n3,4\n"), "--meter", "P", "--register", "--series",
          "S"});
  }
  static Arguments hurried(Arguments command) {
    command.insert(command.end(), {"--wait", "0.1"});
    return command;
  }
  nlohmann::json show() const {
    return done({"show", curves, "--meter", "P", "--series", "S", "--json"}).json();
  }
};

TEST_F(locked_database, is_an_error_after_the_wait_and_not_changed) {
  const auto before = show();
  const auto start = std::chrono::steady_clock::now();
  {
    const HeldDatabase other(curves, Held::againstAll);
    for (const Arguments& command : std::vector<Arguments>{
             {"show", curves},
             {"fit", curves, "--meter", "P", "--series", "S"},
             {"raw", curves, scratch.file("p.csv"), "--meter", "P", "--series", "S"},
             {"history", curves},
             {"restore", curves, "1"},
             {"delete", curves, "--meter", "P", "--series", "S", "--yes"},
             {"doctor", curves},
             twoFluids()}) {
      EXPECT_THAT(trouble(3, hurried(command)),
                  AllOf(HasSubstr("locked by another user"), HasSubstr(curves)))
          << command[0];
    }
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
  EXPECT_EQ(show(), before);
}

TEST_F(locked_database, can_be_read_while_another_process_is_about_to_write) {
  const HeldDatabase other(curves, Held::againstWriters);
  EXPECT_EQ(show()["raw"][0].size(), 2U);
  EXPECT_THAT(
      trouble(3, hurried({"raw", curves, scratch.file("p.csv"), "--meter", "P", "--series", "S"})),
      AllOf(HasSubstr("cannot be written now"), HasSubstr("nothing was changed")));
  for (const Arguments& command :
       std::vector<Arguments>{{"restore", curves, "1"},
                              {"delete", curves, "--meter", "P", "--series", "S", "--yes"},
                              {"doctor", curves, "--repair"}}) {
    EXPECT_THAT(trouble(3, hurried(command)), HasSubstr("nothing was changed")) << command[0];
  }
  done({"doctor", curves});
}

TEST_F(locked_database, is_waited_for) {
  for (const Held held : {Held::againstAll, Held::againstWriters}) {
    auto other = std::make_unique<HeldDatabase>(curves, held);
    std::thread release([&] {
      std::this_thread::sleep_for(std::chrono::seconds(1));
      other.reset();
    });
    done({"raw", curves, scratch.file("p.csv"), "--meter", "P", "--series", "S"});
    release.join();
  }
}

TEST_F(locked_database, is_waited_for_as_long_as_the_configuration_says) {
  const std::string file = write("config.ini", "[raw]\nwait=0.1\n");
  const HeldDatabase other(curves, Held::againstAll);
  const auto start = std::chrono::steady_clock::now();
  trouble(
      3, {"--config", file, "raw", curves, scratch.file("p.csv"), "--meter", "P", "--series", "S"});
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(25));
}

TEST_F(locked_database, is_waited_for_with_a_word_at_a_terminal) {
  const PseudoTerminal terminal;
  const HeldDatabase other(curves, Held::againstAll);
  const CommandResult result = runAt(terminal, {"show", curves, "--wait", "4"});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_THAT(result.error, HasSubstr("waiting for " + other.holder()));
  EXPECT_THAT(result.error, HasSubstr(" s)"));
}

TEST_F(locked_database, is_not_waited_for_without_a_number_of_seconds) {
  for (const char* wait : {"-1", "x", "1e9", "inf", ""})
    EXPECT_THAT(trouble(2, {"show", curves, "--wait", wait}), HasSubstr("--wait"));
}

TEST_F(locked_database, is_not_read_as_a_file_of_points) {
  trouble(5, {"import-curve", curves, curves, "--meter", "P", "--series", "S"});
  done({"doctor", curves});
}

TEST_F(locked_database, works_again_when_the_other_process_has_gone) {
  { const HeldDatabase other(curves, Held::againstAll); }
  done(twoFluids());
}

}  // namespace
}  // namespace pelmora::test
