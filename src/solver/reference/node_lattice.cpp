// SPDX-License-Identifier: MIT
#include "solver/reference/node_lattice.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <set>
#include <utility>

namespace pelmora::solver::reference {
namespace {

struct Place {
  int length, amplitude, growth;
  auto operator<=>(const Place&) const = default;
};

// The nodes of one spacing, each evaluated when it is first asked for.
class Lattice {
 public:
  Lattice(const Knots& knots, LikelihoodPass& pass, const LatticeRange& range, int halvings)
      : knots_(knots), pass_(pass), range_(range), parts_(1 << halvings) {
    double lowest = 1;
    for (const Knot& knot : knots.knots) lowest = std::min(lowest, knot.flowFraction);
    firstGrowth_ = range.firstGrowth * lowest;
  }

  [[nodiscard]] bool contains(Place p) const {
    const auto inside = [&](int i, int count) { return i >= 0 && i <= (count - 1) * parts_; };
    return inside(p.length, range_.lengths) && inside(p.amplitude, range_.amplitudes) &&
           inside(p.growth, range_.growths);
  }

  // Evaluates those of the places that it has not seen, side by side where they share a length.
  void visit(std::vector<Place> places) {
    std::erase_if(places, [&](const Place& p) { return nodes_.contains(p) || takeSpare(p); });
    std::sort(places.begin(), places.end());
    for (std::size_t first = 0; first < places.size();) {
      std::vector<Place> group{places[first]};
      while (++first < places.size() && group.size() < laneCount &&
             places[first].length == group.front().length)
        group.push_back(places[first]);
      evaluate(group);
    }
  }

  void visitAll() {
    std::vector<Place> all;
    for (int i = 0; i < range_.lengths; ++i) {
      for (int j = 0; j < range_.amplitudes; ++j) {
        for (int k = 0; k < range_.growths; ++k) all.push_back({i, j, k});
      }
    }
    visit(std::move(all));
  }

  // Up to the best node, each time visiting the neighbours of the best so far.
  void climbFrom(Place start) {
    visit({start});
    for (Place from = start;; from = best_) {
      visit(neighbours(from));
      if (best_ == from) return;
    }
  }

  // Outwards from the best, as far as nodes are within `reach` of it.
  void spread(double reach) {
    std::vector<Place> border{best_};
    std::set<Place> opened{best_};
    while (!border.empty()) {
      visit(border);
      std::vector<Place> next;
      for (const Place& p : border) {
        if (nodes_.at(p).logWeight < nodes_.at(best_).logWeight - reach) continue;
        for (const Place& q : neighbours(p)) {
          if (opened.insert(q).second) next.push_back(q);
        }
      }
      border = std::move(next);
    }
  }

  [[nodiscard]] Place best() const { return best_; }

  [[nodiscard]] std::vector<SharedNode> shares(double reach, double depth) const {
    const double top = nodes_.at(best_).logWeight;
    std::vector<SharedNode> shared;
    double sum = 0;
    for (const auto& [place, node] : nodes_) {
      const double below = top - node.logWeight;
      if (below > std::max(reach, depth)) continue;
      shared.push_back({node, below > reach ? 0 : std::exp(-below)});
      sum += shared.back().share;
    }
    for (SharedNode& node : shared) node.share /= sum;
    return shared;
  }

 private:
  void evaluate(std::vector<Place> group) {
    const std::size_t asked = group.size();
    addLikely(group);
    std::vector<Hyperparameters> hyperparameters;
    for (const Place& p : group) hyperparameters.push_back(at(p));
    auto& steps = steps_[group.front().length];
    if (steps.empty()) steps = stepsBetween(knots_, hyperparameters.front().length);
    std::vector<Node> nodes = pass_.evaluate(hyperparameters, steps);
    for (std::size_t i = 0; i < group.size(); ++i) {
      if (i < asked) {
        keep(group[i], std::move(nodes[i]));
      } else {
        spare_.emplace(group[i], std::move(nodes[i]));
      }
    }
  }

