// SPDX-License-Identifier: MIT
#include "report/markup.h"

#include <gtest/gtest.h>

#include <cmath>

namespace pelmora::report {
namespace {

TEST(markup, escapes_what_markup_gives_a_meaning) {
  EXPECT_EQ(escaped("<a href=\"x\">'&amp;'</a>"),
            "&lt;a href=&quot;x&quot;&gt;&#39;&amp;amp;&#39;&lt;/a&gt;");
}

TEST(markup, keeps_characters_of_all_lengths) {
  const std::string text = "R\u00B2 \u20AC \U0001F600\n\tx";
  EXPECT_EQ(escaped(text), text);
}

TEST(markup, replaces_what_is_no_character) {
  EXPECT_EQ(escaped(std::string("a\x00z", 3)), "a\uFFFDz");
  EXPECT_EQ(escaped("\xC0\xAF|\xED\xA0\x80|\xF5\x80\x80\x80|\xE2\x82"),
            "\uFFFD\uFFFD|\uFFFD\uFFFD\uFFFD|\uFFFD\uFFFD\uFFFD\uFFFD|\uFFFD\uFFFD");
}

TEST(markup, writes_short_coordinates) {
  EXPECT_EQ(coordinate(12.346), "12.35");
  EXPECT_EQ(coordinate(-0.5), "-.5");
  EXPECT_EQ(coordinate(-0.001), "0");
  EXPECT_EQ(coordinate(100), "100");
}

TEST(markup, writes_numbers_exactly) {
  EXPECT_EQ(exactNumber(0.1), "0.1");
  EXPECT_EQ(exactNumber(std::nan("")), "NaN");
}

}  // namespace
}  // namespace pelmora::report
