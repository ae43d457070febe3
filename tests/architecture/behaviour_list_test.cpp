// The host's manual, docs/behaviour.md and its pages, names a test for each row, and each is there.
// SPDX-License-Identifier: MIT
#include "tests/architecture/sources.h"
#include "tests/support/places.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using pelmora::test::textOf;

constexpr std::size_t fewestRows = 400;
constexpr std::size_t longestPage = 300;

const fs::path root = pelmora::test::sourceFolder();

// folder/suite.name of every test in these sources. Each starts a line; the regular expression
// would take long to look through the rest.
std::set<std::string> testNames(const fs::path& tests) {
  static const std::regex macro(R"((?:TYPED_)?TEST(?:_F|_P)?\(\s*(\w+)\s*,\s*(\w+)\s*\))");
  std::set<std::string> names;
  for (const auto& entry : fs::recursive_directory_iterator(tests)) {
    if (entry.path().extension() != ".cpp") continue;
    const std::string text = "\n" + textOf(entry.path());
    const std::string folder = fs::relative(entry.path().parent_path(), tests).generic_string();
    for (std::size_t at = text.find("\nT"); at != std::string::npos;
         at = text.find("\nT", at + 1)) {
      const char* start = text.c_str() + at + 1;
      std::cmatch match;
      if (std::regex_search(start, match, macro, std::regex_constants::match_continuous))
        names.insert(folder + "/" + match[1].str() + "." + match[2].str());
    }
  }
  return names;
}

struct Row {
  std::string place, behaviour;
  std::vector<std::string> tests;
};

// The rows of the tables headed "behaviour | test" of one page.
std::vector<Row> rowsOf(const std::string& page, const std::string& text) {
  static const std::regex quoted("`([^`]+)`");
  std::vector<Row> rows;
  bool inTable = false;
  std::istringstream lines(text);
  std::size_t number = 0;
  for (std::string line; std::getline(lines, line);) {
    ++number;
    if (!line.starts_with("|")) inTable = false;
    if (line == "| behaviour | test |") {
      inTable = true;
      continue;
    }
    if (!inTable || line == "|---|---|") continue;
    Row row{page + ":" + std::to_string(number), "", {}};
    const auto divider = line.rfind(" | ");
    row.behaviour = line.substr(0, divider);
    const std::string cell = divider == std::string::npos ? "" : line.substr(divider);
    for (std::sregex_iterator match(cell.begin(), cell.end(), quoted), end; match != end; ++match) {
      row.tests.push_back((*match)[1].str());
    }
    rows.push_back(row);
  }
  return rows;
}

std::vector<fs::path> pages() {
  std::vector<fs::path> found{root / "docs/behaviour.md"};
  for (const auto& entry : fs::directory_iterator(root / "docs/behaviour"))
    found.push_back(entry.path());
  std::sort(found.begin(), found.end());
  return found;
}

std::vector<Row> allRows() {
  std::vector<Row> rows;
  for (const fs::path& page : pages()) {
    for (Row& row : rowsOf(fs::relative(page, root).generic_string(), textOf(page)))
      rows.push_back(std::move(row));
  }
  return rows;
}

TEST(behaviour_list, names_tests_that_are_there) {
  const std::set<std::string> tests = testNames(root / "tests");
  for (const Row& row : allRows()) {
    EXPECT_FALSE(row.tests.empty()) << row.place << " names no test: " << row.behaviour;
    for (const std::string& test : row.tests) {
      EXPECT_TRUE(tests.contains(test)) << row.place << " names " << test << ", which is not there";
    }
  }
}

TEST(behaviour_list, says_each_thing_once) {
  std::set<std::string> said;
  for (const Row& row : allRows()) {
    const std::string tests = row.tests.empty() ? "" : row.tests.front();
    EXPECT_TRUE(said.insert(row.behaviour + tests).second)
        << row.place << " is there already: " << row.behaviour;
  }
}

TEST(behaviour_list, is_as_long_as_what_can_be_observed) {
  EXPECT_GE(allRows().size(), fewestRows);
}

TEST(behaviour_list, has_pages_that_can_be_read) {
  const std::string index = textOf(root / "docs/behaviour.md");
  for (const fs::path& page : pages()) {
    const std::string text = textOf(page);
    EXPECT_LE(static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')), longestPage)
        << page;
    if (page.filename() == "behaviour.md") continue;
    EXPECT_NE(index.find("(behaviour/" + page.filename().string() + ")"), std::string::npos)
        << page << " is not in the index";
  }
}

TEST(behaviour_list_check, finds_rows_without_a_test) {
  const auto rows = rowsOf("page",
                           "| behaviour | test |\n|---|---|\n| It `does` | |\n| It has | `a/b.c`, "
                           "`a/b.d` |\n\n| x | `y` |\n");
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(rows[0].place, "page:3");
  EXPECT_TRUE(rows[0].tests.empty());
  EXPECT_EQ(rows[1].tests, (std::vector<std::string>{"a/b.c", "a/b.d"}));
}

TEST(behaviour_list_check, finds_the_tests_of_the_sources) {
  const std::set<std::string> tests = testNames(root / "tests");
  EXPECT_TRUE(tests.contains("architecture/behaviour_list_check.finds_the_tests_of_the_sources"));
  EXPECT_FALSE(tests.contains("architecture/behaviour_list_check.finds_what_is_not_there"));
}

}  // namespace
