// Writes, truncations, syncs, deletions and locks of a change fail in every way: the database then
// holds what it held before, or the whole change, and is never damaged.
// SPDX-License-Identifier: MIT
#include "tests/faults/changes.h"
#include "tests/faults/database_state.h"
#include "tests/faults/fault_vfs.h"
#include "tests/support/scratch_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>

namespace pelmora::test {
namespace {

class fault_sweep : public testing::Test {
 protected:
  struct Tally {
    std::size_t calls = 0, faults = 0, before = 0, after = 0;
  };

  // Runs the change; true if it says that it is stored.
  [[nodiscard]] bool says(const InterruptedChange& change) const {
    try {
      calibration::OpenOptions options;
      options.patience = {};
      calibration::Database lab(path_, std::move(options));
      change.run(lab);
      return true;
    } catch (const Error& error) {  // the service's failures among them
      EXPECT_STRNE(error.what(), "");
      return false;
    }
  }
  void reset() const {
    std::filesystem::remove(path_ + "-journal");
    putBytes(path_, whole_);
  }

  void sweep(const InterruptedChange& change, FaultKind kind, std::uint32_t faultsPerCall) {
    reset();
    const std::string before = stateOf(path_);
    vfs_.arm({});
    ASSERT_TRUE(says(change));
    Tally tally{.calls = vfs_.calls()};
    const std::string after = stateOf(path_);
    ASSERT_NE(before, after);
    ASSERT_TRUE(before.starts_with("integrity: ok\n"));
    ASSERT_GT(tally.calls, 10U);
    // One step beyond the last call: right after the change has said that it is stored.
    for (std::size_t next = static_cast<std::size_t>(kind) % callsApart();; next += callsApart()) {
      const std::size_t at = std::min(next, tally.calls);
      for (std::uint32_t fault = 0; fault < faultsPerCall; ++fault) {
        const std::uint32_t seed = faultSeed() * faultsPerCall + fault;
        reset();
        vfs_.arm({kind, at, seed});
        const bool isStored = says(change);
        vfs_.strike();
        if (kind == FaultKind::powerLoss) vfs_.losePower();
        vfs_.arm({});
        const std::string state = stateOf(path_);
        ++tally.faults;
        tally.before += state == before;
        tally.after += state == after;
        const auto place =
            change.name + ", call " + std::to_string(at) + ", seed " + std::to_string(seed);
        ASSERT_TRUE(state == before || state == after) << place << ": " << state.substr(0, 300);
        if (isStored) {
          ASSERT_TRUE(state == after) << place << ": stored, and then lost";
        } else if (kind == FaultKind::error || kind == FaultKind::tornError) {
          ASSERT_TRUE(state == before) << place << ": refused, and yet stored";
        }
      }
      if (at == tally.calls) break;
    }
    std::cout << "| " << change.name << " | " << tally.calls << " | " << tally.faults << " | "
              << tally.before << " | " << tally.after << " | 0 |\n"
              << std::flush;
  }
  void sweepAll(FaultKind kind, std::uint32_t faultsPerCall = 1) {
    for (const InterruptedChange& change : interruptedChanges()) {
      ASSERT_NO_FATAL_FAILURE(sweep(change, kind, faultsPerCall)) << change.name;
    }
  }

  const ScratchFolder scratch_;
  const std::string path_ = scratch_.file("curves.db");
  const std::string whole_ = calibratedDatabase(path_);
  FaultVfs vfs_;
};

TEST_F(fault_sweep, call_that_fails_changes_nothing) { sweepAll(FaultKind::error); }

TEST_F(fault_sweep, write_that_stops_in_the_middle_changes_nothing) {
  sweepAll(FaultKind::tornError);
}

TEST_F(fault_sweep, killed_program_leaves_no_half_change) { sweepAll(FaultKind::kill); }

TEST_F(fault_sweep, program_killed_in_the_middle_of_a_write_leaves_no_half_change) {
  sweepAll(FaultKind::tornKill);
}

TEST_F(fault_sweep, power_loss_leaves_no_half_change_and_takes_nothing_stored) {
  sweepAll(FaultKind::powerLoss, 2);
}

}  // namespace
}  // namespace pelmora::test
