// The law of propagation of uncertainty.
// SPDX-License-Identifier: MIT
#pragma once

#include "uncertainty/input.h"

#include <span>
#include <vector>

namespace pelmora::uncertainty {

// What one input does to the measurand: sensitivity = df/dx, uncertainty = sensitivity x u, with
// its sign.
struct Contribution {
  double sensitivity = 0, uncertainty = 0;
};

// Shape:  contributions: one per input, in their order.
struct Propagation {
  double value = 0, standardUncertainty = 0, degreesOfFreedom = knownExactly;
  std::vector<Contribution> contributions;
};

// With u_i the standard uncertainties, c_i the derivatives at the estimates and r_ij the
// correlations,
//
//   u^2 = sum_i (c_i u_i)^2 + 2 sum_i<j c_i u_i c_j u_j r_ij            (GUM 5.1.2, 5.2.2)
//   nu  = u^4 / sum_g u_g^4 / nu_g                                      (GUM G.4.1)
//
// where g runs over groups of inputs that correlations connect; a group counts as one component
// with the fewest degrees of freedom of its inputs (GUM H.3: one common number of them). The
// derivatives are central differences of fourth order over half a standard uncertainty.
//
// Errors: as requireInputs; BadData if the model is not finite at the estimates or beside them.
// Source: JCGM 100:2008.
[[nodiscard]] Propagation propagate(const Model& model, std::span<const Input> inputs,
                                    std::span<const Correlation> correlations = {});

// The sum of what the same inputs do to two measurands, c_i u_i d_j u_j r_ij over all i and j.
//
// Shape:  first, second: one contribution per input.
// Source: JCGM 100:2008, H.2.3.
[[nodiscard]] double covariance(std::span<const Contribution> first,
                                std::span<const Contribution> second,
                                std::span<const Correlation> correlations = {});

// u^4 / sum u_i^4 / nu_i of independent components; infinite if all of them are known exactly.
//
// Shape:  uncertainties, degrees: n values each.
[[nodiscard]] double effectiveDegrees(std::span<const double> uncertainties,
                                      std::span<const double> degrees);

// The variance that the next terms of the Taylor series add for independent, symmetric inputs:
//
//   sum_i sum_j (1/2 f_ij^2 + f_i f_ijj) u_i^2 u_j^2
//
// Errors: as propagate.
// Source: JCGM 100:2008, 5.1.2, note.
[[nodiscard]] double higherOrderVariance(const Model& model, std::span<const Input> inputs);

}  // namespace pelmora::uncertainty
