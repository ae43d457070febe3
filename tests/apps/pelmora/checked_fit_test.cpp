// Curves are stored for the points that were fitted, also where another program writes meanwhile.
// SPDX-License-Identifier: MIT
#include "apps/pelmora/checked_fit.h"
#include "apps/pelmora/refit/refit_all.h"
#include "tests/support/plain_sqlite.h"
#include "tests/support/scratch_folder.h"

#include <gmock/gmock.h>

#include <cmath>

namespace pelmora::cli {
namespace {

using test::PlainSqlite;
using testing::AllOf;
using testing::HasSubstr;

// Meter "M1" with series "S". What another program does, it does between fit and lock.
class fit_beside_another_program : public testing::Test {
 protected:
  fit_beside_another_program() {
    createCurveDatabase(path);
    CurveSession session({.path = path}, Access::write);
    session.data().setMeterSN("M1");
    session.data().SetRaw("S", "M1", line(1), 0, false);
    session.data().SetRaw("Other", "M1", line(2), 0, false);
  }
  static PointArray line(double factor) {
    PointArray points(30);
    for (std::size_t i = 0; i < points.size(); ++i) {
      points(i, 0) = std::pow(10, 1 + 0.05 * static_cast<double>(i));
      points(i, 1) = factor * (100 + 10 * std::log10(points(i, 0)));
    }
    return points;
  }
  void sql(const std::string& statements) const { PlainSqlite(path).run(statements); }
  // The fit of series S while another program runs the statements.
  SeriesFit fitWhile(const std::string& statements) const {
    CurveSession session({.path = path}, Access::write);
    StoredChange change(session, "fit", false);
    change.beforeLock = [&] { sql(statements); };
    SeriesFit fit = fitSeries(change, session.requireMeter("M1", -1), "S", {});
    change.finish();
    return fit;
  }
  RefitResult refitWhile(const std::string& statements) const {
    CurveSession session({.path = path}, Access::write);
    session.data().StatusUpdate = nullptr;
    StoredChange change(session, "refit", false);
    change.beforeLock = [&] { sql(statements); };
    RefitRequest request{refitTasks(session, "M1", -1, {"S"})};
    return refitAll(change, request).front();
  }
  [[nodiscard]] SeriesInfo stored(const std::string& series = "S") const {
    CurveSession session({.path = path}, Access::read);
    return session.requireSeries(session.requireMeter("M1", -1), series).Series.front();
  }
  [[nodiscard]] std::optional<CurveSettings> settings(std::int32_t seriesID) const {
    return keptCurveSettings(openDatabase(path), seriesID);
  }

