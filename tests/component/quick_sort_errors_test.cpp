// SPDX-License-Identifier: MIT
#include "tests/support/journal.h"
#include "tests/support/recording_platform.h"
#include "ui/form_presenter.h"

#include <pelmora/error.h>
#include <pelmora/types.h>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace pelmora {
namespace {

class quick_sort_errors : public testing::Test {
 protected:
  test::Journal journal_;
  test::RecordingPlatform platform_{journal_};
};

const test::Journal outOfRangeBox{"box: Subscript out of range|0|"};

TEST_F(quick_sort_errors, array_without_bounds_is_told_to_the_operator) {
  PointArray points;
  quickSortPoints(points, 0, 1, 0, 0, true);
  EXPECT_EQ(journal_, outOfRangeBox);
}

TEST_F(quick_sort_errors, rows_beyond_the_array_are_told) {
  PointArray points{{2, 1}, {1, 2}};
  quickSortPoints(points, 0, 1, 0, 5, true);
  EXPECT_EQ(journal_, outOfRangeBox);
}

TEST_F(quick_sort_errors, rows_below_zero_are_told) {
  PointArray points{{2, 1}, {1, 2}};
  quickSortPoints(points, 0, 1, -3, 1, true);
  EXPECT_EQ(journal_, outOfRangeBox);
}

TEST_F(quick_sort_errors, sort_column_beyond_the_array_is_told) {
  PointArray points{{2, 1}, {1, 2}};
  quickSortPoints(points, 2, 1, 0, 1, true);
  EXPECT_EQ(journal_, outOfRangeBox);
  EXPECT_EQ(points, (PointArray{{2, 1}, {1, 2}}));
}

// The exchange stops at the missing column: what stands before it has moved already.
TEST_F(quick_sort_errors, last_column_beyond_the_array_is_told) {
  PointArray points{{2, 1}, {1, 2}};
  quickSortPoints(points, 0, 2, 0, 1, true);
  EXPECT_EQ(journal_, outOfRangeBox);
  EXPECT_EQ(points, (PointArray{{1, 2}, {2, 1}}));
}

TEST_F(quick_sort_errors, index_past_16_bits_is_an_overflow) {
  PointArray points(32768);
  quickSortPoints(points, 0, 1, 32767, 32767, true);
  EXPECT_EQ(journal_, test::Journal{"box: Overflow|0|"});
}

TEST_F(quick_sort_errors, the_message_form_has_an_ok_button_and_no_title_of_its_own) {
  struct Presenter : FormPresenter {
    explicit Presenter(test::Journal& into) : journal(into) {}
    void showModal(frmMessage& form) override {
      journal.push_back("form: " + form.Message + "|" + std::to_string(form.ButtonStyle) + "|" +
                        form.Caption);
      form.OKButton_Click();
    }
    test::Journal& journal;
  };
  platform().createFormPresenter = [&] { return std::make_unique<Presenter>(journal_); };
  PointArray points{{1, 2}};
  quickSortPoints(points, 0, 1, 0, 3, true);
  EXPECT_EQ(journal_, test::Journal{"form: Subscript out of range|0|"});
}

TEST_F(quick_sort_errors, throwing_pump_is_told_with_its_text) {
  platform_.onPump = [] { throw std::runtime_error("window lost"); };
  PointArray points{{2, 1}, {1, 2}};
  quickSortPoints(points, 0, 1, 0, 1, true);
  EXPECT_EQ(journal_, test::Journal{"box: window lost|0|"});
  EXPECT_EQ(points, (PointArray{{2, 1}, {1, 2}}));
}

TEST_F(quick_sort_errors, any_exception_of_a_pump_is_told) {
  platform_.onPump = [] { throw 42; };
  PointArray points{{2, 1}, {1, 2}};
  quickSortPoints(points, 0, 1, 0, 1, true);
  EXPECT_EQ(journal_, test::Journal{"box: Invalid procedure call or argument|0|"});
}

// Two passes over the whole leave the ranges 2 1 and 5 4 around the 3.
TEST_F(quick_sort_errors, failed_range_ends_alone_and_the_ranges_around_it_go_on) {
  PointArray points{{2, 0}, {5, 0}, {3, 0}, {1, 0}, {4, 0}};
  platform_.onPump = [&] {
    if (platform_.pumps == 3) throw Error(5, "host", "no time");
  };
  quickSortPoints(points, 0, 1, 0, 4, true);
  EXPECT_EQ(journal_, test::Journal{"box: no time|0|"});
  EXPECT_EQ(points, (PointArray{{2, 0}, {1, 0}, {3, 0}, {4, 0}, {5, 0}}));
}

TEST_F(quick_sort_errors, array_that_shrinks_while_it_is_sorted_is_told) {
  PointArray points{{3, 0}, {2, 0}, {1, 0}};
  platform_.onPump = [&] { points = PointArray(); };
  quickSortPoints(points, 0, 1, 0, 2, true);
  EXPECT_EQ(journal_, outOfRangeBox);
}

TEST_F(quick_sort_errors, sort_within_a_sort_is_allowed) {
  PointArray outer{{3, 0}, {2, 0}, {1, 0}};
  PointArray inner{{2, 0}, {1, 0}};
  platform_.onPump = [&] {
    platform_.onPump = nullptr;
    quickSortPoints(inner, 0, 1, 0, 1, true);
  };
  quickSortPoints(outer, 0, 1, 0, 2, true);
  EXPECT_EQ(outer, (PointArray{{1, 0}, {2, 0}, {3, 0}}));
  EXPECT_EQ(inner, (PointArray{{1, 0}, {2, 0}}));
}

TEST_F(quick_sort_errors, no_pump_and_no_box_leave_the_sort_as_it_is) {
  platform() = {};
  PointArray points{{2, 1}, {1, 2}};
  quickSortPoints(points, 0, 1, 0, 1, true);
  EXPECT_EQ(points, (PointArray{{1, 2}, {2, 1}}));
  quickSortPoints(points, 0, 1, 0, 9, true);
}

}  // namespace
}  // namespace pelmora
