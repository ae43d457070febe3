// Expressions of the dialect.
//
// From loose to tight: OR; AND; NOT; = <> < > <= >= IS LIKE BETWEEN IN; &; + -; * /; unary minus;
// ^. All of them, ^ included, group from left to right. SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_dialect/syntax_tree.h"
#include "adapters/sql_dialect/token_stream.h"

#include <pelmora/error.h>

#include <cstddef>
#include <string_view>

namespace pelmora::sql {

class ExpressionParser {
 public:
  explicit ExpressionParser(TokenStream& tokens) : tokens_(tokens) {}

  // Reads one expression; the cursor then stands on what may follow one: a comma, a closing
  // bracket, a reserved word, ';' or the end.
  //
  // Errors: statement errors that quote the whole expression. Nesting beyond 100 brackets is one.
  [[nodiscard]] Expression parse();

  // The error for something unexpected after the expression that was read last.
  [[nodiscard]] Error errorAfterExpression() const;

 private:
  static constexpr int deepestNesting = 100;

  // One level of brackets.
  class Nesting {
   public:
    explicit Nesting(ExpressionParser& parser) : parser_(parser) {
      if (++parser_.depth_ > deepestNesting) throw parser_.error("Expression too complex");
    }
    ~Nesting() { --parser_.depth_; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

   private:
    ExpressionParser& parser_;
  };

  [[nodiscard]] Error error(std::string_view what) const;
  [[nodiscard]] Error missingOperand() const;
  void expectClosingBracket();

  Expression parseDisjunction();
  Expression parseConjunction();
  Expression parseNegation();
  Expression parseComparison();
  Expression parsePredicate(Expression value, bool negated);
  Expression parseIsNull(Expression value);
  Expression parseConcatenation();
  Expression parseSum();
  Expression parseProduct();
  Expression parseSigned();
  Expression parsePower();
  Expression parsePrimary();
  Expression parseName();
  Expression parseCall(std::string name);
  Expression parseText();
  Expression parseNumber();
  Expression parseDate();

  TokenStream& tokens_;
  std::size_t start_ = 0;
  int depth_ = 0;
};

}  // namespace pelmora::sql
