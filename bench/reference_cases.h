// Simulated calibrations with a known truth, for the study of the reference curve.
// SPDX-License-Identifier: MIT
#pragma once

#include "bench/random_draws.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace pelmora::study {

struct Case {
  std::string shape;
  int flows = 0;  // of each fluid
  int fluids = 1;
  int repeats = 1;
  bool growing = false;
  std::vector<double> x, y;
  std::vector<int> fluid;
  std::function<double(double)> truth;
};

class CaseMaker : public RandomDraws {
 public:
  explicit CaseMaker(std::uint64_t seed) : RandomDraws(seed) {}

  Case make() {
    Case c;
    c.flows = whole(5, 25);
    c.fluids = whole(1, 3);
    c.repeats = uniform(0, 1) < 0.5 ? 1 : whole(2, 5);
    chooseTruth(c);
    measure(c);
    return c;
  }

 private:
  void chooseTruth(Case& c) {
    switch (whole(0, 4)) {
      case 0:
      case 1: return torqueBalance(c);
      case 2: return steps(c);
      case 3: return waves(c);
      default: return saturation(c);
    }
  }

  // Lee and Evans's torque balance with the bearing terms of Pope et al. (2012), as a function of
  // Roshko alone: blade drag through Reynolds' number, which Roshko stands for here, a velocity
  // profile's hump, viscous bearing drag, and for one fluid static bearing drag.
  void torqueBalance(Case& c) {
    c.shape = "torque balance";
    const double s0 = uniform(800, 2000), k = uniform(0.3, 0.8), hump = uniform(0, 0.006);
    const double where = uniform(3000, 9000), viscous = uniform(0, 8e-5) * 1300;
    const double rest = c.fluids == 1 ? uniform(0, 1.5) : 0;
    const double reynolds = uniform(70, 200);  // Re / Roshko
    c.truth = [=](double x) {
      const double re = reynolds * x;
      const auto drag = [](double r) {
        const double s = 1 / (1 + std::pow(300000 / r, 4)), laminar = 1.328 / std::sqrt(r);
        return (1 - s) * laminar + s * std::max(laminar, 0.0259 / std::pow(r, 0.2));
      };
      const double l = std::log(re / where) / 0.9;
      return s0 * (1 - k * (drag(re) - drag(160000)) + hump * std::exp(-l * l) - rest / (x * x)) /
             (1 + viscous / x);
    };
  }

  // A slope and one to three smooth steps: transitions of the flow.
  void steps(Case& c) {
    c.shape = "steps";
    const double s0 = uniform(50, 5000), slope = 0.01 * normal();
    struct Step {
      double height, at, width;
    };
    std::vector<Step> all;
    for (int i = whole(1, 3); i > 0; --i)
      all.push_back({0.008 * normal(), uniform(std::log(5), std::log(2000)), uniform(0.5, 1.5)});
    c.truth = [=](double x) {
      double z = slope * std::log(x / 100);
      for (const Step& s : all) z += s.height * std::tanh((std::log(x) - s.at) / s.width);
      return s0 * (1 + z);
    };
  }

  // A few waves in ln(x) whose size falls with their number.
  void waves(Case& c) {
    c.shape = "waves";
    const double s0 = uniform(50, 5000), slope = 0.01 * normal(), length = uniform(6, 12);
    std::vector<std::pair<double, double>> all;
    for (int i = 1; i <= 5; ++i)
      all.emplace_back(0.02 / std::pow(i, 2.5) * normal(), uniform(0, 6.28));
    c.truth = [=](double x) {
      const double l = std::log(x);
      double z = slope * l;
      for (std::size_t i = 0; i < all.size(); ++i)
        z += all[i].first *
             std::sin(6.2831853 * static_cast<double>(i + 1) * l / length + all[i].second);
      return s0 * std::exp(z);
    };
  }

  // A power that dies out above a threshold, and a linear fall at the top end.
  void saturation(Case& c) {
    c.shape = "saturation";
    const double s0 = uniform(50, 5000), fall = uniform(0.01, 0.3), at = uniform(0.3, 3);
    const double power = uniform(0.6, 1.6), bend = uniform(0, 0.01), top = uniform(500, 3000);
    c.truth = [=](double x) {
      return s0 * (1 - fall / (1 + std::pow(x / at, power)) - bend * x / (x + top));
    };
  }

  void measure(Case& c) {
    const double top = uniform(800, 6000), turndown = std::pow(10, uniform(1, 2.1));
    const double noise = 1e-4 * std::pow(10, uniform(std::log10(2.0), 1.0));
    const int kind = whole(0, 2);
    c.growing = kind > 0;
    const double a = kind == 1 ? uniform(0.5, 4) / turndown : 0;
    const double power = kind == 2 ? uniform(0.1, 0.4) : 0;
    // The noise asked for is that at the lowest flow's half way (on a log scale) where it grows.
    const auto sd = [=](double u) { return std::sqrt(1 + a * a / (u * u)) * std::pow(u, -power); };
    const double scale = noise / sd(1 / std::sqrt(turndown));
    double nu = 1;
    const bool shifts = c.fluids > 1 && whole(0, 1) == 1;
    for (int f = 0; f < c.fluids; ++f) {
      const double shift = shifts ? uniform(-2e-4, 2e-4) : 0;
      for (int i = 0; i < c.flows; ++i) {
        double u = std::pow(turndown, (i + 0.0) / (c.flows - 1) - 1);
        if (i > 0 && i + 1 < c.flows)
          u *= std::exp(uniform(-0.2, 0.2) * std::log(turndown) / c.flows);
        for (int r = 0; r < c.repeats; ++r) {
          const double x = top * u / nu * (1 + 0.004 * normal());
          c.x.push_back(x);
          c.y.push_back(c.truth(x) * (1 + shift + scale * sd(u) * normal()));
          c.fluid.push_back(f);
        }
      }
      nu *= std::pow(10, uniform(0.4, 1.2));
    }
  }
};

}  // namespace pelmora::study
