// SPDX-License-Identifier: MIT
#include "adapters/sql_dialect/date_literal.h"

#include <gtest/gtest.h>

namespace pelmora::sql {
namespace {

TEST(date_literal, slashes_and_dashes_have_the_month_first) {
  EXPECT_EQ(isoDate("3/4/2019"), "2019-03-04");
  EXPECT_EQ(isoDate("03-04-2019"), "2019-03-04");
}

TEST(date_literal, a_month_beyond_12_is_the_day) {
  EXPECT_EQ(isoDate("31/12/2019"), "2019-12-31");
  EXPECT_EQ(isoDate("31-12-2019"), "2019-12-31");
}

TEST(date_literal, four_digits_first_are_the_year) {
  EXPECT_EQ(isoDate("2019-03-14"), "2019-03-14");
  EXPECT_EQ(isoDate("2019/3/14"), "2019-03-14");
}

TEST(date_literal, dots_have_the_day_first) {
  EXPECT_EQ(isoDate("3.4.2019"), "2019-04-03");
  EXPECT_FALSE(isoDate("4.13.2019"));
}

TEST(date_literal, two_digit_years_run_from_1930_to_2029) {
  EXPECT_EQ(isoDate("1/2/00"), "2000-01-02");
  EXPECT_EQ(isoDate("1/2/29"), "2029-01-02");
  EXPECT_EQ(isoDate("1/2/30"), "1930-01-02");
  EXPECT_EQ(isoDate("1/2/99"), "1999-01-02");
}

TEST(date_literal, days_must_exist) {
  EXPECT_EQ(isoDate("2/29/2020"), "2020-02-29");
  EXPECT_EQ(isoDate("2/29/2000"), "2000-02-29");
  for (const char* text : {"2/29/2019", "2/29/1900", "4/31/2019", "0/1/2019", "1/0/2019",
                           "13/13/2019", "2019-13-01"}) {
    EXPECT_FALSE(isoDate(text)) << text;
  }
}

TEST(date_literal, a_time_may_follow) {
  EXPECT_EQ(isoDate("3/14/2019 15:09:26"), "2019-03-14 15:09:26");
  EXPECT_EQ(isoDate("3/14/2019 3:09 PM"), "2019-03-14 15:09:00");
  EXPECT_EQ(isoDate("3/14/2019 12:00:00 AM"), "2019-03-14");
  EXPECT_FALSE(isoDate("3/14/2019 24:00"));
  EXPECT_FALSE(isoDate("3/14/2019 13:00 PM"));
}

TEST(date_literal, anything_else_is_no_date) {
  for (const char* text : {"", " ", "today", "1/2", "1/2-2019", "1/2/2019x", "1//2019", "-1/2/2019",
                           "1/2/20190", "1/2/201", "1 2 2019", "99999999999/1/1"}) {
    EXPECT_FALSE(isoDate(text)) << text;
  }
}

}  // namespace
}  // namespace pelmora::sql
