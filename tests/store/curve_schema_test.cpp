// SPDX-License-Identifier: MIT
#include "store/curve_schema.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace pelmora {
namespace {

bool hasColumn(const SchemaTable& table, const std::string& name) {
  return std::ranges::any_of(table.Columns,
                             [&](const auto& column) { return column.Name == name; });
}

template <class Use>
void forEachTable(Use&& use) {
  for (const auto* tables : {&curveTables(), &ownTables()}) {
    for (const SchemaTable& table : *tables) use(table);
  }
}

TEST(curve_schema_data, every_name_is_there_once) {
  std::set<std::string> tables, indexes;
  forEachTable([&](const SchemaTable& table) {
    EXPECT_TRUE(tables.insert(table.Name).second) << table.Name;
    std::set<std::string> columns;
    for (const OwnColumn& column : table.Columns)
      EXPECT_TRUE(columns.insert(column.Name).second) << table.Name << " " << column.Name;
    for (const SchemaIndex& index : table.Indexes)
      EXPECT_TRUE(indexes.insert(index.Name).second) << index.Name;
  });
}

TEST(curve_schema_data, indexes_and_references_name_columns_and_tables_that_are_there) {
  forEachTable([](const SchemaTable& table) {
    for (const SchemaIndex& index : table.Indexes) {
      for (const std::string& column : index.Columns)
        EXPECT_TRUE(hasColumn(table, column)) << index.Name << " " << column;
    }
    for (const RowReference& reference : table.References) {
      EXPECT_TRUE(hasColumn(table, reference.Column)) << table.Name << " " << reference.Column;
      EXPECT_TRUE(hasColumn(schemaTable(reference.Table), "ID")) << table.Name;
    }
    if (table.Order == ReadingOrder::byKey) {
      EXPECT_EQ(table.Columns.front().Name, "ID") << table.Name;
      EXPECT_EQ(table.Columns.front().Type, OwnColumnType::key) << table.Name;
    }
  });
}

TEST(curve_schema_data, own_tables_have_names_of_their_own) {
  for (const SchemaTable& table : curveTables()) EXPECT_FALSE(isOwnTableName(table.Name));
  for (const SchemaTable& table : ownTables()) EXPECT_TRUE(isOwnTableName(table.Name));
  EXPECT_TRUE(isOwnTableName("PELMORA_of_a_later_version"));
  EXPECT_FALSE(isOwnTableName("pelmora"));
}

TEST(curve_schema_data, the_history_of_a_table_has_its_columns_behind_key_and_entry) {
  for (const char* name : keptTableNames) {
    const SchemaTable& kept = schemaTable(name);
    const SchemaTable& history = schemaTable(historyTableOf(name));
    ASSERT_EQ(history.Columns.size(), kept.Columns.size() + 2) << name;
    EXPECT_EQ(history.Columns[0].Name, "KeptID");
    EXPECT_EQ(history.Columns[1].Name, "EntryID");
    for (std::size_t i = 0; i < kept.Columns.size(); ++i)
      EXPECT_EQ(history.Columns[i + 2].Name, kept.Columns[i].Name) << name;
    // A kept id must not be one that the database assigns.
    EXPECT_EQ(std::ranges::count(history.Columns, OwnColumnType::key, &OwnColumn::Type), 1) << name;
  }
}

TEST(curve_schema_data, tables_are_found_without_regard_to_case) {
  ASSERT_NE(findSchemaTable("caldatapoint"), nullptr);
  EXPECT_EQ(findSchemaTable("caldatapoint")->Name, "CalDataPoint");
  EXPECT_EQ(findSchemaTable("DataPoint"), nullptr);
  EXPECT_ANY_THROW((void)schemaTable("nothing"));
}

TEST(curve_schema_data, rows_of_a_series_lie_in_its_points_report_and_settings) {
  std::vector<std::string> names;
  for (const SchemaTable* table : seriesTables()) names.push_back(table->Name);
  EXPECT_EQ(names, (std::vector<std::string>{"raw1", "raw2", "raw3", "raw4", "merge", "curve",
                                             "DataFitResults", "pelmora_fit_settings",
                                             "pelmora_excluded1", "pelmora_excluded2",
                                             "pelmora_excluded3", "pelmora_excluded4"}));
}

}  // namespace
}  // namespace pelmora
