// Files by another writer, compared with its own CSV export.
// SPDX-License-Identifier: MIT
#include "base/csv_reader.h"
#include "base/file_text.h"
#include "tests/adapters/access/collected_tables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>

namespace pelmora::test {
namespace {

using Fields = std::vector<CsvField>;

std::vector<Fields> csvRows(const std::string& name) {
  const std::string text = readWholeFile(accessData(name));
  CsvReader reader(text);
  std::vector<Fields> rows;
  for (Fields fields; reader.next(fields);) rows.push_back(fields);
  return rows;
}

std::string printed(const char* format, double number) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), format, number);
  return text.data();
}

// Our text of a midnight has no time.
std::string ourDate(std::string text) {
  std::ranges::replace(text, 'T', ' ');
  const std::string midnight = " 00:00:00";
  return text.ends_with(midnight) ? text.substr(0, text.size() - midnight.size()) : text;
}

// Compares a field of the CSV file with the value that was read.
void expectSame(const CsvField& written, const Value& read, const std::string& column,
                const std::string& place) {
  if (written.text.empty() && !written.isQuoted) {
    EXPECT_EQ(read, Value()) << place;
  } else if (const auto* whole = std::get_if<std::int64_t>(&read)) {
    EXPECT_EQ(std::to_string(*whole), written.text) << place;
  } else if (const auto* real = std::get_if<double>(&read)) {
    EXPECT_EQ(printed(column == "s" ? "%.9g" : "%.17g", *real), written.text) << place;
  } else {
    const bool isDate = column == "dt" || column == "DateTaken";
    EXPECT_EQ(std::get<std::string>(read), isDate ? ourDate(written.text) : written.text) << place;
  }
}

void expectTable(const std::string& file, const CollectedTable& table, const std::string& name) {
  std::string csv = file + "." + name + ".csv";
  std::ranges::replace(csv, ' ', '_');
  std::vector<Fields> written = csvRows(csv);
  const Fields header = written.front();
  written.erase(written.begin());
  ASSERT_EQ(table.rows.size(), written.size()) << csv;
  EXPECT_EQ(table.design.Rows, written.size()) << csv;
  EXPECT_TRUE(table.leftOut.empty()) << csv << ": " << table.leftOut.front().Reason;
  ASSERT_EQ(table.design.Design.Columns.size(), header.size()) << csv;
  for (std::size_t row = 0; row < written.size(); ++row) {
    for (std::size_t i = 0; i < header.size(); ++i) {
      EXPECT_EQ(table.design.Design.Columns[i].Name, header[i].text) << csv;
      expectSame(written[row][i], table.rows[row][i], header[i].text,
                 csv + ", row " + std::to_string(row) + ", column " + header[i].text);
    }
  }
}

class access_values : public testing::TestWithParam<const char*> {};

TEST_P(access_values, are_those_that_were_written) {
  const std::string file = GetParam();
  CollectedTables read = readAll(accessData(file + ".mdb"));
  EXPECT_TRUE(read.ofTheFile.empty());
  EXPECT_FALSE(read.tables.empty());
  for (auto& [name, table] : read.tables) {
    // Moved rows are read in an order different from the one in which they were written.
    if (name == "Churn") {
      std::ranges::sort(table.rows, {},
                        [](const auto& row) { return std::get<std::int64_t>(row[0]); });
    }
    expectTable(file, table, name);
  }
}

INSTANTIATE_TEST_SUITE_P(files, access_values,
                         testing::Values("curves", "stand", "stand-nasty", "types"));

TEST(access_tables, are_all_of_a_files_tables) {
  EXPECT_EQ(readAll(accessData("curves.mdb")).tables.size(), 14U);
  EXPECT_EQ(readAll(accessData("stand.mdb")).tables.size(), 1U);
  EXPECT_EQ(readAll(accessData("types.mdb")).tables.size(), 4U);
}

TEST(access_tables, long_memos_come_whole) {
  const CollectedTables read = readAll(accessData("types.mdb"));
  std::size_t longest = 0;
  for (const auto& row : read.tables.at("Memos").rows)
    longest = std::max(longest, std::get<std::string>(row[2]).size());
  EXPECT_GE(longest, 65'536U);
}

}  // namespace
}  // namespace pelmora::test