  // Lanes that would be idle take neighbours of the group, which are likely to be asked for next.
  void addLikely(std::vector<Place>& group) const {
    for (std::size_t i = 0; i < group.size() && group.size() < laneCount; ++i) {
      for (const Place& p : neighbours(group[i])) {
        if (p.length == group.front().length && group.size() < laneCount && !nodes_.contains(p) &&
            !spare_.contains(p) && std::find(group.begin(), group.end(), p) == group.end())
          group.push_back(p);
      }
    }
  }

  bool takeSpare(Place p) {
    auto spare = spare_.extract(p);
    if (spare.empty()) return false;
    keep(p, std::move(spare.mapped()));
    return true;
  }

  void keep(Place p, Node node) {
    if (nodes_.empty() || node.logWeight > nodes_.at(best_).logWeight) best_ = p;
    nodes_.emplace(p, std::move(node));
  }

  [[nodiscard]] std::vector<Place> neighbours(Place p) const {
    std::vector<Place> found;
    for (const int step : {-1, 1}) {
      for (const Place& q : {Place{p.length + step, p.amplitude, p.growth},
                             Place{p.length, p.amplitude + step, p.growth},
                             Place{p.length, p.amplitude, p.growth + step}}) {
        if (contains(q)) found.push_back(q);
      }
    }
    return found;
  }

  [[nodiscard]] Hyperparameters at(Place p) const {
    const auto part = [&](int i) { return static_cast<double>(i) / parts_; };
    const double length = range_.shortest * std::pow(range_.lengthRatio, part(p.length));
    return {length,
            range_.smallest * std::pow(range_.amplitudeRatio, part(p.amplitude)) *
                std::pow(length / 2, range_.tilt),
            firstGrowth_ * (std::pow(3.0, part(p.growth)) - 1) / 2};
  }

  const Knots& knots_;
  LikelihoodPass& pass_;
  const LatticeRange& range_;
  int parts_;
  double firstGrowth_;
  std::map<Place, Node> nodes_;  // that were asked for
  std::map<Place, Node> spare_;  // evaluated beside them
  std::map<int, std::vector<MaternStep>> steps_;
  Place best_{};
};

double sharingNodes(const std::vector<SharedNode>& nodes) {
  double squares = 0;
  for (const SharedNode& node : nodes) squares += node.share * node.share;
  return 1 / squares;
}

}  // namespace

std::vector<std::span<const SharedNode>> groupsOf(std::span<const SharedNode> nodes) {
  std::vector<std::span<const SharedNode>> groups;
  const auto lengthOf = [&](std::size_t i) { return nodes[i].node.hyperparameters.length; };
  for (std::size_t first = 0, end = 0; first < nodes.size(); first = end) {
    for (end = first + 1;
         end < nodes.size() && end - first < laneCount && lengthOf(end) == lengthOf(first);)
      ++end;
    groups.push_back(nodes.subspan(first, end - first));
  }
  return groups;
}

std::vector<SharedNode> visitLattice(const Knots& knots, const ReferencePriors& priors,
                                     double offsets, const LatticeRange& range, double depth,
                                     const StopRequested& stop) {
  LikelihoodPass pass(knots, priors, offsets, stop);
  const bool all = knots.knots.size() <= range.allUpToKnots;
  const double reach = all ? range.negligible : range.negligibleInLong;
  auto lattice = std::make_unique<Lattice>(knots, pass, range, 0);
  if (all) {
    lattice->visitAll();
  } else {
    lattice->climbFrom({range.lengths / 2, range.amplitudes / 2, range.growths / 2});
  }
  // What a climb has seen, the best and its neighbours, tells whether the spacing is too wide.
  const double enough = all ? range.fewestNodes : range.fewestNodes / 2;
  bool halved = false;
  for (int halvings = 1;
       halvings <= range.mostHalvings && sharingNodes(lattice->shares(reach, 0)) < enough;
       ++halvings) {
    const Place best = lattice->best();
    lattice = std::make_unique<Lattice>(knots, pass, range, halvings);
    lattice->climbFrom({2 * best.length, 2 * best.amplitude, 2 * best.growth});
    if (all) lattice->spread(reach);
    halved = true;
  }
  if (halved || !all) lattice->spread(reach);
  return lattice->shares(reach, halved || !all ? 0 : depth);
}

}  // namespace pelmora::solver::reference
