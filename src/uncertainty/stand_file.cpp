// SPDX-License-Identifier: MIT
#include "uncertainty/stand_file.h"

#include "base/suggestion.h"
#include "base/text_flaw.h"
#include "uncertainty/stand_lines.h"

#include <pelmora/calibration/failure.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <functional>

namespace pelmora::uncertainty {
namespace {

using units::Measure;
using units::Quantity;

struct SectionRule {
  std::string_view name;
  Cause cause;
  Quantity absolute;  // the unit's quantity, where it is not relative
  double betweenRotors, betweenCalibrations;
};

constexpr std::array sectionRules{
    SectionRule{"flow", Cause::flow, Quantity::volumeFlow, 1, 1},
    SectionRule{"viscosity", Cause::viscosity, Quantity::viscosity, 1, 1},
    SectionRule{"temperature", Cause::temperature, Quantity::temperature, 1, 1},
    SectionRule{"frequency", Cause::frequency, Quantity::frequency, 1, 1},
    SectionRule{"repeatability", Cause::repeatability, Quantity::relative, 0, 0},
    SectionRule{"reproducibility", Cause::reproducibility, Quantity::relative, 0, 0},
    SectionRule{"model", Cause::model, Quantity::relative, 0, 0},
};

// Reads the settings of one section and complains in its name.
class SectionReader {
 public:
  SectionReader(const Section& section, const std::string& where)
      : section_(section), where_(where) {}

  [[noreturn]] void refuse(const std::string& what, const std::string& remedy) const {
    refuseLine(section_.line, "[" + shortened(section_.name) + "] " + what, where_, remedy);
  }
  [[noreturn]] void refuse(const Setting& setting, const std::string& what,
                           const std::string& remedy) const {
    refuseLine(setting.line, "'" + setting.name + "': " + what, where_, remedy);
  }

  void requireKnown(const std::vector<std::string>& known) const {
    for (const Setting& setting : section_.settings) {
      if (std::find(known.begin(), known.end(), setting.name) != known.end()) continue;
      refuse(setting, "[" + shortened(section_.name) + "] has no such setting",
             suggestion(setting.name, known));
    }
  }

  [[nodiscard]] const Setting* find(std::string_view name) const { return section_.find(name); }

  [[nodiscard]] double number(const Setting& setting, double least) const {
    double value = 0;
    const char* end = setting.value.data() + setting.value.size();
    const auto [stop, trouble] = std::from_chars(setting.value.data(), end, value);
    if (trouble != std::errc() || stop != end || !std::isfinite(value)) {
      refuse(setting, "'" + shortened(setting.value) + "' is not a number",
             "write a plain number with a decimal point");
    }
    if (value < least) {
      refuse(setting, "'" + shortened(setting.value) + "' is too small",
             least > 0 ? "write 1 or more" : "write 0 or more");
    }
    return value;
  }

  template <class Read>
  [[nodiscard]] auto rethrown(const Setting& setting, const Read& read) const {
    try {
      return read();
    } catch (const calibration::BadData& failure) {
      refuse(setting, failure.what(), failure.remedy());
    }
  }

  // 0 or more.
  [[nodiscard]] Measure measure(const Setting& setting) const {
    const Measure found = rethrown(setting, [&] { return units::readMeasure(setting.value); });
    if (found.value < 0) refuse(setting, "an uncertainty is never negative", "write 0 or more");
    return found;
  }

  [[nodiscard]] double percent(const Setting& setting) const {
    const Measure found = measure(setting);
    if (found.unit->quantity != Quantity::relative)
      refuse(setting, "'" + shortened(setting.value) + "' is not relative", "write it in %");
    return units::converted(found.value, *found.unit, units::unitOf("%"));
  }

  template <class Value>
  [[nodiscard]] Value choice(const Setting& setting,
                             const std::vector<std::pair<std::string, Value>>& choices) const {
    std::vector<std::string> names;
    for (const auto& [name, value] : choices) {
      if (name == setting.value) return value;
      names.push_back(name);
    }
    refuse(setting, "'" + shortened(setting.value) + "' is not one of its values",
           suggestion(setting.value, names));
  }

