// SPDX-License-Identifier: MIT
#include "store/point_rows.h"

#include "tests/support/point_rows.h"

#include <pelmora/error.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace pelmora {
namespace {

using test::pointRows;
using test::recordsetOf;
using test::Rows;

Rows countedRows(std::size_t count) {
  PointArray points(count);
  for (std::size_t i = 0; i < count; ++i) {
    points(i, 0) = static_cast<double>(i) + 1;
    points(i, 1) = -static_cast<double>(i) - 1;
  }
  return pointRows(points);
}

int errorNumberOf(const std::function<void()>& body) {
  try {
    body();
  } catch (const Error& error) {
    return error.number();
  }
  return 0;
}

TEST(points_from_rows, takes_the_fields_by_name_in_the_order_of_the_rows) {
  auto rows =
      recordsetOf({{"seriesID", "Strouhal", "ROSHKO"}, {{1.0, 7.5, 100.0}, {1.0, 6.5, 50.0}}});
  EXPECT_EQ(pointsFromRows(*rows), (PointArray{{100, 7.5}, {50, 6.5}}));
}

TEST(points_from_rows, no_rows_give_an_array_without_bounds) {
  auto rows = recordsetOf(pointRows({}));
  const PointArray points = pointsFromRows(*rows);
  EXPECT_EQ(points, PointArray());
  EXPECT_EQ(points.columns(), 0U);
}

TEST(points_from_rows, no_rows_need_no_fields) {
  auto rows = recordsetOf({});
  EXPECT_EQ(pointsFromRows(*rows), PointArray());
}

TEST(points_from_rows, leaves_the_record_set_behind_the_last_row) {
  auto rows = recordsetOf(countedRows(3));
  (void)pointsFromRows(*rows);
  EXPECT_TRUE(rows->atEnd());
}

TEST(points_from_rows, whole_numbers_and_texts_become_doubles) {
  auto rows = recordsetOf({{"roshko", "strouhal"}, {{std::int64_t{7}, std::string("2.5")}}});
  EXPECT_EQ(pointsFromRows(*rows), (PointArray{{7, 2.5}}));
}

TEST(points_from_rows, null_is_an_error) {
  auto rows = recordsetOf({{"roshko", "strouhal"}, {{1.0, Value()}}});
  EXPECT_EQ(errorNumberOf([&] { (void)pointsFromRows(*rows); }), 94);
}

TEST(points_from_rows, text_that_is_no_number_is_a_type_mismatch) {
  auto rows = recordsetOf({{"roshko", "strouhal"}, {{std::string("fast"), 1.0}}});
  EXPECT_EQ(errorNumberOf([&] { (void)pointsFromRows(*rows); }), 13);
}

TEST(points_from_rows, missing_field_is_passed_on) {
  auto rows = recordsetOf({{"roshko"}, {{1.0}}});
  EXPECT_EQ(errorNumberOf([&] { (void)pointsFromRows(*rows); }), 3265);
}

TEST(points_from_rows, as_many_rows_as_16_bits_count_are_read) {
  auto rows = recordsetOf(countedRows(32767));
  const PointArray points = pointsFromRows(*rows);
  ASSERT_EQ(points.size(), 32767U);
  EXPECT_EQ(points(32766, 0), 32767);
  EXPECT_EQ(points(32766, 1), -32767);
}

TEST(points_from_rows, more_rows_than_16_bits_count_overflow) {
  auto rows = recordsetOf(countedRows(32768));
  EXPECT_EQ(errorNumberOf([&] { (void)pointsFromRows(*rows); }), 6);
}

TEST(curve_40, roshko_goes_first) {
  auto rows = recordsetOf(pointRows({{100, 7.5}, {50, 6.5}}));
  const FixedCurve40 curve = curve40FromRows(*rows);
  EXPECT_EQ(curve.first[0], 100.0F);
  EXPECT_EQ(curve.second[0], 7.5F);
  EXPECT_EQ(curve.first[1], 50.0F);
  EXPECT_EQ(curve.second[1], 6.5F);
}

TEST(curve_40, swapped_form_has_strouhal_first) {
  auto rows = recordsetOf(pointRows({{100, 7.5}, {50, 6.5}}));
  const FixedCurve40 curve = curve40FromRowsSwapped(*rows);
  EXPECT_EQ(curve.first[1], 6.5F);
  EXPECT_EQ(curve.second[1], 50.0F);
}

TEST(curve_40, unused_slots_are_zero) {
  auto rows = recordsetOf(countedRows(39));
  const FixedCurve40 curve = curve40FromRows(*rows);
  EXPECT_EQ(curve.first[38], 39.0F);
  EXPECT_EQ(curve.first[39], 0.0F);
  EXPECT_EQ(curve.second[39], 0.0F);
}

TEST(curve_40, no_rows_give_zeros) {
  auto rows = recordsetOf({});
  EXPECT_EQ(curve40FromRows(*rows), FixedCurve40());
}

TEST(curve_40, rows_past_the_40th_are_left_unread) {
  auto rows = recordsetOf(countedRows(42));
  const FixedCurve40 curve = curve40FromRows(*rows);
  EXPECT_EQ(curve.first[39], 40.0F);
  ASSERT_FALSE(rows->atEnd());
  EXPECT_EQ(std::get<double>(rows->value("roshko")), 41.0);
}

TEST(curve_40, reading_starts_at_the_current_row) {
  auto rows = recordsetOf(countedRows(45));
  rows->moveNext();
  rows->moveNext();
  const FixedCurve40 curve = curve40FromRowsSwapped(*rows);
  EXPECT_EQ(curve.second[0], 3.0F);
  EXPECT_EQ(curve.second[39], 42.0F);
}

TEST(curve_40, values_beyond_single_precision_overflow) {
  for (const PointArray& points : {PointArray{{1e39, 1}}, PointArray{{1, -1e39}}}) {
    auto rows = recordsetOf(pointRows(points));
    EXPECT_EQ(errorNumberOf([&] { (void)curve40FromRows(*rows); }), 6);
  }
}

TEST(curve_40, values_are_narrowed_to_single_precision) {
  auto rows = recordsetOf(pointRows({{0.1, 1.0 / 3}}));
  const FixedCurve40 curve = curve40FromRows(*rows);
  EXPECT_EQ(curve.first[0], 0.1F);
  EXPECT_EQ(curve.second[0], 1.0F / 3);
}

TEST(curve_40, null_is_an_error) {
  auto rows = recordsetOf({{"roshko", "strouhal"}, {{Value(), 1.0}}});
  EXPECT_EQ(errorNumberOf([&] { (void)curve40FromRows(*rows); }), 94);
}

}  // namespace
}  // namespace pelmora
