// SPDX-License-Identifier: MIT
#include "apps/pelmora/options/strict_number.h"

#include "apps/pelmora/trouble.h"

#include <gmock/gmock.h>

namespace pelmora::cli {
namespace {

using testing::HasSubstr;

TEST(strict_number, reads_plain_and_exponent_forms) {
  EXPECT_EQ(strictNumber("12.5"), 12.5);
  EXPECT_EQ(strictNumber("-1e-3"), -0.001);
  EXPECT_EQ(strictNumber("+4"), 4);
  EXPECT_EQ(strictNumber("  7\t"), 7);
}

TEST(strict_number, refuses_what_is_left_over) {
  for (const char* text : {"", " ", "1,5", "1.5x", "1 2", "0x10", "--1", "+-1", "e5", "."}) {
    EXPECT_FALSE(strictNumber(text)) << text;
  }
}

TEST(strict_number, refuses_what_is_not_finite) {
  for (const char* text : {"nan", "NaN", "inf", "-inf", "1e999"})
    EXPECT_FALSE(strictNumber(text)) << text;
}

TEST(strict_number, keeps_every_digit) { EXPECT_EQ(strictNumber("0.1"), 0.1); }

TEST(strict_integer, refuses_fractions_and_overflow) {
  EXPECT_EQ(strictInteger("42"), 42);
  EXPECT_FALSE(strictInteger("4.2"));
  EXPECT_FALSE(strictInteger("99999999999999999999"));
}

TEST(not_a_number, shows_how_to_write_a_decimal_comma) {
  EXPECT_THAT(notANumber("1,5"), HasSubstr("1.5"));
  EXPECT_THAT(notANumber("abc"), testing::Not(HasSubstr("point")));
  EXPECT_THAT(notANumber(""), HasSubstr("empty"));
  EXPECT_THAT(notANumber("nan"), HasSubstr("finite"));
}

TEST(number_option, names_the_option) {
  EXPECT_EQ(numberOption("--min", "2.5"), 2.5);
  try {
    (void)numberOption("--min", "two");
    FAIL();
  } catch (const Trouble& trouble) {
    EXPECT_EQ(trouble.code(), ExitCode::usage);
    EXPECT_THAT(trouble.what(), HasSubstr("--min: 'two'"));
  }
}

TEST(integer_option, names_the_allowed_range) {
  EXPECT_EQ(integerOption("--part", "4", 1, 4), 4);
  for (const char* text : {"0", "5", "x", "1.0", ""}) {
    EXPECT_THROW((void)integerOption("--part", text, 1, 4), Trouble) << text;
  }
}

}  // namespace
}  // namespace pelmora::cli
