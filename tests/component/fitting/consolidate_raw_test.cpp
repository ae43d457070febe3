// SPDX-License-Identifier: MIT
#include "component/merging.h"
#include "tests/component/fitting/fitting_fixture.h"

#include <cmath>
#include <random>
#include <utility>

namespace pelmora {
namespace {

using test::Journal;
using Points = std::vector<std::pair<double, double>>;

Points rowsOf(const PointArray& points) {
  Points rows;
  for (std::size_t i = 0; i < points.size(); ++i) rows.emplace_back(points(i, 0), points(i, 1));
  return rows;
}

PointArray arrayOf(const Points& rows) {
  PointArray points(rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    points(i, 0) = rows[i].first;
    points(i, 1) = rows[i].second;
  }
  return points;
}

Points negated(Points rows) {
  for (auto& row : rows) row.first = -row.first;
  return rows;
}

Points sortedBy(int column, const Points& rows) {
  PointArray points = arrayOf(rows);
  const auto last = static_cast<std::int16_t>(rows.size() - 1);
  quickSortPoints(points, static_cast<std::int16_t>(column), 1, 0, last, true);
  return rowsOf(points);
}

// The steps of a merge, one after the other, and the band widths of its tests.
struct MergeModel {
  std::vector<float> bandWidths{};

  int cutIndex(const Points& L, const Points& S) {
    float width = 0.1F;
    bool wasInside = false;
    for (int i = static_cast<int>(L.size()) - 1; i >= 0; --i) {
      const auto [x, y] = L[static_cast<std::size_t>(i)];
      for (std::size_t k = S.size() - 1; k >= 1; --k) {
        const auto [xk, yk] = S[k];
        const auto [xp, yp] = S[k - 1];
        if (xk < x) break;
        if (xp <= x && x <= xk) {
          bandWidths.push_back(width);
          const test::Segment segment{xp, yp, xk, yk};
          if (segment.holds(x, y, static_cast<double>(width))) {
            wasInside = true;
          } else {
            width = 0.045F;
            if (!wasInside) return i + 1;
            wasInside = false;
          }
        }
      }
    }
    return 0;
  }

