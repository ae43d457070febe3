// Any equation is read and evaluated with its gradient, or refused with a message.
// SPDX-License-Identifier: MIT
#include "fuzz/scratch_file.h"
#include "solver/equations/block_evaluator.h"
#include "solver/equations/expression_parser.h"

#include <array>
#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace pelmora;
  try {
    const solver::Expression expression = solver::parseExpression(fuzz::textOf(data, size));
    const std::array roots{expression.root};
    solver::BlockEvaluator<double> evaluator(expression, roots);
    const std::array<double, 5> x{-1, 0, 0.5, 40, 1e300};
    solver::BlockEvaluator<double>::Letters letters;
    letters.fill(1.5);
    evaluator.load(x, letters);
    evaluator.differentiate(expression.root);
    if (evaluator.value(expression.root).size() != x.size()) __builtin_trap();
  } catch (const solver::ParseFailure& failure) {
    if (failure.message.empty()) __builtin_trap();
  }
  return 0;
}
