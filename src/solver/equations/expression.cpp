// SPDX-License-Identifier: MIT
#include "solver/equations/expression.h"

#include "solver/equations/node_function.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

namespace pelmora::solver {
namespace {

void append(std::string& text, const void* value, std::size_t size) {
  text.append(static_cast<const char*>(value), size);
}

std::size_t hashOf(const Node& node) {
  std::uint64_t hash = 0;
  const auto mix = [&hash](std::uint64_t part) {
    hash = (hash ^ part) * 0x9E3779B97F4A7C15U;
    hash ^= hash >> 29U;
  };
  mix(static_cast<std::uint64_t>(node.op) << 32U | static_cast<std::uint32_t>(node.letter));
  mix(static_cast<std::uint64_t>(static_cast<std::uint32_t>(node.left)) << 32U |
      static_cast<std::uint32_t>(node.right));
  mix(std::bit_cast<std::uint64_t>(node.value.hi));
  return static_cast<std::size_t>(hash);
}

// By bits, so that a constant 0 and a constant -0 stay two.
bool isSame(const Node& a, const Node& b) {
  return a.op == b.op && a.left == b.left && a.right == b.right && a.letter == b.letter &&
         std::bit_cast<std::uint64_t>(a.value.hi) == std::bit_cast<std::uint64_t>(b.value.hi) &&
         std::bit_cast<std::uint64_t>(a.value.lo) == std::bit_cast<std::uint64_t>(b.value.lo);
}

}  // namespace

NodeId Expression::keep(const Node& node) {
  if (table_.size() < 2 * (nodes_.size() + 1)) growTable();
  std::size_t place = hashOf(node) & (table_.size() - 1);
  for (; table_[place] != noNode; place = (place + 1) & (table_.size() - 1)) {
    if (isSame(at(table_[place]), node)) return table_[place];
  }
  table_[place] = static_cast<NodeId>(nodes_.size());
  nodes_.push_back(node);
  return table_[place];
}

void Expression::growTable() {
  constexpr std::size_t smallest = 128;
  const std::size_t size = std::max(smallest, 2 * table_.size());
  table_.assign(size, noNode);
  nodes_.reserve(size / 2);
  for (std::size_t id = 0; id < nodes_.size(); ++id) {
    std::size_t place = hashOf(nodes_[id]) & (size - 1);
    while (table_[place] != noNode) place = (place + 1) & (size - 1);
    table_[place] = static_cast<NodeId>(id);
  }
}

NodeId Expression::constant(DoubleDouble value) {
  return keep({.op = Op::constant, .value = value});
}
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
  std::array<bool, 26> used{};
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
