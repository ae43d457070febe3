// Small CSV files of the examples as columns of texts.
// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/places.h"

#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace pelmora::test {

using CsvRow = std::map<std::string, std::string>;

// Rows of an unquoted CSV file with one header line, by column name.
inline std::vector<CsvRow> readCsv(const std::string& path) {
  std::ifstream stream(path);
  if (!stream) throw std::runtime_error("cannot read " + path);
  const auto fieldsOf = [](const std::string& line) {
    std::vector<std::string> fields;
    std::stringstream parts(line);
    for (std::string field; std::getline(parts, field, ',');) fields.push_back(field);
    return fields;
  };
  std::string line;
  std::getline(stream, line);
  const std::vector<std::string> names = fieldsOf(line);
  std::vector<CsvRow> rows;
  while (std::getline(stream, line)) {
    const std::vector<std::string> fields = fieldsOf(line);
    CsvRow row;
    for (std::size_t i = 0; i < names.size(); ++i)
      row[names[i]] = i < fields.size() ? fields[i] : "";
    rows.push_back(std::move(row));
  }
  return rows;
}

// A data file of the examples.
inline std::string exampleData(const std::string& file) {
  return sourceFolder() + "/examples/data/" + file;
}

}  // namespace pelmora::test
