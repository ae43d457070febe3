// How a curve database comes to be on a server, and who may do what with it.
// SPDX-License-Identifier: MIT
#include "adapters/postgresql/client.h"
#include "adapters/postgresql/location.h"
#include "adapters/postgresql/migrations.h"
#include "adapters/postgresql/postgres_database.h"
#include "adapters/sql_engine/engine_error.h"
#include "base/run_time_error.h"
#include "store/curve_schema.h"
#include "tests/adapters/postgresql/server_test.h"

#include <pelmora/own_tables.h>

#include <gtest/gtest.h>

#include <string>

namespace pelmora {
namespace {

using test::failureOf;

class making_curve_databases : public test::ServerTest {
 protected:
  static std::int32_t count(const ConnectionPtr& connection, const std::string& table) {
    return connection
        ->openRecordset("Select * from " + table, CursorType::forwardOnly, LockType::optimistic)
        ->recordCount();
  }
  static ConnectionPtr opened(const std::string& location) {
    ConnectionPtr connection = postgresConnection(location);
    connection->open();
    return connection;
  }
};

TEST_F(making_curve_databases, makes_every_table_with_its_columns_and_indexes) {
  const std::string location = server().address(server().newDatabase());
  createPostgresCurveDatabase(location);
  const ConnectionPtr curves = opened(location);
  for (const auto* tables : {&curveTables(), &ownTables()}) {
    for (const SchemaTable& table : *tables) {
      const auto rows = curves->openRecordset("Select * from " + table.Name,
                                              CursorType::forwardOnly, LockType::optimistic);
      EXPECT_EQ(rows->recordCount(), 0);
      ASSERT_EQ(rows->fieldCount(), table.Columns.size()) << table.Name;
      for (const OwnColumn& column : table.Columns)
        EXPECT_NO_THROW((void)rows->fieldIndex(column.Name)) << table.Name;
      for (const SchemaIndex& index : table.Indexes)
        EXPECT_TRUE(hasIndex(curves, table.Name, index.Columns)) << index.Name;
    }
  }
}

TEST_F(making_curve_databases, is_refused_where_there_is_one) {
  const std::string location = server().address(server().newDatabase());
  createPostgresCurveDatabase(location);
  opened(location)->execute("Insert into Fluids (Name) VALUES ('Water')");
  const auto failure = failureOf([&] { createPostgresCurveDatabase(location); });
  EXPECT_EQ(failure.number, static_cast<std::int32_t>(RunTimeError::fileExists));
  EXPECT_EQ(count(opened(location), "Fluids"), 1);
}

TEST_F(making_curve_databases, needs_one_before_curves_can_be_opened) {
  const auto failure = failureOf([&] { (void)opened(server().address(server().newDatabase())); });
  EXPECT_EQ(failure.number, static_cast<std::int32_t>(RunTimeError::invalidFileFormat));
  EXPECT_NE(failure.description.find("has no curve tables"), std::string::npos);
}

TEST_F(making_curve_databases, needs_a_database_on_the_server) {
  const auto failure = failureOf([&] { (void)opened(server().address("nowhere")); });
  EXPECT_EQ(failure.number, sql::connectionLost);
  EXPECT_NE(failure.description.find("nowhere"), std::string::npos);
}

TEST_F(making_curve_databases, refuses_one_of_a_newer_program) {
  const std::string name = server().newDatabase();
  createPostgresCurveDatabase(server().address(name));
  server().run(name,
               "INSERT INTO pelmora_migration (number, title, program) VALUES (99, 'x', 'y')");
  EXPECT_NE(
      failureOf([&] { (void)opened(server().address(name)); }).description.find("newer version"),
      std::string::npos);
}

TEST_F(making_curve_databases, leaves_nothing_behind_where_a_step_fails) {
  const std::string name = server().newDatabase();
  postgres::Client client(server().address(name));
  auto steps = postgres::curveMigrations();
  steps.push_back({2, "fails", {"CREATE TABLE half (a integer)", "SELECT 1/0"}});
  EXPECT_THROW(postgres::migrate(client, postgres::preparedSession(client, name), steps),
               postgres::ServerError);
  EXPECT_EQ(postgres::preparedSession(client, name).migration, 0);
  EXPECT_EQ(client.run("SELECT 1 FROM pg_class WHERE relname IN ('meter', 'half')").rows.rows(),
            0U);
  EXPECT_EQ(postgres::migrate(client, postgres::preparedSession(client, name),
                              postgres::curveMigrations()),
            1);
}

TEST_F(making_curve_databases, applies_what_an_older_database_lacks) {
  const std::string name = server().newDatabase();
  postgres::Client client(server().address(name));
  auto steps = postgres::curveMigrations();
  postgres::migrate(client, postgres::preparedSession(client, name), steps);
  client.run("INSERT INTO \"Fluids\" (\"Name\") VALUES ('Water')");
  steps.push_back({2, "a column", {"ALTER TABLE \"Fluids\" ADD COLUMN density double precision"}});
  steps.push_back({3, "another", {"ALTER TABLE \"Fluids\" ADD COLUMN colour text"}});
  EXPECT_EQ(postgres::migrate(client, postgres::preparedSession(client, name), steps), 2);
  EXPECT_EQ(postgres::migrate(client, postgres::preparedSession(client, name), steps), 0);
  EXPECT_EQ(client.run("SELECT density, colour FROM \"Fluids\"").rows.rows(), 1U);
}

TEST_F(making_curve_databases, gives_readers_and_writers_what_they_need_and_no_more) {
  const std::string name = server().newDatabase();
  createPostgresCurveDatabase(server().address(name));
  server().run(name, "CREATE ROLE ada_" + name + " LOGIN; CREATE ROLE bea_" + name +
                         " LOGIN; GRANT pelmora_" + name + "_reader TO ada_" + name +
                         "; GRANT pelmora_" + name + "_writer TO bea_" + name);
  const ConnectionPtr writer = opened(server().address(name, "bea_" + name));
  const ConnectionPtr reader = opened(server().address(name, "ada_" + name));
  writer->execute("Insert into Fluids (Name) VALUES ('Water')");
  writer->execute("Insert into Fluids (ID, Name) VALUES (9, 'Oil')");
  createTable(writer, schemaTable(historyEntryTable).design());  // it is there: nothing to do
  EXPECT_EQ(count(reader, "Fluids"), 2);
  for (const char* statement : {"Insert into Fluids (Name) VALUES ('x')", "Delete from Fluids",
                                "Update Fluids set Name='y'"})
    EXPECT_EQ(failureOf([&] { reader->execute(statement); }).number, sql::updateRefused)
        << statement;
  EXPECT_EQ(failureOf([&] {
              createTable(writer, {"notes", {{"a", OwnColumnType::text}}});
            }).number,
            sql::updateRefused);
  EXPECT_EQ(count(reader, "Fluids"), 2);
}

TEST_F(making_curve_databases, lets_a_host_of_the_owner_add_tables_for_all) {
  const std::string name = server().newDatabase();
  createPostgresCurveDatabase(server().address(name));
  server().run(name, "CREATE ROLE cleo_" + name + " LOGIN; GRANT pelmora_" + name +
                         "_owner TO cleo_" + name + "; CREATE ROLE dora_" + name +
                         " LOGIN; GRANT pelmora_" + name + "_writer TO dora_" + name);
  createTable(opened(server().address(name, "cleo_" + name)),
              {"notes", {{"a", OwnColumnType::text}}});
  const ConnectionPtr writer = opened(server().address(name, "dora_" + name));
  writer->execute("Insert into notes (a) VALUES ('x')");
  EXPECT_EQ(count(writer, "notes"), 1);
}

TEST_F(making_curve_databases, tells_a_user_without_rights_what_an_administrator_does) {
  const std::string name = server().newDatabase();
  server().run(name, "CREATE ROLE eve_" + name + " LOGIN");
  const auto failure =
      failureOf([&] { createPostgresCurveDatabase(server().address(name, "eve_" + name)); });
  EXPECT_EQ(failure.number, static_cast<std::int32_t>(RunTimeError::permissionDenied));
  EXPECT_NE(failure.description.find("CREATE ROLE \"pelmora_" + name + "_reader\""),
            std::string::npos)
      << failure.description;
}

TEST_F(making_curve_databases, keeps_several_in_schemas_of_one_database) {
  const std::string name = server().newDatabase();
  server().run(name, "CREATE SCHEMA north; CREATE SCHEMA south");
  const auto place = [&](const std::string& schema) {
    return server().address(name) + "&options=-csearch_path%3D" + schema;
  };
  createPostgresCurveDatabase(place("north"));
  createPostgresCurveDatabase(place("south"));
  opened(place("north"))->execute("Insert into Fluids (Name) VALUES ('Water')");
  EXPECT_EQ(count(opened(place("north")), "Fluids"), 1);
  EXPECT_EQ(count(opened(place("south")), "Fluids"), 0);
}

}  // namespace
}  // namespace pelmora
