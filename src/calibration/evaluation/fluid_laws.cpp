// Fluids with viscosity laws: checked, and stored in the database as one line of text each.
// SPDX-License-Identifier: MIT
#include "base/readable_number.h"
#include "base/suggestion.h"
#include "base/text_case.h"
#include "base/time_text.h"
#include "calibration/names.h"
#include "calibration/session.h"
#include "flow/viscosity_law.h"
#include "store/statement_rows.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <sstream>

namespace pelmora::calibration {
namespace {

constexpr double zeroCelsius = 273.15;
constexpr std::array<const char*, 3> lawKeys{"table", "d341", "andrade"};

std::optional<double> decimalNumber(const std::string& text) {
  double number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, trouble] = std::from_chars(text.data(), end, number);
  if (trouble != std::errc() || stop != end) return std::nullopt;
  return number;
}

flow::ViscosityLaw lawOf(const FluidLaw& fluid) {
  const flow::TemperatureRange range{fluid.lowestCelsius + zeroCelsius,
                                     fluid.highestCelsius + zeroCelsius};
  const bool isAndrade = fluid.kind == ViscosityLawKind::andrade;
  if (!fluid.constants.empty()) {
    const std::size_t wanted = isAndrade ? 3 : 2;
    if (fluid.kind == ViscosityLawKind::table || fluid.constants.size() != wanted) {
      throw BadData({"the law '" + std::string(viscosityLawKey(fluid.kind)) + "' does not take " +
                         std::to_string(fluid.constants.size()) + " constants",
                     fluid.name, "d341 has a and b, andrade a, b and c, a table has points"});
    }
    if (isAndrade) {
      return flow::ViscosityLaw::fromAndrade(fluid.constants[0], fluid.constants[1],
                                             fluid.constants[2], range);
    }
    return flow::ViscosityLaw::fromD341(fluid.constants[0], fluid.constants[1], range);
  }
  std::vector<flow::ViscosityPoint> points;
  for (const ViscosityAt& point : fluid.points)
    points.push_back({point.celsius + zeroCelsius, point.centistokes});
  return {isAndrade ? flow::ViscosityScale::andrade : flow::ViscosityScale::d341, points};
}

// "andrade; constants -3.7 578.9 -137.5; 0 100", or "table; points 20 1.2 40 0.9".
std::string contentOf(const FluidLaw& fluid) {
  std::string text = viscosityLawKey(fluid.kind);
  if (!fluid.constants.empty()) {
    text += "; constants";
    for (const double constant : fluid.constants) text += " " + exactText(constant);
    return text + "; " + exactText(fluid.lowestCelsius) + " " + exactText(fluid.highestCelsius);
  }
  text += "; points";
  for (const ViscosityAt& point : fluid.points)
    text += " " + exactText(point.celsius) + " " + exactText(point.centistokes);
  return text;
}

FluidLaw fluidOf(const FluidRow& row, const std::string& location) {
  const auto refuse = [&] {
    throw BadData(
        {"the law of fluid '" + row.Name + "' cannot be read", location, "store it again"});
  };
  FluidLaw fluid;
  fluid.name = row.Name;
  fluid.storedAt = row.StoredAt;
  fluid.userName = row.UserName;
  std::istringstream parts(row.Content);
  std::string key, values, range;
  std::getline(parts, key, ';');
  std::getline(parts, values, ';');
  std::getline(parts, range, ';');
  const auto kind = viscosityLawOf(key);
  if (!kind) refuse();
  fluid.kind = *kind;
  const auto numbers = [&](const std::string& text) {
    std::vector<double> list;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
      if (word == "constants" || word == "points") continue;
      const auto number = decimalNumber(word);
      if (!number) refuse();
      list.push_back(*number);
    }
    return list;
  };
  const std::vector<double> found = numbers(values);
  if (values.find("constants") != std::string::npos) {
    const std::vector<double> ends = numbers(range);
    if (ends.size() != 2) refuse();
    fluid.constants = found;
    fluid.lowestCelsius = ends[0];
    fluid.highestCelsius = ends[1];
  } else {
    if (found.size() % 2 != 0) refuse();
    for (std::size_t i = 0; i < found.size(); i += 2)
      fluid.points.push_back({found[i], found[i + 1]});
  }
  return fluid;
}

}  // namespace

const char* viscosityLawKey(ViscosityLawKind kind) {
  return lawKeys[static_cast<std::size_t>(kind)];
}

std::optional<ViscosityLawKind> viscosityLawOf(const std::string& key) {
  const auto found = std::ranges::find(lawKeys, key);
  if (found == lawKeys.end()) return std::nullopt;
  return static_cast<ViscosityLawKind>(found - lawKeys.begin());
}

double FluidLaw::viscosity(double celsius) const { return lawOf(*this)(celsius + zeroCelsius); }

double FluidLaw::changePerKelvin(double celsius) const {
  return lawOf(*this).changePerKelvin(celsius + zeroCelsius);
}

std::vector<FluidLaw> Database::fluidLaws() const {
  return session_->asking("reading the fluids", [&] {
    std::vector<FluidLaw> list;
    for (const FluidRow& row : readFluidLaws(session_->connection()))
      list.push_back(fluidOf(row, location()));
    return list;
  });
}

FluidLaw Database::fluidLaw(const std::string& name) const {
  std::vector<std::string> known;
  for (FluidLaw& fluid : fluidLaws()) {
    if (equalNames(fluid.name, name)) return std::move(fluid);
    known.push_back(fluid.name);
  }
  throw NotFound({"there is no fluid '" + name + "' with a viscosity law", location(),
                  known.empty() ? "store its law first" : suggestion(name, known)});
}

void Database::setFluidLaw(const FluidLaw& fluid) {
  FluidLaw named = fluid;
  named.name = cleanName("fluid", fluid.name);
  const flow::ViscosityLaw law = lawOf(named);
  (void)law(law.range().lowest);
  (void)law(law.range().highest);
  session_->changing("fluid", "storing the fluid '" + named.name + "'", [&] {
    replaceFluidLaw(session_->connection(),
                    {named.name, contentOf(named), utcText(), session_->userName()});
  });
}

void Database::removeFluidLaw(const std::string& name) {
  const std::string known = fluidLaw(name).name;
  session_->changing("fluid", "removing the fluid '" + known + "'", [&] {
    replaceFluidLaw(session_->connection(), {known, "", "", ""});
  });
}

}  // namespace pelmora::calibration
