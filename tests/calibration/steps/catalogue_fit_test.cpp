// A fit of a catalogue without a host around it.
// SPDX-License-Identifier: MIT
#include "calibration/steps/catalogue_fit.h"

#include "tests/support/fake_band_tester.h"
#include "tests/support/fake_fit_engine.h"

#include <gtest/gtest.h>

namespace pelmora::calibration::steps {
namespace {

using test::Journal;

class catalogue_fit : public testing::Test {
 protected:
  catalogue_fit() {
    fit_.useEquations({{"A", "f(x)"}, {"B", "g(x)"}});
    settings_.NumberOfFittedPoints = 3;
    settings_.BandPercent = 1;
  }

  CatalogueRun input() {
    return {
        points_, 1, 100, {"Roshko", "Strouhal"}, std::make_shared<test::FakeFitEngine>(engine_)};
  }
  void select() {
    fit_.select([this] { return std::make_unique<test::FakeBandTester>(band_); }, settings_);
  }
  Journal fitted() const { return test::linesOf(journal_, "fit: "); }

  Journal journal_;
  test::FakeFitScript engine_{journal_};
  test::FakeBandScript band_{journal_};
  PointArray points_{{1, 2}, {10, 4}, {100, 8}};
  CatalogueSettings settings_;
  CatalogueFit fit_;
};

TEST_F(catalogue_fit, runs_and_selects) {
  engine_.solutions["A"] = test::solutionOf(0.5, 0.9);
  EXPECT_EQ(fit_.run(input(), settings_), RunEnd::complete);
  select();
  EXPECT_EQ(fitted(), (Journal{"B", "A"}));
  EXPECT_EQ(fit_.outcome(settings_.BandPercent).Chosen, 0U);
  EXPECT_EQ(fit_.curve().size(), 3U);
}

TEST_F(catalogue_fit, ends_between_two_equations_where_it_is_asked_to) {
  CatalogueRun run = input();
  run.stopRequested = [&] { return !fitted().empty(); };
  EXPECT_EQ(fit_.run(run, settings_), RunEnd::stopped);
  EXPECT_EQ(fitted(), Journal{"B"});
  EXPECT_EQ(fit_.outcome(1).Equations[0].Verdict, EquationVerdict::notTried);
  EXPECT_EQ(fit_.outcome(1).Equations[1].Verdict, EquationVerdict::accepted);
}

TEST_F(catalogue_fit, writes_a_log_only_into_a_folder_that_it_is_given) {
  engine_.otherwise.found = false;
  (void)fit_.run(input(), settings_);
  select();
  EXPECT_EQ(test::linesOf(journal_, "log: "), Journal());
  EXPECT_EQ(fit_.details().find("log.txt"), std::string::npos);

  const std::string folder = "logs";
  CatalogueRun run = input();
  run.logFolder = &folder;
  (void)fit_.run(run, settings_);
  select();
  EXPECT_EQ(test::linesOf(journal_, "log: ").size(), 2U);
  EXPECT_NE(fit_.details().find("See logs\\log.txt"), std::string::npos);
}

TEST_F(catalogue_fit, throws_where_the_fitting_object_shows_a_box) {
  points_ = {};
  EXPECT_THROW((void)fit_.run(input(), settings_), Error);
  EXPECT_EQ(fit_.details(), "");
  EXPECT_FALSE(fit_.outcome(1).Chosen);
  CatalogueRun run = input();
  run.engine = nullptr;
  EXPECT_THROW((void)fit_.run(run, settings_), Error);
}

TEST_F(catalogue_fit, throws_without_a_band_tester) {
  (void)fit_.run(input(), settings_);
  EXPECT_THROW(fit_.select({}, settings_), Error);
}

TEST_F(catalogue_fit, reads_settings_that_its_observer_changes) {
  Observer observer;
  observer.onProgress = [&](std::int16_t, std::int16_t) { settings_.BandPercent = 2.5F; };
  (void)fit_.run(input(), settings_, observer);
  select();
  EXPECT_EQ(band_.bandCalls.at(0).percent, 2.5F);
}

}  // namespace
}  // namespace pelmora::calibration::steps
