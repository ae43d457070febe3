// SPDX-License-Identifier: MIT
#include "store/name_text.h"

#include <gtest/gtest.h>

namespace pelmora {
namespace {

TEST(name_text, spliced_stands_in_a_statement_as_it_is) {
  EXPECT_EQ(NameText::spliced("O'Hara").literal(), "'O'Hara'");
}

TEST(name_text, quoted_doubles_every_apostrophe) {
  EXPECT_EQ(NameText::quoted("O'Hara's").literal(), "'O''Hara''s'");
  EXPECT_EQ(NameText::quoted("'").literal(), "''''");
}

TEST(name_text, keeps_the_name_for_values) {
  EXPECT_EQ(NameText::quoted("O'Hara").name(), "O'Hara");
  EXPECT_TRUE(NameText::quoted("").empty());
}

}  // namespace
}  // namespace pelmora
