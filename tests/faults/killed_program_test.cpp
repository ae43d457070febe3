// The command line, killed at each of its calls that write, sync, delete or lock.
// SPDX-License-Identifier: MIT
#include "tests/faults/changes.h"
#include "tests/faults/database_state.h"
#include "tests/support/scratch_folder.h"

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <csignal>
#include <cstdlib>
#include <iostream>

namespace pelmora::test {
namespace {

class killed_program : public testing::Test {
 protected:
  void SetUp() override {
    if (std::string(PELMORA_KILLING_CALLS).empty())
      GTEST_SKIP() << "a sanitizer's own functions come first";
  }
  // Ends like the program: by itself, or by the signal.
  [[nodiscard]] int run(const std::string& arguments, long killAt) const {
    const std::string line = "exec env PELMORA_TEST_KILL_AT=" + std::to_string(killAt) +
                             " PELMORA_TEST_KILL_SEED=" + std::to_string(faultSeed()) +
                             " LD_PRELOAD='" + PELMORA_KILLING_CALLS + "' '" + PELMORA_PROGRAM +
                             "' " + arguments + " >/dev/null 2>&1";
    return std::system(line.c_str());
  }
  void sweep(const std::string& arguments) const {
    const std::string whole = calibratedDatabase(path_);
    const std::string before = stateOf(path_);
    std::size_t kills = 0, changed = 0;
    for (long at = 0;; at += static_cast<long>(callsApart())) {
      std::filesystem::remove(path_ + "-journal");
      putBytes(path_, whole);
      const int ended = run(arguments, at);
      const std::string state = stateOf(path_);
      if (WIFEXITED(ended)) {  // fewer calls than that: this is what the whole change makes
        ASSERT_EQ(WEXITSTATUS(ended), 0) << arguments;
        ASSERT_NE(state, before);
        after_ = after_.empty() ? state : after_;
        ASSERT_EQ(state, after_);
        break;
      }
      ASSERT_EQ(WTERMSIG(ended), SIGKILL);
      ++kills;
      ASSERT_TRUE(state.starts_with("integrity: ok\n")) << arguments << ", call " << at;
      if (state == before) continue;
      ++changed;
      // Whatever is not as it was is as the whole change makes it.
      after_ = after_.empty() ? state : after_;
      ASSERT_EQ(state, after_) << arguments << ", call " << at;
    }
    ASSERT_GT(kills, 10U);
    std::cout << "| " << arguments.substr(0, arguments.find(' ')) << " | " << kills << " | "
              << kills << " | " << kills - changed << " | " << changed << " | 0 |\n"
              << std::flush;
  }
  [[nodiscard]] std::string curves() const { return "'" + path_ + "'"; }

  const ScratchFolder scratch_;
  const std::string path_ = scratch_.file("curves.db");
  mutable std::string after_;
};

TEST_F(killed_program, leaves_no_half_import) {
  sweep("import " + curves() + " --meter M1 --new-calibration --stand '" + sourceFolder() +
        "/examples/data/stand-dual-rotor.csv' --job 1001 --fluid Spirit --job 1002 --fluid Glycol");
}

TEST_F(killed_program, leaves_no_half_fit) {
  sweep("fit " + curves() + " --meter M1 --series 'Rotor A' --points 30");
}

TEST_F(killed_program, leaves_no_half_restore) { sweep("restore " + curves() + " 1"); }

TEST_F(killed_program, leaves_no_half_deletion) {
  sweep("delete " + curves() + " --meter M1 --whole-meter --yes");
}

}  // namespace
}  // namespace pelmora::test
