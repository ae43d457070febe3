// SPDX-License-Identifier: MIT
#include "solver/equations/known_equations.h"

#include "solver/equations/expression_parser.h"

#include <mutex>
#include <unordered_map>
#include <utility>

namespace pelmora::solver {
namespace {

std::shared_ptr<const KnownEquation> read(const std::string& text) {
  auto equation = std::make_shared<KnownEquation>();
  equation->expression = parseExpression(text);
  equation->letters = equation->expression.letters();
  if (equation->letters.empty()) return equation;
  equation->form = linearForm(equation->expression, equation->letters);
  if (equation->form) equation->basis = powerBasis(equation->expression, *equation->form);
  return equation;
}

// Never destroyed: a thread may fit while the process ends.
struct Kept {
  static constexpr std::size_t most = 64;  // catalogues have up to 19
  std::mutex mutex;
  std::unordered_map<std::string, std::shared_ptr<const KnownEquation>> equations;
};

Kept& kept() {
  static auto* const all = new Kept();
  return *all;
}

}  // namespace

std::shared_ptr<const KnownEquation> knownEquation(const std::string& text) {
  Kept& all = kept();
  {
    const std::scoped_lock lock(all.mutex);
    if (const auto found = all.equations.find(text); found != all.equations.end())
      return found->second;
  }
  auto equation = read(text);
  const std::scoped_lock lock(all.mutex);
  if (all.equations.size() >= Kept::most) all.equations.clear();
  all.equations.emplace(text, equation);
  return equation;
}

}  // namespace pelmora::solver
