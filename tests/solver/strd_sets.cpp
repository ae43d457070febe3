// SPDX-License-Identifier: MIT
#include "tests/solver/strd_sets.h"
#include "tests/support/places.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace pelmora::test {
namespace {

using nlohmann::json;

const std::string folder = test::sourceFolder() + "/tests/data/strd/";

long double longNumber(const json& text) {
  return std::strtold(text.get<std::string>().c_str(), nullptr);
}

std::vector<double> doubles(const json& texts) {
  std::vector<double> result;
  for (const auto& text : texts)
    result.push_back(std::strtod(text.get<std::string>().c_str(), nullptr));
  return result;
}

std::vector<long double> longNumbers(const json& texts) {
  std::vector<long double> result;
  for (const auto& text : texts) result.push_back(longNumber(text));
  return result;
}

double attainable(const json& entry, const char* key) {
  return entry.at(key).is_null() ? 15.9 : entry.at(key).get<double>();
}

void readData(StrdSet& set, const json& entry) {
  std::ifstream file(folder + entry.at("file").get<std::string>());
  const auto first = entry.at("data_first_line").get<int>();
  const std::size_t columns = entry.at("columns").size();
  set.x.resize(columns - 1);
  std::string line;
  for (int number = 1; std::getline(file, line); ++number) {
    std::istringstream fields(line);
    std::vector<double> row;
    for (std::string field; number >= first && fields >> field;) {
      row.push_back(std::strtod(field.c_str(), nullptr));
    }
    if (row.size() != columns) continue;
    set.y.push_back(row[0]);
    for (std::size_t k = 1; k < columns; ++k) set.x[k - 1].push_back(row[k]);
  }
  if (set.y.size() != entry.at("observations").get<std::size_t>()) {
    throw std::runtime_error("lines are missing in " + set.name);
  }
}

StrdSet readSet(const json& entry) {
  StrdSet set;
  set.name = entry.at("name");
  set.model = entry.at("model");
  set.response = entry.at("response");
  set.linear = entry.at("kind") == "linear";
  set.singleX = entry.at("single_x");
  if (!set.linear) {
    set.start1 = doubles(entry.at("start1"));
    set.start2 = doubles(entry.at("start2"));
  }
  const json& reference = entry.at("reference");
  set.parameters = longNumbers(reference.at("params"));
  set.standardErrors = longNumbers(reference.at("sd"));
  set.residualSquares = longNumber(reference.at("residual_ss"));
  set.residualError = longNumber(reference.at("residual_sd"));
  set.rSquared = longNumber(reference.at("r_squared"));
  if (set.linear) {
    set.adjustedRSquared = longNumber(reference.at("adj_r_squared"));
    set.regressionSquares = longNumber(reference.at("regression_ss"));
  }
  set.attainableParameters = attainable(entry.at("attainable_from_doubles"), "params_lre");
  set.attainableErrors = attainable(entry.at("attainable_from_doubles"), "sd_lre");
  readData(set, entry);
  return set;
}

json index() {
  std::ifstream file(folder + "index.json");
  return json::parse(file).at("sets");
}

}  // namespace

std::vector<StrdSet> strdSets(bool linear) {
  std::vector<StrdSet> sets;
  for (const json& entry : index()) {
    if ((entry.at("kind") == "linear") == linear) sets.push_back(readSet(entry));
  }
  return sets;
}

StrdSet strdSet(const std::string& name) {
  for (const json& entry : index()) {
    if (entry.at("name") == name) return readSet(entry);
  }
  throw std::runtime_error("no set " + name);
}

std::vector<StrdSet> moreStrdSets() {
  std::ifstream file(test::sourceFolder() + "/tests/data/strd_more/sets.json");
  std::vector<StrdSet> sets;
  for (const json& entry : json::parse(file)) {
    StrdSet set;
    set.name = entry.at("name");
    set.model = entry.at("model");
    set.start1 = entry.at("start1").get<std::vector<double>>();
    set.start2 = entry.at("start2").get<std::vector<double>>();
    set.parameters = longNumbers(entry.at("parameters"));
    set.standardErrors = longNumbers(entry.at("standard_errors"));
    set.residualSquares = longNumber(entry.at("residual_squares"));
    set.x = {entry.at("x").get<std::vector<double>>()};
    set.y = entry.at("y").get<std::vector<double>>();
    sets.push_back(std::move(set));
  }
  return sets;
}

double agreeingDigits(double value, long double reference) {
  if (!std::isfinite(value)) return 0;
  const long double scale = reference == 0 ? 1 : std::fabs(reference);
  const long double error = std::fabs(static_cast<long double>(value) - reference) / scale;
  return error == 0 ? 15.9 : std::min(15.9, static_cast<double>(-std::log10(error)));
}

}  // namespace pelmora::test
