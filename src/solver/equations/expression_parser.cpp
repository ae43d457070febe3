// SPDX-License-Identifier: MIT
#include "solver/equations/expression_parser.h"

#include "base/ascii_character.h"
#include "solver/arithmetic/decimal_number.h"
#include "solver/arithmetic/double_double_functions.h"

#include <array>
#include <cctype>
#include <optional>
#include <utility>

namespace pelmora::solver {
namespace {

constexpr std::array<std::pair<std::string_view, Op>, 14> functions{{
    {"ln", Op::ln},
    {"log", Op::log10},
    {"exp", Op::exp},
    {"sqrt", Op::sqrt},
    {"abs", Op::abs},
    {"sin", Op::sin},
    {"cos", Op::cos},
    {"tan", Op::tan},
    {"asin", Op::asin},
    {"acos", Op::acos},
    {"atan", Op::atan},
    {"sinh", Op::sinh},
    {"cosh", Op::cosh},
    {"tanh", Op::tanh},
}};

bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
char smallLetter(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

class Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) {}

  Expression run() {
    if (text_.size() > longestExpression) {
      throw ParseFailure{"the expression is longer than " + std::to_string(longestExpression) +
                         " characters"};
    }
    if (next() == '\0') throw ParseFailure{"the expression is empty"};
    result_.root = sum();
    if (next() == ')') fail("a closing bracket that nothing opened");
    if (next() != '\0') fail("expected an operator before " + quoted());
    return std::move(result_);
  }

 private:
  // The next character that is not a blank; '\0' at the end.
  char next() {
    while (at_ < text_.size() && isBlank(text_[at_])) ++at_;
    return at_ < text_.size() ? text_[at_] : '\0';
  }
  bool take(char c) {
    if (next() != c || c == '\0') return false;
    ++at_;
    return true;
  }
  std::string quoted() {
    const char c = next();
    if (c == '\0' && at_ >= text_.size()) return "the end";
    return std::isprint(static_cast<unsigned char>(c)) != 0 ? std::string("'") + c + "'"
                                                            : std::string("a strange character");
  }
  [[noreturn]] void fail(const std::string& what) { failAt(at_, what); }
  [[noreturn]] static void failAt(std::size_t position, const std::string& what) {
    throw ParseFailure{what + " at position " + std::to_string(position + 1)};
  }

  class Depth {
   public:
    explicit Depth(Parser& parser) : parser_(parser) {
      if (++parser_.depth_ > deepestExpression) {
        parser_.fail("more than " + std::to_string(deepestExpression) + " levels");
      }
    }
    ~Depth() { --parser_.depth_; }
    Depth(const Depth&) = delete;
    Depth& operator=(const Depth&) = delete;

   private:
    Parser& parser_;
  };

  NodeId sum() {
    NodeId left = product();
    for (;;) {
      if (take('+'))
        left = result_.binary(Op::add, left, product());
      else if (take('-'))
        left = result_.binary(Op::subtract, left, product());
      else
        return left;
    }
  }

  NodeId product() {
    NodeId left = signedPower();
    for (;;) {
      if (take('*'))
        left = result_.binary(Op::multiply, left, signedPower());
      else if (take('/'))
        left = result_.binary(Op::divide, left, signedPower());
      else
        return left;
    }
  }

  NodeId signedPower() {
    const Depth depth(*this);
    if (take('+')) return signedPower();
    if (take('-')) return result_.unary(Op::negate, signedPower());
    const NodeId base = atom();
    return take('^') ? result_.binary(Op::power, base, signedPower()) : base;
  }

  NodeId bracket() {
    const std::size_t opened = at_;
    if (!take('(')) fail("expected '(' before " + quoted());
    const NodeId inside = sum();
    if (take(')')) return inside;
    if (next() == '\0') failAt(opened, "a bracket that is never closed");
    fail("expected an operator or ')' before " + quoted());
  }

  NodeId atom() {
    const char c = next();
    if (c == '(') return bracket();
    if (isDigit(c) || c == '.') return number();
    if (isLetter(c)) return name();
    fail("expected a number, a name or '(' before " + quoted());
  }

  NodeId number() {
    const DecimalNumber read = readDecimalNumber(text_.substr(at_));
    if (read.length == 0) fail("expected a number before " + quoted());
    if (!isFinite(read.value)) fail("a number that is too large");
    at_ += read.length;
    return result_.constant(read.value);
  }

  NodeId name() {
    const std::size_t start = at_;
    std::string name;
    while (at_ < text_.size() && (isLetter(text_[at_]) || isDigit(text_[at_]))) {
      name += smallLetter(text_[at_++]);
    }
    if (name.size() == 1)
      return name[0] == 'x' ? result_.variable() : result_.parameter(name[0] - 'a');
    if (name == "pi") return result_.constant(dd_pi);
    for (const auto& [known, op] : functions) {
      if (known == name) {
        if (next() != '(') failAt(at_, "expected '(' after " + name);
        return result_.unary(op, bracket());
      }
    }
    failAt(start, "unknown name '" + name + "'");
  }

  std::string_view text_;
  std::size_t at_ = 0;
  int depth_ = 0;
  Expression result_;
};

}  // namespace

Expression parseExpression(std::string_view text) { return Parser(text).run(); }

}  // namespace pelmora::solver
