// SPDX-License-Identifier: MIT
#include "adapters/sql_dialect/parser.h"
#include "adapters/sqlite/sqlite_renderer.h"
#include "tests/support/fixed_catalogue.h"

#include <pelmora/error.h>

#include <gtest/gtest.h>

#include <string>

namespace pelmora::sql {
namespace {

std::string rendered(const std::string& statement, std::string_view output = "main") {
  return sqlite::renderForSqlite(parseStatement(statement), test::FixedCatalogue(), output);
}

std::string failure(const std::string& statement) {
  try {
    (void)rendered(statement);
  } catch (const Error& error) {
    return error.what();
  }
  return {};
}

// The condition of "Select id from meter where ...".
std::string condition(const std::string& text, const std::string& table = "meter") {
  const std::string sql = rendered("Select * from " + table + " where " + text);
  return sql.substr(sql.find(" WHERE ") + 7);
}

std::string value(const std::string& text) {
  const std::string sql = rendered("Select " + text + " AS v from CalDataPoint");
  return sql.substr(7, sql.find(" AS \"v\"") - 7);
}

TEST(render, names_are_spelled_as_the_database_spells_them) {
  EXPECT_EQ(rendered("select ROSHKO from RAW1"),
            R"(SELECT "RAW1"."Roshko" AS "Roshko" FROM "main"."raw1" AS "RAW1")");
}

TEST(render, top_limits_the_rows) {
  EXPECT_EQ(rendered("SELECT TOP 3 id FROM meter ORDER BY ReCalID DESC, id ASC"),
            R"(SELECT "meter"."ID" AS "ID" FROM "main"."meter" AS "meter" )"
            R"(ORDER BY "meter"."ReCalID" DESC, "meter"."ID" LIMIT 3)");
}

TEST(render, all_columns_are_written_out) {
  EXPECT_EQ(
      rendered("Select * from fluids;"),
      R"(SELECT "fluids"."ID" AS "ID", "fluids"."Name" AS "Name" FROM "main"."Fluids" AS "fluids")");
}

TEST(render, a_right_join_becomes_a_left_join_the_other_way_round) {
  const std::string sql = rendered(
      "SELECT CalSetup.ID FROM Fluids RIGHT JOIN CalSetup ON Fluids.ID = CalSetup.FluidID");
  EXPECT_EQ(sql.substr(sql.find(" FROM ")),
            R"( FROM "main"."CalSetup" AS "CalSetup" LEFT JOIN "main"."Fluids" AS "Fluids" )"
            R"(ON "Fluids"."ID" = "CalSetup"."FluidID")");
}

TEST(render, bracketed_joins_keep_their_order) {
  const std::string sql = rendered(
      "SELECT meter.ID FROM (Meter LEFT JOIN CalSetup ON Meter.ID = CalSetup.MeterID) LEFT JOIN "
      "CalDatapoint ON CalSetup.ID = CalDatapoint.CalSetupID");
  EXPECT_EQ(
      sql.substr(sql.find(" FROM ")),
      R"( FROM "main"."meter" AS "Meter" LEFT JOIN "main"."CalSetup" AS "CalSetup" ON "Meter"."ID" = )"
      R"("CalSetup"."MeterID" LEFT JOIN "main"."CalDataPoint" AS "CalDatapoint" ON "CalSetup"."ID" = )"
      R"("CalDatapoint"."CalSetupID")");
}

TEST(render, a_bracketed_join_on_the_right_keeps_its_brackets) {
  const std::string sql = rendered(
      "SELECT meter.ID FROM Meter LEFT JOIN (CalSetup INNER JOIN Fluids ON CalSetup.FluidID = "
      "Fluids.ID) ON Meter.ID = CalSetup.MeterID");
  EXPECT_NE(sql.find(R"(LEFT JOIN ("main"."CalSetup" AS "CalSetup" INNER JOIN)"), std::string::npos)
      << sql;
}

TEST(render, the_three_forms_of_delete_mean_the_same) {
  const std::string sql = R"(DELETE FROM "main"."series" AS "series" WHERE "series"."ID" = 4)";
  EXPECT_EQ(rendered("DELETE Series.* from series where id=4"), sql);
  EXPECT_EQ(rendered("Delete * from series where series.id=4"), sql);
  EXPECT_EQ(rendered("DELETE from series where id = 4;"), sql);
}

TEST(render, an_insert_of_values_names_its_columns) {
  EXPECT_EQ(rendered("Insert into Fluids (Name) VALUES('O''Neil \"77\"')"),
            R"(INSERT INTO "main"."Fluids" ("Name") VALUES ('O''Neil "77"'))");
  EXPECT_EQ(
      rendered("INSERT INTO raw1 ( seriesID,   Roshko,   Strouhal ) Values (3,1.5E-05,-2)"),
      R"(INSERT INTO "main"."raw1" ("seriesID", "Roshko", "Strouhal") VALUES (3, 1.5E-05, -2))");
}

TEST(render, an_insert_into_another_file_reads_from_its_own) {
  const std::string sql = rendered(
      "INSERT INTO CalDataPoint ( CalSetupID, JobRecordID, V1, V2 ) IN '/a b/c''d.db'SELECT 7 as "
      "CalSetupID, "
      "JobRecordID, V1, V2 FROM DataPoint WHERE (((JobRecordID)=1001));",
      "output");
  EXPECT_EQ(
      sql,
      R"(INSERT INTO "output"."CalDataPoint" ("CalSetupID", "JobRecordID", "V1", "V2") )"
      R"(SELECT 7 AS "CalSetupID", "DataPoint"."JobRecordID" AS "JobRecordID", "DataPoint"."V1" AS "V1", )"
      R"("DataPoint"."V2" AS "V2" FROM "main"."DataPoint" AS "DataPoint" )"
      R"(WHERE "DataPoint"."JobRecordID" = '1001')");
}

TEST(render, the_named_file_is_decoded) {
  const Statement statement =
      parseStatement("INSERT INTO CalDataPoint ( V1 ) IN '/a b/c''d.db'SELECT V1 FROM DataPoint");
  EXPECT_EQ(std::get<InsertStatement>(statement).file, "/a b/c'd.db");
}

TEST(render, a_formula_becomes_one_program) {
  EXPECT_EQ(value("[v2]/[v1]/[v1]*(1+((1.92E-05)*([v2]-70)))"),
            R"(dialect_arithmetic('vv/v/vvvv-*+*', "CalDataPoint"."V2", "CalDataPoint"."V1", )"
            R"("CalDataPoint"."V1", 1, 1.92E-05, "CalDataPoint"."V2", 70))");
}

TEST(render, powers_bind_tighter_than_a_sign_and_group_from_the_left) {
  EXPECT_EQ(value("-2^2"), "dialect_arithmetic('vv^n', 2, 2)");
  EXPECT_EQ(value("2^3^2"), "dialect_arithmetic('vv^v^', 2, 3, 2)");
  EXPECT_EQ(value("2^-1"), "dialect_arithmetic('vvn^', 2, 1)");
}

TEST(render, joining_texts_binds_looser_than_a_sum) {
  EXPECT_EQ(value("'a' & 1+2"), "dialect_arithmetic('vvv+&', 'a', 1, 2)");
}

TEST(render, and_binds_tighter_than_or_and_not_tighter_than_both) {
  EXPECT_EQ(condition("id=1 or not id=2 and id=3"),
            R"(("meter"."ID" = 1 OR (NOT ("meter"."ID" = 2) AND "meter"."ID" = 3)))");
}

TEST(render, ascii_texts_compare_by_the_collation_of_the_indexes) {
  EXPECT_EQ(condition("serialnumber='abc'"), R"("meter"."SerialNumber" = 'abc' COLLATE NOCASE)");
  EXPECT_EQ(condition("'abc'<serialnumber"), R"("meter"."SerialNumber" > 'abc' COLLATE NOCASE)");
}

TEST(render, other_texts_compare_by_the_dialects_own_collation) {
  EXPECT_EQ(condition("serialnumber='Ä'"), R"("meter"."SerialNumber" = 'Ä' COLLATE DIALECT_TEXT)");
}

TEST(render, a_number_matches_a_column_of_numbers_or_texts) {
  EXPECT_EQ(condition("v1='5'", "CalDataPoint"), R"("CalDataPoint"."V1" = 5)");
  EXPECT_EQ(condition("JobRecordID=1001", "DataPoint"), R"("DataPoint"."JobRecordID" = '1001')");
  EXPECT_EQ(condition("JobRecordID=1001", "CalDataPoint"),
            R"("CalDataPoint"."JobRecordID" IN (1001, '1001'))");
  EXPECT_EQ(condition("JobRecordID='1001'", "CalDataPoint"),
            R"("CalDataPoint"."JobRecordID" IN (1001, '1001'))");
  EXPECT_EQ(condition("JobRecordID<>-5", "CalDataPoint"),
            R"("CalDataPoint"."JobRecordID" NOT IN (-5, '-5'))");
}

TEST(render, texts_and_numbers_have_no_order) {
  EXPECT_EQ(failure("Select * from meter where SerialNumber > 5"),
            "Data type mismatch in criteria expression.");
  EXPECT_EQ(failure("Select * from raw1 where Roshko < 'abc'"),
            "Data type mismatch in criteria expression.");
}

TEST(render, predicates_have_their_negations) {
  EXPECT_EQ(condition("serialnumber is not null"), R"("meter"."SerialNumber" IS NOT NULL)");
  EXPECT_EQ(condition("serialnumber like 'a%'"), R"(dialect_like("meter"."SerialNumber", 'a%'))");
  EXPECT_EQ(condition("serialnumber not like 'a%'"),
            R"(NOT dialect_like("meter"."SerialNumber", 'a%'))");
  EXPECT_EQ(condition("id between 1 and 3"), R"(("meter"."ID" >= 1 AND "meter"."ID" <= 3))");
  EXPECT_EQ(condition("id not in (1,2)"), R"(NOT ("meter"."ID" IN (1, 2)))");
}

TEST(render, dates_become_iso_texts) {
  EXPECT_EQ(condition("datetaken=#3/14/2019#", "CalSetup"),
            R"("CalSetup"."DateTaken" = '2019-03-14' COLLATE NOCASE)");
}

TEST(render, distinct_texts_compare_without_regard_to_case) {
  EXPECT_EQ(
      rendered("Select distinct serialnumber from meter"),
      R"(SELECT DISTINCT "meter"."SerialNumber" COLLATE DIALECT_TEXT AS "SerialNumber" )"
      R"(FROM "main"."meter" AS "meter" ORDER BY "meter"."SerialNumber" COLLATE DIALECT_TEXT)");
}

TEST(render, groups_and_aggregates) {
  EXPECT_EQ(
      rendered("Select meterid, count(*) as n, avg(id) from series group by meterid having "
               "count(*) > 1"),
      R"(SELECT "series"."meterid" AS "meterid", COUNT(*) AS "n", AVG(dialect_arithmetic('v', "series"."ID")) )"
      R"(AS "Expr1002" FROM "main"."series" AS "series" GROUP BY "series"."meterid" HAVING COUNT(*) > 1 )"
      R"(ORDER BY "series"."meterid")");
}

TEST(render, updates) {
  EXPECT_EQ(rendered("UPDATE meter SET SerialNumber='x', meter.ReCalID=ReCalID+1 WHERE id=2"),
            R"(UPDATE "main"."meter" AS "meter" SET "SerialNumber" = 'x', "ReCalID" = )"
            R"(dialect_arithmetic('vv+', "meter"."ReCalID", 1) WHERE "meter"."ID" = 2)");
}

TEST(render, a_missing_table_is_named) {
  EXPECT_EQ(failure("Select * from nowhere"),
            "The database engine cannot find the input table or query 'nowhere'. Make sure it "
            "exists and that "
            "its name is spelled correctly.");
  EXPECT_EQ(failure("Insert into nowhere (a) values (1)").substr(0, 36),
            "Could not find output table 'nowhere");
}

TEST(render, a_missing_column_is_a_missing_parameter) {
  EXPECT_EQ(
      failure("Select * from DataPoint where JobRecordID=A17"),
      "No value given for one or more required parameters. 'A17' is not a column of DataPoint.");
  EXPECT_EQ(failure("Select series.id from meter").substr(0, 51),
            "No value given for one or more required parameters.");
}

TEST(render, a_column_of_two_tables_must_say_which) {
  EXPECT_NE(failure("Select id from meter left join series on series.meterid=meter.id")
                .find("could refer to more than one"),
            std::string::npos);
}

TEST(render, as_many_values_as_columns) {
  const std::string text = "Number of query values and destination fields are not the same.";
  EXPECT_EQ(failure("INSERT INTO raw1 ( seriesID,   Roshko,   Strouhal ) Values (5,1,5,2,5)"),
            text);
  EXPECT_EQ(failure("INSERT INTO raw1 ( seriesID, Roshko ) SELECT id FROM meter"), text);
}

TEST(render, an_unknown_or_repeated_output_column_is_named) {
  EXPECT_NE(failure("INSERT INTO raw1 (x) Values (5)").find("unknown field name: 'x'"),
            std::string::npos);
  EXPECT_EQ(failure("INSERT INTO raw1 (Roshko, roshko) Values (5, 6)"),
            "Duplicate output destination 'Roshko'.");
}

}  // namespace
}  // namespace pelmora::sql
