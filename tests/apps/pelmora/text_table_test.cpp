// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/text_table.h"

#include <gmock/gmock.h>

#include <limits>
#include <sstream>

namespace pelmora::cli {
namespace {

using Align = TextTable::Align;

TEST(text_table, aligns_texts_left_and_numbers_right) {
  TextTable table({{"Name", Align::left}, {"N", Align::right}});
  table.addRow({"a", "5"});
  table.addRow({"long name", "123"});
  EXPECT_EQ(table.text(),
            "Name         N\n"
            "---------  ---\n"
            "a            5\n"
            "long name  123\n");
}

TEST(text_table, counts_characters_and_not_bytes) {
  TextTable table({{"Fluid", Align::left}, {"N", Align::right}});
  table.addRow({"Öl", "1"});
  EXPECT_THAT(table.text(), testing::EndsWith("Öl     1\n"));
}

TEST(text_table, cuts_the_widest_text_to_stay_within_80_columns) {
  TextTable table({{"Name", Align::left}, {"Other", Align::left}, {"N", Align::right}});
  table.addRow({std::string(100, 'x'), "short", "12345"});
  std::istringstream lines(table.text());
  for (std::string line; std::getline(lines, line);) EXPECT_LE(displayWidth(line), 80U) << line;
  EXPECT_THAT(table.text(), testing::HasSubstr("x...  short  12345"));
}

TEST(text_table, never_cuts_a_number) {
  TextTable table({{"N", Align::right}});
  table.addRow({std::string(90, '1')});
  EXPECT_THAT(table.text(), testing::HasSubstr(std::string(90, '1')));
}

TEST(text_table, keeps_a_row_on_one_line) {
  TextTable table({{"Name", Align::left}});
  table.addRow({"a\nb"});
  EXPECT_THAT(table.text(), testing::HasSubstr("a b\n"));
}

TEST(wrapped, breaks_at_blanks_before_80_columns) {
  std::string text;
  for (int i = 0; i < 40; ++i) text += "word ";
  std::istringstream lines(wrapped(text, 2));
  std::size_t words = 0;
  for (std::string line; std::getline(lines, line);) {
    EXPECT_LE(line.size(), 80U);
    EXPECT_TRUE(line.starts_with("  word"));
    std::istringstream parts(line);
    for (std::string word; parts >> word;) ++words;
  }
  EXPECT_EQ(words, 40U);
}

TEST(wrapped, keeps_a_word_that_is_too_long_whole) {
  EXPECT_EQ(wrapped(std::string(100, 'x'), 0), std::string(100, 'x') + "\n");
}

TEST(number_texts, have_fixed_or_significant_digits) {
  EXPECT_EQ(fixedText(0.99985, 6), "0.999850");
  EXPECT_EQ(significantText(1114.5432, 4), "1115");
  EXPECT_EQ(significantText(0.361839877, 4), "0.3618");
  EXPECT_EQ(significantText(1e-7, 3), "1e-07");
}

TEST(number_texts, of_what_is_not_finite_are_a_dash) {
  EXPECT_EQ(fixedText(std::numeric_limits<double>::quiet_NaN(), 2), "-");
  EXPECT_EQ(percentText(std::numeric_limits<double>::infinity()), "-");
}

TEST(number_texts, may_keep_their_zeros_to_stand_in_line) {
  EXPECT_EQ(alignedText(1.12547, 7), "1.125470");
  EXPECT_EQ(alignedText(2231.4, 7), "2231.400");
  EXPECT_EQ(alignedText(0.3618, 4), "0.3618");
  EXPECT_EQ(alignedText(0, 3), "0.00");
  EXPECT_EQ(alignedText(0.0997, 2), "0.10");
  EXPECT_EQ(alignedText(-9.96, 2), "-10");
  EXPECT_EQ(alignedText(123456789, 3), "123456789");
}

TEST(short_numbers, round_decimals_and_leave_the_rest) {
  EXPECT_EQ(withShortNumbers("worst x = 0.98099057716071, y = 1172.20517840892, 98.94576% below."),
            "worst x = 0.980991, y = 1172.21, 98.94576% below.");
  EXPECT_EQ(withShortNumbers("7 of 12345678 points, R2 1.5."), "7 of 12345678 points, R2 1.5.");
  EXPECT_EQ(withShortNumbers("1.2.3 and 1234567.1234567"), "1.2.3 and 1.23457e+06");
  EXPECT_EQ(withShortNumbers(""), "");
}

TEST(sigmas_text, has_no_power_of_ten) {
  EXPECT_EQ(sigmasText(-7.26), "7.3");
  EXPECT_EQ(sigmasText(5.02), "5");
  EXPECT_EQ(sigmasText(9.96), "10");
  EXPECT_EQ(sigmasText(183.4), "183");
  EXPECT_EQ(sigmasText(-1234567), "1234567");
}

TEST(percent_text, has_a_sign_and_three_decimals) {
  EXPECT_EQ(percentText(0.16444), "+0.164");
  EXPECT_EQ(percentText(-0.0571), "-0.057");
  EXPECT_EQ(percentText(12345), "+1.23e+04");
}

}  // namespace
}  // namespace pelmora::cli
