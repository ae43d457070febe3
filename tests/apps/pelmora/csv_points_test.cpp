// SPDX-License-Identifier: MIT
#include "apps/pelmora/input/csv_points.h"

#include "apps/pelmora/trouble.h"
#include "tests/support/scratch_folder.h"

#include <gmock/gmock.h>

#include <fstream>

namespace pelmora::cli {
namespace {

using testing::HasSubstr;

class csv_points : public testing::Test {
 protected:
  PointArray read(const std::string& text, const PointColumns& columns = {}) {
    std::ofstream(path, std::ios::binary) << text;
    return readCsvPoints(path, columns).points;
  }
  std::string refusal(const std::string& text, const PointColumns& columns = {}) {
    try {
      (void)read(text, columns);
    } catch (const Trouble& trouble) {
      EXPECT_EQ(trouble.code(), ExitCode::badInput);
      EXPECT_FALSE(trouble.remedy().empty());
      return errorLine(trouble);
    }
    ADD_FAILURE() << "accepted: " << text;
    return {};
  }

  const test::ScratchFolder scratch;
  const std::string path = scratch.file("points.csv");
};

TEST_F(csv_points, come_in_the_files_order) {
  EXPECT_EQ(read("3,30\n1,10\n2,20\n"), (PointArray{{3, 30}, {1, 10}, {2, 20}}));
}

TEST_F(csv_points, skip_a_header_byte_order_mark_blank_lines_and_carriage_returns) {
  EXPECT_EQ(read("\xEF\xBB\xBFx,y\r\n\r\n1,10\r\n2,20"), (PointArray{{1, 10}, {2, 20}}));
}

TEST_F(csv_points, find_roshko_and_strouhal_among_more_columns) {
  EXPECT_EQ(read("set,STROUHAL,roshko\n1,0.2,50\n"), (PointArray{{50, 0.2}}));
}

TEST_F(csv_points, take_the_columns_that_are_named) {
  EXPECT_EQ(read("a,b,c\n1,2,3\n", {"c", "a", {}}), (PointArray{{3, 1}}));
  EXPECT_EQ(read("1,2,3\n", {"3", "1", {}}), (PointArray{{3, 1}}));
}

TEST_F(csv_points, say_which_columns_they_took_if_the_header_has_other_names) {
  const auto assumption = [&](const std::string& text, const PointColumns& columns = {}) {
    (void)read(text, columns);
    return readCsvPoints(path, columns).assumption;
  };
  EXPECT_EQ(assumption("Roshko,Strouhal\n1,2\n"), "");
  EXPECT_EQ(assumption("1,2\n", {"2", "1", {}}), "");
  EXPECT_EQ(assumption("1,2\n3,4\n"), "");
  EXPECT_EQ(assumption("X;Y\n1;2\n"), "");
  EXPECT_THAT(assumption("K factor,Ro\n1,2\n"),
              HasSubstr("column 'K factor' was taken as Roshko and 'Ro' as Strouhal"));
}

TEST_F(csv_points, take_only_rows_that_pass_the_filters) {
  const std::string text = "set,kind,roshko,strouhal\n1,a,1,10\n2,a,2,20\n2.0,b,3,30\n";
  EXPECT_EQ(read(text, {"", "", {{"set", "2"}}}), (PointArray{{2, 20}, {3, 30}}));
  EXPECT_EQ(read(text, {"", "", {{"set", "2"}, {"kind", "b"}}}), (PointArray{{3, 30}}));
}

TEST_F(csv_points, check_numbers_only_in_rows_that_are_taken) {
  EXPECT_EQ(read("set,roshko,strouhal\n1,bad,bad\n2,2,20\n", {"", "", {{"set", "2"}}}),
            (PointArray{{2, 20}}));
}

TEST_F(csv_points, may_stand_in_quotes) {
  EXPECT_EQ(read("\"x\",\"y, \"\"relative\"\"\"\n\"1\",\"2\"\n"), (PointArray{{1, 2}}));
}

TEST_F(csv_points, name_file_line_and_column_of_a_text) {
  const std::string line = refusal("x,y\n1,10\n2,abc\n");
  EXPECT_THAT(line, HasSubstr(path));
  EXPECT_THAT(line, HasSubstr("line 3, column y: 'abc' is not a number"));
}

TEST_F(csv_points, tell_a_text_in_the_first_line_from_a_header) {
  EXPECT_THAT(refusal("abc,10\n2,20\n"), HasSubstr("line 1, column 1: 'abc' is not a number"));
}

TEST_F(csv_points, refuse_decimal_commas_between_commas) {
  EXPECT_THAT(refusal("x,y\n1,5,2,5\n"), HasSubstr("4 fields instead of 2"));
}

TEST_F(csv_points, may_have_decimal_commas) {
  EXPECT_EQ(read("x,y\n\"1,5\",2\n"), (PointArray{{1.5, 2}}));
  EXPECT_EQ(read("x;y\n1,5;2,5\n"), (PointArray{{1.5, 2.5}}));
}

TEST_F(csv_points, name_the_option_that_settles_a_doubt) {
  EXPECT_THAT(refusal("x;y\n1.234;2\n"), HasSubstr("--decimal point or --decimal comma"));
  EXPECT_THAT(refusal("1;2\t3\n4;5\t6\n"), HasSubstr("--separator semicolon"));
  PointColumns columns;
  columns.style.decimal = ',';
  EXPECT_EQ(read("x;y\n1.234;2\n", columns), (PointArray{{1234, 2}}));
}

TEST_F(csv_points, refuse_a_roshko_number_that_is_not_positive) {
  for (const char* x : {"0", "-3"}) {
    EXPECT_THAT(refusal("Roshko,Strouhal\n1,2\n" + std::string(x) + ",2\n"),
                HasSubstr("line 3, column Roshko: a Roshko number of " + std::string(x)));
  }
}

class derived_points : public csv_points {
 protected:
  static PointColumns columns(const std::string& text) {
    PointColumns columns;
    columns.derived = columnChoice(text);
    return columns;
  }
};

// 3 gal/min at 60 Hz: 1200 pulses per gallon; 60 Hz at 1.5 cSt: 40 Hz/cSt.
TEST_F(derived_points, come_from_flow_frequency_and_viscosity_in_any_units) {
  const PointColumns named = columns("q=Flow,f=Freq,nu=Visc");
  for (const char* text :
       {"Flow [gpm],Freq [Hz],Visc [cSt]\n3,60,1.5\n", "Flow;Freq;Visc\ngpm;Hz;cSt\n3;60;1,5\n",
        "Visc (m2/s)\tFreq (kHz)\tFlow (l/min)\n0.0000015\t0.06\t11.356235352\n"}) {
    const PointArray points = read(text, named);
    ASSERT_EQ(points.size(), 1U) << text;
    EXPECT_NEAR(points(0, 0), 40, 1e-12) << text;
    EXPECT_NEAR(points(0, 1), 1200, 1e-9) << text;
  }
  const PointArray cubic =
      read("a,b,c\n0.68137412112,60,1.5\n", columns("q=a:m3/h,f=b [Hz],nu=3:mm2/s"));
  EXPECT_NEAR(cubic(0, 0), 40, 1e-12);
  EXPECT_NEAR(cubic(0, 1), 1200, 1e-9);
}

// The factors of docs/method.md: 1 + 1.92E-05 (t - 70) and 1 + 2.88E-05 (t - 70).
TEST_F(derived_points, are_corrected_for_the_temperature) {
  for (const char* text : {"q [gpm],f [Hz],nu [cSt],t [F]\n3,60,1.5,170\n",
                           "q [gpm],f [Hz],nu [cSt],t [C]\n3,60,1.5,76.66666666666667\n"}) {
    const PointArray points = read(text, columns("q=q,f=f,nu=nu,t=t"));
    EXPECT_NEAR(points(0, 0), 40 * 1.00192, 1e-9) << text;
    EXPECT_NEAR(points(0, 1), 1200 * 1.00288, 1e-8) << text;
  }
}

TEST_F(derived_points, need_units_that_fit) {
  const PointColumns named = columns("q=q,f=f,nu=nu");
  EXPECT_THAT(refusal("q,f [Hz],nu [cSt]\n3,60,1.5\n", named),
              testing::AllOf(HasSubstr("column 'q' has no unit"), HasSubstr("q=Flow:l/min")));
  EXPECT_THAT(refusal("q [buckets],f [Hz],nu [cSt]\n3,60,1.5\n", named),
              HasSubstr("'buckets' is not a known unit"));
  EXPECT_THAT(refusal("q [C],f [Hz],nu [cSt]\n3,60,1.5\n", named), HasSubstr("temperature"));
}

TEST_F(derived_points, refuse_readings_that_cannot_be) {
  const std::string header = "q [gpm],f [Hz],nu [cSt]\n3,60,1.5\n";
  const PointColumns named = columns("q=q,f=f,nu=nu");
  EXPECT_THAT(refusal(header + "3,60,0\n", named), HasSubstr("line 3, column nu [cSt]"));
  EXPECT_THAT(refusal(header + "3,-60,1\n", named),
              HasSubstr("a frequency of -60 is not possible"));
  EXPECT_THAT(refusal(header + "0,60,1\n", named), HasSubstr("a flow of 0"));
}

TEST(column_choice, splits_at_commas_before_the_next_key_alone) {
  const ColumnChoice choice = columnChoice("q=Flow, hot:gpm, f=Freq,nu=V,t=T (C)");
  EXPECT_EQ(choice.flow, "Flow, hot:gpm");
  EXPECT_EQ(choice.frequency, "Freq");
  EXPECT_EQ(choice.temperature, "T (C)");
  for (const char* text : {"", "q=a,f=b", "q=a,f=b,nu=c,x=d", "q=a,q=b,f=c,nu=d", "q=,f=b,nu=c"})
    EXPECT_THROW((void)columnChoice(text), Trouble) << text;
}

TEST_F(csv_points, refuse_nan_infinity_empty_fields_and_a_y_of_zero) {
  EXPECT_THAT(refusal("1,nan\n"), HasSubstr("finite"));
  EXPECT_THAT(refusal("inf,1\n"), HasSubstr("finite"));
  EXPECT_THAT(refusal("1,\n2,3\n"), HasSubstr("empty"));
  EXPECT_THAT(refusal("1,0\n"), HasSubstr("cannot be fitted"));
}

TEST_F(csv_points, refuse_a_row_that_is_too_short) {
  EXPECT_THAT(refusal("x,y\n1\n"), HasSubstr("line 2: 1 field instead of 2"));
}

TEST_F(csv_points, name_the_columns_there_are) {
  EXPECT_THAT(refusal("a,b,c\n1,2,3\n"), HasSubstr("a, b, c"));
  EXPECT_THAT(refusal("a,b,c\n1,2,3\n", {"d", "a", {}}), HasSubstr("no column 'd'"));
  EXPECT_THAT(refusal("a,b\n1,2\n", {"", "", {{"set", "2"}}}), HasSubstr("no column 'set'"));
}

TEST_F(csv_points, refuse_a_file_without_points) {
  EXPECT_THAT(refusal("x,y\n"), HasSubstr("no points"));
  EXPECT_THAT(refusal("\n\n"), HasSubstr("no line"));
  EXPECT_THAT(refusal("a,b\n1,2\n", {"", "", {{"a", "9"}}}), HasSubstr("no line with a=9"));
}

TEST_F(csv_points, refuse_a_missing_and_an_empty_file_and_a_folder) {
  EXPECT_THAT(refusal(""), HasSubstr("is empty"));
  EXPECT_THROW((void)readCsvPoints(scratch.file("none.csv"), {}), Trouble);
  EXPECT_THROW((void)readCsvPoints(scratch.path().string(), {}), Trouble);
}

TEST_F(csv_points, may_be_32767_and_no_more) {
  std::string text;
  for (std::size_t i = 0; i < mostPoints; ++i) text += "1,2\n";
  EXPECT_EQ(read(text).size(), mostPoints);
  EXPECT_THAT(refusal(text + "1,2\n"), HasSubstr("line 32768: more than 32767 points"));
}

TEST_F(csv_points, refuse_a_quote_that_is_not_closed) {
  EXPECT_THAT(refusal("x,y\n\"1,2\n"), HasSubstr("line 2, field 1: a quote is not closed"));
}

TEST_F(csv_points, refuse_text_behind_a_closing_quote) {
  const std::string line = refusal("x,y\n1,10\n\"2\"x,20\n");
  EXPECT_THAT(line, HasSubstr("line 3, field 1: 'x' follows a closing quote"));
  EXPECT_THAT(line, HasSubstr(path));
}

TEST_F(csv_points, count_lines_that_end_in_carriage_returns) {
  EXPECT_EQ(read("x,y\r1,10\r2,20\r"), (PointArray{{1, 10}, {2, 20}}));
  EXPECT_THAT(refusal("x,y\r1,10\r2,abc\r"), HasSubstr("line 3, column y"));
}

TEST(row_filter, splits_at_the_first_equals_sign) {
  EXPECT_EQ(rowFilter("a=b=c"), (std::pair<std::string, std::string>("a", "b=c")));
  EXPECT_EQ(rowFilter("a="), (std::pair<std::string, std::string>("a", "")));
  for (const char* text : {"", "a", "=a"}) EXPECT_THROW((void)rowFilter(text), Trouble) << text;
}

}  // namespace
}  // namespace pelmora::cli
