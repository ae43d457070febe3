// SPDX-License-Identifier: MIT
#include "apps/pelmora/input/derived_columns.h"

#include "apps/pelmora/trouble.h"
#include "base/text_flaw.h"

#include <array>
#include <string_view>
#include <utility>

namespace pelmora::cli {
namespace {

constexpr const char* example =
    "give --columns q=COLUMN,f=COLUMN,nu=COLUMN,t=COLUMN, each with its unit as in q=Flow:l/min";

struct NameAndUnit {
  std::string name, unit;
};

// Splits "Flow:gpm" and "Flow [gpm]". Any other text is a name without a unit.
NameAndUnit parts(const std::string& text) {
  if (text.ends_with(']') || text.ends_with(')')) {
    const std::size_t open = text.rfind(text.back() == ']' ? '[' : '(');
    if (open != std::string::npos && open > 0) {
      std::string name = text.substr(0, open);
      while (name.ends_with(' ')) name.pop_back();
      return {name, text.substr(open + 1, text.size() - open - 2)};
    }
  }
  const std::size_t colon = text.rfind(':');
  if (colon == std::string::npos || colon == 0 || colon + 1 == text.size()) return {text, {}};
  return {text.substr(0, colon), text.substr(colon + 1)};
}

// Where the next ",q=" begins: names may hold commas.
std::size_t nextKey(const std::string& text, std::size_t from) {
  constexpr std::array<std::string_view, 4> keys{"q=", "f=", "nu=", "t="};
  for (std::size_t at = text.find(',', from); at != std::string::npos;
       at = text.find(',', at + 1)) {
    std::size_t begin = at + 1;
    while (begin < text.size() && text[begin] == ' ') ++begin;
    for (const std::string_view key : keys) {
      if (std::string_view(text).substr(begin).starts_with(key)) return at;
    }
  }
  return text.size();
}

Trouble usage(const std::string& what) { return {ExitCode::usage, "--columns: " + what, example}; }

bool isNumber(const std::string& text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

}  // namespace

ColumnChoice columnChoice(const std::string& text) {
  ColumnChoice choice;
  const std::array<std::pair<std::string, ColumnText*>, 4> keys{{{"q", &choice.flow},
                                                                 {"f", &choice.frequency},
                                                                 {"nu", &choice.viscosity},
                                                                 {"t", &choice.temperature}}};
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = nextKey(text, begin);
    std::string part = text.substr(begin, end - begin);
    begin = end + 1;
    while (part.starts_with(' ')) part.erase(0, 1);
    while (part.ends_with(' ')) part.pop_back();
    const std::size_t equals = part.find('=');
    ColumnText* value = nullptr;
    for (const auto& [key, target] : keys) {
      if (equals != std::string::npos && part.substr(0, equals) == key) value = target;
    }
    if (value == nullptr || equals + 1 == part.size())
      throw usage("'" + shortened(part) + "' is not a column of q, f, nu or t");
    if (!value->empty()) throw usage("'" + part.substr(0, equals) + "' appears twice");
    *value = part.substr(equals + 1);
    const std::size_t comma = value->find(',');
    if (comma != std::string::npos && value->find('=', comma) != std::string::npos)
      throw usage("'" + shortened(value->substr(comma + 1)) + "' is not a column of q, f, nu or t");
  }
  for (const auto& [key, value] : keys) {
    if (value->empty() && key != "t") throw usage("there is no column for '" + key + "'");
  }
  return choice;
}

std::vector<std::string> namesIn(const ColumnChoice& choice) {
  std::vector<std::string> names;
  for (const ColumnText& text :
       {choice.flow, choice.frequency, choice.viscosity, choice.temperature}) {
    const std::string name = parts(text).name;
    if (!text.empty() && !isNumber(name)) names.push_back(name);
  }
  return names;
}

DerivedColumns::DerivedColumns(const std::string& path, sheets::Sheet& sheet,
                               const ColumnChoice& choice)
    : path_(path), sheet_(sheet) {
  flow_ = column("q", choice.flow, "q=Flow:l/min");
  frequency_ = column("f", choice.frequency, "f=Frequency:Hz");
  viscosity_ = column("nu", choice.viscosity, "nu=Viscosity:cSt");
  if (!choice.temperature.empty())
    temperature_ = column("t", choice.temperature, "t=Temperature:C");
}

std::size_t DerivedColumns::column(const char* key, const ColumnText& text,
                                   const char* withUnit) const {
  auto found = sheet_.find(text);
  const NameAndUnit given = parts(text);
  if (!found || !given.unit.empty()) {
    if (const auto named = sheet_.find(given.name)) {
      found = named;
      sheet_.setUnit(*named, given.unit);
    }
  }
  if (!found) {
    std::string names;
    for (std::size_t i = 0; i < sheet_.columns().size(); ++i)
      names += (i == 0 ? "" : ", ") + sheet_.columnName(i);
    throw Trouble(ExitCode::badInput,
                  "file '" + path_ + "': there is no column '" + shortened(text) + "' for " + key,
                  "choose among " + names);
  }
  if (sheet_.columns()[*found].unit.empty()) {
    throw Trouble(ExitCode::badInput,
                  "file '" + path_ + "': column '" + sheet_.columnName(*found) + "' has no unit",
                  std::string("give it, as in ") + withUnit);
  }
  return *found;
}

double DerivedColumns::positive(const sheets::Row& row, std::size_t column, const char* unit,
                                const char* quantity) const {
  const double value = sheet_.requireNumber(row, column, unit);
  if (value > 0) return value;
  throw sheets::SheetError(
      "line " + std::to_string(row.line) + ", column " + sheet_.columnName(column),
      "a " + std::string(quantity) + " of " + row.fields[column] + " is not possible",
      "correct it or leave the line out");
}

calibration::DerivedPoint DerivedColumns::point(const sheets::Row& row) const {
  calibration::Reading reading;
  reading.flow = positive(row, flow_, "gal/s", "flow");
  reading.frequency = positive(row, frequency_, "Hz", "frequency");
  reading.viscosity = positive(row, viscosity_, "cSt", "viscosity");
  if (temperature_) reading.temperature = sheet_.requireNumber(row, *temperature_, "F");
  return calibration::derivedPoint(reading);
}

std::string DerivedColumns::words() const {
  const auto shown = [&](std::size_t column) {
    const sheets::Column& each = sheet_.columns()[column];
    return (each.name.empty() ? std::to_string(column + 1) : shortened(each.name)) + " (" +
           each.unit + ")";
  };
  return "Roshko in Hz/cSt and Strouhal in pulses/gal, from " + shown(flow_) + ", " +
         shown(frequency_) + " and " + shown(viscosity_) +
         (temperature_ ? ", corrected for expansion from 70 F by " + shown(*temperature_)
                       : ", without a correction for the temperature");
}

}  // namespace pelmora::cli
