// Mean and variance of the process at any place, from the points on both sides of it.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/reference/node_lattice.h"

#include <span>
#include <vector>

namespace pelmora::solver::reference {

// At one place, of the curve in z against t, trend included.
struct Smoothed {
  double mean = 0;
  double slope = 0;
  double variance = 0;  // of the mean, in units of the noise's variance
};

// Knots and places in one sequence by t, the same for every node.
class MergedPlaces {
 public:
  // t: rising.
  MergedPlaces(const Knots& knots, std::span<const double> t);
  // Call before smoothAt with nodes of another length.
  void setLength(double length);
  // At every t, in their order, for each node of a group: up to laneCount nodes of that length. The
  // past comes as a mean and the root of a covariance from the
  // forward filter, the future as the root of an information matrix, carried backwards; joined,
  // both are orthogonal triangularisations, so that no digits are lost where the points say much
  // more than the prior.
  //
  // Source: Fraser, Potter: The optimum linear smoother as a combination of two optimum linear
  //         filters, IEEE Trans. Automatic Control 14 (1969) 387-390; roots: Kailath, Sayed,
  //         Hassibi (2000), chapter 12.
  [[nodiscard]] std::vector<std::vector<Smoothed>> smoothAt(std::span<const SharedNode> group,
                                                            double offsets) const;

 private:
  struct Entry {
    double t;
    std::ptrdiff_t knot;  // -1: a place
  };
  const Knots& knots_;
  std::vector<Entry> entries_;
  std::vector<MaternStep> steps_;
  std::size_t places_;
  double rate_ = 1;
};

}  // namespace pelmora::solver::reference
