// SPDX-License-Identifier: MIT
#include "adapters/sql_dialect/text_pattern.h"

#include <gtest/gtest.h>

#include <string>

namespace pelmora::sql {
namespace {

TEST(text_pattern, without_signs_it_is_the_text_itself) {
  EXPECT_TRUE(matchesPattern("Rotor A", "rotor a"));
  EXPECT_FALSE(matchesPattern("Rotor A", "rotor"));
  EXPECT_TRUE(matchesPattern("", ""));
}

TEST(text_pattern, percent_is_any_text_and_underscore_one_character) {
  EXPECT_TRUE(matchesPattern("Rotor A", "R%"));
  EXPECT_TRUE(matchesPattern("Rotor A", "%a"));
  EXPECT_TRUE(matchesPattern("Rotor A", "%o%o%"));
  EXPECT_FALSE(matchesPattern("Rotor A", "%o%o%o%"));
  EXPECT_TRUE(matchesPattern("Ärö", "ä_Ö"));
  EXPECT_TRUE(matchesPattern("", "%%"));
  EXPECT_FALSE(matchesPattern("", "_"));
}

TEST(text_pattern, sets_hold_characters_and_ranges) {
  EXPECT_TRUE(matchesPattern("raw3", "raw[1-4]"));
  EXPECT_FALSE(matchesPattern("raw5", "raw[1-4]"));
  EXPECT_TRUE(matchesPattern("raw5", "raw[!1-4]"));
  EXPECT_TRUE(matchesPattern("50%", "50[%]"));
  EXPECT_FALSE(matchesPattern("501", "50[%]"));
  EXPECT_TRUE(matchesPattern("a[b", "a[b"));
}

TEST(text_pattern, many_percents_take_no_exponential_time) {
  const std::string text(3000, 'a');
  EXPECT_FALSE(matchesPattern(text, "%a%a%a%a%a%a%a%a%a%a%a%a%a%a%a%b"));
}

}  // namespace
}  // namespace pelmora::sql
