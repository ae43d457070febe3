// SPDX-License-Identifier: MIT
#include "solver/equations/linear_form.h"

#include <array>
#include <cstdint>

namespace pelmora::solver {
namespace {

enum class Kind : std::uint8_t { free, linear, other };  // of a node, in the letters wanted

class Analysis {
 public:
  Analysis(Expression& expression, const std::vector<int>& letters) : expression_(expression) {
    for (const int letter : letters) wanted_[index(letter)] = true;
    coefficients_.fill(noNode);
    kinds_.reserve(index(expression.root) + 1);
    for (NodeId id = 0; id <= expression.root; ++id) kinds_.push_back(kindOf(expression.at(id)));
  }

  [[nodiscard]] bool isLinear() const { return kind(expression_.root) != Kind::other; }

  // Walks down from the root with the factor that stands before each part. Every part is visited as
  // often as it stands in the text, whose length is limited.
  void collect() { visit(expression_.root, expression_.constant(1)); }

  [[nodiscard]] NodeId offset() const { return offset_; }
  [[nodiscard]] NodeId coefficient(int letter) const { return coefficients_[index(letter)]; }

 private:
  static std::size_t index(int id) { return static_cast<std::size_t>(id); }
  [[nodiscard]] Kind kind(NodeId id) const { return kinds_[index(id)]; }

  [[nodiscard]] Kind kindOf(const Node& node) const {
    if (node.op == Op::parameter && wanted_[index(node.letter)]) return Kind::linear;
    if (node.left == noNode) return Kind::free;
    const Kind left = kind(node.left), right = isUnary(node.op) ? Kind::free : kind(node.right);
    if (left == Kind::free && right == Kind::free) return Kind::free;
    if (left == Kind::other || right == Kind::other) return Kind::other;
    switch (node.op) {
      case Op::add:
      case Op::subtract:
      case Op::negate: return Kind::linear;
      case Op::multiply:
        return left == Kind::free || right == Kind::free ? Kind::linear : Kind::other;
      case Op::divide: return right == Kind::free ? Kind::linear : Kind::other;
      default: return Kind::other;  // f^1 never comes into being
    }
  }

  // 1 stands for no factor and -1 for a sign, so that neither becomes a node of its own.
  NodeId times(NodeId factor, NodeId id) {
    if (expression_.isConstant(factor, -1)) return expression_.unary(Op::negate, id);
    return expression_.binary(Op::multiply, factor, id);
  }
  NodeId negative(NodeId factor) { return expression_.unary(Op::negate, factor); }
  void add(NodeId& sum, NodeId part) {
    sum = sum == noNode ? part : expression_.binary(Op::add, sum, part);
  }

  // Nodes are copied: new ones come into being below.
  void visit(NodeId id, NodeId factor) {
    for (;;) {  // down the left side, which is the long one of a sum, without recursion
      const Node node = expression_.at(id);
      if (kind(id) == Kind::free) return add(offset_, times(factor, id));
      switch (node.op) {
        case Op::parameter: return add(coefficients_[index(node.letter)], factor);
        case Op::add:
          visit(node.right, factor);
          id = node.left;
          break;
        case Op::subtract:
          visit(node.right, negative(factor));
          id = node.left;
          break;
        case Op::negate:
          factor = negative(factor);
          id = node.left;
          break;
        case Op::multiply: {
          const bool leftIsFree = kind(node.left) == Kind::free;
          factor = times(factor, leftIsFree ? node.left : node.right);
          id = leftIsFree ? node.right : node.left;
          break;
        }
        default:  // divide
          factor = expression_.binary(Op::divide, factor, node.right);
          id = node.left;
          break;
      }
    }
  }

  Expression& expression_;
  std::array<bool, 26> wanted_{};
  std::vector<Kind> kinds_;
  NodeId offset_ = noNode;
  std::array<NodeId, 26> coefficients_{};
};

}  // namespace

std::optional<LinearForm> linearForm(Expression& expression, const std::vector<int>& letters) {
  Analysis analysis(expression, letters);
  if (!analysis.isLinear()) return std::nullopt;
  analysis.collect();
  LinearForm result;
  result.offset = analysis.offset();
  for (const int letter : letters) result.coefficients.push_back(analysis.coefficient(letter));
  return result;
}

std::vector<int> jointlyLinearLetters(const Expression& expression) {
  std::vector<int> chosen;
  Expression trial = expression;
  for (const int letter : expression.letters()) {
    chosen.push_back(letter);
    if (!Analysis(trial, chosen).isLinear()) chosen.pop_back();
  }
  return chosen;
}

}  // namespace pelmora::solver