  const std::string twice = "Update raw1 set Strouhal=2*Strouhal where seriesID=1";
  const test::ScratchFolder scratch;
  const std::string path = scratch.file("curves.db");
};

TEST_F(fit_beside_another_program, is_stored_at_once_where_nothing_of_it_changes) {
  const SeriesFit fit = fitWhile("Update raw1 set Strouhal=3*Strouhal where seriesID=2");
  EXPECT_TRUE(fit.isStored);
  EXPECT_FALSE(fit.changedMeanwhile);
  EXPECT_EQ(stored().Fitted, fit.curve);
}

TEST_F(fit_beside_another_program, is_made_again_for_changed_points) {
  const SeriesFit fit = fitWhile(twice);
  EXPECT_TRUE(fit.changedMeanwhile);
  EXPECT_EQ(stored().Merged, line(2));
  EXPECT_EQ(stored().Fitted, fit.curve);
  EXPECT_NEAR(fit.curve(0, 1), 220, 0.1);
}

TEST_F(fit_beside_another_program, is_made_again_where_the_last_bit_of_a_point_changes) {
  EXPECT_TRUE(fitWhile("Update raw1 set Strouhal=Strouhal*(1+3e-16) where seriesID=1 and "
                       "Roshko=10")
                  .changedMeanwhile);
}

TEST_F(fit_beside_another_program, stores_nothing_for_a_deleted_series) {
  try {
    (void)fitWhile("Delete from raw1 where seriesID=1; Delete from series where ID=1");
    FAIL() << "it was stored";
  } catch (const Trouble& trouble) {
    EXPECT_EQ(trouble.code(), ExitCode::unknownName);
    EXPECT_THAT(errorLine(trouble), AllOf(HasSubstr("series 'S' of meter 'M1', calibration 0"),
                                          HasSubstr("nothing was stored")));
  }
  EXPECT_EQ(settings(1), std::nullopt);
}

TEST_F(fit_beside_another_program, stores_nothing_for_another_series_with_the_id) {
  EXPECT_THROW((void)fitWhile("Update series set name='New' where ID=1"), Trouble);
  EXPECT_TRUE(stored("New").Fitted.empty());
  EXPECT_EQ(settings(1), std::nullopt);
}

TEST_F(fit_beside_another_program, goes_to_the_series_that_has_the_name_now) {
  const SeriesFit fit = fitWhile(
      "Update series set ID=77 where ID=1; Update raw1 set seriesID=77, Strouhal=2*Strouhal where "
      "seriesID=1");
  EXPECT_TRUE(fit.changedMeanwhile);
  EXPECT_EQ(stored().SeriesID, 77);
  EXPECT_EQ(stored().Merged, line(2));
  EXPECT_EQ(settings(1), std::nullopt);
  EXPECT_NE(settings(77), std::nullopt);
}

TEST_F(fit_beside_another_program, keeps_the_old_curve_where_the_new_points_cannot_be_fitted) {
  (void)fitWhile("");
  const PointArray before = stored().Fitted;
  const SeriesFit fit =
      fitWhile("Update raw1 set Strouhal=Strouhal*(1+0.3*(rowid%2)) where seriesID=1");
  EXPECT_TRUE(fit.trouble);
  EXPECT_FALSE(fit.isStored);
  EXPECT_EQ(stored().Fitted, before);
}

TEST_F(fit_beside_another_program, stores_nothing_where_points_can_no_longer_be_read) {
  try {
    (void)fitWhile("Update raw1 set Strouhal=NULL where seriesID=1");
    FAIL() << "it was stored";
  } catch (const Trouble& trouble) {
    EXPECT_EQ(trouble.code(), ExitCode::badInput);
    EXPECT_THAT(errorLine(trouble), HasSubstr("nothing was stored"));
  }
}

TEST_F(fit_beside_another_program, asks_nobody_while_others_wait) {
  CurveSession session({.path = path}, Access::write);
  StoredChange change(session, "fit", false);
  bool isLocked = false;
  change.beforeLock = [&] {
    sql("Update raw1 set Roshko=Roshko+5 where seriesID=1");
    isLocked = true;
  };
  int questions = 0;
  session.messages().askOperator = [&](const std::string&) {
    EXPECT_FALSE(isLocked);
    ++questions;
    return RangeAnswer::ignore;
  };
  FitOptions options;
  options.min = 9;
  options.max = 200;
  try {
    (void)fitSeries(change, session.requireMeter("M1", -1), "S", options);
    FAIL() << "it was stored";
  } catch (const Trouble& trouble) {
    EXPECT_EQ(trouble.code(), ExitCode::rangeRefused);
    EXPECT_THAT(errorLine(trouble), HasSubstr("nothing was stored"));
  }
  EXPECT_EQ(questions, 1);
}

TEST_F(fit_beside_another_program, lets_it_write_while_the_operator_thinks) {
  CurveSession session({.path = path}, Access::write);
  StoredChange change(session, "fit", false);
  session.messages().askOperator = [&](const std::string&) {
    sql(twice);  // would find the database locked
    return RangeAnswer::retry;
  };
  FitOptions options;
  options.min = 9;
  options.max = 200;
  const SeriesFit fit = fitSeries(change, session.requireMeter("M1", -1), "S", options);
  change.finish();
  EXPECT_TRUE(fit.changedMeanwhile);
  EXPECT_TRUE(fit.isWholeRange);
  EXPECT_EQ(stored().Merged, line(2));
}

TEST_F(fit_beside_another_program, of_a_refit_is_made_again_for_changed_points) {
  (void)fitWhile("");
  const RefitResult unchanged = refitWhile("");
  EXPECT_FALSE(unchanged.changedMeanwhile);
  sql("Update raw1 set Strouhal=1.5*Strouhal where seriesID=1");
  const RefitResult result = refitWhile("Update raw1 set Strouhal=Strouhal/3 where seriesID=1");
  EXPECT_TRUE(result.changedMeanwhile);
  EXPECT_TRUE(result.isStored);
  EXPECT_NEAR(result.shiftPercent, -50, 0.1);
  EXPECT_EQ(stored().Merged(0, 1), line(1)(0, 1) * 1.5 / 3);
}

TEST_F(fit_beside_another_program, of_a_refit_takes_the_settings_of_a_curve_stored_meanwhile) {
  (void)fitWhile("");
  sql(twice);
  const RefitResult result =
      refitWhile("Update pelmora_fit_settings set Points=12 where SeriesID=1");
  EXPECT_TRUE(result.changedMeanwhile);
  EXPECT_EQ(stored().Fitted.size(), 12U);
}

TEST_F(fit_beside_another_program, of_a_refit_tells_of_a_series_deleted_meanwhile) {
  const RefitResult result =
      refitWhile("Delete from raw1 where seriesID=1; Delete from series where ID=1");
  EXPECT_EQ(result.kind, RefitResult::Kind::gone);
  EXPECT_FALSE(result.isStored);
  EXPECT_EQ(settings(1), std::nullopt);
}

}  // namespace
}  // namespace pelmora::cli
