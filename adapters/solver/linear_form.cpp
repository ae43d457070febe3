// SPDX-License-Identifier: MIT
#include "adapters/solver/linear_form.h"

#include <array>
#include <map>

namespace pelmora::solver {
namespace {

// A node as offset + sum of coefficients times letters; not linear where `known` is false.
struct Form {
  bool known = true;
  NodeId offset = noNode;
  std::map<int, NodeId> coefficients;
  [[nodiscard]] bool isFree() const { return known && coefficients.empty(); }
};

class Analysis {
 public:
  Analysis(Expression& expression, const std::vector<int>& letters) : expression_(expression) {
    for (const int letter : letters) wanted_[static_cast<std::size_t>(letter)] = true;
  }

  Form run() {
    std::vector<Form> forms;
    for (NodeId id = 0; id <= expression_.root; ++id) forms.push_back(formOf(id, forms));
    return forms.back();
  }

 private:
  Form formOf(NodeId id, const std::vector<Form>& forms) {
    const Node node = expression_.at(id);
    if (node.op == Op::parameter && wanted_[static_cast<std::size_t>(node.letter)]) {
      Form form;
      form.coefficients[node.letter] = expression_.constant(1);
      return form;
    }
    if (node.left == noNode) return whole(id);
    const Form& left = forms[static_cast<std::size_t>(node.left)];
    if (isUnary(node.op)) {
      if (left.isFree()) return whole(id);
      return node.op == Op::negate && left.known ? negated(left) : unknown();
    }
    const Form& right = forms[static_cast<std::size_t>(node.right)];
    if (left.isFree() && right.isFree()) return whole(id);
    if (!left.known || !right.known) return unknown();
    switch (node.op) {
      case Op::add: return sum(left, right);
      case Op::subtract: return sum(left, negated(right));
      case Op::multiply:
        if (left.isFree()) return scaled(right, Op::multiply, node.left);
        return right.isFree() ? scaled(left, Op::multiply, node.right) : unknown();
      case Op::divide: return right.isFree() ? scaled(left, Op::divide, node.right) : unknown();
      default: return unknown();  // f^1 never comes into being
    }
  }

  static Form unknown() {
    Form form;
    form.known = false;
    return form;
  }
  static Form whole(NodeId id) {
    Form form;
    form.offset = id;
    return form;
  }

  NodeId sumOf(NodeId left, NodeId right) {
    if (left == noNode) return right;
    return right == noNode ? left : expression_.binary(Op::add, left, right);
  }
  Form sum(Form left, const Form& right) {
    left.offset = sumOf(left.offset, right.offset);
    for (const auto& [letter, id] : right.coefficients) {
      const auto [place, isNew] = left.coefficients.try_emplace(letter, id);
      if (!isNew) place->second = sumOf(place->second, id);
    }
    return left;
  }
  Form negated(Form form) {
    if (form.offset != noNode) form.offset = expression_.unary(Op::negate, form.offset);
    for (auto& [letter, id] : form.coefficients) id = expression_.unary(Op::negate, id);
    return form;
  }
  Form scaled(Form form, Op op, NodeId factor) {
    if (form.offset != noNode) form.offset = expression_.binary(op, form.offset, factor);
    for (auto& [letter, id] : form.coefficients) id = expression_.binary(op, id, factor);
    return form;
  }

  Expression& expression_;
  std::array<bool, 26> wanted_{};
};

}  // namespace

std::optional<LinearForm> linearForm(Expression& expression, const std::vector<int>& letters) {
  const Form form = Analysis(expression, letters).run();
  if (!form.known) return std::nullopt;
  LinearForm result;
  result.offset = form.offset;
  for (const int letter : letters) {
    const auto place = form.coefficients.find(letter);
    result.coefficients.push_back(place == form.coefficients.end() ? noNode : place->second);
  }
  return result;
}

std::vector<int> jointlyLinearLetters(const Expression& expression) {
  std::vector<int> chosen;
  for (const int letter : expression.letters()) {
    Expression trial = expression;
    chosen.push_back(letter);
    if (!linearForm(trial, chosen)) chosen.pop_back();
  }
  return chosen;
}

}  // namespace pelmora::solver
