// SPDX-License-Identifier: MIT
#include "ui/executable_name.h"

#include <gtest/gtest.h>

namespace pelmora {
namespace {

TEST(executable_name, is_the_file_name_of_this_program) { EXPECT_EQ(executableName(), "ui_test"); }

}  // namespace
}  // namespace pelmora
