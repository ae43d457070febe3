// Values and exact gradients of an equation, a block of points at a time.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/equations/expression.h"
#include "solver/equations/node_function.h"

#include <array>
#include <span>
#include <vector>

namespace pelmora::solver {

// T: double, DoubleDouble, or a dual number over one of them for a derivative more.
//
// Shape:  `load` takes at most `block` points; `value(id)[k]` and `gradient(letter)[k]` belong to
//         point k of the last load.
// Source: reverse accumulation, Griewank and Walther, Evaluating Derivatives, 2nd ed., 3.2.
template <class T>
class BlockEvaluator {
 public:
  static constexpr std::size_t block = 64;
  using Letters = std::array<T, 26>;

  // Keeps a reference to `expression`, which must stay and must not grow.
  BlockEvaluator(const Expression& expression, std::span<const NodeId> roots)
      : expression_(expression),
        needed_(expression.nodes().size(), false),
        depends_(expression.nodes().size(), false) {
    for (const NodeId root : roots) needed_[index(root)] = true;
    for (std::size_t id = needed_.size(); id-- > 0;) {
      const Node& node = expression.nodes()[id];
      if (!needed_[id]) continue;
      if (node.left != noNode) needed_[index(node.left)] = true;
      if (node.right != noNode) needed_[index(node.right)] = true;
    }
    for (std::size_t id = 0; id < needed_.size(); ++id) {
      const Node& node = expression.nodes()[id];
      depends_[id] = node.op == Op::parameter ||
                     (node.left != noNode && depends_[index(node.left)]) ||
                     (node.right != noNode && depends_[index(node.right)]);
    }
    values_.resize(needed_.size());
    for (std::size_t id = 0; id < needed_.size(); ++id) {
      if (needed_[id]) values_[id].resize(block);
    }
  }

  void load(std::span<const double> x, const Letters& letters) {
    count_ = x.size();
    for (std::size_t id = 0; id < needed_.size(); ++id) {
      if (!needed_[id]) continue;
      const Node& node = expression_.nodes()[id];
      auto& out = values_[id];
      for (std::size_t k = 0; k < count_; ++k) out[k] = valueAt(node, x, letters, k);
    }
  }

  [[nodiscard]] std::span<const T> value(NodeId id) const {
    return {values_[index(id)].data(), count_};
  }

  // Derivatives of the node `root` with respect to the letters, at the points of the last load.
  void differentiate(NodeId root) {
    if (slopes_.empty()) slopes_.resize(needed_.size());
    for (auto& gradient : gradients_) gradient.assign(block, T(0.0));
    for (std::size_t id = 0; id <= index(root); ++id) {
      if (needed_[id] && depends_[id]) slopes_[id].assign(block, T(id == index(root) ? 1.0 : 0.0));
    }
    for (std::size_t id = index(root) + 1; id-- > 0;) {
      if (needed_[id] && depends_[id]) sendDown(id);
    }
  }
  [[nodiscard]] std::span<const T> gradient(int letter) const {
    return {gradients_[index(letter)].data(), count_};
  }

 private:
  static std::size_t index(int id) { return static_cast<std::size_t>(id); }

  T valueAt(const Node& node, std::span<const double> x, const Letters& letters,
            std::size_t k) const {
    switch (node.op) {
      case Op::constant: return T(node.value);
      case Op::variable: return T(x[k]);
      case Op::parameter: return letters[index(node.letter)];
      default: break;
    }
    const T& left = values_[index(node.left)][k];
    return isUnary(node.op) ? applyUnary(node.op, left)
                            : applyBinary(node.op, left, values_[index(node.right)][k]);
  }

  void sendDown(std::size_t id) {
    const Node& node = expression_.nodes()[id];
    const auto& slope = slopes_[id];
    if (node.op == Op::parameter) {
      for (std::size_t k = 0; k < count_; ++k) gradients_[index(node.letter)][k] = slope[k];
      return;
    }
    if (node.left == noNode) return;
    const bool toLeft = depends_[index(node.left)];
    const bool toRight = node.right != noNode && depends_[index(node.right)];
    for (std::size_t k = 0; k < count_; ++k) {
      const T& f = values_[id][k];
      const T& a = values_[index(node.left)][k];
      if (isUnary(node.op)) {
        add(node.left, k, slope[k] * slopeUnary(node.op, a, f));
        continue;
      }
      const T& b = values_[index(node.right)][k];
      if (toLeft) add(node.left, k, slope[k] * slopeOfLeft(node.op, a, b));
      if (toRight) add(node.right, k, slope[k] * slopeOfRight(node.op, a, b, f));
    }
  }

  void add(NodeId id, std::size_t k, const T& part) {
    T& slope = slopes_[index(id)][k];
    slope = slope + part;
  }
  static T slopeOfLeft(Op op, const T& a, const T& b) {
    switch (op) {
      case Op::multiply: return b;
      case Op::divide: return T(1.0) / b;
      case Op::power: return powerSlopeOfBase(a, b);
      default: return T(1.0);
    }
  }
  static T slopeOfRight(Op op, const T& a, const T& b, const T& f) {
    switch (op) {
      case Op::subtract: return T(-1.0);
      case Op::multiply: return a;
      case Op::divide: return -(f / b);
      case Op::power: return powerSlopeOfExponent(a, f);
      default: return T(1.0);
    }
  }

  const Expression& expression_;
  std::vector<bool> needed_, depends_;
  std::vector<std::vector<T>> values_, slopes_;
  std::array<std::vector<T>, 26> gradients_;
  std::size_t count_ = 0;
};

}  // namespace pelmora::solver
