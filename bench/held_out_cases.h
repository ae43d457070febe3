// A second generator of simulated calibrations, written apart from reference_cases.h; see
// bench/README.md for what was looked at while tuning.
// SPDX-License-Identifier: MIT
#pragma once

#include "bench/reference_cases.h"

namespace pelmora::study {

class HeldOutCaseMaker : private RandomDraws {
 public:
  explicit HeldOutCaseMaker(std::uint64_t seed) : RandomDraws(seed ^ 0x9e3779b97f4a7c15ULL) {}

  Case make() {
    Case c;
    c.flows = whole(5, 25);
    c.fluids = whole(1, 3);
    c.repeats = chance(0.5) ? 1 : whole(2, 4);
    switch (whole(0, 5)) {
      case 0:
      case 1: meter(c); break;
      case 2: rational(c); break;
      case 3: bumps(c); break;
      case 4: kink(c); break;
      default: twoDrags(c);
    }
    measure(c);
    return c;
  }

 private:
  // A rotor with the coefficients of small and large meters: the drag of a flat plate, laminar up
  // to a transition, a hump where the velocity profile changes, both drags of the bearing. The
  // static one does not collapse over fluids, so only meters of one fluid have it.
  void meter(Case& c) {
    c.shape = "rotor";
    const double s0 = uniform(200, 3000), k = uniform(0.2, 1.0), reynolds = logUniform(50, 400);
    const double transition = logUniform(5e4, 6e5), hump = uniform(-0.002, 0.008);
    const double at = logUniform(1500, 15000), width = uniform(0.7, 1.3);
    const double viscous = uniform(0, 0.15);
    const double still = c.fluids == 1 && chance(0.6) ? uniform(0, 2) : 0;
    c.truth = [=](double x) {
      const double re = reynolds * x, laminar = 1.328 / std::sqrt(re);
      const double s = 1 / (1 + std::pow(transition / re, 4));
      const double drag = (1 - s) * laminar + s * std::max(laminar, 0.0259 / std::pow(re, 0.2));
      const double l = std::log(re / at) / width;
      return s0 * (1 - k * drag + hump * std::exp(-l * l) - still / (x * x)) / (1 + viscous / x);
    };
  }

  void rational(Case& c) {
    c.shape = "rational";
    const double s0 = logUniform(10, 5000), a = logUniform(0.05, 1), b = uniform(-0.02, 0.02);
    const double at = logUniform(20, 2000);
    c.truth = [=](double x) { return s0 * x / (x + a) * (1 + b * x / (x + at)); };
  }

  void bumps(Case& c) {
    c.shape = "bumps";
    const double s0 = logUniform(10, 5000), slope = 0.006 * normal();
    struct Bump {
      double height, at, width;
    };
    std::vector<Bump> all;
    for (int i = whole(1, 4); i > 0; --i)
      all.push_back({0.006 * normal(), uniform(0, 8.5), uniform(0.9, 2.5)});
    c.truth = [=](double x) {
      const double l = std::log(x);
      double z = slope * l;
      for (const Bump& b : all) z += b.height * std::exp(-0.5 * std::pow((l - b.at) / b.width, 2));
      return s0 * std::exp(z);
    };
  }

  // Two straight lines in ln(x) with a rounded corner.
  void kink(Case& c) {
    c.shape = "corner";
    const double s0 = logUniform(10, 5000), low = uniform(0, 0.03), high = 0.004 * normal();
    const double at = uniform(1.5, 6.5), soft = uniform(0.3, 1.0);
    c.truth = [=](double x) {
      const double l = std::log(x) - at;
      return s0 * (1 + high * l - (low - high) * soft * std::log1p(std::exp(-l / soft)));
    };
  }

  void twoDrags(Case& c) {
    c.shape = "two drags";
    const double s0 = logUniform(10, 5000), a = uniform(0, 0.4), b = uniform(0, 0.06);
    const double power = uniform(0.15, 0.5), c0 = uniform(0, 0.2);
    c.truth = [=](double x) { return s0 * (1 - a / (x + c0 + 1) - b / std::pow(x + 1, power)); };
  }

  // Pulses are counted over a fixed time or a fixed volume; viscosity, and with it Roshko, has an
  // error of its own; every run has its own small shift.
  void measure(Case& c) {
    const double top = logUniform(500, 9000), turndown = logUniform(12, 110);
    const double base = logUniform(1.5e-4, 8e-4);
    // Grows as 1 / flow, to at most six times as much at the lowest.
    const double count = chance(0.5) ? base * logUniform(0.5, 6) / turndown : 0;
    c.growing = count > 0;
    const double shifts = c.fluids > 1 && chance(0.5) ? 2e-4 : 0;
    double thickness = 1;
    for (int f = 0; f < c.fluids; ++f) {
      const double shift = uniform(-shifts, shifts);
      for (int i = 0; i < c.flows; ++i) {
        const double u = std::pow(turndown, i / (c.flows - 1.0) - 1);
        for (int r = 0; r < c.repeats; ++r) {
          const double flow = u * (1 + 0.004 * normal());
          const double x = top * flow / thickness;
          c.x.push_back(x * (1 + 5e-4 * normal()));
          c.y.push_back(c.truth(x) * (1 + shift + std::hypot(base, count / u) * normal()));
          c.fluid.push_back(f);
        }
      }
      thickness *= logUniform(2.5, 16);
    }
  }
};

}  // namespace pelmora::study
