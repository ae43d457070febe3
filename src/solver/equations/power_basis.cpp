// SPDX-License-Identifier: MIT
#include "solver/equations/power_basis.h"

#include "solver/arithmetic/double_double_functions.h"

#include <algorithm>
#include <utility>

namespace pelmora::solver {
namespace {

constexpr int highestPower = 24;

constexpr DoubleDouble inverseOfLn10 = DoubleDouble(1) / dd_ln10;

// factor * base^exponent; base is noNode for a constant.
struct Term {
  DoubleDouble factor{1};
  NodeId base = noNode;
  int exponent = 0;
};

class TermReader {
 public:
  explicit TermReader(Expression& expression) : expression_(expression) {
    const std::size_t count = expression.nodes().size();
    terms_.reserve(count);
    for (std::size_t id = 0; id < count; ++id) {
      terms_.push_back(read(static_cast<NodeId>(id)));
    }
  }
  [[nodiscard]] const Term& of(NodeId id) const { return terms_[static_cast<std::size_t>(id)]; }

 private:
  Term read(NodeId id) {
    const Node node = expression_.at(id);
    const Term itself{DoubleDouble(1), id, 1};
    switch (node.op) {
      case Op::constant: return {node.value, noNode, 0};
      case Op::log10: return {inverseOfLn10, expression_.unary(Op::ln, node.left), 1};
      case Op::negate: {
        Term term = of(node.left);
        term.factor = -term.factor;
        return term;
      }
      case Op::multiply: return product(of(node.left), of(node.right), itself);
      case Op::divide: {
        const Term& below = of(node.right);
        if (below.factor.hi == 0) return itself;
        return product(of(node.left), {DoubleDouble(1) / below.factor, below.base, -below.exponent},
                       itself);
      }
      case Op::power: return power(of(node.left), node.right, itself);
      default: return itself;
    }
  }

  static Term product(const Term& a, const Term& b, const Term& itself) {
    if (a.base != noNode && b.base != noNode && a.base != b.base) return itself;
    return {a.factor * b.factor, a.base != noNode ? a.base : b.base, a.exponent + b.exponent};
  }

  Term power(const Term& base, NodeId exponent, const Term& itself) const {
    const Node& node = expression_.at(exponent);
    const double whole = std::nearbyint(node.value.hi);
    if (node.op != Op::constant || !(node.value == DoubleDouble(whole)) ||
        std::fabs(whole) > highestPower) {
      return itself;
    }
    const int times = static_cast<int>(whole);
    if (std::abs(base.exponent * times) > highestPower) return itself;
    return {wholePower(base.factor, times), base.base, base.exponent * times};
  }

  Expression& expression_;
  std::vector<Term> terms_;
};

}  // namespace

std::optional<PowerBasis> powerBasis(Expression& expression, const LinearForm& form) {
  if (form.offset != noNode || form.coefficients.empty()) return std::nullopt;
  if (form.coefficients.size() > static_cast<std::size_t>(highestPower)) return std::nullopt;
  const TermReader reader(expression);
  PowerBasis basis;
  std::vector<std::pair<int, std::size_t>> order;
  order.reserve(form.coefficients.size());
  basis.parameterOf.reserve(form.coefficients.size());
  basis.factor.reserve(form.coefficients.size());
  for (std::size_t k = 0; k < form.coefficients.size(); ++k) {
    if (form.coefficients[k] == noNode) return std::nullopt;
    const Term& term = reader.of(form.coefficients[k]);
    if (term.factor.hi == 0 || !isFinite(term.factor)) return std::nullopt;
    if (term.base != noNode && basis.base != noNode && term.base != basis.base) return std::nullopt;
    if (term.base != noNode) basis.base = term.base;
    order.emplace_back(term.exponent, k);
  }
  if (basis.base == noNode) basis.base = expression.variable();  // a constant alone
  std::sort(order.begin(), order.end());
  basis.lowest = order.front().first;
  for (const auto& [exponent, parameter] : order) {
    if (exponent != basis.lowest + static_cast<int>(basis.parameterOf.size())) return std::nullopt;
    basis.parameterOf.push_back(parameter);
    basis.factor.push_back(reader.of(form.coefficients[parameter]).factor);
  }
  return basis;
}

}  // namespace pelmora::solver
