// Fitting many stored series again.
// SPDX-License-Identifier: MIT
#include "calibration/refit/refit_one.h"
#include "tests/calibration/service_fixture.h"

#include <algorithm>
#include <functional>
#include <stop_token>

namespace pelmora::calibration::test {
namespace {

class Refits : public ServiceTest {
 protected:
  Refits() : db_(lab()), meter_(db_.registerMeter("M1")) {
    for (const char* name : {"A", "B", "C"}) {
      db_.storeRaw(meter_, name, 1, smoothPoints(12));
      (void)db_.store(db_.fit(meter_, name));
    }
  }
  [[nodiscard]] PointArray shifted(double percent) const {
    PointArray points = smoothPoints(12);
    for (std::size_t i = 0; i < points.size(); ++i) points(i, 1) *= 1 + percent / 100;
    return points;
  }
  Database db_;
  Meter meter_;
};

TEST_F(Refits, leave_curves_alone_that_come_out_the_same) {
  const RefitOutcome outcome = db_.refit(db_.allSeries());
  ASSERT_EQ(outcome.results.size(), 3U);
  for (const RefitResult& result : outcome.results) {
    EXPECT_EQ(result.kind, RefitResultKind::kept) << result.reason;
    EXPECT_FALSE(result.isStored);
    EXPECT_EQ(result.shiftPercent, 0);
  }
  EXPECT_TRUE(outcome.kept.empty());
}

TEST_F(Refits, store_what_has_changed_and_keep_what_was_there) {
  const PointArray before = db_.series(meter_, "B").curve;
  db_.storeRaw(meter_, "B", 1, shifted(2));
  const RefitOutcome outcome = db_.refit(db_.allSeries(), {.threads = 3});
  const RefitResult& changed = outcome.results[1];
  EXPECT_EQ(changed.task.series, "B");
  EXPECT_EQ(changed.kind, RefitResultKind::changed);
  EXPECT_NEAR(changed.shiftPercent, 2, 1e-9);
  EXPECT_TRUE(changed.isStored);
  ASSERT_EQ(outcome.kept.size(), 1U);
  (void)db_.restore(outcome.kept.front());
  EXPECT_EQ(db_.series(meter_, "B").curve, before);
}

TEST_F(Refits, say_what_became_of_each_series) {
  db_.storeRaw(meter_, "D", 1, PointArray{{1, 2}});
  db_.storeRaw(meter_, "E", 1, smoothPoints(12));
  auto tasks = db_.allSeries();
  ASSERT_EQ(tasks.size(), 5U);
  (void)db_.remove(meter_, "C");
  const RefitOutcome outcome = db_.refit(tasks);
  EXPECT_EQ(outcome.results[2].kind, RefitResultKind::gone);
  EXPECT_EQ(outcome.results[3].kind, RefitResultKind::unusable);
  EXPECT_EQ(outcome.results[4].kind, RefitResultKind::added);
  EXPECT_FALSE(db_.series(meter_, "E").curve.empty());
}

TEST_F(Refits, say_how_many_curves_each_portion_has_stored) {
  for (const char* name : {"A", "B", "C"}) db_.storeRaw(meter_, name, 1, shifted(1));
  const std::size_t before = db_.history().size();
  std::vector<std::size_t> stored;
  RefitOptions options;
  options.portion = 1;
  options.portionStored = [&](std::size_t curves) {
    stored.push_back(curves);
    // It is final: another connection sees it.
    EXPECT_EQ(open(path()).history().size(), before + curves);
  };
  (void)db_.refit(db_.allSeries(), options);
  EXPECT_THAT(stored, testing::ElementsAre(1, 2, 3));
}

TEST_F(Refits, fit_again_what_another_program_changed_before_it_was_stored) {
  for (const char* name : {"A", "B", "C"}) db_.storeRaw(meter_, name, 1, shifted(2));
  Observer observer;
  observer.progress = [&](std::size_t done, std::size_t) {
    if (done < 3) return;
    Database other = open(path());
    other.storeRaw(meter_, "A", 1, shifted(5));
  };
  const RefitOutcome outcome = db_.refit(db_.allSeries(), {.threads = 2}, observer);
  EXPECT_TRUE(outcome.results[0].changedMeanwhile);
  EXPECT_NEAR(outcome.results[0].shiftPercent, 5, 1e-9);
  EXPECT_EQ(db_.series(meter_, "A").merged, shifted(5));
  for (std::size_t i = 1; i < 3; ++i) {
    EXPECT_FALSE(outcome.results[i].changedMeanwhile);
    EXPECT_TRUE(outcome.results[i].isStored);
    EXPECT_NEAR(outcome.results[i].shiftPercent, 2, 1e-9);
  }
  EXPECT_EQ(outcome.kept.size(), 3U);
}

TEST_F(Refits, store_a_series_once_that_is_listed_twice) {
  db_.storeRaw(meter_, "A", 1, shifted(2));
  const std::size_t points = db_.series(meter_, "A").curve.size();
  const RefitOutcome outcome = db_.refit({{meter_, "A"}, {meter_, "B"}, {meter_, "A"}});
  EXPECT_EQ(outcome.kept.size(), 1U);
  EXPECT_NE(outcome.results[0].isStored, outcome.results[2].isStored);
  EXPECT_EQ(db_.series(meter_, "A").curve.size(), points);
}

TEST_F(Refits, keep_what_was_there_under_the_names_that_are_stored) {
  db_.storeRaw(meter_, "A", 1, shifted(2));
  Meter other = meter_;
  other.serial = "m1";
  const RefitOutcome outcome = db_.refit({{other, "a"}});
  ASSERT_EQ(outcome.kept.size(), 1U);
  const HistoryEntry entry = db_.history().front();
  EXPECT_EQ(entry.id, outcome.kept.front());
  EXPECT_EQ(entry.serial, "M1");
  EXPECT_EQ(entry.series, "A");
}

TEST_F(Refits, name_what_other_programs_stored_without_a_name_or_number) {
  auto tasks = db_.allSeries();
  tasks[0].series.clear();
  tasks[1].meter.calibration = -1;
  const RefitOutcome outcome = db_.refit(tasks);
  EXPECT_EQ(outcome.results[0].kind, RefitResultKind::unreadable);
  EXPECT_THAT(outcome.results[0].reason, testing::HasSubstr("a series of meter 'M1'"));
  EXPECT_EQ(outcome.results[1].kind, RefitResultKind::unreadable);
  EXPECT_THAT(outcome.results[1].reason, testing::HasSubstr("meter 'M1' has no number"));
  EXPECT_EQ(outcome.results[2].kind, RefitResultKind::kept);
}

// Another program works between the fit of a series and the lock under which it is stored.
class RefitsBesideAnotherProgram : public Refits {
 protected:
  RefitResult refitWhile(const std::function<void(Database& other)>& change) {
    const RefitOptions options;
    const auto session = std::make_shared<Session>(path(), OpenOptions{});
    const Database lab(session);
    RefitCurve curve = fitAgain(lab, readAgain(lab, *session, {meter_, "A"}), options);
    EXPECT_TRUE(curve.isToBeStored());
    Database other = open(path());
    change(other);
    session->begin("refit");
    storeAgain(lab, *session, options, curve);
    session->commit();
    return curve.result;
  }
};

TEST_F(RefitsBesideAnotherProgram, store_at_once_what_it_has_not_touched) {
  db_.storeRaw(meter_, "A", 1, shifted(2));
  const RefitResult result =
      refitWhile([&](Database& other) { other.storeRaw(meter_, "B", 1, shifted(7)); });
  EXPECT_FALSE(result.changedMeanwhile);
  EXPECT_TRUE(result.isStored);
}

TEST_F(RefitsBesideAnotherProgram, are_made_again_for_changed_points) {
  db_.storeRaw(meter_, "A", 1, shifted(2));
  const RefitResult result =
      refitWhile([&](Database& other) { other.storeRaw(meter_, "A", 1, shifted(5)); });
  EXPECT_TRUE(result.changedMeanwhile);
  EXPECT_TRUE(result.isStored);
  EXPECT_NEAR(result.shiftPercent, 5, 1e-9);
  EXPECT_EQ(db_.series(meter_, "A").merged, shifted(5));
}

TEST_F(RefitsBesideAnotherProgram, take_the_settings_of_a_curve_stored_meanwhile) {
  db_.storeRaw(meter_, "A", 1, shifted(2));
  const RefitResult result = refitWhile([&](Database& other) {
    other.store(other.fit(meter_, "A", {.points = 12}));
    other.storeRaw(meter_, "A", 1, shifted(3));
  });
  EXPECT_TRUE(result.changedMeanwhile);
  EXPECT_EQ(db_.series(meter_, "A").curve.size(), 12U);
}

TEST_F(RefitsBesideAnotherProgram, tell_of_a_series_deleted_meanwhile) {
  db_.storeRaw(meter_, "A", 1, shifted(2));
  const RefitResult result = refitWhile([&](Database& other) { (void)other.remove(meter_, "A"); });
  EXPECT_EQ(result.kind, RefitResultKind::gone);
  EXPECT_FALSE(result.isStored);
}

TEST_F(RefitsBesideAnotherProgram, fit_a_series_that_was_made_anew_with_its_own_points) {
  db_.storeRaw(meter_, "A", 1, shifted(2));
  const RefitResult result = refitWhile([&](Database& other) {
    (void)other.remove(meter_, "A");
    other.storeRaw(meter_, "A", 1, shifted(5));
  });
  EXPECT_TRUE(result.changedMeanwhile);
  EXPECT_EQ(result.kind, RefitResultKind::added);
  EXPECT_EQ(db_.series(meter_, "A").merged, shifted(5));
}

TEST_F(Refits, store_nothing_in_a_dry_run) {
  const PointArray before = db_.series(meter_, "B").curve;
  db_.storeRaw(meter_, "B", 1, shifted(2));
  const RefitOutcome outcome = db_.refit(db_.allSeries(), {.isDryRun = true});
  EXPECT_EQ(outcome.results[1].kind, RefitResultKind::changed);
  EXPECT_TRUE(outcome.kept.empty());
  EXPECT_EQ(db_.series(meter_, "B").curve, before);
}

TEST_F(Refits, change_the_settings_that_are_kept_and_keep_the_new_ones) {
  RefitOptions options;
  options.change.fitMin = 20;
  options.change.without = {{"Polynomial 2nd Order"}};
  const RefitOutcome outcome = db_.refit({{meter_, "A"}}, options);
  EXPECT_TRUE(outcome.results[0].isStored);
  EXPECT_NE(outcome.results[0].equation, "Polynomial 2nd Order");
  const StoredSeries stored = db_.series(meter_, "A");
  EXPECT_GE(stored.curve(0, 0), 20);
  EXPECT_EQ(stored.settings->FitMin, 20);
  EXPECT_FALSE(db_.refit({{meter_, "A"}}, options).results[0].isStored);
  // The rule is also kept if it chooses the same equation as before.
  RefitOptions rule;
  rule.change.choice = Choice::adjustedR2;
  (void)db_.refit({{meter_, "B"}}, rule);
  EXPECT_EQ(db_.series(meter_, "B").settings->Choice, "adjusted-r2");
}

TEST_F(Refits, store_no_curve_with_a_warning_if_they_must_not) {
  PointArray spoiled = smoothPoints(12);
  for (std::size_t i = 0; i < spoiled.size(); ++i) spoiled(i, 1) *= i % 2 == 0 ? 1.0002 : 0.9998;
  spoiled(5, 1) *= 1.02;
  db_.storeRaw(meter_, "B", 1, spoiled);
  const PointArray before = db_.series(meter_, "B").curve;
  const RefitOutcome strict = db_.refit(db_.allSeries(), {.isStrict = true});
  EXPECT_EQ(strict.results[1].kind, RefitResultKind::notFitted);
  EXPECT_THAT(strict.results[1].reason, testing::HasSubstr("Point 6 of part 1"));
  EXPECT_EQ(db_.series(meter_, "B").curve, before);
  EXPECT_TRUE(db_.refit(db_.allSeries()).results[1].isStored);
}

TEST_F(Refits, end_where_the_caller_asks_for_it) {
  std::stop_source source;
  source.request_stop();
  Observer observer;
  observer.stop = source.get_token();
  const RefitOutcome outcome = db_.refit(db_.allSeries(), {}, observer);
  EXPECT_TRUE(outcome.isCancelled);
}

TEST_F(Refits, end_while_they_run_and_keep_what_is_stored) {
  constexpr std::size_t more = 60;  // than wait to be stored when the stop comes
  for (std::size_t i = 0; i < more; ++i)
    db_.storeRaw(meter_, "S" + std::to_string(i), 1, smoothPoints(12));
  std::stop_source source;
  Observer observer;
  observer.stop = source.get_token();
  std::size_t fitted = 0;
  observer.progress = [&](std::size_t done, std::size_t) {
    fitted = done;
    if (done == 2) source.request_stop();
  };
  const RefitOutcome outcome = db_.refit(db_.allSeries(), {.threads = 1}, observer);
  EXPECT_TRUE(outcome.isCancelled);
  EXPECT_LT(fitted, more / 2);
  const auto isStored = [](const RefitResult& result) { return result.isStored; };
  const auto stored = std::ranges::count_if(outcome.results, isStored);
  EXPECT_EQ(std::ranges::count_if(db_.allSeries(),
                                  [&](const RefitTask& task) {
                                    return !db_.series(task.meter, task.series).curve.empty();
                                  }),
            stored + 3);  // with those that had a curve before
}

}  // namespace
}  // namespace pelmora::calibration::test
