// Whatever comes in, the parser answers with a tree or an Error.
// SPDX-License-Identifier: MIT
#include "adapters/sql_dialect/parser.h"
#include "adapters/sqlite/sqlite_renderer.h"
#include "tests/support/fixed_catalogue.h"

#include <pelmora/error.h>

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>

namespace pelmora::sql {
namespace {

enum class Outcome { understood, refused };

Outcome tryStatement(const std::string& statement) {
  try {
    (void)sqlite::renderForSqlite(parseStatement(statement), test::FixedCatalogue());
  } catch (const Error& error) {
    EXPECT_STRNE(error.what(), "");
    return Outcome::refused;
  }
  return Outcome::understood;
}

TEST(random_statements, token_soup_never_crashes) {
  constexpr std::array<const char*, 58> words{
      "SELECT", "DISTINCT", "TOP",     "1",      "FROM",       "meter", "series", "raw1", "WHERE",
      "id",     "name",     "meterid", "AND",    "OR",         "NOT",   "=",      "<>",   "<",
      "(",      ")",        ",",       ".",      "*",          "/",     "+",      "-",    "^",
      "&",      "'a'",      "'",       "\"b\"",  "#1/2/2019#", "#",     "[id]",   "[",    ";",
      "ORDER",  "BY",       "ASC",     "DESC",   "GROUP",      "COUNT", "INSERT", "INTO", "VALUES",
      "IN",     "DELETE",   "UPDATE",  "SET",    "LEFT",       "JOIN",  "ON",     "AS",   "NULL",
      "IS",     "LIKE",     "BETWEEN", "1.5E-05"};
  std::mt19937 random(20190314);
  std::uniform_int_distribution<std::size_t> word(0, words.size() - 1);
  std::uniform_int_distribution<int> length(1, 40);
  constexpr std::array<const char*, 5> starts{"SELECT ", "INSERT INTO ", "DELETE ",
                                              "UPDATE meter SET ", "Select * from meter where "};
  for (int i = 0; i < 20000; ++i) {
    std::string statement = starts[static_cast<std::size_t>(i) % starts.size()];
    for (int n = length(random); n > 0; --n) statement += std::string(words[word(random)]) + " ";
    tryStatement(statement);
  }
}

TEST(random_statements, random_bytes_never_crash) {
  std::mt19937 random(7);
  std::uniform_int_distribution<int> byte(0, 255);
  for (int i = 0; i < 5000; ++i) {
    std::string statement = i % 2 == 0 ? "Select * from meter where " : "";
    for (int n = i % 60; n > 0; --n) statement += static_cast<char>(byte(random));
    tryStatement(statement);
  }
}

TEST(random_statements, every_beginning_of_a_statement_is_refused_or_understood) {
  const std::string whole =
      "INSERT INTO CalDataPoint ( CalSetupID, V1 ) IN 'x y'SELECT 7 as CalSetupID, V1 FROM (meter "
      "LEFT JOIN "
      "CalSetup ON meter.ID = CalSetup.MeterID) LEFT JOIN DataPoint ON DataPoint.V1 = CalSetup.ID "
      "WHERE "
      "(((JobRecordID)='a''b') AND NOT V2 BETWEEN -1 AND 2^3 OR V1 IS NULL) ORDER BY V2 DESC;";
  EXPECT_EQ(tryStatement(whole), Outcome::understood);
  for (std::size_t length = 0; length < whole.size(); ++length)
    tryStatement(whole.substr(0, length));
}

std::string repeated(const std::string& text, int count) {
  std::string result;
  for (int i = 0; i < count; ++i) result += text;
  return result;
}

TEST(random_statements, deep_nesting_is_refused) {
  constexpr int depth = 100000;
  const std::string start = "Select * from meter where ";
  EXPECT_EQ(tryStatement(start + repeated("(", depth) + "id" + repeated(")", depth) + "=1"),
            Outcome::refused);
  EXPECT_EQ(tryStatement(start + repeated("(", depth)), Outcome::refused);
  EXPECT_EQ(tryStatement(start + "id" + repeated("=1", depth)), Outcome::refused);
  EXPECT_EQ(tryStatement(start + "id" + repeated(" is null", depth)), Outcome::refused);
  EXPECT_EQ(tryStatement(start + "id" + repeated(" in (1", depth)), Outcome::refused);
  EXPECT_EQ(tryStatement(start + repeated("count(", depth)), Outcome::refused);
  EXPECT_EQ(tryStatement("Select * from " + repeated("(", depth) + "meter"), Outcome::refused);
}

TEST(random_statements, long_chains_are_no_nesting) {
  constexpr int length = 20000;
  const std::string start = "Select * from meter where ";
  EXPECT_EQ(tryStatement(start + repeated("not ", length) + "id=1"), Outcome::understood);
  EXPECT_EQ(tryStatement(start + "id=" + repeated("-", length) + "1"), Outcome::understood);
  EXPECT_EQ(tryStatement(start + "id=1" + repeated(" or id=1", length)), Outcome::understood);
  EXPECT_EQ(tryStatement(start + "id=1" + repeated("+1", length)), Outcome::refused);
}

TEST(random_statements, sensible_nesting_is_understood) {
  EXPECT_EQ(
      tryStatement("Select * from meter where " + repeated("(", 90) + "id=1" + repeated(")", 90)),
      Outcome::understood);
}

}  // namespace
}  // namespace pelmora::sql
