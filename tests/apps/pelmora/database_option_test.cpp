// SPDX-License-Identifier: MIT
#include "apps/pelmora/options/database_option.h"

#include <gtest/gtest.h>

namespace pelmora::cli {
namespace {

// As the help of every command says.
TEST(database_option, waits_30_seconds_for_a_lock_by_default) {
  EXPECT_EQ(DatabaseOption().wait, std::chrono::seconds(30));
}

}  // namespace
}  // namespace pelmora::cli