  Points merge(Points A, Points B, bool inverted, bool ratio) {
    if (inverted) {
      A = negated(A);
      B = negated(B);
    }
    const bool secondIsLong = A.back().first <= B.back().first;
    const Points& L = secondIsLong ? B : A;
    const Points& S = secondIsLong ? A : B;
    Points R(L.begin() + cutIndex(L, S), L.end());
    R.insert(R.end(), S.begin(), S.end());
    if (inverted) R = negated(R);
    if (ratio) {
      const Points byStrouhal = sortedBy(1, R);
      R = {byStrouhal[0]};
      for (std::size_t i = 1; i < byStrouhal.size(); ++i) {
        if (byStrouhal[i].first <= byStrouhal[i - 1].first) R.push_back(byStrouhal[i]);
      }
    }
    return sortedBy(0, R);
  }
};

class consolidate_raw : public FittingFixture {
 protected:
  consolidate_raw() { shared_.fitRecord().SeriesName = "Rotor B"; }
  Points merge(const Points& A, const Points& B) {
    return rowsOf(consolidateRaw(context_, arrayOf(A), arrayOf(B), isEmpty_, inverted_, ratio_));
  }
  bool isEmpty_ = false, inverted_ = false, ratio_ = false;
};

TEST_F(consolidate_raw, follows_its_steps_on_random_parts) {
  std::mt19937 random(4711);
  std::uniform_real_distribution<double> noise(-1, 1);
  int cuts = 0;
  for (int round = 0; round < 4000; ++round) {
    // Both parts lie on one curve, give or take a band width; Roshko values repeat.
    const double spread = round % 4 == 0 ? 0 : 0.0006 * (round % 4);
    const auto part = [&] {
      Points rows;
      const std::size_t n = 1 + random() % 12;
      for (std::size_t i = 0; i < n; ++i) {
        const double x = 1 + static_cast<double>(random() % 15);
        rows.emplace_back(x, (2 - 0.01 * x) * (1 + spread * noise(random)));
      }
      return sortedBy(0, rows);
    };
    const Points A = part();
    const Points B = part();
    inverted_ = random() % 2 == 0;
    ratio_ = random() % 3 == 0;
    MergeModel model;
    const Points expected = model.merge(A, B, inverted_, ratio_);
    band_.bandWidths.clear();
    isEmpty_ = true;
    ASSERT_EQ(merge(A, B), expected) << "round " << round;
    ASSERT_EQ(band_.bandWidths, model.bandWidths) << "round " << round;
    ASSERT_FALSE(isEmpty_);
    cuts += !ratio_ && expected.size() < A.size() + B.size();
  }
  EXPECT_GT(cuts, 300);  // or the parts say nothing about cutting
  EXPECT_EQ(boxes(), Journal());
}

TEST_F(consolidate_raw, tells_its_steps) {
  merge({{1, 1}, {2, 1}}, {{3, 1}, {4, 1}});
  EXPECT_EQ(journal_, (Journal{"status: Removing trailing curve points in series Rotor B",
                               "status: Consolidating raw1 and raw2 data in series Rotor B",
                               "status: Sorting merged data in series Rotor B"}));
}

// S is level at 1 from x = 1 to x = 9; L reaches further.
TEST_F(consolidate_raw, points_up_to_the_last_one_outside_are_cut) {
  EXPECT_EQ(merge({{1, 1}, {9, 1}}, {{2, 5}, {3, 5}, {12, 7}}), (Points{{1, 1}, {9, 1}, {12, 7}}));
}

TEST_F(consolidate_raw, point_outside_right_behind_one_inside_is_tolerated) {
  EXPECT_EQ(merge({{1, 1}, {9, 1}}, {{2, 5}, {3, 1}, {12, 7}}),
            (Points{{1, 1}, {2, 5}, {3, 1}, {9, 1}, {12, 7}}));
}

TEST_F(consolidate_raw, second_point_outside_is_cut_with_all_before_it) {
  EXPECT_EQ(merge({{1, 1}, {9, 1}}, {{2, 1}, {3, 5}, {4, 5}, {5, 1}, {12, 7}}),
            (Points{{1, 1}, {4, 5}, {5, 1}, {9, 1}, {12, 7}}));
}

TEST_F(consolidate_raw, band_is_a_tenth_of_a_per_cent_until_a_point_lies_outside) {
  merge({{1, 1}, {9, 1}}, {{2, 1.0008}, {3, 5}, {4, 1.0008}, {12, 7}});
  EXPECT_EQ(band_.bandWidths, (std::vector<float>{0.1F, 0.1F, 0.045F}));
}

TEST_F(consolidate_raw, all_points_of_the_long_part_may_go) {
  EXPECT_EQ(merge({{1, 1}, {9, 1}}, {{2, 5}, {9, 5}}), (Points{{1, 1}, {9, 1}}));
}

// Of two parts that end at the same Roshko the second one loses its points.
TEST_F(consolidate_raw, second_part_is_the_long_one_on_a_tie) {
  EXPECT_EQ(merge({{1, 5}, {9, 5}}, {{2, 1}, {9, 1}}), (Points{{1, 5}, {9, 5}}));
}

TEST_F(consolidate_raw, first_part_is_the_long_one_when_it_reaches_further) {
  EXPECT_EQ(merge({{2, 5}, {10, 5}}, {{1, 1}, {9, 1}}), (Points{{1, 1}, {9, 1}, {10, 5}}));
}

// Negated, the first part ends at -1 and the second at -2: the first is the long one.
TEST_F(consolidate_raw, inversion_turns_the_comparison_around) {
  inverted_ = true;
  EXPECT_EQ(merge({{9, 1}, {1, 1}}, {{10, 5}, {2, 5}}), (Points{{1, 1}, {2, 5}, {10, 5}}));
}

TEST_F(consolidate_raw, result_comes_by_rising_roshko) {
  EXPECT_EQ(merge({{5, 1}, {6, 1}}, {{1, 1}, {7, 1}}), (Points{{1, 1}, {5, 1}, {6, 1}, {7, 1}}));
}

TEST_F(consolidate_raw, ratio_points_at_which_roshko_rises_are_dropped) {
  ratio_ = true;
  // By Strouhal: (9,1) (6,2) (7,3) (5,4) (2,5) (2,6); 7 rises over 6, 2 does not over 2;
  // sorting by Roshko exchanges the two equal ones.
  EXPECT_EQ(merge({{2, 5}, {2, 6}}, {{5, 4}, {6, 2}, {7, 3}, {9, 1}}),
            (Points{{2, 5}, {2, 6}, {5, 4}, {6, 2}, {9, 1}}));
}

// A point is measured against the one before it, kept or not.
TEST_F(consolidate_raw, ratio_point_behind_a_dropped_one_is_measured_against_that) {
  ratio_ = true;
  // By Strouhal: (3,1) (8,2) (5,3) (4,4): 8 is dropped, 5 and 4 stay although they exceed 3.
  EXPECT_EQ(merge({{3, 1}, {8, 2}}, {{4, 4}, {5, 3}}), (Points{{3, 1}, {4, 4}, {5, 3}}));
}

TEST_F(consolidate_raw, one_point_can_be_the_short_part) {
  EXPECT_EQ(merge({{3, 1}}, {{1, 1}, {5, 1}}), (Points{{1, 1}, {3, 1}, {5, 1}}));
  EXPECT_TRUE(band_.bandWidths.empty());
}

TEST_F(consolidate_raw, part_without_bounds_is_told) {
  isEmpty_ = false;
  EXPECT_EQ(merge({}, {{1, 1}}), Points());
  EXPECT_TRUE(isEmpty_);
  EXPECT_EQ(boxes(), Journal{"Error in rawData:consolidateRaw\r\nSubscript out of range|16|"});
}

TEST_F(consolidate_raw, more_points_than_16_bits_count_overflow) {
  Points many(20000);
  for (std::size_t i = 0; i < many.size(); ++i) many[i] = {static_cast<double>(i), 1};
  Points behind = many;
  for (auto& row : behind) row.first += 30000;
  EXPECT_EQ(merge(many, behind), Points());
  EXPECT_TRUE(isEmpty_);
  EXPECT_EQ(boxes(), Journal{"Error in rawData:consolidateRaw\r\nOverflow|16|"});
}

TEST_F(consolidate_raw, tester_is_released_before_the_next_step) {
  int alive = -1;
  const OperationContext watching{shared_, platform(), [&](const std::string& text) {
                                    if (text.starts_with("Consolidating")) alive = band_.alive;
                                  }};
  consolidateRaw(watching, {{1, 1}, {2, 1}}, {{1, 1}, {3, 1}}, isEmpty_, false, false);
  EXPECT_EQ(alive, 0);
}

}  // namespace
}  // namespace pelmora
