// The numbers of a sheet: decimal signs, thousands, units.
// SPDX-License-Identifier: MIT
#include "tests/sheets/sheet_reading.h"

#include <gmock/gmock.h>

#include <cmath>
#include <string>

namespace pelmora::sheets {
namespace {

using namespace std::string_literals;
using testing::HasSubstr;

TEST(sheet_numbers, a_decimal_comma_gives_the_double_of_the_decimal_point) {
  for (const char* digits :
       {"0,1", "3,141592653589793", "1234567,890123456789", "2,2250738585072014e-308",
        "-0,30000000000000004", "9007199254740993,0"}) {
    std::string point(digits);
    point.replace(point.find(','), 1, ".");
    EXPECT_EQ(read("x;y\n1,5;"s + digits + "\n").rows[0][1], std::stod(point)) << digits;
  }
}

TEST(sheet_numbers, quoted_decimal_commas_may_stand_between_commas) {
  const Reading reading = read("x,y\n\"100,5\",\"2,25\"\n200,\"2,5\"\n");
  EXPECT_EQ(reading.rows, twoPoints);
  EXPECT_EQ(reading.recognised.words(), "decimal comma");
}

TEST(sheet_numbers, thousands_are_grouped_by_blanks_apostrophes_or_a_proven_sign) {
  EXPECT_EQ(read("x;y\n1 234,5;2,25\n").rows[0][0], 1234.5);
  EXPECT_EQ(read("x;y\n1\xC2\xA0"
                 "234,5;2,25\n")
                .rows[0][0],
            1234.5);
  EXPECT_EQ(read("x;y\n1'234.5;2.25\n").rows[0][0], 1234.5);
  EXPECT_EQ(read("x;y\n1.234,5;2,25\n1.500;3,1\n").rows[1][0], 1500);
  EXPECT_EQ(read("x,y\n\"1,234.5\",2.25\n").rows[0][0], 1234.5);
  EXPECT_EQ(read("x;y\n1.234.567;2\n").rows[0][0], 1234567);
  EXPECT_THAT(read("x;y\n1.234,5;2,25\n").recognised.words(), HasSubstr("grouped by points"));
}

TEST(sheet_numbers, the_other_numbers_of_a_column_decide_what_groups) {
  EXPECT_EQ(read("x;y\n950;1\n1.234;2\n").rows[1][0], 1234);
  EXPECT_EQ(read("x;y\n2;1\n1.234;2\n").rows[1][0], 1.234);
  EXPECT_EQ(read("x;y\n812,5;1\n1.234;2\n").rows[1][0], 1234);
  EXPECT_EQ(read("x;y\n1500;1\n1.234;2\n").rows[1][0], 1.234);
}

TEST(sheet_numbers, three_digits_behind_one_sign_are_refused_where_nothing_decides) {
  for (const char* text : {"x;y\n1.234;2\n", "x;y\n1,234;2\n", "x\ty\n1.234\t5.678\n",
                           "x;y\n1,234;0,5\n1.236;0,5\n", "x,y\n\"1,234\",2\n"}) {
    const SheetError error = refusal(text);
    EXPECT_EQ(error.doubt(), SheetError::Doubt::decimal) << text;
    EXPECT_THAT(error.place(), HasSubstr("line ")) << text;
    EXPECT_THAT(error.problem(), HasSubstr("may be 123")) << text;
  }
  EXPECT_EQ(read("x,y\n1.234,2\n").rows[0][0], 1.234);
}

// The typographic minus sign, U+2212.
TEST(sheet_numbers, every_sign_of_a_number_leaves_its_marks_in_doubt) {
  for (const char* sign : {"-", "+", "\xE2\x88\x92"}) {
    const std::string number = sign + "1.234"s;
    EXPECT_EQ(refusal("x;y\n" + number + ";2\n").doubt(), SheetError::Doubt::decimal) << sign;
    // The other numbers of the column say that it is a thousand.
    EXPECT_EQ(std::abs(read("x;y\n950;1\n" + number + ";2\n").rows[1][0]), 1234) << sign;
    EXPECT_EQ(std::abs(read("x;y\n1500;1\n" + number + ";2\n").rows[1][0]), 1.234) << sign;
  }
}

TEST(sheet_numbers, a_typographic_minus_groups_nothing) {
  EXPECT_EQ(read("x;y\n\xE2\x88\x92"
                 "1.5;2.25\n")
                .recognised.thousands,
            "");
  EXPECT_EQ(read("x;y\n1\xE2\x80\x99"
                 "234.5;2.25\n")
                .recognised.thousands,
            "'");
  EXPECT_EQ(read("x;y\n1\xE2\x80\xAF"
                 "234.5;2.25\n")
                .recognised.thousands,
            " ");
}

TEST(sheet_numbers, a_stated_decimal_sign_decides) {
  EXPECT_EQ(read("x;y\n1.234;2\n", {.decimal = '.'}).rows[0][0], 1.234);
  EXPECT_EQ(read("x;y\n1.234;2\n", {.decimal = ','}).rows[0][0], 1234);
}

TEST(sheet_numbers, both_decimal_signs_are_refused_with_both_places) {
  const SheetError error = refusal("x;y\n1,5;2\n3;4\n2.5;3\n");
  EXPECT_EQ(error.doubt(), SheetError::Doubt::decimal);
  EXPECT_THAT(error.problem(),
              testing::AllOf(HasSubstr("line 2 ('1,5')"), HasSubstr("line 4 ('2.5')")));
}

TEST(sheet_numbers, commas_that_separate_and_are_decimal_signs_are_refused) {
  const SheetError error = refusal("x,y\n1,5,2,5\n");
  EXPECT_EQ(error.place(), "line 2");
  EXPECT_THAT(error.remedy(), HasSubstr("semicolons"));
}

TEST(sheet_numbers, text_in_place_of_a_number_is_named_by_line_and_column) {
  for (const char* text : {"NaN", "#N/A", "#DIV/0!", "n/a", "-", "1.5x", "0x10", "1e999", "1 2"}) {
    const SheetError error = refusal("x,y\n1.5,2\n"s + text + ",3\n");
    EXPECT_EQ(error.place(), "line 3, column x") << text;
    EXPECT_THAT(error.problem(), HasSubstr("'"s + text + "'")) << text;
  }
  const SheetError longText = refusal("x,y\n1," + std::string(100, 'q') + "\n2,3\n");
  EXPECT_THAT(longText.problem(), HasSubstr("'" + std::string(60, 'q') + "...'"));
}

TEST(sheet_numbers, columns_are_converted_from_their_units) {
  Sheet sheet("nu [m2/s];t [C];q\n0,00000125;20;7\n");
  Row row;
  ASSERT_TRUE(sheet.next(row));
  EXPECT_DOUBLE_EQ(sheet.requireNumber(row, 0, "cSt"), 1.25);
  EXPECT_DOUBLE_EQ(sheet.requireNumber(row, 1, "F"), 68);
  EXPECT_EQ(sheet.requireNumber(row, 2, "gal/s"), 7);
  EXPECT_THROW((void)sheet.requireNumber(row, 0, "F"), SheetError);
  sheet.setUnit(2, "nonsense");
  EXPECT_THROW((void)sheet.requireNumber(row, 2, "gal/s"), SheetError);
}

}  // namespace
}  // namespace pelmora::sheets
