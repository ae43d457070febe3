// Filter, smoother and average against dense linear algebra in 60 digits; see
// tests/data/reference_curve.
// SPDX-License-Identifier: MIT
#include "solver/reference/reference_curve.h"
#include "solver/reference/two_sided_smoother.h"
#include "tests/support/places.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>

namespace pelmora::solver::reference {
namespace {

// Relative for values, standard deviations and likelihoods. Differences (slopes, errors of points
// left out) are held to it beside their own standard deviation.
constexpr double tolerance = 1e-9;

using nlohmann::json;
using Numbers = std::vector<double>;

const json& cases() {
  static const json all = [] {
    std::ifstream file(test::sourceFolder() + "/tests/data/reference_curve/reference.json");
    return json::parse(file).at("cases");
  }();
  return all;
}

struct Series {
  explicit Series(const json& c)
      : x(c.at("x").get<Numbers>()),
        y(c.at("y").get<Numbers>()),
        at(c.at("at").get<Numbers>()),
        fluid(c.at("fluid").get<std::vector<int>>()),
        offsets(c.at("offsets").get<double>()),
        relative(c.at("relative").get<bool>()) {
    for (std::size_t i = 0; i < x.size(); ++i) all.push_back(i);
    knots = gatherKnots(x, y, fluid, all, relative, c.at("drag").get<double>());
    for (const double v : at) t.push_back(std::log(v) - knots.origin);
  }
  Numbers x, y, at, t;
  std::vector<int> fluid;
  std::vector<std::size_t> all;
  double offsets;
  bool relative;
  Knots knots;
};

Node nodeOf(const Series& series, const json& n) {
  const Hyperparameters h{n.at("length"), n.at("amplitude"), n.at("growth")};
  return LikelihoodPass(series.knots, {}, series.offsets)
      .evaluate({&h, 1}, stepsBetween(series.knots, h.length))[0];
}

double lowestShare(const Knots& knots) {
  double lowest = 1;
  for (const Knot& knot : knots.knots) lowest = std::min(lowest, knot.flowFraction);
  return lowest;
}

template <typename Check>
void everyNode(Check check) {
  int nodes = 0;
  for (const json& c : cases()) {
    const Series series(c);
    for (const json& n : c.at("nodes")) {
      SCOPED_TRACE(c.at("name").get<std::string>() + ", length " + n.at("length").dump());
      check(series, n);
      ++nodes;
    }
  }
  EXPECT_EQ(nodes, 17);
}

TEST(dense_comparison, restricted_likelihood) {
  everyNode([](const Series& series, const json& n) {
    const Node node = nodeOf(series, n);
    EXPECT_NEAR(node.squares / n.at("squares").get<double>(), 1, tolerance);
    EXPECT_NEAR(node.logWeight, n.at("log_weight").get<double>(),
                tolerance * std::abs(node.logWeight));
  });
}

TEST(dense_comparison, curve_slope_and_variance_at_and_beyond_the_points) {
  everyNode([](const Series& series, const json& n) {
    for (std::size_t i = 0; i < series.t.size(); ++i) {
      MergedPlaces place(series.knots, {&series.t[i], 1});
      place.setLength(n.at("length"));
      const SharedNode node{nodeOf(series, n), 1};
      const Smoothed smoothed = place.smoothAt({&node, 1}, series.offsets)[0][0];
      SCOPED_TRACE(series.at[i]);
      const double mean = n.at("mean")[i], slope = n.at("slope")[i];
      const double line = series.knots.level + series.knots.slope * series.t[i];
      EXPECT_NEAR(smoothed.mean + line, mean, tolerance * std::abs(mean));
      EXPECT_NEAR(smoothed.slope + series.knots.slope, slope, tolerance * std::abs(slope));
      EXPECT_NEAR(smoothed.variance / n.at("variance")[i].get<double>(), 1, tolerance);
    }
  });
}

TEST(dense_comparison, points_left_out) {
  everyNode([](const Series& series, const json& n) {
    const std::vector<SharedNode> one{{nodeOf(series, n), 1.0}};
    const LeftOut left = leaveOut(series.knots, {}, series.offsets, one, false);
    for (std::size_t place = 0; place < left.points.size(); ++place) {
      const std::size_t i = series.knots.order[place];
      const double scale = n.at("left_out_scale")[i];
      SCOPED_TRACE(i);
      EXPECT_NEAR(left.points[place].scale / scale, 1, tolerance);
      EXPECT_NEAR(left.points[place].error, n.at("left_out")[i].get<double>(), tolerance * scale);
    }
  });
}

TEST(dense_comparison, average_over_the_grid) {
  int averages = 0;
  for (const json& c : cases()) {
    if (!c.contains("average")) continue;
    SCOPED_TRACE(c.at("name").get<std::string>());
    const Series series(c);
    const json& a = c.at("average");
    ReferenceOptions options;
    options.robust = false;
    options.fluidOffsets = series.offsets;
    options.drag = series.knots.drag;
    options.scale = series.relative ? ReferenceScale::relative : ReferenceScale::absolute;
    options.lattice = {a["lengths"][0],
                       a["lengths"][1].get<double>() / a["lengths"][0].get<double>(),
                       3,
                       a["amplitudes"][0],
                       10,
                       3,
                       0,
                       a["growths"][1].get<double>() / lowestShare(series.knots),
                       2};
    options.lattice.negligible = std::numeric_limits<double>::infinity();
    options.lattice.mostHalvings = 0;
    const ReferenceCurve curve = fitReference({series.x, series.y, series.fluid, {}}, options);
    const auto estimates = curve.evaluate(series.at);
    for (std::size_t i = 0; i < estimates.size(); ++i) {
      SCOPED_TRACE(series.at[i]);
      const double derivative = a["derivative"][i];
      EXPECT_NEAR(estimates[i].value / a["value"][i].get<double>(), 1, tolerance);
      EXPECT_NEAR(estimates[i].derivative, derivative, tolerance * std::abs(derivative));
      EXPECT_NEAR(estimates[i].curveSd / a["curve_sd"][i].get<double>(), 1, tolerance);
      EXPECT_NEAR(estimates[i].newPointSd / a["new_point_sd"][i].get<double>(), 1, tolerance);
    }
    for (std::size_t i = 0; i < series.x.size(); ++i) {
      SCOPED_TRACE(i);
      const double sd = a["left_out_sd"][i];
      EXPECT_NEAR(curve.points()[i].leaveOneOutSd / sd, 1, tolerance);
      EXPECT_NEAR(curve.points()[i].leaveOneOut, a["left_out"][i].get<double>(), tolerance * sd);
    }
    ++averages;
  }
  EXPECT_EQ(averages, 4);
}

}  // namespace
}  // namespace pelmora::solver::reference
