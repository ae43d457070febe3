// What happens when the range of the fit is not inside the raw data.
// SPDX-License-Identifier: MIT
#include "tests/component/fitting/fit_fixture.h"
#include "tests/support/comma_locale.h"
#include "ui/message_box.h"

namespace pelmora {
namespace {

using test::Journal;

class range_question : public StoredFitFixture {
 protected:
  range_question() {
    havePart(1, {{1.25, 4}, {5, 4.5}, {1.0 / 3 + 10, 5}});
    shared_.fitRecord().Merged = {{8, 8}};
    shared_.fitRecord().Fitted = {{9, 9}};
    xMax_ = 8;
  }
  void answer(int code) {
    recording_.answer = [code](const std::string&) { return code; };
  }
  void expectAborted(const PointArray& result) {
    EXPECT_EQ(result, PointArray());
    EXPECT_TRUE(isEmpty_);
    EXPECT_EQ(statusTexts().back(), "Aborted CurveFit MIN/MAX out of Raw range");
    EXPECT_EQ(record().Merged, (PointArray{{8, 8}}));
    EXPECT_EQ(record().Fitted, (PointArray{{9, 9}}));
    EXPECT_EQ(test::linesOf(journal_, "fit: "), Journal());
    EXPECT_TRUE(isClosed());
  }
};

TEST_F(range_question, shows_both_ranges_with_two_tabs_and_one) {
  xMin_ = 0.1 + 0.2;
  xMax_ = 1500000;
  fit();
  EXPECT_EQ(
      boxes(),
      Journal{
          "Min/Max values are out of range of raw data\r\nMin X : 0.3\t\tMin Raw : 1.25\r\nMax X "
          ": 1500000\tMax Raw : 10.3333333333333\r\n\r\nPress 'Abort' to cancel, 'Retry' to set "
          "Min/Max to Raw min/max or 'Ignore' to continue.|2|"});
}

TEST_F(range_question, numbers_follow_the_locale) {
  const test::CommaLocale locale;
  if (!locale.isSet()) GTEST_SKIP() << "no locale with a decimal comma";
  xMin_ = 0.5;
  fit();
  EXPECT_NE(boxes().at(0).find("Min X : 0,5\t\tMin Raw : 1,25\r\n"), std::string::npos);
}

TEST_F(range_question, is_not_asked_for_the_raw_range_itself) {
  xMin_ = 1.25;
  xMax_ = 1.0 / 3 + 10;
  EXPECT_EQ(fit().size(), 3U);
  EXPECT_EQ(boxes(), Journal());
}

TEST_F(range_question, is_asked_for_a_minimum_below_the_data) {
  xMin_ = 1.2499;
  fit();
  EXPECT_EQ(boxes().size(), 1U);
}

TEST_F(range_question, is_asked_for_a_maximum_above_the_data) {
  xMax_ = 10.34;
  fit();
  EXPECT_EQ(boxes().size(), 1U);
}

TEST_F(range_question, abort_leaves_the_last_results) {
  xMin_ = 1;
  answer(box_answer::abort);
  expectAborted(fit());
  EXPECT_EQ(xMin_, 1);
  EXPECT_EQ(boxes().size(), 1U);
}

TEST_F(range_question, answer_that_was_not_offered_aborts) {
  xMin_ = 1;
  for (const int code : {0, box_answer::ok, box_answer::cancel, box_answer::yes, 99}) {
    journal_.clear();
    answer(code);
    expectAborted(fit());
  }
}

TEST_F(range_question, retry_takes_the_raw_range_and_tells_the_caller) {
  xMin_ = 0.5;
  xMax_ = 99;
  answer(box_answer::retry);
  const PointArray curve = fit();
  EXPECT_FALSE(isEmpty_);
  EXPECT_EQ(xMin_, 1.25);
  EXPECT_EQ(xMax_, 1.0 / 3 + 10);
  ASSERT_EQ(curve.size(), 3U);
  EXPECT_NEAR(curve(0, 0), 1.25, 1e-12);
  EXPECT_NEAR(curve(2, 0), 1.0 / 3 + 10, 1e-12);
}

TEST_F(range_question, retry_replaces_an_end_that_fitted_too) {
  xMin_ = 0.5;
  xMax_ = 8;
  answer(box_answer::retry);
  fit();
  EXPECT_EQ(xMin_, 1.25);
  EXPECT_EQ(xMax_, 1.0 / 3 + 10);
}

TEST_F(range_question, ignore_fits_the_range_as_it_is) {
  xMin_ = 0.5;
  answer(box_answer::ignore);
  const PointArray curve = fit();
  ASSERT_EQ(curve.size(), 3U);
  EXPECT_NEAR(curve(0, 0), 0.5, 1e-12);
  EXPECT_EQ(xMin_, 0.5);
}

TEST_F(range_question, unattended_aborts_without_asking) {
  host_.current.Unattended = true;
  xMin_ = 1;
  expectAborted(fit());
  EXPECT_EQ(boxes(), Journal());
}

TEST_F(range_question, unattended_fit_inside_the_data_runs) {
  host_.current.Unattended = true;
  EXPECT_EQ(fit().size(), 3U);
}

TEST_F(range_question, no_box_to_ask_with_aborts) {
  platform().messageBox = nullptr;
  xMin_ = 1;
  expectAborted(fit());
}

}  // namespace
}  // namespace pelmora
