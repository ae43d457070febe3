// How the raw parts of a series become one.
// SPDX-License-Identifier: MIT
#include "tests/component/fitting/fit_fixture.h"

namespace pelmora {
namespace {

using test::Journal;

const PointArray low{{1, 8}, {4, 7}};
const PointArray high{{6, 6}, {12, 5}};

class raw_parts : public StoredFitFixture {
 protected:
  // The status texts between the beginning and the fit.
  Journal mergeTexts() const {
    Journal texts;
    for (const std::string& text : statusTexts()) {
      if (text.starts_with("Started")) break;
      if (!text.starts_with("Determining")) texts.push_back(text);
    }
    return texts;
  }
};

TEST_F(raw_parts, every_part_is_kept_in_its_slot) {
  havePart(1, {{4, 7}, {1, 8}});
  havePart(2, {{3, 3}});
  havePart(4, {{12, 5}, {6, 6}});
  fit();
  EXPECT_EQ(record().Raw[0].Points, low);  // sorted
  EXPECT_EQ(record().Raw[1].Points, (PointArray{{3, 3}}));
  EXPECT_EQ(record().Raw[2].Points, PointArray());
  EXPECT_EQ(record().Raw[3].Points, high);
}

TEST_F(raw_parts, single_point_of_the_first_part_is_passed_over) {
  havePart(1, {{3, 3}});
  havePart(2, {{10, 5}, {1, 4}, {5, 4.5}});
  EXPECT_EQ(fit().size(), 3U);
  EXPECT_EQ(record().Merged, (PointArray{{1, 4}, {5, 4.5}, {10, 5}}));
  EXPECT_EQ(mergeTexts(), Journal{"Sorting Raw2 data in series Rotor A"});
}

TEST_F(raw_parts, two_parts_are_consolidated) {
  havePart(1, low);
  havePart(2, high);
  EXPECT_EQ(fit().size(), 3U);
  EXPECT_EQ(record().Merged, (PointArray{{1, 8}, {4, 7}, {6, 6}, {12, 5}}));
  EXPECT_EQ(mergeTexts(),
            (Journal{"Sorting raw1 data in series Rotor A", "Sorting Raw2 data in series Rotor A",
                     "Removing trailing curve points in series Rotor A",
                     "Consolidating raw1 and raw2 data in series Rotor A",
                     "Sorting merged data in series Rotor A"}));
}

TEST_F(raw_parts, every_further_part_is_consolidated_with_what_stands_so_far) {
  for (int part = 1; part <= 4; ++part) {
    havePart(part, {{3.0 * part, 10.0 - part}, {3.0 * part + 1, 9.5 - part}});
  }
  xMin_ = 3;
  EXPECT_EQ(fit().size(), 3U);
  EXPECT_EQ(record().Merged.size(), 8U);
  const Journal texts = mergeTexts();
  ASSERT_EQ(texts.size(), 13U);
  EXPECT_EQ(texts[5], "Sorting Raw3 data in series Rotor A");
  EXPECT_EQ(texts[7], "Consolidating raw1 and raw2 data in series Rotor A");
  EXPECT_EQ(texts[9], "Sorting Raw4 data in series Rotor A");
  EXPECT_EQ(texts[11], "Consolidating raw1 and raw2 data in series Rotor A");
}

TEST_F(raw_parts, single_points_of_later_parts_are_passed_over) {
  havePart(1, low);
  havePart(3, {{9, 9}});
  havePart(4, high);
  fit();
  EXPECT_EQ(record().Merged, (PointArray{{1, 8}, {4, 7}, {6, 6}, {12, 5}}));
}

// Rising ratio points are thinned down to the first of them.
const PointArray risingLow{{1, 1}, {2, 2}};
const PointArray risingHigh{{3, 3}, {4, 4}};

TEST_F(raw_parts, one_merged_point_gives_way_to_the_third_part) {
  host_.current.RatioCurve = true;
  havePart(1, risingLow);
  havePart(2, risingHigh);
  havePart(3, {{1, 9}, {12, 8}});
  EXPECT_EQ(fit().size(), 3U);
  EXPECT_EQ(record().Merged, (PointArray{{1, 9}, {12, 8}}));
}

TEST_F(raw_parts, one_merged_point_and_a_fourth_part_are_not_fitted) {
  host_.current.RatioCurve = true;
  shared_.fitRecord().Merged = {{8, 8}};
  havePart(1, risingLow);
  havePart(2, risingHigh);
  havePart(4, {{1, 9}, {12, 8}});
  EXPECT_EQ(fit(), PointArray());
  EXPECT_TRUE(isEmpty_);
  EXPECT_EQ(record().Merged, (PointArray{{8, 8}}));
  EXPECT_EQ(test::linesOf(journal_, "fit: "), Journal());
  EXPECT_EQ(boxes(), Journal());
  EXPECT_TRUE(isClosed());
}

TEST_F(raw_parts, one_merged_point_alone_is_fitted) {
  host_.current.RatioCurve = true;
  havePart(1, risingLow);
  havePart(2, risingHigh);
  xMin_ = xMax_ = 1;
  fit();
  EXPECT_EQ(record().Merged, (PointArray{{1, 1}}));
  EXPECT_EQ(test::linesOf(journal_, "fit: ").size(), 1U);
}

TEST_F(raw_parts, merge_that_fails_ends_the_operation) {
  platform().createBandTester = nullptr;
  shared_.fitRecord().Merged = {{8, 8}};
  havePart(1, low);
  havePart(2, high);
  havePart(3, high);
  EXPECT_EQ(fit(), PointArray());
  EXPECT_TRUE(isEmpty_);
  EXPECT_EQ(
      boxes(),
      Journal{"Error in rawData:consolidateRaw\r\nActiveX component can't create object|16|"});
  EXPECT_EQ(statusTexts().back(), "Removing trailing curve points in series Rotor A");
  EXPECT_EQ(record().Merged, (PointArray{{8, 8}}));
  EXPECT_TRUE(isClosed());
}

TEST_F(raw_parts, inversion_reaches_the_merge) {
  request_.bInverted = true;
  havePart(1, low);
  havePart(2, high);
  fit();
  EXPECT_EQ(record().Merged, (PointArray{{1, 8}, {4, 7}, {6, 6}, {12, 5}}));
}

}  // namespace
}  // namespace pelmora
