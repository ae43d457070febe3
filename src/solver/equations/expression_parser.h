// Reads the text of an equation.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/equations/expression.h"

#include <string>
#include <string_view>

namespace pelmora::solver {

// Why a text is not an equation: words that name the place, counted from 1.
struct ParseFailure {
  std::string message;
};

// Grammar, blanks anywhere, no difference between small and capital letters:
//
//   sum      = product { ("+" | "-") product }
//   product  = signed { ("*" | "/") signed }
//   signed   = { "+" | "-" } power
//   power    = atom [ "^" signed ]                 right associative, above the sign
//   atom     = number | "pi" | letter | function "(" sum ")" | "(" sum ")"
//   function = ln | log (base 10) | exp | sqrt | abs | sin | cos | tan | asin | acos | atan
//              | sinh | cosh | tanh
//
// x is the variable, every other single letter a parameter, at most 25 of them. A number has a
// decimal point whatever the locale; an "e" belongs to it only where digits follow.
//
// Limits: longestExpression characters, deepestExpression brackets, signs and powers inside each
// other.
// Errors: ParseFailure, also for an empty text; nothing else is thrown.
[[nodiscard]] Expression parseExpression(std::string_view text);

inline constexpr std::size_t longestExpression = 4000;
inline constexpr int deepestExpression = 100;

}  // namespace pelmora::solver
