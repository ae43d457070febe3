// What settings do to fits by Choice::trusted.
// SPDX-License-Identifier: MIT
#include "tests/calibration/service_fixture.h"
#include "tests/calibration/shaped_points.h"

#include <string>
#include <vector>

namespace pelmora::calibration::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using TrustedSettings = ServiceTest;

TEST_F(TrustedSettings, keep_their_rule_when_they_are_fitted_again) {
  Database db = lab();
  const Meter meter = db.registerMeter("M1");
  (void)db.storeRaw(meter, "Rotor A", 1, noisy(smoothPoints(20), 3e-4, 4));
  (void)db.storeRaw(meter, "Rotor B", 1, noisy(smoothPoints(20), 3e-4, 5));
  const FitSettings trusted{
      .fitMin = 12, .choice = Choice::trusted, .without = {"TC eq6405"}, .maxOrder = 4};
  (void)db.store(db.fit(meter, "Rotor A", trusted));
  (void)db.store(db.fit(meter, "Rotor B", {.choice = Choice::adjustedR2}));
  const Repeated a = db.repeat(db.series(meter, "Rotor A"));
  EXPECT_EQ(a.fit.settings.choice, Choice::trusted);
  EXPECT_EQ(a.fit.settings.fitMin, 12);
  EXPECT_EQ(a.fit.settings.maxOrder, 4);
  EXPECT_THAT(a.fit.settings.without, ElementsAre("TC eq6405"));
  EXPECT_TRUE(a.isStoredCurve());
  const Repeated b = db.repeat(db.series(meter, "Rotor B"));
  EXPECT_EQ(b.fit.settings.choice, Choice::adjustedR2);
  EXPECT_TRUE(b.isStoredCurve());
  const RefitOutcome refit = db.refit(db.allSeries());
  for (const RefitResult& result : refit.results)
    EXPECT_EQ(result.kind, RefitResultKind::kept) << result.task.series << result.reason;
}

TEST_F(TrustedSettings, try_only_the_equations_that_are_asked_for) {
  const std::vector parts{noisy(smoothPoints(20), 3e-4, 6)};
  const auto namesOf = [](const Fit& fit) {
    std::vector<std::string> names;
    for (const EquationOutcome& equation : fit.outcome.Equations) names.push_back(equation.Name);
    return names;
  };
  const Fit one =
      calibration::fit(parts, {.choice = Choice::trusted, .only = {"Polynomial 3rd Order"}});
  EXPECT_THAT(namesOf(one), ElementsAre("Polynomial 3rd Order"));
  EXPECT_EQ(one.chosen().Name, "Polynomial 3rd Order");
  const Fit smooth =
      calibration::fit(parts, {.choice = Choice::trusted, .only = {referenceCurveName}});
  EXPECT_EQ(smooth.chosen().Name, referenceCurveName);
  const Fit none =
      calibration::fit(std::vector{noisy(steps(40), 2e-4, 7)},
                       {.choice = Choice::trusted, .without = {referenceCurveName}, .maxOrder = 3});
  EXPECT_FALSE(none.accepted());
  EXPECT_THAT(none.reason(), HasSubstr("nearest was"));
  for (const std::string& name : namesOf(none)) {
    EXPECT_NE(name, "Polynomial 4th Order");
    EXPECT_NE(name, referenceCurveName);
  }
  const auto failure = failureOf<BadData>(
      [&] { (void)calibration::fit(parts, {.choice = Choice::trusted, .without = {"Cubic"}}); });
  EXPECT_THAT(failure.what(), HasSubstr("no equation 'Cubic'"));
  EXPECT_THAT(failure.remedy(), HasSubstr("'Polynomial 3rd Order'"));
}

TEST_F(TrustedSettings, leave_out_what_lies_outside_the_range_to_fit) {
  PointArray points = noisy(smoothPoints(30), 3e-4, 8);
  points(0, 1) *= 0.7;  // friction at the lowest flows
  points(1, 1) *= 0.9;
  for (const Choice choice : {Choice::trusted, Choice::adjustedR2}) {
    const Fit fit =
        calibration::fit(std::vector{points}, {.fitMin = points(2, 0), .choice = choice});
    ASSERT_TRUE(fit.accepted()) << fit.reason();
    EXPECT_EQ(fit.merged.size(), 30U);
    EXPECT_EQ(fit.fitted.size(), 28U);
    EXPECT_DOUBLE_EQ(fit.min, points(2, 0));
    if (choice == Choice::trusted) {
      EXPECT_EQ(fit.trust->judged[1].use, PointUse::outside);
    }
  }
}

TEST_F(TrustedSettings, list_the_built_in_equations_as_a_file) {
  const EquationList list = EquationList::builtIn(Choice::trusted);
  std::vector<int> orders;
  for (const ModelDefinition& equation : list.equations()) {
    if (const auto order = polynomialOrder(equation.Expression)) orders.push_back(*order);
  }
  EXPECT_THAT(orders, ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10));
  const EquationList read = EquationList::parse(list.asFile(), "the file");
  ASSERT_EQ(read.equations().size(), list.equations().size());
  for (std::size_t i = 0; i < read.equations().size(); ++i) {
    EXPECT_EQ(read.equations()[i].Name, list.equations()[i].Name);
    EXPECT_EQ(read.equations()[i].Expression, list.equations()[i].Expression);
  }
  EXPECT_EQ(EquationList::builtIn(Choice::adjustedR2).equations().size(), 6U);
}

}  // namespace
}  // namespace pelmora::calibration::test
