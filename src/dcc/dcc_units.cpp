// SPDX-License-Identifier: MIT
#include "dcc/dcc_units.h"

#include <pelmora/calibration/failure.h>

#include <algorithm>
#include <array>

namespace pelmora::dcc {
namespace {

constexpr std::array table{
    CertificateUnit{"1", "\\one", "1"},
    CertificateUnit{"%", "\\percent", "%"},
    CertificateUnit{"ppm", "\\percent", "%"},
    CertificateUnit{"Hz", "\\hertz", "Hz"},
    CertificateUnit{"kHz", "\\kilo\\hertz", "kHz"},
    CertificateUnit{"m2/s", "\\metre\\tothe{2}\\second\\tothe{-1}", "m2/s"},
    CertificateUnit{"cSt", "\\milli\\metre\\tothe{2}\\second\\tothe{-1}", "mm2/s"},
    CertificateUnit{"mm2/s", "\\milli\\metre\\tothe{2}\\second\\tothe{-1}", "mm2/s"},
    CertificateUnit{"m3", "\\metre\\tothe{3}", "m3"},
    CertificateUnit{"l", "\\litre", "l"},
    CertificateUnit{"gal", "\\metre\\tothe{3}", "m3"},
    CertificateUnit{"m3/s", "\\metre\\tothe{3}\\second\\tothe{-1}", "m3/s"},
    CertificateUnit{"m3/h", "\\metre\\tothe{3}\\hour\\tothe{-1}", "m3/h"},
    CertificateUnit{"l/s", "\\litre\\second\\tothe{-1}", "l/s"},
    CertificateUnit{"l/min", "\\litre\\minute\\tothe{-1}", "l/min"},
    CertificateUnit{"l/h", "\\litre\\hour\\tothe{-1}", "l/h"},
    CertificateUnit{"gpm", "\\metre\\tothe{3}\\second\\tothe{-1}", "m3/s"},
    CertificateUnit{"gal/s", "\\metre\\tothe{3}\\second\\tothe{-1}", "m3/s"},
    CertificateUnit{"gal/h", "\\metre\\tothe{3}\\second\\tothe{-1}", "m3/s"},
    CertificateUnit{"pulses/m3", "\\metre\\tothe{-3}", "pulses/m3"},
    CertificateUnit{"pulses/l", "\\litre\\tothe{-1}", "pulses/l"},
    CertificateUnit{"pulses/gal", "\\metre\\tothe{-3}", "pulses/m3"},
    CertificateUnit{"Hz/(m2/s)", "\\hertz\\second\\metre\\tothe{-2}", "Hz/(m2/s)"},
    // Stated as Hz/(mm2/s): 1 cSt is 1 mm2/s.
    CertificateUnit{"Hz/cSt", "\\hertz\\second\\milli\\metre\\tothe{-2}", "Hz/cSt"},
    CertificateUnit{"K", "\\kelvin", "K"},
    CertificateUnit{"C", "\\degreecelsius", "C"},
    CertificateUnit{"F", "\\degreecelsius", "C"},
    CertificateUnit{"Pa", "\\pascal", "Pa"},
    CertificateUnit{"hPa", "\\hecto\\pascal", "hPa"},
    CertificateUnit{"kPa", "\\kilo\\pascal", "kPa"},
    CertificateUnit{"MPa", "\\mega\\pascal", "MPa"},
    CertificateUnit{"bar", "\\kilo\\pascal", "kPa"},
    CertificateUnit{"mbar", "\\hecto\\pascal", "hPa"},
    CertificateUnit{"psi", "\\kilo\\pascal", "kPa"},
    CertificateUnit{"m", "\\metre", "m"},
    CertificateUnit{"cm", "\\centi\\metre", "cm"},
    CertificateUnit{"mm", "\\milli\\metre", "mm"},
    CertificateUnit{"in", "\\milli\\metre", "mm"},
    CertificateUnit{"1/K", "\\kelvin\\tothe{-1}", "1/K"},
    CertificateUnit{"1/F", "\\kelvin\\tothe{-1}", "1/K"},
};

// Blanks around each word, so that only whole words are found.
constexpr std::string_view prefixes =
    " deca hecto kilo mega giga tera peta exa zetta yotta ronna quetta"
    " deci centi milli micro nano pico femto atto zepto yocto ronto quecto ";
constexpr std::string_view names =
    " metre kilogram gram second ampere kelvin mole candela one percent ppm day hour minute"
    " degree arcminute arcsecond neper bel decibel electronvolt dalton astronomicalunit hectare"
    " litre tonne radian steradian hertz newton pascal joule watt coulomb volt farad ohm siemens"
    " weber tesla henry degreecelsius lumen lux becquerel gray sievert katal bit ";

bool contains(std::string_view known, std::string_view name) {
  return known.find(" " + std::string(name) + " ") != std::string_view::npos;
}

// Cuts "\name" or "\tothe{-3}" off the front; empty if there is neither.
std::string_view takeCommand(std::string_view& rest) {
  if (!rest.starts_with('\\')) return {};
  std::size_t end = 1;
  while (end < rest.size() && rest[end] >= 'a' && rest[end] <= 'z') ++end;
  if (end < rest.size() && rest[end] == '{') {
    const auto close = rest.find('}', end);
    if (close == std::string_view::npos) return {};
    end = close + 1;
  }
  const std::string_view command = rest.substr(1, end - 1);
  rest.remove_prefix(end);
  return command;
}

bool isPower(std::string_view command) {
  if (!command.starts_with("tothe{") || !command.ends_with('}')) return false;
  std::string_view digits = command.substr(6, command.size() - 7);
  if (digits.starts_with('-')) digits.remove_prefix(1);
  return !digits.empty() && digits.find_first_not_of("0123456789.") == std::string_view::npos;
}

const CertificateUnit* findUnit(std::string_view symbol) {
  const auto* found = std::find_if(table.begin(), table.end(),
                                   [&](const auto& each) { return each.symbol == symbol; });
  return found == table.end() ? nullptr : found;
}

}  // namespace

bool isCertificateUnit(std::string_view symbol) { return findUnit(symbol) != nullptr; }

const CertificateUnit& certificateUnit(std::string_view symbol) {
  if (const CertificateUnit* found = findUnit(symbol)) return *found;
  throw calibration::BadData({"'" + std::string(symbol) + "' is not a unit of a certificate", "",
                              "choose a unit such as Hz, mm2/s, l/min or pulses/l"});
}

bool isSiUnit(std::string_view unit) {
  bool afterName = false, afterPrefix = false;
  if (unit.empty()) return false;
  while (!unit.empty()) {
    const std::string_view command = takeCommand(unit);
    if (command.empty()) return false;
    if (isPower(command)) {
      if (!afterName) return false;
      afterName = false;
    } else if (contains(prefixes, command)) {
      if (afterPrefix) return false;
      afterPrefix = true;
      afterName = false;
    } else if (command == "per") {
      if (afterPrefix) return false;
      afterName = false;
    } else if (contains(names, command)) {
      afterName = true;
      afterPrefix = false;
    } else {
      return false;
    }
  }
  return !afterPrefix;
}

}  // namespace pelmora::dcc
