// SPDX-License-Identifier: MIT
#include "base/text_case.h"

#include <gtest/gtest.h>

namespace pelmora {
namespace {

TEST(text_case, letters_of_four_alphabets_compare_without_regard_to_case) {
  EXPECT_EQ(compareTexts("TF-10021 q", "tf-10021 Q"), 0);
  EXPECT_EQ(compareTexts("ÀÉÎÖÜÝÞ", "àéîöüýþ"), 0);
  EXPECT_EQ(compareTexts("ĀČĐĹŁŃŘŠŸŹŽ", "āčđĺłńřšÿźž"), 0);
  EXPECT_EQ(compareTexts("ΑΒΓΔΩΆΈΉΊΌΎΏΪ", "αβγδωάέήίόύώϊ"), 0);
  EXPECT_EQ(compareTexts("АБВГЯЁЂЏҐӀӁ", "абвгяёђџґӏӂ"), 0);
}

TEST(text_case, the_final_sigma_is_a_sigma) { EXPECT_EQ(compareTexts("ΌΓΚΟΣ", "όγκος"), 0); }

TEST(text_case, signs_between_the_letters_have_no_case) {
  EXPECT_NE(compareTexts("×", "÷"), 0);
  EXPECT_NE(compareTexts("[", "{"), 0);
  EXPECT_NE(compareTexts("@", "`"), 0);
}

TEST(text_case, other_letters_stay_different) {
  EXPECT_NE(compareTexts("a", "ä"), 0);
  EXPECT_NE(compareTexts("ß", "ss"), 0);
  EXPECT_NE(compareTexts("о", "o"), 0);  // Cyrillic, Latin
}

TEST(text_case, order_is_that_of_the_small_letters) {
  EXPECT_LT(compareTexts("a", "B"), 0);
  EXPECT_GT(compareTexts("b", "A"), 0);
  EXPECT_LT(compareTexts("ab", "ABC"), 0);
  EXPECT_LT(compareTexts("", "a"), 0);
}

TEST(text_case, bytes_that_are_no_text_still_compare) {
  EXPECT_EQ(compareTexts("\xFF\xC3", "\xFF\xC3"), 0);
  EXPECT_NE(compareTexts("\xFF", "\xFE"), 0);
  EXPECT_NE(compareTexts("\xE2\x82", "\xE2\x83"), 0);
}

}  // namespace
}  // namespace pelmora
