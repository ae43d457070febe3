// SPDX-License-Identifier: MIT
#include "base/utf8_text.h"

#include <gtest/gtest.h>

#include <string>

namespace pelmora {
namespace {

// Source: RFC 3629, section 7.
TEST(utf8_text, characters_of_every_length_are_appended) {
  std::string text;
  for (const char32_t codePoint : {U'\x41', U'\x391', U'\xD55C', U'\x2262', U'\x233B4'})
    appendUtf8(text, codePoint);
  EXPECT_EQ(text, "A\xCE\x91\xED\x95\x9C\xE2\x89\xA2\xF0\xA3\x8E\xB4");
}

TEST(utf8_text, ansi_letters_become_utf8) {
  EXPECT_EQ(utf8FromAnsi("f\xFCnfte Ordnung, 70 \xB0"), "f\xC3\xBCnfte Ordnung, 70 \xC2\xB0");
}

TEST(utf8_text, ansi_signs_of_the_windows_code_page_become_utf8) {
  EXPECT_EQ(utf8FromAnsi("\x80 \x93x\x94 \x96 \x9F"),
            "\xE2\x82\xAC \xE2\x80\x9Cx\xE2\x80\x9D \xE2\x80\x93 \xC5\xB8");
}

TEST(utf8_text, ansi_bytes_without_a_letter_become_controls) {
  EXPECT_EQ(utf8FromAnsi("\x81 \x9D"), "\xC2\x81 \xC2\x9D");
}

TEST(utf8_text, utf8_stays_as_it_is) {
  for (const std::string text :
       {"", "plain", "f\xC3\xBCnfte", "\xE2\x82\xAC", "\xF0\x9F\x98\x80", "\xED\x9F\xBF"}) {
    EXPECT_EQ(utf8FromAnsi(text), text);
  }
}

TEST(utf8_text, what_is_not_well_formed_is_ansi) {
  EXPECT_EQ(utf8FromAnsi("\xC3\xBC \xFC"), "\xC3\x83\xC2\xBC \xC3\xBC");  // one stray byte
  EXPECT_EQ(utf8FromAnsi("\xC3"), "\xC3\x83");                            // cut off
  EXPECT_EQ(utf8FromAnsi("\xC0\xA0"), "\xC3\x80\xC2\xA0");                // longer than need be
  EXPECT_EQ(utf8FromAnsi("\xED\xA0\xA1"), "\xC3\xAD\xC2\xA0\xC2\xA1");  // half of a surrogate pair
  EXPECT_EQ(utf8FromAnsi("\xF4\xA0\xA0\xA0"),  // beyond the last code point
            "\xC3\xB4\xC2\xA0\xC2\xA0\xC2\xA0");
  EXPECT_EQ(utf8FromAnsi("\xF8\xA0"), "\xC3\xB8\xC2\xA0");  // no lead byte
}

}  // namespace
}  // namespace pelmora
