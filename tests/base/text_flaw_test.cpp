// SPDX-License-Identifier: MIT
#include "base/text_flaw.h"

#include <gtest/gtest.h>

namespace pelmora {
namespace {

TEST(text_flaw, is_none_in_texts_of_any_script) {
  EXPECT_EQ(flawOf("Rotor A 中文 متر \U0001F600"), TextFlaw::none);
  EXPECT_EQ(flawOf(""), TextFlaw::none);
}

TEST(text_flaw, is_a_control_character) {
  for (const char* text : {"a\n", "\x7F", "\u0080", "\u009F", "\u2028", "\u2029"})
    EXPECT_EQ(flawOf(text), TextFlaw::control) << text;
  EXPECT_EQ(flawOf(std::string_view("a\0b", 3)), TextFlaw::control);
}

// The twelve characters that have the property Bidi_Control in PropList.txt of Unicode 15.
TEST(text_flaw, is_a_character_that_turns_the_direction) {
  for (const char* text : {"\u061C", "\u200E", "\u200F", "\u202A", "\u202B", "\u202C", "\u202D",
                           "\u202E", "\u2066", "\u2067", "\u2068", "\u2069"}) {
    EXPECT_EQ(flawOf(text), TextFlaw::bidirectional) << text;
  }
  EXPECT_EQ(flawOf("\u200D\u2030\u2065"), TextFlaw::none);
}

TEST(text_flaw, is_a_byte_that_is_no_utf8) {
  for (const char* text : {"\xFF", "\xC3", "\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "a\x80"})
    EXPECT_EQ(flawOf(text), TextFlaw::malformed) << text;
}

TEST(shortened_text, keeps_what_is_short_enough) {
  EXPECT_EQ(shortened("abc", 3), "abc");
  EXPECT_EQ(shortened("", 3), "");
}

TEST(shortened_text, is_cut_behind_a_whole_character) {
  EXPECT_EQ(shortened("abäcd", 3), "abä...");
  EXPECT_EQ(shortened("\xFF\xFF\xFF", 2), "\xFF\xFF...");
}

}  // namespace
}  // namespace pelmora
