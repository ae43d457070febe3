// SPDX-License-Identifier: MIT
#include "base/date_text.h"

#include <gtest/gtest.h>

namespace pelmora {
namespace {

TEST(date_text, knows_the_days_of_the_calendar) {
  for (const char* day : {"2026-11-21", "2024-02-29", "2000-02-29", "2026-12-31", "0001-01-01"})
    EXPECT_TRUE(isDay(day)) << day;
}

TEST(date_text, takes_nothing_else_for_a_day) {
  for (const char* text : {"", "2026-11", "2026-02-29", "1900-02-29", "2026-04-31", "2026-13-01",
                           "2026-00-10", "2026-01-00", "0000-01-01", "21.11.2026", "2026-11-2x",
                           "2026-1 -21", "2026-11-211", "+026-11-21", "2026--1-21"})
    EXPECT_FALSE(isDay(text)) << text;
}

}  // namespace
}  // namespace pelmora
