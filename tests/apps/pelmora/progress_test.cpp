// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/progress.h"

#include <gtest/gtest.h>

namespace pelmora::cli {
namespace {

TEST(progress_bar, tells_rate_and_time_left) {
  EXPECT_EQ(progressBar("Refitting", 300, 1000, 0.6),
            "Refitting [######--------------] 300/1000  500/s  0:02 left");
  EXPECT_EQ(progressBar("Refitting", 1, 1201, 1),
            "Refitting [--------------------] 1/1201  1/s  20:00 left");
}

TEST(progress_bar, tells_no_rate_in_the_first_moments) {
  EXPECT_EQ(progressBar("Refitting", 0, 10, 20), "Refitting [--------------------] 0/10");
  EXPECT_EQ(progressBar("Refitting", 5, 10, 0.1), "Refitting [##########----------] 5/10");
}

TEST(progress_bar, of_no_work_is_full) {
  EXPECT_EQ(progressBar("Refitting", 0, 0, 0), "Refitting [####################] 0/0");
}

}  // namespace
}  // namespace pelmora::cli
