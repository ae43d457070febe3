// A third generator of simulated calibrations: the laws of meters without a turbine's rotor, on a
// stand of another kind. Nothing was tuned with it.
// SPDX-License-Identifier: MIT
#pragma once

#include "bench/reference_cases.h"

namespace pelmora::study {

class OtherMeterCaseMaker : private RandomDraws {
 public:
  explicit OtherMeterCaseMaker(std::uint64_t seed) : RandomDraws(seed ^ 0xd1b54a32d192ed03ULL) {}

  Case make() {
    Case c;
    c.flows = whole(5, 25);
    c.fluids = whole(1, 3);
    c.repeats = chance(0.5) ? 1 : whole(2, 6);
    switch (whole(0, 4)) {
      case 0: shedding(c); break;
      case 1: discharge(c); break;
      case 2: profile(c); break;
      case 3: slip(c); break;
      default: resonance(c);
    }
    measure(c);
    return c;
  }

 private:
  // Vortices behind a bluff body: Roshko's (1954) St = a (1 - b / Re) to first order, and the slow
  // rise and fall of a shedder in a pipe.
  void shedding(Case& c) {
    c.shape = "shedding";
    const double s0 = logUniform(100, 3000), b = uniform(0.02, 0.5), rise = uniform(-0.004, 0.004);
    const double at = logUniform(30, 1000), sag = uniform(0, 0.006);
    c.truth = [=](double x) {
      const double l = std::log10(x / at);
      return s0 / (1 + b / x) * (1 + rise * l - sag / (1 + 2 * l * l));
    };
  }

  // A discharge coefficient as in the Reader-Harris/Gallagher equation: powers of 1 / Re that only
  // matter at low flows.
  void discharge(Case& c) {
    c.shape = "discharge";
    const double s0 = logUniform(100, 3000), reynolds = logUniform(100, 1000);
    const double a = uniform(0, 0.008), b = uniform(-0.01, 0.01), power = uniform(0.3, 0.8);
    c.truth = [=](double x) {
      const double re = reynolds * x;
      return s0 * (1 + a * std::pow(1e6 / re, 0.3) * 0.3 + b * std::pow(1e4 / (re + 3000), power));
    };
  }

  // The mean velocity over that on a chord, laminar below a transition and a power law above it.
  void profile(Case& c) {
    c.shape = "profile";
    const double s0 = logUniform(100, 3000), reynolds = logUniform(30, 300);
    const double transition = logUniform(1500, 5000), steep = uniform(1.2, 2.5);
    const double size = uniform(0.005, 0.03), fall = uniform(0, 0.3);
    c.truth = [=](double x) {
      const double re = reynolds * x, turbulent = 1 / (1 + std::pow(transition / re, steep));
      const double exponent = 1 / (1.66 * std::log10(std::max(re, 300.0)));
      return s0 * (1 + size * turbulent - 0.1 * exponent) * (1 - fall / (x + 2));
    };
  }

  // Positive displacement: leakage through the clearances falls with the viscosity and the flow,
  // the pressure drop of the rotors grows with its root.
  void slip(Case& c) {
    c.shape = "slip";
    const double s0 = logUniform(100, 3000), leak = uniform(0, 0.4), drop = uniform(0, 2e-4);
    const double friction = uniform(0, 0.03);
    c.truth = [=](double x) {
      return s0 * (1 - leak / (x + 1) + friction / std::sqrt(x + 3) - drop * std::sqrt(x));
    };
  }

  // A slope, and a tube that is excited near one flow: a peak with a dip beside it.
  void resonance(Case& c) {
    c.shape = "resonance";
    const double s0 = logUniform(100, 3000), slope = 0.003 * normal(), size = 0.004 * normal();
    const double at = uniform(2, 7.5), width = uniform(0.8, 1.8), drag = uniform(0, 0.1);
    c.truth = [=](double x) {
      const double l = (std::log(x) - at) / width;
      return s0 * (1 + slope * std::log(x / 100) + 2 * size * l / (1 + l * l)) / (1 + drag / x);
    };
  }

  // Flows go up and down and are spaced evenly, by a ratio, or crowd at the low end; noise has
  // heavier tails than a normal distribution; values are rounded as a stand prints them; the flow
  // at which a fluid was measured drifts while it warms up.
  void measure(Case& c) {
    const double top = logUniform(700, 7000), turndown = logUniform(10, 100);
    const double base = logUniform(1.5e-4, 8e-4);
    const double zero = chance(0.5) ? base * logUniform(0.5, 5) / turndown : 0;
    c.growing = zero > 0;
    const double spacing = chance(0.6) ? 1 : uniform(0.5, 1.3);
    const double drift = chance(0.5) ? 1.5e-4 : 0;
    double thickness = 1;
    for (int f = 0; f < c.fluids; ++f) {
      const double warm = uniform(-drift, drift);
      for (int i = 0; i < c.flows; ++i) {
        const double share = std::pow(i / (c.flows - 1.0), spacing);
        const double u = std::pow(turndown, share - 1);
        for (int r = 0; r < c.repeats; ++r) {
          const double flow = u * (1 + 0.006 * normal());
          const double x = top * flow / thickness;
          const double progress = r % 2 == 0 ? share / 2 : 1 - share / 2;
          const double y =
              c.truth(x) * (1 + warm * (progress - 0.5) + std::hypot(base, zero / u) * student());
          c.x.push_back(rounded(x));
          c.y.push_back(rounded(y));
          c.fluid.push_back(f);
        }
      }
      thickness *= logUniform(2.5, 14);
    }
  }

  // Of six degrees of freedom, with a standard deviation of 1.
  double student() { return std::student_t_distribution<double>(6)(random_) * std::sqrt(4.0 / 6); }
  // To six digits.
  static double rounded(double value) {
    const double unit = std::pow(10, std::floor(std::log10(value)) - 5);
    return std::round(value / unit) * unit;
  }
};

}  // namespace pelmora::study
