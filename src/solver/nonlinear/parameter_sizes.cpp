// SPDX-License-Identifier: MIT
#include "solver/nonlinear/parameter_sizes.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace pelmora::solver {
namespace {

// Linear rules about one unknown per node, brought to reduced echelon form as they come.
class Rules {
 public:
  explicit Rules(std::size_t unknowns) : unknowns_(unknowns) {}

  // Sum of factor * unknown = value; passed over where it contradicts the rules before it.
  void add(std::initializer_list<std::pair<NodeId, double>> terms, double value) {
    std::vector<double> row(unknowns_ + 1);
    for (const auto& [id, factor] : terms) row[static_cast<std::size_t>(id)] += factor;
    row[unknowns_] = value;
    for (const Rule& rule : rules_) subtract(row, row[rule.pivot], rule.row);
    const auto largest = std::max_element(
        row.begin(), row.end() - 1, [](double a, double b) { return std::fabs(a) < std::fabs(b); });
    if (std::fabs(*largest) < nothing) return;  // known already, or a contradiction
    const auto pivot = static_cast<std::size_t>(largest - row.begin());
    const double whole = *largest;
    for (double& cell : row) cell /= whole;
    for (Rule& rule : rules_) subtract(rule.row, rule.row[pivot], row);
    rules_.push_back({pivot, std::move(row)});
  }

  [[nodiscard]] std::optional<double> valueOf(NodeId id) const {
    const auto unknown = static_cast<std::size_t>(id);
    for (const Rule& rule : rules_) {
      if (rule.pivot != unknown) continue;
      for (std::size_t k = 0; k < unknowns_; ++k) {
        if (k != unknown && std::fabs(rule.row[k]) > nothing) return std::nullopt;
      }
      return rule.row[unknowns_];
    }
    return std::nullopt;
  }

 private:
  static constexpr double nothing = 1e-9;
  struct Rule {
    std::size_t pivot;
    std::vector<double> row;
  };
  static void subtract(std::vector<double>& row, double factor, const std::vector<double>& other) {
    if (factor == 0) return;
    for (std::size_t k = 0; k < row.size(); ++k) row[k] -= factor * other[k];
  }

  std::size_t unknowns_;
  std::vector<Rule> rules_;
};

// What every unit of x must satisfy, whatever the constants.
void addForm(Rules& rules, const Expression& expression, NodeId id) {
  const Node& node = expression.at(id);
  switch (node.op) {
    case Op::constant: return rules.add({{id, 1}}, 0);
    case Op::variable: return rules.add({{id, 1}}, 1);
    case Op::parameter: return;
    case Op::add:
    case Op::subtract:
      rules.add({{id, 1}, {node.left, -1}}, 0);
      return rules.add({{id, 1}, {node.right, -1}}, 0);
    case Op::negate:
    case Op::abs: return rules.add({{id, 1}, {node.left, -1}}, 0);
    case Op::multiply: return rules.add({{id, 1}, {node.left, -1}, {node.right, -1}}, 0);
    case Op::divide: return rules.add({{id, 1}, {node.left, -1}, {node.right, 1}}, 0);
    case Op::sqrt: return rules.add({{id, 1}, {node.left, -0.5}}, 0);
    case Op::power:
      if (expression.at(node.right).op == Op::constant) {
        rules.add({{id, 1}, {node.left, -expression.at(node.right).value.hi}}, 0);
      }
      return;
    default: return rules.add({{id, 1}}, 0);
  }
}

void addArguments(Rules& rules, const Expression& expression, NodeId id) {
  const Node& node = expression.at(id);
  if (node.op == Op::power && expression.at(node.right).op != Op::constant) {
    rules.add({{node.right, 1}}, 0);
    rules.add({{node.left, 1}}, 0);
    rules.add({{id, 1}}, 0);
  } else if (isUnary(node.op) && node.op != Op::negate && node.op != Op::abs &&
             node.op != Op::sqrt) {
    rules.add({{node.left, 1}}, 0);
  }
}

}  // namespace

std::vector<std::optional<double>> powersOfUnit(const Expression& expression) {
  const auto count = static_cast<NodeId>(expression.nodes().size());
  std::vector<std::optional<double>> powers(expression.letters().size());
  constexpr NodeId longest = 400;  // the rules of more would take too long
  if (count > longest) return powers;
  Rules rules(expression.nodes().size());
  for (NodeId id = 0; id < count; ++id) addForm(rules, expression, id);
  for (NodeId id = 0; id < count; ++id) addArguments(rules, expression, id);
  rules.add({{expression.root, 1}}, 0);
  const std::vector<int> letters = expression.letters();
  for (NodeId id = 0; id < count; ++id) {
    if (expression.at(id).op != Op::parameter) continue;
    const auto place = std::find(letters.begin(), letters.end(), expression.at(id).letter);
    powers[static_cast<std::size_t>(place - letters.begin())] = rules.valueOf(id);
  }
  return powers;
}

}  // namespace pelmora::solver
