// SPDX-License-Identifier: MIT
#include "adapters/sql_dialect/parser.h"

#include <pelmora/error.h>

#include <gtest/gtest.h>

#include <string>

namespace pelmora::sql {
namespace {

std::string failure(const std::string& statement) {
  try {
    (void)parseStatement(statement);
  } catch (const Error& error) {
    return error.what();
  }
  return {};
}

TEST(parser_errors, a_quote_inside_a_text_breaks_the_statement) {
  EXPECT_EQ(failure("select * from series where name = 'O'Neil' and meterid=5"),
            "Syntax error (missing operator) in query expression 'name = 'O'Neil' and meterid=5'.");
  EXPECT_EQ(failure("Insert into Fluids (Name) VALUES ('O'Neil')"),
            "Syntax error (missing operator) in query expression ''O'Neil')'.");
}

TEST(parser_errors, a_text_that_is_never_closed) {
  EXPECT_EQ(failure("Select * from fluids where name = 'water"),
            "Syntax error in string in query expression 'name = 'water'.");
}

TEST(parser_errors, nothing_may_follow_a_statement) {
  EXPECT_EQ(failure("Select * from fluids where name = ''; DROP TABLE fluids"),
            "Characters found after end of SQL statement.");
  EXPECT_EQ(failure("Select * from fluids;;"), "Characters found after end of SQL statement.");
  EXPECT_EQ(failure("Delete from fluids where id=1; Delete from fluids"),
            "Characters found after end of SQL statement.");
}

TEST(parser_errors, other_statements_are_refused) {
  for (const char* statement :
       {"DROP TABLE meter", "", ";", "PRAGMA user_version", "ATTACH 'x' AS y", "'a'", "("}) {
    EXPECT_EQ(failure(statement),
              "Invalid SQL statement; expected 'DELETE', 'INSERT', 'SELECT', or 'UPDATE'.")
        << statement;
  }
}

TEST(parser_errors, comments_are_no_part_of_the_dialect) {
  EXPECT_NE(failure("Select * from fluids where name = '' --'"), "");
  EXPECT_NE(failure("Select * /* all */ from fluids"), "");
}

TEST(parser_errors, the_copy_of_a_second_job_is_no_statement) {
  EXPECT_EQ(
      failure("INSERT INTO CalDataPoint IN 'c:\\x\\Pelmora.mdb' 5, (Select * from DataPoint Where "
              "((DataPoint.JobRecordID=1002)));"),
      "Syntax error in INSERT INTO statement.");
}

TEST(parser_errors, a_decimal_comma_breaks_a_formula) {
  EXPECT_EQ(failure("SELECT [v4]*(1+((1,92E-05)*([v12]-70))) AS Roshko FROM CalDataPoint"),
            "Syntax error (comma) in query expression '[v4]*(1+((1,92E-05)*([v12]-70)))'.");
}

TEST(parser_errors, clauses_tell_where_they_break) {
  EXPECT_EQ(failure("Select * from"), "Syntax error in FROM clause.");
  EXPECT_EQ(failure("Select * from where id=1"), "Syntax error in FROM clause.");
  EXPECT_EQ(failure("Select * from meter left join"), "Syntax error in FROM clause.");
  EXPECT_EQ(failure("Select * from meter left series on 1=1"), "Syntax error in JOIN operation.");
  EXPECT_EQ(failure("Select * from meter left join series"), "Syntax error in JOIN operation.");
  EXPECT_EQ(failure("Select * from meter order by"), "Syntax error in ORDER BY clause.");
  EXPECT_EQ(failure("Select * from meter order id"), "Syntax error in ORDER BY clause.");
  EXPECT_EQ(failure("INSERT meter (id) VALUES (1)"), "Syntax error in INSERT INTO statement.");
  EXPECT_EQ(failure("INSERT INTO meter (id VALUES (1)"), "Syntax error in INSERT INTO statement.");
  EXPECT_EQ(failure("INSERT INTO meter (id) VALUES (1) x"),
            "Syntax error in INSERT INTO statement.");
  EXPECT_EQ(failure("UPDATE meter SET id"), "Syntax error in UPDATE statement.");
  EXPECT_EQ(failure("DELETE meter"), "Syntax error in DELETE statement.");
}

TEST(parser_errors, an_expression_that_is_left_incomplete) {
  EXPECT_EQ(failure("Select * from meter where id="),
            "Syntax error (missing operator) in query expression 'id='.");
  EXPECT_EQ(failure("DELETE from raw1 where seriesID = "),
            "Syntax error (missing operator) in query expression 'seriesID ='.");
  EXPECT_EQ(failure("Select * from meter where id=1 2"),
            "Syntax error (missing operator) in query expression 'id=1 2'.");
  EXPECT_EQ(failure("Select a b from meter"),
            "Syntax error (missing operator) in query expression 'a b'.");
}

TEST(parser_errors, brackets_must_match) {
  EXPECT_EQ(failure("Select * from meter where (id=1"),
            "Missing ), ], or item in query expression '(id=1'.");
  EXPECT_EQ(failure("Select * from meter where id=1)"), "Extra ) in query expression 'id=1'.");
  EXPECT_EQ(failure("Select * from meter where [id=1"),
            "Missing ), ], or item in query expression '[id=1'.");
}

TEST(parser_errors, dates_must_be_dates) {
  EXPECT_EQ(failure("Select * from CalSetup where DateTaken=#13/32/2019#"),
            "Syntax error in date in query expression 'DateTaken=#13/32/2019#'.");
  EXPECT_EQ(failure("Select * from CalSetup where DateTaken=#1/2/2019"),
            "Syntax error in date in query expression 'DateTaken=#1/2/2019'.");
}

TEST(parser_errors, functions_are_named) {
  EXPECT_EQ(failure("Select load_extension('x') from meter"),
            "Undefined function 'load_extension' in expression.");
  EXPECT_EQ(failure("Select dialect_arithmetic('v', 1) from meter"),
            "Undefined function 'dialect_arithmetic' in expression.");
}

TEST(parser_errors, subqueries_are_refused) {
  EXPECT_NE(failure("Select * from meter where id = (Select 1)"), "");
  EXPECT_NE(failure("Select * from meter union select * from meter"), "");
}

TEST(parser_errors, a_number_beyond_the_range_is_an_overflow) {
  try {
    (void)parseStatement("Select 1E999");
    FAIL();
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), 6);
  }
  EXPECT_EQ(failure("Select 1E-999"), "");
}

TEST(parser_errors, the_number_of_a_syntax_error_is_not_the_generic_failure) {
  try {
    (void)parseStatement("Select");
    FAIL();
  } catch (const Error& error) {
    EXPECT_NE(error.number(), static_cast<std::int32_t>(0x80004005U));
    EXPECT_EQ(error.number(), static_cast<std::int32_t>(0x80040E14U));
  }
}

}  // namespace
}  // namespace pelmora::sql
