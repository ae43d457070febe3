// Names that were mistyped.
// SPDX-License-Identifier: MIT
#include "base/suggestion.h"

#include <gmock/gmock.h>

namespace pelmora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(typing_distance, counts_each_kind_of_error_once) {
  EXPECT_EQ(typingDistance("Rotor A", "rotor a"), 0U);
  EXPECT_EQ(typingDistance("Rotor A", "Roter A"), 1U);
  EXPECT_EQ(typingDistance("Rotor A", "Roor A"), 1U);
  EXPECT_EQ(typingDistance("Rotor A", "Rotorr A"), 1U);
  EXPECT_EQ(typingDistance("Rotor A", "Rootr A"), 1U);
  EXPECT_EQ(typingDistance("", "abc"), 3U);
  EXPECT_EQ(typingDistance("kitten", "sitting"), 3U);
}

TEST(suggestions, are_the_nearest_names) {
  EXPECT_THAT(nearest("Rotr A", {"Ratio", "Rotor A", "Rotor B", "Rotor Sum"}),
              ElementsAre("Rotor A"));
  EXPECT_THAT(nearest("Rotor", {"Rotor A", "Motor"}), ElementsAre("Motor"));
  EXPECT_THAT(nearest("Rotor C", {"Rotor A", "Rotor B"}), ElementsAre("Rotor A", "Rotor B"));
}

TEST(suggestions, are_not_made_for_names_that_are_far_away) {
  EXPECT_THAT(nearest("Vortex", {"Rotor A", "Ratio"}), IsEmpty());
  EXPECT_THAT(nearest("T", {"S"}), IsEmpty());
  EXPECT_THAT(nearest("", {"S"}), IsEmpty());
}

TEST(suggestions, are_a_question_or_a_list) {
  EXPECT_EQ(suggestion("Rotr A", {"Ratio", "Rotor A"}), "did you mean 'Rotor A'?");
  EXPECT_EQ(suggestion("Rotor C", {"Rotor A", "Rotor B"}), "did you mean 'Rotor A' or 'Rotor B'?");
  EXPECT_EQ(suggestion("x", {"Rotor A", "Ratio"}), "choose among 'Rotor A', 'Ratio'");
  EXPECT_EQ(suggestion("M9", {"M1", "M2", "M3", "M4", "M5", "M6", "M7", "M8", "M10"}),
            "choose among 'M1', 'M2', 'M3', 'M4', 'M5', 'M6', 'M7', 'M8' and 1 more");
}

}  // namespace
}  // namespace pelmora
