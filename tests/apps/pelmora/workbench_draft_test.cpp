// A series with other points left out, and the arguments of a request.
// SPDX-License-Identifier: MIT
#include "apps/pelmora/workbench/api/arguments.h"
#include "apps/pelmora/workbench/api/draft.h"
#include "apps/pelmora/workbench/api/settings_json.h"
#include "tests/support/scratch_folder.h"

#include <pelmora/calibration.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace pelmora::cli::workbench {
namespace {

namespace cal = pelmora::calibration;
using testing::HasSubstr;
using testing::SizeIs;

PointArray falling(std::size_t count) {
  PointArray points(count);
  for (std::size_t i = 0; i < count; ++i) {
    points(i, 0) = 10 * std::pow(1.3, static_cast<double>(i));
    points(i, 1) = 1300 - 5 * std::log(points(i, 0));
  }
  return points;
}

class WorkbenchDraft : public testing::Test {
 protected:
  WorkbenchDraft() : meter_(lab_.registerMeter("M1")) {
    lab_.storeRaw(meter_, "K", 1, falling(12));
    lab_.storeRaw(meter_, "K", 3, falling(6));
    (void)lab_.exclude(meter_, "K", {.part = 1, .numbers = {2, 5}}, "air");
  }
  [[nodiscard]] cal::StoredSeries stored() const { return lab_.series(meter_, "K"); }

