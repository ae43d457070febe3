// SPDX-License-Identifier: MIT
#include "component/result_files.h"
#include "tests/component/fitting/fitting_fixture.h"
#include "tests/support/comma_locale.h"

#include <filesystem>

namespace pelmora {
namespace {

using test::Journal;

const std::string header = "TableCurve\r\n1 2\r\nthird line\r\n";

class tablecurve_results : public FittingFixture {
 protected:
  // Reads a file with this content.
  PointArray read(const std::string& content) {
    writeFile("fit.txt", content);
    journal_.clear();
    return readTCresults(context_, path_, isEmpty_);
  }
  // A failure: its box, and the points that were read before it.
  void expectError(const std::string& content, const std::string& description,
                   const PointArray& readBefore = {}) {
    isEmpty_ = readBefore.size() > 0;
    EXPECT_EQ(read(content), readBefore);
    EXPECT_EQ(isEmpty_, readBefore.empty());
    EXPECT_EQ(boxes(), Journal{"Error in RawData:readTCresults\r\n" + description + "|16|"});
  }
  const std::string path_ = folder_.file("fit.txt");
  bool isEmpty_ = false;
};

TEST_F(tablecurve_results, points_come_sorted_by_roshko) {
  EXPECT_EQ(read(header + "20 2.5\r\n10.5 1E-3\r\n-3 +7"),
            (PointArray{{-3, 7}, {10.5, 0.001}, {20, 2.5}}));
  EXPECT_FALSE(isEmpty_);
  EXPECT_EQ(journal_, (Journal{"status: Reading file: " + path_,
                               "status: Cleaning data from Tablecurve format",
                               "status: Sorting fitted data"}));
}

TEST_F(tablecurve_results, four_lines_hold_one_point) {
  EXPECT_EQ(read(header + "1 2"), (PointArray{{1, 2}}));
  EXPECT_FALSE(isEmpty_);
}

TEST_F(tablecurve_results, closing_line_break_is_no_point) {
  EXPECT_EQ(read(header + "1 2\r\n"), (PointArray{{1, 2}}));
}

TEST_F(tablecurve_results, only_one_closing_line_break_is_dropped) {
  expectError(header + "1 2\r\n\r\n", "Subscript out of range", {{1, 2}});
}

TEST_F(tablecurve_results, blanks_around_the_text_are_trimmed_before_the_closing_line_break) {
  EXPECT_EQ(read("  " + header + "1 2\r\n   "), (PointArray{{1, 2}}));
}

TEST_F(tablecurve_results, three_lines_cannot_be_sized) {
  expectError("a\r\nb\r\nc", "Subscript out of range");
  expectError("a\r\nb\r\nc\r\n", "Subscript out of range");
  expectError("a", "Subscript out of range");
}

TEST_F(tablecurve_results, header_lines_may_be_empty) {
  EXPECT_EQ(read("\r\n\r\n\r\n1 2\r\n"), (PointArray{{1, 2}}));
}

TEST_F(tablecurve_results, any_number_of_blanks_parts_the_numbers) {
  EXPECT_EQ(read(header + "   1      2   "), (PointArray{{1, 2}}));
}

TEST_F(tablecurve_results, blanks_inside_the_second_number_vanish) {
  EXPECT_EQ(read(header + "1 2 3 4"), (PointArray{{1, 234}}));
}

TEST_F(tablecurve_results, bar_parts_the_numbers_as_a_blank_does) {
  EXPECT_EQ(read(header + "1|2"), (PointArray{{1, 2}}));
  EXPECT_EQ(read(header + "1|2 3"), (PointArray{{1, 2}}));
  EXPECT_EQ(read(header + "1 2|3"), (PointArray{{1, 2}}));
}

TEST_F(tablecurve_results, tab_does_not_part_the_numbers) {
  expectError(header + "1\t2", "Subscript out of range");
}

TEST_F(tablecurve_results, zero_characters_are_ignored_everywhere) {
  const std::string zero(1, '\0');
  EXPECT_EQ(read(zero + header + "1" + zero + "5 2" + zero + "\r" + zero + "\n"),
            (PointArray{{15, 2}}));
}

TEST_F(tablecurve_results, line_with_one_field_is_an_error) {
  expectError(header + "1 2\r\n3", "Subscript out of range", {{1, 2}});
}

TEST_F(tablecurve_results, field_that_is_no_number_is_a_type_mismatch) {
  expectError(header + "1 2\r\nx 4", "Type mismatch", {{1, 2}});
  expectError(header + "1 2\r\n3 y", "Type mismatch", {{1, 2}});
}

TEST_F(tablecurve_results, points_before_a_bad_line_come_back_in_the_order_of_the_file) {
  expectError(header + "30 3\r\n10 1\r\n20 2\r\n5 ?\r\n1 1\r\n", "Type mismatch",
              {{30, 3}, {10, 1}, {20, 2}});
  EXPECT_EQ(statusTexts().back(), "Cleaning data from Tablecurve format");
}

TEST_F(tablecurve_results, bad_first_line_leaves_no_points) {
  expectError(header + "? 3\r\n10 1\r\n", "Type mismatch");
}

TEST_F(tablecurve_results, lines_end_in_both_characters) {
  expectError("a\nb\nc\n1 2\n", "Subscript out of range");
}

TEST_F(tablecurve_results, file_is_kept_under_another_name) {
  read(header + "1 2");
  EXPECT_FALSE(std::filesystem::exists(path_));
  EXPECT_TRUE(std::filesystem::exists(path_ + ".sav"));
}

TEST_F(tablecurve_results, file_that_cannot_be_parsed_is_renamed_all_the_same) {
  read(header + "x y");
  EXPECT_FALSE(std::filesystem::exists(path_));
  EXPECT_TRUE(std::filesystem::exists(path_ + ".sav"));
}

TEST_F(tablecurve_results, earlier_kept_file_is_replaced) {
  writeFile("fit.txt.sav", "old");
  const std::string content = header + "1 2";
  read(content);
  EXPECT_EQ(std::filesystem::file_size(path_ + ".sav"), content.size());
}

TEST_F(tablecurve_results, folder_in_the_way_of_the_kept_file_stays) {
  std::filesystem::create_directory(path_ + ".sav");
  isEmpty_ = false;
  EXPECT_EQ(read(header + "1 2"), PointArray());
  EXPECT_TRUE(isEmpty_);
  EXPECT_EQ(boxes().size(), 1U);
  EXPECT_TRUE(std::filesystem::is_directory(path_ + ".sav"));
}

TEST_F(tablecurve_results, second_reading_finds_no_file) {
  read(header + "1 2");
  journal_.clear();
  EXPECT_EQ(readTCresults(context_, path_, isEmpty_), PointArray());
  EXPECT_TRUE(isEmpty_);
  EXPECT_EQ(journal_, (Journal{"status: Missing file to read fitted data: " + path_,
                               "box: File not found|64|"}));
  EXPECT_TRUE(std::filesystem::exists(path_ + ".sav"));
}

TEST_F(tablecurve_results, folder_is_a_missing_file) {
  EXPECT_EQ(readTCresults(context_, folder_.path().string(), isEmpty_), PointArray());
  EXPECT_EQ(boxes(), Journal{"File not found|64|"});
}

TEST_F(tablecurve_results, empty_file_is_empty_before_it_is_cleaned) {
  EXPECT_EQ(read(""), PointArray());
  EXPECT_TRUE(isEmpty_);
  EXPECT_EQ(journal_, Journal{"status: Reading file: " + path_});
  EXPECT_TRUE(std::filesystem::exists(path_ + ".sav"));
}

TEST_F(tablecurve_results, file_that_is_empty_when_cleaned_has_no_points) {
  for (const std::string& content :
       {std::string("   "), std::string("\r\n"), std::string("  \r\n "), std::string(3, '\0')}) {
    EXPECT_EQ(read(content), PointArray());
    EXPECT_TRUE(isEmpty_);
    EXPECT_EQ(statusTexts().back(), "Cleaning data from Tablecurve format");
    EXPECT_EQ(boxes(), Journal());
  }
}

TEST_F(tablecurve_results, more_lines_than_16_bits_count_overflow) {
  std::string content = header;
  for (int i = 0; i < 32768; ++i) content += "1 2\r\n";
  expectError(content, "Overflow");
}

TEST_F(tablecurve_results, numbers_follow_the_locale) {
  const test::CommaLocale locale;
  if (!locale.isSet()) GTEST_SKIP() << "no locale with a decimal comma";
  EXPECT_EQ(read(header + "1,5 2"), (PointArray{{1.5, 2}}));
  expectError(header + "1.5 2", "Type mismatch");
}

}  // namespace
}  // namespace pelmora
