// SPDX-License-Identifier: MIT
#include "adapters/sqlite/sqlite_integrity.h"

#include "adapters/sqlite/prepared_statement.h"
#include "adapters/sqlite/sqlite_error.h"

#include <pelmora/error.h>

#include <sqlite3.h>

#include <algorithm>
#include <map>
#include <string>
#include <string_view>

namespace pelmora::sqlite {
namespace {

// "table raw1", "index raw1_series" by the page at which they begin.
std::map<std::string, std::string> treesOf(sqlite3* database) {
  std::map<std::string, std::string> trees;
  PreparedStatement schema(database, "SELECT rootpage, type, name FROM main.sqlite_master");
  while (schema.step()) trees[textAt(schema, 0)] = textAt(schema, 1) + " " + textAt(schema, 2);
  return trees;
}

// The word behind `label`, up to the next blank or colon.
std::string wordBehind(const std::string& text, std::string_view label) {
  const std::size_t at = text.find(label);
  if (at == std::string::npos) return {};
  const std::size_t begin = at + label.size();
  return text.substr(begin, text.find_first_of(" :", begin) - begin);
}

std::string inWords(const std::string& finding, const std::map<std::string, std::string>& trees) {
  for (const char* label : {"wrong # of entries in index ", "missing from index "}) {
    const std::string index = wordBehind(finding, label);
    if (!index.empty()) return "Index " + index + " does not agree with its table";
  }
  if (finding.find("reelist") != std::string::npos ||
      finding.find("free-page") != std::string::npos)
    return "The list of free pages is damaged";
  // Releases name the tree differently: "Tree 5 page 7", "On tree page 5 cell 3".
  for (const char* label : {"Tree ", "n tree page "}) {
    const auto tree = trees.find(wordBehind(finding, label));
    if (tree != trees.end()) return "Pages of " + tree->second + " are damaged";
  }
  if (finding.find("never used") != std::string::npos)
    return "Pages of the file no longer belong to anything";
  return "The database is damaged";
}

void add(std::vector<IntegrityProblem>& problems, const std::string& text,
         const std::string& example) {
  const auto known = std::find_if(problems.begin(), problems.end(),
                                  [&](const auto& problem) { return problem.Text == text; });
  if (known == problems.end()) {
    problems.push_back({text, 1, example});
  } else {
    ++known->Count;
  }
}

bool isDamage(int code) {
  return (code & 0xFF) == SQLITE_CORRUPT || (code & 0xFF) == SQLITE_NOTADB;
}

}  // namespace

std::vector<IntegrityProblem> integrityProblems(sqlite3* database, std::size_t most) {
  std::vector<IntegrityProblem> problems;
  try {
    const auto trees = treesOf(database);
    PreparedStatement check(database, "PRAGMA main.integrity_check(" + std::to_string(most) + ")");
    while (check.step()) {
      const std::string rows = textAt(check, 0);  // one finding a line
      for (std::size_t at = 0; at < rows.size();) {
        const std::size_t end = std::min(rows.find('\n', at), rows.size());
        const std::string finding = rows.substr(at, end - at);
        at = end + 1;
        if (finding == "ok" || finding.empty() || finding.starts_with("*** in database")) continue;
        add(problems, inWords(finding, trees), finding);
      }
    }
  } catch (const Error& error) {
    if (!isDamage(sqlite3_errcode(database))) throw;
    add(problems, "The check itself ended at a damaged page", error.what());
  }
  return problems;
}

}  // namespace pelmora::sqlite