  pelmora::test::ScratchFolder folder_;
  cal::Database lab_ = cal::create(folder_.file("curves.db"));
  cal::Meter meter_;
};

// The draft must be what the database would give if it were stored.
TEST_F(WorkbenchDraft, has_the_points_that_storing_it_leaves) {
  const std::vector<DraftExclusion> wanted{{{1, 5}, "air"}, {{1, 7}, "spike"}, {{3, 1}, "spike"}};
  const cal::StoredSeries draft = withExclusions(stored(), wanted);
  storeExclusions(lab_, stored(), wanted, false);
  const cal::StoredSeries now = stored();
  EXPECT_EQ(draft.raw, now.raw);
  ASSERT_EQ(draft.excluded.size(), now.excluded.size());
  for (std::size_t i = 0; i < now.excluded.size(); ++i) {
    EXPECT_EQ(draft.excluded[i].part, now.excluded[i].part);
    EXPECT_EQ(draft.excluded[i].number, now.excluded[i].number);
    EXPECT_EQ(draft.excluded[i].roshko, now.excluded[i].roshko);
    EXPECT_EQ(draft.excluded[i].exclusion.reason, now.excluded[i].exclusion.reason);
  }
  EXPECT_EQ(draft.numberOf(1, 5), now.numberOf(1, 5));
}

TEST_F(WorkbenchDraft, without_exclusions_is_the_whole_series) {
  const cal::StoredSeries draft = withExclusions(stored(), {});
  EXPECT_EQ(draft.raw[0].size(), 12U);
  storeExclusions(lab_, stored(), {}, false);
  EXPECT_EQ(stored().raw, draft.raw);
}

TEST_F(WorkbenchDraft, refuses_a_point_that_is_not_there_or_listed_twice) {
  EXPECT_THROW((void)withExclusions(stored(), {{{1, 13}, "x"}}), cal::BadData);
  EXPECT_THROW((void)withExclusions(stored(), {{{2, 1}, "x"}}), cal::BadData);
  EXPECT_THROW((void)withExclusions(stored(), {{{1, 3}, "x"}, {{1, 3}, "y"}}), cal::BadData);
}

TEST_F(WorkbenchDraft, needs_a_reason_to_be_stored) {
  EXPECT_THROW(storeExclusions(lab_, stored(), {{{1, 2}, ""}, {{1, 5}, ""}, {{1, 3}, " "}}, false),
               cal::BadData);
}

std::string refusalOf(const std::string& body) {
  try {
    const Arguments arguments = Arguments::ofBody(body);
    (void)settingsOf(arguments);
  } catch (const cal::BadData& failure) {
    return failure.what();
  }
  return {};
}

TEST(workbench_settings, come_back_as_they_were_sent) {
  cal::FitSettings settings;
  settings.band = 0.25;
  settings.points = 60;
  settings.spacing = cal::PointSpacing::optimal;
  settings.min = 12.5;
  settings.fitMax = 900;
  settings.ratio = true;
  settings.mergeBand = 0.2;
  settings.cutsOverlap = false;
  settings.choice = cal::Choice::adjustedR2;
  settings.without = {"Polynomial 10th Order"};
  settings.maxOrder = 8;
  settings.outside = cal::RangePolicy::extrapolate;
  settings.equations = cal::EquationList::parse("Line\ta+b*x\r\n", "test");
  const auto sent = settingsJson(settings);
  EXPECT_EQ(settingsJson(settingsOf(Arguments::ofBody(sent.dump()))), sent);
}

TEST(workbench_settings, refuse_what_they_cannot_be) {
  EXPECT_THAT(refusalOf(R"({"band": -1})"), HasSubstr("'settings.band' must be from 0 to 100"));
  EXPECT_THAT(refusalOf(R"({"band": "0.3"})"), HasSubstr("'band' must be a number"));
  EXPECT_THAT(refusalOf(R"({"points": 1})"), HasSubstr("from 2 to 32767"));
  EXPECT_THAT(refusalOf(R"({"points": 2.5})"), HasSubstr("'points' must be a whole number"));
  EXPECT_THAT(refusalOf(R"({"points": 18446744073709551615})"), HasSubstr("'points'"));
  EXPECT_THAT(refusalOf(R"({"range": {"mni": 3}})"), HasSubstr("'range.mni' is not an argument"));
  EXPECT_THAT(refusalOf(R"({"bnad": 3})"), HasSubstr("'bnad' is not an argument"));
  EXPECT_THAT(refusalOf(R"({"choose": "best"})"), HasSubstr("trusted or adjusted-r2"));
  EXPECT_THAT(refusalOf(R"({"without": [1]})"), HasSubstr("list of texts"));
  EXPECT_THAT(refusalOf("[1]"), HasSubstr("not a JSON object"));
  EXPECT_THAT(refusalOf("{"), HasSubstr("not a JSON object"));
  EXPECT_THAT(refusalOf(R"({"band": 1e999})"), HasSubstr("not a JSON object"));
  EXPECT_THAT(refusalOf("{\"equations\": \"\xff\"}"), HasSubstr("not a JSON object"));
}

TEST(workbench_arguments, of_a_query_are_texts_that_read_as_numbers) {
  const Arguments arguments = Arguments::ofQuery({{"calibration", "3"}, {"meter", "M 1"}});
  EXPECT_EQ(arguments.findInteger("calibration", 0, 9), 3);
  EXPECT_EQ(arguments.text("meter"), "M 1");
  EXPECT_THROW((void)arguments.integer("meter", 0, 9), cal::BadData);
  EXPECT_THROW((void)arguments.text("series"), cal::BadData);
  EXPECT_THROW(arguments.requireOnly({"meter"}), cal::BadData);
  EXPECT_THROW((void)Arguments::ofQuery({{"a", "1"}, {"a", "2"}}), cal::BadData);
  EXPECT_THROW((void)Arguments::ofQuery({{"a", "\xc3"}}), cal::BadData);
}

TEST(workbench_arguments, do_not_nest_without_end) {
  EXPECT_THROW((void)Arguments::ofBody(std::string(1000000, '[')), cal::BadData);
  const std::string deep = std::string(200000, '[') + std::string(200000, ']');
  EXPECT_THROW((void)Arguments::ofBody(R"({"settings":{"a":)" + deep + "}}"), cal::BadData);
  EXPECT_TRUE(
      Arguments::ofBody(R"({"a":"[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[\"[["})").has("a"));
}

}  // namespace
}  // namespace pelmora::cli::workbench
