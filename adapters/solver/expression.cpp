// SPDX-License-Identifier: MIT
#include "adapters/solver/expression.h"

#include "adapters/solver/node_function.h"

#include <cstring>

namespace pelmora::solver {
namespace {

void append(std::string& text, const void* value, std::size_t size) {
  text.append(static_cast<const char*>(value), size);
}

}  // namespace

NodeId Expression::keep(const Node& node) {
  std::string identity;
  append(identity, &node.op, sizeof node.op);
  append(identity, &node.left, sizeof node.left);
  append(identity, &node.right, sizeof node.right);
  append(identity, &node.letter, sizeof node.letter);
  append(identity, &node.value, sizeof node.value);
  const auto [place, isNew] = known_.try_emplace(identity, static_cast<NodeId>(nodes_.size()));
  if (isNew) nodes_.push_back(node);
  return place->second;
}

NodeId Expression::constant(DoubleDouble value) { return keep({.op = Op::constant, .value = value}); }
NodeId Expression::variable() { return keep({.op = Op::variable}); }
NodeId Expression::parameter(int letter) { return keep({.op = Op::parameter, .letter = letter}); }

bool Expression::isConstant(NodeId id, double value) const {
  return at(id).op == Op::constant && at(id).value == DoubleDouble(value);
}

NodeId Expression::unary(Op op, NodeId operand) {
  if (op == Op::negate && at(operand).op == Op::negate) return at(operand).left;
  if (at(operand).op == Op::constant) {
    const DoubleDouble folded = applyUnary(op, at(operand).value);
    if (isFinite(folded)) return constant(folded);
  }
  return keep({.op = op, .left = operand});
}

NodeId Expression::binary(Op op, NodeId left, NodeId right) {
  if (at(left).op == Op::constant && at(right).op == Op::constant) {
    const DoubleDouble folded = applyBinary(op, at(left).value, at(right).value);
    if (isFinite(folded)) return constant(folded);
  }
  if (op == Op::add && isConstant(left, 0)) return right;
  if ((op == Op::add || op == Op::subtract) && isConstant(right, 0)) return left;
  if (op == Op::subtract && isConstant(left, 0)) return unary(Op::negate, right);
  if (op == Op::multiply && isConstant(left, 1)) return right;
  const bool isNeutral = op == Op::multiply || op == Op::divide || op == Op::power;
  if (isNeutral && isConstant(right, 1)) return left;
  return keep({.op = op, .left = left, .right = right});
}

std::vector<int> Expression::letters() const {
  std::vector<bool> used(26, false);
  for (const Node& node : nodes_) {
    if (node.op == Op::parameter) used[static_cast<std::size_t>(node.letter)] = true;
  }
  std::vector<int> result;
  for (int letter = 0; letter < 26; ++letter) {
    if (used[static_cast<std::size_t>(letter)]) result.push_back(letter);
  }
  return result;
}

std::string Expression::key(NodeId id) const {
  constexpr std::size_t longest = 64;  // nodes; a longer one is worked out anew for each equation
  std::string text;
  std::vector<NodeId> open{id};
  for (std::size_t visited = 0; !open.empty(); ++visited) {
    if (visited == longest) return {};
    const Node& node = at(open.back());
    open.pop_back();
    append(text, &node.op, sizeof node.op);
    if (node.op == Op::parameter) append(text, &node.letter, sizeof node.letter);
    if (node.op == Op::constant) append(text, &node.value, sizeof node.value);
    if (node.left != noNode) open.push_back(node.left);
    if (node.right != noNode) open.push_back(node.right);
  }
  return text;
}

}  // namespace pelmora::solver