 private:
  const Section& section_;
  const std::string& where_;
};

// The standard uncertainty of whichever of the three ways the section states.
Measure standardOf(const SectionReader& reader, Distribution distribution) {
  const std::array ways{reader.find("standard"), reader.find("expanded"),
                        reader.find("half-width")};
  const Setting* given = nullptr;
  for (const Setting* way : ways) {
    if (way == nullptr) continue;
    if (given != nullptr)
      reader.refuse(*way, "'" + given->name + "' is given as well", "keep one of them");
    given = way;
  }
  if (given == nullptr)
    reader.refuse("states no uncertainty", "write standard, expanded or half-width = ... %");
  Measure measure = reader.measure(*given);
  const Setting* factor = reader.find("k");
  if (given != ways[1] && factor != nullptr)
    reader.refuse(*factor, "only an expanded uncertainty has one", "leave it out");
  if (given == ways[1]) {
    if (factor == nullptr)
      reader.refuse(*given, "its coverage factor is missing", "add a line such as k = 2");
    measure.value /= reader.number(*factor, 1);
  }
  if (given == ways[2]) {
    if (distribution == Distribution::normal)
      reader.refuse(*given, "a normal distribution has no half-width",
                    "add distribution = rectangular, triangular or U-shaped");
    measure.value /= halfWidthDivisor(distribution);
  }
  return measure;
}

// "2.1 %/C": relative change per degree F.
double viscosityChangeOf(const SectionReader& reader, const Setting& setting) {
  const std::string& text = setting.value;
  const auto slash = text.rfind('/');
  const auto refuse = [&] {
    reader.refuse(setting, "'" + shortened(text) + "' is not a change per degree",
                  "write it like 2.1 %/C");
  };
  if (slash == std::string::npos) refuse();
  const Measure change =
      reader.rethrown(setting, [&] { return units::readMeasure(text.substr(0, slash)); });
  const units::Unit& degree =
      reader.rethrown(setting, [&]() -> std::reference_wrapper<const units::Unit> {
        return units::unitOf(text.substr(slash + 1));
      });
  if (change.unit->quantity != Quantity::relative || degree.quantity != Quantity::temperature)
    refuse();
  return units::converted(change.value, *change.unit, units::unitOf("1")) /
         units::convertedDifference(1, degree, units::unitOf("F"));
}

void readEvaluation(const SectionReader& reader, Component& component) {
  if (const Setting* degrees = reader.find("degrees of freedom"))
    component.degreesOfFreedom = reader.number(*degrees, 1);
  const Setting* type = reader.find("type");
  if (type == nullptr) return;
  component.evaluation =
      reader.choice<Evaluation>(*type, {{"A", Evaluation::a}, {"B", Evaluation::b}});
  if (component.evaluation == Evaluation::a && reader.find("degrees of freedom") == nullptr) {
    reader.refuse(*type, "a type A evaluation has degrees of freedom",
                  "add a line such as degrees of freedom = 9");
  }
}

const SectionRule& ruleOf(const Section& section, std::string_view name, const std::string& where) {
  std::vector<std::string> names{"stand"};
  for (const SectionRule& rule : sectionRules) {
    if (rule.name == name) return rule;
    names.emplace_back(rule.name);
  }
  refuseLine(section.line, "[" + shortened(section.name) + "] is not a section of this file", where,
             suggestion(shortened(name), names));
}

Component componentOf(const Section& section, const std::string& where) {
  const auto colon = section.name.find(':');
  std::string name = section.name.substr(0, colon);
  name.erase(name.find_last_not_of(" \t") + 1);
  const SectionRule& rule = ruleOf(section, name, where);
  const SectionReader reader(section, where);
  std::vector<std::string> known{"standard",           "expanded", "k",
                                 "half-width",         "type",     "distribution",
                                 "degrees of freedom", "rotors",   "calibrations"};
  if (rule.cause == Cause::temperature) known.emplace_back("viscosity change");
  reader.requireKnown(known);

  Component component;
  component.cause = rule.cause;
  if (colon != std::string::npos) {
    const auto first = section.name.find_first_not_of(" \t", colon + 1);
    if (first != std::string::npos) component.label = section.name.substr(first);
  }
  if (const Setting* distribution = reader.find("distribution")) {
    component.distribution =
        reader.choice<Distribution>(*distribution, {{"normal", Distribution::normal},
                                                    {"rectangular", Distribution::rectangular},
                                                    {"triangular", Distribution::triangular},
                                                    {"U-shaped", Distribution::uShaped}});
  }
  component.standard = standardOf(reader, component.distribution);
  const Quantity quantity = component.standard.unit->quantity;
  const bool isRelative = quantity == Quantity::relative && rule.absolute != Quantity::temperature;
  if (!isRelative && quantity != rule.absolute) {
    reader.refuse(
        "is stated in '" + std::string(component.standard.unit->symbol) + "'",
        rule.absolute == Quantity::temperature ? "write it in C, K or F"
        : rule.absolute == Quantity::relative
            ? "write it in %, relative to the Strouhal number"
            : "write it in % or in a unit of " + std::string(units::quantityName(rule.absolute)));
  }
  readEvaluation(reader, component);
  const std::vector<std::pair<std::string, double>> shares{{"common", 1.0}, {"independent", 0.0}};
  const Setting* rotors = reader.find("rotors");
  const Setting* calibrations = reader.find("calibrations");
  component.betweenRotors = rotors ? reader.choice(*rotors, shares) : rule.betweenRotors;
  component.betweenCalibrations =
      calibrations ? reader.choice(*calibrations, shares) : rule.betweenCalibrations;
  if (const Setting* change = reader.find("viscosity change"))
    component.viscosityChange = viscosityChangeOf(reader, *change);
  return component;
}

void readStand(const Section& section, const std::string& where, StandUncertainty& stand) {
  const SectionReader reader(section, where);
  reader.requireKnown({"name", "cmc", "quotient cmc", "probability"});
  if (const Setting* name = reader.find("name")) stand.name = name->value;
  if (const Setting* cmc = reader.find("cmc")) stand.cmcPercent = reader.percent(*cmc);
  if (const Setting* cmc = reader.find("quotient cmc"))
    stand.quotientCmcPercent = reader.percent(*cmc);
  if (const Setting* probability = reader.find("probability")) {
    const double percent = reader.percent(*probability);
    if (percent < 50 || percent > 99.99) {
      reader.refuse(*probability, "'" + shortened(probability->value) + "' is not usual",
                    "write 50 % to 99.99 %, usually 95 % or 95.45 %");
    }
    // 95.45 % is what people write for two standard deviations.
    if (percent != 95.45) stand.probability = percent / 100;
  }
}

}  // namespace

std::string_view causeName(Cause cause) {
  switch (cause) {
    case Cause::fit: return "fit";
    case Cause::flow: return "reference flow";
    case Cause::viscosity: return "viscosity";
    case Cause::temperature: return "temperature";
    case Cause::frequency: return "frequency";
    case Cause::repeatability: return "repeatability";
    case Cause::reproducibility: return "reproducibility";
    case Cause::model: return "model";
    case Cause::reading: break;
  }
  return "table reading";
}

StandUncertainty readStandUncertainty(std::string_view text, const std::string& where) {
  StandUncertainty stand;
  for (const Section& section : readSections(text, where)) {
    if (section.name == "stand") {
      readStand(section, where, stand);
    } else {
      stand.components.push_back(componentOf(section, where));
    }
  }
  if (stand.components.empty()) {
    throw calibration::BadData({"the file states no uncertainty", where,
                                "add sections such as [flow], [viscosity] and [frequency]"});
  }
  return stand;
}

}  // namespace pelmora::uncertainty
