// SPDX-License-Identifier: MIT
#include "adapters/sqlite/arithmetic_program.h"

#include "adapters/sql_dialect/dialect_error.h"
#include "base/number_text.h"
#include "base/run_time_error.h"

#include <sqlite3.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace pelmora::sqlite {

namespace {

// One value on the stack of a program. Whole numbers stay whole as long as they can.
struct Operand {
  enum class Kind { null, integer, real, text } kind = Kind::null;
  std::int64_t integer = 0;
  double real = 0;
  sqlite3_value* argument = nullptr;  // of a text that came in
  std::string joined;                 // of a text that was made here
};

Operand realOperand(double value) {
  if (!std::isfinite(value)) throw makeError(RunTimeError::overflow);
  Operand result;
  result.kind = Operand::Kind::real;
  result.real = value;
  return result;
}

Operand integerOperand(std::int64_t value) {
  Operand result;
  result.kind = Operand::Kind::integer;
  result.integer = value;
  return result;
}

Operand operandOf(sqlite3_value* argument) {
  switch (sqlite3_value_type(argument)) {
    case SQLITE_INTEGER: return integerOperand(sqlite3_value_int64(argument));
    case SQLITE_FLOAT: return realOperand(sqlite3_value_double(argument));
    case SQLITE_NULL: return {};
    default: break;
  }
  Operand result;
  result.kind = Operand::Kind::text;
  result.argument = argument;
  return result;
}

std::string textOf(const Operand& operand) {
  switch (operand.kind) {
    case Operand::Kind::null: return {};
    case Operand::Kind::integer: return numberText(operand.integer);
    case Operand::Kind::real: return numberText(operand.real);
    case Operand::Kind::text: break;
  }
  return operand.argument == nullptr ? operand.joined : std::string(valueText(operand.argument));
}

Operand textOperand(std::string text) {
  Operand result;
  result.kind = Operand::Kind::text;
  result.joined = std::move(text);
  return result;
}

// A text that reads as a number counts as that number: with a decimal point whatever the locale, or
// in the locale's own way.
void makeNumber(Operand& operand) {
  if (operand.kind != Operand::Kind::text) return;
  if (operand.argument != nullptr) {
    switch (sqlite3_value_numeric_type(operand.argument)) {
      case SQLITE_INTEGER: operand = integerOperand(sqlite3_value_int64(operand.argument)); return;
      case SQLITE_FLOAT: operand = realOperand(sqlite3_value_double(operand.argument)); return;
      default: break;
    }
  }
  try {
    operand = realOperand(numberFromText(textOf(operand)));
  } catch (const Error&) {
    throw sql::typeMismatch();
  }
}

double realOf(const Operand& operand) {
  return operand.kind == Operand::Kind::integer ? static_cast<double>(operand.integer)
                                                : operand.real;
}

Operand power(double base, double exponent) {
  if (base == 0 && exponent < 0) throw makeError(RunTimeError::divisionByZero);
  const double result = std::pow(base, exponent);
  if (std::isnan(result)) throw makeError(RunTimeError::invalidArgument);
  return realOperand(result);
}

Operand combine(Operand left, char op, Operand right) {
  using Kind = Operand::Kind;
  if (op == '&') {
    if (left.kind == Kind::null && right.kind == Kind::null) return {};
    return textOperand(textOf(left) + textOf(right));
  }
  if (left.kind == Kind::null || right.kind == Kind::null) return {};
  if (op == '+' && left.kind == Kind::text && right.kind == Kind::text) {
    return textOperand(textOf(left) + textOf(right));
  }
  makeNumber(left);
  makeNumber(right);
  if (left.kind == Kind::integer && right.kind == Kind::integer) {
    std::int64_t whole = 0;
    const bool isTooLarge =
        (op == '+' && __builtin_add_overflow(left.integer, right.integer, &whole)) ||
        (op == '-' && __builtin_sub_overflow(left.integer, right.integer, &whole)) ||
        (op == '*' && __builtin_mul_overflow(left.integer, right.integer, &whole));
    if (!isTooLarge && op != '/' && op != '^') return integerOperand(whole);
  }
  const double a = realOf(left);
  const double b = realOf(right);
  switch (op) {
    case '+': return realOperand(a + b);
    case '-': return realOperand(a - b);
    case '*': return realOperand(a * b);
    case '/':
      if (b == 0) throw makeError(RunTimeError::divisionByZero);
      return realOperand(a / b);
    default: return power(a, b);
  }
}

Operand negative(Operand operand) {
  makeNumber(operand);
  if (operand.kind == Operand::Kind::null) return {};
  return combine(integerOperand(0), '-', std::move(operand));
}

Operand evaluate(std::string_view program, std::span<sqlite3_value*> values) {
  std::vector<Operand> stack;
  stack.reserve(values.size());
  std::size_t next = 0;
  const auto pop = [&] {
    if (stack.empty()) throw makeError(RunTimeError::invalidArgument);
    Operand top = std::move(stack.back());
    stack.pop_back();
    return top;
  };
  for (const char instruction : program) {
    if (instruction == 'v') {
      if (next == values.size()) throw makeError(RunTimeError::invalidArgument);
      stack.push_back(operandOf(values[next++]));
    } else if (instruction == 'n') {
      stack.push_back(negative(pop()));
    } else {
      Operand right = pop();
      stack.push_back(combine(pop(), instruction, std::move(right)));
    }
  }
  return pop();
}

void deliver(sqlite3_context* context, const Operand& result) {
  switch (result.kind) {
    case Operand::Kind::null: sqlite3_result_null(context); break;
    case Operand::Kind::integer: sqlite3_result_int64(context, result.integer); break;
    case Operand::Kind::real: sqlite3_result_double(context, result.real); break;
    case Operand::Kind::text: {
      const std::string text = textOf(result);
      sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
      break;
    }
  }
}

}  // namespace

std::string_view valueText(sqlite3_value* value) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
  return text == nullptr
             ? std::string_view()
             : std::string_view(text, static_cast<std::size_t>(sqlite3_value_bytes(value)));
}

void evaluateProgram(sqlite3_context* context, std::string_view program,
                     std::span<sqlite3_value*> values) {
  Operand result = evaluate(program, values);
  // Alone it is the check that a value is a number.
  if (program == "v") makeNumber(result);
  deliver(context, result);
}

}  // namespace pelmora::sqlite
