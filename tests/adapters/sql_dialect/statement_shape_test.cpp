// What statements that differ in plain literals have in common, and that it is exact.
// SPDX-License-Identifier: MIT
#include "adapters/sql_dialect/statement_shape.h"

#include "adapters/sql_dialect/literal_parameters.h"
#include "adapters/sql_dialect/parser.h"
#include "adapters/sqlite/sqlite_expression.h"
#include "adapters/sqlite/sqlite_renderer.h"
#include "tests/support/fixed_catalogue.h"

#include <pelmora/error.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace pelmora::sql {
namespace {

std::string keyOf(const std::string& statement) { return shapeOf(statement).value().key; }

struct OpenRendering {
  std::string sql;
  std::vector<LiteralParameters::Parameter> parameters;
};

// Nothing where the statement is refused.
std::optional<OpenRendering> renderedOpen(const std::string& statement,
                                          const StatementShape& shape) {
  LiteralParameters parameters(shape);
  try {
    std::string sql = sqlite::renderForSqlite(parseStatement(statement), test::FixedCatalogue(),
                                              "main", &parameters);
    return OpenRendering{std::move(sql), parameters.all()};
  } catch (const Error&) {
    return std::nullopt;
  }
}

std::string rendered(const std::string& statement) {
  return sqlite::renderForSqlite(parseStatement(statement), test::FixedCatalogue());
}

// The statement with parameters, whose values stand in place of them.
std::string filledIn(const OpenRendering& open, const StatementShape& shape) {
  std::string sql = open.sql;
  for (std::size_t i = open.parameters.size(); i-- > 0;) {  // ?12 before ?1
    const auto& [literal, form] = open.parameters[i];
    const std::string& text = shape.literals[literal].text;
    const std::string mark = "?" + std::to_string(i + 1);
    const std::size_t at = sql.find(mark);
    if (at == std::string::npos) return "no " + mark + " in " + open.sql;
    sql.replace(at, mark.size(),
                form == LiteralParameters::Form::text ? sqlite::quotedText(text) : text);
  }
  return sql;
}

std::string open(const std::string& statement) {
  return renderedOpen(statement, shapeOf(statement).value()).value().sql;
}

TEST(statement_shape, is_the_same_for_other_plain_literals) {
  EXPECT_EQ(keyOf("Select * from raw1 where seriesID = 7"),
            keyOf("Select * from raw1 where seriesID = 123456789012345"));
  EXPECT_EQ(keyOf("Select * from meter where SerialNumber='TF-1' AND ReCalID=0"),
            keyOf("Select * from meter where SerialNumber='Rotor A' AND ReCalID=12"));
  EXPECT_EQ(keyOf("Select * from meter where SerialNumber='4711'"),
            keyOf("Select * from meter where SerialNumber='1'"));
}

TEST(statement_shape, tells_the_literals_and_where_they_stand) {
  const auto shape = shapeOf("Select * from meter where SerialNumber='it''s' AND ReCalID=12");
  ASSERT_TRUE(shape);
  ASSERT_EQ(shape->literals.size(), 2U);
  EXPECT_EQ(shape->literals[0].text, "it's");
  EXPECT_EQ(shape->literals[0].position, 40U);
  EXPECT_EQ(shape->literals[0].whole, std::nullopt);
  EXPECT_EQ(shape->literals[1].text, "12");
  EXPECT_EQ(shape->literals[1].whole, 12);
}

TEST(statement_shape, differs_between_kinds_of_literals_and_in_all_else) {
  const std::string start = "Select * from CalDataPoint where JobRecordID=";
  EXPECT_NE(keyOf(start + "5"), keyOf(start + "'5'"));
  EXPECT_NE(keyOf(start + "'5'"), keyOf(start + "'five'"));
  EXPECT_NE(keyOf(start + "5"), keyOf(start + "5 "));
  // What is no plain literal stays as it is written.
  for (const char* literal : {"05", "5.0", "5e0", "1234567890123456", "'05'", "'5.0'", "'1e3'",
                              "'-5'", "'M\xC3\xBCller'", "'a\tb'", "#1/2/2019#"}) {
    EXPECT_EQ(keyOf(start + literal), start + literal);
  }
}

TEST(statement_shape, is_not_told_of_statements_that_could_be_mistaken_or_are_large) {
  EXPECT_FALSE(shapeOf("Select * from raw1 where seriesID = \x01"));
  EXPECT_FALSE(shapeOf("Select [\x02] from raw1"));
  EXPECT_FALSE(shapeOf("Select * from meter where SerialNumber='\x03'"));
  EXPECT_FALSE(shapeOf("Select * from meter where SerialNumber='" + std::string(5000, 'x') + "'"));
  std::string list = "1";
  for (int i = 0; i < 20; ++i) list += ", 1";
  EXPECT_FALSE(shapeOf("Select * from meter where ID IN (" + list + ")"));
}

TEST(open_rendering, leaves_open_what_is_compared_with_a_column) {
  EXPECT_EQ(open("Select Roshko from raw1 where seriesID = 7 AND 8 > Roshko"),
            R"(SELECT "raw1"."Roshko" AS "Roshko" FROM "main"."raw1" AS "raw1" )"
            R"(WHERE ("raw1"."seriesID" = ?1 AND "raw1"."Roshko" < ?2))");
  EXPECT_EQ(open("Delete * from meter where ID IN (1, 2) AND SerialNumber='TF-1'"),
            R"(DELETE FROM "main"."meter" AS "meter" WHERE (("meter"."ID" IN (?1, ?2)) )"
            R"(AND "meter"."SerialNumber" = ?3 COLLATE NOCASE))");
  EXPECT_EQ(open("Delete * from CalDataPoint where JobRecordID='12'"),
            R"(DELETE FROM "main"."CalDataPoint" AS "CalDataPoint" )"
            R"(WHERE "CalDataPoint"."JobRecordID" IN (?1, ?2))");
}

TEST(open_rendering, leaves_open_the_numbers_that_an_insert_takes_from_a_select) {
  EXPECT_EQ(open("INSERT INTO raw1 (seriesID, Roshko) SELECT 7 AS seriesID, Roshko FROM raw1"),
            R"(INSERT INTO "main"."raw1" ("seriesID", "Roshko") SELECT ?1 AS "seriesID", )"
            R"("raw1"."Roshko" AS "Roshko" FROM "main"."raw1" AS "raw1")");
  // Sorted by its name, the literal is written out; there a number means a column to SQLite.
  EXPECT_EQ(open("INSERT INTO raw1 (seriesID, Roshko) SELECT 7 AS n, Roshko FROM raw1 ORDER BY n"),
            R"(INSERT INTO "main"."raw1" ("seriesID", "Roshko") SELECT 7 AS "n", )"
            R"("raw1"."Roshko" AS "Roshko" FROM "main"."raw1" AS "raw1" ORDER BY 7)");
}

TEST(open_rendering, writes_out_all_other_literals) {
  for (const char* statement :
       {"Select TOP 3 Roshko from raw1", "Select 5 AS n, Roshko from raw1",
        "Select Roshko from raw1 where 1=0", "Select Roshko from raw1 where seriesID = -5",
        "Select Roshko from raw1 where seriesID + 1 = Roshko", "Select Roshko from raw1 ORDER BY 1",
        "Update raw1 SET Roshko = 5", "Insert into raw1 (seriesID) VALUES (5)",
        "Select name from series where name LIKE 'Rotor%'"}) {
    EXPECT_EQ(open(statement), rendered(statement));
  }
}

// Another literal of the same kind.
std::string otherLiteral(const PlainLiteral& literal, bool isNumber) {
  if (!literal.whole) return "'qq" + literal.text + "'";
  const std::string digits = std::to_string(*literal.whole == 8642 ? 8643 : 8642);
  return isNumber ? digits : "'" + digits + "'";
}

// `statement` with other values of the literals that `open` has as parameters.
std::string withOtherValues(const std::string& statement, const StatementShape& shape,
                            const OpenRendering& open) {
  std::string other = statement;
  for (std::size_t i = shape.literals.size(); i-- > 0;) {
    const bool isOpen = std::ranges::any_of(
        open.parameters, [&](const auto& parameter) { return parameter.literal == i; });
    if (!isOpen) continue;
    const std::size_t begin = shape.literals[i].position - 1;
    const bool isNumber = statement[begin] != '\'' && statement[begin] != '"';
    const std::size_t length = isNumber ? shape.literals[i].text.size()
                                        : statement.find(statement[begin], begin + 1) - begin + 1;
    other.replace(begin, length, otherLiteral(shape.literals[i], isNumber));
  }
  return other;
}

TEST(open_rendering, says_the_same_as_the_written_out_one_for_whatever_is_asked) {
  constexpr std::array<const char*, 41> words{
      "1",           "7",       "'a'",     "'12'",      "\"b\"",       "007",     "1.5",
      "NOT",         "AND",     "OR",      "=",         "=",           "<>",      "<",
      "(",           ")",       ",",       "+",         "-",           "&",       "id",
      "name",        "Roshko",  "meterid", "V1",        "IN (",        "BETWEEN", "LIKE",
      "JobRecordID", "IS NULL", "ID",      "'7'",       "5",           "=",       "AND",
      "= 'x'",       "= 3",     "= 4)",    "IN (1, 2)", "IN ('a', 6)", ""};
  constexpr std::array<const char*, 8> starts{
      "Select * from meter where ",
      "Select TOP 2 name, 4 AS n, id = 3 AS t from series where ",
      "Delete * from CalDataPoint where ",
      "Update raw1 SET Roshko = 5 where ",
      "Insert into raw1 (seriesID, Roshko) Select 7 AS seriesID, Roshko from raw1 where ",
      "Insert into raw1 (seriesID, Roshko) Select 7 AS n, Roshko from raw1 ORDER BY ",
      "Select DISTINCT name from series LEFT JOIN meter ON series.meterid = meter.ID AND "
      "meter.ReCalID = ",
      "Select COUNT(*), name from series GROUP BY name HAVING name = "};
  std::mt19937 random(4);
  std::uniform_int_distribution<std::size_t> word(0, words.size() - 1);
  std::uniform_int_distribution<int> length(1, 7);
  int understood = 0;
  int withParameters = 0;
  for (int i = 0; i < 6000; ++i) {
    std::string statement = starts[static_cast<std::size_t>(i) % starts.size()];
    for (int n = length(random); n > 0; --n) statement += words[word(random)] + std::string(" ");
    const auto shape = shapeOf(statement);
    ASSERT_TRUE(shape);
    const auto open = renderedOpen(statement, *shape);
    if (!open) continue;
    ++understood;
    ASSERT_EQ(filledIn(*open, *shape), rendered(statement)) << statement;
    const std::string other = withOtherValues(statement, *shape, *open);
    const auto otherShape = shapeOf(other);
    ASSERT_TRUE(otherShape);
    ASSERT_EQ(otherShape->key, shape->key) << statement;
    const auto otherOpen = renderedOpen(other, *otherShape);
    ASSERT_TRUE(otherOpen) << other;
    ASSERT_EQ(otherOpen->sql, open->sql) << other;
    if (other != statement) ++withParameters;
  }
  EXPECT_GT(understood, 200);
  EXPECT_GT(withParameters, 100);
}

}  // namespace
}  // namespace pelmora::sql
