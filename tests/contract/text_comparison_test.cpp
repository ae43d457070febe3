// Texts in statements, on each engine.
// SPDX-License-Identifier: MIT
#include "tests/contract/engines.h"

#include <pelmora/own_tables.h>

#include <gtest/gtest.h>

#include <string>

namespace pelmora {
namespace {

using test::failureOf;

template <class Curves>
class text_comparison : public test::CurveContract<Curves> {};
TYPED_TEST_SUITE(text_comparison, test::Engines);

template <class Curves>
std::int32_t found(const Curves& file, const std::string& condition) {
  return file.select("Select * from Fluids where " + condition)->recordCount();
}

TYPED_TEST(text_comparison, letters_compare_without_regard_to_case) {
  const TypeParam file;
  file.execute("Insert into Fluids (Name) VALUES ('Wasser')");
  file.execute("Insert into Fluids (Name) VALUES ('ÖL ŁÓDŹ Ωμέγα Вода')");
  EXPECT_EQ(found(file, "name='WASSER'"), 1);
  EXPECT_EQ(found(file, "Name='öl łódź ΩΜΈΓΑ вОДА'"), 1);
  EXPECT_EQ(found(file, "name='OL łódź ΩΜΈΓΑ вОДА'"), 0);
  EXPECT_EQ(found(file, "name like 'ö%'"), 1);
  EXPECT_EQ(found(file, "name in ('wasser', 'x')"), 1);
  EXPECT_EQ(found(file, "name <> 'wasser'"), 1);
}

TYPED_TEST(text_comparison, columns_without_an_index_compare_the_same_way) {
  const TypeParam file;
  createTable(file.connection, {"other", {{"Name", OwnColumnType::text}}});
  for (const char* name : {"abc", "ÄBC", "ABC", "äbc"})
    file.execute("Insert into other (Name) VALUES ('" + std::string(name) + "')");
  EXPECT_EQ(file.select("Select * from other where name='Abc'")->recordCount(), 2);
  EXPECT_EQ(file.select("Select * from other where name='Äbc'")->recordCount(), 2);
  EXPECT_EQ(file.select("Select distinct name from other")->recordCount(), 2);
  EXPECT_EQ(file.select("Select name, count(*) as n from other group by name")->recordCount(), 2);
  const auto sorted = file.select("Select distinct name from other order by name desc");
  EXPECT_EQ(sorted->value(0), Value("ÄBC"));
}

TYPED_TEST(text_comparison, equal_columns_join_without_regard_to_case) {
  const TypeParam file;
  file.execute("Insert into Fluids (Name) VALUES ('Öl')");
  file.execute("Insert into Operator (Name) VALUES ('öL')");
  EXPECT_EQ(
      file.select("Select Fluids.ID from Fluids inner join Operator on Fluids.Name = Operator.Name")
          ->recordCount(),
      1);
}

TYPED_TEST(text_comparison, quotes_inside_texts_are_doubled) {
  const TypeParam file;
  file.execute("Insert into Fluids (Name) VALUES ('O''Neil \"77\"')");
  EXPECT_EQ(found(file, "name='o''neil \"77\"'"), 1);
  EXPECT_EQ(found(file, "name=\"O'Neil \"\"77\"\"\""), 1);
}

TYPED_TEST(text_comparison, nothing_can_be_smuggled_into_a_statement) {
  const TypeParam file;
  file.execute("Insert into Fluids (Name) VALUES ('a')");
  for (const char* name :
       {"'; DROP TABLE Fluids; --", "'; Delete from Fluids;'", "'); Delete from Fluids --",
        "' UNION SELECT * FROM meter --", "\\'; Delete from Fluids"}) {
    EXPECT_NE(failureOf([&] {
                file.execute("Insert into Fluids (Name) VALUES ('" + std::string(name) + "')");
              }).number,
              0)
        << name;
    EXPECT_NE(failureOf([&] { (void)found(file, "name='" + std::string(name) + "'"); }).number, 0)
        << name;
  }
  EXPECT_EQ(file.count("Fluids"), 1);
  EXPECT_NE(failureOf([&] { file.execute("DROP TABLE Fluids"); }).number, 0);
  EXPECT_NE(failureOf([&] { file.execute("ATTACH 'x' AS y"); }).number, 0);
}

TYPED_TEST(text_comparison, a_name_in_double_quotes_is_a_text_and_never_a_column) {
  const TypeParam file;
  file.execute("Insert into Fluids (Name) VALUES ('ID')");
  EXPECT_EQ(found(file, "Name=\"id\""), 1);
  EXPECT_EQ(failureOf([&] { (void)found(file, "Nme='x'"); }).description,
            "No value given for one or more required parameters. 'Nme' is not a column of Fluids.");
}

TYPED_TEST(text_comparison, plus_joins_texts_and_ampersand_joins_anything) {
  const TypeParam file;
  EXPECT_EQ(file.select("Select 'a' + 'b'")->value(0), Value("ab"));
  EXPECT_EQ(file.select("Select 'a' & 1.5 & NULL")->value(0), Value("a1.5"));
  EXPECT_EQ(file.select("Select 'a' + NULL")->value(0), Value());
  EXPECT_EQ(file.select("Select '2' + 3")->value(0), Value(std::int64_t{5}));
  EXPECT_EQ(failureOf([&] { (void)file.select("Select 'a' + 1"); }).description,
            "Data type mismatch in criteria expression.");
}

TYPED_TEST(text_comparison, truth_values_are_minus_one_and_zero) {
  const TypeParam file;
  EXPECT_EQ(file.select("Select 1=1")->value(0), Value(std::int64_t{-1}));
  EXPECT_EQ(file.select("Select 1=2")->value(0), Value(std::int64_t{0}));
  EXPECT_EQ(file.select("Select True AND NOT False")->value(0), Value(std::int64_t{-1}));
}

}  // namespace
}  // namespace pelmora
