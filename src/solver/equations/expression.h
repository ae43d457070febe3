// An equation y = f(x; a, b, c, ...) as a list of nodes, operands before their operator.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/arithmetic/double_double.h"

#include <string>
#include <vector>

namespace pelmora::solver {

enum class Op {
  constant,
  variable,
  parameter,
  add,
  subtract,
  multiply,
  divide,
  power,
  negate,
  ln,
  log10,
  exp,
  sqrt,
  abs,
  sin,
  cos,
  tan,
  asin,
  acos,
  atan,
  sinh,
  cosh,
  tanh
};

[[nodiscard]] constexpr bool isBinary(Op op) { return op >= Op::add && op <= Op::power; }
[[nodiscard]] constexpr bool isUnary(Op op) { return op >= Op::negate; }

using NodeId = int;
inline constexpr NodeId noNode = -1;

struct Node {
  Op op = Op::constant;
  NodeId left = noNode, right = noNode;
  int letter = -1;       // of a parameter: 0 for a ... 25 for z
  DoubleDouble value{};  // of a constant
};

// Equal subexpressions share one node; constants are folded; terms such as 0 + u and 1 * u do not
// come into being. Nodes only ever are added, so that ids stay valid.
class Expression {
 public:
  NodeId root = noNode;

  NodeId constant(DoubleDouble value);
  NodeId variable();
  NodeId parameter(int letter);
  NodeId unary(Op op, NodeId operand);
  NodeId binary(Op op, NodeId left, NodeId right);

  [[nodiscard]] const std::vector<Node>& nodes() const { return nodes_; }
  [[nodiscard]] const Node& at(NodeId id) const { return nodes_[static_cast<std::size_t>(id)]; }
  // Whether the node is the constant `value`.
  [[nodiscard]] bool isConstant(NodeId id, double value) const;
  // The letters of all parameters in order of the alphabet, as 0 .. 25.
  [[nodiscard]] std::vector<int> letters() const;
  // A text that is the same for equal subexpressions of different equations; empty for long ones.
  [[nodiscard]] std::string key(NodeId id) const;

 private:
  NodeId keep(const Node& node);
  void growTable();
  std::vector<Node> nodes_;
  std::vector<NodeId> table_;  // nodes by hash, open addressing; a power of two in size
};

}  // namespace pelmora::solver
