// Curves are stored for the points that were fitted, also where another program writes meanwhile.
// SPDX-License-Identifier: MIT
#include "apps/pelmora/checked_fit.h"

#include "apps/pelmora/failure_trouble.h"
#include "tests/support/plain_sqlite.h"
#include "tests/support/scratch_folder.h"

#include <gmock/gmock.h>

#include <cmath>

namespace pelmora::cli {
namespace {

using calibration::FitSettings;
using calibration::Mode;
using calibration::RangePolicy;
using test::PlainSqlite;
using testing::AllOf;
using testing::HasSubstr;

// Meter "M1" with series "S". What another program does, it does between fit and lock.
class fit_beside_another_program : public testing::Test {
 protected:
  fit_beside_another_program() {
    calibration::Database lab = calibration::create(path);
    const calibration::Meter meter = lab.registerMeter("M1");
    (void)lab.storeRaw(meter, "S", 1, line(1));
    (void)lab.storeRaw(meter, "Other", 1, line(2));
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
  // The fit of series S while another program runs the statements before the lock is taken.
  CheckedFit fitWhile(const std::string& statements, const FitSettings& settings = {},
                      const RangeQuestion& ask = {}) const {
    Session session({.path = path}, Mode::write);
    CommandChange change(session, "fit", false);
    change.beforeLock = [&] { sql(statements); };
    CheckedFit checked = fitSeries(change, session.database().meter("M1"), "S", {settings}, ask);
    change.finish();
    return checked;
  }
  // What the line on standard error would say of a fit that ends in trouble.
  Trouble troubleWhile(const std::string& statements, const FitSettings& settings = {},
                       const RangeQuestion& ask = {}) const {
    try {
      (void)fitWhile(statements, settings, ask);
    } catch (const Trouble& trouble) {
      return trouble;
    } catch (const calibration::Failure& failure) {
      return troubleOf(failure);
    }
    ADD_FAILURE() << "it was stored";
    return {ExitCode::ok, "", ""};
  }
  [[nodiscard]] calibration::StoredSeries stored(const std::string& series = "S") const {
    const calibration::Database lab(path, {.mode = Mode::read});
    return lab.series(lab.meter("M1"), series);
  }
  [[nodiscard]] std::optional<CurveSettings> settings(std::int32_t seriesID) const {
    return keptCurveSettings(openDatabase(path), seriesID);
  }
  static FitSettings wider() {
    FitSettings settings;
    settings.min = 9;
    settings.max = 200;
    return settings;
  }

  const std::string twice = "Update raw1 set Strouhal=2*Strouhal where seriesID=1";
  const test::ScratchFolder scratch;
  const std::string path = scratch.file("curves.db");
};

TEST_F(fit_beside_another_program, is_stored_at_once_where_nothing_of_it_changes) {
  const CheckedFit checked = fitWhile("Update raw1 set Strouhal=3*Strouhal where seriesID=2");
  EXPECT_TRUE(checked.isStored);
  EXPECT_FALSE(checked.changedMeanwhile);
  EXPECT_EQ(stored().curve, checked.fit.curve);
}

TEST_F(fit_beside_another_program, is_made_again_for_changed_points) {
  const CheckedFit checked = fitWhile(twice);
  EXPECT_TRUE(checked.changedMeanwhile);
  EXPECT_EQ(stored().merged, line(2));
  EXPECT_EQ(stored().curve, checked.fit.curve);
  EXPECT_NEAR(checked.fit.curve(0, 1), 220, 0.1);
}

TEST_F(fit_beside_another_program, is_made_again_where_the_last_bit_of_a_point_changes) {
  EXPECT_TRUE(fitWhile("Update raw1 set Strouhal=Strouhal*(1+3e-16) where seriesID=1 and "
                       "Roshko=10")
                  .changedMeanwhile);
}

TEST_F(fit_beside_another_program, stores_nothing_for_a_deleted_series) {
  const Trouble trouble =
      troubleWhile("Delete from raw1 where seriesID=1; Delete from series where ID=1");
  EXPECT_EQ(trouble.code(), ExitCode::unknownName);
  EXPECT_THAT(errorLine(trouble), AllOf(HasSubstr("series 'S' of meter 'M1', calibration 0"),
                                        HasSubstr("nothing was stored")));
  EXPECT_EQ(settings(1), std::nullopt);
}

TEST_F(fit_beside_another_program, stores_nothing_for_another_series_with_the_id) {
  (void)troubleWhile("Update series set name='New' where ID=1");
  EXPECT_TRUE(stored("New").curve.empty());
  EXPECT_EQ(settings(1), std::nullopt);
}

TEST_F(fit_beside_another_program, goes_to_the_series_that_has_the_name_now) {
  const CheckedFit checked = fitWhile(
      "Update series set ID=77 where ID=1; Update raw1 set seriesID=77, Strouhal=2*Strouhal where "
      "seriesID=1");
  EXPECT_TRUE(checked.changedMeanwhile);
  EXPECT_EQ(stored().id, 77);
  EXPECT_EQ(stored().merged, line(2));
  EXPECT_EQ(settings(1), std::nullopt);
  EXPECT_NE(settings(77), std::nullopt);
}

TEST_F(fit_beside_another_program, goes_to_the_calibration_that_has_the_number_now) {
  const CheckedFit checked =
      fitWhile("Update meter set ID=55; Update series set meterid=55; " + twice);
  EXPECT_TRUE(checked.changedMeanwhile);
  EXPECT_EQ(checked.fit.meter.id, 55);
  EXPECT_EQ(stored().merged, line(2));
}

TEST_F(fit_beside_another_program, keeps_the_old_curve_where_the_new_points_cannot_be_fitted) {
  (void)fitWhile("");
  const PointArray before = stored().curve;
  const CheckedFit checked = fitWhile("Delete from raw1 where seriesID=1 and Roshko>13");
  EXPECT_TRUE(checked.trouble);
  EXPECT_FALSE(checked.isStored);
  EXPECT_EQ(stored().curve, before);
}

TEST_F(fit_beside_another_program, stores_nothing_where_points_can_no_longer_be_read) {
  const Trouble trouble = troubleWhile("Update raw1 set Strouhal=NULL where seriesID=1");
  EXPECT_EQ(trouble.code(), ExitCode::badInput);
  EXPECT_THAT(errorLine(trouble), HasSubstr("nothing was stored"));
}

TEST_F(fit_beside_another_program, asks_nobody_while_others_wait) {
  int questions = 0;
  const Trouble trouble = troubleWhile("Update raw1 set Roshko=Roshko+5 where seriesID=1", wider(),
                                       [&](const std::string&) {
                                         ++questions;
                                         return RangePolicy::extrapolate;
                                       });
  EXPECT_EQ(trouble.code(), ExitCode::rangeRefused);
  EXPECT_THAT(errorLine(trouble), HasSubstr("nothing was stored"));
  EXPECT_EQ(questions, 1);
}

TEST_F(fit_beside_another_program, lets_it_write_while_the_operator_thinks) {
  const CheckedFit checked = fitWhile("", wider(), [&](const std::string& text) {
    EXPECT_THAT(text, AllOf(HasSubstr("from 9 to 200"), HasSubstr("series 'S'")));
    sql(twice);  // would find the database locked
    return RangePolicy::wholeRange;
  });
  EXPECT_TRUE(checked.changedMeanwhile);
  EXPECT_TRUE(checked.fit.isWholeRange);
  EXPECT_EQ(stored().merged, line(2));
}

}  // namespace
}  // namespace pelmora::cli
